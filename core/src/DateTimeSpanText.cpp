// CDateTimeSpan to and from generalized-time-like text, fields read as counts.
#include <korvex/core/DateTime.h>
#include <korvex/platform/win32/stringapiset.h>

#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "DateTimeDigits.h"
#include "DateTimeTicks.h"
#include "GeneralizedTime.h"

namespace Korvex {
namespace {

constexpr uint64_t kSecondsPerYear = 31536000;  // 365 days
constexpr uint64_t kSecondsPerMonth = 2592000;  // 30 days
constexpr uint64_t kSecondsPerDay = 86400;
// Wide buffers of 2^30 characters or more are refused before allocation.
constexpr std::size_t kMaxWideChars = std::size_t{1} << 30;

}  // namespace

CDateTimeSpan::CDateTimeSpan(char const* text) {
  unsigned int fraction = 0;
  // A null text reads like the empty text: the zero span.
  const std::tm fields = GeneralizedTimeToTm(text ? text : "", fraction, true);
  // At most 9999 * 365 + 99 * 30 + 99 days: fits 32-bit signed arithmetic.
  const int days = fields.tm_year * 365 + fields.tm_mon * 30 + fields.tm_mday;
  const uint64_t seconds =
      ((static_cast<uint64_t>(days) * 24 + static_cast<uint64_t>(fields.tm_hour)) * 60 +
       static_cast<uint64_t>(fields.tm_min)) *
          60 +
      static_cast<uint64_t>(fields.tm_sec);
  DateTimeTicks::set(*this, seconds * kTicksPerSecond + fraction * kTicksPerMicrosecond);
}

CStringProxy CDateTimeSpan::getGeneralizedTime() const {
  const uint64_t ticks = DateTimeTicks::get(*this);
  const uint64_t totalSeconds = ticks / kTicksPerSecond;
  const uint64_t us = ticks % kTicksPerSecond / kTicksPerMicrosecond;
  const uint64_t years = totalSeconds / kSecondsPerYear;
  uint64_t rest = totalSeconds - years * kSecondsPerYear;
  const uint64_t months = rest / kSecondsPerMonth;
  rest -= months * kSecondsPerMonth;
  const uint64_t days = rest / kSecondsPerDay;
  rest -= days * kSecondsPerDay;
  char buffer[48];
  char* end = writeZeroPadded(buffer, years, 4);
  for (uint64_t field : {months, days, rest / 3600, rest / 60 % 60, rest % 60}) {
    end = writeZeroPadded(end, field, 2);
  }
  *end++ = '.';
  end = writeZeroPadded(end, us, 6);
  // The trim does not stop at the decimal point: trailing zeros of the
  // seconds and of earlier fields go too ("0000000000001Z" is 10 seconds).
  while (end != buffer && (end[-1] == '0' || end[-1] == '.')) --end;
  *end++ = 'Z';
  *end = '\0';
  return CStringProxy(buffer);
}

CStringProxy CDateTimeSpan::tostring() const { return getGeneralizedTime(); }

CWStringProxy CDateTimeSpan::towstring() const {
  const CStringProxy narrow = getGeneralizedTime();
  char const* text = narrow.c_str();
  if (text == nullptr) return CWStringProxy(nullptr);
  const std::size_t count = std::strlen(text) + 1;
  if (count >= kMaxWideChars) return CWStringProxy(nullptr);
  std::vector<wchar_t> wide(count);
  if (MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), static_cast<int>(count)) == 0) {
    return CWStringProxy(nullptr);  // the proxy turns a failed conversion into ""
  }
  return CWStringProxy(wide.data());
}

}  // namespace Korvex
