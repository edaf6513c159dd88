// bigint_text.cpp: the C functions of rtBigInt.h over BigValue.
#include <korvex/asn1rt/asn1type.h>
#include <korvex/asn1rt/rtBigInt.h>
#include <limits.h>
#include <string.h>

#include <new>

#include "bigint_value.h"

using Korvex::rt::BigValue;

namespace {

int CopyOctets(std::vector<uint8_t> const& value, unsigned char* octets, size_t capacity) {
  if (value.size() > static_cast<size_t>(INT_MAX)) return ASN_E_STROVFLW;
  if (octets != nullptr) {
    if (capacity < value.size()) return ASN_E_STROVFLW;
    memcpy(octets, value.data(), value.size());
  }
  return static_cast<int>(value.size());
}

int FromText(const char* text, int radix, bool mustBeNonNegative, unsigned char* octets,
             size_t capacity) {
  try {
    BigValue value;
    int status = value.Parse(text, radix);
    if (status != 0) return status;
    if (mustBeNonNegative && value.IsNegative()) return ASN_E_INVBIGINT;
    return CopyOctets(value.ToTwosComplement(), octets, capacity);
  } catch (std::bad_alloc const&) {
    return ASN_E_NOMEM;
  }
}

int ToText(const unsigned char* octets, size_t numocts, bool asUnsigned, int radix, char* text,
           size_t capacity) {
  if (octets == nullptr && numocts != 0) return ASN_E_INVPARAM;
  if (radix != 2 && radix != 10 && radix != 16) return ASN_E_INVPARAM;
  try {
    BigValue value;
    if (asUnsigned) {
      value.FromUnsigned(octets, numocts);
    } else {
      value.FromTwosComplement(octets, numocts);
    }
    std::string formatted;
    int status = value.Format(radix, &formatted);
    if (status != 0) return status;
    if (formatted.size() >= static_cast<size_t>(INT_MAX)) return ASN_E_STROVFLW;
    if (text != nullptr) {
      if (capacity <= formatted.size()) return ASN_E_STROVFLW;
      memcpy(text, formatted.c_str(), formatted.size() + 1);
    }
    return static_cast<int>(formatted.size());
  } catch (std::bad_alloc const&) {
    return ASN_E_NOMEM;
  }
}

}  // namespace

extern "C" {

int rtBigIntFromText(const char* text, int radix, unsigned char* octets, size_t capacity) {
  return FromText(text, radix, false, octets, capacity);
}

int rtBigIntFromTextUnsigned(const char* text, int radix, unsigned char* octets, size_t capacity) {
  return FromText(text, radix, true, octets, capacity);
}

int rtBigIntToText(const unsigned char* octets, size_t numocts, int radix, char* text,
                   size_t capacity) {
  return ToText(octets, numocts, false, radix, text, capacity);
}

int rtBigIntUnsignedToText(const unsigned char* octets, size_t numocts, int radix, char* text,
                           size_t capacity) {
  return ToText(octets, numocts, true, radix, text, capacity);
}

int rtBigIntCompareText(const char* left, const char* right, int* result) {
  if (left == nullptr || right == nullptr || result == nullptr) return ASN_E_INVPARAM;
  try {
    BigValue a, b;
    if (a.Parse(left, RT_BIGINT_RADIX_AUTO) != 0 || b.Parse(right, RT_BIGINT_RADIX_AUTO) != 0) {
      return ASN_E_INVBIGINT;
    }
    *result = a.Compare(b);
    return 0;
  } catch (std::bad_alloc const&) {
    return ASN_E_NOMEM;
  }
}

}  // extern "C"
