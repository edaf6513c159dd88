// The decoders of the attribute, extension and management-protocol status
// values; the first byte selects the class. A decoder may refuse its input
// only with the codec, heap or text-conversion code. What it accepts must
// encode, that DER must decode and encode to the same bytes again, and the
// values decoded from it must be equal (see RoundTrip).
#include <korvex/asn1types/Attribute.h>
#include <korvex/asn1types/CMP.h>
#include <korvex/asn1types/Extension.h>
#include <korvex/platform/atl/atlexcept.h>
#include <stdint.h>
#include <stdlib.h>

using namespace Korvex::ASN1;
using Korvex::CBlob;
using Korvex::CDateTime;

namespace {

bool Refused(ATL::CAtlException const& e) {
  unsigned const code = static_cast<unsigned>(e.m_hr);
  return code == 0x80093101u || code == 0x80093106u || code == 0x8009310Eu;
}

// DER of a value: encode() returns a blob or, for the typed attribute
// values, the held DER.
template <class T>
CBlob Der(T& value) {
  return value.encode();
}

// MayRefuseEncode: whether a decoded value is one its class reads but cannot
// write. A signing time before 1950 decodes (from GeneralizedTime) into the
// UTCTime alternative by the 2050 rule, which cannot hold its year, so its
// encode() throws the codec code.
template <class T>
bool MayRefuseEncode(T const&) {
  return false;
}
bool MayRefuseEncode(CAttrSigningTime const& value) {
  CDateTime const* t = value.get_signingTime().get_time();
  return t && t->year() < 1950;
}

// RoundTrip: make() gives a fresh value of the class under test. compare:
// whether the value decoded from the DER must equal the first one (not for
// SET OF, which the encoder sorts, nor for times, whose milliseconds are not
// written); at the fixed point (the DER of the DER) it must in every case.
template <class T, class Make>
void RoundTrip(CBlob const& input, Make make, bool compare) {
  T value = make();
  try {
    value.decode(input);
  } catch (ATL::CAtlException const& e) {
    if (!Refused(e)) abort();
    return;
  }
  CBlob der;
  try {
    der = Der(value);
  } catch (ATL::CAtlException const& e) {
    if (MayRefuseEncode(value) && static_cast<unsigned>(e.m_hr) == 0x80093101u) return;
    abort();
  }
  try {
    T again = make();
    again.decode(der);
    if (compare && !(again == value)) abort();
    if (Der(again) != der) abort();
    T fixed = make();
    fixed.decode(der);
    if (!(fixed == again)) abort();
  } catch (ATL::CAtlException const&) {
    abort();
  }
}

template <class T>
void RoundTrip(CBlob const& input, bool compare = true) {
  RoundTrip<T>(
      input, [] { return T(); }, compare);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  CBlob const input(data + 1, static_cast<unsigned long>(size - 1));
  switch (data[0] % 26) {
    case 0:
      RoundTrip<CAttribute>(input, false);
      break;
    case 1:
      RoundTrip<CAttributes>(input, false);
      break;
    case 2:
      RoundTrip<CAttrContentType>(
          input, [] { return CAttrContentType("1.2.840.113549.1.7.1"); }, true);
      break;
    case 3:
      RoundTrip<CAttrMessageDigest>(input);
      break;
    case 4:
      RoundTrip<CAttrSigningTime>(
          input, [] { return CAttrSigningTime(CDateTime(0, 0)); }, true);
      break;
    case 5:
      RoundTrip<CAttrSigningCertificate>(input);
      break;
    case 6:
      RoundTrip<CAttrSigningCertificateV2>(input);
      break;
    case 7:
      RoundTrip<CAttrOtherSigningCertificate>(input);
      break;
    case 8:
      RoundTrip<CExtension>(input);
      break;
    case 9:
      RoundTrip<CExtensions>(input);
      break;
    case 10:
      RoundTrip<CrlReason>(input);
      break;
    case 11:
      RoundTrip<CReasonFlags>(input);
      break;
    case 12:
      RoundTrip<CKeyUsage>(input);
      break;
    case 13:
      RoundTrip<CExtPrivateKeyUsagePeriod>(input, false);
      break;
    case 14:
      RoundTrip<CDistributionPointName>(input);
      break;
    case 15:
      RoundTrip<CDistributionPoint>(input);
      break;
    case 16:
      RoundTrip<CCRLDistPointsSyntax>(input);
      break;
    case 17:
      RoundTrip<CAccessDescription>(input);
      break;
    case 18:
      RoundTrip<CAuthorityInfoAccessSyntax>(input);
      break;
    case 19:
      RoundTrip<CPolicyQualifierInfo>(input);
      break;
    case 20:
      RoundTrip<CPolicyInformation>(input);
      break;
    case 21:
      RoundTrip<CPolicyInformationList>(input);
      break;
    case 22:
      RoundTrip<CPKIFreeText>(input);
      break;
    case 23:
      RoundTrip<CPKIFailureInfo>(input);
      break;
    case 24:
      RoundTrip<CPKIStatusInfo>(input);
      break;
    case 25:
      RoundTrip<CRevAnnContent>(input, false);
      break;
  }
  return 0;
}
