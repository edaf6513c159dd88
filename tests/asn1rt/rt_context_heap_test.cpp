// Context life cycle, the block heap, error information and the lists.
#include <korvex/asn1rt/asn1type.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "rt_test_util.h"

using rttest::Context;
using rttest::CountingAlloc;
using rttest::ScopedCountingAlloc;

namespace {

ASN1MemHeap* Heap(void* handle) { return static_cast<ASN1MemHeap*>(handle); }

TEST(RtContext, InitSharesOneHeapBetweenBothHandles) {
  int userData = 0;
  ScopedCountingAlloc scoped;
  scoped.alloc.expectedUserData = &userData;
  {
    ASN1CTXT c;
    std::memset(&c, 0xAB, sizeof(c));
    ASSERT_EQ(rtInitContext(&c, &userData), 0);
    EXPECT_EQ(c.initCode, 0x1AA2A34Au);
    ASSERT_NE(c.pTypeMemHeap, nullptr);
    EXPECT_EQ(c.pMsgMemHeap, c.pTypeMemHeap);
    EXPECT_EQ(Heap(c.pTypeMemHeap)->refCnt, 2u);
    EXPECT_EQ(Heap(c.pTypeMemHeap)->flags, 0x10000000u);
    EXPECT_EQ(Heap(c.pTypeMemHeap)->defBlkSize, 4096u);
    EXPECT_EQ(Heap(c.pTypeMemHeap)->pAllocUserData, &userData);
    EXPECT_EQ(c.pAllocUserData, &userData);
    EXPECT_EQ(c.flags, 0);
    EXPECT_EQ(c.errInfo.status, 0);
    EXPECT_EQ(c.fieldList.count, 0u);
    EXPECT_EQ(c.evtList.head, nullptr);
    EXPECT_EQ(c.buffer.data, nullptr);
    EXPECT_EQ(scoped.alloc.lastSize, sizeof(ASN1MemHeap));
    EXPECT_EQ(sizeof(ASN1MemHeap), 48u);
    rtFreeContext(&c);
    EXPECT_EQ(c.initCode, 0u);
  }
  EXPECT_EQ(scoped.alloc.live, 0);
  EXPECT_FALSE(scoped.alloc.userDataMismatch);
}

TEST(RtContext, InitFailsWithNoMemory) {
  ScopedCountingAlloc scoped;
  scoped.alloc.failAt = 1;
  ASN1CTXT c;
  EXPECT_EQ(rtInitContext(&c, nullptr), ASN_E_NOMEM);
  rtFreeContext(&c);
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtContext, InitContextBufferDefaultsAndStatuses) {
  Context ctx;
  ASSERT_EQ(rtInitContextBuffer(&ctx, nullptr, 0), 0);
  EXPECT_EQ(ctx.c.buffer.size, 16384u);
  EXPECT_EQ(ctx.c.buffer.dynamic, 1);
  EXPECT_EQ(ctx.c.buffer.byteIndex, 0u);
  EXPECT_EQ(ctx.c.buffer.bitOffset, 8);
  EXPECT_EQ(rtMemHeapBlockSize(ctx.c.buffer.data), 16384u);

  ASN1OCTET mine[7];
  ASSERT_EQ(rtInitContextBuffer(&ctx, mine, sizeof(mine)), 0);
  EXPECT_EQ(ctx.c.buffer.data, mine);
  EXPECT_EQ(ctx.c.buffer.size, 7u);
  EXPECT_EQ(ctx.c.buffer.dynamic, 0);
  // The earlier runtime buffer was not freed by the second call.
  EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), 1u);

  ASN1CTXT raw;
  std::memset(&raw, 0, sizeof(raw));
  EXPECT_EQ(rtInitContextBuffer(&raw, mine, 7), ASN_E_NOTINIT);
}

