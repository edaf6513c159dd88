// korvex/platform/win32/errhandlingapi.h: the per-thread last-error value.
#ifndef KORVEX_PLATFORM_WIN32_ERRHANDLINGAPI_H
#define KORVEX_PLATFORM_WIN32_ERRHANDLINGAPI_H

#include <korvex/platform/win32/windef.h>

KORVEX_BEGIN_C

// GetLastError returns the calling thread's last-error value (0 at thread start).
KORVEX_API DWORD GetLastError(void);

// SetLastError sets the calling thread's last-error value.
KORVEX_API void SetLastError(DWORD error);

KORVEX_END_C

#endif
