// The positional reader of generalized-time text (X.680 46, RFC 5280
// 4.1.2.5.2): a fixed digit layout with no calendar checks of its own.
#include "GeneralizedTime.h"

#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/win32/winerror.h>

namespace Korvex {
namespace {

constexpr std::size_t kFractionStart = 15;
constexpr std::size_t kFractionDigits = 6;

// The decimal value of text[pos, pos + count); any non-digit is
// ERROR_INVALID_TIME as an HRESULT.
unsigned int readDigits(std::string const& text, std::size_t pos, std::size_t count) {
  unsigned int value = 0;
  for (std::size_t i = pos; i < pos + count; ++i) {
    const char c = text[i];
    if (c < '0' || c > '9') AtlThrow(HRESULT_FROM_WIN32(ERROR_INVALID_TIME));
    value = value * 10 + static_cast<unsigned int>(c - '0');
  }
  return value;
}

// A field is read only when the text is long enough to hold all its digits.
unsigned int readField(std::string const& text, std::size_t pos, std::size_t count) {
  return text.size() >= pos + count ? readDigits(text, pos, count) : 0;
}

}  // namespace

std::tm GeneralizedTimeToTm(std::string const& text, unsigned int& fraction, bool rawFields) {
  const unsigned int year = readField(text, 0, 4);
  const unsigned int month = readField(text, 4, 2);
  const unsigned int day = readField(text, 6, 2);
  const unsigned int hour = readField(text, 8, 2);
  const unsigned int minute = readField(text, 10, 2);
  const unsigned int second = readField(text, 12, 2);

  fraction = 0;
  if (text.size() > kFractionStart) {
    std::string digits = text.substr(kFractionStart);
    if (digits.back() == 'Z') digits.pop_back();
    if (digits.size() < kFractionDigits) digits.resize(kFractionDigits, '0');
    // Digits beyond the sixth (below a microsecond) are truncated unchecked.
    fraction = readDigits(digits, 0, kFractionDigits);
  }

  std::tm fields = {};
  fields.tm_sec = static_cast<int>(second);
  fields.tm_min = static_cast<int>(minute);
  fields.tm_hour = static_cast<int>(hour);
  fields.tm_mday = static_cast<int>(day);
  fields.tm_year = rawFields ? static_cast<int>(year) : static_cast<int>(year) - 1900;
  fields.tm_mon = rawFields ? static_cast<int>(month) : static_cast<int>(month) - 1;
  return fields;
}

}  // namespace Korvex
