// NameSupport.h (internal): byte-level helpers of the name values: one DER
// element check, hex text, and the one-byte-per-character text of IA5String
// fields.
#ifndef KORVEX_ASN1TYPES_SRC_NAMESUPPORT_H
#define KORVEX_ASN1TYPES_SRC_NAMESUPPORT_H

#include <korvex/asn1rt/asn1type.h>
#include <korvex/core/Blob.h>

#include <string>

namespace Korvex {
namespace ASN1 {
namespace names {

// isSingleElement: whether bytes[0, size) is exactly one BER element (X.690
// 8.1.2, 8.1.3): a tag (high tag numbers included) and a short or long length
// of at most four octets with that many contents octets ending at size, or a
// constructed element of indefinite length whose end-of-contents octets end
// at size. Definite contents are not looked into.
bool isSingleElement(unsigned char const* bytes, unsigned long size);
inline bool isSingleElement(CBlob const& der) {
  return isSingleElement(der.pbData(), der.cbData());
}

// isCharStringTag: whether the first octet is the universal tag (primitive
// or constructed) of a character string that decodeCharString reads.
bool isCharStringTag(unsigned char tag);

// parseOid reads strict dotted OID text (decimal arcs of at most 32 bits
// separated by single dots, nothing else, at most 128 arcs) of an OID that
// DER can encode (at least two arcs, X.660 rules for the first two) into
// *oid and returns true, or false. It accepts every text oid2str writes for
// a decoded OID, also a last arc of 4294967295 that str2oid refuses.
bool parseOid(char const* text, ASN1OBJID* oid);

// hexText: the bytes as upper-case hex digits, no separators.
std::wstring hexText(CBlob const& bytes);

// latin1Text: each byte of text as the character of the same value.
std::wstring latin1Text(char const* text);
// toLatin1: each character as one byte; false when a character is above
// U+00FF or is U+0000.
bool toLatin1(std::wstring const& text, std::string& out);

}  // namespace names
}  // namespace ASN1
}  // namespace Korvex

#endif
