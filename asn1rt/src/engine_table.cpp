// engine_table.cpp: information objects, object sets and table-constrained
// open types (X.681 11-12, X.682 10): the typed value of an open type is
// encoded, decoded, copied and freed through the object its key selects.
#include <cstddef>
#include <cstdint>

#include "engine_intern.h"

namespace Korvex {
namespace Asn1Engine {

// ---- ObjectSet -------------------------------------------------------------------------

namespace {

// The order of the compiler's sorted sets: by arc count, then arc by arc (a
// cheap total order: most keys differ in their count or in a late arc).
int compareOid(const ASN1OBJID& a, const ASN1OBJID& b) {
  if (a.numids != b.numids) return a.numids < b.numids ? -1 : 1;
  for (ASN1UINT i = a.numids; i-- > 0;) {
    if (a.subid[i] != b.subid[i]) {
      // Compared from the last arc, where keys of one set differ first.
      return a.subid[i] < b.subid[i] ? -1 : 1;
    }
  }
  return 0;
}

// Binary search over objects sorted by key; cmp(key) < 0 when the key sorts
// before the one sought.
template <typename Cmp>
const InfoObject* search(const InfoObject* const* objects, unsigned count, Cmp cmp) {
  unsigned lo = 0, hi = count;
  while (lo < hi) {
    unsigned mid = lo + (hi - lo) / 2;
    const void* key = objects[mid]->key;
    int c = key ? cmp(key) : -1;
    if (c == 0) return objects[mid];
    if (c < 0) {
      lo = mid + 1;
    } else {
      hi = mid;
    }
  }
  return nullptr;
}

// The objects found last, per thread: a certificate, CRL or signature looks up
// the same few keys again and again (name attributes, extensions, algorithms),
// and each binary-search step chases two pointers into scattered keys. A hit
// costs one hash and one comparison with the object's key; a miss searches
// and remembers. Sets are process-wide constants, so entries never go stale.
struct CachedLookup {
  const ObjectSet* set;
  const InfoObject* object;
};
constexpr unsigned kLookupCacheSize = 256;
thread_local CachedLookup t_lookupCache[kLookupCacheSize];

// The set, the arc count and the last three arcs, where the keys of one set
// differ (the slot is checked against the whole key anyway).
unsigned hashOid(const ObjectSet* set, const ASN1OBJID& id) {
  std::size_t h = reinterpret_cast<std::uintptr_t>(set) >> 4;
  h = h * 31u + id.numids;
  for (ASN1UINT i = id.numids > 3 ? id.numids - 3 : 0; i < id.numids; ++i) {
    h = h * 31u + id.subid[i];
  }
  return static_cast<unsigned>(h ^ (h >> 11) ^ (h >> 23)) % kLookupCacheSize;
}

}  // namespace

const InfoObject* ObjectSet::lookup(const ASN1OBJID& id) const {
  if (keyKind != kKeyObjectId || id.numids > ASN_K_MAXSUBIDS) return nullptr;
  CachedLookup& slot = t_lookupCache[hashOid(this, id)];
  if (slot.set == this && compareOid(*static_cast<const ASN1OBJID*>(slot.object->key), id) == 0) {
    return slot.object;
  }
  const InfoObject* found = search(objects, count, [&id](const void* key) {
    return compareOid(*static_cast<const ASN1OBJID*>(key), id);
  });
  if (found) slot = {this, found};
  return found;
}

const InfoObject* ObjectSet::lookup(ASN1INT id) const {
  if (keyKind != kKeyInteger) return nullptr;
  return search(objects, count, [id](const void* key) {
    ASN1INT k = *static_cast<const ASN1INT*>(key);
    return k == id ? 0 : (k < id ? -1 : 1);
  });
}

// ---- InfoObject --------------------------------------------------------------------------

namespace {

const TypeDesc* typeField(const InfoObject* o, unsigned field) {
  return o->types ? o->types[field] : nullptr;
}

int decodeWith(detail::Walk& w, const TypeDesc* type, const ASN1OCTET* data, ASN1UINT numocts,
               void** value) {
  ASN1CTXT* ctxt = w.ctxt;
  *value = nullptr;
  void* v = rtMemAllocZ(ctxt, type->size);
  if (!v) return detail::fail(ctxt, ASN_E_NOMEM);
  ASN1CTXT saved;
  rtCopyContext(&saved, ctxt);
  // A header peeked in an earlier buffer at this address is not this one's.
  w.peeked = detail::Walk::Peeked();
  int stat = xd_setp(ctxt, data, static_cast<int>(numocts), nullptr, nullptr);
  if (stat < 0) {
    stat = detail::fail(ctxt, stat);
  } else {
    stat = detail::decodeValue(w, type, v, ASN1EXPL, 0);
    // The open type holds exactly one element of the object's type.
    if (stat >= 0 && !(ctxt->flags & ASN1INDEFLEN) && ctxt->buffer.byteIndex != numocts) {
      stat = detail::fail(ctxt, ASN_E_INVLEN);
    }
  }
  rtCopyContext(ctxt, &saved);
  if (stat < 0) {
    detail::freeValue(w, type, v);
    rtMemFreePtr(ctxt, v);
    return stat;
  }
  *value = v;
  return 0;
}

// Encodes value into a block of its own in the type heap (the caller's buffer
// description is saved and restored). The work buffer is first a small one on
// the stack, which holds most values (extension and attribute values, reason
// codes), then blocks from the type heap that double until the encoding fits:
// a large CRL re-encodes one value per entry, and a heap work block for each
// would add half a kilobyte per entry to the heap.
int encodeAside(detail::Walk& w, const TypeDesc* type, void* value, const ASN1OCTET** data,
                ASN1UINT* numocts) {
  ASN1CTXT* ctxt = w.ctxt;
  ASN1CTXT saved;
  rtCopyContext(&saved, ctxt);
  const int recorded = ctxt->errInfo.status;
  int len = ASN_E_BUFOVFLW;
  ASN1OCTET stackWork[256];
  for (ASN1UINT size = sizeof stackWork; len == ASN_E_BUFOVFLW && size && size < ASN1_MEMBLOCK_MAX;
       size *= 2) {
    ASN1OCTET* work =
        size == sizeof stackWork ? stackWork : static_cast<ASN1OCTET*>(rtMemAlloc(ctxt, size));
    if (!work) {
      len = ASN_E_NOMEM;
      break;
    }
    len = xe_setp(ctxt, work, size);
    if (len >= 0) len = detail::encodeValue(w, type, value, ASN1EXPL);
    if (len >= 0) {
      ASN1OCTET* out = static_cast<ASN1OCTET*>(rtMemAlloc(ctxt, len ? len : 1));
      if (!out) {
        len = ASN_E_NOMEM;
      } else {
        std::memcpy(out, xe_getp(ctxt), static_cast<size_t>(len));
        *data = out;
        *numocts = static_cast<ASN1UINT>(len);
      }
    }
    if (work != stackWork) rtMemFreePtr(ctxt, work);
    if (len == ASN_E_BUFOVFLW) {
      // Not an error of the value: forget it and try a larger buffer.
      rtErrReset(&ctxt->errInfo);
      if (recorded) rtErrSetData(&ctxt->errInfo, recorded);
    }
  }
  rtCopyContext(ctxt, &saved);
  return len < 0 ? detail::fail(ctxt, len) : 0;
}

}  // namespace

int InfoObject::encode(ASN1CTXT* ctxt, const void* value, unsigned field) const {
  const TypeDesc* type = typeField(this, field);
  if (!ctxt) return ASN_E_INVPARAM;
  if (!type || !value) return detail::fail(ctxt, ASN_E_BADVALUE);
  detail::Walk w{ctxt, 0};
  return detail::encodeValue(w, type, const_cast<void*>(value), ASN1EXPL);
}

int InfoObject::decode(ASN1CTXT* ctxt, const ASN1OCTET* data, ASN1UINT numocts, void** value,
                       unsigned field) const {
  const TypeDesc* type = typeField(this, field);
  if (!ctxt) return ASN_E_INVPARAM;
  if (!value) return detail::fail(ctxt, ASN_E_INVPARAM);
  *value = nullptr;
  if (!type || !data || !numocts) return detail::fail(ctxt, ASN_E_BADVALUE);
  detail::Walk w{ctxt, 0};
  return decodeWith(w, type, data, numocts, value);
}

int InfoObject::copy(ASN1CTXT* ctxt, const void* src, void** dest, unsigned field) const {
  const TypeDesc* type = typeField(this, field);
  if (!ctxt) return ASN_E_INVPARAM;
  if (!dest) return detail::fail(ctxt, ASN_E_INVPARAM);
  *dest = nullptr;
  if (!src) return 0;
  if (!type) return detail::fail(ctxt, ASN_E_BADVALUE);
  void* v = rtMemAllocZ(ctxt, type->size);
  if (!v) return detail::fail(ctxt, ASN_E_NOMEM);
  detail::Walk w{ctxt, 0};
  int stat = detail::copyValue(w, type, src, v);
  if (stat < 0) {
    detail::freeValue(w, type, v);
    rtMemFreePtr(ctxt, v);
    return stat;
  }
  *dest = v;
  return 0;
}

void InfoObject::free(ASN1CTXT* ctxt, void* value, unsigned field) const {
  const TypeDesc* type = typeField(this, field);
  if (!ctxt || !value) return;
  if (type) {
    detail::Walk w{ctxt, 0};
    detail::freeValue(w, type, value);
  }
  rtMemFreePtr(ctxt, value);
}

// ---- table-constrained members ---------------------------------------------------------

namespace detail {
namespace {

// Calls fn(Asn1Object*) for the open type(s) of a table member: the member
// itself, or each element of a SEQUENCE OF / SET OF of open types.
template <typename Fn>
int forEachObject(const MemberDesc* m, void* rec, Fn fn) {
  void* field = at(rec, m->offset);
  if (!m->table->viaList) return fn(static_cast<Asn1Object*>(field));
  const TypeDesc* list = m->type;
  while (list->kind == kAlias || list->kind == kTagged) list = list->inner;
  if (isList(list)) {
    for (rtDListNode* n = listOf(field)->head; n; n = n->next) {
      if (!n->data) continue;
      int stat = fn(static_cast<Asn1Object*>(n->data));
      if (stat < 0) return stat;
    }
    return 0;
  }
  ASN1UINT count = arrayCount(list, field);
  unsigned char* elems = arrayElems(list, field);
  for (ASN1UINT i = 0; elems && i < count; ++i) {
    int stat =
        fn(reinterpret_cast<Asn1Object*>(elems + static_cast<size_t>(i) * sizeof(Asn1Object)));
    if (stat < 0) return stat;
  }
  return 0;
}

bool memberPresent(const TypeDesc* d, const MemberDesc* m, const void* rec) {
  return m->presence < 0 || present(d, rec, m->presence);
}

}  // namespace

bool hasTables(const TypeDesc* d) {
  for (unsigned i = 0; i < d->memberCount; ++i) {
    if (d->members[i].table) return true;
  }
  return false;
}

const InfoObject* tableObject(const TypeDesc* d, const MemberDesc* m, const void* rec) {
  const TableRef* t = m->table;
  const MemberDesc* key = &d->members[t->keyMember];
  if (!memberPresent(d, key, rec)) return nullptr;
  const void* value = at(rec, key->offset);
  if (t->set->keyKind == kKeyObjectId) return t->set->lookup(*static_cast<const ASN1OBJID*>(value));
  return t->set->lookup(load<ASN1INT>(value));
}

const TypeDesc* tableType(const TypeDesc* d, const MemberDesc* m, const void* rec) {
  const InfoObject* obj = tableObject(d, m, rec);
  return obj ? typeField(obj, m->table->field) : nullptr;
}

int encodeTablesOf(Walk& w, const TypeDesc* d, void* rec) {
  for (unsigned i = 0; i < d->memberCount; ++i) {
    const MemberDesc* m = &d->members[i];
    if (!m->table || !memberPresent(d, m, rec)) continue;
    const InfoObject* obj = tableObject(d, m, rec);
    const TypeDesc* type = obj ? typeField(obj, m->table->field) : nullptr;
    if (!type) continue;  // unknown key: the bytes are written as they stand
    int stat = forEachObject(m, rec, [&](Asn1Object* o) {
      if (!o->decoded) return 0;
      return encodeAside(w, type, o->decoded, &o->data, &o->numocts);
    });
    if (stat < 0) return stat;
  }
  return 0;
}

int decodeTablesOf(Walk& w, const TypeDesc* d, void* rec) {
  for (unsigned i = 0; i < d->memberCount; ++i) {
    const MemberDesc* m = &d->members[i];
    if (!m->table || !memberPresent(d, m, rec)) continue;
    const InfoObject* obj = tableObject(d, m, rec);
    const TypeDesc* type = obj ? typeField(obj, m->table->field) : nullptr;
    if (!type) continue;  // X.682 10: an unknown key leaves the raw bytes
    int stat = forEachObject(m, rec, [&](Asn1Object* o) {
      if (o->decoded || !o->numocts || !o->data) return 0;
      const int recorded = w.ctxt->errInfo.status;
      int st = decodeWith(w, type, o->data, o->numocts, &o->decoded);
      if (st >= 0 || st == ASN_E_NOMEM) return st;
      // Bytes that do not hold a value of the object's type (a Name attribute
      // in another string type, an over-long notice, a token wrapped once more)
      // stay raw, as under an unknown key: the element around them is sound and
      // re-encodes as it came.
      rtErrReset(&w.ctxt->errInfo);
      if (recorded) rtErrSetData(&w.ctxt->errInfo, recorded);
      return 0;
    });
    if (stat < 0) return stat;
  }
  return 0;
}

int copyTablesOf(Walk& w, const TypeDesc* d, const void* src, void* dest) {
  for (unsigned i = 0; i < d->memberCount; ++i) {
    const MemberDesc* m = &d->members[i];
    if (!m->table || !memberPresent(d, m, src)) continue;
    if (!m->table->viaList &&
        !static_cast<const Asn1Object*>(static_cast<const void*>(at(src, m->offset)))->decoded) {
      continue;  // the element-wise copy left the copy's typed value null
    }
    const InfoObject* obj = tableObject(d, m, src);
    const TypeDesc* type = obj ? typeField(obj, m->table->field) : nullptr;
    // The element-wise copy already made every copied typed value null; pair
    // the source and copy open types in the same order.
    std::vector<Asn1Object*> from;
    forEachObject(m, const_cast<void*>(src), [&](Asn1Object* o) {
      from.push_back(o);
      return 0;
    });
    size_t k = 0;
    int stat = forEachObject(m, dest, [&](Asn1Object* o) {
      const Asn1Object* s = k < from.size() ? from[k++] : nullptr;
      o->decoded = nullptr;
      if (!type || !s || !s->decoded) return 0;
      void* v = rtMemAllocZ(w.ctxt, type->size);
      if (!v) return fail(w.ctxt, ASN_E_NOMEM);
      o->decoded = v;
      return copyValue(w, type, s->decoded, v);
    });
    if (stat < 0) return stat;
  }
  return 0;
}

void freeTablesOf(Walk& w, const TypeDesc* d, void* rec) {
  for (unsigned i = 0; i < d->memberCount; ++i) {
    const MemberDesc* m = &d->members[i];
    if (!m->table) continue;
    if (!m->table->viaList &&
        !static_cast<Asn1Object*>(static_cast<void*>(at(rec, m->offset)))->decoded) {
      continue;  // nothing typed to free: no lookup
    }
    const InfoObject* obj = tableObject(d, m, rec);
    const TypeDesc* type = obj ? typeField(obj, m->table->field) : nullptr;
    forEachObject(m, rec, [&](Asn1Object* o) {
      if (o->decoded && type) {
        freeValue(w, type, o->decoded);
        rtMemFreePtr(w.ctxt, o->decoded);
      }
      o->decoded = nullptr;  // without an object the value cannot be walked
      return 0;
    });
  }
}

}  // namespace detail

int encodeTables(ASN1CTXT* ctxt, const TypeDesc* desc, void* value) {
  if (!ctxt) return ASN_E_INVPARAM;
  if (!desc || !value) return detail::fail(ctxt, ASN_E_BADVALUE);
  desc = detail::storageType(desc);
  if (desc->kind != kSequence && desc->kind != kSet) return 0;
  detail::Walk w{ctxt, 0};
  return detail::encodeTablesOf(w, desc, value);
}

int decodeTables(ASN1CTXT* ctxt, const TypeDesc* desc, void* value) {
  if (!ctxt) return ASN_E_INVPARAM;
  if (!desc || !value) return detail::fail(ctxt, ASN_E_BADVALUE);
  desc = detail::storageType(desc);
  if (desc->kind != kSequence && desc->kind != kSet) return 0;
  detail::Walk w{ctxt, 0};
  return detail::decodeTablesOf(w, desc, value);
}

// ---- Control ----------------------------------------------------------------------------

Control::Control(const TypeDesc* desc, void* record)
    : ASN1CType(), mpDesc(desc), mpRecord(record) {}

Control::Control(ASN1MessageBufferIF& buffer, const TypeDesc* desc, void* record)
    : ASN1CType(buffer), mpDesc(desc), mpRecord(record) {}

Control::Control(const Control& other)
    : ASN1CType(other), mpDesc(other.mpDesc), mpRecord(other.mpRecord) {}

int Control::EncodeTo(ASN1MessageBufferIF& buffer) {
  setMsgBuf(buffer);
  int stat = buffer.init();
  if (stat < 0) return stat;
  return encode(buffer.getCtxtPtr(), mpDesc, mpRecord, ASN1EXPL);
}

int Control::DecodeFrom(ASN1MessageBufferIF& buffer) {
  setMsgBuf(buffer);
  int stat = buffer.init();
  if (stat < 0) return stat;
  return decode(buffer.getCtxtPtr(), mpDesc, mpRecord, ASN1EXPL, 0);
}

}  // namespace Asn1Engine
}  // namespace Korvex
