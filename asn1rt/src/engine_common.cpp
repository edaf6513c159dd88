// engine_common.cpp: descriptors of the universal types and the checks shared
// by the engine's encoder, decoder, copier and freer.
#include <korvex/asn1rt/rtUTF8.h>

#include <cstring>

#include "engine_intern.h"

namespace Korvex {
namespace Asn1Engine {

#define KORVEX_PRIMITIVE_DESC_FLAGS(name, kind, flags, tag, ctype)          \
  const TypeDesc name = {kind, flags,   0,       tag,     sizeof(ctype), 0, \
                         0,    nullptr, nullptr, nullptr, nullptr,       0}
#define KORVEX_PRIMITIVE_DESC(name, kind, tag, ctype) \
  KORVEX_PRIMITIVE_DESC_FLAGS(name, kind, 0, tag, ctype)

KORVEX_PRIMITIVE_DESC_FLAGS(kDescBoolean, kBoolean, kNoStorage, ASN_ID_BOOL, ASN1BOOL);
KORVEX_PRIMITIVE_DESC_FLAGS(kDescInteger, kInteger, kNoStorage, ASN_ID_INT, ASN1INT);
KORVEX_PRIMITIVE_DESC(kDescBigInteger, kBigInteger, ASN_ID_INT, const char*);
KORVEX_PRIMITIVE_DESC_FLAGS(kDescNull, kNull, kNoStorage, ASN_ID_NULL, Asn1NullValue);
KORVEX_PRIMITIVE_DESC(kDescBitString, kBitString, ASN_ID_BITSTR, ASN1DynBitStr);
KORVEX_PRIMITIVE_DESC(kDescOctetString, kOctetString, ASN_ID_OCTSTR, ASN1DynOctStr);
KORVEX_PRIMITIVE_DESC_FLAGS(kDescObjectId, kObjectId, kNoStorage, ASN_ID_OBJID, ASN1OBJID);
KORVEX_PRIMITIVE_DESC(kDescOpenType, kOpenType, 0, ASN1OpenType);
KORVEX_PRIMITIVE_DESC(kDescTableOpenType, kTableOpenType, 0, Asn1Object);
KORVEX_PRIMITIVE_DESC(kDescTableOctetString, kTableOctetString, ASN_ID_OCTSTR, Asn1Object);
KORVEX_PRIMITIVE_DESC(kDescUTF8String, kCharString, ASN_ID_UTF8String, const char*);
KORVEX_PRIMITIVE_DESC(kDescNumericString, kCharString, ASN_ID_NumericString, const char*);
KORVEX_PRIMITIVE_DESC(kDescPrintableString, kCharString, ASN_ID_PrintableString, const char*);
KORVEX_PRIMITIVE_DESC(kDescTeletexString, kCharString, ASN_ID_TeletexString, const char*);
KORVEX_PRIMITIVE_DESC(kDescT61String, kCharString, ASN_ID_T61String, const char*);
KORVEX_PRIMITIVE_DESC(kDescVideotexString, kCharString, ASN_ID_VideotexString, const char*);
KORVEX_PRIMITIVE_DESC(kDescIA5String, kCharString, ASN_ID_IA5String, const char*);
KORVEX_PRIMITIVE_DESC(kDescGraphicString, kCharString, ASN_ID_GraphicString, const char*);
KORVEX_PRIMITIVE_DESC(kDescVisibleString, kCharString, ASN_ID_VisibleString, const char*);
KORVEX_PRIMITIVE_DESC(kDescISO646String, kCharString, ASN_ID_VisibleString, const char*);
KORVEX_PRIMITIVE_DESC(kDescGeneralString, kCharString, ASN_ID_GeneralString, const char*);
KORVEX_PRIMITIVE_DESC(kDescObjectDescriptor, kCharString, ASN_ID_OBJDSC, const char*);
KORVEX_PRIMITIVE_DESC(kDescUTCTime, kCharString, ASN_ID_UTCTime, const char*);
KORVEX_PRIMITIVE_DESC(kDescGeneralizedTime, kCharString, ASN_ID_GeneralTime, const char*);
KORVEX_PRIMITIVE_DESC(kDescBMPString, kBMPString, ASN_ID_BMPString, Asn116BitCharString);
KORVEX_PRIMITIVE_DESC(kDescUniversalString, kUniversalString, ASN_ID_UniversalString,
                      Asn132BitCharString);

#undef KORVEX_PRIMITIVE_DESC
#undef KORVEX_PRIMITIVE_DESC_FLAGS

void zeroRecord(void* record, unsigned size) {
  if (record) std::memset(record, 0, size);
}

namespace detail {

bool typeMatches(const TypeDesc* d, ASN1TAG tag) {
  for (;;) {
    if (d->tag) return ((d->tag ^ tag) & ~TM_CONS) == 0;
    switch (d->kind) {
      case kAlias:
        d = d->inner;
        continue;
      case kChoice:
        // An unknown alternative may follow '...', but never UNIVERSAL 0
        // (end-of-contents, X.690 8.1.5).
        return choiceIndex(d, tag) >= 0 || ((d->flags & kExtensible) && (tag & ~TM_CONS) != 0);
      case kOpenType:
      case kTableOpenType:
        return true;
      default:
        return false;
    }
  }
}

int choiceIndex(const TypeDesc* d, ASN1TAG tag) {
  ASN1TAG key = tag & ~TM_CONS;
  // Binary search of the sorted index (X.680 29.3: tags of alternatives differ).
  unsigned lo = 0, hi = d->tagIndexCount;
  while (lo < hi) {
    unsigned mid = (lo + hi) / 2;
    ASN1TAG t = d->tagIndex[mid].tag;
    if (t == key) return static_cast<int>(d->tagIndex[mid].member);
    if (t < key) {
      lo = mid + 1;
    } else {
      hi = mid;
    }
  }
  // An untagged open-type alternative takes any tag; it sorts first as tag 0.
  if (d->tagIndexCount && d->tagIndex[0].tag == 0) return static_cast<int>(d->tagIndex[0].member);
  return -1;
}

int checkSize(ASN1CTXT* ctxt, const Limits* lim, unsigned long long count) {
  if (!lim) return 0;
  long long n = static_cast<long long>(count);
  if (((lim->flags & kHasLower) && n < lim->lower) ||
      ((lim->flags & kHasUpper) && n > lim->upper)) {
    rtErrAddStrParm(&ctxt->errInfo, "size");
    rtErrAddIntParm(&ctxt->errInfo, static_cast<int>(count));
    return fail(ctxt, ASN_E_CONSVIO);
  }
  return 0;
}

int checkValue(ASN1CTXT* ctxt, const Limits* lim, long long value) {
  if (!lim || lim->values) return 0;
  if (((lim->flags & kHasLower) && value < lim->lower) ||
      ((lim->flags & kHasUpper) && value > lim->upper)) {
    rtErrAddStrParm(&ctxt->errInfo, "value");
    rtErrAddIntParm(&ctxt->errInfo, static_cast<int>(value));
    return fail(ctxt, ASN_E_CONSVIO);
  }
  return 0;
}

int checkEnum(ASN1CTXT* ctxt, const TypeDesc* d, ASN1INT value) {
  const Limits* lim = d->limits;
  if (!lim || !lim->values || (d->flags & kExtensible)) return 0;
  unsigned lo = 0, hi = lim->valueCount;
  while (lo < hi) {
    unsigned mid = (lo + hi) / 2;
    if (lim->values[mid] == value) return 0;
    if (lim->values[mid] < value) {
      lo = mid + 1;
    } else {
      hi = mid;
    }
  }
  rtErrAddIntParm(&ctxt->errInfo, value);
  return fail(ctxt, ASN_E_INVENUM);
}

int charCount(const TypeDesc* d, const char* text, unsigned long long* count) {
  // X.680 51.2: SIZE counts characters; UTF8String characters span 1-4 octets.
  if (d->tag == ASN_ID_UTF8String) {
    int n = rtUTF8Len(text);
    if (n < 0) return n;
    *count = static_cast<unsigned long long>(n);
    return 0;
  }
  *count = std::strlen(text);
  return 0;
}

}  // namespace detail
}  // namespace Asn1Engine
}  // namespace Korvex
