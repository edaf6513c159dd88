// Value-class helpers: OID text, character strings, and the cost of the
// encode/decode templates (two buffers, two contexts, traits set/get) against
// the bare primitive on a reused context.
// Run: asn1types_bench --benchmark_filter='Oid|CharString|Template'
#include <benchmark/benchmark.h>
#include <korvex/asn1rt/asn1ber.h>
#include <korvex/asn1types/Util.h>

#include <string>

#include "test_records.h"

namespace {

using namespace Korvex::ASN1;
using Korvex::CBlob;
using Korvex::CBlobList;

void BM_Str2Oid(benchmark::State& state) {
  ASN1OBJID oid;
  for (auto _ : state) benchmark::DoNotOptimize(str2oid("1.2.840.113549.1.9.16.2.47", &oid));
}
BENCHMARK(BM_Str2Oid);

void BM_Oid2Str(benchmark::State& state) {
  ASN1OBJID oid = toASN1OBJID("1.2.840.113549.1.9.16.2.47");
  CBlob text;
  for (auto _ : state) benchmark::DoNotOptimize(oid2str(text, &oid));
}
BENCHMARK(BM_Oid2Str);

std::wstring SampleText(size_t n) {
  std::wstring text;
  for (size_t i = 0; i < n; ++i) text.push_back(static_cast<wchar_t>(L'a' + i % 26));
  return text;
}

void BM_EncodeCharString(benchmark::State& state) {
  std::wstring text = SampleText(static_cast<size_t>(state.range(1)));
  StringType type = static_cast<StringType>(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(encodeCharString(text.c_str(), type));
  state.SetBytesProcessed(state.iterations() * state.range(1));
}
BENCHMARK(BM_EncodeCharString)
    ->Args({stUTF8String, 32})
    ->Args({stPrintableString, 32})
    ->Args({stBMPString, 32})
    ->Args({stUTF8String, 4096});

void BM_DecodeCharString(benchmark::State& state) {
  std::wstring text = SampleText(static_cast<size_t>(state.range(1)));
  CBlob der = encodeCharString(text.c_str(), static_cast<StringType>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(decodeCharString(der));
  state.SetBytesProcessed(state.iterations() * state.range(1));
}
BENCHMARK(BM_DecodeCharString)
    ->Args({stUTF8String, 32})
    ->Args({stPrintableString, 32})
    ->Args({stBMPString, 32})
    ->Args({stUTF8String, 4096});

// The bare primitive: one OCTET STRING into a reused context, copied out.
void BM_TemplateBaselineEncode(benchmark::State& state) {
  CBlob value(static_cast<unsigned long>(state.range(0)));
  ASN1CTXT ctxt;
  rtInitContext(&ctxt, nullptr);
  xe_setp(&ctxt, nullptr, 0);
  for (auto _ : state) {
    ctxt.buffer.byteIndex = ctxt.buffer.size - 1;
    int n = xe_octstr(&ctxt, value.pbData(), static_cast<ASN1UINT>(value.cbData()), ASN1EXPL);
    benchmark::DoNotOptimize(CBlob(xe_getp(&ctxt), static_cast<unsigned long>(n)));
  }
  rtFreeContext(&ctxt);
}
BENCHMARK(BM_TemplateBaselineEncode)->Arg(16)->Arg(1024);

void BM_TemplateEncode(benchmark::State& state) {
  CBlob value(static_cast<unsigned long>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(asn1Encode<typestest::ASN1T_TestOctets_traits>(value));
  }
}
BENCHMARK(BM_TemplateEncode)->Arg(16)->Arg(1024);

void BM_TemplateBaselineDecode(benchmark::State& state) {
  CBlob der = asn1Encode<typestest::ASN1T_TestOctets_traits>(
      CBlob(static_cast<unsigned long>(state.range(0))));
  ASN1CTXT ctxt;
  rtInitContext(&ctxt, nullptr);
  for (auto _ : state) {
    xd_setp(&ctxt, der.pbData(), static_cast<int>(der.cbData()), nullptr, nullptr);
    ASN1DynOctStr s;
    xd_octstr(&ctxt, &s.data, &s.numocts, ASN1EXPL, 0);
    benchmark::DoNotOptimize(CBlob(s.data, s.numocts));
    rtMemFreePtr(&ctxt, s.data);
  }
  rtFreeContext(&ctxt);
}
BENCHMARK(BM_TemplateBaselineDecode)->Arg(16)->Arg(1024);

void BM_TemplateDecode(benchmark::State& state) {
  CBlob der = asn1Encode<typestest::ASN1T_TestOctets_traits>(
      CBlob(static_cast<unsigned long>(state.range(0))));
  CBlob value;
  for (auto _ : state) asn1Decode<typestest::ASN1T_TestOctets_traits>(der, value);
}
BENCHMARK(BM_TemplateDecode)->Arg(16)->Arg(1024);

// A SEQUENCE OF ten elements through the list traits (temporary list, deep
// copy of every element).
void BM_TemplateListEncode(benchmark::State& state) {
  CBlobList list(10, CBlob(16));
  for (auto _ : state) {
    benchmark::DoNotOptimize(asn1Encode<typestest::ASN1T_TestOctetsList_traits>(list));
  }
}
BENCHMARK(BM_TemplateListEncode);

void BM_TemplateListDecode(benchmark::State& state) {
  CBlob der = asn1Encode<typestest::ASN1T_TestOctetsList_traits>(CBlobList(10, CBlob(16)));
  CBlobList list;
  for (auto _ : state) asn1Decode<typestest::ASN1T_TestOctetsList_traits>(der, list);
}
BENCHMARK(BM_TemplateListDecode);

}  // namespace
