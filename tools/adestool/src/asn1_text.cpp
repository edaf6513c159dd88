// asn1_text.cpp: hex previews, quoted strings and time descriptions.
#include "asn1_text.h"

#include <cstdio>

#include "utf8.h"

namespace adestool {

namespace {

void AppendUtf8(std::string* out, char32_t c) {
  if (c < 0x80) {
    out->push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out->push_back(static_cast<char>(0xC0 | (c >> 6)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out->push_back(static_cast<char>(0xE0 | (c >> 12)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out->push_back(static_cast<char>(0xF0 | (c >> 18)));
    out->push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

// Escape of an ASCII character, or null when it stands as itself.
const char* AsciiEscape(unsigned char c) {
  switch (c) {
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return nullptr;
  }
}

// Length of a valid UTF-8 sequence at p for a character from U+00A0 up, or 0.
size_t PrintableUtf8Length(const uint8_t* p, size_t n) {
  uint32_t cp = 0;
  const size_t len = Utf8Decode(p, n, &cp);
  return len > 1 && cp >= 0xA0 ? len : 0;
}

int Digits(const uint8_t* p, size_t count) {
  int v = 0;
  for (size_t i = 0; i < count; ++i) {
    if (p[i] < '0' || p[i] > '9') return -1;
    v = v * 10 + (p[i] - '0');
  }
  return v;
}

}  // namespace

std::string HexPreview(const uint8_t* p, size_t n, size_t max) {
  static const char kHex[] = "0123456789ABCDEF";
  const size_t shown = n > max ? max : n;
  std::string out;
  out.reserve(shown * 3 + 24);
  for (size_t i = 0; i < shown; ++i) {
    if (i) out.push_back(' ');
    out.push_back(kHex[p[i] >> 4]);
    out.push_back(kHex[p[i] & 0x0F]);
  }
  if (shown < n) out += " ... (" + std::to_string(n) + " bytes)";
  return out;
}

std::string QuoteBytes(const uint8_t* p, size_t n, bool utf8, size_t max) {
  const size_t shown = n > max ? max : n;
  std::string out = "\"";
  for (size_t i = 0; i < shown;) {
    unsigned char c = p[i];
    if (const char* esc = AsciiEscape(c)) {
      out += esc;
      ++i;
    } else if (c >= 0x20 && c <= 0x7E) {
      out.push_back(static_cast<char>(c));
      ++i;
    } else if (size_t len = utf8 ? PrintableUtf8Length(p + i, shown - i) : 0) {
      out.append(reinterpret_cast<const char*>(p + i), len);
      i += len;
    } else {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\x%02X", c);
      out += buf;
      ++i;
    }
  }
  out.push_back('"');
  if (shown < n) out += " ... (" + std::to_string(n) + " bytes)";
  return out;
}

std::string QuoteCodePoints(const std::u32string& text, size_t max) {
  const size_t shown = text.size() > max ? max : text.size();
  std::string out = "\"";
  for (size_t i = 0; i < shown; ++i) {
    char32_t c = text[i];
    if (c < 0x80 && AsciiEscape(static_cast<unsigned char>(c))) {
      out += AsciiEscape(static_cast<unsigned char>(c));
    } else if (c >= 0x20 && c <= 0x7E) {
      out.push_back(static_cast<char>(c));
    } else if (c >= 0xA0 && c <= 0x10FFFF && !(c >= 0xD800 && c <= 0xDFFF)) {
      AppendUtf8(&out, c);
    } else {
      char buf[16];
      if (c <= 0xFFFF) {
        std::snprintf(buf, sizeof buf, "\\u%04X", static_cast<unsigned>(c));
      } else {
        std::snprintf(buf, sizeof buf, "\\U%08X", static_cast<unsigned>(c));
      }
      out += buf;
    }
  }
  out.push_back('"');
  if (shown < text.size()) out += " ... (" + std::to_string(text.size()) + " characters)";
  return out;
}

std::string DescribeTime(bool utc, const uint8_t* p, size_t n) {
  // UTCTime: YYMMDDHHMMSSZ. GeneralizedTime: YYYYMMDDHHMMSS[.f+]Z.
  const size_t yearDigits = utc ? 2 : 4;
  const size_t fixed = yearDigits + 10;
  if (n < fixed + 1 || p[n - 1] != 'Z') return std::string();
  int year = Digits(p, yearDigits);
  int month = Digits(p + yearDigits, 2);
  int day = Digits(p + yearDigits + 2, 2);
  int hour = Digits(p + yearDigits + 4, 2);
  int minute = Digits(p + yearDigits + 6, 2);
  int second = Digits(p + yearDigits + 8, 2);
  if (year < 0 || month < 1 || month > 12 || day < 1 || day > 31 || hour < 0 || hour > 23 ||
      minute < 0 || minute > 59 || second < 0 || second > 60) {
    return std::string();
  }
  std::string fraction;
  if (n > fixed + 1) {
    // A fraction: only in GeneralizedTime, '.', at least one digit, no
    // trailing zero (X.690 11.7.3).
    if (utc || p[fixed] != '.' || n < fixed + 3 || p[n - 2] == '0') return std::string();
    for (size_t i = fixed + 1; i < n - 1; ++i) {
      if (p[i] < '0' || p[i] > '9') return std::string();
    }
    fraction.assign(reinterpret_cast<const char*>(p + fixed), n - 1 - fixed);
  }
  if (utc) year += year < 50 ? 2000 : 1900;
  char buf[48];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", year, month, day, hour, minute,
                second);
  return std::string(buf) + fraction + " UTC";
}

}  // namespace adestool
