// korvex/asn1types/ExtensionTraits.h: traits (Traits.h) between the extension
// value classes of Extension.h and the catalogue's records (namespace
// asn1data, PKIX1Explicit88, PKIX1Implicit88, CertificateExtensions).
//
// set fills a record from a value with storage from the given context's heap;
// get fills a value from a record (writing through the value's put_
// accessors, so a failure part-way leaves the parts already written); copy is
// the generated deep copy. Failures: 0x80093101 (a value the record cannot
// hold, a record get cannot read), 0x80093106 (context heap), 0x80070057 (bad
// OID text).
#ifndef KORVEX_ASN1TYPES_EXTENSIONTRAITS_H
#define KORVEX_ASN1TYPES_EXTENSIONTRAITS_H

#include <korvex/asn1gen/CertificateExtensions.h>
#include <korvex/asn1gen/ExtendedSecurityServices_2006.h>
#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <korvex/asn1gen/PKIX1Implicit88.h>
#include <korvex/asn1types/ArrayListTraits.h>
#include <korvex/asn1types/Extension.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// ASN1T_Extension_traits: extnID, critical (present only when true), extnValue.
struct KORVEX_API ASN1T_Extension_traits
    : GeneratedTraits<asn1data::ASN1T_Extension, asn1data::ASN1C_Extension,
                      &asn1data::asn1Copy_Extension> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CExtension const& v);
  static void get(ASN1_T const& rec, CExtension& v);
};

// ASN1T_Extensions_traits: the list, element by element in order.
struct KORVEX_API ASN1T_Extensions_traits
    : GeneratedTraits<asn1data::ASN1T_Extensions, asn1data::ASN1C_Extensions,
                      &asn1data::asn1Copy_Extensions>,
      ASN1TArrayList_traits<asn1data::ASN1T_Extensions, ASN1T_Extension_traits, CExtension,
                            CExtensions> {};

// ASN1T_CRLReason_traits: the record is the ENUMERATED's unsigned int.
struct KORVEX_API ASN1T_CRLReason_traits
    : GeneratedTraits<asn1data::ASN1T_CRLReason, asn1data::ASN1C_CRLReason,
                      &asn1data::asn1Copy_CRLReason> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CrlReason const& v);
  static void get(ASN1_T const& rec, CrlReason& v);
};

// ASN1T_ReasonFlags_traits: the mask as a named-bit BIT STRING.
struct KORVEX_API ASN1T_ReasonFlags_traits
    : GeneratedTraits<asn1data::ASN1T_ReasonFlags, asn1data::ASN1C_ReasonFlags,
                      &asn1data::asn1Copy_ReasonFlags> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CReasonFlags const& v);
  static void get(ASN1_T const& rec, CReasonFlags& v);
};

// ASN1T_KeyUsage_traits: as ASN1T_ReasonFlags_traits for KeyUsage.
struct KORVEX_API ASN1T_KeyUsage_traits
    : GeneratedTraits<asn1data::ASN1T_KeyUsage, asn1data::ASN1C_KeyUsage,
                      &asn1data::asn1Copy_KeyUsage> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CKeyUsage const& v);
  static void get(ASN1_T const& rec, CKeyUsage& v);
};

// ASN1T_PrivateKeyUsagePeriod_traits: each present time as GeneralizedTime
// text (ASN1GeneralizedTime_traits: whole seconds).
struct KORVEX_API ASN1T_PrivateKeyUsagePeriod_traits
    : GeneratedTraits<asn1data::ASN1T_PrivateKeyUsagePeriod, asn1data::ASN1C_PrivateKeyUsagePeriod,
                      &asn1data::asn1Copy_PrivateKeyUsagePeriod> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CExtPrivateKeyUsagePeriod const& v);
  static void get(ASN1_T const& rec, CExtPrivateKeyUsagePeriod& v);
};

// ASN1T_PolicyQualifierInfo_traits: the id as an OID, the qualifier's DER as
// a table-constrained open type (exactly one element, or 0x80093101).
struct KORVEX_API ASN1T_PolicyQualifierInfo_traits
    : GeneratedTraits<asn1data::ASN1T_PolicyQualifierInfo, asn1data::ASN1C_PolicyQualifierInfo,
                      &asn1data::asn1Copy_PolicyQualifierInfo> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CPolicyQualifierInfo const& v);
  static void get(ASN1_T const& rec, CPolicyQualifierInfo& v);
};

