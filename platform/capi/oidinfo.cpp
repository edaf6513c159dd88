// The OID information table and its two API functions.
//
// The table is static data in a fixed order: lookups return the first match,
// so an OID that appears in two groups (none does today) would be found in
// the earlier one. OIDs come from the RFCs that define them: RFC 3279/4055/
// 5758 (RSA, EC), RFC 4357/4491 and RFC 9215/9337 (GOST), RFC 5280 (names,
// extensions, key purposes), RFC 5652/5035/5126 (CMS and CAdES attributes).
#include <cwctype>

#include "capi_internal.h"

namespace korvex::capi {
namespace {

// ExtraInfo arrays. Signature entries: {public-key ALG_ID, flags, provider
// type}. RDN entries: the allowed value types, zero-terminated.
DWORD kSignRsa1[] = {CALG_RSA_SIGN, 0, PROV_RSA_FULL};
DWORD kSignRsa2[] = {CALG_RSA_SIGN, 0, PROV_RSA_AES};
DWORD kSignEcdsa[] = {CALG_ECDSA, 0, 0};
DWORD kSignGost2001[] = {CALG_KORVEX_GR3410_2001, 0, PROV_KORVEX_GOST_2001};
DWORD kSignGost256[] = {CALG_KORVEX_GR3410_2012_256, 0, PROV_KORVEX_GOST_2012_256};
DWORD kSignGost512[] = {CALG_KORVEX_GR3410_2012_512, 0, PROV_KORVEX_GOST_2012_512};
DWORD kPubKeyFlags[] = {0};

DWORD kRdnPrintable[] = {CERT_RDN_PRINTABLE_STRING, 0};
DWORD kRdnNumeric[] = {CERT_RDN_NUMERIC_STRING, 0};
DWORD kRdnIa5[] = {CERT_RDN_IA5_STRING, 0};
DWORD kRdnIa5Utf8[] = {CERT_RDN_IA5_STRING, CERT_RDN_UTF8_STRING, 0};
DWORD kRdnText[] = {CERT_RDN_PRINTABLE_STRING, CERT_RDN_UNICODE_STRING, CERT_RDN_UTF8_STRING,
                    CERT_RDN_TELETEX_STRING, 0};

constexpr DWORD kInfoSize = sizeof(CRYPT_OID_INFO);

#define EXTRA(array) \
  { sizeof(array), reinterpret_cast<BYTE*>(array) }
#define NO_EXTRA \
  { 0, nullptr }

const CRYPT_OID_INFO kTable[] = {
    // Hash algorithms.
    {kInfoSize, "1.3.14.3.2.26", L"sha1", CRYPT_HASH_ALG_OID_GROUP_ID, {CALG_SHA1}, NO_EXTRA,
     L"SHA1", L""},
    {kInfoSize, "1.2.840.113549.2.5", L"md5", CRYPT_HASH_ALG_OID_GROUP_ID, {CALG_MD5}, NO_EXTRA,
     L"MD5", L""},
    {kInfoSize, "2.16.840.1.101.3.4.2.1", L"sha256", CRYPT_HASH_ALG_OID_GROUP_ID, {CALG_SHA_256},
     NO_EXTRA, L"SHA256", L""},
    {kInfoSize, "2.16.840.1.101.3.4.2.2", L"sha384", CRYPT_HASH_ALG_OID_GROUP_ID, {CALG_SHA_384},
     NO_EXTRA, L"SHA384", L""},
    {kInfoSize, "2.16.840.1.101.3.4.2.3", L"sha512", CRYPT_HASH_ALG_OID_GROUP_ID, {CALG_SHA_512},
     NO_EXTRA, L"SHA512", L""},
    {kInfoSize, "1.2.643.2.2.9", L"GOST R 34.11-94", CRYPT_HASH_ALG_OID_GROUP_ID,
     {CALG_KORVEX_GR3411_94}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.643.7.1.1.2.2", L"GOST R 34.11-2012 256 bit", CRYPT_HASH_ALG_OID_GROUP_ID,
     {CALG_KORVEX_GR3411_2012_256}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.643.7.1.1.2.3", L"GOST R 34.11-2012 512 bit", CRYPT_HASH_ALG_OID_GROUP_ID,
     {CALG_KORVEX_GR3411_2012_512}, NO_EXTRA, L"", L""},

    // Encryption algorithms.
    {kInfoSize, "1.2.840.113549.3.7", L"3des", CRYPT_ENCRYPT_ALG_OID_GROUP_ID, {CALG_3DES},
     NO_EXTRA, L"3DES", L""},
    {kInfoSize, "2.16.840.1.101.3.4.1.2", L"aes128", CRYPT_ENCRYPT_ALG_OID_GROUP_ID,
     {CALG_AES_128}, NO_EXTRA, L"AES", L""},
    {kInfoSize, "2.16.840.1.101.3.4.1.22", L"aes192", CRYPT_ENCRYPT_ALG_OID_GROUP_ID,
     {CALG_AES_192}, NO_EXTRA, L"AES", L""},
    {kInfoSize, "2.16.840.1.101.3.4.1.42", L"aes256", CRYPT_ENCRYPT_ALG_OID_GROUP_ID,
     {CALG_AES_256}, NO_EXTRA, L"AES", L""},
    {kInfoSize, "1.2.643.2.2.21", L"GOST 28147-89", CRYPT_ENCRYPT_ALG_OID_GROUP_ID,
     {CALG_KORVEX_G28147}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.643.7.1.1.5.1", L"GOST R 34.12-2015 Magma", CRYPT_ENCRYPT_ALG_OID_GROUP_ID,
     {CALG_KORVEX_MAGMA}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.643.7.1.1.5.2", L"GOST R 34.12-2015 Kuznyechik",
     CRYPT_ENCRYPT_ALG_OID_GROUP_ID, {CALG_KORVEX_KUZNYECHIK}, NO_EXTRA, L"", L""},

    // Public-key algorithms.
    {kInfoSize, "1.2.840.113549.1.1.1", L"RSA", CRYPT_PUBKEY_ALG_OID_GROUP_ID, {CALG_RSA_KEYX},
     EXTRA(kPubKeyFlags), L"RSA", L""},
    {kInfoSize, "1.2.840.10045.2.1", L"ECC", CRYPT_PUBKEY_ALG_OID_GROUP_ID, {CALG_ECDSA},
     EXTRA(kPubKeyFlags), L"ECC", L""},
    {kInfoSize, "1.2.643.2.2.19", L"GOST R 34.10-2001", CRYPT_PUBKEY_ALG_OID_GROUP_ID,
     {CALG_KORVEX_GR3410_2001}, EXTRA(kPubKeyFlags), L"", L""},
    {kInfoSize, "1.2.643.7.1.1.1.1", L"GOST R 34.10-2012 256 bit", CRYPT_PUBKEY_ALG_OID_GROUP_ID,
     {CALG_KORVEX_GR3410_2012_256}, EXTRA(kPubKeyFlags), L"", L""},
    {kInfoSize, "1.2.643.7.1.1.1.2", L"GOST R 34.10-2012 512 bit", CRYPT_PUBKEY_ALG_OID_GROUP_ID,
     {CALG_KORVEX_GR3410_2012_512}, EXTRA(kPubKeyFlags), L"", L""},

    // Signature algorithms: Algid is the hash.
    {kInfoSize, "1.2.840.113549.1.1.5", L"sha1RSA", CRYPT_SIGN_ALG_OID_GROUP_ID, {CALG_SHA1},
     EXTRA(kSignRsa1), L"SHA1", L"RSA"},
    {kInfoSize, "1.2.840.113549.1.1.11", L"sha256RSA", CRYPT_SIGN_ALG_OID_GROUP_ID,
     {CALG_SHA_256}, EXTRA(kSignRsa2), L"SHA256", L"RSA"},
    {kInfoSize, "1.2.840.113549.1.1.12", L"sha384RSA", CRYPT_SIGN_ALG_OID_GROUP_ID,
     {CALG_SHA_384}, EXTRA(kSignRsa2), L"SHA384", L"RSA"},
    {kInfoSize, "1.2.840.113549.1.1.13", L"sha512RSA", CRYPT_SIGN_ALG_OID_GROUP_ID,
     {CALG_SHA_512}, EXTRA(kSignRsa2), L"SHA512", L"RSA"},
    {kInfoSize, "1.2.840.10045.4.1", L"sha1ECDSA", CRYPT_SIGN_ALG_OID_GROUP_ID, {CALG_SHA1},
     EXTRA(kSignEcdsa), L"SHA1", L"ECDSA"},
    {kInfoSize, "1.2.840.10045.4.3.2", L"sha256ECDSA", CRYPT_SIGN_ALG_OID_GROUP_ID,
     {CALG_SHA_256}, EXTRA(kSignEcdsa), L"SHA256", L"ECDSA"},
    {kInfoSize, "1.2.840.10045.4.3.3", L"sha384ECDSA", CRYPT_SIGN_ALG_OID_GROUP_ID,
     {CALG_SHA_384}, EXTRA(kSignEcdsa), L"SHA384", L"ECDSA"},
    {kInfoSize, "1.2.840.10045.4.3.4", L"sha512ECDSA", CRYPT_SIGN_ALG_OID_GROUP_ID,
     {CALG_SHA_512}, EXTRA(kSignEcdsa), L"SHA512", L"ECDSA"},
    {kInfoSize, "1.2.643.2.2.3", L"GOST R 34.11-94/34.10-2001", CRYPT_SIGN_ALG_OID_GROUP_ID,
     {CALG_KORVEX_GR3411_94}, EXTRA(kSignGost2001), L"", L""},
    {kInfoSize, "1.2.643.7.1.1.3.2", L"GOST R 34.11-2012/34.10-2012 256 bit",
     CRYPT_SIGN_ALG_OID_GROUP_ID, {CALG_KORVEX_GR3411_2012_256}, EXTRA(kSignGost256), L"", L""},
    {kInfoSize, "1.2.643.7.1.1.3.3", L"GOST R 34.11-2012/34.10-2012 512 bit",
     CRYPT_SIGN_ALG_OID_GROUP_ID, {CALG_KORVEX_GR3411_2012_512}, EXTRA(kSignGost512), L"", L""},

    // RDN attributes (RFC 5280 4.1.2.4 and Appendix A; the Russian
    // registration numbers of the GOST qualified-certificate profile).
    {kInfoSize, "2.5.4.3", L"CN", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnText), L"", L""},
    {kInfoSize, "2.5.4.4", L"SN", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnText), L"", L""},
    {kInfoSize, "2.5.4.5", L"SERIALNUMBER", CRYPT_RDN_ATTR_OID_GROUP_ID, {0},
     EXTRA(kRdnPrintable), L"", L""},
    {kInfoSize, "2.5.4.6", L"C", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnPrintable), L"",
     L""},
    {kInfoSize, "2.5.4.7", L"L", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnText), L"", L""},
    {kInfoSize, "2.5.4.8", L"S", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnText), L"", L""},
    {kInfoSize, "2.5.4.9", L"STREET", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnText), L"",
     L""},
    {kInfoSize, "2.5.4.10", L"O", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnText), L"", L""},
    {kInfoSize, "2.5.4.11", L"OU", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnText), L"", L""},
    {kInfoSize, "2.5.4.12", L"T", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnText), L"", L""},
    {kInfoSize, "2.5.4.42", L"G", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnText), L"", L""},
    {kInfoSize, "2.5.4.43", L"I", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnText), L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.1", L"E", CRYPT_RDN_ATTR_OID_GROUP_ID, {0},
     EXTRA(kRdnIa5), L"", L""},
    {kInfoSize, "0.9.2342.19200300.100.1.25", L"DC", CRYPT_RDN_ATTR_OID_GROUP_ID, {0},
     EXTRA(kRdnIa5Utf8), L"", L""},
    {kInfoSize, "1.2.643.100.1", L"OGRN", CRYPT_RDN_ATTR_OID_GROUP_ID, {0}, EXTRA(kRdnNumeric),
     L"", L""},
    {kInfoSize, "1.2.643.100.3", L"SNILS", CRYPT_RDN_ATTR_OID_GROUP_ID, {0},
     EXTRA(kRdnNumeric), L"", L""},
    {kInfoSize, "1.2.643.100.4", L"INNLE", CRYPT_RDN_ATTR_OID_GROUP_ID, {0},
     EXTRA(kRdnNumeric), L"", L""},
    {kInfoSize, "1.2.643.100.5", L"OGRNIP", CRYPT_RDN_ATTR_OID_GROUP_ID, {0},
     EXTRA(kRdnNumeric), L"", L""},
    {kInfoSize, "1.2.643.3.131.1.1", L"INN", CRYPT_RDN_ATTR_OID_GROUP_ID, {0},
     EXTRA(kRdnNumeric), L"", L""},

    // Extensions and attributes.
    {kInfoSize, "2.5.29.14", L"Subject Key Identifier", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "2.5.29.15", L"Key Usage", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"",
     L""},
    {kInfoSize, "2.5.29.16", L"Private Key Usage Period", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "2.5.29.17", L"Subject Alternative Name", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "2.5.29.18", L"Issuer Alternative Name", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "2.5.29.19", L"Basic Constraints", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "2.5.29.20", L"CRL Number", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"",
     L""},
    {kInfoSize, "2.5.29.21", L"CRL Reason Code", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA,
     L"", L""},
    {kInfoSize, "2.5.29.31", L"CRL Distribution Points", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "2.5.29.32", L"Certificate Policies", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "2.5.29.35", L"Authority Key Identifier", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "2.5.29.37", L"Enhanced Key Usage", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "1.3.6.1.5.5.7.1.1", L"Authority Information Access",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.3.6.1.5.5.7.48.1.5", L"OCSP No Revocation Checking",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.643.100.111", L"Subject Sign Tool", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.643.100.112", L"Issuer Sign Tool", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.3", L"Content Type", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.4", L"Message Digest", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.5", L"Signing Time", CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.6", L"Counter Signature", CRYPT_EXT_OR_ATTR_OID_GROUP_ID,
     {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.12", L"Signing Certificate",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.47", L"Signing Certificate V2",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.14", L"Signature Time Stamp",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.15", L"Signature Policy Identifier",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.21", L"Complete Certificate References",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.22", L"Complete Revocation References",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.23", L"Certificate Values",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.24", L"Revocation Values",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.25", L"CAdES-C Time Stamp",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.26", L"Time-Stamped Certificates and CRLs",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.27", L"Archive Time Stamp",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.840.113549.1.9.16.2.48", L"Archive Time Stamp V2",
     CRYPT_EXT_OR_ATTR_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},

    // Extended key usages (RFC 5280 4.2.1.12).
    {kInfoSize, "1.3.6.1.5.5.7.3.1", L"Server Authentication", CRYPT_ENHKEY_USAGE_OID_GROUP_ID,
     {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.3.6.1.5.5.7.3.2", L"Client Authentication", CRYPT_ENHKEY_USAGE_OID_GROUP_ID,
     {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.3.6.1.5.5.7.3.3", L"Code Signing", CRYPT_ENHKEY_USAGE_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "1.3.6.1.5.5.7.3.4", L"Secure Email", CRYPT_ENHKEY_USAGE_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "1.3.6.1.5.5.7.3.8", L"Time Stamping", CRYPT_ENHKEY_USAGE_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "1.3.6.1.5.5.7.3.9", L"OCSP Signing", CRYPT_ENHKEY_USAGE_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "2.5.29.37.0", L"Any Purpose", CRYPT_ENHKEY_USAGE_OID_GROUP_ID, {0}, NO_EXTRA,
     L"", L""},

    // Certificate policies (RFC 5280 4.2.1.4; the Russian signature-tool
    // classes KC1..KA1).
    {kInfoSize, "2.5.29.32.0", L"All Issuance Policies", CRYPT_POLICY_OID_GROUP_ID, {0},
     NO_EXTRA, L"", L""},
    {kInfoSize, "1.2.643.100.113.1", L"Class KC1", CRYPT_POLICY_OID_GROUP_ID, {0}, NO_EXTRA, L"",
     L""},
    {kInfoSize, "1.2.643.100.113.2", L"Class KC2", CRYPT_POLICY_OID_GROUP_ID, {0}, NO_EXTRA, L"",
     L""},
    {kInfoSize, "1.2.643.100.113.3", L"Class KC3", CRYPT_POLICY_OID_GROUP_ID, {0}, NO_EXTRA, L"",
     L""},
    {kInfoSize, "1.2.643.100.113.4", L"Class KB1", CRYPT_POLICY_OID_GROUP_ID, {0}, NO_EXTRA, L"",
     L""},
    {kInfoSize, "1.2.643.100.113.5", L"Class KB2", CRYPT_POLICY_OID_GROUP_ID, {0}, NO_EXTRA, L"",
     L""},
    {kInfoSize, "1.2.643.100.113.6", L"Class KA1", CRYPT_POLICY_OID_GROUP_ID, {0}, NO_EXTRA, L"",
     L""},

    // Certificate templates: the template group of this platform holds the
    // template-describing extensions that certificates of enterprise CAs
    // carry; there are no enrolment templates without a directory service.
    {kInfoSize, "1.3.6.1.4.1.311.20.2", L"Certificate Template Name", CRYPT_TEMPLATE_OID_GROUP_ID,
     {0}, NO_EXTRA, L"", L""},
    {kInfoSize, "1.3.6.1.4.1.311.21.7", L"Certificate Template Information",
     CRYPT_TEMPLATE_OID_GROUP_ID, {0}, NO_EXTRA, L"", L""},
};

#undef EXTRA
#undef NO_EXTRA

bool SameRsaKey(ALG_ID a, ALG_ID b) {
  auto rsa = [](ALG_ID id) { return id == CALG_RSA_KEYX || id == CALG_RSA_SIGN; };
  return a == b || (rsa(a) && rsa(b));
}

bool NameEquals(const wchar_t* a, const wchar_t* b) {
  for (;; ++a, ++b) {
    wchar_t x = *a, y = *b;
    if (x < 128) x = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(x)));
    if (y < 128) y = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(y)));
    if (x != y) return false;
    if (x == 0) return true;
  }
}

