// DistinguishedNameParser.cpp: RFC 4514 text (and the RFC 1779 habits users
// keep: ';' between RDNs, blanks around separators, quoted values) to
// distinguished names.
#include <korvex/asn1types/AttributeTypeRegister.h>
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/ErrorCodes.h>

#include <string>
#include <vector>

#include "NameSupport.h"

namespace Korvex {
namespace ASN1 {

namespace {

bool isBlank(wchar_t c) { return c == L' ' || c == L'\t'; }
bool isRdnSeparator(wchar_t c) { return c == L',' || c == L';'; }
bool isSeparator(wchar_t c) { return isRdnSeparator(c) || c == L'+'; }

int hexValue(wchar_t c) {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  return -1;
}

wchar_t asciiLower(wchar_t c) { return (c >= L'A' && c <= L'Z') ? c - L'A' + L'a' : c; }

bool equalsIgnoreCase(std::wstring const& a, wchar_t const* b) {
  std::size_t i = 0;
  for (; i < a.size() && b[i]; ++i) {
    if (asciiLower(a[i]) != asciiLower(b[i])) return false;
  }
  return i == a.size() && !b[i];
}

// Appends the UTF-8 octets of hex pairs as characters; ill-formed UTF-8
// (RFC 3629 3: overlong forms, surrogates, values above U+10FFFF) is refused.
void appendUtf8(std::string const& bytes, std::wstring& out) {
  std::size_t i = 0;
  while (i < bytes.size()) {
    unsigned int const lead = static_cast<unsigned char>(bytes[i++]);
    unsigned long cp;
    int more;
    unsigned long min;
    if (lead < 0x80) {
      cp = lead, more = 0, min = 0;
    } else if ((lead & 0xE0) == 0xC0) {
      cp = lead & 0x1F, more = 1, min = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
      cp = lead & 0x0F, more = 2, min = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
      cp = lead & 0x07, more = 3, min = 0x10000;
    } else {
      throwInvalidArgument();
    }
    for (int k = 0; k < more; ++k) {
      if (i >= bytes.size()) throwInvalidArgument();
      unsigned int const next = static_cast<unsigned char>(bytes[i++]);
      if ((next & 0xC0) != 0x80) throwInvalidArgument();
      cp = (cp << 6) | (next & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) throwInvalidArgument();
    out += static_cast<wchar_t>(cp);
  }
}

// A cursor over the text; every syntax error throws 0x80070057.
class Parser {
 public:
  Parser(wchar_t const* text, StringType stringType)
      : m_text(text), m_pos(0), m_stringType(stringType) {}

  CName name() {
    std::vector<CRelativeDistinguishedName> rdns;
    skipBlanks();
    if (atEnd()) return CName();
    for (;;) {
      rdns.push_back(rdn());
      skipBlanks();
      if (atEnd()) break;
      if (!isRdnSeparator(peek())) throwInvalidArgument();
      ++m_pos;
      skipBlanks();
    }
    // RFC 4514 2.1: the text starts with the last RDN of the sequence.
    CName result;
    for (auto it = rdns.rbegin(); it != rdns.rend(); ++it) result.push_back(*it);
    return result;
  }

  CAttributeTypeAndValue singlePair() {
    skipBlanks();
    CAttributeTypeAndValue result = atav();
    skipBlanks();
    if (!atEnd()) throwInvalidArgument();
    return result;
  }

 private:
  bool atEnd() const { return m_text[m_pos] == L'\0'; }
  wchar_t peek() const { return m_text[m_pos]; }
  void skipBlanks() {
    while (isBlank(peek())) ++m_pos;
  }

  CRelativeDistinguishedName rdn() {
    CRelativeDistinguishedName result;
    for (;;) {
      skipBlanks();
      result.push_back(atav());
      skipBlanks();
      if (peek() != L'+') return result;
      ++m_pos;
    }
  }

  CAttributeTypeAndValue atav() {
    std::string const oid = type();
    ++m_pos;  // '='
    skipBlanks();
    if (peek() == L'#') return CAttributeTypeAndValue(oid.c_str(), hexValueDer());
    std::wstring const text = (peek() == L'"') ? quotedValue() : plainValue();
    for (wchar_t c : text) {
      // Character-string records end at their first NUL: such a value could
      // not come back.
      if (c == L'\0') throwInvalidArgument();
    }
    CAttributeTypeAndValue result;
    result.put_type(oid.c_str());
    result.put_value(CATAVRegister::valueFromStr(oid.c_str(), text.c_str(), m_stringType));
    return result;
  }

  // The attribute type up to '=': a register name, a dotted OID or "OID."
  // and a dotted OID (RFC 4514 3, RFC 1779 2.3), as dotted OID text.
  std::string type() {
    std::size_t const start = m_pos;
    while (!atEnd() && peek() != L'=' && !isSeparator(peek()) && peek() != L'\\' &&
           peek() != L'"')
      ++m_pos;
    if (peek() != L'=') throwInvalidArgument();
    std::size_t end = m_pos;
    while (end > start && isBlank(m_text[end - 1])) --end;
    std::wstring name(m_text + start, m_text + end);
    if (name.empty()) throwInvalidArgument();

    CATAVRegister::const_iterator entry = CATAVRegister::find(name.c_str());
    if (entry == CATAVRegister::end()) {
      for (auto it = CATAVRegister::registered().begin(); it != CATAVRegister::end(); ++it) {
        if (equalsIgnoreCase(name, it->get_name())) {
          entry = it;
          break;
        }
      }
    }
    if (entry != CATAVRegister::end()) return entry->get_type();

    if (name.size() > 4 && equalsIgnoreCase(name.substr(0, 4), L"oid.")) name.erase(0, 4);
    std::string oid;
    ASN1OBJID check;
    if (!names::toLatin1(name, oid) || !names::parseOid(oid.c_str(), &check))
      throwInvalidArgument();
    return oid;
  }

  // '#' and hex digits: the DER of one element (RFC 4514 2.4).
  CBlob hexValueDer() {
    ++m_pos;  // '#'
    std::string bytes;
    while (!atEnd()) {
      int const high = hexValue(peek());
      if (high < 0) break;
      int const low = hexValue(m_text[m_pos + 1]);
      if (low < 0) throwInvalidArgument();
      bytes += static_cast<char>(high * 16 + low);
      m_pos += 2;
    }
    skipBlanks();
    if (!atEnd() && !isSeparator(peek())) throwInvalidArgument();
    CBlob der(reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size());
    if (!names::isSingleElement(der)) throwInvalidArgument();
    return der;
  }

  // One escape after '\': a special character or a hex pair (whose octet is
  // collected in pending until the next character that is not one).
  void escape(std::wstring& out, std::string& pending) {
    ++m_pos;  // '\'
    wchar_t const c = peek();
    int const high = hexValue(c);
    if (high >= 0) {
      int const low = hexValue(m_text[m_pos + 1]);
      if (low < 0) throwInvalidArgument();
      pending += static_cast<char>(high * 16 + low);
      m_pos += 2;
      return;
    }
    switch (c) {
      case L'"':
      case L'+':
      case L',':
      case L';':
      case L'<':
      case L'>':
      case L'\\':
      case L'=':
      case L'#':
      case L' ':
        flush(out, pending);
        out += c;
        ++m_pos;
        return;
      default:
        throwInvalidArgument();
    }
  }

  static void flush(std::wstring& out, std::string& pending) {
    if (pending.empty()) return;
    appendUtf8(pending, out);
    pending.clear();
  }

  // An unquoted value: up to an unescaped separator or the end; unescaped
  // blanks at its end are dropped, escaped ones kept.
  std::wstring plainValue() {
    std::wstring out;
    std::string pending;
    std::size_t keep = 0;  // length of out without unescaped trailing blanks
    // Octets of hex pairs are escaped characters: kept, also blanks.
    auto flushKept = [&]() {
      if (pending.empty()) return;
      flush(out, pending);
      keep = out.size();
    };
    while (!atEnd() && !isSeparator(peek())) {
      if (peek() == L'\\') {
        escape(out, pending);
        if (pending.empty()) keep = out.size();
        continue;
      }
      flushKept();
      out += peek();
      ++m_pos;
      if (!isBlank(out.back())) keep = out.size();
    }
    flushKept();
    out.resize(keep);
    return out;
  }

  // A quoted value (RFC 1779): everything up to the closing quote, where only
  // '\' escapes; then only blanks up to a separator or the end.
  std::wstring quotedValue() {
    ++m_pos;  // opening quote
    std::wstring out;
    std::string pending;
    for (;;) {
      if (atEnd()) throwInvalidArgument();
      if (peek() == L'"') break;
      if (peek() == L'\\') {
        escape(out, pending);
        continue;
      }
      flush(out, pending);
      out += peek();
      ++m_pos;
    }
    flush(out, pending);
    ++m_pos;  // closing quote
    skipBlanks();
    if (!atEnd() && !isSeparator(peek())) throwInvalidArgument();
    return out;
  }

  wchar_t const* m_text;
  std::size_t m_pos;
  StringType m_stringType;
};

}  // namespace

CName NameFromString(wchar_t const* text, StringType stringType) {
  if (!text) throwInvalidArgument();
  return Parser(text, stringType).name();
}

CAttributeTypeAndValue AtavFromString(wchar_t const* text, StringType stringType) {
  if (!text) throwInvalidArgument();
  return Parser(text, stringType).singlePair();
}

}  // namespace ASN1
}  // namespace Korvex
