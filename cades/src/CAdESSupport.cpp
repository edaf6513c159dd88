// CAdESSupport.cpp: open-type fields, whole-element checks and time texts of
// the CAdES revocation references.
#include "CAdESSupport.h"

#include <korvex/asn1rt/asn1ber.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/core/StringProxy.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstring>
#include <string>

namespace Korvex {
namespace PKI {
namespace CAdES {
namespace support {

namespace {

// UTCTime holds two year digits: RFC 5280 4.1.2.5.1 maps them onto 1950..2049.
constexpr unsigned int kFirstUtcYear = 1950;
constexpr unsigned int kLastUtcYear = 2049;

bool IsDigits(char const* text, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
  }
  return true;
}

// ParseTimeText: "YYYYMMDD..." text of the CDateTime parser as a CDateTime;
// the calendar's refusal (month 13, a year before 1601 ...) is malformed
// input here.
CDateTime ParseTimeText(std::string const& text) {
  try {
    return CDateTime(text.c_str());
  } catch (ATL::CAtlException const&) {
    ASN1::throwCodecError();
  }
}

}  // namespace

void SetOpenType(ASN1CTXT* ctxt, ASN1OpenType& rec, CBlob const& der) {
  // An empty or partial element would be written into the parent as it
  // stands and make its encoding unreadable.
  if (!IsWholeElement(der)) ASN1::throwCodecError();
  ASN1::ASN1TOpenType_traits::set(ctxt, rec, der);
}

CBlob GetOpenType(ASN1OpenType const& rec) {
  if (rec.numocts == 0 || !rec.data) ASN1::throwCodecError();
  CBlob der;
  ASN1::ASN1TOpenType_traits::get(rec, der);
  return der;
}

char const* UtcTimeText(ASN1CTXT* ctxt, CDateTime const& t) {
  _FILETIME const ft = t.getFileTime();
  // Values of 2^63 ticks and more have no calendar fields (and lie far past
  // 2049 anyway).
  if (ft.dwHighDateTime & 0x80000000u) ATL::AtlThrowImpl(kUtcTimeRangeError);
  CDateTime const whole(t.year(), t.month(), t.day(), t.hour(), t.minute(), t.second(), 0, 0);
  if (whole.year() < kFirstUtcYear || whole.year() > kLastUtcYear) {
    ATL::AtlThrowImpl(kUtcTimeRangeError);
  }
  // "YYYYMMDDhhmmssZ" without its century.
  CStringProxy const text = whole.getGeneralizedTime();
  char const* utc = text.c_str() + 2;
  std::size_t const n = std::strlen(utc);
  auto* out = static_cast<char*>(rtMemHeapAlloc(&ctxt->pTypeMemHeap, n + 1));
  if (!out) ATL::AtlThrowImpl(ASN1::kOutOfMemory);
  std::memcpy(out, utc, n + 1);
  return out;
}

CDateTime ParseUtcTime(char const* text) {
  if (!text) ASN1::throwCodecError();
  std::size_t const n = std::strlen(text);
  // YYMMDDhhmm or YYMMDDhhmmss, then Z.
  if ((n != 11 && n != 13) || text[n - 1] != 'Z' || !IsDigits(text, n - 1)) {
    ASN1::throwCodecError();
  }
  int const yy = (text[0] - '0') * 10 + (text[1] - '0');
  // The CDateTime parser reads the seconds only when they are there.
  return ParseTimeText((yy < 50 ? "20" : "19") + std::string(text));
}

CDateTime ParseGeneralizedTime(char const* text) {
  if (!text) ASN1::throwCodecError();
  std::size_t const n = std::strlen(text);
  if (n < 11 || text[n - 1] != 'Z') ASN1::throwCodecError();
  std::size_t const digits = n - 1;
  bool valid;
  if (digits == 10 || digits == 12 || digits == 14) {
    // YYYYMMDDhh, YYYYMMDDhhmm, YYYYMMDDhhmmss.
    valid = IsDigits(text, digits);
  } else {
    // YYYYMMDDhhmmss, a '.' or ',' and at least one fraction digit (the
    // parser reads the fraction from position 15 and ignores position 14).
    valid = digits >= 16 && IsDigits(text, 14) && (text[14] == '.' || text[14] == ',') &&
            IsDigits(text + 15, digits - 15);
  }
  if (!valid) ASN1::throwCodecError();
  return ParseTimeText(text);
}

}  // namespace support
}  // namespace CAdES
}  // namespace PKI
}  // namespace Korvex
