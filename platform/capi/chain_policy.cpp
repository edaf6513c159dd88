// Chain policies: the base policy, the basic-constraints policy and the
// provider's own signature policy.
#include <strings.h>

#include <openssl/x509v3.h>

#include "chain_internal.h"

namespace korvex::capi {
namespace {

constexpr DWORD kMinPolicyParaSize = offsetof(CERT_CHAIN_POLICY_PARA, pvExtraPolicyPara);
constexpr DWORD kMinPolicyStatusSize = offsetof(CERT_CHAIN_POLICY_STATUS, pvExtraPolicyStatus);

enum class Policy { kBase, kBasicConstraints, kSignature, kUnknown };

Policy PolicyOf(LPCSTR id) {
  uintptr_t number = reinterpret_cast<uintptr_t>(id);
  if (number <= 0xFFFF) {
    if (id == CERT_CHAIN_POLICY_BASE) return Policy::kBase;
    if (id == CERT_CHAIN_POLICY_BASIC_CONSTRAINTS) return Policy::kBasicConstraints;
    return Policy::kUnknown;
  }
  // The GUID text is compared without regard to the case of its hex digits.
  return strcasecmp(id, KORVEX_CHAIN_POLICY_SIGNATURE) == 0 ? Policy::kSignature
                                                            : Policy::kUnknown;
}

struct Finding {
  HRESULT error = 0;
  LONG element = -1;
};

// FirstWith finds the first element (from the end certificate up) whose
// error status has one of `bits`.
LONG FirstWith(const ChainBlock& chain, DWORD bits) {
  for (size_t i = 0; i < chain.elements.size(); ++i) {
    if ((chain.elements[i].TrustStatus.dwErrorStatus & bits) != 0) return static_cast<LONG>(i);
  }
  return -1;
}

// BasePolicy maps the chain's trust status to one error, in the precedence
// the Windows base policy documents for CERT_CHAIN_POLICY_STATUS.
Finding BasePolicy(const ChainBlock& chain, DWORD flags) {
  DWORD status = chain.context.TrustStatus.dwErrorStatus;
  LONG top = static_cast<LONG>(chain.elements.size()) - 1;
  auto found = [&](HRESULT error, DWORD bits, LONG fallback) {
    LONG element = FirstWith(chain, bits);
    return Finding{error, element >= 0 ? element : fallback};
  };
  if (status & CERT_TRUST_IS_NOT_SIGNATURE_VALID) {
    return found(TRUST_E_CERT_SIGNATURE, CERT_TRUST_IS_NOT_SIGNATURE_VALID, 0);
  }
  if (status & CERT_TRUST_IS_REVOKED) return found(CRYPT_E_REVOKED, CERT_TRUST_IS_REVOKED, 0);
  bool allowUnknownCa = (flags & CERT_CHAIN_POLICY_ALLOW_UNKNOWN_CA_FLAG) != 0;
  if ((status & CERT_TRUST_IS_UNTRUSTED_ROOT) && !allowUnknownCa) {
    return found(CERT_E_UNTRUSTEDROOT, CERT_TRUST_IS_UNTRUSTED_ROOT, top);
  }
  if ((status & (CERT_TRUST_IS_PARTIAL_CHAIN | CERT_TRUST_IS_CYCLIC)) && !allowUnknownCa) {
    return Finding{CERT_E_CHAINING, top};
  }
  if ((status & CERT_TRUST_IS_NOT_VALID_FOR_USAGE) &&
      !(flags & CERT_CHAIN_POLICY_IGNORE_WRONG_USAGE_FLAG)) {
    return found(CERT_E_WRONG_USAGE, CERT_TRUST_IS_NOT_VALID_FOR_USAGE, 0);
  }
  if ((status & CERT_TRUST_IS_NOT_TIME_VALID) &&
      !(flags & CERT_CHAIN_POLICY_IGNORE_NOT_TIME_VALID_FLAG)) {
    return found(CERT_E_EXPIRED, CERT_TRUST_IS_NOT_TIME_VALID, 0);
  }
  if ((status & CERT_TRUST_INVALID_BASIC_CONSTRAINTS) &&
      !(flags & CERT_CHAIN_POLICY_IGNORE_INVALID_BASIC_CONSTRAINTS_FLAG)) {
    return found(TRUST_E_BASIC_CONSTRAINTS, CERT_TRUST_INVALID_BASIC_CONSTRAINTS, 0);
  }
  if (status & CERT_TRUST_INVALID_EXTENSION) {
    return found(CERT_E_CRITICAL, CERT_TRUST_INVALID_EXTENSION, 0);
  }
  if ((status & CERT_TRUST_IS_NOT_TIME_NESTED) &&
      !(flags & CERT_CHAIN_POLICY_IGNORE_NOT_TIME_NESTED_FLAG)) {
    return found(CERT_E_VALIDITYPERIODNESTING, CERT_TRUST_IS_NOT_TIME_NESTED, 0);
  }
  // Unknown revocation status, unless the flag for the element's place in
  // the chain (end certificate, CA, root) says to ignore it.
  for (size_t i = 0; i < chain.elements.size(); ++i) {
    DWORD bits = chain.elements[i].TrustStatus.dwErrorStatus;
    if (!(bits & CERT_TRUST_REVOCATION_STATUS_UNKNOWN)) continue;
    bool root = chain.topSelfSigned && i + 1 == chain.elements.size();
    DWORD ignore = i == 0 ? CERT_CHAIN_POLICY_IGNORE_END_REV_UNKNOWN_FLAG
                   : root ? CERT_CHAIN_POLICY_IGNORE_ROOT_REV_UNKNOWN_FLAG
                          : CERT_CHAIN_POLICY_IGNORE_CA_REV_UNKNOWN_FLAG;
    if (flags & ignore) continue;
    HRESULT error = (bits & CERT_TRUST_IS_OFFLINE_REVOCATION) ? CRYPT_E_REVOCATION_OFFLINE
                                                              : CRYPT_E_NO_REVOCATION_CHECK;
    return Finding{error, static_cast<LONG>(i)};
  }
  return Finding{};
}

// SignaturePolicy adds to the base policy that the end certificate's key
// may sign: digitalSignature or nonRepudiation when the key usage extension
// is present (RFC 5280 4.2.1.3).
Finding SignaturePolicy(const ChainBlock& chain, DWORD flags) {
  Finding base = BasePolicy(chain, flags);
  if (base.error != 0) return base;
  uint32_t usage = chain.endKeyUsage;
  if (usage != UINT32_MAX && (usage & (KU_DIGITAL_SIGNATURE | KU_NON_REPUDIATION)) == 0 &&
      !(flags & CERT_CHAIN_POLICY_IGNORE_WRONG_USAGE_FLAG)) {
    return Finding{CERT_E_WRONG_USAGE, 0};
  }
  return base;
}

Finding BasicConstraintsPolicy(const ChainBlock& chain) {
  LONG element = FirstWith(chain, CERT_TRUST_INVALID_BASIC_CONSTRAINTS);
  return element < 0 ? Finding{} : Finding{TRUST_E_BASIC_CONSTRAINTS, element};
}

}  // namespace
}  // namespace korvex::capi

