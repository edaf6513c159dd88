// Big-integer text: whatever text parses must print and parse back to the same
// octets in every radix, and any octets must come back minimal.
#include <korvex/asn1rt/rtBigInt.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

namespace {

std::vector<unsigned char> Octets(const char* text) {
  int n = rtBigIntFromText(text, RT_BIGINT_RADIX_AUTO, nullptr, 0);
  if (n < 0) return {};
  std::vector<unsigned char> out(static_cast<size_t>(n));
  if (rtBigIntFromText(text, RT_BIGINT_RADIX_AUTO, out.data(), out.size()) != n) abort();
  return out;
}

std::string Text(std::vector<unsigned char> const& octets, int radix) {
  int n = rtBigIntToText(octets.data(), octets.size(), radix, nullptr, 0);
  if (n < 0) abort();
  std::string out(static_cast<size_t>(n) + 1, '\0');
  if (rtBigIntToText(octets.data(), octets.size(), radix, &out[0], out.size()) != n) abort();
  out.resize(static_cast<size_t>(n));
  return out;
}

bool Minimal(std::vector<unsigned char> const& o) {
  if (o.empty()) return false;
  if (o.size() == 1) return true;
  return !((o[0] == 0x00 && !(o[1] & 0x80)) || (o[0] == 0xFF && (o[1] & 0x80)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 4096) return 0;  // decimal conversion is quadratic; keep runs quick
  std::string text(reinterpret_cast<const char*>(data), size);
  std::vector<unsigned char> octets = Octets(text.c_str());
  if (!octets.empty()) {
    if (!Minimal(octets)) abort();
    for (int radix : {2, 10, 16}) {
      std::string printed = Text(octets, radix);
      if (Octets(printed.c_str()) != octets) abort();
      int order = 2;
      if (rtBigIntCompareText(printed.c_str(), text.c_str(), &order) != 0 || order != 0) abort();
    }
  }
  // The raw bytes as content octets.
  std::vector<unsigned char> raw(data, data + size);
  std::string printed = Text(raw, 16);
  std::vector<unsigned char> back = Octets(printed.c_str());
  if (!Minimal(back)) abort();
  return 0;
}
