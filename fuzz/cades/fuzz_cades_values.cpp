// fuzz_cades_values: the decode of each class of CAdESAttributes.h and of
// CResponderID on arbitrary bytes.
//
// Byte 0 selects the class (modulo the count below); the rest is the DER.
// Oracle: that of ../common/value_round_trip.h, with the value read back
// also equal to the first. The classes' rules may change a decoded value on
// the way (empty lists are left out, a Name or a BER form comes back as DER,
// fraction digits past the sixth are dropped) and a part decoded by another
// class may not encode again (0x80093101 only), but from there on
// decode(encode(v)) must equal v and encode it to the same bytes.
// Anything else aborts: a UTCTime that decodes lies in 1950..2049 and must
// never give 1901 on the way back.
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/ocsp/ResponderID.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstdint>

#include "../common/value_round_trip.h"

namespace {

using Korvex::CBlob;
namespace CAdES = Korvex::PKI::CAdES;

// RoundTrip: the shared oracle; these classes also compare equal when read
// back.
template <class Value>
void RoundTrip(CBlob const& input) {
  korvexfuzz::RoundTrip<Value, true>(input);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
  if (size < 1 || size > 1 << 16) return 0;
  CBlob input(data + 1, static_cast<unsigned long>(size - 1));
  switch (data[0] % 11) {
    case 0:
      RoundTrip<CAdES::CCrlIdentifier>(input);
      break;
    case 1:
      RoundTrip<CAdES::CCrlValidatedID>(input);
      break;
    case 2:
      RoundTrip<CAdES::CCRLListID>(input);
      break;
    case 3:
      RoundTrip<CAdES::COcspIdentifier>(input);
      break;
    case 4:
      RoundTrip<CAdES::COcspResponsesID>(input);
      break;
    case 5:
      RoundTrip<CAdES::COcspListID>(input);
      break;
    case 6:
      RoundTrip<CAdES::CCrlOcspRef>(input);
      break;
    case 7:
      RoundTrip<CAdES::CCompleteRevocationRefs>(input);
      break;
    case 8:
      RoundTrip<CAdES::CRevocationValues>(input);
      break;
    case 9:
      RoundTrip<CAdES::CCompleteCertificateRefs>(input);
      break;
    default:
      RoundTrip<Korvex::PKI::OCSP::CResponderID>(input);
      break;
  }
  return 0;
}
