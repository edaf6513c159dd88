// engine_intern.h: helpers shared by the engine_*.cpp files (not installed).
#ifndef KORVEX_ASN1RT_ENGINE_INTERN_H
#define KORVEX_ASN1RT_ENGINE_INTERN_H

#include <korvex/asn1rt/asn1engine.h>

#include <cstring>
#include <vector>

namespace Korvex {
namespace Asn1Engine {
namespace detail {

// One walk over a value: the context and the current nesting of constructed
// types, bounded by ASN_K_MAXDEPTH so that no input or record exhausts the stack.
struct Walk {
  Walk(ASN1CTXT* c, int d) : ctxt(c), depth(d) {}
  ASN1CTXT* ctxt;
  int depth;
  // While a table-constrained member is encoded: the type its object gives to
  // the open type(s) of the member (null otherwise, and inside that type).
  const TypeDesc* openType = nullptr;
  // The decoder's last look at an identifier and length in their common form
  // (engine_decode.cpp): a SEQUENCE peeks at each element's tag to pick its
  // component, and the component's decoder then takes the header from here
  // instead of reading it again. Valid for that buffer and cursor only.
  struct Peeked {
    const ASN1OCTET* data = nullptr;
    ASN1UINT size = 0;
    ASN1UINT index = 0;
    ASN1TAG tag = 0;
    int length = 0;
    ASN1UINT headerLength = 0;
  } peeked;
};

// Enters one constructed level; false (with -34 recorded) beyond the bound.
class Level {
 public:
  explicit Level(Walk& w) : w_(w) { ++w_.depth; }
  ~Level() { --w_.depth; }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;
  bool ok() const { return w_.depth <= ASN_K_MAXDEPTH; }

 private:
  Walk& w_;
};

inline int fail(ASN1CTXT* ctxt, int status) { return rtErrSetData(&ctxt->errInfo, status); }

inline unsigned char* at(void* base, unsigned offset) {
  return static_cast<unsigned char*>(base) + offset;
}
inline const unsigned char* at(const void* base, unsigned offset) {
  return static_cast<const unsigned char*>(base) + offset;
}

template <typename T>
inline T load(const void* p) {
  T v;
  std::memcpy(&v, p, sizeof v);
  return v;
}
template <typename T>
inline void store(void* p, T v) {
  std::memcpy(p, &v, sizeof v);
}

// Presence bit i of a SEQUENCE/SET record: bit i % 32 of 32-bit word i / 32 of
// the bit-field struct 'm' (allocated low bit first by the x86-64 ABI).
inline bool present(const TypeDesc* d, const void* rec, int bit) {
  ASN1UINT word = load<ASN1UINT>(at(rec, d->off1 + 4u * (bit / 32)));
  return (word >> (bit % 32)) & 1u;
}
inline void setPresent(const TypeDesc* d, void* rec, int bit, bool on) {
  unsigned char* p = at(rec, d->off1 + 4u * (bit / 32));
  ASN1UINT word = load<ASN1UINT>(p);
  ASN1UINT mask = 1u << (bit % 32);
  store<ASN1UINT>(p, on ? (word | mask) : (word & ~mask));
}

// The value a member designates: the field itself, or what a CHOICE
// alternative held by pointer points to.
inline void* memberValue(const MemberDesc* m, void* rec) {
  unsigned char* field = at(rec, m->offset);
  return (m->flags & kByPointer) ? load<void*>(field) : field;
}

// SEQUENCE OF / SET OF layout.
inline bool isList(const TypeDesc* d) { return (d->flags & kListForm) != 0; }
inline rtDList* listOf(void* rec) { return static_cast<rtDList*>(rec); }
inline const rtDList* listOf(const void* rec) { return static_cast<const rtDList*>(rec); }
inline ASN1UINT arrayCount(const TypeDesc* d, const void* rec) {
  return load<ASN1UINT>(at(rec, d->off1));
}
inline unsigned char* arrayElems(const TypeDesc* d, const void* rec) {
  return load<unsigned char*>(at(rec, d->off2));
}

// The descriptor under aliases (what a value of the type is stored as).
inline const TypeDesc* storageType(const TypeDesc* d) {
  while (d->kind == kAlias || d->kind == kTagged) d = d->inner;
  return d;
}

// Whether a type's encoding can start with tag (constructed bit ignored).
bool typeMatches(const TypeDesc* d, ASN1TAG tag);
inline bool memberMatches(const MemberDesc* m, ASN1TAG tag) {
  if (m->tag) return ((m->tag ^ tag) & ~TM_CONS) == 0;
  return typeMatches(m->type, tag);
}

// Index of the CHOICE alternative whose tag is tag, or -1.
int choiceIndex(const TypeDesc* d, ASN1TAG tag);

// Limits checks (-23 recorded on violation).
int checkSize(ASN1CTXT* ctxt, const Limits* lim, unsigned long long count);
int checkValue(ASN1CTXT* ctxt, const Limits* lim, long long value);
// -6 recorded when value is not an enumerator of a closed ENUMERATED.
int checkEnum(ASN1CTXT* ctxt, const TypeDesc* d, ASN1INT value);
// Length of a character string in the units its SIZE counts (characters).
int charCount(const TypeDesc* d, const char* text, unsigned long long* count);

// INTEGER contents of any size as big-integer text (engine_bigint.cpp): the
// text xd_bigint would give / the contents xe_bigint would write, the common
// case converted directly. decodeBigInteger: len is the contents length.
int decodeBigInteger(ASN1CTXT* ctxt, const char** text, int len);
int encodeBigInteger(ASN1CTXT* ctxt, const char* text);

// Table-constrained members of a SEQUENCE/SET (defined in engine_table.cpp).
bool hasTables(const TypeDesc* d);
const InfoObject* tableObject(const TypeDesc* d, const MemberDesc* m, const void* rec);
int encodeTablesOf(Walk& w, const TypeDesc* d, void* rec);
const TypeDesc* tableType(const TypeDesc* d, const MemberDesc* m, const void* rec);
int decodeTablesOf(Walk& w, const TypeDesc* d, void* rec);
int copyTablesOf(Walk& w, const TypeDesc* d, const void* src, void* dest);
void freeTablesOf(Walk& w, const TypeDesc* d, void* rec);

// The recursive workers behind the public functions.
int encodeValue(Walk& w, const TypeDesc* d, void* value, ASN1TagType tagging);
int decodeValue(Walk& w, const TypeDesc* d, void* value, ASN1TagType tagging, int length);
int copyValue(Walk& w, const TypeDesc* d, const void* src, void* dest);
void freeValue(Walk& w, const TypeDesc* d, void* value);

}  // namespace detail
}  // namespace Asn1Engine
}  // namespace Korvex

#endif
