// encode_string.cpp: BIT STRING, OCTET STRING and the character strings, in
// their primitive forms (DER, X.690 10.2).
#include <cstring>
#include <type_traits>

#include "encode_intern.h"

using korvex_rt::Fail;

namespace {

int Finish(ASN1CTXT* ctxt, int length, ASN1TagType tagging, ASN1TAG tag) {
  if (length < 0 || tagging != ASN1EXPL) return length;
  return xe_tag_len(ctxt, tag, length);
}

// A BMPString-like (16-bit) or UniversalString-like (32-bit) string: each
// character as sizeof(Unit) octets, big-endian.
template <typename Str>
int PutUnits(ASN1CTXT* ctxt, const Str* str, ASN1TagType tagging, ASN1TAG tag) {
  using Unit =
      typename std::remove_const<typename std::remove_pointer<decltype(Str::data)>::type>::type;
  constexpr ASN1UINT kWidth = sizeof(Unit);
  if (!str || (!str->data && str->nchars)) return Fail(ctxt, ASN_E_BADVALUE);
  if (str->nchars > ASN1_MEMBLOCK_MAX / kWidth) return Fail(ctxt, ASN_E_BUFOVFLW);
  ASN1UINT n = str->nchars * kWidth;
  ASN1OCTET* dest;
  int stat = korvex_rt::Reserve(ctxt, n, &dest);
  if (stat != ASN_OK) return stat;
  for (ASN1UINT i = 0; i < str->nchars; ++i) {
    Unit c = str->data[i];
    for (ASN1UINT k = kWidth; k-- > 0; c = static_cast<Unit>(c >> 8)) {
      dest[kWidth * i + k] = static_cast<ASN1OCTET>(c);
    }
  }
  return Finish(ctxt, static_cast<int>(n), tagging, tag);
}

}  // namespace

extern "C" {

int xe_bitstr(ASN1CTXT* ctxt, const ASN1OCTET* data, ASN1UINT numbits, ASN1TagType tagging) {
  ASN1OCTET unused = 0;
  ASN1UINT numocts = 0;
  if (numbits != 0) {
    if (!data) return 0;
    numocts = numbits / 8;
    if (numbits % 8) {
      ++numocts;
      unused = static_cast<ASN1OCTET>(8 - numbits % 8);
    }
  }
  ASN1OCTET* dest;
  int stat = korvex_rt::Reserve(ctxt, numocts + 1, &dest);
  if (stat != ASN_OK) return stat;
  dest[0] = unused;
  // Unused trailing bits are copied as given (DER wants them zero, X.690 11.2.1;
  // the caller owns that).
  if (numocts) std::memcpy(dest + 1, data, numocts);
  return Finish(ctxt, static_cast<int>(numocts + 1), tagging, TM_UNIV | ASN_ID_BITSTR);
}

int xe_octstr(ASN1CTXT* ctxt, const ASN1OCTET* data, ASN1UINT numocts, ASN1TagType tagging) {
  if (!data && numocts) return Fail(ctxt, ASN_E_BADVALUE);
  int len = 0;
  if (numocts) {
    len = xe_memcpy(ctxt, data, numocts);
    if (len < 0) return len;
  }
  return Finish(ctxt, len, tagging, TM_UNIV | ASN_ID_OCTSTR);
}

int xe_charstr(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging, ASN1TAG tag) {
  if (!text) return Fail(ctxt, ASN_E_BADVALUE);
  size_t n = std::strlen(text);
  if (n > ASN1_MEMBLOCK_MAX) return Fail(ctxt, ASN_E_BUFOVFLW);
  int len = 0;
  if (n) {
    len = xe_memcpy(ctxt, reinterpret_cast<const ASN1OCTET*>(text), static_cast<ASN1UINT>(n));
    if (len < 0) return len;
  }
  return Finish(ctxt, len, tagging, tag);
}

int xe_16BitCharStr(ASN1CTXT* ctxt, const Asn116BitCharString* str, ASN1TagType tagging,
                    ASN1TAG tag) {
  return PutUnits(ctxt, str, tagging, tag);
}

int xe_32BitCharStr(ASN1CTXT* ctxt, const Asn132BitCharString* str, ASN1TagType tagging,
                    ASN1TAG tag) {
  return PutUnits(ctxt, str, tagging, tag);
}

}  // extern "C"
