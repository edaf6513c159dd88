// pki_values_bench.h: the inputs shared by the value-class benchmarks and
// their OpenSSL peers.
#ifndef KORVEX_BENCH_ASN1TYPES_PKI_VALUES_BENCH_H
#define KORVEX_BENCH_ASN1TYPES_PKI_VALUES_BENCH_H

#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>

namespace pkibench {

// SigningCertificateV2Der: the DER of a SigningCertificateV2 of n ESSCertIDv2
// (SHA-256 left out, 32-byte hash, issuerSerial), as our encoder writes it.
Korvex::CBlob SigningCertificateV2Der(long n);
// TimeOfYear: 31 December of year, 23:59:59.500; TimeDer: its Time DER
// (UTCTime through 2049, GeneralizedTime from 2050).
Korvex::CDateTime TimeOfYear(long year);
Korvex::CBlob TimeDer(long year);

}  // namespace pkibench

#endif
