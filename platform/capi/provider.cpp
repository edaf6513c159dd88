// Provider contexts: verification contexts that remember their type.
#include <cwchar>

#include "capi_internal.h"

namespace korvex::capi {
namespace {

Registry<Provider>& Providers() {
  static Registry<Provider>* registry = new Registry<Provider>();
  return *registry;
}

constexpr DWORD kKnownFlags = CRYPT_VERIFYCONTEXT | CRYPT_NEWKEYSET | CRYPT_DELETEKEYSET |
                              CRYPT_MACHINE_KEYSET | CRYPT_SILENT;
constexpr DWORD kProviderVersion = 0x0200;

BOOL Acquire(HCRYPTPROV* phProv, const std::string* container, const std::string* provider,
             bool nameIsAscii, DWORD type, DWORD flags) {
  if (phProv == nullptr) return FailWin32(ERROR_INVALID_PARAMETER);
  if ((flags & ~kKnownFlags) != 0) return Fail(NTE_BAD_FLAGS);
  bool verify = (flags & CRYPT_VERIFYCONTEXT) == CRYPT_VERIFYCONTEXT;
  if (verify && (flags & (CRYPT_NEWKEYSET | CRYPT_DELETEKEYSET)) != 0) return Fail(NTE_BAD_FLAGS);
  const char* name = ProviderName(type);
  if (name == nullptr) return Fail(NTE_BAD_PROV_TYPE);
  if (provider != nullptr && (!nameIsAscii || *provider != name)) return Fail(NTE_KEYSET_NOT_DEF);
  // The platform stores no keys: creating a key set is refused, and any
  // other non-verification context names a container that does not exist.
  if ((flags & CRYPT_NEWKEYSET) != 0) return Fail(NTE_PERM);
  if (!verify || (container != nullptr && !container->empty())) return Fail(NTE_BAD_KEYSET);

  auto object = std::make_shared<Provider>();
  object->type = type;
  object->name = name;
  return Providers().Publish(std::move(object), phProv);
}

// Narrow converts a wide name, keeping track of whether it was plain ASCII.
std::string Narrow(const wchar_t* text, bool* ascii) {
  std::string out;
  for (; *text != 0; ++text) {
    if (*text < 0 || *text > 127) *ascii = false;
    out.push_back(static_cast<char>(*text & 0x7F));
  }
  return out;
}

}  // namespace

const char* ProviderName(DWORD type) {
  switch (type) {
    case PROV_RSA_FULL:
    case PROV_RSA_SIG:
    case PROV_RSA_AES:
      return KORVEX_PROV_RSA_NAME_A;
    case PROV_DSS:
    case PROV_DSS_DH:
      return KORVEX_PROV_DSS_NAME_A;
    case PROV_KORVEX_GOST_2001:
      return KORVEX_PROV_GOST_2001_NAME_A;
    case PROV_KORVEX_GOST_2012_256:
      return KORVEX_PROV_GOST_2012_256_NAME_A;
    case PROV_KORVEX_GOST_2012_512:
      return KORVEX_PROV_GOST_2012_512_NAME_A;
    default:
      return nullptr;
  }
}

std::shared_ptr<Provider> FindProvider(HCRYPTPROV handle) { return Providers().Find(handle); }

}  // namespace korvex::capi

using namespace korvex::capi;

extern "C" BOOL CryptAcquireContextA(HCRYPTPROV* phProv, LPCSTR pszContainer,
                                     LPCSTR pszProvider, DWORD dwProvType, DWORD dwFlags) {
  std::string container = pszContainer ? pszContainer : "";
  std::string provider = pszProvider ? pszProvider : "";
  return Acquire(phProv, pszContainer ? &container : nullptr, pszProvider ? &provider : nullptr,
                 true, dwProvType, dwFlags);
}

extern "C" BOOL CryptAcquireContextW(HCRYPTPROV* phProv, LPCWSTR pszContainer,
                                     LPCWSTR pszProvider, DWORD dwProvType, DWORD dwFlags) {
  bool ascii = true;
  std::string container = pszContainer ? Narrow(pszContainer, &ascii) : "";
  bool nameAscii = true;
  std::string provider = pszProvider ? Narrow(pszProvider, &nameAscii) : "";
  return Acquire(phProv, pszContainer ? &container : nullptr, pszProvider ? &provider : nullptr,
                 nameAscii, dwProvType, dwFlags);
}

extern "C" BOOL CryptContextAddRef(HCRYPTPROV hProv, DWORD* pdwReserved, DWORD dwFlags) {
  if (pdwReserved != nullptr) return FailWin32(ERROR_INVALID_PARAMETER);
  if (dwFlags != 0) return Fail(NTE_BAD_FLAGS);
  std::shared_ptr<Provider> provider = FindProvider(hProv);
  if (!provider) return Fail(NTE_BAD_UID);
  std::lock_guard<std::mutex> lock(provider->mutex);
  ++provider->refs;
  return TRUE;
}

extern "C" BOOL CryptReleaseContext(HCRYPTPROV hProv, DWORD dwFlags) {
  std::shared_ptr<Provider> provider = FindProvider(hProv);
  if (!provider) return Fail(NTE_BAD_UID);
  bool last;
  {
    std::lock_guard<std::mutex> lock(provider->mutex);
    last = --provider->refs == 0;
  }
  if (last) Providers().Remove(provider.get());
  // Windows releases the context even when dwFlags is wrong, then reports it.
  if (dwFlags != 0) return Fail(NTE_BAD_FLAGS);
  return TRUE;
}

extern "C" BOOL CryptGetProvParam(HCRYPTPROV hProv, DWORD dwParam, BYTE* pbData,
                                  DWORD* pdwDataLen, DWORD dwFlags) {
  std::shared_ptr<Provider> provider = FindProvider(hProv);
  if (!provider) return Fail(NTE_BAD_UID);
  if (pdwDataLen == nullptr) return FailWin32(ERROR_INVALID_PARAMETER);
  if (dwFlags != 0) return Fail(NTE_BAD_FLAGS);
  switch (dwParam) {
    case PP_PROVTYPE:
      return CopyOutDword(provider->type, pbData, pdwDataLen);
    case PP_IMPTYPE:
      return CopyOutDword(CRYPT_IMPL_SOFTWARE, pbData, pdwDataLen);
    case PP_VERSION:
      return CopyOutDword(kProviderVersion, pbData, pdwDataLen);
    case PP_NAME:
      return CopyOut(provider->name.c_str(), provider->name.size() + 1, pbData, pdwDataLen);
    case PP_CONTAINER:
      return CopyOut("", 1, pbData, pdwDataLen);
    default:
      return Fail(NTE_BAD_TYPE);
  }
}