TEST(RtContext, InitContextBufferNoMemory) {
  ScopedCountingAlloc scoped;
  {
    Context ctx;
    scoped.alloc.failAt = scoped.alloc.calls + 1;
    EXPECT_EQ(rtInitContextBuffer(&ctx, nullptr, 64), ASN_E_NOMEM);
    scoped.alloc.failAt = -1;
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtContext, FreeTwiceDoesNothingTheSecondTime) {
  ScopedCountingAlloc scoped;
  ASN1CTXT c;
  ASSERT_EQ(rtInitContext(&c, nullptr), 0);
  ASSERT_EQ(rtInitContextBuffer(&c, nullptr, 100), 0);
  rtFreeContext(&c);
  EXPECT_EQ(scoped.alloc.live, 0);
  rtFreeContext(&c);
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtContext, KeepBufferFlagLeavesTheRuntimeBuffer) {
  ScopedCountingAlloc scoped;
  {
    Context holder;
    ASN1CTXT a;
    ASSERT_EQ(rtInitContext(&a, nullptr), 0);
    ASSERT_EQ(rtInitContextBuffer(&a, nullptr, 32), 0);
    ASN1OCTET* buf = a.buffer.data;
    std::memset(buf, 0x11, 32);
    // Another context keeps the message heap alive.
    rtCtxtSetMsgMemHeap(&holder.c, &a);
    rtCtxtSetFlag(&a, ASN1SAVEBUF);
    rtFreeContext(&a);
    EXPECT_EQ(rtMemHeapBlockCount(&holder.c.pMsgMemHeap), 1u);
    EXPECT_EQ(buf[31], 0x11);
  }
  EXPECT_EQ(scoped.alloc.live, 0);

  Context b;
  ASSERT_EQ(rtInitContextBuffer(&b, nullptr, 32), 0);
  Context holder2;
  rtCtxtSetMsgMemHeap(&holder2.c, &b.c);
  rtFreeContext(&b.c);
  EXPECT_EQ(rtMemHeapBlockCount(&holder2.c.pMsgMemHeap), 0u);
}

TEST(RtContext, CopyContextCopiesOnlyBufferAndFlags) {
  Context src, dest;
  ASN1OCTET bytes[4] = {1, 2, 3, 4};
  ASSERT_EQ(rtInitContextBuffer(&src, bytes, 4), 0);
  src.c.buffer.byteIndex = 3;
  src.c.flags = 0x0840;
  src.c.errInfo.status = -3;
  void* destHeap = dest.c.pTypeMemHeap;
  rtCopyContext(&dest.c, &src.c);
  EXPECT_EQ(dest.c.buffer.data, bytes);
  EXPECT_EQ(dest.c.buffer.byteIndex, 3u);
  EXPECT_EQ(dest.c.buffer.size, 4u);
  EXPECT_EQ(dest.c.buffer.bitOffset, 8);
  EXPECT_EQ(dest.c.flags, 0x0840);
  EXPECT_EQ(dest.c.errInfo.status, 0);
  EXPECT_EQ(dest.c.pTypeMemHeap, destHeap);
}

TEST(RtContext, FlagsSetClearTest) {
  Context ctx;
  rtCtxtSetFlag(&ctx, ASN1OPENTYPEREF);
  rtCtxtSetFlag(&ctx, ASN1NOLENCHECK);
  EXPECT_EQ(ctx.c.flags, 0x0840);
  EXPECT_TRUE(rtCtxtTestFlag(&ctx.c, ASN1OPENTYPEREF));
  rtCtxtClearFlag(&ctx, ASN1OPENTYPEREF);
  EXPECT_FALSE(rtCtxtTestFlag(&ctx.c, ASN1OPENTYPEREF));
}

TEST(RtContext, SharedTypeHeapOutlivesTheContextThatMadeIt) {
  ScopedCountingAlloc scoped;
  {
    ASN1CTXT a, b;
    ASSERT_EQ(rtInitContext(&a, nullptr), 0);
    ASSERT_EQ(rtInitContext(&b, nullptr), 0);
    void* aOwnHeap = a.pTypeMemHeap;
    auto* value = static_cast<char*>(rtMemAlloc(&b, 6));
    std::memcpy(value, "value", 6);
    rtCtxtSetMemHeap(&a, &b);
    EXPECT_EQ(a.pTypeMemHeap, b.pTypeMemHeap);
    EXPECT_EQ(Heap(b.pTypeMemHeap)->refCnt, 3u);
    EXPECT_EQ(Heap(aOwnHeap)->refCnt, 1u);  // still a's message heap
    // Same heap again: nothing changes.
    rtCtxtSetMemHeap(&a, &b);
    EXPECT_EQ(Heap(b.pTypeMemHeap)->refCnt, 3u);
    rtCtxtSetMemHeap(&a, nullptr);
    rtCtxtSetMemHeap(nullptr, &b);
    rtFreeContext(&b);
    EXPECT_STREQ(value, "value");
    EXPECT_EQ(Heap(a.pTypeMemHeap)->refCnt, 1u);
    rtFreeContext(&a);
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtHeap, AllocationAsksForHeaderPlusSizeAndLinksNewestFirst) {
  ScopedCountingAlloc scoped;
  {
    Context ctx;
    void* p = rtMemAlloc(&ctx.c, 10);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(scoped.alloc.lastSize, 58u);
    EXPECT_EQ(rtMemHeapBlockSize(p), 10u);
    void* zero1 = rtMemAlloc(&ctx.c, 0);
    void* zero2 = rtMemAlloc(&ctx.c, 0);
    ASSERT_NE(zero1, nullptr);
    ASSERT_NE(zero2, nullptr);
    EXPECT_NE(zero1, zero2);
    EXPECT_EQ(scoped.alloc.lastSize, 48u);
    EXPECT_EQ(rtMemHeapAlloc(&ctx.c.pTypeMemHeap, 0x7FFFFFD0u), nullptr);
    EXPECT_EQ(rtMemHeapAlloc(nullptr, 1), nullptr);
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), 3u);
    // 16-byte alignment of the caller's bytes.
    EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 16, 0u);
    auto* z = static_cast<ASN1OCTET*>(rtMemAllocZ(&ctx.c, 5));
    for (int i = 0; i < 5; ++i) EXPECT_EQ(z[i], 0);
    // Passing the context itself means its message heap.
    void* m = rtMemHeapAlloc(reinterpret_cast<void**>(&ctx.c), 3);
    EXPECT_NE(m, nullptr);
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pMsgMemHeap), 5u);
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtHeap, LargestRequestIsAccepted) {
  // 0x7FFFFFCF is the limit: only the argument check is exercised here, with
  // an allocator that refuses the real allocation.
  ScopedCountingAlloc scoped;
  Context ctx;
  long before = scoped.alloc.calls;
  scoped.alloc.failAt = before + 1;
  EXPECT_EQ(rtMemHeapAlloc(&ctx.c.pTypeMemHeap, 0x7FFFFFCFu), nullptr);
  EXPECT_EQ(scoped.alloc.calls, before + 1);  // it was asked
  EXPECT_EQ(rtMemHeapAlloc(&ctx.c.pTypeMemHeap, 0x7FFFFFD0u), nullptr);
  EXPECT_EQ(scoped.alloc.calls, before + 1);  // not asked
  scoped.alloc.failAt = -1;
}

