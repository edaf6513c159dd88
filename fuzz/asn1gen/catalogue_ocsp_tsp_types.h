// catalogue_ocsp_tsp_types.h: the descriptors of the OCSP and time-stamp modules, the top-level
// types first, shared by the fuzz target catalogue_ocsp_tsp_fuzz and the descriptor-driven random
// round trips of tests/asn1gen.
#ifndef KORVEX_FUZZ_ASN1GEN_CATALOGUE_OCSP_TSP_TYPES_H
#define KORVEX_FUZZ_ASN1GEN_CATALOGUE_OCSP_TSP_TYPES_H

#include <korvex/asn1gen/OCSP_2013_88.h>
#include <korvex/asn1gen/PKIXTSP.h>
#include <korvex/asn1rt/asn1engine.h>

#include <cstddef>

namespace Korvex {
namespace Fuzz {

// OcspTspTypes: the descriptors; *count receives their number.
inline const ::Korvex::Asn1Engine::TypeDesc* const* OcspTspTypes(size_t* count) {
  static const ::Korvex::Asn1Engine::TypeDesc* const kTypes[] = {
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
  *count = sizeof kTypes / sizeof kTypes[0];
  return kTypes;
}

}  // namespace Fuzz
}  // namespace Korvex

#endif
