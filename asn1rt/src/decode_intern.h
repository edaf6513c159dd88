// decode_intern.h: helpers shared by the decoder sources; not installed.
#ifndef KORVEX_ASN1RT_SRC_DECODE_INTERN_H
#define KORVEX_ASN1RT_SRC_DECODE_INTERN_H

#include "rtintern.h"

namespace korvex_rt {

// Header of a primitive decoder: under explicit tagging matches the universal
// tag octet and reads the length; a constructed form is refused with -3 when
// the type has only a primitive form (X.690 8.2.1, 8.3.1, 8.8.1, 8.19.1).
// Under implicit tagging takes the caller's length. Clears ASN1CONSTAG.
// Records failures.
inline int PrimitiveHeader(ASN1CTXT* ctxt, ASN1OCTET tagOctet, ASN1TagType tagging,
                           int* length) {
  if (tagging == ASN1EXPL) {
    int stat = ExplicitHeader(ctxt, tagOctet, length);
    if (stat != ASN_OK) return stat;
    if (ctxt->flags & ASN1CONSTAG) {
      ctxt->flags = static_cast<ASN1USINT>(ctxt->flags & ~ASN1CONSTAG);
      return Fail(ctxt, ASN_E_IDNOTFOU);
    }
  }
  ctxt->flags = static_cast<ASN1USINT>(ctxt->flags & ~ASN1CONSTAG);
  return ASN_OK;
}

// Checks that n contents bytes are present at the cursor: -5 for a negative
// or indefinite length, -2 when the data ends first. Records failures.
inline int CheckContents(ASN1CTXT* ctxt, int n) {
  if (n < 0) return Fail(ctxt, ASN_E_INVLEN);
  if (static_cast<ASN1UINT>(n) > Remaining(ctxt)) return Fail(ctxt, ASN_E_ENDOFBUF);
  return ASN_OK;
}

// Measures the element at ctxt's cursor: its complete length, header and
// end-of-contents octets included. The cursor is restored. Not recorded.
int MeasureElement(ASN1CTXT* ctxt, ASN1UINT* total);

}  // namespace korvex_rt

#endif
