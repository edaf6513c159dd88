// The complete-certificate-references (.2.21), complete-revocation-references
// (.2.22) and revocation-values (.2.24) attributes of real CAdES signatures
// (../shared/corpus/esig-dss, skipped when absent): every value is decoded
// through the classes and written back. A DER value comes back byte for
// byte, except that the empty lists some signers write (crlids, ocspids,
// crlVals or ocspVals holding no element) are left out; a BER one (indefinite
// lengths) comes back as its DER, which then reads and writes unchanged.
#include <gtest/gtest.h>
#include <korvex/cades/CAdESAttributes.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "revref_test_util.h"

namespace {

using Korvex::CBlob;
using namespace revreftest;
namespace CAdES = Korvex::PKI::CAdES;

// The OID contents octets of id-aa-ets-certificateRefs .. revocationValues
// (1.2.840.113549.1.9.16.2.21/.22/.24) differ in their last octet only.
const unsigned char kAttrPrefix[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x09, 0x10, 0x02};

// AttributeArc: 21, 22 or 24 for SEQUENCE { OID .2.21/.22/.24, SET {...} },
// 0 for anything else.
int AttributeArc(Element const& e) {
  if (e.tag() != 0x30) return 0;
  std::vector<Element> parts;
  try {
    parts = e.children();
  } catch (std::exception const&) {
    return 0;
  }
  if (parts.size() != 2 || parts[0].tag() != 0x06 || parts[1].tag() != 0x31) return 0;
  if (parts[0].length != sizeof kAttrPrefix + 1) return 0;
  if (std::memcmp(parts[0].contents(), kAttrPrefix, sizeof kAttrPrefix) != 0) return 0;
  int arc = parts[0].contents()[sizeof kAttrPrefix];
  return arc == 21 || arc == 22 || arc == 24 ? arc : 0;
}

// Walk that steps over what does not parse (opaque contents of other types).
void WalkTolerant(Element const& e, std::vector<Element>& out) {
  out.push_back(e);
  if (!e.constructed()) return;
  std::vector<Element> children;
  try {
    children = e.children();
  } catch (std::exception const&) {
    return;
  }
  for (Element const& c : children) WalkTolerant(c, out);
}

bool HasIndefiniteLength(Element const& e) {
  std::vector<Element> all;
  WalkTolerant(e, all);
  for (Element const& x : all) {
    if (x.indefinite) return true;
  }
  return false;
}

// FirstDifference: "" when equal, else the size of each and the first offset
// where they differ (full dumps of these values run to megabytes).
std::string FirstDifference(CBlob const& a, CBlob const& b) {
  if (a == b) return "";
  unsigned long n = std::min(a.cbData(), b.cbData());
  unsigned long i = 0;
  while (i < n && a.pbData()[i] == b.pbData()[i]) ++i;
  return "sizes " + std::to_string(a.cbData()) + "/" + std::to_string(b.cbData()) +
         ", first difference at " + std::to_string(i);
}

// IsEmptyList: [0]/[1] of a CrlOcspRef (a CRLListID or OcspListID whose
// SEQUENCE OF is empty) or of RevocationValues (an empty SEQUENCE OF).
bool IsEmptyList(Element const& field, int arc) {
  if (field.tag() != 0xA0 && field.tag() != 0xA1) return false;
  Element inner = field.child(0);
  if (arc == 22) inner = inner.child(0);
  return inner.length == 0;
}

// Fields(e, arc): e's fields without the empty lists, as one SEQUENCE.
CBlob Fields(Element const& e, int arc) {
  CBlob kept;
  for (Element const& field : e.children()) {
    if (!IsEmptyList(field, arc)) kept += field.der();
  }
  return Tlv(0x30, kept);
}

// Expected: the DER value as the classes write it: empty lists left out.
CBlob Expected(Element const& value, int arc) {
  if (arc == 21) return value.der();
  if (arc == 24) return Fields(value, arc);
  CBlob refs;
  for (Element const& ref : value.children()) refs += Fields(ref, arc);
  return Tlv(0x30, refs);
}

// RoundTrip<T>(value, arc): decode, encode, compare; then the fixed point.
template <class T>
void RoundTrip(Element const& value, int arc, int& exact) {
  T decoded;
  decoded.decode(value.der());
  CBlob again = decoded.encode();
  if (!HasIndefiniteLength(value)) {
    EXPECT_EQ("", FirstDifference(Expected(value, arc), again));
    if (again == value.der()) ++exact;
  }
  T second;
  second.decode(again);
  EXPECT_TRUE(second == decoded);
  EXPECT_EQ("", FirstDifference(again, second.encode()));
}

TEST(RevocationRefsCorpusTest, EsigDssAttributesRoundTrip) {
  std::string const dir = CorpusPath("esig-dss");
  if (!std::filesystem::is_directory(dir)) GTEST_SKIP() << "no corpus at " << dir;
  std::map<int, int> seen;
  int exact = 0;
  std::vector<std::string> files;
  for (auto const& entry : std::filesystem::directory_iterator(dir)) {
    if (entry.is_regular_file()) files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  for (std::string const& path : files) {
    CBlob blob;
    blob.readFromFile(path.c_str());
    Element root;
    try {
      root = Root(blob);
    } catch (std::exception const&) {
      continue;  // not a BER file (images, texts)
    }
    std::vector<Element> all;
    WalkTolerant(root, all);
    for (Element const& e : all) {
      int arc = AttributeArc(e);
      if (!arc) continue;
      for (Element const& value : e.child(1).children()) {
        SCOPED_TRACE(path + " attribute .2." + std::to_string(arc));
        ++seen[arc];
        switch (arc) {
          case 21:
            RoundTrip<CAdES::CCompleteCertificateRefs>(value, arc, exact);
            break;
          case 22:
            RoundTrip<CAdES::CCompleteRevocationRefs>(value, arc, exact);
            break;
          default:
            RoundTrip<CAdES::CRevocationValues>(value, arc, exact);
            break;
        }
      }
    }
  }
  // The corpus as shipped holds each kind many times over.
  EXPECT_GE(seen[21], 10);
  EXPECT_GE(seen[22], 10);
  EXPECT_GE(seen[24], 10);
  // Most of them are DER without empty lists and come back byte for byte.
  EXPECT_GE(exact, 20);
  std::printf("corpus values: .21 %d, .22 %d, .24 %d; byte for byte %d\n", seen[21], seen[22],
              seen[24], exact);
}

}  // namespace
