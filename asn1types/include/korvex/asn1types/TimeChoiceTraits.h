// korvex/asn1types/TimeChoiceTraits.h: CTimeChoice to and from
// asn1data::ASN1T_Time (Traits.h convention).
#ifndef KORVEX_ASN1TYPES_TIMECHOICETRAITS_H
#define KORVEX_ASN1TYPES_TIMECHOICETRAITS_H

#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <korvex/asn1types/TimeChoice.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// ASN1T_Time_traits:
// set: alternative 1 renders the time with a DER ASN1CUTCTime bound to a
//   scratch encode buffer (GetASN1CTimeString) and copies the text into ctxt
//   (rtCopyCharStr) with t = 1; alternative 2 the same with an
//   ASN1CGeneralizedTime and t = 2. A rejected time or a failed copy throws
//   0x80093101. A value selecting neither leaves the record untouched (the
//   encoder then refuses it).
// get: t = 2 parses the text as GeneralizedTime, t = 1 as UTCTime, both
//   without the DER restriction (any X.680 form: seconds optional,
//   fractions, offsets); an offset is moved to UTC. The calendar fields with
//   milliseconds zero become the value through put_time, so the alternative
//   is chosen again by the year. Another selector, text that does not read
//   as a time, or a time before 1601 throws 0x80093101.
// copy: asn1Copy_Time.
struct KORVEX_API ASN1T_Time_traits
    : GeneratedTraits<asn1data::ASN1T_Time, asn1data::ASN1C_Time, &asn1data::asn1Copy_Time> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CTimeChoice const& value);
  static void get(ASN1_T const& rec, CTimeChoice& value);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
