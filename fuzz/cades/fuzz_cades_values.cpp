// fuzz_cades_values: the decode of each class of CAdESAttributes.h and of
// CResponderID on arbitrary bytes.
//
// Byte 0 selects the class (modulo the count below); the rest is the DER.
// Oracle: a decode either succeeds or throws ATL::CAtlException with a code
// of the value layer. A decoded value is encoded again; the classes' rules
// may change it on the way (empty lists are left out, a Name or a BER form
// comes back as DER, fraction digits past the sixth are dropped) and a part
// decoded by another class may not encode again (0x80093101 only), but from
// there on decode(encode(v)) must equal v and encode it to the same bytes.
// Anything else aborts: a UTCTime that decodes lies in 1950..2049 and must
// never give 1901 on the way back.
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/ocsp/ResponderID.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstdint>
#include <cstdlib>

namespace {

using Korvex::CBlob;
namespace CAdES = Korvex::PKI::CAdES;

bool KnownCode(unsigned code) {
  return code == 0x80093101u || code == 0x80093106u || code == 0x80070057u || code == 0x8007000Eu;
}

template <class Value>
void RoundTrip(CBlob const& input) {
  Value first;
  try {
    first.decode(input);
  } catch (ATL::CAtlException const& e) {
    if (!KnownCode(static_cast<unsigned>(e.m_hr))) std::abort();
    return;
  }
  CBlob once;
  try {
    once = first.encode();
  } catch (ATL::CAtlException const& e) {
    if (static_cast<unsigned>(e.m_hr) != 0x80093101u) std::abort();
    return;
  }
  Value second;
  second.decode(once);  // what we wrote must read back: no catch
  if (!(second == first)) std::abort();
  CBlob twice = second.encode();
  if (!(once == twice)) std::abort();
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
