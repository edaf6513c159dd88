// engine_copy.cpp: deep copy and free of values described by descriptors. All
// storage comes from, and goes back to, the context's type heap.
#include "engine_intern.h"

namespace Korvex {
namespace Asn1Engine {
namespace detail {
namespace {

int copyBytes(ASN1CTXT* ctxt, const ASN1OCTET* src, ASN1UINT n, const ASN1OCTET** dest) {
  *dest = nullptr;
  if (!n || !src) return 0;
  ASN1OCTET* p = static_cast<ASN1OCTET*>(rtMemAlloc(ctxt, n));
  if (!p) return fail(ctxt, ASN_E_NOMEM);
  std::memcpy(p, src, n);
  *dest = p;
  return 0;
}

unsigned presenceWords(const TypeDesc* d) {
  int bits = 0;
  for (unsigned i = 0; i < d->memberCount; ++i) {
    if (d->members[i].presence + 1 > bits) bits = d->members[i].presence + 1;
  }
  return static_cast<unsigned>((bits + 31) / 32);
}

int copyMember(Walk& w, const MemberDesc* m, const void* src, void* dest) {
  ASN1CTXT* ctxt = w.ctxt;
  const unsigned char* sfield = at(src, m->offset);
  unsigned char* dfield = at(dest, m->offset);
  if (!(m->flags & kByPointer)) return copyValue(w, m->type, sfield, dfield);
  const void* from = load<const void*>(sfield);
  store<void*>(dfield, nullptr);
  if (!from) return 0;
  void* to = rtMemAllocZ(ctxt, m->type->size);
  if (!to) return fail(ctxt, ASN_E_NOMEM);
  store<void*>(dfield, to);
  return copyValue(w, m->type, from, to);
}

int copyStructured(Walk& w, const TypeDesc* d, const void* src, void* dest) {
  ASN1CTXT* ctxt = w.ctxt;
  switch (d->kind) {
    case kSequence:
    case kSet: {
      unsigned words = presenceWords(d);
      if (words) std::memcpy(at(dest, d->off1), at(src, d->off1), 4u * words);
      for (unsigned i = 0; i < d->memberCount; ++i) {
        const MemberDesc* m = &d->members[i];
        if (m->presence >= 0 && !present(d, src, m->presence)) continue;
        int stat = copyMember(w, m, src, dest);
        if (stat < 0) return stat;
      }
      return hasTables(d) ? copyTablesOf(w, d, src, dest) : 0;
    }
    case kChoice: {
      ASN1UINT t = load<ASN1UINT>(at(src, d->off1));
      store<ASN1UINT>(at(dest, d->off1), t);
      if (t >= 1 && t <= d->memberCount) return copyMember(w, &d->members[t - 1], src, dest);
      if ((d->flags & kExtensible) && t == d->memberCount + 1u) {
        const ASN1OpenType* from = load<const ASN1OpenType*>(at(src, d->off2));
        store<ASN1OpenType*>(at(dest, d->off2), nullptr);
        if (!from) return 0;
        ASN1OpenType* to = rtMemAllocTypeZ(ctxt, ASN1OpenType);
        if (!to) return fail(ctxt, ASN_E_NOMEM);
        store<ASN1OpenType*>(at(dest, d->off2), to);
        to->numocts = from->numocts;
        return copyBytes(ctxt, from->data, from->numocts, &to->data);
      }
      return 0;
    }
    default:
      break;
  }
  // SEQUENCE OF / SET OF
  const TypeDesc* elem = d->inner;
  if (isList(d)) {
    rtDList* to = listOf(dest);
    rtDListInit(to);
    for (const rtDListNode* n = listOf(src)->head; n; n = n->next) {
      void* value = rtMemAllocZ(ctxt, elem->size);
      if (!value) return fail(ctxt, ASN_E_NOMEM);
      if (!rtDListAppend(ctxt, to, value)) {
        rtMemFreePtr(ctxt, value);
        return fail(ctxt, ASN_E_NOMEM);
      }
      if (n->data) {
        int stat = copyValue(w, elem, n->data, value);
        if (stat < 0) return stat;
      }
    }
    return 0;
  }
  ASN1UINT count = arrayCount(d, src);
  const unsigned char* from = arrayElems(d, src);
  store<ASN1UINT>(at(dest, d->off1), 0);
  store<unsigned char*>(at(dest, d->off2), nullptr);
  if (!count || !from) return 0;
  unsigned long long bytes = static_cast<unsigned long long>(count) * elem->size;
  if (bytes > ASN1_MEMBLOCK_MAX) return fail(ctxt, ASN_E_NOMEM);
  unsigned char* to = static_cast<unsigned char*>(rtMemAllocZ(ctxt, bytes));
  if (!to) return fail(ctxt, ASN_E_NOMEM);
  store<unsigned char*>(at(dest, d->off2), to);
  store<ASN1UINT>(at(dest, d->off1), count);
  for (ASN1UINT i = 0; i < count; ++i) {
    int stat = copyValue(w, elem, from + static_cast<size_t>(i) * elem->size,
                         to + static_cast<size_t>(i) * elem->size);
    if (stat < 0) return stat;
  }
  return 0;
}

void freeMember(Walk& w, const MemberDesc* m, void* rec) {
  unsigned char* field = at(rec, m->offset);
  if (!(m->flags & kByPointer)) {
    freeValue(w, m->type, field);
    return;
  }
  void* value = load<void*>(field);
  if (!value) return;
  freeValue(w, m->type, value);
  rtMemFreePtr(w.ctxt, value);
  store<void*>(field, nullptr);
}

void freeStructured(Walk& w, const TypeDesc* d, void* rec) {
  ASN1CTXT* ctxt = w.ctxt;
  switch (d->kind) {
    case kSequence:
    case kSet: {
      // Everything goes back newest first, the reverse of the order decode
      // took it in (typed values, then components last to first): the freed
      // blocks then merge with the allocator's free top instead of being
      // sorted into its bins one by one.
      if (hasTables(d)) freeTablesOf(w, d, rec);
      for (unsigned i = d->memberCount; i-- > 0;) {
        const MemberDesc* m = &d->members[i];
        // A DEFAULT component absent from the input holds its decoded default.
        if (m->presence >= 0 && !(m->flags & kDefault) && !present(d, rec, m->presence)) {
          continue;
        }
        if (!(m->flags & kByPointer) && (m->type->flags & kNoStorage)) continue;
        freeMember(w, m, rec);
      }
      unsigned words = presenceWords(d);
      if (words) std::memset(at(rec, d->off1), 0, 4u * words);
      return;
    }
    case kChoice: {
      ASN1UINT t = load<ASN1UINT>(at(rec, d->off1));
      if (t >= 1 && t <= d->memberCount) {
        freeMember(w, &d->members[t - 1], rec);
      } else if ((d->flags & kExtensible) && t == d->memberCount + 1u) {
        ASN1OpenType* ext = load<ASN1OpenType*>(at(rec, d->off2));
        if (ext) {
          if (!(ctxt->flags & ASN1OPENTYPEREF)) rtMemFreePtr(ctxt, ext->data);
          rtMemFreePtr(ctxt, ext);
          store<ASN1OpenType*>(at(rec, d->off2), nullptr);
        }
      }
      store<ASN1UINT>(at(rec, d->off1), 0);
      return;
    }
    default:
      break;
  }
  const TypeDesc* elem = d->inner;
  if (isList(d)) {
    rtDList* list = listOf(rec);
    for (rtDListNode* n = list->tail; n; n = n->prev) {
      if (!n->data) continue;
      freeValue(w, elem, n->data);
      rtMemFreePtr(ctxt, n->data);
      n->data = nullptr;
    }
    rtDListFreeNodes(ctxt, list);
    return;
  }
  ASN1UINT count = arrayCount(d, rec);
  unsigned char* elems = arrayElems(d, rec);
  if (elems) {
    for (ASN1UINT i = count; i-- > 0;)
      freeValue(w, elem, elems + static_cast<size_t>(i) * elem->size);
    rtMemFreePtr(ctxt, elems);
  }
  store<ASN1UINT>(at(rec, d->off1), 0);
  store<unsigned char*>(at(rec, d->off2), nullptr);
}

}  // namespace

int copyValue(Walk& w, const TypeDesc* d, const void* src, void* dest) {
  ASN1CTXT* ctxt = w.ctxt;
  Level level(w);
  if (!level.ok()) return fail(ctxt, ASN_E_NESTING);
  switch (d->kind) {
    case kAlias:
    case kTagged:
      return copyValue(w, d->inner, src, dest);
    case kBoolean:
      store<ASN1BOOL>(dest, load<ASN1BOOL>(src));
      return 0;
    case kInteger:
    case kEnumerated:
      store<ASN1INT>(dest, load<ASN1INT>(src));
      return 0;
    case kNull:
      return 0;
    case kObjectId:
      std::memcpy(dest, src, sizeof(ASN1OBJID));
      return 0;
    case kBigInteger:
    case kCharString: {
      int stat = rtCopyCharStr(ctxt, load<const char*>(src), static_cast<const char**>(dest));
      return stat < 0 ? fail(ctxt, stat) : 0;
    }
    case kBitString: {
      const ASN1DynBitStr* s = static_cast<const ASN1DynBitStr*>(src);
      ASN1DynBitStr* t = static_cast<ASN1DynBitStr*>(dest);
      t->numbits = s->numbits;
      return copyBytes(ctxt, s->data, (s->numbits + 7) / 8, &t->data);
    }
    case kOctetString:
    case kOpenType:
    case kTableOpenType:
    case kTableOctetString: {
      // ASN1DynOctStr, ASN1OpenType and Asn1Object start with count and data;
      // the typed value of an Asn1Object is copied by copyTablesOf.
      const ASN1OpenType* s = static_cast<const ASN1OpenType*>(src);
      ASN1OpenType* t = static_cast<ASN1OpenType*>(dest);
      t->numocts = s->numocts;
      if (d->kind == kTableOpenType || d->kind == kTableOctetString) {
        static_cast<Asn1Object*>(dest)->decoded = nullptr;
      }
      return copyBytes(ctxt, s->data, s->numocts, &t->data);
    }
    case kBMPString: {
      int stat = rtCopy16BitCharStr(ctxt, static_cast<const Asn116BitCharString*>(src),
                                    static_cast<Asn116BitCharString*>(dest));
      return stat < 0 ? fail(ctxt, stat) : 0;
    }
    case kUniversalString: {
      int stat = rtCopy32BitCharStr(ctxt, static_cast<const Asn132BitCharString*>(src),
                                    static_cast<Asn132BitCharString*>(dest));
      return stat < 0 ? fail(ctxt, stat) : 0;
    }
    default:
      return copyStructured(w, d, src, dest);
  }
}

void freeValue(Walk& w, const TypeDesc* d, void* v) {
  if (d->flags & kNoStorage) return;
  ASN1CTXT* ctxt = w.ctxt;
  Level level(w);
  if (!level.ok()) return;  // deeper storage stays in the heap until it is released
  switch (d->kind) {
    case kAlias:
    case kTagged:
      freeValue(w, d->inner, v);
      return;
    case kBigInteger:
    case kCharString:
      rtMemFreePtr(ctxt, load<const char*>(v));
      store<const char*>(v, nullptr);
      return;
    case kBitString:
    case kOctetString:
    case kTableOctetString: {  // its typed value is freed by freeTablesOf
      ASN1DynOctStr* s = static_cast<ASN1DynOctStr*>(v);
      rtMemFreePtr(ctxt, s->data);
      s->data = nullptr;
      s->numocts = 0;
      return;
    }
    case kOpenType:
    case kTableOpenType: {
      ASN1OpenType* s = static_cast<ASN1OpenType*>(v);
      // Under ASN1OPENTYPEREF the bytes belong to the message, not the heap.
      if (!(ctxt->flags & ASN1OPENTYPEREF)) rtMemFreePtr(ctxt, s->data);
      s->data = nullptr;
      s->numocts = 0;
      return;
    }
    case kBMPString: {
      Asn116BitCharString* s = static_cast<Asn116BitCharString*>(v);
      rtMemFreePtr(ctxt, s->data);
      s->data = nullptr;
      s->nchars = 0;
      return;
    }
    case kUniversalString: {
      Asn132BitCharString* s = static_cast<Asn132BitCharString*>(v);
      rtMemFreePtr(ctxt, s->data);
      s->data = nullptr;
      s->nchars = 0;
      return;
    }
    case kSequence:
    case kSet:
    case kChoice:
    case kSequenceOf:
    case kSetOf:
      freeStructured(w, d, v);
      return;
    default:
      return;
  }
}

}  // namespace detail

int copy(ASN1CTXT* ctxt, const TypeDesc* desc, const void* src, void* dest) {
  if (!ctxt) return ASN_E_INVPARAM;
  if (!desc || !src || !dest) return detail::fail(ctxt, ASN_E_INVPARAM);
  if (src == dest) return 0;
  detail::Walk w{ctxt, 0};
  return detail::copyValue(w, desc, src, dest);
}

void free(ASN1CTXT* ctxt, const TypeDesc* desc, void* value) {
  if (!ctxt || !desc || !value) return;
  detail::Walk w{ctxt, 0};
  detail::freeValue(w, desc, value);
}

}  // namespace Asn1Engine
}  // namespace Korvex
