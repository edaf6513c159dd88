// asn1_names.cpp: tag names and the object-identifier name lookup.
#include "asn1_names.h"

#include <korvex/platform/capi/oidinfo.h>

namespace adestool {

namespace {

// X.680 8.6 Table 1 (the numbers in use by X.690 encodings).
const char* const kUniversalNames[] = {
    "EOC",                // 0: end-of-contents octets (X.690 8.1.5)
    "BOOLEAN",            // 1
    "INTEGER",            // 2
    "BIT STRING",         // 3
    "OCTET STRING",       // 4
    "NULL",               // 5
    "OBJECT IDENTIFIER",  // 6
    "ObjectDescriptor",   // 7
    "EXTERNAL",           // 8
    "REAL",               // 9
    "ENUMERATED",         // 10
    "EMBEDDED PDV",       // 11
    "UTF8String",         // 12
    "RELATIVE-OID",       // 13
    "TIME",               // 14
    nullptr,              // 15: reserved
    "SEQUENCE",           // 16
    "SET",                // 17
    "NumericString",      // 18
    "PrintableString",    // 19
    "TeletexString",      // 20
    "VideotexString",     // 21
    "IA5String",          // 22
    "UTCTime",            // 23
    "GeneralizedTime",    // 24
    "GraphicString",      // 25
    "VisibleString",      // 26
    "GeneralString",      // 27
    "UniversalString",    // 28
    "CHARACTER STRING",   // 29
    "BMPString",          // 30
    "DATE",               // 31
    "TIME-OF-DAY",        // 32
    "DATE-TIME",          // 33
    "DURATION",           // 34
    "OID-IRI",            // 35
    "RELATIVE-OID-IRI",   // 36
};

struct OidEntry {
  const char* oid;
  const char* name;
};

// CMS, CAdES and PKIX identifiers with the value names their standards give
// them. Consulted only when the platform's table has no name, so entries the
// platform also holds (signing certificate, time-stamp attributes) serve a
// platform library whose table is smaller than ours. Looked up linearly.
const OidEntry kBuiltinOids[] = {
    // CMS content types (RFC 5652 4-9, RFC 3274, RFC 5083, RFC 3161).
    {"1.2.840.113549.1.7.1", "id-data"},
    {"1.2.840.113549.1.7.2", "id-signedData"},
    {"1.2.840.113549.1.7.3", "id-envelopedData"},
    {"1.2.840.113549.1.7.5", "id-digestedData"},
    {"1.2.840.113549.1.7.6", "id-encryptedData"},
    {"1.2.840.113549.1.9.16.1.2", "id-ct-authData"},
    {"1.2.840.113549.1.9.16.1.4", "id-ct-TSTInfo"},
    {"1.2.840.113549.1.9.16.1.6", "id-ct-contentInfo"},
    {"1.2.840.113549.1.9.16.1.9", "id-ct-compressedData"},
    {"1.2.840.113549.1.9.16.1.23", "id-ct-authEnvelopedData"},
    {"1.2.840.113549.1.9.16.3.8", "id-alg-zlibCompress"},
    // PKCS #9 attributes (RFC 2985) and CMS algorithm protection (RFC 6211).
    {"1.2.840.113549.1.9.2", "pkcs-9-at-unstructuredName"},
    {"1.2.840.113549.1.9.7", "pkcs-9-at-challengePassword"},
    {"1.2.840.113549.1.9.8", "pkcs-9-at-unstructuredAddress"},
    {"1.2.840.113549.1.9.14", "pkcs-9-at-extensionRequest"},
    {"1.2.840.113549.1.9.15", "smimeCapabilities"},
    {"1.2.840.113549.1.9.20", "pkcs-9-at-friendlyName"},
    {"1.2.840.113549.1.9.21", "pkcs-9-at-localKeyId"},
    {"1.2.840.113549.1.9.52", "id-aa-CMSAlgorithmProtection"},
    // ESS attributes (RFC 2634, RFC 5035).
    {"1.2.840.113549.1.9.16.2.1", "id-aa-receiptRequest"},
    {"1.2.840.113549.1.9.16.2.2", "id-aa-securityLabel"},
    {"1.2.840.113549.1.9.16.2.3", "id-aa-mlExpandHistory"},
    {"1.2.840.113549.1.9.16.2.4", "id-aa-contentHint"},
    {"1.2.840.113549.1.9.16.2.5", "id-aa-msgSigDigest"},
    {"1.2.840.113549.1.9.16.2.7", "id-aa-contentIdentifier"},
    {"1.2.840.113549.1.9.16.2.9", "id-aa-equivalentLabels"},
    {"1.2.840.113549.1.9.16.2.10", "id-aa-contentReference"},
    {"1.2.840.113549.1.9.16.2.11", "id-aa-encrypKeyPref"},
    {"1.2.840.113549.1.9.16.2.12", "id-aa-signingCertificate"},
    {"1.2.840.113549.1.9.16.2.47", "id-aa-signingCertificateV2"},
    // CAdES attributes (ETSI TS 101 733, RFC 5126).
    {"1.2.840.113549.1.9.16.2.14", "id-aa-signatureTimeStampToken"},
    {"1.2.840.113549.1.9.16.2.15", "id-aa-ets-sigPolicyId"},
    {"1.2.840.113549.1.9.16.2.16", "id-aa-ets-commitmentType"},
    {"1.2.840.113549.1.9.16.2.17", "id-aa-ets-signerLocation"},
    {"1.2.840.113549.1.9.16.2.18", "id-aa-ets-signerAttr"},
    {"1.2.840.113549.1.9.16.2.19", "id-aa-ets-otherSigCert"},
    {"1.2.840.113549.1.9.16.2.20", "id-aa-ets-contentTimestamp"},
    {"1.2.840.113549.1.9.16.2.21", "id-aa-ets-certificateRefs"},
    {"1.2.840.113549.1.9.16.2.22", "id-aa-ets-revocationRefs"},
    {"1.2.840.113549.1.9.16.2.23", "id-aa-ets-certValues"},
    {"1.2.840.113549.1.9.16.2.24", "id-aa-ets-revocationValues"},
    {"1.2.840.113549.1.9.16.2.25", "id-aa-ets-escTimeStamp"},
    {"1.2.840.113549.1.9.16.2.26", "id-aa-ets-certCRLTimestamp"},
    {"1.2.840.113549.1.9.16.2.27", "id-aa-ets-archiveTimestamp"},
    {"1.2.840.113549.1.9.16.2.44", "id-aa-ets-attrCertificateRefs"},
    {"1.2.840.113549.1.9.16.2.45", "id-aa-ets-attrRevocationRefs"},
    {"1.2.840.113549.1.9.16.2.48", "id-aa-ets-archiveTimestampV2"},
    {"1.2.840.113549.1.9.16.5.1", "id-spq-ets-uri"},
    {"1.2.840.113549.1.9.16.5.2", "id-spq-ets-unotice"},
    {"1.2.840.113549.1.9.16.6.1", "id-cti-ets-proofOfOrigin"},
    {"1.2.840.113549.1.9.16.6.2", "id-cti-ets-proofOfReceipt"},
    {"1.2.840.113549.1.9.16.6.3", "id-cti-ets-proofOfDelivery"},
    {"1.2.840.113549.1.9.16.6.4", "id-cti-ets-proofOfSender"},
    {"1.2.840.113549.1.9.16.6.5", "id-cti-ets-proofOfApproval"},
    {"1.2.840.113549.1.9.16.6.6", "id-cti-ets-proofOfCreation"},
    // CAdES attributes of ETSI EN 319 122-1.
    {"0.4.0.1733.2.1", "id-aa-ets-mimeType"},
    {"0.4.0.1733.2.4", "id-aa-ets-archiveTimestampV3"},
    {"0.4.0.1733.2.5", "id-aa-ATSHashIndex"},
    {"0.4.0.19122.1.1", "id-aa-ets-signerAttrV2"},
    {"0.4.0.19122.1.3", "id-aa-ets-sigPolicyStore"},
    {"0.4.0.19122.1.4", "id-aa-ATSHashIndex-v2"},
    {"0.4.0.19122.1.5", "id-aa-ATSHashIndex-v3"},
    // Qualified-certificate statements (ETSI EN 319 412-5, RFC 3739).
    {"1.3.6.1.5.5.7.1.3", "id-pe-qcStatements"},
    {"0.4.0.1862.1.1", "id-etsi-qcs-QcCompliance"},
    {"0.4.0.1862.1.2", "id-etsi-qcs-QcLimitValue"},
    {"0.4.0.1862.1.3", "id-etsi-qcs-QcRetentionPeriod"},
    {"0.4.0.1862.1.4", "id-etsi-qcs-QcSSCD"},
    {"0.4.0.1862.1.5", "id-etsi-qcs-QcPDS"},
    {"0.4.0.1862.1.6", "id-etsi-qcs-QcType"},
    // OCSP (RFC 6960) and PKIX access methods and qualifiers (RFC 5280).
    {"1.3.6.1.5.5.7.48.1", "id-ad-ocsp"},
    {"1.3.6.1.5.5.7.48.1.1", "id-pkix-ocsp-basic"},
    {"1.3.6.1.5.5.7.48.1.2", "id-pkix-ocsp-nonce"},
    {"1.3.6.1.5.5.7.48.1.3", "id-pkix-ocsp-crl"},
    {"1.3.6.1.5.5.7.48.1.4", "id-pkix-ocsp-response"},
    {"1.3.6.1.5.5.7.48.1.6", "id-pkix-ocsp-archive-cutoff"},
    {"1.3.6.1.5.5.7.48.1.7", "id-pkix-ocsp-service-locator"},
    {"1.3.6.1.5.5.7.48.2", "id-ad-caIssuers"},
    {"1.3.6.1.5.5.7.48.3", "id-ad-timeStamping"},
    {"1.3.6.1.5.5.7.48.5", "id-ad-caRepository"},
    {"1.3.6.1.5.5.7.1.11", "id-pe-subjectInfoAccess"},
    {"1.3.6.1.5.5.7.2.1", "id-qt-cps"},
    {"1.3.6.1.5.5.7.2.2", "id-qt-unotice"},
    // X.509 extensions (RFC 5280 4.2, 5.2, 5.3).
    {"2.5.29.9", "id-ce-subjectDirectoryAttributes"},
    {"2.5.29.23", "id-ce-holdInstructionCode"},
    {"2.5.29.24", "id-ce-invalidityDate"},
    {"2.5.29.27", "id-ce-deltaCRLIndicator"},
    {"2.5.29.28", "id-ce-issuingDistributionPoint"},
    {"2.5.29.29", "id-ce-certificateIssuer"},
    {"2.5.29.30", "id-ce-nameConstraints"},
    {"2.5.29.33", "id-ce-policyMappings"},
    {"2.5.29.36", "id-ce-policyConstraints"},
    {"2.5.29.46", "id-ce-freshestCRL"},
    {"2.5.29.54", "id-ce-inhibitAnyPolicy"},
    // Name attributes (X.520) that the platform's RDN group lacks.
    {"2.5.4.13", "id-at-description"},
    {"2.5.4.15", "id-at-businessCategory"},
    {"2.5.4.17", "id-at-postalCode"},
    {"2.5.4.36", "id-at-userCertificate"},
    {"2.5.4.41", "id-at-name"},
    {"2.5.4.44", "id-at-generationQualifier"},
    {"2.5.4.45", "id-at-uniqueIdentifier"},
    {"2.5.4.46", "id-at-dnQualifier"},
    {"2.5.4.65", "id-at-pseudonym"},
    {"2.5.4.97", "id-at-organizationIdentifier"},
    {"0.9.2342.19200300.100.1.1", "id-uid"},
    // Algorithms (RFC 4055, RFC 5754, RFC 5758, RFC 8410, NIST CSOR).
    {"1.2.840.113549.1.1.4", "md5WithRSAEncryption"},
    {"1.2.840.113549.1.1.7", "id-RSAES-OAEP"},
    {"1.2.840.113549.1.1.8", "id-mgf1"},
    {"1.2.840.113549.1.1.10", "id-RSASSA-PSS"},
    {"1.2.840.113549.1.1.14", "sha224WithRSAEncryption"},
    {"1.2.840.113549.2.7", "hmacWithSHA1"},
    {"1.2.840.113549.2.9", "hmacWithSHA256"},
    {"1.2.840.10040.4.1", "id-dsa"},
    {"1.2.840.10040.4.3", "id-dsa-with-sha1"},
    {"1.2.840.10045.3.1.7", "prime256v1"},
    {"1.2.840.10045.4.3.1", "ecdsa-with-SHA224"},
    {"1.3.132.0.34", "secp384r1"},
    {"1.3.132.0.35", "secp521r1"},
    {"1.3.101.112", "id-Ed25519"},
    {"1.3.101.113", "id-Ed448"},
    {"2.16.840.1.101.3.4.1.6", "id-aes128-GCM"},
    {"2.16.840.1.101.3.4.1.26", "id-aes192-GCM"},
    {"2.16.840.1.101.3.4.1.46", "id-aes256-GCM"},
    {"2.16.840.1.101.3.4.2.4", "id-sha224"},
    {"2.16.840.1.101.3.4.2.5", "id-sha512-224"},
    {"2.16.840.1.101.3.4.2.6", "id-sha512-256"},
    {"2.16.840.1.101.3.4.2.7", "id-sha3-224"},
    {"2.16.840.1.101.3.4.2.8", "id-sha3-256"},
    {"2.16.840.1.101.3.4.2.9", "id-sha3-384"},
    {"2.16.840.1.101.3.4.2.10", "id-sha3-512"},
    {"2.16.840.1.101.3.4.3.9", "id-ecdsa-with-sha3-224"},
    {"2.16.840.1.101.3.4.3.10", "id-ecdsa-with-sha3-256"},
    {"2.16.840.1.101.3.4.3.11", "id-ecdsa-with-sha3-384"},
    {"2.16.840.1.101.3.4.3.12", "id-ecdsa-with-sha3-512"},
    {"2.16.840.1.101.3.4.3.13", "id-rsassa-pkcs1-v1_5-with-sha3-224"},
    {"2.16.840.1.101.3.4.3.14", "id-rsassa-pkcs1-v1_5-with-sha3-256"},
    {"2.16.840.1.101.3.4.3.15", "id-rsassa-pkcs1-v1_5-with-sha3-384"},
    {"2.16.840.1.101.3.4.3.16", "id-rsassa-pkcs1-v1_5-with-sha3-512"},
    // Adobe's revocation archive attribute, common in signed PDF containers.
    {"1.2.840.113583.1.1.8", "adbe-revocationInfoArchival"},
};

// The platform's names are wide strings; they are ASCII today, but any
// character is carried over as UTF-8.
std::string Utf8OfWide(const wchar_t* w) {
  std::string out;
  for (; *w; ++w) {
    auto c = static_cast<uint32_t>(*w);
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) c = 0xFFFD;
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (c >> 6)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (c >> 12)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (c >> 18)));
      out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
  }
  return out;
}

}  // namespace

