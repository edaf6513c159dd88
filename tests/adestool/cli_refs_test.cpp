// cli_refs_test.cpp: `adestool refs` and `adestool values` on the test PKI:
// the DER they write read back with the library's CAdES values, and their
// usage and input errors.
#include <gtest/gtest.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/Hash.h>
#include <korvex/asn1types/IssuerSerial.h>
#include <korvex/asn1types/Names.h>
#include <korvex/cades/CAdESAttributes.h>

#include <iterator>
#include <string>
#include <vector>

#include "digest.h"
#include "tool_runner.h"

using namespace adestool_test;
using Korvex::CBlob;
using namespace Korvex::PKI::CAdES;

namespace {

const char kSha256Oid[] = "2.16.840.1.101.3.4.2.1";

CBlob Blob(const std::string& bytes) {
  return CBlob(reinterpret_cast<const unsigned char*>(bytes.data()),
               static_cast<unsigned long>(bytes.size()));
}

std::string Text(const CBlob& blob) {
  return std::string(reinterpret_cast<const char*>(blob.pbData()), blob.cbData());
}

std::string Hash(const char* name, const std::string& bytes) {
  const std::vector<uint8_t> v = adestool::Digest(*adestool::FindHashByName(name),
                                                  std::vector<uint8_t>(bytes.begin(), bytes.end()));
  return std::string(v.begin(), v.end());
}

// The DER of the subject Name of the root (the issuer of the intermediate
// and of the root itself): the fixture's fixed names.
std::string RootName() {
  return HexBytes(
      "30 45 31 0B 30 09 06 03 55 04 06 13 02 52 55 31 18 30 16 06 03 55 04 0A 0C 0F 4B 6F 72 76 "
      "65 78 20 54 65 73 74 20 50 4B 49 31 1C 30 1A 06 03 55 04 03 0C 13 4B 6F 72 76 65 78 20 54 "
      "65 73 74 20 52 6F 6F 74 20 43 41");
}

TEST(Refs, CertificateReferencesHashEachCertificateAndNameItsIssuerAndSerial) {
  const std::string intermediate = DataPath("pki/intermediate-ca.der");
  const std::string root = DataPath("pki/root-ca.der");
  RunResult r = RunTool({"refs", "--kind", "cert", "--cert", intermediate, "--cert", root});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.err);
  CCompleteCertificateRefs refs;
  refs.decode(Blob(r.out));
  ASSERT_EQ(2u, refs.size());
  struct Expected {
    std::string file;
    std::string serial;
  } expected[] = {{intermediate, "\x02"}, {root, "\x01"}};
  auto id = refs.begin();
  for (const Expected& e : expected) {
    SCOPED_TRACE(e.file);
    ASSERT_EQ(2, id->get_otherCertHash().get_type());
    const Korvex::ASN1::COtherHashAlgAndValue* hash = id->get_otherCertHash().get_otherHash();
    EXPECT_STREQ(kSha256Oid, hash->get_hashAlgorithm().get_algorithm());
    EXPECT_EQ(0u, hash->get_hashAlgorithm().get_parameters().cbData());
    EXPECT_EQ(Hash("sha256", ReadFile(e.file)), Text(hash->get_hashValue()));
    ASSERT_NE(nullptr, id->get_issuerSerial());
    EXPECT_EQ(e.serial, Text(id->get_issuerSerial()->get_serialNumber().get_value()));
    ASSERT_EQ(1u, id->get_issuerSerial()->get_issuer().size());
    const CBlob* name = id->get_issuerSerial()->get_issuer().front().get_directoryName();
    ASSERT_NE(nullptr, name);
    EXPECT_EQ(RootName(), Text(*name));
    ++id;
  }
}

TEST(Refs, Sha1ReferencesUseTheBareSha1Alternative) {
  const std::string root = DataPath("pki/root-ca.der");
  RunResult r = RunTool({"refs", "--kind", "cert", "--cert", root, "--hash", "sha1"});
  ASSERT_EQ(0, r.status) << r.err;
  // SEQUENCE OF { OtherCertID { OCTET STRING (20), IssuerSerial } }
  EXPECT_EQ(HexBytes("30 68 30 66 04 14"), r.out.substr(0, 6));
  EXPECT_EQ(Hash("sha1", ReadFile(root)), r.out.substr(6, 20));
  CCompleteCertificateRefs refs;
  refs.decode(Blob(r.out));
  ASSERT_EQ(1u, refs.size());
  EXPECT_EQ(1, refs.front().get_otherCertHash().get_type());
}

