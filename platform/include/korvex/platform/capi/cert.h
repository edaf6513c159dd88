// korvex/platform/capi/cert.h: certificate contexts, memory stores and
// public keys taken from certificates.
//
// A certificate context holds the DER of one X.509 certificate (RFC 5280)
// and its parsed CERT_INFO, whose pointers all point into memory the context
// owns. Contexts are reference counted: CertDuplicateCertificateContext adds
// a reference, CertFreeCertificateContext drops one.
#ifndef KORVEX_PLATFORM_CAPI_CERT_H
#define KORVEX_PLATFORM_CAPI_CERT_H

#include <korvex/platform/capi/types.h>

#define CERT_V1 0u
#define CERT_V2 1u
#define CERT_V3 2u

typedef struct _CERT_PUBLIC_KEY_INFO {
  CRYPT_ALGORITHM_IDENTIFIER Algorithm;
  CRYPT_BIT_BLOB PublicKey;
} CERT_PUBLIC_KEY_INFO, *PCERT_PUBLIC_KEY_INFO;

typedef struct _CERT_EXTENSION {
  LPSTR pszObjId;
  BOOL fCritical;
  CRYPT_OBJID_BLOB Value;
} CERT_EXTENSION, *PCERT_EXTENSION;
typedef const CERT_EXTENSION* PCCERT_EXTENSION;

// The TBSCertificate fields (RFC 5280 4.1). SerialNumber is little-endian
// (least significant byte first), as on Windows; Issuer and Subject hold the
// DER of the names; NotBefore/NotAfter are UTC.
typedef struct _CERT_INFO {
  DWORD dwVersion;
  CRYPT_INTEGER_BLOB SerialNumber;
  CRYPT_ALGORITHM_IDENTIFIER SignatureAlgorithm;
  CERT_NAME_BLOB Issuer;
  FILETIME NotBefore;
  FILETIME NotAfter;
  CERT_NAME_BLOB Subject;
  CERT_PUBLIC_KEY_INFO SubjectPublicKeyInfo;
  CRYPT_BIT_BLOB IssuerUniqueId;
  CRYPT_BIT_BLOB SubjectUniqueId;
  DWORD cExtension;
  PCERT_EXTENSION rgExtension;
} CERT_INFO, *PCERT_INFO;

typedef struct _CERT_CONTEXT {
  DWORD dwCertEncodingType;
  BYTE* pbCertEncoded;
  DWORD cbCertEncoded;
  PCERT_INFO pCertInfo;
  HCERTSTORE hCertStore;
} CERT_CONTEXT, *PCERT_CONTEXT;
typedef const CERT_CONTEXT* PCCERT_CONTEXT;

// Store providers (CertOpenStore's first argument).
#define CERT_STORE_PROV_MSG ((LPCSTR)1)
#define CERT_STORE_PROV_MEMORY ((LPCSTR)2)
#define sz_CERT_STORE_PROV_MEMORY "Memory"

// CertCloseStore flags.
#define CERT_CLOSE_STORE_FORCE_FLAG 0x00000001u
#define CERT_CLOSE_STORE_CHECK_FLAG 0x00000002u

// Add dispositions.
#define CERT_STORE_ADD_NEW 1u
#define CERT_STORE_ADD_USE_EXISTING 2u
#define CERT_STORE_ADD_REPLACE_EXISTING 3u
#define CERT_STORE_ADD_ALWAYS 4u

// CryptGetKeyParam parameters.
#define KP_ALGID 7u
#define KP_KEYLEN 9u

KORVEX_BEGIN_C

// CertCreateCertificateContext parses one DER certificate (the whole input,
// nothing after it) into a new context with its own copy of the bytes.
// dwCertEncodingType must include X509_ASN_ENCODING (else E_INVALIDARG).
// Errors: ERROR_INVALID_PARAMETER (null or empty input), CRYPT_E_ASN1_BADTAG
// (not a SEQUENCE), CRYPT_E_ASN1_EOD (truncated), CRYPT_E_ASN1_CORRUPT (any
// other malformed certificate). Returns null on failure. Free with
// CertFreeCertificateContext.
KORVEX_API PCCERT_CONTEXT CertCreateCertificateContext(DWORD dwCertEncodingType,
                                                       const BYTE* pbCertEncoded,
                                                       DWORD cbCertEncoded);

// CertDuplicateCertificateContext adds a reference and returns the same
// pointer; null gives null.
KORVEX_API PCCERT_CONTEXT CertDuplicateCertificateContext(PCCERT_CONTEXT pCertContext);

// CertFreeCertificateContext drops a reference; the context is freed with the
// last one. Null is allowed (TRUE). A pointer that is not a live context
// fails with E_INVALIDARG and is not touched.
KORVEX_API BOOL CertFreeCertificateContext(PCCERT_CONTEXT pCertContext);

// CertOpenStore opens a store. CERT_STORE_PROV_MEMORY (or "Memory") makes an
// empty memory store; CERT_STORE_PROV_MSG makes a memory store holding the
// certificates of the decoded message pvPara (an HCRYPTMSG). Errors:
// ERROR_FILE_NOT_FOUND (another store provider), E_INVALIDARG (a message
// handle that is not a decoded message). Close with CertCloseStore.
KORVEX_API HCERTSTORE CertOpenStore(LPCSTR lpszStoreProvider, DWORD dwEncodingType,
                                    HCRYPTPROV hCryptProv, DWORD dwFlags, const void* pvPara);

