// Encoder and decoder primitives: tags and lengths, INTEGER, OBJECT IDENTIFIER,
// OCTET STRING of 1 KiB and 1 MiB, open types.
// Run: asn1rt_bench --benchmark_filter='Encode|Decode'
#include <benchmark/benchmark.h>

#include <vector>

#include <korvex/asn1rt/asn1ber.h>

namespace {

// One context for the whole benchmark, with a dynamic encode buffer.
struct EncodeContext {
  ASN1CTXT c;
  explicit EncodeContext(ASN1UINT size = 0) {
    rtInitContext(&c, nullptr);
    xe_setp(&c, nullptr, size);
  }
  ~EncodeContext() { rtFreeContext(&c); }
  // Starts a new message in the same buffer.
  void Reset() { c.buffer.byteIndex = c.buffer.size - 1; }
};

struct DecodeContext {
  ASN1CTXT c;
  std::vector<ASN1OCTET> bytes;
  explicit DecodeContext(std::vector<ASN1OCTET> b) : bytes(std::move(b)) {
    rtInitContext(&c, nullptr);
    rtInitContextBuffer(&c, bytes.data(), static_cast<ASN1UINT>(bytes.size()));
  }
  ~DecodeContext() { rtFreeContext(&c); }
  void Rewind() { c.buffer.byteIndex = 0; }
};

constexpr int kBatch = 1000;  // items per iteration for the small primitives

void BM_EncodeTagLen(benchmark::State& state) {
  EncodeContext e(64 * 1024);
  const ASN1TAG tag = static_cast<ASN1TAG>(state.range(0));
  const int len = static_cast<int>(state.range(1));
  for (auto _ : state) {
    e.Reset();
    for (int i = 0; i < kBatch; ++i) benchmark::DoNotOptimize(xe_tag_len(&e.c, tag, len));
  }
  state.SetItemsProcessed(state.iterations() * kBatch);
}
BENCHMARK(BM_EncodeTagLen)->Args({0x20000010, 5})->Args({0xA0000000 | 200, 70000});

void BM_DecodeTagLen(benchmark::State& state) {
  // kBatch SEQUENCE headers with 3-octet lengths of empty contents (length
  // checks off, so every header is read as a header).
  std::vector<ASN1OCTET> msg;
  for (int i = 0; i < kBatch; ++i) msg.insert(msg.end(), {0x30, 0x82, 0x01, 0x00});
  DecodeContext d(msg);
  d.c.flags = ASN1NOLENCHECK;
  ASN1TAG tag;
  int len;
  for (auto _ : state) {
    d.Rewind();
    for (int i = 0; i < kBatch; ++i) {
      xd_tag_len(&d.c, &tag, &len, XM_ADVANCE);
      benchmark::DoNotOptimize(len);
    }
  }
  state.SetItemsProcessed(state.iterations() * kBatch);
}
BENCHMARK(BM_DecodeTagLen);

void BM_EncodeInteger(benchmark::State& state) {
  EncodeContext e(64 * 1024);
  ASN1INT v = static_cast<ASN1INT>(state.range(0));
  for (auto _ : state) {
    e.Reset();
    for (int i = 0; i < kBatch; ++i) benchmark::DoNotOptimize(xe_integer(&e.c, &v, ASN1EXPL));
  }
  state.SetItemsProcessed(state.iterations() * kBatch);
}
BENCHMARK(BM_EncodeInteger)->Arg(5)->Arg(-2000000000);

void BM_DecodeInteger(benchmark::State& state) {
  std::vector<ASN1OCTET> msg;
  for (int i = 0; i < kBatch; ++i) msg.insert(msg.end(), {0x02, 0x04, 0x88, 0xCA, 0x6C, 0x00});
  DecodeContext d(msg);
  ASN1INT v;
  for (auto _ : state) {
    d.Rewind();
    for (int i = 0; i < kBatch; ++i) xd_integer(&d.c, &v, ASN1EXPL, 0);
    benchmark::DoNotOptimize(v);
  }
  state.SetItemsProcessed(state.iterations() * kBatch);
}
BENCHMARK(BM_DecodeInteger);

const ASN1OBJID kOid = {9, {1, 2, 840, 113549, 1, 9, 16, 2, 47}};

void BM_EncodeObjId(benchmark::State& state) {
  EncodeContext e(64 * 1024);
  for (auto _ : state) {
    e.Reset();
    for (int i = 0; i < kBatch; ++i) benchmark::DoNotOptimize(xe_objid(&e.c, &kOid, ASN1EXPL));
  }
  state.SetItemsProcessed(state.iterations() * kBatch);
}
BENCHMARK(BM_EncodeObjId);

void BM_DecodeObjId(benchmark::State& state) {
  EncodeContext e;
  int len = 0;
  for (int i = 0; i < kBatch; ++i) len += xe_objid(&e.c, &kOid, ASN1EXPL);
  DecodeContext d(std::vector<ASN1OCTET>(xe_getp(&e.c), xe_getp(&e.c) + len));
  ASN1OBJID oid;
  for (auto _ : state) {
    d.Rewind();
    for (int i = 0; i < kBatch; ++i) xd_objid(&d.c, &oid, ASN1EXPL, 0);
    benchmark::DoNotOptimize(oid.numids);
  }
  state.SetItemsProcessed(state.iterations() * kBatch);
}
BENCHMARK(BM_DecodeObjId);

void BM_EncodeOctetString(benchmark::State& state) {
  const size_t n = static_cast<size_t>(state.range(0));
  std::vector<ASN1OCTET> value(n, 0x5A);
  EncodeContext e(static_cast<ASN1UINT>(n + 16));
  for (auto _ : state) {
    e.Reset();
    benchmark::DoNotOptimize(xe_octstr(&e.c, value.data(), static_cast<ASN1UINT>(n), ASN1EXPL));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(n));
}
BENCHMARK(BM_EncodeOctetString)->Arg(1024)->Arg(1 << 20);

// From a fresh buffer each time: includes the growth of the dynamic buffer.
void BM_EncodeOctetStringGrowing(benchmark::State& state) {
  const size_t n = static_cast<size_t>(state.range(0));
  std::vector<ASN1OCTET> value(n, 0x5A);
  for (auto _ : state) {
    EncodeContext e;
    benchmark::DoNotOptimize(xe_octstr(&e.c, value.data(), static_cast<ASN1UINT>(n), ASN1EXPL));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(n));
}
BENCHMARK(BM_EncodeOctetStringGrowing)->Arg(1 << 20);

void BM_DecodeOctetString(benchmark::State& state) {
  const size_t n = static_cast<size_t>(state.range(0));
  std::vector<ASN1OCTET> value(n, 0x5A);
  EncodeContext e;
  int len = xe_octstr(&e.c, value.data(), static_cast<ASN1UINT>(n), ASN1EXPL);
  DecodeContext d(std::vector<ASN1OCTET>(xe_getp(&e.c), xe_getp(&e.c) + len));
  for (auto _ : state) {
    d.Rewind();
    const ASN1OCTET* data;
    ASN1UINT count;
    xd_octstr(&d.c, &data, &count, ASN1EXPL, 0);
    benchmark::DoNotOptimize(data);
    rtMemFreePtr(&d.c, data);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(n));
}
BENCHMARK(BM_DecodeOctetString)->Arg(1024)->Arg(1 << 20);

// Open type of a 1 KiB element: copied in and out.
std::vector<ASN1OCTET> KiBElement() {
  std::vector<ASN1OCTET> v(1024, 0x11);
  EncodeContext e;
  int len = xe_octstr(&e.c, v.data(), 1024, ASN1EXPL);
  return std::vector<ASN1OCTET>(xe_getp(&e.c), xe_getp(&e.c) + len);
}

void BM_EncodeOpenType(benchmark::State& state) {
  std::vector<ASN1OCTET> element = KiBElement();
  EncodeContext e(static_cast<ASN1UINT>(element.size() * kBatch / 10 + 16));
  for (auto _ : state) {
    e.Reset();
    for (int i = 0; i < kBatch / 10; ++i) {
      benchmark::DoNotOptimize(
          xe_OpenType(&e.c, element.data(), static_cast<ASN1UINT>(element.size())));
    }
  }
  state.SetItemsProcessed(state.iterations() * kBatch / 10);
}
BENCHMARK(BM_EncodeOpenType);

void BM_DecodeOpenType(benchmark::State& state) {
  std::vector<ASN1OCTET> element = KiBElement();
  std::vector<ASN1OCTET> msg;
  for (int i = 0; i < kBatch / 10; ++i) msg.insert(msg.end(), element.begin(), element.end());
  DecodeContext d(msg);
  if (state.range(0)) rtCtxtSetFlag(&d.c, ASN1OPENTYPEREF);
  for (auto _ : state) {
    d.Rewind();
    for (int i = 0; i < kBatch / 10; ++i) {
      const ASN1OCTET* data;
      ASN1UINT n;
      xd_OpenType(&d.c, &data, &n);
      benchmark::DoNotOptimize(data);
      if (!state.range(0)) rtMemFreePtr(&d.c, data);
    }
  }
  state.SetItemsProcessed(state.iterations() * kBatch / 10);
}
// 0: copied into the heap, 1: pointing into the message.
BENCHMARK(BM_DecodeOpenType)->Arg(0)->Arg(1);

}  // namespace
