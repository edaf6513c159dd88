// korvex/asn1types/Names.h: the name values of X.509 (RFC 5280 4.1.2.4 and
// 4.2.1.6): attribute-type-and-value pairs, relative and full distinguished
// names, and general names.
//
//   CAttributeTypeAndValue      AttributeTypeAndValue: an OID and the DER of
//                               its value
//   CRelativeDistinguishedName  RelativeDistinguishedName: a SET OF pairs,
//                               held as a list
//   CName                       Name (its one alternative, RDNSequence): a
//                               list of RDNs, first RDN first, as on the wire;
//                               also known as CDistinguishedName
//   CGeneralName                GeneralName: a CHOICE held by CGeneralNameImpl
//   CGeneralNames               GeneralNames: a list of general names
//
// The classes are values: copying copies deeply, equality compares every part
// (lists by count, then element by element in order), encode() returns the DER
// and decode() replaces the value with the decoded one. Their traits are in
// NamesTraits.h; the text form of distinguished names ("CN=...,O=...") in
// DistinguishedNameText.h; the attribute-type register that names the
// attribute types in AttributeTypeRegister.h.
//
// Failures throw ATL::CAtlException: 0x80093101 for DER that does not decode
// and for a value that cannot be encoded, 0x80070057 for a bad argument (OID
// text, null text), 0x80093106 when a context heap is exhausted.
#ifndef KORVEX_ASN1TYPES_NAMES_H
#define KORVEX_ASN1TYPES_NAMES_H

#include <korvex/asn1types/Choice.h>
#include <korvex/asn1types/Util.h>
#include <korvex/core/Blob.h>
#include <korvex/core/StringProxy.h>
#include <korvex/platform/export.h>

#include <list>
#include <string>

namespace Korvex {
namespace ASN1 {

struct ASN1T_AttributeTypeAndValue_traits;
struct ASN1T_GeneralName_traits;

// Flags of the distinguished-name text forms (CName::toString,
// NameToString ...).
enum NameTextFlags : unsigned int {
  // Readable (the default): a character-string value of a registered
  // attribute type is written as its text, whatever its string type; the
  // text of other values is '#' and the hex of their DER (RFC 4514 2.4).
  ntfReadable = 0,
  // Exact: a value is written as text only when reading that text back
  // encodes exactly the same DER (the attribute's registered string type,
  // text the type can hold); every other value is '#' and hex. Reading the
  // exact text gives back the same DER byte for byte.
  ntfExact = 1
};

// ---- AttributeTypeAndValue ---------------------------------------------------

// CAttributeTypeAndValue: AttributeTypeAndValue ::= SEQUENCE { type OBJECT
// IDENTIFIER, value ANY DEFINED BY type }. The type is dotted OID text, the
// value the complete DER of one value (tag and length included), kept as it
// stands. Default: empty type and value (such a pair does not encode).
class KORVEX_API CAttributeTypeAndValue {
 public:
  CAttributeTypeAndValue();
  // CAttributeTypeAndValue(type, value): dotted OID text (checked with
  // str2oid; bad or null text throws 0x80070057) and the DER of the value.
  CAttributeTypeAndValue(char const* type, CBlob const& value);
  CAttributeTypeAndValue(CAttributeTypeAndValue const& other);
  CAttributeTypeAndValue& operator=(CAttributeTypeAndValue const& other);
  ~CAttributeTypeAndValue();
  void swap(CAttributeTypeAndValue& other) noexcept;

  // get_type: the dotted OID text ("" when unset).
  char const* get_type() const;
  // put_type stores dotted OID text; bad or null text throws 0x80070057 and
  // changes nothing.
  void put_type(char const* type);
  // get_value / put_value: the DER of the value. put_value does not check the
  // bytes; encode() refuses a value that is not exactly one DER element.
  CBlob const& get_value() const;
  void put_value(CBlob const& der);

  // get_text: the value's text (CATAVRegister::valueToStr): the text of a
  // character string, or '#' and the hex of the DER for any other value.
  CWStringProxy get_text() const;
  // toString: "NAME=value" as one element of a distinguished name's text
  // (DistinguishedNameText.h), RFC 4514 escaping, with the register's name or
  // the dotted OID for an unregistered type.
  CWStringProxy toString(unsigned int flags = ntfReadable) const;

