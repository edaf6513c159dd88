// Typed values of the catalogue's table-constrained open types, on the fixtures
// of tests/data whose contents tests/data/README.md fixes: certificate and CRL
// extensions, name attributes, algorithm parameters (RSA, EC, GOST), CMS signed
// attributes, the TSTInfo inside a time-stamp token, OCSP responses, PKCS#10
// attributes, CMP information values and DVCS content; and the encoding and
// copying of typed values.
#include <gtest/gtest.h>
#include <korvex/asn1gen/CertificateExtensions.h>
#include <korvex/asn1gen/CryptographicMessageSyntax2004.h>
#include <korvex/asn1gen/ExtendedSecurityServices_2006.h>
#include <korvex/asn1gen/GostR3410_2001_PKISyntax.h>
#include <korvex/asn1gen/GostR3410_2012_PKISyntax.h>
#include <korvex/asn1gen/Gost_Qualified_Certificate.h>
#include <korvex/asn1gen/OCSP_2013_88.h>
#include <korvex/asn1gen/PKCS_10.h>
#include <korvex/asn1gen/PKCS_9.h>
#include <korvex/asn1gen/PKIX1Algorithms88.h>
#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <korvex/asn1gen/PKIX1Implicit88.h>
#include <korvex/asn1gen/PKIXCMP.h>
#include <korvex/asn1gen/PKIXCRMF_2005.h>
#include <korvex/asn1gen/PKIXDVCS.h>
#include <korvex/asn1gen/PKIXTSP.h>

#include <string>
#include <vector>

#include "catalogue_support.h"
#include "codec_fixture.h"

