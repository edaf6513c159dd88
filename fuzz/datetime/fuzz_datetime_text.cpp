// CDateTime(char const*) on arbitrary NUL-terminated text. A refused text
// throws ATL::CAtlException; an accepted one must name the calendar date of
// its first eight digits and, within 1601..9999, read back unchanged from its
// own generalized time.
#include <korvex/core/DateTime.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

unsigned int digitsAt(std::string const& text, std::size_t pos, std::size_t count) {
  unsigned int value = 0;
  for (std::size_t i = pos; i < pos + count; ++i) value = value * 10 + (text[i] - '0');
  return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  // Up to the first NUL, as a C string caller would pass it.
  const std::string text(reinterpret_cast<const char*>(data), size);
  char const* cText = text.c_str();
  try {
    const Korvex::CDateTime date(cText);
    const std::string used(cText);
    // A date needs YYYYMMDD, all digits, and the calendar's approval of them.
    if (used.size() < 8 || date.year() != digitsAt(used, 0, 4) ||
        date.month() != digitsAt(used, 4, 2) || date.day() != digitsAt(used, 6, 2)) {
      std::abort();
    }
    if (date.year() >= 1601 && date.year() <= 9999) {
      const Korvex::CStringProxy generalized = date.getGeneralizedTime();
      if (Korvex::CDateTime(generalized.c_str()) != date) std::abort();
    }
    date.tostring();
    date.towstring();
    date.getGeneralizedTimeTrimMicroseconds();
  } catch (ATL::CAtlException const&) {
    // Refused text: an expected outcome.
  }
  return 0;
}
