// rtintern.h: helpers shared by the runtime's sources; not installed.
#ifndef KORVEX_ASN1RT_SRC_RTINTERN_H
#define KORVEX_ASN1RT_SRC_RTINTERN_H

#include <cstddef>

#include <korvex/asn1rt/asn1ber.h>

// Header in front of every heap block: newest-first doubly linked list, and the
// requested size last, directly before the caller's bytes. 48 bytes keep the
// caller's bytes 16-byte aligned when the allocator returns 16-byte blocks.
struct ASN1MemBlock {
  ASN1MemBlock* next;  // older block
  ASN1MemBlock* prev;  // newer block
  void* reserved[3];
  size_t size;
};
static_assert(sizeof(ASN1MemBlock) == ASN1_MEMBLOCK_HEADER, "heap block header is 48 bytes");
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
