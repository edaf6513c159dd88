#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <korvex/platform/support/support.h>

#include "../common/locale_scope.h"

namespace {

namespace fs = std::filesystem;

std::string ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void WriteAll(const fs::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
}

// Each test gets a private directory and its own KORVEX_CONFIG, both undone
// at the end.
class SupportTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::path(::testing::TempDir()) / "korvex-support-XXXXXX").string();
    ASSERT_NE(nullptr, mkdtemp(pattern.data()));
    dir_ = pattern;
    if (const char* old = std::getenv("KORVEX_CONFIG")) saved_ = old, hadSaved_ = true;
    UseConfig(dir_ / "absent.conf");
  }
  void TearDown() override {
    if (hadSaved_) {
      setenv("KORVEX_CONFIG", saved_.c_str(), 1);
    } else {
      unsetenv("KORVEX_CONFIG");
    }
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
  }

  void UseConfig(const fs::path& path) { setenv("KORVEX_CONFIG", path.c_str(), 1); }

  // Config writes a configuration file and makes it the current one.
  fs::path Config(const std::string& text, const std::string& name = "korvex.conf") {
    fs::path path = dir_ / name;
    WriteAll(path, text);
    UseConfig(path);
    return path;
  }

  fs::path dir_;

 private:
  std::string saved_;
  bool hadSaved_ = false;
};

// ---------------------------------------------------------------- registry

using RegistryTest = SupportTest;

const char kSampleConfig[] =
    "# korvex configuration used by the registry tests\n"
    "\\config\\CAdES\\ProviderTypeStrictMode = 1\n"
    "\\Config\\Numbers\\Hex = 0x7F\n"
    "\\config\\numbers\\HexUpper = 0XfF\n"
    "\\config\\numbers\\Negative = -42\n"
    "\\config\\numbers\\NegativeHex = -0x10\n"
    "\\config\\numbers\\Plus = +7\n"
    "\\config\\numbers\\Max = 9223372036854775807\n"
    "\\config\\numbers\\Min = -9223372036854775808\n"
    "\\config\\numbers\\TooBig = 9223372036854775808\n"
    "\\config\\numbers\\TooSmall = -9223372036854775809\n"
    "\\config\\numbers\\HexTooBig = 0x8000000000000000\n"
    "\\config\\numbers\\LeadingZero = 010\n"
    "\\config\\numbers\\Word = yes\n"
    "\\config\\numbers\\Empty =\n"
    "\\config\\numbers\\Trailing = 12abc\n"
    "\\config\\numbers\\HexPrefixOnly = 0x\n"
    "\\config\\numbers\\SignOnly = -\n"
    "\\config\\numbers\\TwoNumbers = 1 2\n"
    "\\config\\numbers\\Commented = 5   # five\n"
    "\\config\\numbers\\Quoted = \"6\"\n"
    "   \\config\\numbers\\Indented\t=\t3   \n"
    "\\config\\numbers\\Crlf = 9\r\n"
    "\\config\\dup = 1\n"
    "\\config\\DUP = 2\n"
    "a line without an equals sign\n"
    " = 5\n"
    "   # an indented comment = 4\n"
    "\\config\\text\\Path = /var/log/a b.log\n"
    "\\config\\text\\Hash = a#b\n"
    "\\config\\text\\Quoted = \"  keep # this  \"   # comment\n"
    "\\config\\text\\OpenQuote = \"open\n"
    "\\config\\text\\AfterQuote = \"x\" y\n"
    "\\config\\text\\Equals = a=b\n"
    "\\config\\text\\Empty = \"\"\n"
    "\\config\\last = 11";  // no final newline

