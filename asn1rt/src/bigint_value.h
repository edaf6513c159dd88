// bigint_value.h: the arbitrary-precision integer behind the big-integer text
// functions (internal to the runtime).
//
// A value is a sign and a magnitude of 32-bit limbs, least significant first,
// with no zero limb at the top (zero is no limbs, never negative). Only the
// operations the text and octet conversions need are offered.
#ifndef KORVEX_ASN1RT_SRC_BIGINT_VALUE_H
#define KORVEX_ASN1RT_SRC_BIGINT_VALUE_H

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

namespace Korvex {
namespace rt {

class BigValue {
 public:
  bool IsZero() const { return limbs_.empty(); }
  bool IsNegative() const { return negative_; }

  // Parse accepts the text grammar of rtBigInt.h; returns 0, -9 or -30.
  int Parse(const char* text, int radix);
  // Format writes the minimal text in radix 2, 10 or 16; returns 0 or -30.
  int Format(int radix, std::string* out) const;

  // FromTwosComplement reads big-endian two's-complement octets (none: zero).
  void FromTwosComplement(const uint8_t* octets, size_t count);
  // FromUnsigned reads big-endian octets as a non-negative magnitude.
  void FromUnsigned(const uint8_t* octets, size_t count);
  // ToTwosComplement gives the minimal two's-complement octets (X.690 8.3.2).
  std::vector<uint8_t> ToTwosComplement() const;

  // Compare orders two values: -1, 0 or 1.
  int Compare(BigValue const& other) const;

 private:
  void Trim();
  void MulAdd(uint32_t factor, uint32_t addend);
  uint32_t DivideSmall(uint32_t divisor);        // returns the remainder
  std::vector<uint8_t> MagnitudeOctets() const;  // minimal big-endian, empty for zero
  int CompareMagnitude(BigValue const& other) const;
  void SetBits(const char* digits, size_t count, unsigned bitsPerDigit);

  bool negative_ = false;
  std::vector<uint32_t> limbs_;
};

}  // namespace rt
}  // namespace Korvex

#endif
