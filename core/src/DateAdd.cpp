// DateAddA / DateAddW: calendar and fixed-length steps on a CDateTime.
#include <korvex/core/DateAdd.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/win32/winerror.h>

#include "DateAddMonth.h"

namespace Korvex {
namespace {

bool isLeapYear(int year) { return year % 400 == 0 || (year % 4 == 0 && year % 100 != 0); }

int daysInMonth(int year, int month) {
  static const int kOrdinary[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  static const int kLeap[12] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return (isLeapYear(year) ? kLeap : kOrdinary)[month - 1];
}

// count * 12 as the two's-complement 32-bit product: no signed overflow.
int monthsInYears(int years) { return static_cast<int>(static_cast<unsigned int>(years) * 12u); }

// |count| as an unsigned 32-bit number: INT_MIN gives 2147483648.
unsigned int magnitude(int count) {
  return count < 0 ? 0u - static_cast<unsigned int>(count) : static_cast<unsigned int>(count);
}

// A fixed-length step: forward for a count of 1 or more, otherwise backward.
CDateTime addSpan(CDateTimeSpan const& unit, int count, CDateTime const& date) {
  const CDateTimeSpan span = unit * magnitude(count);
  return count < 1 ? date - span : date + span;
}

}  // namespace

CDateTime DateAddMonth(int months, CDateTime const& date) {
  // One breakdown serves every field (each accessor would redo it).
  const _SYSTEMTIME st = date.getSystemTime();
  const int year = st.wYear;
  const int month = st.wMonth;
  // C++ division truncates towards zero, so for a negative count the
  // remainder is zero or negative and the month is corrected below.
  int newYear = year + months / 12;
  int newMonth = month + months % 12;
  if (newMonth < 1) {
    newMonth += 12;
    newYear -= 1;
  } else if (newMonth > 12) {
    newMonth -= 12;
    newYear += 1;
  }
  const int maxDay = daysInMonth(newYear, newMonth);
  const unsigned int day = st.wDay;
  const unsigned int newDay = day < static_cast<unsigned int>(maxDay) ? day : maxDay;
  return CDateTime(static_cast<unsigned int>(newYear), static_cast<unsigned int>(newMonth), newDay,
                   st.wHour, st.wMinute, st.wSecond, date.millisecond(), date.microsecond());
}

CDateTime DateAddA(char const* interval, int count, CDateTime const& date) {
  if (interval == nullptr) AtlThrow(E_INVALIDARG);
  switch (interval[0]) {
    case 'y':
      return DateAddMonth(monthsInYears(count), date);
    case 'm':
      return DateAddMonth(count, date);
    case 'w':
      return addSpan(CDateTimeSpan::OneDay() * 7, count, date);
    case 'd':
    case '\0':
      return addSpan(CDateTimeSpan::OneDay(), count, date);
    case 'h':
      return addSpan(CDateTimeSpan::OneHour(), count, date);
    case 'n':
      return addSpan(CDateTimeSpan::OneMinute(), count, date);
    case 's':
      return addSpan(CDateTimeSpan::OneSecond(), count, date);
    default:
      AtlThrow(E_INVALIDARG);
  }
}

CDateTime DateAddW(wchar_t const* interval, int count, CDateTime const& date) {
  if (interval == nullptr) AtlThrow(E_INVALIDARG);
  char const* code = nullptr;
  switch (interval[0]) {
    case L'y':
      code = "y";
      break;
    case L'm':
      code = "m";
      break;
    case L'w':
      code = "w";
      break;
    case L'd':
    case L'\0':
      code = "d";
      break;
    case L'h':
      code = "h";
      break;
    case L'n':
      code = "n";
      break;
    case L's':
      code = "s";
      break;
    default:
      AtlThrow(E_INVALIDARG);
  }
  return DateAddA(code, count, date);
}

}  // namespace Korvex
