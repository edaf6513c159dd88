// korvex/asn1types/PrimitiveTraits.h: traits (Traits.h) for the runtime's
// primitive records, the building blocks of the value classes' own traits and
// usable directly with the templates:
//
//   CBlob der = asn1Encode<ASN1TObjId_traits>("1.2.840.113549");
//   CStringProxy oid(nullptr);
//   asn1Decode<ASN1TObjId_traits>(der, oid);
//
// | traits                      | record (ASN1_T)   | typed value                        |
// |-----------------------------|-------------------|------------------------------------|
// | ASN1TObjId_traits           | ASN1OBJID         | char const* dotted text / CStringProxy |
// | ASN1IA5String_traits        | char const*       | char const* / CStringProxy         |
// | ASN1UTF8String_traits       | char const* UTF-8 | wchar_t const* / CWStringProxy     |
// | ASN1TDynOctStr_traits       | ASN1TDynOctStr    | CBlob (content octets)             |
// | ASN1TDynBitStr_traits       | ASN1TDynBitStr    | CBlob (whole bytes of the bits)    |
// | ASN1TOpenType_traits        | ASN1TOpenType     | CBlob (whole DER of the value)     |
// | Asn1TObject_traits          | Asn1Object        | CBlob (whole DER of the value)     |
// | ASN1GeneralizedTime_traits  | char const*       | CDateTime                          |
// | ASN1BigInteger_traits       | char const* text  | CBigInteger                        |
//
// The set/get/copy of the C-struct records take the runtime's base records
// (ASN1DynOctStr, ASN1OpenType ...), so they serve the fields of generated
// records as well as the zero-initialised ASN1T forms. Storage comes from the
// context heap given to set/copy; a failed allocation there throws
// 0x80093106.
#ifndef KORVEX_ASN1TYPES_PRIMITIVETRAITS_H
#define KORVEX_ASN1TYPES_PRIMITIVETRAITS_H

#include <korvex/asn1rt/asn1CppTypes.h>
#include <korvex/asn1rt/asn1engine.h>
#include <korvex/asn1rt/asn1type.h>
#include <korvex/asn1types/BigInteger.h>
#include <korvex/asn1types/PrimitiveControls.h>
#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>
#include <korvex/core/StringProxy.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// ASN1TObjId_traits: set converts dotted text with str2oid (failure: 0x80070057);
// get converts with oid2str (failure: 0x80070057); copy copies the record.
struct KORVEX_API ASN1TObjId_traits {
  typedef ASN1OBJID ASN1_T;
  typedef ASN1C_ObjId ASN1_C;
  static void set(ASN1CTXT* ctxt, ASN1OBJID& rec, char const* oid);
  static void get(ASN1OBJID const& rec, CStringProxy& oid);
  static void copy(ASN1CTXT* ctxt, ASN1OBJID const& src, ASN1OBJID& dst);
};

// ASN1IA5String_traits: set copies the NUL-terminated text into the heap (null
// text: 0x80070057); get copies it out (a null record gives ""). copy makes a
// heap copy of the source text but stores the source pointer itself in dst, so
// dst shares src's text while the fresh copy stays unused in the heap until
// the context is freed; callers rely on dst == src afterwards.
struct KORVEX_API ASN1IA5String_traits {
  typedef char const* ASN1_T;
  typedef ASN1C_IA5String ASN1_C;
  static void set(ASN1CTXT* ctxt, char const*& rec, char const* text);
  static void get(char const* const& rec, CStringProxy& text);
  static void copy(ASN1CTXT* ctxt, char const* const& src, char const*& dst);
};

// ASN1UTF8String_traits: set writes wide text as UTF-8 into the heap (null
// text: 0x80070057; a surrogate or a value above U+10FFFF: 0x80093101); get
// reads well-formed UTF-8 back (otherwise 0x80093101); copy copies the text.
struct KORVEX_API ASN1UTF8String_traits {
  typedef char const* ASN1_T;
  typedef ASN1C_UTF8String ASN1_C;
  static void set(ASN1CTXT* ctxt, char const*& rec, wchar_t const* text);
  static void get(char const* const& rec, CWStringProxy& text);
  static void copy(ASN1CTXT* ctxt, char const* const& src, char const*& dst);
};

