// Hex text of blobs and hex dumps on arbitrary text.
//
// Oracles: the table-driven parser must agree with a literal character-class
// parser; the bytes it yields must survive writeToHexString and a second
// parse, ungrouped and grouped; the hex dump must have the exact length that
// its line layout gives.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <korvex/core/Blob.h>
#include <korvex/core/HexFormatting.h>

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

// ReferenceParse follows the parsing rules step by step with the C library's
// character classes.
std::vector<unsigned char> ReferenceParse(char const* text) {
  std::vector<unsigned char> out;
  auto digit = [](char c) {
    return c >= '0' && c <= '9' ? c - '0' : std::toupper(static_cast<unsigned char>(c)) - 55;
  };
  char const* p = text;
  while (std::isspace(static_cast<unsigned char>(*p))) ++p;
  while (*p && std::isxdigit(static_cast<unsigned char>(p[0])) &&
         std::isxdigit(static_cast<unsigned char>(p[1]))) {
    out.push_back(static_cast<unsigned char>(digit(p[0]) << 4 | digit(p[1])));
    p += 2;
    while (std::isspace(static_cast<unsigned char>(*p))) ++p;
  }
  return out;
}

bool Same(Korvex::CBlob const& blob, std::vector<unsigned char> const& bytes) {
  return blob.cbData() == bytes.size() &&
         (bytes.empty() || std::memcmp(blob.pbData(), bytes.data(), bytes.size()) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
  std::string text(reinterpret_cast<char const*>(data), size);  // NUL-terminated by c_str()
  Korvex::CBlob parsed;
  parsed.readFromHexString(text.c_str());
  Check(Same(parsed, ReferenceParse(text.c_str())));

  Korvex::CStringProxy hex = parsed.writeToHexString(0);
  Check(std::strlen(hex.c_str()) == 2 * parsed.cbData());
  Korvex::CBlob again;
  again.readFromHexString(hex.c_str());
  Check(again == parsed);

  unsigned long group = size != 0 ? data[0] % 9 + 1 : 1;
  Korvex::CBlob grouped(again);
  grouped.readFromHexString(parsed.writeToHexString(group).c_str());
  Check(grouped == parsed);

  ATL::CStringA dump = GetFormattedHexString(parsed);
  unsigned long full = parsed.cbData() / 8, rest = parsed.cbData() % 8;
  unsigned long expected = full * 35 + (rest != 0 ? 2 * rest + 19 : 0);
  Check(static_cast<unsigned long>(dump.GetLength()) == expected);
  return 0;
}
