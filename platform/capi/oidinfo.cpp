// The OID information table and its two API functions.
//
// The table is static data in a fixed order: lookups return the first match,
// so an OID that appears in two groups (none does today) would be found in
// the earlier one. OIDs come from the RFCs that define them: RFC 3279/4055/
// 5758 (RSA, EC), RFC 4357/4491 and RFC 9215/9337 (GOST), RFC 5280 (names,
// extensions, key purposes), RFC 5652/5035/5126 (CMS and CAdES attributes).
#include <cstddef>
#include <cwctype>
#include <vector>

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

// Row builders, one a group, so that each row of the table is only what
// differs: OID, name, and ALG_ID, ExtraInfo and CNG names where the group
// has them.
template <size_t N>
CRYPT_DATA_BLOB Extra(DWORD (&array)[N]) {
  return {sizeof(array), reinterpret_cast<BYTE*>(array)};
}

CRYPT_OID_INFO Row(DWORD group, const char* oid, const wchar_t* name, ALG_ID algid = 0,
                   CRYPT_DATA_BLOB extra = {0, nullptr}, const wchar_t* cngAlgid = L"",
                   const wchar_t* cngExtraAlgid = L"") {
  return {kInfoSize, oid, name, group, {algid}, extra, cngAlgid, cngExtraAlgid};
}
CRYPT_OID_INFO Hash(const char* oid, const wchar_t* name, ALG_ID algid, const wchar_t* cng = L"") {
  return Row(CRYPT_HASH_ALG_OID_GROUP_ID, oid, name, algid, {0, nullptr}, cng);
}
CRYPT_OID_INFO Encrypt(const char* oid, const wchar_t* name, ALG_ID algid,
                       const wchar_t* cng = L"") {
  return Row(CRYPT_ENCRYPT_ALG_OID_GROUP_ID, oid, name, algid, {0, nullptr}, cng);
}
CRYPT_OID_INFO PubKey(const char* oid, const wchar_t* name, ALG_ID algid,
                      const wchar_t* cng = L"") {
  return Row(CRYPT_PUBKEY_ALG_OID_GROUP_ID, oid, name, algid, Extra(kPubKeyFlags), cng);
}
// Sign: Algid is the hash; ExtraInfo the signature entry.
template <size_t N>
CRYPT_OID_INFO Sign(const char* oid, const wchar_t* name, ALG_ID hashAlgid, DWORD (&extra)[N],
                    const wchar_t* cngHash = L"", const wchar_t* cngKey = L"") {
  return Row(CRYPT_SIGN_ALG_OID_GROUP_ID, oid, name, hashAlgid, Extra(extra), cngHash, cngKey);
}
template <size_t N>
CRYPT_OID_INFO Rdn(const char* oid, const wchar_t* name, DWORD (&valueTypes)[N]) {
  return Row(CRYPT_RDN_ATTR_OID_GROUP_ID, oid, name, 0, Extra(valueTypes));
}
CRYPT_OID_INFO ExtOrAttr(const char* oid, const wchar_t* name) {
  return Row(CRYPT_EXT_OR_ATTR_OID_GROUP_ID, oid, name);
}
CRYPT_OID_INFO EnhKeyUsage(const char* oid, const wchar_t* name) {
  return Row(CRYPT_ENHKEY_USAGE_OID_GROUP_ID, oid, name);
}
CRYPT_OID_INFO Policy(const char* oid, const wchar_t* name) {
  return Row(CRYPT_POLICY_OID_GROUP_ID, oid, name);
}
CRYPT_OID_INFO Template(const char* oid, const wchar_t* name) {
  return Row(CRYPT_TEMPLATE_OID_GROUP_ID, oid, name);
}

