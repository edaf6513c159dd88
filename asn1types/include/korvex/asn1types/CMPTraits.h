// korvex/asn1types/CMPTraits.h: traits (Traits.h) between the status values
// of CMP.h and the catalogue's PKIXCMP records (namespace asn1data).
//
// get writes through the value's put_ accessors in field order, so a failure
// part-way leaves the fields already written. Failures: 0x80093101,
// 0x80093106 (context heap), 0x8009310E (text conversion), as CMP.h says.
#ifndef KORVEX_ASN1TYPES_CMPTRAITS_H
#define KORVEX_ASN1TYPES_CMPTRAITS_H

#include <korvex/asn1gen/PKIXCMP.h>
#include <korvex/asn1types/CMP.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// ASN1T_PKIFreeText_traits: each wide string as a UTF8String, in order.
struct KORVEX_API ASN1T_PKIFreeText_traits
    : GeneratedTraits<asn1data::ASN1T_PKIFreeText, asn1data::ASN1C_PKIFreeText,
                      &asn1data::asn1Copy_PKIFreeText> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CPKIFreeText const& v);
  static void get(ASN1_T const& rec, CPKIFreeText& v);
};

// ASN1T_PKIFailureInfo_traits: the mask as a BIT STRING up to its last set
// bit.
struct KORVEX_API ASN1T_PKIFailureInfo_traits
    : GeneratedTraits<asn1data::ASN1T_PKIFailureInfo, asn1data::ASN1C_PKIFailureInfo,
                      &asn1data::asn1Copy_PKIFailureInfo> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CPKIFailureInfo const& v);
  static void get(ASN1_T const& rec, CPKIFailureInfo& v);
};

// ASN1T_PKIStatusInfo_traits: status, then the optional text and failure bits.
struct KORVEX_API ASN1T_PKIStatusInfo_traits
    : GeneratedTraits<asn1data::ASN1T_PKIStatusInfo, asn1data::ASN1C_PKIStatusInfo,
                      &asn1data::asn1Copy_PKIStatusInfo> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CPKIStatusInfo const& v);
  static void get(ASN1_T const& rec, CPKIStatusInfo& v);
};

// ASN1T_RevAnnContent_traits: status, certId (ASN1T_CertId_traits), the two
// GeneralizedTimes (ASN1GeneralizedTime_traits) and the optional extensions.
struct KORVEX_API ASN1T_RevAnnContent_traits
    : GeneratedTraits<asn1data::ASN1T_RevAnnContent, asn1data::ASN1C_RevAnnContent,
                      &asn1data::asn1Copy_RevAnnContent> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CRevAnnContent const& v);
  static void get(ASN1_T const& rec, CRevAnnContent& v);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
