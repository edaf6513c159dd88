// CheckProvider under the strict provider-type mode, its trace lines, and the
// trace context and holders the library sets up at load.
#include <korvex/cades/ades_core.h>
#include <korvex/platform/capi/errors.h>
#include <korvex/platform/capi/provider.h>
#include <korvex/platform/win32/errhandlingapi.h>

#include "ades_holders.h"
#include "ades_test_util.h"

namespace {

using ades_test::TestConfig;

constexpr HRESULT kBadProvider = static_cast<HRESULT>(0x80090013u);
const std::string kStrictLine = "ades CheckProvider: Strict Mode for provider type is set";
const std::string kMismatchLine =
    "ades CheckProvider: Strict Mode for provider type is set and provider type mismatch ";
using Lines = std::vector<std::string>;

TEST(AdesLoadTime, TraceContextIsOpenAndHoldersAreEmpty) {
  // support_print_init refuses nothing for ("ades", 0, 127), so the load-time
  // initialiser leaves an open context.
  EXPECT_NE(nullptr, ades_db_ctx);
  EXPECT_EQ(0u, korvex::cades::EmptyProvider().GetHandle());
  EXPECT_EQ(0u, korvex::cades::EmptyKey().GetHandle());
  EXPECT_EQ(0u, korvex::cades::EmptyHash().GetHandle());
}

TEST(DbTraceInitializer, OpensForItsLifetimeAndReplacesWhatTheVariableHeld) {
  support_print_ctx* ctx = nullptr;
  {
    DbTraceInitializer first("cades-test", ctx, 0, 127);
    ASSERT_NE(nullptr, ctx);
    {
      // A second initialiser over the same variable closes the first
      // context (LeakSanitizer would report it otherwise) and opens its own;
      // its destructor leaves the variable null.
      DbTraceInitializer second("cades-test", ctx, 0, 0x08);
      EXPECT_NE(nullptr, ctx);
    }
    EXPECT_EQ(nullptr, ctx);
  }
  EXPECT_EQ(nullptr, ctx);
}

TEST(DbTraceInitializer, LevelsArePassedThrough) {
  struct Case {
    const char* name;
    unsigned int off, on;
    bool opened;
  };
  const Case kCases[] = {
      {"ades-copy", 0, 127, true},
      {"ades-copy", 0x08, 0x08, false},  // every allowed level switched off
      {"ades-copy", 0, 0, false},
      {"", 0, 127, false},  // no component name
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(std::string(c.name) + " " + std::to_string(c.off) + "/" + std::to_string(c.on));
    support_print_ctx* ctx = nullptr;
    DbTraceInitializer init(c.name, ctx, c.off, c.on);
    EXPECT_EQ(c.opened, ctx != nullptr);
  }
}

TEST(DbTraceInitializer, OpenedContextTracesThroughTheConfiguration) {
  TestConfig config;
  config.Write("\\config\\trace\\cades-test\\file = " + config.TraceFile().string() +
               "\n\\config\\trace\\cades-test\\level = 0x08\n");
  support_print_ctx* ctx = nullptr;
  DbTraceInitializer init("cades-test", ctx, 0, 127);
  ASSERT_NE(nullptr, ctx);
  EXPECT_NE(0, support_print_is(ctx, 0x08));
  EXPECT_EQ(0, support_print_is(ctx, 0x01));
  support_dprint_print_(ctx, "Fn", "text %d\n", 7);
  EXPECT_EQ(Lines{"cades-test Fn: text 7"}, config.TakeTraceLines());
}

class CheckProviderTest : public ::testing::Test {
 protected:
  // Configure sets the strict-mode line (none when value is null) and
  // traces the "ades" component at `level`.
  void Configure(const char* value, const std::string& level = "0x08") {
    std::string text = config_.TraceSettings(level);
    if (value != nullptr)
      text += std::string("\\config\\CAdES\\ProviderTypeStrictMode = ") + value + "\n";
    config_.Write(text);
  }

