// context.cpp: life cycle of the runtime context and its heap handles.
#include <cstring>

#include "rtintern.h"

extern "C" {

int rtInitContext(ASN1CTXT* ctxt, void* userData) {
  if (!ctxt) return ASN_E_INVPARAM;
  std::memset(ctxt, 0, sizeof(*ctxt));
  ctxt->initCode = ASN1_CTXT_INITCODE;
  int stat = rtMemHeapCreate(&ctxt->pTypeMemHeap, userData);
  if (stat != ASN_OK) return stat;
  ctxt->pAllocUserData = userData;
  // One heap serves both handles; each handle holds its own reference.
  ctxt->pMsgMemHeap = ctxt->pTypeMemHeap;
  rtMemHeapAddRef(&ctxt->pMsgMemHeap);
  rtSListInit(&ctxt->fieldList);
  rtSListInit(&ctxt->evtList);
  return ASN_OK;
}

int rtInitContextBuffer(ASN1CTXT* ctxt, ASN1OCTET* buffer, ASN1UINT size) {
  if (!ctxt || ctxt->initCode != ASN1_CTXT_INITCODE) return ASN_E_NOTINIT;
  if (buffer) {
    ctxt->buffer.data = buffer;
    ctxt->buffer.size = size;
    ctxt->buffer.dynamic = 0;
  } else {
    if (size == 0) size = ASN_K_ENCBUFSIZ;
    auto* data = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&ctxt->pMsgMemHeap, size));
    if (!data) return ASN_E_NOMEM;
    ctxt->buffer.data = data;
    ctxt->buffer.size = size;
    ctxt->buffer.dynamic = 1;
  }
  ctxt->buffer.byteIndex = 0;
  ctxt->buffer.bitOffset = 8;
  return ASN_OK;
}

void rtFreeContext(ASN1CTXT* ctxt) {
  if (!ctxt || ctxt->initCode != ASN1_CTXT_INITCODE) return;
  if (ctxt->buffer.dynamic && ctxt->buffer.data && !(ctxt->flags & ASN1SAVEBUF)) {
    rtMemHeapFreePtr(&ctxt->pMsgMemHeap, ctxt->buffer.data);
    ctxt->buffer.data = nullptr;
  }
  rtStreamRelease(ctxt);
  rtSListFreeNodes(ctxt, &ctxt->fieldList);
  rtSListFreeNodes(ctxt, &ctxt->evtList);
  rtMemHeapRelease(&ctxt->pTypeMemHeap);
  rtMemHeapRelease(&ctxt->pMsgMemHeap);
  // A release that leaves a count above zero keeps the handle; this context is
  // done with both heaps either way.
  ctxt->pTypeMemHeap = nullptr;
  ctxt->pMsgMemHeap = nullptr;
  ctxt->initCode = 0;
}

void rtCopyContext(ASN1CTXT* dest, const ASN1CTXT* src) {
  if (!dest || !src || dest == src) return;
  dest->buffer = src->buffer;
  dest->flags = src->flags;
}

void rtCtxtSetFlag(ASN1CTXT* ctxt, ASN1USINT mask) {
  if (ctxt) ctxt->flags = static_cast<ASN1USINT>(ctxt->flags | mask);
}

void rtCtxtClearFlag(ASN1CTXT* ctxt, ASN1USINT mask) {
  if (ctxt) ctxt->flags = static_cast<ASN1USINT>(ctxt->flags & ~mask);
}

ASN1BOOL rtCtxtTestFlag(const ASN1CTXT* ctxt, ASN1USINT mask) {
  return ctxt && (ctxt->flags & mask) ? 1 : 0;
}

static void ShareHeap(void** handle, void** source) {
  if (*handle == *source) return;
  rtMemHeapRelease(handle);
  *handle = *source;
  rtMemHeapAddRef(handle);
}

void rtCtxtSetMemHeap(ASN1CTXT* ctxt, ASN1CTXT* srcCtxt) {
  if (!ctxt || !srcCtxt) return;
  ShareHeap(&ctxt->pTypeMemHeap, &srcCtxt->pTypeMemHeap);
}

void rtCtxtSetMsgMemHeap(ASN1CTXT* ctxt, ASN1CTXT* srcCtxt) {
  if (!ctxt || !srcCtxt) return;
  ShareHeap(&ctxt->pMsgMemHeap, &srcCtxt->pMsgMemHeap);
}

int rtStreamRelease(ASN1CTXT* ctxt) {
  if (!ctxt) return ASN_E_INVPARAM;
  if (ctxt->pStream) {
    rtMemHeapFreePtr(&ctxt->pMsgMemHeap, ctxt->pStream);
    ctxt->pStream = nullptr;
  }
  return ASN_OK;
}

}  // extern "C"
