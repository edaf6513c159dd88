// input.h: reading an input file and recognising its form.
//
// An input is DER (or BER), PEM or bare base64; the form is detected, never
// declared. Detection: an input that is valid UTF-8 text without control
// characters other than whitespace is text (a leading UTF-8 byte-order mark
// is dropped); anything else is DER. Text with a line that starts with
// "-----BEGIN " is PEM, and every block becomes one item; other text is bare
// base64 (whitespace allowed anywhere), decoded strictly.
#ifndef ADESTOOL_INPUT_H
#define ADESTOOL_INPUT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace adestool {

enum class InputForm { kDer, kPem, kBase64 };

// The largest input adestool reads, in bytes (256 MiB).
constexpr size_t kMaxInputSize = size_t{256} << 20;

struct InputItem {
  std::string label;           // the PEM label ("CERTIFICATE"), empty otherwise
  std::vector<uint8_t> bytes;  // DER/BER bytes, never empty
};

struct Input {
  std::string name;  // for messages: the path as given, or "<stdin>"
  InputForm form = InputForm::kDer;
  std::vector<InputItem> items;  // one item, or one per PEM block
};

// InputFormName: "DER", "PEM" or "base64".
const char* InputFormName(InputForm form);

// ReadInputBytes reads the whole file at path ("-": standard input). Throws
// ToolError (status 2) naming the file when it cannot be opened or read, or
// is larger than kMaxInputSize.
std::vector<uint8_t> ReadInputBytes(const std::string& path);

// DecodeInput recognises the form of bytes read from name and decodes it.
// Throws ToolError (status 2, "adestool: NAME: ...") for an empty input and
// for text that is neither valid PEM nor valid base64.
Input DecodeInput(const std::string& name, const std::vector<uint8_t>& bytes);

// DisplayName: "<stdin>" for "-", otherwise path.
std::string DisplayName(const std::string& path);

}  // namespace adestool

#endif
