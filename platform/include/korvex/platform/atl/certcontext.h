// korvex/platform/atl/certcontext.h: ATL2::CCertContext, the owner of a
// certificate context (PCCERT_CONTEXT).
//
// The object may be empty. It holds one reference to its context and drops
// it when destroyed or given another; copies add a reference
// (CertDuplicateCertificateContext). Methods that can fail return an
// HRESULT: S_OK, or the thread's last error as HRESULT_FROM_WIN32 gives it.
#ifndef KORVEX_PLATFORM_ATL_CERTCONTEXT_H
#define KORVEX_PLATFORM_ATL_CERTCONTEXT_H

#include <korvex/platform/capi/cert.h>
#include <korvex/platform/win32/errhandlingapi.h>
#include <korvex/platform/win32/winerror.h>

namespace ATL2 {

class CCertContext {
 public:
  CCertContext() noexcept : m_pCert(nullptr) {}
  // CCertContext(p) takes over the caller's reference to p (may be null).
  explicit CCertContext(PCCERT_CONTEXT pCert) noexcept : m_pCert(pCert) {}
  CCertContext(const CCertContext& other) noexcept
      : m_pCert(CertDuplicateCertificateContext(other.m_pCert)) {}
  CCertContext& operator=(const CCertContext& other) noexcept {
    if (this != &other) {
      PCCERT_CONTEXT copy = CertDuplicateCertificateContext(other.m_pCert);
      Release();
      m_pCert = copy;
    }
    return *this;
  }
  ~CCertContext() { Release(); }

  // Create parses a DER certificate into a new context that replaces the
  // held one; on failure the object is left empty.
  HRESULT Create(const BYTE* pbCertEncoded, DWORD cbCertEncoded,
                 DWORD dwEncodingType = X509_ASN_ENCODING | PKCS_7_ASN_ENCODING) noexcept {
    Release();
    m_pCert = CertCreateCertificateContext(dwEncodingType, pbCertEncoded, cbCertEncoded);
    if (m_pCert != nullptr) return S_OK;
    DWORD error = GetLastError();
    return error == 0 ? E_FAIL : HRESULT_FROM_WIN32(error);
  }

  // Attach drops the held context and takes over the caller's reference.
  void Attach(PCCERT_CONTEXT pCert) noexcept {
    Release();
    m_pCert = pCert;
  }

  // Detach gives the held reference to the caller and empties the object.
  PCCERT_CONTEXT Detach() noexcept {
    PCCERT_CONTEXT cert = m_pCert;
    m_pCert = nullptr;
    return cert;
  }

  // Release drops the held reference.
  void Release() noexcept {
    if (m_pCert != nullptr) CertFreeCertificateContext(m_pCert);
    m_pCert = nullptr;
  }

  bool IsEmpty() const noexcept { return m_pCert == nullptr; }
  PCCERT_CONTEXT GetHandle() const noexcept { return m_pCert; }
  operator PCCERT_CONTEXT() const noexcept { return m_pCert; }  // NOLINT: implicit as in ATL
  PCCERT_CONTEXT operator->() const noexcept { return m_pCert; }

  PCCERT_CONTEXT m_pCert;
};

}  // namespace ATL2

#endif
