// UTF-8 code-page conversions: the size query agrees with the conversion,
// strict and lenient decoding agree on valid input, and whatever is decoded
// encodes back (to the same bytes when the input was valid).
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <korvex/platform/win32/stringapiset.h>

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

std::wstring Decode(const std::string& in, DWORD flags, bool* ok) {
  const int n = static_cast<int>(in.size());
  const int need = MultiByteToWideChar(CP_UTF8, flags, in.data(), n, nullptr, 0);
  *ok = need > 0;
  if (!*ok) return {};
  std::wstring out(static_cast<size_t>(need), L'\0');
  Check(MultiByteToWideChar(CP_UTF8, flags, in.data(), n, out.data(), need) == need);
  // One unit short must fail without writing past the buffer.
  if (need > 1) Check(MultiByteToWideChar(CP_UTF8, flags, in.data(), n, out.data(), need - 1) == 0);
  return out;
}

std::string Encode(const std::wstring& in, DWORD flags, bool* ok) {
  const int n = static_cast<int>(in.size());
  const int need = WideCharToMultiByte(CP_UTF8, flags, in.data(), n, nullptr, 0, nullptr, nullptr);
  *ok = need > 0;
  if (!*ok) return {};
  std::string out(static_cast<size_t>(need), '\0');
  Check(WideCharToMultiByte(CP_UTF8, flags, in.data(), n, out.data(), need, nullptr, nullptr) ==
        need);
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0 || size > 4096) return 0;
  const std::string bytes(reinterpret_cast<const char*>(data), size);

  bool lenientOk, strictOk, ok;
  const std::wstring lenient = Decode(bytes, 0, &lenientOk);
  Check(lenientOk && lenient.size() <= bytes.size());
  const std::wstring strict = Decode(bytes, MB_ERR_INVALID_CHARS, &strictOk);
  if (strictOk) {
    Check(strict == lenient);
    Check(Encode(strict, WC_ERR_INVALID_CHARS, &ok) == bytes && ok);
  }
  // Lenient output holds only scalar values: it encodes strictly and decodes back.
  const std::string again = Encode(lenient, WC_ERR_INVALID_CHARS, &ok);
  Check(ok);
  Check(Decode(again, MB_ERR_INVALID_CHARS, &ok) == lenient && ok);

  // The same bytes read as wide characters: invalid ones become U+FFFD.
  std::wstring wide(size / sizeof(wchar_t), L'\0');
  if (!wide.empty()) {
    std::memcpy(wide.data(), data, wide.size() * sizeof(wchar_t));
    const std::string utf8 = Encode(wide, 0, &ok);
    Check(ok);
    const std::wstring back = Decode(utf8, MB_ERR_INVALID_CHARS, &ok);
    Check(ok && back.size() == wide.size());
    for (size_t i = 0; i < wide.size(); ++i) {
      const uint32_t cp = static_cast<uint32_t>(wide[i]);
      const bool valid = cp < 0xD800 || (cp > 0xDFFF && cp <= 0x10FFFF);
      Check(static_cast<uint32_t>(back[i]) == (valid ? cp : 0xFFFDu));
    }
  }
  return 0;
}
