// hex_bytes.h: hex text to bytes and back, shared by the test binaries.
// Header-only; include it as "../common/hex_bytes.h".
#ifndef KORVEX_TESTS_COMMON_HEX_BYTES_H
#define KORVEX_TESTS_COMMON_HEX_BYTES_H

#include <cstddef>
#include <string>
#include <vector>

namespace korvextest {

// HexToBytes: "02 01 05" -> {2, 1, 5}. Anything but hex digits is ignored, so
// spaces and line breaks may group the digits; an odd last digit is dropped.
inline std::vector<unsigned char> HexToBytes(const std::string& hex) {
  std::vector<unsigned char> out;
  int high = -1;
  for (char c : hex) {
    int v;
    if (c >= '0' && c <= '9') {
      v = c - '0';
    } else if (c >= 'A' && c <= 'F') {
      v = c - 'A' + 10;
    } else if (c >= 'a' && c <= 'f') {
      v = c - 'a' + 10;
    } else {
      continue;
    }
    if (high < 0) {
      high = v;
    } else {
      out.push_back(static_cast<unsigned char>(high * 16 + v));
      high = -1;
    }
  }
  return out;
}

// BytesToHex: n bytes at p as "02 01 05" (upper-case digits, one space
// between bytes).
inline std::string BytesToHex(const unsigned char* p, size_t n) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string out;
  for (size_t i = 0; i < n; ++i) {
    if (i) out.push_back(' ');
    out.push_back(kDigits[p[i] >> 4]);
    out.push_back(kDigits[p[i] & 15]);
  }
  return out;
}

// HexDigits: n bytes at p as "020105" (lower-case digits, no separators),
// the form the CryptoAPI tests compare with.
inline std::string HexDigits(const unsigned char* p, size_t n) {
  static const char kDigits[] = "0123456789abcdef";
  std::string out;
  for (size_t i = 0; i < n; ++i) {
    out.push_back(kDigits[p[i] >> 4]);
    out.push_back(kDigits[p[i] & 15]);
  }
  return out;
}

}  // namespace korvextest

#endif
