// catalogue_ocsp_tsp_fuzz.cpp: fuzz target of the catalogue modules of OCSP and the time-stamp
// protocol: the leading byte picks one of their types (the top-level ones first), the rest goes
// through the round-trip oracle. The list was written out from the modules' headers.
#include "catalogue_ocsp_tsp_types.h"
#include "roundtrip_oracle.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  size_t count = 0;
  const ::Korvex::Asn1Engine::TypeDesc* const* types = ::Korvex::Fuzz::OcspTspTypes(&count);
  ::Korvex::Fuzz::CheckOneOf(types, count, data, size);
  return 0;
}
