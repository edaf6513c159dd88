// CBlob's conversions to and from hexadecimal text. Both directions are
// table driven and touch each byte once; the only allocations are the blob's
// array and the text buffer.
#include <korvex/core/Blob.h>

#include <cctype>
#include <cstring>
#include <string>

namespace Korvex {
namespace {

// Classes of a character besides a digit value 0..15.
constexpr unsigned char kSpace = 0xFE;   // a space in every locale
constexpr unsigned char kNotHex = 0xFF;  // anything else: ask the locale

// HexTables holds, for every byte value, its digit value when it is a hex
// digit (otherwise kSpace or kNotHex) and its two upper-case hex digits.
struct HexTables {
  unsigned char value[256];
  char pair[256][2];

  constexpr HexTables() : value(), pair() {
    const char digits[] = "0123456789ABCDEF";
    for (int c = 0; c < 256; ++c) {
      value[c] = kNotHex;
      pair[c][0] = digits[c >> 4];
      pair[c][1] = digits[c & 0xF];
    }
    // POSIX puts these six in the space class of every locale.
    for (char c : {' ', '\t', '\n', '\v', '\f', '\r'}) {
      value[static_cast<unsigned char>(c)] = kSpace;
    }
    for (int c = '0'; c <= '9'; ++c) value[c] = static_cast<unsigned char>(c - '0');
    for (int c = 'A'; c <= 'F'; ++c) value[c] = static_cast<unsigned char>(c - 'A' + 10);
    for (int c = 'a'; c <= 'f'; ++c) value[c] = static_cast<unsigned char>(c - 'a' + 10);
  }
};

constexpr HexTables kHex;

// SkipSpace skips characters that isspace() accepts in the current locale.
// Digits and NUL are never spaces and the ASCII blanks always are, so the
// locale is only asked about other characters, which end the text anyway.
inline unsigned char const* SkipSpace(unsigned char const* p) {
  for (;; ++p) {
    unsigned char cls = kHex.value[*p];
    if (cls == kSpace) continue;
    if (cls != kNotHex || *p == 0 || !std::isspace(*p)) return p;
  }
}

}  // namespace

void CBlob::readFromHexString(char const* text) {
  if (text == nullptr) text = "";
  // Every byte takes two characters, so strlen / 2 bytes always fit. As
  // with resize_to, the array is replaced only when the size is below that;
  // the old bytes are not copied since they are about to be overwritten. The
  // array is kept as working space while the size counts the bytes parsed.
  unsigned long needed = std::strlen(text) / 2 + 1;
  if (m_cbData < needed) {
    unsigned char* fresh = new unsigned char[needed];
    delete[] m_pbData;
    m_pbData = fresh;
  }
  m_cbData = 0;

  unsigned char const* p = SkipSpace(reinterpret_cast<unsigned char const*>(text));
  unsigned char* out = m_pbData;
  unsigned long count = 0;
  unsigned char high = kHex.value[*p];
  // NUL is not a digit, so p[1] is only read while p[0] is one.
  while (high <= 0xF) {
    unsigned char low = kHex.value[p[1]];
    if (low > 0xF) break;
    out[count++] = static_cast<unsigned char>(high << 4 | low);
    p += 2;
    high = kHex.value[*p];
    if (high > 0xF) {
      p = SkipSpace(p);
      high = kHex.value[*p];
    }
  }
  m_cbData = count;
}

CStringProxy CBlob::writeToHexString(unsigned long group) const {
  if (m_cbData == 0) return CStringProxy("");
  unsigned long length = 2 * m_cbData;
  // A space after every group bytes, except after the last byte.
  if (group != 0) length += m_cbData / group - (m_cbData % group == 0 ? 1 : 0);

  // The text is written straight into the proxy's string.
  CStringProxy result(nullptr);
  std::string& text = *result.m_str;
  text.resize(length);
  // Locals, not members: stores through char* could alias the members and
  // force a reload on every byte.
  unsigned char const* bytes = m_pbData;
  unsigned long const count = m_cbData;
  char* out = &text[0];
  if (group == 0) group = count;
  for (unsigned long i = 0;;) {
    unsigned long end = count - i > group ? i + group : count;
    for (; i < end; ++i, out += 2) std::memcpy(out, kHex.pair[bytes[i]], 2);
    if (i == count) break;
    *out++ = ' ';
  }
  return result;
}

}  // namespace Korvex
