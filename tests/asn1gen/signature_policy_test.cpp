// The signature-policy module (global namespace): a complete policy round trip,
// the enumeration ranges checked at encoding, DEFAULT components.
#include <gtest/gtest.h>
#include <korvex/asn1gen/ETS_ElectronicSignaturePolicies_88syntax.h>

#include <string>

#include "codec_fixture.h"

namespace {

using Korvex::Test::Bytes;
using Korvex::Test::Codec;
using Korvex::Test::ExpectDecodeStatus;
using Korvex::Test::ExpectRoundTrip;
using Korvex::Test::FromHex;
using Korvex::Test::ToHex;

#define F(Type) KORVEX_FUNCTIONS(, Type)

// A policy using every structured type of the module: common rules with signer
// and verifier rules, trust conditions, name and policy constraints, algorithm
// constraints, a commitment rule with an empty and a recognised commitment type.
const char kPolicy[] =
    "308201B0300B06096086480165030402013082019906032A0306180F32303234303130313030303030"
    "305A300982076578616D706C650C0378797A3082016F3011180F323032343031303130303030303"
    "05A3081F0A049304730350101FF301606092A864886F70D01090306092A864886F70D010904300"
    "0A0030A0102A1030A0101A20C300A300806032A0304040101300E3000300A300806032A0304040"
    "101A151304F303330313003020101A003020103A107300506032A0305A2133011A00F300D300B8"
    "20474657374A103020105A3073005A0030201003018300F0A0101300A300806032A0304040101A"
    "00530030A0104A2123010A30E300C020100020105020100020101A31530130101000A0102A20B3"
    "009A00730050603550403A4173015A0133011300F06092A864886F70D01010102020800A50C300"
    "A300806032A030404010130673065301805003014060B2A864886F70D0109100601A0050C03616"
    "263A049304730350101FF301606092A864886F70D01090306092A864886F70D0109043000A0030"
    "A0102A1030A0101A20C300A300806032A0304040101300E3000300A300806032A0304040101040"
    "411111111";

TEST(SignaturePolicyModule, CompletePolicyRoundTrip) {
  ExpectRoundTrip(F(SignaturePolicy), kPolicy);
  Codec c;
  ASN1T_SignaturePolicy policy;
  ASSERT_EQ(c.decode(&asn1D_SignaturePolicy, FromHex(kPolicy), &policy), 0);
  const ASN1T_CommonRules& rules = policy.signPolicyInfo.signatureValidationPolicy.commonRules;
  ASSERT_EQ(rules.m.signerAndVeriferRulesPresent, 1u);
  const ASN1T_SignerRules& signer = rules.signerAndVeriferRules.signerRules;
  EXPECT_EQ(signer.mandatedCertificateRef, CertRefReq_fullPath);
  EXPECT_EQ(signer.mandatedCertificateInfo, CertInfoReq_signerOnly);
  EXPECT_EQ(signer.mandatedSignedAttr.n, 2u);
  const ASN1T_CertificateTrustPoint& point =
      rules.signingCertTrustCondition.signerTrustTrees.elem[0];
  EXPECT_EQ(point.pathLenConstraint, 3);
  const ASN1T_GeneralSubtree& subtree = point.nameConstraints.permittedSubtrees.elem[0];
  EXPECT_EQ(subtree.m.minimumPresent, 0u);
  EXPECT_EQ(subtree.minimum, 0);  // DEFAULT 0
  EXPECT_EQ(subtree.maximum, 5);
  EXPECT_EQ(rules.timeStampTrustCondition.cautionPeriod.deltaMinutes, 5);
  const ASN1T_SelectedCommitmentTypes& sel =
      policy.signPolicyInfo.signatureValidationPolicy.commitmentRules.elem[0].selCommitmentTypes;
  ASSERT_EQ(sel.n, 2u);
  EXPECT_EQ(sel.elem[0].t, ASN1T_SelectedCommitmentTypes_element::T_empty);
  EXPECT_EQ(sel.elem[1].t, ASN1T_SelectedCommitmentTypes_element::T_recognizedCommitmentType);
  EXPECT_EQ(policy.signPolicyHash.numocts, 4u);
  asn1Free_SignaturePolicy(c.ctxt(), &policy);
}

TEST(SignaturePolicyModule, EnumerationRangesAtEncoding) {
  using Encoder = int (*)(ASN1CTXT*, ASN1UINT*, ASN1TagType);
  struct Case {
    const char* name;
    Encoder encode;
    ASN1UINT value;
    const char* der;  // null: refused with -6
  } cases[] = {
      {"CertRefReq 0", &asn1E_CertRefReq, 0, nullptr},
      {"CertRefReq 1", &asn1E_CertRefReq, 1, "0A0101"},
      {"CertRefReq 2", &asn1E_CertRefReq, 2, "0A0102"},
      {"CertRefReq 3", &asn1E_CertRefReq, 3, nullptr},
      {"CertInfoReq 0", &asn1E_CertInfoReq, 0, "0A0100"},
      {"CertInfoReq 3", &asn1E_CertInfoReq, 3, nullptr},
      {"EnuRevReq 5", &asn1E_EnuRevReq, 5, "0A0105"},
      {"EnuRevReq 6", &asn1E_EnuRevReq, 6, nullptr},
      {"EnuRevReq all bits", &asn1E_EnuRevReq, 0xFFFFFFFFu, nullptr},
      {"HowCertAttribute 2", &asn1E_HowCertAttribute, 2, "0A0102"},
      {"HowCertAttribute 3", &asn1E_HowCertAttribute, 3, nullptr},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    Codec c;
    ASN1UINT value = k.value;
    Bytes der = c.encode(k.encode, &value);
    if (!k.der) {
      EXPECT_EQ(c.lastStatus(), ASN_E_INVENUM);
      EXPECT_EQ(c.encodeCtxt()->errInfo.status, ASN_E_INVENUM);
      EXPECT_EQ(xe_getLength(c.encodeCtxt()), 0u);  // the buffer stays unchanged
    } else {
      EXPECT_EQ(ToHex(der), ToHex(FromHex(k.der)));
    }
  }
  ExpectDecodeStatus(F(CertRefReq), "0A0100", ASN_E_INVENUM);
}

TEST(SignaturePolicyModule, SignerRulesWithoutOptionalComponents) {
  Codec c;
  ASN1T_SignerRules rules;
  EXPECT_EQ(ToHex(c.encode(&asn1E_SignerRules, &rules)), "30 04 30 00 30 00");
  // DEFAULT values given explicitly are left out under DER.
  rules.m.mandatedCertificateRefPresent = 1;
  rules.mandatedCertificateRef = CertRefReq_signerOnly;
  rules.m.mandatedCertificateInfoPresent = 1;
  rules.mandatedCertificateInfo = CertInfoReq_none;
  EXPECT_EQ(ToHex(c.encode(&asn1E_SignerRules, &rules)), "30 04 30 00 30 00");
  ASN1T_SignerRules back;
  ASSERT_EQ(c.decode(&asn1D_SignerRules, FromHex("300430003000"), &back), 0);
  EXPECT_EQ(back.m.externalSignedDataPresent, 0u);
  EXPECT_EQ(back.mandatedCertificateRef, CertRefReq_signerOnly);
  EXPECT_EQ(back.mandatedCertificateInfo, CertInfoReq_none);
}

TEST(SignaturePolicyModule, DecodeStatuses) {
  ExpectDecodeStatus(F(SignerRules), "3002 3000", ASN_E_SETMISRQ);
  ExpectDecodeStatus(F(DeltaTime), "3009 020100 020100 020100", ASN_E_SETMISRQ);
  ExpectDecodeStatus(F(GeneralSubtrees), "3000", ASN_E_CONSVIO);
  ExpectDecodeStatus(F(PathLenConstraint), "0201FF", ASN_E_CONSVIO);
  ExpectDecodeStatus(F(SigningPeriod), "3011 170F32303234303130313030303030305A", ASN_E_IDNOTFOU);
  ExpectRoundTrip(F(SignPolExtn), "3080 06032A0304 2480 040101 040102 0000 0000",
                  "3009 06032A0304 04020102");
}

}  // namespace