using namespace korvex::capi;

extern "C" BOOL CertVerifyCertificateChainPolicy(LPCSTR pszPolicyOID,
                                                 PCCERT_CHAIN_CONTEXT pChainContext,
                                                 PCERT_CHAIN_POLICY_PARA pPolicyPara,
                                                 PCERT_CHAIN_POLICY_STATUS pPolicyStatus) {
  if (pPolicyStatus == nullptr) return FailWin32(ERROR_INVALID_PARAMETER);
  if (pPolicyStatus->cbSize < kMinPolicyStatusSize ||
      (pPolicyPara != nullptr && pPolicyPara->cbSize < kMinPolicyParaSize)) {
    return Fail(E_INVALIDARG);
  }
  Policy policy = pszPolicyOID == nullptr ? Policy::kUnknown : PolicyOf(pszPolicyOID);
  if (policy == Policy::kUnknown) return Fail(CRYPT_E_NOT_FOUND);
  std::shared_ptr<ChainBlock> chain = FindChain(pChainContext);
  if (!chain) return FailWin32(ERROR_INVALID_PARAMETER);
  DWORD flags = pPolicyPara != nullptr ? pPolicyPara->dwFlags : 0;
  Finding finding = policy == Policy::kBase               ? BasePolicy(*chain, flags)
                    : policy == Policy::kBasicConstraints ? BasicConstraintsPolicy(*chain)
                                                          : SignaturePolicy(*chain, flags);
  pPolicyStatus->dwError = static_cast<DWORD>(finding.error);
  pPolicyStatus->lChainIndex = finding.error == 0 ? -1 : 0;
  pPolicyStatus->lElementIndex = finding.error == 0 ? -1 : finding.element;
  return TRUE;
}
