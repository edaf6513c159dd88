// korvex/platform/atl/atlexcept.h: the one exception type of the hand-written layers.
//
// ATL::CAtlException carries a single 32-bit result code in its public member
// m_hr (an HRESULT, in a few places a bare platform error number) and converts
// to HRESULT, like the classic ATL class. It is thrown by value through
// ATL::AtlThrowImpl and caught by reference or value.
#ifndef KORVEX_PLATFORM_ATL_ATLEXCEPT_H
#define KORVEX_PLATFORM_ATL_ATLEXCEPT_H

#include <korvex/platform/win32/windef.h>
#include <korvex/platform/win32/winerror.h>

namespace ATL {

class KORVEX_API CAtlException {
 public:
  CAtlException() noexcept : m_hr(E_FAIL) {}
  CAtlException(HRESULT hr) noexcept : m_hr(hr) {}  // NOLINT: implicit by design
  operator HRESULT() const noexcept { return m_hr; }

  HRESULT m_hr;
};

// AtlThrowImpl throws CAtlException(code). It never returns.
[[noreturn]] KORVEX_API void AtlThrowImpl(HRESULT code);

// AtlThrowLastWin32 throws the calling thread's last error: a value at or
// below zero (as a signed number) as it is, a positive error e as
// 0x80070000 | (e & 0xFFFF). It never returns.
[[noreturn]] KORVEX_API void AtlThrowLastWin32();

}  // namespace ATL

#ifndef AtlThrow
#define AtlThrow(hr) ::ATL::AtlThrowImpl(hr)
#endif

#endif
