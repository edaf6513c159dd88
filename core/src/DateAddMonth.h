// DateAddMonth: calendar month steps for DateAddA (internal).
#ifndef KORVEX_CORE_SRC_DATEADDMONTH_H
#define KORVEX_CORE_SRC_DATEADDMONTH_H

#include <korvex/core/DateTime.h>

namespace Korvex {

// DateAddMonth moves `date` by `months` calendar months (negative: back),
// keeping the time of day and clamping the day to the length of the target
// month. Throws the platform's last error as an HRESULT when the target year
// is outside what SystemTimeToFileTime accepts.
CDateTime DateAddMonth(int months, CDateTime const& date);

}  // namespace Korvex

#endif