namespace {

using namespace asn1data;
using Korvex::Test::Bytes;
using Korvex::Test::Codec;
using Korvex::Test::DottedOid;
using Korvex::Test::ToHex;

Bytes Fixture(const std::string& name) {
  return Korvex::Test::ReadFile(std::string(KORVEX_TEST_DATA_DIR) + "/" + name);
}

// A record decoded from a fixture; freed with its context.
template <typename R>
struct Decoded {
  Codec codec;
  R rec{};
  void (*freeFn)(ASN1CTXT*, R*);
  int status;
  Decoded(const std::string& file, int (*decode)(ASN1CTXT*, R*, ASN1TagType, int),
          void (*free)(ASN1CTXT*, R*))
      : freeFn(free), status(codec.decode(decode, Fixture(file), &rec)) {}
  ~Decoded() { freeFn(codec.ctxt(), &rec); }
};

#define DECODE(Type, var, file) Decoded<ASN1T_##Type> var(file, &asn1D_##Type, &asn1Free_##Type)

// The typed value of a table-constrained open type, or null.
template <typename T>
const T* As(const Asn1Object& o) {
  return static_cast<const T*>(o.decoded);
}

const ASN1T_Extension* FindExtension(const ASN1T_Extensions& exts, const ASN1OBJID& id) {
  for (ASN1UINT i = 0; i < exts.n; ++i) {
    if (rtCmpOID(&exts.elem[i].extnID, &id)) return &exts.elem[i];
  }
  return nullptr;
}

template <typename Attrs>
const Asn1Object* FirstValue(const Attrs& attrs, const ASN1OBJID& id) {
  for (ASN1UINT i = 0; i < attrs.n; ++i) {
    const ASN1T_Attribute& a = attrs.elem[i];
    if (rtCmpOID(&a.type, &id) && a.values.n) return &a.values.elem[0];
  }
  return nullptr;
}

// The value of the first attribute of type id in a Name.
const Asn1Object* NameValue(const ASN1T_Name& name, const ASN1OBJID& id) {
  const ASN1T_RDNSequence& rdns = *name.u.rdnSequence;
  for (ASN1UINT i = 0; i < rdns.n; ++i) {
    for (ASN1UINT k = 0; k < rdns.elem[i].n; ++k) {
      if (rtCmpOID(&rdns.elem[i].elem[k].type, &id)) return &rdns.elem[i].elem[k].value;
    }
  }
  return nullptr;
}

std::string DisplayText(const ASN1T_QTDisplayText& t) {
  switch (t.t) {
    case ASN1T_QTDisplayText::T_ia5String:
      return t.u.ia5String;
    case ASN1T_QTDisplayText::T_visibleString:
      return t.u.visibleString;
    case ASN1T_QTDisplayText::T_utf8String:
      return t.u.utf8String;
    default:
      return "(bmp)";
  }
}

std::string Octets(const unsigned char* p, ASN1UINT n) { return ToHex(Bytes(p, p + n)); }

TEST(CatalogueTyped, CertificateExtensionsAndNames) {
  DECODE(Certificate, cert, "pki/ee-rsa.der");
  ASSERT_EQ(cert.status, 0);
  const ASN1T_TBSCertificate& tbs = cert.rec.tbsCertificate;
  EXPECT_STREQ(tbs.serialNumber, "0xc0ffee");
  ASSERT_EQ(tbs.m.extensionsPresent, 1u);
  const ASN1T_Extensions& exts = tbs.extensions;
  ASSERT_EQ(exts.n, 9u);
  for (ASN1UINT i = 0; i < exts.n; ++i) {
    SCOPED_TRACE(DottedOid(exts.elem[i].extnID));
    EXPECT_NE(exts.elem[i].extnValue.decoded, nullptr);
  }

  const ASN1T_Extension* bc = FindExtension(exts, id_ce_basicConstraints);
  ASSERT_NE(bc, nullptr);
  EXPECT_TRUE(bc->critical);
  ASSERT_NE(As<ASN1T_BasicConstraintsSyntax>(bc->extnValue), nullptr);
  EXPECT_EQ(As<ASN1T_BasicConstraintsSyntax>(bc->extnValue)->m.cAPresent, 0u);  // 30 00

  const ASN1T_KeyUsage* ku = As<ASN1T_KeyUsage>(FindExtension(exts, id_ce_keyUsage)->extnValue);
  ASSERT_NE(ku, nullptr);
  EXPECT_EQ(ku->numbits, 3u);
  EXPECT_EQ(ku->data[0], 0xE0);

  const ASN1T__extKeyUsage_ExtnType* eku =
      As<ASN1T__extKeyUsage_ExtnType>(FindExtension(exts, id_ce_extKeyUsage)->extnValue);
  ASSERT_NE(eku, nullptr);
  ASSERT_EQ(eku->n, 3u);
  EXPECT_TRUE(rtCmpOID(&eku->elem[0], &id_kp_clientAuth));
  EXPECT_TRUE(rtCmpOID(&eku->elem[1], &id_kp_emailProtection));
  EXPECT_TRUE(rtCmpOID(&eku->elem[2], &id_kp_codeSigning));

  const ASN1T_GeneralNames* san =
      As<ASN1T_GeneralNames>(FindExtension(exts, id_ce_subjectAltName)->extnValue);
  ASSERT_NE(san, nullptr);
  ASSERT_EQ(san->n, 9u);
  const ASN1UINT kinds[] = {
      ASN1T_GeneralName::T_dNSName,       ASN1T_GeneralName::T_dNSName,
      ASN1T_GeneralName::T_rfc822Name,    ASN1T_GeneralName::T_uniformResourceIdentifier,
      ASN1T_GeneralName::T_iPAddress,     ASN1T_GeneralName::T_iPAddress,
      ASN1T_GeneralName::T_directoryName, ASN1T_GeneralName::T_registeredID,
      ASN1T_GeneralName::T_otherName};
  for (ASN1UINT i = 0; i < san->n; ++i) EXPECT_EQ(san->elem[i].t, kinds[i]) << i;
  EXPECT_STREQ(san->elem[1].u.dNSName, "*.signer.korvex.example");
  EXPECT_STREQ(san->elem[2].u.rfc822Name, "signer@korvex.example");
  EXPECT_EQ(Octets(san->elem[4].u.iPAddress->data, san->elem[4].u.iPAddress->numocts),
            "C0 00 02 0A");
  EXPECT_EQ(san->elem[5].u.iPAddress->numocts, 16u);
  EXPECT_EQ(DottedOid(*san->elem[7].u.registeredID), "1.3.6.1.4.1.99981.38.99");
  EXPECT_EQ(DottedOid(san->elem[8].u.otherName->type_id), "1.3.6.1.4.1.311.20.2.3");

  const ASN1T_CertificatePoliciesSyntax* policies = As<ASN1T_CertificatePoliciesSyntax>(
      FindExtension(exts, id_ce_certificatePolicies)->extnValue);
  ASSERT_NE(policies, nullptr);
  ASSERT_EQ(policies->n, 1u);
  const ASN1T_PolicyInformation& policy = policies->elem[0];
  EXPECT_EQ(DottedOid(policy.policyIdentifier), "1.3.6.1.4.1.99981.38.1");
  ASSERT_EQ(policy.policyQualifiers.n, 2u);
  const ASN1T_CPSuri* cps = As<ASN1T_CPSuri>(policy.policyQualifiers.elem[0].qualifier);
  ASSERT_NE(cps, nullptr);
  EXPECT_STREQ(*cps, "https://pki.korvex.example/cps");
  const ASN1T_QTUserNotice* notice =
      As<ASN1T_QTUserNotice>(policy.policyQualifiers.elem[1].qualifier);
  ASSERT_NE(notice, nullptr);
  ASSERT_EQ(notice->m.noticeRefPresent, 1u);
  EXPECT_EQ(DisplayText(notice->noticeRef.organization), "Korvex Test PKI");
  ASSERT_EQ(notice->noticeRef.noticeNumbers.n, 2u);
  EXPECT_STREQ(notice->noticeRef.noticeNumbers.elem[1], "0x2");
  EXPECT_EQ(DisplayText(notice->explicitText), "Korvex test certificate: not for production use");

  const ASN1T_AuthorityInfoAccessSyntax* aia = As<ASN1T_AuthorityInfoAccessSyntax>(
      FindExtension(exts, id_pe_authorityInfoAccess)->extnValue);
  ASSERT_NE(aia, nullptr);
  ASSERT_EQ(aia->n, 2u);
  EXPECT_TRUE(rtCmpOID(&aia->elem[0].accessMethod, &id_ad_ocsp));
  EXPECT_STREQ(aia->elem[0].accessLocation.u.uniformResourceIdentifier,
               "http://ocsp.korvex.example/");

  // Name attribute values and the key's parameters.
  const Asn1Object* cn = NameValue(tbs.subject, id_at_commonName);
  ASSERT_NE(cn, nullptr);
  const ASN1T__commonName_Type* cnText = As<ASN1T__commonName_Type>(*cn);
  ASSERT_NE(cnText, nullptr);
  ASSERT_EQ(cnText->t, ASN1T__commonName_Type::T_utf8String);
  EXPECT_STREQ(cnText->u.utf8String, "Korvex Test RSA Signer");
  const Asn1Object* email = NameValue(tbs.subject, id_emailAddress);
  ASSERT_NE(email, nullptr);
  EXPECT_NE(email->decoded, nullptr);
  const ASN1T_AlgorithmIdentifier& key = tbs.subjectPublicKeyInfo.algorithm;
  EXPECT_TRUE(rtCmpOID(&key.algorithm, &id_rsaEncryption));
  EXPECT_NE(key.parameters.decoded, nullptr);  // NULL
}

TEST(CatalogueTyped, EcAndGostKeysAndQualifiedAttributes) {
  DECODE(Certificate, ec, "pki/ee-ec.der");
  ASSERT_EQ(ec.status, 0);
  const ASN1T_EcpkParameters* curve =
      As<ASN1T_EcpkParameters>(ec.rec.tbsCertificate.subjectPublicKeyInfo.algorithm.parameters);
  ASSERT_NE(curve, nullptr);
  ASSERT_EQ(curve->t, ASN1T_EcpkParameters::T_namedCurve);
  EXPECT_TRUE(rtCmpOID(curve->u.namedCurve, &prime256v1));

  DECODE(Certificate, ca, "asn1/gost2012-ca.der");
  ASSERT_EQ(ca.status, 0);
  const ASN1T_AlgorithmIdentifier& caKey = ca.rec.tbsCertificate.subjectPublicKeyInfo.algorithm;
  EXPECT_TRUE(rtCmpOID(&caKey.algorithm, &id_tc26_gost3410_12_256));
  // The parameters are NULL or GostR3410-2012-PublicKeyParameters (RFC 9215 4.2).
  const ASN1T__gost2012_256_PubKey_Type* caChoice =
      As<ASN1T__gost2012_256_PubKey_Type>(caKey.parameters);
  ASSERT_NE(caChoice, nullptr);
  ASSERT_EQ(caChoice->t, ASN1T__gost2012_256_PubKey_Type::T_params);
  const ASN1T_GostR3410_2012_PublicKeyParameters* caParams = caChoice->u.params;
  EXPECT_TRUE(rtCmpOID(&caParams->publicKeyParamSet, &id_GostR3410_2001_Korvex_A_ParamSet));
  ASSERT_EQ(caParams->m.digestParamSetPresent, 1u);
  EXPECT_TRUE(rtCmpOID(&caParams->digestParamSet, &id_tc26_gost3411_12_256));

  DECODE(Certificate, legal, "asn1/gost2012-qualified-legal.der");
  ASSERT_EQ(legal.status, 0);
  const ASN1T_TBSCertificate& tbs = legal.rec.tbsCertificate;
  const ASN1T__gost2012_256_PubKey_Type* choice =
      As<ASN1T__gost2012_256_PubKey_Type>(tbs.subjectPublicKeyInfo.algorithm.parameters);
  ASSERT_NE(choice, nullptr);
  ASSERT_EQ(choice->t, ASN1T__gost2012_256_PubKey_Type::T_params);
  const ASN1T_GostR3410_2012_PublicKeyParameters* params = choice->u.params;
  EXPECT_TRUE(rtCmpOID(&params->publicKeyParamSet, &id_tc26_gost_3410_2012_256_paramSetA));
  EXPECT_EQ(params->m.digestParamSetPresent, 0u);

  const struct {
    const ASN1OBJID* type;
    const char* text;
  } kQualified[] = {{&id_inn_attribute, "770000000017"},
                    {&id_snils_attribute, "12345678901"},
                    {&id_ogrn_attribute, "1027700000017"},
                    {&id_innle_attribute, "7700000017"}};
  for (const auto& q : kQualified) {
    SCOPED_TRACE(q.text);
    const Asn1Object* v = NameValue(tbs.subject, *q.type);
    ASSERT_NE(v, nullptr);
    ASSERT_NE(As<const char*>(*v), nullptr);
    EXPECT_STREQ(*As<const char*>(*v), q.text);
  }

  const ASN1T_IssuerSignTool* tool = As<ASN1T_IssuerSignTool>(
      FindExtension(tbs.extensions, id_issuerSignTool_extension)->extnValue);
  ASSERT_NE(tool, nullptr);
  EXPECT_STREQ(tool->signTool, "СКЗИ «Корвекс-CSP» версия 1.0");
  EXPECT_STREQ(tool->cAToolCert, "Сертификат соответствия № СФ/128-0002 от 01.01.2024");
  const ASN1T_SubjectSignTool* subjectTool = As<ASN1T_SubjectSignTool>(
      FindExtension(tbs.extensions, id_subjectSignTool_extension)->extnValue);
  ASSERT_NE(subjectTool, nullptr);
  EXPECT_STREQ(*subjectTool, "СКЗИ «Корвекс-CSP» версия 1.0");
  const ASN1T_IdentificationKind* kind = As<ASN1T_IdentificationKind>(
      FindExtension(tbs.extensions, id_identificationKind_extension)->extnValue);
  ASSERT_NE(kind, nullptr);
  EXPECT_EQ(*kind, 0);
  const ASN1T_PrivateKeyUsagePeriod* period = As<ASN1T_PrivateKeyUsagePeriod>(
      FindExtension(tbs.extensions, id_ce_privateKeyUsagePeriod)->extnValue);
  ASSERT_NE(period, nullptr);
  EXPECT_STREQ(period->notBefore, "20240101000000Z");
  EXPECT_STREQ(period->notAfter, "20250331235959Z");
}

TEST(CatalogueTyped, SignedAttributesAndTimeStampToken) {
  DECODE(ContentInfo, cms, "cms/signed-attached.der");
  ASSERT_EQ(cms.status, 0);
  const ASN1T_SignedData* sd = As<ASN1T_SignedData>(cms.rec.content);
  ASSERT_NE(sd, nullptr);
  // id-data has no object: its octets are the content itself.
  EXPECT_TRUE(rtCmpOID(&sd->encapContentInfo.eContentType, &id_data));
  EXPECT_EQ(sd->encapContentInfo.eContent.decoded, nullptr);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(sd->encapContentInfo.eContent.data),
                        sd->encapContentInfo.eContent.numocts),
            "Korvex CAdES test content.\n");
  ASSERT_EQ(sd->signerInfos.n, 1u);
  const ASN1T_SignerInfo& si = sd->signerInfos.elem[0];
  ASSERT_EQ(si.m.signedAttrsPresent, 1u);
  ASSERT_EQ(si.signedAttrs.n, 5u);
  for (ASN1UINT i = 0; i < si.signedAttrs.n; ++i) {
    SCOPED_TRACE(DottedOid(si.signedAttrs.elem[i].type));
    ASSERT_EQ(si.signedAttrs.elem[i].values.n, 1u);
    EXPECT_NE(si.signedAttrs.elem[i].values.elem[0].decoded, nullptr);
  }
  const ASN1T_ContentType* type =
      As<ASN1T_ContentType>(*FirstValue(si.signedAttrs, id_contentType));
  ASSERT_NE(type, nullptr);
  EXPECT_TRUE(rtCmpOID(type, &id_data));
  const ASN1T_MessageDigest* digest =
      As<ASN1T_MessageDigest>(*FirstValue(si.signedAttrs, id_messageDigest));
  ASSERT_NE(digest, nullptr);
  EXPECT_EQ(digest->numocts, 32u);
  const ASN1T_SigningTime* when =
      As<ASN1T_SigningTime>(*FirstValue(si.signedAttrs, id_signingTime));
  ASSERT_NE(when, nullptr);
  EXPECT_EQ(when->t, ASN1T_Time::T_utcTime);
  const ASN1T_SigningCertificateV2* scv2 =
      As<ASN1T_SigningCertificateV2>(*FirstValue(si.signedAttrs, id_aa_signingCertificateV2));
  ASSERT_NE(scv2, nullptr);
  ASSERT_EQ(scv2->certs.n, 1u);
  const ASN1T_ESSCertIDv2& id = scv2->certs.elem[0];
  EXPECT_EQ(id.m.hashAlgorithmPresent, 0u);  // SHA-256, the DEFAULT
  EXPECT_TRUE(rtCmpOID(&id.hashAlgorithm.algorithm, &id_sha256));
  EXPECT_EQ(id.certHash.numocts, 32u);
  ASSERT_EQ(id.m.issuerSerialPresent, 1u);
  EXPECT_STREQ(id.issuerSerial.serialNumber, "0xc0ffee");

  // The streamed form: indefinite lengths throughout and the content in a
  // constructed OCTET STRING (X.690 8.7.3) come back as the same values.
  DECODE(ContentInfo, streamed, "cms/signed-indefinite.ber");
  ASSERT_EQ(streamed.status, 0);
  const ASN1T_SignedData* ssd = As<ASN1T_SignedData>(streamed.rec.content);
  ASSERT_NE(ssd, nullptr);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(ssd->encapContentInfo.eContent.data),
                        ssd->encapContentInfo.eContent.numocts),
            "Korvex CAdES test content.\n");
  ASSERT_EQ(ssd->signerInfos.n, 1u);
  EXPECT_EQ(ssd->signerInfos.elem[0].signedAttrs.n, 5u);

  DECODE(ContentInfo, token, "tsp/token.der");
  ASSERT_EQ(token.status, 0);
  const ASN1T_SignedData* tsd = As<ASN1T_SignedData>(token.rec.content);
  ASSERT_NE(tsd, nullptr);
  EXPECT_TRUE(rtCmpOID(&tsd->encapContentInfo.eContentType, &id_ct_TSTInfo));
  const ASN1T_TSTInfo* tst = As<ASN1T_TSTInfo>(tsd->encapContentInfo.eContent);
  ASSERT_NE(tst, nullptr);
  EXPECT_EQ(tst->version, 1);
  EXPECT_EQ(DottedOid(tst->policy), "1.3.6.1.4.1.99981.38.2");
  EXPECT_STREQ(tst->serialNumber, "0x1001");
  ASSERT_EQ(tst->m.accuracyPresent, 1u);
  EXPECT_STREQ(tst->accuracy.seconds, "0x1");
  EXPECT_EQ(tst->accuracy.millis, 500);
  EXPECT_EQ(tst->accuracy.micros, 100);
  EXPECT_TRUE(tst->ordering);
  EXPECT_EQ(tst->m.noncePresent, 1u);
  ASSERT_EQ(tst->m.tsaPresent, 1u);
  EXPECT_EQ(tst->tsa.t, ASN1T_GeneralName::T_directoryName);
  const ASN1T_SigningCertificateV2* tsaIds = As<ASN1T_SigningCertificateV2>(
      *FirstValue(tsd->signerInfos.elem[0].signedAttrs, id_aa_signingCertificateV2));
  ASSERT_NE(tsaIds, nullptr);
  ASSERT_EQ(tsaIds->certs.n, 2u);
  EXPECT_EQ(tsaIds->certs.elem[0].m.issuerSerialPresent, 0u);
  ASSERT_EQ(tsaIds->certs.elem[1].m.issuerSerialPresent, 1u);
  EXPECT_STREQ(tsaIds->certs.elem[1].issuerSerial.serialNumber, "0x2");
}

