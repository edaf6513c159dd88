// decode_integer.cpp: BOOLEAN, INTEGER, ENUMERATED and NULL (X.690 8.2-8.4,
// 8.8). Contents longer than the target can hold give ASN_E_TOOBIG.
#include <korvex/asn1rt/rtBigInt.h>

#include "decode_intern.h"

using korvex_rt::Fail;

namespace {

// Reads 1..maxOctets contents octets as a sign-extended big-endian value.
int ReadSigned(ASN1CTXT* ctxt, ASN1OCTET tagOctet, ASN1TagType tagging, int length,
               int maxOctets, long long* value) {
  int stat = korvex_rt::PrimitiveHeader(ctxt, tagOctet, tagging, &length);
  if (stat != ASN_OK) return stat;
  if (length == 0 || length == ASN_K_INDEFLEN) return Fail(ctxt, ASN_E_INVLEN);  // X.690 8.3.1
  if (length > maxOctets) return Fail(ctxt, ASN_E_TOOBIG);
  stat = korvex_rt::CheckContents(ctxt, length);
  if (stat != ASN_OK) return stat;
  const ASN1OCTET* p = ctxt->buffer.data + ctxt->buffer.byteIndex;
  unsigned long long v = (p[0] & 0x80) ? ~0ULL : 0ULL;
  for (int i = 0; i < length; ++i) v = (v << 8) | p[i];
  ctxt->buffer.byteIndex += static_cast<ASN1UINT>(length);
  *value = static_cast<long long>(v);
  return ASN_OK;
}

}  // namespace

extern "C" {

int xd_boolean(ASN1CTXT* ctxt, ASN1BOOL* value, ASN1TagType tagging, int length) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  int stat = korvex_rt::PrimitiveHeader(ctxt, TM_UNIV | ASN_ID_BOOL, tagging, &length);
  if (stat != ASN_OK) return stat;
  if (length != 1) return Fail(ctxt, ASN_E_INVLEN);
  stat = korvex_rt::CheckContents(ctxt, 1);
  if (stat != ASN_OK) return stat;
  *value = ctxt->buffer.data[ctxt->buffer.byteIndex++];
  return ASN_OK;
}

int xd_integer(ASN1CTXT* ctxt, ASN1INT* value, ASN1TagType tagging, int length) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  long long v = 0;
  int stat = ReadSigned(ctxt, ASN_ID_INT, tagging, length, 4, &v);
  if (stat == ASN_OK) *value = static_cast<ASN1INT>(v);
  return stat;
}

int xd_enum(ASN1CTXT* ctxt, ASN1INT* value, ASN1TagType tagging, int length) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  long long v = 0;
  int stat = ReadSigned(ctxt, ASN_ID_ENUM, tagging, length, 4, &v);
  if (stat == ASN_OK) *value = static_cast<ASN1INT>(v);
  return stat;
}

int xd_int64(ASN1CTXT* ctxt, ASN1INT64* value, ASN1TagType tagging, int length) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  long long v = 0;
  int stat = ReadSigned(ctxt, ASN_ID_INT, tagging, length, 8, &v);
  if (stat == ASN_OK) *value = v;
  return stat;
}

int xd_uint16(ASN1CTXT* ctxt, ASN1USINT* value, ASN1TagType tagging, int length) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  long long v = 0;
  int stat = ReadSigned(ctxt, ASN_ID_INT, tagging, length, 4, &v);
  if (stat != ASN_OK) return stat;
  if (v < 0 || v > 0xFFFF) return Fail(ctxt, ASN_E_TOOBIG);
  *value = static_cast<ASN1USINT>(v);
  return ASN_OK;
}

int xd_unsigned(ASN1CTXT* ctxt, ASN1UINT* value, ASN1TagType tagging, int length) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  int stat = korvex_rt::PrimitiveHeader(ctxt, ASN_ID_INT, tagging, &length);
  if (stat != ASN_OK) return stat;
  if (length == 0 || length == ASN_K_INDEFLEN) return Fail(ctxt, ASN_E_INVLEN);
  stat = korvex_rt::CheckContents(ctxt, length);
  if (stat != ASN_OK) return stat;
  const ASN1OCTET* p = ctxt->buffer.data + ctxt->buffer.byteIndex;
  // Up to four octets, or five behind a 0x00 sign octet.
  if (length > 5 || (length == 5 && p[0] != 0x00)) return Fail(ctxt, ASN_E_TOOBIG);
  ASN1UINT v = 0;
  for (int i = 0; i < length; ++i) v = (v << 8) | p[i];
  ctxt->buffer.byteIndex += static_cast<ASN1UINT>(length);
  *value = v;
  return ASN_OK;
}

int xd_null(ASN1CTXT* ctxt, ASN1TagType tagging) {
  if (tagging != ASN1EXPL) return ASN_OK;
  int length;
  int stat = korvex_rt::PrimitiveHeader(ctxt, ASN_ID_NULL, tagging, &length);
  if (stat != ASN_OK) return stat;
  if (length != 0) return Fail(ctxt, ASN_E_INVLEN);
  return ASN_OK;
}

int xd_bigint(ASN1CTXT* ctxt, const char** text, ASN1TagType tagging, int length) {
  if (!text) return Fail(ctxt, ASN_E_BADVALUE);
  int stat = korvex_rt::PrimitiveHeader(ctxt, ASN_ID_INT, tagging, &length);
  if (stat != ASN_OK) return stat;
  if (length == 0 || length == ASN_K_INDEFLEN) return Fail(ctxt, ASN_E_INVLEN);
  stat = korvex_rt::CheckContents(ctxt, length);
  if (stat != ASN_OK) return stat;
  const ASN1OCTET* p = ctxt->buffer.data + ctxt->buffer.byteIndex;
  // Hexadecimal text: linear in the size of the value, and exact.
  int n = rtBigIntToText(p, static_cast<size_t>(length), 16, nullptr, 0);
  if (n < 0) return Fail(ctxt, n);
  auto* out = static_cast<char*>(rtMemAlloc(ctxt, static_cast<size_t>(n) + 1));
  if (!out) return Fail(ctxt, ASN_E_NOMEM);
  int written = rtBigIntToText(p, static_cast<size_t>(length), 16, out, static_cast<size_t>(n) + 1);
  if (written != n) {
    rtMemFreePtr(ctxt, out);
    return Fail(ctxt, written < 0 ? written : ASN_E_INVBIGINT);
  }
  ctxt->buffer.byteIndex += static_cast<ASN1UINT>(length);
  *text = out;
  return ASN_OK;
}

}  // extern "C"
