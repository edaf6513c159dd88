// tool_runner.h: runs the built adestool as a subprocess for the tests.
#ifndef ADESTOOL_TESTS_TOOL_RUNNER_H
#define ADESTOOL_TESTS_TOOL_RUNNER_H

#include <cstdint>
#include <string>
#include <vector>

namespace adestool_test {

struct RunResult {
  int status = -1;  // exit status, or -1 when the program did not exit
  int signal = 0;   // the signal that ended it, if any
  bool timedOut = false;
  std::string out;  // standard output
  std::string err;  // standard error
};

// RunTool runs adestool with args, standard input read from stdinData.
// A run longer than timeoutSeconds is killed and reported as timedOut.
RunResult RunTool(const std::vector<std::string>& args, const std::string& stdinData = "",
                  int timeoutSeconds = 60);

// A scratch directory removed with everything in it at destruction.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  const std::string& path() const { return path_; }
  // Write creates the file name in the directory with bytes and returns its path.
  std::string Write(const std::string& name, const std::string& bytes) const;
  std::string Write(const std::string& name, const std::vector<uint8_t>& bytes) const;
  // Entries: the names in the directory, sorted.
  std::vector<std::string> Entries() const;

 private:
  std::string path_;
};

std::string ReadFile(const std::string& path);
bool FileExists(const std::string& path);

// Bytes of hex text ("30 03 02 01 05").
std::string HexBytes(const std::string& hex);

// Base64 of bytes (RFC 4648), lines of 64 characters when wrap.
std::string Base64(const std::string& bytes, bool wrap);

std::string DataPath(const std::string& relative);

// FilesUnder: the regular files below dir, in every subdirectory, sorted
// (INDEX.md files left out: the corpus's own notes); empty when dir is absent.
std::vector<std::string> FilesUnder(const std::string& dir);

// ExamplePath: a file of examples/cades/ (the signatures make-examples.sh made).
std::string ExamplePath(const std::string& name);

}  // namespace adestool_test

#endif