// CertDuplicateStore adds an open reference to a store and returns it.
KORVEX_API HCERTSTORE CertDuplicateStore(HCERTSTORE hCertStore);

// CertCloseStore drops an open reference; the last one frees the store.
// Contexts the caller still holds stay valid (their hCertStore becomes
// null). With CERT_CLOSE_STORE_CHECK_FLAG the call returns FALSE with
// CRYPT_E_PENDING_CLOSE when such contexts exist (the store is closed all
// the same). Null is allowed; an unknown handle is E_INVALIDARG.
KORVEX_API BOOL CertCloseStore(HCERTSTORE hCertStore, DWORD dwFlags);

// CertAddEncodedCertificateToStore parses a DER certificate and adds it to
// the store. dwAddDisposition: CERT_STORE_ADD_NEW fails with CRYPT_E_EXISTS
// when the same certificate is there; CERT_STORE_ADD_USE_EXISTING returns the
// one there; CERT_STORE_ADD_REPLACE_EXISTING replaces it; CERT_STORE_ADD_ALWAYS
// adds a second copy. Other dispositions are E_INVALIDARG. When
// ppCertContext is not null it receives a new reference to the stored
// context (free it with CertFreeCertificateContext). Parse errors as
// CertCreateCertificateContext.
KORVEX_API BOOL CertAddEncodedCertificateToStore(HCERTSTORE hCertStore,
                                                 DWORD dwCertEncodingType,
                                                 const BYTE* pbCertEncoded, DWORD cbCertEncoded,
                                                 DWORD dwAddDisposition,
                                                 PCCERT_CONTEXT* ppCertContext);

// CertAddCertificateContextToStore adds a copy of pCertContext to the store,
// with the dispositions of CertAddEncodedCertificateToStore.
KORVEX_API BOOL CertAddCertificateContextToStore(HCERTSTORE hCertStore,
                                                 PCCERT_CONTEXT pCertContext,
                                                 DWORD dwAddDisposition,
                                                 PCCERT_CONTEXT* ppStoreContext);

// CertEnumCertificatesInStore returns the certificate after pPrevCertContext
// (the first for null) and frees pPrevCertContext. At the end it returns
// null with CRYPT_E_NOT_FOUND.
KORVEX_API PCCERT_CONTEXT CertEnumCertificatesInStore(HCERTSTORE hCertStore,
                                                      PCCERT_CONTEXT pPrevCertContext);

// CryptImportPublicKeyInfo makes a public-key object from a certificate's
// subject public key info (RSA, EC and the GOST R 34.10 keys of the OID
// table). Errors: NTE_BAD_UID (unknown provider), ERROR_INVALID_PARAMETER
// (null argument), E_INVALIDARG (encoding without X509_ASN_ENCODING),
// NTE_BAD_ALGID (an algorithm not in the public-key table), NTE_BAD_PUBLIC_KEY
// (an RSA or EC key OpenSSL cannot read). Free with CryptDestroyKey.
KORVEX_API BOOL CryptImportPublicKeyInfo(HCRYPTPROV hCryptProv, DWORD dwCertEncodingType,
                                         PCERT_PUBLIC_KEY_INFO pInfo, HCRYPTKEY* phKey);

// CryptGetKeyParam reads KP_ALGID (DWORD) or KP_KEYLEN (DWORD, bits), with
// the size rules of CryptGetHashParam. Errors: NTE_BAD_KEY, NTE_BAD_FLAGS,
// NTE_BAD_TYPE, ERROR_INVALID_PARAMETER.
KORVEX_API BOOL CryptGetKeyParam(HCRYPTKEY hKey, DWORD dwParam, BYTE* pbData,
                                 DWORD* pdwDataLen, DWORD dwFlags);

// CryptDestroyKey frees a key object. Error: NTE_BAD_KEY for an unknown handle.
KORVEX_API BOOL CryptDestroyKey(HCRYPTKEY hKey);

// CryptVerifySignatureA checks that pbSignature is hPubKey's signature of
// the value of hHash (which it finishes, as reading HP_HASHVAL does). RSA
// keys take a PKCS #1 v1.5 signature (RFC 8017 8.2) over a DigestInfo with
// the hash's OID, least significant byte first as on Windows (reverse the
// bytes of an RSA signature from CMS or X.509). EC keys take the DER
// ECDSA-Sig-Value of X9.62 / RFC 5480 as CMS and X.509 carry it (the Windows
// function has no ECDSA). szDescription is ignored; dwFlags must be 0.
// Errors: NTE_BAD_KEY (unknown key, or a GOST key the OpenSSL in use cannot
// read), NTE_BAD_HASH (unknown hash), NTE_BAD_FLAGS, NTE_BAD_ALGID (a hash
// or key algorithm this check does not handle), ERROR_INVALID_PARAMETER
// (null signature with a length), NTE_BAD_SIGNATURE (the signature does
// not verify).
KORVEX_API BOOL CryptVerifySignatureA(HCRYPTHASH hHash, const BYTE* pbSignature, DWORD dwSigLen,
                                      HCRYPTKEY hPubKey, LPCSTR szDescription, DWORD dwFlags);
#define CryptVerifySignature CryptVerifySignatureA

KORVEX_END_C

#endif
