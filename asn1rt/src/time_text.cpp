// time_text.cpp: reading and writing UTCTime and GeneralizedTime text.
#include "time_text.h"

#include <korvex/asn1rt/asn1type.h>
#include <stdint.h>
#include <string.h>

namespace Korvex {
namespace rt {
namespace {

constexpr int kMaxOffsetMinutes = 23 * 60 + 59;

class Reader {
 public:
  Reader(const char* text, size_t length) : text_(text), length_(length) {}

  bool AtEnd() const { return at_ == length_; }
  char Peek() const { return AtEnd() ? '\0' : text_[at_]; }
  void Skip() { ++at_; }
  bool IsDigitAt(size_t offset) const {
    return at_ + offset < length_ && text_[at_ + offset] >= '0' && text_[at_ + offset] <= '9';
  }
  // Number reads exactly `count` decimal digits.
  bool Number(int count, int* value) {
    int result = 0;
    for (int i = 0; i < count; ++i) {
      if (!IsDigitAt(static_cast<size_t>(i))) return false;
      result = result * 10 + (text_[at_ + static_cast<size_t>(i)] - '0');
    }
    at_ += static_cast<size_t>(count);
    *value = result;
    return true;
  }
  // Digits reads a run of digits (possibly none) and returns its start.
  const char* Digits(size_t* count) {
    const char* start = text_ + at_;
    size_t n = 0;
    while (IsDigitAt(n)) ++n;
    at_ += n;
    *count = n;
    return start;
  }

