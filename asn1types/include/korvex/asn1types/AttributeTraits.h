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

#include <korvex/asn1gen/ETS_ElectronicSignatureFormats_ExplicitSyntax88.h>
#include <korvex/asn1gen/ExtendedSecurityServices_2006.h>
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

// The signing-certificate attributes: certs through the certificate-ID list
// traits (CertIdTraits.h), policies (when present) through
// ASN1T__SeqOfPolicyInformation_traits. get fills the typed parts only; the
// value's DER is the caller's (decode keeps the DER it was given).
struct KORVEX_API ASN1T_SigningCertificate_traits
    : GeneratedTraits<asn1data::ASN1T_SigningCertificate, asn1data::ASN1C_SigningCertificate,
                      &asn1data::asn1Copy_SigningCertificate> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CAttrSigningCertificate const& v);
  static void get(ASN1_T const& rec, CAttrSigningCertificate& v);
};

struct KORVEX_API ASN1T_SigningCertificateV2_traits
    : GeneratedTraits<asn1data::ASN1T_SigningCertificateV2, asn1data::ASN1C_SigningCertificateV2,
                      &asn1data::asn1Copy_SigningCertificateV2> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CAttrSigningCertificateV2 const& v);
  static void get(ASN1_T const& rec, CAttrSigningCertificateV2& v);
};

struct KORVEX_API ASN1T_OtherSigningCertificate_traits
    : GeneratedTraits<asn1data::ASN1T_OtherSigningCertificate,
                      asn1data::ASN1C_OtherSigningCertificate,
                      &asn1data::asn1Copy_OtherSigningCertificate> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CAttrOtherSigningCertificate const& v);
  static void get(ASN1_T const& rec, CAttrOtherSigningCertificate& v);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
