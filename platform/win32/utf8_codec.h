// Strict UTF-8 codec shared by the code-page functions (internal, not installed).
//
// Well-formed sequences are those of the Unicode Standard, table 3-7 (the
// same set RFC 3629 section 4 allows): no overlong forms, no surrogate code
// points (U+D800..U+DFFF) and nothing above U+10FFFF.
#ifndef KORVEX_PLATFORM_WIN32_UTF8_CODEC_H
#define KORVEX_PLATFORM_WIN32_UTF8_CODEC_H

#include <cstddef>
#include <cstdint>

namespace korvex::utf8 {

inline constexpr uint32_t kReplacementChar = 0xFFFD;
inline constexpr uint32_t kInvalid = 0xFFFFFFFFu;

// IsScalarValue: a code point that UTF-8 may carry (not a surrogate, at most U+10FFFF).
inline bool IsScalarValue(uint32_t cp) { return cp < 0xD800 || (cp > 0xDFFF && cp <= 0x10FFFF); }

// Decode reads one character from s[0..n) (n >= 1). It returns the code point
// and sets *used to its length, or returns kInvalid and sets *used to the
// length of the maximal subpart of the ill-formed sequence (at least 1), so
// that a caller replacing each subpart with U+FFFD follows the practice the
// Unicode Standard recommends (chapter 3, "U+FFFD Substitution of Maximal
// Subparts").
uint32_t Decode(const unsigned char* s, size_t n, size_t* used);

// Encode writes the UTF-8 form of the scalar value cp into out and returns
// its length (1 to 4). cp must satisfy IsScalarValue.
size_t Encode(uint32_t cp, unsigned char out[4]);

}  // namespace korvex::utf8

#endif
