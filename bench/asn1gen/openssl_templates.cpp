// openssl_templates.cpp: plain OpenSSL templates of the benchmarked types.
// Each record is a C struct of pointers that the template engine fills; open
// types are ASN1_ANY (ASN1_TYPE), extension and attribute values stay octets,
// times are ASN1_TIME. Field names follow the published modules.
#include "openssl_templates.h"

#include <openssl/asn1t.h>
#include <openssl/x509v3.h>

#include <cstddef>

namespace tmpl {
namespace {

// RFC 5280 4.1.1.2
struct T_ALGOR {
  ASN1_OBJECT* algorithm;
  ASN1_TYPE* parameters;
};

// RFC 5280 4.1.2.4: Name ::= SEQUENCE OF SET OF AttributeTypeAndValue
struct T_ATV {
  ASN1_OBJECT* type;
  ASN1_TYPE* value;
};

// RFC 5280 4.1
struct T_EXTENSION {
  ASN1_OBJECT* extnID;
  ASN1_BOOLEAN critical;
  ASN1_OCTET_STRING* extnValue;
};

struct T_VALIDITY {
  ASN1_TIME* notBefore;
  ASN1_TIME* notAfter;
};

struct T_SPKI {
  T_ALGOR* algorithm;
  ASN1_BIT_STRING* subjectPublicKey;
};

struct T_TBSCERT {
  ASN1_INTEGER* version;
  ASN1_INTEGER* serialNumber;
  T_ALGOR* signature;
  ASN1_VALUE* issuer;
  T_VALIDITY* validity;
  ASN1_VALUE* subject;
  T_SPKI* subjectPublicKeyInfo;
  ASN1_BIT_STRING* issuerUniqueID;
  ASN1_BIT_STRING* subjectUniqueID;
  ASN1_VALUE* extensions;
};

struct T_CERT {
  T_TBSCERT* tbsCertificate;
  T_ALGOR* signatureAlgorithm;
  ASN1_BIT_STRING* signatureValue;
};

// RFC 5280 5.1
struct T_REVOKED {
  ASN1_INTEGER* userCertificate;
  ASN1_TIME* revocationDate;
  ASN1_VALUE* crlEntryExtensions;
};

struct T_TBSCRL {
  ASN1_INTEGER* version;
  T_ALGOR* signature;
  ASN1_VALUE* issuer;
  ASN1_TIME* thisUpdate;
  ASN1_TIME* nextUpdate;
  ASN1_VALUE* revokedCertificates;
  ASN1_VALUE* crlExtensions;
};

struct T_CRL {
  T_TBSCRL* tbsCertList;
  T_ALGOR* signatureAlgorithm;
  ASN1_BIT_STRING* signatureValue;
};

// RFC 6960 4.2.1
struct T_RESPBYTES {
  ASN1_OBJECT* responseType;
  ASN1_OCTET_STRING* response;
};

struct T_OCSPRESP {
  ASN1_ENUMERATED* responseStatus;
  T_RESPBYTES* responseBytes;
};

struct T_RESPID {
  int type;
  union {
    ASN1_VALUE* byName;
    ASN1_OCTET_STRING* byKey;
  } value;
};

struct T_CERTID {
  T_ALGOR* hashAlgorithm;
  ASN1_OCTET_STRING* issuerNameHash;
  ASN1_OCTET_STRING* issuerKeyHash;
  ASN1_INTEGER* serialNumber;
};

struct T_REVINFO {
  ASN1_GENERALIZEDTIME* revocationTime;
  ASN1_ENUMERATED* revocationReason;
};

struct T_CERTSTATUS {
  int type;
  union {
    ASN1_NULL* good;
    T_REVINFO* revoked;
    ASN1_NULL* unknown;
  } value;
};

struct T_SINGLERESP {
  T_CERTID* certID;
  T_CERTSTATUS* certStatus;
  ASN1_GENERALIZEDTIME* thisUpdate;
  ASN1_GENERALIZEDTIME* nextUpdate;
  ASN1_VALUE* singleExtensions;
};

struct T_RESPDATA {
  ASN1_INTEGER* version;
  T_RESPID* responderID;
  ASN1_GENERALIZEDTIME* producedAt;
  ASN1_VALUE* responses;
  ASN1_VALUE* responseExtensions;
};

struct T_BASICRESP {
  T_RESPDATA* tbsResponseData;
  T_ALGOR* signatureAlgorithm;
  ASN1_BIT_STRING* signature;
  ASN1_VALUE* certs;
};

// RFC 5652 5
struct T_ATTRIBUTE {
  ASN1_OBJECT* attrType;
  ASN1_VALUE* attrValues;
};

struct T_ISSUERSERIAL {
  ASN1_VALUE* issuer;
  ASN1_INTEGER* serialNumber;
};

struct T_SID {
  int type;
  union {
    T_ISSUERSERIAL* issuerAndSerialNumber;
    ASN1_OCTET_STRING* subjectKeyIdentifier;
  } value;
};

struct T_SIGNERINFO {
  ASN1_INTEGER* version;
  T_SID* sid;
  T_ALGOR* digestAlgorithm;
  ASN1_VALUE* signedAttrs;
  T_ALGOR* signatureAlgorithm;
  ASN1_OCTET_STRING* signature;
  ASN1_VALUE* unsignedAttrs;
};

struct T_ENCAP {
  ASN1_OBJECT* eContentType;
  ASN1_OCTET_STRING* eContent;
};

struct T_SIGNEDDATA {
  ASN1_INTEGER* version;
  ASN1_VALUE* digestAlgorithms;
  T_ENCAP* encapContentInfo;
  ASN1_VALUE* certificates;
  ASN1_VALUE* crls;
  ASN1_VALUE* signerInfos;
};

struct T_CONTENTINFO {
  ASN1_OBJECT* contentType;
  T_SIGNEDDATA* content;
};

// RFC 3161 2.4.2
struct T_IMPRINT {
  T_ALGOR* hashAlgorithm;
  ASN1_OCTET_STRING* hashedMessage;
};

struct T_ACCURACY {
  ASN1_INTEGER* seconds;
  ASN1_INTEGER* millis;
  ASN1_INTEGER* micros;
};

struct T_TSTINFO {
  ASN1_INTEGER* version;
  ASN1_OBJECT* policy;
  T_IMPRINT* messageImprint;
  ASN1_INTEGER* serialNumber;
  ASN1_GENERALIZEDTIME* genTime;
  T_ACCURACY* accuracy;
  ASN1_BOOLEAN ordering;
  ASN1_INTEGER* nonce;
  GENERAL_NAME* tsa;
  ASN1_VALUE* extensions;
};

// ETSI TS 101 733 (explicit tags). As in our CAdES records, the types of other
// modules (Name, OtherHash, ResponderID, CertificateList, BasicOCSPResponse)
// are kept as the DER they came in (ASN1_ANY).
struct T_CRLIDENT {
  ASN1_TYPE* crlissuer;
  ASN1_UTCTIME* crlIssuedTime;
  ASN1_INTEGER* crlNumber;
};

struct T_CRLVALID {
  ASN1_TYPE* crlHash;
  T_CRLIDENT* crlIdentifier;
};

struct T_CRLLIST {
  ASN1_VALUE* crls;
};

struct T_OCSPIDENT {
  ASN1_TYPE* ocspResponderID;
  ASN1_GENERALIZEDTIME* producedAt;
};

struct T_OCSPRESPID {
  T_OCSPIDENT* ocspIdentifier;
  ASN1_TYPE* ocspRepHash;
};

struct T_OCSPLIST {
  ASN1_VALUE* ocspResponses;
};

struct T_OTHERREV {
  ASN1_OBJECT* type;
  ASN1_TYPE* value;
};

struct T_CRLOCSPREF {
  T_CRLLIST* crlids;
  T_OCSPLIST* ocspids;
  T_OTHERREV* otherRev;
};

struct T_REVVALUES {
  ASN1_VALUE* crlVals;
  ASN1_VALUE* ocspVals;
  T_OTHERREV* otherRevVals;
};

}  // namespace

// ---- Certificates (RFC 5280 4.1) ------------------------------------------

ASN1_SEQUENCE(T_ALGOR) = {
    ASN1_SIMPLE(T_ALGOR, algorithm, ASN1_OBJECT),
    ASN1_OPT(T_ALGOR, parameters, ASN1_ANY),
} ASN1_SEQUENCE_END(T_ALGOR)

ASN1_SEQUENCE(T_ATV) = {
    ASN1_SIMPLE(T_ATV, type, ASN1_OBJECT),
    ASN1_SIMPLE(T_ATV, value, ASN1_ANY),
} ASN1_SEQUENCE_END(T_ATV)

ASN1_ITEM_TEMPLATE(T_RDN) =
    ASN1_EX_TEMPLATE_TYPE(ASN1_TFLG_SET_OF, 0, RDN, T_ATV)
ASN1_ITEM_TEMPLATE_END(T_RDN)

ASN1_ITEM_TEMPLATE(T_NAME) =
    ASN1_EX_TEMPLATE_TYPE(ASN1_TFLG_SEQUENCE_OF, 0, Name, T_RDN)
ASN1_ITEM_TEMPLATE_END(T_NAME)

ASN1_SEQUENCE(T_EXTENSION) = {
    ASN1_SIMPLE(T_EXTENSION, extnID, ASN1_OBJECT),
    ASN1_OPT(T_EXTENSION, critical, ASN1_FBOOLEAN),
    ASN1_SIMPLE(T_EXTENSION, extnValue, ASN1_OCTET_STRING),
} ASN1_SEQUENCE_END(T_EXTENSION)

ASN1_ITEM_TEMPLATE(T_EXTENSIONS) =
    ASN1_EX_TEMPLATE_TYPE(ASN1_TFLG_SEQUENCE_OF, 0, Extensions, T_EXTENSION)
ASN1_ITEM_TEMPLATE_END(T_EXTENSIONS)

ASN1_SEQUENCE(T_VALIDITY) = {
    ASN1_SIMPLE(T_VALIDITY, notBefore, ASN1_TIME),
    ASN1_SIMPLE(T_VALIDITY, notAfter, ASN1_TIME),
} ASN1_SEQUENCE_END(T_VALIDITY)

ASN1_SEQUENCE(T_SPKI) = {
    ASN1_SIMPLE(T_SPKI, algorithm, T_ALGOR),
    ASN1_SIMPLE(T_SPKI, subjectPublicKey, ASN1_BIT_STRING),
} ASN1_SEQUENCE_END(T_SPKI)

ASN1_SEQUENCE(T_TBSCERT) = {
    ASN1_EXP_OPT(T_TBSCERT, version, ASN1_INTEGER, 0),
    ASN1_SIMPLE(T_TBSCERT, serialNumber, ASN1_INTEGER),
    ASN1_SIMPLE(T_TBSCERT, signature, T_ALGOR),
    ASN1_SIMPLE(T_TBSCERT, issuer, T_NAME),
    ASN1_SIMPLE(T_TBSCERT, validity, T_VALIDITY),
    ASN1_SIMPLE(T_TBSCERT, subject, T_NAME),
    ASN1_SIMPLE(T_TBSCERT, subjectPublicKeyInfo, T_SPKI),
    ASN1_IMP_OPT(T_TBSCERT, issuerUniqueID, ASN1_BIT_STRING, 1),
    ASN1_IMP_OPT(T_TBSCERT, subjectUniqueID, ASN1_BIT_STRING, 2),
    ASN1_EXP_OPT(T_TBSCERT, extensions, T_EXTENSIONS, 3),
} ASN1_SEQUENCE_END(T_TBSCERT)

ASN1_SEQUENCE(T_CERT) = {
    ASN1_SIMPLE(T_CERT, tbsCertificate, T_TBSCERT),
    ASN1_SIMPLE(T_CERT, signatureAlgorithm, T_ALGOR),
    ASN1_SIMPLE(T_CERT, signatureValue, ASN1_BIT_STRING),
} ASN1_SEQUENCE_END(T_CERT)

// ---- CRLs (RFC 5280 5.1) --------------------------------------------------

ASN1_SEQUENCE(T_REVOKED) = {
    ASN1_SIMPLE(T_REVOKED, userCertificate, ASN1_INTEGER),
    ASN1_SIMPLE(T_REVOKED, revocationDate, ASN1_TIME),
    ASN1_OPT(T_REVOKED, crlEntryExtensions, T_EXTENSIONS),
} ASN1_SEQUENCE_END(T_REVOKED)

ASN1_SEQUENCE(T_TBSCRL) = {
    ASN1_OPT(T_TBSCRL, version, ASN1_INTEGER),
    ASN1_SIMPLE(T_TBSCRL, signature, T_ALGOR),
    ASN1_SIMPLE(T_TBSCRL, issuer, T_NAME),
    ASN1_SIMPLE(T_TBSCRL, thisUpdate, ASN1_TIME),
    ASN1_OPT(T_TBSCRL, nextUpdate, ASN1_TIME),
    ASN1_SEQUENCE_OF_OPT(T_TBSCRL, revokedCertificates, T_REVOKED),
    ASN1_EXP_OPT(T_TBSCRL, crlExtensions, T_EXTENSIONS, 0),
} ASN1_SEQUENCE_END(T_TBSCRL)

ASN1_SEQUENCE(T_CRL) = {
    ASN1_SIMPLE(T_CRL, tbsCertList, T_TBSCRL),
    ASN1_SIMPLE(T_CRL, signatureAlgorithm, T_ALGOR),
    ASN1_SIMPLE(T_CRL, signatureValue, ASN1_BIT_STRING),
} ASN1_SEQUENCE_END(T_CRL)

// ---- OCSP (RFC 6960 4.2.1) ------------------------------------------------

ASN1_SEQUENCE(T_RESPBYTES) = {
    ASN1_SIMPLE(T_RESPBYTES, responseType, ASN1_OBJECT),
    ASN1_SIMPLE(T_RESPBYTES, response, ASN1_OCTET_STRING),
} ASN1_SEQUENCE_END(T_RESPBYTES)

ASN1_SEQUENCE(T_OCSPRESP) = {
    ASN1_SIMPLE(T_OCSPRESP, responseStatus, ASN1_ENUMERATED),
    ASN1_EXP_OPT(T_OCSPRESP, responseBytes, T_RESPBYTES, 0),
} ASN1_SEQUENCE_END(T_OCSPRESP)

ASN1_CHOICE(T_RESPID) = {
    ASN1_EXP(T_RESPID, value.byName, T_NAME, 1),
    ASN1_EXP(T_RESPID, value.byKey, ASN1_OCTET_STRING, 2),
} ASN1_CHOICE_END(T_RESPID)

ASN1_SEQUENCE(T_CERTID) = {
    ASN1_SIMPLE(T_CERTID, hashAlgorithm, T_ALGOR),
    ASN1_SIMPLE(T_CERTID, issuerNameHash, ASN1_OCTET_STRING),
    ASN1_SIMPLE(T_CERTID, issuerKeyHash, ASN1_OCTET_STRING),
    ASN1_SIMPLE(T_CERTID, serialNumber, ASN1_INTEGER),
} ASN1_SEQUENCE_END(T_CERTID)

ASN1_SEQUENCE(T_REVINFO) = {
    ASN1_SIMPLE(T_REVINFO, revocationTime, ASN1_GENERALIZEDTIME),
    ASN1_EXP_OPT(T_REVINFO, revocationReason, ASN1_ENUMERATED, 0),
} ASN1_SEQUENCE_END(T_REVINFO)

ASN1_CHOICE(T_CERTSTATUS) = {
    ASN1_IMP(T_CERTSTATUS, value.good, ASN1_NULL, 0),
    ASN1_IMP(T_CERTSTATUS, value.revoked, T_REVINFO, 1),
    ASN1_IMP(T_CERTSTATUS, value.unknown, ASN1_NULL, 2),
} ASN1_CHOICE_END(T_CERTSTATUS)

ASN1_SEQUENCE(T_SINGLERESP) = {
    ASN1_SIMPLE(T_SINGLERESP, certID, T_CERTID),
    ASN1_SIMPLE(T_SINGLERESP, certStatus, T_CERTSTATUS),
    ASN1_SIMPLE(T_SINGLERESP, thisUpdate, ASN1_GENERALIZEDTIME),
    ASN1_EXP_OPT(T_SINGLERESP, nextUpdate, ASN1_GENERALIZEDTIME, 0),
    ASN1_EXP_OPT(T_SINGLERESP, singleExtensions, T_EXTENSIONS, 1),
} ASN1_SEQUENCE_END(T_SINGLERESP)

ASN1_SEQUENCE(T_RESPDATA) = {
    ASN1_EXP_OPT(T_RESPDATA, version, ASN1_INTEGER, 0),
    ASN1_SIMPLE(T_RESPDATA, responderID, T_RESPID),
    ASN1_SIMPLE(T_RESPDATA, producedAt, ASN1_GENERALIZEDTIME),
    ASN1_SEQUENCE_OF(T_RESPDATA, responses, T_SINGLERESP),
    ASN1_EXP_OPT(T_RESPDATA, responseExtensions, T_EXTENSIONS, 1),
} ASN1_SEQUENCE_END(T_RESPDATA)

ASN1_SEQUENCE(T_BASICRESP) = {
    ASN1_SIMPLE(T_BASICRESP, tbsResponseData, T_RESPDATA),
    ASN1_SIMPLE(T_BASICRESP, signatureAlgorithm, T_ALGOR),
    ASN1_SIMPLE(T_BASICRESP, signature, ASN1_BIT_STRING),
    ASN1_EXP_SEQUENCE_OF_OPT(T_BASICRESP, certs, T_CERT, 0),
} ASN1_SEQUENCE_END(T_BASICRESP)

// ---- CMS SignedData (RFC 5652 5) ------------------------------------------

ASN1_SEQUENCE(T_ATTRIBUTE) = {
    ASN1_SIMPLE(T_ATTRIBUTE, attrType, ASN1_OBJECT),
    ASN1_SET_OF(T_ATTRIBUTE, attrValues, ASN1_ANY),
} ASN1_SEQUENCE_END(T_ATTRIBUTE)

ASN1_SEQUENCE(T_ISSUERSERIAL) = {
    ASN1_SIMPLE(T_ISSUERSERIAL, issuer, T_NAME),
    ASN1_SIMPLE(T_ISSUERSERIAL, serialNumber, ASN1_INTEGER),
} ASN1_SEQUENCE_END(T_ISSUERSERIAL)

ASN1_CHOICE(T_SID) = {
    ASN1_SIMPLE(T_SID, value.issuerAndSerialNumber, T_ISSUERSERIAL),
    ASN1_IMP(T_SID, value.subjectKeyIdentifier, ASN1_OCTET_STRING, 0),
} ASN1_CHOICE_END(T_SID)

ASN1_SEQUENCE(T_SIGNERINFO) = {
    ASN1_SIMPLE(T_SIGNERINFO, version, ASN1_INTEGER),
    ASN1_SIMPLE(T_SIGNERINFO, sid, T_SID),
    ASN1_SIMPLE(T_SIGNERINFO, digestAlgorithm, T_ALGOR),
    ASN1_IMP_SET_OF_OPT(T_SIGNERINFO, signedAttrs, T_ATTRIBUTE, 0),
    ASN1_SIMPLE(T_SIGNERINFO, signatureAlgorithm, T_ALGOR),
    ASN1_SIMPLE(T_SIGNERINFO, signature, ASN1_OCTET_STRING),
    ASN1_IMP_SET_OF_OPT(T_SIGNERINFO, unsignedAttrs, T_ATTRIBUTE, 1),
} ASN1_SEQUENCE_END(T_SIGNERINFO)

ASN1_SEQUENCE(T_ENCAP) = {
    ASN1_SIMPLE(T_ENCAP, eContentType, ASN1_OBJECT),
    ASN1_EXP_OPT(T_ENCAP, eContent, ASN1_OCTET_STRING, 0),
} ASN1_SEQUENCE_END(T_ENCAP)

ASN1_SEQUENCE(T_SIGNEDDATA) = {
    ASN1_SIMPLE(T_SIGNEDDATA, version, ASN1_INTEGER),
    ASN1_SET_OF(T_SIGNEDDATA, digestAlgorithms, T_ALGOR),
    ASN1_SIMPLE(T_SIGNEDDATA, encapContentInfo, T_ENCAP),
    ASN1_IMP_SET_OF_OPT(T_SIGNEDDATA, certificates, T_CERT, 0),
    ASN1_IMP_SET_OF_OPT(T_SIGNEDDATA, crls, T_CRL, 1),
    ASN1_SET_OF(T_SIGNEDDATA, signerInfos, T_SIGNERINFO),
} ASN1_SEQUENCE_END(T_SIGNEDDATA)

ASN1_SEQUENCE(T_CONTENTINFO) = {
    ASN1_SIMPLE(T_CONTENTINFO, contentType, ASN1_OBJECT),
    ASN1_EXP(T_CONTENTINFO, content, T_SIGNEDDATA, 0),
} ASN1_SEQUENCE_END(T_CONTENTINFO)

// ---- TSTInfo (RFC 3161 2.4.2) ---------------------------------------------

ASN1_SEQUENCE(T_IMPRINT) = {
    ASN1_SIMPLE(T_IMPRINT, hashAlgorithm, T_ALGOR),
    ASN1_SIMPLE(T_IMPRINT, hashedMessage, ASN1_OCTET_STRING),
} ASN1_SEQUENCE_END(T_IMPRINT)

ASN1_SEQUENCE(T_ACCURACY) = {
    ASN1_OPT(T_ACCURACY, seconds, ASN1_INTEGER),
    ASN1_IMP_OPT(T_ACCURACY, millis, ASN1_INTEGER, 0),
    ASN1_IMP_OPT(T_ACCURACY, micros, ASN1_INTEGER, 1),
} ASN1_SEQUENCE_END(T_ACCURACY)

ASN1_SEQUENCE(T_TSTINFO) = {
    ASN1_SIMPLE(T_TSTINFO, version, ASN1_INTEGER),
    ASN1_SIMPLE(T_TSTINFO, policy, ASN1_OBJECT),
    ASN1_SIMPLE(T_TSTINFO, messageImprint, T_IMPRINT),
    ASN1_SIMPLE(T_TSTINFO, serialNumber, ASN1_INTEGER),
    ASN1_SIMPLE(T_TSTINFO, genTime, ASN1_GENERALIZEDTIME),
    ASN1_OPT(T_TSTINFO, accuracy, T_ACCURACY),
    ASN1_OPT(T_TSTINFO, ordering, ASN1_FBOOLEAN),
    ASN1_OPT(T_TSTINFO, nonce, ASN1_INTEGER),
    ASN1_EXP_OPT(T_TSTINFO, tsa, GENERAL_NAME, 0),
    ASN1_IMP_OPT(T_TSTINFO, extensions, T_EXTENSIONS, 1),
} ASN1_SEQUENCE_END(T_TSTINFO)

// ---- CAdES revocation references and values (ETSI TS 101 733) -------------

ASN1_SEQUENCE(T_CRLIDENT) = {
    ASN1_SIMPLE(T_CRLIDENT, crlissuer, ASN1_ANY),
    ASN1_SIMPLE(T_CRLIDENT, crlIssuedTime, ASN1_UTCTIME),
    ASN1_OPT(T_CRLIDENT, crlNumber, ASN1_INTEGER),
} ASN1_SEQUENCE_END(T_CRLIDENT)

ASN1_SEQUENCE(T_CRLVALID) = {
    ASN1_SIMPLE(T_CRLVALID, crlHash, ASN1_ANY),
    ASN1_OPT(T_CRLVALID, crlIdentifier, T_CRLIDENT),
} ASN1_SEQUENCE_END(T_CRLVALID)

ASN1_SEQUENCE(T_CRLLIST) = {
    ASN1_SEQUENCE_OF(T_CRLLIST, crls, T_CRLVALID),
} ASN1_SEQUENCE_END(T_CRLLIST)

ASN1_SEQUENCE(T_OCSPIDENT) = {
    ASN1_SIMPLE(T_OCSPIDENT, ocspResponderID, ASN1_ANY),
    ASN1_SIMPLE(T_OCSPIDENT, producedAt, ASN1_GENERALIZEDTIME),
} ASN1_SEQUENCE_END(T_OCSPIDENT)

ASN1_SEQUENCE(T_OCSPRESPID) = {
    ASN1_SIMPLE(T_OCSPRESPID, ocspIdentifier, T_OCSPIDENT),
    ASN1_OPT(T_OCSPRESPID, ocspRepHash, ASN1_ANY),
} ASN1_SEQUENCE_END(T_OCSPRESPID)

ASN1_SEQUENCE(T_OCSPLIST) = {
    ASN1_SEQUENCE_OF(T_OCSPLIST, ocspResponses, T_OCSPRESPID),
} ASN1_SEQUENCE_END(T_OCSPLIST)

ASN1_SEQUENCE(T_OTHERREV) = {
    ASN1_SIMPLE(T_OTHERREV, type, ASN1_OBJECT),
    ASN1_SIMPLE(T_OTHERREV, value, ASN1_ANY),
} ASN1_SEQUENCE_END(T_OTHERREV)

ASN1_SEQUENCE(T_CRLOCSPREF) = {
    ASN1_EXP_OPT(T_CRLOCSPREF, crlids, T_CRLLIST, 0),
    ASN1_EXP_OPT(T_CRLOCSPREF, ocspids, T_OCSPLIST, 1),
    ASN1_EXP_OPT(T_CRLOCSPREF, otherRev, T_OTHERREV, 2),
} ASN1_SEQUENCE_END(T_CRLOCSPREF)

ASN1_ITEM_TEMPLATE(T_REFS) =
    ASN1_EX_TEMPLATE_TYPE(ASN1_TFLG_SEQUENCE_OF, 0, CompleteRevocationRefs, T_CRLOCSPREF)
ASN1_ITEM_TEMPLATE_END(T_REFS)

ASN1_SEQUENCE(T_REVVALUES) = {
    ASN1_EXP_SEQUENCE_OF_OPT(T_REVVALUES, crlVals, ASN1_ANY, 0),
    ASN1_EXP_SEQUENCE_OF_OPT(T_REVVALUES, ocspVals, ASN1_ANY, 1),
    ASN1_EXP_OPT(T_REVVALUES, otherRevVals, T_OTHERREV, 2),
} ASN1_SEQUENCE_END(T_REVVALUES)

const ASN1_ITEM* Certificate() { return ASN1_ITEM_rptr(T_CERT); }
const ASN1_ITEM* CertificateList() { return ASN1_ITEM_rptr(T_CRL); }
const ASN1_ITEM* OcspResponse() { return ASN1_ITEM_rptr(T_OCSPRESP); }
const ASN1_ITEM* BasicOcspResponse() { return ASN1_ITEM_rptr(T_BASICRESP); }
const ASN1_ITEM* SignedContentInfo() { return ASN1_ITEM_rptr(T_CONTENTINFO); }
const ASN1_ITEM* TstInfo() { return ASN1_ITEM_rptr(T_TSTINFO); }
const ASN1_ITEM* CompleteRevocationRefs() { return ASN1_ITEM_rptr(T_REFS); }
const ASN1_ITEM* RevocationValues() { return ASN1_ITEM_rptr(T_REVVALUES); }

const ASN1_OCTET_STRING* OcspResponseBytes(const ASN1_VALUE* response) {
  auto* r = reinterpret_cast<const T_OCSPRESP*>(response);
  return r && r->responseBytes ? r->responseBytes->response : nullptr;
}

const ASN1_OCTET_STRING* SignedContent(const ASN1_VALUE* contentInfo) {
  auto* ci = reinterpret_cast<const T_CONTENTINFO*>(contentInfo);
  return ci && ci->content && ci->content->encapContentInfo
             ? ci->content->encapContentInfo->eContent
             : nullptr;
}

}  // namespace tmpl
