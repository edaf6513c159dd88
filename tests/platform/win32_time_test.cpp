#include <gtest/gtest.h>
#include <korvex/platform/win32/errhandlingapi.h>
#include <korvex/platform/win32/timeapi.h>
#include <korvex/platform/win32/winerror.h>

#include <cstdint>
#include <cstring>

namespace {

constexpr uint64_t kTicksPerDay = 864000000000ull;

uint64_t ticksOf(const FILETIME& ft) {
  return (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
}

FILETIME fileTimeOf(uint64_t ticks) {
  FILETIME ft;
  ft.dwLowDateTime = static_cast<DWORD>(ticks);
  ft.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
  return ft;
}

SYSTEMTIME makeSystemTime(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0,
                          WORD second = 0, WORD millisecond = 0) {
  SYSTEMTIME st = {};
  st.wYear = year;
  st.wMonth = month;
  st.wDay = day;
  st.wHour = hour;
  st.wMinute = minute;
  st.wSecond = second;
  st.wMilliseconds = millisecond;
  return st;
}

bool isLeap(unsigned y) { return y % 4 == 0 && (y % 100 != 0 || y % 400 == 0); }

unsigned monthLength(unsigned y, unsigned m) {
  static const unsigned kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && isLeap(y) ? 29 : kDays[m - 1];
}

TEST(Win32Time, KnownDatesHaveExactTicks) {
  struct Case {
    SYSTEMTIME st;
    uint64_t ticks;
  } cases[] = {
      {makeSystemTime(1601, 1, 1), 0},
      {makeSystemTime(1601, 1, 1, 0, 0, 0, 1), 10000},
      {makeSystemTime(1601, 1, 2), kTicksPerDay},
      {makeSystemTime(1900, 3, 1), 94405824000000000ull},
      {makeSystemTime(1970, 1, 1), 116444736000000000ull},
      {makeSystemTime(2000, 2, 29), 125962560000000000ull},
      {makeSystemTime(2024, 2, 29), 133536384000000000ull},
      {makeSystemTime(2024, 2, 29, 12, 0, 0), 133536816000000000ull},
      {makeSystemTime(9999, 12, 31, 23, 59, 59, 999), 2650467743999990000ull},
      {makeSystemTime(30827, 12, 31, 23, 59, 59, 999), 0x7FFF35F4F06C58F0ull},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.st.wYear << "-" << c.st.wMonth << "-" << c.st.wDay);
    FILETIME ft = {0xDEADBEEF, 0xDEADBEEF};
    ASSERT_TRUE(SystemTimeToFileTime(&c.st, &ft));
    EXPECT_EQ(c.ticks, ticksOf(ft));
  }
}

TEST(Win32Time, CenturyLeapRules) {
  FILETIME feb28, mar1;
  SYSTEMTIME st = makeSystemTime(1900, 2, 28);
  ASSERT_TRUE(SystemTimeToFileTime(&st, &feb28));
  st = makeSystemTime(1900, 3, 1);
  ASSERT_TRUE(SystemTimeToFileTime(&st, &mar1));
  EXPECT_EQ(kTicksPerDay, ticksOf(mar1) - ticksOf(feb28));  // 1900 has no 29 February

  st = makeSystemTime(2000, 2, 28);
  ASSERT_TRUE(SystemTimeToFileTime(&st, &feb28));
  st = makeSystemTime(2000, 3, 1);
  ASSERT_TRUE(SystemTimeToFileTime(&st, &mar1));
  EXPECT_EQ(2 * kTicksPerDay, ticksOf(mar1) - ticksOf(feb28));
}

TEST(Win32Time, RefusesEachOutOfRangeField) {
  struct Case {
    const char* what;
    SYSTEMTIME st;
  } cases[] = {
      {"year 1600", makeSystemTime(1600, 12, 31, 23, 59, 59, 999)},
      {"year 30828", makeSystemTime(30828, 1, 1)},
      {"year 0", makeSystemTime(0, 1, 1)},
      {"month 0", makeSystemTime(2024, 0, 1)},
      {"month 13", makeSystemTime(2024, 13, 1)},
      {"day 0", makeSystemTime(2024, 1, 0)},
      {"day 32 January", makeSystemTime(2024, 1, 32)},
      {"day 31 April", makeSystemTime(2024, 4, 31)},
      {"29 February 2023", makeSystemTime(2023, 2, 29)},
      {"29 February 1900", makeSystemTime(1900, 2, 29)},
      {"29 February 2100", makeSystemTime(2100, 2, 29)},
      {"30 February 2024", makeSystemTime(2024, 2, 30)},
      {"hour 24", makeSystemTime(2024, 1, 1, 24)},
      {"minute 60", makeSystemTime(2024, 1, 1, 0, 60)},
      {"second 60", makeSystemTime(2024, 1, 1, 0, 0, 60)},
      {"millisecond 1000", makeSystemTime(2024, 1, 1, 0, 0, 0, 1000)},
      {"all fields 0xFFFF", makeSystemTime(0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    SetLastError(0);
    FILETIME ft = {0x11111111, 0x22222222};
    EXPECT_FALSE(SystemTimeToFileTime(&c.st, &ft));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
    EXPECT_EQ(0x11111111u, ft.dwLowDateTime);  // output untouched on failure
    EXPECT_EQ(0x22222222u, ft.dwHighDateTime);
  }
}

TEST(Win32Time, DayOfWeekIsIgnoredOnInputAndFilledOnOutput) {
  SYSTEMTIME st = makeSystemTime(2024, 2, 29);
  st.wDayOfWeek = 0xFFFF;
  FILETIME ft;
  ASSERT_TRUE(SystemTimeToFileTime(&st, &ft));
  EXPECT_EQ(133536384000000000ull, ticksOf(ft));

  struct Case {
    uint64_t ticks;
    WORD dayOfWeek;
  } cases[] = {
      {0, 1},                      // 1601-01-01, Monday
      {kTicksPerDay * 6 - 1, 6},   // 1601-01-06 23:59:59.9999999, Saturday
      {kTicksPerDay * 6, 0},       // 1601-01-07, Sunday
      {116444736000000000ull, 4},  // 1970-01-01, Thursday
      {125911584000000000ull, 6},  // 2000-01-01, Saturday
      {133536384000000000ull, 4},  // 2024-02-29, Thursday
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.ticks);
    FILETIME in = fileTimeOf(c.ticks);
    SYSTEMTIME out;
    ASSERT_TRUE(FileTimeToSystemTime(&in, &out));
    EXPECT_EQ(c.dayOfWeek, out.wDayOfWeek);
  }
}

TEST(Win32Time, FileTimeToSystemTimeBreaksDownAndTruncates) {
  FILETIME ft = fileTimeOf(2650467743999999999ull);  // 9999-12-31 23:59:59.9999999
  SYSTEMTIME st;
  ASSERT_TRUE(FileTimeToSystemTime(&ft, &st));
  EXPECT_EQ(9999, st.wYear);
  EXPECT_EQ(12, st.wMonth);
  EXPECT_EQ(31, st.wDay);
  EXPECT_EQ(23, st.wHour);
  EXPECT_EQ(59, st.wMinute);
  EXPECT_EQ(59, st.wSecond);
  EXPECT_EQ(999, st.wMilliseconds);  // sub-millisecond ticks are dropped, not rounded

  ft = fileTimeOf(0x7FFFFFFFFFFFFFFFull);  // the largest value Windows accepts
  ASSERT_TRUE(FileTimeToSystemTime(&ft, &st));
  EXPECT_EQ(30828, st.wYear);
  EXPECT_EQ(9, st.wMonth);
  EXPECT_EQ(14, st.wDay);
  EXPECT_EQ(2, st.wHour);
  EXPECT_EQ(48, st.wMinute);
  EXPECT_EQ(5, st.wSecond);
  EXPECT_EQ(477, st.wMilliseconds);
}

TEST(Win32Time, RefusesTicksFromTwoToTheSixtyThreeAndNullArguments) {
  for (uint64_t ticks : {0x8000000000000000ull, 0xFFFFFFFFFFFFFFFFull}) {
    SCOPED_TRACE(ticks);
    FILETIME ft = fileTimeOf(ticks);
    SYSTEMTIME st = makeSystemTime(1, 2, 3);
    SetLastError(0);
    EXPECT_FALSE(FileTimeToSystemTime(&ft, &st));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
    EXPECT_EQ(1, st.wYear);
  }
  FILETIME ft = {};
  SYSTEMTIME st = makeSystemTime(2024, 1, 1);
  SetLastError(0);
  EXPECT_FALSE(FileTimeToSystemTime(nullptr, &st));
  EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
  SetLastError(0);
  EXPECT_FALSE(FileTimeToSystemTime(&ft, nullptr));
  EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
  SetLastError(0);
  EXPECT_FALSE(SystemTimeToFileTime(nullptr, &ft));
  EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
  SetLastError(0);
  EXPECT_FALSE(SystemTimeToFileTime(&st, nullptr));
  EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
}

// Walks the calendar day by day with a plain counter, independent of the
// day-number formulas, and checks both directions at every day of the first
// thousand years and at every 97th day after that up to 30827.
TEST(Win32Time, DayByDayWalkMatchesBothDirections) {
  uint64_t dayIndex = 0;
  WORD dayOfWeek = 1;
  for (unsigned year = 1601; year <= 30827; ++year) {
    for (unsigned month = 1; month <= 12; ++month) {
      const unsigned length = monthLength(year, month);
      for (unsigned day = 1; day <= length; ++day, ++dayIndex, dayOfWeek = (dayOfWeek + 1) % 7) {
        if (year > 2600 && dayIndex % 97 != 0) continue;
        const WORD hour = static_cast<WORD>(dayIndex % 24);
        const WORD minute = static_cast<WORD>(dayIndex % 60);
        const WORD second = static_cast<WORD>((dayIndex / 60) % 60);
        const WORD millisecond = static_cast<WORD>(dayIndex % 1000);
        SYSTEMTIME in = makeSystemTime(static_cast<WORD>(year), static_cast<WORD>(month),
                                       static_cast<WORD>(day), hour, minute, second, millisecond);
        FILETIME ft;
        ASSERT_TRUE(SystemTimeToFileTime(&in, &ft)) << year << "-" << month << "-" << day;
        const uint64_t expected = dayIndex * kTicksPerDay +
                                  ((hour * 60u + minute) * 60u + second) * 10000000ull +
                                  millisecond * 10000ull;
        ASSERT_EQ(expected, ticksOf(ft)) << year << "-" << month << "-" << day;
        SYSTEMTIME out;
        ASSERT_TRUE(FileTimeToSystemTime(&ft, &out));
        in.wDayOfWeek = dayOfWeek;
        ASSERT_EQ(0, memcmp(&in, &out, sizeof in)) << year << "-" << month << "-" << day;
      }
    }
  }
  EXPECT_EQ(10674942u, dayIndex);
}

TEST(Win32Time, SystemTimeAsFileTimeIsCurrentUtc) {
  FILETIME ft = {};
  GetSystemTimeAsFileTime(&ft);
  const uint64_t ticks = ticksOf(ft);
  EXPECT_GT(ticks, 133536384000000000ull);  // later than 2024-02-29
  SYSTEMTIME st;
  ASSERT_TRUE(FileTimeToSystemTime(&ft, &st));
  EXPECT_LT(st.wYear, 2200);
}

}  // namespace
