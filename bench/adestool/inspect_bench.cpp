// The path of `adestool inspect` in-process, as cmd_inspect.cpp runs it:
// SignedMessage::Decode, BuildInspectReport (every attribute described,
// time-stamp imprints compared, the CAdES-C data formed) and the text or
// JSON rendering, on
//   - examples/cades/x-long-1.p7s, the X Long Type 1 example (16 KB);
//   - a CAdES-T signature carrying 1,000 CRL references and 100 copies of
//     the intermediate CA's 1,000-entry CRL as revocation values (3.6 MB),
//     built with the inspect tests' helpers (cms_builder.h).
// items_per_second counts signatures inspected; bytes_per_second their size.
// BM_Decode* time the decode alone, for the share of the report and output.
// Run: adestool_bench [--benchmark_filter=Large]
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cms_builder.h"
#include "inspect_build.h"
#include "inspect_report.h"
#include "signed_message.h"
#include "tool_runner.h"

namespace {

std::vector<uint8_t> Bytes(const std::string &s) {
  return std::vector<uint8_t>(s.begin(), s.end());
}

const std::vector<uint8_t> &Example() {
  static const std::vector<uint8_t> bytes =
      Bytes(adestool_test::ReadFile(adestool_test::ExamplePath("x-long-1.p7s")));
  return bytes;
}

const std::vector<uint8_t> &Large() {
  static const std::vector<uint8_t> bytes =
      Bytes(adestool_test::CadesWithRevocationMaterial(1000, 100));
  return bytes;
}

enum class Render { kText, kJson };

void Inspect(benchmark::State &state, const std::vector<uint8_t> &bytes, Render render) {
  size_t outputSize = 0;
  for (auto _ : state) {
    std::unique_ptr<adestool::SignedMessage> message =
        adestool::SignedMessage::Decode("bench.p7s", bytes);
    adestool::InspectOutcome outcome =
        adestool::BuildInspectReport("bench.p7s", *message, adestool::InspectOptions());
    std::string out = render == Render::kText ? adestool::RenderText(outcome.report)
                                              : adestool::RenderJson(outcome.report);
    outputSize = out.size();
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
  state.counters["input_bytes"] = static_cast<double>(bytes.size());
  state.counters["output_bytes"] = static_cast<double>(outputSize);
}

// Decode alone (SignedMessage::Decode: the typed decode and the layout), to
// show what the report and rendering add.
void Decode(benchmark::State &state, const std::vector<uint8_t> &bytes) {
  for (auto _ : state) {
    std::unique_ptr<adestool::SignedMessage> message =
        adestool::SignedMessage::Decode("bench.p7s", bytes);
    benchmark::DoNotOptimize(message.get());
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

void BM_DecodeExample(benchmark::State &state) { Decode(state, Example()); }
void BM_DecodeLarge(benchmark::State &state) { Decode(state, Large()); }
void BM_InspectExampleText(benchmark::State &state) { Inspect(state, Example(), Render::kText); }
void BM_InspectExampleJson(benchmark::State &state) { Inspect(state, Example(), Render::kJson); }
void BM_InspectLargeText(benchmark::State &state) { Inspect(state, Large(), Render::kText); }
void BM_InspectLargeJson(benchmark::State &state) { Inspect(state, Large(), Render::kJson); }

BENCHMARK(BM_DecodeExample)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_InspectExampleText)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_InspectExampleJson)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DecodeLarge)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_InspectLargeText)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_InspectLargeJson)->Unit(benchmark::kMillisecond);

}  // namespace
