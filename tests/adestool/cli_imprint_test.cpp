// cli_imprint_test.cpp: `adestool imprint`: the digests time-stamp requests
// carry, per signer, and its errors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "digest.h"
#include "tool_runner.h"

using namespace adestool_test;

namespace {

std::string HashHex(const char* name, const std::string& bytes) {
  return adestool::HexLower(adestool::Digest(*adestool::FindHashByName(name),
                                             std::vector<uint8_t>(bytes.begin(), bytes.end())));
}

// The options that name the validation data of the examples.
std::vector<std::string> ExampleValidation() {
  return {"--cert", ExamplePath("intermediate-ca.der"), "--cert", ExamplePath("root-ca.der"),
          "--crl",  ExamplePath("intermediate-ca.crl"), "--crl",  ExamplePath("root-ca.crl"),
          "--ocsp", ExamplePath("ocsp-ee-rsa.der")};
}

TEST(Imprint, SignatureTimeStampImprintIsTheHashOfTheSignatureValue) {
  // The fixture script cut the signature value out with its own DER reader.
  const std::string value = ReadFile(DataPath("cades/signed-attached.signature-value.bin"));
  const std::string sig = DataPath("cms/signed-attached.der");
  struct Case {
    std::vector<std::string> extra;
    const char* hash;
  } cases[] = {{{}, "sha256"},
               {{"--hash", "sha256"}, "sha256"},
               {{"--hash", "sha1"}, "sha1"},
               {{"--hash", "sha384"}, "sha384"},
               {{"--hash", "sha512"}, "sha512"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.hash);
    std::vector<std::string> args = {"imprint", sig, "--for", "t"};
    args.insert(args.end(), c.extra.begin(), c.extra.end());
    RunResult r = RunTool(args);
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("", r.err);
    EXPECT_EQ(HashHex(c.hash, value) + "\n", r.out);
  }
  // PEM and BER (indefinite lengths) read the same way.
  const std::string pem =
      "-----BEGIN CMS-----\n" + Base64(ReadFile(sig), true) + "-----END CMS-----\n";
  RunResult r = RunTool({"imprint", "-", "--for", "t"}, pem);
  EXPECT_EQ(HashHex("sha256", value) + "\n", r.out);
  r = RunTool({"imprint", DataPath("cms/signed-indefinite.ber"), "--for", "t"});
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ(65u, r.out.size());
}

TEST(Imprint, OneLinePerSignerOrTheSignerAsked) {
  const std::string sig = DataPath("cms/signed-two-signers.der");
  RunResult all = RunTool({"imprint", sig, "--for", "t"});
  ASSERT_EQ(0, all.status) << all.err;
  ASSERT_EQ(130u, all.out.size());
  RunResult first = RunTool({"imprint", sig, "--for", "t", "--signer", "1"});
  RunResult second = RunTool({"imprint", sig, "--for", "t", "--signer", "2"});
  EXPECT_EQ(all.out, first.out + second.out);
  EXPECT_NE(first.out, second.out);
}

TEST(Imprint, EscImprintCoversSignatureTimeStampAndReferences) {
  const std::string expected = ReadFile(ExamplePath("esc.imprint.txt"));
  ASSERT_EQ(65u, expected.size());
  // On the T signature the references are built from the validation data...
  std::vector<std::string> args = {"imprint", ExamplePath("t.p7s"), "--for", "esc"};
  const std::vector<std::string> validation = ExampleValidation();
  args.insert(args.end(), validation.begin(), validation.end());
  RunResult r = RunTool(args);
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ(expected, r.out);
  // ...and on the X Long Type 1 signature read from it: the same octets.
  r = RunTool({"imprint", ExamplePath("x-long-1.p7s"), "--for", "esc"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ(expected, r.out);
  // The signature time-stamp imprint did not change with the extensions.
  r = RunTool({"imprint", ExamplePath("x-long-1.p7s"), "--for", "t"});
  EXPECT_EQ(ReadFile(ExamplePath("t.imprint.txt")), r.out);
  // Other validation data gives other references, so another imprint.
  r = RunTool({"imprint", ExamplePath("t.p7s"), "--for", "esc", "--cert",
               ExamplePath("intermediate-ca.der"), "--crl", ExamplePath("intermediate-ca.crl")});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_NE(expected, r.out);
}

TEST(Imprint, ErrorsAndFailedChecks) {
  const std::string bes = ExamplePath("bes.p7s");
  const std::string xl1 = ExamplePath("x-long-1.p7s");
  const std::string cert = DataPath("pki/ee-rsa.der");
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string message;
  } cases[] = {
      {{"imprint", "--for", "t"}, 2, "imprint: missing SIG (try 'adestool imprint --help')"},
      {{"imprint", bes}, 2, "imprint: missing --for t|esc (try 'adestool imprint --help')"},
      {{"imprint", bes, "--for", "x"},
       2,
       "imprint: --for x: expected t or esc (try 'adestool imprint --help')"},
      {{"imprint", bes, "--for", "t", "--cert", cert},
       2,
       "imprint: --for t takes no --cert, --crl, --ocsp or --ref-hash (try 'adestool imprint "
       "--help')"},
      {{"imprint", bes, "--for", "t", "--signer", "2"},
       2,
       "imprint: --signer 2: the signature has 1 signer"},
      {{"imprint", bes, "--for", "t", "--signer", "0"},
       2,
       "imprint: --signer 0: the signature has 1 signer"},
      {{"imprint", bes, "--for", "t", "--hash", "md5"},
       2,
       "imprint: unknown hash 'md5' (one of sha1, sha256, sha384, sha512, gost94, gost2012-256, "
       "gost2012-512)"},
      {{"imprint", cert, "--for", "t"}, 2, cert + ": offset 0: ContentInfo: expected 2 fields"},
      {{"imprint", DataPath("cms/enveloped-rsa.der"), "--for", "t"},
       2,
       DataPath("cms/enveloped-rsa.der") +
           ": offset 4: not a CMS SignedData (content type 1.2.840.113549.1.7.3)"},
      {{"imprint", bes, "--for", "esc"},
       1,
       bes + ": signer 1 has no signature time-stamp (extend it to t first)"},
      {{"imprint", xl1, "--for", "esc", "--cert", cert},
       2,
       "imprint: " + xl1 +
           ": signer 1 already has complete references; give no --cert, --crl, --ocsp or "
           "--ref-hash"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    RunResult r = RunTool(c.args);
    EXPECT_EQ(c.status, r.status);
    EXPECT_EQ("", r.out);
    EXPECT_EQ("adestool: " + c.message + "\n", r.err);
  }
}

}  // namespace
