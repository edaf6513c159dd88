// catalogue_misc_types.h: the descriptors of the attribute-certificate, PKCS and GOST modules, the
// top-level types first, shared by the fuzz target catalogue_misc_fuzz and the descriptor-driven
// random round trips of tests/asn1gen.
#ifndef KORVEX_FUZZ_ASN1GEN_CATALOGUE_MISC_TYPES_H
#define KORVEX_FUZZ_ASN1GEN_CATALOGUE_MISC_TYPES_H

#include <korvex/asn1gen/AttributeCertificateVersion1.h>
#include <korvex/asn1gen/Gost28147_89_EncryptionSyntax.h>
#include <korvex/asn1gen/Gost28147_89_ParamSetSyntax.h>
#include <korvex/asn1gen/GostR3410_2001_PKISyntax.h>
#include <korvex/asn1gen/GostR3410_2001_ParamSetSyntax.h>
#include <korvex/asn1gen/GostR3410_2001_SignatureSyntax.h>
#include <korvex/asn1gen/GostR3410_2012_PKISyntax.h>
#include <korvex/asn1gen/GostR3410_94_PKISyntax.h>
#include <korvex/asn1gen/GostR3410_94_ParamSetSyntax.h>
#include <korvex/asn1gen/GostR3410_94_SignatureSyntax.h>
#include <korvex/asn1gen/GostR3410_EncryptionSyntax.h>
#include <korvex/asn1gen/GostR3411_94_DigestSyntax.h>
#include <korvex/asn1gen/GostR3411_94_ParamSetSyntax.h>
#include <korvex/asn1gen/Gost_Korvex_PrivateKey.h>
#include <korvex/asn1gen/Gost_Qualified_Certificate.h>
#include <korvex/asn1gen/Korvex_Algorithms.h>
#include <korvex/asn1gen/Korvex_KeyFormats.h>
#include <korvex/asn1gen/Korvex_PCI_HSM.h>
#include <korvex/asn1gen/Korvex_TR34.h>
#include <korvex/asn1gen/PKCS_10.h>
#include <korvex/asn1gen/PKCS_9.h>
#include <korvex/asn1gen/PKIXAttributeCertificate_2008.h>
#include <korvex/asn1rt/asn1engine.h>

#include <cstddef>

