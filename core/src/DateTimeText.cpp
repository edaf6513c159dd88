// CDateTime to and from text: generalized time (X.680 46, RFC 5280
// 4.1.2.5.2, UTC with an optional fraction) and the display forms.
#include <korvex/core/DateTime.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/win32/timeapi.h>
#include <korvex/platform/win32/winerror.h>

#include <cstdio>
#include <cwchar>
#include <initializer_list>
#include <string>

#include "DateTimeDigits.h"
#include "DateTimeTicks.h"
#include "GeneralizedTime.h"

namespace Korvex {
namespace {

constexpr std::size_t kDisplayBufferSize = 256;

// The calendar fields of a date for text output. A value of 2^63 ticks or
// more has none: the caller's exception in flight is rethrown, and without
// one the process ends (std::terminate), as the interface documents.
_SYSTEMTIME systemTimeForText(CDateTime const& date) {
  const _FILETIME ft = date.getFileTime();
  _SYSTEMTIME st;
  if (!FileTimeToSystemTime(&ft, &st)) throw;
  return st;
}

std::tm displayFields(CDateTime const& date) {
  const _SYSTEMTIME st = systemTimeForText(date);
  std::tm fields = {};
  fields.tm_year = st.wYear - 1900;
  fields.tm_mon = st.wMonth - 1;
  fields.tm_mday = st.wDay;
  fields.tm_hour = st.wHour;
  fields.tm_min = st.wMinute;
  fields.tm_sec = st.wSecond;
  fields.tm_wday = st.wDayOfWeek;
  return fields;  // tm_yday and tm_isdst stay 0
}

std::string formatDisplay(CDateTime const& date, char const* format) {
  const std::tm fields = displayFields(date);
  char buffer[kDisplayBufferSize];
  if (std::strftime(buffer, sizeof buffer, format, &fields) == 0) AtlThrow(E_FAIL);
  return buffer;
}

}  // namespace

CDateTime::CDateTime(char const* text) {
  unsigned int fraction = 0;
  // A null text reads like the empty text: no month, so the calendar refuses it.
  const std::tm fields = GeneralizedTimeToTm(text ? text : "", fraction, false);
  _SYSTEMTIME st;
  st.wYear = static_cast<WORD>(fields.tm_year + 1900);
  st.wMonth = static_cast<WORD>(fields.tm_mon + 1);
  st.wDayOfWeek = 0;
  st.wDay = static_cast<WORD>(fields.tm_mday);
  st.wHour = static_cast<WORD>(fields.tm_hour);
  st.wMinute = static_cast<WORD>(fields.tm_min);
  st.wSecond = static_cast<WORD>(fields.tm_sec);
  st.wMilliseconds = 0;
  _FILETIME ft;
  if (!SystemTimeToFileTime(&st, &ft)) AtlThrow(E_FAIL);
  const uint64_t ticks = (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
  DateTimeTicks::set(*this, ticks + fraction * kTicksPerMicrosecond);
}

CStringProxy CDateTime::getGeneralizedTime() const {
  const _SYSTEMTIME st = systemTimeForText(*this);
  char buffer[32];
  char* end = writeZeroPadded(buffer, st.wYear % 10000, 4);
  for (WORD field : {st.wMonth, st.wDay, st.wHour, st.wMinute, st.wSecond}) {
    end = writeZeroPadded(end, field, 2);
  }
  const uint64_t us = DateTimeTicks::get(*this) % kTicksPerSecond / kTicksPerMicrosecond;
  if (us != 0) {
    *end++ = '.';
    end = writeZeroPadded(end, us, 6);
    while (end[-1] == '0') --end;  // us != 0 keeps one digit
  }
  *end++ = 'Z';
  *end = '\0';
  return CStringProxy(buffer);
}

CStringProxy CDateTime::getGeneralizedTimeTrimMicroseconds() const {
  return CStringProxy(formatDisplay(*this, "%d.%m.%Y %X").c_str());
}

CStringProxy CDateTime::tostring() const {
  std::string text = formatDisplay(*this, "%d.%m.%Y %H:%M:%S");
  const unsigned int ms = millisecond();
  const unsigned int us = microsecond();
  if (ms != 0 || us != 0) {
    char part[16];
    std::snprintf(part, sizeof part, us != 0 ? ".%03u%03u" : ".%03u", ms, us);
    text += part;
  }
  return CStringProxy(text.c_str());
}

CWStringProxy CDateTime::towstring() const {
  const std::tm fields = displayFields(*this);
  wchar_t buffer[kDisplayBufferSize];
  if (std::wcsftime(buffer, kDisplayBufferSize, L"%d.%m.%Y %H:%M:%S", &fields) == 0) {
    AtlThrow(E_FAIL);
  }
  std::wstring text = buffer;
  const unsigned int ms = millisecond();
  const unsigned int us = microsecond();
  if (ms != 0 || us != 0) {
    wchar_t part[16];
    std::swprintf(part, 16, us != 0 ? L".%03u%03u" : L".%03u", ms, us);
    text += part;
  }
  return CWStringProxy(text.c_str());
}

}  // namespace Korvex
