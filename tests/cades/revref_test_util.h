// revref_test_util.h: shared pieces of the tests of the CAdES revocation
// references and values: hex blobs, thrown codes, a small BER walker that
// cuts real structures out of the fixture and corpus files without the
// classes under test, and a fault injector for the runtime's allocations.
#ifndef KORVEX_TESTS_CADES_REVREF_TEST_UTIL_H
#define KORVEX_TESTS_CADES_REVREF_TEST_UTIL_H

#include <gtest/gtest.h>
#include <korvex/asn1rt/asn1type.h>
#include <korvex/core/Blob.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "../common/hex_bytes.h"

namespace revreftest {

// Blob("30 03 02 01 05"): the bytes of hex text.
inline Korvex::CBlob Blob(std::string const& hex) {
  std::vector<unsigned char> bytes = korvextest::HexToBytes(hex);
  return Korvex::CBlob(bytes.data(), bytes.size());
}

// Hex(blob): "30 03 02 01 05".
inline std::string Hex(Korvex::CBlob const& blob) {
  return korvextest::BytesToHex(blob.pbData(), blob.cbData());
}

// Cat(a, b, ...): the blobs one after another.
inline Korvex::CBlob Cat(std::initializer_list<Korvex::CBlob> parts) {
  Korvex::CBlob out;
  for (Korvex::CBlob const& part : parts) out += part;
  return out;
}

// Tlv(tag, contents): one DER element with a minimal definite length.
inline Korvex::CBlob Tlv(unsigned char tag, Korvex::CBlob const& contents) {
  std::vector<unsigned char> header{tag};
  unsigned long n = contents.cbData();
  if (n < 0x80) {
    header.push_back(static_cast<unsigned char>(n));
  } else {
    std::vector<unsigned char> digits;
    for (; n; n >>= 8) digits.insert(digits.begin(), static_cast<unsigned char>(n));
    header.push_back(static_cast<unsigned char>(0x80 | digits.size()));
    header.insert(header.end(), digits.begin(), digits.end());
  }
  return Cat({Korvex::CBlob(header.data(), header.size()), contents});
}

// Text(s): the bytes of s.
inline Korvex::CBlob Text(std::string const& s) {
  return Korvex::CBlob(reinterpret_cast<unsigned char const*>(s.data()), s.size());
}

// ThrownCode(f): the CAtlException code f throws, 0 when it returns.
template <class F>
unsigned ThrownCode(F&& f) {
  try {
    f();
  } catch (ATL::CAtlException const& e) {
    return static_cast<unsigned>(e.m_hr);
  }
  return 0;
}

// ---- BER walker --------------------------------------------------------------

// Element: one BER element (definite or indefinite length) inside a buffer
// that outlives it.
struct Element {
  unsigned char const* start = nullptr;
  std::size_t header = 0;
  std::size_t length = 0;  // contents length (without end-of-contents octets)
  bool indefinite = false;

