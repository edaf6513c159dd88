// GeneralizedTimeText.cpp: DateToASN1GeneralizedTime.
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/GeneralizedTimeText.h>

#include <cstring>

namespace Korvex {
namespace ASN1 {

namespace {

// 10000-01-01T00:00:00Z in ticks since 1601: the first time that four year
// digits cannot hold (getGeneralizedTime would write the year modulo 10000,
// and breaks down values of 2^63 ticks and more not at all).
constexpr unsigned long long kYear10000Ticks = 2650467744000000000ull;

unsigned long long Ticks(CDateTime const& t) {
  _FILETIME ft = t.getFileTime();
  return (static_cast<unsigned long long>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
}

}  // namespace

char const* DateToASN1GeneralizedTime(ASN1CTXT* ctxt, CDateTime const& t, bool wholeSeconds) {
  if (!ctxt) throwInvalidArgument();
  if (Ticks(t) >= kYear10000Ticks) throwCodecError();
  CDateTime copy(t);
  if (wholeSeconds) {
    // Rebuilt from the calendar fields with no sub-second part: the fraction is
    // cut, never rounded up to the next second.
    copy = CDateTime(t.year(), t.month(), t.day(), t.hour(), t.minute(), t.second(), 0, 0);
  }
  CStringProxy text = copy.getGeneralizedTime();
  size_t n = std::strlen(text.c_str());
  auto* out = checkHeap(static_cast<char*>(rtMemHeapAlloc(&ctxt->pTypeMemHeap, n + 1)));
  std::memcpy(out, text.c_str(), n + 1);
  return out;
}

}  // namespace ASN1
}  // namespace Korvex
