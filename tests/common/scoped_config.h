// scoped_config.h: a private support-library configuration for one test,
// shared by the test binaries. Header-only.
#ifndef KORVEX_TESTS_COMMON_SCOPED_CONFIG_H
#define KORVEX_TESTS_COMMON_SCOPED_CONFIG_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <system_error>
#include <vector>

#include "test_data.h"

namespace korvextest {

// ScopedConfig points KORVEX_CONFIG at a private configuration in a private
// directory, restoring the previous value at the end. Every Write goes to a
// new file name, so the support library sees a changed configuration even
// when two versions have the same size and time stamp.
class ScopedConfig {
 public:
  ScopedConfig() {
    std::string pattern =
        (std::filesystem::path(::testing::TempDir()) / "korvex-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) dir_ = pattern;
    if (const char* old = std::getenv("KORVEX_CONFIG")) {
      saved_ = old;
      hadSaved_ = true;
    }
    Write("");
  }
  ~ScopedConfig() {
    if (hadSaved_) {
      setenv("KORVEX_CONFIG", saved_.c_str(), 1);
    } else {
      unsetenv("KORVEX_CONFIG");
    }
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }
  ScopedConfig(const ScopedConfig&) = delete;
  ScopedConfig& operator=(const ScopedConfig&) = delete;

  const std::filesystem::path& dir() const { return dir_; }
  std::filesystem::path TraceFile() const { return dir_ / "trace.log"; }

  // Write replaces the configuration with `text`.
  void Write(const std::string& text) {
    std::filesystem::path path = dir_ / ("korvex-" + std::to_string(++generation_) + ".conf");
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
    setenv("KORVEX_CONFIG", path.c_str(), 1);
  }

  // TraceSettings: the lines that send the "ades" component's trace at
  // `level` to TraceFile().
  std::string TraceSettings(const std::string& level) const {
    return "\\config\\trace\\ades\\file = " + TraceFile().string() +
           "\n\\config\\trace\\ades\\level = " + level + "\n";
  }

  // Folder makes a sub-directory holding copies of the named data files.
  std::filesystem::path Folder(const std::string& name, const std::vector<std::string>& files) {
    std::filesystem::path folder = dir_ / name;
    std::filesystem::create_directories(folder);
    for (const std::string& file : files) {
      std::filesystem::copy_file(DataPath(file), folder / std::filesystem::path(file).filename(),
                                 std::filesystem::copy_options::overwrite_existing);
    }
    return folder;
  }

  // TakeTraceLines returns the trace file's lines with the time, process and
  // thread prefix checked and removed ("ades CheckProvider: text"), and
  // empties the file.
  std::vector<std::string> TakeTraceLines() const {
    std::vector<std::string> lines;
    std::ifstream in(TraceFile(), std::ios::binary);
    static const std::regex kPrefix(R"(^\d{4}-\d{2}-\d{2}T\d{2}:\d{2}:\d{2}\.\d{3}Z \d+:\d+ )");
    std::string line;
    while (std::getline(in, line)) {
      std::smatch match;
      EXPECT_TRUE(std::regex_search(line, match, kPrefix)) << "trace line: " << line;
      lines.push_back(match.empty() ? line : line.substr(match.length(0)));
    }
    in.close();
    std::error_code ignored;
    std::filesystem::remove(TraceFile(), ignored);
    return lines;
  }

 private:
  std::filesystem::path dir_;
  std::string saved_;
  bool hadSaved_ = false;
  int generation_ = 0;
};

}  // namespace korvextest

#endif
