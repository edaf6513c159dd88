// IsCertChainValidForSignatureOnTimeNow: the chain of a signer's certificate
// checked now, with the provider's own signature chain policy.
#include <korvex/cades/ades_core.h>
#include <korvex/platform/capi/chain.h>
#include <korvex/platform/capi/errors.h>
#include <korvex/platform/win32/errhandlingapi.h>

namespace {

// Revocation of every element but a self-signed root (a root cannot be
// revoked by a CRL it signs itself), and no fetching of roots from outside
// the configured trust store.
constexpr DWORD kChainFlags =
    CERT_CHAIN_REVOCATION_CHECK_CHAIN_EXCLUDE_ROOT | CERT_CHAIN_DISABLE_AUTH_ROOT_AUTO_UPDATE;

// The policy blocks have their Windows x64 sizes: 16 and 24 bytes.
static_assert(sizeof(CERT_CHAIN_POLICY_PARA) == 16, "CERT_CHAIN_POLICY_PARA layout");
static_assert(sizeof(CERT_CHAIN_POLICY_STATUS) == 24, "CERT_CHAIN_POLICY_STATUS layout");

// ChainHolder frees the chain, if one was built, on every way out.
class ChainHolder {
 public:
  ChainHolder() noexcept : m_chain(nullptr) {}
  ~ChainHolder() {
    if (m_chain != nullptr) CertFreeCertificateChain(m_chain);
  }
  ChainHolder(ChainHolder const&) = delete;
  ChainHolder& operator=(ChainHolder const&) = delete;

  PCCERT_CHAIN_CONTEXT* Out() noexcept { return &m_chain; }
  PCCERT_CHAIN_CONTEXT Get() const noexcept { return m_chain; }

 private:
  PCCERT_CHAIN_CONTEXT m_chain;
};

}  // namespace

HRESULT IsCertChainValidForSignatureOnTimeNow(ATL2::CCertContext& cert, unsigned int* status) {
  if (status == nullptr) return E_INVALIDARG;
  *status = 0;

  ChainHolder chain;
  if (!cert.IsEmpty()) {
    CERT_CHAIN_PARA para{};
    para.cbSize = sizeof para;  // no requested usage: the policy judges the key usage
    if (!CertGetCertificateChain(nullptr, cert.GetHandle(), nullptr, nullptr, &para, kChainFlags,
                                 nullptr, chain.Out())) {
      // The reason does not matter here: the policy check of a missing
      // chain reports that the check could not run.
      (void)GetLastError();
      *chain.Out() = nullptr;
    }
  }

  CERT_CHAIN_POLICY_PARA policyPara{};
  policyPara.cbSize = sizeof policyPara;
  CERT_CHAIN_POLICY_STATUS policyStatus{};
  policyStatus.cbSize = sizeof policyStatus;
  if (!CertVerifyCertificateChainPolicy(KORVEX_CHAIN_POLICY_SIGNATURE, chain.Get(), &policyPara,
                                        &policyStatus)) {
    return E_FAIL;
  }
  *status = policyStatus.dwError;
  return S_OK;
}
