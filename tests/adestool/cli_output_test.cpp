// cli_output_test.cpp: -o writes whole files or nothing, and never the input.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tool_runner.h"

using namespace adestool_test;

namespace {

const char kTruncated[] = "30 06 02 01 05 02";

TEST(DumpOutput, FileGetsWhatStandardOutputWouldHave) {
  TempDir dir;
  const std::string in = dir.Write("in.der", ReadFile(DataPath("pki/ee-ec.der")));
  RunResult toStdout = RunTool({"dump", in});
  ASSERT_EQ(0, toStdout.status);
  for (const std::vector<std::string>& form :
       {std::vector<std::string>{"-o", dir.path() + "/a.txt"},
        std::vector<std::string>{"-o" + dir.path() + "/a.txt"},
        std::vector<std::string>{"--output", dir.path() + "/a.txt"},
        std::vector<std::string>{"--output=" + dir.path() + "/a.txt"}}) {
    std::vector<std::string> args = form;
    args.insert(args.begin(), {"dump", in});
    RunResult r = RunTool(args);
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", r.out);
    EXPECT_EQ(toStdout.out, ReadFile(dir.path() + "/a.txt"));
    // Only the input and the output: no temporary file stays behind.
    EXPECT_EQ((std::vector<std::string>{"a.txt", "in.der"}), dir.Entries());
  }
  // "-o -" is standard output.
  RunResult r = RunTool({"dump", "-o", "-", in});
  EXPECT_EQ(toStdout.out, r.out);
}

TEST(DumpOutput, ReplacedFileKeepsItsModeAndNewFileFollowsTheUmask) {
  TempDir dir;
  const std::string in = dir.Write("in.der", HexBytes("02 01 05"));
  const std::string out = dir.Write("out.txt", std::string("old"));
  ASSERT_EQ(0, ::chmod(out.c_str(), 0640));
  RunResult r = RunTool({"dump", in, "-o", out});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("   0+2  INTEGER (1): 5\n", ReadFile(out));
  struct stat st;
  ASSERT_EQ(0, ::stat(out.c_str(), &st));
  EXPECT_EQ(0640u, st.st_mode & 07777);

  const std::string fresh = dir.path() + "/fresh.txt";
  ASSERT_EQ(0, RunTool({"dump", in, "-o", fresh}).status);
  mode_t mask = ::umask(0);
  ::umask(mask);
  ASSERT_EQ(0, ::stat(fresh.c_str(), &st));
  EXPECT_EQ(0666u & ~mask, st.st_mode & 07777);
}

TEST(DumpOutput, FailingRunLeavesNoFileAndKeepsAnOldOne) {
  TempDir dir;
  const std::string in = dir.Write("bad.der", HexBytes(kTruncated));
  const std::string out = dir.path() + "/out.txt";
  RunResult r = RunTool({"dump", in, "-o", out});
  EXPECT_EQ(2, r.status);
  EXPECT_EQ("", r.out);
  EXPECT_EQ("adestool: " + in + ": offset 0: SEQUENCE truncated: 4 of 6 content bytes present\n",
            r.err);
  EXPECT_FALSE(FileExists(out));
  EXPECT_EQ((std::vector<std::string>{"bad.der"}), dir.Entries());

  dir.Write("out.txt", std::string("previous run\n"));
  r = RunTool({"dump", in, "-o", out});
  EXPECT_EQ(2, r.status);
  EXPECT_EQ("previous run\n", ReadFile(out));
  EXPECT_EQ((std::vector<std::string>{"bad.der", "out.txt"}), dir.Entries());
  EXPECT_EQ(HexBytes(kTruncated), ReadFile(in));

  // A usage error after -o creates nothing either.
  r = RunTool({"dump", in, "-o", dir.path() + "/other.txt", "--bogus"});
  EXPECT_EQ(2, r.status);
  EXPECT_FALSE(FileExists(dir.path() + "/other.txt"));
}

TEST(DumpOutput, RefusesToWriteOverTheInput) {
  TempDir dir;
  const std::string bytes = ReadFile(DataPath("pki/root-ca.der"));
  const std::string in = dir.Write("in.der", bytes);
  ASSERT_EQ(0, ::symlink(in.c_str(), (dir.path() + "/link.der").c_str()));
  ASSERT_EQ(0, ::link(in.c_str(), (dir.path() + "/hard.der").c_str()));
  struct Case {
    const char* what;
    std::vector<std::string> args;
    std::string stdinData;
    std::string named;  // the output as the message names it
  } cases[] = {
      {"same path", {"dump", in, "-o", in}, "", in},
      {"another spelling",
       {"dump", in, "-o", dir.path() + "/./in.der"},
       "",
       dir.path() + "/./in.der"},
      {"a symbolic link to it",
       {"dump", in, "-o", dir.path() + "/link.der"},
       "",
       dir.path() + "/link.der"},
      {"a hard link to it", {"dump", dir.path() + "/hard.der", "-o", in}, "", in},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    RunResult r = RunTool(c.args, c.stdinData);
    EXPECT_EQ(2, r.status);
    EXPECT_EQ("", r.out);
    EXPECT_EQ("adestool: " + c.named + ": is the input file; refusing to overwrite it\n", r.err);
    EXPECT_EQ(bytes, ReadFile(in));
  }
}

TEST(DumpOutput, RefusesStandardInputRedirectedFromTheOutput) {
  // /dev/stdin names the file the runner redirects standard input from.
  const std::string bytes = ReadFile(DataPath("pki/root-ca.der"));
  RunResult r = RunTool({"dump", "-", "-o", "/dev/stdin"}, bytes);
  EXPECT_EQ(2, r.status);
  EXPECT_EQ("adestool: /dev/stdin: is the input file; refusing to overwrite it\n", r.err);
}

TEST(DumpOutput, UnwritableOutputsAreInputErrors) {
  TempDir dir;
  const std::string in = dir.Write("in.der", HexBytes("02 01 05"));
  struct Case {
    const char* what;
    std::string out;
    std::string message;
  } cases[] = {
      {"missing directory", dir.path() + "/no/such/dir/out.txt",
       "cannot create: No such file or directory"},
      {"a directory", dir.path(), "cannot write: Is a directory"},
      {"a full device", "/dev/full", "cannot write: No space left on device"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    RunResult r = RunTool({"dump", in, "-o", c.out});
    EXPECT_EQ(2, r.status);
    EXPECT_EQ("adestool: " + c.out + ": " + c.message + "\n", r.err);
  }
  EXPECT_EQ((std::vector<std::string>{"in.der"}), dir.Entries());
  // A device that takes anything is written directly.
  RunResult r = RunTool({"dump", in, "-o", "/dev/null"});
  EXPECT_EQ(0, r.status) << r.err;
}

}  // namespace
