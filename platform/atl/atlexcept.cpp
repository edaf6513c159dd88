#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/win32/errhandlingapi.h>

namespace ATL {

void AtlThrowImpl(HRESULT code) { throw CAtlException(code); }

void AtlThrowLastWin32() { AtlThrowImpl(HRESULT_FROM_WIN32(GetLastError())); }

}  // namespace ATL
