// cli_extend_test.cpp: `adestool extend` to T and X Long Type 1: the bytes
// it writes, and that it writes nothing when a check or the input fails.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cms_layout.h"
#include "der_walk.h"
#include "tool_runner.h"

using namespace adestool_test;

namespace {

std::vector<std::string> ExampleValidation() {
  return {"--cert", ExamplePath("intermediate-ca.der"), "--cert", ExamplePath("root-ca.der"),
          "--crl",  ExamplePath("intermediate-ca.crl"), "--crl",  ExamplePath("root-ca.crl"),
          "--ocsp", ExamplePath("ocsp-ee-rsa.der")};
}

bool Contains(const std::string& haystack, const std::string& needle) {
  return haystack.find(needle) != std::string::npos;
}

TEST(ExtensionCommands, HelpShowsUsageAndTheCommandsAreListed) {
  struct Case {
    const char* command;
    std::string usage;
  } cases[] = {
      {"refs",
       "refs --kind cert|revocation [--cert FILE]... [--crl FILE]... [--ocsp FILE]... "
       "[--hash ALG]"},
      {"values", "values --kind cert|revocation [--cert FILE]... [--crl FILE]... [--ocsp FILE]..."},
      {"imprint",
       "imprint SIG --for t|esc [--hash ALG] [--signer N] [--cert FILE]... [--crl FILE]... "
       "[--ocsp FILE]... [--ref-hash ALG]"},
      {"extend",
       "extend SIG --to t|x-long-1 --token FILE... [--signer N] [--cert FILE]... [--crl "
       "FILE]... [--ocsp FILE]... [--ref-hash ALG]"},
  };
  RunResult overview = RunTool({"--help"});
  for (const Case& c : cases) {
    SCOPED_TRACE(c.command);
    RunResult r = RunTool({c.command, "--help"});
    EXPECT_EQ(0, r.status);
    EXPECT_EQ("", r.err);
    EXPECT_EQ("Usage: adestool " + c.usage + " [-o FILE]\n", r.out.substr(0, r.out.find('\n') + 1));
    EXPECT_TRUE(Contains(overview.out, std::string("\n  ") + c.command + " "));
  }
}

TEST(Extend, ToTRebuildsTheExampleByteForByte) {
  TempDir dir;
  const std::string out = dir.path() + "/t.p7s";
  RunResult r = RunTool(
      {"extend", ExamplePath("bes.p7s"), "--to", "t", "--token", ExamplePath("t.tsr"), "-o", out});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.out);
  EXPECT_EQ("", r.err);
  EXPECT_EQ(ReadFile(ExamplePath("t.p7s")), ReadFile(out));
  EXPECT_EQ((std::vector<std::string>{"t.p7s"}), dir.Entries());
}

TEST(Extend, ToXLong1RebuildsTheExampleByteForByte) {
  TempDir dir;
  const std::string out = dir.path() + "/x.p7s";
  std::vector<std::string> args = {"extend",  ExamplePath("t.p7s"),   "--to", "x-long-1",
                                   "--token", ExamplePath("esc.tsr"), "-o",   out};
  const std::vector<std::string> validation = ExampleValidation();
  args.insert(args.end(), validation.begin(), validation.end());
  RunResult r = RunTool(args);
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ(ReadFile(ExamplePath("x-long-1.p7s")), ReadFile(out));
}

TEST(Extend, TokenFromAResponseOrBareGivesTheSameSignature) {
  const std::string sig = DataPath("cms/signed-attached.der");
  RunResult fromReply = RunTool(
      {"extend", sig, "--to", "t", "--token", DataPath("cades/signature-timestamp-reply.tsr")});
  ASSERT_EQ(0, fromReply.status) << fromReply.err;
  RunResult fromToken = RunTool(
      {"extend", sig, "--to", "t", "--token", DataPath("cades/signature-timestamp-token.der")});
  ASSERT_EQ(0, fromToken.status) << fromToken.err;
  EXPECT_EQ(fromReply.out, fromToken.out);

  // What is outside the SignerInfo, and the SignerInfo up to its signature,
  // is copied; the token goes in as it stands, in an Attribute of
  // id-aa-signatureTimeStampToken.
  const std::string in = ReadFile(sig);
  const std::string token = ReadFile(DataPath("cades/signature-timestamp-token.der"));
  const std::vector<uint8_t> bytes(in.begin(), in.end());
  adestool::DerWalker walker(bytes, "in");
  const adestool::SignedDataLayout layout = adestool::ReadSignedData(walker);
  const adestool::SignerLayout& signer = layout.signers.at(0);
  ASSERT_FALSE(signer.hasUnsignedAttrs);
  const size_t fieldsStart = layout.signedData.contentOffset();
  const size_t signerStart = signer.signerInfo.contentOffset();
  const std::string& out = fromToken.out;
  // SignedData's fields before signerInfos, and the SignerInfo's fields.
  EXPECT_TRUE(Contains(out, in.substr(fieldsStart, layout.signerInfos.offset - fieldsStart)));
  EXPECT_TRUE(Contains(out, in.substr(signerStart, signer.signerInfo.end - signerStart)));
  const std::string attribute = HexBytes("06 0B 2A 86 48 86 F7 0D 01 09 10 02 0E 31 82") +
                                std::string(1, static_cast<char>(token.size() >> 8)) +
                                std::string(1, static_cast<char>(token.size() & 0xFF)) + token;
  EXPECT_TRUE(Contains(out, attribute));
  EXPECT_EQ(out.size() - attribute.size(), out.find(attribute));
  EXPECT_EQ(out.size(), in.size() + attribute.size() + 4 /* Attribute */ + 4 /* [1] */);
}

