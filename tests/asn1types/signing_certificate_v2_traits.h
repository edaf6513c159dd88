// signing_certificate_v2_traits.h: traits of a SigningCertificateV2 record
// over its `certs` alone (no policies), for the tests and the benchmark of the
// ESSCertIDv2 list traits. The attribute classes have their own traits with
// the policies; this one exercises ASN1T__SeqOfESSCertIDv2_traits inside the
// generated record.
#ifndef KORVEX_TESTS_ASN1TYPES_SIGNING_CERTIFICATE_V2_TRAITS_H
#define KORVEX_TESTS_ASN1TYPES_SIGNING_CERTIFICATE_V2_TRAITS_H

#include <korvex/asn1gen/ExtendedSecurityServices_2006.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/CertIdTraits.h>
#include <korvex/asn1types/Traits.h>

namespace pkitest {

struct SigningCertificateV2Certs_traits
    : Korvex::ASN1::GeneratedTraits<asn1data::ASN1T_SigningCertificateV2,
                                    asn1data::ASN1C_SigningCertificateV2,
                                    &asn1data::asn1Copy_SigningCertificateV2> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, Korvex::ASN1::CESSCertIDv2List const& certs) {
    rec.m.policiesPresent = 0;
    Korvex::ASN1::ASN1T__SeqOfESSCertIDv2_traits::set(ctxt, rec.certs, certs);
  }
  static void get(ASN1_T const& rec, Korvex::ASN1::CESSCertIDv2List& certs) {
    Korvex::ASN1::ASN1T__SeqOfESSCertIDv2_traits::get(rec.certs, certs);
  }
};

}  // namespace pkitest

#endif
