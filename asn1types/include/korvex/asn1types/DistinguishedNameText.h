// korvex/asn1types/DistinguishedNameText.h: distinguished names as text, both
// ways, through the attribute-type register (AttributeTypeRegister.h).
//
// The text is that of RFC 4514, as users write it: the RDNs from the last one
// on the wire to the first ("CN=Korvex Test Root CA,O=Korvex Test PKI,C=RU"),
// the pairs of a multi-valued RDN joined with '+' ("GN=Ivan+SN=Ivanov"), each
// pair as NAME=value with the register's name, or the dotted OID for a type
// the register does not know.
//
// Writing (NameToString, RdnToString, AtavToString):
//  - the separators are ',' between RDNs and '+' inside one, without blanks;
//  - a value of an unregistered type is '#' and the upper-case hex of its DER;
//    so is a value that is not a character string, and, in ntfExact mode, a
//    value that would not encode back to the same bytes (NameTextFlags);
//  - text values escape with a backslash the characters " + , ; < > \ , a
//    '#' or ' ' at the start and a ' ' at the end (RFC 4514 2.4); control
//    characters (below U+0020 and U+007F) are written as \XX hex pairs; any
//    other character, non-ASCII included, is written as it stands.
//
// Reading (NameFromString, AtavFromString), more lenient than RFC 4514:
//  - RDNs are separated by ',' or ';', pairs by '+'; blanks around type
//    names, around '=' and around separators are ignored (blanks inside a
//    value are kept, escaped blanks always);
//  - the type is a register name (exact case first, then any case), a dotted
//    OID, or "OID." followed by a dotted OID;
//  - a value is '#' and hex digits (the DER of one element, kept as it
//    stands), or text with RFC 4514 escapes: \ followed by one of
//    " + , ; < > \ = # or a blank is that character, \ followed by two hex
//    digits is one byte, and consecutive bytes are UTF-8; or a quoted text
//    "..." (RFC 1779) in which only \ escapes;
//  - a text value is encoded with CATAVRegister::valueFromStr (the
//    register's string type, or stringType when not 0, and its length
//    limit); a value holding U+0000 is refused;
//  - an empty text is the empty name.
// Text that does not parse throws 0x80070057; the failures of valueFromStr
// (0x80070057, 0x80093101 ...) pass through.
#ifndef KORVEX_ASN1TYPES_DISTINGUISHEDNAMETEXT_H
#define KORVEX_ASN1TYPES_DISTINGUISHEDNAMETEXT_H

#include <korvex/asn1types/Names.h>
#include <korvex/asn1types/Util.h>
#include <korvex/core/StringProxy.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// NameToString: the text of name (RDNs in reverse wire order). flags:
// NameTextFlags. An empty RDN throws 0x80070057 (it has no text form).
KORVEX_API CWStringProxy NameToString(CName const& name, unsigned int flags = ntfReadable);

// RdnToString: the pairs of rdn joined with '+', in list order; an empty RDN
// throws 0x80070057.
KORVEX_API CWStringProxy RdnToString(CRelativeDistinguishedName const& rdn,
                                     unsigned int flags = ntfReadable);

// AtavToString: one pair as NAME=value.
KORVEX_API CWStringProxy AtavToString(CAttributeTypeAndValue const& atav,
                                      unsigned int flags = ntfReadable);

// NameFromString: the name that text describes (null text throws 0x80070057).
// A non-zero stringType replaces the register's string type of every text
// value.
KORVEX_API CName NameFromString(wchar_t const* text, StringType stringType = stDefault);

// AtavFromString: one pair NAME=value with the escapes of NameFromString; an
// unescaped separator (',', ';', '+') in it throws 0x80070057.
KORVEX_API CAttributeTypeAndValue AtavFromString(wchar_t const* text,
                                                 StringType stringType = stDefault);

// EscapeDNValue: text escaped as a value of a distinguished name (the rules
// of NameToString above). Null throws 0x80070057.
KORVEX_API CWStringProxy EscapeDNValue(wchar_t const* text);

}  // namespace ASN1
}  // namespace Korvex

#endif
