// memheap.cpp: the runtime's memory heap and the process-wide allocators.
//
// A heap is a reference-counted, newest-first doubly linked list of blocks.
// Every allocation is its own call to the allocation function (n + 48 bytes:
// the block header, then the caller's bytes), so any block can be freed on its
// own in O(1) and all of them at once when the last reference goes.
#include <cstdlib>
#include <cstring>

#include "rtintern.h"

namespace {

rtMallocFunc g_malloc = rtDefaultMalloc;
rtReallocFunc g_realloc = rtDefaultRealloc;
rtFreeFunc g_free = rtDefaultFree;

inline ASN1MemBlock* BlockOf(const void* p) {
  return const_cast<ASN1MemBlock*>(reinterpret_cast<const ASN1MemBlock*>(p) - 1);
}

inline void* PayloadOf(ASN1MemBlock* block) { return block + 1; }

}  // namespace

namespace korvex_rt {
void* Malloc(void* userData, size_t size) { return g_malloc(userData, size); }
void Free(void* userData, void* ptr) { g_free(userData, ptr); }
}  // namespace korvex_rt

extern "C" {

void* rtDefaultMalloc(void*, size_t size) { return std::malloc(size); }
void* rtDefaultRealloc(void*, void* ptr, size_t size) { return std::realloc(ptr, size); }
void rtDefaultFree(void*, void* ptr) { std::free(ptr); }

void rtSetAllocFuncs(rtMallocFunc mallocFunc, rtReallocFunc reallocFunc, rtFreeFunc freeFunc) {
  g_malloc = mallocFunc ? mallocFunc : rtDefaultMalloc;
  g_realloc = reallocFunc ? reallocFunc : rtDefaultRealloc;
  g_free = freeFunc ? freeFunc : rtDefaultFree;
}

void rtGetAllocFuncs(rtMallocFunc* mallocFunc, rtReallocFunc* reallocFunc, rtFreeFunc* freeFunc) {
  if (mallocFunc) *mallocFunc = g_malloc;
  if (reallocFunc) *reallocFunc = g_realloc;
  if (freeFunc) *freeFunc = g_free;
}

int rtMemHeapCreate(void** ppHeap, void* userData) {
  if (!ppHeap) return ASN_E_INVPARAM;
  auto* heap = static_cast<ASN1MemHeap*>(g_malloc(userData, sizeof(ASN1MemHeap)));
  if (!heap) return ASN_E_NOMEM;
  std::memset(heap, 0, sizeof(*heap));
  heap->defBlkSize = ASN1_HEAP_DEFBLKSIZE;
  heap->refCnt = 1;
  heap->flags = ASN1_HEAP_RTALLOC;
  heap->pAllocUserData = userData;
  *ppHeap = heap;
  return ASN_OK;
}

void* rtMemHeapAlloc(void** ppHeap, size_t n) {
  if (!ppHeap || n > ASN1_MEMBLOCK_MAX) return nullptr;
  if (!*ppHeap && rtMemHeapCreate(ppHeap, nullptr) != ASN_OK) return nullptr;
  auto* heap = static_cast<ASN1MemHeap*>(*ppHeap);
  auto* block = static_cast<ASN1MemBlock*>(g_malloc(heap->pAllocUserData, n + sizeof(ASN1MemBlock)));
  if (!block) return nullptr;
  block->size = n;
  block->prev = nullptr;
  block->next = heap->newest;
  if (heap->newest) heap->newest->prev = block;
  heap->newest = block;
  return PayloadOf(block);
}

void* rtMemHeapAllocZ(void** ppHeap, size_t n) {
  void* p = rtMemHeapAlloc(ppHeap, n);
  if (p && n) std::memset(p, 0, n);
  return p;
}

void* rtMemHeapRealloc(void** ppHeap, void* p, size_t n) {
  if (!ppHeap || !*ppHeap) return nullptr;
  if (!p) return rtMemHeapAlloc(ppHeap, n);
  ASN1MemBlock* block = BlockOf(p);
  // Blocks never shrink: the smaller size is recorded, the bytes stay.
  if (block->size >= n) {
    block->size = n;
    return p;
  }
  void* grown = rtMemHeapAlloc(ppHeap, n);
  if (!grown) return nullptr;
  std::memcpy(grown, p, block->size);
  rtMemHeapFreePtr(ppHeap, p);
  return grown;
}

void rtMemHeapFreePtr(void** ppHeap, void* p) {
  if (!p || !ppHeap || !*ppHeap) return;
  auto* heap = static_cast<ASN1MemHeap*>(*ppHeap);
  ASN1MemBlock* block = BlockOf(p);
  if (block->next) block->next->prev = block->prev;
  if (block->prev) {
    block->prev->next = block->next;
  } else {
    heap->newest = block->next;
  }
  g_free(heap->pAllocUserData, block);
}

void rtMemHeapRelease(void** ppHeap) {
  if (!ppHeap || !*ppHeap) return;
  auto* heap = static_cast<ASN1MemHeap*>(*ppHeap);
  if (heap->refCnt > 1) {
    --heap->refCnt;
    return;
  }
  heap->refCnt = 0;
  void* userData = heap->pAllocUserData;
  for (ASN1MemBlock* block = heap->newest; block;) {
    ASN1MemBlock* older = block->next;
    g_free(userData, block);
    block = older;
  }
  heap->newest = nullptr;
  if (heap->flags & ASN1_HEAP_RTALLOC) g_free(userData, heap);
  *ppHeap = nullptr;
}

void rtMemHeapAddRef(void** ppHeap) {
  if (!ppHeap || !*ppHeap) return;
  ++static_cast<ASN1MemHeap*>(*ppHeap)->refCnt;
}

int rtMemHeapMarkSaved(void**, const void*, ASN1BOOL) { return ASN_OK; }

int rtMemHeapCheckPtr(void**, const void*) { return 1; }

size_t rtMemHeapBlockSize(const void* p) { return p ? BlockOf(p)->size : 0; }

size_t rtMemHeapBlockCount(void** ppHeap) {
  if (!ppHeap || !*ppHeap) return 0;
  size_t count = 0;
  for (ASN1MemBlock* b = static_cast<ASN1MemHeap*>(*ppHeap)->newest; b; b = b->next) ++count;
  return count;
}

void rtMemFreeOpenSeqExt(ASN1CTXT* ctxt, rtDList* list) {
  if (!ctxt || !list) return;
  for (rtDListNode* node = list->head; node; node = node->next) {
    auto* open = static_cast<ASN1OpenType*>(node->data);
    if (open && open->data) {
      rtMemFreePtr(ctxt, open->data);
      open->data = nullptr;
      open->numocts = 0;
    }
  }
  rtDListFreeAll(ctxt, list);
}

}  // extern "C"