  unsigned char tag() const { return start[0]; }
  bool constructed() const { return (start[0] & 0x20) != 0; }
  std::size_t size() const { return header + length + (indefinite ? 2 : 0); }
  unsigned char const* contents() const { return start + header; }
  Korvex::CBlob der() const { return Korvex::CBlob(start, size()); }
  std::string text() const {
    return std::string(reinterpret_cast<char const*>(contents()), length);
  }
  std::vector<Element> children() const;
  Element child(std::size_t n) const {
    std::vector<Element> all = children();
    if (n >= all.size()) throw std::runtime_error("no such child");
    return all[n];
  }
  Element first(unsigned char wanted) const {
    for (Element const& e : children()) {
      if (e.tag() == wanted) return e;
    }
    throw std::runtime_error("no child with tag " + std::to_string(wanted));
  }
};

// ParseElement: the element at the start of [p, p + size). Low tag numbers
// only (the structures walked here use no others).
inline Element ParseElement(unsigned char const* p, std::size_t size) {
  if (size < 2 || (p[0] & 0x1F) == 0x1F) throw std::runtime_error("unsupported tag");
  Element e;
  e.start = p;
  std::size_t pos = 1;
  unsigned char first = p[pos++];
  if (first == 0x80) {
    // Indefinite: the contents are elements up to 00 00.
    e.indefinite = true;
    e.header = pos;
    std::size_t at = pos;
    while (true) {
      if (size - at < 2) throw std::runtime_error("no end-of-contents");
      if (p[at] == 0 && p[at + 1] == 0) break;
      at += ParseElement(p + at, size - at).size();
    }
    e.length = at - pos;
    return e;
  }
  std::size_t length = first;
  if (first & 0x80) {
    unsigned count = first & 0x7F;
    if (count == 0 || count > 4 || count > size - pos) throw std::runtime_error("bad length");
    length = 0;
    for (unsigned i = 0; i < count; ++i) length = (length << 8) | p[pos++];
  }
  if (length > size - pos) throw std::runtime_error("truncated element");
  e.header = pos;
  e.length = length;
  return e;
}

inline std::vector<Element> Element::children() const {
  std::vector<Element> out;
  std::size_t pos = 0;
  while (pos < length) {
    Element e = ParseElement(contents() + pos, length - pos);
    out.push_back(e);
    pos += e.size();
  }
  return out;
}

inline Element Root(Korvex::CBlob const& blob) {
  return ParseElement(blob.pbData(), blob.cbData());
}

// Every element of the tree below e (e included), depth first; primitive
// elements and OCTET STRINGs are not entered.
inline void Walk(Element const& e, std::vector<Element>& out) {
  out.push_back(e);
  if (!e.constructed()) return;
  for (Element const& c : e.children()) Walk(c, out);
}

// ---- files ---------------------------------------------------------------------

inline bool FileExists(std::string const& path) { return std::ifstream(path).good(); }

// Fixture(name): the bytes of tests/data/<name>.
inline Korvex::CBlob Fixture(std::string const& name) {
  Korvex::CBlob blob;
  blob.readFromFile((std::string(KORVEX_TEST_DATA_DIR) + "/" + name).c_str());
  return blob;
}

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

// ---- fault injection ----------------------------------------------------------

// FaultInjector counts the runtime's allocations (rtSetAllocFuncs) and makes
// the n-th one from now fail. Install it only while no context exists; it
// restores the default functions when destroyed.
class FaultInjector {
 public:
  FaultInjector() {
    live_ = 0;
    calls_ = 0;
    failAt_ = 0;
    rtSetAllocFuncs(Malloc, Realloc, Free);
  }
  ~FaultInjector() { rtSetAllocFuncs(nullptr, nullptr, nullptr); }
  FaultInjector(FaultInjector const&) = delete;
  FaultInjector& operator=(FaultInjector const&) = delete;

  static void failNth(long n) {
    calls_ = 0;
    failAt_ = n;
  }
  static bool failed() { return failAt_ != 0 && calls_ >= failAt_; }
  static long live() { return live_; }

 private:
  static bool refuse() { return ++calls_ == failAt_; }
  static void* Malloc(void*, size_t size) {
    if (refuse()) return nullptr;
    void* p = std::malloc(size);
    if (p) ++live_;
    return p;
  }
  static void* Realloc(void*, void* p, size_t size) {
    if (refuse()) return nullptr;
    void* q = std::realloc(p, size);
    if (!p && q) ++live_;
    return q;
  }
  static void Free(void*, void* p) {
    if (p) --live_;
    std::free(p);
  }
  static inline long live_ = 0;
  static inline long calls_ = 0;
  static inline long failAt_ = 0;
};

// ExpectCleanUnderFaults runs f once for every runtime allocation it makes,
// failing that allocation: each run either succeeds or throws one of the
// value layer's codes, and leaves no runtime block behind.
template <class F>
void ExpectCleanUnderFaults(F&& f) {
  FaultInjector faults;
  for (long n = 1; n < 100000; ++n) {
    SCOPED_TRACE(n);
    FaultInjector::failNth(n);
    unsigned code = ThrownCode(f);
    bool failed = FaultInjector::failed();
    EXPECT_TRUE(code == 0 || code == 0x80093101u || code == 0x80093106u || code == 0x8007000Eu)
        << std::hex << code;
    EXPECT_EQ(0, FaultInjector::live());
    if (!failed) {
      EXPECT_EQ(0u, code);
      EXPECT_GT(n, 1) << "f allocated nothing through the runtime";
      return;
    }
  }
  ADD_FAILURE() << "too many allocations";
}

}  // namespace revreftest

#endif
