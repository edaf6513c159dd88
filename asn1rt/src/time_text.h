// time_text.h: UTCTime and GeneralizedTime text, read into fields and written
// back (internal to the runtime; the classes of ASN1CTime.h sit on top).
//
// Forms read (X.680 46 and 47, X.690 11.7 and 11.8):
//   UTCTime          YYMMDDhhmm[ss](Z | +hhmm | -hhmm)
//   GeneralizedTime  YYYYMMDDhh[mm[ss]][(.|,)f+][Z | +hh[mm] | -hh[mm]]
// A fraction after the hour or minute is a fraction of that unit and is
// turned into minutes, seconds and a fraction of a second. With DER rules
// only the canonical forms are read: YYMMDDhhmmssZ, and
// YYYYMMDDhhmmss[.f+]Z with no trailing zero in the fraction.
#ifndef KORVEX_ASN1RT_SRC_TIME_TEXT_H
#define KORVEX_ASN1RT_SRC_TIME_TEXT_H

#include <korvex/asn1rt/ASN1CTime.h>
#include <stddef.h>

namespace Korvex {
namespace rt {

using TimeFields = ASN1TimeFields;
constexpr int kMaxFractionDigits = ASN1TimeFields::kMaxFractionDigits;
// Longest text either form produces, without the NUL:
// YYYYMMDDhhmmss "." fraction "+hhmm".
constexpr size_t kMaxTimeTextLength = 14 + 1 + kMaxFractionDigits + 5;

enum class TimeKind { kUTCTime, kGeneralizedTime };

// YearRange gives the years a kind can hold: 1950..2049 for UTCTime (the
// two-digit rule of RFC 5280 4.1.2.5.1), 0..9999 for GeneralizedTime.
void YearRange(TimeKind kind, int* low, int* high);

// DaysInMonth: the length of a month of the proleptic Gregorian calendar.
int DaysInMonth(int year, int month);

// ParseTimeText fills `fields` from `length` bytes of text. Returns 0, -3
// when the text is not of the form (or not canonical under DER rules), or
// -31 when a field is out of range. `fields` is unchanged on failure.
int ParseTimeText(TimeKind kind, bool der, const char* text, size_t length, TimeFields* fields);

// CheckTimeFields returns 0 when every field is in range for `kind`, else
// -31. UTCTime has no fraction and no local form (X.680 47.3), so either is
// out of range there.
int CheckTimeFields(TimeKind kind, TimeFields const& fields);

// FormatTimeText writes the text of `fields` (which must pass
// CheckTimeFields) into `out`, which holds at least kMaxTimeTextLength + 1
// bytes, and returns its length. Under DER rules a time with an offset is
// first moved to UTC and written with "Z", and a local time is written with
// "Z" as well; -31 when moving to UTC leaves the kind's year range.
int FormatTimeText(TimeKind kind, bool der, TimeFields const& fields, char* out);

// ShiftToUTC moves a time with an offset to UTC (the zone becomes kUTC);
// other times are left as they are. Returns 0, or -31 when the result leaves
// the kind's year range (fields unchanged then).
int ShiftToUTC(TimeKind kind, TimeFields* fields);

}  // namespace rt
}  // namespace Korvex

#endif