TEST(Refs, RevocationReferencesFollowTheCertificatePath) {
  const std::string intermediateCrl = DataPath("crl/intermediate-ca.crl");
  const std::string rootCrl = DataPath("crl/root-ca.crl");
  const std::string ocsp = DataPath("ocsp/resp-good.der");
  RunResult r =
      RunTool({"refs", "--kind", "revocation", "--cert", DataPath("pki/ee-rsa.der"), "--cert",
               DataPath("pki/intermediate-ca.der"), "--cert", DataPath("pki/root-ca.der"), "--crl",
               rootCrl, "--crl", intermediateCrl, "--ocsp", ocsp});
  ASSERT_EQ(0, r.status) << r.err;
  CCompleteRevocationRefs refs;
  refs.decode(Blob(r.out));
  ASSERT_EQ(3u, refs.size());
  auto ref = refs.begin();

  // ee-rsa: the intermediate's CRL (number 2) and the OCSP response about it.
  ASSERT_NE(nullptr, ref->get_crlids());
  ASSERT_EQ(1u, ref->get_crlids()->size());
  const CCrlValidatedID& crl = ref->get_crlids()->front();
  EXPECT_EQ(Hash("sha256", ReadFile(intermediateCrl)),
            Text(crl.get_crlHash().get_otherHash()->get_hashValue()));
  ASSERT_NE(nullptr, crl.get_crlIdentifier());
  EXPECT_EQ(2, crl.get_crlIdentifier()->get_intCrlNumber());
  EXPECT_TRUE(crl.get_crlIdentifier()->get_crlIssuedTime() == Korvex::CDateTime("20240601000000Z"));
  ASSERT_NE(nullptr, ref->get_ocspids());
  ASSERT_EQ(1u, ref->get_ocspids()->size());
  const COcspResponsesID& response = ref->get_ocspids()->front();
  ASSERT_NE(nullptr, response.get_ocspRepHash());
  // The hash is over the BasicOCSPResponse, the bytes revocation values hold.
  EXPECT_EQ(Hash("sha256", ReadFile(DataPath("ocsp/resp-good.basic.der"))),
            Text(response.get_ocspRepHash()->get_otherHash()->get_hashValue()));
  EXPECT_EQ(1, response.get_ocspIdentifier().get_ocspResponderID().get_type());

  // The intermediate: the root's CRL (number 1), no OCSP.
  ++ref;
  ASSERT_NE(nullptr, ref->get_crlids());
  ASSERT_EQ(1u, ref->get_crlids()->size());
  EXPECT_EQ(1, ref->get_crlids()->front().get_crlIdentifier()->get_intCrlNumber());
  EXPECT_EQ(nullptr, ref->get_ocspids());

  // The self-issued root: nothing.
  ++ref;
  EXPECT_EQ(nullptr, ref->get_crlids());
  EXPECT_EQ(nullptr, ref->get_ocspids());
  EXPECT_EQ(HexBytes("30 00"), r.out.substr(r.out.size() - 2));
}

TEST(Refs, RevocationReferencesWithoutCertificatesAreOneRefInGivenOrder) {
  RunResult r = RunTool({"refs", "--kind", "revocation", "--crl", DataPath("crl/root-ca.crl"),
                         "--crl", DataPath("crl/intermediate-ca.crl"), "--ocsp",
                         DataPath("ocsp/resp-good.basic.der")});
  ASSERT_EQ(0, r.status) << r.err;
  CCompleteRevocationRefs refs;
  refs.decode(Blob(r.out));
  ASSERT_EQ(1u, refs.size());
  ASSERT_NE(nullptr, refs.front().get_crlids());
  ASSERT_EQ(2u, refs.front().get_crlids()->size());
  EXPECT_EQ(1, refs.front().get_crlids()->front().get_crlIdentifier()->get_intCrlNumber());
  EXPECT_EQ(2, refs.front().get_crlids()->back().get_crlIdentifier()->get_intCrlNumber());
  ASSERT_NE(nullptr, refs.front().get_ocspids());
  EXPECT_EQ(1u, refs.front().get_ocspids()->size());

  // The same inputs give the same bytes, and an OCSPResponse references the
  // same BasicOCSPResponse as the bare one.
  RunResult again =
      RunTool({"refs", "--kind", "revocation", "--crl", DataPath("crl/root-ca.crl"), "--crl",
               DataPath("crl/intermediate-ca.crl"), "--ocsp", DataPath("ocsp/resp-good.der")});
  EXPECT_EQ(r.out, again.out);
}

TEST(Values, CertificateValuesHoldTheCertificatesAsTheyStand) {
  const std::string intermediate = ReadFile(DataPath("pki/intermediate-ca.der"));
  const std::string root = ReadFile(DataPath("pki/root-ca.der"));
  const size_t length = intermediate.size() + root.size();
  ASSERT_LT(length, 0x10000u);
  const std::string expected = std::string("\x30\x82", 2) + static_cast<char>(length >> 8) +
                               static_cast<char>(length & 0xFF) + intermediate + root;
  RunResult r = RunTool({"values", "--kind", "cert", "--cert", DataPath("pki/intermediate-ca.der"),
                         "--cert", DataPath("pki/root-ca.der")});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ(expected, r.out);
  // Every PEM block of a file is taken, in order.
  r = RunTool({"values", "--kind", "cert", "--cert", DataPath("pki/ca-chain.pem")});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ(expected, r.out);
}

