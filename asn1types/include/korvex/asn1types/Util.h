// korvex/asn1types/Util.h: object identifiers as dotted text, DER character
// strings as wide text, code-page conversions, small integers in the runtime's
// big-integer text, and OCTET STRING wrapping.
//
// Failures throw ATL::CAtlException (codes in ErrorCodes.h) unless a function
// says it returns a status.
#ifndef KORVEX_ASN1TYPES_UTIL_H
#define KORVEX_ASN1TYPES_UTIL_H

#include <korvex/asn1rt/asn1type.h>
#include <korvex/asn1types/BigInteger.h>
#include <korvex/core/Blob.h>
#include <korvex/core/StringProxy.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// ---- Object identifiers ---------------------------------------------------

// str2oid reads dotted text ("1.2.840.113549") into *oid and returns 0, or 1 on
// any error. Each arc is read with strtoul in base 10, so white space before a
// number and a sign are accepted, and white space after a number; the value is
// stored cut to 32 bits. The text fails when a number has no digit, a dot is
// missing or doubled, the text ends in a dot, anything but white space follows
// the last number, the last number's value is 0xFFFFFFFF (its full unsigned
// long value: 4294967295 fails, 4294967296 is stored as 0), or there are more
// arcs than the record's 128. The first arcs are not range-checked (xe_objid
// does that when encoding). On failure *oid holds what was read so far. A null
// text or oid fails.
KORVEX_API unsigned int str2oid(char const* text, ASN1OBJID* oid);

// oid2str writes the arcs of *oid in decimal, separated by dots, as
// NUL-terminated text into out (sized to the text and its NUL; the empty OID
// gives the text "") and returns 1. It returns 0 and leaves out alone for a
// null oid or an arc count above 128 (a record no decoder makes).
KORVEX_API int oid2str(CBlob& out, ASN1OBJID const* oid);

// toASN1OBJID: str2oid of text as a value; failure throws 0x80070057.
KORVEX_API ASN1OBJID toASN1OBJID(char const* text);

// toOID: oid2str of oid as a string; failure throws 0x80070057.
KORVEX_API CStringProxy toOID(ASN1OBJID const& oid);

// ---- Character strings -----------------------------------------------------

// StringType: the ASN.1 character-string type in which encodeCharString writes
// wide text. stDefault (0) is not a type: the attribute-type register reads
// it as "the entry's own type"; encodeCharString refuses it.
enum StringType : unsigned int {
  stDefault = 0,
  stUTF8String = 1,       // tag 12, each character as UTF-8
  stPrintableString = 2,  // tag 19, narrowed with tostring
  stTeletexString = 3,    // tag 20, narrowed with tostring
  stBMPString = 4,        // tag 30, each character as one 16-bit unit
  stIA5String = 5,        // tag 22, narrowed with tostring
  stUniversalString = 6   // tag 28, each character as one 32-bit unit
};

// encodeCharString returns the DER of text as the string type `type`
// (L"abc" as stIA5String is 16 03 61 62 63). The printable, teletex and IA5
// forms hold the text narrowed with tostring (the platform's default code
// page); their characters are not checked against the type's alphabet.
// Throws 0x80093101 for a type outside 1..6, for a character that the type
// cannot hold (a surrogate or a value above U+10FFFF in UTF-8, a value above
// U+FFFF in a BMPString) and for any encoder failure; 0x80093106 when the
// context heap is exhausted; 0x80070057 for null text; the platform's last
// error when narrowing fails.
KORVEX_API CBlob encodeCharString(wchar_t const* text, StringType type);

// decodeCharString returns the text of one DER/BER character string by its
// universal tag (primitive or constructed): UTF8String (12, well-formed UTF-8
// only), NumericString (18), PrintableString (19), TeletexString (20) and
// IA5String (22) widened with towstring, UniversalString (28, one character
// per 32-bit unit) and BMPString (30, one character per 16-bit unit). The
// text ends at its first NUL character. Any other tag or class, and any
// failure of the decoder or of the UTF-8 conversion, throws 0x80093101;
// 0x80093106 when the context heap is exhausted.
KORVEX_API CWStringProxy decodeCharString(CBlob const& der);

