// korvex/platform/win32/stringapiset.h: Win32 code-page conversions.
//
// Supported code pages: CP_ACP (0, the process's current C locale, through
// the C library's multibyte functions) and CP_UTF8 (65001). Wide characters
// are 32-bit (wchar_t on Linux). Calling conventions are those of Windows:
// a length of -1 means "up to and including the NUL", an output size of 0
// asks for the size needed, failures return 0 and set the last error
// (ERROR_INVALID_PARAMETER, ERROR_INSUFFICIENT_BUFFER,
// ERROR_NO_UNICODE_TRANSLATION, ERROR_INVALID_FLAGS).
#ifndef KORVEX_PLATFORM_WIN32_STRINGAPISET_H
#define KORVEX_PLATFORM_WIN32_STRINGAPISET_H

#include <korvex/platform/win32/windef.h>

#define CP_ACP 0u
#define CP_UTF8 65001u
#define MB_ERR_INVALID_CHARS 0x00000008u
#define WC_ERR_INVALID_CHARS 0x00000080u

KORVEX_BEGIN_C

// MultiByteToWideChar converts cbMultiByte bytes of text (or up to and
// including its NUL when -1) in codePage to wide characters. Returns the
// number of wide characters written (or needed, when cchWideChar is 0).
KORVEX_API int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR multiByteStr,
                                   int cbMultiByte, LPWSTR wideCharStr, int cchWideChar);

// WideCharToMultiByte converts cchWideChar wide characters (or up to and
// including the NUL when -1) to codePage. Returns the number of bytes written
// (or needed, when cbMultiByte is 0). defaultChar and usedDefaultChar must be
// null for CP_UTF8, as on Windows.
KORVEX_API int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wideCharStr,
                                   int cchWideChar, LPSTR multiByteStr, int cbMultiByte,
                                   LPCSTR defaultChar, LPBOOL usedDefaultChar);

KORVEX_END_C

#endif