TEST(Values, RevocationValuesHoldCrlsAndBasicResponses) {
  RunResult r =
      RunTool({"values", "--kind", "revocation", "--crl", DataPath("crl/intermediate-ca.crl.pem"),
               "--ocsp", DataPath("ocsp/resp-revoked.der")});
  ASSERT_EQ(0, r.status) << r.err;
  CRevocationValues values;
  values.decode(Blob(r.out));
  ASSERT_NE(nullptr, values.get_crlVals());
  ASSERT_EQ(1u, values.get_crlVals()->size());
  EXPECT_EQ(ReadFile(DataPath("crl/intermediate-ca.crl")), Text(values.get_crlVals()->front()));
  ASSERT_NE(nullptr, values.get_ocspVals());
  ASSERT_EQ(1u, values.get_ocspVals()->size());
  EXPECT_EQ(ReadFile(DataPath("ocsp/resp-revoked.basic.der")),
            Text(values.get_ocspVals()->front()));

  r = RunTool({"values", "--kind", "revocation", "--ocsp", DataPath("ocsp/resp-good.der")});
  ASSERT_EQ(0, r.status) << r.err;
  values.decode(Blob(r.out));
  EXPECT_EQ(nullptr, values.get_crlVals());
  ASSERT_NE(nullptr, values.get_ocspVals());
}

TEST(RefsAndValues, UsageAndInputErrorsEndWithStatus2AndOneLine) {
  const std::string cert = DataPath("pki/root-ca.der");
  const std::string crl = DataPath("crl/root-ca.crl");
  struct Case {
    std::vector<std::string> args;
    std::string message;
  } cases[] = {
      {{"refs", "--cert", cert},
       "refs: missing --kind cert|revocation (try 'adestool refs --help')"},
      {{"refs", "--kind", "x", "--cert", cert},
       "refs: --kind x: expected cert or revocation (try 'adestool refs --help')"},
      {{"refs", "--kind", "cert"}, "refs: --kind cert needs --cert (try 'adestool refs --help')"},
      {{"refs", "--kind", "cert", "--cert", cert, "--crl", crl},
       "refs: --kind cert takes no --crl or --ocsp (try 'adestool refs --help')"},
      {{"refs", "--kind", "revocation", "--cert", cert},
       "refs: --kind revocation needs --crl or --ocsp (try 'adestool refs --help')"},
      {{"refs", "--kind", "cert", "--cert", cert, "--hash", "md5"},
       "refs: unknown hash 'md5' (one of sha1, sha256, sha384, sha512, gost94, gost2012-256, "
       "gost2012-512)"},
      {{"refs", "--kind", "cert", "--cert", cert, "extra"},
       "refs: unexpected argument 'extra' (try 'adestool refs --help')"},
      {{"refs", "--kind", "revocation", "--cert", DataPath("pki/ee-ec.der"), "--crl", crl},
       crl + ": the CRL covers none of the certificates"},
      {{"refs", "--kind", "revocation", "--cert", DataPath("pki/ee-ec.der"), "--ocsp",
        DataPath("ocsp/resp-good.der")},
       DataPath("ocsp/resp-good.der") + ": the OCSP response covers none of the certificates"},
      {{"refs", "--kind", "cert", "--cert", crl},
       crl + ": offset 111: subject: expected SEQUENCE, found UTCTime"},
      {{"refs", "--kind", "revocation", "--crl", cert},
       cert + ": offset 13: CRL issuer: expected SEQUENCE, found INTEGER"},
      {{"refs", "--kind", "revocation", "--ocsp", DataPath("asn1/ocsp-resp-unauthorized.der")},
       DataPath("asn1/ocsp-resp-unauthorized.der") +
           ": offset 2: OCSP response status is not successful"},
      {{"refs", "--kind", "cert", "--cert", "/nonexistent/c.der"},
       "/nonexistent/c.der: cannot open: No such file or directory"},
      {{"values", "--kind", "revocation", "--cert", cert, "--crl", crl},
       "values: --kind revocation takes no --cert (try 'adestool values --help')"},
      {{"values", "--kind", "cert"},
       "values: --kind cert needs --cert (try 'adestool values --help')"},
      {{"values", "--kind", "cert", "--cert", cert, "--hash", "sha1"},
       "values: unknown option '--hash' (try 'adestool values --help')"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args[0] + " " + c.args[1] + " " + c.args[2]);
    TempDir dir;
    std::vector<std::string> args = c.args;
    args.insert(args.end(), {"-o", dir.path() + "/out.der"});
    RunResult r = RunTool(args);
    EXPECT_EQ(2, r.status);
    EXPECT_EQ("", r.out);
    EXPECT_EQ("adestool: " + c.message + "\n", r.err);
    EXPECT_TRUE(dir.Entries().empty());
  }
}

}  // namespace
