// CDateTimeSpan(char const*) on arbitrary NUL-terminated text. A refused text
// throws ATL::CAtlException; an accepted one must print as digits with at
// most one '.', ending in 'Z', and widen to the same characters.
#include <korvex/core/DateTime.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    const Korvex::CDateTimeSpan span(text.c_str());
    const Korvex::CStringProxy narrow = span.getGeneralizedTime();
    const std::string out = narrow.c_str();
    if (out.empty() || out.back() != 'Z') std::abort();
    if (out.find_first_not_of("0123456789.") != out.size() - 1) std::abort();
    if (out.find('.') != out.rfind('.')) std::abort();
    if (std::strcmp(span.tostring().c_str(), out.c_str()) != 0) std::abort();
    const Korvex::CWStringProxy wide = span.towstring();
    if (std::wcslen(wide.c_str()) != out.size()) std::abort();
    for (std::size_t i = 0; i < out.size(); ++i) {
      if (wide.c_str()[i] != static_cast<wchar_t>(out[i])) std::abort();
    }
  } catch (ATL::CAtlException const&) {
    // Refused text: an expected outcome.
  }
  return 0;
}