// Table: the rows, made once on first use (so no caller can see it before it
// is made, whatever the order of static initialisation) and never destroyed,
// so the entries handed out stay where they are for the life of the process.
const std::vector<CRYPT_OID_INFO>& Table() {
  static const std::vector<CRYPT_OID_INFO>* const table = new std::vector<CRYPT_OID_INFO>{
      // Hash algorithms.
      Hash("1.3.14.3.2.26", L"sha1", CALG_SHA1, L"SHA1"),
      Hash("1.2.840.113549.2.5", L"md5", CALG_MD5, L"MD5"),
      Hash("2.16.840.1.101.3.4.2.1", L"sha256", CALG_SHA_256, L"SHA256"),
      Hash("2.16.840.1.101.3.4.2.2", L"sha384", CALG_SHA_384, L"SHA384"),
      Hash("2.16.840.1.101.3.4.2.3", L"sha512", CALG_SHA_512, L"SHA512"),
      Hash("1.2.643.2.2.9", L"GOST R 34.11-94", CALG_KORVEX_GR3411_94),
      Hash("1.2.643.7.1.1.2.2", L"GOST R 34.11-2012 256 bit", CALG_KORVEX_GR3411_2012_256),
      Hash("1.2.643.7.1.1.2.3", L"GOST R 34.11-2012 512 bit", CALG_KORVEX_GR3411_2012_512),

      // Encryption algorithms.
      Encrypt("1.2.840.113549.3.7", L"3des", CALG_3DES, L"3DES"),
      Encrypt("2.16.840.1.101.3.4.1.2", L"aes128", CALG_AES_128, L"AES"),
      Encrypt("2.16.840.1.101.3.4.1.22", L"aes192", CALG_AES_192, L"AES"),
      Encrypt("2.16.840.1.101.3.4.1.42", L"aes256", CALG_AES_256, L"AES"),
      Encrypt("1.2.643.2.2.21", L"GOST 28147-89", CALG_KORVEX_G28147),
      Encrypt("1.2.643.7.1.1.5.1", L"GOST R 34.12-2015 Magma", CALG_KORVEX_MAGMA),
      Encrypt("1.2.643.7.1.1.5.2", L"GOST R 34.12-2015 Kuznyechik", CALG_KORVEX_KUZNYECHIK),

      // Public-key algorithms.
      PubKey("1.2.840.113549.1.1.1", L"RSA", CALG_RSA_KEYX, L"RSA"),
      PubKey("1.2.840.10045.2.1", L"ECC", CALG_ECDSA, L"ECC"),
      PubKey("1.2.643.2.2.19", L"GOST R 34.10-2001", CALG_KORVEX_GR3410_2001),
      PubKey("1.2.643.7.1.1.1.1", L"GOST R 34.10-2012 256 bit", CALG_KORVEX_GR3410_2012_256),
      PubKey("1.2.643.7.1.1.1.2", L"GOST R 34.10-2012 512 bit", CALG_KORVEX_GR3410_2012_512),

      // Signature algorithms: Algid is the hash.
      Sign("1.2.840.113549.1.1.5", L"sha1RSA", CALG_SHA1, kSignRsa1, L"SHA1", L"RSA"),
      Sign("1.2.840.113549.1.1.11", L"sha256RSA", CALG_SHA_256, kSignRsa2, L"SHA256", L"RSA"),
      Sign("1.2.840.113549.1.1.12", L"sha384RSA", CALG_SHA_384, kSignRsa2, L"SHA384", L"RSA"),
      Sign("1.2.840.113549.1.1.13", L"sha512RSA", CALG_SHA_512, kSignRsa2, L"SHA512", L"RSA"),
      Sign("1.2.840.10045.4.1", L"sha1ECDSA", CALG_SHA1, kSignEcdsa, L"SHA1", L"ECDSA"),
      Sign("1.2.840.10045.4.3.2", L"sha256ECDSA", CALG_SHA_256, kSignEcdsa, L"SHA256", L"ECDSA"),
      Sign("1.2.840.10045.4.3.3", L"sha384ECDSA", CALG_SHA_384, kSignEcdsa, L"SHA384", L"ECDSA"),
      Sign("1.2.840.10045.4.3.4", L"sha512ECDSA", CALG_SHA_512, kSignEcdsa, L"SHA512", L"ECDSA"),
      Sign("1.2.643.2.2.3", L"GOST R 34.11-94/34.10-2001", CALG_KORVEX_GR3411_94, kSignGost2001),
      Sign("1.2.643.7.1.1.3.2", L"GOST R 34.11-2012/34.10-2012 256 bit",
           CALG_KORVEX_GR3411_2012_256, kSignGost256),
      Sign("1.2.643.7.1.1.3.3", L"GOST R 34.11-2012/34.10-2012 512 bit",
           CALG_KORVEX_GR3411_2012_512, kSignGost512),

      // RDN attributes (RFC 5280 4.1.2.4 and Appendix A; the Russian
      // registration numbers of the GOST qualified-certificate profile).
      Rdn("2.5.4.3", L"CN", kRdnText),
      Rdn("2.5.4.4", L"SN", kRdnText),
      Rdn("2.5.4.5", L"SERIALNUMBER", kRdnPrintable),
      Rdn("2.5.4.6", L"C", kRdnPrintable),
      Rdn("2.5.4.7", L"L", kRdnText),
      Rdn("2.5.4.8", L"S", kRdnText),
      Rdn("2.5.4.9", L"STREET", kRdnText),
      Rdn("2.5.4.10", L"O", kRdnText),
      Rdn("2.5.4.11", L"OU", kRdnText),
      Rdn("2.5.4.12", L"T", kRdnText),
      Rdn("2.5.4.42", L"G", kRdnText),
      Rdn("2.5.4.43", L"I", kRdnText),
      Rdn("1.2.840.113549.1.9.1", L"E", kRdnIa5),
      Rdn("0.9.2342.19200300.100.1.25", L"DC", kRdnIa5Utf8),
      Rdn("1.2.643.100.1", L"OGRN", kRdnNumeric),
      Rdn("1.2.643.100.3", L"SNILS", kRdnNumeric),
      Rdn("1.2.643.100.4", L"INNLE", kRdnNumeric),
      Rdn("1.2.643.100.5", L"OGRNIP", kRdnNumeric),
      Rdn("1.2.643.3.131.1.1", L"INN", kRdnNumeric),

      // Extensions and attributes.
      ExtOrAttr("2.5.29.14", L"Subject Key Identifier"),
      ExtOrAttr("2.5.29.15", L"Key Usage"),
      ExtOrAttr("2.5.29.16", L"Private Key Usage Period"),
      ExtOrAttr("2.5.29.17", L"Subject Alternative Name"),
      ExtOrAttr("2.5.29.18", L"Issuer Alternative Name"),
      ExtOrAttr("2.5.29.19", L"Basic Constraints"),
      ExtOrAttr("2.5.29.20", L"CRL Number"),
      ExtOrAttr("2.5.29.21", L"CRL Reason Code"),
      ExtOrAttr("2.5.29.31", L"CRL Distribution Points"),
      ExtOrAttr("2.5.29.32", L"Certificate Policies"),
      ExtOrAttr("2.5.29.35", L"Authority Key Identifier"),
      ExtOrAttr("2.5.29.37", L"Enhanced Key Usage"),
      ExtOrAttr("1.3.6.1.5.5.7.1.1", L"Authority Information Access"),
      ExtOrAttr("1.3.6.1.5.5.7.48.1.5", L"OCSP No Revocation Checking"),
      ExtOrAttr("1.2.643.100.111", L"Subject Sign Tool"),
      ExtOrAttr("1.2.643.100.112", L"Issuer Sign Tool"),
      ExtOrAttr("1.2.840.113549.1.9.3", L"Content Type"),
      ExtOrAttr("1.2.840.113549.1.9.4", L"Message Digest"),
      ExtOrAttr("1.2.840.113549.1.9.5", L"Signing Time"),
      ExtOrAttr("1.2.840.113549.1.9.6", L"Counter Signature"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.12", L"Signing Certificate"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.47", L"Signing Certificate V2"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.14", L"Signature Time Stamp"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.15", L"Signature Policy Identifier"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.21", L"Complete Certificate References"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.22", L"Complete Revocation References"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.23", L"Certificate Values"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.24", L"Revocation Values"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.25", L"CAdES-C Time Stamp"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.26", L"Time-Stamped Certificates and CRLs"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.27", L"Archive Time Stamp"),
      ExtOrAttr("1.2.840.113549.1.9.16.2.48", L"Archive Time Stamp V2"),

      // Extended key usages (RFC 5280 4.2.1.12).
      EnhKeyUsage("1.3.6.1.5.5.7.3.1", L"Server Authentication"),
      EnhKeyUsage("1.3.6.1.5.5.7.3.2", L"Client Authentication"),
      EnhKeyUsage("1.3.6.1.5.5.7.3.3", L"Code Signing"),
      EnhKeyUsage("1.3.6.1.5.5.7.3.4", L"Secure Email"),
      EnhKeyUsage("1.3.6.1.5.5.7.3.8", L"Time Stamping"),
      EnhKeyUsage("1.3.6.1.5.5.7.3.9", L"OCSP Signing"),
      EnhKeyUsage("2.5.29.37.0", L"Any Purpose"),

      // Certificate policies (RFC 5280 4.2.1.4; the Russian signature-tool
      // classes KC1..KA1).
      Policy("2.5.29.32.0", L"All Issuance Policies"),
      Policy("1.2.643.100.113.1", L"Class KC1"),
      Policy("1.2.643.100.113.2", L"Class KC2"),
      Policy("1.2.643.100.113.3", L"Class KC3"),
      Policy("1.2.643.100.113.4", L"Class KB1"),
      Policy("1.2.643.100.113.5", L"Class KB2"),
      Policy("1.2.643.100.113.6", L"Class KA1"),

      // Certificate templates: the template group of this platform holds the
      // template-describing extensions that certificates of enterprise CAs
      // carry; there are no enrolment templates without a directory service.
      Template("1.3.6.1.4.1.311.20.2", L"Certificate Template Name"),
      Template("1.3.6.1.4.1.311.21.7", L"Certificate Template Information"),
  };
  return *table;
}

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

using korvex::capi::Table;

extern "C" BOOL CryptEnumOIDInfo(DWORD dwGroupId, DWORD dwFlags, void* pvArg,
                                 PFN_CRYPT_ENUM_OID_INFO pfnEnumOIDInfo) {
  if (dwFlags != 0 || pfnEnumOIDInfo == nullptr) return korvex::capi::Fail(E_INVALIDARG);
  for (const CRYPT_OID_INFO& entry : Table()) {
    if (dwGroupId != 0 && entry.dwGroupId != dwGroupId) continue;
    if (!pfnEnumOIDInfo(&entry, pvArg)) return FALSE;
  }
  return TRUE;
}

extern "C" PCCRYPT_OID_INFO CryptFindOIDInfo(DWORD dwKeyType, void* pvKey, DWORD dwGroupId) {
  if (pvKey == nullptr) return nullptr;
  for (const CRYPT_OID_INFO& entry : Table()) {
    if (dwGroupId != 0 && entry.dwGroupId != dwGroupId) continue;
    if (korvex::capi::Matches(entry, dwKeyType, pvKey)) return &entry;
  }
  return nullptr;
}
