// catalogue_cmp_types.h: the descriptors of the CMP, CRMF and DVCS modules, the top-level types
// first, shared by the fuzz target catalogue_cmp_fuzz and the descriptor-driven random
// round trips of tests/asn1gen.
#ifndef KORVEX_FUZZ_ASN1GEN_CATALOGUE_CMP_TYPES_H
#define KORVEX_FUZZ_ASN1GEN_CATALOGUE_CMP_TYPES_H

#include <korvex/asn1gen/Gost_Korvex_PKIXCMP.h>
#include <korvex/asn1gen/PKIXCMP.h>
#include <korvex/asn1gen/PKIXCRMF_2005.h>
#include <korvex/asn1gen/PKIXDVCS.h>
#include <korvex/asn1rt/asn1engine.h>

#include <cstddef>

namespace Korvex {
namespace Fuzz {

// CmpTypes: the descriptors; *count receives their number.
inline const ::Korvex::Asn1Engine::TypeDesc* const* CmpTypes(size_t* count) {
  static const ::Korvex::Asn1Engine::TypeDesc* const kTypes[] = {
      &asn1data::asn1Desc_PKIMessage,
      &asn1data::asn1Desc_CertReqMessages,
      &asn1data::asn1Desc_DVCSRequest,
      &asn1data::asn1Desc_DVCSResponse,
      &asn1data::asn1Desc_CMPCertificate,
      &asn1data::asn1Desc_DHBMParameter,
      &asn1data::asn1Desc_PKIStatus,
      &asn1data::asn1Desc_PKIFreeText,
      &asn1data::asn1Desc_PKIFailureInfo,
      &asn1data::asn1Desc_PKIStatusInfo,
      &asn1data::asn1Desc_PKIHeader_generalInfo,
      &asn1data::asn1Desc_PKIHeader,
      &asn1data::asn1Desc_CertAnnContent,
      &asn1data::asn1Desc_PKIConfirmContent,
      &asn1data::asn1Desc_PKIMessages,
      &asn1data::asn1Desc_NestedMessageContent,
      &asn1data::asn1Desc_PKIBody,
      &asn1data::asn1Desc_PKIProtection,
      &asn1data::asn1Desc_PKIMessage_extraCerts,
      &asn1data::asn1Desc_InfoTypeAndValue,
      &asn1data::asn1Desc__itSignKeyPairTypes_Type,
      &asn1data::asn1Desc__itEncKeyPairTypes_Type,
      &asn1data::asn1Desc_CAKeyUpdAnnContent,
      &asn1data::asn1Desc__itUnsupportedOIDs_Type,
      &asn1data::asn1Desc__itKeyPairParamReq_Type,
      &asn1data::asn1Desc__itImplicitConfirm_Type,
      &asn1data::asn1Desc__itConfirmWaitTime_Type,
      &asn1data::asn1Desc__itSuppLangTags_Type,
      &asn1data::asn1Desc__itGetMessage_Type,
      &asn1data::asn1Desc__itGetMessages_Type,
      &asn1data::asn1Desc__itDeleteCustomer_Type,
      &asn1data::asn1Desc_CertRepMessage_caPubs,
      &asn1data::asn1Desc_CertRepMessage,
      &asn1data::asn1Desc_CertOrEncCert,
      &asn1data::asn1Desc_CertifiedKeyPair,
      &asn1data::asn1Desc_CertResponse,
      &asn1data::asn1Desc_POPODecKeyChallContent,
      &asn1data::asn1Desc_Challenge,
      &asn1data::asn1Desc_POPODecKeyRespContent,
      &asn1data::asn1Desc_KeyRecRepContent_caCerts,
      &asn1data::asn1Desc_KeyRecRepContent_keyPairHist,
      &asn1data::asn1Desc_KeyRecRepContent,
      &asn1data::asn1Desc_RevReqContent,
      &asn1data::asn1Desc_RevDetails,
      &asn1data::asn1Desc_RevRepContent_status,
      &asn1data::asn1Desc_RevRepContent_revCerts,
      &asn1data::asn1Desc_RevRepContent_crls,
      &asn1data::asn1Desc_RevRepContent,
      &asn1data::asn1Desc_RevAnnContent,
      &asn1data::asn1Desc_CRLAnnContent,
      &asn1data::asn1Desc_GenMsgContent,
      &asn1data::asn1Desc_GenRepContent,
      &asn1data::asn1Desc_ErrorMsgContent,
      &asn1data::asn1Desc_CertConfirmContent,
      &asn1data::asn1Desc_CMPCertStatus,
      &asn1data::asn1Desc_PollReqContent,
      &asn1data::asn1Desc_PollReqContent_element,
      &asn1data::asn1Desc_PollRepContent,
      &asn1data::asn1Desc_PollRepContent_element,
      &asn1data::asn1Desc_ProtectedPart,
      &asn1data::asn1Desc_OOBCert,
      &asn1data::asn1Desc_OOBCertHash,
      &asn1data::asn1Desc__SeqOfCertResponse,
      &asn1data::asn1Desc_OptionalValidity,
      &asn1data::asn1Desc_CertTemplate,
      &asn1data::asn1Desc_Controls,
      &asn1data::asn1Desc_CertRequest,
      &asn1data::asn1Desc_ProofOfPossession,
      &asn1data::asn1Desc_CertReqMsg_regInfo,
      &asn1data::asn1Desc_CertReqMsg,
      &asn1data::asn1Desc_PBMParameter,
      &asn1data::asn1Desc_POPOSigningKeyInput_authInfo,
      &asn1data::asn1Desc_POPOSigningKeyInput,
      &asn1data::asn1Desc_POPOSigningKey,
      &asn1data::asn1Desc_PKMACValue,
      &asn1data::asn1Desc_SubsequentMessage,
      &asn1data::asn1Desc_POPOPrivKey,
      &asn1data::asn1Desc_RegToken,
      &asn1data::asn1Desc_Authenticator,
      &asn1data::asn1Desc_PKIPublicationInfo_pubInfos,
      &asn1data::asn1Desc_PKIPublicationInfo,
      &asn1data::asn1Desc_SinglePubInfo,
      &asn1data::asn1Desc_KeyGenParameters,
      &asn1data::asn1Desc_PKIArchiveOptions,
      &asn1data::asn1Desc_CRMFEncryptedKey,
      &asn1data::asn1Desc_EncryptedValue,
      &asn1data::asn1Desc_CertId,
      &asn1data::asn1Desc_OldCertId,
      &asn1data::asn1Desc_ProtocolEncrKey,
      &asn1data::asn1Desc_UTF8Pairs,
      &asn1data::asn1Desc_CertReq,
      &asn1data::asn1Desc_Attributes,
      &asn1data::asn1Desc_PrivateKeyInfo,
      &asn1data::asn1Desc_EncKeyWithID_identifier,
      &asn1data::asn1Desc_EncKeyWithID,
      &asn1data::asn1Desc_ServiceType,
      &asn1data::asn1Desc_Nonce,
      &asn1data::asn1Desc_DVCSTime,
      &asn1data::asn1Desc_DVCSRequestInformation,
      &asn1data::asn1Desc_Data,
      &asn1data::asn1Desc_DVCSCertInfo_certs,
      &asn1data::asn1Desc_DVCSCertInfo,
      &asn1data::asn1Desc_CertEtcToken,
      &asn1data::asn1Desc_TargetEtcChain_chain,
      &asn1data::asn1Desc_PathProcInput_acceptablePolicySet,
      &asn1data::asn1Desc_PathProcInput,
      &asn1data::asn1Desc_TargetEtcChain,
      &asn1data::asn1Desc_DVCSErrorNotice,
      &asn1data::asn1Desc_Data_certs,
      &asn1data::asn1Desc_ChangeNameReq,
      &asn1data::asn1Desc_PKIAudit,
      &asn1data::asn1Desc_PKIAuditRecord,
      &asn1data::asn1Desc__SeqOfPKIAuditRecord,
  };
  *count = sizeof kTypes / sizeof kTypes[0];
  return kTypes;
}

}  // namespace Fuzz
}  // namespace Korvex

#endif
