// korvex/asn1rt/asn1engine.h: the descriptor-driven codec engine behind every
// generated ASN.1 type.
//
// Our compiler (tools/asn1gen) turns each ASN.1 type into a record ASN1T_<Type>
// and a constant TypeDesc that describes the record's layout: its kind, own tag,
// members (offset, tag, optionality, member type), size or value limits and, for
// CHOICE, a sorted tag-to-alternative index. The generated functions asn1E_,
// asn1D_, asn1Copy_, asn1Free_, asn1ETC_ and asn1DTC_ are one-line calls of the
// functions below with the type's descriptor, so a codec fix made here serves
// every generated type.
//
// Encoding writes backwards through the xe_ primitives (X.690 DER forms: minimal
// lengths, DEFAULT values omitted, SET components in tag order, SET OF sorted);
// decoding reads BER (definite and indefinite lengths, constructed strings)
// through the xd_ primitives. Nesting is bounded by ASN_K_MAXDEPTH (status -34).
// Copy and free take all storage from / return it to the context's type heap.
//
// Record conventions the descriptors rely on:
//   - presence bits: a bit-field struct 'm' of unsigned 1-bit fields, bit i of the
//     32-bit words at TypeDesc::off1 is the i-th OPTIONAL/DEFAULT component
//     (x86-64 System V / Itanium bit-field allocation, low bit first);
//   - CHOICE: the selector 't' (ASN1UINT, 1-based) at off1, the union 'u' at off2;
//   - SEQUENCE OF as array: 'n' (ASN1UINT) at off1, 'elem' (pointer) at off2;
//     as list: an rtDList at offset 0 whose nodes point to heap element records.
#ifndef KORVEX_ASN1RT_ASN1ENGINE_H
#define KORVEX_ASN1RT_ASN1ENGINE_H

#include <korvex/asn1rt/asn1ber.h>
#include <korvex/asn1rt/asn1type.h>
#include <korvex/platform/export.h>

#ifdef __cplusplus
#include <korvex/asn1rt/ASN1CSeqOfList.h>
#include <korvex/asn1rt/ASN1TObjId.h>
#include <korvex/asn1rt/asn1CppTypes.h>
#endif

/* Storage of a NULL value where a record needs one (typedefs, list elements). */
typedef ASN1OCTET Asn1NullValue;

/* A table-constrained open type (X.682 10): the complete encoding of the value,
 * tag and length included (numocts, data, laid out as ASN1OpenType), and the
 * value decoded with the type that the information object of its key names
 * (null when not decoded, when no object is known for the key, or when the
 * bytes are not a value of that type: they then stay as they came). The
 * decoded value lives in the context's type heap. */
typedef struct Asn1Object {
  ASN1UINT numocts;
  const ASN1OCTET* data;
  void* decoded;
} Asn1Object;

#ifdef __cplusplus

