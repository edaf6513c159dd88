// asn1cades_fuzz.cpp: fuzz target of the CAdES attribute module: the leading byte picks one
// of its types; the rest goes through the round-trip oracle.
#include <korvex/asn1gen/ASN1CADES.h>

#include "roundtrip_oracle.h"

namespace {

const ::Korvex::Asn1Engine::TypeDesc* const kTypes[] = {
    &ASN1CADES::asn1Desc_SignaturePolicyImplied,
    &ASN1CADES::asn1Desc_SignaturePolicyInfo,
    &ASN1CADES::asn1Desc_SigPolicyId,
    &ASN1CADES::asn1Desc_SigPolicyHash,
    &ASN1CADES::asn1Desc_SignaturePolicyId_sigPolicyQualifiers,
    &ASN1CADES::asn1Desc_SignaturePolicyId,
    &ASN1CADES::asn1Desc_SigPolicyQualifierInfo,
    &ASN1CADES::asn1Desc_SPuri,
    &ASN1CADES::asn1Desc_DisplayText,
    &ASN1CADES::asn1Desc_NoticeReference_noticeNumbers,
    &ASN1CADES::asn1Desc_NoticeReference,
    &ASN1CADES::asn1Desc_SPUserNotice,
    &ASN1CADES::asn1Desc_CommitmentTypeIdentifier,
    &ASN1CADES::asn1Desc_CommitmentTypeIndication_commitmentTypeQualifier,
    &ASN1CADES::asn1Desc_CommitmentTypeIndication,
    &ASN1CADES::asn1Desc_CommitmentTypeQualifier,
    &ASN1CADES::asn1Desc_PostalAddress,
    &ASN1CADES::asn1Desc_SignerLocation,
    &ASN1CADES::asn1Desc_SignerAttribute,
    &ASN1CADES::asn1Desc_SignerAttribute_element,
    &ASN1CADES::asn1Desc_ContentTimestamp,
    &ASN1CADES::asn1Desc_SignatureTimeStampToken,
    &ASN1CADES::asn1Desc_ESCTimeStampToken,
    &ASN1CADES::asn1Desc_TimestampedCertsCRLs,
    &ASN1CADES::asn1Desc_ArchiveTimeStampToken,
    &ASN1CADES::asn1Desc_CompleteCertificateRefs,
    &ASN1CADES::asn1Desc_CompleteRevocationRefs,
    &ASN1CADES::asn1Desc__SeqOfCrlValidatedID,
    &ASN1CADES::asn1Desc_CRLListID,
    &ASN1CADES::asn1Desc__SeqOfOcspResponsesID,
    &ASN1CADES::asn1Desc_OcspListID,
    &ASN1CADES::asn1Desc_OtherRevRefs_otherRevRefs,
    &ASN1CADES::asn1Desc_OtherRevRefs,
    &ASN1CADES::asn1Desc_CrlOcspRef,
    &ASN1CADES::asn1Desc_CRLNumber,
    &ASN1CADES::asn1Desc_CrlIdentifier,
    &ASN1CADES::asn1Desc_CrlValidatedID,
    &ASN1CADES::asn1Desc_OcspIdentifier,
    &ASN1CADES::asn1Desc_OcspResponsesID,
    &ASN1CADES::asn1Desc_AttributeCertificateRefs,
    &ASN1CADES::asn1Desc_AttributeRevocationRefs,
    &ASN1CADES::asn1Desc_CertificateValues,
    &ASN1CADES::asn1Desc_RevocationValues_crlVals,
    &ASN1CADES::asn1Desc_RevocationValues_ocspVals,
    &ASN1CADES::asn1Desc_OtherRevVals_otherRevVals,
    &ASN1CADES::asn1Desc_OtherRevVals,
    &ASN1CADES::asn1Desc_RevocationValues};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ::Korvex::Fuzz::CheckOneOf(kTypes, sizeof kTypes / sizeof kTypes[0], data, size);
  return 0;
}
