// codec_fixture.cpp: hex helpers of the codec tests.
#include "codec_fixture.h"

#include <cctype>

namespace Korvex {
namespace Test {

std::vector<unsigned char> FromHex(const std::string& hex) {
  std::vector<unsigned char> out;
  int high = -1;
  for (char ch : hex) {
    if (!std::isxdigit(static_cast<unsigned char>(ch))) continue;
    int v = std::isdigit(static_cast<unsigned char>(ch)) ? ch - '0' : (std::toupper(ch) - 'A' + 10);
    if (high < 0) {
      high = v;
    } else {
      out.push_back(static_cast<unsigned char>(high * 16 + v));
      high = -1;
    }
  }
  return out;
}

std::string ToHex(const std::vector<unsigned char>& bytes) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string out;
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (i) out += ' ';
    out += kDigits[bytes[i] >> 4];
    out += kDigits[bytes[i] & 15];
  }
  return out;
}

}  // namespace Test
}  // namespace Korvex
