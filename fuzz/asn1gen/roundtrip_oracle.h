// roundtrip_oracle.h: the check every generated-module fuzz target runs.
#ifndef KORVEX_FUZZ_ASN1GEN_ROUNDTRIP_ORACLE_H
#define KORVEX_FUZZ_ASN1GEN_ROUNDTRIP_ORACLE_H

#include <korvex/asn1rt/asn1engine.h>

#include <cstddef>
#include <cstdint>

namespace Korvex {
namespace Fuzz {

// Decodes data as a value of desc. When it decodes: the value re-encodes; the
// encoding equals the input element when the input was DER (the encoding of
// the first decode decodes and re-encodes to itself, and to a value equal to
// the first one, compared member by member); a deep copy encodes the
// same; and free gives back every heap block decode and copy took. Any breach
// aborts.
void CheckRoundTrip(const Asn1Engine::TypeDesc* desc, const uint8_t* data, size_t size);

// The leading byte of the input picks one of count descriptors.
void CheckOneOf(const Asn1Engine::TypeDesc* const* descs, size_t count, const uint8_t* data,
                size_t size);

}  // namespace Fuzz
}  // namespace Korvex

#endif
