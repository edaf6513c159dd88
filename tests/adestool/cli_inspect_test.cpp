// cli_inspect_test.cpp: `adestool inspect` run as a program on the CMS
// fixtures and on CAdES signatures built from them (cms_builder.h): exact
// text and JSON, the CAdES level, --verify and --trust, exit statuses and
// messages.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>
#include <vector>

#include "cms_builder.h"
#include "tool_runner.h"

using namespace adestool_test;

namespace {

std::vector<std::string> Lines(const std::string &text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// ExpectLines compares line by line; an expected line ending in '*' matches
// any line that starts with the text before it (values that change with
// every run of make-fixtures.sh: signing times, hashes over keys).
void ExpectLines(const std::string &expected, const std::string &actual) {
  std::vector<std::string> want = Lines(expected);
  std::vector<std::string> got = Lines(actual);
  for (size_t i = 0; i < want.size() && i < got.size(); ++i) {
    SCOPED_TRACE("line " + std::to_string(i + 1));
    const std::string &w = want[i];
    if (!w.empty() && w.back() == '*') {
      EXPECT_EQ(w.substr(0, w.size() - 1), got[i].substr(0, w.size() - 1));
    } else {
      EXPECT_EQ(w, got[i]);
    }
  }
  EXPECT_EQ(want.size(), got.size()) << actual;
}

// ExpectContains: every one of parts occurs in text, in this order.
void ExpectContains(const std::string &text, const std::vector<std::string> &parts) {
  size_t at = 0;
  for (const std::string &part : parts) {
    size_t found = text.find(part, at);
    EXPECT_NE(std::string::npos, found) << "missing after offset " << at << ": " << part;
    if (found != std::string::npos) at = found + part.size();
  }
}

const char kIntermediate[] =
    "CN=Korvex Test Intermediate CA,OU=Certification "
    "Authorities,O=Korvex Test PKI,C=RU";

TEST(InspectText, AttachedSignature) {
  std::string path = DataPath("cms/signed-attached.der");
  RunResult r = RunTool({"inspect", path});
  EXPECT_EQ(0, r.status);
  EXPECT_EQ("", r.err);
  ExpectLines("file: " + path +
                  "\n"
                  "SignedData version: 1\n"
                  "content type: id-data (1.2.840.113549.1.7.1)\n"
                  "content: attached, 27 bytes\n"
                  "certificates: 2\n"
                  "CRLs: 0\n"
                  "signers:\n"
                  "  signer 1:\n"
                  "    version: 1\n"
                  "    identifier:\n"
                  "      type: issuer and serial number\n"
                  "      issuer: " +
                  kIntermediate +
                  "\n"
                  "      serial: C0FFEE\n"
                  "    digest algorithm: sha256 (2.16.840.1.101.3.4.2.1)\n"
                  "    signature algorithm: RSA (1.2.840.113549.1.1.1)\n"
                  "    signature size: 256\n"
                  "    signed attributes:\n"
                  "      Content Type (1.2.840.113549.1.9.3): id-data "
                  "(1.2.840.113549.1.7.1)\n"
                  "      Signing Time (1.2.840.113549.1.9.5): 20*\n"
                  "      Message Digest (1.2.840.113549.1.9.4): "
                  "F673905FCEB6AEF291BF2D8F19A884E73B4962F768F924FC5908E3EC72227065\n"
                  "      smimeCapabilities (1.2.840.113549.1.9.15): 108 bytes\n"
                  "      Signing Certificate V2 (1.2.840.113549.1.9.16.2.47):\n"
                  "        certs:\n"
                  "          cert 1:\n"
                  "            hash algorithm: sha256 (2.16.840.1.101.3.4.2.1)\n"
                  "            hash: *\n"
                  "            issuer: " +
                  kIntermediate +
                  "\n"
                  "            serial: C0FFEE\n"
                  "        policies: none\n"
                  "    unsigned attributes: none\n"
                  "    CAdES level:\n"
                  "      format: BES\n"
                  "      next: T\n"
                  "      missing for next:\n"
                  "        attribute: Signature Time Stamp "
                  "(1.2.840.113549.1.9.16.2.14)\n",
              r.out);
}

TEST(InspectText, DetachedContentAndSecondSigner) {
  RunResult detached = RunTool({"inspect", DataPath("cms/signed-detached.der")});
  EXPECT_EQ(0, detached.status);
  ExpectContains(detached.out, {"content: detached\n", "certificates: 2\n"});
  RunResult withData = RunTool(
      {"inspect", DataPath("cms/signed-detached.der"), "--data", DataPath("cms/content.txt")});
  EXPECT_EQ(0, withData.status);
  ExpectContains(withData.out, {"content: detached, 27 bytes\n"});

  RunResult two = RunTool({"inspect", DataPath("cms/signed-two-signers.der")});
  EXPECT_EQ(0, two.status);
  // SignerInfos is a SET OF: the order of the two signers is the encoder's.
  ExpectContains(two.out, {"  signer 1:\n", "  signer 2:\n"});
  ExpectContains(
      two.out, {"      serial: C0FFEE\n", "    signature algorithm: RSA (1.2.840.113549.1.1.1)\n"});
  ExpectContains(two.out, {"      serial: 1002\n",
                           "    signature algorithm: sha256ECDSA (1.2.840.10045.4.3.2)\n"});
}

TEST(InspectText, SigningCertificateV1AndBer) {
  RunResult sha1 = RunTool({"inspect", DataPath("cms/signed-sha1-cades.der")});
  EXPECT_EQ(0, sha1.status);
  ExpectContains(sha1.out, {"    digest algorithm: sha1 (1.3.14.3.2.26)\n",
                            "      Signing Certificate (1.2.840.113549.1.9.16.2.12):\n",
                            "            hash algorithm: sha1 (1.3.14.3.2.26)\n",
                            std::string("            issuer: ") + kIntermediate + "\n"});
  // The streamed form decodes to the same report as the DER one.
  RunResult ber = RunTool({"inspect", DataPath("cms/signed-indefinite.ber")});
  EXPECT_EQ(0, ber.status);
  ExpectContains(ber.out, {"content: attached, 27 bytes\n", "Message Digest"});
}

struct LevelCase {
  const char *what;
  std::string der;
  const char *level;  // the text lines of the CAdES level block
};

TEST(InspectLevel, FormatsAndWhatTheNextLacks) {
  const LevelCase kCases[] = {
      {"BES", ReadFile(DataPath("cms/signed-attached.der")),
       "    CAdES level:\n      format: BES\n      next: T\n      missing for "
       "next:\n"
       "        attribute: Signature Time Stamp "
       "(1.2.840.113549.1.9.16.2.14)\n"},
      {"T", CadesT(),
       "    CAdES level:\n      format: T\n      next: X Long Type 1\n      "
       "missing for next:\n"
       "        attribute: CAdES-C Time Stamp (1.2.840.113549.1.9.16.2.25)\n"
       "        attribute: Certificate Values (1.2.840.113549.1.9.16.2.23)\n"
       "        attribute: Revocation Values (1.2.840.113549.1.9.16.2.24)\n"},
      // The examples' X Long Type 1: its CAdES-C time-stamp covers it, so
      // --verify passes (the token of CadesXLongType1() covers another
      // signature value).
      {"X Long Type 1", ReadFile(ExamplePath("x-long-1.p7s")),
       "    CAdES level:\n      format: X Long Type 1\n      next: A\n      "
       "missing for next:\n"
       "        attribute: id-aa-ets-archiveTimestampV3 (0.4.0.1733.2.4)\n"},
      {"A",
       AddUnsignedAttributes(
           ReadFile(ExamplePath("x-long-1.p7s")), 0,
           {AttributeDer("0.4.0.1733.2.4",
                         ReadFile(DataPath("cades/signature-timestamp-token.der")))}),
       "    CAdES level:\n      format: A\n      next: none\n      missing for "
       "next: none\n"},
      {"an archive time-stamp without the lower formats' attributes is BES",
       AddUnsignedAttributes(
           ReadFile(DataPath("cms/signed-attached.der")), 0,
           {AttributeDer("0.4.0.1733.2.4",
                         ReadFile(DataPath("cades/signature-timestamp-token.der")))}),
       "    CAdES level:\n      format: BES\n      next: T\n"},
  };
  TempDir dir;
  for (const LevelCase &c : kCases) {
    SCOPED_TRACE(c.what);
    RunResult r = RunTool({"inspect", "--verify", dir.Write("sig.p7s", c.der)});
    EXPECT_EQ(0, r.status) << r.err;
    ExpectContains(r.out, {c.level, "      signature: passed: "});
  }
}

TEST(InspectAttributes, TimeStampsReferencesAndValues) {
  TempDir dir;
  RunResult r = RunTool({"inspect", dir.Write("a.p7s", CadesA())});
  EXPECT_EQ(0, r.status);
  ExpectContains(
      r.out,
      {"      Signature Time Stamp (1.2.840.113549.1.9.16.2.14):\n", "        serial: 1002\n",
       "        TSA: CN=Korvex Test TSA,OU=Validation Services,O=Korvex Test "
       "PKI,C=RU\n",
       "        policy: 1.3.6.1.4.1.99981.38.2\n",
       "        imprint algorithm: sha256 (2.16.840.1.101.3.4.2.1)\n",
       "        imprint matches the signature value: yes\n",
       "      Complete Certificate References (1.2.840.113549.1.9.16.2.21):\n"
       "        certs:\n"
       "          cert 1:\n"
       "            hash algorithm: sha1 (1.3.14.3.2.26)\n"
       "            hash: 1111111111111111111111111111111111111111\n"
       "            issuer: none\n"
       "            serial: none\n",
       "      Complete Revocation References (1.2.840.113549.1.9.16.2.22):\n"
       "        refs:\n"
       "          certificate 1:\n"
       "            CRL ids:\n"
       "              CRL 1:\n"
       "                hash algorithm: sha256 (2.16.840.1.101.3.4.2.1)\n"
       "                hash: "
       "0101010101010101010101010101010101010101010101010101010101010101\n"
       "                issuer: " +
           std::string(kIntermediate) +
           "\n"
           "                issued: 2024-07-01 00:00:00 UTC\n"
           "                number: 01\n"
           "            OCSP ids:\n"
           "              OCSP 1:\n"
           "                responder: key hash "
           "3333333333333333333333333333333333333333\n"
           "                produced at: 2024-07-02 12:00:00 UTC\n"
           "                hash algorithm: none\n"
           "                hash: none\n",
       "      CAdES-C Time Stamp (1.2.840.113549.1.9.16.2.25):\n",
       "        imprint matches the CAdES-C data: no\n",
       "      Certificate Values (1.2.840.113549.1.9.16.2.23):\n        "
       "certs:\n          cert 1:\n"
       "            subject: E=signer@korvex.example,CN=Korvex Test RSA "
       "Signer,OU=Signers,"
       "O=Korvex Test PKI,C=RU\n",
       "          cert 3:\n            subject: CN=Korvex Test Root "
       "CA,O=Korvex Test PKI,C=RU\n",
       "      Revocation Values (1.2.840.113549.1.9.16.2.24):\n        CRLs:\n "
       "         CRL 1:\n"
       "            issuer: " +
           std::string(kIntermediate) +
           "\n"
           "            this update: 2024-06-01 00:00:00 UTC\n"
           "            next update: 2049-12-31 23:59:59 UTC\n"
           "            entries: 4\n",
       "        OCSP responses: none\n", "      id-aa-ets-archiveTimestampV3 (0.4.0.1733.2.4):\n"});
}

TEST(InspectAttributes, ContentTimeStampImprintIsComparedWithTheContent) {
  // The token's imprint is the hash of the signature value, so as a content
  // time-stamp it does not match the content.
  TempDir dir;
  std::string sig = AddUnsignedAttributes(
      ReadFile(DataPath("cms/signed-attached.der")), 0,
      {AttributeDer("1.2.840.113549.1.9.16.2.20",
                    ReadFile(DataPath("cades/signature-timestamp-token.der"))),
       AttributeDer("1.2.3.4.5", Tlv(0x04, "abc"))});
  RunResult r = RunTool({"inspect", dir.Write("c.p7s", sig)});
  EXPECT_EQ(0, r.status);
  ExpectContains(r.out, {"    unsigned attributes:\n", "        imprint matches the content: no\n",
                         "      1.2.3.4.5: 5 bytes\n"});
}

// Block: the lines of text from the one starting with first up to, not
// including, the next line indented as little as it or less.
std::string Block(const std::string &text, const std::string &first) {
  size_t start = text.find(first);
  if (start == std::string::npos) return std::string();
  const size_t indent = first.find_first_not_of(' ');
  size_t end = text.find('\n', start) + 1;
  while (end < text.size() && text.find_first_not_of(' ', end) - end > indent) {
    end = text.find('\n', end) + 1;
  }
  return text.substr(start, end - start);
}

std::string Upper(std::string text) {
  for (char &c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

// The imprint `imprint --for esc` gave for the example (its first line).
std::string ExampleEscImprint() {
  std::string hex = ReadFile(ExamplePath("esc.imprint.txt"));
  return Upper(hex.substr(0, hex.find('\n')));
}

TEST(InspectCadesC, ImprintIsComparedWithTheDataImprintForEscHashes) {
  const std::string xl = ExamplePath("x-long-1.p7s");
  RunResult r = RunTool({"inspect", "--verify", xl});
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.err);
  ExpectLines(
      "      CAdES-C Time Stamp (1.2.840.113549.1.9.16.2.25):\n"
      "        time: *\n"
      "        serial: 3002\n"
      "        TSA: CN=Korvex Test TSA,OU=Validation Services,O=Korvex Test PKI,C=RU\n"
      "        policy: 1.3.6.1.4.1.99981.38.2\n"
      "        imprint algorithm: sha256 (2.16.840.1.101.3.4.2.1)\n"
      "        imprint: " +
          ExampleEscImprint() +
          "\n"
          "        imprint matches the CAdES-C data: yes\n",
      Block(r.out, "      CAdES-C Time Stamp (1.2.840.113549.1.9.16.2.25):\n"));
  ExpectContains(r.out, {"        imprint matches the signature value: yes\n",
                         "        imprint matches the CAdES-C data: yes\n",
                         "      message digest: passed: ", "      signature: passed: "});

  RunResult json = RunTool({"inspect", "--json", xl});
  EXPECT_EQ(0, json.status);
  ExpectContains(json.out, {"              \"imprint_compared_with\": \"signature value\",\n"
                            "              \"imprint_matches\": true\n",
                            "              \"imprint\": \"" + ExampleEscImprint() +
                                "\",\n"
                                "              \"imprint_compared_with\": \"CAdES-C data\",\n"
                                "              \"imprint_matches\": true\n"});
}

TEST(InspectCadesC, MismatchedImprintsFailVerify) {
  TempDir dir;
  // One byte of the revocation references changed (the issue time of the
  // first CRL identifier: 2024-06-01 00:00:00 becomes 10:00:00): the
  // signature still verifies, the CAdES-C data is no longer what the token
  // covers.
  const std::string refsChanged =
      dir.Write("refs.p7s", FlipByteOf(ReadFile(ExamplePath("x-long-1.p7s")), "240601000000Z"));
  // The fixture's token covers cms/signed-attached.der, not the example BES.
  const std::string otherToken = dir.Write(
      "other.p7s", AddUnsignedAttributes(
                       ReadFile(ExamplePath("bes.p7s")), 0,
                       {AttributeDer("1.2.840.113549.1.9.16.2.14",
                                     ReadFile(DataPath("cades/signature-timestamp-token.der")))}));
  struct Case {
    const char *what;
    std::string sig;
    const char *line;   // the imprint line
    const char *error;  // standard error after "adestool: FILE: "
  };
  const Case kCases[] = {
      {"references changed", refsChanged, "        imprint matches the CAdES-C data: no\n",
       "signer 1: CAdES-C time-stamp: the token's imprint does not match the CAdES-C data\n"},
      {"signature time-stamp of another signature", otherToken,
       "        imprint matches the signature value: no\n",
       "signer 1: signature time-stamp: the token's imprint does not match the signature "
       "value\n"},
  };
  for (const Case &c : kCases) {
    SCOPED_TRACE(c.what);
    RunResult plain = RunTool({"inspect", c.sig});
    EXPECT_EQ(0, plain.status) << plain.err;
    EXPECT_EQ("", plain.err);
    ExpectContains(plain.out, {c.line});

    RunResult r = RunTool({"inspect", "--verify", c.sig});
    EXPECT_EQ(1, r.status);
    EXPECT_EQ("adestool: " + c.sig + ": " + c.error, r.err);
    ExpectContains(r.out, {c.line,
                           "    verification:\n"
                           "      message digest: passed: the sha256 digest of the content "
                           "matches\n"
                           "      signature: passed: the signature verifies with the signer's "
                           "public key\n"});

    RunResult json = RunTool({"inspect", "--json", "--verify", c.sig});
    EXPECT_EQ(1, json.status);
    ExpectContains(json.out, {"              \"imprint_matches\": false\n"});
  }
  RunResult refs = RunTool({"inspect", refsChanged});
  ExpectContains(refs.out, {"                issued: 2024-06-01 10:00:00 UTC\n"});
}

TEST(InspectCadesC, WithoutReferencesTheDataIsNotFormed) {
  // A CAdES-C time-stamp on a signer without the complete references: what
  // it should cover cannot be formed, so it is not checked and --verify
  // passes on the other checks.
  TempDir dir;
  const std::string token = ReadFile(DataPath("cades/signature-timestamp-token.der"));
  const std::string sig = dir.Write(
      "c.p7s", AddUnsignedAttributes(ReadFile(DataPath("cms/signed-attached.der")), 0,
                                     {AttributeDer("1.2.840.113549.1.9.16.2.14", token),
                                      AttributeDer("1.2.840.113549.1.9.16.2.25", token)}));
  RunResult r = RunTool({"inspect", "--verify", sig});
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.err);
  ExpectContains(r.out, {"        imprint matches the signature value: yes\n",
                         "      CAdES-C Time Stamp (1.2.840.113549.1.9.16.2.25):\n",
                         "        imprint matches: not checked\n"});
  RunResult json = RunTool({"inspect", "--json", sig});
  ExpectContains(json.out, {"              \"imprint_compared_with\": \"signature value\",\n",
                            "              \"imprint_compared_with\": null,\n"
                            "              \"imprint_matches\": null\n"});
}

TEST(InspectJson, SchemaOfATimeStampedSignature) {
  TempDir dir;
  RunResult r = RunTool({"inspect", "--json", dir.Write("t.p7s", CadesT())});
  EXPECT_EQ(0, r.status);
  ExpectContains(
      r.out, {"{\n  \"schema_version\": 1,\n  \"file\": ",
              "  \"version\": 1,\n"
              "  \"content_type\": {\n"
              "    \"oid\": \"1.2.840.113549.1.7.1\",\n"
              "    \"name\": \"id-data\"\n"
              "  },\n"
              "  \"content\": {\n"
              "    \"attached\": true,\n"
              "    \"size\": 27\n"
              "  },\n"
              "  \"certificates\": 2,\n"
              "  \"crls\": 0,\n"
              "  \"signers\": [\n"
              "    {\n"
              "      \"index\": 1,\n"
              "      \"version\": 1,\n"
              "      \"identifier\": {\n"
              "        \"type\": \"issuer and serial number\",\n",
              "        \"serial\": \"C0FFEE\",\n        \"key_id\": null\n      },\n",
              "      \"signature_size\": 256,\n      \"signed_attributes\": [\n",
              "          \"oid\": \"1.2.840.113549.1.9.4\",\n"
              "          \"name\": \"Message Digest\",\n"
              "          \"size\": 34,\n"
              "          \"values\": [\n"
              "            {\n"
              "              \"digest\": "
              "\"F673905FCEB6AEF291BF2D8F19A884E73B4962F768F924FC5908E3EC72227065\"\n",
              "      \"unsigned_attributes\": [\n        {\n"
              "          \"oid\": \"1.2.840.113549.1.9.16.2.14\",\n"
              "          \"name\": \"Signature Time Stamp\",\n",
              "              \"serial\": \"1002\",\n", "              \"imprint_matches\": true\n",
              "      \"level\": {\n"
              "        \"format\": \"T\",\n"
              "        \"next\": \"X Long Type 1\",\n"
              "        \"missing\": [\n"
              "          {\n"
              "            \"oid\": \"1.2.840.113549.1.9.16.2.25\",\n"
              "            \"name\": \"CAdES-C Time Stamp\"\n"
              "          },\n",
              "      \"verification\": null\n    }\n  ]\n}\n"});
}

TEST(InspectJson, VerificationObject) {
  RunResult r = RunTool({"inspect", "--json", "--verify", DataPath("cms/signed-attached.der")});
  EXPECT_EQ(0, r.status);
  ExpectContains(r.out, {"      \"verification\": {\n"
                         "        \"message_digest\": {\n"
                         "          \"passed\": true,\n"
                         "          \"detail\": \"the sha256 digest of the content matches\"\n"
                         "        },\n"
                         "        \"signature\": {\n"
                         "          \"passed\": true,\n"
                         "          \"detail\": \"the signature verifies with the signer's "
                         "public "
                         "key\"\n"
                         "        },\n"
                         "        \"chain\": null\n"
                         "      }\n"});
}

TEST(InspectVerify, PassingSignatures) {
  const std::vector<std::vector<std::string>> kRuns = {
      {"inspect", "--verify", DataPath("cms/signed-attached.der")},
      {"inspect", "--verify", DataPath("cms/signed-indefinite.ber")},
      {"inspect", "--verify", DataPath("cms/signed-two-signers.der")},  // RSA and ECDSA
      {"inspect", "--verify", DataPath("cms/signed-detached.der"), "--data",
       DataPath("cms/content.txt")},
  };
  for (const std::vector<std::string> &args : kRuns) {
    SCOPED_TRACE(args[2]);
    RunResult r = RunTool(args);
    EXPECT_EQ(0, r.status);
    EXPECT_EQ("", r.err);
    ExpectContains(r.out, {"    verification:\n"
                           "      message digest: passed: the sha256 digest of "
                           "the content matches\n"
                           "      signature: passed: the signature verifies "
                           "with the signer's public key\n"});
  }
  RunResult sha1 = RunTool({"inspect", "--verify", DataPath("cms/signed-sha1-cades.der")});
  EXPECT_EQ(0, sha1.status);
  ExpectContains(sha1.out, {"      message digest: passed: the sha1 digest of the content matches\n"
                            "      signature: passed: "});
}

TEST(InspectVerify, FailedChecksGiveStatus1) {
  TempDir dir;
  const std::string content = "Korvex CAdES test content.";
  std::string tampered = FlipByteOf(ReadFile(DataPath("cms/signed-attached.der")), content);
  std::string badSignature =
      FlipByteOf(ReadFile(DataPath("cms/signed-attached.der")),
                 ReadFile(DataPath("cades/signed-attached.signature-value.bin")).substr(100, 16));
  std::string otherContent = dir.Write("other.txt", "Korvex CAdES test content!\n");

  struct Case {
    const char *what;
    std::vector<std::string> args;
    const char *report;  // the verification lines
    const char *errors;  // standard error after "adestool: FILE: "
  };
  const std::string t = dir.Write("tampered.p7s", tampered);
  const std::string s = dir.Write("badsig.p7s", badSignature);
  const std::string d = DataPath("cms/signed-detached.der");
  const Case kCases[] = {
      {"content changed",
       {"inspect", "--verify", t},
       "      message digest: FAILED: the sha256 digest of the content is *\n"
       "      signature: passed: the signature verifies with the signer's "
       "public key\n",
       "signer 1: message digest: the sha256 digest of the content is "},
      {"signature value changed",
       {"inspect", "--verify", s},
       "      message digest: passed: the sha256 digest of the content "
       "matches\n"
       "      signature: FAILED: the signature does not verify with the "
       "signer's public key\n",
       "signer 1: signature: the signature does not verify with the signer's "
       "public key"},
      {"other detached content",
       {"inspect", "--verify", d, "--data", otherContent},
       "      message digest: FAILED: the sha256 digest of the content is *\n"
       "      signature: passed: the signature verifies with the signer's "
       "public key\n",
       "signer 1: message digest: the sha256 digest of the content is "},
  };
  for (const Case &c : kCases) {
    SCOPED_TRACE(c.what);
    RunResult r = RunTool(c.args);
    EXPECT_EQ(1, r.status);
    std::string tail = r.out.substr(r.out.find("    verification:\n") + 18);
    ExpectLines(c.report, tail);
    EXPECT_EQ(0u, r.err.find("adestool: " + c.args[2] + ": " + c.errors)) << r.err;
    EXPECT_EQ(1, std::count(r.err.begin(), r.err.end(), '\n'));
  }
}

TEST(InspectTrust, ChainAgainstGivenAnchors) {
  TempDir dir;
  // The X Long Type 1 signature carries the CRLs of the intermediate and the
  // root in its revocation values, so revocation can be checked offline.
  const std::string xl = ExamplePath("x-long-1.p7s");
  const std::string withCrls =
      dir.Write("crls.p7s", AddCrls(ReadFile(DataPath("cms/signed-attached.der")),
                                    {ReadFile(DataPath("crl/intermediate-ca.crl")),
                                     ReadFile(DataPath("crl/root-ca.crl"))}));
  const std::string plain = DataPath("cms/signed-attached.der");
  struct Case {
    const char *what;
    std::string sig;
    std::string trust;
    int status;
    const char *chain;  // the chain line
  };
  const Case kCases[] = {
      {"trusted root, CRLs in the revocation values", xl, DataPath("pki/root-ca.der"), 0,
       "      chain: passed: the chain is valid for signing now\n"},
      {"trusted root, CRLs in the SignedData", withCrls, DataPath("pki/root-ca.pem"), 0,
       "      chain: passed: the chain is valid for signing now\n"},
      {"a directory of anchors", withCrls, DataPath("pki"), 0,
       "      chain: passed: the chain is valid for signing now\n"},
      {"untrusted anchor", xl, DataPath("pki/untrusted-root-ca.der"), 1,
       "      chain: FAILED: CERT_E_CHAINING (0x800B010A): no chain to a trust "
       "anchor could be "
       "built\n"},
      {"no CRLs to check revocation", plain, DataPath("pki/root-ca.der"), 1,
       "      chain: FAILED: CRYPT_E_REVOCATION_OFFLINE (0x80092013): no "
       "current CRL of an issuer "
       "is available to check revocation\n"},
  };
  for (const Case &c : kCases) {
    SCOPED_TRACE(c.what);
    RunResult r = RunTool({"inspect", c.sig, "--verify", "--trust", c.trust});
    EXPECT_EQ(c.status, r.status) << r.err;
    ExpectContains(r.out, {"      signature: passed: ", c.chain});
    if (c.status == 1) {
      std::string chain = std::string(c.chain).substr(std::string("      chain: FAILED: ").size());
      EXPECT_EQ("adestool: " + c.sig + ": signer 1: chain: " + chain, r.err);
    }
  }
  // The CRLs a signature lacks come from --crl (PEM or DER; repeatable).
  RunResult withCrlFiles =
      RunTool({"inspect", plain, "--verify", "--trust", DataPath("pki/root-ca.der"), "--crl",
               DataPath("crl/intermediate-ca.crl"), "--crl", DataPath("crl/root-ca.crl")});
  EXPECT_EQ(0, withCrlFiles.status) << withCrlFiles.err;
  ExpectContains(withCrlFiles.out, {"      chain: passed: the chain is valid for signing now\n"});
  // No temporary trust files are left behind.
  EXPECT_EQ(std::vector<std::string>({"crls.p7s"}), dir.Entries());
}

TEST(InspectErrors, UsageAndInputErrorsGiveStatus2) {
  TempDir dir;
  const std::string attached = DataPath("cms/signed-attached.der");
  const std::string detached = DataPath("cms/signed-detached.der");
  const std::string truncated = dir.Write("cut.p7s", ReadFile(attached).substr(0, 100));
  const std::string cert = DataPath("pki/ee-rsa.der");
  const std::string enveloped = DataPath("cms/enveloped-rsa.der");
  struct Case {
    const char *what;
    std::vector<std::string> args;
    std::string error;
  };
  const Case kCases[] = {
      {"no file", {"inspect"}, "adestool: inspect: missing SIG (try 'adestool inspect --help')"},
      {"enveloped data",
       {"inspect", enveloped},
       "adestool: " + enveloped +
           ": not a CMS SignedData (content type 1.2.840.113549.1.7.3, "
           "id-envelopedData)"},
      {"a certificate",
       {"inspect", cert},
       "adestool: " + cert + ": not a CMS ContentInfo (unexpected tag, decoder status -3)"},
      {"cut short",
       {"inspect", truncated},
       "adestool: " + truncated + ": not a CMS ContentInfo: offset 0: SEQUENCE truncated: 96 of *"},
      {"detached without --data",
       {"inspect", "--verify", detached},
       "adestool: " + detached + ": detached signature: give its content with --data FILE"},
      {"--data with attached content",
       {"inspect", attached, "--data", attached},
       "adestool: " + attached + ": carries its content; --data is for detached signatures"},
      {"--crl without --trust",
       {"inspect", attached, "--verify", "--crl", DataPath("crl/root-ca.crl")},
       "adestool: inspect: --crl needs --trust (try 'adestool inspect --help')"},
      {"--trust without --verify",
       {"inspect", attached, "--trust", cert},
       "adestool: inspect: --trust needs --verify (try 'adestool inspect "
       "--help')"},
      {"missing --data file",
       {"inspect", detached, "--data", dir.path() + "/none"},
       "adestool: " + dir.path() + "/none: cannot open: No such file or directory"},
  };
  for (const Case &c : kCases) {
    SCOPED_TRACE(c.what);
    RunResult r = RunTool(c.args);
    EXPECT_EQ(2, r.status);
    EXPECT_EQ("", r.out);
    ExpectLines(c.error, r.err);
  }
}

TEST(InspectSpeed, ThousandRevocationReferencesAndHundredCrls) {
  // 1,000 CRL references and 100 CRLs of 1,000 entries each (3.6 MB): the
  // run finishes (the figure is measured in bench/adestool).
  TempDir dir;
  std::string sig = dir.Write("big.p7s", CadesWithRevocationMaterial(1000, 100));
  RunResult r = RunTool({"inspect", "--json", sig});
  EXPECT_EQ(0, r.status);
  ExpectContains(r.out, {"\"number\": \"03E8\"", "\"entries\": 1000"});
  EXPECT_EQ(100, [&] {
    int n = 0;
    for (size_t at = 0; (at = r.out.find("\"entries\": 1000", at)) != std::string::npos; ++at) ++n;
    return n;
  }());
}

}  // namespace
