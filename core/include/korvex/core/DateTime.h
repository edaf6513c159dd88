// korvex/core/DateTime.h: a point in time and a duration, in 100-ns ticks.
//
// CDateTime counts 100-nanosecond ticks since 1601-01-01 00:00:00 UTC (the
// FILETIME epoch); CDateTimeSpan is a non-negative duration in the same unit.
// Both hold the unsigned 64-bit count as two 32-bit words, high word first.
// Every CDateTime constructor except the (seconds, microseconds) ones keeps
// the count a multiple of 10, so dates have microsecond resolution.
//
// Failures throw ATL::CAtlException with an HRESULT:
//   0x80004005 (E_FAIL)  a subtraction would go below zero; text whose fields
//                        the calendar rejects; a display format that fails
//   0x8007076D           a non-digit where generalized-time text needs a digit
//   the last platform error as an HRESULT (0x80070057 for a refused calendar
//                        field) when SystemTimeToFileTime rejects explicit fields
// Additions and multiplications wrap modulo 2^64; divisions by zero are not
// guarded.
#ifndef KORVEX_CORE_DATETIME_H
#define KORVEX_CORE_DATETIME_H

#include <korvex/core/StringProxy.h>
#include <korvex/platform/export.h>
#include <korvex/platform/win32/windef.h>

namespace Korvex {

struct DateTimeTicks;  // internal access to the tick count

class KORVEX_API CDateTimeSpan {
 public:
  // CDateTimeSpan() is the zero span.
  CDateTimeSpan();
  // CDateTimeSpan(seconds, microseconds) is seconds * 10^7 ticks (64-bit)
  // plus microseconds * 10 ticks, that product formed in 32-bit arithmetic.
  CDateTimeSpan(unsigned int seconds, unsigned int microseconds);
  // CDateTimeSpan(text) reads generalized-time text as counts: YYYY years of
  // 365 days, MM months of 30 days, DD days, then hours, minutes, seconds and
  // an optional fraction, none range-checked ("00000000250000" is 25 hours).
  // A non-digit in a field throws 0x8007076D.
  explicit CDateTimeSpan(char const* text);
  CDateTimeSpan(CDateTimeSpan const& other);
  CDateTimeSpan& operator=(CDateTimeSpan const& other);

  void swap(CDateTimeSpan& other);
  unsigned int getLowPart();
  unsigned int getHighPart();

  // getGeneralizedTime writes the span as years (365 days, at least 4 digits),
  // months (30 days), days, hours, minutes, seconds, "." and six fraction
  // digits, then removes every trailing '0' and '.' (the trim runs through the
  // decimal point into the seconds and earlier fields) and appends "Z":
  // 10 s gives "0000000000001Z", the zero span "Z". The text does not in
  // general read back to the same span.
  CStringProxy getGeneralizedTime() const;
  // tostring is getGeneralizedTime.
  CStringProxy tostring() const;
  // towstring is that text converted with MultiByteToWideChar from the active
  // code page; a failed conversion gives an empty string.
  CWStringProxy towstring() const;

  // Fixed-length units, built when the library is loaded: a year is 365 days
  // and a month 30 days (calendar steps are DateAddA's business).
  static CDateTimeSpan const& OneYear();
  static CDateTimeSpan const& OneMonth();
  static CDateTimeSpan const& OneDay();
  static CDateTimeSpan const& OneHour();
  static CDateTimeSpan const& OneMinute();
  static CDateTimeSpan const& OneSecond();
  static CDateTimeSpan const& OneMillisecond();

 private:
  friend struct DateTimeTicks;
  unsigned int m_highPart;
  unsigned int m_lowPart;
};

class KORVEX_API CDateTime {
 public:
  // CDateTime(seconds, microseconds) takes Unix time: ticks = seconds * 10^7 +
  // 116444736000000000 + microseconds * 10, the last product formed in 32-bit
  // unsigned arithmetic. The int form exists so that CDateTime(0, 0) is not
  // ambiguous; it goes through the long long form, as does the long form.
  CDateTime(long long seconds, unsigned int microseconds);
  CDateTime(long seconds, unsigned int microseconds);
  CDateTime(int seconds, unsigned int microseconds);
  // CDateTime(FILETIME) holds the value rounded down to a multiple of 10.
  explicit CDateTime(_FILETIME fileTime);
  // CDateTime(SYSTEMTIME) converts with SystemTimeToFileTime; a refused field
  // throws the last platform error as an HRESULT (0x80070057).
  explicit CDateTime(_SYSTEMTIME systemTime);
  // CDateTime(year, ..., millisecond, microsecond) converts the first seven
  // fields with SystemTimeToFileTime (failure as above) and adds
  // microsecond * 10 ticks (32-bit product). The seven calendar fields are
  // SYSTEMTIME words: one above 65535 is refused like any other out-of-range
  // field (0x80070057) instead of being cut to 16 bits.
  CDateTime(unsigned int year, unsigned int month, unsigned int day, unsigned int hour,
            unsigned int minute, unsigned int second, unsigned int millisecond,
            unsigned int microsecond);
  // CDateTime(text) parses generalized time "YYYYMMDD[hh[mm[ss[.f]]]][Z]"
  // (RFC 5280 4.1.2.5.2 form, UTC only). The separator before the fraction is
  // not examined, fraction digits past the sixth are ignored, and a time-zone
  // offset is not recognised. Throws 0x8007076D for a non-digit in a field and
  // 0x80004005 when the calendar rejects the fields (e.g. month or day 0).
  explicit CDateTime(char const* text);
  CDateTime(CDateTime const& other);
  CDateTime& operator=(CDateTime const& other);

  // Now returns the current UTC time at microsecond resolution.
  static CDateTime Now();