TEST(CatalogueTyped, OcspAndCrlValues) {
  DECODE(OCSPResponse, resp, "ocsp/resp-revoked.der");
  ASSERT_EQ(resp.status, 0);
  EXPECT_TRUE(rtCmpOID(&resp.rec.responseBytes.responseType, &id_pkix_ocsp_basic));
  const ASN1T_BasicOCSPResponse* basic =
      As<ASN1T_BasicOCSPResponse>(resp.rec.responseBytes.response);
  ASSERT_NE(basic, nullptr);
  ASSERT_EQ(basic->tbsResponseData.responses.n, 1u);
  const ASN1T_SingleResponse& single = basic->tbsResponseData.responses.elem[0];
  ASSERT_EQ(single.certStatus.t, ASN1T_CertStatus::T_revoked);
  EXPECT_STREQ(single.certStatus.u.revoked->revocationTime, "20240301120000Z");
  EXPECT_EQ(single.certStatus.u.revoked->revocationReason, 1u);  // keyCompromise
  const ASN1T_InvalidityDate* invalid = As<ASN1T_InvalidityDate>(
      FindExtension(single.singleExtensions, id_ce_invalidityDate)->extnValue);
  ASSERT_NE(invalid, nullptr);
  EXPECT_STREQ(*invalid, "20240215000000Z");

  DECODE(CertificateList, crl, "crl/intermediate-ca.crl");
  ASSERT_EQ(crl.status, 0);
  const ASN1T_TBSCertList& list = crl.rec.tbsCertList;
  const ASN1T_CRLNumber* number =
      As<ASN1T_CRLNumber>(FindExtension(list.crlExtensions, id_ce_cRLNumber)->extnValue);
  ASSERT_NE(number, nullptr);
  EXPECT_STREQ(*number, "0x2");
  EXPECT_NE(FindExtension(list.crlExtensions, id_ce_issuingDistributionPoint)->extnValue.decoded,
            nullptr);
  ASSERT_EQ(list.revokedCertificates.n, 4u);
  const ASN1T_TBSCertList_revokedCertificates_element* e = list.revokedCertificates.elem;
  EXPECT_STREQ(e[0].userCertificate, "0x1004");
  const ASN1T_CRLReason* reason =
      As<ASN1T_CRLReason>(FindExtension(e[0].crlEntryExtensions, id_ce_cRLReasons)->extnValue);
  ASSERT_NE(reason, nullptr);
  EXPECT_EQ(*reason, 1u);
  const ASN1T_HoldInstructionCode* hold = As<ASN1T_HoldInstructionCode>(
      FindExtension(e[2].crlEntryExtensions, id_ce_holdInstructionCode)->extnValue);
  ASSERT_NE(hold, nullptr);
  EXPECT_TRUE(rtCmpOID(hold, &id_holdinstruction_reject));
  EXPECT_EQ(e[3].m.crlEntryExtensionsPresent, 0u);
}

