// Comparison and arithmetic of CDateTime and CDateTimeSpan on the tick counts.
#include <korvex/core/DateTime.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/win32/winerror.h>

#include "DateTimeTicks.h"

namespace Korvex {
namespace {

uint64_t ticks(CDateTime const& d) { return DateTimeTicks::get(d); }
uint64_t ticks(CDateTimeSpan const& s) { return DateTimeTicks::get(s); }

// Neither a date nor a span goes below zero.
void requireNotBelow(uint64_t minuend, uint64_t subtrahend) {
  if (subtrahend > minuend) AtlThrow(E_FAIL);
}

}  // namespace

bool operator==(CDateTime const& l, CDateTime const& r) { return ticks(l) == ticks(r); }
bool operator!=(CDateTime const& l, CDateTime const& r) { return ticks(l) != ticks(r); }
bool operator<(CDateTime const& l, CDateTime const& r) { return ticks(l) < ticks(r); }
bool operator<=(CDateTime const& l, CDateTime const& r) { return ticks(l) <= ticks(r); }
bool operator>(CDateTime const& l, CDateTime const& r) { return ticks(l) > ticks(r); }
bool operator>=(CDateTime const& l, CDateTime const& r) { return ticks(l) >= ticks(r); }

bool operator==(CDateTimeSpan const& l, CDateTimeSpan const& r) { return ticks(l) == ticks(r); }
bool operator!=(CDateTimeSpan const& l, CDateTimeSpan const& r) { return ticks(l) != ticks(r); }
bool operator<(CDateTimeSpan const& l, CDateTimeSpan const& r) { return ticks(l) < ticks(r); }
bool operator<=(CDateTimeSpan const& l, CDateTimeSpan const& r) { return ticks(l) <= ticks(r); }
bool operator>(CDateTimeSpan const& l, CDateTimeSpan const& r) { return ticks(l) > ticks(r); }
bool operator>=(CDateTimeSpan const& l, CDateTimeSpan const& r) { return ticks(l) >= ticks(r); }

CDateTime& operator+=(CDateTime& date, CDateTimeSpan const& span) {
  DateTimeTicks::set(date, ticks(date) + ticks(span));
  return date;
}

CDateTime operator+(CDateTime const& date, CDateTimeSpan const& span) {
  CDateTime result(date);
  return result += span;
}

CDateTime& operator-=(CDateTime& date, CDateTimeSpan const& span) {
  requireNotBelow(ticks(date), ticks(span));
  DateTimeTicks::set(date, ticks(date) - ticks(span));
  return date;
}

CDateTime operator-(CDateTime const& date, CDateTimeSpan const& span) {
  CDateTime result(date);
  return result -= span;
}

CDateTimeSpan operator-(CDateTime const& left, CDateTime const& right) {
  requireNotBelow(ticks(left), ticks(right));
  return DateTimeTicks::span(ticks(left) - ticks(right));
}

CDateTimeSpan& operator+=(CDateTimeSpan& left, CDateTimeSpan const& right) {
  DateTimeTicks::set(left, ticks(left) + ticks(right));
  return left;
}

CDateTimeSpan operator+(CDateTimeSpan const& left, CDateTimeSpan const& right) {
  CDateTimeSpan result(left);
  return result += right;
}

CDateTimeSpan& operator-=(CDateTimeSpan& left, CDateTimeSpan const& right) {
  requireNotBelow(ticks(left), ticks(right));
  DateTimeTicks::set(left, ticks(left) - ticks(right));
  return left;
}

CDateTimeSpan operator-(CDateTimeSpan const& left, CDateTimeSpan const& right) {
  requireNotBelow(ticks(left), ticks(right));
  CDateTimeSpan result(left);
  return result -= right;
}

CDateTimeSpan& operator*=(CDateTimeSpan& span, unsigned int factor) {
  DateTimeTicks::set(span, ticks(span) * factor);
  return span;
}

CDateTimeSpan operator*(CDateTimeSpan const& span, unsigned int factor) {
  CDateTimeSpan result(span);
  return result *= factor;
}

CDateTimeSpan& operator/=(CDateTimeSpan& span, unsigned int divisor) {
  DateTimeTicks::set(span, ticks(span) / divisor);
  return span;
}

CDateTimeSpan operator/(CDateTimeSpan const& span, unsigned int divisor) {
  CDateTimeSpan result(span);
  return result /= divisor;
}

CDateTimeSpan& operator%=(CDateTimeSpan& span, unsigned int divisor) {
  DateTimeTicks::set(span, ticks(span) % divisor);
  return span;
}

CDateTimeSpan operator%(CDateTimeSpan const& span, unsigned int divisor) {
  CDateTimeSpan result(span);
  return result %= divisor;
}

unsigned long long operator/(CDateTimeSpan const& left, CDateTimeSpan const& right) {
  return ticks(left) / ticks(right);
}

CDateTimeSpan operator%(CDateTimeSpan const& left, CDateTimeSpan const& right) {
  return DateTimeTicks::span(ticks(left) % ticks(right));
}

}  // namespace Korvex
