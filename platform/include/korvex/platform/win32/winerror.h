// korvex/platform/win32/winerror.h: Win32 error numbers and HRESULT values.
#ifndef KORVEX_PLATFORM_WIN32_WINERROR_H
#define KORVEX_PLATFORM_WIN32_WINERROR_H

#include <korvex/platform/win32/windef.h>

#define ERROR_SUCCESS 0u
#define NO_ERROR 0u
#define ERROR_FILE_NOT_FOUND 2u
#define ERROR_ACCESS_DENIED 5u
#define ERROR_INVALID_HANDLE 6u
#define ERROR_NOT_ENOUGH_MEMORY 8u
#define ERROR_INVALID_DATA 13u
#define ERROR_OUTOFMEMORY 14u
#define ERROR_NOT_SUPPORTED 50u
#define ERROR_INVALID_PARAMETER 87u
#define ERROR_INSUFFICIENT_BUFFER 122u
#define ERROR_MORE_DATA 234u
#define ERROR_NO_MORE_ITEMS 259u
#define ERROR_INVALID_FLAGS 1004u
#define ERROR_NO_UNICODE_TRANSLATION 1113u
#define ERROR_FILE_CORRUPT 1392u
#define ERROR_INVALID_TIME 1901u
#define ERROR_DS_INVALID_ATTRIBUTE_SYNTAX 8327u

#define S_OK ((HRESULT)0)
#define S_FALSE ((HRESULT)1)
#define E_FAIL ((HRESULT)0x80004005u)
#define E_NOTIMPL ((HRESULT)0x80004001u)
#define E_POINTER ((HRESULT)0x80004003u)
#define E_UNEXPECTED ((HRESULT)0x8000FFFFu)
#define E_OUTOFMEMORY ((HRESULT)0x8007000Eu)
#define E_INVALIDARG ((HRESULT)0x80070057u)

#define FACILITY_WIN32 7

#define SUCCEEDED(hr) (((HRESULT)(hr)) >= 0)
#define FAILED(hr) (((HRESULT)(hr)) < 0)

// HRESULT_FROM_WIN32: a Win32 error number as an HRESULT. Zero and values
// that already look like HRESULTs (<= 0 as signed) pass unchanged.
static inline HRESULT HRESULT_FROM_WIN32(DWORD e) {
  return (HRESULT)e <= 0 ? (HRESULT)e
                         : (HRESULT)((e & 0x0000FFFFu) | (FACILITY_WIN32 << 16) | 0x80000000u);
}

#endif