 private:
  const char* text_;
  size_t length_;
  size_t at_ = 0;
};

// MultiplyFraction multiplies the decimal fraction 0.d1d2...dn by `factor`
// in place and returns the whole part that carries out (exact: no rounding).
int MultiplyFraction(char* digits, int count, int factor) {
  int carry = 0;
  for (int i = count; i-- > 0;) {
    int value = (digits[i] - '0') * factor + carry;
    digits[i] = static_cast<char>('0' + value % 10);
    carry = value / 10;
  }
  return carry;
}

int TrimFraction(char const* digits, int count) {
  while (count > 0 && digits[count - 1] == '0') --count;
  return count;
}

// ReadZone reads "Z", "+hh[mm]" or "-hh[mm]" (minutes required when
// `fourDigits`), or nothing (local time). Returns 0, -3 or -31.
int ReadZone(Reader* in, bool fourDigits, TimeFields* out) {
  char c = in->Peek();
  if (in->AtEnd()) {
    out->zone = ASN1TimeFields::kLocal;
    return 0;
  }
  if (c == 'Z') {
    in->Skip();
    out->zone = ASN1TimeFields::kUTC;
    return 0;
  }
  if (c != '+' && c != '-') return ASN_E_IDNOTFOU;
  in->Skip();
  int hours = 0, minutes = 0;
  if (!in->Number(2, &hours)) return ASN_E_IDNOTFOU;
  if (fourDigits || !in->AtEnd()) {
    if (!in->Number(2, &minutes)) return ASN_E_IDNOTFOU;
  }
  if (hours > 23 || minutes > 59) return ASN_E_INVDATETIME;
  out->zone = ASN1TimeFields::kOffset;
  out->offsetMinutes = (c == '-' ? -1 : 1) * (hours * 60 + minutes);
  return 0;
}

int ParseUTCTime(bool der, Reader* in, TimeFields* out) {
  int yy = 0;
  if (!in->Number(2, &yy) || !in->Number(2, &out->month) || !in->Number(2, &out->day) ||
      !in->Number(2, &out->hour) || !in->Number(2, &out->minute)) {
    return ASN_E_IDNOTFOU;
  }
  // RFC 5280 4.1.2.5.1: YY of 50 or more is 19YY, below 50 is 20YY.
  out->year = yy >= 50 ? 1900 + yy : 2000 + yy;
  if (in->IsDigitAt(0)) {
    if (!in->Number(2, &out->second)) return ASN_E_IDNOTFOU;
  } else if (der) {
    return ASN_E_IDNOTFOU;  // X.690 11.8.2: seconds are always present
  }
  if (in->AtEnd()) return ASN_E_IDNOTFOU;               // X.680 47.3: the zone is not optional
  if (der && in->Peek() != 'Z') return ASN_E_IDNOTFOU;  // X.690 11.8.1
  int status = ReadZone(in, true, out);
  if (status != 0) return status;
  return in->AtEnd() ? 0 : ASN_E_IDNOTFOU;
}

int ParseGeneralizedTime(bool der, Reader* in, TimeFields* out) {
  if (!in->Number(4, &out->year) || !in->Number(2, &out->month) || !in->Number(2, &out->day) ||
      !in->Number(2, &out->hour)) {
    return ASN_E_IDNOTFOU;
  }
  int lastUnit = 0;  // 0 hour, 1 minute, 2 second: what a fraction is a part of
  if (in->IsDigitAt(0)) {
    if (!in->Number(2, &out->minute)) return ASN_E_IDNOTFOU;
    lastUnit = 1;
    if (in->IsDigitAt(0)) {
      if (!in->Number(2, &out->second)) return ASN_E_IDNOTFOU;
      lastUnit = 2;
    }
  }
  if (der && lastUnit != 2) return ASN_E_IDNOTFOU;  // X.690 11.7.2 wants seconds
  char separator = in->Peek();
  if (separator == '.' || separator == ',') {
    if (der && separator != '.') return ASN_E_IDNOTFOU;  // X.690 11.7.4
    in->Skip();
    size_t count = 0;
    const char* digits = in->Digits(&count);
    if (count == 0) return ASN_E_IDNOTFOU;
    if (der && digits[count - 1] == '0') return ASN_E_IDNOTFOU;  // X.690 11.7.3
    // Trailing zeros add nothing; more significant digits than
    // kMaxFractionDigits do not fit the value.
    size_t kept = count;
    while (kept > 0 && digits[kept - 1] == '0') --kept;
    if (kept > static_cast<size_t>(kMaxFractionDigits)) return ASN_E_INVDATETIME;
    char work[kMaxFractionDigits];
    memcpy(work, digits, kept);
    int n = static_cast<int>(kept);
    if (lastUnit == 0) out->minute = MultiplyFraction(work, n, 60);
    if (lastUnit <= 1) out->second = MultiplyFraction(work, n, 60);
    n = TrimFraction(work, n);
    memcpy(out->fraction, work, static_cast<size_t>(n));
    out->fractionDigits = n;
  }
  if (der && (in->AtEnd() || in->Peek() != 'Z')) return ASN_E_IDNOTFOU;  // X.690 11.7.1
  int status = ReadZone(in, false, out);
  if (status != 0) return status;
  return in->AtEnd() ? 0 : ASN_E_IDNOTFOU;
}

int64_t FloorDivide(int64_t a, int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

// Day numbers of the proleptic Gregorian calendar (0 = 1970-01-01), after
// H. Hinnant's days_from_civil / civil_from_days.
int64_t DaysFromCivil(int64_t y, int m, int d) {
  y -= m <= 2;
  int64_t era = FloorDivide(y, 400);
  int64_t yearOfEra = y - era * 400;
  int64_t dayOfYear = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

void CivilFromDays(int64_t z, int64_t* y, int* m, int* d) {
  z += 719468;
  int64_t era = FloorDivide(z, 146097);
  int64_t dayOfEra = z - era * 146097;
  int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  int64_t mp = (5 * dayOfYear + 2) / 153;
  *d = static_cast<int>(dayOfYear - (153 * mp + 2) / 5 + 1);
  *m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  *y = yearOfEra + era * 400 + (*m <= 2);
}

void PutNumber(char** out, int value, int digits) {
  for (int i = digits; i-- > 0;) {
    (*out)[i] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
  *out += digits;
}

}  // namespace

void YearRange(TimeKind kind, int* low, int* high) {
  if (kind == TimeKind::kUTCTime) {
    *low = 1950;
    *high = 2049;
  } else {
    *low = 0;
    *high = 9999;
  }
}

int DaysInMonth(int year, int month) {
  static const int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  if (month == 2) {
    bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return leap ? 29 : 28;
  }
  return kDays[month - 1];
}

int CheckTimeFields(TimeKind kind, TimeFields const& f) {
  int low, high;
  YearRange(kind, &low, &high);
  if (f.year < low || f.year > high) return ASN_E_INVDATETIME;
  if (f.month < 1 || f.month > 12) return ASN_E_INVDATETIME;
  if (f.day < 1 || f.day > DaysInMonth(f.year, f.month)) return ASN_E_INVDATETIME;
  if (f.hour < 0 || f.hour > 23 || f.minute < 0 || f.minute > 59) return ASN_E_INVDATETIME;
  if (f.second < 0 || f.second > 59) return ASN_E_INVDATETIME;
  if (f.fractionDigits < 0 || f.fractionDigits > kMaxFractionDigits) return ASN_E_INVDATETIME;
  if (f.zone == ASN1TimeFields::kOffset &&
      (f.offsetMinutes < -kMaxOffsetMinutes || f.offsetMinutes > kMaxOffsetMinutes)) {
    return ASN_E_INVDATETIME;
  }
  if (kind == TimeKind::kUTCTime && (f.fractionDigits != 0 || f.zone == ASN1TimeFields::kLocal)) {
    return ASN_E_INVDATETIME;
  }
  return 0;
}

int ParseTimeText(TimeKind kind, bool der, const char* text, size_t length, TimeFields* fields) {
  if (text == nullptr) return ASN_E_INVPARAM;
  TimeFields parsed;
  Reader in(text, length);
  int status = kind == TimeKind::kUTCTime ? ParseUTCTime(der, &in, &parsed)
                                          : ParseGeneralizedTime(der, &in, &parsed);
  if (status == 0) status = CheckTimeFields(kind, parsed);
  if (status == 0) *fields = parsed;
  return status;
}

int ShiftToUTC(TimeKind kind, TimeFields* fields) {
  if (fields->zone != ASN1TimeFields::kOffset) return 0;
  int64_t minutes = DaysFromCivil(fields->year, fields->month, fields->day) * 1440 +
                    fields->hour * 60 + fields->minute - fields->offsetMinutes;
  int64_t days = FloorDivide(minutes, 1440);
  int64_t minuteOfDay = minutes - days * 1440;
  int64_t year;
  int month, day;
  CivilFromDays(days, &year, &month, &day);
  int low, high;
  YearRange(kind, &low, &high);
  if (year < low || year > high) return ASN_E_INVDATETIME;
  fields->year = static_cast<int>(year);
  fields->month = month;
  fields->day = day;
  fields->hour = static_cast<int>(minuteOfDay / 60);
  fields->minute = static_cast<int>(minuteOfDay % 60);
  fields->zone = ASN1TimeFields::kUTC;
  fields->offsetMinutes = 0;
  return 0;
}

int FormatTimeText(TimeKind kind, bool der, TimeFields const& fields, char* out) {
  TimeFields f = fields;
  if (der) {
    int status = ShiftToUTC(kind, &f);
    if (status != 0) return status;
    f.zone = ASN1TimeFields::kUTC;
  }
  char* p = out;
  if (kind == TimeKind::kUTCTime) {
    PutNumber(&p, f.year % 100, 2);
  } else {
    PutNumber(&p, f.year, 4);
  }
  PutNumber(&p, f.month, 2);
  PutNumber(&p, f.day, 2);
  PutNumber(&p, f.hour, 2);
  PutNumber(&p, f.minute, 2);
  PutNumber(&p, f.second, 2);
  if (kind == TimeKind::kGeneralizedTime && f.fractionDigits > 0) {
    *p++ = '.';
    memcpy(p, f.fraction, static_cast<size_t>(f.fractionDigits));
    p += f.fractionDigits;
  }
  if (f.zone == ASN1TimeFields::kOffset) {
    int offset = f.offsetMinutes;
    *p++ = offset < 0 ? '-' : '+';
    if (offset < 0) offset = -offset;
    PutNumber(&p, offset / 60, 2);
    PutNumber(&p, offset % 60, 2);
  } else if (f.zone == ASN1TimeFields::kUTC || kind == TimeKind::kUTCTime) {
    *p++ = 'Z';
  }
  *p = '\0';
  return static_cast<int>(p - out);
}

}  // namespace rt
}  // namespace Korvex
