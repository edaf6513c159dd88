// korvex/asn1rt/rtUTF8.h: UTF-8 text to and from wide, 32-bit and 16-bit units.
//
// UTF8String values are UTF-8 (RFC 3629, X.680 41); UniversalString holds
// 32-bit units and BMPString 16-bit units (X.680 41.16). Only well-formed
// UTF-8 is read: overlong forms, surrogate code points (U+D800..U+DFFF),
// values above U+10FFFF, stray continuation octets and sequences cut short
// are refused with -26. The same status refuses a unit that cannot be
// written in the target form (a surrogate or a value above U+10FFFF in wide
// or 32-bit input, a character above U+FFFF for 16-bit output, a surrogate in
// 16-bit input).
//
// Output conventions: a null output pointer asks for the size only (nothing
// is written); UTF-8 and wide outputs are NUL-terminated and their capacity
// must hold the terminator too, 16- and 32-bit outputs are counted arrays
// without one. An output area that is too small gives -17 (what was written
// before the shortage was found is unspecified). A null input with a
// non-zero count gives -30.
#ifndef KORVEX_ASN1RT_RTUTF8_H
#define KORVEX_ASN1RT_RTUTF8_H

#include <korvex/platform/export.h>
#include <stddef.h>
#include <wchar.h>

KORVEX_BEGIN_C

// rtUTF8DecodeChar decodes the character at the start of the `length` bytes
// at `text` and stores its code point in `*codePoint` (which may be null).
// Returns the bytes it takes (1 to 4), -26 when they are not well-formed
// UTF-8 (including a sequence that runs past `length`), -30 for null text.
KORVEX_API int rtUTF8DecodeChar(const char* text, size_t length, unsigned int* codePoint);

// rtUTF8EncodeChar writes `codePoint` as UTF-8 (no terminator) to `out`.
// Returns the bytes written (1 to 4), -26 for a surrogate or a value above
// U+10FFFF, -17 when `capacity` is too small; null `out` returns the size.
KORVEX_API int rtUTF8EncodeChar(unsigned int codePoint, char* out, size_t capacity);

// rtUTF8Validate checks `length` bytes of UTF-8 (a NUL byte is a character
// here). Returns the number of characters or -26.
KORVEX_API int rtUTF8Validate(const char* text, size_t length);

// rtUTF8Len returns the number of characters of NUL-terminated UTF-8 text,
// -26 when it is not well-formed, -30 for null text.
KORVEX_API int rtUTF8Len(const char* text);

// rtUTF8ToWCS converts NUL-terminated UTF-8 text to NUL-terminated wide text
// (one wchar_t per character). Returns the number of wide characters
// without the terminator; -26, -17 or -30 as above.
KORVEX_API int rtUTF8ToWCS(const char* text, wchar_t* out, size_t capacity);

// rtWCSToUTF8 converts NUL-terminated wide text to NUL-terminated UTF-8.
// Returns the UTF-8 length in bytes without the terminator; -26, -17, -30.
KORVEX_API int rtWCSToUTF8(const wchar_t* text, char* out, size_t capacity);

// rtUTF8ToUCS4 converts `length` bytes of UTF-8 to 32-bit units (the
// contents of a UniversalString). Returns the number of units; -26, -17, -30.
KORVEX_API int rtUTF8ToUCS4(const char* text, size_t length, unsigned int* out, size_t capacity);

// rtUCS4ToUTF8 converts `count` 32-bit units to NUL-terminated UTF-8.
// Returns the UTF-8 length in bytes without the terminator; -26, -17, -30.
KORVEX_API int rtUCS4ToUTF8(const unsigned int* units, size_t count, char* out, size_t capacity);

// rtUTF8ToUCS2 converts `length` bytes of UTF-8 to 16-bit units (the
// contents of a BMPString); a character above U+FFFF gives -26. Returns the
// number of units; -26, -17, -30.
KORVEX_API int rtUTF8ToUCS2(const char* text, size_t length, unsigned short* out, size_t capacity);

// rtUCS2ToUTF8 converts `count` 16-bit units to NUL-terminated UTF-8; a
// surrogate unit gives -26. Returns the UTF-8 length without the
// terminator; -26, -17, -30.
KORVEX_API int rtUCS2ToUTF8(const unsigned short* units, size_t count, char* out, size_t capacity);

KORVEX_END_C

#endif
