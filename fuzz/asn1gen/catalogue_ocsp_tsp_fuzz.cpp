// catalogue_ocsp_tsp_fuzz.cpp: fuzz target of the catalogue modules of OCSP and the time-stamp
// protocol: the leading byte picks one of their types (the top-level ones first), the rest goes
// through the round-trip oracle. The list was written out from the modules' headers.
#include <korvex/asn1gen/OCSP_2013_88.h>
#include <korvex/asn1gen/PKIXTSP.h>

#include "roundtrip_oracle.h"

namespace {

const ::Korvex::Asn1Engine::TypeDesc* const kTypes[] = {
    &asn1data::asn1Desc_OCSPRequest,
    &asn1data::asn1Desc_OCSPResponse,
    &asn1data::asn1Desc_BasicOCSPResponse,
    &asn1data::asn1Desc_TimeStampReq,
    &asn1data::asn1Desc_TimeStampResp,
    &asn1data::asn1Desc_TSTInfo,
    &asn1data::asn1Desc_OCSPVersion,
    &asn1data::asn1Desc_TBSRequest,
    &asn1data::asn1Desc_OCSPSignature,
    &asn1data::asn1Desc_AcceptableResponses,
    &asn1data::asn1Desc__ocspNoCheck_ExtnType,
    &asn1data::asn1Desc_CrlID,
    &asn1data::asn1Desc_ArchiveCutoff,
    &asn1data::asn1Desc_ServiceLocator,
    &asn1data::asn1Desc__ocspTreatsExpKeyOrExpCertRev_ExtnType,
    &asn1data::asn1Desc__ocspCRLLocator_ExtnType,
    &asn1data::asn1Desc__ocspInstantRevocationIndicator_ExtnType,
    &asn1data::asn1Desc__ocspInstantRevocationAnnouncementReference_ExtnType,
    &asn1data::asn1Desc__ocspHistoricalRequest_ExtnType,
    &asn1data::asn1Desc_UnknownInfo,
    &asn1data::asn1Desc_CertStatus,
    &asn1data::asn1Desc_RevokedInfo,
    &asn1data::asn1Desc_CertID,
    &asn1data::asn1Desc_OCSPResponseStatus,
    &asn1data::asn1Desc_ResponseBytes,
    &asn1data::asn1Desc_KeyHash,
    &asn1data::asn1Desc_ResponderID,
    &asn1data::asn1Desc_ResponseData,
    &asn1data::asn1Desc_SingleResponse,
    &asn1data::asn1Desc_Request,
    &asn1data::asn1Desc_PreferredSignatureAlgorithms,
    &asn1data::asn1Desc_PreferredSignatureAlgorithm,
    &asn1data::asn1Desc_FullCertificate,
    &asn1data::asn1Desc_ReqCert,
    &asn1data::asn1Desc_CertSignature,
    &asn1data::asn1Desc_CertIdWithSignature,
    &asn1data::asn1Desc__SeqOfRequest,
    &asn1data::asn1Desc__SeqOfCertificate,
    &asn1data::asn1Desc__SeqOfSingleResponse,
    &asn1data::asn1Desc_MessageImprint,
    &asn1data::asn1Desc_TSAPolicyId,
    &asn1data::asn1Desc_TimeStampToken,
    &asn1data::asn1Desc_Accuracy,
    &asn1data::asn1Desc_TimeStampRespRaw,
    &asn1data::asn1Desc_TSTInfoRaw,
    &asn1data::asn1Desc_TimeStampAuthenticodeRequest,
    &asn1data::asn1Desc__SetOfAttribute,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ::Korvex::Fuzz::CheckOneOf(kTypes, sizeof kTypes / sizeof kTypes[0], data, size);
  return 0;
}