namespace Korvex {
namespace Fuzz {

// MiscTypes: the descriptors; *count receives their number.
inline const ::Korvex::Asn1Engine::TypeDesc* const* MiscTypes(size_t* count) {
  static const ::Korvex::Asn1Engine::TypeDesc* const kTypes[] = {
      &asn1data::asn1Desc_PKIXAttributeCertificate,
      &asn1data::asn1Desc_AttributeCertificateV1,
      &asn1data::asn1Desc_CertificationRequest,
      &asn1data::asn1Desc_AttCertVersion,
      &asn1data::asn1Desc_PKIXIssuerSerial,
      &asn1data::asn1Desc_ObjectDigestInfo,
      &asn1data::asn1Desc_Holder,
      &asn1data::asn1Desc_AttCertIssuer,
      &asn1data::asn1Desc_AttCertValidityPeriod,
      &asn1data::asn1Desc_PKIXAttributeCertificateInfo,
      &asn1data::asn1Desc_V2Form,
      &asn1data::asn1Desc_Targets,
      &asn1data::asn1Desc_Target,
      &asn1data::asn1Desc_TargetCert,
      &asn1data::asn1Desc_IetfAttrSyntax,
      &asn1data::asn1Desc_IetfAttrSyntax_values_element,
      &asn1data::asn1Desc_SvceAuthInfo,
      &asn1data::asn1Desc_RoleSyntax,
      &asn1data::asn1Desc_ClassList,
      &asn1data::asn1Desc_Clearance,
      &asn1data::asn1Desc_PKIXSecurityCategory,
      &asn1data::asn1Desc_AttrSpec,
      &asn1data::asn1Desc_AAControls,
      &asn1data::asn1Desc_ACClearAttrs,
      &asn1data::asn1Desc_ProxyInfo,
      &asn1data::asn1Desc__SeqOfAttribute,
      &asn1data::asn1Desc__SeqOfIetfAttrSyntax_values_element,
      &asn1data::asn1Desc__SetOfPKIXSecurityCategory,
      &asn1data::asn1Desc_AttCertVersionV1,
      &asn1data::asn1Desc_AttributeCertificateInfoV1_subject,
      &asn1data::asn1Desc_AttributeCertificateInfoV1,
      &asn1data::asn1Desc_RandomNonce,
      &asn1data::asn1Desc_SequenceNumber,
      &asn1data::asn1Desc_ExtensionRequest,
      &asn1data::asn1Desc_MacData,
      &asn1data::asn1Desc_PFX,
      &asn1data::asn1Desc_EncryptionAlgorithmIdentifier,
      &asn1data::asn1Desc_EncryptedPrivateKeyInfo,
      &asn1data::asn1Desc__unstructuredName_Type,
      &asn1data::asn1Desc__unstructuredName_Type_directoryString,
      &asn1data::asn1Desc__unstructuredAddress_Type,
      &asn1data::asn1Desc__dateOfBirth_Type,
      &asn1data::asn1Desc__placeOfBirth_Type,
      &asn1data::asn1Desc__gender_Type,
      &asn1data::asn1Desc__countryOfCitizenship_Type,
      &asn1data::asn1Desc__countryOfResidence_Type,
      &asn1data::asn1Desc__challengePassword_Type,
      &asn1data::asn1Desc__extendedCertificateAttributes_Type,
      &asn1data::asn1Desc__friendlyName_Type,
      &asn1data::asn1Desc__localKeyId_Type,
      &asn1data::asn1Desc__signingDescription_Type,
      &asn1data::asn1Desc__emailAddress_Type,
      &asn1data::asn1Desc__pseudonym_Type,
      &asn1data::asn1Desc__pkcs9CaseIgnoreMatch_AssertionType,
      &asn1data::asn1Desc__pkcs9CaseIgnoreMatch_AssertionType_directoryString,
      &asn1data::asn1Desc__objectIdentifierMatch_AssertionType,
      &asn1data::asn1Desc__caseIgnoreMatch_AssertionType,
      &asn1data::asn1Desc__caseExactMatch_AssertionType,
      &asn1data::asn1Desc__integerMatch_AssertionType,
      &asn1data::asn1Desc__octetStringMatch_AssertionType,
      &asn1data::asn1Desc__generalizedTimeMatch_AssertionType,
      &asn1data::asn1Desc_CertificationRequest_certificationRequestInfo_subjectPublicKeyInfo,
      &asn1data::asn1Desc_CertificationRequest_certificationRequestInfo,
      &asn1data::asn1Desc_EnrollmentCSPInfo,
      &asn1data::asn1Desc__msOsVersion_Type,
      &asn1data::asn1Desc__SetOfAttribute,
      &asn1data::asn1Desc_Gost28147_89_ParamSet,
      &asn1data::asn1Desc_Gost28147_89_UZ,
      &asn1data::asn1Desc_Gost28147_89_IV,
      &asn1data::asn1Desc_Gost28147_89_Key,
      &asn1data::asn1Desc_Gost28147_89_MAC,
      &asn1data::asn1Desc_Gost28147_89_EncryptedKey,
      &asn1data::asn1Desc_Gost28147_89_Parameters,
      &asn1data::asn1Desc_Gost28147_89_BlobParameters,
      &asn1data::asn1Desc__gost2814789NoneKeyMeshing_Type,
      &asn1data::asn1Desc__gost2814789KorvexKeyMeshing_Type,
      &asn1data::asn1Desc_Gost28147_89_ParamSetParameters,
      &asn1data::asn1Desc_GostR3410_2001_CertificateSignature,
      &asn1data::asn1Desc_GostR3410_2001_PublicKeyParameters,
      &asn1data::asn1Desc_GostR3410_2001_PublicKey,
      &asn1data::asn1Desc__gost2001PubKey_Type,
      &asn1data::asn1Desc__gost2001DHPubKey_Type,
      &asn1data::asn1Desc_GostR3410_2001_ParamSetParameters,
      &asn1data::asn1Desc_GostR3410_2001_Signature,
      &asn1data::asn1Desc__gost94WithGostR34102001Sign_Type,
      &asn1data::asn1Desc_GostR3410_2012_PublicKeyParameters,
      &asn1data::asn1Desc_GostR3410_2012_256_PublicKey,
      &asn1data::asn1Desc_GostR3410_2012_512_PublicKey,
      &asn1data::asn1Desc_GostR3410_PublicKey,
      &asn1data::asn1Desc_Gost3412_15_Encryption_Parameters,
      &asn1data::asn1Desc__gost2012_256_PubKey_Type,
      &asn1data::asn1Desc__gost2012_512_PubKey_Type,
      &asn1data::asn1Desc__gost2012_256DH_PubKey_Type,
      &asn1data::asn1Desc__gost2012_512DH_PubKey_Type,
      &asn1data::asn1Desc_GostR3410_94_CertificateSignature,
      &asn1data::asn1Desc_GostR3410_94_PublicKeyParameters,
      &asn1data::asn1Desc_GostR3410_94_PublicKey,
      &asn1data::asn1Desc_GostR3410_94_ValidationParameters_c,
      &asn1data::asn1Desc_GostR3410_94_ValidationParameters,
      &asn1data::asn1Desc_GostR3410_94_ValidationBisParameters_c,
      &asn1data::asn1Desc_GostR3410_94_ValidationBisParameters,
      &asn1data::asn1Desc_GostR3410_94_ParamSetParameters_t,
      &asn1data::asn1Desc_GostR3410_94_ParamSetParameters,
      &asn1data::asn1Desc_GostR3410_94_Signature,
      &asn1data::asn1Desc__gost94WithGostR341094Sign_Type,
      &asn1data::asn1Desc_Gost28147_89_KeyWrapParameters_ukm,
      &asn1data::asn1Desc_Gost28147_89_KeyWrapParameters,
      &asn1data::asn1Desc_GostR3410_TransportParameters_ukm,
      &asn1data::asn1Desc_GostR3410_TransportParameters,
      &asn1data::asn1Desc_GostR3410_KeyTransport,
      &asn1data::asn1Desc_GostR3411_94_Digest,
      &asn1data::asn1Desc_GostR3411_94_DigestParameters,
      &asn1data::asn1Desc__gostR341194DigestParams_Type,
      &asn1data::asn1Desc_GostR3411_94_ParamSetParameters,
      &asn1data::asn1Desc_PBEKorvexGostParameters_iv,
      &asn1data::asn1Desc_PBEKorvexGostParameters_salt,
      &asn1data::asn1Desc_PBEKorvexGostParameters,
      &asn1data::asn1Desc__pbeGost28147And3411_Type_salt,
      &asn1data::asn1Desc__pbeGost28147And3411_Type,
      &asn1data::asn1Desc_OGRN,
      &asn1data::asn1Desc_SNILS,
      &asn1data::asn1Desc_INNLE,
      &asn1data::asn1Desc_OGRNIP,
      &asn1data::asn1Desc_INN,
      &asn1data::asn1Desc_SubjectSignTool,
      &asn1data::asn1Desc_IssuerSignTool,
      &asn1data::asn1Desc_IdentificationKind,
      &asn1data::asn1Desc_KeySize,
      &asn1data::asn1Desc__rsaMD2_Type,
      &asn1data::asn1Desc__rsaMD5_Type,
      &asn1data::asn1Desc__rsaSHA_1_Type,
      &asn1data::asn1Desc__md4_Type,
      &asn1data::asn1Desc__mdc2_Type,
      &asn1data::asn1Desc__rc4_Type,
      &asn1data::asn1Desc__aes128_OFB_Type,
      &asn1data::asn1Desc__aes128_CFB_Type,
      &asn1data::asn1Desc__aes192_OFB_Type,
      &asn1data::asn1Desc__aes192_CFB_Type,
      &asn1data::asn1Desc__aes256_OFB_Type,
      &asn1data::asn1Desc__aes256_CFB_Type,
      &asn1data::asn1Desc_RsaPubKey,
      &asn1data::asn1Desc_RsaPrivateKeyCRTComponents,
      &asn1data::asn1Desc_EncryptedPKey,
      &asn1data::asn1Desc_HASH,
      &asn1data::asn1Desc_SIGNATURE,
      &asn1data::asn1Desc_SharedInfo,
      &asn1data::asn1Desc_PCI_Attribute,
      &asn1data::asn1Desc_PCI_HSM_CertificationRequestInfo,
      &asn1data::asn1Desc_PCI_HSM_CertificationRequest,
      &asn1data::asn1Desc__SetOfPCI_Attribute,
      &asn1data::asn1Desc_KeyBlockAsn1EncodedFormat,
      &asn1data::asn1Desc_KeyBlockFirmwareFormat,
      &asn1data::asn1Desc_TR34EncryptedData,
  };
  *count = sizeof kTypes / sizeof kTypes[0];
  return kTypes;
}

}  // namespace Fuzz
}  // namespace Korvex

#endif
