// record_generator.cpp: descriptor-driven random values and their comparison.
#include "record_generator.h"

#include <korvex/asn1rt/rtBigInt.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace Korvex {
namespace Test {

using Asn1Engine::Limits;
using Asn1Engine::MemberDesc;
using Asn1Engine::TypeDesc;

namespace {

// Values deeper than this are kept small: optional components absent, lists
// at their lower bound; a recursive type that cannot stop is refused.
constexpr int kShallow = 5;
constexpr int kTooDeep = 24;

unsigned char* At(void* base, unsigned offset) {
  return static_cast<unsigned char*>(base) + offset;
}
const unsigned char* At(const void* base, unsigned offset) {
  return static_cast<const unsigned char*>(base) + offset;
}

template <typename T>
T Load(const void* p) {
  T v;
  std::memcpy(&v, p, sizeof v);
  return v;
}
template <typename T>
void Store(void* p, T v) {
  std::memcpy(p, &v, sizeof v);
}

// Presence bit i: bit i % 32 of the 32-bit word i / 32 at off1.
bool Present(const TypeDesc* d, const void* rec, int bit) {
  ASN1UINT word = Load<ASN1UINT>(At(rec, d->off1 + 4u * static_cast<unsigned>(bit / 32)));
  return (word >> (bit % 32)) & 1u;
}
void SetPresent(const TypeDesc* d, void* rec, int bit) {
  unsigned char* p = At(rec, d->off1 + 4u * static_cast<unsigned>(bit / 32));
  Store<ASN1UINT>(p, Load<ASN1UINT>(p) | (1u << (bit % 32)));
}

const TypeDesc* Resolve(const TypeDesc* d) {
  while (d->kind == Asn1Engine::kAlias || d->kind == Asn1Engine::kTagged) d = d->inner;
  return d;
}

bool IsList(const TypeDesc* d) { return (d->flags & Asn1Engine::kListForm) != 0; }

ASN1UINT Count(const TypeDesc* d, const void* v) {
  if (IsList(d)) return static_cast<const rtDList*>(v)->count;
  return Load<ASN1UINT>(At(v, d->off1));
}

// Element i of a SEQUENCE OF / SET OF value.
const void* Element(const TypeDesc* d, const void* v, ASN1UINT i) {
  if (IsList(d)) {
    const rtDListNode* n = static_cast<const rtDList*>(v)->head;
    while (i-- && n) n = n->next;
    return n ? n->data : nullptr;
  }
  const unsigned char* elems = Load<const unsigned char*>(At(v, d->off2));
  return elems + static_cast<size_t>(i) * d->inner->size;
}

// The DER of one member as it appears in its parent: with its own tag.
std::vector<unsigned char> EncodeMember(const MemberDesc* m, const void* value, int* status) {
  ASN1CTXT c;
  rtInitContext(&c, nullptr);
  std::vector<unsigned char> out;
  *status = xe_setp(&c, nullptr, 0);
  if (*status >= 0) {
    void* v = const_cast<void*>(value);
    if (!m->tag) {
      *status = Asn1Engine::encode(&c, m->type, v, ASN1EXPL);
    } else {
      bool expl = (m->flags & Asn1Engine::kExplicit) != 0;
      *status = Asn1Engine::encode(&c, m->type, v, expl ? ASN1EXPL : ASN1IMPL);
      if (*status >= 0) *status = xe_tag_len(&c, m->tag, *status);
    }
  }
  if (*status >= 0) out.assign(xe_getp(&c), xe_getp(&c) + *status);
  rtFreeContext(&c);
  return out;
}

// The tags (without the constructed bit) that the first element of member m
// may carry: its own tag, its type's tag, or a CHOICE's alternatives; 0 for an
// untagged open type, which takes any element.
void FirstTags(const MemberDesc* m, std::vector<ASN1TAG>* out) {
  if (m->tag) return out->push_back(m->tag & ~TM_CONS);
  const TypeDesc* t = m->type;
  while (t->kind == Asn1Engine::kAlias) t = t->inner;
  if (t->tag) return out->push_back(t->tag & ~TM_CONS);
  if (t->kind == Asn1Engine::kChoice && t->tagIndex) {
    for (unsigned i = 0; i < t->tagIndexCount; ++i) out->push_back(t->tagIndex[i].tag);
    return;
  }
  out->push_back(0);
}

bool SameBytes(ASN1UINT na, const ASN1OCTET* a, ASN1UINT nb, const ASN1OCTET* b) {
  return na == nb && (na == 0 || std::memcmp(a, b, na) == 0);
}

bool Fail(std::string* where, const std::string& what) {
  if (where) *where = what;
  return false;
}

bool Same(const TypeDesc* d, const void* a, const void* b, const std::string& path,
          std::string* where, const TypeDesc* typed = nullptr);

// The type that the information object named by the key member of rec gives
// to table member m (null when there is none).
const TypeDesc* TableType(const TypeDesc* d, const MemberDesc* m, const void* rec) {
  const Asn1Engine::TableRef* t = m->table;
  if (!t || !t->set) return nullptr;
  const MemberDesc* key = &d->members[t->keyMember];
  if (key->presence >= 0 && !Present(d, rec, key->presence)) return nullptr;
  const Asn1Engine::InfoObject* o =
      t->set->keyKind == Asn1Engine::kKeyObjectId
          ? t->set->lookup(*reinterpret_cast<const ASN1OBJID*>(At(rec, key->offset)))
          : t->set->lookup(Load<ASN1INT>(At(rec, key->offset)));
  return (o && o->types) ? o->types[t->field] : nullptr;
}

// The number of bits up to the last set one: the DER length of a named-bit
// list (X.690 11.2.2).
ASN1UINT TrimmedBits(const ASN1DynBitStr* s) {
  ASN1UINT n = s->numbits;
  while (n && !(s->data[(n - 1) / 8] & (0x80 >> ((n - 1) % 8)))) --n;
  return n;
}

// What a SET OF element is compared by: its encoding, through its typed value
// when it is a decoded table open type.
std::vector<unsigned char> ElementKey(const TypeDesc* elem, const void* v, const TypeDesc* typed,
                                      int* status) {
  const TypeDesc* r = Resolve(elem);
  if (typed &&
      (r->kind == Asn1Engine::kTableOpenType || r->kind == Asn1Engine::kTableOctetString)) {
    const Asn1Object* o = static_cast<const Asn1Object*>(v);
    if (o->decoded) return EncodeValue(typed, o->decoded, status);
    *status = 0;
    return std::vector<unsigned char>(o->data, o->data + o->numocts);
  }
  return EncodeValue(elem, v, status);
}

bool SameMembers(const TypeDesc* d, const void* a, const void* b, const std::string& path,
                 std::string* where) {
  for (unsigned i = 0; i < d->memberCount; ++i) {
    const MemberDesc* m = &d->members[i];
    const std::string here = path + "." + std::to_string(i);
    bool pa = m->presence < 0 || Present(d, a, m->presence);
    bool pb = m->presence < 0 || Present(d, b, m->presence);
    if (pa != pb) {
      // A DEFAULT component equal to its default is left out by DER (X.690 11.5).
      if (!(m->flags & Asn1Engine::kDefault)) return Fail(where, here + ": presence differs");
      int status = 0;
      std::vector<unsigned char> der = EncodeMember(m, At(pa ? a : b, m->offset), &status);
      if (status < 0 ||
          der != std::vector<unsigned char>(m->defaultDer, m->defaultDer + m->defaultLength)) {
        return Fail(where, here + ": present on one side only and not its default");
      }
      continue;
    }
    if (pa && !Same(m->type, At(a, m->offset), At(b, m->offset), here, where, TableType(d, m, a))) {
      return false;
    }
  }
  return true;
}

bool Same(const TypeDesc* d, const void* a, const void* b, const std::string& path,
          std::string* where, const TypeDesc* typed) {
  using namespace Asn1Engine;
  d = Resolve(d);
  switch (d->kind) {
    case kBoolean:
      return (Load<ASN1BOOL>(a) != 0) == (Load<ASN1BOOL>(b) != 0) ||
             Fail(where, path + ": BOOLEAN");
    case kInteger:
    case kEnumerated:
      return Load<ASN1INT>(a) == Load<ASN1INT>(b) || Fail(where, path + ": INTEGER");
    case kBigInteger: {
      const char* ta = Load<const char*>(a);
      const char* tb = Load<const char*>(b);
      int order = 1;
      return (ta && tb && rtBigIntCompareText(ta, tb, &order) == 0 && order == 0) ||
             Fail(where, path + ": big INTEGER");
    }
    case kNull:
      return true;
    case kBitString: {
      const ASN1DynBitStr* x = static_cast<const ASN1DynBitStr*>(a);
      const ASN1DynBitStr* y = static_cast<const ASN1DynBitStr*>(b);
      const bool named = (d->flags & kNamedBits) != 0;
      const ASN1UINT bits = named ? TrimmedBits(x) : x->numbits;
      if (bits != (named ? TrimmedBits(y) : y->numbits)) {
        return Fail(where, path + ": BIT STRING length");
      }
      ASN1UINT full = bits / 8, rest = bits % 8;
      if (full && std::memcmp(x->data, y->data, full) != 0) return Fail(where, path + ": bits");
      ASN1OCTET mask = static_cast<ASN1OCTET>(0xFF00 >> rest);
      if (rest && ((x->data[full] ^ y->data[full]) & mask)) return Fail(where, path + ": bits");
      return true;
    }
    case kOctetString:
    case kOpenType: {
      const ASN1DynOctStr* x = static_cast<const ASN1DynOctStr*>(a);
      const ASN1DynOctStr* y = static_cast<const ASN1DynOctStr*>(b);
      return SameBytes(x->numocts, x->data, y->numocts, y->data) || Fail(where, path + ": octets");
    }
    case kTableOpenType:
    case kTableOctetString: {
      const Asn1Object* x = static_cast<const Asn1Object*>(a);
      const Asn1Object* y = static_cast<const Asn1Object*>(b);
      // Typed values are compared as values: DER re-encodes them, so BER
      // bytes of the input need not come back.
      if (typed && x->decoded && y->decoded) {
        return Same(typed, x->decoded, y->decoded, path + "~", where);
      }
      return SameBytes(x->numocts, x->data, y->numocts, y->data) ||
             Fail(where, path + ": open type bytes");
    }
    case kObjectId:
      return rtCmpOID(static_cast<const ASN1OBJID*>(a), static_cast<const ASN1OBJID*>(b)) ||
             Fail(where, path + ": OBJECT IDENTIFIER");
    case kCharString: {
      const char* ta = Load<const char*>(a);
      const char* tb = Load<const char*>(b);
      return (ta && tb && std::strcmp(ta, tb) == 0) || Fail(where, path + ": text");
    }
    case kBMPString: {
      const Asn116BitCharString* x = static_cast<const Asn116BitCharString*>(a);
      const Asn116BitCharString* y = static_cast<const Asn116BitCharString*>(b);
      return (x->nchars == y->nchars &&
              (!x->nchars || std::memcmp(x->data, y->data, x->nchars * 2u) == 0)) ||
             Fail(where, path + ": BMPString");
    }
    case kUniversalString: {
      const Asn132BitCharString* x = static_cast<const Asn132BitCharString*>(a);
      const Asn132BitCharString* y = static_cast<const Asn132BitCharString*>(b);
      return (x->nchars == y->nchars &&
              (!x->nchars || std::memcmp(x->data, y->data, x->nchars * 4u) == 0)) ||
             Fail(where, path + ": UniversalString");
    }
    case kSequence:
    case kSet:
      return SameMembers(d, a, b, path, where);
    case kChoice: {
      ASN1UINT t = Load<ASN1UINT>(At(a, d->off1));
      if (t != Load<ASN1UINT>(At(b, d->off1))) return Fail(where, path + ": CHOICE selector");
      if (t == d->memberCount + 1u && (d->flags & kExtensible)) {
        // An alternative added after the extension marker that this type does
        // not know: kept as its element.
        const ASN1OpenType* x = Load<const ASN1OpenType*>(At(a, d->off2));
        const ASN1OpenType* y = Load<const ASN1OpenType*>(At(b, d->off2));
        return (x && y && SameBytes(x->numocts, x->data, y->numocts, y->data)) ||
               Fail(where, path + ": unknown CHOICE alternative");
      }
      if (t < 1 || t > d->memberCount) return Fail(where, path + ": CHOICE outside");
      const MemberDesc* m = &d->members[t - 1];
      const void* va = At(a, d->off2);
      const void* vb = At(b, d->off2);
      if (m->flags & kByPointer) {
        va = Load<const void*>(va);
        vb = Load<const void*>(vb);
        if (!va || !vb) return Fail(where, path + ": CHOICE pointer");
      }
      return Same(m->type, va, vb, path + ".t" + std::to_string(t), where);
    }
    case kSequenceOf: {
      ASN1UINT n = Count(d, a);
      if (n != Count(d, b)) return Fail(where, path + ": element count");
      for (ASN1UINT i = 0; i < n; ++i) {
        if (!Same(d->inner, Element(d, a, i), Element(d, b, i),
                  path + "[" + std::to_string(i) + "]", where, typed)) {
          return false;
        }
      }
      return true;
    }
    case kSetOf: {
      // DER orders SET OF elements by their encodings (X.690 11.6): compare
      // the sorted encodings.
      ASN1UINT n = Count(d, a);
      if (n != Count(d, b)) return Fail(where, path + ": element count");
      std::vector<std::vector<unsigned char>> ea, eb;
      for (ASN1UINT i = 0; i < n; ++i) {
        int sa = 0, sb = 0;
        ea.push_back(ElementKey(d->inner, Element(d, a, i), typed, &sa));
        eb.push_back(ElementKey(d->inner, Element(d, b, i), typed, &sb));
        if (sa < 0 || sb < 0) return Fail(where, path + ": SET OF element does not encode");
      }
      std::sort(ea.begin(), ea.end());
      std::sort(eb.begin(), eb.end());
      return ea == eb || Fail(where, path + ": SET OF elements");
    }
    default:
      return Fail(where, path + ": unknown kind " + std::to_string(d->kind));
  }
}

}  // namespace

std::vector<unsigned char> EncodeValue(const TypeDesc* desc, const void* value, int* status) {
  ASN1CTXT c;
  rtInitContext(&c, nullptr);
  std::vector<unsigned char> out;
  *status = xe_setp(&c, nullptr, 0);
  if (*status >= 0) *status = Asn1Engine::encode(&c, desc, const_cast<void*>(value), ASN1EXPL);
  if (*status >= 0) out.assign(xe_getp(&c), xe_getp(&c) + *status);
  rtFreeContext(&c);
  return out;
}

bool SameValue(const TypeDesc* desc, const void* a, const void* b, std::string* where) {
  return Same(desc, a, b, "value", where);
}

// ---- generator ------------------------------------------------------------------------------

bool RecordGenerator::fill(const TypeDesc* desc, void* value) { return fillValue(desc, value, 0); }

void* RecordGenerator::alloc(size_t n) { return rtMemHeapAllocZ(&ctxt_->pTypeMemHeap, n ? n : 1); }

unsigned long long RecordGenerator::below(unsigned long long n) { return n ? rng_() % n : 0; }

long long RecordGenerator::between(long long lo, long long hi) {
  unsigned long long span =
      static_cast<unsigned long long>(hi) - static_cast<unsigned long long>(lo);
  if (span == ~0ull) return static_cast<long long>(rng_());
  return static_cast<long long>(static_cast<unsigned long long>(lo) + below(span + 1));
}

unsigned long long RecordGenerator::size(const TypeDesc* d, unsigned long long cap) {
  unsigned long long lo = 0, hi = cap;
  if (const Limits* l = d->limits) {
    if (l->flags & Asn1Engine::kHasLower) lo = static_cast<unsigned long long>(l->lower);
    hi = lo + cap;
    if ((l->flags & Asn1Engine::kHasUpper) && static_cast<unsigned long long>(l->upper) < hi) {
      hi = static_cast<unsigned long long>(l->upper);
    }
  }
  return lo + below(hi - lo + 1);
}

// Text for a character-string or time type with universal tag number `tag`.
const char* RecordGenerator::text(ASN1TAG tag, const TypeDesc* d) {
  std::string s;
  switch (tag & TM_IDMASK) {
    case ASN_ID_UTCTime:
    case ASN_ID_GeneralTime: {
      char buf[32];
      int year = static_cast<int>(between(1950, 2049));
      std::snprintf(buf, sizeof buf, "%02d%02d%02d%02d%02d%02dZ",
                    (tag & TM_IDMASK) == ASN_ID_UTCTime ? year % 100 : year,
                    static_cast<int>(between(1, 12)), static_cast<int>(between(1, 28)),
                    static_cast<int>(between(0, 23)), static_cast<int>(between(0, 59)),
                    static_cast<int>(between(0, 59)));
      if ((tag & TM_IDMASK) == ASN_ID_GeneralTime) {
        std::snprintf(buf, sizeof buf, "%04d%02d%02d%02d%02d%02dZ", year,
                      static_cast<int>(between(1, 12)), static_cast<int>(between(1, 28)),
                      static_cast<int>(between(0, 23)), static_cast<int>(between(0, 59)),
                      static_cast<int>(between(0, 59)));
      }
      s = buf;
      break;
    }
    default: {
      // Letters, digits and space: valid in every restricted string type
      // but NumericString, which takes digits and space.
      static const char kAny[] = "ABCXYZabcxyz0123456789 ";
      static const char kNumeric[] = "0123456789 ";
      const bool numeric = (tag & TM_IDMASK) == ASN_ID_NumericString;
      const char* set = numeric ? kNumeric : kAny;
      size_t setSize = numeric ? sizeof kNumeric - 1 : sizeof kAny - 1;
      for (unsigned long long n = size(d, 12); n; --n) s += set[below(setSize)];
      break;
    }
  }
  char* out = static_cast<char*>(alloc(s.size() + 1));
  std::memcpy(out, s.c_str(), s.size() + 1);
  return out;
}

// One complete element for an open type: a NULL, an OCTET STRING or an INTEGER.
void RecordGenerator::element(const ASN1OCTET** data, ASN1UINT* numocts) {
  std::vector<unsigned char> e;
  switch (below(3)) {
    case 0:
      e = {0x05, 0x00};
      break;
    case 1: {
      size_t n = static_cast<size_t>(below(6));
      e = {0x04, static_cast<unsigned char>(n)};
      for (size_t i = 0; i < n; ++i) e.push_back(static_cast<unsigned char>(rng_()));
      break;
    }
    default:
      e = {0x02, 0x01, static_cast<unsigned char>(below(128))};
      break;
  }
  ASN1OCTET* out = static_cast<ASN1OCTET*>(alloc(e.size()));
  std::memcpy(out, e.data(), e.size());
  *data = out;
  *numocts = static_cast<ASN1UINT>(e.size());
}

bool RecordGenerator::fillMembers(const TypeDesc* d, void* rec, int depth) {
  // A SEQUENCE is decoded by position: an absent OPTIONAL component (or a
  // DEFAULT one equal to its default, which DER leaves out) followed by a
  // present component with the same tag would be read as the absent one.
  // X.680 25.6 forbids such types, but a few published modules have them
  // (two BOOLEAN DEFAULT FALSE in a row), so such values are not generated.
  // An untagged open type matches any tag (0 in the tag lists).
  std::vector<ASN1TAG> unseen;  // tags of the components left out since the last written one
  const bool byPosition = d->kind == Asn1Engine::kSequence;
  for (unsigned i = 0; i < d->memberCount; ++i) {
    const MemberDesc* m = &d->members[i];
    std::vector<ASN1TAG> tags;
    FirstTags(m, &tags);
    bool clash = false;
    for (ASN1TAG t : tags) {
      for (ASN1TAG u : unseen) clash = clash || t == 0 || u == 0 || t == u;
    }
    if (m->presence >= 0) {
      if (depth >= kShallow || (clash && byPosition) || below(2)) {
        unseen.insert(unseen.end(), tags.begin(), tags.end());
        continue;
      }
      SetPresent(d, rec, m->presence);
    }
    if (!fillValue(m->type, At(rec, m->offset), depth + 1)) return false;
    if (m->flags & Asn1Engine::kDefault) {
      int status = 0;
      std::vector<unsigned char> der = EncodeMember(m, At(rec, m->offset), &status);
      if (der == std::vector<unsigned char>(m->defaultDer, m->defaultDer + m->defaultLength)) {
        unseen.insert(unseen.end(), tags.begin(), tags.end());
        continue;
      }
    }
    unseen.clear();
  }
  // Half of the time a table constraint's key names one of its set's objects
  // (whose type then decodes the open type's bytes, or leaves them raw); half
  // of those times the open type holds a typed value of the object's type
  // instead of bytes, which encode writes through the object.
  for (unsigned i = 0; i < d->memberCount; ++i) {
    const MemberDesc* m = &d->members[i];
    if (!m->table || !m->table->set || !m->table->set->count || below(2)) continue;
    const MemberDesc* key = &d->members[m->table->keyMember];
    if (key->presence >= 0 && !Present(d, rec, key->presence)) continue;
    const Asn1Engine::ObjectSet* set = m->table->set;
    const Asn1Engine::InfoObject* object = set->objects[below(set->count)];
    if (set->keyKind != Asn1Engine::kKeyObjectId ||
        Resolve(key->type)->kind != Asn1Engine::kObjectId) {
      continue;
    }
    std::memcpy(At(rec, key->offset), object->key, sizeof(ASN1OBJID));
    const TypeDesc* typed = object->types ? object->types[m->table->field] : nullptr;
    const bool present = m->presence < 0 || Present(d, rec, m->presence);
    if (!typed || !present || m->table->viaList || depth >= kShallow || below(2)) continue;
    Asn1Object* o = reinterpret_cast<Asn1Object*>(At(rec, m->offset));
    void* value = alloc(typed->size);
    if (!fillValue(typed, value, depth + 1)) return false;
    o->decoded = value;
    o->data = nullptr;
    o->numocts = 0;
  }
  return true;
}

bool RecordGenerator::fillChoice(const TypeDesc* d, void* rec, int depth) {
  // Deep down, the first alternatives first: a recursive CHOICE then stops.
  unsigned count = d->memberCount;
  unsigned i = depth >= kShallow ? static_cast<unsigned>(below(count < 2 ? count : 2))
                                 : static_cast<unsigned>(below(count));
  const MemberDesc* m = &d->members[i];
  void* slot = At(rec, d->off2);
  if (m->flags & Asn1Engine::kByPointer) {
    void* p = alloc(m->type->size);
    Store<void*>(slot, p);
    slot = p;
  }
  Store<ASN1UINT>(At(rec, d->off1), i + 1);
  return fillValue(m->type, slot, depth + 1);
}

bool RecordGenerator::fillList(const TypeDesc* d, void* rec, int depth) {
  unsigned long long n = depth >= kShallow ? size(d, 0) : size(d, 3);
  const TypeDesc* elem = d->inner;
  if (IsList(d)) {
    rtDList* list = static_cast<rtDList*>(rec);
    rtDListInit(list);
    for (unsigned long long i = 0; i < n; ++i) {
      void* e = alloc(elem->size);
      if (!rtDListAppend(ctxt_, list, e) || !fillValue(elem, e, depth + 1)) return false;
    }
    return true;
  }
  unsigned char* elems = static_cast<unsigned char*>(alloc(n * elem->size));
  Store<unsigned char*>(At(rec, d->off2), elems);
  Store<ASN1UINT>(At(rec, d->off1), static_cast<ASN1UINT>(n));
  for (unsigned long long i = 0; i < n; ++i) {
    if (!fillValue(elem, elems + i * elem->size, depth + 1)) return false;
  }
  return true;
}

bool RecordGenerator::fillValue(const TypeDesc* d, void* v, int depth) {
  using namespace Asn1Engine;
  if (depth > kTooDeep) return false;
  switch (d->kind) {
    case kTagged:
    case kAlias:
      return fillValue(d->inner, v, depth);
    case kBoolean:
      Store<ASN1BOOL>(v, static_cast<ASN1BOOL>(below(2)));
      return true;
    case kInteger: {
      long long lo = INT32_MIN, hi = INT32_MAX;
      if (const Limits* l = d->limits) {
        if (l->flags & kHasLower) lo = std::max(lo, l->lower);
        if (l->flags & kHasUpper) hi = std::min(hi, l->upper);
      }
      // Small values and the extremes are where encodings change length.
      long long pick = below(4) == 0 ? (below(2) ? lo : hi) : between(lo, hi);
      if (below(2) && lo <= 0 && hi >= 0) pick = between(std::max(lo, -300LL), std::min(hi, 300LL));
      Store<ASN1INT>(v, static_cast<ASN1INT>(pick));
      return true;
    }
    case kEnumerated: {
      const Limits* l = d->limits;
      ASN1INT value = (l && l->valueCount) ? l->values[below(l->valueCount)] : 0;
      Store<ASN1INT>(v, value);
      return true;
    }
    case kBigInteger: {
      std::string s = below(3) == 0 ? "-" : "";
      if (below(2)) {
        s += "0x";
        static const char kHex[] = "0123456789abcdef";
        s += kHex[1 + below(15)];
        for (unsigned long long n = below(40); n; --n) s += kHex[below(16)];
      } else {
        s += static_cast<char>('1' + below(9));
        for (unsigned long long n = below(30); n; --n) s += static_cast<char>('0' + below(10));
      }
      if (below(8) == 0) s = "0";
      char* out = static_cast<char*>(alloc(s.size() + 1));
      std::memcpy(out, s.c_str(), s.size() + 1);
      Store<const char*>(v, out);
      return true;
    }
    case kNull:
      return true;
    case kBitString: {
      ASN1DynBitStr* s = static_cast<ASN1DynBitStr*>(v);
      s->numbits = static_cast<ASN1UINT>(size(d, 24));
      ASN1OCTET* data = static_cast<ASN1OCTET*>(alloc((s->numbits + 7) / 8));
      for (ASN1UINT i = 0; i < (s->numbits + 7) / 8; ++i) data[i] = static_cast<ASN1OCTET>(rng_());
      if (s->numbits % 8)
        data[s->numbits / 8] &= static_cast<ASN1OCTET>(0xFF00 >> (s->numbits % 8));
      // DER drops trailing zero bits of a named-bit list (X.690 11.2.2).
      if ((d->flags & kNamedBits) && s->numbits) {
        data[(s->numbits - 1) / 8] |= static_cast<ASN1OCTET>(0x80 >> ((s->numbits - 1) % 8));
      }
      s->data = data;
      return true;
    }
    case kOctetString: {
      ASN1DynOctStr* s = static_cast<ASN1DynOctStr*>(v);
      s->numocts = static_cast<ASN1UINT>(size(d, 16));
      ASN1OCTET* data = static_cast<ASN1OCTET*>(alloc(s->numocts));
      for (ASN1UINT i = 0; i < s->numocts; ++i) data[i] = static_cast<ASN1OCTET>(rng_());
      s->data = data;
      return true;
    }
    case kObjectId: {
      ASN1OBJID* oid = static_cast<ASN1OBJID*>(v);
      oid->numids = static_cast<ASN1UINT>(2 + below(6));
      oid->subid[0] = static_cast<ASN1UINT>(below(3));
      oid->subid[1] = static_cast<ASN1UINT>(oid->subid[0] < 2 ? below(40) : below(1000));
      for (ASN1UINT i = 2; i < oid->numids; ++i) {
        oid->subid[i] = static_cast<ASN1UINT>(below(2) ? below(200) : rng_() & 0xFFFFFFFFu);
      }
      return true;
    }
    case kCharString:
      Store<const char*>(v, text(d->tag, d));
      return true;
    case kBMPString: {
      Asn116BitCharString* s = static_cast<Asn116BitCharString*>(v);
      s->nchars = static_cast<ASN1UINT>(size(d, 8));
      s->data = static_cast<ASN116BITCHAR*>(alloc(s->nchars * sizeof(ASN116BITCHAR)));
      for (ASN1UINT i = 0; i < s->nchars; ++i) {
        s->data[i] =
            static_cast<ASN116BITCHAR>(below(2) ? between(0x20, 0x7E) : between(0xA0, 0xD7FF));
      }
      return true;
    }
    case kUniversalString: {
      Asn132BitCharString* s = static_cast<Asn132BitCharString*>(v);
      s->nchars = static_cast<ASN1UINT>(size(d, 8));
      s->data = static_cast<ASN132BITCHAR*>(alloc(s->nchars * sizeof(ASN132BITCHAR)));
      for (ASN1UINT i = 0; i < s->nchars; ++i) {
        s->data[i] =
            static_cast<ASN132BITCHAR>(below(2) ? between(0x20, 0x7E) : between(0x10000, 0x10FFFF));
      }
      return true;
    }
    case kOpenType: {
      ASN1OpenType* o = static_cast<ASN1OpenType*>(v);
      element(&o->data, &o->numocts);
      return true;
    }
    case kTableOpenType: {
      Asn1Object* o = static_cast<Asn1Object*>(v);
      element(&o->data, &o->numocts);
      return true;
    }
    case kTableOctetString: {
      // Contents of an OCTET STRING: often one element, sometimes bytes that
      // start with a zero identifier octet and so are no value of any type
      // (they stay raw; any other raw bytes could be BER that DER rewrites).
      Asn1Object* o = static_cast<Asn1Object*>(v);
      if (below(2)) {
        element(&o->data, &o->numocts);
      } else {
        o->numocts = static_cast<ASN1UINT>(1 + below(5));
        ASN1OCTET* data = static_cast<ASN1OCTET*>(alloc(o->numocts));
        for (ASN1UINT i = 0; i < o->numocts; ++i) data[i] = static_cast<ASN1OCTET>(i ? rng_() : 0);
        o->data = data;
      }
      return true;
    }
    case kSequence:
    case kSet:
      return fillMembers(d, v, depth);
    case kChoice:
      return d->memberCount && fillChoice(d, v, depth);
    case kSequenceOf:
    case kSetOf:
      return fillList(d, v, depth);
    default:
      return false;
  }
}

}  // namespace Test
}  // namespace Korvex
