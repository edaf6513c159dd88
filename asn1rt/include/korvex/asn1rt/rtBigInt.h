// korvex/asn1rt/rtBigInt.h: big integers held as text, and their content octets.
//
// INTEGER values that do not fit 32 bits (serial numbers, CRL numbers, nonces,
// key components) are kept by the runtime as NUL-terminated text. These
// functions convert that text to and from the INTEGER content octets of
// X.690 8.3: big-endian, minimal two's complement.
//
// Text grammar (case-insensitive prefixes and digits, no white space):
//   text    = ["-"] ( "0x" hexdigit+ | "0b" bindigit+ | decdigit+ )
// Leading zero digits are allowed ("007" is seven, not octal); "0" and "-0"
// are zero. With an explicit radix the digits are of that radix and its
// prefix ("0x" for 16, "0b" for 2) is optional.
//
// The text produced is minimal: "-" only for negative values, then "0x" and
// lowercase hex digits (radix 16), "0b" and binary digits (radix 2), or
// decimal digits (radix 10), without leading zeros. Zero is "0" in every
// radix.
//
// Statuses: -9 the text is not a big integer, -12 no working memory, -17 the
// output area is too small, -30 an invalid parameter (null pointer,
// unsupported radix). Nothing is written to an output area on failure.
#ifndef KORVEX_ASN1RT_RTBIGINT_H
#define KORVEX_ASN1RT_RTBIGINT_H

#include <korvex/platform/export.h>
#include <stddef.h>

// Radix argument that takes the radix from the text's prefix.
#define RT_BIGINT_RADIX_AUTO 0

KORVEX_BEGIN_C

// rtBigIntFromText parses `text` in `radix` (RT_BIGINT_RADIX_AUTO, 2, 10 or
// 16) and writes the value's minimal two's-complement content octets
// (X.690 8.3.2) to `octets`. With `octets` null nothing is written and the
// number of octets needed is returned. Returns the number of octets (at least
// 1: zero is the single octet 00), -9 for invalid text, -17 when `capacity`
// is below the number needed, -30 for a null text or an unsupported radix.
KORVEX_API int rtBigIntFromText(const char* text, int radix, unsigned char* octets,
                                size_t capacity);

// rtBigIntFromTextUnsigned is rtBigIntFromText for a value that must not be
// negative: it writes the minimal unsigned octets with a leading 00 when the
// first octet's top bit is set (255 gives 00 FF, the same octets as INTEGER
// 255). A negative value gives -9 ("-0" is zero and accepted).
KORVEX_API int rtBigIntFromTextUnsigned(const char* text, int radix, unsigned char* octets,
                                        size_t capacity);

// rtBigIntToText reads `numocts` two's-complement content octets (a first
// octet with its top bit set is negative; redundant leading 00 or FF octets
// are allowed, and no octets at all is zero) and writes the value as
// NUL-terminated text in `radix` (2, 10 or 16) to `text`. With `text` null
// nothing is written. Returns the text length without the NUL; -17 when
// `capacity` cannot hold it and its NUL; -30 for null octets with a non-zero
// count or an unsupported radix.
KORVEX_API int rtBigIntToText(const unsigned char* octets, size_t numocts, int radix, char* text,
                              size_t capacity);

// rtBigIntUnsignedToText is rtBigIntToText reading the octets as an unsigned
// magnitude: 80 is 128, not -128. Same results.
KORVEX_API int rtBigIntUnsignedToText(const unsigned char* octets, size_t numocts, int radix,
                                      char* text, size_t capacity);

// rtBigIntCompareText compares the values of two big-integer texts (any of
// the accepted forms; "0x10" equals "16"). Stores -1, 0 or 1 in `*result`
// when the first is below, equal to or above the second. Returns 0, -9 when
// either text is invalid, or -30 for a null argument.
KORVEX_API int rtBigIntCompareText(const char* left, const char* right, int* result);

KORVEX_END_C

#endif
