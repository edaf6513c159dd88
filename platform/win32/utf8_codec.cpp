// Strict UTF-8 decoding and encoding (Unicode Standard table 3-7, RFC 3629).
#include "utf8_codec.h"

namespace korvex::utf8 {

uint32_t Decode(const unsigned char* s, size_t n, size_t* used) {
  const unsigned char lead = s[0];
  if (lead < 0x80) {
    *used = 1;
    return lead;
  }
  // The lead byte fixes the number of trailing bytes and the range allowed for
  // the first of them; the narrowed ranges exclude overlong forms (E0, F0),
  // surrogates (ED) and code points above U+10FFFF (F4). C0, C1 and F5..FF
  // never start a well-formed sequence.
  size_t trailing;
  uint32_t cp;
  unsigned char low = 0x80, high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    trailing = 1;
    cp = lead & 0x1Fu;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    trailing = 2;
    cp = lead & 0x0Fu;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    trailing = 3;
    cp = lead & 0x07u;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    *used = 1;
    return kInvalid;
  }
  size_t i = 1;
  for (; i <= trailing; ++i) {
    if (i >= n || s[i] < low || s[i] > high) {
      *used = i;  // the bytes so far form the maximal subpart
      return kInvalid;
    }
    cp = (cp << 6) | (s[i] & 0x3Fu);
    low = 0x80;
    high = 0xBF;
  }
  *used = i;
  return cp;
}

size_t Encode(uint32_t cp, unsigned char out[4]) {
  if (cp < 0x80) {
    out[0] = static_cast<unsigned char>(cp);
    return 1;
  }
  if (cp < 0x800) {
    out[0] = static_cast<unsigned char>(0xC0 | (cp >> 6));
    out[1] = static_cast<unsigned char>(0x80 | (cp & 0x3F));
    return 2;
  }
  if (cp < 0x10000) {
    out[0] = static_cast<unsigned char>(0xE0 | (cp >> 12));
    out[1] = static_cast<unsigned char>(0x80 | ((cp >> 6) & 0x3F));
    out[2] = static_cast<unsigned char>(0x80 | (cp & 0x3F));
    return 3;
  }
  out[0] = static_cast<unsigned char>(0xF0 | (cp >> 18));
  out[1] = static_cast<unsigned char>(0x80 | ((cp >> 12) & 0x3F));
  out[2] = static_cast<unsigned char>(0x80 | ((cp >> 6) & 0x3F));
  out[3] = static_cast<unsigned char>(0x80 | (cp & 0x3F));
  return 4;
}

}  // namespace korvex::utf8
