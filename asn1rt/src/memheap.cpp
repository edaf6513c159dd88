// memheap.cpp: the runtime's memory heap and the process-wide allocators.
//
// A heap is a reference-counted, newest-first doubly linked list of blocks.
// Every allocation is its own call to the allocation function (n + 48 bytes:
// the block header, then the caller's bytes), so any block can be freed on its
// own in O(1) and all of them at once when the last reference goes.
//
// A heap switched to carving (rtMemHeapSetCarving) cuts requests of up to
// ASN1_HEAP_CARVE_MAX bytes from chunks instead: a chunk is an ordinary block
// of the list, its carved blocks carry a 16-byte header (chunk, size), and the
// chunk counts its live blocks so that it goes back to the free function when
// the last of them is freed. Decoding a certificate then costs a handful of
// allocation calls instead of one per field, and its blocks sit side by side.
//
// Under AddressSanitizer the parts of a chunk that belong to no live block
// (carved headers, the padding after each block, freed blocks, the unused
// tail) are poisoned, so that an overrun from one carved block into the next
// is reported as it would be between two malloc blocks.
#include <cstdlib>
#include <cstring>

#include "rtintern.h"

#if defined(__SANITIZE_ADDRESS__)
#define KORVEX_HEAP_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORVEX_HEAP_ASAN 1
#endif
#endif

#ifdef KORVEX_HEAP_ASAN
#include <sanitizer/asan_interface.h>
// Reads and writes of carved headers, which lie in poisoned memory.
#define KORVEX_HEADER_ACCESS __attribute__((no_sanitize_address, noinline))
#else
#define KORVEX_HEADER_ACCESS inline
#endif

namespace {

#ifdef KORVEX_HEAP_ASAN
inline void Poison(const void* p, size_t n) { ASAN_POISON_MEMORY_REGION(p, n); }
inline void Unpoison(const void* p, size_t n) { ASAN_UNPOISON_MEMORY_REGION(p, n); }
#else
inline void Poison(const void*, size_t) {}
inline void Unpoison(const void*, size_t) {}
#endif

rtMallocFunc g_malloc = rtDefaultMalloc;
rtReallocFunc g_realloc = rtDefaultRealloc;
rtFreeFunc g_free = rtDefaultFree;

// Chunk sizes: 8 KB first (a small value fits), then doubling up to 1 MB so
// that a certificate takes two chunks and a large CRL a few dozen.
constexpr size_t kFirstChunk = 8192 - ASN1_MEMBLOCK_HEADER;
constexpr unsigned kChunkDoublings = 7;

inline ASN1MemBlock* BlockOf(const void* p) {
  return const_cast<ASN1MemBlock*>(reinterpret_cast<const ASN1MemBlock*>(p) - 1);
}

inline ASN1CarvedBlock* CarvedOf(const void* p) {
  return const_cast<ASN1CarvedBlock*>(reinterpret_cast<const ASN1CarvedBlock*>(p) - 1);
}

inline void* PayloadOf(ASN1MemBlock* block) { return block + 1; }

inline size_t Round16(size_t n) { return (n + 15) & ~static_cast<size_t>(15); }

// The header word before the size: a carved block's chunk, null for an
// ordinary block (whose header is never poisoned).
KORVEX_HEADER_ACCESS ASN1CarveChunk* HeaderChunk(const void* p) { return CarvedOf(p)->chunk; }

// The size is the last header word for both kinds of block.
KORVEX_HEADER_ACCESS size_t HeaderSize(const void* p) { return CarvedOf(p)->size; }

KORVEX_HEADER_ACCESS void SetHeaderSize(void* p, size_t n) { CarvedOf(p)->size = n; }

KORVEX_HEADER_ACCESS void SetCarvedHeader(ASN1CarvedBlock* carved, ASN1CarveChunk* chunk,
                                          size_t n) {
  carved->chunk = chunk;
  carved->size = n;
}

// The bytes of a chunk after its ASN1CarveChunk record.
inline unsigned char* CarveArea(ASN1CarveChunk* chunk) {
  return reinterpret_cast<unsigned char*>(chunk) + sizeof(ASN1CarveChunk);
}

// One allocation of its own, linked in at the head of the list.
void* AllocBlock(ASN1MemHeap* heap, size_t n) {
  auto* block =
      static_cast<ASN1MemBlock*>(g_malloc(heap->pAllocUserData, n + sizeof(ASN1MemBlock)));
  if (!block) return nullptr;
  block->chunk = nullptr;
  block->size = n;
  block->prev = nullptr;
  block->next = heap->newest;
  if (heap->newest) heap->newest->prev = block;
  heap->newest = block;
  return PayloadOf(block);
}

// Memory goes back to the allocation function addressable: it may be a pool
// of the caller's that hands it out again (a no-op for other blocks than chunks).
void FreeBlock(ASN1MemHeap* heap, ASN1MemBlock* block) {
  Unpoison(PayloadOf(block), block->size);
  if (block->next) block->next->prev = block->prev;
  if (block->prev) {
    block->prev->next = block->next;
  } else {
    heap->newest = block->next;
  }
  g_free(heap->pAllocUserData, block);
}

// A new chunk with room for at least need bytes; it becomes the heap's chunk,
// and the chunk it replaces goes back when it holds no live block.
ASN1CarveChunk* NewChunk(ASN1MemHeap* heap, size_t need) {
  const unsigned doublings =
      heap->carveGrowth < kChunkDoublings ? heap->carveGrowth : kChunkDoublings;
  size_t bytes = ((kFirstChunk + ASN1_MEMBLOCK_HEADER) << doublings) - ASN1_MEMBLOCK_HEADER;
  if (bytes < need + sizeof(ASN1CarveChunk)) bytes = need + sizeof(ASN1CarveChunk);
  auto* chunk = static_cast<ASN1CarveChunk*>(AllocBlock(heap, bytes));
  if (!chunk) return nullptr;
  chunk->used = sizeof(ASN1CarveChunk);
  chunk->capacity = bytes;
  chunk->live = 0;
  chunk->pad = 0;
  Poison(CarveArea(chunk), bytes - sizeof(ASN1CarveChunk));
  auto* old = static_cast<ASN1CarveChunk*>(heap->carveChunk);
  if (old && old->live == 0) FreeBlock(heap, BlockOf(old));
  heap->carveChunk = chunk;
  ++heap->carveGrowth;
  return chunk;
}

void* Carve(ASN1MemHeap* heap, size_t n) {
  const size_t need = sizeof(ASN1CarvedBlock) + Round16(n);
  auto* chunk = static_cast<ASN1CarveChunk*>(heap->carveChunk);
  if (!chunk || chunk->capacity - chunk->used < need) {
    chunk = NewChunk(heap, need);
    if (!chunk) return nullptr;
  }
  auto* carved =
      reinterpret_cast<ASN1CarvedBlock*>(reinterpret_cast<unsigned char*>(chunk) + chunk->used);
  chunk->used += need;
  ++chunk->live;
  SetCarvedHeader(carved, chunk, n);
  Unpoison(carved + 1, n);
  return carved + 1;
}

// The last live block of a chunk takes the chunk with it; the heap's current
// chunk is only rewound, so that a decode-free loop reuses it.
void FreeCarved(ASN1MemHeap* heap, void* p) {
  ASN1CarveChunk* chunk = HeaderChunk(p);
  Poison(p, Round16(HeaderSize(p)));
  if (--chunk->live != 0) return;
  if (chunk == heap->carveChunk) {
    chunk->used = sizeof(ASN1CarveChunk);
    Poison(CarveArea(chunk), chunk->capacity - sizeof(ASN1CarveChunk));
  } else {
    FreeBlock(heap, BlockOf(chunk));
  }
}

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
  if ((heap->flags & ASN1_HEAP_CARVE) && n <= ASN1_HEAP_CARVE_MAX) return Carve(heap, n);
  return AllocBlock(heap, n);
}

