// cli_inspect_corpus_test.cpp: `adestool inspect` over every file of the
// real-world corpus (../shared/corpus, skipped when absent): each run ends
// with status 0 or 2, never a crash or a hang; the CAdES signatures of the
// esig-dss set report their format.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tool_runner.h"

using namespace adestool_test;

namespace {

TEST(InspectCorpus, EveryFileEndsWithStatus0Or2) {
  const std::vector<std::string> files = FilesUnder(KORVEX_CORPUS_DIR);
  if (files.empty()) GTEST_SKIP() << "no corpus at " << KORVEX_CORPUS_DIR;
  size_t signatures = 0;
  for (const std::string &file : files) {
    SCOPED_TRACE(file);
    RunResult r = RunTool({"inspect", file});
    ASSERT_FALSE(r.timedOut);
    ASSERT_EQ(0, r.signal);
    ASSERT_TRUE(r.status == 0 || r.status == 2) << r.status << "\n" << r.err;
    if (r.status == 0) {
      ++signatures;
      EXPECT_EQ("", r.err);
      // Certificate bundles (SignedData without signers) have no level.
      if (r.out.find("\nsigners: none\n") == std::string::npos) {
        EXPECT_NE(std::string::npos, r.out.find("    CAdES level:\n      format: "));
      }
    } else {
      EXPECT_EQ(0u, r.err.find("adestool: " + file + ": ")) << r.err;
      EXPECT_EQ(1, std::count(r.err.begin(), r.err.end(), '\n')) << r.err;
    }
  }
  EXPECT_GT(signatures, 0u);
}

TEST(InspectCorpus, CadesSignaturesReportTheirFormat) {
  struct Case {
    const char *file;    // under esig-dss/
    const char *format;  // what the unsigned attributes support
  };
  // The formats are cumulative: the complete references or an archive
  // time-stamp without the CAdES-C time-stamp and the values stay at T.
  const Case kCases[] = {
      {"Signature-C-BES-4.p7m", "BES"},  {"Signature-C-HU_MIC-1.p7m", "BES"},
      {"Signature-C-DE_CRY-3.p7m", "T"}, {"Signature-C-X-1.p7m", "T"},
      {"CAdESDoubleLTA.p7m", "T"},       {"cades-ats-v3-rev-val-crl.p7s", "T"},
  };
  std::string dir = std::string(KORVEX_CORPUS_DIR) + "/esig-dss/";
  struct stat st;
  if (::stat(dir.c_str(), &st) != 0) GTEST_SKIP() << "no corpus at " << dir;
  for (const Case &c : kCases) {
    SCOPED_TRACE(c.file);
    RunResult r = RunTool({"inspect", dir + c.file});
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_NE(std::string::npos,
              r.out.find(std::string("    CAdES level:\n      format: ") + c.format + "\n"));
  }
}

}  // namespace