TEST(RtHeap, EmptyHandleGetsAHeapOnAllocButNotOnRealloc) {
  void* handle = nullptr;
  EXPECT_EQ(rtMemHeapRealloc(&handle, nullptr, 8), nullptr);
  EXPECT_EQ(handle, nullptr);
  void* p = rtMemHeapAlloc(&handle, 8);
  ASSERT_NE(p, nullptr);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(Heap(handle)->pAllocUserData, nullptr);
  EXPECT_EQ(Heap(handle)->refCnt, 1u);
  rtMemHeapRelease(&handle);
  EXPECT_EQ(handle, nullptr);
}

TEST(RtHeap, ReallocNeverShrinksAndGrowthCopiesTheRecordedSize) {
  ScopedCountingAlloc scoped;
  Context ctx;
  auto* p = static_cast<ASN1OCTET*>(rtMemAlloc(&ctx.c, 16));
  for (int i = 0; i < 16; ++i) p[i] = static_cast<ASN1OCTET>(i + 1);
  EXPECT_EQ(rtMemRealloc(&ctx.c, p, 4), p);
  EXPECT_EQ(rtMemHeapBlockSize(p), 4u);
  auto* q = static_cast<ASN1OCTET*>(rtMemRealloc(&ctx.c, p, 32));
  ASSERT_NE(q, nullptr);
  ASSERT_NE(q, p);
  EXPECT_EQ(rtMemHeapBlockSize(q), 32u);
  EXPECT_EQ(rttest::Hex(q, 6), "01 02 03 04 CD CD");  // only 4 bytes were copied
  EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), 1u);
  // Failure keeps the old block.
  scoped.alloc.failAt = scoped.alloc.calls + 1;
  EXPECT_EQ(rtMemRealloc(&ctx.c, q, 64), nullptr);
  scoped.alloc.failAt = -1;
  EXPECT_EQ(q[0], 1);
  EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), 1u);
  // Null p allocates.
  void* r = rtMemRealloc(&ctx.c, nullptr, 8);
  EXPECT_NE(r, nullptr);
  EXPECT_EQ(rtMemHeapRealloc(nullptr, r, 8), nullptr);
}

