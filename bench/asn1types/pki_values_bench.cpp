// Certificate IDs and the time choice: encode and decode of CESSCertIDv2 lists
// of 1 and 1,000 entries through ASN1T__SeqOfESSCertIDv2_traits inside a
// SigningCertificateV2 record, and CTimeChoice both ways. OpenSSL's codecs of
// the same bytes are in pki_values_openssl_bench.cpp (its headers' macros
// clash with the catalogue's constants, so it has a file of its own).
// Run: asn1types_pki_bench --benchmark_filter='ESSCertIDv2|TimeChoice|OpenSSL'
#include <benchmark/benchmark.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/TimeChoice.h>

#include "pki_test_values.h"
#include "pki_values_bench.h"
#include "signing_certificate_v2_traits.h"

using Korvex::CBlob;
using Korvex::CDateTime;
using namespace Korvex::ASN1;

namespace {

// n ESSCertIDv2 as a signer writes them: SHA-256 (left out), a 32-byte hash,
// and an issuerSerial naming the issuer's directory name and a serial.
CESSCertIDv2List MakeCerts(long n) {
  CESSCertIDv2List certs;
  unsigned char hash[32];
  for (long i = 0; i < n; ++i) {
    for (unsigned k = 0; k < sizeof hash; ++k) hash[k] = static_cast<unsigned char>(i * 31 + k);
    CESSCertIDv2 id(CBlob(hash, sizeof hash));
    CIssuerSerial issuerSerial(pkitest::TestIssuer(), CBigInteger(0x100000ul + i));
    id.put_issuerSerial(&issuerSerial);
    certs.push_back(id);
  }
  return certs;
}

}  // namespace

namespace pkibench {

CBlob SigningCertificateV2Der(long n) {
  return asn1Encode<pkitest::SigningCertificateV2Certs_traits>(MakeCerts(n));
}

CDateTime TimeOfYear(long year) {
  return CDateTime(static_cast<unsigned>(year), 12, 31, 23, 59, 59, 500, 0);
}

CBlob TimeDer(long year) { return CTimeChoice(TimeOfYear(year)).encode(); }

}  // namespace pkibench

namespace {

void BM_ESSCertIDv2List_Encode(benchmark::State& state) {
  CESSCertIDv2List certs = MakeCerts(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(asn1Encode<pkitest::SigningCertificateV2Certs_traits>(certs));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ESSCertIDv2List_Encode)->Arg(1)->Arg(1000);

void BM_ESSCertIDv2List_Decode(benchmark::State& state) {
  CBlob der = pkibench::SigningCertificateV2Der(state.range(0));
  CESSCertIDv2List certs;
  for (auto _ : state) {
    asn1Decode<pkitest::SigningCertificateV2Certs_traits>(der, certs);
    benchmark::DoNotOptimize(certs.size());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetBytesProcessed(state.iterations() * static_cast<long>(der.cbData()));
}
BENCHMARK(BM_ESSCertIDv2List_Decode)->Arg(1)->Arg(1000);

// Time: arg 2049 gives UTCTime, 2050 GeneralizedTime.
void BM_TimeChoice_Encode(benchmark::State& state) {
  CTimeChoice time(pkibench::TimeOfYear(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(time.encode());
}
BENCHMARK(BM_TimeChoice_Encode)->Arg(2049)->Arg(2050);

void BM_TimeChoice_Decode(benchmark::State& state) {
  CBlob der = pkibench::TimeDer(state.range(0));
  CTimeChoice time;
  for (auto _ : state) {
    time.decode(der);
    benchmark::DoNotOptimize(time.get_time());
  }
}
BENCHMARK(BM_TimeChoice_Decode)->Arg(2049)->Arg(2050);

}  // namespace
