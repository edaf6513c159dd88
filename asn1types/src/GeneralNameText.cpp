// GeneralNameText.cpp: the one-line text of a general name.
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/Names.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstdio>
#include <string>

#include "NameSupport.h"

namespace Korvex {
namespace ASN1 {

namespace {

std::wstring ipv4Text(unsigned char const* b) {
  wchar_t buf[16];
  std::swprintf(buf, 16, L"%u.%u.%u.%u", b[0], b[1], b[2], b[3]);
  return buf;
}

// RFC 5952 4: lower-case groups without leading zeros, the longest run of two
// or more zero groups (the first of equal runs) as "::".
std::wstring ipv6Text(unsigned char const* b) {
  unsigned int groups[8];
  for (int i = 0; i < 8; ++i) groups[i] = (b[2 * i] << 8) | b[2 * i + 1];
  int bestStart = -1, bestLength = 1;
  for (int i = 0; i < 8;) {
    if (groups[i] != 0) {
      ++i;
      continue;
    }
    int j = i;
    while (j < 8 && groups[j] == 0) ++j;
    if (j - i > bestLength) bestStart = i, bestLength = j - i;
    i = j;
  }
  std::wstring out;
  wchar_t buf[8];
  for (int i = 0; i < 8; ++i) {
    if (i == bestStart) {
      out += L"::";
      i += bestLength - 1;
      continue;
    }
    if (!out.empty() && out.back() != L':') out += L':';
    std::swprintf(buf, 8, L"%x", groups[i]);
    out += buf;
  }
  return out;
}

std::wstring hexForm(CBlob const& der) { return L"#" + names::hexText(der); }

std::wstring directoryNameText(CBlob const& der) {
  try {
    CName name;
    name.decode(der);
    return NameToString(name).c_str();
  } catch (ATL::CAtlException const&) {
    return hexForm(der);  // stored bytes that are no Name are shown as they are
  }
}

}  // namespace

CWStringProxy CGeneralName::toString() const {
  std::wstring out;
  switch (get_type()) {
    case kOtherName:
      out = L"othername:" + hexForm(*get_otherName());
      break;
    case kRfc822Name:
      out = std::wstring(L"email:") + get_rfc822Name();
      break;
    case kDNSName:
      out = std::wstring(L"DNS:") + get_dNSName();
      break;
    case kX400Address:
      out = L"X400:" + hexForm(*get_x400Address());
      break;
    case kDirectoryName:
      out = L"DirName:" + directoryNameText(*get_directoryName());
      break;
    case kEdiPartyName:
      out = L"EDI:" + hexForm(*get_ediPartyName());
      break;
    case kUniformResourceIdentifier:
      out = std::wstring(L"URI:") + get_uniformResourceIdentifier();
      break;
    case kIPAddress: {
      CBlob const& octets = *get_iPAddress();
      if (octets.cbData() == 4) {
        out = L"IP:" + ipv4Text(octets.pbData());
      } else if (octets.cbData() == 16) {
        out = L"IP:" + ipv6Text(octets.pbData());
      } else {
        out = L"IP:" + hexForm(octets);
      }
      break;
    }
    case kRegisteredID:
      out = std::wstring(L"RID:") + get_registeredID();
      break;
    default:
      break;
  }
  return CWStringProxy(out.c_str());
}

}  // namespace ASN1
}  // namespace Korvex
