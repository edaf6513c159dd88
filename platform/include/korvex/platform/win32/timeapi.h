// korvex/platform/win32/timeapi.h: Win32 system-time functions.
//
// FILETIME counts 100-ns ticks since 1601-01-01 00:00:00 UTC; SYSTEMTIME is
// its broken-down form in the proleptic Gregorian calendar. A failing call
// returns FALSE and sets the thread's last error, as on Windows.
#ifndef KORVEX_PLATFORM_WIN32_TIMEAPI_H
#define KORVEX_PLATFORM_WIN32_TIMEAPI_H

#include <korvex/platform/win32/windef.h>

KORVEX_BEGIN_C

// GetSystemTimeAsFileTime stores the current UTC time.
KORVEX_API void GetSystemTimeAsFileTime(LPFILETIME fileTime);

// SystemTimeToFileTime converts broken-down UTC time to ticks. wDayOfWeek is
// ignored. Fails with ERROR_INVALID_PARAMETER for a year outside 1601..30827,
// a month outside 1..12, a day outside the month, an hour above 23, a minute
// or second above 59 or a millisecond above 999, or a null argument.
KORVEX_API BOOL SystemTimeToFileTime(const SYSTEMTIME* systemTime, LPFILETIME fileTime);

// FileTimeToSystemTime converts ticks to broken-down UTC time, day of week
// included. Fails with ERROR_INVALID_PARAMETER when the tick count is 2^63 or
// more, or for a null argument.
KORVEX_API BOOL FileTimeToSystemTime(const FILETIME* fileTime, LPSYSTEMTIME systemTime);

KORVEX_END_C

#endif
