// NameSupport.cpp: byte-level helpers of the name values.
#include "NameSupport.h"

#include <korvex/asn1rt/asn1ber.h>

namespace Korvex {
namespace ASN1 {
namespace names {

bool isSingleElement(unsigned char const* bytes, unsigned long size) {
  if (!bytes || size < 2) return false;
  unsigned long pos = 0;
  // Identifier octets (X.690 8.1.2.4): a low tag number of 31 announces
  // further octets, each but the last with bit 8 set.
  if ((bytes[pos++] & 0x1F) == 0x1F) {
    int extra = 0;
    for (;;) {
      if (pos >= size || ++extra > 5) return false;
      if ((bytes[pos++] & 0x80) == 0) break;
    }
  }
  if (pos >= size) return false;
  // Length octets (X.690 8.1.3): short form, 0x81..0x84 and that many
  // octets, or 0x80 (indefinite, constructed only) up to the matching
  // end-of-contents octets. Longer forms are refused.
  unsigned char first = bytes[pos++];
  unsigned long length = first;
  if (first == 0x80) {
    if ((bytes[0] & 0x20) == 0 || size > 0x7FFFFFFFul) return false;
    int whole = xd_indeflen_ex(bytes, static_cast<int>(size));
    return whole > 0 && static_cast<unsigned long>(whole) == size;
  }
  if (first & 0x80) {
    int count = first & 0x7F;
    if (count == 0 || count > 4) return false;
    length = 0;
    for (int i = 0; i < count; ++i) {
      if (pos >= size) return false;
      length = (length << 8) | bytes[pos++];
    }
  }
  return length == size - pos;
}

bool isCharStringTag(unsigned char tag) {
  switch (tag & 0xDF) {  // the constructed bit does not matter
    case 12:             // UTF8String
    case 18:             // NumericString
    case 19:             // PrintableString
    case 20:             // TeletexString
    case 22:             // IA5String
    case 28:             // UniversalString
    case 30:             // BMPString
      return true;
    default:
      return false;
  }
}

bool parseOid(char const* text, ASN1OBJID* oid) {
  if (!text || !oid) return false;
  ASN1UINT count = 0;
  char const* p = text;
  for (;;) {
    if (*p < '0' || *p > '9') return false;
    unsigned long long arc = 0;
    while (*p >= '0' && *p <= '9') {
      arc = arc * 10 + static_cast<unsigned>(*p++ - '0');
      if (arc > 0xFFFFFFFFull) return false;
    }
    if (count >= ASN_K_MAXSUBIDS) return false;
    oid->subid[count++] = static_cast<ASN1UINT>(arc);
    if (*p == '\0') break;
    if (*p++ != '.') return false;
  }
  oid->numids = count;
  // X.690 8.19.4: the first two arcs share one subidentifier, so there are
  // at least two, the first is 0, 1 or 2, and under 0 and 1 the second is
  // below 40 (X.660); under 2 the shared value must fit 32 bits.
  if (count < 2 || oid->subid[0] > 2) return false;
  if (oid->subid[0] < 2 && oid->subid[1] > 39) return false;
  if (oid->subid[0] == 2 && oid->subid[1] > 0xFFFFFFFFu - 80) return false;
  return true;
}

std::wstring hexText(CBlob const& bytes) {
  static wchar_t const kDigits[] = L"0123456789ABCDEF";
  std::wstring out;
  out.reserve(bytes.cbData() * 2);
  for (unsigned long i = 0; i < bytes.cbData(); ++i) {
    out += kDigits[bytes.pbData()[i] >> 4];
    out += kDigits[bytes.pbData()[i] & 0x0F];
  }
  return out;
}

std::wstring latin1Text(char const* text) {
  std::wstring out;
  if (!text) return out;
  for (; *text; ++text) out += static_cast<wchar_t>(static_cast<unsigned char>(*text));
  return out;
}

bool toLatin1(std::wstring const& text, std::string& out) {
  out.clear();
  out.reserve(text.size());
  for (wchar_t c : text) {
    if (c == 0 || static_cast<unsigned long>(c) > 0xFF) return false;
    out += static_cast<char>(static_cast<unsigned char>(c));
  }
  return true;
}

}  // namespace names
}  // namespace ASN1
}  // namespace Korvex