TEST_F(RegistryTest, ReadsNumbers) {
  Config(kSampleConfig);
  struct Case {
    const char* path;
    int status;
    long value;
  } cases[] = {
      {"\\config\\CAdES\\ProviderTypeStrictMode", SUPPORT_REGISTRY_OK, 1},
      {"\\CONFIG\\cades\\providertypestrictmode", SUPPORT_REGISTRY_OK, 1},
      {"\\config\\numbers\\hex", SUPPORT_REGISTRY_OK, 0x7F},
      {"\\config\\numbers\\HexUpper", SUPPORT_REGISTRY_OK, 0xFF},
      {"\\config\\numbers\\Negative", SUPPORT_REGISTRY_OK, -42},
      {"\\config\\numbers\\NegativeHex", SUPPORT_REGISTRY_OK, -16},
      {"\\config\\numbers\\Plus", SUPPORT_REGISTRY_OK, 7},
      {"\\config\\numbers\\Max", SUPPORT_REGISTRY_OK, 9223372036854775807L},
      {"\\config\\numbers\\Min", SUPPORT_REGISTRY_OK, -9223372036854775807L - 1},
      {"\\config\\numbers\\LeadingZero", SUPPORT_REGISTRY_OK, 10},
      {"\\config\\numbers\\Commented", SUPPORT_REGISTRY_OK, 5},
      {"\\config\\numbers\\Quoted", SUPPORT_REGISTRY_OK, 6},
      {"\\config\\numbers\\Indented", SUPPORT_REGISTRY_OK, 3},
      {"\\config\\numbers\\Crlf", SUPPORT_REGISTRY_OK, 9},
      {"\\config\\dup", SUPPORT_REGISTRY_OK, 2},
      {"\\config\\last", SUPPORT_REGISTRY_OK, 11},
      {"\\config\\numbers\\TooBig", SUPPORT_REGISTRY_INVALID_VALUE, 0},
      {"\\config\\numbers\\TooSmall", SUPPORT_REGISTRY_INVALID_VALUE, 0},
      {"\\config\\numbers\\HexTooBig", SUPPORT_REGISTRY_INVALID_VALUE, 0},
      {"\\config\\numbers\\Word", SUPPORT_REGISTRY_INVALID_VALUE, 0},
      {"\\config\\numbers\\Empty", SUPPORT_REGISTRY_INVALID_VALUE, 0},
      {"\\config\\numbers\\Trailing", SUPPORT_REGISTRY_INVALID_VALUE, 0},
      {"\\config\\numbers\\HexPrefixOnly", SUPPORT_REGISTRY_INVALID_VALUE, 0},
      {"\\config\\numbers\\SignOnly", SUPPORT_REGISTRY_INVALID_VALUE, 0},
      {"\\config\\numbers\\TwoNumbers", SUPPORT_REGISTRY_INVALID_VALUE, 0},
      {"\\config\\CAdES", SUPPORT_REGISTRY_NOT_FOUND, 0},
      {"\\config\\CAdES\\ProviderTypeStrictMode\\", SUPPORT_REGISTRY_NOT_FOUND, 0},
      {"config\\CAdES\\ProviderTypeStrictMode", SUPPORT_REGISTRY_NOT_FOUND, 0},
      {"a line without an equals sign", SUPPORT_REGISTRY_NOT_FOUND, 0},
      {"", SUPPORT_REGISTRY_NOT_FOUND, 0},
      {"# an indented comment", SUPPORT_REGISTRY_NOT_FOUND, 0},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.path);
    long value = -777;
    EXPECT_EQ(c.status, support_registry_get_long(c.path, &value));
    EXPECT_EQ(c.status == SUPPORT_REGISTRY_OK ? c.value : -777, value);
  }
}

TEST_F(RegistryTest, ReadsText) {
  Config(kSampleConfig);
  struct Case {
    const char* path;
    int status;
    const char* value;
  } cases[] = {
      {"\\config\\text\\path", SUPPORT_REGISTRY_OK, "/var/log/a b.log"},
      {"\\config\\text\\Hash", SUPPORT_REGISTRY_OK, "a#b"},
      {"\\config\\text\\Quoted", SUPPORT_REGISTRY_OK, "  keep # this  "},
      {"\\config\\text\\Equals", SUPPORT_REGISTRY_OK, "a=b"},
      {"\\config\\text\\Empty", SUPPORT_REGISTRY_OK, ""},
      {"\\config\\numbers\\Commented", SUPPORT_REGISTRY_OK, "5"},
      {"\\config\\numbers\\Empty", SUPPORT_REGISTRY_OK, ""},
      {"\\config\\text\\OpenQuote", SUPPORT_REGISTRY_NOT_FOUND, "untouched"},
      {"\\config\\text\\AfterQuote", SUPPORT_REGISTRY_NOT_FOUND, "untouched"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.path);
    char out[64] = "untouched";
    EXPECT_EQ(c.status, support_registry_get_string(c.path, out, sizeof out));
    EXPECT_STREQ(c.value, out);
  }
}

