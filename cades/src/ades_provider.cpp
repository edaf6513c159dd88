// CheckProvider: the provider-type strict mode of signing. When the
// configuration turns it on, only the GOST R 34.10 provider types (75, 80,
// 81) may sign.
#include <korvex/cades/ades_core.h>
#include <korvex/platform/capi/errors.h>
#include <korvex/platform/capi/provider.h>
#include <korvex/platform/support/support.h>
#include <korvex/platform/win32/errhandlingapi.h>

#include "ades_trace.h"

namespace {

constexpr char kStrictModeKey[] = "\\config\\CAdES\\ProviderTypeStrictMode";

bool IsStrictModeOn() {
  long value = 0;
  // A missing value, or one that is not a number, leaves strict mode off.
  return support_registry_get_long(kStrictModeKey, &value) == SUPPORT_REGISTRY_OK && value != 0;
}

bool IsAcceptedType(DWORD type) {
  return type == PROV_KORVEX_GOST_2001 || type == PROV_KORVEX_GOST_2012_256 ||
         type == PROV_KORVEX_GOST_2012_512;
}

}  // namespace

HRESULT CheckProvider(ATL::CCryptProv& prov) {
  if (!IsStrictModeOn()) return S_OK;
  ADES_TRACE(ADES_TRACE_LEVEL_DEBUG, "CheckProvider", "Strict Mode for provider type is set\n");

  DWORD type = 0;
  DWORD size = sizeof type;
  // A failure without a last error leaves type 0, which no accepted type is.
  if (!CryptGetProvParam(prov.GetHandle(), PP_PROVTYPE, reinterpret_cast<BYTE*>(&type), &size, 0) &&
      GetLastError() != 0) {
    return NTE_BAD_PROVIDER;
  }
  if (IsAcceptedType(type)) return S_OK;
  ADES_TRACE(ADES_TRACE_LEVEL_DEBUG, "CheckProvider",
             "Strict Mode for provider type is set and provider type mismatch \n");
  return NTE_BAD_PROVIDER;
}
