// asn1cades_fuzz.cpp: fuzz target of the CAdES attribute module: the leading byte picks one
// of its types; the rest goes through the round-trip oracle.
#include "cades_types.h"
#include "roundtrip_oracle.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  size_t count = 0;
  const ::Korvex::Asn1Engine::TypeDesc* const* types = ::Korvex::Fuzz::CadesTypes(&count);
  ::Korvex::Fuzz::CheckOneOf(types, count, data, size);
  return 0;
}
