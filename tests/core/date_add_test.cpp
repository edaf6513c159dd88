#include <gtest/gtest.h>
#include <korvex/core/DateAdd.h>
#include <korvex/core/DateTime.h>

#include <climits>

#include "DateAddMonth.h"
#include "date_time_test_util.h"

using Korvex::CDateTime;
using Korvex::DateAddA;
using Korvex::DateAddMonth;
using Korvex::DateAddW;
using namespace datetime_test;

namespace {

constexpr HRESULT kFail = static_cast<HRESULT>(0x80004005u);
constexpr HRESULT kInvalidArg = static_cast<HRESULT>(0x80070057u);

// Calendar dates with a fixed time of day 10:20:30.456789 that steps keep.
CDateTime at(unsigned year, unsigned month, unsigned day) {
  return CDateTime(year, month, day, 10, 20, 30, 456, 789);
}

TEST(DateAdd, CalendarStepsClampToTheEndOfTheMonth) {
  struct Case {
    const char* interval;
    int count;
    CDateTime from, to;
  } cases[] = {
      {"m", 1, at(2023, 1, 31), at(2023, 2, 28)},
      {"m", 1, at(2024, 1, 31), at(2024, 2, 29)},
      {"m", 2, at(2024, 1, 31), at(2024, 3, 31)},
      {"m", 3, at(2024, 1, 31), at(2024, 4, 30)},
      {"y", 1, at(2024, 2, 29), at(2025, 2, 28)},
      {"y", 4, at(2024, 2, 29), at(2028, 2, 29)},
      {"y", 76, at(2024, 2, 29), at(2100, 2, 28)},  // 2100 is not a leap year
      {"y", -24, at(2024, 2, 29), at(2000, 2, 29)},
      {"m", -1, at(2024, 1, 15), at(2023, 12, 15)},
      {"m", -13, at(2024, 1, 15), at(2022, 12, 15)},
      {"m", -12, at(2024, 1, 15), at(2023, 1, 15)},
      {"m", 11, at(2024, 1, 15), at(2024, 12, 15)},
      {"m", 12, at(2024, 12, 15), at(2025, 12, 15)},
      {"m", 13, at(2024, 12, 15), at(2026, 1, 15)},
      {"m", -11, at(2024, 12, 31), at(2024, 1, 31)},
      {"m", 0, at(2024, 3, 31), at(2024, 3, 31)},
      {"month", -1, at(2024, 3, 31), at(2024, 2, 29)},
      {"year", 1, at(1601, 1, 1), at(1602, 1, 1)},
      {"m", 1, at(30827, 11, 30), at(30827, 12, 30)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.interval << " " << c.count << " from "
                                    << c.from.getGeneralizedTime().c_str());
    const CDateTime result = DateAddA(c.interval, c.count, c.from);
    EXPECT_STREQ(c.to.getGeneralizedTime().c_str(), result.getGeneralizedTime().c_str());
    EXPECT_EQ(ticksOf(c.to), ticksOf(result));
  }
}

TEST(DateAdd, FixedLengthSteps) {
  const CDateTime from = at(2024, 2, 29);
  const uint64_t t = ticksOf(from);
  struct Case {
    const char* interval;
    int count;
    uint64_t ticks;
  } cases[] = {
      {"w", -2, t - 14 * kTicksPerDay},
      {"w", 1, t + 7 * kTicksPerDay},
      {"d", 0, t},
      {"d", 1, t + kTicksPerDay},
      {"day", -1, t - kTicksPerDay},
      {"", 3, t + 3 * kTicksPerDay},
      {"h", 25, t + 25 * kTicksPerHour},
      {"h", -1, t - kTicksPerHour},
      {"n", 90, t + 90 * 60 * kTicksPerSecond},
      {"s", -61, t - 61 * kTicksPerSecond},
      {"s", 0, t},
      {"second", INT_MAX, t + 2147483647ull * kTicksPerSecond},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << '"' << c.interval << "\" " << c.count);
    EXPECT_EQ(c.ticks, ticksOf(DateAddA(c.interval, c.count, from)));
  }
}

TEST(DateAdd, MostNegativeCountIsTwoToTheThirtyOneUnits) {
  const CDateTime far = dateOf(3000000000ull * kTicksPerSecond);
  EXPECT_EQ((3000000000ull - 2147483648ull) * kTicksPerSecond,
            ticksOf(DateAddA("s", INT_MIN, far)));
}

TEST(DateAdd, FailuresCarryTheirCodes) {
  const CDateTime d = at(2024, 2, 29);
  struct Case {
    const char* what;
    HRESULT hr;
    CDateTime (*call)(CDateTime const&);
  } cases[] = {
      {"null narrow interval", kInvalidArg,
       [](CDateTime const& x) { return DateAddA(nullptr, 1, x); }},
      {"null wide interval", kInvalidArg,
       [](CDateTime const& x) { return DateAddW(nullptr, 1, x); }},
      {"upper-case D", kInvalidArg, [](CDateTime const& x) { return DateAddA("D", 1, x); }},
      {"upper-case M", kInvalidArg, [](CDateTime const& x) { return DateAddA("M", 1, x); }},
      {"q", kInvalidArg, [](CDateTime const& x) { return DateAddA("q", 0, x); }},
      {"wide Y", kInvalidArg, [](CDateTime const& x) { return DateAddW(L"Y", 1, x); }},
      {"wide non-ASCII", kInvalidArg, [](CDateTime const& x) { return DateAddW(L"\u0434", 1, x); }},
      // 'd' plus 0x100 would alias 'd' if the code were cut to a char.
      {"wide U+0164", kInvalidArg, [](CDateTime const& x) { return DateAddW(L"\u0164", 1, x); }},
      {"before 1601", kFail, [](CDateTime const& x) { return DateAddA("w", -30000, x); }},
      {"years before 1601", kInvalidArg, [](CDateTime const& x) { return DateAddA("y", -424, x); }},
      {"years after 30827", kInvalidArg,
       [](CDateTime const& x) { return DateAddA("y", 28804, x); }},
      {"months to year 0", kInvalidArg,
       [](CDateTime const& x) { return DateAddMonth(-2024 * 12, x); }},
      // 178956971 * 12 wraps to -2147483644 months in 32 bits.
      {"year count wraps", kInvalidArg,
       [](CDateTime const& x) { return DateAddA("y", 178956971, x); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(c.hr, CodeOf([&] { c.call(d); }));
  }
}

TEST(DateAdd, WideCodesForwardToNarrow) {
  const CDateTime d = at(2024, 1, 31);
  struct Case {
    const wchar_t* wide;
    const char* narrow;
  } cases[] = {
      {L"y", "y"}, {L"m", "m"}, {L"w", "w"}, {L"d", "d"},     {L"", "d"},
      {L"h", "h"}, {L"n", "n"}, {L"s", "s"}, {L"month", "m"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.narrow);
    for (int count : {-3, 0, 1, 13}) {
      EXPECT_EQ(ticksOf(DateAddA(c.narrow, count, d)), ticksOf(DateAddW(c.wide, count, d)));
    }
  }
}

TEST(DateAddMonth, KeepsTimeOfDay) {
  const CDateTime result = DateAddMonth(25, at(2023, 12, 31));
  EXPECT_EQ(2026u, result.year());
  EXPECT_EQ(1u, result.month());
  EXPECT_EQ(31u, result.day());
  EXPECT_EQ(10u, result.hour());
  EXPECT_EQ(20u, result.minute());
  EXPECT_EQ(30u, result.second());
  EXPECT_EQ(456u, result.millisecond());
  EXPECT_EQ(789u, result.microsecond());
}

}  // namespace
