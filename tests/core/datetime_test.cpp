#include <gtest/gtest.h>
#include <korvex/core/DateTime.h>
#include <korvex/platform/win32/timeapi.h>

#include "date_time_test_util.h"

using Korvex::CDateTime;
using Korvex::CDateTimeSpan;
using namespace datetime_test;

namespace {

constexpr HRESULT kFail = static_cast<HRESULT>(0x80004005u);
constexpr HRESULT kInvalidParameter = static_cast<HRESULT>(0x80070057u);

TEST(DateTimeConstruct, FromUnixSecondsAndMicroseconds) {
  struct Case {
    const char* what;
    CDateTime date;
    uint64_t ticks;
  } cases[] = {
      {"epoch (int)", CDateTime(0, 0), kUnixEpochTicks},
      {"epoch (long long)", CDateTime(0LL, 0u), kUnixEpochTicks},
      {"epoch (long)", CDateTime(0L, 0u), kUnixEpochTicks},
      {"half a second before 2024-02", CDateTime(1706745599LL, 500000u), 133512191995000000ull},
      {"123 microseconds", CDateTime(0LL, 123u), 116444736000001230ull},
      {"one second before the epoch", CDateTime(-1LL, 0u), kUnixEpochTicks - kTicksPerSecond},
      {"1601-01-01", CDateTime(-11644473600LL, 0u), 0},
      // microseconds * 10 is a 32-bit product: 4294967300 wraps to 4.
      {"32-bit microsecond product", CDateTime(0LL, 429496730u), kUnixEpochTicks + 4},
      {"microseconds beyond a second", CDateTime(0LL, 2500000u), kUnixEpochTicks + 25000000},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(c.ticks, ticksOf(c.date));
  }
}

TEST(DateTimeConstruct, FromFileTimeRoundsDownToMicroseconds) {
  EXPECT_EQ(123456780u, ticksOf(CDateTime(fileTimeOf(123456789))));
  EXPECT_EQ(0xFFFFFFFFFFFFFFFAull, ticksOf(CDateTime(fileTimeOf(0xFFFFFFFFFFFFFFFFull))));
  EXPECT_EQ(4294967300ull, ticksOf(CDateTime(fileTimeOf(0x100000009ull))));
}

TEST(DateTimeConstruct, FromSystemTime) {
  _SYSTEMTIME st = {};
  st.wYear = 2024;
  st.wMonth = 2;
  st.wDay = 29;
  st.wHour = 12;
  st.wDayOfWeek = 6;  // wrong on purpose: ignored
  EXPECT_EQ(133536816000000000ull, ticksOf(CDateTime(st)));
  st.wMonth = 13;
  EXPECT_EQ(kInvalidParameter, CodeOf([&] { CDateTime d(st); }));
}

TEST(DateTimeConstruct, FromFieldsAddsMicroseconds) {
  const CDateTime d(2020, 2, 29, 12, 0, 0, 5, 7);
  EXPECT_EQ(132274512000050070ull, ticksOf(d));
  EXPECT_EQ(5u, d.millisecond());
  EXPECT_EQ(7u, d.microsecond());
  EXPECT_EQ(2020u, d.year());
  EXPECT_EQ(2u, d.month());
  EXPECT_EQ(29u, d.day());
  EXPECT_EQ(12u, d.hour());
  EXPECT_EQ(0u, d.minute());
  EXPECT_EQ(0u, d.second());
  // The microsecond is not range-checked: 1000 us carry into the millisecond.
  const CDateTime carried(2020, 2, 29, 12, 0, 0, 5, 1000);
  EXPECT_EQ(6u, carried.millisecond());
  EXPECT_EQ(0u, carried.microsecond());
}

TEST(DateTimeConstruct, FromFieldsRefusedByCalendarThrowsLastError) {
  struct Case {
    const char* what;
    unsigned int f[8];
  } cases[] = {
      {"29 February 2019", {2019, 2, 29, 0, 0, 0, 0, 0}},
      {"year 1600", {1600, 12, 31, 0, 0, 0, 0, 0}},
      {"month 0", {2024, 0, 1, 0, 0, 0, 0, 0}},
      {"hour 24", {2024, 1, 1, 24, 0, 0, 0, 0}},
      {"millisecond 1000", {2024, 1, 1, 0, 0, 0, 1000, 0}},
      {"year 2024 + 65536 (no 16-bit wrap)", {67560, 1, 1, 0, 0, 0, 0, 0}},
      {"day 65537 (no 16-bit wrap)", {2024, 1, 65537, 0, 0, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(kInvalidParameter, CodeOf([&] {
                CDateTime d(c.f[0], c.f[1], c.f[2], c.f[3], c.f[4], c.f[5], c.f[6], c.f[7]);
              }));
  }
}

TEST(DateTimeValue, CopyAssignAndSwap) {
  CDateTime a(dateOf(1000));
  const uint64_t high = 18446744069414584330ull;  // 0xFFFFFFFF0000000A
  CDateTime b(dateOf(high));
  CDateTime c(a);
  EXPECT_EQ(1000u, ticksOf(c));
  c = b;
  EXPECT_EQ(high, ticksOf(c));
  a.swap(b);
  EXPECT_EQ(high, ticksOf(a));
  EXPECT_EQ(1000u, ticksOf(b));
}

TEST(DateTimeValue, UnixTimeWrapsBefore1970) {
  EXPECT_EQ(0u, CDateTime(0, 0).getTime());
  EXPECT_EQ(1706745599u, CDateTime(1706745599LL, 999999u).getTime());
  // (ticks - epoch) is unsigned: one second before the epoch is 2^64/10^7 - 1.
  EXPECT_EQ(1844674407369ull, CDateTime(-1LL, 0u).getTime());
}

TEST(DateTimeValue, FieldsComeFromTheCalendar) {
  const CDateTime d = dateOf(133512191995000000ull + 1230);  // 2024-01-31 23:59:59.500123
  EXPECT_EQ(2024u, d.year());
  EXPECT_EQ(1u, d.month());
  EXPECT_EQ(31u, d.day());
  EXPECT_EQ(23u, d.hour());
  EXPECT_EQ(59u, d.minute());
  EXPECT_EQ(59u, d.second());
  EXPECT_EQ(500u, d.millisecond());
  EXPECT_EQ(123u, d.microsecond());
  const _SYSTEMTIME st = d.getSystemTime();
  EXPECT_EQ(3, st.wDayOfWeek);  // Wednesday
  EXPECT_EQ(500, st.wMilliseconds);
  const _FILETIME ft = d.getFileTime();
  EXPECT_EQ(0x01DA54A1u, ft.dwHighDateTime);
  EXPECT_EQ(static_cast<DWORD>(133512191995001230ull), ft.dwLowDateTime);
}

TEST(DateTimeValue, SystemTimeOfValueFromTwoToTheSixtyThreeIsAllZero) {
  const CDateTime beyond = dateOf(0x8000000000000000ull + 10);
  ASSERT_EQ(9223372036854775810ull, ticksOf(beyond));  // 2^63 + 2
  const _SYSTEMTIME st = beyond.getSystemTime();
  EXPECT_EQ(0, st.wYear);
  EXPECT_EQ(0, st.wMonth);
  EXPECT_EQ(0, st.wDay);
  EXPECT_EQ(0u, beyond.year());
  EXPECT_EQ(2u, dateOf(0x7FFFFFFFFFFFFFFFull).hour());  // 30828-09-14 02:48:05
}

TEST(DateTimeValue, NowIsCurrentUtcAtMicrosecondResolution) {
  _FILETIME before, after;
  GetSystemTimeAsFileTime(&before);
  const CDateTime now = CDateTime::Now();
  GetSystemTimeAsFileTime(&after);
  const uint64_t t = ticksOf(now);
  EXPECT_EQ(0u, t % 10);
  EXPECT_LE(ticksOf(CDateTime(before)), t);
  EXPECT_GE(ticksOf(CDateTime(after)), t);
}

TEST(DateTimeCompare, UnsignedWordByWord) {
  // Equal high words: the low words decide, as unsigned numbers.
  const CDateTime lowBitSet = dateOf(0x0000000180000000ull);
  const CDateTime lowBitClear = dateOf(0x000000017FFFFFF0ull);
  // The high word dominates whatever the low words hold.
  const CDateTime highWord2 = dateOf(0x0000000200000000ull);
  const CDateTime top = dateOf(0xFFFFFFFFFFFFFFF0ull);
  struct Case {
    CDateTime l, r;
    int order;  // sign of l - r
  } cases[] = {
      {lowBitSet, lowBitClear, 1}, {lowBitClear, lowBitSet, -1}, {highWord2, lowBitSet, 1},
      {top, highWord2, 1},         {lowBitSet, lowBitSet, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(ticksOf(c.l));
    EXPECT_EQ(c.order == 0, c.l == c.r);
    EXPECT_EQ(c.order != 0, c.l != c.r);
    EXPECT_EQ(c.order < 0, c.l < c.r);
    EXPECT_EQ(c.order <= 0, c.l <= c.r);
    EXPECT_EQ(c.order > 0, c.l > c.r);
    EXPECT_EQ(c.order >= 0, c.l >= c.r);
    const CDateTimeSpan sl = c.l - CDateTime(fileTimeOf(0));
    const CDateTimeSpan sr = c.r - CDateTime(fileTimeOf(0));
    EXPECT_EQ(c.order == 0, sl == sr);
    EXPECT_EQ(c.order != 0, sl != sr);
    EXPECT_EQ(c.order < 0, sl < sr);
    EXPECT_EQ(c.order <= 0, sl <= sr);
    EXPECT_EQ(c.order > 0, sl > sr);
    EXPECT_EQ(c.order >= 0, sl >= sr);
  }
}

TEST(DateTimeArithmetic, DateAndSpan) {
  const CDateTime d = dateOf(133536384000000000ull);  // 2024-02-29
  EXPECT_EQ(133536384000000000ull + kTicksPerDay, ticksOf(d + CDateTimeSpan::OneDay()));
  EXPECT_EQ(133536384000000000ull - kTicksPerHour, ticksOf(d - CDateTimeSpan::OneHour()));
  CDateTime e(d);
  e += CDateTimeSpan::OneSecond();
  e -= CDateTimeSpan::OneMillisecond();
  EXPECT_EQ(133536384000000000ull + 9990000, ticksOf(e));
  EXPECT_EQ(9990000u, ticksOf(e - d));
  EXPECT_EQ(0u, ticksOf(d - d));
  // Addition wraps modulo 2^64.
  EXPECT_EQ(kTicksPerSecond - 16,
            ticksOf(dateOf(0xFFFFFFFFFFFFFFF0ull) + CDateTimeSpan::OneSecond()));
}

TEST(DateTimeArithmetic, BelowZeroThrowsFail) {
  const CDateTime early = dateOf(1000);
  const CDateTime late = dateOf(2000);
  EXPECT_EQ(0, CodeOf([&] { (void)(late - early); }));
  EXPECT_EQ(kFail, CodeOf([&] { (void)(early - late); }));
  EXPECT_EQ(kFail, CodeOf([&] { (void)(early - CDateTimeSpan(0u, 101u)); }));
  CDateTime e(early);
  EXPECT_EQ(kFail, CodeOf([&] { e -= CDateTimeSpan(0u, 101u); }));
  EXPECT_EQ(1000u, ticksOf(e));  // unchanged after the throw
  EXPECT_EQ(0u, ticksOf(early - CDateTimeSpan(0u, 100u)));
}

TEST(DateTimeSpanValue, ConstantsHaveFixedLengths) {
  struct Case {
    const char* what;
    CDateTimeSpan span;
    uint64_t ticks;
  } cases[] = {
      {"year", CDateTimeSpan::OneYear(), 365 * kTicksPerDay},
      {"month", CDateTimeSpan::OneMonth(), 30 * kTicksPerDay},
      {"day", CDateTimeSpan::OneDay(), kTicksPerDay},
      {"hour", CDateTimeSpan::OneHour(), kTicksPerHour},
      {"minute", CDateTimeSpan::OneMinute(), 60 * kTicksPerSecond},
      {"second", CDateTimeSpan::OneSecond(), kTicksPerSecond},
      {"millisecond", CDateTimeSpan::OneMillisecond(), 10000},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(c.ticks, ticksOf(c.span));
  }
  EXPECT_EQ(&CDateTimeSpan::OneDay(), &CDateTimeSpan::OneDay());
  CDateTimeSpan year = CDateTimeSpan::OneYear();
  EXPECT_EQ(0x00011ED1u, year.getHighPart());  // 315360000000000 ticks
  EXPECT_EQ(0x78C6C000u, year.getLowPart());
}

TEST(DateTimeSpanValue, ConstructCopyAssignSwap) {
  EXPECT_EQ(0u, ticksOf(CDateTimeSpan()));
  EXPECT_EQ(4294967295ull * kTicksPerSecond, ticksOf(CDateTimeSpan(0xFFFFFFFFu, 0u)));
  EXPECT_EQ(kTicksPerSecond + 4, ticksOf(CDateTimeSpan(1u, 429496730u)));  // 32-bit product
  CDateTimeSpan a(5u, 0u);
  CDateTimeSpan b(a);
  CDateTimeSpan c;
  c = a;
  CDateTimeSpan& alias = c;
  c = alias;  // self-assignment keeps the value
  EXPECT_EQ(5 * kTicksPerSecond, ticksOf(b));
  EXPECT_EQ(5 * kTicksPerSecond, ticksOf(c));
  CDateTimeSpan d(7u, 0u);
  a.swap(d);
  EXPECT_EQ(7 * kTicksPerSecond, ticksOf(a));
  EXPECT_EQ(5 * kTicksPerSecond, ticksOf(d));
}

TEST(DateTimeSpanArithmetic, Operators) {
  const CDateTimeSpan day = CDateTimeSpan::OneDay();
  const CDateTimeSpan hour = CDateTimeSpan::OneHour();
  EXPECT_EQ(24u, day / hour);
  EXPECT_EQ(5 * kTicksPerDay, ticksOf(CDateTimeSpan::OneYear() % CDateTimeSpan::OneMonth()));
  EXPECT_EQ(kTicksPerDay + kTicksPerHour, ticksOf(day + hour));
  EXPECT_EQ(23 * kTicksPerHour, ticksOf(day - hour));
  EXPECT_EQ(7 * kTicksPerDay, ticksOf(day * 7));
  EXPECT_EQ(kTicksPerHour, ticksOf(day / 24));
  EXPECT_EQ(3u, ticksOf(CDateTimeSpan(0u, 1u) % 7));  // 10 ticks mod 7
  EXPECT_EQ(1u, ticksOf(CDateTimeSpan(0u, 1u) / 6));  // unsigned quotient, truncated
  CDateTimeSpan s = hour;
  s += hour;
  s -= CDateTimeSpan::OneMinute();
  s *= 2;
  s /= 3;
  EXPECT_EQ((2 * kTicksPerHour - 60 * kTicksPerSecond) * 2 / 3, ticksOf(s));
  s %= 1000;
  EXPECT_EQ((2 * kTicksPerHour - 60 * kTicksPerSecond) * 2 / 3 % 1000, ticksOf(s));
  // Products and sums wrap modulo 2^64.
  const CDateTimeSpan big = CDateTimeSpan(0xFFFFFFFFu, 0u) * 0xFFFFFFFFu;
  EXPECT_EQ(4294967295ull * kTicksPerSecond * 4294967295ull, ticksOf(big));
  EXPECT_EQ(4294967295ull * kTicksPerSecond * 4294967295ull * 2, ticksOf(big + big));
}

TEST(DateTimeSpanArithmetic, NegativeDifferenceThrowsFail) {
  const CDateTimeSpan hour = CDateTimeSpan::OneHour();
  const CDateTimeSpan day = CDateTimeSpan::OneDay();
  EXPECT_EQ(kFail, CodeOf([&] { (void)(hour - day); }));
  CDateTimeSpan h = hour;
  EXPECT_EQ(kFail, CodeOf([&] { h -= day; }));
  EXPECT_EQ(kTicksPerHour, ticksOf(h));
  EXPECT_EQ(0u, ticksOf(hour - hour));
}

class DateTimeZone : public testing::Test {
 protected:
  // 2024-02-29 12:00:00 plus 3333 ticks, so the result's rounding shows.
  const CDateTime noon_ = dateOf(133536816000000000ull) + CDateTimeSpan::OneMillisecond() / 3;
  const uint64_t noonTicks_ = 133536816000003333ull;
};

TEST_F(DateTimeZone, OffsetOfTheZoneIsAppliedAndRoundedDown) {
  ASSERT_EQ(noonTicks_, ticksOf(noon_));
  struct Case {
    const char* tz;
    int64_t eastSeconds;  // local = UTC + eastSeconds
  } cases[] = {
      {"UTC0", 0},
      {"EST5", -5 * 3600},
      {"JST-9", 9 * 3600},
      {"NPT-5:45", 5 * 3600 + 45 * 60},
      // Daylight saving in effect all year: counted as exactly one hour.
      {"EST5EDT,0/0,J365/25", -4 * 3600},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.tz);
    ScopedTimeZone zone(c.tz);
    const uint64_t shift = static_cast<uint64_t>(c.eastSeconds) * kTicksPerSecond;
    EXPECT_EQ(noonTicks_ + shift - 3, ticksOf(noon_.utcToLocal()));
    EXPECT_EQ(noonTicks_ - shift - 3, ticksOf(noon_.localToUtc()));
    EXPECT_EQ(ticksOf(noon_) - 3, ticksOf(noon_.utcToLocal().localToUtc()));
  }
}

TEST_F(DateTimeZone, DaylightStateIsThatOfThePresentNotOfTheDate) {
  // A northern-hemisphere rule with a winter date converted: the offset still
  // follows whether daylight saving is in effect right now.
  ScopedTimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  const time_t now = time(nullptr);
  struct tm broken;
  localtime_r(&now, &broken);
  const int64_t east = broken.tm_isdst > 0 ? 7200 : 3600;
  const CDateTime winter = dateOf(133512191995000000ull);  // 2024-01-31
  EXPECT_EQ(ticksOf(winter) + static_cast<uint64_t>(east) * kTicksPerSecond,
            ticksOf(winter.utcToLocal()));
}

}  // namespace
