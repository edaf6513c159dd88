// revref_test_util.h: shared pieces of the tests of the CAdES revocation
// references and values: the blob, BER-walk and fault-injection helpers of
// tests/common by their local names, and the facts of real CRLs and OCSP
// responses read without the classes under test.
#ifndef KORVEX_TESTS_CADES_REVREF_TEST_UTIL_H
#define KORVEX_TESTS_CADES_REVREF_TEST_UTIL_H

#include <gtest/gtest.h>
#include <korvex/core/Blob.h>

#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

#include "../common/alloc_faults.h"
#include "../common/ber_walk.h"
#include "../common/blob_values.h"

namespace revreftest {

using korvextest::Blob;
using korvextest::Cat;
using korvextest::Element;
using korvextest::ExpectCleanUnderFaults;
using korvextest::ExpectCodecCleanUnderFaults;
using korvextest::FaultInjector;
using korvextest::Fixture;
using korvextest::Hex;
using korvextest::ParseElement;
using korvextest::Root;
using korvextest::Text;
using korvextest::ThrownCode;
using korvextest::Tlv;
using korvextest::Walk;

inline bool FileExists(std::string const& path) { return std::ifstream(path).good(); }

inline std::string CorpusPath(std::string const& name) {
  return std::string(KORVEX_CORPUS_DIR) + "/" + name;
}

// CrlFacts: what a CRL says about itself (RFC 5280 5.1): the DER of its
// issuer, thisUpdate as it stands, the cRLNumber contents octets.
struct CrlFacts {
  Korvex::CBlob issuer;
  unsigned char thisUpdateTag = 0;
  std::string thisUpdate;
  Korvex::CBlob number;  // INTEGER contents
};

inline CrlFacts ReadCrlFacts(Korvex::CBlob const& crl) {
  Element tbs = Root(crl).child(0);
  std::vector<Element> fields = tbs.children();
  // version is present in a v2 CRL: version, signature, issuer, thisUpdate.
  std::size_t i = fields[0].tag() == 0x02 ? 1 : 0;
  CrlFacts facts;
  facts.issuer = fields[i + 1].der();
  facts.thisUpdateTag = fields[i + 2].tag();
  facts.thisUpdate = fields[i + 2].text();
  Element extensions = tbs.first(0xA0).child(0);
  for (Element const& ext : extensions.children()) {
    Element oid = ext.child(0);
    // 2.5.29.20 cRLNumber
    if (oid.length == 3 && oid.contents()[0] == 0x55 && oid.contents()[1] == 0x1D &&
        oid.contents()[2] == 0x14) {
      Element octets = ext.children().back();
      Element integer = ParseElement(octets.contents(), octets.length);
      facts.number = Korvex::CBlob(integer.contents(), integer.length);
    }
  }
  return facts;
}

// OcspFacts: the responderID element and producedAt text of a
// BasicOCSPResponse (RFC 6960 4.2.1).
struct OcspFacts {
  Korvex::CBlob responderID;
  std::string producedAt;
};

inline OcspFacts ReadOcspFacts(Korvex::CBlob const& basic) {
  Element data = Root(basic).child(0);
  std::vector<Element> fields = data.children();
  std::size_t i = fields[0].tag() == 0xA0 ? 1 : 0;  // version [0] DEFAULT v1
  OcspFacts facts;
  facts.responderID = fields[i].der();
  facts.producedAt = fields[i + 1].text();
  return facts;
}

}  // namespace revreftest

#endif
