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

// The number of bytes the data pointer of each counted record spans.
size_t DataBytes(const ASN1OpenType& r) { return r.numocts; }
size_t DataBytes(const ASN1DynOctStr& r) { return r.numocts; }
size_t DataBytes(const ASN1DynBitStr& r) { return (static_cast<size_t>(r.numbits) + 7) / 8; }
size_t DataBytes(const Asn116BitCharString& r) { return static_cast<size_t>(r.nchars) * 2; }
size_t DataBytes(const Asn132BitCharString& r) { return static_cast<size_t>(r.nchars) * 4; }

// Deep copy of a record made of a count and a data pointer: the data goes
// into a new type-heap block (null when empty), then count and pointer are
// stored. dest is unchanged on failure; copying onto itself does nothing.
template <typename Rec, typename Count>
int CopyCounted(ASN1CTXT* ctxt, const Rec* src, Rec* dest, Count Rec::*count) {
  if (!ctxt || !src || !dest) return ASN_E_INVPARAM;
  if (src == dest) return ASN_OK;
  void* p;
  int stat = DupBytes(ctxt, src->data, DataBytes(*src), &p);
  if (stat != ASN_OK) return stat;
  dest->*count = src->*count;
  dest->data = static_cast<decltype(dest->data)>(p);
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
  return CopyCounted(ctxt, src, dest, &ASN1OpenType::numocts);
}

int rtCopyDynOctStr(ASN1CTXT* ctxt, const ASN1DynOctStr* src, ASN1DynOctStr* dest) {
  return CopyCounted(ctxt, src, dest, &ASN1DynOctStr::numocts);
}

int rtCopyDynBitStr(ASN1CTXT* ctxt, const ASN1DynBitStr* src, ASN1DynBitStr* dest) {
  return CopyCounted(ctxt, src, dest, &ASN1DynBitStr::numbits);
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
  return CopyCounted(ctxt, src, dest, &Asn116BitCharString::nchars);
}

int rtCopy32BitCharStr(ASN1CTXT* ctxt, const Asn132BitCharString* src,
                       Asn132BitCharString* dest) {
  return CopyCounted(ctxt, src, dest, &Asn132BitCharString::nchars);
}

int rtCmpOID(const ASN1OBJID* a, const ASN1OBJID* b) {
  if (!a || !b) return 0;
  if (a->numids != b->numids || a->numids > ASN_K_MAXSUBIDS) return 0;
  return std::memcmp(a->subid, b->subid, a->numids * sizeof(ASN1UINT)) == 0 ? 1 : 0;
}

}  // extern "C"
