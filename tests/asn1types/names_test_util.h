// names_test_util.h: a minimal DER walker for taking names and extension
// values out of the test certificates, and wide-text helpers.
#ifndef KORVEX_TESTS_ASN1TYPES_NAMES_TEST_UTIL_H
#define KORVEX_TESTS_ASN1TYPES_NAMES_TEST_UTIL_H

#include <gtest/gtest.h>
#include <korvex/core/Blob.h>

#include <string>
#include <vector>

namespace namestest {

// One element: its whole encoding and where its contents start.
struct Element {
  Korvex::CBlob der;
  unsigned long header = 0;
  unsigned char tag() const { return der.pbData()[0]; }
  Korvex::CBlob contents() const {
    return Korvex::CBlob(der.pbData() + header, der.cbData() - header);
  }
};

// The elements in bytes[0, size) one after the other (definite lengths,
// one-octet tags, as the fixtures use). An element running past the end
// fails the test and stops.
inline std::vector<Element> Elements(unsigned char const* bytes, unsigned long size) {
  std::vector<Element> out;
  unsigned long pos = 0;
  while (pos < size) {
    unsigned long start = pos++;
    if (pos >= size) break;
    unsigned long length = bytes[pos++];
    if (length & 0x80) {
      int count = length & 0x7F;
      length = 0;
      for (int i = 0; i < count && pos < size; ++i) length = (length << 8) | bytes[pos++];
    }
    if (pos + length > size) {
      ADD_FAILURE() << "element past the end";
      break;
    }
    Element e;
    e.header = pos - start;
    e.der = Korvex::CBlob(bytes + start, pos - start + length);
    out.push_back(e);
    pos += length;
  }
  return out;
}

// The elements inside a constructed element.
inline std::vector<Element> Children(Element const& parent) {
  return Elements(parent.der.pbData() + parent.header, parent.der.cbData() - parent.header);
}

inline Element Root(Korvex::CBlob const& der) {
  std::vector<Element> top = Elements(der.pbData(), der.cbData());
  if (top.empty()) return Element();
  return top[0];
}

// The parts of a test certificate that the name tests use.
struct CertificateNames {
  Korvex::CBlob issuer;
  Korvex::CBlob subject;
  Korvex::CBlob subjectAltName;  // the GeneralNames DER, empty when absent
  Korvex::CBlob authorityCertIssuer;  // [1] of authorityKeyIdentifier (IMPLICIT GeneralNames)
};

inline Korvex::CBlob ReadData(char const* relative) {
  Korvex::CBlob der;
  der.readFromFile((std::string(KORVEX_TEST_DATA_DIR) + "/" + relative).c_str());
  return der;
}

inline CertificateNames NamesOf(char const* relative) {
  CertificateNames out;
  Korvex::CBlob der = ReadData(relative);
  std::vector<Element> tbs = Children(Children(Root(der))[0]);
  // [0] version, serial, signature, issuer, validity, subject, spki, ...
  std::size_t i = (tbs[0].tag() == 0xA0) ? 1 : 0;
  out.issuer = tbs[i + 2].der;
  out.subject = tbs[i + 4].der;
  for (Element const& e : tbs) {
    if (e.tag() != 0xA3) continue;
    for (Element const& ext : Children(Children(e)[0])) {
      std::vector<Element> parts = Children(ext);
      Korvex::CBlob oid = parts[0].contents();
      Element value = parts.back();
      if (oid == Korvex::CBlob(reinterpret_cast<unsigned char const*>("\x55\x1D\x11"), 3)) {
        out.subjectAltName = value.contents();
      }
      if (oid == Korvex::CBlob(reinterpret_cast<unsigned char const*>("\x55\x1D\x23"), 3)) {
        Korvex::CBlob seq = value.contents();
        for (Element const& field : Children(Root(seq))) {
          if (field.tag() == 0xA1) out.authorityCertIssuer = field.der;
        }
      }
    }
  }
  return out;
}

}  // namespace namestest

#endif
