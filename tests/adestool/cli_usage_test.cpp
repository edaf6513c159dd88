// cli_usage_test.cpp: help, version and usage errors of the program.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tool_runner.h"

using namespace adestool_test;

namespace {

TEST(Usage, HelpAndVersionGoToStandardOutputWithStatus0) {
  struct Case {
    std::vector<std::string> args;
    std::string firstLine;
  } cases[] = {
      {{"--help"}, "Usage: adestool COMMAND [OPTIONS] ARGUMENTS"},
      {{"-h"}, "Usage: adestool COMMAND [OPTIONS] ARGUMENTS"},
      {{"help"}, "Usage: adestool COMMAND [OPTIONS] ARGUMENTS"},
      {{"help", "dump"}, "Usage: adestool dump FILE [--asn1 | --hex] [-o FILE]"},
      {{"dump", "--help"}, "Usage: adestool dump FILE [--asn1 | --hex] [-o FILE]"},
      {{"dump", "x.der", "--bogus-later", "-h"},
       "Usage: adestool dump FILE [--asn1 | --hex] [-o FILE]"},
      {{"--version"}, std::string("adestool ") + ADESTOOL_EXPECTED_VERSION},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args[0] + (c.args.size() > 1 ? " " + c.args[1] : ""));
    RunResult r = RunTool(c.args);
    EXPECT_EQ(0, r.status);
    EXPECT_EQ("", r.err);
    EXPECT_EQ(c.firstLine + "\n", r.out.substr(0, r.out.find('\n') + 1));
  }
  // The overview lists the command and every common option.
  RunResult r = RunTool({"--help"});
  EXPECT_NE(std::string::npos, r.out.find("\n  dump      show the ASN.1 structure"));
  EXPECT_NE(std::string::npos, r.out.find("\n  -o FILE, --output FILE    write the output"));
  r = RunTool({"dump", "--help"});
  EXPECT_NE(std::string::npos, r.out.find("\n  --hex                     hex dump"));
}

TEST(Usage, ErrorsAreOneLineWithStatus2) {
  struct Case {
    std::vector<std::string> args;
    std::string message;
  } cases[] = {
      {{}, "missing command (try 'adestool --help')"},
      {{"frob"}, "unknown command 'frob' (try 'adestool --help')"},
      {{"--frob"}, "unknown option '--frob' (try 'adestool --help')"},
      {{"help", "frob"}, "unknown command 'frob' (try 'adestool --help')"},
      {{"dump"}, "dump: missing FILE (try 'adestool dump --help')"},
      {{"dump", "a", "b"}, "dump: unexpected argument 'b' (try 'adestool dump --help')"},
      {{"dump", "--hex", "--asn1", "a"},
       "dump: --hex and --asn1 exclude each other (try 'adestool dump --help')"},
      {{"dump", "--hex=yes", "a"},
       "dump: option '--hex' takes no value (try 'adestool dump --help')"},
      {{"dump", "a", "-o"}, "dump: option '-o' needs a value (FILE) (try 'adestool dump --help')"},
      {{"dump", "a", "--output"},
       "dump: option '--output' needs a value (FILE) (try 'adestool dump --help')"},
      {{"dump", "-o", "x", "--output=y", "a"},
       "dump: option '--output' given more than once (try 'adestool dump --help')"},
      {{"dump", "--bogus", "a"}, "dump: unknown option '--bogus' (try 'adestool dump --help')"},
      {{"dump", "-x", "a"}, "dump: unknown option '-x' (try 'adestool dump --help')"},
  };
  for (const Case& c : cases) {
    std::string shown;
    for (const std::string& a : c.args) shown += a + " ";
    SCOPED_TRACE(shown);
    RunResult r = RunTool(c.args);
    EXPECT_EQ(2, r.status);
    EXPECT_EQ("", r.out);
    EXPECT_EQ("adestool: " + c.message + "\n", r.err);
  }
}

TEST(Usage, DoubleDashMakesTheRestArguments) {
  TempDir dir;
  std::string path = dir.Write("--hex", HexBytes("02 01 05"));
  RunResult r = RunTool({"dump", "--", path});
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ("   0+2  INTEGER (1): 5\n", r.out);
}

}  // namespace
