// copy.cpp: deep copies of runtime value records into the type heap, used by
// the generated copy functions.
#include <cstring>

#include "rtintern.h"

namespace {

// Copies n bytes into a new type-heap block; null for n == 0.
int DupBytes(ASN1CTXT* ctxt, const void* src, size_t n, void** out) {
  *out = nullptr;
  if (n == 0) return ASN_OK;
  if (!src) return ASN_E_INVPARAM;
  void* p = rtMemAlloc(ctxt, n);
  if (!p) return ASN_E_NOMEM;
  std::memcpy(p, src, n);
  *out = p;
  return ASN_OK;
}

}  // namespace

extern "C" {

int rtCopyOID(ASN1CTXT*, const ASN1OBJID* src, ASN1OBJID* dest) {
  if (!src || !dest) return ASN_E_INVPARAM;
  if (src == dest) return ASN_OK;
  ASN1UINT n = src->numids > ASN_K_MAXSUBIDS ? ASN_K_MAXSUBIDS : src->numids;
  dest->numids = n;
  std::memcpy(dest->subid, src->subid, n * sizeof(ASN1UINT));
  return ASN_OK;
}

int rtCopyOpenType(ASN1CTXT* ctxt, const ASN1OpenType* src, ASN1OpenType* dest) {
  if (!ctxt || !src || !dest) return ASN_E_INVPARAM;
  if (src == dest) return ASN_OK;
  void* p;
  int stat = DupBytes(ctxt, src->data, src->numocts, &p);
  if (stat != ASN_OK) return stat;
  dest->numocts = src->numocts;
  dest->data = static_cast<const ASN1OCTET*>(p);
  return ASN_OK;
}

int rtCopyDynOctStr(ASN1CTXT* ctxt, const ASN1DynOctStr* src, ASN1DynOctStr* dest) {
  if (!ctxt || !src || !dest) return ASN_E_INVPARAM;
  if (src == dest) return ASN_OK;
  void* p;
  int stat = DupBytes(ctxt, src->data, src->numocts, &p);
  if (stat != ASN_OK) return stat;
  dest->numocts = src->numocts;
  dest->data = static_cast<const ASN1OCTET*>(p);
  return ASN_OK;
}

int rtCopyDynBitStr(ASN1CTXT* ctxt, const ASN1DynBitStr* src, ASN1DynBitStr* dest) {
  if (!ctxt || !src || !dest) return ASN_E_INVPARAM;
  if (src == dest) return ASN_OK;
  void* p;
  int stat = DupBytes(ctxt, src->data, (static_cast<size_t>(src->numbits) + 7) / 8, &p);
  if (stat != ASN_OK) return stat;
  dest->numbits = src->numbits;
  dest->data = static_cast<const ASN1OCTET*>(p);
  return ASN_OK;
}

int rtCopyCharStr(ASN1CTXT* ctxt, const char* src, const char** dest) {
  if (!ctxt || !dest) return ASN_E_INVPARAM;
  if (!src) {
    *dest = nullptr;
    return ASN_OK;
  }
  if (*dest == src) return ASN_OK;
  void* p;
  int stat = DupBytes(ctxt, src, std::strlen(src) + 1, &p);
  if (stat != ASN_OK) return stat;
  *dest = static_cast<const char*>(p);
  return ASN_OK;
}

int rtCopy16BitCharStr(ASN1CTXT* ctxt, const Asn116BitCharString* src,
                       Asn116BitCharString* dest) {
  if (!ctxt || !src || !dest) return ASN_E_INVPARAM;
  if (src == dest) return ASN_OK;
  void* p;
  int stat = DupBytes(ctxt, src->data, static_cast<size_t>(src->nchars) * 2, &p);
  if (stat != ASN_OK) return stat;
  dest->nchars = src->nchars;
  dest->data = static_cast<ASN116BITCHAR*>(p);
  return ASN_OK;
}

int rtCopy32BitCharStr(ASN1CTXT* ctxt, const Asn132BitCharString* src,
                       Asn132BitCharString* dest) {
  if (!ctxt || !src || !dest) return ASN_E_INVPARAM;
  if (src == dest) return ASN_OK;
  void* p;
  int stat = DupBytes(ctxt, src->data, static_cast<size_t>(src->nchars) * 4, &p);
  if (stat != ASN_OK) return stat;
  dest->nchars = src->nchars;
  dest->data = static_cast<ASN132BITCHAR*>(p);
  return ASN_OK;
}

int rtCmpOID(const ASN1OBJID* a, const ASN1OBJID* b) {
  if (!a || !b) return 0;
  if (a->numids != b->numids || a->numids > ASN_K_MAXSUBIDS) return 0;
  return std::memcmp(a->subid, b->subid, a->numids * sizeof(ASN1UINT)) == 0 ? 1 : 0;
}

}  // extern "C"