TEST(CatalogueTyped, RequestCmpAndDvcsValues) {
  DECODE(CertificationRequest, req, "req/rsa-with-attributes.der");
  ASSERT_EQ(req.status, 0);
  const ASN1T__SetOfAttribute& attrs = req.rec.certificationRequestInfo.attributes;
  ASSERT_EQ(attrs.n, 3u);
  const Asn1Object* ext = FirstValue(attrs, pkcs_9_at_extensionRequest);
  ASSERT_NE(ext, nullptr);
  const ASN1T_Extensions* requested = As<ASN1T_Extensions>(*ext);
  ASSERT_NE(requested, nullptr);
  ASSERT_EQ(requested->n, 4u);
  const ASN1T_GeneralNames* san =
      As<ASN1T_GeneralNames>(FindExtension(*requested, id_ce_subjectAltName)->extnValue);
  ASSERT_NE(san, nullptr);
  ASSERT_EQ(san->n, 2u);
  EXPECT_STREQ(san->elem[0].u.dNSName, "request.korvex.example");
  const ASN1T__unstructuredName_Type* unstructured =
      As<ASN1T__unstructuredName_Type>(*FirstValue(attrs, pkcs_9_at_unstructuredName));
  ASSERT_NE(unstructured, nullptr);
  ASSERT_EQ(unstructured->t, ASN1T__unstructuredName_Type::T_directoryString);
  EXPECT_STREQ(unstructured->u.directoryString->u.uTF8String, "Korvex request unstructured name");
  EXPECT_NE(FirstValue(attrs, pkcs_9_at_challengePassword)->decoded, nullptr);

  DECODE(PKIMessage, ir, "cmp/ir.der");
  ASSERT_EQ(ir.status, 0);
  ASSERT_EQ(ir.rec.header.m.protectionAlgPresent, 1u);
  EXPECT_TRUE(rtCmpOID(&ir.rec.header.protectionAlg.algorithm, &id_PasswordBasedMac));
  const ASN1T_PBMParameter* pbm = As<ASN1T_PBMParameter>(ir.rec.header.protectionAlg.parameters);
  ASSERT_NE(pbm, nullptr);
  EXPECT_EQ(pbm->salt.numocts, 16u);
  EXPECT_TRUE(rtCmpOID(&pbm->owf.algorithm, &id_sha256));
  EXPECT_STREQ(pbm->iterationCount, "0x1f4");
  EXPECT_EQ(ir.rec.body.t, ASN1T_PKIBody::T_ir);

  // The genp of the fixtures names the information type without a value.
  DECODE(PKIMessage, genp, "cmp/genp.der");
  ASSERT_EQ(genp.status, 0);
  ASSERT_EQ(genp.rec.body.t, ASN1T_PKIBody::T_genp);
  const ASN1T_GenRepContent& infos = *genp.rec.body.u.genp;
  ASSERT_EQ(infos.n, 1u);
  EXPECT_TRUE(rtCmpOID(&infos.elem[0].infoType, &id_it_signKeyPairTypes));
  EXPECT_EQ(infos.elem[0].m.infoValuePresent, 0u);

  DECODE(ContentInfo, dvcs, "asn1/dvcs-response-signed.der");
  ASSERT_EQ(dvcs.status, 0);
  const ASN1T_SignedData* sd = As<ASN1T_SignedData>(dvcs.rec.content);
  ASSERT_NE(sd, nullptr);
  EXPECT_TRUE(rtCmpOID(&sd->encapContentInfo.eContentType, &id_ct_DVCSResponseData));
  const ASN1T_DVCSResponse* answer = As<ASN1T_DVCSResponse>(sd->encapContentInfo.eContent);
  ASSERT_NE(answer, nullptr);
  ASSERT_EQ(answer->t, ASN1T_DVCSResponse::T_dvCertInfo);
  EXPECT_EQ(answer->u.dvCertInfo->messageImprint.digest.numocts, 32u);
}

