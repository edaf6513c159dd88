// Certificate IDs and the time choice: encode and decode of CESSCertIDv2 lists
// of 1 and 1,000 entries through ASN1T__SeqOfESSCertIDv2_traits inside a
// SigningCertificateV2 record, and CTimeChoice both ways, each beside
// OpenSSL's codec of the same bytes (ESS_SIGNING_CERT_V2, ASN1_TIME).
// Run: asn1types_pki_bench --benchmark_filter='ESSCertIDv2|TimeChoice|OpenSSL'
#include <benchmark/benchmark.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/TimeChoice.h>
#include <openssl/asn1.h>
#include <openssl/ess.h>

#include <ctime>

#include "pki_test_values.h"
#include "signing_certificate_v2_traits.h"

namespace {

using Korvex::CBlob;
using Korvex::CDateTime;
using namespace Korvex::ASN1;

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

void BM_ESSCertIDv2List_Encode(benchmark::State& state) {
  CESSCertIDv2List certs = MakeCerts(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(asn1Encode<pkitest::SigningCertificateV2Certs_traits>(certs));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ESSCertIDv2List_Encode)->Arg(1)->Arg(1000);

void BM_ESSCertIDv2List_Decode(benchmark::State& state) {
  CBlob der = asn1Encode<pkitest::SigningCertificateV2Certs_traits>(MakeCerts(state.range(0)));
  CESSCertIDv2List certs;
  for (auto _ : state) {
    asn1Decode<pkitest::SigningCertificateV2Certs_traits>(der, certs);
    benchmark::DoNotOptimize(certs.size());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetBytesProcessed(state.iterations() * static_cast<long>(der.cbData()));
}
BENCHMARK(BM_ESSCertIDv2List_Decode)->Arg(1)->Arg(1000);

// OpenSSL on the same DER: d2i to its structure, i2d back.
void BM_OpenSSL_SigningCertV2_Decode(benchmark::State& state) {
  CBlob der = asn1Encode<pkitest::SigningCertificateV2Certs_traits>(MakeCerts(state.range(0)));
  for (auto _ : state) {
    unsigned char const* p = der.pbData();
    ESS_SIGNING_CERT_V2* sc = d2i_ESS_SIGNING_CERT_V2(nullptr, &p, static_cast<long>(der.cbData()));
    if (!sc) state.SkipWithError("OpenSSL refused the DER");
    ESS_SIGNING_CERT_V2_free(sc);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_OpenSSL_SigningCertV2_Decode)->Arg(1)->Arg(1000);

void BM_OpenSSL_SigningCertV2_Encode(benchmark::State& state) {
  CBlob der = asn1Encode<pkitest::SigningCertificateV2Certs_traits>(MakeCerts(state.range(0)));
  unsigned char const* p = der.pbData();
  ESS_SIGNING_CERT_V2* sc = d2i_ESS_SIGNING_CERT_V2(nullptr, &p, static_cast<long>(der.cbData()));
  if (!sc) {
    state.SkipWithError("OpenSSL refused the DER");
    return;
  }
  for (auto _ : state) {
    unsigned char* out = nullptr;
    int n = i2d_ESS_SIGNING_CERT_V2(sc, &out);
    benchmark::DoNotOptimize(n);
    OPENSSL_free(out);
  }
  ESS_SIGNING_CERT_V2_free(sc);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_OpenSSL_SigningCertV2_Encode)->Arg(1)->Arg(1000);

// Time: arg 2049 gives UTCTime, 2050 GeneralizedTime.
CDateTime TimeOfYear(long year) {
  return CDateTime(static_cast<unsigned>(year), 12, 31, 23, 59, 59, 500, 0);
}

void BM_TimeChoice_Encode(benchmark::State& state) {
  CTimeChoice time(TimeOfYear(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(time.encode());
}
BENCHMARK(BM_TimeChoice_Encode)->Arg(2049)->Arg(2050);

void BM_TimeChoice_Decode(benchmark::State& state) {
  CBlob der = CTimeChoice(TimeOfYear(state.range(0))).encode();
  CTimeChoice time;
  for (auto _ : state) {
    time.decode(der);
    benchmark::DoNotOptimize(time.get_time());
  }
}
BENCHMARK(BM_TimeChoice_Decode)->Arg(2049)->Arg(2050);

void BM_OpenSSL_Time_Encode(benchmark::State& state) {
  time_t t = static_cast<time_t>(TimeOfYear(state.range(0)).getTime());
  for (auto _ : state) {
    ASN1_TIME* time = ASN1_TIME_set(nullptr, t);  // UTCTime through 2049 (RFC 5280)
    unsigned char* out = nullptr;
    benchmark::DoNotOptimize(i2d_ASN1_TIME(time, &out));
    OPENSSL_free(out);
    ASN1_TIME_free(time);
  }
}
BENCHMARK(BM_OpenSSL_Time_Encode)->Arg(2049)->Arg(2050);

void BM_OpenSSL_Time_Decode(benchmark::State& state) {
  CBlob der = CTimeChoice(TimeOfYear(state.range(0))).encode();
  struct tm fields;
  for (auto _ : state) {
    unsigned char const* p = der.pbData();
    ASN1_TIME* time = d2i_ASN1_TIME(nullptr, &p, static_cast<long>(der.cbData()));
    if (!time || !ASN1_TIME_to_tm(time, &fields)) state.SkipWithError("OpenSSL refused the DER");
    ASN1_TIME_free(time);
  }
}
BENCHMARK(BM_OpenSSL_Time_Decode)->Arg(2049)->Arg(2050);

}  // namespace
