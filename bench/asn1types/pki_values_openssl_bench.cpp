// OpenSSL's codecs on the DER of pki_values_bench.cpp: ESS_SIGNING_CERT_V2
// (d2i to its structure, i2d back) and ASN1_TIME, the peers of
// BM_ESSCertIDv2List_* and BM_TimeChoice_*.
#include <benchmark/benchmark.h>
#include <openssl/asn1.h>
#include <openssl/crypto.h>
#include <openssl/ess.h>

#include <ctime>

#include "pki_values_bench.h"

namespace {

using Korvex::CBlob;

void BM_OpenSSL_SigningCertV2_Decode(benchmark::State& state) {
  CBlob der = pkibench::SigningCertificateV2Der(state.range(0));
  for (auto _ : state) {
    unsigned char const* p = der.pbData();
    ESS_SIGNING_CERT_V2* sc = d2i_ESS_SIGNING_CERT_V2(nullptr, &p, static_cast<long>(der.cbData()));
    if (!sc) {
      state.SkipWithError("OpenSSL refused the DER");
      break;
    }
    ESS_SIGNING_CERT_V2_free(sc);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_OpenSSL_SigningCertV2_Decode)->Arg(1)->Arg(1000);

void BM_OpenSSL_SigningCertV2_Encode(benchmark::State& state) {
  CBlob der = pkibench::SigningCertificateV2Der(state.range(0));
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

void BM_OpenSSL_Time_Encode(benchmark::State& state) {
  time_t t = static_cast<time_t>(pkibench::TimeOfYear(state.range(0)).getTime());
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
  CBlob der = pkibench::TimeDer(state.range(0));
  struct tm fields;
  for (auto _ : state) {
    unsigned char const* p = der.pbData();
    ASN1_TIME* time = d2i_ASN1_TIME(nullptr, &p, static_cast<long>(der.cbData()));
    bool ok = time && ASN1_TIME_to_tm(time, &fields);
    ASN1_TIME_free(time);
    if (!ok) {
      state.SkipWithError("OpenSSL refused the DER");
      break;
    }
  }
}
BENCHMARK(BM_OpenSSL_Time_Decode)->Arg(2049)->Arg(2050);

}  // namespace
