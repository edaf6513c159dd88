#include <gtest/gtest.h>
#include <korvex/core/DateTime.h>

#include <clocale>
#include <random>
#include <string>

#include "GeneralizedTime.h"
#include "date_time_test_util.h"

using Korvex::CDateTime;
using Korvex::CDateTimeSpan;
using Korvex::GeneralizedTimeToTm;
using namespace datetime_test;

namespace {

constexpr HRESULT kFail = static_cast<HRESULT>(0x80004005u);
constexpr HRESULT kInvalidTime = static_cast<HRESULT>(0x8007076Du);
constexpr uint64_t k20240131235959 = 133512191990000000ull;
constexpr uint64_t k20240229 = 133536384000000000ull;
constexpr uint64_t k20240229120000 = 133536816000000000ull;
constexpr uint64_t k10000Jan1 = 2650467744000000000ull;  // 10000-01-01, just past 9999

// The display forms use strftime's %X, which follows LC_TIME.
class ScopedCLocale {
 public:
  ScopedCLocale() : m_old(std::setlocale(LC_ALL, nullptr)) { std::setlocale(LC_ALL, "C"); }
  ~ScopedCLocale() { std::setlocale(LC_ALL, m_old.c_str()); }

 private:
  std::string m_old;
};

TEST(GeneralizedTimeToTm, ReadsFieldsByPosition) {
  struct Case {
    const char* text;
    bool raw;
    int year, mon, mday, hour, min, sec;
    unsigned fraction;
  } cases[] = {
      {"20240229123456Z", false, 124, 1, 29, 12, 34, 56, 0},
      {"20240229123456Z", true, 2024, 2, 29, 12, 34, 56, 0},
      {"20240229120000,5Z", false, 124, 1, 29, 12, 0, 0, 500000},
      {"20240229120000.5", false, 124, 1, 29, 12, 0, 0, 500000},
      {"20240229120000.1234567Z", false, 124, 1, 29, 12, 0, 0, 123456},
      {"20240229120000.123456789abc", false, 124, 1, 29, 12, 0, 0, 123456},
      {"20240229120000x000042", false, 124, 1, 29, 12, 0, 0, 42},  // separator unexamined
      {"20240229120000.Z", false, 124, 1, 29, 12, 0, 0, 0},
      // An offset is not recognised: "0300" after '+' reads as a fraction.
      {"20240229120000+0300", false, 124, 1, 29, 12, 0, 0, 30000},
      {"2024022912", false, 124, 1, 29, 12, 0, 0, 0},
      {"202402291", false, 124, 1, 29, 0, 0, 0, 0},  // one hour digit: not read
      {"2024", false, 124, -1, 0, 0, 0, 0, 0},
      {"", false, -1900, -1, 0, 0, 0, 0, 0},
      {"", true, 0, 0, 0, 0, 0, 0, 0},
      {"00000000250000", true, 0, 0, 0, 25, 0, 0, 0},
      {"99999999999999.999999Z", true, 9999, 99, 99, 99, 99, 99, 999999},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << '"' << c.text << "\" raw=" << c.raw);
    unsigned fraction = 0xDEAD;
    const std::tm t = GeneralizedTimeToTm(c.text, fraction, c.raw);
    EXPECT_EQ(c.year, t.tm_year);
    EXPECT_EQ(c.mon, t.tm_mon);
    EXPECT_EQ(c.mday, t.tm_mday);
    EXPECT_EQ(c.hour, t.tm_hour);
    EXPECT_EQ(c.min, t.tm_min);
    EXPECT_EQ(c.sec, t.tm_sec);
    EXPECT_EQ(c.fraction, fraction);
  }
}

TEST(GeneralizedTimeToTm, NonDigitInAReadFieldThrowsInvalidTime) {
  for (const char* text : {
           "abcd",
           "2024AB01",
           "2024-02-29",
           "2024022x",
           " 2024022",
           "20240229 12000",
           "2024022912:0",
           "202402291200 0",
           "20240229120000.12a",
           "20240229120000.Z ",       // the 'Z' is removed only when it is last
           "20240229120000.12345ZZ",  // only one 'Z' is removed
           "20240229120000.12Z9",
           "20240229120000.-12345",
       }) {
    SCOPED_TRACE(text);
    unsigned fraction = 0;
    EXPECT_EQ(kInvalidTime, CodeOf([&] { GeneralizedTimeToTm(text, fraction, false); }));
    EXPECT_EQ(kInvalidTime, CodeOf([&] { CDateTime d(text); }));
    EXPECT_EQ(kInvalidTime, CodeOf([&] { CDateTimeSpan s(text); }));
  }
  // Text too short to hold a field is never examined there.
  unsigned fraction = 0;
  EXPECT_EQ(0, CodeOf([&] { GeneralizedTimeToTm("2024022", fraction, true); }));
  EXPECT_EQ(0, CodeOf([&] { GeneralizedTimeToTm("x", fraction, true); }));
}

