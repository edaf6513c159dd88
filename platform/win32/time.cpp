// Win32 system-time functions over the proleptic Gregorian calendar.
//
// Conversions are pure integer arithmetic on day numbers (the days-from-civil
// and civil-from-days algorithms over 400-year eras), so they never consult
// the C library's time zone and behave the same for every date in range.
#include <korvex/platform/win32/errhandlingapi.h>
#include <korvex/platform/win32/timeapi.h>
#include <korvex/platform/win32/winerror.h>
#include <time.h>

namespace {

constexpr uint64_t kTicksPerMillisecond = 10000;
constexpr uint64_t kTicksPerSecond = 10000000;
constexpr uint64_t kTicksPerDay = kTicksPerSecond * 86400;
// Days from 1601-01-01 (the FILETIME epoch) to 1970-01-01 (the Unix epoch).
constexpr int64_t kDays1601To1970 = 134774;
constexpr uint64_t kTicks1601To1970 = kDays1601To1970 * kTicksPerDay;  // 116444736000000000
// The same instant counted from 0000-03-01, the start of the algorithm's era 0.
constexpr int64_t kDays0000To1970 = 719468;

constexpr WORD kMinYear = 1601;
constexpr WORD kMaxYear = 30827;

bool isLeapYear(int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

unsigned daysInMonth(int64_t year, unsigned month) {
  static const unsigned char kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeapYear(year) ? 29 : kDays[month - 1];
}

// Days since 1601-01-01 of a valid date with year >= 1601. Years are counted
// from March so that the leap day ends its year and the month lengths repeat
// in a 153-day pattern.
int64_t daysFromCivil(int64_t year, unsigned month, unsigned day) {
  year -= month <= 2;
  const int64_t era = year / 400;  // year >= 1600 here, so no floor correction
  const int64_t yearOfEra = year - era * 400;
  const int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - kDays0000To1970 + kDays1601To1970;
}

struct CivilDate {
  int64_t year;
  unsigned month;
  unsigned day;
};

// The inverse of daysFromCivil for days >= 0.
CivilDate civilFromDays(int64_t days1601) {
  const int64_t z = days1601 - kDays1601To1970 + kDays0000To1970;  // > 0
  const int64_t era = z / 146097;
  const int64_t dayOfEra = z - era * 146097;
  const int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const int64_t shiftedMonth = (5 * dayOfYear + 2) / 153;  // 0 = March
  CivilDate date;
  date.day = static_cast<unsigned>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
  date.month = static_cast<unsigned>(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
  date.year = yearOfEra + era * 400 + (date.month <= 2);
  return date;
}

bool systemTimeIsValid(const SYSTEMTIME& st) {
  return st.wYear >= kMinYear && st.wYear <= kMaxYear && st.wMonth >= 1 && st.wMonth <= 12 &&
         st.wDay >= 1 && st.wDay <= daysInMonth(st.wYear, st.wMonth) && st.wHour <= 23 &&
         st.wMinute <= 59 && st.wSecond <= 59 && st.wMilliseconds <= 999;
}

BOOL fail() {
  SetLastError(ERROR_INVALID_PARAMETER);
  return FALSE;
}

}  // namespace

extern "C" void GetSystemTimeAsFileTime(LPFILETIME fileTime) {
  if (!fileTime) return;
  struct timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  const uint64_t ticks = kTicks1601To1970 + static_cast<uint64_t>(now.tv_sec) * kTicksPerSecond +
                         static_cast<uint64_t>(now.tv_nsec) / 100;
  fileTime->dwLowDateTime = static_cast<DWORD>(ticks);
  fileTime->dwHighDateTime = static_cast<DWORD>(ticks >> 32);
}

extern "C" BOOL SystemTimeToFileTime(const SYSTEMTIME* systemTime, LPFILETIME fileTime) {
  if (!systemTime || !fileTime || !systemTimeIsValid(*systemTime)) return fail();
  const SYSTEMTIME& st = *systemTime;
  const uint64_t days = static_cast<uint64_t>(daysFromCivil(st.wYear, st.wMonth, st.wDay));
  const uint64_t seconds = (st.wHour * 60u + st.wMinute) * 60u + st.wSecond;
  const uint64_t ticks =
      days * kTicksPerDay + seconds * kTicksPerSecond + st.wMilliseconds * kTicksPerMillisecond;
  fileTime->dwLowDateTime = static_cast<DWORD>(ticks);
  fileTime->dwHighDateTime = static_cast<DWORD>(ticks >> 32);
  return TRUE;
}

extern "C" BOOL FileTimeToSystemTime(const FILETIME* fileTime, LPSYSTEMTIME systemTime) {
  if (!fileTime || !systemTime) return fail();
  const uint64_t ticks =
      (static_cast<uint64_t>(fileTime->dwHighDateTime) << 32) | fileTime->dwLowDateTime;
  if (ticks >> 63) return fail();  // FILETIME is a signed quantity on Windows
  const int64_t days = static_cast<int64_t>(ticks / kTicksPerDay);
  const uint64_t inDay = ticks % kTicksPerDay;
  const CivilDate date = civilFromDays(days);
  const uint64_t seconds = inDay / kTicksPerSecond;
  systemTime->wYear = static_cast<WORD>(date.year);
  systemTime->wMonth = static_cast<WORD>(date.month);
  systemTime->wDayOfWeek = static_cast<WORD>((days + 1) % 7);  // 1601-01-01 was a Monday
  systemTime->wDay = static_cast<WORD>(date.day);
  systemTime->wHour = static_cast<WORD>(seconds / 3600);
  systemTime->wMinute = static_cast<WORD>(seconds / 60 % 60);
  systemTime->wSecond = static_cast<WORD>(seconds % 60);
  systemTime->wMilliseconds = static_cast<WORD>(inDay % kTicksPerSecond / kTicksPerMillisecond);
  return TRUE;
}