// ASN1T_PolicyInformation_traits: the identifier and, when present, the
// qualifiers in order.
struct KORVEX_API ASN1T_PolicyInformation_traits
    : GeneratedTraits<asn1data::ASN1T_PolicyInformation, asn1data::ASN1C_PolicyInformation,
                      &asn1data::asn1Copy_PolicyInformation> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CPolicyInformation const& v);
  static void get(ASN1_T const& rec, CPolicyInformation& v);
};

// ASN1T_CertificatePolicies_traits: the certificatePolicies extension value.
struct KORVEX_API ASN1T_CertificatePolicies_traits
    : GeneratedTraits<asn1data::ASN1T_CertificatePolicies, asn1data::ASN1C_CertificatePolicies,
                      &asn1data::asn1Copy_CertificatePolicies>,
      ASN1TArrayList_traits<asn1data::ASN1T_CertificatePolicies, ASN1T_PolicyInformation_traits,
                            CPolicyInformation, CPolicyInformationList> {};

// ASN1T__SeqOfPolicyInformation_traits: the `policies` of the
// signing-certificate attributes (the same SEQUENCE OF PolicyInformation).
struct ASN1T__SeqOfPolicyInformation_traits
    : GeneratedTraits<asn1data::ASN1T__SeqOfPolicyInformation,
                      asn1data::ASN1C__SeqOfPolicyInformation,
                      &asn1data::asn1Copy__SeqOfPolicyInformation>,
      ASN1TArrayList_traits<asn1data::ASN1T__SeqOfPolicyInformation, ASN1T_PolicyInformation_traits,
                            CPolicyInformation, CPolicyInformationList> {};

// ASN1T_DistributionPointName_traits: fullName through
// ASN1T_GeneralNames_traits; nameRelativeToCRLIssuer decoded from its DER into
// the record (bad DER: 0x80093101) and encoded back from it; no alternative or
// an unknown one throws 0x80093101.
struct KORVEX_API ASN1T_DistributionPointName_traits
    : GeneratedTraits<asn1data::ASN1T_DistributionPointName, asn1data::ASN1C_DistributionPointName,
                      &asn1data::asn1Copy_DistributionPointName> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CDistributionPointName const& v);
  static void get(ASN1_T const& rec, CDistributionPointName& v);
};

// ASN1T_DistributionPoint_traits: each present part.
struct KORVEX_API ASN1T_DistributionPoint_traits
    : GeneratedTraits<asn1data::ASN1T_DistributionPoint, asn1data::ASN1C_DistributionPoint,
                      &asn1data::asn1Copy_DistributionPoint> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CDistributionPoint const& v);
  static void get(ASN1_T const& rec, CDistributionPoint& v);
};

// ASN1T_CRLDistPointsSyntax_traits: the distribution points in order.
struct KORVEX_API ASN1T_CRLDistPointsSyntax_traits
    : GeneratedTraits<asn1data::ASN1T_CRLDistPointsSyntax, asn1data::ASN1C_CRLDistPointsSyntax,
                      &asn1data::asn1Copy_CRLDistPointsSyntax>,
      ASN1TArrayList_traits<asn1data::ASN1T_CRLDistPointsSyntax, ASN1T_DistributionPoint_traits,
                            CDistributionPoint, CCRLDistPointsSyntax> {};

// ASN1T_AccessDescription_traits: the method as an OID, the location through
// ASN1T_GeneralName_traits (no alternative: 0x80093101).
struct KORVEX_API ASN1T_AccessDescription_traits
    : GeneratedTraits<asn1data::ASN1T_AccessDescription, asn1data::ASN1C_AccessDescription,
                      &asn1data::asn1Copy_AccessDescription> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CAccessDescription const& v);
  static void get(ASN1_T const& rec, CAccessDescription& v);
};

// ASN1T_AuthorityInfoAccessSyntax_traits: the descriptions in order.
struct KORVEX_API ASN1T_AuthorityInfoAccessSyntax_traits
    : GeneratedTraits<asn1data::ASN1T_AuthorityInfoAccessSyntax,
                      asn1data::ASN1C_AuthorityInfoAccessSyntax,
                      &asn1data::asn1Copy_AuthorityInfoAccessSyntax>,
      ASN1TArrayList_traits<asn1data::ASN1T_AuthorityInfoAccessSyntax,
                            ASN1T_AccessDescription_traits, CAccessDescription,
                            CAuthorityInfoAccessSyntax> {};

}  // namespace ASN1
}  // namespace Korvex

#endif
