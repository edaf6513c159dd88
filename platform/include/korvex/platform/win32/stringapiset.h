// korvex/platform/win32/stringapiset.h: Win32 code-page conversions.
//
// Supported code pages: CP_ACP (0, the process's current C locale, through
// the C library's multibyte functions) and CP_UTF8 (65001, strict UTF-8 as
// RFC 3629 defines it: no overlong forms, no surrogates, nothing above
// U+10FFFF). Wide characters are 32-bit (wchar_t on Linux) and hold whole
// code points, never surrogate pairs. Calling conventions are those of
// Windows: a length of -1 means "up to and including the NUL" (and the NUL
// is then counted in the result), an output size of 0 asks for the size
// needed, failures return 0 and set the last error:
//   ERROR_INVALID_PARAMETER      null input, input length 0 or below -1,
//                                negative output size, null output with a
//                                non-zero size, output at the input's
//                                address, a code page other than the two
//                                above, defaultChar/usedDefaultChar given
//                                for CP_UTF8 or a defaultChar holding no
//                                valid character;
//   ERROR_INVALID_FLAGS          a flag the code page does not accept;
//   ERROR_INSUFFICIENT_BUFFER    the output does not fit (the characters that
//                                fit have been written; none is split), or
//                                the result would exceed INT_MAX;
//   ERROR_NO_UNICODE_TRANSLATION invalid input under MB_ERR_INVALID_CHARS or
//                                WC_ERR_INVALID_CHARS.
// A successful call leaves the last error unchanged.
#ifndef KORVEX_PLATFORM_WIN32_STRINGAPISET_H
#define KORVEX_PLATFORM_WIN32_STRINGAPISET_H

#include <korvex/platform/win32/windef.h>

#define CP_ACP 0u
#define CP_UTF8 65001u
#define MB_PRECOMPOSED 0x00000001u
#define MB_ERR_INVALID_CHARS 0x00000008u
#define WC_ERR_INVALID_CHARS 0x00000080u
#define WC_NO_BEST_FIT_CHARS 0x00000400u

KORVEX_BEGIN_C

// MultiByteToWideChar converts cbMultiByte bytes of text (or up to and
// including its NUL when -1) in codePage to wide characters. Returns the
// number of wide characters written (or needed, when cchWideChar is 0).
// Flags: CP_UTF8 accepts 0 or MB_ERR_INVALID_CHARS, CP_ACP also
// MB_PRECOMPOSED (the C library's output is precomposed already).
// Invalid input: with MB_ERR_INVALID_CHARS the call fails with
// ERROR_NO_UNICODE_TRANSLATION; without it each maximal ill-formed
// subsequence of UTF-8 (Unicode Standard, chapter 3) becomes one U+FFFD, and
// for CP_ACP each byte the locale cannot decode (or an incomplete character
// at the end) becomes one U+FFFD.
KORVEX_API int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR multiByteStr,
                                   int cbMultiByte, LPWSTR wideCharStr, int cchWideChar);

// WideCharToMultiByte converts cchWideChar wide characters (or up to and
// including the NUL when -1) to codePage. Returns the number of bytes written
// (or needed, when cbMultiByte is 0). defaultChar and usedDefaultChar must be
// null for CP_UTF8, as on Windows.
// CP_UTF8 accepts the flags 0 or WC_ERR_INVALID_CHARS: a surrogate code point
// or a value above 0x10FFFF becomes U+FFFD (EF BF BD), or fails the call with
// ERROR_NO_UNICODE_TRANSLATION under WC_ERR_INVALID_CHARS.
// CP_ACP accepts 0 or WC_NO_BEST_FIT_CHARS (no best-fit mapping is ever
// made): a character the locale cannot represent becomes the first character
// of defaultChar (or "?" when null) and sets *usedDefaultChar, which is
// otherwise set FALSE when given.
KORVEX_API int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wideCharStr,
                                   int cchWideChar, LPSTR multiByteStr, int cbMultiByte,
                                   LPCSTR defaultChar, LPBOOL usedDefaultChar);

KORVEX_END_C

#endif
