#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include <korvex/platform/win32/errhandlingapi.h>
#include <korvex/platform/win32/stringapiset.h>
#include <korvex/platform/win32/winerror.h>

#include "../common/locale_scope.h"

namespace {

constexpr DWORD kUntouched = 0xC0DEu;  // last error a successful call must leave alone

struct Outcome {
  int result;
  DWORD error;  // kUntouched on success
  std::wstring wide;
  std::string bytes;
};

// ToWide runs a size query and then the conversion into a buffer of exactly
// that size, checking that both agree.
Outcome ToWide(UINT codePage, DWORD flags, const std::string& in) {
  SetLastError(kUntouched);
  const int need =
      MultiByteToWideChar(codePage, flags, in.data(), static_cast<int>(in.size()), nullptr, 0);
  if (need == 0) return {0, GetLastError(), {}, {}};
  std::wstring out(static_cast<size_t>(need), L'\x7F7F');
  const int got = MultiByteToWideChar(codePage, flags, in.data(), static_cast<int>(in.size()),
                                      out.data(), need);
  EXPECT_EQ(need, got);
  return {got, GetLastError(), out, {}};
}

Outcome ToBytes(UINT codePage, DWORD flags, const std::wstring& in) {
  SetLastError(kUntouched);
  const int need = WideCharToMultiByte(codePage, flags, in.data(), static_cast<int>(in.size()),
                                       nullptr, 0, nullptr, nullptr);
  if (need == 0) return {0, GetLastError(), {}, {}};
  std::string out(static_cast<size_t>(need), '\x7F');
  const int got = WideCharToMultiByte(codePage, flags, in.data(), static_cast<int>(in.size()),
                                      out.data(), need, nullptr, nullptr);
  EXPECT_EQ(need, got);
  return {got, GetLastError(), {}, out};
}

using korvextest::LocaleScope;

// Code points at every boundary of the UTF-8 length classes (RFC 3629 3).
struct Boundary {
  std::string utf8;
  wchar_t cp;
};
const Boundary kBoundaries[] = {
    {std::string(1, '\0'), 0x0},
    {"\x7F", 0x7F},
    {"\xC2\x80", 0x80},
    {"\xDF\xBF", 0x7FF},
    {"\xE0\xA0\x80", 0x800},
    {"\xED\x9F\xBF", 0xD7FF},
    {"\xEE\x80\x80", 0xE000},
    {"\xEF\xBF\xBD", 0xFFFD},
    {"\xEF\xBF\xBF", 0xFFFF},
    {"\xF0\x90\x80\x80", 0x10000},
    {"\xF0\x9F\x98\x80", 0x1F600},
    {"\xF4\x8F\xBF\xBF", 0x10FFFF},
};

TEST(CodePageUtf8, DecodesEveryLengthClassBoundary) {
  for (auto const& b : kBoundaries) {
    SCOPED_TRACE(static_cast<unsigned>(b.cp));
    Outcome o = ToWide(CP_UTF8, MB_ERR_INVALID_CHARS, b.utf8);
    EXPECT_EQ(1, o.result);
    EXPECT_EQ(kUntouched, o.error);
    EXPECT_EQ(std::wstring(1, b.cp), o.wide);
  }
}

TEST(CodePageUtf8, EncodesEveryLengthClassBoundary) {
  for (auto const& b : kBoundaries) {
    SCOPED_TRACE(static_cast<unsigned>(b.cp));
    Outcome o = ToBytes(CP_UTF8, WC_ERR_INVALID_CHARS, std::wstring(1, b.cp));
    EXPECT_EQ(static_cast<int>(b.utf8.size()), o.result);
    EXPECT_EQ(kUntouched, o.error);
    EXPECT_EQ(b.utf8, o.bytes);
  }
}

TEST(CodePageUtf8, MixedTextWithFourByteCharacter) {
  const std::string text = "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";  // A é € U+1F600
  Outcome o = ToWide(CP_UTF8, 0, text);
  EXPECT_EQ(4, o.result);
  EXPECT_EQ((std::wstring{L'A', 0xE9, 0x20AC, 0x1F600}), o.wide);
  Outcome back = ToBytes(CP_UTF8, 0, o.wide);
  EXPECT_EQ(10, back.result);
  EXPECT_EQ(text, back.bytes);
}

// Each maximal ill-formed subpart becomes one U+FFFD (Unicode Standard,
// chapter 3); under MB_ERR_INVALID_CHARS every one of these fails.
TEST(CodePageUtf8, IllFormedInputBecomesReplacementOrFails) {
  constexpr wchar_t R = 0xFFFD;
  struct Case {
    const char* name;
    std::string in;
    std::wstring out;
  } cases[] = {
      {"lone continuation", "\x80", {R}},
      {"continuation inside text",
       "A\x80"
       "B",
       {L'A', R, L'B'}},
      {"overlong slash C0 AF", "\xC0\xAF", {R, R}},
      {"overlong C1 BF", "\xC1\xBF", {R, R}},
      {"overlong 3-byte E0 80 AF", "\xE0\x80\xAF", {R, R, R}},
      {"overlong 3-byte E0 9F BF", "\xE0\x9F\xBF", {R, R, R}},
      {"overlong 4-byte F0 8F BF BF", "\xF0\x8F\xBF\xBF", {R, R, R, R}},
      {"high surrogate ED A0 80", "\xED\xA0\x80", {R, R, R}},
      {"low surrogate ED BF BF", "\xED\xBF\xBF", {R, R, R}},
      {"surrogate pair in CESU form", "\xED\xA0\xBD\xED\xB8\x80", {R, R, R, R, R, R}},
      {"above U+10FFFF F4 90 80 80", "\xF4\x90\x80\x80", {R, R, R, R}},
      {"lead F5", "\xF5\x80\x80\x80", {R, R, R, R}},
      {"byte FE", "\xFE", {R}},
      {"byte FF", "\xFF", {R}},
      {"truncated 2-byte at end", "\xC3", {R}},
      {"truncated 3-byte at end", "\xE2\x82", {R}},
      {"truncated 4-byte at end", "\xF0\x9F\x98", {R}},
      {"truncated 3-byte before ASCII",
       "\xE2\x82"
       "A",
       {R, L'A'}},
      {"truncated 4-byte before ASCII",
       "\xF0\x9F\x98"
       "A",
       {R, L'A'}},
      {"lead followed by lead", "\xC3\xC3\xA9", {R, 0xE9}},
      {"5-byte form", "\xF8\x88\x80\x80\x80", {R, R, R, R, R}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    Outcome lenient = ToWide(CP_UTF8, 0, c.in);
    EXPECT_EQ(static_cast<int>(c.out.size()), lenient.result);
    EXPECT_EQ(kUntouched, lenient.error);
    EXPECT_EQ(c.out, lenient.wide);
    Outcome strict = ToWide(CP_UTF8, MB_ERR_INVALID_CHARS, c.in);
    EXPECT_EQ(0, strict.result);
    EXPECT_EQ(ERROR_NO_UNICODE_TRANSLATION, strict.error);
  }
}

TEST(CodePageUtf8, InvalidWideCharactersBecomeReplacementOrFail) {
  struct Case {
    const char* name;
    std::wstring in;
    std::string out;
  } cases[] = {
      {"high surrogate", {0xD800}, "\xEF\xBF\xBD"},
      {"low surrogate", {0xDFFF}, "\xEF\xBF\xBD"},
      {"UTF-16 pair stays two surrogates", {0xD83D, 0xDE00}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"above U+10FFFF", {0x110000}, "\xEF\xBF\xBD"},
      {"negative wchar_t", {static_cast<wchar_t>(-1)}, "\xEF\xBF\xBD"},
      {"between valid text",
       {L'a', 0xD800, L'b'},
       "a\xEF\xBF\xBD"
       "b"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    Outcome lenient = ToBytes(CP_UTF8, 0, c.in);
    EXPECT_EQ(static_cast<int>(c.out.size()), lenient.result);
    EXPECT_EQ(kUntouched, lenient.error);
    EXPECT_EQ(c.out, lenient.bytes);
    Outcome strict = ToBytes(CP_UTF8, WC_ERR_INVALID_CHARS, c.in);
    EXPECT_EQ(0, strict.result);
    EXPECT_EQ(ERROR_NO_UNICODE_TRANSLATION, strict.error);
  }
}

TEST(CodePageConventions, MinusOneLengthCountsTheNul) {
  wchar_t wide[8];
  EXPECT_EQ(4, MultiByteToWideChar(CP_UTF8, 0, "abc", -1, nullptr, 0));
  EXPECT_EQ(4, MultiByteToWideChar(CP_UTF8, 0, "abc", -1, wide, 8));
  EXPECT_EQ(std::wstring(L"abc"), std::wstring(wide));
  EXPECT_EQ(L'\0', wide[3]);
  EXPECT_EQ(3, MultiByteToWideChar(CP_UTF8, 0, "abc", 3, nullptr, 0));
  // -1 on an empty string still converts (and counts) its NUL.
  EXPECT_EQ(1, MultiByteToWideChar(CP_UTF8, 0, "", -1, wide, 8));
  EXPECT_EQ(L'\0', wide[0]);

  char bytes[8];
  EXPECT_EQ(4, WideCharToMultiByte(CP_UTF8, 0, L"\x20AC", -1, nullptr, 0, nullptr, nullptr));
  EXPECT_EQ(4, WideCharToMultiByte(CP_UTF8, 0, L"\x20AC", -1, bytes, 8, nullptr, nullptr));
  EXPECT_EQ(std::string("\xE2\x82\xAC", 4), std::string(bytes, 4));
  EXPECT_EQ(3, WideCharToMultiByte(CP_UTF8, 0, L"\x20AC", 1, nullptr, 0, nullptr, nullptr));
}

TEST(CodePageConventions, ExplicitLengthCarriesEmbeddedNul) {
  wchar_t wide[4] = {9, 9, 9, 9};
  EXPECT_EQ(3, MultiByteToWideChar(CP_UTF8, 0, "a\0b", 3, wide, 4));
  EXPECT_EQ((std::wstring{L'a', L'\0', L'b', 9}), std::wstring(wide, 4));
}

TEST(CodePageConventions, TooSmallOutputFailsAfterWritingWholeCharacters) {
  wchar_t wide[3] = {9, 9, 9};
  SetLastError(0);
  EXPECT_EQ(0, MultiByteToWideChar(CP_UTF8, 0, "abc", -1, wide, 2));
  EXPECT_EQ(ERROR_INSUFFICIENT_BUFFER, GetLastError());
  EXPECT_EQ((std::wstring{L'a', L'b', 9}), std::wstring(wide, 3));

  // The euro sign needs three bytes: with two left, none of it is written.
  char bytes[4] = {9, 9, 9, 9};
  SetLastError(0);
  EXPECT_EQ(0, WideCharToMultiByte(CP_UTF8, 0, L"a\x20AC", 2, bytes, 3, nullptr, nullptr));
  EXPECT_EQ(ERROR_INSUFFICIENT_BUFFER, GetLastError());
  EXPECT_EQ(std::string("a\x09\x09\x09"), std::string(bytes, 4));
  // Exactly enough room succeeds.
  EXPECT_EQ(4, WideCharToMultiByte(CP_UTF8, 0, L"a\x20AC", 2, bytes, 4, nullptr, nullptr));
}

TEST(CodePageConventions, InvalidParameters) {
  char narrow[8] = "abc";
  wchar_t wide[8] = L"abc";
  BOOL used = FALSE;
  struct Case {
    const char* name;
    int result;
    DWORD error;
  };
  auto mb = [](UINT cp, DWORD flags, LPCSTR in, int n, LPWSTR out, int size) {
    SetLastError(kUntouched);
    const int r = MultiByteToWideChar(cp, flags, in, n, out, size);
    return Case{"", r, GetLastError()};
  };
  auto wc = [](UINT cp, DWORD flags, LPCWSTR in, int n, LPSTR out, int size, LPCSTR def,
               LPBOOL usedDef) {
    SetLastError(kUntouched);
    const int r = WideCharToMultiByte(cp, flags, in, n, out, size, def, usedDef);
    return Case{"", r, GetLastError()};
  };
  struct Named {
    const char* name;
    Case got;
    DWORD error;
  } cases[] = {
      {"mb null input", mb(CP_UTF8, 0, nullptr, 3, wide, 8), ERROR_INVALID_PARAMETER},
      {"mb zero length", mb(CP_UTF8, 0, narrow, 0, wide, 8), ERROR_INVALID_PARAMETER},
      {"mb length -2", mb(CP_UTF8, 0, narrow, -2, wide, 8), ERROR_INVALID_PARAMETER},
      {"mb negative output size", mb(CP_UTF8, 0, narrow, 3, wide, -1), ERROR_INVALID_PARAMETER},
      {"mb null output with size", mb(CP_UTF8, 0, narrow, 3, nullptr, 8), ERROR_INVALID_PARAMETER},
      {"mb output is input", mb(CP_UTF8, 0, narrow, 3, reinterpret_cast<LPWSTR>(narrow), 2),
       ERROR_INVALID_PARAMETER},
      {"mb code page 1252", mb(1252, 0, narrow, 3, wide, 8), ERROR_INVALID_PARAMETER},
      {"mb code page 1200", mb(1200, 0, narrow, 3, wide, 8), ERROR_INVALID_PARAMETER},
      {"mb UTF-8 with MB_PRECOMPOSED", mb(CP_UTF8, MB_PRECOMPOSED, narrow, 3, wide, 8),
       ERROR_INVALID_FLAGS},
      {"mb ACP with MB_COMPOSITE", mb(CP_ACP, 0x2, narrow, 3, wide, 8), ERROR_INVALID_FLAGS},
      {"wc null input", wc(CP_UTF8, 0, nullptr, 3, narrow, 8, nullptr, nullptr),
       ERROR_INVALID_PARAMETER},
      {"wc zero length", wc(CP_UTF8, 0, wide, 0, narrow, 8, nullptr, nullptr),
       ERROR_INVALID_PARAMETER},
      {"wc length -5", wc(CP_UTF8, 0, wide, -5, narrow, 8, nullptr, nullptr),
       ERROR_INVALID_PARAMETER},
      {"wc negative output size", wc(CP_UTF8, 0, wide, 3, narrow, -1, nullptr, nullptr),
       ERROR_INVALID_PARAMETER},
      {"wc null output with size", wc(CP_UTF8, 0, wide, 3, nullptr, 8, nullptr, nullptr),
       ERROR_INVALID_PARAMETER},
      {"wc output is input",
       wc(CP_UTF8, 0, wide, 3, reinterpret_cast<LPSTR>(wide), 8, nullptr, nullptr),
       ERROR_INVALID_PARAMETER},
      {"wc code page 28591", wc(28591, 0, wide, 3, narrow, 8, nullptr, nullptr),
       ERROR_INVALID_PARAMETER},
      {"wc UTF-8 with default char", wc(CP_UTF8, 0, wide, 3, narrow, 8, "?", nullptr),
       ERROR_INVALID_PARAMETER},
      {"wc UTF-8 with used flag", wc(CP_UTF8, 0, wide, 3, narrow, 8, nullptr, &used),
       ERROR_INVALID_PARAMETER},
      {"wc UTF-8 with best-fit flag",
       wc(CP_UTF8, WC_NO_BEST_FIT_CHARS, wide, 3, narrow, 8, nullptr, nullptr),
       ERROR_INVALID_FLAGS},
      {"wc ACP with WC_ERR_INVALID_CHARS",
       wc(CP_ACP, WC_ERR_INVALID_CHARS, wide, 3, narrow, 8, nullptr, nullptr), ERROR_INVALID_FLAGS},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(0, c.got.result);
    EXPECT_EQ(c.error, c.got.error);
  }
  EXPECT_EQ(std::string("abc"), std::string(narrow));
  EXPECT_EQ(std::wstring(L"abc"), std::wstring(wide));
}

TEST(CodePageAcp, Utf8LocaleDecodesAndEncodes) {
  LocaleScope locale("C.UTF-8");
  if (!locale.ok()) GTEST_SKIP() << "C.UTF-8 locale not installed";
  const std::string text = "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
  Outcome o = ToWide(CP_ACP, MB_PRECOMPOSED, text);
  EXPECT_EQ(3, o.result);
  EXPECT_EQ(kUntouched, o.error);
  EXPECT_EQ((std::wstring{0xE9, 0x20AC, 0x1F600}), o.wide);
  Outcome back = ToBytes(CP_ACP, 0, o.wide);
  EXPECT_EQ(9, back.result);
  EXPECT_EQ(text, back.bytes);
  EXPECT_EQ(3, MultiByteToWideChar(CP_ACP, 0, "\xC3\xA9z", -1, nullptr, 0));  // é z NUL
}

TEST(CodePageAcp, Utf8LocaleInvalidBytes) {
  LocaleScope locale("C.UTF-8");
  if (!locale.ok()) GTEST_SKIP() << "C.UTF-8 locale not installed";
  constexpr wchar_t R = 0xFFFD;
  struct Case {
    const char* name;
    std::string in;
    std::wstring out;
  } cases[] = {
      {"byte FF",
       "a\xFF"
       "b",
       {L'a', R, L'b'}},
      {"lone continuation", "\x80", {R}},
      {"truncated at end", "a\xE2\x82", {L'a', R}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    Outcome lenient = ToWide(CP_ACP, 0, c.in);
    EXPECT_EQ(c.out, lenient.wide);
    EXPECT_EQ(kUntouched, lenient.error);
    Outcome strict = ToWide(CP_ACP, MB_ERR_INVALID_CHARS, c.in);
    EXPECT_EQ(0, strict.result);
    EXPECT_EQ(ERROR_NO_UNICODE_TRANSLATION, strict.error);
  }
}

TEST(CodePageAcp, UnrepresentableCharactersUseTheDefaultCharacter) {
  LocaleScope locale("C");
  ASSERT_TRUE(locale.ok());
  char out[8] = {};
  BOOL used = TRUE;
  // ASCII converts and clears the flag.
  EXPECT_EQ(3, WideCharToMultiByte(CP_ACP, 0, L"abc", 3, out, 8, nullptr, &used));
  EXPECT_EQ(FALSE, used);
  EXPECT_EQ(std::string("abc"), std::string(out, 3));
  // U+00E9 has no form in the C locale: "?" by default, else the caller's.
  EXPECT_EQ(3, WideCharToMultiByte(CP_ACP, 0,
                                   L"a\xE9"
                                   L"b",
                                   3, out, 8, nullptr, &used));
  EXPECT_EQ(TRUE, used);
  EXPECT_EQ(std::string("a?b"), std::string(out, 3));
  used = FALSE;
  EXPECT_EQ(3, WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS,
                                   L"a\x20AC"
                                   L"b",
                                   3, out, 8, "*#", &used));
  EXPECT_EQ(TRUE, used);
  EXPECT_EQ(std::string("a*b"), std::string(out, 3));
  // A default character that the locale itself cannot decode is refused.
  SetLastError(0);
  EXPECT_EQ(0, WideCharToMultiByte(CP_ACP, 0, L"a", 1, out, 8, "\xE9", nullptr));
  EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
  SetLastError(0);
  EXPECT_EQ(0, WideCharToMultiByte(CP_ACP, 0, L"a", 1, out, 8, "", nullptr));
  EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
}

TEST(CodePageAcp, CLocaleIsAscii) {
  LocaleScope locale("C");
  ASSERT_TRUE(locale.ok());
  Outcome o = ToWide(CP_ACP, 0, std::string("A~\0z", 4));
  EXPECT_EQ((std::wstring{L'A', L'~', L'\0', L'z'}), o.wide);
  Outcome high = ToWide(CP_ACP, 0, "a\xE9");
  EXPECT_EQ((std::wstring{L'a', 0xFFFD}), high.wide);
  Outcome strict = ToWide(CP_ACP, MB_ERR_INVALID_CHARS, "a\xE9");
  EXPECT_EQ(0, strict.result);
  EXPECT_EQ(ERROR_NO_UNICODE_TRANSLATION, strict.error);
}

TEST(CodePageAcp, LocaleScopeRestoresTheLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  { LocaleScope locale("C.UTF-8"); }
  EXPECT_EQ(before, std::setlocale(LC_ALL, nullptr));
}

}  // namespace
