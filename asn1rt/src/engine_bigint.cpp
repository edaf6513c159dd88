// engine_bigint.cpp: big-integer text for the common case, without the general
// conversions of rtBigIntToText / rtBigIntFromText. Serial numbers, CRL and
// certificate numbers are non-negative and their text is hexadecimal ("0x" and
// lowercase digits without leading zeros, "0" for zero: the form xd_bigint
// writes); those are converted here digit by digit. Everything else (negative
// values, decimal text, malformed input and its statuses) goes through
// xd_bigint / xe_bigint, so the results are the same either way.
#include "engine_intern.h"

namespace Korvex {
namespace Asn1Engine {
namespace detail {

namespace {

const char kDigits[] = "0123456789abcdef";

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

int decodeBigInteger(ASN1CTXT* ctxt, const char** text, int len) {
  const ASN1UINT at = ctxt->buffer.byteIndex;
  const ASN1OCTET* p = ctxt->buffer.data + at;
  // X.690 8.3.2: minimal contents; the top bit clear: not negative.
  const bool simple = len > 0 && len != ASN_K_INDEFLEN && at <= ctxt->buffer.size &&
                      static_cast<ASN1UINT>(len) <= ctxt->buffer.size - at && !(p[0] & 0x80) &&
                      !(len > 1 && p[0] == 0 && !(p[1] & 0x80));
  if (!simple) {
    int stat = xd_bigint(ctxt, text, ASN1IMPL, len);
    return stat < 0 ? fail(ctxt, stat) : 0;
  }
  size_t n = static_cast<size_t>(len);
  while (n > 1 && *p == 0) {  // the one sign octet in front of a set top bit
    ++p;
    --n;
  }
  const bool zero = n == 1 && *p == 0;
  const bool odd = (*p >> 4) == 0;  // the first digit is the low nibble
  const size_t digits = zero ? 1 : 2 * n - (odd ? 1 : 0);
  char* out = static_cast<char*>(rtMemAlloc(ctxt, digits + (zero ? 1 : 3)));
  if (!out) return fail(ctxt, ASN_E_NOMEM);
  char* q = out;
  if (zero) {
    *q++ = '0';
  } else {
    *q++ = '0';
    *q++ = 'x';
    for (size_t i = 0; i < n; ++i) {
      if (i || !odd) *q++ = kDigits[p[i] >> 4];
      *q++ = kDigits[p[i] & 15];
    }
  }
  *q = '\0';
  ctxt->buffer.byteIndex = at + static_cast<ASN1UINT>(len);
  *text = out;
  return 0;
}

int encodeBigInteger(ASN1CTXT* ctxt, const char* text) {
  // "0x" and hexadecimal digits alone; anything else is xe_bigint's.
  const char* digits = text[0] == '0' && text[1] == 'x' ? text + 2 : nullptr;
  size_t count = 0;
  if (digits) {
    while (HexValue(digits[count]) >= 0) ++count;
    if (!count || digits[count] != '\0' || count > 2 * 4096) digits = nullptr;
  }
  if (!digits) {
    int len = xe_bigint(ctxt, text, ASN1IMPL);
    return len < 0 ? fail(ctxt, len) : len;
  }
  while (count > 1 && *digits == '0') {  // X.690 8.3.2: no leading zero octets
    ++digits;
    --count;
  }
  ASN1OCTET octets[4097];
  size_t n = 0;
  // An odd count puts one digit in the first octet (top bit clear); an even
  // count starting at 8 or above needs a sign octet to stay non-negative.
  const bool odd = count % 2 != 0;
  if (!odd && HexValue(digits[0]) >= 8) octets[n++] = 0;
  size_t i = 0;
  if (odd) octets[n++] = static_cast<ASN1OCTET>(HexValue(digits[i++]));
  for (; i < count; i += 2) {
    octets[n++] = static_cast<ASN1OCTET>(HexValue(digits[i]) << 4 | HexValue(digits[i + 1]));
  }
  int len = xe_memcpy(ctxt, octets, static_cast<ASN1UINT>(n));
  return len < 0 ? fail(ctxt, len) : len;
}

}  // namespace detail
}  // namespace Asn1Engine
}  // namespace Korvex
