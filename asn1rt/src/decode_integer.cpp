// decode_integer.cpp: BOOLEAN, INTEGER, ENUMERATED and NULL (X.690 8.2-8.4,
// 8.8). Contents longer than the target can hold give ASN_E_TOOBIG; integer
// contents that are not minimal give ASN_E_IDNOTFOU (X.690 8.3.2 holds for
// BER as well as DER).
#include <korvex/asn1rt/rtBigInt.h>

#include <climits>
#include <limits>

#include "decode_intern.h"

using korvex_rt::Fail;

namespace {

// The contents octets of an INTEGER or ENUMERATED, or the recorded failure.
struct IntegerContents {
  int stat;
  const ASN1OCTET* octets;
  int length;
};

// X.690 8.3.2: in more than one octet, the first nine bits are neither all
// zero nor all one (a redundant sign octet).
inline bool IsMinimal(const ASN1OCTET* p, int length) {
  if (length < 2) return true;
  const bool positivePad = p[0] == 0x00 && !(p[1] & 0x80);
  const bool negativePad = p[0] == 0xFF && (p[1] & 0x80);
  return !positivePad && !negativePad;
}

// Reads the header and locates the contents of an integer of at most
// maxOctets octets, checked in this order: empty or indefinite (-5), longer
// than maxOctets (-33), past the data (-2), not minimal (-3). The cursor is
// left on the first contents octet.
IntegerContents ReadIntegerContents(ASN1CTXT* ctxt, ASN1OCTET tagOctet, ASN1TagType tagging,
                                    int length, int maxOctets) {
  int stat = korvex_rt::PrimitiveHeader(ctxt, tagOctet, tagging, &length);
  if (stat != ASN_OK) return {stat, nullptr, 0};
  if (length == 0 || length == ASN_K_INDEFLEN) return {Fail(ctxt, ASN_E_INVLEN), nullptr, 0};
  if (length > maxOctets) return {Fail(ctxt, ASN_E_TOOBIG), nullptr, 0};
  stat = korvex_rt::CheckContents(ctxt, length);
  if (stat != ASN_OK) return {stat, nullptr, 0};
  const ASN1OCTET* p = ctxt->buffer.data + ctxt->buffer.byteIndex;
  if (!IsMinimal(p, length)) return {Fail(ctxt, ASN_E_IDNOTFOU), nullptr, 0};
  return {ASN_OK, p, length};
}

// An INTEGER or ENUMERATED of at most maxOctets octets, sign-extended
// big-endian, into a T; a value outside T's range gives -33.
template <typename T>
int DecodeSigned(ASN1CTXT* ctxt, T* value, ASN1OCTET tagOctet, ASN1TagType tagging, int length,
                 int maxOctets) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  IntegerContents c = ReadIntegerContents(ctxt, tagOctet, tagging, length, maxOctets);
  if (c.stat != ASN_OK) return c.stat;
  unsigned long long bits = (c.octets[0] & 0x80) ? ~0ULL : 0ULL;
  for (int i = 0; i < c.length; ++i) bits = (bits << 8) | c.octets[i];
  const long long v = static_cast<long long>(bits);
  if (v < static_cast<long long>(std::numeric_limits<T>::min()) ||
      v > static_cast<long long>(std::numeric_limits<T>::max())) {
    return Fail(ctxt, ASN_E_TOOBIG);
  }
  ctxt->buffer.byteIndex += static_cast<ASN1UINT>(c.length);
  *value = static_cast<T>(v);
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
  return DecodeSigned(ctxt, value, ASN_ID_INT, tagging, length, 4);
}

int xd_enum(ASN1CTXT* ctxt, ASN1INT* value, ASN1TagType tagging, int length) {
  return DecodeSigned(ctxt, value, ASN_ID_ENUM, tagging, length, 4);
}

int xd_int64(ASN1CTXT* ctxt, ASN1INT64* value, ASN1TagType tagging, int length) {
  return DecodeSigned(ctxt, value, ASN_ID_INT, tagging, length, 8);
}

int xd_uint16(ASN1CTXT* ctxt, ASN1USINT* value, ASN1TagType tagging, int length) {
  return DecodeSigned(ctxt, value, ASN_ID_INT, tagging, length, 4);
}

int xd_unsigned(ASN1CTXT* ctxt, ASN1UINT* value, ASN1TagType tagging, int length) {
  if (!value) return Fail(ctxt, ASN_E_BADVALUE);
  // Up to four octets, or five behind a 0x00 sign octet.
  IntegerContents c = ReadIntegerContents(ctxt, ASN_ID_INT, tagging, length, 5);
  if (c.stat != ASN_OK) return c.stat;
  if (c.length == 5 && c.octets[0] != 0x00) return Fail(ctxt, ASN_E_TOOBIG);
  ASN1UINT v = 0;
  for (int i = 0; i < c.length; ++i) v = (v << 8) | c.octets[i];
  ctxt->buffer.byteIndex += static_cast<ASN1UINT>(c.length);
  *value = v;
  return ASN_OK;
}

int xd_null(ASN1CTXT* ctxt, ASN1TagType tagging) {
  if (tagging != ASN1EXPL) return ASN_OK;
  int length = 0;
  int stat = korvex_rt::PrimitiveHeader(ctxt, ASN_ID_NULL, tagging, &length);
  if (stat != ASN_OK) return stat;
  if (length != 0) return Fail(ctxt, ASN_E_INVLEN);
  return ASN_OK;
}

int xd_bigint(ASN1CTXT* ctxt, const char** text, ASN1TagType tagging, int length) {
  if (!text) return Fail(ctxt, ASN_E_BADVALUE);
  IntegerContents c = ReadIntegerContents(ctxt, ASN_ID_INT, tagging, length, INT_MAX);
  if (c.stat != ASN_OK) return c.stat;
  const size_t n = static_cast<size_t>(c.length);
  // Hexadecimal text: linear in the size of the value, and exact.
  int textLength = rtBigIntToText(c.octets, n, 16, nullptr, 0);
  if (textLength < 0) return Fail(ctxt, textLength);
  const size_t capacity = static_cast<size_t>(textLength) + 1;
  auto* out = static_cast<char*>(rtMemAlloc(ctxt, capacity));
  if (!out) return Fail(ctxt, ASN_E_NOMEM);
  int written = rtBigIntToText(c.octets, n, 16, out, capacity);
  if (written != textLength) {
    rtMemFreePtr(ctxt, out);
    return Fail(ctxt, written < 0 ? written : ASN_E_INVBIGINT);
  }
  ctxt->buffer.byteIndex += static_cast<ASN1UINT>(c.length);
  *text = out;
  return ASN_OK;
}

}  // extern "C"
