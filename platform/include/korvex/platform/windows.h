// korvex/platform/windows.h: every Win32 stand-in header of the platform layer.
#ifndef KORVEX_PLATFORM_WINDOWS_H
#define KORVEX_PLATFORM_WINDOWS_H

#include <korvex/platform/win32/windef.h>
#include <korvex/platform/win32/winerror.h>
#include <korvex/platform/win32/errhandlingapi.h>
#include <korvex/platform/win32/timeapi.h>
#include <korvex/platform/win32/stringapiset.h>
#include <korvex/platform/capi/wincrypt.h>

#endif
