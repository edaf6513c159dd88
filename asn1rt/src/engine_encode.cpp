// engine_encode.cpp: the descriptor-driven encoder. Writes backwards through
// the xe_ primitives (X.690 DER: definite lengths, DEFAULT values left out,
// SET components in tag order, SET OF elements sorted).
#include "engine_intern.h"

namespace Korvex {
namespace Asn1Engine {
namespace detail {
namespace {

int encodeContents(Walk& w, const TypeDesc* d, void* v);

int encodeMember(Walk& w, const MemberDesc* m, void* rec) {
  ASN1CTXT* ctxt = w.ctxt;
  void* value = memberValue(m, rec);
  if (!value) return fail(ctxt, ASN_E_BADVALUE);
  if (!m->tag) return encodeValue(w, m->type, value, ASN1EXPL);
  // X.690 8.14: an explicit tag wraps the complete inner encoding, an implicit
  // one replaces the inner type's own tag.
  int len = encodeValue(w, m->type, value, (m->flags & kExplicit) ? ASN1EXPL : ASN1IMPL);
  if (len < 0) return len;
  len = xe_tag_len(ctxt, m->tag, len);
  return len < 0 ? fail(ctxt, len) : len;
}

// Drops a DEFAULT member's encoding when it equals the default (X.690 11.5).
bool isDefaultEncoding(ASN1CTXT* ctxt, const MemberDesc* m, int len) {
  return (m->flags & kDefault) && m->defaultDer && len >= 0 &&
         static_cast<unsigned>(len) == m->defaultLength &&
         std::memcmp(xe_getp(ctxt), m->defaultDer, m->defaultLength) == 0;
}

// Encodes a member; a table-constrained one writes the typed values of its open
// types (X.682 10) when they are set, in place of their bytes, so that the
// record (which may belong to another context) is not changed.
int encodeMemberOf(Walk& w, const TypeDesc* d, const MemberDesc* m, void* rec) {
  if (!m->table) return encodeMember(w, m, rec);
  // Without a typed value the bytes are written as they stand: no lookup.
  if (!m->table->viaList && !static_cast<const Asn1Object*>(memberValue(m, rec))->decoded) {
    return encodeMember(w, m, rec);
  }
  const TypeDesc* saved = w.openType;
  w.openType = tableType(d, m, rec);
  int len = encodeMember(w, m, rec);
  w.openType = saved;
  return len;
}

int encodeSequence(Walk& w, const TypeDesc* d, void* rec) {
  ASN1CTXT* ctxt = w.ctxt;
  long long total = 0;
  for (unsigned i = d->memberCount; i-- > 0;) {
    const MemberDesc* m = &d->members[i];
    if (m->presence >= 0 && !present(d, rec, m->presence)) continue;
    int len = encodeMemberOf(w, d, m, rec);
    if (len < 0) return len;
    if (isDefaultEncoding(ctxt, m, len)) {
      ctxt->buffer.byteIndex += static_cast<ASN1UINT>(len);
      continue;
    }
    total += len;
  }
  return static_cast<int>(total);
}

int encodeSet(Walk& w, const TypeDesc* d, void* rec) {
  ASN1CTXT* ctxt = w.ctxt;
  // X.690 10.3: components in ascending tag order; written backwards, so the
  // highest tag goes first.
  long long total = 0;
  for (unsigned k = d->tagIndexCount; k-- > 0;) {
    const MemberDesc* m = &d->members[d->tagIndex[k].member];
    if (m->presence >= 0 && !present(d, rec, m->presence)) continue;
    int len = encodeMemberOf(w, d, m, rec);
    if (len < 0) return len;
    if (isDefaultEncoding(ctxt, m, len)) {
      ctxt->buffer.byteIndex += static_cast<ASN1UINT>(len);
      continue;
    }
    total += len;
  }
  return static_cast<int>(total);
}

int encodeChoice(Walk& w, const TypeDesc* d, void* rec) {
  ASN1CTXT* ctxt = w.ctxt;
  ASN1UINT t = load<ASN1UINT>(at(rec, d->off1));
  if (t >= 1 && t <= d->memberCount) return encodeMember(w, &d->members[t - 1], rec);
  if ((d->flags & kExtensible) && t == d->memberCount + 1u) {
    const ASN1OpenType* ext = load<const ASN1OpenType*>(at(rec, d->off2));
    if (!ext) return fail(ctxt, ASN_E_BADVALUE);
    int len = xe_OpenType(ctxt, ext->data, ext->numocts);
    return len < 0 ? fail(ctxt, len) : len;
  }
  rtErrAddIntParm(&ctxt->errInfo, static_cast<int>(t));
  return fail(ctxt, ASN_E_INVOPT);
}

int encodeList(Walk& w, const TypeDesc* d, void* rec) {
  ASN1CTXT* ctxt = w.ctxt;
  const TypeDesc* elem = d->inner;
  const bool list = isList(d);
  unsigned long long count = list ? listOf(rec)->count : arrayCount(d, rec);
  if (checkSize(ctxt, d->limits, count) < 0) return ASN_E_CONSVIO;
  unsigned char* elems = list ? nullptr : arrayElems(d, rec);
  if (!list && count && !elems) return fail(ctxt, ASN_E_BADVALUE);
  // X.690 11.6: DER orders SET OF elements by their encodings.
  const bool sort = d->kind == kSetOf && count > 1;
  rtDList locations;
  rtDListInit(&locations);
  long long total = 0;
  int status = 0;
  const rtDListNode* node = list ? listOf(rec)->tail : nullptr;
  for (unsigned long long i = count; i-- > 0;) {
    void* value;
    if (list) {
      if (!node) break;
      value = node->data;
      node = node->prev;
    } else {
      value = elems + i * elem->size;
    }
    if (!value) {
      status = fail(ctxt, ASN_E_BADVALUE);
      break;
    }
    int len = encodeValue(w, elem, value, ASN1EXPL);
    if (len < 0) {
      status = len;
      break;
    }
    if (sort) {
      Asn1BufLocDescr* loc = rtMemAllocType(ctxt, Asn1BufLocDescr);
      if (!loc || !rtDListAppend(ctxt, &locations, loc)) {
        rtMemFreePtr(ctxt, loc);
        status = fail(ctxt, ASN_E_NOMEM);
        break;
      }
      xe_getBufLocDescr(ctxt, static_cast<ASN1UINT>(len), loc);
    }
    total += len;
  }
  if (status < 0) {
    rtDListFreeAll(ctxt, &locations);
    return status;
  }
  if (sort) {
    int len = xe_derCanonicalSort(ctxt, &locations);
    if (len < 0) return fail(ctxt, len);
  }
  return static_cast<int>(total);
}

int encodeBits(ASN1CTXT* ctxt, const TypeDesc* d, const ASN1DynBitStr* bits) {
  ASN1UINT numbits = bits->numbits;
  if (numbits && !bits->data) return fail(ctxt, ASN_E_BADVALUE);
  const Limits* lim = d->limits;
  Limits upperOnly;
  if (d->flags & kNamedBits) {
    // X.690 11.2.2: DER drops every trailing 0 bit of a named-bit string; a
    // value with no 1 bit is 03 01 00 (note 2). The value stands for itself
    // with any trailing 0 bits added (X.680 22.7), so a lower size bound holds
    // by padding (note 1) and only the upper one binds.
    while (numbits && !(bits->data[(numbits - 1) / 8] & (0x80u >> ((numbits - 1) % 8)))) {
      --numbits;
    }
    if (lim) {
      upperOnly = *lim;
      upperOnly.flags &= static_cast<unsigned char>(~kHasLower);
      lim = &upperOnly;
    }
  }
  if (checkSize(ctxt, lim, numbits) < 0) return ASN_E_CONSVIO;
  int len = xe_bitstr(ctxt, bits->data, numbits, ASN1IMPL);
  return len < 0 ? fail(ctxt, len) : len;
}

int encodeContents(Walk& w, const TypeDesc* d, void* v) {
  ASN1CTXT* ctxt = w.ctxt;
  int len;
  switch (d->kind) {
    case kBoolean:
      len = xe_boolean(ctxt, static_cast<ASN1BOOL*>(v), ASN1IMPL);
      break;
    case kInteger: {
      ASN1INT value = load<ASN1INT>(v);
      if (checkValue(ctxt, d->limits, value) < 0) return ASN_E_CONSVIO;
      len = xe_integer(ctxt, &value, ASN1IMPL);
      break;
    }
    case kEnumerated: {
      ASN1INT value = load<ASN1INT>(v);
      if (checkEnum(ctxt, d, value) < 0) return ASN_E_INVENUM;
      len = xe_enum(ctxt, &value, ASN1IMPL);
      break;
    }
    case kBigInteger: {
      const char* text = load<const char*>(v);
      if (!text) return fail(ctxt, ASN_E_BADVALUE);
      return encodeBigInteger(ctxt, text);
    }
    case kNull:
      return 0;
    case kBitString:
      return encodeBits(ctxt, d, static_cast<const ASN1DynBitStr*>(v));
    case kOctetString: {
      const ASN1DynOctStr* s = static_cast<const ASN1DynOctStr*>(v);
      if (s->numocts && !s->data) return fail(ctxt, ASN_E_BADVALUE);
      if (checkSize(ctxt, d->limits, s->numocts) < 0) return ASN_E_CONSVIO;
      len = xe_octstr(ctxt, s->data, s->numocts, ASN1IMPL);
      break;
    }
    case kObjectId:
      len = xe_objid(ctxt, static_cast<const ASN1OBJID*>(v), ASN1IMPL);
      break;
    case kTableOctetString: {
      const Asn1Object* o = static_cast<const Asn1Object*>(v);
      if (o->numocts && !o->data) return fail(ctxt, ASN_E_BADVALUE);
      len = xe_octstr(ctxt, o->data, o->numocts, ASN1IMPL);
      break;
    }
    case kCharString: {
      const char* text = load<const char*>(v);
      if (!text) return fail(ctxt, ASN_E_BADVALUE);
      if (d->limits) {
        unsigned long long n = 0;
        int stat = charCount(d, text, &n);
        if (stat < 0) return fail(ctxt, stat);
        if (checkSize(ctxt, d->limits, n) < 0) return ASN_E_CONSVIO;
      }
      len = xe_charstr(ctxt, text, ASN1IMPL, d->tag);
      break;
    }
    case kBMPString: {
      const Asn116BitCharString* s = static_cast<const Asn116BitCharString*>(v);
      if (s->nchars && !s->data) return fail(ctxt, ASN_E_BADVALUE);
      if (checkSize(ctxt, d->limits, s->nchars) < 0) return ASN_E_CONSVIO;
      len = xe_16BitCharStr(ctxt, s, ASN1IMPL, d->tag);
      break;
    }
    case kUniversalString: {
      const Asn132BitCharString* s = static_cast<const Asn132BitCharString*>(v);
      if (s->nchars && !s->data) return fail(ctxt, ASN_E_BADVALUE);
      if (checkSize(ctxt, d->limits, s->nchars) < 0) return ASN_E_CONSVIO;
      len = xe_32BitCharStr(ctxt, s, ASN1IMPL, d->tag);
      break;
    }
    case kSequence:
      return encodeSequence(w, d, v);
    case kSet:
      return encodeSet(w, d, v);
    case kSequenceOf:
    case kSetOf:
      return encodeList(w, d, v);
    default:
      return fail(ctxt, ASN_E_INVPARAM);
  }
  return len < 0 ? fail(ctxt, len) : len;
}

}  // namespace

int encodeValue(Walk& w, const TypeDesc* d, void* v, ASN1TagType tagging) {
  ASN1CTXT* ctxt = w.ctxt;
  Level level(w);
  if (!level.ok()) return fail(ctxt, ASN_E_NESTING);
  switch (d->kind) {
    case kAlias:
      return encodeValue(w, d->inner, v, tagging);
    case kChoice:
      return encodeChoice(w, d, v);  // X.680 31.2.7: no tag of its own
    case kTableOpenType:
      if (w.openType && static_cast<const Asn1Object*>(v)->decoded) {
        const TypeDesc* type = w.openType;
        w.openType = nullptr;  // open types inside the value have tables of their own
        int len = encodeValue(w, type, static_cast<Asn1Object*>(v)->decoded, ASN1EXPL);
        w.openType = type;
        return len;
      }
      [[fallthrough]];  // no typed value: the bytes as they stand
    case kOpenType: {
      const ASN1OpenType* ot = static_cast<const ASN1OpenType*>(v);
      int len = xe_OpenType(ctxt, ot->data, ot->numocts);
      return len < 0 ? fail(ctxt, len) : len;
    }
    case kTableOctetString:
      if (w.openType && static_cast<const Asn1Object*>(v)->decoded) {
        // X.682 11: the contents are the DER of the typed value.
        const TypeDesc* type = w.openType;
        w.openType = nullptr;
        int len = encodeValue(w, type, static_cast<Asn1Object*>(v)->decoded, ASN1EXPL);
        w.openType = type;
        if (len < 0 || tagging != ASN1EXPL) return len;
        len = xe_tag_len(ctxt, d->tag, len);
        return len < 0 ? fail(ctxt, len) : len;
      }
      break;  // no typed value: the octets as they stand
    case kTagged: {
      bool expl = (d->flags & kExplicitTag) != 0;
      int len = encodeValue(w, d->inner, v, expl ? ASN1EXPL : ASN1IMPL);
      if (len < 0 || tagging != ASN1EXPL) return len;
      len = xe_tag_len(ctxt, d->tag, len);
      return len < 0 ? fail(ctxt, len) : len;
    }
    default:
      break;
  }
  int len = encodeContents(w, d, v);
  if (len < 0 || tagging != ASN1EXPL) return len;
  len = xe_tag_len(ctxt, d->tag, len);
  return len < 0 ? fail(ctxt, len) : len;
}

}  // namespace detail

int encode(ASN1CTXT* ctxt, const TypeDesc* desc, void* value, ASN1TagType tagging) {
  if (!ctxt) return ASN_E_INVPARAM;
  if (!desc || !value) return detail::fail(ctxt, ASN_E_BADVALUE);
  detail::Walk w{ctxt, 0};
  return detail::encodeValue(w, desc, value, tagging);
}

}  // namespace Asn1Engine
}  // namespace Korvex
