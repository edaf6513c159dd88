// utf8.h: reading UTF-8 (RFC 3629) for the text detection of inputs and the
// text and JSON renderings, through the library's rtUTF8DecodeChar.
#ifndef ADESTOOL_UTF8_H
#define ADESTOOL_UTF8_H

#include <korvex/asn1rt/rtUTF8.h>

#include <cstddef>
#include <cstdint>

namespace adestool {

// Utf8Decode: the length of the valid UTF-8 sequence that starts at p,
// within n bytes (n >= 1), and its code point in *codePoint; 0 when the
// bytes are not one (an overlong form, a surrogate, above U+10FFFF, a
// sequence cut short). An ASCII byte is a sequence of length 1.
inline size_t Utf8Decode(const uint8_t* p, size_t n, uint32_t* codePoint) {
  unsigned int cp = 0;
  const int len = rtUTF8DecodeChar(reinterpret_cast<const char*>(p), n, &cp);
  if (len <= 0) return 0;
  *codePoint = cp;
  return static_cast<size_t>(len);
}

}  // namespace adestool

#endif