// A typed value is what gets encoded (X.682 10); a deep copy owns its typed
// values; freeing both gives every heap block back.
TEST(CatalogueTyped, TypedValuesAreEncodedAndCopied) {
  Codec c;
  const Bytes der = Fixture("crl/intermediate-ca.crl");
  const size_t before = c.blocks();
  ASN1T_CertificateList crl;
  ASSERT_EQ(c.decode(&asn1D_CertificateList, der, &crl), 0);
  ASN1T_Extension* reasonExt = const_cast<ASN1T_Extension*>(FindExtension(
      crl.tbsCertList.revokedCertificates.elem[0].crlEntryExtensions, id_ce_cRLReasons));
  ASSERT_NE(reasonExt, nullptr);
  ASN1T_CRLReason* reason = static_cast<ASN1T_CRLReason*>(reasonExt->extnValue.decoded);
  ASSERT_NE(reason, nullptr);

  ASN1T_CertificateList copy;
  ASSERT_EQ(asn1Copy_CertificateList(c.ctxt(), &crl, &copy), 0);
  *reason = 4;  // superseded
  Bytes changed = c.encode(&asn1E_CertificateList, &crl);
  ASSERT_EQ(changed.size(), der.size());
  EXPECT_NE(changed, der);
  EXPECT_EQ(c.encode(&asn1E_CertificateList, &copy), der);

  ASN1T_CertificateList again;
  Codec d;
  ASSERT_EQ(d.decode(&asn1D_CertificateList, changed, &again), 0);
  const ASN1T_CRLReason* read = As<ASN1T_CRLReason>(
      FindExtension(again.tbsCertList.revokedCertificates.elem[0].crlEntryExtensions,
                    id_ce_cRLReasons)
          ->extnValue);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(*read, 4u);
  asn1Free_CertificateList(d.ctxt(), &again);

  // asn1ETC_ stores the encoding of the typed values in the record itself
  // (the bytes it replaces may belong to another context: not freed).
  const ASN1OCTET* old = reasonExt->extnValue.data;
  ASSERT_EQ(asn1ETC_Extension(c.ctxt(), reasonExt), 0);
  EXPECT_EQ(Octets(reasonExt->extnValue.data, reasonExt->extnValue.numocts), "0A 01 04");
  rtMemFreePtr(c.ctxt(), old);

  asn1Free_CertificateList(c.ctxt(), &copy);
  asn1Free_CertificateList(c.ctxt(), &crl);
  EXPECT_EQ(c.blocks(), before);
}

}  // namespace
