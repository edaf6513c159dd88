// The AlgorithmIdentifier pattern: a SEQUENCE of an OBJECT IDENTIFIER and an
// OPTIONAL open type constrained by an information object set, with exact DER.
#include <gtest/gtest.h>
#include <korvex/asn1gen/KorvexTestAlgorithms.h>

#include "codec_fixture.h"

namespace {

using namespace korvextest;

using Korvex::Test::Bytes;

const Bytes kSha256Rsa = {0x30, 0x0B, 0x06, 0x09, 0x2A, 0x86, 0x48,
                          0x86, 0xF7, 0x0D, 0x01, 0x01, 0x0B};
const Bytes kSha256RsaNull = {0x30, 0x0D, 0x06, 0x09, 0x2A, 0x86, 0x48, 0x86,
                              0xF7, 0x0D, 0x01, 0x01, 0x0B, 0x05, 0x00};

TEST(WorkedExample, EncodesWithoutParameters) {
  Korvex::Test::Codec c;
  ASN1T_AlgorithmIdentifier alg;
  alg.algorithm = id_sha256WithRSAEncryption;
  EXPECT_EQ(c.encode(&asn1E_AlgorithmIdentifier, &alg), kSha256Rsa);
}

TEST(WorkedExample, DecodesWithoutParameters) {
  Korvex::Test::Codec c;
  ASN1T_AlgorithmIdentifier alg;
  ASSERT_EQ(c.decode(&asn1D_AlgorithmIdentifier, kSha256Rsa, &alg), 0);
  EXPECT_TRUE(rtCmpOID(&alg.algorithm, &id_sha256WithRSAEncryption));
  EXPECT_EQ(alg.m.parametersPresent, 0u);
}

TEST(WorkedExample, NullParametersRoundTrip) {
  Korvex::Test::Codec c;
  ASN1T_AlgorithmIdentifier alg;
  ASSERT_EQ(c.decode(&asn1D_AlgorithmIdentifier, kSha256RsaNull, &alg), 0);
  EXPECT_EQ(alg.m.parametersPresent, 1u);
  ASSERT_EQ(alg.parameters.numocts, 2u);
  EXPECT_EQ(alg.parameters.data[0], 0x05);
  EXPECT_EQ(alg.parameters.data[1], 0x00);
  // The object of the set decoded the NULL into its typed value.
  EXPECT_NE(alg.parameters.decoded, nullptr);
  EXPECT_EQ(c.encode(&asn1E_AlgorithmIdentifier, &alg), kSha256RsaNull);
}

TEST(WorkedExample, StatusesOfBadInput) {
  struct Case {
    const char* name;
    Bytes der;
    int status;
  } cases[] = {
      {"empty sequence", {0x30, 0x00}, ASN_E_SETMISRQ},
      {"third element",
       {0x30, 0x0F, 0x06, 0x09, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x0B, 0x05, 0x00,
        0x05, 0x00},
       ASN_E_NOTINSEQ},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    Korvex::Test::Codec c;
    ASN1T_AlgorithmIdentifier alg;
    EXPECT_EQ(c.decode(&asn1D_AlgorithmIdentifier, k.der, &alg), k.status);
    EXPECT_EQ(c.ctxt()->errInfo.status, k.status);
  }
}

TEST(WorkedExample, GetCopyOfOwnRecordReturnsIt) {
  ASN1T_AlgorithmIdentifier alg;
  alg.algorithm = id_rsaEncryption;
  ASN1C_AlgorithmIdentifier control(alg);
  EXPECT_EQ(control.getCopy(&alg), &alg);
  ASN1T_AlgorithmIdentifier* copy = control.newCopy();
  ASSERT_NE(copy, nullptr);
  EXPECT_TRUE(rtCmpOID(&copy->algorithm, &id_rsaEncryption));
  EXPECT_NE(copy->mpContext, nullptr);
  delete copy;
}

}  // namespace
