// value_text.cpp: text forms of decoded values.
#include "value_text.h"

#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/NamesTraits.h>
#include <korvex/core/Blob.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/capi/oidinfo.h>

#include <cstring>

#include "asn1_names.h"
#include "asn1_text.h"

namespace adestool {

std::string DottedOid(const ASN1OBJID &oid) {
  std::string text;
  ASN1UINT count = oid.numids < ASN_K_MAXSUBIDS ? oid.numids : ASN_K_MAXSUBIDS;
  for (ASN1UINT i = 0; i < count; ++i) {
    if (i) text += '.';
    text += std::to_string(oid.subid[i]);
  }
  return text;
}

std::string OidWithName(const std::string &dotted) {
  std::string name = OidName(dotted);
  return name.empty() ? dotted : dotted + " (" + name + ")";
}

std::string AlgorithmName(const std::string &dotted) {
  static const DWORD kGroups[] = {CRYPT_HASH_ALG_OID_GROUP_ID, CRYPT_SIGN_ALG_OID_GROUP_ID,
                                  CRYPT_PUBKEY_ALG_OID_GROUP_ID, CRYPT_ENCRYPT_ALG_OID_GROUP_ID};
  for (DWORD group : kGroups) {
    PCCRYPT_OID_INFO info =
        CryptFindOIDInfo(CRYPT_OID_INFO_OID_KEY, const_cast<char *>(dotted.c_str()), group);
    if (info && info->pwszName && info->pwszName[0]) return Utf8OfWideText(info->pwszName);
  }
  return OidName(dotted);
}

std::string HexText(const uint8_t *data, size_t size) {
  if (size == 0) return std::string();
  return Korvex::CBlob(data, static_cast<unsigned long>(size)).writeToHexString(0).c_str();
}

std::string HexText(const std::vector<uint8_t> &bytes) {
  return HexText(bytes.data(), bytes.size());
}

std::string SerialText(const char *bigint) {
  if (bigint == nullptr) return std::string();
  std::string text(bigint);
  std::string sign;
  if (!text.empty() && text[0] == '-') {
    sign = "-";
    text.erase(0, 1);
  }
  if (text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) text.erase(0, 2);
  for (char &c : text) {
    if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 'a' + 'A');
  }
  // Whole octets, as the INTEGER's contents show them.
  if (text.size() % 2) text.insert(0, "0");
  return sign + text;
}

std::string Utf8OfWideText(const wchar_t *text) {
  std::string out;
  if (text == nullptr) return out;
  for (; *text; ++text) {
    auto c = static_cast<uint32_t>(*text);
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) c = 0xFFFD;
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0x800) {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += static_cast<char>(0xE0 | (c >> 12));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (c >> 18));
      out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}

std::string NameText(const asn1data::ASN1T_Name &name) {
  try {
    Korvex::ASN1::CName value;
    Korvex::ASN1::ASN1T_Name_traits::get(name, value);
    return Utf8OfWideText(Korvex::ASN1::NameToString(value).c_str());
  } catch (const ATL::CAtlException &) {
    // An empty RDN or a value the name classes refuse has no text form.
    return "<name without a text form>";
  }
}

std::string GeneralNameText(const asn1data::ASN1T_GeneralName &name) {
  using asn1data::ASN1T_GeneralName;
  switch (name.t) {
    case ASN1T_GeneralName::T_directoryName:
      return name.u.directoryName ? NameText(*name.u.directoryName) : std::string();
    case ASN1T_GeneralName::T_rfc822Name:
      return std::string("email:") + (name.u.rfc822Name ? name.u.rfc822Name : "");
    case ASN1T_GeneralName::T_dNSName:
      return std::string("dns:") + (name.u.dNSName ? name.u.dNSName : "");
    case ASN1T_GeneralName::T_uniformResourceIdentifier:
      return std::string("uri:") +
             (name.u.uniformResourceIdentifier ? name.u.uniformResourceIdentifier : "");
    case ASN1T_GeneralName::T_iPAddress:
      return name.u.iPAddress ? "ip:" + HexText(name.u.iPAddress->data, name.u.iPAddress->numocts)
                              : std::string("ip:");
    case ASN1T_GeneralName::T_registeredID:
      return name.u.registeredID ? "rid:" + DottedOid(*name.u.registeredID) : std::string("rid:");
    case ASN1T_GeneralName::T_otherName:
      return "<otherName>";
    case ASN1T_GeneralName::T_x400Address:
      return "<x400Address>";
    case ASN1T_GeneralName::T_ediPartyName:
      return "<ediPartyName>";
    default:
      return "<unknown general name>";
  }
}

std::string TimeText(const char *text, bool utc) {
  if (text == nullptr) return std::string();
  std::string reading =
      DescribeTime(utc, reinterpret_cast<const uint8_t *>(text), std::strlen(text));
  return reading.empty() ? "\"" + std::string(text) + "\"" : reading;
}

std::string TimeText(const asn1data::ASN1T_Time &time) {
  if (time.t == asn1data::ASN1T_Time::T_utcTime) return TimeText(time.u.utcTime, true);
  if (time.t == asn1data::ASN1T_Time::T_generalTime) return TimeText(time.u.generalTime, false);
  return std::string();
}

}  // namespace adestool
