#include <gtest/gtest.h>

#include <cwchar>
#include <memory>

#include <korvex/core/StringProxy.h>

using Korvex::CStringProxy;
using Korvex::CWStringProxy;

TEST(StringProxy, NullGivesEmptyNeverNull) {
  CStringProxy n(nullptr);
  ASSERT_NE(nullptr, n.c_str());
  EXPECT_STREQ("", n.c_str());
  CWStringProxy w(nullptr);
  ASSERT_NE(nullptr, w.c_str());
  EXPECT_STREQ(L"", w.c_str());
}

TEST(StringProxy, CopySurvivesSourceAndSelfAssignmentKeepsText) {
  auto src = std::make_unique<CStringProxy>("20240131235959Z");
  CStringProxy copy(*src);
  src.reset();
  EXPECT_STREQ("20240131235959Z", copy.c_str());
  CStringProxy& alias = copy;
  copy = alias;
  EXPECT_STREQ("20240131235959Z", copy.c_str());

  auto wsrc = std::make_unique<CWStringProxy>(L"\u0416x");
  CWStringProxy wcopy(L"old");
  wcopy = *wsrc;
  wsrc.reset();
  EXPECT_STREQ(L"\u0416x", wcopy.c_str());
  EXPECT_EQ(2u, std::wcslen(wcopy.c_str()));
}

TEST(StringProxy, AssignmentReplacesWholeText) {
  CStringProxy text("a much longer text");
  text = CStringProxy("short");
  EXPECT_STREQ("short", text.c_str());
  text = CStringProxy(nullptr);
  EXPECT_STREQ("", text.c_str());
  CWStringProxy wide(L"stop\0hidden");  // the text ends at the first NUL
  EXPECT_STREQ(L"stop", wide.c_str());
}
