// korvex/platform/capi/chain.h: certificate chains and chain policies.
//
// CertGetCertificateChain builds the chain of a certificate up to a trust
// anchor of the configured trust store and checks it with OpenSSL: validity
// periods, signatures, CA basic constraints and path lengths, unknown
// critical extensions, the requested extended key usages and, as the flags
// ask, revocation against the CRLs of the configured CRL directory. The
// trust store, the CRL directory and the configuration keys that name them
// are described in docs/capi.md.
#ifndef KORVEX_PLATFORM_CAPI_CHAIN_H
#define KORVEX_PLATFORM_CAPI_CHAIN_H

#include <korvex/platform/capi/cert.h>

// Error status bits.
#define CERT_TRUST_NO_ERROR 0x00000000u
#define CERT_TRUST_IS_NOT_TIME_VALID 0x00000001u
#define CERT_TRUST_IS_NOT_TIME_NESTED 0x00000002u
#define CERT_TRUST_IS_REVOKED 0x00000004u
#define CERT_TRUST_IS_NOT_SIGNATURE_VALID 0x00000008u
#define CERT_TRUST_IS_NOT_VALID_FOR_USAGE 0x00000010u
#define CERT_TRUST_IS_UNTRUSTED_ROOT 0x00000020u
#define CERT_TRUST_REVOCATION_STATUS_UNKNOWN 0x00000040u
#define CERT_TRUST_IS_CYCLIC 0x00000080u
#define CERT_TRUST_INVALID_EXTENSION 0x00000100u
#define CERT_TRUST_INVALID_POLICY_CONSTRAINTS 0x00000200u
#define CERT_TRUST_INVALID_BASIC_CONSTRAINTS 0x00000400u
#define CERT_TRUST_INVALID_NAME_CONSTRAINTS 0x00000800u
#define CERT_TRUST_IS_OFFLINE_REVOCATION 0x01000000u
#define CERT_TRUST_IS_PARTIAL_CHAIN 0x00010000u

// Information status bits.
#define CERT_TRUST_HAS_EXACT_MATCH_ISSUER 0x00000001u
#define CERT_TRUST_HAS_KEY_MATCH_ISSUER 0x00000002u
#define CERT_TRUST_HAS_NAME_MATCH_ISSUER 0x00000004u
#define CERT_TRUST_IS_SELF_SIGNED 0x00000008u
#define CERT_TRUST_HAS_PREFERRED_ISSUER 0x00000100u

typedef struct _CERT_TRUST_STATUS {
  DWORD dwErrorStatus;
  DWORD dwInfoStatus;
} CERT_TRUST_STATUS, *PCERT_TRUST_STATUS;

typedef struct _CERT_ENHKEY_USAGE {
  DWORD cUsageIdentifier;
  LPSTR* rgpszUsageIdentifier;
} CERT_ENHKEY_USAGE, *PCERT_ENHKEY_USAGE, CERT_USAGE, *PCERT_USAGE;

#define USAGE_MATCH_TYPE_AND 0x00000000u
#define USAGE_MATCH_TYPE_OR 0x00000001u

typedef struct _CERT_USAGE_MATCH {
  DWORD dwType;
  CERT_ENHKEY_USAGE Usage;
} CERT_USAGE_MATCH, *PCERT_USAGE_MATCH;

// Chain-building parameters. Only cbSize and RequestedUsage are read;
// cbSize must cover at least those two fields.
typedef struct _CERT_CHAIN_PARA {
  DWORD cbSize;
  CERT_USAGE_MATCH RequestedUsage;
  CERT_USAGE_MATCH RequestedIssuancePolicy;
  DWORD dwUrlRetrievalTimeout;
  BOOL fCheckRevocationFreshnessTime;
  DWORD dwRevocationFreshnessTime;
  LPFILETIME pftCacheResync;
  const void* pStrongSignPara;
  DWORD dwStrongSignFlags;
} CERT_CHAIN_PARA, *PCERT_CHAIN_PARA;

// Revocation result of one element (present when revocation was checked).
// dwRevocationResult is 0, CRYPT_E_REVOKED or CRYPT_E_REVOCATION_OFFLINE;
// dwFreshnessTime is the age in seconds of the CRL used.
typedef struct _CERT_REVOCATION_INFO {
  DWORD cbSize;
  DWORD dwRevocationResult;
  LPCSTR pszRevocationOid;
  LPVOID pvOidSpecificInfo;
  BOOL fHasFreshnessTime;
  DWORD dwFreshnessTime;
  void* pCrlInfo;
} CERT_REVOCATION_INFO, *PCERT_REVOCATION_INFO;

