// rtintern.h: helpers shared by the runtime's sources; not installed.
#ifndef KORVEX_ASN1RT_SRC_RTINTERN_H
#define KORVEX_ASN1RT_SRC_RTINTERN_H

#include <cstddef>

#include <korvex/asn1rt/asn1ber.h>

struct ASN1CarveChunk;

// Header in front of every heap block: newest-first doubly linked list, and the
// requested size last, directly before the caller's bytes. 48 bytes keep the
// caller's bytes 16-byte aligned when the allocator returns 16-byte blocks.
struct ASN1MemBlock {
  ASN1MemBlock* next;  // older block
  ASN1MemBlock* prev;  // newer block
  void* reserved[2];
  ASN1CarveChunk* chunk;  // always null here: this block is an allocation of its own
  size_t size;
};
static_assert(sizeof(ASN1MemBlock) == ASN1_MEMBLOCK_HEADER, "heap block header is 48 bytes");

// Header of a block cut from a chunk (ASN1_HEAP_CARVE). Its two words sit where
// the last two words of ASN1MemBlock sit, so the word before the size tells the
// two kinds apart (a chunk here, null there) and the size is found alike.
struct ASN1CarvedBlock {
  ASN1CarveChunk* chunk;
  size_t size;
};
static_assert(sizeof(ASN1CarvedBlock) == 16, "carved block header is 16 bytes");

// Start of a chunk's bytes (the chunk itself is an ordinary block of the heap):
// the bytes cut so far, header included, its capacity and its live blocks.
struct ASN1CarveChunk {
  size_t used;
  size_t capacity;
  size_t live;
  size_t pad;  // keeps the first carved block 16-byte aligned
};
static_assert(sizeof(ASN1CarveChunk) % 16 == 0, "carved blocks stay 16-byte aligned");
static_assert(sizeof(ASN1MemHeap) == 48, "heap record is 48 bytes");

namespace korvex_rt {

// Process-wide allocation functions (memheap.cpp).
void* Malloc(void* userData, size_t size);
void Free(void* userData, void* ptr);

// Records stat in ctxt's error information and returns it.
inline int Fail(ASN1CTXT* ctxt, int stat) { return rtErrSetData(&ctxt->errInfo, stat); }

// Bytes left between the cursor and the end of the decode buffer.
inline ASN1UINT Remaining(const ASN1CTXT* ctxt) {
  return ctxt->buffer.byteIndex < ctxt->buffer.size ? ctxt->buffer.size - ctxt->buffer.byteIndex
                                                    : 0;
}

// Reads a tag and length at the cursor without recording errors or touching
// the saved-state slot. Sets *cons to the constructed bit. Returns 0 or status.
int ReadTagLen(ASN1CTXT* ctxt, ASN1TAG* tag, int* length, bool* cons);

// Skips the element at the cursor (header already unread). Iterative; nested
// indefinite levels are bounded by ASN_K_MAXDEPTH. Errors are not recorded.
int SkipElement(ASN1CTXT* ctxt);

// With the cursor just inside an indefinite-length element, moves past its
// end-of-contents octets. Errors are not recorded.
int SkipToEOC(ASN1CTXT* ctxt);

// Reads the universal tag and the length under explicit tagging for the
// primitive decoders: matches the one-octet tag, clears ASN1CONSTAG for a
// primitive element. Records failures.
int ExplicitHeader(ASN1CTXT* ctxt, ASN1OCTET tagOctet, int* length);

}  // namespace korvex_rt

#endif