// ASN1TDynOctStr_traits: the blob's bytes as the OCTET STRING contents.
struct KORVEX_API ASN1TDynOctStr_traits {
  typedef ASN1TDynOctStr ASN1_T;
  typedef ASN1C_OctStr ASN1_C;
  static void set(ASN1CTXT* ctxt, ASN1DynOctStr& rec, CBlob const& bytes);
  static void get(ASN1DynOctStr const& rec, CBlob& bytes);
  static void copy(ASN1CTXT* ctxt, ASN1DynOctStr const& src, ASN1DynOctStr& dst);
};

// ASN1TDynBitStr_traits: the blob's bytes as a BIT STRING of 8 bits per byte;
// get returns the bytes that hold the bits (the last one with its unused bits
// as decoded). A blob of 2^29 bytes or more throws 0x80070057.
struct KORVEX_API ASN1TDynBitStr_traits {
  typedef ASN1TDynBitStr ASN1_T;
  typedef ASN1C_BitStr ASN1_C;
  static void set(ASN1CTXT* ctxt, ASN1DynBitStr& rec, CBlob const& bytes);
  static void get(ASN1DynBitStr const& rec, CBlob& bytes);
  static void copy(ASN1CTXT* ctxt, ASN1DynBitStr const& src, ASN1DynBitStr& dst);
};

// ASN1TOpenType_traits: the blob holds the complete DER of one value (tag and
// length included), inserted as it stands when encoding.
struct KORVEX_API ASN1TOpenType_traits {
  typedef ASN1TOpenType ASN1_T;
  typedef ASN1C_OpenType ASN1_C;
  static void set(ASN1CTXT* ctxt, ASN1OpenType& rec, CBlob const& der);
  static void get(ASN1OpenType const& rec, CBlob& der);
  static void copy(ASN1CTXT* ctxt, ASN1OpenType const& src, ASN1OpenType& dst);
};

// Asn1TObject_traits: as ASN1TOpenType_traits for the bytes of a
// table-constrained open type (Asn1Object); set and copy leave the decoded
// value pointer null (the generated table decoder fills it when asked).
struct KORVEX_API Asn1TObject_traits {
  typedef Asn1Object ASN1_T;
  typedef ASN1C_Object ASN1_C;
  static void set(ASN1CTXT* ctxt, Asn1Object& rec, CBlob const& der);
  static void get(Asn1Object const& rec, CBlob& der);
  static void copy(ASN1CTXT* ctxt, Asn1Object const& src, Asn1Object& dst);
};

// ASN1GeneralizedTime_traits: GeneralizedTime text for a CDateTime. set is
// DateToASN1GeneralizedTime(ctxt, v, true) (whole seconds, milliseconds cut);
// get parses the text with CDateTime(char const*) (its exceptions pass
// through: 0x8007076D, 0x80004005); copy parses the source text and writes it
// again the same way.
struct KORVEX_API ASN1GeneralizedTime_traits {
  typedef char const* ASN1_T;
  typedef ASN1C_GeneralizedTime ASN1_C;
  static void set(ASN1CTXT* ctxt, char const*& rec, CDateTime const& time);
  static void get(char const* const& rec, CDateTime& time);
  static void copy(ASN1CTXT* ctxt, char const* const& src, char const*& dst);
  // encode / decode: the text as a character string with universal tag 24,
  // explicit tagging (xe_charstr / xd_charstr), in the buffer's context.
  // Return the length / 0, or a negative status.
  static int encode(ASN1BEREncodeBuffer& buffer, char const*& rec);
  static int decode(ASN1BERDecodeBuffer& buffer, char const*& rec);
};

// ASN1BigInteger_traits: an INTEGER field held as big-integer text. set is
// BigIntegerToASN1String; get is StringToBigInteger; copy copies the text.
struct KORVEX_API ASN1BigInteger_traits {
  typedef char const* ASN1_T;
  typedef ASN1C_BigInt ASN1_C;
  static void set(ASN1CTXT* ctxt, char const*& rec, CBigInteger const& value);
  static void get(char const* const& rec, CBigInteger& value);
  static void copy(ASN1CTXT* ctxt, char const* const& src, char const*& dst);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
