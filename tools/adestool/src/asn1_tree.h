// asn1_tree.h: the indented ASN.1 tree of `adestool dump --asn1`.
//
// One line per element:
//
//   OFFSET+HL  [indent]TAG (LENGTH)[: VALUE]
//
// OFFSET is the element's offset in the input bytes, HL the length of its
// identifier and length octets, LENGTH the contents length or "indefinite".
// Children of constructed elements follow, indented two more spaces.
// Primitive values are decoded: INTEGER and ENUMERATED in decimal (hex past
// 8 octets), OBJECT IDENTIFIER as dotted text with its name, strings quoted,
// times as text with their reading, BOOLEAN, NULL, BIT STRING and OCTET
// STRING in hex (past 64 bytes cut with "... (N bytes)"). An OCTET STRING or
// BIT STRING whose contents are exactly one well-formed element shows
// "encapsulates" and that element's tree below it.
//
// Work and nesting are bounded: at most 64 levels (encapsulations count),
// every length is checked against its enclosing element, each byte is
// walked at most once per encapsulation level.
#ifndef ADESTOOL_ASN1_TREE_H
#define ADESTOOL_ASN1_TREE_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace adestool {

// Deepest nesting the tree follows.
constexpr int kMaxTreeDepth = 64;

struct DumpFailure {
  size_t offset = 0;  // where the first fault is, in the input bytes
  std::string what;   // "SEQUENCE truncated: 4 of 6 content bytes present"
};

// DumpAsn1Tree appends the tree of every element of data[0, size) to *out,
// one after another; trailing bytes that are all zero or ASCII whitespace
// after the first element become one "<trailing padding ...>" line. Returns
// true when the bytes are well-formed throughout. Otherwise the tree holds
// what could be parsed, with the fault shown inline (<truncated: N of M
// bytes>, <incomplete header>, ...), and *failure describes the first fault.
// Empty data gives no lines; data of 2^31 bytes or more is refused as a
// failure at offset 0. Throws std::bad_alloc only.
bool DumpAsn1Tree(const uint8_t* data, size_t size, std::string* out, DumpFailure* failure);

}  // namespace adestool

#endif
