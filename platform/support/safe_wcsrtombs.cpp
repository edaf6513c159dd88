// Bounded wide-to-multibyte conversion used for file paths (CBlob's wide-path
// file functions) and wherever wide text must meet a narrow C API.
#include <korvex/platform/support/support.h>

#include <climits>
#include <cstring>
#include <cwchar>

extern "C" size_t safe_wcsrtombs(char* dst, const wchar_t** src, size_t len, mbstate_t* ps) {
  mbstate_t own{};
  if (!ps) ps = &own;
  if (!src || !*src) return 0;
  if (!dst) return wcsrtombs(nullptr, src, 0, ps);
  // Convert one character at a time into scratch space so that a character
  // that does not fit in the remaining room is never split.
  size_t written = 0;
  const wchar_t* p = *src;
  char one[MB_LEN_MAX];
  while (written < len) {
    if (*p == L'\0') {
      dst[written] = '\0';
      *src = nullptr;
      return written;
    }
    mbstate_t before = *ps;
    size_t n = wcrtomb(one, *p, ps);
    if (n == static_cast<size_t>(-1)) {
      *src = p;
      return static_cast<size_t>(-1);
    }
    if (n > len - written) {
      *ps = before;
      break;
    }
    std::memcpy(dst + written, one, n);
    written += n;
    ++p;
  }
  *src = p;
  return written;
}