TEST_F(RegistryTest, TextMustFitWithItsNul) {
  Config("\\config\\name = abcd\n");
  char out[8] = "zzzzzzz";
  EXPECT_EQ(SUPPORT_REGISTRY_MORE_DATA, support_registry_get_string("\\config\\name", out, 4));
  EXPECT_STREQ("zzzzzzz", out);
  EXPECT_EQ(SUPPORT_REGISTRY_OK, support_registry_get_string("\\config\\name", out, 5));
  EXPECT_STREQ("abcd", out);
}

TEST_F(RegistryTest, InvalidParameters) {
  Config("\\config\\a = 1\n");
  long value = 5;
  char out[4] = "xyz";
  EXPECT_EQ(SUPPORT_REGISTRY_INVALID_PARAM, support_registry_get_long(nullptr, &value));
  EXPECT_EQ(SUPPORT_REGISTRY_INVALID_PARAM, support_registry_get_long("\\config\\a", nullptr));
  EXPECT_EQ(SUPPORT_REGISTRY_INVALID_PARAM, support_registry_get_string(nullptr, out, 4));
  EXPECT_EQ(SUPPORT_REGISTRY_INVALID_PARAM, support_registry_get_string("\\config\\a", nullptr, 4));
  EXPECT_EQ(SUPPORT_REGISTRY_INVALID_PARAM, support_registry_get_string("\\config\\a", out, 0));
  EXPECT_EQ(5, value);
  EXPECT_STREQ("xyz", out);
}

