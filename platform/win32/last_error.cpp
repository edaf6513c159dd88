// Per-thread last-error value, as Win32 keeps it in the thread environment block.
#include <korvex/platform/win32/errhandlingapi.h>

namespace {
thread_local DWORD t_lastError = 0;
}

extern "C" DWORD GetLastError(void) { return t_lastError; }

extern "C" void SetLastError(DWORD error) { t_lastError = error; }
