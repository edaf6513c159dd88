// encode_buffer.cpp: the encode buffer. Messages are written from the end of
// the buffer towards its start; the last byte of the buffer is never written,
// so the encoded length is always size - 1 - byteIndex.
#include <cstring>

#include "encode_intern.h"

using korvex_rt::Fail;

extern "C" {

int xe_setp(ASN1CTXT* ctxt, ASN1OCTET* buffer, ASN1UINT size) {
  if (!ctxt) return ASN_E_INVPARAM;
  // A caller's buffer needs its never-written last byte.
  if (buffer && size == 0) return ASN_E_BUFOVFLW;
  int stat = rtInitContextBuffer(ctxt, buffer, size);
  if (stat != ASN_OK) return stat;
  ctxt->buffer.byteIndex = ctxt->buffer.size - 1;
  return ASN_OK;
}

ASN1OCTET* xe_getp(ASN1CTXT* ctxt) {
  if (!ctxt || !ctxt->buffer.data) return nullptr;
  return ctxt->buffer.data + ctxt->buffer.byteIndex;
}

ASN1UINT xe_getLength(const ASN1CTXT* ctxt) {
  if (!ctxt || ctxt->buffer.size == 0) return 0;
  return ctxt->buffer.size - 1 - ctxt->buffer.byteIndex;
}

int xe_expandBuffer(ASN1CTXT* ctxt, ASN1UINT n) {
  if (!ctxt) return ASN_E_INVPARAM;
  if (!ctxt->buffer.dynamic) return ASN_E_BUFOVFLW;
  // At least the default buffer size; at least half the current size too, so
  // that a long message is copied O(1) times per byte on average.
  size_t increment = n;
  if (increment < ASN_K_ENCBUFSIZ) increment = ASN_K_ENCBUFSIZ;
  if (increment < ctxt->buffer.size / 2) increment = ctxt->buffer.size / 2;
  size_t newSize = static_cast<size_t>(ctxt->buffer.size) + increment;
  if (newSize > ASN1_MEMBLOCK_MAX) {
    newSize = static_cast<size_t>(ctxt->buffer.size) + n;
    if (newSize > ASN1_MEMBLOCK_MAX) return ASN_E_NOMEM;
    increment = n;
  }
  // The runtime buffer belongs to the message heap (rtInitContextBuffer takes
  // it there and rtFreeContext frees it there), so it grows in the same heap.
  auto* grown = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&ctxt->pMsgMemHeap, newSize));
  if (!grown) return ASN_E_NOMEM;
  ASN1UINT used = ctxt->buffer.size - ctxt->buffer.byteIndex;  // with the spare last byte
  if (used) {
    std::memcpy(grown + newSize - used, ctxt->buffer.data + ctxt->buffer.byteIndex, used);
  }
  rtMemHeapFreePtr(&ctxt->pMsgMemHeap, ctxt->buffer.data);
  ctxt->buffer.data = grown;
  ctxt->buffer.byteIndex += static_cast<ASN1UINT>(increment);
  ctxt->buffer.size = static_cast<ASN1UINT>(newSize);
  return ASN_OK;
}

int xe_memcpy(ASN1CTXT* ctxt, const ASN1OCTET* bytes, ASN1UINT n) {
  if (!bytes) return Fail(ctxt, ASN_E_BADVALUE);
  if (n == 1 && ctxt->buffer.byteIndex >= 1) {  // the common single-octet case
    ctxt->buffer.data[--ctxt->buffer.byteIndex] = *bytes;
    return 1;
  }
  ASN1OCTET* dest;
  int stat = korvex_rt::Reserve(ctxt, n, &dest);
  if (stat != ASN_OK) return stat;
  if (n) std::memcpy(dest, bytes, n);
  return static_cast<int>(n);
}

void xe_getBufLocDescr(ASN1CTXT* ctxt, ASN1UINT length, Asn1BufLocDescr* descr) {
  if (!ctxt || !descr) return;
  descr->numocts = length;
  descr->offset = xe_getLength(ctxt);
}

void xu_SaveBufferState(ASN1CTXT* ctxt, ASN1BUFSAVE* state) {
  if (!ctxt) return;
  ASN1BUFSAVE* slot = state ? state : &ctxt->savedInfo;
  slot->byteIndex = ctxt->buffer.byteIndex;
  slot->bitOffset = ctxt->buffer.bitOffset;
  slot->flags = ctxt->flags;
}

void xu_RestoreBufferState(ASN1CTXT* ctxt, const ASN1BUFSAVE* state) {
  if (!ctxt) return;
  const ASN1BUFSAVE* slot = state ? state : &ctxt->savedInfo;
  ctxt->buffer.byteIndex = slot->byteIndex;
  ctxt->buffer.bitOffset = slot->bitOffset;
  ctxt->flags = static_cast<ASN1USINT>(slot->flags & ~ASN1LASTEOC);
}

}  // extern "C"

namespace korvex_rt {

int ReserveSlow(ASN1CTXT* ctxt, ASN1UINT n, ASN1OCTET** out) {
  int stat = xe_expandBuffer(ctxt, n);
  if (stat != ASN_OK) {
    *out = nullptr;
    return Fail(ctxt, stat);
  }
  ctxt->buffer.byteIndex -= n;
  *out = ctxt->buffer.data + ctxt->buffer.byteIndex;
  return ASN_OK;
}

}  // namespace korvex_rt
