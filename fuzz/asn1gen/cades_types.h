// cades_types.h: the descriptors of the CAdES attribute module, the top-level types
// first, shared by the fuzz target asn1cades_fuzz and the descriptor-driven random
// round trips of tests/asn1gen.
#ifndef KORVEX_FUZZ_ASN1GEN_CADES_TYPES_H
#define KORVEX_FUZZ_ASN1GEN_CADES_TYPES_H

#include <korvex/asn1gen/ASN1CADES.h>
#include <korvex/asn1rt/asn1engine.h>

#include <cstddef>

namespace Korvex {
namespace Fuzz {

// CadesTypes: the descriptors; *count receives their number.
inline const ::Korvex::Asn1Engine::TypeDesc* const* CadesTypes(size_t* count) {
  static const ::Korvex::Asn1Engine::TypeDesc* const kTypes[] = {
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
      &ASN1CADES::asn1Desc_RevocationValues,
  };
  *count = sizeof kTypes / sizeof kTypes[0];
  return kTypes;
}

}  // namespace Fuzz
}  // namespace Korvex

#endif
