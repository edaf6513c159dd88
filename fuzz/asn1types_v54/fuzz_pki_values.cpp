// fuzz_pki_values: the decode of each value class of AlgorithmIdentifier.h,
// Hash.h, IssuerSerial.h, CertId.h and TimeChoice.h on arbitrary bytes.
//
// Byte 0 selects the class (modulo the count below; the last is a
// SigningCertificateV2 read through the ESSCertIDv2 list traits); the rest is
// the DER.
// Oracle: that of ../common/value_round_trip.h. The classes' kept rules may
// change a decoded value on the way (ESSCertIDv2 drops SHA-256's parameters, a
// time loses its fraction and takes the alternative of its year, and such a
// time may then not encode), but from there on encode(decode(e)) must give e
// back byte for byte. Anything else aborts.
#include <korvex/asn1types/AlgorithmIdentifier.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/Hash.h>
#include <korvex/asn1types/IssuerSerial.h>
#include <korvex/asn1types/TimeChoice.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstdint>

#include "../common/value_round_trip.h"
#include "signing_certificate_v2_traits.h"

namespace {

using Korvex::CBlob;
using namespace Korvex::ASN1;
using korvexfuzz::RoundTrip;

// The value layer's classes behind one interface: decode, encode.
struct ListValue {
  CESSCertIDv2List certs;
  void decode(CBlob const& der) {
    asn1Decode<pkitest::SigningCertificateV2Certs_traits>(der, certs);
  }
  CBlob encode() const { return asn1Encode<pkitest::SigningCertificateV2Certs_traits>(certs); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
  if (size < 1 || size > 1 << 16) return 0;
  CBlob input(data + 1, static_cast<unsigned long>(size - 1));
  switch (data[0] % 11) {
    case 0: RoundTrip<CAlgorithmIdentifier>(input); break;
    case 1: RoundTrip<CAlgorithmIdentifierEx>(input); break;
    case 2: RoundTrip<COtherHashAlgAndValue>(input); break;
    case 3: RoundTrip<COtherHash>(input); break;
    case 4: RoundTrip<CIssuerSerial>(input); break;
    case 5: RoundTrip<CESSCertID>(input); break;
    case 6: RoundTrip<CESSCertIDv2>(input); break;
    case 7: RoundTrip<COtherCertID>(input); break;
    case 8: RoundTrip<CCertId>(input); break;
    case 9: RoundTrip<CTimeChoice>(input); break;
    default: RoundTrip<ListValue>(input); break;
  }
  return 0;
}