TEST(RtHeap, FreeInAnyOrderThenReleaseFreesEachBlockOnce) {
  ScopedCountingAlloc scoped;
  {
    Context ctx;
    std::vector<void*> blocks;
    for (int i = 0; i < 9; ++i) blocks.push_back(rtMemAlloc(&ctx.c, static_cast<size_t>(i)));
    // Newest, oldest, middle, then the rest stay for the release.
    for (int i : {8, 0, 4, 5, 1}) rtMemFreePtr(&ctx.c, blocks[static_cast<size_t>(i)]);
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), 4u);
    rtMemFreePtr(&ctx.c, nullptr);
    void* empty = nullptr;
    rtMemHeapFreePtr(&empty, blocks[2]);  // empty handle: ignored
    rtMemHeapFreePtr(nullptr, blocks[2]);
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), 4u);
  }
  EXPECT_EQ(scoped.alloc.live, 0);  // CountingAlloc checks each block is freed once
}

TEST(RtHeap, ReleaseCountsReferences) {
  void* handle = nullptr;
  ASSERT_EQ(rtMemHeapCreate(&handle, nullptr), 0);
  rtMemHeapAddRef(&handle);
  void* p = rtMemHeapAlloc(&handle, 4);
  rtMemHeapRelease(&handle);
  EXPECT_NE(handle, nullptr);  // a release above zero keeps the handle
  EXPECT_EQ(Heap(handle)->refCnt, 1u);
  EXPECT_NE(p, nullptr);
  rtMemHeapRelease(&handle);
  EXPECT_EQ(handle, nullptr);
  rtMemHeapRelease(&handle);
  rtMemHeapRelease(nullptr);
  rtMemHeapAddRef(nullptr);
  rtMemHeapAddRef(&handle);
}

TEST(RtHeap, CreateStatuses) {
  EXPECT_EQ(rtMemHeapCreate(nullptr, nullptr), ASN_E_INVPARAM);
  ScopedCountingAlloc scoped;
  scoped.alloc.failAt = 1;
  void* handle = nullptr;
  EXPECT_EQ(rtMemHeapCreate(&handle, nullptr), ASN_E_NOMEM);
  EXPECT_EQ(handle, nullptr);
}

TEST(RtHeap, CompatibilityEntryPoints) {
  Context ctx;
  void* p = rtMemAlloc(&ctx.c, 1);
  EXPECT_EQ(rtMemHeapMarkSaved(&ctx.c.pTypeMemHeap, p, 1), 0);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctx.c.pTypeMemHeap, p), 1);
  int notFromHeap;
  EXPECT_EQ(rtMemHeapCheckPtr(&ctx.c.pTypeMemHeap, &notFromHeap), 1);
}

