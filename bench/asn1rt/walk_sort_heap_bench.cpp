// A BER walk over a 1 MiB indefinite-length structure, the DER SET OF sort at
// 10, 1,000 and 100,000 elements (per-element cost shows the log n growth), and
// the heap with 1 million small blocks.
// Run: asn1rt_bench --benchmark_filter='Walk|Sort|Heap'
#include <benchmark/benchmark.h>

#include <chrono>
#include <random>
#include <vector>

#include <korvex/asn1rt/asn1ber.h>

namespace {

// 30 80 { SEQUENCE { INTEGER, OCTET STRING(8) } with some nested indefinite
// elements } 00 00, about 1 MiB.
std::vector<ASN1OCTET> IndefiniteMessage(int* elements) {
  std::vector<ASN1OCTET> m = {0x30, 0x80};
  *elements = 0;
  while (m.size() < (1u << 20)) {
    if (*elements % 8 == 0) {
      // 30 80 02 01 07 00 00
      m.insert(m.end(), {0x30, 0x80, 0x02, 0x01, 0x07, 0x00, 0x00});
    } else {
      m.insert(m.end(), {0x30, 0x0D, 0x02, 0x01, 0x05, 0x04, 0x08});
      for (int i = 0; i < 8; ++i) m.push_back(static_cast<ASN1OCTET>(i));
    }
    ++*elements;
  }
  m.insert(m.end(), {0x00, 0x00});
  return m;
}

void BM_WalkNextElement(benchmark::State& state) {
  int elements;
  std::vector<ASN1OCTET> m = IndefiniteMessage(&elements);
  ASN1CTXT c;
  rtInitContext(&c, nullptr);
  for (auto _ : state) {
    xd_setp(&c, m.data(), static_cast<int>(m.size()), nullptr, nullptr);
    int len;
    xd_match1(&c, 0x30, &len);
    while (xd_MatchEOC(&c) != 0) xd_NextElement(&c);
    benchmark::DoNotOptimize(c.buffer.byteIndex);
  }
  rtFreeContext(&c);
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(m.size()));
  state.counters["elements"] = elements;
}
BENCHMARK(BM_WalkNextElement);

void BM_WalkCount(benchmark::State& state) {
  int elements;
  std::vector<ASN1OCTET> m = IndefiniteMessage(&elements);
  ASN1CTXT c;
  rtInitContext(&c, nullptr);
  xd_setp(&c, m.data(), static_cast<int>(m.size()), nullptr, nullptr);
  int len;
  xd_match1(&c, 0x30, &len);
  for (auto _ : state) {
    int count = 0;
    xd_count(&c, ASN_K_INDEFLEN, &count);
    benchmark::DoNotOptimize(count);
  }
  rtFreeContext(&c);
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(m.size()));
}
BENCHMARK(BM_WalkCount);

// Includes the set-up measure of xd_setp over the indefinite message.
void BM_WalkSetpIndefinite(benchmark::State& state) {
  int elements;
  std::vector<ASN1OCTET> m = IndefiniteMessage(&elements);
  ASN1CTXT c;
  rtInitContext(&c, nullptr);
  for (auto _ : state) {
    benchmark::DoNotOptimize(xd_setp(&c, m.data(), static_cast<int>(m.size()), nullptr, nullptr));
  }
  rtFreeContext(&c);
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(m.size()));
}
BENCHMARK(BM_WalkSetpIndefinite);

// SET OF n INTEGERs of 1 to 4 octets in random order. Only the sort is timed
// (manual timing around the call); "per_element" is the time per element, so
// the log n growth shows across the three sizes.
void BM_DerCanonicalSort(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::mt19937 rng(99);
  std::vector<ASN1INT> values(static_cast<size_t>(n));
  for (ASN1INT& v : values) v = static_cast<ASN1INT>(rng() >> (rng() % 24));
  ASN1CTXT c;
  rtInitContext(&c, nullptr);
  for (auto _ : state) {
    xe_setp(&c, nullptr, static_cast<ASN1UINT>(n) * 8 + 64);
    rtDList list;
    rtDListInit(&list);
    for (int i = n; i-- > 0;) {
      int len = xe_integer(&c, &values[static_cast<size_t>(i)], ASN1EXPL);
      auto* d = rtMemAllocType(&c, Asn1BufLocDescr);
      xe_getBufLocDescr(&c, static_cast<ASN1UINT>(len), d);
      rtDListAppend(&c, &list, d);
    }
    auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(xe_derCanonicalSort(&c, &list));
    auto stop = std::chrono::steady_clock::now();
    state.SetIterationTime(std::chrono::duration<double>(stop - start).count());
    rtMemHeapFreePtr(&c.pMsgMemHeap, c.buffer.data);
    c.buffer.data = nullptr;
  }
  rtFreeContext(&c);
  state.counters["per_element"] = benchmark::Counter(
      static_cast<double>(n),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_DerCanonicalSort)
    ->Arg(10)
    ->Arg(1000)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

void BM_HeapAllocRelease1M(benchmark::State& state) {
  const int n = 1000000;
  for (auto _ : state) {
    ASN1CTXT c;
    rtInitContext(&c, nullptr);
    for (int i = 0; i < n; ++i) benchmark::DoNotOptimize(rtMemAlloc(&c, 24));
    rtFreeContext(&c);  // every block released with the heap
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_HeapAllocRelease1M)->Unit(benchmark::kMillisecond);

void BM_HeapAllocFreeEach1M(benchmark::State& state) {
  const int n = 1000000;
  std::vector<void*> blocks(static_cast<size_t>(n));
  for (auto _ : state) {
    ASN1CTXT c;
    rtInitContext(&c, nullptr);
    for (int i = 0; i < n; ++i) blocks[static_cast<size_t>(i)] = rtMemAlloc(&c, 24);
    for (int i = 0; i < n; ++i) rtMemFreePtr(&c, blocks[static_cast<size_t>(i)]);  // oldest first
    rtFreeContext(&c);
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_HeapAllocFreeEach1M)->Unit(benchmark::kMillisecond);

}  // namespace
