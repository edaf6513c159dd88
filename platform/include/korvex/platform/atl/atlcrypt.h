// korvex/platform/atl/atlcrypt.h: ATL::CCryptProv, the owner of a provider
// context (HCRYPTPROV).
//
// A CCryptProv holds one reference to a context and releases it when it is
// destroyed or given another one. Copies share the context, each with its
// own reference (CryptContextAddRef). Methods that can fail return an
// HRESULT: S_OK, or the thread's last error as HRESULT_FROM_WIN32 gives it
// (CryptoAPI errors are HRESULTs already and pass unchanged).
#ifndef KORVEX_PLATFORM_ATL_ATLCRYPT_H
#define KORVEX_PLATFORM_ATL_ATLCRYPT_H

#include <korvex/platform/capi/provider.h>
#include <korvex/platform/win32/errhandlingapi.h>
#include <korvex/platform/win32/winerror.h>

namespace ATL {

class CCryptProv {
 public:
  CCryptProv() noexcept : m_hProv(0) {}
  // CCryptProv(hProv, bTakeOwnership) adopts hProv: with bTakeOwnership the
  // caller's reference passes to the object, otherwise a new one is added.
  explicit CCryptProv(HCRYPTPROV hProv, BOOL bTakeOwnership = FALSE) noexcept : m_hProv(0) {
    Attach(hProv, bTakeOwnership);
  }
  CCryptProv(const CCryptProv& other) noexcept : m_hProv(0) { Attach(other.m_hProv, FALSE); }
  CCryptProv& operator=(const CCryptProv& other) noexcept {
    if (this != &other) {
      Release();
      Attach(other.m_hProv, FALSE);
    }
    return *this;
  }
  ~CCryptProv() { Release(); }

  // Initialize opens a context of dwProviderType (a verification context
  // unless dwFlags says otherwise), replacing the one held.
  HRESULT Initialize(DWORD dwProviderType = PROV_RSA_FULL, LPCSTR szContainer = nullptr,
                     LPCSTR szProvider = nullptr,
                     DWORD dwFlags = CRYPT_VERIFYCONTEXT) noexcept {
    Release();
    HCRYPTPROV handle = 0;
    if (!CryptAcquireContextA(&handle, szContainer, szProvider, dwProviderType, dwFlags)) {
      return LastError();
    }
    m_hProv = handle;
    return S_OK;
  }

  // Release drops the held reference (nothing held: S_OK).
  HRESULT Release() noexcept {
    if (m_hProv == 0) return S_OK;
    HCRYPTPROV handle = m_hProv;
    m_hProv = 0;
    return CryptReleaseContext(handle, 0) ? S_OK : LastError();
  }

  // Attach releases the held context and takes hProv (see the constructor).
  // A reference that cannot be added leaves the object empty.
  void Attach(HCRYPTPROV hProv, BOOL bTakeOwnership = FALSE) noexcept {
    Release();
    if (hProv != 0 && !bTakeOwnership && !CryptContextAddRef(hProv, nullptr, 0)) return;
    m_hProv = hProv;
  }

  // Detach gives the held reference to the caller and empties the object.
  HCRYPTPROV Detach() noexcept {
    HCRYPTPROV handle = m_hProv;
    m_hProv = 0;
    return handle;
  }

  // GetParam is CryptGetProvParam on the held context.
  HRESULT GetParam(DWORD dwParam, BYTE* pbData, DWORD* pdwDataLen, DWORD dwFlags = 0) noexcept {
    return CryptGetProvParam(m_hProv, dwParam, pbData, pdwDataLen, dwFlags) ? S_OK : LastError();
  }

  // GetProvType reads PP_PROVTYPE.
  HRESULT GetProvType(DWORD* pdwType) noexcept {
    DWORD size = sizeof *pdwType;
    return GetParam(PP_PROVTYPE, reinterpret_cast<BYTE*>(pdwType), &size);
  }

  HCRYPTPROV GetHandle() const noexcept { return m_hProv; }
  operator HCRYPTPROV() const noexcept { return m_hProv; }  // NOLINT: implicit as in ATL

  HCRYPTPROV m_hProv;

 private:
  static HRESULT LastError() noexcept {
    DWORD error = GetLastError();
    return error == 0 ? E_FAIL : HRESULT_FROM_WIN32(error);
  }
};

}  // namespace ATL

#endif
