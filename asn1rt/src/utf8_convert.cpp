// utf8_convert.cpp: whole-text conversions between UTF-8 and wide, 32-bit
// and 16-bit units. Every conversion checks the whole input before it reports
// a size, so a size query and the real conversion agree.
#include <korvex/asn1rt/asn1type.h>
#include <korvex/asn1rt/rtUTF8.h>
#include <limits.h>
#include <string.h>

namespace {

size_t TextLength(const char* text) { return strlen(text); }
size_t TextLength(const wchar_t* text) { return wcslen(text); }

// DecodeUTF8 reads `length` bytes of UTF-8 into one unit per character;
// a code point above `maxCodePoint` cannot be stored in the target form.
// Returns the number of units the target needs, or a status.
template <typename Unit>
int DecodeUTF8(const char* text, size_t length, Unit* out, size_t capacity, bool terminate,
               unsigned int maxCodePoint) {
  if (text == nullptr && length != 0) return ASN_E_INVPARAM;
  size_t units = 0;
  for (size_t at = 0; at < length;) {
    unsigned int codePoint = 0;
    int step = rtUTF8DecodeChar(text + at, length - at, &codePoint);
    if (step < 0) return step;
    if (codePoint > maxCodePoint) return ASN_E_INVUTF8;
    if (out != nullptr) {
      if (units >= capacity) return ASN_E_STROVFLW;
      out[units] = static_cast<Unit>(codePoint);
    }
    at += static_cast<size_t>(step);
    if (++units >= static_cast<size_t>(INT_MAX)) return ASN_E_STROVFLW;
  }
  if (out != nullptr && terminate) {
    if (units >= capacity) return ASN_E_STROVFLW;
    out[units] = 0;
  }
  return static_cast<int>(units);
}

// EncodeUTF8 writes `count` units as NUL-terminated UTF-8; `refuse` names
// units that are no character before they are widened to a code point.
// Returns the byte count without the NUL, or a status.
template <typename Unit, typename Check>
int EncodeUTF8(const Unit* units, size_t count, char* out, size_t capacity, Check refuse) {
  if (units == nullptr && count != 0) return ASN_E_INVPARAM;
  size_t bytes = 0;
  for (size_t i = 0; i < count; ++i) {
    if (refuse(units[i])) return ASN_E_INVUTF8;
    unsigned int codePoint = static_cast<unsigned int>(units[i]);
    int step;
    if (out == nullptr) {
      step = rtUTF8EncodeChar(codePoint, nullptr, 0);
    } else {
      step = rtUTF8EncodeChar(codePoint, out + bytes, bytes < capacity ? capacity - bytes : 0);
    }
    if (step < 0) return step;
    bytes += static_cast<size_t>(step);
    if (bytes >= static_cast<size_t>(INT_MAX)) return ASN_E_STROVFLW;
  }
  if (out != nullptr) {
    if (bytes >= capacity) return ASN_E_STROVFLW;
    out[bytes] = '\0';
  }
  return static_cast<int>(bytes);
}

bool NeverRefused(unsigned int) { return false; }

}  // namespace

extern "C" {

int rtUTF8ToWCS(const char* text, wchar_t* out, size_t capacity) {
  if (text == nullptr) return ASN_E_INVPARAM;
  return DecodeUTF8(text, TextLength(text), out, capacity, true, 0x10FFFF);
}

int rtWCSToUTF8(const wchar_t* text, char* out, size_t capacity) {
  if (text == nullptr) return ASN_E_INVPARAM;
  // wchar_t is signed: a negative unit is no character (rtUTF8EncodeChar
  // refuses the large unsigned value it turns into).
  return EncodeUTF8(text, TextLength(text), out, capacity, [](wchar_t unit) { return unit < 0; });
}

int rtUTF8ToUCS4(const char* text, size_t length, unsigned int* out, size_t capacity) {
  return DecodeUTF8(text, length, out, capacity, false, 0x10FFFF);
}

int rtUCS4ToUTF8(const unsigned int* units, size_t count, char* out, size_t capacity) {
  return EncodeUTF8(units, count, out, capacity, NeverRefused);
}

int rtUTF8ToUCS2(const char* text, size_t length, unsigned short* out, size_t capacity) {
  return DecodeUTF8(text, length, out, capacity, false, 0xFFFF);
}

int rtUCS2ToUTF8(const unsigned short* units, size_t count, char* out, size_t capacity) {
  // Surrogate units are refused by rtUTF8EncodeChar: BMPString is UCS-2.
  return EncodeUTF8(units, count, out, capacity, NeverRefused);
}

}  // extern "C"
