// CAdESCertificateRefs.cpp: CCompleteCertificateRefs and its traits.
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/SeqOfListTraits.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/cades/CAdESAttributesTraits.h>

#include "CAdESSupport.h"

namespace Korvex {
namespace PKI {
namespace CAdES {

namespace {

// One element per certificate ID: its own encode() as an open type, and
// COtherCertID::decode of the element's bytes.
struct OtherCertIDOpenType_traits {
  typedef ASN1OpenType ASN1_T;
  static void set(ASN1CTXT* ctxt, ASN1OpenType& rec, ASN1::COtherCertID const& value) {
    support::SetOpenType(ctxt, rec, value.encode());
  }
  static void get(ASN1OpenType const& rec, ASN1::COtherCertID& value) {
    value.decode(support::GetOpenType(rec));
  }
  static void copy(ASN1CTXT* ctxt, ASN1OpenType const& src, ASN1OpenType& dst) {
    ASN1::ASN1TOpenType_traits::copy(ctxt, src, dst);
  }
};

typedef ASN1::ASN1TSeqOfList_traits<ASN1OpenType, OtherCertIDOpenType_traits, ASN1::COtherCertID,
                                    CCompleteCertificateRefs>
    CertIDList_traits;

}  // namespace

CBlob CCompleteCertificateRefs::encode() const {
  return ASN1::asn1Encode<ASN1T_CompleteCertificateRefs_traits>(*this);
}

void CCompleteCertificateRefs::decode(CBlob const& der) {
  CCompleteCertificateRefs decoded;
  support::DecodeWhole<ASN1T_CompleteCertificateRefs_traits>(der, decoded);
  swap(decoded);
}

void ASN1T_CompleteCertificateRefs_traits::set(ASN1CTXT* ctxt, ASN1_T& rec,
                                               CCompleteCertificateRefs const& value) {
  CertIDList_traits::set(ctxt, rec, value);
}

void ASN1T_CompleteCertificateRefs_traits::get(ASN1_T const& rec, CCompleteCertificateRefs& value) {
  CertIDList_traits::get(rec, value);
}

}  // namespace CAdES
}  // namespace PKI
}  // namespace Korvex
