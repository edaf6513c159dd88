// decode_objid.cpp: OBJECT IDENTIFIER (X.690 8.19).
#include "decode_intern.h"

using korvex_rt::Fail;

extern "C" {

int xd_objid(ASN1CTXT* ctxt, ASN1OBJID* oid, ASN1TagType tagging, int length) {
  if (!oid) return Fail(ctxt, ASN_E_BADVALUE);
  int stat = korvex_rt::PrimitiveHeader(ctxt, ASN_ID_OBJID, tagging, &length);
  if (stat != ASN_OK) return stat;
  if (length < 1) return Fail(ctxt, ASN_E_INVLEN);
  stat = korvex_rt::CheckContents(ctxt, length);
  if (stat != ASN_OK) return stat;
  const ASN1OCTET* p = ctxt->buffer.data + ctxt->buffer.byteIndex;
  const ASN1OCTET* end = p + length;
  ASN1UINT n = 0;
  // The first octet alone is the first sub-identifier in nearly every OID
  // (both arcs below 128 together): taken before the general loop.
  if (*p < 0x80) {
    const ASN1UINT v = *p++;
    const ASN1UINT first = v < 40 ? 0 : v < 80 ? 1 : 2;
    oid->subid[0] = first;
    oid->subid[1] = v - 40u * first;
    n = 2;
  }
  while (p < end) {
    // Most later sub-identifiers are one octet: stored without the loop.
    if (n >= 2 && *p < 0x80) {
      if (n >= ASN_K_MAXSUBIDS) return Fail(ctxt, ASN_E_INVOBJID);
      oid->subid[n++] = *p++;
      continue;
    }
    // A sub-identifier must not start with 0x80 (X.690 8.19.2) and must fit
    // in 32 bits.
    if (*p == 0x80) return Fail(ctxt, ASN_E_INVOBJID);
    unsigned long long v = 0;
    ASN1OCTET c;
    do {
      if (p == end) return Fail(ctxt, ASN_E_INVOBJID);  // ends inside a sub-identifier
      c = *p++;
      v = (v << 7) | (c & 0x7F);
      if (v > 0xFFFFFFFFull) return Fail(ctxt, ASN_E_INVOBJID);
    } while (c & 0x80);
    if (n == 0) {
      // The first sub-identifier holds two arcs (X.690 8.19.4).
      ASN1UINT first = v < 40 ? 0 : v < 80 ? 1 : 2;
      oid->subid[0] = first;
      oid->subid[1] = static_cast<ASN1UINT>(v - 40ull * first);
      n = 2;
    } else {
      if (n >= ASN_K_MAXSUBIDS) return Fail(ctxt, ASN_E_INVOBJID);
      oid->subid[n++] = static_cast<ASN1UINT>(v);
    }
  }
  oid->numids = n;
  ctxt->buffer.byteIndex += static_cast<ASN1UINT>(length);
  return ASN_OK;
}

}  // extern "C"
