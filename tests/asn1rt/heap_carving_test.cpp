// The heap's carving mode: small blocks cut from chunks, each still freed,
// sized and reallocated on its own, all of them gone with the heap.
#include <gtest/gtest.h>
#include <korvex/asn1rt/asn1engine.h>
#include <korvex/asn1rt/asn1type.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "rt_test_util.h"

using rttest::Context;
using rttest::ScopedCountingAlloc;

namespace {

ASN1MemHeap* Heap(void* handle) { return static_cast<ASN1MemHeap*>(handle); }

TEST(RtHeapCarving, SwitchNeedsAHeap) {
  EXPECT_EQ(rtMemHeapSetCarving(nullptr, 1), ASN_E_INVPARAM);
  void* empty = nullptr;
  EXPECT_EQ(rtMemHeapSetCarving(&empty, 1), ASN_E_INVPARAM);
  Context ctx;
  EXPECT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
  EXPECT_EQ(Heap(ctx.c.pTypeMemHeap)->flags, ASN1_HEAP_RTALLOC | ASN1_HEAP_CARVE);
  EXPECT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 0), 0);
  EXPECT_EQ(Heap(ctx.c.pTypeMemHeap)->flags, ASN1_HEAP_RTALLOC);
}

TEST(RtHeapCarving, SmallBlocksShareOneAllocation) {
  ScopedCountingAlloc scoped;
  {
    Context ctx;
    ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
    const long afterInit = scoped.alloc.calls;
    std::vector<unsigned char*> blocks;
    for (size_t n : {0u, 1u, 15u, 16u, 17u, 100u, 2048u}) {
      SCOPED_TRACE(n);
      auto* p = static_cast<unsigned char*>(rtMemAlloc(&ctx.c, n));
      ASSERT_NE(p, nullptr);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % 16, 0u);
      EXPECT_EQ(rtMemHeapBlockSize(p), n);
      for (unsigned char* q : blocks) EXPECT_NE(p, q);
      std::memset(p, 0x5A, n);
      blocks.push_back(p);
    }
    EXPECT_EQ(scoped.alloc.calls, afterInit + 1);  // one chunk
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), 1u);
    // A request above the carving limit is a block of its own.
    void* big = rtMemAlloc(&ctx.c, ASN1_HEAP_CARVE_MAX + 1);
    ASSERT_NE(big, nullptr);
    EXPECT_EQ(scoped.alloc.lastSize, ASN1_HEAP_CARVE_MAX + 1 + ASN1_MEMBLOCK_HEADER);
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), 2u);
    rtMemFreePtr(&ctx.c, big);
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), 1u);
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtHeapCarving, FullChunksGoBackWithTheirLastBlock) {
  ScopedCountingAlloc scoped;
  {
    Context ctx;
    ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
    const long base = scoped.alloc.live;
    // 1000 x (16 + 1008) bytes spill over several chunks.
    std::vector<void*> blocks;
    for (int i = 0; i < 1000; ++i) {
      void* p = rtMemAlloc(&ctx.c, 1000);
      ASSERT_NE(p, nullptr);
      blocks.push_back(p);
    }
    const long chunks = scoped.alloc.live - base;
    EXPECT_GT(chunks, 1);
    EXPECT_LT(chunks, 10);  // chunks double in size
    // Freed in any order, every chunk but the current one goes back.
    for (size_t i = 0; i < blocks.size(); i += 2) rtMemFreePtr(&ctx.c, blocks[i]);
    EXPECT_EQ(scoped.alloc.live - base, chunks);
    for (size_t i = 1; i < blocks.size(); i += 2) rtMemFreePtr(&ctx.c, blocks[i]);
    EXPECT_EQ(scoped.alloc.live - base, 1);
    // The current chunk is rewound and serves the next requests.
    const long calls = scoped.alloc.calls;
    ASSERT_NE(rtMemAlloc(&ctx.c, 64), nullptr);
    EXPECT_EQ(scoped.alloc.calls, calls);
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtHeapCarving, ReallocKeepsTheRecordedSizeRule) {
  Context ctx;
  ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
  auto* p = static_cast<unsigned char*>(rtMemAlloc(&ctx.c, 8));
  ASSERT_NE(p, nullptr);
  std::memcpy(p, "abcdefgh", 8);
  EXPECT_EQ(rtMemRealloc(&ctx.c, p, 4), p);  // never shrinks
  EXPECT_EQ(rtMemHeapBlockSize(p), 4u);
  auto* q = static_cast<unsigned char*>(rtMemRealloc(&ctx.c, p, 32));
  ASSERT_NE(q, nullptr);
  EXPECT_NE(q, p);
  EXPECT_EQ(rtMemHeapBlockSize(q), 32u);
  EXPECT_EQ(std::memcmp(q, "abcd", 4), 0);
  // Growth past the carving limit moves the bytes to a block of their own.
  auto* r = static_cast<unsigned char*>(rtMemRealloc(&ctx.c, q, 5000));
  ASSERT_NE(r, nullptr);
  EXPECT_EQ(std::memcmp(r, "abcd", 4), 0);
  EXPECT_EQ(rtMemHeapBlockSize(r), 5000u);
  rtMemFreePtr(&ctx.c, r);
}

TEST(RtHeapCarving, SwitchingOffKeepsCarvedBlocksValid) {
  ScopedCountingAlloc scoped;
  {
    Context ctx;
    ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
    auto* carved = static_cast<char*>(rtMemAlloc(&ctx.c, 10));
    ASSERT_NE(carved, nullptr);
    std::strcpy(carved, "carved");
    ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 0), 0);
    void* plain = rtMemAlloc(&ctx.c, 10);
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(scoped.alloc.lastSize, 10 + ASN1_MEMBLOCK_HEADER);
    EXPECT_STREQ(carved, "carved");
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), 2u);
    const long live = scoped.alloc.live;
    rtMemFreePtr(&ctx.c, carved);  // the chunk's last block takes the chunk
    EXPECT_EQ(scoped.alloc.live, live - 1);
    rtMemFreePtr(&ctx.c, plain);
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtHeapCarving, FailedChunkAllocationGivesNull) {
  ScopedCountingAlloc scoped;
  Context ctx;
  ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
  scoped.alloc.failAt = scoped.alloc.calls + 1;
  EXPECT_EQ(rtMemAlloc(&ctx.c, 10), nullptr);
  scoped.alloc.failAt = -1;
  EXPECT_NE(rtMemAlloc(&ctx.c, 10), nullptr);
}

