// decode_opentype.cpp: open types, i.e. complete elements taken as they stand
// (header included), copied into the type heap or, under ASN1OPENTYPEREF,
// pointing into the message.
#include <cstring>

#include "decode_intern.h"

using korvex_rt::Fail;

extern "C" {

int xd_OpenType(ASN1CTXT* ctxt, const ASN1OCTET** data, ASN1UINT* numocts) {
  if (!data || !numocts) return Fail(ctxt, ASN_E_BADVALUE);
  const ASN1UINT start = ctxt->buffer.byteIndex;
  if (start >= ctxt->buffer.size) return Fail(ctxt, ASN_E_ENDOFBUF);
  const ASN1OCTET* src = ctxt->buffer.data + start;
  // The common DER form measured in place: a one-octet tag, a definite length
  // of up to three octets, the element inside the buffer and not 00 00. Every
  // other form, and every error, takes the general path below.
  const ASN1UINT left = ctxt->buffer.size - start;
  if (!(ctxt->flags & ASN1INDEFLEN) && left >= 2 && (src[0] & 0x1F) != 0x1F && src[1] != 0x80 &&
      (src[0] | src[1]) != 0) {
    ASN1UINT len = src[1], header = 2;
    if (len > 0x80) {
      const ASN1UINT octets = len & 0x7F;
      header = octets <= 3 && left >= 2 + octets ? 2 + octets : 0;
      len = 0;
      for (ASN1UINT i = 2; i < header; ++i) len = (len << 8) | src[i];
    }
    if (header && len <= left - header) {
      const ASN1UINT total = header + len;
      if (ctxt->flags & ASN1OPENTYPEREF) {
        *data = src;
      } else {
        auto* copy = static_cast<ASN1OCTET*>(rtMemAlloc(ctxt, total));
        if (!copy) return Fail(ctxt, ASN_E_NOMEM);
        std::memcpy(copy, src, total);
        *data = copy;
      }
      *numocts = total;
      ctxt->buffer.byteIndex = start + total;
      return ASN_OK;
    }
  }
  // Lengths are checked here (-17 for an element longer than the buffer).
  ASN1USINT savedFlags = ctxt->flags;
  ctxt->flags |= ASN1NOLENCHECK;
  ASN1TAG tag = 0;
  int len = 0;
  bool cons = false;
  int stat = korvex_rt::ReadTagLen(ctxt, &tag, &len, &cons);
  if (stat == ASN_OK && len == ASN_K_INDEFLEN) stat = korvex_rt::SkipToEOC(ctxt);
  ctxt->flags = savedFlags;
  if (stat != ASN_OK) {
    ctxt->buffer.byteIndex = start;
    if (stat == ASN_E_ENDOFBUF && len == ASN_K_INDEFLEN) stat = ASN_E_STROVFLW;
    return Fail(ctxt, stat);
  }
  if (len != ASN_K_INDEFLEN) {
    if (tag == 0 && len == 0) {  // 00 00 is no element
      ctxt->buffer.byteIndex = start;
      return Fail(ctxt, ASN_E_STROVFLW);
    }
    if (static_cast<ASN1UINT>(len) > korvex_rt::Remaining(ctxt)) {
      ctxt->buffer.byteIndex = start;
      return Fail(ctxt, ASN_E_STROVFLW);
    }
    ctxt->buffer.byteIndex += static_cast<ASN1UINT>(len);
  }
  const ASN1UINT total = ctxt->buffer.byteIndex - start;
  if (ctxt->flags & ASN1OPENTYPEREF) {
    *data = src;
  } else {
    auto* copy = static_cast<ASN1OCTET*>(rtMemAlloc(ctxt, total));
    if (!copy) {
      ctxt->buffer.byteIndex = start;
      return Fail(ctxt, ASN_E_NOMEM);
    }
    std::memcpy(copy, src, total);
    *data = copy;
  }
  *numocts = total;
  return ASN_OK;
}

int xd_OpenTypeAppend(ASN1CTXT* ctxt, rtDList* list) {
  if (!list) return Fail(ctxt, ASN_E_BADVALUE);
  auto* open = rtMemAllocTypeZ(ctxt, ASN1OpenType);
  if (!open) return Fail(ctxt, ASN_E_NOMEM);
  int stat = xd_OpenType(ctxt, &open->data, &open->numocts);
  if (stat != ASN_OK) {
    rtMemFreePtr(ctxt, open);
    return stat;
  }
  if (!rtDListAppend(ctxt, list, open)) {
    if (!(ctxt->flags & ASN1OPENTYPEREF)) rtMemFreePtr(ctxt, open->data);
    rtMemFreePtr(ctxt, open);
    return Fail(ctxt, ASN_E_NOMEM);
  }
  return ASN_OK;
}

int xd_OpenTypeExt(ASN1CTXT* ctxt, ASN1UINT startIndex, int length, rtDList* list) {
  if (!list) return Fail(ctxt, ASN_E_BADVALUE);
  while (!xd_chkend(ctxt, startIndex, length)) {
    int stat = xd_OpenTypeAppend(ctxt, list);
    if (stat != ASN_OK) return stat;
  }
  return ASN_OK;
}

}  // extern "C"