namespace Korvex {
namespace Asn1Engine {

/* What a descriptor describes. */
enum Kind : unsigned char {
  kBoolean = 1,      // ASN1BOOL
  kInteger,          // ASN1INT
  kEnumerated,       // ASN1INT or ASN1UINT (kUnsignedEnum), limits.values lists the values
  kBigInteger,       // const char* text (xe_bigint/xd_bigint)
  kNull,             // no storage
  kBitString,        // ASN1DynBitStr
  kOctetString,      // ASN1DynOctStr
  kObjectId,         // ASN1OBJID
  kCharString,       // const char*, NUL-terminated (UTF8String as UTF-8)
  kBMPString,        // Asn116BitCharString
  kUniversalString,  // Asn132BitCharString
  kOpenType,         // ASN1OpenType: one complete element
  kTableOpenType,    // Asn1Object
  kSequence,         // members in order
  kSet,              // members in any order on the wire
  kChoice,           // t + u
  kSequenceOf,       // n + elem, or a list (kListForm)
  kSetOf,
  kTagged,  // a tag around inner (kExplicitTag) or replacing inner's tag
  kAlias,   // the same as inner (a type defined as another named type)
  // Asn1Object: an OCTET STRING whose contents are the DER of a
  // table-constrained type (X.682 11, OCTET STRING (CONTAINING ...)); numocts
  // and data are the contents, decoded the value decoded from them.
  kTableOctetString
};

/* TypeDesc::flags */
enum : unsigned char {
  kExtensible = 0x01,    // SEQUENCE/SET/CHOICE with '...', or an extensible ENUMERATED
  kListForm = 0x02,      // SEQUENCE OF / SET OF held as a list
  kUnsignedEnum = 0x04,  // ENUMERATED held as ASN1UINT
  kExplicitTag = 0x08,   // kTagged: explicit (else implicit)
  kNamedBits = 0x10,     // BIT STRING with named bits: DER drops trailing 0 bits
  kNoStorage = 0x20      // the value owns no heap storage: free has nothing to do
};

/* MemberDesc::flags */
enum : unsigned short {
  kOptional = 0x01,          // OPTIONAL or DEFAULT: has a presence bit
  kDefault = 0x02,           // DEFAULT: MemberDesc::defaultDer holds the default's DER
  kExplicit = 0x04,          // the member's own tag is explicit
  kByPointer = 0x08,         // CHOICE alternative held by pointer in the union
  kExtensionAddition = 0x10  // after '...': may be absent, has a presence bit
};

/* Limits::flags */
enum : unsigned char { kHasLower = 0x01, kHasUpper = 0x02 };

/* Size limits (strings: octets, characters or bits; lists: elements) or value
 * limits (32-bit integers), or the values of an ENUMERATED (sorted). */
struct Limits {
  long long lower;
  long long upper;
  unsigned char flags;
  const ASN1INT* values;
  unsigned valueCount;
};

struct TypeDesc;
struct ObjectSet;

/* Table constraint of a member: the set whose objects give the member's type,
 * the sibling member holding the key, the class's type field, and whether the
 * member is a SEQUENCE OF/SET OF of table-constrained open types. */
struct TableRef {
  const ObjectSet* set;
  unsigned short keyMember;
  unsigned char field;
  unsigned char viaList;
};

struct MemberDesc {
  unsigned offset;  // offsetof the field (the union for CHOICE)
  ASN1TAG tag;      // own tag with its constructed bit; 0 = untagged
  unsigned short flags;
  short presence;               // bit number in the presence words, -1 when none
  const TypeDesc* type;         // the member's type, without its own tag
  const ASN1OCTET* defaultDer;  // DEFAULT: the member's DER with its default value
  unsigned defaultLength;
  const TableRef* table;
};

struct TagIndexEntry {
  ASN1TAG tag;  // without the constructed bit; 0 = an alternative taking any tag
  unsigned member;
};

struct TypeDesc {
  unsigned char kind;
  unsigned char flags;
  unsigned short memberCount;
  ASN1TAG tag;    // own tag with its constructed bit; 0 = none (CHOICE, open)
  unsigned size;  // sizeof the value (record or primitive)
  unsigned off1;  // see the record conventions above
  unsigned off2;
  const TypeDesc* inner;  // kTagged/kAlias: inner type; SEQUENCE OF: element type
  const MemberDesc* members;
  const Limits* limits;
  const TagIndexEntry* tagIndex;  // CHOICE: every alternative tag; SET: encoding order
  unsigned short tagIndexCount;
};

/* Key kinds of information object sets. */
enum KeyKind : unsigned char { kKeyObjectId = 1, kKeyInteger = 2 };

/* An information object (X.681 11): the value of its UNIQUE key field, the types
 * of its type fields (class order, null when absent) and pointers to the values
 * of its fixed-type value fields (class order, null when absent or not kept). */
struct KORVEX_API InfoObject {
  const void* key;
  const TypeDesc* const* types;
  const void* const* values;

  /* encode: writes value (a typed value of type field `field`) at the front of
   * ctxt's buffer. Returns the length, or -18 when the object has no such type. */
  int encode(ASN1CTXT* ctxt, const void* value, unsigned field = 0) const;

  /* decode: decodes the complete element data[0..numocts) into a new zeroed
   * value from ctxt's type heap, stored in *value (null on failure, after the
   * partial value was freed). ctxt's buffer description is saved and restored.
   * Returns 0 or a negative status (-18: no such type field, -12: no memory). */
  int decode(ASN1CTXT* ctxt, const ASN1OCTET* data, ASN1UINT numocts, void** value,
             unsigned field = 0) const;

  /* copy: a new deep copy of src from ctxt's type heap into *dest (null src
   * gives null). 0, -18 or -12. */
  int copy(ASN1CTXT* ctxt, const void* src, void** dest, unsigned field = 0) const;

  /* free: frees the value's storage and the value itself (null does nothing). */
  void free(ASN1CTXT* ctxt, void* value, unsigned field = 0) const;
};

/* An information object set: its objects sorted by key (OBJECT IDENTIFIERs by
 * arc count, then arc by arc from the last; INTEGERs by value: the compiler
 * sorts them) and the kind of their key. Lookups are binary searches; null
 * when no object has the key. */
struct KORVEX_API ObjectSet {
  const InfoObject* const* objects;
  unsigned count;
  unsigned char keyKind;

