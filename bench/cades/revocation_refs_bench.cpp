// The CAdES revocation references and values: CCompleteRevocationRefs of 1,
// 100 and 10,000 references (each a CrlOcspRef with one CRL reference --
// hash, issuer, time and number of the intermediate CA's CRL -- and one OCSP
// reference -- responder, producedAt and hash of the fixture response) and
// CRevocationValues with 100 CRLs (tests/data/crl/intermediate-ca.crl),
// encoded and decoded. OpenSSL has no CAdES types; its generic SEQUENCE
// reader and writer (d2i/i2d_ASN1_SEQUENCE_ANY) on the same bytes are the
// reference point: one level parsed, against our full typed decode.
// Run: cades_bench --benchmark_filter='RevocationRefs|RevocationValues'
#include <benchmark/benchmark.h>
#include <korvex/cades/CAdESAttributes.h>
#include <openssl/asn1.h>
#include <openssl/asn1t.h>

#include <string>

#include "../common/cades_samples.h"

namespace {

using Korvex::CBlob;
using Korvex::CBlobList;
using Korvex::CDateTime;
using Korvex::ASN1::COtherHash;
namespace CAdES = Korvex::PKI::CAdES;

CBlob Fixture(std::string const& name) {
  CBlob blob;
  blob.readFromFile((std::string(KORVEX_TEST_DATA_DIR) + "/" + name).c_str());
  return blob;
}

CAdES::CCompleteRevocationRefs MakeRefs(long count) {
  return Korvex::Bench::SampleRevocationRefs(Fixture("crl/intermediate-ca.crl"), count);
}

CAdES::CRevocationValues MakeValues(long count) {
  CBlobList crls(static_cast<std::size_t>(count), Fixture("crl/intermediate-ca.crl"));
  CAdES::CRevocationValues values;
  values.put_crlVals(&crls);
  return values;
}

void BM_RevocationRefsEncode(benchmark::State& state) {
  CAdES::CCompleteRevocationRefs refs = MakeRefs(state.range(0));
  for (auto _ : state) {
    CBlob der = refs.encode();
    benchmark::DoNotOptimize(der.pbData());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetBytesProcessed(state.iterations() * refs.encode().cbData());
}
BENCHMARK(BM_RevocationRefsEncode)->Arg(1)->Arg(100)->Arg(10000)->Unit(benchmark::kMicrosecond);

void BM_RevocationRefsDecode(benchmark::State& state) {
  CBlob der = MakeRefs(state.range(0)).encode();
  for (auto _ : state) {
    CAdES::CCompleteRevocationRefs refs;
    refs.decode(der);
    benchmark::DoNotOptimize(refs.size());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetBytesProcessed(state.iterations() * der.cbData());
}
BENCHMARK(BM_RevocationRefsDecode)->Arg(1)->Arg(100)->Arg(10000)->Unit(benchmark::kMicrosecond);

void BM_RevocationValuesEncode(benchmark::State& state) {
  CAdES::CRevocationValues values = MakeValues(state.range(0));
  for (auto _ : state) {
    CBlob der = values.encode();
    benchmark::DoNotOptimize(der.pbData());
  }
  state.SetBytesProcessed(state.iterations() * values.encode().cbData());
}
BENCHMARK(BM_RevocationValuesEncode)->Arg(100)->Unit(benchmark::kMicrosecond);

void BM_RevocationValuesDecode(benchmark::State& state) {
  CBlob der = MakeValues(state.range(0)).encode();
  for (auto _ : state) {
    CAdES::CRevocationValues values;
    values.decode(der);
    benchmark::DoNotOptimize(values.get_crlVals());
  }
  state.SetBytesProcessed(state.iterations() * der.cbData());
}
BENCHMARK(BM_RevocationValuesDecode)->Arg(100)->Unit(benchmark::kMicrosecond);

// OpenSSL's generic reader and writer on the same bytes.
void OpenSslSequenceRoundTrip(benchmark::State& state, CBlob const& der) {
  for (auto _ : state) {
    unsigned char const* p = der.pbData();
    ASN1_SEQUENCE_ANY* seq = d2i_ASN1_SEQUENCE_ANY(nullptr, &p, static_cast<long>(der.cbData()));
    if (!seq) {
      state.SkipWithError("d2i_ASN1_SEQUENCE_ANY failed");
      return;
    }
    unsigned char* out = nullptr;
    int n = i2d_ASN1_SEQUENCE_ANY(seq, &out);
    benchmark::DoNotOptimize(n);
    OPENSSL_free(out);
    sk_ASN1_TYPE_pop_free(seq, ASN1_TYPE_free);
  }
  state.SetBytesProcessed(state.iterations() * der.cbData());
}

void BM_OpenSSL_RevocationRefsSequenceAny(benchmark::State& state) {
  OpenSslSequenceRoundTrip(state, MakeRefs(state.range(0)).encode());
}
BENCHMARK(BM_OpenSSL_RevocationRefsSequenceAny)
    ->Arg(1)
    ->Arg(100)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond);

void BM_OpenSSL_RevocationValuesSequenceAny(benchmark::State& state) {
  OpenSslSequenceRoundTrip(state, MakeValues(state.range(0)).encode());
}
BENCHMARK(BM_OpenSSL_RevocationValuesSequenceAny)->Arg(100)->Unit(benchmark::kMicrosecond);

}  // namespace
