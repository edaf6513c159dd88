// writeZeroPadded: decimal fields of the date-time texts without printf's
// format parsing, which dominated their cost (internal).
#ifndef KORVEX_CORE_SRC_DATETIMEDIGITS_H
#define KORVEX_CORE_SRC_DATETIMEDIGITS_H

#include <cstdint>

namespace Korvex {

// writeZeroPadded writes `value` in decimal, zero-padded to at least
// `minWidth` digits (at most 20), at `out` and returns the end of what it wrote.
inline char* writeZeroPadded(char* out, uint64_t value, int minWidth) {
  char reversed[20];
  int count = 0;
  do {
    reversed[count++] = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  while (count < minWidth) reversed[count++] = '0';
  while (count > 0) *out++ = reversed[--count];
  return out;
}

}  // namespace Korvex

#endif
