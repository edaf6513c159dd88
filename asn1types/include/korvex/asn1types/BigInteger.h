// korvex/asn1types/BigInteger.h: an integer of any size held as bytes.
#ifndef KORVEX_ASN1TYPES_BIGINTEGER_H
#define KORVEX_ASN1TYPES_BIGINTEGER_H

#include <korvex/core/Blob.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

struct CBigIntegerImpl;

// CBigInteger: a signed integer held as big-endian two's-complement bytes (the
// contents octets of an ASN.1 INTEGER, X.690 8.3): a first byte with its top
// bit set is negative. Bytes given to a constructor or put_value are kept as
// they are (redundant leading 00 or FF bytes included); results of arithmetic
// and decoding are minimal. No bytes at all is zero. Comparison is by value,
// so 00 7F equals 7F. A value class: one owned implementation, deep copies.
class KORVEX_API CBigInteger {
 public:
  // CBigInteger(): zero, held as no bytes.
  CBigInteger();
  // CBigInteger(bytes, n): n big-endian two's-complement bytes; null bytes with
  // n > 0 throw 0x80070057.
  CBigInteger(unsigned char const* bytes, unsigned long n);
  // CBigInteger(value): the non-negative value in minimal bytes (0x80 is 00 80).
  explicit CBigInteger(unsigned long value);
  CBigInteger(CBigInteger const& other);
  CBigInteger& operator=(CBigInteger const& other);
  ~CBigInteger();
  void swap(CBigInteger& other) noexcept;

  // get_value: the bytes as held. put_value: replaces them (kept as given).
  CBlob const& get_value() const;
  void put_value(CBlob const& bytes);

  // isNegative: whether the value is below zero.
  bool isNegative() const;

  // increment adds n (which may be negative); add adds other. Both work in
  // two's complement of unbounded width (7F + 1 is 00 80, FF + 1 is 00) and
  // leave minimal bytes. Return *this.
  CBigInteger& increment(int n);
  CBigInteger& add(CBigInteger const& other);
  // ++x and x++: increment(1).
  CBigInteger& operator++();
  CBigInteger operator++(int);

  // abs: the absolute value, in minimal bytes (-0x80 gives 00 80).
  CBigInteger abs() const;

  // compare: -1, 0 or 1 as this value is below, equal to or above other's.
  int compare(CBigInteger const& other) const;

  // encode: the DER INTEGER of the value (zero, also when held as no bytes,
  // is 02 01 00). decode: replaces the value with that of a DER/BER INTEGER
  // (minimal bytes). Failures throw 0x80093101 (decode leaves the value alone).
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  CBigIntegerImpl* m_impl;
};

// Comparison by value (compare).
KORVEX_API bool operator==(CBigInteger const& left, CBigInteger const& right);
KORVEX_API bool operator!=(CBigInteger const& left, CBigInteger const& right);
KORVEX_API bool operator<(CBigInteger const& left, CBigInteger const& right);
KORVEX_API bool operator<=(CBigInteger const& left, CBigInteger const& right);
KORVEX_API bool operator>(CBigInteger const& left, CBigInteger const& right);
KORVEX_API bool operator>=(CBigInteger const& left, CBigInteger const& right);

}  // namespace ASN1
}  // namespace Korvex

#endif
