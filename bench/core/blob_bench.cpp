// CBlob throughput: hex text in both directions over 1 MiB, copying and
// appending. Run: core_bench --benchmark_filter=Blob
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>

#include <korvex/core/Blob.h>

using Korvex::CBlob;

namespace {

constexpr unsigned long kMiB = 1ul << 20;

CBlob RandomBlob(unsigned long size) {
  CBlob blob(size);
  std::mt19937 rng(12345);
  for (unsigned long i = 0; i < size; ++i) blob.pbData()[i] = static_cast<unsigned char>(rng());
  return blob;
}

// Args: separator group (0 = none).
void BM_BlobWriteToHexString(benchmark::State& state) {
  CBlob blob = RandomBlob(kMiB);
  unsigned long group = static_cast<unsigned long>(state.range(0));
  for (auto _ : state) {
    Korvex::CStringProxy text = blob.writeToHexString(group);
    benchmark::DoNotOptimize(text.c_str());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kMiB);
}
BENCHMARK(BM_BlobWriteToHexString)->Arg(0)->Arg(1)->Arg(16);

// Args: separator group of the parsed text (0 = none). Bytes are the
// decoded bytes, so the figures compare with the writer's.
void BM_BlobReadFromHexString(benchmark::State& state) {
  Korvex::CStringProxy text =
      RandomBlob(kMiB).writeToHexString(static_cast<unsigned long>(state.range(0)));
  CBlob blob;
  for (auto _ : state) {
    blob.readFromHexString(text.c_str());
    benchmark::DoNotOptimize(blob.pbData());
  }
  if (blob.cbData() != kMiB) state.SkipWithError("parsed size differs");
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kMiB);
}
BENCHMARK(BM_BlobReadFromHexString)->Arg(0)->Arg(1)->Arg(16);

void BM_BlobCopy(benchmark::State& state) {
  CBlob blob = RandomBlob(kMiB);
  for (auto _ : state) {
    CBlob copy(blob);
    benchmark::DoNotOptimize(copy.pbData());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kMiB);
}
BENCHMARK(BM_BlobCopy);

// Builds 1 MiB from state.range(0) equal chunks. Every append reallocates
// to the exact new size, so the cost grows with the number of chunks.
void BM_BlobAppend(benchmark::State& state) {
  unsigned long chunks = static_cast<unsigned long>(state.range(0));
  CBlob chunk = RandomBlob(kMiB / chunks);
  for (auto _ : state) {
    CBlob whole;
    for (unsigned long i = 0; i < chunks; ++i) whole += chunk;
    benchmark::DoNotOptimize(whole.pbData());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kMiB);
}
BENCHMARK(BM_BlobAppend)->Arg(1)->Arg(16)->Arg(256);

}  // namespace
