// thrown_code.h: the code of the ATL::CAtlException a call throws, the way
// every test binary checks a failure code. Header-only.
#ifndef KORVEX_TESTS_COMMON_THROWN_CODE_H
#define KORVEX_TESTS_COMMON_THROWN_CODE_H

#include <korvex/platform/atl/atlexcept.h>

namespace korvextest {

// CodeOf(f): the HRESULT of the ATL::CAtlException f throws; 0 when it
// returns (another exception type fails the test).
template <class F>
HRESULT CodeOf(F&& f) {
  try {
    f();
  } catch (ATL::CAtlException const& e) {
    return e.m_hr;
  }
  return 0;
}

// ThrownCode(f): CodeOf(f) as the unsigned value the value-class tests
// compare with (0x80093101u ...).
template <class F>
unsigned ThrownCode(F&& f) {
  return static_cast<unsigned>(CodeOf(f));
}

}  // namespace korvextest

#endif