TEST_F(RegistryTest, MissingOrUnusableFileHasNoValues) {
  long value = 3;
  struct Case {
    const char* name;
    fs::path path;
  } cases[] = {
      {"missing file", dir_ / "nothing-here.conf"},
      {"a directory", dir_},
      {"the null device", "/dev/null"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    UseConfig(c.path);
    EXPECT_EQ(SUPPORT_REGISTRY_NOT_FOUND,
              support_registry_get_long("\\config\\CAdES\\ProviderTypeStrictMode", &value));
  }
  EXPECT_EQ(3, value);
}

TEST_F(RegistryTest, EmptyVariableMeansTheDefaultPath) {
  if (fs::exists(SUPPORT_CONFIG_DEFAULT_PATH)) GTEST_SKIP() << "a system configuration exists";
  Config("\\config\\a = 1\n");
  setenv("KORVEX_CONFIG", "", 1);
  long value = 0;
  EXPECT_EQ(SUPPORT_REGISTRY_NOT_FOUND, support_registry_get_long("\\config\\a", &value));
}

TEST_F(RegistryTest, FollowsTheFileAsItChanges) {
  long value = 0;
  const char* key = "\\config\\CAdES\\ProviderTypeStrictMode";
  fs::path first = Config(std::string(key) + " = 1\n", "first.conf");
  ASSERT_EQ(SUPPORT_REGISTRY_OK, support_registry_get_long(key, &value));
  EXPECT_EQ(1, value);

  // Another file through the environment variable.
  Config(std::string(key) + " = 2\n", "second.conf");
  ASSERT_EQ(SUPPORT_REGISTRY_OK, support_registry_get_long(key, &value));
  EXPECT_EQ(2, value);

  // The same file rewritten with a different size.
  UseConfig(first);
  WriteAll(first, std::string(key) + " = 100\n");
  ASSERT_EQ(SUPPORT_REGISTRY_OK, support_registry_get_long(key, &value));
  EXPECT_EQ(100, value);

  // Rewritten with the same size: the modification time tells.
  WriteAll(first, std::string(key) + " = 200\n");
  struct timespec times[2] = {{0, UTIME_OMIT}, {1000000000, 0}};
  ASSERT_EQ(0, utimensat(AT_FDCWD, first.c_str(), times, 0));
  ASSERT_EQ(SUPPORT_REGISTRY_OK, support_registry_get_long(key, &value));
  EXPECT_EQ(200, value);

  // Removed.
  fs::remove(first);
  EXPECT_EQ(SUPPORT_REGISTRY_NOT_FOUND, support_registry_get_long(key, &value));
  EXPECT_EQ(200, value);
}

TEST_F(RegistryTest, ReadersSeeWholeVersionsWhileTheFileIsReplaced) {
  const fs::path live = Config("\\config\\v = 0\n", "live.conf");
  constexpr int kReaders = 4;
  constexpr int kReads = 300;
  std::vector<std::thread> readers;
  std::vector<int> bad(kReaders, 0);
  for (int r = 0; r < kReaders; ++r) {
    readers.emplace_back([&bad, r] {
      for (int i = 0; i < kReads; ++i) {
        long value = -1;
        const int status = support_registry_get_long("\\config\\v", &value);
        if (status != SUPPORT_REGISTRY_OK || value < 0 || value > 50) ++bad[r];
      }
    });
  }
  // rename() replaces the file atomically, so every read sees one version.
  for (int v = 1; v <= 50; ++v) {
    const fs::path next = dir_ / "next.conf";
    WriteAll(next, "\\config\\v = " + std::to_string(v) + "\n");
    fs::rename(next, live);
  }
  for (auto& t : readers) t.join();
  for (int r = 0; r < kReaders; ++r) EXPECT_EQ(0, bad[r]) << "reader " << r;
  long value = -1;
  EXPECT_EQ(SUPPORT_REGISTRY_OK, support_registry_get_long("\\config\\v", &value));
  EXPECT_EQ(50, value);
}

// ---------------------------------------------------------------- trace

using TraceTest = SupportTest;

// A trace line: UTC time to the millisecond, pid:tid, component, function, text.
const std::regex kLinePrefix(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z \d+:\d+ )");

struct Context {
  explicit Context(const char* name, unsigned off = 0, unsigned on = 127)
      : ctx(support_print_init(nullptr, name, off, on)) {}
  ~Context() { support_print_done(ctx); }
  support_print_ctx* ctx;
};

std::vector<std::string> Lines(const fs::path& path) {
  std::vector<std::string> lines;
  std::istringstream in(ReadAll(path));
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

TEST_F(TraceTest, OffWithoutConfiguration) {
  Context ades("ades");
  ASSERT_NE(nullptr, ades.ctx);
  for (unsigned level = 1; level <= 0x40; level <<= 1)
    EXPECT_EQ(0, support_print_is(ades.ctx, level));
  support_dprint_print_(ades.ctx, "CheckProvider", "text\n");
  EXPECT_TRUE(fs::is_empty(dir_));
}

TEST_F(TraceTest, WritesTimestampedLinesToTheConfiguredFile) {
  const fs::path log = dir_ / "trace.log";
  Config("\\config\\trace\\file = " + log.string() + "\n\\config\\trace\\ades\\level = 0x08\n");
  Context ades("ades", 0, 127);
  ASSERT_NE(nullptr, ades.ctx);
  EXPECT_NE(0, support_print_is(ades.ctx, 8));
  EXPECT_NE(0, support_print_is(ades.ctx, 0x0C));  // any level of the mask
  EXPECT_EQ(0, support_print_is(ades.ctx, 4));
  EXPECT_EQ(0, support_print_is(ades.ctx, 0));

  support_dprint_print_(ades.ctx, "CheckProvider", "Strict Mode for provider type is set\n");
  support_dprint_print_(ades.ctx, "CheckProvider",
                        "Strict Mode for provider type is set and provider type mismatch \n");
  support_dprint_print_(ades.ctx, "GetUnauthAttr", "Exception thrown: %s 0x%08X", "_hr",
                        0x80070057u);
  support_dprint_print_(ades.ctx, nullptr, "%s", "");

  const std::vector<std::string> lines = Lines(log);
  ASSERT_EQ(4u, lines.size());
  const char* expected[] = {
      "ades CheckProvider: Strict Mode for provider type is set",
      "ades CheckProvider: Strict Mode for provider type is set and provider type mismatch ",
      "ades GetUnauthAttr: Exception thrown: _hr 0x80070057",
      "ades -: ",
  };
  for (size_t i = 0; i < lines.size(); ++i) {
    SCOPED_TRACE(lines[i]);
    std::smatch prefix;
    ASSERT_TRUE(std::regex_search(lines[i], prefix, kLinePrefix));
    EXPECT_EQ(expected[i], prefix.suffix().str());
  }
  // One newline per line, none doubled, none added to the standard streams.
  const std::string all = ReadAll(log);
  EXPECT_EQ(std::string::npos, all.find("\n\n"));
  EXPECT_EQ('\n', all.back());
}

TEST_F(TraceTest, LevelMasksComeFromComponentThenDefaultThenCaller) {
  const fs::path log = dir_ / "trace.log";
  Config("\\config\\trace\\file = " + log.string() +
         "\n\\config\\trace\\level = 0x01\n\\config\\trace\\ADES\\level = 0x0A\n");
  struct Case {
    const char* name;
    unsigned off, on, level;
    bool traced;
  } cases[] = {
      {"ades", 0, 127, 0x08, true},  // component key, case-insensitive
      {"ades", 0, 127, 0x02, true},
      {"ades", 0, 127, 0x01, false},  // the default does not add to the component's
      {"other", 0, 127, 0x01, true},  // the default mask
      {"other", 0, 127, 0x08, false},
      {"ades", 0x08, 127, 0x08, false},  // the caller switched it off
      {"ades", 0, 0x02, 0x08, false},    // the caller did not switch it on
      {"ades", 0, 0x02, 0x02, true},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " level " + std::to_string(c.level) + " off " +
                 std::to_string(c.off) + " on " + std::to_string(c.on));
    Context ctx(c.name, c.off, c.on);
    ASSERT_NE(nullptr, ctx.ctx);
    EXPECT_EQ(c.traced, support_print_is(ctx.ctx, c.level) != 0);
  }
}

TEST_F(TraceTest, ComponentFileOverridesTheDefaultFile) {
  const fs::path common = dir_ / "common.log";
  const fs::path own = dir_ / "own.log";
  Config("\\config\\trace\\file = " + common.string() +
         "\n\\config\\trace\\ades\\file = " + own.string() + "\n\\config\\trace\\level = -1\n");
  Context ades("ades"), other("other");
  support_dprint_print_(ades.ctx, "f", "to own");
  support_dprint_print_(other.ctx, "g", "to common");
  ASSERT_EQ(1u, Lines(own).size());
  ASSERT_EQ(1u, Lines(common).size());
  EXPECT_NE(std::string::npos, Lines(own)[0].find(" ades f: to own"));
  EXPECT_NE(std::string::npos, Lines(common)[0].find(" other g: to common"));
}

TEST_F(TraceTest, IncompleteSettingsKeepTracingOff) {
  const fs::path log = dir_ / "trace.log";
  struct Case {
    const char* name;
    std::string config;
  } cases[] = {
      {"level without file", "\\config\\trace\\level = 0x7F\n"},
      {"file without level", "\\config\\trace\\file = " + log.string() + "\n"},
      {"level zero", "\\config\\trace\\file = " + log.string() + "\n\\config\\trace\\level = 0\n"},
      {"level not a number",
       "\\config\\trace\\file = " + log.string() + "\n\\config\\trace\\level = all\n"},
      {"relative file", "\\config\\trace\\file = trace.log\n\\config\\trace\\level = 0x7F\n"},
      {"empty file", "\\config\\trace\\file =\n\\config\\trace\\level = 0x7F\n"},
  };
  int n = 0;
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    Config(c.config, "case" + std::to_string(++n) + ".conf");
    Context ades("ades");
    EXPECT_EQ(0, support_print_is(ades.ctx, 0x7F));
    support_dprint_print_(ades.ctx, "f", "nothing\n");
    EXPECT_FALSE(fs::exists(log));
  }
}

