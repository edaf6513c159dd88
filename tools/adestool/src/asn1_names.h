// asn1_names.h: names of tags and object identifiers for dumps.
#ifndef ADESTOOL_ASN1_NAMES_H
#define ADESTOOL_ASN1_NAMES_H

#include <korvex/asn1rt/asn1type.h>

#include <string>

namespace adestool {

// UniversalTypeName: the X.680 name of a UNIVERSAL tag number ("SEQUENCE",
// "OBJECT IDENTIFIER", "UTF8String"), or null for a number without one.
const char* UniversalTypeName(ASN1UINT number);

// TagName: "SEQUENCE", "[UNIVERSAL 31]", "[0]", "[APPLICATION 1]",
// "[PRIVATE 5]" for a tag word (the constructed bit is ignored).
std::string TagName(ASN1TAG tag);

// OidName: the name of a dotted object identifier: the platform's OID
// information (CryptFindOIDInfo, any group) first, then a table of CMS,
// ESS, CAdES, time-stamp, OCSP and PKIX identifiers that the platform table
// does not hold. Empty when neither knows it.
std::string OidName(const std::string& dotted);

// BuiltinOidName: the second source of OidName alone (for tests); null when
// the table does not hold the identifier.
const char* BuiltinOidName(const std::string& dotted);

}  // namespace adestool

#endif
