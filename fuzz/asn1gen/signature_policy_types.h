// signature_policy_types.h: the descriptors of the signature-policy module, the top-level types
// first, shared by the fuzz target signature_policy_fuzz and the descriptor-driven random
// round trips of tests/asn1gen.
#ifndef KORVEX_FUZZ_ASN1GEN_SIGNATURE_POLICY_TYPES_H
#define KORVEX_FUZZ_ASN1GEN_SIGNATURE_POLICY_TYPES_H

#include <korvex/asn1gen/ETS_ElectronicSignaturePolicies_88syntax.h>
#include <korvex/asn1rt/asn1engine.h>

#include <cstddef>

namespace Korvex {
namespace Fuzz {

// SignaturePolicyTypes: the descriptors; *count receives their number.
inline const ::Korvex::Asn1Engine::TypeDesc* const* SignaturePolicyTypes(size_t* count) {
  static const ::Korvex::Asn1Engine::TypeDesc* const kTypes[] = {
      &::asn1Desc_SignPolicyId,
      &::asn1Desc_PolicyIssuerName,
      &::asn1Desc_FieldOfApplication,
      &::asn1Desc_SigningPeriod,
      &::asn1Desc_CMSAttrs,
      &::asn1Desc_CertRefReq,
      &::asn1Desc_CertInfoReq,
      &::asn1Desc_SignPolExtensions,
      &::asn1Desc_SignerRules,
      &::asn1Desc_MandatedUnsignedAttr,
      &::asn1Desc_VerifierRules,
      &::asn1Desc_SignerAndVerifierRules,
      &::asn1Desc_CertificateTrustTrees,
      &::asn1Desc_EnuRevReq,
      &::asn1Desc_RevReq,
      &::asn1Desc_CertRevReq,
      &::asn1Desc_SigningCertTrustCondition,
      &::asn1Desc_GeneralSubtrees,
      &::asn1Desc_NameConstraints,
      &::asn1Desc_DeltaTime,
      &::asn1Desc_TimestampTrustCondition,
      &::asn1Desc_HowCertAttribute,
      &::asn1Desc_AttributeTypeConstraints,
      &::asn1Desc_AttributeValueConstraints,
      &::asn1Desc_AttributeConstraints,
      &::asn1Desc_AttributeTrustCondition,
      &::asn1Desc_AlgorithmConstraints,
      &::asn1Desc_AlgorithmConstraintSet,
      &::asn1Desc_CommonRules,
      &::asn1Desc_CommitmentRules,
      &::asn1Desc_SignatureValidationPolicy,
      &::asn1Desc_SignPolicyInfo,
      &::asn1Desc_SignPolicyHash,
      &::asn1Desc_SignaturePolicy,
      &::asn1Desc_SignPolExtn,
      &::asn1Desc_PathLenConstraint,
      &::asn1Desc_CertPolicyId,
      &::asn1Desc_AcceptablePolicySet,
      &::asn1Desc_SkipCerts,
      &::asn1Desc_PolicyConstraints,
      &::asn1Desc_CertificateTrustPoint,
      &::asn1Desc_BaseDistance,
      &::asn1Desc_GeneralSubtree,
      &::asn1Desc_AlgAndLength,
      &::asn1Desc_SelectedCommitmentTypes,
      &::asn1Desc_CommitmentRule,
      &::asn1Desc_SelectedCommitmentTypes_element,
      &::asn1Desc_CommitmentTypeIdentifier,
      &::asn1Desc_CommitmentType,
  };
  *count = sizeof kTypes / sizeof kTypes[0];
  return kTypes;
}

}  // namespace Fuzz
}  // namespace Korvex

#endif
