// korvex/asn1types/AttributeTypeRegister.h: the register of name attribute
// types: OID, short text name ("CN", "OGRN" ...), the string type in which a
// value given as text is encoded, and the longest value text accepted.
//
// The library registers 22 types when it is loaded, in this order (every
// maximum length is 32768):
//
//   CN 2.5.4.3 UTF8 | C 2.5.4.6 Printable | L 2.5.4.7 | ST 2.5.4.8 |
//   E 1.2.840.113549.1.9.1 IA5 | O 2.5.4.10 | OU 2.5.4.11 | T 2.5.4.12 |
//   GN 2.5.4.42 | I 2.5.4.43 | SN 2.5.4.4 | PS 2.5.4.65 |
//   OGRN 1.2.643.100.1 | OGRNIP 1.2.643.100.5 | SNILS 1.2.643.100.3 |
//   INNLE 1.2.643.100.4 | INN 1.2.643.3.131.1.1 | STREET 2.5.4.9 |
//   DC 0.9.2342.19200300.100.1.25 IA5 | UnstructuredName 1.2.840.113549.1.9.2 |
//   PostalCode 2.5.4.17 | SERIALNUMBER 2.5.4.5 Printable
//   (types not marked are UTF8String)
//
// Every lookup reads the list front to back with exact, case-sensitive
// comparisons; the first match wins.
#ifndef KORVEX_ASN1TYPES_ATTRIBUTETYPEREGISTER_H
#define KORVEX_ASN1TYPES_ATTRIBUTETYPEREGISTER_H

#include <korvex/asn1types/Names.h>
#include <korvex/asn1types/Util.h>
#include <korvex/core/Blob.h>
#include <korvex/core/StringProxy.h>
#include <korvex/platform/export.h>

#include <list>
#include <string>

namespace Korvex {
namespace ASN1 {

// CATAVRegister: one entry of the register, and (through its static
// functions) the register itself.
class KORVEX_API CATAVRegister {
 public:
  typedef std::list<CATAVRegister> List;
  typedef List::const_iterator const_iterator;

  // CATAVRegister(type, name, stringType, maxLength) stores the four fields
  // and appends a copy of them at the end of the register. Registration is
  // meant for load time: the register is not locked against concurrent
  // registration and lookup. Null type or name throws 0x80070057.
  CATAVRegister(char const* type, wchar_t const* name, StringType stringType,
                unsigned long maxLength);
  // Copies hold the same fields and register nothing.
  CATAVRegister(CATAVRegister const& other);
  CATAVRegister& operator=(CATAVRegister const& other);
  ~CATAVRegister();

  // The fields: the attribute's OID as dotted text, its short name, the
  // string type of values given as text, the longest value text in
  // characters.
  char const* get_type() const { return m_type.c_str(); }
  wchar_t const* get_name() const { return m_name.c_str(); }
  StringType get_stringType() const { return m_stringType; }
  unsigned long get_maxLength() const { return m_maxLength; }

  // registered: the register, in registration order. The list itself is
  // built on first use, so registering from any load-time initialiser is
  // safe; the library's own entries exist once the library is loaded.
  static List const& registered();
  // end: registered().end(), the "not found" answer of find.
  static const_iterator end();

  // find(type): the entry whose OID text equals type, or end() (also for
  // null).
  static const_iterator find(char const* type);
  // find(name): the entry whose name equals name, or end() (also for null).
  static const_iterator find(wchar_t const* name);

  // typeToStr: the name of the entry with that OID text; for an unregistered
  // type the type text itself, widened (towstring). Null throws 0x80070057.
  static CWStringProxy typeToStr(char const* type);
  // typeFromStr: the OID text of the entry with that name; for an
  // unregistered name the name itself, narrowed (tostring), so that a dotted
  // OID given as text passes through ("cn" is not "CN"). Null throws
  // 0x80070057.
  static CStringProxy typeFromStr(wchar_t const* name);

  // valueFromStr: the DER of text as the value of attribute `type`. For a
  // registered type a text longer than the entry's maximum length throws
  // 0x80070057, and stringType 0 (stDefault) means the entry's own string
  // type; an unregistered type has no length limit and stDefault means
  // UTF8String. The value is encodeCharString(text, stringType), whose
  // failures pass through. Null arguments throw 0x80070057.
  static CBlob valueFromStr(char const* type, wchar_t const* text, StringType stringType);
  // valueToStr: the text of a DER value: decodeCharString for a value with
  // the universal tag of a character string (its failures, 0x80093101, pass
  // through); for any other value '#' and the upper-case hex of the DER
  // (RFC 4514 2.4), an empty blob giving "#". `type` is not used for the
  // conversion (may be null).
  static CWStringProxy valueToStr(char const* type, CBlob const& der);

  // makeATAV(type, value, stringType): the pair whose type is
  // typeFromStr(type) (it must then be dotted OID text: otherwise
  // 0x80070057) and whose value is valueFromStr of that type.
  static CAttributeTypeAndValue makeATAV(wchar_t const* type, wchar_t const* value,
                                         StringType stringType);
  // makeATAV(text, stringType): text split at its first '=' into type and
  // value (the value keeps any further '='); no '=' throws 0x80070057. The
  // parts are taken as they stand (no trimming, no escapes: for escaped text
  // use the distinguished-name parser, DistinguishedNameText.h).
  static CAttributeTypeAndValue makeATAV(wchar_t const* text, StringType stringType);

 private:
  static List& list();

  std::string m_type;
  std::wstring m_name;
  StringType m_stringType;
  unsigned long m_maxLength;
};

// The library's entries, registered at load in the order above.
KORVEX_API extern CATAVRegister const commonNameAttribute;            // CN
KORVEX_API extern CATAVRegister const countryNameAttribute;           // C
KORVEX_API extern CATAVRegister const localityNameAttribute;          // L
KORVEX_API extern CATAVRegister const stateOrProvinceNameAttribute;   // ST
KORVEX_API extern CATAVRegister const emailAddressAttribute;          // E
KORVEX_API extern CATAVRegister const organizationNameAttribute;      // O
KORVEX_API extern CATAVRegister const organizationUnitNameAttribute;  // OU
KORVEX_API extern CATAVRegister const titleAttribute;                 // T
KORVEX_API extern CATAVRegister const givenNameAttribute;             // GN
KORVEX_API extern CATAVRegister const initialsAttribute;              // I
KORVEX_API extern CATAVRegister const surnameAttribute;               // SN
KORVEX_API extern CATAVRegister const pseudonymAttribute;             // PS
KORVEX_API extern CATAVRegister const ogrnAttribute;                  // OGRN
KORVEX_API extern CATAVRegister const ogrnipAttribute;                // OGRNIP
KORVEX_API extern CATAVRegister const snilsAttribute;                 // SNILS
KORVEX_API extern CATAVRegister const innleAttribute;                 // INNLE
KORVEX_API extern CATAVRegister const innAttribute;                   // INN
KORVEX_API extern CATAVRegister const streetAddressAttribute;         // STREET
KORVEX_API extern CATAVRegister const domainComponentAttribute;       // DC
KORVEX_API extern CATAVRegister const unstructuredNameAttribute;      // UnstructuredName
KORVEX_API extern CATAVRegister const PostalCodeAttribute;            // PostalCode
KORVEX_API extern CATAVRegister const serialNumberAttribute;          // SERIALNUMBER

}  // namespace ASN1
}  // namespace Korvex

#endif
