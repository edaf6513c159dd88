// tool_runner.cpp: subprocess runs and scratch files for the adestool tests.
#include "tool_runner.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "../common/hex_bytes.h"

namespace adestool_test {

namespace {

void RemoveTree(const std::string& path) {
  DIR* dir = ::opendir(path.c_str());
  if (dir) {
    while (dirent* e = ::readdir(dir)) {
      std::string name = e->d_name;
      if (name == "." || name == "..") continue;
      std::string child = path + "/" + name;
      struct stat st;
      if (::lstat(child.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) {
        RemoveTree(child);
      } else {
        ::unlink(child.c_str());
      }
    }
    ::closedir(dir);
  }
  ::rmdir(path.c_str());
}

}  // namespace

TempDir::TempDir() {
  const char* base = std::getenv("TMPDIR");
  std::string pattern = std::string(base && *base ? base : "/tmp") + "/adestool-test-XXXXXX";
  std::vector<char> buf(pattern.begin(), pattern.end());
  buf.push_back('\0');
  if (!::mkdtemp(buf.data())) throw std::runtime_error("mkdtemp failed");
  path_ = buf.data();
}

TempDir::~TempDir() { RemoveTree(path_); }

std::string TempDir::Write(const std::string& name, const std::string& bytes) const {
  std::string path = path_ + "/" + name;
  std::ofstream f(path, std::ios::binary | std::ios::trunc);
  f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!f) throw std::runtime_error("cannot write " + path);
  return path;
}

std::string TempDir::Write(const std::string& name, const std::vector<uint8_t>& bytes) const {
  return Write(name, std::string(bytes.begin(), bytes.end()));
}

std::vector<std::string> TempDir::Entries() const {
  std::vector<std::string> names;
  DIR* dir = ::opendir(path_.c_str());
  if (!dir) return names;
  while (dirent* e = ::readdir(dir)) {
    std::string name = e->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  ::closedir(dir);
  std::sort(names.begin(), names.end());
  return names;
}

std::string ReadFile(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  std::ostringstream s;
  s << f.rdbuf();
  return s.str();
}

bool FileExists(const std::string& path) {
  struct stat st;
  return ::lstat(path.c_str(), &st) == 0;
}

RunResult RunTool(const std::vector<std::string>& args, const std::string& stdinData,
                  int timeoutSeconds) {
  // Standard streams go through files: no pipe can fill up and block.
  TempDir io;
  const std::string in = io.Write("stdin", stdinData);
  const std::string out = io.path() + "/stdout";
  const std::string err = io.path() + "/stderr";
  std::vector<std::string> argvText = {ADESTOOL_PATH};
  argvText.insert(argvText.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& a : argvText) argv.push_back(a.data());
  argv.push_back(nullptr);

  pid_t pid = ::fork();
  if (pid < 0) throw std::runtime_error("fork failed");
  if (pid == 0) {
    int fin = ::open(in.c_str(), O_RDONLY);
    int fout = ::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    int ferr = ::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (fin < 0 || fout < 0 || ferr < 0) ::_exit(126);
    ::dup2(fin, 0);
    ::dup2(fout, 1);
    ::dup2(ferr, 2);
    ::execv(argv[0], argv.data());
    ::_exit(127);
  }
  RunResult result;
  int wstatus = 0;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
  for (;;) {
    pid_t done = ::waitpid(pid, &wstatus, WNOHANG);
    if (done == pid) break;
    if (done < 0 && errno != EINTR) throw std::runtime_error("waitpid failed");
    if (std::chrono::steady_clock::now() > deadline) {
      ::kill(pid, SIGKILL);
      ::waitpid(pid, &wstatus, 0);
      result.timedOut = true;
      break;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  if (WIFEXITED(wstatus)) result.status = WEXITSTATUS(wstatus);
  if (WIFSIGNALED(wstatus)) result.signal = WTERMSIG(wstatus);
  result.out = ReadFile(out);
  result.err = ReadFile(err);
  return result;
}

std::string HexBytes(const std::string& hex) {
  const std::vector<unsigned char> bytes = korvextest::HexToBytes(hex);
  return std::string(bytes.begin(), bytes.end());
}

std::string Base64(const std::string& bytes, bool wrap) {
  static const char kAlphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  size_t i = 0;
  auto byte = [&](size_t k) { return static_cast<unsigned>(static_cast<unsigned char>(bytes[k])); };
  while (i < bytes.size()) {
    unsigned v = byte(i) << 16;
    size_t n = bytes.size() - i;
    if (n > 1) v |= byte(i + 1) << 8;
    if (n > 2) v |= byte(i + 2);
    text.push_back(kAlphabet[(v >> 18) & 63]);
    text.push_back(kAlphabet[(v >> 12) & 63]);
    text.push_back(n > 1 ? kAlphabet[(v >> 6) & 63] : '=');
    text.push_back(n > 2 ? kAlphabet[v & 63] : '=');
    i += 3;
    if (wrap && (i / 3) % 16 == 0) text.push_back('\n');
  }
  if (wrap && (text.empty() || text.back() != '\n')) text.push_back('\n');
  return text;
}

std::string DataPath(const std::string& relative) {
  return std::string(KORVEX_TEST_DATA_DIR) + "/" + relative;
}

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

}  // namespace

std::vector<std::string> FilesUnder(const std::string& dir) {
  std::vector<std::string> files;
  CollectFiles(dir, &files);
  std::sort(files.begin(), files.end());
  return files;
}

std::string ExamplePath(const std::string& name) {
  return std::string(KORVEX_SOURCE_DIR) + "/examples/cades/" + name;
}

}  // namespace adestool_test