  TestConfig config_;
};

TEST_F(CheckProviderTest, ProviderTypesWithStrictModeOffAndOn) {
  struct Case {
    const char* strict;  // the configured value, null for none
    DWORD type;
    HRESULT result;
    Lines trace;
  };
  const Lines kAccepted = {kStrictLine};
  const Lines kRefused = {kStrictLine, kMismatchLine};
  const Case kCases[] = {
      // Off: no value, 0, or a value that is not a number.
      {nullptr, 1, S_OK, {}},
      {nullptr, 75, S_OK, {}},
      {"0", 1, S_OK, {}},
      {"0", 80, S_OK, {}},
      {"0x0", 24, S_OK, {}},
      {"yes", 1, S_OK, {}},
      {"", 1, S_OK, {}},
      // On: any other number.
      {"1", 1, kBadProvider, kRefused},
      {"1", 2, kBadProvider, kRefused},
      {"1", 3, kBadProvider, kRefused},
      {"1", 24, kBadProvider, kRefused},
      {"1", 75, S_OK, kAccepted},
      {"1", 80, S_OK, kAccepted},
      {"1", 81, S_OK, kAccepted},
      {"-1", 80, S_OK, kAccepted},
      {"0x51", 1, kBadProvider, kRefused},
      {"7", 81, S_OK, kAccepted},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(std::string("strict ") + (c.strict ? c.strict : "(none)") + ", type " +
                 std::to_string(c.type));
    Configure(c.strict);
    ATL::CCryptProv prov;
    ASSERT_EQ(S_OK, prov.Initialize(c.type));
    EXPECT_EQ(c.result, CheckProvider(prov));
    EXPECT_EQ(c.trace, config_.TakeTraceLines());
    // The provider is still usable: the check does not take it over.
    DWORD type = 0;
    EXPECT_EQ(S_OK, prov.GetProvType(&type));
    EXPECT_EQ(c.type, type);
  }
}

TEST_F(CheckProviderTest, StrictModeOffDoesNotTouchTheProvider) {
  Configure("0");
  ATL::CCryptProv empty;  // a query would fail with NTE_BAD_UID
  SetLastError(12345);
  EXPECT_EQ(S_OK, CheckProvider(empty));
  EXPECT_EQ(12345u, GetLastError());
  EXPECT_EQ(Lines{}, config_.TakeTraceLines());
}

TEST_F(CheckProviderTest, TypeThatCannotBeReadIsRefusedWithoutMismatchLine) {
  Configure("1");
  ATL::CCryptProv empty;
  EXPECT_EQ(kBadProvider, CheckProvider(empty));
  EXPECT_EQ(static_cast<DWORD>(NTE_BAD_UID), GetLastError());
  EXPECT_EQ(Lines{kStrictLine}, config_.TakeTraceLines());

  ATL::CCryptProv released;
  ASSERT_EQ(S_OK, released.Initialize(PROV_KORVEX_GOST_2012_256));
  HCRYPTPROV handle = released.Detach();
  ASSERT_TRUE(CryptReleaseContext(handle, 0));
  ATL::CCryptProv stale(handle, TRUE);  // a handle the provider no longer knows
  EXPECT_EQ(kBadProvider, CheckProvider(stale));
  EXPECT_EQ(Lines{kStrictLine}, config_.TakeTraceLines());
  stale.Detach();
}

TEST_F(CheckProviderTest, TraceFollowsTheConfiguredLevel) {
  struct Case {
    const char* level;
    Lines trace;
  };
  const Case kCases[] = {
      {"0x08", {kStrictLine, kMismatchLine}},
      {"0x7F", {kStrictLine, kMismatchLine}},
      {"-1", {kStrictLine, kMismatchLine}},
      {"0x0C", {kStrictLine, kMismatchLine}},
      {"0x01", {}},
      {"0x77", {}},  // everything but debug
      {"0", {}},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.level);
    Configure("1", c.level);
    ATL::CCryptProv prov;
    ASSERT_EQ(S_OK, prov.Initialize(PROV_RSA_FULL));
    EXPECT_EQ(kBadProvider, CheckProvider(prov));
    EXPECT_EQ(c.trace, config_.TakeTraceLines());
  }
}

}  // namespace
