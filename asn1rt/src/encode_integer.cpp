// encode_integer.cpp: BOOLEAN, INTEGER, ENUMERATED and NULL (X.690 8.2-8.4,
// 8.8). Integers take their minimal two's-complement form (X.690 8.3.2).
#include "encode_intern.h"

using korvex_rt::Fail;

namespace {

// Writes contents (already laid out in tmp[begin, end)) and, under explicit
// tagging, the universal tag and length.
int PutPrimitive(ASN1CTXT* ctxt, const ASN1OCTET* contents, int n, ASN1TagType tagging,
                 ASN1TAG tag) {
  ASN1OCTET tmp[16];
  ASN1OCTET* end = tmp + sizeof(tmp);
  ASN1OCTET* p = end - n;
  for (int i = 0; i < n; ++i) p[i] = contents[i];
  if (tagging == ASN1EXPL) p -= korvex_rt::PutHeaderBackwards(p, tag, n);
  return korvex_rt::PutStaged(ctxt, p, static_cast<ASN1UINT>(end - p));
}

// Minimal two's complement of v into the end of out; returns the octet count.
int SignedOctets(long long v, ASN1OCTET* outEnd) {
  ASN1OCTET* p = outEnd;
  ASN1OCTET last;
  do {
    last = static_cast<ASN1OCTET>(v & 0xFF);
    *--p = last;
    v >>= 8;  // arithmetic shift: the value converges on 0 or -1
  } while (v != 0 && v != -1);
  if (v == 0 && (last & 0x80)) *--p = 0x00;
  if (v == -1 && !(last & 0x80)) *--p = 0xFF;
  return static_cast<int>(outEnd - p);
}

// Minimal unsigned octets of v, with 0x00 in front when the top bit is set.
int UnsignedOctets(unsigned long long v, ASN1OCTET* outEnd) {
  ASN1OCTET* p = outEnd;
  ASN1OCTET last;
  do {
    last = static_cast<ASN1OCTET>(v & 0xFF);
    *--p = last;
    v >>= 8;
  } while (v != 0);
  if (last & 0x80) *--p = 0x00;
  return static_cast<int>(outEnd - p);
}

int PutSigned(ASN1CTXT* ctxt, long long v, ASN1TagType tagging, ASN1TAG tag) {
  ASN1OCTET tmp[9];
  int n = SignedOctets(v, tmp + sizeof(tmp));
  return PutPrimitive(ctxt, tmp + sizeof(tmp) - n, n, tagging, tag);
}

int PutUnsigned(ASN1CTXT* ctxt, unsigned long long v, ASN1TagType tagging) {
  ASN1OCTET tmp[9];
  int n = UnsignedOctets(v, tmp + sizeof(tmp));
  return PutPrimitive(ctxt, tmp + sizeof(tmp) - n, n, tagging, TM_UNIV | ASN_ID_INT);
}

}  // namespace

extern "C" {

int xe_boolean(ASN1CTXT* ctxt, const ASN1BOOL* value, ASN1TagType tagging) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  ASN1OCTET octet = *value ? 0xFF : 0x00;  // X.690 11.1
  return PutPrimitive(ctxt, &octet, 1, tagging, TM_UNIV | ASN_ID_BOOL);
}

int xe_integer(ASN1CTXT* ctxt, const ASN1INT* value, ASN1TagType tagging) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  return PutSigned(ctxt, *value, tagging, TM_UNIV | ASN_ID_INT);
}

int xe_enum(ASN1CTXT* ctxt, const ASN1INT* value, ASN1TagType tagging) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  return PutSigned(ctxt, *value, tagging, TM_UNIV | ASN_ID_ENUM);
}

int xe_int64(ASN1CTXT* ctxt, const ASN1INT64* value, ASN1TagType tagging) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  return PutSigned(ctxt, *value, tagging, TM_UNIV | ASN_ID_INT);
}

int xe_unsigned(ASN1CTXT* ctxt, const ASN1UINT* value, ASN1TagType tagging) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  return PutUnsigned(ctxt, *value, tagging);
}

int xe_uint16(ASN1CTXT* ctxt, const ASN1USINT* value, ASN1TagType tagging) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  return PutUnsigned(ctxt, *value, tagging);
}

int xe_null(ASN1CTXT* ctxt, ASN1TagType tagging) {
  if (tagging != ASN1EXPL) return 0;
  return xe_tag_len(ctxt, TM_UNIV | ASN_ID_NULL, 0);
}

}  // extern "C"