TEST(RtHeap, FreeOpenSeqExtFreesRecordsDataAndNodes) {
  ScopedCountingAlloc scoped;
  {
    Context ctx;
    size_t base = rtMemHeapBlockCount(&ctx.c.pTypeMemHeap);
    rtDList list;
    rtDListInit(&list);
    for (int i = 0; i < 3; ++i) {
      auto* open = rtMemAllocTypeZ(&ctx.c, ASN1OpenType);
      open->numocts = 2;
      open->data = static_cast<ASN1OCTET*>(rtMemAlloc(&ctx.c, 2));
      ASSERT_NE(rtDListAppend(&ctx.c, &list, open), nullptr);
    }
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), base + 9);
    rtMemFreeOpenSeqExt(&ctx.c, &list);
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.head, nullptr);
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), base);
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtHeap, StreamRecordIsReleasedFromTheMessageHeap) {
  ScopedCountingAlloc scoped;
  {
    Context ctx;
    ctx.c.pStream = rtMemHeapAlloc(&ctx.c.pMsgMemHeap, 24);
    EXPECT_EQ(rtStreamRelease(&ctx.c), 0);
    EXPECT_EQ(ctx.c.pStream, nullptr);
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pMsgMemHeap), 0u);
    ctx.c.pStream = rtMemHeapAlloc(&ctx.c.pMsgMemHeap, 24);  // freed with the context
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtHeap, AllocFuncsCanBeReadBackAndRestored) {
  rtMallocFunc m;
  rtReallocFunc r;
  rtFreeFunc f;
  rtGetAllocFuncs(&m, &r, &f);
  EXPECT_EQ(m, rtDefaultMalloc);
  EXPECT_EQ(r, rtDefaultRealloc);
  EXPECT_EQ(f, rtDefaultFree);
  {
    ScopedCountingAlloc scoped;
    rtGetAllocFuncs(&m, nullptr, nullptr);
    EXPECT_EQ(m, CountingAlloc::Malloc);
  }
  rtGetAllocFuncs(&m, nullptr, nullptr);
  EXPECT_EQ(m, rtDefaultMalloc);
  void* p = rtDefaultRealloc(nullptr, rtDefaultMalloc(nullptr, 4), 8);
  rtDefaultFree(nullptr, p);
}

TEST(RtError, FirstStatusIsKeptUntilReset) {
  ASN1ErrInfo info{0};
  EXPECT_EQ(rtErrSetData(&info, ASN_E_IDNOTFOU), -3);
  EXPECT_EQ(rtErrSetData(&info, ASN_E_ENDOFBUF), -2);
  EXPECT_EQ(info.status, -3);
  ASN1ErrInfo copy{0};
  EXPECT_EQ(rtErrCopyData(&info, &copy), -3);
  EXPECT_EQ(copy.status, -3);
  EXPECT_EQ(rtErrReset(&info), 0);
  EXPECT_EQ(info.status, 0);
  EXPECT_EQ(rtErrSetData(&info, ASN_E_ENDOFBUF), -2);
  EXPECT_EQ(info.status, -2);
  EXPECT_EQ(rtErrAddIntParm(&info, 7), 1);
  EXPECT_EQ(rtErrAddStrParm(&info, "x"), 1);
  EXPECT_EQ(info.status, -2);
  EXPECT_STREQ(rtErrGetText(nullptr), "");
}

TEST(RtError, PrintWritesOneLine) {
  ASN1ErrInfo info{ASN_E_TOOBIG};
  testing::internal::CaptureStdout();
  rtErrPrint(&info);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "ASN.1 ERROR: Status -33\n");
}

// ---- Lists -----------------------------------------------------------------

