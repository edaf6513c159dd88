// encode_tag.cpp: identifier and length octets (X.690 8.1.2, 8.1.3), written in
// their shortest forms as DER requires (X.690 10.1).
#include <climits>

#include "encode_intern.h"

using korvex_rt::Fail;

extern "C" {

int xe_identifier(ASN1CTXT* ctxt, ASN1UINT value) {
  ASN1OCTET tmp[5];
  ASN1OCTET* end = tmp + sizeof(tmp);
  ASN1OCTET* p = end;
  *--p = static_cast<ASN1OCTET>(value & 0x7F);
  value >>= 7;
  while (value) {
    *--p = static_cast<ASN1OCTET>(0x80 | (value & 0x7F));
    value >>= 7;
  }
  return xe_memcpy(ctxt, p, static_cast<ASN1UINT>(end - p));
}

int xe_tag(ASN1CTXT* ctxt, ASN1TAG tag) {
  ASN1OCTET first = static_cast<ASN1OCTET>((tag >> 24) & 0xE0);
  ASN1UINT number = tag & TM_IDMASK;
  if (number < 31) {
    first = static_cast<ASN1OCTET>(first | number);
    return xe_memcpy(ctxt, &first, 1);
  }
  int ll = xe_identifier(ctxt, number);
  if (ll < 0) return ll;
  first = static_cast<ASN1OCTET>(first | 0x1F);
  int tl = xe_memcpy(ctxt, &first, 1);
  return tl < 0 ? tl : ll + tl;
}

int xe_len(ASN1CTXT* ctxt, int length) {
  if (length < 0 && length != ASN_K_INDEFLEN) return 0;
  ASN1OCTET tmp[8];  // up to five length octets and the tag octet
  int n = korvex_rt::PutHeaderBackwards(tmp + sizeof(tmp), 0, length) - 1;  // drop the tag
  return xe_memcpy(ctxt, tmp + sizeof(tmp) - n, static_cast<ASN1UINT>(n));
}

int xe_tag_len(ASN1CTXT* ctxt, ASN1TAG tag, int length) {
  // A negative length is the contents' failure status, passed on unchanged.
  if (length < 0 && length != ASN_K_INDEFLEN) return length;
  // The common case written in place: a one-octet tag and a definite length
  // below 65536 (at most four octets in all) with room in front.
  if (length >= 0 && length < 0x10000 && (tag & TM_IDMASK) < 31 && ctxt->buffer.byteIndex >= 4) {
    ASN1OCTET* p = ctxt->buffer.data + ctxt->buffer.byteIndex;
    if (length < 0x80) {
      *--p = static_cast<ASN1OCTET>(length);
    } else if (length < 0x100) {
      *--p = static_cast<ASN1OCTET>(length);
      *--p = 0x81;
    } else {
      *--p = static_cast<ASN1OCTET>(length);
      *--p = static_cast<ASN1OCTET>(length >> 8);
      *--p = 0x82;
    }
    *--p = static_cast<ASN1OCTET>(((tag >> 24) & 0xE0) | (tag & TM_IDMASK));
    const int n = static_cast<int>(ctxt->buffer.data + ctxt->buffer.byteIndex - p);
    ctxt->buffer.byteIndex -= static_cast<ASN1UINT>(n);
    return n + length;
  }
  ASN1OCTET tmp[16];
  int n = korvex_rt::PutHeaderBackwards(tmp + sizeof(tmp), tag, length);
  if (length > INT_MAX - n) return Fail(ctxt, ASN_E_BUFOVFLW);
  int stat = korvex_rt::PutStaged(ctxt, tmp + sizeof(tmp) - n, static_cast<ASN1UINT>(n));
  if (stat < 0) return stat;
  return length == ASN_K_INDEFLEN ? n : n + length;
}

}  // extern "C"
