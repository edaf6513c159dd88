// Helpers shared by the date-time tests.
#ifndef KORVEX_TESTS_CORE_DATE_TIME_TEST_UTIL_H
#define KORVEX_TESTS_CORE_DATE_TIME_TEST_UTIL_H

#include <korvex/core/DateTime.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string>
#include "../common/thrown_code.h"

namespace datetime_test {

constexpr uint64_t kUnixEpochTicks = 116444736000000000ull;
constexpr uint64_t kTicksPerSecond = 10000000ull;
constexpr uint64_t kTicksPerHour = 3600 * kTicksPerSecond;
constexpr uint64_t kTicksPerDay = 24 * kTicksPerHour;

inline uint64_t ticksOf(Korvex::CDateTime const& d) {
  const _FILETIME ft = d.getFileTime();
  return (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
}

inline uint64_t ticksOf(Korvex::CDateTimeSpan s) {
  return (static_cast<uint64_t>(s.getHighPart()) << 32) | s.getLowPart();
}

inline _FILETIME fileTimeOf(uint64_t ticks) {
  _FILETIME ft;
  ft.dwLowDateTime = static_cast<DWORD>(ticks);
  ft.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
  return ft;
}

// A date holding `ticks`, rounded down to a multiple of 10 as every FILETIME is.
inline Korvex::CDateTime dateOf(uint64_t ticks) { return Korvex::CDateTime(fileTimeOf(ticks)); }

// A span holding exactly `ticks`, built from one-tick steps.
inline Korvex::CDateTimeSpan spanOfTicks(uint64_t ticks) {
  const Korvex::CDateTimeSpan tick = Korvex::CDateTimeSpan::OneMillisecond() / 10000u;
  Korvex::CDateTimeSpan s = tick * static_cast<unsigned int>(ticks >> 32);
  s *= 0x10000u;
  s *= 0x10000u;
  return s + tick * static_cast<unsigned int>(ticks);
}

// CodeOf: the HRESULT that f throws as ATL::CAtlException, 0 when it
// returns (tests/common).
using korvextest::CodeOf;

// Sets TZ for the lifetime of the object and restores the previous value.
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(char const* tz) {
    char const* old = std::getenv("TZ");
    m_hadOld = old != nullptr;
    if (m_hadOld) m_old = old;
    setenv("TZ", tz, 1);
    tzset();
  }
  ~ScopedTimeZone() {
    if (m_hadOld) {
      setenv("TZ", m_old.c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  ScopedTimeZone(ScopedTimeZone const&) = delete;
  ScopedTimeZone& operator=(ScopedTimeZone const&) = delete;

 private:
  bool m_hadOld = false;
  std::string m_old;
};

}  // namespace datetime_test

#endif
