// engine_decode.cpp: the descriptor-driven decoder. Reads BER (X.690 8:
// definite and indefinite lengths, constructed strings) through the xd_
// primitives, front to back.
#include "engine_intern.h"

namespace Korvex {
namespace Asn1Engine {
namespace detail {
namespace {

// The identifier and length octets at the cursor in their common form, read in
// place: a one-octet tag and a definite length of up to two octets that fits
// in the data (X.690 8.1.2.2, 8.1.3). False leaves every other form (high tag
// numbers, indefinite or long lengths, the end of an indefinite message, bad
// octets) to xd_match / xd_tag_len, which give the same results and statuses.
inline bool readHeader(const ASN1CTXT* ctxt, ASN1TAG* tag, int* length, ASN1UINT* headerLength) {
  if ((ctxt->flags & (ASN1INDEFLEN | ASN1LASTEOC)) == (ASN1INDEFLEN | ASN1LASTEOC)) return false;
  const ASN1UINT at = ctxt->buffer.byteIndex;
  const ASN1UINT size = ctxt->buffer.size;
  if (at >= size || size - at < 2) return false;
  const ASN1OCTET* d = ctxt->buffer.data + at;
  if ((d[0] & 0x1F) == 0x1F) return false;
  ASN1UINT len = d[1], h = 2;
  if (len == 0x81 && size - at >= 3) {
    len = d[2];
    h = 3;
  } else if (len == 0x82 && size - at >= 4) {
    len = (static_cast<ASN1UINT>(d[2]) << 8) | d[3];
    h = 4;
  } else if (len >= 0x80) {
    return false;
  }
  if (len > size - at - h) return false;
  *tag = (static_cast<ASN1TAG>(d[0] & 0xE0) << 24) | (d[0] & 0x1Fu);
  *length = static_cast<int>(len);
  *headerLength = h;
  return true;
}

// The header remembered by peekTag when the cursor has not moved since.
inline bool takePeeked(const Walk& w, const ASN1CTXT* ctxt, ASN1TAG* tag, int* length,
                       ASN1UINT* headerLength) {
  const Walk::Peeked& p = w.peeked;
  if (p.data != ctxt->buffer.data || p.index != ctxt->buffer.byteIndex ||
      p.size != ctxt->buffer.size || !p.data) {
    return false;
  }
  *tag = p.tag;
  *length = p.length;
  *headerLength = p.headerLength;
  return true;
}

// Reads the expected tag and its length; -3 (recorded) when another tag is next.
int matchTag(Walk& w, ASN1TAG tag, int* length) {
  ASN1CTXT* ctxt = w.ctxt;
  ASN1TAG t;
  ASN1UINT h;
  if ((takePeeked(w, ctxt, &t, length, &h) || readHeader(ctxt, &t, length, &h)) &&
      ((t ^ tag) & ~TM_CONS) == 0) {
    ctxt->buffer.byteIndex += h;
    if (t & TM_CONS) {
      ctxt->flags |= ASN1CONSTAG;
    } else {
      ctxt->flags = static_cast<ASN1USINT>(ctxt->flags & ~ASN1CONSTAG);
    }
    return 0;
  }
  int stat = xd_match(ctxt, tag, length, XM_ADVANCE);
  return stat < 0 ? fail(ctxt, stat) : 0;
}

// The tag of the next element, without moving the cursor.
int peekTag(Walk& w, ASN1TAG* tag) {
  ASN1CTXT* ctxt = w.ctxt;
  int len;
  ASN1UINT h;
  if (takePeeked(w, ctxt, tag, &len, &h)) return 0;
  if (readHeader(ctxt, tag, &len, &h)) {
    w.peeked = {ctxt->buffer.data, ctxt->buffer.size, ctxt->buffer.byteIndex, *tag, len, h};
    return 0;
  }
  int stat = xd_tag_len(ctxt, tag, &len, 0);
  return stat < 0 ? fail(ctxt, stat) : 0;
}

bool atEnd(ASN1CTXT* ctxt, ASN1UINT start, int length) {
  if (length >= 0 && ctxt->buffer.byteIndex < ctxt->buffer.size) {
    return static_cast<unsigned long long>(ctxt->buffer.byteIndex) >=
           static_cast<unsigned long long>(start) + static_cast<ASN1UINT>(length);
  }
  return xd_chkend(ctxt, start, length) != 0;
}

// Whether the element at the cursor has the tag UNIVERSAL 0, which X.680 8.6
// reserves for the encoding rules and X.690 8.1.5 gives to end-of-contents. It
// is never an unknown extension addition or alternative, so the places that
// step over unknown elements refuse it as the type without extensions would.
// One octet decides: the high-tag-number form of 0 is refused by the tag reader.
bool atReservedTag(const ASN1CTXT* ctxt) {
  const ASN1UINT i = ctxt->buffer.byteIndex;
  return i < ctxt->buffer.size && (ctxt->buffer.data[i] & ~0x20u) == 0;
}

// Closes a constructed element that began at start: its end-of-contents octets
// for an indefinite length, or an exact fit of a definite one.
int closeElement(ASN1CTXT* ctxt, ASN1UINT start, int length) {
  if (length == ASN_K_INDEFLEN) {
    int stat = xd_MatchEOC(ctxt);
    if (stat == ASN_E_IDNOTFOU) return fail(ctxt, ASN_E_NOTINSEQ);
    return stat < 0 ? fail(ctxt, stat) : 0;
  }
  if (static_cast<unsigned long long>(ctxt->buffer.byteIndex) !=
      static_cast<unsigned long long>(start) + static_cast<ASN1UINT>(length)) {
    return fail(ctxt, ASN_E_INVLEN);
  }
  return 0;
}

// A definite-length element must not reach past its enclosing element.
int checkInside(ASN1CTXT* ctxt, ASN1UINT start, int length) {
  if (length != ASN_K_INDEFLEN &&
      static_cast<unsigned long long>(ctxt->buffer.byteIndex) >
          static_cast<unsigned long long>(start) + static_cast<ASN1UINT>(length)) {
    return fail(ctxt, ASN_E_INVLEN);
  }
  return 0;
}

// The single element inside an explicit tag (X.690 8.14.2), whose encoding is
// constructed (X.690 8.14.3); the flag comes from the tag just matched.
int decodeWrapped(Walk& w, const TypeDesc* inner, void* v, int length) {
  ASN1CTXT* ctxt = w.ctxt;
  if (!(ctxt->flags & ASN1CONSTAG)) return fail(ctxt, ASN_E_IDNOTFOU);
  ASN1UINT start = ctxt->buffer.byteIndex;
  int stat = decodeValue(w, inner, v, ASN1EXPL, 0);
  if (stat < 0) return stat;
  return closeElement(ctxt, start, length);
}

int decodeMember(Walk& w, const MemberDesc* m, void* rec) {
  ASN1CTXT* ctxt = w.ctxt;
  unsigned char* field = at(rec, m->offset);
  void* value = field;
  if (m->flags & kByPointer) {
    value = rtMemAllocZ(ctxt, m->type->size);
    if (!value) return fail(ctxt, ASN_E_NOMEM);
    store<void*>(field, value);  // before decoding, so that free finds it
  }
  if (!m->tag) return decodeValue(w, m->type, value, ASN1EXPL, 0);
  int len;
  int stat = matchTag(w, m->tag, &len);
  if (stat < 0) return stat;
  if (m->flags & kExplicit) return decodeWrapped(w, m->type, value, len);
  return decodeValue(w, m->type, value, ASN1IMPL, len);
}

// An absent DEFAULT component takes its default value, decoded from its DER.
int decodeDefault(Walk& w, const MemberDesc* m, void* rec) {
  if (!(m->flags & kDefault) || !m->defaultDer) return 0;
  ASN1CTXT* ctxt = w.ctxt;
  ASN1CTXT saved;
  rtCopyContext(&saved, ctxt);
  int stat = xd_setp(ctxt, m->defaultDer, static_cast<int>(m->defaultLength), nullptr, nullptr);
  if (stat >= 0) stat = decodeMember(w, m, rec);
  rtCopyContext(ctxt, &saved);
  return stat < 0 ? fail(ctxt, stat) : 0;
}

int decodeSequence(Walk& w, const TypeDesc* d, void* rec, int length) {
  ASN1CTXT* ctxt = w.ctxt;
  ASN1UINT start = ctxt->buffer.byteIndex;
  bool tables = false;  // whether a member is table-constrained (noted on the way)
  for (unsigned i = 0; i < d->memberCount; ++i) {
    const MemberDesc* m = &d->members[i];
    tables = tables || m->table;
    bool mandatory = m->presence < 0;
    bool matched = false;
    if (!atEnd(ctxt, start, length)) {
      ASN1TAG tag;
      int stat = peekTag(w, &tag);
      if (stat < 0) return stat;
      matched = memberMatches(m, tag);
      if (!matched && mandatory) return fail(ctxt, ASN_E_IDNOTFOU);
    } else if (mandatory) {
      // X.680 25: the contents end before a component that must be there.
      return fail(ctxt, ASN_E_SETMISRQ);
    }
    if (!matched) {
      int stat = decodeDefault(w, m, rec);
      if (stat < 0) return stat;
      continue;
    }
    if (!mandatory) setPresent(d, rec, m->presence, true);
    int stat = decodeMember(w, m, rec);
    if (stat < 0) return stat;
    stat = checkInside(ctxt, start, length);
    if (stat < 0) return stat;
  }
  while (!atEnd(ctxt, start, length)) {
    // X.680 25.1 with '...': unknown extension additions are skipped.
    if (!(d->flags & kExtensible) || atReservedTag(ctxt)) return fail(ctxt, ASN_E_NOTINSEQ);
    int stat = xd_NextElement(ctxt);
    if (stat < 0) return fail(ctxt, stat);
    stat = checkInside(ctxt, start, length);
    if (stat < 0) return stat;
  }
  int stat = closeElement(ctxt, start, length);
  if (stat < 0) return stat;
  return tables ? decodeTablesOf(w, d, rec) : 0;
}

int decodeSet(Walk& w, const TypeDesc* d, void* rec, int length) {
  ASN1CTXT* ctxt = w.ctxt;
  ASN1UINT start = ctxt->buffer.byteIndex;
  unsigned char seenSmall[64] = {0};
  unsigned char* seen = seenSmall;
  if (d->memberCount > sizeof seenSmall) {
    seen = static_cast<unsigned char*>(rtMemAllocZ(ctxt, d->memberCount));
    if (!seen) return fail(ctxt, ASN_E_NOMEM);
  }
  int stat = 0;
  while (stat >= 0 && !atEnd(ctxt, start, length)) {
    ASN1TAG tag;
    stat = peekTag(w, &tag);
    if (stat < 0) break;
    unsigned i = 0;
    while (i < d->memberCount && !memberMatches(&d->members[i], tag)) ++i;
    if (i == d->memberCount) {
      if (!(d->flags & kExtensible) || atReservedTag(ctxt)) {
        stat = fail(ctxt, ASN_E_NOTINSEQ);
        break;
      }
      stat = xd_NextElement(ctxt);
      if (stat < 0) stat = fail(ctxt, stat);
      continue;
    }
    if (seen[i]) {
      stat = fail(ctxt, ASN_E_SETDUPL);
      break;
    }
    seen[i] = 1;
    const MemberDesc* m = &d->members[i];
    if (m->presence >= 0) setPresent(d, rec, m->presence, true);
    stat = decodeMember(w, m, rec);
    if (stat >= 0) stat = checkInside(ctxt, start, length);
  }
  for (unsigned i = 0; stat >= 0 && i < d->memberCount; ++i) {
    if (seen[i]) continue;
    if (d->members[i].presence < 0) {
      stat = fail(ctxt, ASN_E_SETMISRQ);
    } else {
      stat = decodeDefault(w, &d->members[i], rec);
    }
  }
  if (seen != seenSmall) rtMemFreePtr(ctxt, seen);
  if (stat < 0) return stat;
  stat = closeElement(ctxt, start, length);
  if (stat < 0) return stat;
  return hasTables(d) ? decodeTablesOf(w, d, rec) : 0;
}

int decodeChoice(Walk& w, const TypeDesc* d, void* rec) {
  ASN1CTXT* ctxt = w.ctxt;
  ASN1TAG tag;
  int stat = peekTag(w, &tag);
  if (stat < 0) return stat;
  int index = choiceIndex(d, tag);
  if (index < 0) {
    if (!(d->flags & kExtensible) || atReservedTag(ctxt)) return fail(ctxt, ASN_E_IDNOTFOU);
    // An unknown alternative of an extensible CHOICE is kept as it stands.
    ASN1OpenType* ext = rtMemAllocTypeZ(ctxt, ASN1OpenType);
    if (!ext) return fail(ctxt, ASN_E_NOMEM);
    store<ASN1UINT>(at(rec, d->off1), d->memberCount + 1u);
    store<ASN1OpenType*>(at(rec, d->off2), ext);
    stat = xd_OpenType(ctxt, &ext->data, &ext->numocts);
    return stat < 0 ? fail(ctxt, stat) : 0;
  }
  store<ASN1UINT>(at(rec, d->off1), static_cast<ASN1UINT>(index) + 1u);
  return decodeMember(w, &d->members[index], rec);
}

// The number of elements in the next length octets when all of them are in
// the common DER form (one-octet tags, definite lengths of up to three octets,
// all inside the range): one pass over the headers, in place. False leaves
// every other case, malformed ones included, to xd_count and its statuses.
bool countElements(const ASN1CTXT* ctxt, int length, int* count) {
  if (length < 0 || (ctxt->flags & ASN1INDEFLEN)) return false;
  const ASN1UINT start = ctxt->buffer.byteIndex;
  if (start > ctxt->buffer.size || static_cast<ASN1UINT>(length) > ctxt->buffer.size - start) {
    return false;
  }
  const ASN1OCTET* d = ctxt->buffer.data + start;
  const ASN1UINT end = static_cast<ASN1UINT>(length);
  int n = 0;
  for (ASN1UINT at = 0; at < end; ++n) {
    if (end - at < 2 || d[at] == 0 || (d[at] & 0x1F) == 0x1F) return false;
    ASN1UINT len = d[at + 1], h = 2;
    if (len & 0x80) {
      const ASN1UINT octets = len & 0x7F;
      if (octets == 0 || octets > 3 || end - at < 2 + octets) return false;
      len = 0;
      for (ASN1UINT i = 0; i < octets; ++i) len = (len << 8) | d[at + 2 + i];
      h = 2 + octets;
    }
    if (len > end - at - h) return false;
    at += h + len;
  }
  *count = n;
  return true;
}

int decodeList(Walk& w, const TypeDesc* d, void* rec, int length) {
  ASN1CTXT* ctxt = w.ctxt;
  const TypeDesc* elem = d->inner;
  ASN1UINT start = ctxt->buffer.byteIndex;
  unsigned long long count = 0;
  if (isList(d)) {
    rtDList* list = listOf(rec);
    while (!atEnd(ctxt, start, length)) {
      void* value = rtMemAllocZ(ctxt, elem->size);
      if (!value) return fail(ctxt, ASN_E_NOMEM);
      if (!rtDListAppend(ctxt, list, value)) {
        rtMemFreePtr(ctxt, value);
        return fail(ctxt, ASN_E_NOMEM);
      }
      int stat = decodeValue(w, elem, value, ASN1EXPL, 0);
      if (stat >= 0) stat = checkInside(ctxt, start, length);
      if (stat < 0) return stat;
    }
    count = list->count;
  } else {
    int n = 0;
    if (!countElements(ctxt, length, &n)) {
      int stat = xd_count(ctxt, length, &n);
      if (stat < 0) return fail(ctxt, stat);
    }
    int stat = 0;
    if (n > 0) {
      // Each element takes at least two octets, so n is bounded by the input.
      unsigned long long bytes = static_cast<unsigned long long>(n) * elem->size;
      if (bytes > ASN1_MEMBLOCK_MAX) return fail(ctxt, ASN_E_NOMEM);
      unsigned char* elems = static_cast<unsigned char*>(rtMemAllocZ(ctxt, bytes));
      if (!elems) return fail(ctxt, ASN_E_NOMEM);
      store<unsigned char*>(at(rec, d->off2), elems);
      store<ASN1UINT>(at(rec, d->off1), static_cast<ASN1UINT>(n));
      for (int i = 0; i < n; ++i) {
        stat = decodeValue(w, elem, elems + static_cast<size_t>(i) * elem->size, ASN1EXPL, 0);
        if (stat >= 0) stat = checkInside(ctxt, start, length);
        if (stat < 0) return stat;
      }
    }
    count = static_cast<unsigned long long>(n);
  }
  if (checkSize(ctxt, d->limits, count) < 0) return ASN_E_CONSVIO;
  return closeElement(ctxt, start, length);
}

// X.690 8.1.2.5: SEQUENCE, SET and their OF forms are constructed; BOOLEAN,
// INTEGER, ENUMERATED, NULL and OBJECT IDENTIFIER are primitive (only strings
// may take either form). The flag comes from the tag just matched.
bool formAllowed(const ASN1CTXT* ctxt, const TypeDesc* d) {
  const bool constructed = (ctxt->flags & ASN1CONSTAG) != 0;
  switch (d->kind) {
    case kSequence:
    case kSet:
    case kSequenceOf:
    case kSetOf:
      return constructed;
    case kBoolean:
    case kInteger:
    case kEnumerated:
    case kBigInteger:
    case kNull:
    case kObjectId:
      return !constructed;
    default:
      return true;
  }
}

int decodeContents(Walk& w, const TypeDesc* d, void* v, int len) {
  ASN1CTXT* ctxt = w.ctxt;
  if (!formAllowed(ctxt, d)) return fail(ctxt, ASN_E_IDNOTFOU);
  int stat;
  switch (d->kind) {
    case kBoolean:
      stat = xd_boolean(ctxt, static_cast<ASN1BOOL*>(v), ASN1IMPL, len);
      break;
    case kInteger: {
      ASN1INT value = 0;
      stat = xd_integer(ctxt, &value, ASN1IMPL, len);
      if (stat < 0) break;
      store<ASN1INT>(v, value);
      return checkValue(ctxt, d->limits, value) < 0 ? ASN_E_CONSVIO : 0;
    }
    case kEnumerated: {
      ASN1INT value = 0;
      stat = xd_enum(ctxt, &value, ASN1IMPL, len);
      if (stat < 0) break;
      store<ASN1INT>(v, value);
      return checkEnum(ctxt, d, value) < 0 ? ASN_E_INVENUM : 0;
    }
    case kBigInteger:
      return decodeBigInteger(ctxt, static_cast<const char**>(v), len);
    case kNull:
      if (len != 0) return fail(ctxt, ASN_E_INVLEN);
      return 0;
    case kBitString: {
      ASN1DynBitStr* s = static_cast<ASN1DynBitStr*>(v);
      stat = xd_bitstr(ctxt, &s->data, &s->numbits, ASN1IMPL, len);
      if (stat < 0) break;
      // A named-bit string may come with its trailing 0 bits dropped below a
      // lower size bound (X.690 11.2.2 notes 1 and 2): only the upper binds.
      const Limits* lim = d->limits;
      Limits upperOnly;
      if (lim && (d->flags & kNamedBits)) {
        upperOnly = *lim;
        upperOnly.flags &= static_cast<unsigned char>(~kHasLower);
        lim = &upperOnly;
      }
      return checkSize(ctxt, lim, s->numbits) < 0 ? ASN_E_CONSVIO : 0;
    }
    case kOctetString: {
      ASN1DynOctStr* s = static_cast<ASN1DynOctStr*>(v);
      stat = xd_octstr(ctxt, &s->data, &s->numocts, ASN1IMPL, len);
      if (stat < 0) break;
      return checkSize(ctxt, d->limits, s->numocts) < 0 ? ASN_E_CONSVIO : 0;
    }
    case kObjectId:
      stat = xd_objid(ctxt, static_cast<ASN1OBJID*>(v), ASN1IMPL, len);
      break;
    case kTableOctetString: {
      // The contents now; the enclosing SEQUENCE decodes the value they hold
      // once its key is known (decodeTablesOf).
      Asn1Object* o = static_cast<Asn1Object*>(v);
      stat = xd_octstr(ctxt, &o->data, &o->numocts, ASN1IMPL, len);
      break;
    }
    case kCharString: {
      const char** text = static_cast<const char**>(v);
      const bool primitive = !(ctxt->flags & ASN1CONSTAG) && len != ASN_K_INDEFLEN;
      stat = xd_charstr(ctxt, text, ASN1IMPL, d->tag, len);
      if (stat < 0) break;
      // The value is NUL-terminated text: a NUL inside the contents would cut
      // it short without notice, so such a string is refused.
      if (primitive && *text && std::strlen(*text) != static_cast<size_t>(len)) {
        return fail(ctxt, ASN_E_INVLEN);
      }
      if (!d->limits) break;
      unsigned long long n = 0;
      stat = *text ? charCount(d, *text, &n) : 0;
      if (stat < 0) break;
      return checkSize(ctxt, d->limits, n) < 0 ? ASN_E_CONSVIO : 0;
    }
    case kBMPString: {
      Asn116BitCharString* s = static_cast<Asn116BitCharString*>(v);
      stat = xd_16BitCharStr(ctxt, s, ASN1IMPL, d->tag, len);
      if (stat < 0) break;
      return checkSize(ctxt, d->limits, s->nchars) < 0 ? ASN_E_CONSVIO : 0;
    }
    case kUniversalString: {
      Asn132BitCharString* s = static_cast<Asn132BitCharString*>(v);
      stat = xd_32BitCharStr(ctxt, s, ASN1IMPL, d->tag, len);
      if (stat < 0) break;
      return checkSize(ctxt, d->limits, s->nchars) < 0 ? ASN_E_CONSVIO : 0;
    }
    case kSequence:
      return decodeSequence(w, d, v, len);
    case kSet:
      return decodeSet(w, d, v, len);
    case kSequenceOf:
    case kSetOf:
      return decodeList(w, d, v, len);
    default:
      return fail(ctxt, ASN_E_INVPARAM);
  }
  return stat < 0 ? fail(ctxt, stat) : 0;
}

}  // namespace

int decodeValue(Walk& w, const TypeDesc* d, void* v, ASN1TagType tagging, int length) {
  ASN1CTXT* ctxt = w.ctxt;
  Level level(w);
  if (!level.ok()) return fail(ctxt, ASN_E_NESTING);
  switch (d->kind) {
    case kAlias:
      return decodeValue(w, d->inner, v, tagging, length);
    case kChoice:
      return decodeChoice(w, d, v);
    case kOpenType:
    case kTableOpenType: {
      ASN1OpenType* ot = static_cast<ASN1OpenType*>(v);
      int stat = xd_OpenType(ctxt, &ot->data, &ot->numocts);
      return stat < 0 ? fail(ctxt, stat) : 0;
    }
    case kTagged: {
      int len = length;
      if (tagging == ASN1EXPL) {
        int stat = matchTag(w, d->tag, &len);
        if (stat < 0) return stat;
      }
      if (d->flags & kExplicitTag) return decodeWrapped(w, d->inner, v, len);
      return decodeValue(w, d->inner, v, ASN1IMPL, len);
    }
    default:
      break;
  }
  int len = length;
  if (tagging == ASN1EXPL) {
    int stat = matchTag(w, d->tag, &len);
    if (stat < 0) return stat;
  }
  return decodeContents(w, d, v, len);
}

}  // namespace detail

int decode(ASN1CTXT* ctxt, const TypeDesc* desc, void* value, ASN1TagType tagging, int length) {
  if (!ctxt) return ASN_E_INVPARAM;
  if (!desc || !value) return detail::fail(ctxt, ASN_E_BADVALUE);
  detail::Walk w{ctxt, 0};
  return detail::decodeValue(w, desc, value, tagging, length);
}

}  // namespace Asn1Engine
}  // namespace Korvex
