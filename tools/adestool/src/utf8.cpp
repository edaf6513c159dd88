// utf8.cpp: Utf8Decode.
#include "utf8.h"

namespace adestool {

size_t Utf8Decode(const uint8_t* p, size_t n, uint32_t* codePoint) {
  const uint8_t c = p[0];
  if (c < 0x80) {
    *codePoint = c;
    return 1;
  }
  size_t len;
  uint32_t min;
  uint32_t cp;
  if ((c & 0xE0) == 0xC0) {
    len = 2, min = 0x80, cp = c & 0x1F;
  } else if ((c & 0xF0) == 0xE0) {
    len = 3, min = 0x800, cp = c & 0x0F;
  } else if ((c & 0xF8) == 0xF0) {
    len = 4, min = 0x10000, cp = c & 0x07;
  } else {
    return 0;
  }
  if (n < len) return 0;
  for (size_t k = 1; k < len; ++k) {
    if ((p[k] & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (p[k] & 0x3F);
  }
  if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  *codePoint = cp;
  return len;
}

}  // namespace adestool
