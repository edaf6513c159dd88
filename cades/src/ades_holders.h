// ades_holders.h: the process-wide empty provider, key and hash holders (not
// installed).
//
// The library creates them at load, in the same initialiser that opens the
// trace context, and destroys them at unload. An empty holder owns no handle;
// code that needs "no provider / no key / no hash" where a holder is expected
// passes one of these instead of making a temporary.
#ifndef KORVEX_CADES_ADES_HOLDERS_H
#define KORVEX_CADES_ADES_HOLDERS_H

#include <korvex/platform/atl/atlcrypt.h>
#include <korvex/platform/capi/cert.h>
#include <korvex/platform/capi/hash.h>

namespace korvex::cades {

// CryptKeyHolder owns one key handle (HCRYPTKEY), destroyed with the holder.
class CryptKeyHolder {
 public:
  CryptKeyHolder() noexcept : m_hKey(0) {}
  explicit CryptKeyHolder(HCRYPTKEY key) noexcept : m_hKey(key) {}
  ~CryptKeyHolder() {
    if (m_hKey != 0) CryptDestroyKey(m_hKey);
  }
  CryptKeyHolder(CryptKeyHolder const&) = delete;
  CryptKeyHolder& operator=(CryptKeyHolder const&) = delete;

  HCRYPTKEY GetHandle() const noexcept { return m_hKey; }

 private:
  HCRYPTKEY m_hKey;
};

// CryptHashHolder owns one hash handle (HCRYPTHASH), destroyed with the
// holder.
class CryptHashHolder {
 public:
  CryptHashHolder() noexcept : m_hHash(0) {}
  explicit CryptHashHolder(HCRYPTHASH hash) noexcept : m_hHash(hash) {}
  ~CryptHashHolder() {
    if (m_hHash != 0) CryptDestroyHash(m_hHash);
  }
  CryptHashHolder(CryptHashHolder const&) = delete;
  CryptHashHolder& operator=(CryptHashHolder const&) = delete;

  HCRYPTHASH GetHandle() const noexcept { return m_hHash; }

 private:
  HCRYPTHASH m_hHash;
};

// The empty holders made at load (ades_core.cpp).
ATL::CCryptProv& EmptyProvider() noexcept;
CryptKeyHolder& EmptyKey() noexcept;
CryptHashHolder& EmptyHash() noexcept;

}  // namespace korvex::cades

#endif
