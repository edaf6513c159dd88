// The configuration registry: values read from a plain-text file that is
// re-read whenever it changes, so a long-running process picks up edits and
// tests can switch files by changing KORVEX_CONFIG.
#include <korvex/platform/support/support.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "config.h"

namespace korvex::support {
namespace {

constexpr const char* kDefaultPath = SUPPORT_CONFIG_DEFAULT_PATH;
// A configuration file is a few lines; anything larger is not ours.
constexpr off_t kMaxFileSize = 1 << 20;

// What identifies one version of the file: a change to any of these makes
// the next lookup read it again.
struct FileStamp {
  std::string path;
  bool present = false;
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  struct timespec modified = {0, 0};

  bool operator==(const FileStamp& o) const {
    return path == o.path && present == o.present && device == o.device && inode == o.inode &&
           size == o.size && modified.tv_sec == o.modified.tv_sec &&
           modified.tv_nsec == o.modified.tv_nsec;
  }
};

struct Cache {
  std::mutex mutex;
  bool loaded = false;
  FileStamp stamp;
  std::shared_ptr<const Config> config;
};

// Never destroyed: the trace channel may still be used by other libraries'
// static destructors after this library's own have run.
Cache& TheCache() {
  static Cache* cache = new Cache;
  return *cache;
}

std::string ConfigPath() {
  // secure_getenv: a set-user-ID program must not take its configuration (and
  // so its trace destination) from whoever starts it.
  const char* env = secure_getenv(SUPPORT_CONFIG_ENV);
  return env && *env ? env : kDefaultPath;
}

FileStamp StampOf(const std::string& path) {
  FileStamp stamp;
  stamp.path = path;
  struct stat st;
  if (stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && st.st_size <= kMaxFileSize) {
    stamp.present = true;
    stamp.device = st.st_dev;
    stamp.inode = st.st_ino;
    stamp.size = st.st_size;
    stamp.modified = st.st_mtim;
  }
  return stamp;
}

// ReadFile reads at most kMaxFileSize bytes; an unreadable file reads as empty.
std::string ReadFile(const std::string& path) {
  std::string text;
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  if (fd < 0) return text;
  char buffer[4096];
  for (;;) {
    const ssize_t n = read(fd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    text.append(buffer, static_cast<size_t>(n));
    if (text.size() > static_cast<size_t>(kMaxFileSize)) {
      text.clear();
      break;
    }
  }
  close(fd);
  return text;
}

}  // namespace

std::shared_ptr<const Config> CurrentConfig() {
  const int savedErrno = errno;
  // stat before reading: a change made while the file is read shows in the
  // next stamp, so it is never missed for good.
  FileStamp stamp = StampOf(ConfigPath());
  Cache& cache = TheCache();
  std::lock_guard<std::mutex> lock(cache.mutex);
  if (!cache.loaded || !(stamp == cache.stamp)) {
    auto config =
        std::make_shared<Config>(stamp.present ? Config::Parse(ReadFile(stamp.path)) : Config());
    cache.config = std::move(config);
    cache.stamp = std::move(stamp);
    cache.loaded = true;
  }
  errno = savedErrno;
  return cache.config;
}

}  // namespace korvex::support

namespace {

int Lookup(const char* path, std::string* value) {
  std::shared_ptr<const korvex::support::Config> config = korvex::support::CurrentConfig();
  const std::string* found = config->Find(path);
  if (!found) return SUPPORT_REGISTRY_NOT_FOUND;
  *value = *found;
  return SUPPORT_REGISTRY_OK;
}

}  // namespace

extern "C" int support_registry_get_long(const char* path, long* value) {
  if (!path || !value) return SUPPORT_REGISTRY_INVALID_PARAM;
  try {
    std::string text;
    if (int status = Lookup(path, &text)) return status;
    long parsed;
    if (!korvex::support::ParseLong(text, &parsed)) return SUPPORT_REGISTRY_INVALID_VALUE;
    *value = parsed;
    return SUPPORT_REGISTRY_OK;
  } catch (...) {  // out of memory: a C caller cannot take an exception
    return SUPPORT_REGISTRY_NO_MEMORY;
  }
}

extern "C" int support_registry_get_string(const char* path, char* out, size_t size) {
  if (!path || !out || size == 0) return SUPPORT_REGISTRY_INVALID_PARAM;
  try {
    std::string text;
    if (int status = Lookup(path, &text)) return status;
    if (text.size() >= size) return SUPPORT_REGISTRY_MORE_DATA;
    std::memcpy(out, text.c_str(), text.size() + 1);
    return SUPPORT_REGISTRY_OK;
  } catch (...) {
    return SUPPORT_REGISTRY_NO_MEMORY;
  }
}
