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
// aborts. With carving, the decode context's heap cuts small blocks from chunks
// (rtMemHeapSetCarving), and every carved block must be freed too.
void CheckRoundTrip(const Asn1Engine::TypeDesc* desc, const uint8_t* data, size_t size,
                    bool carving = false);

// The leading byte of the input picks one of count descriptors (byte % count,
// as the seeds were written) and its top bit switches carving on, so both heaps
// are fuzzed. Lists of up to 128 types reach every type in both modes; in
// longer lists the first 256 - count types (the top-level ones) do.
void CheckOneOf(const Asn1Engine::TypeDesc* const* descs, size_t count, const uint8_t* data,
                size_t size);

}  // namespace Fuzz
}  // namespace Korvex

#endif
