// signature_policy_fuzz.cpp: fuzz target of the signature-policy module: the leading byte picks one
// of its types; the rest goes through the round-trip oracle.
#include <korvex/asn1gen/ETS_ElectronicSignaturePolicies_88syntax.h>

#include "roundtrip_oracle.h"

namespace {

const ::Korvex::Asn1Engine::TypeDesc* const kTypes[] = {&::asn1Desc_SignPolicyId,
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
                                                        &::asn1Desc_CommitmentType};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ::Korvex::Fuzz::CheckOneOf(kTypes, sizeof kTypes / sizeof kTypes[0], data, size);
  return 0;
}