std::vector<intptr_t> DValues(const rtDList& list) {
  std::vector<intptr_t> out;
  for (rtDListNode* n = list.head; n; n = n->next) out.push_back(reinterpret_cast<intptr_t>(n->data));
  // The backward links must agree.
  std::vector<intptr_t> back;
  for (rtDListNode* n = list.tail; n; n = n->prev) back.insert(back.begin(), reinterpret_cast<intptr_t>(n->data));
  EXPECT_EQ(out, back);
  EXPECT_EQ(out.size(), list.count);
  return out;
}

void* V(intptr_t v) { return reinterpret_cast<void*>(v); }

TEST(RtDList, AppendInsertRemoveFind) {
  Context ctx;
  rtDList list;
  rtDListInit(&list);
  rtDListAppend(&ctx.c, &list, V(1));
  rtDListAppend(&ctx.c, &list, V(3));
  rtDListInsert(&ctx.c, &list, 1, V(2));
  rtDListInsert(&ctx.c, &list, 0, V(0));
  rtDListInsert(&ctx.c, &list, 99, V(4));
  EXPECT_EQ(DValues(list), (std::vector<intptr_t>{0, 1, 2, 3, 4}));
  EXPECT_EQ(rtDListFindByIndex(&list, 3)->data, V(3));
  EXPECT_EQ(rtDListFindByIndex(&list, 1)->data, V(1));
  EXPECT_EQ(rtDListFindByIndex(&list, 5), nullptr);
  EXPECT_EQ(rtDListFindByIndex(&list, -1), nullptr);
  EXPECT_EQ(rtDListFindIndexByData(&list, V(2)), 2);
  EXPECT_EQ(rtDListFindIndexByData(&list, V(9)), -1);
  rtDListNode* two = rtDListFindByData(&list, V(2));
  rtDListInsertBefore(&ctx.c, &list, two, V(15));
  rtDListInsertAfter(&ctx.c, &list, two, V(25));
  EXPECT_EQ(DValues(list), (std::vector<intptr_t>{0, 1, 15, 2, 25, 3, 4}));
  rtDListRemove(&list, two);
  rtMemFreePtr(&ctx.c, two);
  rtDListFreeNode(&ctx.c, &list, list.head);
  rtDListFreeNode(&ctx.c, &list, list.tail);
  EXPECT_EQ(DValues(list), (std::vector<intptr_t>{1, 15, 25, 3}));
  rtDListFreeNodes(&ctx.c, &list);
  EXPECT_EQ(list.count, 0u);
  EXPECT_EQ(list.tail, nullptr);
}

TEST(RtDList, FreeAllFreesDataToo) {
  ScopedCountingAlloc scoped;
  {
    Context ctx;
    size_t base = rtMemHeapBlockCount(&ctx.c.pTypeMemHeap);
    rtDList list;
    rtDListInit(&list);
    for (int i = 0; i < 4; ++i) rtDListAppend(&ctx.c, &list, rtMemAlloc(&ctx.c, 8));
    rtDListAppend(&ctx.c, &list, nullptr);
    rtDListFreeAll(&ctx.c, &list);
    EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pTypeMemHeap), base);
    scoped.alloc.failAt = scoped.alloc.calls + 1;
    EXPECT_EQ(rtDListAppend(&ctx.c, &list, V(1)), nullptr);
    EXPECT_EQ(list.count, 0u);
    scoped.alloc.failAt = -1;
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

std::vector<intptr_t> SValues(const rtSList& list) {
  std::vector<intptr_t> out;
  rtSListNode* last = nullptr;
  for (rtSListNode* n = list.head; n; n = n->next) {
    out.push_back(reinterpret_cast<intptr_t>(n->data));
    last = n;
  }
  EXPECT_EQ(last, list.tail);
  EXPECT_EQ(out.size(), list.count);
  return out;
}

