// TimeChoiceTraits.cpp: CTimeChoice <-> ASN1T_Time.
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/TimeChoiceTraits.h>

#include <string>

namespace Korvex {
namespace ASN1 {

namespace {

// The DER text of t made by a fresh time object of type Time (ASN1CUTCTime or
// ASN1CGeneralizedTime) over a scratch encode buffer, which the call frees.
template <class Time>
std::string DerTimeText(CDateTime const& t) {
  try {
    ASN1BEREncodeBuffer scratch;
    Time timeObject(scratch, true);
    return GetASN1CTimeString(t, timeObject);
  } catch (ASN1RTLException const&) {
    throwCodecError();  // the scratch buffer's context could not be made
  }
}

// The calendar fields of UTCTime or GeneralizedTime text in any X.680 form,
// as a CDateTime in UTC with no fraction.
template <class Time>
CDateTime ParseTimeText(char const* text) {
  if (!text) throwCodecError();
  int year, month, day, hour, minute, second;
  try {
    Time timeObject(false);
    if (timeObject.parseString(text) != 0) throwCodecError();
    // A time with an offset names the UTC instant it is equal to.
    if (timeObject.getDiff() != 0 && timeObject.toUTC() != 0) throwCodecError();
    year = timeObject.getYear();
    month = timeObject.getMonth();
    day = timeObject.getDay();
    hour = timeObject.getHour();
    minute = timeObject.getMinute();
    second = timeObject.getSecond();
  } catch (ASN1RTLException const&) {
    throwCodecError();
  }
  if (year < 0 || month < 0 || day < 0 || hour < 0 || minute < 0 || second < 0) {
    throwCodecError();
  }
  try {
    return CDateTime(year, month, day, hour, minute, second, 0, 0);
  } catch (ATL::CAtlException const&) {
    throwCodecError();  // a year before 1601, which CDateTime cannot hold
  }
}

}  // namespace

void ASN1T_Time_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CTimeChoice const& value) {
  if (!ctxt) throwInvalidArgument();
  CDateTime const* time = value.get_time();
  if (!time) return;
  std::string text;
  ASN1UINT selector;
  if (value.get_type() == CTimeChoiceImpl::utcTime) {
    text = DerTimeText<ASN1CUTCTime>(*time);
    selector = asn1data::ASN1T_Time::T_utcTime;
  } else {
    text = DerTimeText<ASN1CGeneralizedTime>(*time);
    selector = asn1data::ASN1T_Time::T_generalTime;
  }
  char const* copy = nullptr;
  if (rtCopyCharStr(ctxt, text.c_str(), &copy) != 0) throwCodecError();
  rec.t = selector;
  if (selector == asn1data::ASN1T_Time::T_utcTime) {
    rec.u.utcTime = copy;
  } else {
    rec.u.generalTime = copy;
  }
}

void ASN1T_Time_traits::get(ASN1_T const& rec, CTimeChoice& value) {
  if (rec.t == asn1data::ASN1T_Time::T_generalTime) {
    value.put_time(ParseTimeText<ASN1CGeneralizedTime>(rec.u.generalTime));
  } else if (rec.t == asn1data::ASN1T_Time::T_utcTime) {
    value.put_time(ParseTimeText<ASN1CUTCTime>(rec.u.utcTime));
  } else {
    throwCodecError();
  }
}

}  // namespace ASN1
}  // namespace Korvex
