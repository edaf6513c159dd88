// CDateTime: construction, calendar fields and the UTC/local shift.
#include <korvex/core/DateTime.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/win32/errhandlingapi.h>
#include <korvex/platform/win32/timeapi.h>
#include <korvex/platform/win32/winerror.h>
#include <time.h>

#include <initializer_list>

#include "DateTimeTicks.h"

namespace Korvex {
namespace {

_FILETIME toFileTime(uint64_t ticks) {
  _FILETIME ft;
  ft.dwLowDateTime = static_cast<DWORD>(ticks);
  ft.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
  return ft;
}

uint64_t ticksOf(_FILETIME const& ft) {
  return (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
}

// Calendar fields to ticks; a field the platform refuses throws its last error.
uint64_t systemTimeTicks(_SYSTEMTIME const& st) {
  _FILETIME ft;
  if (!SystemTimeToFileTime(&st, &ft)) ATL::AtlThrowLastWin32();
  return ticksOf(ft);
}

uint64_t roundDownToMicrosecond(uint64_t ticks) { return ticks - ticks % kTicksPerMicrosecond; }

// The offset of the process's time zone in seconds west of UTC, daylight
// saving counted as one hour when it is in effect at the present moment.
long currentZoneOffsetSeconds() {
  const time_t now = time(nullptr);
  struct tm broken = {};
  localtime_r(&now, &broken);
  tzset();
  long offset = timezone;
  if (broken.tm_isdst > 0) offset -= 3600;
  return offset;
}

}  // namespace

CDateTime::CDateTime(long long seconds, unsigned int microseconds) {
  // Unsigned arithmetic: dates before 1970 wrap back into range, never overflow.
  const uint64_t ticks = static_cast<uint64_t>(seconds) * kTicksPerSecond + kUnixEpochTicks +
                         static_cast<unsigned int>(microseconds * 10u);
  DateTimeTicks::set(*this, ticks);
}

CDateTime::CDateTime(long seconds, unsigned int microseconds)
    : CDateTime(static_cast<long long>(seconds), microseconds) {}

CDateTime::CDateTime(int seconds, unsigned int microseconds)
    : CDateTime(static_cast<long long>(seconds), microseconds) {}

CDateTime::CDateTime(_FILETIME fileTime) {
  DateTimeTicks::set(*this, roundDownToMicrosecond(ticksOf(fileTime)));
}

CDateTime::CDateTime(_SYSTEMTIME systemTime) {
  DateTimeTicks::set(*this, roundDownToMicrosecond(systemTimeTicks(systemTime)));
}

CDateTime::CDateTime(unsigned int year, unsigned int month, unsigned int day, unsigned int hour,
                     unsigned int minute, unsigned int second, unsigned int millisecond,
                     unsigned int microsecond) {
  // A field that does not fit its 16-bit word would otherwise wrap into range.
  for (unsigned int field : {year, month, day, hour, minute, second, millisecond}) {
    if (field > 0xFFFFu) {
      SetLastError(ERROR_INVALID_PARAMETER);
      ATL::AtlThrowLastWin32();
    }
  }
  _SYSTEMTIME st;
  st.wYear = static_cast<WORD>(year);
  st.wMonth = static_cast<WORD>(month);
  st.wDayOfWeek = 0;
  st.wDay = static_cast<WORD>(day);
  st.wHour = static_cast<WORD>(hour);
  st.wMinute = static_cast<WORD>(minute);
  st.wSecond = static_cast<WORD>(second);
  st.wMilliseconds = static_cast<WORD>(millisecond);
  DateTimeTicks::set(*this, systemTimeTicks(st) + static_cast<unsigned int>(microsecond * 10u));
}

CDateTime::CDateTime(CDateTime const& other)
    : m_highPart(other.m_highPart), m_lowPart(other.m_lowPart) {}

CDateTime& CDateTime::operator=(CDateTime const& other) {
  m_highPart = other.m_highPart;
  m_lowPart = other.m_lowPart;
  return *this;
}

CDateTime CDateTime::Now() {
  _FILETIME ft;
  GetSystemTimeAsFileTime(&ft);
  return CDateTime(ft);
}

_FILETIME CDateTime::getFileTime() const { return toFileTime(DateTimeTicks::get(*this)); }

_SYSTEMTIME CDateTime::getSystemTime() const {
  const _FILETIME ft = getFileTime();
  _SYSTEMTIME st = {};
  FileTimeToSystemTime(&ft, &st);  // unchecked: a refused value leaves every field zero
  return st;
}

unsigned long long CDateTime::getTime() const {
  return (DateTimeTicks::get(*this) - kUnixEpochTicks) / kTicksPerSecond;
}

unsigned int CDateTime::year() const { return getSystemTime().wYear; }
unsigned int CDateTime::month() const { return getSystemTime().wMonth; }
unsigned int CDateTime::day() const { return getSystemTime().wDay; }
unsigned int CDateTime::hour() const { return getSystemTime().wHour; }
unsigned int CDateTime::minute() const { return getSystemTime().wMinute; }
unsigned int CDateTime::second() const { return getSystemTime().wSecond; }

unsigned int CDateTime::millisecond() const {
  return static_cast<unsigned int>(DateTimeTicks::get(*this) % kTicksPerSecond / 10 / 1000);
}

unsigned int CDateTime::microsecond() const {
  return static_cast<unsigned int>(DateTimeTicks::get(*this) % kTicksPerSecond / 10 % 1000);
}

CDateTime CDateTime::utcToLocal() const {
  const uint64_t shift = static_cast<uint64_t>(currentZoneOffsetSeconds()) * kTicksPerSecond;
  return CDateTime(toFileTime(DateTimeTicks::get(*this) - shift));
}

CDateTime CDateTime::localToUtc() const {
  const uint64_t shift = static_cast<uint64_t>(currentZoneOffsetSeconds()) * kTicksPerSecond;
  return CDateTime(toFileTime(DateTimeTicks::get(*this) + shift));
}

void CDateTime::swap(CDateTime& other) {
  const unsigned int high = m_highPart;
  const unsigned int low = m_lowPart;
  m_highPart = other.m_highPart;
  m_lowPart = other.m_lowPart;
  other.m_highPart = high;
  other.m_lowPart = low;
}

}  // namespace Korvex
