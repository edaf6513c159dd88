// der_walk.h: a minimal DER reader for the tests, to cut real structures
// (signed attributes, extensions, CMP status) out of the fixture files
// without going through the classes under test.
#ifndef KORVEX_TESTS_ASN1TYPES_DER_WALK_H
#define KORVEX_TESTS_ASN1TYPES_DER_WALK_H

#include <korvex/core/Blob.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace typestest {

// Element: one definite-length DER element inside a buffer that outlives it.
struct Element {
  unsigned char const* start = nullptr;
  std::size_t header = 0;
  std::size_t length = 0;

  unsigned char tag() const { return start[0]; }
  std::size_t size() const { return header + length; }
  unsigned char const* contents() const { return start + header; }
  Korvex::CBlob der() const { return Korvex::CBlob(start, size()); }
  // der(tag): the element's bytes with its first octet replaced (an IMPLICIT
  // tag read as the universal one).
  Korvex::CBlob der(unsigned char newTag) const {
    Korvex::CBlob blob = der();
    blob.pbData()[0] = newTag;
    return blob;
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

// ParseElement: the element at the start of [p, p + size).
inline Element ParseElement(unsigned char const* p, std::size_t size) {
  if (size < 2 || (p[0] & 0x1F) == 0x1F) throw std::runtime_error("unsupported tag");
  Element e;
  e.start = p;
  std::size_t pos = 1;
  unsigned char first = p[pos++];
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

// ReadFixture: the bytes of tests/data/<name>.
inline Korvex::CBlob ReadFixture(char const* name) {
  Korvex::CBlob blob;
  blob.readFromFile((std::string(KORVEX_TEST_DATA_DIR) + "/" + name).c_str());
  return blob;
}

// Root: the outermost element of a blob.
inline Element Root(Korvex::CBlob const& blob) {
  return ParseElement(blob.pbData(), blob.cbData());
}

}  // namespace typestest

#endif
