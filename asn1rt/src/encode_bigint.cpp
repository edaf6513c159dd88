// encode_bigint.cpp: INTEGER from big-integer text. The text conversion itself
// is rtBigIntFromText's; the octets are written straight into the encode
// buffer, so no working copy is made.
#include <korvex/asn1rt/rtBigInt.h>

#include "encode_intern.h"

using korvex_rt::Fail;

namespace {

using FromTextFn = int (*)(const char*, int, unsigned char*, size_t);

int PutBigInt(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging, FromTextFn fromText) {
  if (!text) return Fail(ctxt, ASN_E_BADVALUE);
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
  if (tagging != ASN1EXPL) return n;
  return xe_tag_len(ctxt, TM_UNIV | ASN_ID_INT, n);
}

}  // namespace

extern "C" {

int xe_bigint(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging) {
  return PutBigInt(ctxt, text, tagging, rtBigIntFromText);
}

int xe_biguint(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging) {
  return PutBigInt(ctxt, text, tagging, rtBigIntFromTextUnsigned);
}

}  // extern "C"
