// DateTimeTicks: the library's own access to the tick count of CDateTime and
// CDateTimeSpan as one unsigned 64-bit number (internal, not installed).
#ifndef KORVEX_CORE_SRC_DATETIMETICKS_H
#define KORVEX_CORE_SRC_DATETIMETICKS_H

#include <korvex/core/DateTime.h>

#include <cstdint>

namespace Korvex {

// Tick counts that the date-time code shares.
constexpr uint64_t kTicksPerMicrosecond = 10;
constexpr uint64_t kTicksPerSecond = 10000000;
// 1601-01-01 to 1970-01-01 in ticks (hex 19DB1DED53E8000).
constexpr uint64_t kUnixEpochTicks = 116444736000000000ull;

struct DateTimeTicks {
  static uint64_t get(CDateTime const& d) { return join(d.m_highPart, d.m_lowPart); }
  static uint64_t get(CDateTimeSpan const& s) { return join(s.m_highPart, s.m_lowPart); }

  static void set(CDateTime& d, uint64_t ticks) { split(ticks, d.m_highPart, d.m_lowPart); }
  static void set(CDateTimeSpan& s, uint64_t ticks) { split(ticks, s.m_highPart, s.m_lowPart); }

  // date and span build values holding exactly `ticks`, with no rounding.
  static CDateTime date(uint64_t ticks) {
    CDateTime d(0, 0);
    set(d, ticks);
    return d;
  }
  static CDateTimeSpan span(uint64_t ticks) {
    CDateTimeSpan s;
    set(s, ticks);
    return s;
  }

 private:
  static uint64_t join(unsigned int high, unsigned int low) {
    return (static_cast<uint64_t>(high) << 32) | low;
  }
  static void split(uint64_t ticks, unsigned int& high, unsigned int& low) {
    high = static_cast<unsigned int>(ticks >> 32);
    low = static_cast<unsigned int>(ticks);
  }
};

}  // namespace Korvex

#endif