TEST_F(TraceTest, InitRefusesInvalidArguments) {
  int reserved = 0;
  EXPECT_EQ(nullptr, support_print_init(&reserved, "ades", 0, 127));
  EXPECT_EQ(nullptr, support_print_init(nullptr, nullptr, 0, 127));
  EXPECT_EQ(nullptr, support_print_init(nullptr, "", 0, 127));
  EXPECT_EQ(nullptr, support_print_init(nullptr, "ades", 0, 0));
  EXPECT_EQ(nullptr, support_print_init(nullptr, "ades", 0x7F, 0x7F));
  // A null context is "no tracing" everywhere.
  EXPECT_EQ(0, support_print_is(nullptr, 8));
  support_dprint_print_(nullptr, "f", "text");
  support_print_done(nullptr);
  Context ades("ades");
  support_dprint_print_(ades.ctx, "f", nullptr);
}

TEST_F(TraceTest, SwitchesOnAndOffWithTheConfiguration) {
  Context ades("ades");  // opened before any configuration exists
  EXPECT_EQ(0, support_print_is(ades.ctx, 8));
  const fs::path log = dir_ / "trace.log";
  Config("\\config\\trace\\file = " + log.string() + "\n\\config\\trace\\level = 8\n", "on.conf");
  EXPECT_NE(0, support_print_is(ades.ctx, 8));
  support_dprint_print_(ades.ctx, "f", "on");
  Config("# tracing off\n", "off.conf");
  EXPECT_EQ(0, support_print_is(ades.ctx, 8));
  support_dprint_print_(ades.ctx, "f", "off");
  ASSERT_EQ(1u, Lines(log).size());
  EXPECT_NE(std::string::npos, Lines(log)[0].find(" ades f: on"));
}

