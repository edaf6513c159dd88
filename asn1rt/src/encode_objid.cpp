// encode_objid.cpp: OBJECT IDENTIFIER contents (X.690 8.19): the first two arcs
// combined as first * 40 + second, every sub-identifier in base 128.
#include "encode_intern.h"

using korvex_rt::Fail;

extern "C" {

int xe_objid(ASN1CTXT* ctxt, const ASN1OBJID* oid, ASN1TagType tagging) {
  if (!oid) return Fail(ctxt, ASN_E_BADVALUE);
  ASN1UINT n = oid->numids;
  if (n < 2 || n > ASN_K_MAXSUBIDS) return Fail(ctxt, ASN_E_INVOBJID);
  ASN1UINT first = oid->subid[0];
  ASN1UINT second = oid->subid[1];
  // X.660: arcs 0 and 1 have at most 40 children; the combined value must fit.
  if (first > 2 || (first < 2 && second > 39) || (first == 2 && second > 0xFFFFFFFFu - 80)) {
    return Fail(ctxt, ASN_E_INVOBJID);
  }
  // Header (at most 11) + 127 arcs of at most 5 octets each.
  ASN1OCTET tmp[11 + 5 * ASN_K_MAXSUBIDS];
  ASN1OCTET* end = tmp + sizeof(tmp);
  ASN1OCTET* p = end;
  for (ASN1UINT i = n; i-- > 1;) {
    ASN1UINT v = i == 1 ? first * 40 + second : oid->subid[i];
    *--p = static_cast<ASN1OCTET>(v & 0x7F);
    v >>= 7;
    while (v) {
      *--p = static_cast<ASN1OCTET>(0x80 | (v & 0x7F));
      v >>= 7;
    }
  }
  int len = static_cast<int>(end - p);
  if (tagging == ASN1EXPL) p -= korvex_rt::PutHeaderBackwards(p, TM_UNIV | ASN_ID_OBJID, len);
  return korvex_rt::PutStaged(ctxt, p, static_cast<ASN1UINT>(end - p));
}

}  // extern "C"
