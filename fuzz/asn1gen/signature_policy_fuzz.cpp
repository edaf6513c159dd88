// signature_policy_fuzz.cpp: fuzz target of the signature-policy module: the leading byte picks one
// of its types; the rest goes through the round-trip oracle.
#include "roundtrip_oracle.h"
#include "signature_policy_types.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  size_t count = 0;
  const ::Korvex::Asn1Engine::TypeDesc* const* types = ::Korvex::Fuzz::SignaturePolicyTypes(&count);
  ::Korvex::Fuzz::CheckOneOf(types, count, data, size);
  return 0;
}
