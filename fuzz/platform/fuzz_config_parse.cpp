// The configuration parser takes any text: every path it stores is found
// again under any letter case, and every number it accepts prints back.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "config.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const korvex::support::Config config = korvex::support::Config::Parse(text);
  if (config.size() > size) std::abort();
  // Probe with each line's text before '=' in upper case.
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    std::string line(text.substr(start, end - start));
    for (char& c : line) {
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    std::string path = line.substr(0, line.find('='));
    const size_t first = path.find_first_not_of(" \t\r\f\v");
    const size_t last = path.find_last_not_of(" \t\r\f\v");
    path = first == std::string::npos ? std::string() : path.substr(first, last - first + 1);
    if (const std::string* value = config.Find(path)) {
      long number;
      if (korvex::support::ParseLong(*value, &number)) {
        long back;
        if (!korvex::support::ParseLong(std::to_string(number), &back) || back != number) {
          std::abort();
        }
      }
    }
    start = end + 1;
  }
  return 0;
}
