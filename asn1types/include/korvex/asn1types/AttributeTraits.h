// korvex/asn1types/AttributeTraits.h: traits (Traits.h) between the attribute
// values of Attribute.h / SigningCertificate.h and the catalogue's records
// (namespace asn1data: Attribute of PKIX1Explicit88, Attributes of
// PKIXCRMF-2005, SigningCertificate and SigningCertificateV2 of
// ExtendedSecurityServices-2006, OtherSigningCertificate of
// ETS-ElectronicSignatureFormats-ExplicitSyntax88).
//
// get writes into the value in field order, so a failure part-way leaves the
// parts already written. Failures: 0x80093101 (a value the record cannot hold,
// such as an attribute value that is not one DER element), 0x80093106
// (context heap), 0x80070057 (bad OID text).
#ifndef KORVEX_ASN1TYPES_ATTRIBUTETRAITS_H
#define KORVEX_ASN1TYPES_ATTRIBUTETRAITS_H

#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <korvex/asn1gen/PKIXCRMF_2005.h>
#include <korvex/asn1types/ArrayListTraits.h>
#include <korvex/asn1types/Attribute.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// ASN1T_Attribute_traits: the type as an OID, each value's DER as a
// table-constrained open type written as it stands. get makes the value a
// CAttribute of the decoded type holding each value's DER in wire order.
struct KORVEX_API ASN1T_Attribute_traits
    : GeneratedTraits<asn1data::ASN1T_Attribute, asn1data::ASN1C_Attribute,
                      &asn1data::asn1Copy_Attribute> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CAttribute const& v);
  static void get(ASN1_T const& rec, CAttribute& v);
};

// ASN1T_Attributes_traits: SET OF Attribute, element by element in list order.
struct KORVEX_API ASN1T_Attributes_traits
    : GeneratedTraits<asn1data::ASN1T_Attributes, asn1data::ASN1C_Attributes,
                      &asn1data::asn1Copy_Attributes>,
      ASN1TArrayList_traits<asn1data::ASN1T_Attributes, ASN1T_Attribute_traits, CAttribute,
                            CAttributes> {};

}  // namespace ASN1
}  // namespace Korvex

#endif