void* rtMemHeapAllocZ(void** ppHeap, size_t n) {
  void* p = rtMemHeapAlloc(ppHeap, n);
  if (p && n) std::memset(p, 0, n);
  return p;
}

void* rtMemHeapRealloc(void** ppHeap, void* p, size_t n) {
  if (!ppHeap || !*ppHeap) return nullptr;
  if (!p) return rtMemHeapAlloc(ppHeap, n);
  const size_t size = HeaderSize(p);
  // Blocks never shrink: the smaller size is recorded, the bytes stay (and a
  // carved block's bytes past it are poisoned again).
  if (size >= n) {
    SetHeaderSize(p, n);
    if (HeaderChunk(p) && Round16(size) > n) Poison(static_cast<char*>(p) + n, Round16(size) - n);
    return p;
  }
  void* grown = rtMemHeapAlloc(ppHeap, n);
  if (!grown) return nullptr;
  std::memcpy(grown, p, size);
  rtMemHeapFreePtr(ppHeap, p);
  return grown;
}

void rtMemHeapFreePtr(void** ppHeap, void* p) {
  if (!p || !ppHeap || !*ppHeap) return;
  auto* heap = static_cast<ASN1MemHeap*>(*ppHeap);
  if (HeaderChunk(p)) {
    FreeCarved(heap, p);
  } else {
    FreeBlock(heap, BlockOf(p));
  }
}

int rtMemHeapSetCarving(void** ppHeap, ASN1BOOL on) {
  if (!ppHeap || !*ppHeap) return ASN_E_INVPARAM;
  auto* heap = static_cast<ASN1MemHeap*>(*ppHeap);
  if (on) {
    heap->flags |= ASN1_HEAP_CARVE;
  } else {
    heap->flags &= ~ASN1_HEAP_CARVE;
    // Nothing more is cut from the current chunk; it goes with its last block.
    auto* chunk = static_cast<ASN1CarveChunk*>(heap->carveChunk);
    heap->carveChunk = nullptr;
    if (chunk && chunk->live == 0) FreeBlock(heap, BlockOf(chunk));
  }
  return ASN_OK;
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
    Unpoison(PayloadOf(block), block->size);
    g_free(userData, block);
    block = older;
  }
  heap->newest = nullptr;
  heap->carveChunk = nullptr;
  if (heap->flags & ASN1_HEAP_RTALLOC) g_free(userData, heap);
  *ppHeap = nullptr;
}

void rtMemHeapAddRef(void** ppHeap) {
  if (!ppHeap || !*ppHeap) return;
  ++static_cast<ASN1MemHeap*>(*ppHeap)->refCnt;
}

int rtMemHeapMarkSaved(void**, const void*, ASN1BOOL) { return ASN_OK; }

int rtMemHeapCheckPtr(void**, const void*) { return 1; }

size_t rtMemHeapBlockSize(const void* p) { return p ? HeaderSize(p) : 0; }

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