  const InfoObject* lookup(const ASN1OBJID& id) const;
  const InfoObject* lookup(ASN1INT id) const;
};

/* Descriptors of the universal primitive types. */
KORVEX_API extern const TypeDesc kDescBoolean;
KORVEX_API extern const TypeDesc kDescInteger;
KORVEX_API extern const TypeDesc kDescBigInteger;
KORVEX_API extern const TypeDesc kDescNull;
KORVEX_API extern const TypeDesc kDescBitString;
KORVEX_API extern const TypeDesc kDescOctetString;
KORVEX_API extern const TypeDesc kDescObjectId;
KORVEX_API extern const TypeDesc kDescOpenType;
KORVEX_API extern const TypeDesc kDescTableOpenType;
KORVEX_API extern const TypeDesc kDescTableOctetString;
KORVEX_API extern const TypeDesc kDescUTF8String;
KORVEX_API extern const TypeDesc kDescNumericString;
KORVEX_API extern const TypeDesc kDescPrintableString;
KORVEX_API extern const TypeDesc kDescTeletexString;
KORVEX_API extern const TypeDesc kDescT61String;
KORVEX_API extern const TypeDesc kDescVideotexString;
KORVEX_API extern const TypeDesc kDescIA5String;
KORVEX_API extern const TypeDesc kDescGraphicString;
KORVEX_API extern const TypeDesc kDescVisibleString;
KORVEX_API extern const TypeDesc kDescISO646String;
KORVEX_API extern const TypeDesc kDescGeneralString;
KORVEX_API extern const TypeDesc kDescObjectDescriptor;
KORVEX_API extern const TypeDesc kDescUTCTime;
KORVEX_API extern const TypeDesc kDescGeneralizedTime;
KORVEX_API extern const TypeDesc kDescBMPString;
KORVEX_API extern const TypeDesc kDescUniversalString;

/* encode: writes value, described by desc, in front of ctxt's encoded data.
 * With ASN1EXPL the type's own tag is written; with ASN1IMPL only its contents.
 * Table-constrained open types whose decoded value is set are first re-encoded
 * through their object (the record's bytes are replaced). Returns the number of
 * bytes written or a negative status, recorded in ctxt: -11 (CHOICE selector),
 * -6 (value outside an ENUMERATED), -23 (size or value limits), -18 (null
 * pointer where a value is needed), -34 (nesting), or the primitives' statuses. */
KORVEX_API int encode(ASN1CTXT* ctxt, const TypeDesc* desc, void* value, ASN1TagType tagging);

/* decode: reads a value described by desc at ctxt's cursor into value (which
 * the caller zeroed or freed). With ASN1EXPL the own tag is matched first; with
 * ASN1IMPL length is the contents length the caller read (-9999: indefinite).
 * Returns 0 or a negative status, recorded in ctxt: -3 (tag), -8 (missing
 * component), -10 (element after the last component), -7 (SET component twice),
 * -6, -23, -5, -2, -34 or the primitives' statuses. On failure the value holds
 * what was decoded so far; free releases it. */
KORVEX_API int decode(ASN1CTXT* ctxt, const TypeDesc* desc, void* value, ASN1TagType tagging,
                      int length);

/* copy: deep copy of src into dest, all storage from ctxt's type heap. Copying
 * a value onto itself does nothing. 0, -12 (no memory) or -34. */
KORVEX_API int copy(ASN1CTXT* ctxt, const TypeDesc* desc, const void* src, void* dest);

/* free: returns every heap block the value's components own to ctxt's type heap
 * and clears the pointers, counts and presence bits (the value itself stays).
 * Safe on null, on zeroed and on half-decoded values. Open-type bytes are not
 * freed while ctxt has ASN1OPENTYPEREF set (they point into the message). */
KORVEX_API void free(ASN1CTXT* ctxt, const TypeDesc* desc, void* value);

/* encodeTables / decodeTables: only the table-constrained open types of a
 * SEQUENCE or SET value (asn1ETC_ / asn1DTC_): encode each present typed value
 * whose key has an object into the open type's bytes, or decode the bytes of
 * each present open type whose key has an object into its typed value. Unknown
 * keys, and bytes that are not a value of the object's type, leave the raw
 * bytes (decoded stays null). Returns 0 or a negative status (-12 when memory
 * runs out). */
KORVEX_API int encodeTables(ASN1CTXT* ctxt, const TypeDesc* desc, void* value);
KORVEX_API int decodeTables(ASN1CTXT* ctxt, const TypeDesc* desc, void* value);

/* zeroRecord: fills a record with zeros (generated constructors). */
KORVEX_API void zeroRecord(void* record, unsigned size);

/* Control: the base of every generated control class ASN1C_<Type>. It binds a
 * caller's record (borrowed, never freed here) and its descriptor to a context
 * and a message buffer (ASN1CType). */
class KORVEX_API Control : public ASN1CType {
 public:
  /* EncodeTo: makes buffer the message buffer (the control object's context
   * then shares its type heap), lets it initialise itself and encodes the
   * record with its own tag into it. Returns the length or a negative status. */
  int EncodeTo(ASN1MessageBufferIF& buffer) override;

  /* DecodeFrom: the same for decoding the record from buffer; 0 or a status. */
  int DecodeFrom(ASN1MessageBufferIF& buffer) override;

 protected:
  /* A new context of its own and no buffer. */
  Control(const TypeDesc* desc, void* record);
  /* The buffer's context (one more reference) and the buffer. */
  Control(ASN1MessageBufferIF& buffer, const TypeDesc* desc, void* record);
  /* The other object's context (one more reference), buffer and record. */
  Control(const Control& other);

  const TypeDesc* mpDesc;
  void* mpRecord;
};

}  // namespace Asn1Engine
}  // namespace Korvex

#endif  // __cplusplus

#endif
