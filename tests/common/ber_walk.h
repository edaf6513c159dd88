// ber_walk.h: a minimal BER reader for the tests, to cut real structures
// (signed attributes, extensions, CRL and OCSP fields) out of the fixture
// and corpus files without going through the classes under test.
// Header-only.
#ifndef KORVEX_TESTS_COMMON_BER_WALK_H
#define KORVEX_TESTS_COMMON_BER_WALK_H

#include <korvex/core/Blob.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace korvextest {

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
  // der(tag): the element's bytes with its first octet replaced (an IMPLICIT
  // tag read as the universal one).
  Korvex::CBlob der(unsigned char newTag) const {
    Korvex::CBlob blob = der();
    blob.pbData()[0] = newTag;
    return blob;
  }
  std::string text() const {
    return std::string(reinterpret_cast<char const*>(contents()), length);
  }

  // children: the elements of a constructed element's contents, in order.
  std::vector<Element> children() const;
  // child(n): the n-th child (throws when there is none).
  Element child(std::size_t n) const {
    std::vector<Element> all = children();
    if (n >= all.size()) throw std::runtime_error("no such child");
    return all[n];
  }
  // first(tag): the first child with that tag octet.
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
    // Indefinite (X.690 8.1.3.6): the contents are elements up to 00 00.
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
    if (count > 4 || count > size - pos) throw std::runtime_error("bad length");
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

// Root: the outermost element of a blob.
inline Element Root(Korvex::CBlob const& blob) {
  return ParseElement(blob.pbData(), blob.cbData());
}

// Walk: every element of the tree below e (e included), depth first;
// primitive elements are not entered.
inline void Walk(Element const& e, std::vector<Element>& out) {
  out.push_back(e);
  if (!e.constructed()) return;
  for (Element const& c : e.children()) Walk(c, out);
}

// Fixture: the bytes of tests/data/<name>.
inline Korvex::CBlob Fixture(std::string const& name) {
  Korvex::CBlob blob;
  blob.readFromFile((std::string(KORVEX_TEST_DATA_DIR) + "/" + name).c_str());
  return blob;
}

}  // namespace korvextest

#endif
