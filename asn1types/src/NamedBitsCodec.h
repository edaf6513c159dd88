// NamedBitsCodec.h (internal): a 32-bit named-bit mask to and from the
// runtime's BIT STRING record.
#ifndef KORVEX_ASN1TYPES_SRC_NAMEDBITSCODEC_H
#define KORVEX_ASN1TYPES_SRC_NAMEDBITSCODEC_H

#include <korvex/asn1rt/asn1type.h>

namespace Korvex {
namespace ASN1 {
namespace detail {

// maskToBitString: rec holds the bits of mask up to the last one set (bit n
// of the mask is bit n of the string: byte n / 8, value 0x80 >> n % 8), in
// ctxt's heap (0x80093106 when it refuses). A zero mask is the empty string.
void maskToBitString(ASN1CTXT* ctxt, ASN1DynBitStr& rec, unsigned int mask);

// bitStringToMask: the mask of rec's bits. A set bit numbered 32 or above
// throws 0x80093101; unset bits beyond 31 are ignored.
unsigned int bitStringToMask(ASN1DynBitStr const& rec);

}  // namespace detail
}  // namespace ASN1
}  // namespace Korvex

#endif
