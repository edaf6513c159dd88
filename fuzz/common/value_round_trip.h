// value_round_trip.h: the oracle the value-class fuzz targets share. A
// decode either succeeds or throws ATL::CAtlException with a code of the
// value layer; a decoded value is encoded again (which may fail with the
// codec code only, for values their class reads but cannot write); from
// there on what was written must read back and encode to the same bytes.
// Anything else aborts. Header-only; include it as "../common/...".
#ifndef KORVEX_FUZZ_COMMON_VALUE_ROUND_TRIP_H
#define KORVEX_FUZZ_COMMON_VALUE_ROUND_TRIP_H

#include <korvex/core/Blob.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstdlib>

namespace korvexfuzz {

// KnownCode: the codes a value class may throw on bad input.
inline bool KnownCode(unsigned code) {
  return code == 0x80093101u || code == 0x80093106u || code == 0x80070057u || code == 0x8007000Eu;
}

// RoundTrip<Value>(input): the oracle above for one class (default
// constructor, decode(CBlob), encode()). With CompareValues the value read
// back must also equal (==) the first one decoded.
template <class Value, bool CompareValues = false>
void RoundTrip(Korvex::CBlob const& input) {
  Value first;
  try {
    first.decode(input);
  } catch (ATL::CAtlException const& e) {
    if (!KnownCode(static_cast<unsigned>(e.m_hr))) std::abort();
    return;
  }
  Korvex::CBlob once;
  try {
    once = first.encode();
  } catch (ATL::CAtlException const& e) {
    if (static_cast<unsigned>(e.m_hr) != 0x80093101u) std::abort();
    return;
  }
  Value second;
  second.decode(once);  // what we wrote must read back: no catch
  if constexpr (CompareValues) {
    if (!(second == first)) std::abort();
  }
  Korvex::CBlob twice = second.encode();
  if (!(once == twice)) std::abort();
}

}  // namespace korvexfuzz

#endif