TEST(Extend, FailedChecksAndBadInputWriteNothing) {
  TempDir dir;
  const std::string sig = DataPath("cms/signed-attached.der");
  const std::string bes = ExamplePath("bes.p7s");
  const std::string t = ExamplePath("t.p7s");
  const std::string truncated = dir.Write("truncated.der", ReadFile(sig).substr(0, 100));
  const std::string rejected = dir.Write("rejected.tsr", HexBytes("30 05 30 03 02 01 02"));
  const std::string good = DataPath("cades/signature-timestamp-token.der");
  const std::string contentToken = DataPath("tsp/token.der");
  std::vector<std::string> xl1 = {"extend",   t,         "--to",
                                  "x-long-1", "--token", ExamplePath("esc.tsr")};
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string message;
  } cases[] = {
      // A token over something else: the content, another signature.
      {{"extend", sig, "--to", "t", "--token", contentToken},
       1,
       contentToken + ": the token's imprint does not match the signature value of signer 1 of " +
           sig},
      {{"extend", sig, "--to", "t", "--token", ExamplePath("t.tsr")},
       1,
       ExamplePath("t.tsr") +
           ": the token's imprint does not match the signature value of signer 1 of " + sig},
      {{"extend", sig, "--to", "t", "--token", good, "--token", contentToken},
       1,
       contentToken + ": the token is for none of the signers"},
      {{"extend", bes, "--to", "x-long-1", "--token", ExamplePath("esc.tsr")},
       1,
       bes + ": signer 1 has no signature time-stamp (extend it to t first)"},
      {{"extend", ExamplePath("x-long-1.p7s"), "--to", "x-long-1", "--token",
        ExamplePath("esc.tsr")},
       1,
       ExamplePath("x-long-1.p7s") + ": signer 1 already has complete references"},
      // References other than those the CAdES-C token covers.
      {{"extend", t, "--to", "x-long-1", "--token", ExamplePath("esc.tsr"), "--cert",
        ExamplePath("intermediate-ca.der"), "--crl", ExamplePath("intermediate-ca.crl")},
       1,
       ExamplePath("esc.tsr") +
           ": the token's imprint does not match the signature value and references of signer 1 "
           "of " +
           t},
      // Malformed or unsuitable input.
      {{"extend", truncated, "--to", "t", "--token", good},
       2,
       truncated + ": offset 0: ContentInfo truncated: 96 of 3741 content bytes present"},
      {{"extend", sig, "--to", "t", "--token", rejected},
       2,
       rejected + ": offset 4: the time-stamp response was not granted"},
      {{"extend", sig, "--to", "t", "--token", sig},
       2,
       sig + ": offset 41: not a time-stamp token (eContentType is not id-ct-TSTInfo)"},
      {{"extend", bes, "--to", "x-long-1", "--token", ExamplePath("esc.tsr"), "--cert",
        DataPath("cms/content.txt")},
       2,
       DataPath("cms/content.txt") + ": not DER, PEM or base64: invalid base64 character '.' "
                                     "at line 1, column 26"},
      // Usage.
      {{"extend", sig, "--to", "t"},
       2,
       "extend: missing --token FILE (try 'adestool extend --help')"},
      {{"extend", sig, "--token", good},
       2,
       "extend: missing --to t|x-long-1 (try 'adestool extend --help')"},
      {{"extend", sig, "--to", "a", "--token", good},
       2,
       "extend: --to a: expected t or x-long-1 (try 'adestool extend --help')"},
      {{"extend", sig, "--to", "t", "--token", good, "--crl", DataPath("crl/root-ca.crl")},
       2,
       "extend: --to t takes no --cert, --crl, --ocsp or --ref-hash (try 'adestool extend "
       "--help')"},
      {{"extend", "--to", "t", "--token", good},
       2,
       "extend: missing SIG (try 'adestool extend --help')"},
      {{"extend", sig, "--to", "t", "--token", good, "--signer", "2"},
       2,
       "extend: --signer 2: the signature has 1 signer"},
  };
  const std::string out = dir.path() + "/out.p7s";
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    std::vector<std::string> args = c.args;
    args.insert(args.end(), {"-o", out});
    RunResult r = RunTool(args);
    EXPECT_EQ(c.status, r.status);
    EXPECT_EQ("", r.out);
    EXPECT_EQ("adestool: " + c.message + "\n", r.err);
    EXPECT_FALSE(FileExists(out));
  }
  // An existing output stays as it was; the input is never touched.
  dir.Write("out.p7s", std::string("previous"));
  RunResult r = RunTool({"extend", sig, "--to", "t", "--token", contentToken, "-o", out});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("previous", ReadFile(out));
  r = RunTool({"extend", truncated, "--to", "t", "--token", good, "-o", truncated});
  EXPECT_EQ(2, r.status);
  EXPECT_EQ("adestool: " + truncated + ": is the input file; refusing to overwrite it\n", r.err);
  EXPECT_EQ(ReadFile(sig).substr(0, 100), ReadFile(truncated));
}

}  // namespace