TEST_F(TraceTest, NeverWritesToAStandardStreamOrAnythingButARegularFile) {
  const fs::path log = dir_ / "stderr.log";
  Context ades("ades");
  // Standard error redirected to a file that the configuration also names.
  fflush(stderr);
  const int savedStderr = dup(STDERR_FILENO);
  const int fd = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(STDERR_FILENO, dup2(fd, STDERR_FILENO));
  close(fd);
  Config("\\config\\trace\\file = " + log.string() + "\n\\config\\trace\\level = 0x7F\n");
  support_dprint_print_(ades.ctx, "f", "must not appear");
  dup2(savedStderr, STDERR_FILENO);
  close(savedStderr);
  EXPECT_EQ("", ReadAll(log));

  // A FIFO nobody reads must not block; a directory is no destination.
  const fs::path fifo = dir_ / "fifo";
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  for (const fs::path& target : {fifo, dir_}) {
    SCOPED_TRACE(target.string());
    Config("\\config\\trace\\file = " + target.string() + "\n\\config\\trace\\level = 0x7F\n");
    support_dprint_print_(ades.ctx, "f", "dropped");
  }
}

TEST_F(TraceTest, KeepsErrno) {
  const fs::path log = dir_ / "trace.log";
  Config("\\config\\trace\\file = " + log.string() + "\n\\config\\trace\\level = 0x7F\n");
  Context ades("ades");
  errno = 4321;
  EXPECT_NE(0, support_print_is(ades.ctx, 8));
  support_dprint_print_(ades.ctx, "f", "x");
  long value;
  support_registry_get_long("\\absent", &value);
  EXPECT_EQ(4321, errno);
}

TEST_F(TraceTest, ConcurrentWritersKeepLinesWhole) {
  const fs::path log = dir_ / "trace.log";
  Config("\\config\\trace\\file = " + log.string() + "\n\\config\\trace\\level = 0x7F\n");
  Context ades("ades");
  constexpr int kThreads = 4;
  constexpr int kLines = 100;
  const std::string payload(200, 'x');
  std::vector<std::thread> writers;
  for (int t = 0; t < kThreads; ++t) {
    writers.emplace_back([&, t] {
      for (int i = 0; i < kLines; ++i) {
        support_dprint_print_(ades.ctx, "writer", "%d %d %s", t, i, payload.c_str());
      }
    });
  }
  for (auto& w : writers) w.join();
  const std::vector<std::string> lines = Lines(log);
  ASSERT_EQ(static_cast<size_t>(kThreads * kLines), lines.size());
  const std::regex whole(R"(^\S+ \d+:\d+ ades writer: \d \d+ x{200}$)");
  for (auto const& line : lines) ASSERT_TRUE(std::regex_match(line, whole)) << line;
}

