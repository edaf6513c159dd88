// korvex/asn1types/CertIdTraits.h: the certificate identifiers of CertId.h and
// IssuerSerial.h to and from their generated records (Traits.h convention).
//
// | traits                         | record (asn1data::)        | typed value      |
// |--------------------------------|----------------------------|------------------|
// | ASN1T_IssuerSerial_traits      | ASN1T_IssuerSerial         | CIssuerSerial    |
// | ASN1T_ESSCertID_traits         | ASN1T_ESSCertID            | CESSCertID       |
// | ASN1T_ESSCertIDv2_traits       | ASN1T_ESSCertIDv2          | CESSCertIDv2     |
// | ASN1T_OtherCertID_traits       | ASN1T_OtherCertID          | COtherCertID     |
// | ASN1T_CertId_traits            | ASN1T_CertId (CRMF)        | CCertId          |
// | ASN1T__SeqOfESSCertID_traits   | ASN1T__SeqOfESSCertID      | CESSCertIDList   |
// | ASN1T__SeqOfESSCertIDv2_traits | ASN1T__SeqOfESSCertIDv2    | CESSCertIDv2List |
// | ASN1T__SeqOfOtherCertID_traits | ASN1T__SeqOfOtherCertID    | COtherCertIDList |
//
// Serial numbers are written as big-integer text (BigIntegerToASN1String);
// hashes as OCTET STRING contents; heap exhaustion anywhere throws 0x80093106.
// The list traits follow the record's form (counted array or linked list) as
// the catalogue generates it.
#ifndef KORVEX_ASN1TYPES_CERTIDTRAITS_H
#define KORVEX_ASN1TYPES_CERTIDTRAITS_H

#include <korvex/asn1gen/ETS_ElectronicSignatureFormats_ExplicitSyntax88.h>
#include <korvex/asn1gen/ExtendedSecurityServices_2006.h>
#include <korvex/asn1gen/PKIXCRMF_2005.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/IssuerSerial.h>
#include <korvex/asn1types/NamesTraits.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// ASN1T_IssuerSerial_traits: issuer through ASN1T_GeneralNames_traits (in list
// order), serialNumber as big-integer text.
struct KORVEX_API ASN1T_IssuerSerial_traits
    : GeneratedTraits<asn1data::ASN1T_IssuerSerial, asn1data::ASN1C_IssuerSerial,
                      &asn1data::asn1Copy_IssuerSerial> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CIssuerSerial const& value);
  static void get(ASN1_T const& rec, CIssuerSerial& value);
};

// ASN1T_ESSCertID_traits: certHash; issuerSerial present exactly when the
// value has one (get removes the value's issuerSerial when the record has
// none).
struct KORVEX_API ASN1T_ESSCertID_traits
    : GeneratedTraits<asn1data::ASN1T_ESSCertID, asn1data::ASN1C_ESSCertID,
                      &asn1data::asn1Copy_ESSCertID> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CESSCertID const& value);
  static void get(ASN1_T const& rec, CESSCertID& value);
};

// ASN1T_ESSCertIDv2_traits: as ASN1T_ESSCertID_traits, and hashAlgorithm:
// set writes it (presence bit set) only when its OID text differs from
// "2.16.840.1.101.3.4.2.1"; get takes it when present, else SHA-256 without
// parameters.
struct KORVEX_API ASN1T_ESSCertIDv2_traits
    : GeneratedTraits<asn1data::ASN1T_ESSCertIDv2, asn1data::ASN1C_ESSCertIDv2,
                      &asn1data::asn1Copy_ESSCertIDv2> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CESSCertIDv2 const& value);
  static void get(ASN1_T const& rec, CESSCertIDv2& value);
};

// ASN1T_OtherCertID_traits: otherCertHash through ASN1T_OtherHash_traits (an
// unexpected alternative on decode: 0x80093101) and the optional
// issuerSerial.
struct KORVEX_API ASN1T_OtherCertID_traits
    : GeneratedTraits<asn1data::ASN1T_OtherCertID, asn1data::ASN1C_OtherCertID,
                      &asn1data::asn1Copy_OtherCertID> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, COtherCertID const& value);
  static void get(ASN1_T const& rec, COtherCertID& value);
};

// ASN1T_CertId_traits: issuer through ASN1T_GeneralName_traits (no
// alternative: 0x80093101), serialNumber as big-integer text.
struct KORVEX_API ASN1T_CertId_traits
    : GeneratedTraits<asn1data::ASN1T_CertId, asn1data::ASN1C_CertId,
                      &asn1data::asn1Copy_CertId> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CCertId const& value);
  static void get(ASN1_T const& rec, CCertId& value);
};

// The SEQUENCE OF lists of the signing-certificate attributes (the `certs`
// of SigningCertificate, SigningCertificateV2, OtherSigningCertificate):
// elements in list order.
struct ASN1T__SeqOfESSCertID_traits
    : GeneratedTraits<asn1data::ASN1T__SeqOfESSCertID, asn1data::ASN1C__SeqOfESSCertID,
                      &asn1data::asn1Copy__SeqOfESSCertID>,
      NameListTraits<asn1data::ASN1T__SeqOfESSCertID, ASN1T_ESSCertID_traits, CESSCertID,
                     CESSCertIDList> {};

struct ASN1T__SeqOfESSCertIDv2_traits
    : GeneratedTraits<asn1data::ASN1T__SeqOfESSCertIDv2, asn1data::ASN1C__SeqOfESSCertIDv2,
                      &asn1data::asn1Copy__SeqOfESSCertIDv2>,
      NameListTraits<asn1data::ASN1T__SeqOfESSCertIDv2, ASN1T_ESSCertIDv2_traits, CESSCertIDv2,
                     CESSCertIDv2List> {};

struct ASN1T__SeqOfOtherCertID_traits
    : GeneratedTraits<asn1data::ASN1T__SeqOfOtherCertID, asn1data::ASN1C__SeqOfOtherCertID,
                      &asn1data::asn1Copy__SeqOfOtherCertID>,
      NameListTraits<asn1data::ASN1T__SeqOfOtherCertID, ASN1T_OtherCertID_traits, COtherCertID,
                     COtherCertIDList> {};

}  // namespace ASN1
}  // namespace Korvex

#endif