// A decoded value in a carving context: freeing it field by field, or dropping
// the context whole, both return every allocation.
TEST(RtHeapCarving, EngineDecodeFreesEitherWay) {
  using Korvex::Asn1Engine::kDescOctetString;
  const std::vector<ASN1OCTET> der = rttest::Bytes("04 03 01 02 03");
  ScopedCountingAlloc scoped;
  for (bool fieldByField : {true, false}) {
    SCOPED_TRACE(fieldByField);
    ASN1CTXT c;
    ASSERT_EQ(rtInitContext(&c, nullptr), 0);
    ASSERT_EQ(rtMemHeapSetCarving(&c.pTypeMemHeap, 1), 0);
    ASSERT_EQ(xd_setp(&c, der.data(), static_cast<int>(der.size()), nullptr, nullptr), 0);
    ASN1DynOctStr value = {0, nullptr};
    ASSERT_EQ(Korvex::Asn1Engine::decode(&c, &kDescOctetString, &value, ASN1EXPL, 0), 0);
    ASSERT_EQ(value.numocts, 3u);
    EXPECT_EQ(rttest::Hex(value.data, value.numocts), "01 02 03");
    if (fieldByField) Korvex::Asn1Engine::free(&c, &kDescOctetString, &value);
    rtFreeContext(&c);
    EXPECT_EQ(scoped.alloc.live, 0);
  }
}

}  // namespace
