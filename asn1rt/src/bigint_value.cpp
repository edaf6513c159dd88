// bigint_value.cpp: sign-and-magnitude arithmetic for the big-integer text
// conversions. Hexadecimal and binary texts map straight onto bits; decimal
// goes through multiply-add and divide by 10^9 (quadratic, which is fine for
// the few hundred digits an X.509 serial number or RSA modulus has).
#include "bigint_value.h"

#include <korvex/asn1rt/asn1type.h>

#include <algorithm>

namespace Korvex {
namespace rt {
namespace {

constexpr uint32_t kDecimalChunk = 1000000000u;  // 10^9, the largest power of 10 in a limb
constexpr int kDecimalChunkDigits = 9;

int DigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 99;
}

bool IsPrefix(const char* p, char lower) { return p[0] == '0' && (p[1] | 0x20) == lower; }

}  // namespace

void BigValue::Trim() {
  while (!limbs_.empty() && limbs_.back() == 0) limbs_.pop_back();
  if (limbs_.empty()) negative_ = false;
}

void BigValue::MulAdd(uint32_t factor, uint32_t addend) {
  uint64_t carry = addend;
  for (uint32_t& limb : limbs_) {
    uint64_t product = static_cast<uint64_t>(limb) * factor + carry;
    limb = static_cast<uint32_t>(product);
    carry = product >> 32;
  }
  if (carry != 0) limbs_.push_back(static_cast<uint32_t>(carry));
}

uint32_t BigValue::DivideSmall(uint32_t divisor) {
  uint64_t remainder = 0;
  for (size_t i = limbs_.size(); i-- > 0;) {
    uint64_t current = (remainder << 32) | limbs_[i];
    limbs_[i] = static_cast<uint32_t>(current / divisor);
    remainder = current % divisor;
  }
  bool negative = negative_;
  Trim();
  negative_ = negative && !limbs_.empty();
  return static_cast<uint32_t>(remainder);
}

void BigValue::SetBits(const char* digits, size_t count, unsigned bitsPerDigit) {
  limbs_.assign((count * bitsPerDigit + 31) / 32, 0);
  size_t bit = 0;
  for (size_t i = count; i-- > 0; bit += bitsPerDigit) {
    uint32_t value = static_cast<uint32_t>(DigitValue(digits[i]));
    limbs_[bit / 32] |= value << (bit % 32);  // digits never straddle a limb: 32 % 4 == 0
  }
  Trim();
}

int BigValue::Parse(const char* text, int radix) {
  if (text == nullptr) return ASN_E_INVPARAM;
  if (radix != 0 && radix != 2 && radix != 10 && radix != 16) return ASN_E_INVPARAM;
  const char* p = text;
  bool negative = false;
  if (*p == '-') {
    negative = true;
    ++p;
  }
  int effective = radix;
  if ((radix == 0 || radix == 16) && IsPrefix(p, 'x')) {
    effective = 16;
    p += 2;
  } else if ((radix == 0 || radix == 2) && IsPrefix(p, 'b')) {
    effective = 2;
    p += 2;
  } else if (radix == 0) {
    effective = 10;
  }
  size_t count = 0;
  for (; p[count] != '\0'; ++count) {
    if (DigitValue(p[count]) >= effective) return ASN_E_INVBIGINT;
  }
  if (count == 0) return ASN_E_INVBIGINT;

  limbs_.clear();
  if (effective == 16) {
    SetBits(p, count, 4);
  } else if (effective == 2) {
    SetBits(p, count, 1);
  } else {
    limbs_.reserve(count / 9 + 1);
    size_t first = count % kDecimalChunkDigits;  // a short chunk first, then whole chunks
    if (first == 0) first = kDecimalChunkDigits;
    for (size_t at = 0; at < count;) {
      size_t length = at == 0 ? first : kDecimalChunkDigits;
      uint32_t chunk = 0, scale = 1;
      for (size_t i = 0; i < length; ++i) {
        chunk = chunk * 10 + static_cast<uint32_t>(p[at + i] - '0');
        scale *= 10;
      }
      MulAdd(scale, chunk);
      at += length;
    }
    Trim();
  }
  negative_ = negative && !limbs_.empty();
  return 0;
}

int BigValue::Format(int radix, std::string* out) const {
  if (radix != 2 && radix != 10 && radix != 16) return ASN_E_INVPARAM;
  out->clear();
  if (IsZero()) {
    out->push_back('0');
    return 0;
  }
  if (negative_) out->push_back('-');
  if (radix == 10) {
    BigValue rest = *this;
    std::string chunks;  // reversed digits
    while (!rest.IsZero()) {
      uint32_t chunk = rest.DivideSmall(kDecimalChunk);
      for (int i = 0; i < kDecimalChunkDigits; ++i) {
        chunks.push_back(static_cast<char>('0' + chunk % 10));
        chunk /= 10;
      }
    }
    while (chunks.size() > 1 && chunks.back() == '0') chunks.pop_back();
    out->append(chunks.rbegin(), chunks.rend());
    return 0;
  }
  static const char kDigits[] = "0123456789abcdef";
  unsigned bitsPerDigit = radix == 16 ? 4 : 1;
  out->append(radix == 16 ? "0x" : "0b");
  size_t totalBits = limbs_.size() * 32;
  bool started = false;
  for (size_t bit = totalBits; bit >= bitsPerDigit; bit -= bitsPerDigit) {
    size_t low = bit - bitsPerDigit;
    uint32_t digit = (limbs_[low / 32] >> (low % 32)) & ((1u << bitsPerDigit) - 1);
    if (digit == 0 && !started) continue;
    started = true;
    out->push_back(kDigits[digit]);
  }
  return 0;
}

void BigValue::FromUnsigned(const uint8_t* octets, size_t count) {
  negative_ = false;
  limbs_.assign((count + 3) / 4, 0);
  for (size_t i = 0; i < count; ++i) {
    size_t fromEnd = count - 1 - i;
    limbs_[fromEnd / 4] |= static_cast<uint32_t>(octets[i]) << (8 * (fromEnd % 4));
  }
  Trim();
}

void BigValue::FromTwosComplement(const uint8_t* octets, size_t count) {
  if (count == 0 || (octets[0] & 0x80) == 0) {
    FromUnsigned(octets, count);
    return;
  }
  // Negative: the magnitude is the two's complement of the octets, ~x + 1.
  std::vector<uint8_t> magnitude(octets, octets + count);
  bool carry = true;
  for (size_t i = count; i-- > 0;) {
    magnitude[i] = static_cast<uint8_t>(~magnitude[i]);
    if (carry) {
      magnitude[i] = static_cast<uint8_t>(magnitude[i] + 1);
      carry = magnitude[i] == 0;
    }
  }
  FromUnsigned(magnitude.data(), magnitude.size());
  negative_ = true;  // a set top bit is never zero: 80 00.. has magnitude 80 00..
}

std::vector<uint8_t> BigValue::MagnitudeOctets() const {
  std::vector<uint8_t> octets;
  octets.reserve(limbs_.size() * 4);
  for (size_t i = limbs_.size(); i-- > 0;) {
    for (int shift = 24; shift >= 0; shift -= 8) {
      uint8_t octet = static_cast<uint8_t>(limbs_[i] >> shift);
      if (octets.empty() && octet == 0) continue;
      octets.push_back(octet);
    }
  }
  return octets;
}

std::vector<uint8_t> BigValue::ToTwosComplement() const {
  std::vector<uint8_t> octets = MagnitudeOctets();
  if (!negative_) {
    // X.690 8.3.2: a positive value whose top bit is set needs a 00 sign octet.
    if (octets.empty() || (octets[0] & 0x80) != 0) octets.insert(octets.begin(), 0x00);
    return octets;
  }
  bool carry = true;
  for (size_t i = octets.size(); i-- > 0;) {
    octets[i] = static_cast<uint8_t>(~octets[i]);
    if (carry) {
      octets[i] = static_cast<uint8_t>(octets[i] + 1);
      carry = octets[i] == 0;
    }
  }
  if ((octets[0] & 0x80) == 0) octets.insert(octets.begin(), 0xFF);
  // X.690 8.3.2 b): no leading FF octet whose successor's top bit is set.
  size_t redundant = 0;
  while (octets.size() - redundant > 1 && octets[redundant] == 0xFF &&
         (octets[redundant + 1] & 0x80) != 0) {
    ++redundant;
  }
  octets.erase(octets.begin(), octets.begin() + static_cast<std::ptrdiff_t>(redundant));
  return octets;
}

int BigValue::CompareMagnitude(BigValue const& other) const {
  if (limbs_.size() != other.limbs_.size()) return limbs_.size() < other.limbs_.size() ? -1 : 1;
  for (size_t i = limbs_.size(); i-- > 0;) {
    if (limbs_[i] != other.limbs_[i]) return limbs_[i] < other.limbs_[i] ? -1 : 1;
  }
  return 0;
}

int BigValue::Compare(BigValue const& other) const {
  if (negative_ != other.negative_) return negative_ ? -1 : 1;
  int magnitude = CompareMagnitude(other);
  return negative_ ? -magnitude : magnitude;
}

}  // namespace rt
}  // namespace Korvex