TEST(RtSList, AppendInsertRemoveFind) {
  Context ctx;
  rtSList list;
  rtSListInit(&list);
  rtSListAppend(&ctx.c, &list, V(2));
  rtSListInsert(&ctx.c, &list, 0, V(0));
  rtSListInsert(&ctx.c, &list, 1, V(1));
  rtSListInsert(&ctx.c, &list, 3, V(3));
  EXPECT_EQ(SValues(list), (std::vector<intptr_t>{0, 1, 2, 3}));
  EXPECT_EQ(rtSListFindByIndex(&list, 2)->data, V(2));
  EXPECT_EQ(rtSListFindByIndex(&list, 4), nullptr);
  EXPECT_EQ(rtSListFindByData(&list, V(3)), list.tail);
  EXPECT_EQ(rtSListRemove(&ctx.c, &list, V(3)), 1);
  EXPECT_EQ(rtSListRemove(&ctx.c, &list, V(0)), 1);
  EXPECT_EQ(rtSListRemove(&ctx.c, &list, V(9)), 0);
  EXPECT_EQ(SValues(list), (std::vector<intptr_t>{1, 2}));
  rtSListAppend(&ctx.c, &list, V(5));
  EXPECT_EQ(SValues(list), (std::vector<intptr_t>{1, 2, 5}));
  rtSListFreeNodes(&ctx.c, &list);
  EXPECT_EQ(SValues(list), (std::vector<intptr_t>{}));
}

