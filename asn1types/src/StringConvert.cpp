// StringConvert.cpp: narrow, wide and 16-bit text through the platform's code
// page functions, and integers as decimal text.
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/Util.h>
#include <korvex/platform/win32/errhandlingapi.h>
#include <korvex/platform/win32/stringapiset.h>
#include <korvex/platform/win32/winerror.h>

#include <cstdio>
#include <string>
#include <vector>

namespace Korvex {
namespace ASN1 {

namespace {

[[noreturn]] void ThrowInvalidParameter() {
  SetLastError(ERROR_INVALID_PARAMETER);
  ATL::AtlThrowLastWin32();
}

}  // namespace

CStringProxy tostring(wchar_t const* text) {
  if (!text) ThrowInvalidParameter();
  // Sizes count the NUL (length -1).
  int size = WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (size <= 0) ATL::AtlThrowLastWin32();
  std::vector<char> out(static_cast<size_t>(size));
  if (WideCharToMultiByte(CP_ACP, 0, text, -1, out.data(), size, nullptr, nullptr) <= 0) {
    ATL::AtlThrowLastWin32();
  }
  out.back() = '\0';
  return CStringProxy(out.data());
}

CStringProxy tostring(unsigned short const* text) {
  if (!text) ThrowInvalidParameter();
  // UTF-16 to code points: a high surrogate followed by a low one is one
  // character; a lone surrogate passes as it is (the code page replaces it).
  std::wstring wide;
  for (size_t i = 0; text[i] != 0; ++i) {
    unsigned int unit = text[i];
    if (unit >= 0xD800 && unit <= 0xDBFF && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
      unit = 0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00u);
      ++i;
    }
    wide.push_back(static_cast<wchar_t>(unit));
  }
  return tostring(wide.c_str());
}

CWStringProxy towstring(char const* text) {
  if (!text) ThrowInvalidParameter();
  int size = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
  if (size <= 0) ATL::AtlThrowLastWin32();
  std::vector<wchar_t> out(static_cast<size_t>(size));
  if (MultiByteToWideChar(CP_ACP, 0, text, -1, out.data(), size) <= 0) ATL::AtlThrowLastWin32();
  out.back() = L'\0';
  return CWStringProxy(out.data());
}

CStringProxy tostring(int value) {
  char text[16];
  std::snprintf(text, sizeof text, "%d", value);
  return CStringProxy(text);
}

CWStringProxy towstring(int value) {
  wchar_t text[16];
  std::swprintf(text, sizeof text / sizeof text[0], L"%d", value);
  return CWStringProxy(text);
}

}  // namespace ASN1
}  // namespace Korvex
