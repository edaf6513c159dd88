#include <gtest/gtest.h>

#include <thread>

#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/win32/errhandlingapi.h>
#include "../common/thrown_code.h"

namespace {

using korvextest::CodeOf;

TEST(AtlException, CarriesCodeAndConvertsToHresult) {
  ATL::CAtlException e(static_cast<HRESULT>(0x80093101u));
  EXPECT_EQ(static_cast<HRESULT>(0x80093101u), e.m_hr);
  EXPECT_EQ(static_cast<HRESULT>(0x80093101u), static_cast<HRESULT>(e));
  EXPECT_EQ(E_FAIL, ATL::CAtlException().m_hr);
}

TEST(AtlException, ThrowLastWin32MapsPositiveErrorsAndKeepsOthers) {
  struct Case { DWORD last; uint32_t thrown; } cases[] = {
      {2, 0x80070002u}, {1901, 0x8007076Du}, {0x12345, 0x80072345u},
      {0, 0u}, {0x80004005u, 0x80004005u}, {0xFFFFFFFFu, 0xFFFFFFFFu},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.last);
    SetLastError(c.last);
    EXPECT_EQ(static_cast<HRESULT>(c.thrown), CodeOf([] { ATL::AtlThrowLastWin32(); }));
  }
}

TEST(LastError, IsPerThread) {
  SetLastError(87);
  DWORD seenByOther = 1;
  std::thread([&] { seenByOther = GetLastError(); SetLastError(5); }).join();
  EXPECT_EQ(0u, seenByOther);
  EXPECT_EQ(87u, GetLastError());
}

}  // namespace