typedef struct _CERT_CHAIN_ELEMENT {
  DWORD cbSize;
  PCCERT_CONTEXT pCertContext;
  CERT_TRUST_STATUS TrustStatus;
  PCERT_REVOCATION_INFO pRevocationInfo;
  PCERT_ENHKEY_USAGE pIssuanceUsage;
  PCERT_ENHKEY_USAGE pApplicationUsage;
  LPCWSTR pwszExtendedErrorInfo;
} CERT_CHAIN_ELEMENT, *PCERT_CHAIN_ELEMENT;
typedef const CERT_CHAIN_ELEMENT* PCCERT_CHAIN_ELEMENT;

typedef struct _CERT_SIMPLE_CHAIN {
  DWORD cbSize;
  CERT_TRUST_STATUS TrustStatus;
  DWORD cElement;
  PCERT_CHAIN_ELEMENT* rgpElement;
  void* pTrustListInfo;
  BOOL fHasRevocationFreshnessTime;
  DWORD dwRevocationFreshnessTime;
} CERT_SIMPLE_CHAIN, *PCERT_SIMPLE_CHAIN;
typedef const CERT_SIMPLE_CHAIN* PCCERT_SIMPLE_CHAIN;

typedef struct _CERT_CHAIN_CONTEXT CERT_CHAIN_CONTEXT, *PCERT_CHAIN_CONTEXT;
typedef const CERT_CHAIN_CONTEXT* PCCERT_CHAIN_CONTEXT;

// rgpChain[0] starts with the end certificate; this platform always builds
// exactly one simple chain.
struct _CERT_CHAIN_CONTEXT {
  DWORD cbSize;
  CERT_TRUST_STATUS TrustStatus;
  DWORD cChain;
  PCERT_SIMPLE_CHAIN* rgpChain;
  DWORD cLowerQualityChainContext;
  PCCERT_CHAIN_CONTEXT* rgpLowerQualityChainContext;
  BOOL fHasRevocationFreshnessTime;
  DWORD dwRevocationFreshnessTime;
  DWORD dwCreateFlags;
  GUID ChainId;
};

// Chain engines: null (or HCCE_CURRENT_USER) and HCCE_LOCAL_MACHINE both
// name the one engine of the platform.
#define HCCE_CURRENT_USER ((HCERTCHAINENGINE)0)
#define HCCE_LOCAL_MACHINE ((HCERTCHAINENGINE)1)

// CertGetCertificateChain flags.
#define CERT_CHAIN_CACHE_END_CERT 0x00000001u
#define CERT_CHAIN_CACHE_ONLY_URL_RETRIEVAL 0x00000004u
#define CERT_CHAIN_DISABLE_AUTH_ROOT_AUTO_UPDATE 0x00000100u
#define CERT_CHAIN_REVOCATION_CHECK_END_CERT 0x10000000u
#define CERT_CHAIN_REVOCATION_CHECK_CHAIN 0x20000000u
#define CERT_CHAIN_REVOCATION_CHECK_CHAIN_EXCLUDE_ROOT 0x40000000u
#define CERT_CHAIN_REVOCATION_CHECK_CACHE_ONLY 0x80000000u

// Chain policies. CERT_CHAIN_POLICY_BASE and CERT_CHAIN_POLICY_BASIC_CONSTRAINTS
// are the Windows ones; KORVEX_CHAIN_POLICY_SIGNATURE is the provider's own
// signature policy, named by this GUID-form string (docs/capi.md).
#define CERT_CHAIN_POLICY_BASE ((LPCSTR)1)
#define CERT_CHAIN_POLICY_BASIC_CONSTRAINTS ((LPCSTR)5)
#define KORVEX_CHAIN_POLICY_SIGNATURE "{6B8F3E2A-4C1D-4E7B-9A25-5F0C3D8E1B74}"

// Policy flags: conditions the policy ignores.
#define CERT_CHAIN_POLICY_IGNORE_NOT_TIME_VALID_FLAG 0x00000001u
#define CERT_CHAIN_POLICY_IGNORE_CTL_NOT_TIME_VALID_FLAG 0x00000002u
#define CERT_CHAIN_POLICY_IGNORE_NOT_TIME_NESTED_FLAG 0x00000004u
#define CERT_CHAIN_POLICY_IGNORE_INVALID_BASIC_CONSTRAINTS_FLAG 0x00000008u
#define CERT_CHAIN_POLICY_IGNORE_ALL_NOT_TIME_VALID_FLAGS 0x00000007u
#define CERT_CHAIN_POLICY_ALLOW_UNKNOWN_CA_FLAG 0x00000010u
#define CERT_CHAIN_POLICY_IGNORE_WRONG_USAGE_FLAG 0x00000020u
#define CERT_CHAIN_POLICY_IGNORE_INVALID_NAME_FLAG 0x00000040u
#define CERT_CHAIN_POLICY_IGNORE_INVALID_POLICY_FLAG 0x00000080u
#define CERT_CHAIN_POLICY_IGNORE_END_REV_UNKNOWN_FLAG 0x00000100u
#define CERT_CHAIN_POLICY_IGNORE_CTL_SIGNER_REV_UNKNOWN_FLAG 0x00000200u
#define CERT_CHAIN_POLICY_IGNORE_CA_REV_UNKNOWN_FLAG 0x00000400u
#define CERT_CHAIN_POLICY_IGNORE_ROOT_REV_UNKNOWN_FLAG 0x00000800u
#define CERT_CHAIN_POLICY_IGNORE_ALL_REV_UNKNOWN_FLAGS 0x00000F00u

