// value_text.h: text forms of decoded ASN.1 values for the inspect report.
//
// Every function takes a record of the generated types (asn1data) and gives
// plain text; none throws for odd values: what cannot be shown as text is
// shown as hex or as "<...>".
#ifndef ADESTOOL_VALUE_TEXT_H
#define ADESTOOL_VALUE_TEXT_H

#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <korvex/asn1gen/PKIX1Implicit88.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace adestool {

// DottedOid: "1.2.840.113549.1.7.2".
std::string DottedOid(const ASN1OBJID &oid);

// OidWithName: "1.2.840.113549.1.7.1 (id-data)", or the dotted text alone
// when no name is known (OidName of asn1_names.h).
std::string OidWithName(const std::string &dotted);

// AlgorithmName: the platform's name of an algorithm OID from its hash,
// signature, public-key or encryption group (CryptFindOIDInfo), else the
// built-in name, else "".
std::string AlgorithmName(const std::string &dotted);

// HexText: upper-case hex without separators ("C0FFEE").
std::string HexText(const uint8_t *data, size_t size);
std::string HexText(const std::vector<uint8_t> &bytes);

// SerialText: a big-integer text of the runtime ("0xc0ffee", "-0x80") as
// upper-case hex without "0x" ("C0FFEE", "-80").
std::string SerialText(const char *bigint);

// NameText: the RFC 4514 text of a Name ("CN=Korvex Test Root CA,O=...").
std::string NameText(const asn1data::ASN1T_Name &name);

// GeneralNameText: a directory name as NameText, "email:...", "dns:...",
// "uri:...", "ip:HEX", "rid:OID"; other alternatives by their name.
std::string GeneralNameText(const asn1data::ASN1T_GeneralName &name);

// TimeText: "2024-01-01 00:00:00 UTC" for a UTCTime (utc) or
// GeneralizedTime text in its DER form (fractions kept), else the text as
// it stands in quotes.
std::string TimeText(const char *text, bool utc);
std::string TimeText(const asn1data::ASN1T_Time &time);

// Utf8OfWideText: UTF-8 of 32-bit wide text (U+FFFD for non-characters).
std::string Utf8OfWideText(const wchar_t *text);

}  // namespace adestool

#endif