  _FILETIME getFileTime() const;
  // getSystemTime breaks the value down with FileTimeToSystemTime without
  // checking it: a value of 2^63 ticks or more gives an unspecified result.
  _SYSTEMTIME getSystemTime() const;
  // getTime returns Unix seconds computed in unsigned 64-bit arithmetic, so a
  // date before 1970 gives a very large number.
  unsigned long long getTime() const;

  unsigned int year() const;
  unsigned int month() const;
  unsigned int day() const;
  unsigned int hour() const;
  unsigned int minute() const;
  unsigned int second() const;
  // millisecond is the millisecond within the second, microsecond the
  // microsecond within that millisecond.
  unsigned int millisecond() const;
  unsigned int microsecond() const;

  // utcToLocal and localToUtc shift the whole value by the offset of the
  // process's time zone at the present moment (timezone, less one hour when
  // daylight saving is in effect now), not at the date converted.
  CDateTime utcToLocal() const;
  CDateTime localToUtc() const;

  void swap(CDateTime& other);

  // getGeneralizedTime returns "YYYYMMDDhhmmss[.f]Z" with the fraction's
  // trailing zeros removed (no fraction when it is zero); years above 9999 are
  // written modulo 10000. For a value of 2^63 ticks or more it rethrows the
  // exception being handled; called outside a handler, that ends the process
  // through std::terminate.
  CStringProxy getGeneralizedTime() const;
  // getGeneralizedTimeTrimMicroseconds returns display text "%d.%m.%Y %X"
  // (strftime, current locale) without fraction. Same 2^63 rule as above;
  // throws 0x80004005 when strftime fails.
  CStringProxy getGeneralizedTimeTrimMicroseconds() const;
  // tostring and towstring return "%d.%m.%Y %H:%M:%S" followed, when the
  // value has a sub-second part, by "." and the milliseconds as 3 digits and,
  // when the microseconds are not zero, those as 3 more digits
  // ("31.01.2024 23:59:59.500", "...:59.000007"). Same failure rules.
  CStringProxy tostring() const;
  CWStringProxy towstring() const;

 private:
  friend struct DateTimeTicks;
  unsigned int m_highPart;
  unsigned int m_lowPart;
};

// Comparisons are unsigned 64-bit comparisons of the tick counts.
KORVEX_API bool operator==(CDateTime const& left, CDateTime const& right);
KORVEX_API bool operator!=(CDateTime const& left, CDateTime const& right);
KORVEX_API bool operator<(CDateTime const& left, CDateTime const& right);
KORVEX_API bool operator<=(CDateTime const& left, CDateTime const& right);
KORVEX_API bool operator>(CDateTime const& left, CDateTime const& right);
KORVEX_API bool operator>=(CDateTime const& left, CDateTime const& right);
KORVEX_API bool operator==(CDateTimeSpan const& left, CDateTimeSpan const& right);
KORVEX_API bool operator!=(CDateTimeSpan const& left, CDateTimeSpan const& right);
KORVEX_API bool operator<(CDateTimeSpan const& left, CDateTimeSpan const& right);
KORVEX_API bool operator<=(CDateTimeSpan const& left, CDateTimeSpan const& right);
KORVEX_API bool operator>(CDateTimeSpan const& left, CDateTimeSpan const& right);
KORVEX_API bool operator>=(CDateTimeSpan const& left, CDateTimeSpan const& right);

// Date plus span wraps; date minus span throws 0x80004005 when the span is
// larger than the date; date minus date throws 0x80004005 when the right
// date is later. The binary forms copy the left operand and apply the
// compound form.
KORVEX_API CDateTime& operator+=(CDateTime& date, CDateTimeSpan const& span);
KORVEX_API CDateTime operator+(CDateTime const& date, CDateTimeSpan const& span);
KORVEX_API CDateTime& operator-=(CDateTime& date, CDateTimeSpan const& span);
KORVEX_API CDateTime operator-(CDateTime const& date, CDateTimeSpan const& span);
KORVEX_API CDateTimeSpan operator-(CDateTime const& left, CDateTime const& right);

// Span arithmetic on the tick counts: sums and products wrap; a difference
// that would be negative throws 0x80004005; quotients and remainders are
// unsigned and do not check for a zero divisor.
KORVEX_API CDateTimeSpan& operator+=(CDateTimeSpan& left, CDateTimeSpan const& right);
KORVEX_API CDateTimeSpan operator+(CDateTimeSpan const& left, CDateTimeSpan const& right);
KORVEX_API CDateTimeSpan& operator-=(CDateTimeSpan& left, CDateTimeSpan const& right);
KORVEX_API CDateTimeSpan operator-(CDateTimeSpan const& left, CDateTimeSpan const& right);
KORVEX_API CDateTimeSpan& operator*=(CDateTimeSpan& span, unsigned int factor);
KORVEX_API CDateTimeSpan operator*(CDateTimeSpan const& span, unsigned int factor);
KORVEX_API CDateTimeSpan& operator/=(CDateTimeSpan& span, unsigned int divisor);
KORVEX_API CDateTimeSpan operator/(CDateTimeSpan const& span, unsigned int divisor);
KORVEX_API CDateTimeSpan& operator%=(CDateTimeSpan& span, unsigned int divisor);
KORVEX_API CDateTimeSpan operator%(CDateTimeSpan const& span, unsigned int divisor);
// span / span is the plain quotient of the tick counts (OneDay() / OneHour() is 24).
KORVEX_API unsigned long long operator/(CDateTimeSpan const& left, CDateTimeSpan const& right);
KORVEX_API CDateTimeSpan operator%(CDateTimeSpan const& left, CDateTimeSpan const& right);

}  // namespace Korvex

#endif
