// cli_corpus_test.cpp: `adestool dump` over every file of the real-world
// corpus (../shared/corpus, skipped when absent): each run ends with status
// 0 or 2, never a crash or a hang, and a status 2 comes with one message
// line naming the file.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tool_runner.h"

using namespace adestool_test;

namespace {

TEST(DumpCorpus, EveryFileEndsWithStatus0Or2) {
  const std::vector<std::string> files = FilesUnder(KORVEX_CORPUS_DIR);
  if (files.empty()) GTEST_SKIP() << "no corpus at " << KORVEX_CORPUS_DIR;
  size_t wellFormed = 0;
  for (const std::string& path : files) {
    SCOPED_TRACE(path);
    RunResult r = RunTool({"dump", path});
    ASSERT_FALSE(r.timedOut);
    ASSERT_EQ(0, r.signal);
    if (r.status == 0) {
      EXPECT_EQ("", r.err);
      EXPECT_FALSE(r.out.empty());
      ++wellFormed;
    } else {
      ASSERT_EQ(2, r.status);
      EXPECT_EQ("adestool: " + path + ": ", r.err.substr(0, path.size() + 12));
      EXPECT_EQ(1, std::count(r.err.begin(), r.err.end(), '\n'));
    }
  }
  // Nearly all of the corpus is well-formed DER, BER, PEM or base64.
  EXPECT_GT(wellFormed, files.size() * 9 / 10);
}

}  // namespace
