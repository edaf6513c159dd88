// input.cpp: input reading and form detection.
#include "input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

#include "base64.h"
#include "pem.h"
#include "tool_error.h"
#include "utf8.h"

namespace adestool {

namespace {

// Closes a descriptor that we opened (never standard input).
struct FdCloser {
  int fd;
  bool owned;
  ~FdCloser() {
    if (owned && fd >= 0) ::close(fd);
  }
};

// True for valid UTF-8 (RFC 3629: shortest forms, no surrogates, at most
// U+10FFFF) without control characters other than whitespace.
bool IsText(const uint8_t* p, size_t n) {
  size_t i = 0;
  while (i < n) {
    uint8_t c = p[i];
    if (c < 0x80) {
      if ((c < 0x20 && !IsBase64Space(c)) || c == 0x7F) return false;
      ++i;
      continue;
    }
    uint32_t cp = 0;
    const size_t len = Utf8Decode(p + i, n - i, &cp);
    if (len == 0) return false;
    if (cp < 0xA0) return false;  // C1 controls
    i += len;
  }
  return true;
}

// "line L, column C" of a byte offset in text.
std::string LineColumn(std::string_view text, size_t offset) {
  size_t line = 1;
  size_t lineStart = 0;
  for (size_t i = 0; i < offset && i < text.size(); ++i) {
    if (text[i] == '\n') {
      ++line;
      lineStart = i + 1;
    }
  }
  return "line " + std::to_string(line) + ", column " + std::to_string(offset - lineStart + 1);
}

}  // namespace

const char* InputFormName(InputForm form) {
  switch (form) {
    case InputForm::kDer:
      return "DER";
    case InputForm::kPem:
      return "PEM";
    case InputForm::kBase64:
      return "base64";
  }
  return "DER";
}

std::string DisplayName(const std::string& path) { return path == "-" ? kStdinName : path; }

std::vector<uint8_t> ReadInputBytes(const std::string& path) {
  const std::string name = DisplayName(path);
  const bool isStdin = path == "-";
  FdCloser fd{isStdin ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC), !isStdin};
  if (fd.fd < 0) throw FileError(name, "cannot open: " + ErrnoText(errno));
  struct stat st;
  if (::fstat(fd.fd, &st) == 0) {
    if (S_ISDIR(st.st_mode)) throw FileError(name, "cannot read: " + ErrnoText(EISDIR));
    if (S_ISREG(st.st_mode) && static_cast<unsigned long long>(st.st_size) > kMaxInputSize) {
      throw FileError(name, "input larger than 256 MiB");
    }
  }
  std::vector<uint8_t> bytes;
  size_t used = 0;
  for (;;) {
    if (bytes.size() - used < 65536) bytes.resize(used + 65536 * 4);
    ssize_t got = ::read(fd.fd, bytes.data() + used, bytes.size() - used);
    if (got < 0) {
      if (errno == EINTR) continue;
      throw FileError(name, "cannot read: " + ErrnoText(errno));
    }
    if (got == 0) break;
    used += static_cast<size_t>(got);
    if (used > kMaxInputSize) throw FileError(name, "input larger than 256 MiB");
  }
  bytes.resize(used);
  return bytes;
}

Input DecodeInput(const std::string& name, const std::vector<uint8_t>& bytes) {
  Input input;
  input.name = name;
  if (bytes.empty()) throw FileError(name, "empty input");
  const uint8_t* p = bytes.data();
  size_t n = bytes.size();
  if (!IsText(p, n)) {
    input.form = InputForm::kDer;
    input.items.push_back({std::string(), bytes});
    return input;
  }
  if (n >= 3 && p[0] == 0xEF && p[1] == 0xBB && p[2] == 0xBF) {  // UTF-8 byte-order mark
    p += 3;
    n -= 3;
  }
  std::string_view text(reinterpret_cast<const char*>(p), n);
  if (text.find_first_not_of(" \t\n\r\f\v") == std::string_view::npos) {
    throw FileError(name, "empty input (only whitespace)");
  }
  if (HasPemBeginLine(text)) {
    input.form = InputForm::kPem;
    std::vector<PemBlock> blocks;
    std::string error;
    if (!ParsePem(text, &blocks, &error)) throw FileError(name, error);
    for (PemBlock& block : blocks) {
      input.items.push_back({std::move(block.label), std::move(block.der)});
    }
    return input;
  }
  input.form = InputForm::kBase64;
  InputItem item;
  Base64Error b64;
  if (!DecodeBase64(text, &item.bytes, &b64)) {
    std::string where = b64.offset < text.size() ? " at " + LineColumn(text, b64.offset) : "";
    throw FileError(name, "not DER, PEM or base64: " + b64.what + where);
  }
  input.items.push_back(std::move(item));
  return input;
}

}  // namespace adestool
