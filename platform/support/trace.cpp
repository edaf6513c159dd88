// The trace channel: one line per message, appended to the file that the
// configuration names. Nothing is kept open between lines, and the settings
// are looked up on every call, so editing the configuration file switches
// tracing on or off in a running process without reopening contexts.
#include <korvex/platform/support/support.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <new>
#include <string>

#include "config.h"

struct support_print_ctx {
  std::string name;
  unsigned int levels;  // what the caller allows: levels_on & ~levels_off
};

namespace {

using korvex::support::Config;

struct TraceSettings {
  std::string file;
  unsigned int levels = 0;  // the caller's levels within the configured mask
};

// Component keys take precedence over the defaults for every component.
const std::string* FindSetting(const Config& config, const std::string& component,
                               const char* leaf) {
  const std::string* value = config.Find("\\config\\trace\\" + component + "\\" + leaf);
  return value ? value : config.Find(std::string("\\config\\trace\\") + leaf);
}

TraceSettings SettingsOf(const support_print_ctx& ctx) {
  TraceSettings settings;
  std::shared_ptr<const Config> config = korvex::support::CurrentConfig();
  const std::string* file = FindSetting(*config, ctx.name, "file");
  const std::string* level = FindSetting(*config, ctx.name, "level");
  long mask = 0;
  // Only absolute paths: a relative one would follow the process's working directory.
  if (!file || file->empty() || file->front() != '/') return settings;
  if (!level || !korvex::support::ParseLong(*level, &mask)) return settings;
  settings.file = *file;
  settings.levels = ctx.levels & static_cast<unsigned int>(mask);
  return settings;
}

bool SameFile(const struct stat& a, int fd) {
  struct stat b;
  return fstat(fd, &b) == 0 && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// AppendLine appends one line with a single write, which O_APPEND keeps
// whole among concurrent writers. Only regular files are written: a FIFO
// without a reader must not block the caller, and the standard streams are
// never a destination, even under another name.
void AppendLine(const std::string& path, const std::string& line) {
  const int fd =
      open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600);
  if (fd < 0) return;
  struct stat st;
  if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && !SameFile(st, STDOUT_FILENO) &&
      !SameFile(st, STDERR_FILENO)) {
    size_t done = 0;
    while (done < line.size()) {
      const ssize_t n = write(fd, line.data() + done, line.size() - done);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      done += static_cast<size_t>(n);
    }
  }
  close(fd);
}

// Prefix: "2024-05-01T12:34:56.789Z 4242:4243 ades CheckProvider: ", the UTC
// time to the millisecond, process and thread ids, component and function.
std::string Prefix(const support_print_ctx& ctx, const char* function) {
  struct timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  struct tm utc;
  gmtime_r(&now.tv_sec, &utc);
  char stamp[80];
  const size_t len = strftime(stamp, sizeof stamp, "%Y-%m-%dT%H:%M:%S", &utc);
  snprintf(stamp + len, sizeof stamp - len, ".%03ldZ %ld:%ld ", now.tv_nsec / 1000000L,
           static_cast<long>(getpid()), static_cast<long>(syscall(SYS_gettid)));
  return stamp + ctx.name + " " + (function && *function ? function : "-") + ": ";
}

// AppendFormatted appends the printf-formatted text to *out.
void AppendFormatted(std::string* out, const char* format, va_list args) {
  va_list measure;
  va_copy(measure, args);
  const int len = vsnprintf(nullptr, 0, format, measure);
  va_end(measure);
  if (len <= 0) return;
  const size_t start = out->size();
  out->resize(start + static_cast<size_t>(len) + 1);
  vsnprintf(&(*out)[start], static_cast<size_t>(len) + 1, format, args);
  out->resize(start + static_cast<size_t>(len));
}

}  // namespace

extern "C" support_print_ctx* support_print_init(void* reserved, const char* name,
                                                 unsigned int levels_off, unsigned int levels_on) {
  const unsigned int levels = levels_on & ~levels_off;
  if (reserved || !name || !*name || levels == 0) return nullptr;
  try {
    return new support_print_ctx{name, levels};
  } catch (...) {
    return nullptr;
  }
}

extern "C" int support_print_is(const support_print_ctx* ctx, unsigned int level) {
  if (!ctx || level == 0) return 0;
  const int savedErrno = errno;
  int on = 0;
  try {
    on = (SettingsOf(*ctx).levels & level) != 0;
  } catch (...) {
  }
  errno = savedErrno;
  return on;
}

extern "C" void support_dprint_print_(support_print_ctx* ctx, const char* function,
                                      const char* format, ...) {
  if (!ctx || !format) return;
  const int savedErrno = errno;
  va_list args;
  va_start(args, format);
  try {
    const TraceSettings settings = SettingsOf(*ctx);
    if (settings.levels != 0) {
      std::string line = Prefix(*ctx, function);
      AppendFormatted(&line, format, args);
      if (line.back() != '\n') line.push_back('\n');
      AppendLine(settings.file, line);
    }
  } catch (...) {  // out of memory: the line is dropped
  }
  va_end(args);
  errno = savedErrno;
}

extern "C" void support_print_done(support_print_ctx* ctx) { delete ctx; }
