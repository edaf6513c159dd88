// base64.h: strict base64 decoding (RFC 4648 section 4) of text inputs.
#ifndef ADESTOOL_BASE64_H
#define ADESTOOL_BASE64_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace adestool {

struct Base64Error {
  size_t offset = 0;  // offset of the character at fault; the text's size when
                      // the text ends too early
  std::string what;   // "invalid base64 character '!'"
};

// IsBase64Space: the whitespace that base64 and PEM text may hold anywhere
// (space, tab, line feed, carriage return, form feed, vertical tab).
bool IsBase64Space(unsigned char c);

// DecodeBase64 decodes text, ignoring whitespace, into *out. Strict: only the
// RFC 4648 alphabet, a length (without whitespace) that is a multiple of 4,
// '=' padding only at the very end, and zero bits in the padding positions
// of the last group (so every byte string has exactly one accepted text).
// Returns false with *error filled on the first fault; *out is then
// unspecified. Text holding only whitespace decodes to nothing.
bool DecodeBase64(std::string_view text, std::vector<uint8_t>* out, Base64Error* error);

// ShowChar: a character for a message: 'x' for a visible ASCII character,
// otherwise its byte value as \xNN.
std::string ShowChar(unsigned char c);

}  // namespace adestool

#endif