  bool operator==(CAttributeTypeAndValue const& other) const;
  bool operator!=(CAttributeTypeAndValue const& other) const { return !(*this == other); }

  // encode: the DER of the pair; an unset or bad type, or a value that is not
  // one DER element, throws 0x80093101. decode: replaces the pair with the
  // decoded one; bad DER throws 0x80093101 and leaves the pair unchanged.
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  // The traits store a decoded OID's text as the decoder gives it.
  friend struct ASN1T_AttributeTypeAndValue_traits;
  struct Impl;
  Impl* m_impl;
};

// ---- RelativeDistinguishedName ----------------------------------------------

// CRelativeDistinguishedName: RelativeDistinguishedName ::= SET SIZE (1..MAX)
// OF AttributeTypeAndValue, held in list order. A SET OF is sorted by the DER
// encoder (X.690 11.6), so a decoded RDN holds its pairs in DER order; equality
// compares in list order.
class KORVEX_API CRelativeDistinguishedName : public std::list<CAttributeTypeAndValue> {
 public:
  using std::list<CAttributeTypeAndValue>::list;

  // toString: the pairs' text joined with '+' (RFC 4514 2.2), in list order.
  // An empty RDN throws 0x80070057 (it has no text form).
  CWStringProxy toString(unsigned int flags = ntfReadable) const;

  // encode: the DER (SET OF, sorted); an empty RDN or a pair that does not
  // encode throws 0x80093101. decode replaces the list; bad DER throws
  // 0x80093101 and leaves it unchanged.
  CBlob encode() const;
  void decode(CBlob const& der);
};

// ---- Name -----------------------------------------------------------------

// CName: Name ::= CHOICE { rdnSequence RDNSequence }, the only alternative,
// held as the list of its RDNs in wire order (the first RDN is the most
// significant one, usually C or DC). The text form lists the RDNs the other
// way round, as RFC 4514 and users write them ("CN=Signer,O=Korvex,C=RU").
class KORVEX_API CName : public std::list<CRelativeDistinguishedName> {
 public:
  using std::list<CRelativeDistinguishedName>::list;

  // toString: the RFC 4514 text (DistinguishedNameText.h, NameToString).
  CWStringProxy toString(unsigned int flags = ntfReadable) const;
  // fromString replaces the name with the one the text describes
  // (NameFromString); a text that does not parse throws 0x80070057 and leaves
  // the name unchanged. A non-zero stringType overrides the register's string
  // type of every textual value.
  void fromString(wchar_t const* text, StringType stringType = stDefault);

  // encode: the DER of the Name (an empty name is 30 00); a pair that does not
  // encode throws 0x80093101. decode replaces the list; bad DER throws
  // 0x80093101 and leaves it unchanged.
  CBlob encode() const;
  void decode(CBlob const& der);
};

// CDistinguishedName: the same class under the directory's name for it.
typedef CName CDistinguishedName;

// ---- GeneralName ------------------------------------------------------------

// CGeneralNameImpl: the CHOICE holder of a general name. Alternatives (the
// generated T_<alternative> numbers) and the value type held:
//   1 otherName                 CBlob: DER of the AnotherName SEQUENCE
//   2 rfc822Name                std::wstring
//   3 dNSName                   std::wstring
//   4 x400Address               CBlob: DER of the ORAddress SEQUENCE
//   5 directoryName             CBlob: DER of the Name
//   6 ediPartyName              CBlob: DER of the EDIPartyName SEQUENCE
//   7 uniformResourceIdentifier std::wstring
//   8 iPAddress                 CBlob: the address octets
//   9 registeredID              std::wstring: dotted OID text
// Every other number is the no-alternative handler.
class KORVEX_API CGeneralNameImpl : public Choice {
 public:
  CGeneralNameImpl() = default;
  CGeneralNameImpl(CGeneralNameImpl const&) = default;
  CGeneralNameImpl& operator=(CGeneralNameImpl const&) = default;
  ChoiceValueTraits const* findTraits(unsigned int n) const override;
};

// CGeneralName: GeneralName (RFC 5280 4.2.1.6). A new general name selects
// no alternative (get_type() 0) and does not encode until one is put.
//
// The IA5String alternatives (rfc822Name, dNSName, uniformResourceIdentifier)
// are wide text whose characters map one to one onto the string's bytes: a
// character above U+00FF cannot be encoded (0x80093101), and a decoded byte
// above 0x7F, which IA5String does not allow but real data holds, comes back
// as the character of the same value, so that it encodes again unchanged.
class KORVEX_API CGeneralName {
 public:
  // The alternatives, numbered as the generated record's selector.
  enum Type : unsigned int {
    kNone = 0,
    kOtherName = 1,
    kRfc822Name = 2,
    kDNSName = 3,
    kX400Address = 4,
    kDirectoryName = 5,
    kEdiPartyName = 6,
    kUniformResourceIdentifier = 7,
    kIPAddress = 8,
    kRegisteredID = 9
  };

