// Hex dumps for diagnostics and display.
#include <korvex/core/HexFormatting.h>

#include <climits>

#include <korvex/platform/atl/atlexcept.h>

namespace {

constexpr unsigned long kBytesPerLine = 8;
// A full line: 8 pairs with 7 separators, 3 spaces, 8 characters, "\n".
constexpr int kFullLineLength = 3 * kBytesPerLine - 1 + 3 + kBytesPerLine + 1;

}  // namespace

bool IsPrintForHex(unsigned char c) { return c >= 0x21 && c <= 0x7E; }

ATL::CStringT<char> GetFormattedHexString(Korvex::CBlob data) {
  ATL::CStringT<char> result;
  unsigned long size = data.cbData();
  unsigned long lines = size / kBytesPerLine + (size % kBytesPerLine != 0 ? 1 : 0);
  // Lengths of CStringT are int: a dump too long for one is an argument error.
  if (lines > static_cast<unsigned long>(INT_MAX / kFullLineLength)) {
    ATL::AtlThrowImpl(E_INVALIDARG);
  }
  result.Preallocate(static_cast<int>(lines) * kFullLineLength);

  for (unsigned long offset = 0; offset < size; offset += kBytesPerLine) {
    unsigned long n = size - offset < kBytesPerLine ? size - offset : kBytesPerLine;
    Korvex::CBlob chunk(data.pbData() + offset, n);
    result += chunk.writeToHexString(1).c_str();
    // Two spaces per missing byte (a pair without its separator), kept so
    // that existing dumps stay byte-for-byte the same.
    for (unsigned long missing = n; missing < kBytesPerLine; ++missing) result += "  ";
    result += "   ";
    for (unsigned long i = 0; i < n; ++i) {
      unsigned char c = chunk.pbData()[i];
      result += IsPrintForHex(c) ? static_cast<char>(c) : '.';
    }
    result += "\n";
  }
  return result;
}
