// utf8_codec.cpp: one UTF-8 character at a time (RFC 3629 section 4 table of
// well-formed byte sequences), and whole-text validation.
#include <korvex/asn1rt/asn1type.h>
#include <korvex/asn1rt/rtUTF8.h>
#include <limits.h>

namespace {

bool IsContinuation(unsigned char octet) { return (octet & 0xC0) == 0x80; }

}  // namespace

extern "C" {

int rtUTF8DecodeChar(const char* text, size_t length, unsigned int* codePoint) {
  if (text == nullptr) return ASN_E_INVPARAM;
  if (length == 0) return ASN_E_INVUTF8;
  const unsigned char* s = reinterpret_cast<const unsigned char*>(text);
  unsigned char lead = s[0];
  int count;
  unsigned int value;
  // The second octet's range depends on the lead octet: this is what refuses
  // overlong forms (E0 80..9F, F0 80..8F), surrogates (ED A0..BF) and values
  // above U+10FFFF (F4 90..BF); C0, C1 and F5..FF never start a sequence.
  unsigned char secondLow = 0x80, secondHigh = 0xBF;
  if (lead < 0x80) {
    if (codePoint) *codePoint = lead;
    return 1;
  } else if (lead >= 0xC2 && lead <= 0xDF) {
    count = 2;
    value = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    count = 3;
    value = lead & 0x0F;
    if (lead == 0xE0) secondLow = 0xA0;
    if (lead == 0xED) secondHigh = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    count = 4;
    value = lead & 0x07;
    if (lead == 0xF0) secondLow = 0x90;
    if (lead == 0xF4) secondHigh = 0x8F;
  } else {
    return ASN_E_INVUTF8;
  }
  if (length < static_cast<size_t>(count)) return ASN_E_INVUTF8;
  if (s[1] < secondLow || s[1] > secondHigh) return ASN_E_INVUTF8;
  for (int i = 1; i < count; ++i) {
    if (!IsContinuation(s[i])) return ASN_E_INVUTF8;
    value = (value << 6) | (s[i] & 0x3F);
  }
  if (codePoint) *codePoint = value;
  return count;
}

int rtUTF8EncodeChar(unsigned int codePoint, char* out, size_t capacity) {
  if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) return ASN_E_INVUTF8;
  int count = codePoint < 0x80 ? 1 : codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
  if (out == nullptr) return count;
  if (capacity < static_cast<size_t>(count)) return ASN_E_STROVFLW;
  unsigned char* o = reinterpret_cast<unsigned char*>(out);
  static const unsigned char kLeadMark[5] = {0, 0x00, 0xC0, 0xE0, 0xF0};
  for (int i = count - 1; i > 0; --i) {
    o[i] = static_cast<unsigned char>(0x80 | (codePoint & 0x3F));
    codePoint >>= 6;
  }
  o[0] = static_cast<unsigned char>(kLeadMark[count] | codePoint);
  return count;
}

int rtUTF8Validate(const char* text, size_t length) {
  if (text == nullptr && length != 0) return ASN_E_INVPARAM;
  size_t characters = 0;
  for (size_t at = 0; at < length;) {
    // Runs of ASCII (most names and identifiers) are one character per octet.
    if (static_cast<unsigned char>(text[at]) < 0x80) {
      ++at;
      if (++characters > static_cast<size_t>(INT_MAX)) return ASN_E_STROVFLW;
      continue;
    }
    int step = rtUTF8DecodeChar(text + at, length - at, nullptr);
    if (step < 0) return step;
    at += static_cast<size_t>(step);
    if (++characters > static_cast<size_t>(INT_MAX)) return ASN_E_STROVFLW;
  }
  return static_cast<int>(characters);
}

int rtUTF8Len(const char* text) {
  if (text == nullptr) return ASN_E_INVPARAM;
  size_t length = 0;
  while (text[length] != '\0') ++length;
  return rtUTF8Validate(text, length);
}

}  // extern "C"
