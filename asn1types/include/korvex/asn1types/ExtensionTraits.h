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
    : GeneratedTraits<asn1data::ASN1T_PrivateKeyUsagePeriod,
                      asn1data::ASN1C_PrivateKeyUsagePeriod,
                      &asn1data::asn1Copy_PrivateKeyUsagePeriod> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CExtPrivateKeyUsagePeriod const& v);
  static void get(ASN1_T const& rec, CExtPrivateKeyUsagePeriod& v);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
