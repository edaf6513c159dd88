// output.cpp: standard output or an atomically replaced file.
#include "output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "tool_error.h"

namespace adestool {

namespace {

constexpr size_t kFlushSize = 1 << 16;

// The temporary file of the running process, removed by the signal handler
// when a signal ends the run before Commit. One output per process.
char g_tempPath[PATH_MAX + 1];
volatile sig_atomic_t g_tempActive = 0;

extern "C" void RemoveTempAndDie(int sig) {
  if (g_tempActive) ::unlink(g_tempPath);
  std::signal(sig, SIG_DFL);
  std::raise(sig);
}

void InstallSignalCleanup(const std::string& temp) {
  if (temp.size() > PATH_MAX) return;
  std::memcpy(g_tempPath, temp.c_str(), temp.size() + 1);
  g_tempActive = 1;
  for (int sig : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction sa {};
    sa.sa_handler = RemoveTempAndDie;
    sigemptyset(&sa.sa_mask);
    ::sigaction(sig, &sa, nullptr);
  }
}

void ClearSignalCleanup() { g_tempActive = 0; }

std::string DirName(const std::string& path) {
  size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

std::string BaseName(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

mode_t NewFileMode() {
  mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

}  // namespace

Output::Output(const std::string& path)
    : toStdout_(path.empty() || path == "-"), path_(path), target_(path) {
  name_ = toStdout_ ? "<stdout>" : path;
  if (toStdout_) return;
  struct stat st;
  if (::lstat(path.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) {
    // Replace the file the link points to, not the link.
    char resolved[PATH_MAX];
    if (::realpath(path.c_str(), resolved)) target_ = resolved;
  }
  if (::stat(target_.c_str(), &st) == 0) {
    if (S_ISDIR(st.st_mode)) throw FileError(name_, "cannot write: " + ErrnoText(EISDIR));
    direct_ = !S_ISREG(st.st_mode);
  }
}

Output::~Output() {
  if (!committed_) Discard();
}

void Output::RefuseInput(const std::string& inputPath) const {
  if (toStdout_) return;
  struct stat out;
  if (::stat(target_.c_str(), &out) != 0 || !S_ISREG(out.st_mode)) return;
  struct stat in;
  int rc = inputPath == "-" ? ::fstat(STDIN_FILENO, &in) : ::stat(inputPath.c_str(), &in);
  if (rc == 0 && in.st_dev == out.st_dev && in.st_ino == out.st_ino) {
    throw FileError(name_, "is the input file; refusing to overwrite it");
  }
}

void Output::Open() {
  if (direct_) {
    fd_ = ::open(target_.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd_ < 0) throw FileError(name_, "cannot open: " + ErrnoText(errno));
    return;
  }
  std::string pattern = DirName(target_) + "/." + BaseName(target_) + ".adestool-XXXXXX";
  std::vector<char> buf(pattern.begin(), pattern.end());
  buf.push_back('\0');
  fd_ = ::mkostemp(buf.data(), O_CLOEXEC);
  if (fd_ < 0) throw FileError(name_, "cannot create: " + ErrnoText(errno));
  temp_ = buf.data();
  InstallSignalCleanup(temp_);
  // Keep the mode of a file we replace; a new file gets the usual 0666 & ~umask.
  struct stat st;
  mode_t mode = ::stat(target_.c_str(), &st) == 0 ? (st.st_mode & 07777) : NewFileMode();
  ::fchmod(fd_, mode);
}

void Output::Flush() {
  size_t done = 0;
  while (done < buffer_.size()) {
    ssize_t n = ::write(fd_, buffer_.data() + done, buffer_.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      int err = errno;
      buffer_.clear();
      throw FileError(name_, "cannot write: " + ErrnoText(err));
    }
    done += static_cast<size_t>(n);
  }
  buffer_.clear();
}

void Output::Write(std::string_view text) {
  if (committed_) return;
  if (toStdout_) {
    if (!text.empty() && std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
      throw FileError(name_, "cannot write: " + ErrnoText(errno));
    }
    return;
  }
  if (fd_ < 0) Open();
  buffer_.append(text);
  if (buffer_.size() >= kFlushSize) Flush();
}

void Output::Commit() {
  if (committed_) return;
  if (toStdout_) {
    committed_ = true;
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
      throw FileError(name_, "cannot write: " + ErrnoText(errno));
    }
    return;
  }
  if (fd_ < 0) Open();
  Flush();
  if (!direct_) {
    if (::fsync(fd_) != 0) throw FileError(name_, "cannot write: " + ErrnoText(errno));
  }
  int fd = fd_;
  fd_ = -1;
  if (::close(fd) != 0) {
    int err = errno;
    throw FileError(name_, "cannot write: " + ErrnoText(err));
  }
  if (!direct_) {
    if (::rename(temp_.c_str(), target_.c_str()) != 0) {
      throw FileError(name_, "cannot replace: " + ErrnoText(errno));
    }
    ClearSignalCleanup();
    temp_.clear();
    // Make the rename itself durable.
    int dir = ::open(DirName(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir >= 0) {
      ::fsync(dir);
      ::close(dir);
    }
  }
  committed_ = true;
}

void Output::Discard() {
  if (toStdout_ || committed_) return;
  if (fd_ >= 0) {
    ::close(fd_);
    fd_ = -1;
  }
  if (!temp_.empty()) {
    ::unlink(temp_.c_str());
    ClearSignalCleanup();
    temp_.clear();
  }
  buffer_.clear();
}

}  // namespace adestool