  CGeneralName();
  // CGeneralName(name): a directoryName holding the DER of name.
  explicit CGeneralName(CName const& directoryName);
  CGeneralName(CGeneralName const& other);
  CGeneralName& operator=(CGeneralName const& other);
  ~CGeneralName();
  void swap(CGeneralName& other) noexcept;

  // get_type: the selected alternative (Type), 0 when none is.
  unsigned int get_type() const;
  // clear: back to no alternative.
  void clear();

  // Typed getters: the value when that alternative is selected, else null.
  CBlob const* get_otherName() const;
  wchar_t const* get_rfc822Name() const;
  wchar_t const* get_dNSName() const;
  CBlob const* get_x400Address() const;
  CBlob const* get_directoryName() const;
  CBlob const* get_ediPartyName() const;
  wchar_t const* get_uniformResourceIdentifier() const;
  CBlob const* get_iPAddress() const;
  wchar_t const* get_registeredID() const;
  // get_directoryName(name): decodes the directoryName into name and returns
  // true; false (name untouched) when another alternative is selected. Bad
  // DER throws 0x80093101.
  bool get_directoryName(CName& name) const;

  // Typed setters select their alternative holding a copy of the value. The
  // DER alternatives are checked when encoding, not here; null text throws
  // 0x80070057; put_registeredID checks its OID text (0x80070057).
  void put_otherName(CBlob const& der);
  void put_rfc822Name(wchar_t const* text);
  void put_dNSName(wchar_t const* text);
  void put_x400Address(CBlob const& der);
  void put_directoryName(CBlob const& der);
  void put_directoryName(CName const& name);
  void put_ediPartyName(CBlob const& der);
  void put_uniformResourceIdentifier(wchar_t const* text);
  void put_iPAddress(CBlob const& octets);
  void put_registeredID(char const* oid);
  void put_registeredID(wchar_t const* oid);

  // toString: a one-line text of the name, "<kind>:<value>": "email:",
  // "DNS:", "URI:" with the text; "IP:" with dotted IPv4 or RFC 5952 IPv6 (any
  // other length as hex); "DirName:" with the RFC 4514 text; "RID:" with the
  // OID; "othername:", "X400:", "EDI:" with '#' and the hex of the DER; ""
  // for no alternative.
  CWStringProxy toString() const;

  // Equality: the same alternative number and equal values (two names with
  // no alternative are equal when their numbers are).
  bool operator==(CGeneralName const& other) const;
  bool operator!=(CGeneralName const& other) const { return !(*this == other); }

  // encode: the DER of the general name; no alternative, a DER alternative
  // that does not decode as its type, text that cannot be encoded or a bad
  // OID throw 0x80093101. decode: replaces the value with the decoded one;
  // bad DER throws 0x80093101 and leaves the value unchanged.
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  // The traits store a decoded registeredID as the decoder gives it.
  friend struct ASN1T_GeneralName_traits;
  CGeneralNameImpl* m_impl;
};

// CGeneralNames: GeneralNames ::= SEQUENCE SIZE (1..MAX) OF GeneralName, in
// order.
class KORVEX_API CGeneralNames : public std::list<CGeneralName> {
 public:
  using std::list<CGeneralName>::list;

  // encode: the DER; an empty list (SIZE (1..MAX)) or a name that does not
  // encode throws 0x80093101. decode replaces the list; bad DER throws
  // 0x80093101 and leaves it unchanged.
  CBlob encode() const;
  void decode(CBlob const& der);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
