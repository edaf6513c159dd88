// der_edit.h: building and rewriting definite-length DER in the tests,
// byte vectors in and out. Header-only.
#ifndef KORVEX_TESTS_COMMON_DER_EDIT_H
#define KORVEX_TESTS_COMMON_DER_EDIT_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvextest {

using Bytes = std::vector<uint8_t>;

// DerHeader: the tag octet and the DER length of `length` content octets
// (X.690 8.1.3: short form below 128, else the fewest length octets).
inline Bytes DerHeader(uint8_t tag, size_t length) {
  Bytes out{tag};
  if (length < 0x80) {
    out.push_back(static_cast<uint8_t>(length));
    return out;
  }
  Bytes octets;
  for (size_t v = length; v != 0; v >>= 8) octets.insert(octets.begin(), static_cast<uint8_t>(v));
  out.push_back(static_cast<uint8_t>(0x80 | octets.size()));
  out.insert(out.end(), octets.begin(), octets.end());
  return out;
}

// Encode: one element, tag + DER length + content.
inline Bytes Encode(uint8_t tag, const Bytes& content) {
  Bytes out = DerHeader(tag, content.size());
  out.insert(out.end(), content.begin(), content.end());
  return out;
}

inline Bytes Concat(const std::vector<Bytes>& parts) {
  Bytes out;
  for (const Bytes& part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

// TlvHeader is one element's tag byte, header length and content length.
struct TlvHeader {
  uint8_t tag = 0;
  size_t header = 0;
  size_t length = 0;
};

// ReadTlvHeader reads the element at data[0..size) (single-byte tags,
// definite lengths, as DER has); false when it does not fit.
inline bool ReadTlvHeader(const uint8_t* data, size_t size, TlvHeader* out) {
  if (size < 2) return false;
  out->tag = data[0];
  size_t length = data[1];
  size_t header = 2;
  if (length & 0x80) {
    const size_t octets = length & 0x7F;
    if (octets == 0 || octets > 4 || size < 2 + octets) return false;
    length = 0;
    for (size_t i = 0; i < octets; ++i) length = (length << 8) | data[2 + i];
    header += octets;
  }
  if (size - header < length) return false;
  out->header = header;
  out->length = length;
  return true;
}

// ContentOf: the content octets of the element `der` starts with (empty, and
// a test failure, when it does not start with one).
inline Bytes ContentOf(const Bytes& der) {
  TlvHeader tlv;
  if (!ReadTlvHeader(der.data(), der.size(), &tlv)) {
    ADD_FAILURE() << "malformed DER";
    return {};
  }
  return Bytes(der.begin() + tlv.header, der.begin() + tlv.header + tlv.length);
}

// Children splits a constructed element's content into its elements.
inline std::vector<Bytes> Children(const Bytes& content) {
  std::vector<Bytes> out;
  size_t at = 0;
  while (at < content.size()) {
    TlvHeader tlv;
    if (!ReadTlvHeader(content.data() + at, content.size() - at, &tlv)) {
      ADD_FAILURE() << "malformed DER at offset " << at;
      return out;
    }
    const size_t total = tlv.header + tlv.length;
    out.emplace_back(content.begin() + at, content.begin() + at + total);
    at += total;
  }
  return out;
}

// AppendAt returns `der` with `addition` appended to the content of the
// element reached by `path` (child indexes from the outermost element; -1
// is the last child), every enclosing length recomputed.
inline Bytes AppendAt(const Bytes& der, const std::vector<int>& path, const Bytes& addition,
                      size_t depth = 0) {
  TlvHeader tlv;
  if (!ReadTlvHeader(der.data(), der.size(), &tlv)) {
    ADD_FAILURE() << "malformed DER";
    return der;
  }
  Bytes content(der.begin() + tlv.header, der.begin() + tlv.header + tlv.length);
  if (depth == path.size()) {
    content.insert(content.end(), addition.begin(), addition.end());
    return Encode(tlv.tag, content);
  }
  std::vector<Bytes> children = Children(content);
  const int index = path[depth] < 0 ? static_cast<int>(children.size()) - 1 : path[depth];
  if (index < 0 || static_cast<size_t>(index) >= children.size()) {
    ADD_FAILURE() << "no child " << path[depth] << " at depth " << depth;
    return der;
  }
  children[index] = AppendAt(children[index], path, addition, depth + 1);
  return Encode(tlv.tag, Concat(children));
}

}  // namespace korvextest

#endif
