// korvex/asn1types/NamedBits.h: the common part of the value classes over a
// BIT STRING with named bits (ReasonFlags, KeyUsage, PKIFailureInfo).
#ifndef KORVEX_ASN1TYPES_NAMEDBITS_H
#define KORVEX_ASN1TYPES_NAMEDBITS_H

#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// CNamedBits holds the first 32 bits of a named-bit BIT STRING as a mask:
// bit number n (the ASN.1 named-bit number, counted from the first bit on the
// wire) is `1u << n`. Encoding writes the bits up to the last one set (DER
// drops trailing zero bits, X.690 11.2.2); decoding refuses a value that sets
// a bit numbered 32 or above (0x80093101), since the mask cannot hold it.
// The derived classes add the names of their bits, encode() and decode().
class KORVEX_API CNamedBits {
 public:
  // kMaxBits: the number of bits a value can hold.
  static constexpr unsigned int kMaxBits = 32;

  // get_flags: the mask of the set bits.
  unsigned int get_flags() const;
  // put_flags: replaces every bit with the bits of mask.
  void put_flags(unsigned int mask);
  // get_bit: whether bit n is set (false for n of 32 or more).
  bool get_bit(unsigned int n) const;
  // put_bit: sets or clears bit n; n of 32 or more throws 0x80070057.
  void put_bit(unsigned int n, bool on = true);
  // empty: whether no bit is set.
  bool empty() const { return get_flags() == 0; }

 protected:
  // A new value has no bit set.
  CNamedBits();
  explicit CNamedBits(unsigned int mask);
  CNamedBits(CNamedBits const& other);
  CNamedBits& operator=(CNamedBits const& other);
  ~CNamedBits();

 private:
  struct Impl;
  Impl* m_impl;
};

}  // namespace ASN1
}  // namespace Korvex

#endif
