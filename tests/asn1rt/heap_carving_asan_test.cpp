// Carving under AddressSanitizer: the bytes of a chunk that belong to no live
// block are poisoned, so an overrun from one carved block into the next, or a
// use after free inside a chunk, is reported like one between malloc blocks.
// Compiled only in AddressSanitizer builds.
#if defined(__SANITIZE_ADDRESS__)
#define KORVEX_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORVEX_TEST_ASAN 1
#endif
#endif

#ifdef KORVEX_TEST_ASAN

#include <gtest/gtest.h>
#include <korvex/asn1rt/asn1type.h>
#include <sanitizer/asan_interface.h>

#include <cstdlib>
#include <map>
#include <vector>

#include "rt_test_util.h"

using rttest::Context;

namespace {

bool Poisoned(const void* p) { return __asan_address_is_poisoned(p) != 0; }

// Whether [p, p + n) is addressable and the byte after it is not.
::testing::AssertionResult ExactlyAddressable(const unsigned char* p, size_t n) {
  if (n && __asan_region_is_poisoned(const_cast<unsigned char*>(p), n)) {
    return ::testing::AssertionFailure() << "a byte of the block is poisoned";
  }
  if (!Poisoned(p + n)) return ::testing::AssertionFailure() << "the byte after it is not";
  return ::testing::AssertionSuccess();
}

unsigned char* Alloc(Context& ctx, size_t n) {
  return static_cast<unsigned char*>(rtMemAlloc(&ctx.c, n));
}

TEST(RtHeapCarvingAsan, ByteAfterACarvedBlockIsPoisoned) {
  Context ctx;
  ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
  std::vector<unsigned char*> blocks;
  for (size_t n : {0u, 1u, 7u, 8u, 9u, 15u, 16u, 17u, 100u, 2048u}) {
    SCOPED_TRACE(n);
    unsigned char* p = Alloc(ctx, n);
    ASSERT_NE(p, nullptr);
    EXPECT_TRUE(ExactlyAddressable(p, n));
    // The next block's 16-byte header, or the chunk's unused tail.
    const size_t rounded = (n + 15) & ~static_cast<size_t>(15);
    EXPECT_TRUE(Poisoned(p + rounded));
    EXPECT_TRUE(Poisoned(p + rounded + 15));
    // This block's own header.
    EXPECT_TRUE(Poisoned(p - 1));
    EXPECT_TRUE(Poisoned(p - 16));
    blocks.push_back(p);
  }
  // Carving the next block leaves the ones before it as they were.
  EXPECT_TRUE(ExactlyAddressable(blocks[3], 8));
  EXPECT_TRUE(ExactlyAddressable(blocks[8], 100));
}

// One write past a carved block, into its neighbour's header, is reported.
TEST(RtHeapCarvingAsanDeathTest, OverrunIntoTheNextBlockIsReported) {
  Context ctx;
  ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
  unsigned char* first = Alloc(ctx, 16);
  ASSERT_NE(first, nullptr);
  ASSERT_NE(Alloc(ctx, 16), nullptr);
  volatile unsigned char* overrun = first + 16;
  EXPECT_DEATH(*overrun = 1, "use-after-poison");
}

TEST(RtHeapCarvingAsan, FreedAndShrunkBytesArePoisonedAgain) {
  Context ctx;
  ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
  unsigned char* keep = Alloc(ctx, 40);
  unsigned char* freed = Alloc(ctx, 40);
  ASSERT_NE(keep, nullptr);
  ASSERT_NE(freed, nullptr);
  rtMemFreePtr(&ctx.c, freed);
  EXPECT_TRUE(Poisoned(freed));
  EXPECT_TRUE(Poisoned(freed + 39));
  EXPECT_TRUE(ExactlyAddressable(keep, 40));

  // A shrinking realloc keeps the block and poisons the bytes it gave up.
  ASSERT_EQ(rtMemRealloc(&ctx.c, keep, 5), keep);
  EXPECT_TRUE(ExactlyAddressable(keep, 5));
  EXPECT_TRUE(Poisoned(keep + 39));
  // A growing one moves the bytes; the old block is poisoned.
  unsigned char* grown = static_cast<unsigned char*>(rtMemRealloc(&ctx.c, keep, 64));
  ASSERT_NE(grown, nullptr);
  EXPECT_TRUE(ExactlyAddressable(grown, 64));
  EXPECT_TRUE(Poisoned(keep));

  // The current chunk, rewound when its last block goes, serves addressable
  // blocks again.
  rtMemFreePtr(&ctx.c, grown);
  unsigned char* again = Alloc(ctx, 24);
  ASSERT_NE(again, nullptr);
  EXPECT_TRUE(ExactlyAddressable(again, 24));
}

// An allocation function that hands out memory of its own: everything given
// back to it must be addressable, or the next user of a pooled chunk would
// find poisoned bytes.
struct CheckingAlloc {
  static std::map<void*, size_t>& Sizes() {
    static std::map<void*, size_t> sizes;
    return sizes;
  }
  static int& PoisonedOnFree() {
    static int count = 0;
    return count;
  }
  static void* Malloc(void*, size_t size) {
    void* p = std::malloc(size ? size : 1);
    if (p) Sizes()[p] = size;
    return p;
  }
  static void* Realloc(void*, void* p, size_t size) { return std::realloc(p, size); }
  static void Free(void*, void* p) {
    if (!p) return;
    auto it = Sizes().find(p);
    if (it != Sizes().end()) {
      if (__asan_region_is_poisoned(p, it->second)) ++PoisonedOnFree();
      Sizes().erase(it);
    }
    std::free(p);
  }
};

TEST(RtHeapCarvingAsan, ChunksGoBackAddressable) {
  CheckingAlloc::Sizes().clear();
  CheckingAlloc::PoisonedOnFree() = 0;
  rtSetAllocFuncs(CheckingAlloc::Malloc, CheckingAlloc::Realloc, CheckingAlloc::Free);
  {
    // Chunks freed with their last block, by switching carving off, and with
    // the heap.
    Context ctx;
    ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
    std::vector<void*> blocks;
    for (int i = 0; i < 40; ++i) blocks.push_back(rtMemAlloc(&ctx.c, 1000));
    for (void* p : blocks) rtMemFreePtr(&ctx.c, p);
    ASSERT_NE(rtMemAlloc(&ctx.c, 10), nullptr);
    ASSERT_NE(rtMemAlloc(&ctx.c, 2000), nullptr);
    void* last = rtMemAlloc(&ctx.c, 30);
    ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 0), 0);
    rtMemFreePtr(&ctx.c, last);
    ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
    for (int i = 0; i < 20; ++i) ASSERT_NE(rtMemAlloc(&ctx.c, 700), nullptr);
  }
  rtSetAllocFuncs(nullptr, nullptr, nullptr);
  EXPECT_EQ(CheckingAlloc::PoisonedOnFree(), 0);
  EXPECT_TRUE(CheckingAlloc::Sizes().empty());
}

}  // namespace

#endif  // KORVEX_TEST_ASAN