const char* UniversalTypeName(ASN1UINT number) {
  if (number >= sizeof kUniversalNames / sizeof kUniversalNames[0]) return nullptr;
  return kUniversalNames[number];
}

std::string TagName(ASN1TAG tag) {
  const ASN1UINT number = tag & TM_IDMASK;
  const std::string n = std::to_string(number);
  switch (tag & TM_CLASS_MASK) {
    case TM_UNIV: {
      const char* name = UniversalTypeName(number);
      return name ? std::string(name) : "[UNIVERSAL " + n + "]";
    }
    case TM_APPL:
      return "[APPLICATION " + n + "]";
    case TM_CTXT:
      return "[" + n + "]";
    default:
      return "[PRIVATE " + n + "]";
  }
}

const char* BuiltinOidName(const std::string& dotted) {
  for (const OidEntry& e : kBuiltinOids) {
    if (dotted == e.oid) return e.name;
  }
  return nullptr;
}

std::string OidName(const std::string& dotted) {
  PCCRYPT_OID_INFO info =
      CryptFindOIDInfo(CRYPT_OID_INFO_OID_KEY, const_cast<char*>(dotted.c_str()), 0);
  if (info && info->pwszName && info->pwszName[0]) return Utf8OfWide(info->pwszName);
  const char* name = BuiltinOidName(dotted);
  return name ? name : std::string();
}

}  // namespace adestool