// tostring converts wide (32-bit) text, or 16-bit text (UTF-16: a valid
// surrogate pair is one character), to narrow text through
// WideCharToMultiByte in the platform's default code page; characters the code
// page cannot hold become '?'. towstring converts narrow text to wide through
// MultiByteToWideChar (undecodable bytes become U+FFFD). A null text or a
// failing platform call throws the platform's last error (AtlThrowLastWin32;
// 0x80070057 for null text).
KORVEX_API CStringProxy tostring(wchar_t const* text);
KORVEX_API CStringProxy tostring(unsigned short const* text);
KORVEX_API CWStringProxy towstring(char const* text);

// tostring(int) / towstring(int): the value in decimal, with a leading '-' for
// negative values and no other sign or padding ("-2147483648", "0", "17").
KORVEX_API CStringProxy tostring(int value);
KORVEX_API CWStringProxy towstring(int value);

// ---- Integers as big-integer text -------------------------------------------
//
// The runtime keeps unbounded INTEGERs as text (xe_bigint/xd_bigint): optional
// '-', then "0x" and hex digits, "0b" and binary digits, or decimal digits.
// The texts written here are hexadecimal ("0x1f", "-0x80", "0"), the form
// xd_bigint produces.

// DWORDToASN1BigInteger: the text of the four bytes of value in big-endian
// order read as a two's-complement CBigInteger (0x100 gives "0x100";
// 0xFFFFFFFF gives "-0x1"), allocated from ctxt's heap. No heap memory throws
// 0x8007000E; a null ctxt 0x80070057.
KORVEX_API char const* DWORDToASN1BigInteger(ASN1CTXT* ctxt, unsigned int value);

// ASN1BigIntegerToDWORD parses text with StringToBigInteger and folds its
// minimal two's-complement bytes, first to last, as result = result * 11 +
// byte, starting from 0. The factor is 11, not 256, and is kept so: callers
// depend on this exact result. Only a single-byte value comes back
// unchanged (0x7f gives 127) while bytes 01 00 give 11. More than four bytes
// throws 0x80070057; so does invalid text.
KORVEX_API unsigned int ASN1BigIntegerToDWORD(char const* text);

// StringToBigInteger parses big-integer text into value (minimal
// two's-complement bytes). Invalid or null text throws 0x80070057 and leaves
// value alone.
KORVEX_API void StringToBigInteger(char const* text, CBigInteger& value);

// BigIntegerToString writes the hexadecimal text of value, NUL-terminated,
// into out (sized to the text and its NUL).
KORVEX_API void BigIntegerToString(CBigInteger const& value, CBlob& out);

// ASN1StringToBigInteger: StringToBigInteger returning the value.
KORVEX_API CBigInteger ASN1StringToBigInteger(char const* text);

// BigIntegerToASN1String: the hexadecimal text of value allocated from ctxt's
// heap (the form a generated record's big-integer field holds). No heap memory
// throws 0x80093106; a null ctxt 0x80070057.
KORVEX_API char const* BigIntegerToASN1String(ASN1CTXT* ctxt, CBigInteger const& value);

// ---- OCTET STRING ---------------------------------------------------------

// toOctetString returns the DER OCTET STRING holding bytes (an empty blob gives
// 04 00); fromOctetString returns the contents of a DER/BER OCTET STRING
// (constructed forms joined). A bad encoding throws 0x80093101, an exhausted
// context heap 0x80093106.
KORVEX_API CBlob toOctetString(CBlob const& bytes);
KORVEX_API CBlob fromOctetString(CBlob const& der);

}  // namespace ASN1
}  // namespace Korvex

#endif
