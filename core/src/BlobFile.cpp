// CBlob's whole-file reading and writing.
#include <korvex/core/Blob.h>

#include <cstdint>
#include <cwchar>
#include <fstream>
#include <memory>

#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/support/support.h>

namespace Korvex {
namespace {

// ERROR_FILE_NOT_FOUND and ERROR_FILE_CORRUPT in HRESULT form.
constexpr HRESULT kFileNotFound = static_cast<HRESULT>(0x80070002u);
constexpr HRESULT kFileCorrupt = static_cast<HRESULT>(0x80070570u);

// MultiBytePath converts a wide path to the current locale's multibyte form
// in a zero-filled buffer of one byte per wide character plus the NUL; a
// path whose multibyte form is longer is cut short (on a character boundary).
std::unique_ptr<char[]> MultiBytePath(wchar_t const* path) {
  size_t chars = std::wcslen(path);
  std::unique_ptr<char[]> narrow(new char[chars + 1]());
  wchar_t const* src = path;
  // A character the locale cannot represent ends the conversion; the bytes
  // converted so far stay as the path, as with any other short conversion.
  safe_wcsrtombs(narrow.get(), &src, chars, nullptr);
  return narrow;
}

}  // namespace

void CBlob::readFromFile(char const* path) {
  std::ifstream file;
  if (path != nullptr) file.open(path, std::ios::in | std::ios::binary);
  if (!file.is_open() || file.fail()) {
    clear();
    ATL::AtlThrowImpl(kFileNotFound);
  }

  file.seekg(0, std::ios::end);
  std::streamoff length = file.tellg();
  if (length == 0) {
    assign(nullptr, 0);
    return;
  }
  // A failed seek (a pipe) reports -1; files of 4 GiB or more are outside
  // the supported range and count as unreadable rather than being cut. A
  // directory opens on Linux and reports a bogus end position, so one
  // character is peeked before a buffer is sized from the length.
  bool readable = length > 0 && length <= static_cast<std::streamoff>(UINT32_MAX);
  if (readable) {
    file.seekg(0, std::ios::beg);
    readable = !file.fail() && file.peek() != std::ifstream::traits_type::eof();
  }
  if (!readable) {
    file.close();
    resize_to(0);
    ATL::AtlThrowImpl(kFileCorrupt);
  }
  unsigned long count = static_cast<unsigned long>(length);

  std::unique_ptr<unsigned char[]> buffer(new unsigned char[count]);
  file.read(reinterpret_cast<char*>(buffer.get()), static_cast<std::streamsize>(count));
  if (file.fail() || file.bad()) {
    file.close();
    resize_to(0);
    ATL::AtlThrowImpl(kFileCorrupt);
  }
  file.close();
  // Install the buffer as the new array: the same result as assign() without
  // a second copy of the file.
  m_cbData = count;
  delete[] m_pbData;
  m_pbData = buffer.release();
}

void CBlob::readFromFile(wchar_t const* path) {
  if (path == nullptr) {
    readFromFile(static_cast<char const*>(nullptr));
    return;
  }
  readFromFile(MultiBytePath(path).get());
}

void CBlob::writeToFile(char const* path) const {
  std::ofstream file;
  if (path != nullptr) file.open(path, std::ios::out | std::ios::binary | std::ios::trunc);
  if (!file.is_open() || file.fail()) ATL::AtlThrowImpl(kFileNotFound);
  if (m_cbData != 0) {
    file.write(reinterpret_cast<char const*>(m_pbData), static_cast<std::streamsize>(m_cbData));
  }
  // Errors of the write and of the close are not reported to the caller.
  file.close();
}

void CBlob::writeToFile(wchar_t const* path) const {
  if (path == nullptr) {
    writeToFile(static_cast<char const*>(nullptr));
    return;
  }
  writeToFile(MultiBytePath(path).get());
}

}  // namespace Korvex
