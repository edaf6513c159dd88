// cli_corpus_test.cpp: `adestool dump` over every file of the real-world
// corpus (../shared/corpus, skipped when absent): each run ends with status
// 0 or 2, never a crash or a hang, and a status 2 comes with one message
// line naming the file.
#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tool_runner.h"

using namespace adestool_test;

namespace {

void CollectFiles(const std::string& dir, std::vector<std::string>* files) {
  DIR* d = ::opendir(dir.c_str());
  if (!d) return;
  while (dirent* e = ::readdir(d)) {
    std::string name = e->d_name;
    if (name == "." || name == "..") continue;
    std::string path = dir + "/" + name;
    struct stat st;
    if (::stat(path.c_str(), &st) != 0) continue;
    if (S_ISDIR(st.st_mode)) {
      CollectFiles(path, files);
    } else if (S_ISREG(st.st_mode) && name != "INDEX.md") {
      files->push_back(path);
    }
  }
  ::closedir(d);
}

TEST(DumpCorpus, EveryFileEndsWithStatus0Or2) {
  std::vector<std::string> files;
  CollectFiles(KORVEX_CORPUS_DIR, &files);
  if (files.empty()) GTEST_SKIP() << "no corpus at " << KORVEX_CORPUS_DIR;
  std::sort(files.begin(), files.end());
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
