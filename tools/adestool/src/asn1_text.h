// asn1_text.h: text forms of primitive contents in dumps.
#ifndef ADESTOOL_ASN1_TEXT_H
#define ADESTOOL_ASN1_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace adestool {

// HexPreview: the bytes as upper-case hex pairs separated by spaces; past
// max bytes only the first max are shown, followed by " ... (N bytes)".
std::string HexPreview(const uint8_t* p, size_t n, size_t max);

// QuoteBytes: the bytes in double quotes. Visible ASCII and the space stand
// as themselves except '"' and '\\' (escaped with '\\'); \n, \r and \t are
// escaped; with utf8, valid UTF-8 sequences of characters from U+00A0 up
// stand as themselves; every other byte is \xNN. Past max bytes the quote
// closes after the first max and " ... (N bytes)" follows.
std::string QuoteBytes(const uint8_t* p, size_t n, bool utf8, size_t max);

// QuoteCodePoints: UTF-32 text (BMPString, UniversalString) in double
// quotes, escaped as QuoteBytes does; characters that are not printable or
// not Unicode scalar values are \uXXXX or \UXXXXXXXX. Past max characters
// the quote closes and " ... (N characters)" follows.
std::string QuoteCodePoints(const std::u32string& text, size_t max);

// DescribeTime: "2024-01-01 00:00:00 UTC" for a UTCTime (utc) or
// GeneralizedTime in the forms DER requires (X.690 11.7, 11.8: seconds
// present, "Z", no trailing zeros in fractions); empty for any other text.
// Two-digit years below 50 are 20YY, the others 19YY (RFC 5280 4.1.2.5.1).
std::string DescribeTime(bool utc, const uint8_t* p, size_t n);

}  // namespace adestool

#endif