bool Matches(const CRYPT_OID_INFO& entry, DWORD keyType, const void* key) {
  switch (keyType) {
    case CRYPT_OID_INFO_OID_KEY:
      return std::strcmp(entry.pszOID, static_cast<const char*>(key)) == 0;
    case CRYPT_OID_INFO_NAME_KEY:
      return NameEquals(entry.pwszName, static_cast<const wchar_t*>(key));
    case CRYPT_OID_INFO_ALGID_KEY: {
      // Only the algorithm groups carry an ALG_ID in the union.
      if (entry.dwGroupId < CRYPT_HASH_ALG_OID_GROUP_ID ||
          entry.dwGroupId > CRYPT_SIGN_ALG_OID_GROUP_ID) {
        return false;
      }
      return entry.Algid == *static_cast<const ALG_ID*>(key);
    }
    case CRYPT_OID_INFO_SIGN_KEY: {
      if (entry.dwGroupId != CRYPT_SIGN_ALG_OID_GROUP_ID || entry.ExtraInfo.cbData < 4) {
        return false;
      }
      const ALG_ID* pair = static_cast<const ALG_ID*>(key);
      DWORD keyAlg;
      std::memcpy(&keyAlg, entry.ExtraInfo.pbData, sizeof keyAlg);
      return entry.Algid == pair[0] && SameRsaKey(keyAlg, pair[1]);
    }
    default:
      return false;
  }
}

}  // namespace
}  // namespace korvex::capi

using korvex::capi::kTable;

extern "C" BOOL CryptEnumOIDInfo(DWORD dwGroupId, DWORD dwFlags, void* pvArg,
                                 PFN_CRYPT_ENUM_OID_INFO pfnEnumOIDInfo) {
  if (dwFlags != 0 || pfnEnumOIDInfo == nullptr) return korvex::capi::Fail(E_INVALIDARG);
  for (const CRYPT_OID_INFO& entry : kTable) {
    if (dwGroupId != 0 && entry.dwGroupId != dwGroupId) continue;
    if (!pfnEnumOIDInfo(&entry, pvArg)) return FALSE;
  }
  return TRUE;
}

extern "C" PCCRYPT_OID_INFO CryptFindOIDInfo(DWORD dwKeyType, void* pvKey, DWORD dwGroupId) {
  if (pvKey == nullptr) return nullptr;
  for (const CRYPT_OID_INFO& entry : kTable) {
    if (dwGroupId != 0 && entry.dwGroupId != dwGroupId) continue;
    if (korvex::capi::Matches(entry, dwKeyType, pvKey)) return &entry;
  }
  return nullptr;
}
