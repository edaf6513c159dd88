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
  // that does not fit in the remaining room is never split. The NUL goes
  // through wcrtomb too: in a stateful encoding it brings the shift sequence
  // that returns to the initial state, and that must fit as well.
  size_t written = 0;
  const wchar_t* p = *src;
  char one[MB_LEN_MAX];
  while (written < len) {
    const mbstate_t before = *ps;
    const size_t n = wcrtomb(one, *p, ps);
    if (n == static_cast<size_t>(-1)) {  // errno is EILSEQ
      *src = p;
      return static_cast<size_t>(-1);
    }
    if (n > len - written) {
      *ps = before;
      break;
    }
    std::memcpy(dst + written, one, n);
    if (*p == L'\0') {
      *src = nullptr;
      return written + n - 1;  // the count leaves the NUL out
    }
    written += n;
    ++p;
  }
  *src = p;
  return written;
}
