// korvex/platform/capi/oidinfo.h: the object-identifier information table.
//
// A fixed table of CRYPT_OID_INFO entries (RSA, EC and GOST algorithms, RDN
// attributes, extensions and attributes, key usages, policies); every string
// and array in it is static and lives as long as the process. The entries
// are listed in docs/capi.md.
#ifndef KORVEX_PLATFORM_CAPI_OIDINFO_H
#define KORVEX_PLATFORM_CAPI_OIDINFO_H

#include <korvex/platform/capi/types.h>

// Groups.
#define CRYPT_HASH_ALG_OID_GROUP_ID 1u
#define CRYPT_ENCRYPT_ALG_OID_GROUP_ID 2u
#define CRYPT_PUBKEY_ALG_OID_GROUP_ID 3u
#define CRYPT_SIGN_ALG_OID_GROUP_ID 4u
#define CRYPT_RDN_ATTR_OID_GROUP_ID 5u
#define CRYPT_EXT_OR_ATTR_OID_GROUP_ID 6u
#define CRYPT_ENHKEY_USAGE_OID_GROUP_ID 7u
#define CRYPT_POLICY_OID_GROUP_ID 8u
#define CRYPT_TEMPLATE_OID_GROUP_ID 9u
#define CRYPT_LAST_OID_GROUP_ID 9u

// CryptFindOIDInfo key types.
#define CRYPT_OID_INFO_OID_KEY 1u
#define CRYPT_OID_INFO_NAME_KEY 2u
#define CRYPT_OID_INFO_ALGID_KEY 3u
#define CRYPT_OID_INFO_SIGN_KEY 4u

// RDN value types listed in the ExtraInfo of RDN entries (a zero-terminated
// DWORD array).
#define CERT_RDN_ANY_TYPE 0u
#define CERT_RDN_NUMERIC_STRING 3u
#define CERT_RDN_PRINTABLE_STRING 4u
#define CERT_RDN_TELETEX_STRING 5u
#define CERT_RDN_IA5_STRING 7u
#define CERT_RDN_UNICODE_STRING 12u
#define CERT_RDN_UTF8_STRING 13u

// ExtraInfo of signature entries: DWORD[0] the public-key ALG_ID, DWORD[1]
// flags (0 here), DWORD[2] the provider type that serves the algorithm.
typedef struct _CRYPT_OID_INFO {
  DWORD cbSize;
  LPCSTR pszOID;
  LPCWSTR pwszName;
  DWORD dwGroupId;
  union {
    DWORD dwValue;
    ALG_ID Algid;
    DWORD dwLength;
  };
  CRYPT_DATA_BLOB ExtraInfo;
  LPCWSTR pwszCNGAlgid;
  LPCWSTR pwszCNGExtraAlgid;
} CRYPT_OID_INFO, *PCRYPT_OID_INFO;
typedef const CRYPT_OID_INFO CCRYPT_OID_INFO, *PCCRYPT_OID_INFO;

typedef BOOL (*PFN_CRYPT_ENUM_OID_INFO)(PCCRYPT_OID_INFO pInfo, void* pvArg);

KORVEX_BEGIN_C

// CryptEnumOIDInfo calls pfnEnumOIDInfo for each entry of group dwGroupId
// (0: every group), in table order, until the callback returns FALSE.
// Returns TRUE when every entry was visited, FALSE when the callback
// stopped the walk (last error untouched). dwFlags must be 0 and the
// callback non-null (else FALSE with E_INVALIDARG).
KORVEX_API BOOL CryptEnumOIDInfo(DWORD dwGroupId, DWORD dwFlags, void* pvArg,
                                 PFN_CRYPT_ENUM_OID_INFO pfnEnumOIDInfo);

// CryptFindOIDInfo returns the first entry of group dwGroupId (0: any group)
// whose key matches: CRYPT_OID_INFO_OID_KEY pvKey is OID text (exact);
// CRYPT_OID_INFO_NAME_KEY a wide name (ASCII case-insensitive);
// CRYPT_OID_INFO_ALGID_KEY a pointer to an ALG_ID; CRYPT_OID_INFO_SIGN_KEY a
// pointer to two ALG_IDs {hash, public key} matched against a signature
// entry's Algid and ExtraInfo DWORD[0] (CALG_RSA_KEYX and CALG_RSA_SIGN
// count as the same RSA key). Returns null when nothing matches or pvKey is
// null; the entry is static and must not be freed.
KORVEX_API PCCRYPT_OID_INFO CryptFindOIDInfo(DWORD dwKeyType, void* pvKey, DWORD dwGroupId);

KORVEX_END_C

#endif
