// decode_walk.cpp: stepping over elements, end-of-contents handling and
// counting. Nested indefinite lengths are followed with a level counter, not
// recursion, and the depth is capped at ASN_K_MAXDEPTH (ASN_E_NESTING).
#include <cstring>

#include "decode_intern.h"

using korvex_rt::Fail;

namespace korvex_rt {

int SkipToEOC(ASN1CTXT* ctxt) {
  int level = 1;
  const ASN1OCTET* d = ctxt->buffer.data;
  for (;;) {
    ASN1UINT i = ctxt->buffer.byteIndex;
    if (i + 1 < ctxt->buffer.size && d[i] == 0 && d[i + 1] == 0) {  // X.690 8.1.5
      ctxt->buffer.byteIndex = i + 2;
      if (--level == 0) return ASN_OK;
      continue;
    }
    ASN1TAG tag;
    int len;
    bool cons;
    int stat = ReadTagLen(ctxt, &tag, &len, &cons);
    if (stat != ASN_OK) return stat;
    if (len == ASN_K_INDEFLEN) {
      if (++level > ASN_K_MAXDEPTH) return ASN_E_NESTING;
      continue;
    }
    // A definite element cannot hold the end-of-contents of an outer one, so
    // it is stepped over whole (constructed ones included).
    if (static_cast<ASN1UINT>(len) > Remaining(ctxt)) return ASN_E_ENDOFBUF;
    ctxt->buffer.byteIndex += static_cast<ASN1UINT>(len);
  }
}

int SkipElement(ASN1CTXT* ctxt) {
  ASN1TAG tag;
  int len;
  bool cons;
  int stat = ReadTagLen(ctxt, &tag, &len, &cons);
  if (stat != ASN_OK) return stat;
  if (len == ASN_K_INDEFLEN) return SkipToEOC(ctxt);
  if (static_cast<ASN1UINT>(len) > Remaining(ctxt)) return ASN_E_ENDOFBUF;
  ctxt->buffer.byteIndex += static_cast<ASN1UINT>(len);
  return ASN_OK;
}

int MeasureElement(ASN1CTXT* ctxt, ASN1UINT* total) {
  ASN1UINT start = ctxt->buffer.byteIndex;
  int stat = SkipElement(ctxt);
  *total = ctxt->buffer.byteIndex - start;
  ctxt->buffer.byteIndex = start;
  return stat;
}

}  // namespace korvex_rt

namespace {

inline bool AtEOC(const ASN1CTXT* ctxt) {
  ASN1UINT i = ctxt->buffer.byteIndex;
  return korvex_rt::Remaining(ctxt) >= 2 && ctxt->buffer.data[i] == 0 &&
         ctxt->buffer.data[i + 1] == 0;
}

// After an end-of-contents in indefinite-message mode: the outermost element
// ends where the measured message ends.
inline void NoteMessageEnd(ASN1CTXT* ctxt) {
  if ((ctxt->flags & ASN1INDEFLEN) && ctxt->buffer.byteIndex >= ctxt->buffer.size) {
    ctxt->flags |= ASN1LASTEOC;
  }
}

}  // namespace

extern "C" {

int xd_NextElement(ASN1CTXT* ctxt) {
  int stat = korvex_rt::SkipElement(ctxt);
  if (stat != ASN_OK) return Fail(ctxt, stat);
  NoteMessageEnd(ctxt);
  return ASN_OK;
}

int xd_MovePastEOC(ASN1CTXT* ctxt) {
  int stat = korvex_rt::SkipToEOC(ctxt);
  if (stat != ASN_OK) return Fail(ctxt, stat);
  NoteMessageEnd(ctxt);
  return ASN_OK;
}

int xd_MatchEOC(ASN1CTXT* ctxt) {
  if (korvex_rt::Remaining(ctxt) < 2) return Fail(ctxt, ASN_E_ENDOFBUF);
  if (!AtEOC(ctxt)) return ASN_E_IDNOTFOU;
  ctxt->buffer.byteIndex += 2;
  NoteMessageEnd(ctxt);
  return ASN_OK;
}

ASN1BOOL xd_chkend(ASN1CTXT* ctxt, ASN1UINT startIndex, int length) {
  if (ctxt->buffer.byteIndex >= ctxt->buffer.size) return 1;
  if (length == ASN_K_INDEFLEN) return AtEOC(ctxt) ? 1 : 0;
  if (length < 0) return 1;
  return static_cast<unsigned long long>(ctxt->buffer.byteIndex) >=
                 static_cast<unsigned long long>(startIndex) + static_cast<ASN1UINT>(length)
             ? 1
             : 0;
}

int xd_count(ASN1CTXT* ctxt, int length, int* count) {
  if (!count) return Fail(ctxt, ASN_E_INVPARAM);
  ASN1UINT start = ctxt->buffer.byteIndex;
  int n = 0;
  int stat = ASN_OK;
  if (length == ASN_K_INDEFLEN) {
    for (;;) {
      if (AtEOC(ctxt)) break;
      stat = korvex_rt::SkipElement(ctxt);
      if (stat != ASN_OK) break;
      ++n;
    }
  } else if (length < 0) {
    stat = ASN_E_INVLEN;
  } else if (static_cast<ASN1UINT>(length) > korvex_rt::Remaining(ctxt)) {
    stat = ASN_E_ENDOFBUF;
  } else {
    ASN1UINT end = start + static_cast<ASN1UINT>(length);
    while (ctxt->buffer.byteIndex < end) {
      stat = korvex_rt::SkipElement(ctxt);
      if (stat != ASN_OK) break;
      ++n;
    }
    // An element that runs over the counted range is malformed.
    if (stat == ASN_OK && ctxt->buffer.byteIndex != end) stat = ASN_E_INVLEN;
  }
  ctxt->buffer.byteIndex = start;
  if (stat != ASN_OK) return Fail(ctxt, stat);
  *count = n;
  return ASN_OK;
}

int xd_indeflen_ex(const ASN1OCTET* data, int maxLength) {
  if (maxLength < 5) return 0;
  if (!data) return ASN_E_INVPARAM;
  // A context on the stack: measuring needs no heap.
  ASN1CTXT tmp;
  std::memset(&tmp, 0, sizeof(tmp));
  tmp.buffer.data = const_cast<ASN1OCTET*>(data);
  tmp.buffer.size = static_cast<ASN1UINT>(maxLength);
  tmp.flags = ASN1NOLENCHECK;  // the walk checks each step itself
  ASN1TAG tag;
  int len;
  bool cons;
  int stat = korvex_rt::ReadTagLen(&tmp, &tag, &len, &cons);
  if (stat != ASN_OK) return stat;
  if (len != ASN_K_INDEFLEN) return ASN_E_INVLEN;
  stat = korvex_rt::SkipToEOC(&tmp);
  if (stat != ASN_OK) return stat;
  return static_cast<int>(tmp.buffer.byteIndex);
}

int xd_memcpy(ASN1CTXT* ctxt, ASN1OCTET* dest, int n) {
  if (n < 0) return Fail(ctxt, ASN_E_INVLEN);
  if (static_cast<ASN1UINT>(n) > korvex_rt::Remaining(ctxt)) return Fail(ctxt, ASN_E_ENDOFBUF);
  if (n) {
    if (!dest) return Fail(ctxt, ASN_E_BADVALUE);
    std::memcpy(dest, ctxt->buffer.data + ctxt->buffer.byteIndex, static_cast<size_t>(n));
  }
  ctxt->buffer.byteIndex += static_cast<ASN1UINT>(n);
  return ASN_OK;
}

}  // extern "C"
