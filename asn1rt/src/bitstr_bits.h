// bitstr_bits.h: bit addressing shared by the ASN1CBitStr sources.
#ifndef KORVEX_ASN1RT_SRC_BITSTR_BITS_H
#define KORVEX_ASN1RT_SRC_BITSTR_BITS_H

#include <korvex/asn1rt/asn1type.h>
#include <stddef.h>

namespace Korvex {
namespace rt {

// Bit n is in octet n / 8, counted from the top bit (X.690 8.6.2).
inline ASN1OCTET BitMask(ASN1UINT bit) { return static_cast<ASN1OCTET>(0x80u >> (bit % 8)); }

inline size_t OctetsFor(ASN1UINT bits) { return (static_cast<size_t>(bits) + 7) / 8; }

// LastOctetMask: the bits of the last octet that belong to a string of
// `bits` bits (0xFF when it ends on an octet boundary).
inline ASN1OCTET LastOctetMask(ASN1UINT bits) {
  return bits % 8 == 0 ? 0xFF : static_cast<ASN1OCTET>(0xFF00u >> (bits % 8));
}

// ZeroBits clears the bits of [from, to).
inline void ZeroBits(ASN1OCTET* octets, ASN1UINT from, ASN1UINT to) {
  for (ASN1UINT i = from; i < to;) {
    if (i % 8 == 0 && to - i >= 8) {
      octets[i / 8] = 0;
      i += 8;
    } else {
      octets[i / 8] = static_cast<ASN1OCTET>(octets[i / 8] & ~BitMask(i));
      ++i;
    }
  }
}

}  // namespace rt
}  // namespace Korvex

#endif
