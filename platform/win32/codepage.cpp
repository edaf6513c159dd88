// MultiByteToWideChar and WideCharToMultiByte with the Windows calling
// conventions, for two code pages: CP_ACP, which is whatever multibyte
// encoding the current C locale uses (through mbrtowc/wcrtomb), and CP_UTF8,
// converted by our own strict codec so the result does not depend on the C
// library's leniency (glibc's UTF-8 locales, for one, accept code points
// above U+10FFFF).
#include <climits>
#include <cstring>
#include <cwchar>

#include <korvex/platform/win32/errhandlingapi.h>
#include <korvex/platform/win32/stringapiset.h>
#include <korvex/platform/win32/winerror.h>

#include "utf8_codec.h"

namespace {

int Fail(DWORD error) {
  SetLastError(error);
  return 0;
}

// Sink collects converted units: it writes them while they fit in the
// caller's buffer and counts them always. Without a buffer (a size query) it
// only counts. Characters are put whole, so output is never split inside one.
template <typename Unit>
class Sink {
 public:
  Sink(Unit* out, int capacity) : out_(out), capacity_(out ? static_cast<size_t>(capacity) : 0) {}

  // Put appends n units. It fails with ERROR_INSUFFICIENT_BUFFER when they do
  // not fit in the buffer, or when the total would not fit in the int result.
  DWORD Put(const Unit* units, size_t n) {
    if (n > static_cast<size_t>(INT_MAX) - count_) return ERROR_INSUFFICIENT_BUFFER;
    if (out_) {
      if (n > capacity_ - count_) return ERROR_INSUFFICIENT_BUFFER;
      std::memcpy(out_ + count_, units, n * sizeof(Unit));
    }
    count_ += n;
    return ERROR_SUCCESS;
  }

  int count() const { return static_cast<int>(count_); }

 private:
  Unit* out_;
  size_t capacity_;
  size_t count_ = 0;
};

DWORD Utf8ToWide(const unsigned char* in, size_t n, bool strict, Sink<wchar_t>& sink) {
  size_t i = 0;
  while (i < n) {
    size_t used;
    uint32_t cp = korvex::utf8::Decode(in + i, n - i, &used);
    if (cp == korvex::utf8::kInvalid) {
      if (strict) return ERROR_NO_UNICODE_TRANSLATION;
      cp = korvex::utf8::kReplacementChar;
    }
    const wchar_t wc = static_cast<wchar_t>(cp);
    if (DWORD e = sink.Put(&wc, 1)) return e;
    i += used;
  }
  return ERROR_SUCCESS;
}

DWORD WideToUtf8(const wchar_t* in, size_t n, bool strict, Sink<char>& sink) {
  for (size_t i = 0; i < n; ++i) {
    // wchar_t is a signed 32-bit type: negative values land above U+10FFFF.
    uint32_t cp = static_cast<uint32_t>(in[i]);
    if (!korvex::utf8::IsScalarValue(cp)) {
      if (strict) return ERROR_NO_UNICODE_TRANSLATION;
      cp = korvex::utf8::kReplacementChar;
    }
    unsigned char bytes[4];
    const size_t len = korvex::utf8::Encode(cp, bytes);
    if (DWORD e = sink.Put(reinterpret_cast<const char*>(bytes), len)) return e;
  }
  return ERROR_SUCCESS;
}

// LocaleToWide converts through mbrtowc in the current C locale. Without
// MB_ERR_INVALID_CHARS a byte that starts no valid character becomes U+FFFD
// and the conversion resumes at the next byte; an incomplete character at the
// end becomes one U+FFFD.
DWORD LocaleToWide(const char* in, size_t n, bool strict, Sink<wchar_t>& sink) {
  std::mbstate_t state{};
  size_t i = 0;
  while (i < n) {
    wchar_t wc = 0;
    size_t used = std::mbrtowc(&wc, in + i, n - i, &state);
    if (used == 0) {
      // The NUL character; mbrtowc does not say how many bytes it took, which
      // is everything up to and including the zero byte.
      used = static_cast<const char*>(std::memchr(in + i, 0, n - i)) - (in + i) + 1;
    } else if (used == static_cast<size_t>(-1) || used == static_cast<size_t>(-2)) {
      if (strict) return ERROR_NO_UNICODE_TRANSLATION;
      wc = static_cast<wchar_t>(korvex::utf8::kReplacementChar);
      used = used == static_cast<size_t>(-2) ? n - i : 1;
      state = std::mbstate_t{};
    }
    if (DWORD e = sink.Put(&wc, 1)) return e;
    i += used;
  }
  return ERROR_SUCCESS;
}

// WideToLocale converts through wcrtomb in the current C locale. A character
// the locale cannot represent is replaced by the default character, as
// Windows does for its ANSI code pages, and *usedDefault is set.
DWORD WideToLocale(const wchar_t* in, size_t n, const char* defaultChar, size_t defaultLen,
                   LPBOOL usedDefault, Sink<char>& sink) {
  std::mbstate_t state{};
  char bytes[MB_LEN_MAX];
  for (size_t i = 0; i < n; ++i) {
    size_t len = std::wcrtomb(bytes, in[i], &state);
    const char* out = bytes;
    if (len == static_cast<size_t>(-1)) {
      out = defaultChar;
      len = defaultLen;
      state = std::mbstate_t{};
      if (usedDefault) *usedDefault = TRUE;
    }
    if (DWORD e = sink.Put(out, len)) return e;
  }
  return ERROR_SUCCESS;
}

// DefaultCharLength: the length of the first character of a caller's default
// character in the current locale, or 0 when it holds no valid character.
size_t DefaultCharLength(const char* defaultChar) {
  std::mbstate_t state{};
  const size_t len = std::mbrlen(defaultChar, std::strlen(defaultChar), &state);
  if (len == 0 || len == static_cast<size_t>(-1) || len == static_cast<size_t>(-2)) return 0;
  return len;
}

}  // namespace

