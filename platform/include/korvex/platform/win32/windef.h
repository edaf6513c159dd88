// korvex/platform/win32/windef.h: the Win32 base types with their Windows widths.
//
// Windows is LLP64: DWORD and LONG are 32 bits even where `long` is 64 bits,
// as it is on Linux x86-64. Structures keep the field order of the Windows SDK
// so that code written against the Windows headers reads the same fields.
#ifndef KORVEX_PLATFORM_WIN32_WINDEF_H
#define KORVEX_PLATFORM_WIN32_WINDEF_H

#include <stdint.h>
#include <wchar.h>

#include <korvex/platform/export.h>

typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int32_t BOOL;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef int32_t HRESULT;
typedef uint32_t UINT;
typedef int32_t INT;
typedef char CHAR;
typedef wchar_t WCHAR;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef char* LPSTR;
typedef const char* LPCSTR;
typedef wchar_t* LPWSTR;
typedef const wchar_t* LPCWSTR;
typedef BOOL* LPBOOL;
typedef DWORD* LPDWORD;
typedef BYTE* LPBYTE;
typedef uintptr_t ULONG_PTR;
typedef uintptr_t DWORD_PTR;
typedef int64_t LONGLONG;
typedef uint64_t ULONGLONG;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

typedef struct _FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
} FILETIME, *PFILETIME, *LPFILETIME;

typedef struct _SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
} SYSTEMTIME, *PSYSTEMTIME, *LPSYSTEMTIME;

typedef union _ULARGE_INTEGER {
  struct {
    DWORD LowPart;
    DWORD HighPart;
  } u;
  ULONGLONG QuadPart;
} ULARGE_INTEGER;

#endif
