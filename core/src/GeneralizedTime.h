// GeneralizedTimeToTm: the positional reader of generalized-time text shared
// by CDateTime(char const*) and CDateTimeSpan(char const*) (internal).
#ifndef KORVEX_CORE_SRC_GENERALIZEDTIME_H
#define KORVEX_CORE_SRC_GENERALIZEDTIME_H

#include <ctime>
#include <string>

namespace Korvex {

// GeneralizedTimeToTm reads "YYYYMMDDhhmmss?ffffff" by position: year 0-3,
// month 4-5, day 6-7, hour 8-9, minute 10-11, second 12-13, each read only
// when the text reaches its last position and 0 otherwise; position 14 (the
// '.' or ',' separator) is never examined; from position 15 on comes the
// fraction, which loses one trailing 'Z', is padded with '0' to 6 characters
// and is read from its first 6 (later characters are ignored). `fraction`
// receives the microseconds, 0 without a fraction. A non-digit in a field
// that is read throws ATL::CAtlException 0x8007076D. The result has tm_sec,
// tm_min, tm_hour and tm_mday set and, unless rawFields, tm_year = year -
// 1900 and tm_mon = month - 1; with rawFields they hold year and month as
// read. Its other fields are zero.
std::tm GeneralizedTimeToTm(std::string const& text, unsigned int& fraction, bool rawFields);

}  // namespace Korvex

#endif