TEST(RtSList, FreeAllAndContextListsAreFreedWithTheContext) {
  ScopedCountingAlloc scoped;
  {
    Context ctx;
    rtSList list;
    rtSListInit(&list);
    rtSListAppend(&ctx.c, &list, rtMemAlloc(&ctx.c, 3));
    rtSListFreeAll(&ctx.c, &list);
    EXPECT_EQ(list.count, 0u);
    rtSListAppend(&ctx.c, &ctx.c.fieldList, V(1));
    rtSListAppend(&ctx.c, &ctx.c.evtList, V(2));
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtCopy, DeepCopiesIntoTheTypeHeap) {
  Context ctx;
  ASN1OBJID oid{3, {1, 2, 840}};
  ASN1OBJID oidCopy{};
  EXPECT_EQ(rtCopyOID(&ctx.c, &oid, &oidCopy), 0);
  EXPECT_EQ(rtCmpOID(&oid, &oidCopy), 1);
  oidCopy.subid[2] = 841;
  EXPECT_EQ(rtCmpOID(&oid, &oidCopy), 0);

  const ASN1OCTET bytes[] = {0x05, 0x00};
  ASN1OpenType open{2, bytes};
  ASN1OpenType openCopy{};
  EXPECT_EQ(rtCopyOpenType(&ctx.c, &open, &openCopy), 0);
  EXPECT_NE(openCopy.data, bytes);
  EXPECT_EQ(rttest::Hex(openCopy.data, openCopy.numocts), "05 00");

  ASN1DynBitStr bits{9, bytes};
  ASN1DynBitStr bitsCopy{};
  EXPECT_EQ(rtCopyDynBitStr(&ctx.c, &bits, &bitsCopy), 0);
  EXPECT_EQ(bitsCopy.numbits, 9u);
  EXPECT_EQ(rtMemHeapBlockSize(bitsCopy.data), 2u);

  ASN1DynOctStr empty{0, nullptr};
  ASN1DynOctStr emptyCopy{5, bytes};
  EXPECT_EQ(rtCopyDynOctStr(&ctx.c, &empty, &emptyCopy), 0);
  EXPECT_EQ(emptyCopy.numocts, 0u);
  EXPECT_EQ(emptyCopy.data, nullptr);

  const char* text = nullptr;
  EXPECT_EQ(rtCopyCharStr(&ctx.c, "abc", &text), 0);
  EXPECT_STREQ(text, "abc");
  ASN116BITCHAR units[] = {0x41, 0x263A};
  Asn116BitCharString s16{2, units};
  Asn116BitCharString s16Copy{};
  EXPECT_EQ(rtCopy16BitCharStr(&ctx.c, &s16, &s16Copy), 0);
  EXPECT_EQ(s16Copy.data[1], 0x263A);
  EXPECT_EQ(rtCopyOpenType(&ctx.c, nullptr, &openCopy), ASN_E_INVPARAM);
  // A copy onto itself does nothing.
  EXPECT_EQ(rtCopyOpenType(&ctx.c, &openCopy, &openCopy), 0);
}

// Each counted copy takes exactly the bytes its data spans, refuses a count
// with no data (-30) and leaves dest untouched when the heap fails (-12).
TEST(RtCopy, CountedRecordsCopyTheirBytesOrLeaveDest) {
  ScopedCountingAlloc scoped;
  Context ctx;
  static const ASN1OCTET kBytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
  static const ASN132BITCHAR kUcs[] = {0x1F600, 0x41};
  ASN116BITCHAR bmp[] = {0x41, 0x42, 0x43};
  struct Case {
    const char* name;
    std::function<int(bool withData)> copy;  // copies into dest, returns the status
    std::function<bool()> destUntouched;
    size_t blockSize;  // bytes of the copy's block
  };
  ASN1OpenType open{}, openDest{9, kBytes};
  ASN1DynOctStr oct{}, octDest{9, kBytes};
  ASN1DynBitStr bits{}, bitsDest{9, kBytes};
  Asn116BitCharString s16{}, s16Dest{9, bmp};
  Asn132BitCharString s32{}, s32Dest{9, nullptr};
  const std::vector<Case> cases = {
      {"open type",
       [&](bool d) {
         open = {5, d ? kBytes : nullptr};
         return rtCopyOpenType(&ctx, &open, &openDest);
       },
       [&] { return openDest.numocts == 9 && openDest.data == kBytes; }, 5},
      {"octet string",
       [&](bool d) {
         oct = {8, d ? kBytes : nullptr};
         return rtCopyDynOctStr(&ctx, &oct, &octDest);
       },
       [&] { return octDest.numocts == 9 && octDest.data == kBytes; }, 8},
      {"bit string",
       [&](bool d) {
         bits = {17, d ? kBytes : nullptr};
         return rtCopyDynBitStr(&ctx, &bits, &bitsDest);
       },
       [&] { return bitsDest.numbits == 9 && bitsDest.data == kBytes; }, 3},
      {"16-bit characters",
       [&](bool d) {
         s16 = {3, d ? bmp : nullptr};
         return rtCopy16BitCharStr(&ctx, &s16, &s16Dest);
       },
       [&] { return s16Dest.nchars == 9 && s16Dest.data == bmp; }, 6},
      {"32-bit characters",
       [&](bool d) {
         s32 = {2, d ? const_cast<ASN132BITCHAR*>(kUcs) : nullptr};
         return rtCopy32BitCharStr(&ctx, &s32, &s32Dest);
       },
       [&] { return s32Dest.nchars == 9 && s32Dest.data == nullptr; }, 8},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.copy(false), ASN_E_INVPARAM);
    EXPECT_TRUE(c.destUntouched());
    scoped.alloc.failAt = scoped.alloc.calls + 1;
    EXPECT_EQ(c.copy(true), ASN_E_NOMEM);
    scoped.alloc.failAt = -1;
    EXPECT_TRUE(c.destUntouched());
    EXPECT_EQ(c.copy(true), 0);
    EXPECT_EQ(scoped.alloc.lastSize, c.blockSize + ASN1_MEMBLOCK_HEADER);
  }
  EXPECT_EQ(rttest::Hex(openDest.data, openDest.numocts), "01 02 03 04 05");
  EXPECT_EQ(rttest::Hex(bitsDest.data, 3), "01 02 03");
  EXPECT_EQ(bitsDest.numbits, 17u);
  EXPECT_EQ(s16Dest.nchars, 3u);
  EXPECT_EQ(s16Dest.data[2], 0x43);
  EXPECT_EQ(s32Dest.nchars, 2u);
  EXPECT_EQ(s32Dest.data[0], 0x1F600u);
}

}  // namespace
