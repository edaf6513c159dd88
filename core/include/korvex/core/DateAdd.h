// korvex/core/DateAdd.h: calendar addition to a CDateTime.
#ifndef KORVEX_CORE_DATEADD_H
#define KORVEX_CORE_DATEADD_H

#include <korvex/core/DateTime.h>
#include <korvex/platform/export.h>

namespace Korvex {

// DateAddA adds `count` units to `date` and returns the new date. Only the
// first character of `interval` counts, lower case only: 'y' years and 'm'
// months (calendar steps, the day clamped to the end of the target month, so
// 31 January + 1 month is 28 or 29 February), 'w' weeks, 'd' or the empty
// string days, 'h' hours, 'n' minutes, 's' seconds (fixed-length steps). A
// count below 1 steps backwards (0 returns the date unchanged). Throws
// ATL::CAtlException 0x80070057 for a null or unknown interval ("D", "M"
// included), 0x80004005 when a backward step goes below 1601-01-01, and the
// platform's last error as an HRESULT when a calendar step lands outside the
// years the platform accepts. Forward fixed-length steps are not checked and
// wrap modulo 2^64 ticks. A year count is multiplied by 12 in wrapping 32-bit
// arithmetic.
KORVEX_API CDateTime DateAddA(char const* interval, int count, CDateTime const& date);

// DateAddW is DateAddA for a wide interval code, with the same codes, results
// and failures.
KORVEX_API CDateTime DateAddW(wchar_t const* interval, int count, CDateTime const& date);

}  // namespace Korvex

#endif
