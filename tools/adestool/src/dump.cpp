// dump.cpp: tree and hex dumps of bytes.
#include "dump.h"

#include <korvex/core/HexFormatting.h>

namespace adestool {

namespace {

// Hex dumps are made in slices: lines hold eight bytes, so slices of a
// multiple of eight give the same text as one call while keeping the
// library's string small.
constexpr size_t kHexSlice = 64 * 1024;

void AppendHexDump(const std::vector<uint8_t>& bytes, std::string* out) {
  for (size_t pos = 0; pos < bytes.size(); pos += kHexSlice) {
    size_t n = bytes.size() - pos < kHexSlice ? bytes.size() - pos : kHexSlice;
    ATL::CStringT<char> text = GetFormattedHexString(Korvex::CBlob(bytes.data() + pos, n));
    out->append(text.GetString(), static_cast<size_t>(text.GetLength()));
  }
}

}  // namespace

bool DumpBytes(const std::vector<uint8_t>& bytes, DumpMode mode, std::string* out,
               DumpFailure* failure) {
  if (mode == DumpMode::kHex) {
    AppendHexDump(bytes, out);
    return true;
  }
  return DumpAsn1Tree(bytes.data(), bytes.size(), out, failure);
}

std::string ItemHeading(const Input& input, size_t index) {
  if (input.items.size() < 2) return std::string();
  return "# PEM block " + std::to_string(index + 1) + ": " + input.items[index].label + "\n";
}

std::string ItemFailureText(const Input& input, size_t index, const DumpFailure& failure) {
  std::string text = "offset " + std::to_string(failure.offset) + ": " + failure.what;
  if (input.items.size() < 2) return text;
  return "PEM block " + std::to_string(index + 1) + " (" + input.items[index].label + "): " + text;
}

}  // namespace adestool