typedef struct _CERT_CHAIN_POLICY_PARA {
  DWORD cbSize;
  DWORD dwFlags;
  void* pvExtraPolicyPara;
} CERT_CHAIN_POLICY_PARA, *PCERT_CHAIN_POLICY_PARA;

typedef struct _CERT_CHAIN_POLICY_STATUS {
  DWORD cbSize;
  DWORD dwError;
  LONG lChainIndex;
  LONG lElementIndex;
  void* pvExtraPolicyStatus;
} CERT_CHAIN_POLICY_STATUS, *PCERT_CHAIN_POLICY_STATUS;

KORVEX_BEGIN_C

// CertGetCertificateChain builds and checks the chain of pCertContext at
// *pTime (the present moment when null), looking for issuers in
// hAdditionalStore (may be null), the certificate's own store, the
// configured intermediate directory and the trust anchors. Revocation is
// checked when dwFlags holds CERT_CHAIN_REVOCATION_CHECK_END_CERT (the end
// certificate), _CHAIN (every element) or _CHAIN_EXCLUDE_ROOT (every element
// but a self-signed root): a listed serial is CERT_TRUST_IS_REVOKED, a
// missing, unverifiable or expired CRL is CERT_TRUST_REVOCATION_STATUS_UNKNOWN
// | CERT_TRUST_IS_OFFLINE_REVOCATION. pvReserved must be null. Chain
// problems are reported in the trust statuses, not as failures; the call
// fails only for bad arguments: E_INVALIDARG (null certificate, chain para
// or output, cbSize too small, unknown engine, non-null pvReserved, a
// pointer that is not a live certificate context). Free the chain with
// CertFreeCertificateChain.
KORVEX_API BOOL CertGetCertificateChain(HCERTCHAINENGINE hChainEngine,
                                        PCCERT_CONTEXT pCertContext, LPFILETIME pTime,
                                        HCERTSTORE hAdditionalStore, PCERT_CHAIN_PARA pChainPara,
                                        DWORD dwFlags, LPVOID pvReserved,
                                        PCCERT_CHAIN_CONTEXT* ppChainContext);

// CertDuplicateCertificateChain adds a reference to a chain context.
KORVEX_API PCCERT_CHAIN_CONTEXT CertDuplicateCertificateChain(PCCERT_CHAIN_CONTEXT pChainContext);

// CertFreeCertificateChain drops a reference; null and unknown pointers are
// ignored.
KORVEX_API void CertFreeCertificateChain(PCCERT_CHAIN_CONTEXT pChainContext);

// CertVerifyCertificateChainPolicy checks a built chain against a policy and
// stores the first error found in pPolicyStatus->dwError (0 when the chain
// passes), with the chain and element index of the certificate at fault
// (-1, -1 when none). The base policy reports, in this order of precedence:
// TRUST_E_CERT_SIGNATURE, CRYPT_E_REVOKED, CERT_E_UNTRUSTEDROOT,
// CERT_E_CHAINING (partial chain), CERT_E_WRONG_USAGE, CERT_E_EXPIRED,
// TRUST_E_BASIC_CONSTRAINTS, CERT_E_CRITICAL, CRYPT_E_REVOCATION_OFFLINE or
// CRYPT_E_NO_REVOCATION_CHECK, each unless pPolicyPara->dwFlags ignores it.
// KORVEX_CHAIN_POLICY_SIGNATURE is the base policy plus: the end
// certificate's key usage, when present, must allow digitalSignature or
// nonRepudiation (else CERT_E_WRONG_USAGE). CERT_CHAIN_POLICY_BASIC_CONSTRAINTS
// reports TRUST_E_BASIC_CONSTRAINTS only. Returns FALSE when the policy could
// not be run: ERROR_INVALID_PARAMETER for a null or unknown chain or a null
// status, E_INVALIDARG for a status or para cbSize too small,
// CRYPT_E_NOT_FOUND for an unknown policy.
KORVEX_API BOOL CertVerifyCertificateChainPolicy(LPCSTR pszPolicyOID,
                                                 PCCERT_CHAIN_CONTEXT pChainContext,
                                                 PCERT_CHAIN_POLICY_PARA pPolicyPara,
                                                 PCERT_CHAIN_POLICY_STATUS pPolicyStatus);

KORVEX_END_C

#endif