// ---------------------------------------------------------------- safe_wcsrtombs

using korvextest::LocaleScope;

TEST(SafeWcsrtombs, StopsBeforeACharacterThatDoesNotFit) {
  LocaleScope locale("C.UTF-8");
  if (!locale.ok()) GTEST_SKIP() << "C.UTF-8 locale not installed";
  const wchar_t text[] = L"a\xE9\x20AC";  // 1 + 2 + 3 bytes
  struct Case {
    size_t len;
    size_t result;
    std::string bytes;  // what dst holds afterwards (filled with '#' first)
    size_t consumed;    // characters taken from the source, or npos when *src is null
  } cases[] = {
      {0, 0, "########", 0},
      {1, 1, "a#######", 1},
      {2, 1, "a#######", 1},
      {3, 3, "a\xC3\xA9#####", 2},
      {5, 3, "a\xC3\xA9#####", 2},
      {6, 6, "a\xC3\xA9\xE2\x82\xAC##", 3},  // no room for the NUL: not stored
      {7, 6, std::string("a\xC3\xA9\xE2\x82\xAC\0#", 8), std::string::npos},
      {8, 6, std::string("a\xC3\xA9\xE2\x82\xAC\0#", 8), std::string::npos},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.len);
    char dst[8];
    std::memset(dst, '#', sizeof dst);
    const wchar_t* src = text;
    EXPECT_EQ(c.result, safe_wcsrtombs(dst, &src, c.len, nullptr));
    EXPECT_EQ(c.bytes, std::string(dst, sizeof dst));
    if (c.consumed == std::string::npos) {
      EXPECT_EQ(nullptr, src);
    } else {
      EXPECT_EQ(text + c.consumed, src);
    }
  }
}

TEST(SafeWcsrtombs, MeasuresWithoutDestination) {
  LocaleScope locale("C.UTF-8");
  if (!locale.ok()) GTEST_SKIP() << "C.UTF-8 locale not installed";
  const wchar_t* text = L"a\xE9\x20AC\x1F600";
  const wchar_t* src = text;
  EXPECT_EQ(10u, safe_wcsrtombs(nullptr, &src, 0, nullptr));
  EXPECT_EQ(text, src);
}

TEST(SafeWcsrtombs, ContinuesWithTheCallersState) {
  LocaleScope locale("C.UTF-8");
  if (!locale.ok()) GTEST_SKIP() << "C.UTF-8 locale not installed";
  const wchar_t* src = L"\xE9\xE9";
  mbstate_t state{};
  char dst[8] = {};
  EXPECT_EQ(2u, safe_wcsrtombs(dst, &src, 3, &state));
  EXPECT_EQ(2u, safe_wcsrtombs(dst + 2, &src, 6, &state));
  EXPECT_EQ(nullptr, src);
  EXPECT_STREQ("\xC3\xA9\xC3\xA9", dst);
}

TEST(SafeWcsrtombs, UnconvertibleCharacterFails) {
  LocaleScope locale("C");
  ASSERT_TRUE(locale.ok());
  const wchar_t text[] = L"ab\xE9z";
  const wchar_t* src = text;
  char dst[8];
  std::memset(dst, '#', sizeof dst);
  errno = 0;
  EXPECT_EQ(static_cast<size_t>(-1), safe_wcsrtombs(dst, &src, sizeof dst, nullptr));
  EXPECT_EQ(EILSEQ, errno);
  EXPECT_EQ(text + 2, src);
  EXPECT_EQ("ab######", std::string(dst, sizeof dst));
}

TEST(SafeWcsrtombs, NullSourceGivesZero) {
  char dst[4] = "xyz";
  const wchar_t* nothing = nullptr;
  EXPECT_EQ(0u, safe_wcsrtombs(dst, nullptr, sizeof dst, nullptr));
  EXPECT_EQ(0u, safe_wcsrtombs(dst, &nothing, sizeof dst, nullptr));
  EXPECT_STREQ("xyz", dst);
}

}  // namespace
