// encode_bigint.cpp: INTEGER from big-integer text. The text conversion itself
// is rtBigIntFromText's; the octets are written straight into the encode
// buffer, so no working copy is made.
#include <korvex/asn1rt/rtBigInt.h>

#include "encode_intern.h"

using korvex_rt::Fail;

namespace {

// The minimal two's complement of a value that is not negative is also its
// minimal unsigned form with a 0x00 sign octet (X.690 8.3.2), so both entry
// points share one conversion; the unsigned one refuses negative values.
int PutBigInt(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging, bool isUnsigned) {
  if (!text) return Fail(ctxt, ASN_E_BADVALUE);
  auto fromText = rtBigIntFromText;
  int n = fromText(text, RT_BIGINT_RADIX_AUTO, nullptr, 0);
  if (n < 0) return Fail(ctxt, n == ASN_E_INVPARAM ? ASN_E_INVBIGINT : n);
  ASN1OCTET* dest;
  int stat = korvex_rt::Reserve(ctxt, static_cast<ASN1UINT>(n), &dest);
  if (stat != ASN_OK) return stat;
  int written = fromText(text, RT_BIGINT_RADIX_AUTO, dest, static_cast<size_t>(n));
  if (written != n) {
    ctxt->buffer.byteIndex += static_cast<ASN1UINT>(n);
    return Fail(ctxt, written < 0 ? written : ASN_E_INVBIGINT);
  }
  if (isUnsigned && (dest[0] & 0x80)) {
    ctxt->buffer.byteIndex += static_cast<ASN1UINT>(n);
    return Fail(ctxt, ASN_E_INVBIGINT);
  }
  if (tagging != ASN1EXPL) return n;
  return xe_tag_len(ctxt, TM_UNIV | ASN_ID_INT, n);
}

}  // namespace

extern "C" {

int xe_bigint(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging) {
  return PutBigInt(ctxt, text, tagging, false);
}

int xe_biguint(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging) {
  return PutBigInt(ctxt, text, tagging, true);
}

}  // extern "C"
