// blob_values.h: CBlob values from hex, text and DER pieces for the tests of
// the value classes (with thrown_code.h, which they all use). Header-only.
#ifndef KORVEX_TESTS_COMMON_BLOB_VALUES_H
#define KORVEX_TESTS_COMMON_BLOB_VALUES_H

#include <korvex/core/Blob.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "der_edit.h"
#include "hex_bytes.h"
#include "thrown_code.h"

namespace korvextest {

// Blob("30 03 02 01 05"): the bytes of hex text (anything but hex digits is
// ignored).
inline Korvex::CBlob Blob(std::string const& hex) {
  std::vector<unsigned char> bytes = HexToBytes(hex);
  return Korvex::CBlob(bytes.data(), bytes.size());
}

// Hex(blob): "30 03 02 01 05".
inline std::string Hex(Korvex::CBlob const& blob) {
  return BytesToHex(blob.pbData(), blob.cbData());
}

// Cat(a, b, ...): the blobs one after another.
inline Korvex::CBlob Cat(std::initializer_list<Korvex::CBlob> parts) {
  Korvex::CBlob out;
  for (Korvex::CBlob const& part : parts) out += part;
  return out;
}

// Tlv(tag, contents): one DER element with a minimal definite length.
inline Korvex::CBlob Tlv(unsigned char tag, Korvex::CBlob const& contents) {
  Bytes header = DerHeader(tag, contents.cbData());
  return Cat({Korvex::CBlob(header.data(), header.size()), contents});
}

// Text(s): the bytes of s.
inline Korvex::CBlob Text(std::string const& s) {
  return Korvex::CBlob(reinterpret_cast<unsigned char const*>(s.data()), s.size());
}

}  // namespace korvextest

#endif