TEST(DateTimeFromText, ExactTicks) {
  struct Case {
    const char* text;
    uint64_t ticks;
  } cases[] = {
      {"20240229", k20240229},
      {"202402291", k20240229},
      {"20240229120000Z", k20240229120000},
      {"20240229120000", k20240229120000},
      {"20240229120000,5Z", k20240229120000 + 5000000},
      {"20240229120000.5", k20240229120000 + 5000000},
      {"20240229120000.1234567Z", k20240229120000 + 1234560},
      {"16010101000000.000001Z", 10},
      {"16010101", 0},
      {"19700101000000Z", kUnixEpochTicks},
      {"99991231235959.999999Z", k10000Jan1 - 10},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(c.ticks, ticksOf(CDateTime(c.text)));
  }
}

TEST(DateTimeFromText, FieldsTheCalendarRefusesThrowFail) {
  for (const char* text :
       {"2024", "", "2024022", "202402", "20240230", "20231301", "20240001", "16001231235959Z",
        "00000101", "20240229240000", "20240229126000", "20240229120060"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(kFail, CodeOf([&] { CDateTime d(text); }));
  }
  EXPECT_EQ(kFail, CodeOf([&] { CDateTime d(static_cast<char const*>(nullptr)); }));
}

TEST(DateTimeToText, GeneralizedTimeTrimsTheFraction) {
  struct Case {
    uint64_t ticks;
    const char* text;
  } cases[] = {
      {k20240131235959, "20240131235959Z"},
      {k20240131235959 + 5000000, "20240131235959.5Z"},
      {k20240131235959 + 1230, "20240131235959.000123Z"},
      {k20240131235959 + 9999990, "20240131235959.999999Z"},
      {0, "16010101000000Z"},
      {10, "16010101000000.000001Z"},
      {k10000Jan1 - 10, "99991231235959.999999Z"},
      {k10000Jan1, "00000101000000Z"},                   // year written modulo 10000
      {0x7FFFFFFFFFFFFFFFull, "08280914024805.47758Z"},  // 30828, the last valid tick
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_STREQ(c.text, dateOf(c.ticks).getGeneralizedTime().c_str());
  }
}

TEST(DateTimeToText, RoundTripOverRandomMicroseconds) {
  std::mt19937_64 random(20240229);
  std::uniform_int_distribution<uint64_t> microseconds(0, k10000Jan1 / 10 - 1);
  for (int i = 0; i < 20000; ++i) {
    const uint64_t ticks = microseconds(random) * 10;
    const CDateTime date = dateOf(ticks);
    const Korvex::CStringProxy text = date.getGeneralizedTime();
    SCOPED_TRACE(text.c_str());
    ASSERT_EQ(ticks, ticksOf(CDateTime(text.c_str())));
  }
}

TEST(DateTimeToText, DisplayForms) {
  ScopedCLocale cLocale;
  struct Case {
    uint64_t ticks;
    const char* trimmed;  // getGeneralizedTimeTrimMicroseconds
    const char* full;     // tostring
  } cases[] = {
      {k20240131235959, "31.01.2024 23:59:59", "31.01.2024 23:59:59"},
      {k20240131235959 + 5000000, "31.01.2024 23:59:59", "31.01.2024 23:59:59.500"},
      {k20240131235959 + 70, "31.01.2024 23:59:59", "31.01.2024 23:59:59.000007"},
      {k20240131235959 + 1234560, "31.01.2024 23:59:59", "31.01.2024 23:59:59.123456"},
      {0, "01.01.1601 00:00:00", "01.01.1601 00:00:00"},
      {k10000Jan1 - 10, "31.12.9999 23:59:59", "31.12.9999 23:59:59.999999"},
      {0x7FFFFFFFFFFFFFFFull, "14.09.30828 02:48:05", "14.09.30828 02:48:05.477580"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.full);
    const CDateTime d = dateOf(c.ticks);
    EXPECT_STREQ(c.trimmed, d.getGeneralizedTimeTrimMicroseconds().c_str());
    EXPECT_STREQ(c.full, d.tostring().c_str());
    const std::string full = c.full;
    EXPECT_EQ(std::wstring(full.begin(), full.end()), d.towstring().c_str());
  }
}

// Text conversions of a value the calendar cannot break down (2^63 ticks or
// more) rethrow the exception being handled.
TEST(DateTimeToText, BeyondCalendarRethrowsTheCurrentException) {
  const CDateTime huge = dateOf(0x800000000000000Aull);
  const HRESULT inFlight = static_cast<HRESULT>(0x80091234u);
  int rethrown = 0;
  for (int which = 0; which < 4; ++which) {
    SCOPED_TRACE(which);
    try {
      throw ATL::CAtlException(inFlight);
    } catch (ATL::CAtlException const&) {
      const HRESULT hr = CodeOf([&] {
        switch (which) {
          case 0:
            huge.getGeneralizedTime();
            break;
          case 1:
            huge.getGeneralizedTimeTrimMicroseconds();
            break;
          case 2:
            huge.tostring();
            break;
          default:
            huge.towstring();
            break;
        }
      });
      EXPECT_EQ(inFlight, hr);
      rethrown += hr == inFlight;
    }
  }
  EXPECT_EQ(4, rethrown);
}

TEST(DateTimeToTextDeathTest, BeyondCalendarWithoutExceptionTerminates) {
  const CDateTime huge = dateOf(0xFFFFFFFFFFFFFFF0ull);
  EXPECT_DEATH(huge.getGeneralizedTime(), "");
}

TEST(DateTimeSpanFromText, FieldsAreCounts) {
  struct Case {
    const char* text;
    uint64_t ticks;
  } cases[] = {
      {"00010000000000", 365 * kTicksPerDay},
      {"00000100000000", 30 * kTicksPerDay},
      {"00000001", kTicksPerDay},
      {"00000000250000", 25 * kTicksPerHour},
      {"00000000009999", (99 * 60 + 99) * kTicksPerSecond},
      {"00000000000000.5Z", 5000000},
      {"00000001000000.25Z", kTicksPerDay + 2500000},
      {"0000000000001", 0},  // seconds need two digits: not read
      {"", 0},
      {"Z", 0},
      {"99999999999999.999999", 315593988039ull * kTicksPerSecond + 9999990},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(c.ticks, ticksOf(CDateTimeSpan(c.text)));
  }
  EXPECT_TRUE(CDateTimeSpan("00010000000000") == CDateTimeSpan::OneYear());
  EXPECT_TRUE(CDateTimeSpan("00000100000000") == CDateTimeSpan::OneMonth());
  EXPECT_EQ(0u, ticksOf(CDateTimeSpan(static_cast<char const*>(nullptr))));
}

TEST(DateTimeSpanToText, TrimRunsThroughThePoint) {
  struct Case {
    uint64_t ticks;
    const char* text;
  } cases[] = {
      {0, "Z"},
      {9, "Z"},  // below a microsecond
      {10 * kTicksPerSecond, "0000000000001Z"},
      {kTicksPerDay + 2500000, "00000001000000.25Z"},
      {365 * kTicksPerDay, "0001Z"},
      {30 * kTicksPerDay, "000001Z"},
      {360 * kTicksPerDay, "000012Z"},
      {364 * kTicksPerDay, "00001204Z"},
      {25 * kTicksPerHour, "0000000101Z"},
      {10, "00000000000000.000001Z"},
      {(3 * 365 + 2 * 30 + 4) * kTicksPerDay + (5 * 3600 + 6 * 60 + 7) * kTicksPerSecond + 80,
       "00030204050607.000008Z"},
      {0xFFFFFFFFFFFFFFFFull, "584940228053610.955161Z"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const CDateTimeSpan s = spanOfTicks(c.ticks);
    ASSERT_EQ(c.ticks, ticksOf(s));
    EXPECT_STREQ(c.text, s.getGeneralizedTime().c_str());
    EXPECT_STREQ(c.text, s.tostring().c_str());
    const std::string narrow = c.text;
    EXPECT_EQ(std::wstring(narrow.begin(), narrow.end()), s.towstring().c_str());
  }
  // The trimmed text of 10 s has a one-digit seconds field: it does not read back.
  EXPECT_EQ(kInvalidTime, CodeOf([] { CDateTimeSpan s("0000000000001Z"); }));
}

}  // namespace