extern "C" int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR multiByteStr, int cbMultiByte,
                                   LPWSTR wideCharStr, int cchWideChar) {
  if (!multiByteStr || cbMultiByte == 0 || cbMultiByte < -1 || cchWideChar < 0 ||
      (cchWideChar > 0 && !wideCharStr) ||
      static_cast<const void*>(multiByteStr) == static_cast<const void*>(wideCharStr)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  const size_t n =
      cbMultiByte == -1 ? std::strlen(multiByteStr) + 1 : static_cast<size_t>(cbMultiByte);
  const bool strict = (flags & MB_ERR_INVALID_CHARS) != 0;
  Sink<wchar_t> sink(cchWideChar > 0 ? wideCharStr : nullptr, cchWideChar);
  DWORD error;
  switch (codePage) {
    case CP_UTF8:
      if (flags & ~MB_ERR_INVALID_CHARS) return Fail(ERROR_INVALID_FLAGS);
      error = Utf8ToWide(reinterpret_cast<const unsigned char*>(multiByteStr), n, strict, sink);
      break;
    case CP_ACP:
      if (flags & ~(MB_PRECOMPOSED | MB_ERR_INVALID_CHARS)) return Fail(ERROR_INVALID_FLAGS);
      error = LocaleToWide(multiByteStr, n, strict, sink);
      break;
    default:
      return Fail(ERROR_INVALID_PARAMETER);
  }
  if (error) return Fail(error);
  return sink.count();
}

extern "C" int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wideCharStr, int cchWideChar,
                                   LPSTR multiByteStr, int cbMultiByte, LPCSTR defaultChar,
                                   LPBOOL usedDefaultChar) {
  if (!wideCharStr || cchWideChar == 0 || cchWideChar < -1 || cbMultiByte < 0 ||
      (cbMultiByte > 0 && !multiByteStr) ||
      static_cast<const void*>(wideCharStr) == static_cast<const void*>(multiByteStr)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  const size_t n =
      cchWideChar == -1 ? std::wcslen(wideCharStr) + 1 : static_cast<size_t>(cchWideChar);
  Sink<char> sink(cbMultiByte > 0 ? multiByteStr : nullptr, cbMultiByte);
  DWORD error;
  switch (codePage) {
    case CP_UTF8:
      if (flags & ~WC_ERR_INVALID_CHARS) return Fail(ERROR_INVALID_FLAGS);
      // UTF-8 represents every valid character, so Windows refuses these.
      if (defaultChar || usedDefaultChar) return Fail(ERROR_INVALID_PARAMETER);
      error = WideToUtf8(wideCharStr, n, (flags & WC_ERR_INVALID_CHARS) != 0, sink);
      break;
    case CP_ACP: {
      if (flags & ~WC_NO_BEST_FIT_CHARS) return Fail(ERROR_INVALID_FLAGS);
      size_t defaultLen = 1;
      if (defaultChar) {
        defaultLen = DefaultCharLength(defaultChar);
        if (defaultLen == 0) return Fail(ERROR_INVALID_PARAMETER);
      }
      if (usedDefaultChar) *usedDefaultChar = FALSE;
      error = WideToLocale(wideCharStr, n, defaultChar ? defaultChar : "?", defaultLen,
                           usedDefaultChar, sink);
      break;
    }
    default:
      return Fail(ERROR_INVALID_PARAMETER);
  }
  if (error) return Fail(error);
  return sink.count();
}
