// openssl_templates.h: OpenSSL's ASN.1 template engine on plain templates, the
// fair peer of our descriptor engine. The types (RFC 5280 certificates and
// CRLs, RFC 6960 OCSP responses, RFC 5652 SignedData, RFC 3161 TSTInfo, the
// CAdES revocation references and values of ETSI TS 101 733) are declared in
// openssl_templates.cpp with ASN1_SEQUENCE / ASN1_CHOICE / ASN1_ITEM_TEMPLATE
// and no callbacks, caches or hashes, and used with ASN1_item_d2i/i2d/free.
#ifndef KORVEX_BENCH_ASN1GEN_OPENSSL_TEMPLATES_H
#define KORVEX_BENCH_ASN1GEN_OPENSSL_TEMPLATES_H

#include <openssl/asn1.h>

namespace tmpl {

const ASN1_ITEM* Certificate();
const ASN1_ITEM* CertificateList();
const ASN1_ITEM* OcspResponse();
// BasicOCSPResponse: the contents of OCSPResponse.responseBytes.response.
const ASN1_ITEM* BasicOcspResponse();
// ContentInfo whose content is SignedData (RFC 5652 5.1).
const ASN1_ITEM* SignedContentInfo();
// TSTInfo (RFC 3161 2.4.2): the eContent of a time-stamp token.
const ASN1_ITEM* TstInfo();
const ASN1_ITEM* CompleteRevocationRefs();
const ASN1_ITEM* RevocationValues();

// The octets of OCSPResponse.responseBytes.response of a decoded response.
const ASN1_OCTET_STRING* OcspResponseBytes(const ASN1_VALUE* response);
// The eContent octets of a decoded SignedContentInfo (null when absent).
const ASN1_OCTET_STRING* SignedContent(const ASN1_VALUE* contentInfo);

}  // namespace tmpl

#endif
