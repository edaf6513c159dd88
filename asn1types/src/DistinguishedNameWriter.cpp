// DistinguishedNameWriter.cpp: distinguished names to RFC 4514 text.
#include <korvex/asn1types/AttributeTypeRegister.h>
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/ErrorCodes.h>

#include <string>

#include "NameSupport.h"

namespace Korvex {
namespace ASN1 {

namespace {

void appendHexPair(std::wstring& out, unsigned int byte) {
  static wchar_t const kDigits[] = L"0123456789ABCDEF";
  out += L'\\';
  out += kDigits[(byte >> 4) & 0x0F];
  out += kDigits[byte & 0x0F];
}

// RFC 4514 2.4: the characters that are always escaped, and the blank and
// '#' at the start, the blank at the end. Control characters become hex
// pairs so that the text stays on one line and reads back unchanged.
std::wstring escapeValue(std::wstring const& text) {
  std::wstring out;
  out.reserve(text.size() + 8);
  for (std::size_t i = 0; i < text.size(); ++i) {
    wchar_t const c = text[i];
    switch (c) {
      case L'"':
      case L'+':
      case L',':
      case L';':
      case L'<':
      case L'>':
      case L'\\':
        out += L'\\';
        out += c;
        continue;
      default:
        break;
    }
    if ((c == L' ' || c == L'#') && i == 0) {
      out += L'\\';
      out += c;
    } else if (c == L' ' && i + 1 == text.size()) {
      out += L"\\ ";
    } else if (static_cast<unsigned long>(c) < 0x20 || c == 0x7F) {
      appendHexPair(out, static_cast<unsigned int>(c));
    } else {
      out += c;
    }
  }
  return out;
}

// The text of a value of a registered type, when the flags allow text:
// a character string that decodes, whose text the parser reads back (no
// U+0000, within the entry's length limit), and, in exact mode, whose
// text the register encodes to the very same bytes.
bool valueText(CATAVRegister const& entry, CBlob const& der, unsigned int flags,
               std::wstring& text) {
  if (der.cbData() == 0 || !names::isCharStringTag(der.pbData()[0])) return false;
  try {
    text = decodeCharString(der).c_str();
  } catch (ATL::CAtlException const&) {
    return false;  // a string that does not decode is written as hex
  }
  if (text.size() > entry.get_maxLength()) return false;
  if (flags & ntfExact) {
    try {
      if (encodeCharString(text.c_str(), entry.get_stringType()) != der) return false;
    } catch (ATL::CAtlException const&) {
      return false;
    }
  }
  return true;
}

std::wstring atavText(CAttributeTypeAndValue const& atav, unsigned int flags) {
  CATAVRegister::const_iterator entry = CATAVRegister::find(atav.get_type());
  std::wstring out;
  if (entry == CATAVRegister::end()) {
    // RFC 4514 2.3/2.4: a type without a name is its dotted OID, and its
    // value the hex of its DER.
    out = names::latin1Text(atav.get_type());
    out += L"=#";
    out += names::hexText(atav.get_value());
    return out;
  }
  out = entry->get_name();
  out += L'=';
  std::wstring text;
  if (valueText(*entry, atav.get_value(), flags, text)) {
    out += escapeValue(text);
  } else {
    out += L'#';
    out += names::hexText(atav.get_value());
  }
  return out;
}

std::wstring rdnText(CRelativeDistinguishedName const& rdn, unsigned int flags) {
  if (rdn.empty()) throwInvalidArgument();  // no text stands for an empty SET
  std::wstring out;
  for (CAttributeTypeAndValue const& atav : rdn) {
    if (!out.empty()) out += L'+';
    out += atavText(atav, flags);
  }
  return out;
}

}  // namespace

CWStringProxy NameToString(CName const& name, unsigned int flags) {
  std::wstring out;
  // RFC 4514 2.1: the last RDN of the sequence comes first.
  for (auto it = name.rbegin(); it != name.rend(); ++it) {
    if (it != name.rbegin()) out += L',';
    out += rdnText(*it, flags);
  }
  return CWStringProxy(out.c_str());
}

CWStringProxy RdnToString(CRelativeDistinguishedName const& rdn, unsigned int flags) {
  return CWStringProxy(rdnText(rdn, flags).c_str());
}

CWStringProxy AtavToString(CAttributeTypeAndValue const& atav, unsigned int flags) {
  return CWStringProxy(atavText(atav, flags).c_str());
}

CWStringProxy EscapeDNValue(wchar_t const* text) {
  if (!text) throwInvalidArgument();
  return CWStringProxy(escapeValue(text).c_str());
}

}  // namespace ASN1
}  // namespace Korvex
