// cli_dump_test.cpp: `adestool dump` run as a program on hand-made DER/BER
// and on the fixtures; exact output, exit status and message.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tool_runner.h"

using namespace adestool_test;

namespace {

struct DumpCase {
  const char* what;
  const char* hex;   // the input bytes
  const char* tree;  // the exact standard output
  int status;
  const char* error;  // the message after "adestool: FILE: ", or "" for none
};

void RunDumpCases(const std::vector<DumpCase>& cases) {
  TempDir dir;
  for (const DumpCase& c : cases) {
    SCOPED_TRACE(c.what);
    std::string path = dir.Write("in.der", HexBytes(c.hex));
    RunResult r = RunTool({"dump", path});
    EXPECT_EQ(c.tree, r.out);
    EXPECT_EQ(c.status, r.status);
    std::string error = *c.error ? "adestool: " + path + ": " + c.error + "\n" : "";
    EXPECT_EQ(error, r.err);
  }
}

TEST(DumpTree, BerForms) {
  RunDumpCases({
      {"indefinite lengths and a constructed OCTET STRING",
       "30 80 02 01 05 24 80 04 02 AB CD 04 00 00 00 00 00",
       "   0+2  SEQUENCE (indefinite)\n"
       "   2+2    INTEGER (1): 5\n"
       "   5+2    OCTET STRING, constructed (indefinite)\n"
       "   7+2      OCTET STRING (2): AB CD\n"
       "  11+2      OCTET STRING (0): (empty)\n",
       0, ""},
      {"nested OCTET STRINGs are decoded below their parent", "04 05 04 03 02 01 07",
       "   0+2  OCTET STRING (5): encapsulates\n"
       "   2+2    OCTET STRING (3): encapsulates\n"
       "   4+2      INTEGER (1): 7\n",
       0, ""},
      {"high tag numbers in every class",
       "9F 1F 01 00  BF 81 48 03 02 01 01  5F 81 00 00  DF 20 01 41  1F 28 01 00",
       "   0+3  [31] (1): 00\n"
       "   4+4  [200] (3)\n"
       "   8+2    INTEGER (1): 1\n"
       "  11+4  [APPLICATION 128] (0): (empty)\n"
       "  15+3  [PRIVATE 32] (1): \"A\"\n"
       "  19+3  [UNIVERSAL 40] (1): 00\n",
       0, ""},
      {"long-form lengths, minimal or not",
       "04 81 03 01 02 03  04 82 00 01 FF  30 84 00 00 00 03 02 01 09",
       "   0+3  OCTET STRING (3): 01 02 03\n"
       "   6+4  OCTET STRING (1): FF\n"
       "  11+6  SEQUENCE (3)\n"
       "  17+2    INTEGER (1): 9\n",
       0, ""},
      {"a SEQUENCE in primitive form is shown as octets", "10 02 05 00  31 00",
       "   0+2  SEQUENCE, primitive (2): 05 00\n"
       "   4+2  SET (0)\n",
       0, ""},
  });
}

TEST(DumpTree, PrimitiveValues) {
  RunDumpCases({
      {"integers: decimal up to 8 octets, hex beyond",
       "02 01 00  02 01 80  02 02 FF 7F  02 04 00 C0 FF EE  02 08 80 00 00 00 00 00 00 00"
       "  02 09 01 00 00 00 00 00 00 00 00  02 09 FF 7F FF FF FF FF FF FF FF  0A 01 03",
       "   0+2  INTEGER (1): 0\n"
       "   3+2  INTEGER (1): -128\n"
       "   6+2  INTEGER (2): -129\n"
       "  10+2  INTEGER (4): 12648430\n"
       "  16+2  INTEGER (8): -9223372036854775808\n"
       "  26+2  INTEGER (9): 0x10000000000000000\n"
       "  37+2  INTEGER (9): -0x8000000000000001\n"
       "  48+2  ENUMERATED (1): 3\n",
       0, ""},
      {"object identifiers from the platform table, our table, and unknown",
       "06 03 55 04 03  06 09 2A 86 48 86 F7 0D 01 07 02  06 0B 2A 86 48 86 F7 0D 01 09 10 01 04"
       "  06 03 88 37 01",
       "   0+2  OBJECT IDENTIFIER (3): 2.5.4.3 (CN)\n"
       "   5+2  OBJECT IDENTIFIER (9): 1.2.840.113549.1.7.2 (id-signedData)\n"
       "  16+2  OBJECT IDENTIFIER (11): 1.2.840.113549.1.9.16.1.4 (id-ct-TSTInfo)\n"
       "  29+2  OBJECT IDENTIFIER (3): 2.999.1\n",
       0, ""},
      {"strings are quoted and escaped",
       "0C 07 C3 A9 22 5C 0A 01 41  13 02 52 55  16 03 61 80 62  1E 04 00 41 04 10"
       "  1C 04 00 01 F6 00",
       "   0+2  UTF8String (7): \"\xC3\xA9\\\"\\\\\\n\\x01A\"\n"
       "   9+2  PrintableString (2): \"RU\"\n"
       "  13+2  IA5String (3): \"a\\x80b\"\n"
       "  18+2  BMPString (4): \"A\xD0\x90\"\n"
       "  24+2  UniversalString (4): \"\xF0\x9F\x98\x80\"\n",
       0, ""},
      {"times with their reading when in DER form",
       "17 0D 32 34 30 31 30 31 30 30 30 30 30 30 5A"
       "  18 13 32 30 35 35 31 32 33 31 32 33 35 39 35 39 2E 31 32 35 5A"
       "  17 0B 32 34 30 31 30 31 30 30 30 30 5A",
       "   0+2  UTCTime (13): \"240101000000Z\" (2024-01-01 00:00:00 UTC)\n"
       "  15+2  GeneralizedTime (19): \"20551231235959.125Z\" (2055-12-31 23:59:59.125 UTC)\n"
       "  36+2  UTCTime (11): \"2401010000Z\"\n",
       0, ""},
      {"BOOLEAN, NULL, BIT STRING",
       "01 01 FF  01 01 00  01 01 01  05 00  03 02 05 E0  03 01 00  03 04 00 02 01 07",
       "   0+2  BOOLEAN (1): TRUE\n"
       "   3+2  BOOLEAN (1): FALSE\n"
       "   6+2  BOOLEAN (1): TRUE (01)\n"
       "   9+2  NULL (0)\n"
       "  11+2  BIT STRING (2): E0, 5 unused bits\n"
       "  15+2  BIT STRING (1): (empty)\n"
       "  18+2  BIT STRING (4): encapsulates\n"
       "  21+2    INTEGER (1): 7\n",
       0, ""},
      {"contents against their type's rules: shown, not fatal",
       "02 00  01 02 01 FF  05 01 00  03 01 07  03 02 08 00  06 02 88 80",
       "   0+2  INTEGER (0): <invalid: no content octets>\n"
       "   2+2  BOOLEAN (2): <invalid: 2 bytes of contents> 01 FF\n"
       "   6+2  NULL (1): <invalid: 1 byte of contents> 00\n"
       "   9+2  BIT STRING (1): <invalid: 7 unused bits> 07\n"
       "  12+2  BIT STRING (2): <invalid: 8 unused bits> 08 00\n"
       "  16+2  OBJECT IDENTIFIER (2): <invalid> 88 80\n",
       0, ""},
  });
}

TEST(DumpTree, LongValuesAreCutAfter64Bytes) {
  std::string hex = "04 41";
  for (int i = 0; i < 65; ++i) hex += " 11";
  std::string expected = "   0+2  OCTET STRING (65): ";
  for (int i = 0; i < 64; ++i) expected += i ? " 11" : "11";
  expected += " ... (65 bytes)\n";
  RunDumpCases({{"65-byte OCTET STRING", hex.c_str(), expected.c_str(), 0, ""}});
}

TEST(DumpTree, FollowingElementsAndPadding) {
  RunDumpCases({
      {"every top-level element is shown", "02 01 01 02 01 02",
       "   0+2  INTEGER (1): 1\n"
       "   3+2  INTEGER (1): 2\n",
       0, ""},
      {"zeros and whitespace after the first element are padding", "02 01 01 00 00 0A 20 00",
       "   0+2  INTEGER (1): 1\n"
       "   3    <trailing padding: 5 bytes of zeros or whitespace>\n",
       0, ""},
      {"other trailing bytes must be elements", "02 01 01 41",
       "   0+2  INTEGER (1): 1\n"
       "   3    <incomplete header>\n",
       2, "offset 3: incomplete header"},
  });
}

TEST(DumpTree, MalformedInputShowsWhatParsesThenFails) {
  RunDumpCases({
      {"truncated DER", "30 06 02 01 05 02",
       "   0+2  SEQUENCE (6) <truncated: 4 of 6 bytes>\n"
       "   2+2    INTEGER (1): 5\n"
       "   5      <incomplete header>\n",
       2, "offset 0: SEQUENCE truncated: 4 of 6 content bytes present"},
      {"child longer than its parent", "30 05 02 01 05 04 05 01 02",
       "   0+2  SEQUENCE (5)\n"
       "   2+2    INTEGER (1): 5\n"
       "   5+2    OCTET STRING (5) <truncated: 0 of 5 bytes>\n",
       2,
       "offset 5: OCTET STRING of 5 content bytes runs past the end of its enclosing element "
       "(0 bytes left)"},
      {"indefinite length on a primitive", "30 04 04 80 00 00",
       "   0+2  SEQUENCE (4)\n"
       "   2      <indefinite length on a primitive element>\n",
       2, "offset 2: indefinite length on a primitive element"},
      {"five length octets", "04 85 00 00 00 00 01", "   0    <length field of 5 octets>\n", 2,
       "offset 0: length field of 5 octets"},
      {"length above 2^31-1 (FF FF D8 F1 is not indefinite)", "30 84 FF FF D8 F1",
       "   0    <length above 2^31-1>\n", 2, "offset 0: length above 2^31-1"},
      {"indefinite length never closed", "30 80 02 01 01",
       "   0+2  SEQUENCE (indefinite)\n"
       "   2+2    INTEGER (1): 1\n"
       "   5      <no end-of-contents octets>\n",
       2, "offset 0: SEQUENCE of indefinite length has no end-of-contents octets"},
      {"tag number above 2^29-1", "1F FF FF FF FF 7F 00", "   0    <tag number too large>\n", 2,
       "offset 0: tag number too large"},
      {"header cut by the enclosing element", "30 02 1F 81 01 00",
       "   0+2  SEQUENCE (2)\n"
       "   2      <header runs past the end of its enclosing element>\n",
       2, "offset 2: header runs past the end of its enclosing element"},
  });
}

TEST(DumpTree, NestingIsBoundedAt64Levels) {
  // 65 nested indefinite SEQUENCEs: levels 0..63 print, the 65th fails.
  std::string hex;
  for (int i = 0; i < 65; ++i) hex += "30 80 ";
  std::string expected;
  for (int i = 0; i < 64; ++i) {
    char offset[16];
    std::snprintf(offset, sizeof offset, "%4d", 2 * i);
    expected += std::string(offset) + "+2  " + std::string(2 * i, ' ') + "SEQUENCE (indefinite)\n";
  }
  expected += " 128+2  " + std::string(128, ' ') + "<nesting deeper than 64 levels>\n";
  RunDumpCases({{"65 levels", hex.c_str(), expected.c_str(), 2,
                 "offset 128: nesting deeper than 64 levels"}});
}

TEST(DumpTree, EncapsulationNeedsExactlyOneWellFormedElement) {
  RunDumpCases({
      {"two elements", "04 06 02 01 01 02 01 02", "   0+2  OCTET STRING (6): 02 01 01 02 01 02\n",
       0, ""},
      {"truncated element", "04 03 30 05 00", "   0+2  OCTET STRING (3): 30 05 00\n", 0, ""},
      {"end-of-contents octets", "04 02 00 00", "   0+2  OCTET STRING (2): 00 00\n", 0, ""},
      {"bits with unused bits", "03 04 01 02 01 06",
       "   0+2  BIT STRING (4): 02 01 06, 1 unused bit\n", 0, ""},
  });
}

TEST(DumpCertificate, FirstLinesOfTheRsaSigner) {
  // Names, serial and validity of pki/ee-rsa.der are fixed by the fixtures.
  RunResult r = RunTool({"dump", DataPath("pki/ee-rsa.der")});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.err);
  const std::string head =
      "   0+4  SEQUENCE (1653)\n"
      "   4+4    SEQUENCE (1373)\n"
      "   8+2      [0] (3)\n"
      "  10+2        INTEGER (1): 2\n"
      "  13+2      INTEGER (4): 12648430\n"
      "  19+2      SEQUENCE (13)\n"
      "  21+2        OBJECT IDENTIFIER (9): 1.2.840.113549.1.1.11 (sha256RSA)\n"
      "  32+2        NULL (0)\n"
      "  34+2      SEQUENCE (113)\n"
      "  36+2        SET (11)\n"
      "  38+2          SEQUENCE (9)\n"
      "  40+2            OBJECT IDENTIFIER (3): 2.5.4.6 (C)\n"
      "  45+2            PrintableString (2): \"RU\"\n"
      "  49+2        SET (24)\n"
      "  51+2          SEQUENCE (22)\n"
      "  53+2            OBJECT IDENTIFIER (3): 2.5.4.10 (O)\n"
      "  58+2            UTF8String (15): \"Korvex Test PKI\"\n"
      "  75+2        SET (34)\n"
      "  77+2          SEQUENCE (32)\n"
      "  79+2            OBJECT IDENTIFIER (3): 2.5.4.11 (OU)\n"
      "  84+2            UTF8String (25): \"Certification Authorities\"\n"
      " 111+2        SET (36)\n"
      " 113+2          SEQUENCE (34)\n"
      " 115+2            OBJECT IDENTIFIER (3): 2.5.4.3 (CN)\n"
      " 120+2            UTF8String (27): \"Korvex Test Intermediate CA\"\n"
      " 149+2      SEQUENCE (30)\n"
      " 151+2        UTCTime (13): \"240101000000Z\" (2024-01-01 00:00:00 UTC)\n"
      " 166+2        UTCTime (13): \"491231235959Z\" (2049-12-31 23:59:59 UTC)\n";
  EXPECT_EQ(head, r.out.substr(0, head.size()));
  // The public key and the extensions are decoded below their containers.
  EXPECT_NE(std::string::npos, r.out.find(" 331+4        BIT STRING (271): encapsulates\n"
                                          " 336+4          SEQUENCE (266)\n"));
  EXPECT_NE(std::string::npos, r.out.find("            INTEGER (3): 65537\n"));
  EXPECT_NE(std::string::npos, r.out.find("                [1] (21): \"signer@korvex.example\"\n"));
}

TEST(DumpCertificate, RootNotAfterIsAGeneralizedTime) {
  RunResult r = RunTool({"dump", DataPath("pki/root-ca.der")});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_NE(std::string::npos,
            r.out.find("GeneralizedTime (15): \"20551231235959Z\" (2055-12-31 23:59:59 UTC)\n"));
}

TEST(DumpSignature, BerSignedDataWithTimeStampedAttributesAndNames) {
  RunResult r = RunTool({"dump", DataPath("cms/signed-indefinite.ber")});
  ASSERT_EQ(0, r.status) << r.err;
  const std::string head =
      "   0+2  SEQUENCE (indefinite)\n"
      "   2+2    OBJECT IDENTIFIER (9): 1.2.840.113549.1.7.2 (id-signedData)\n"
      "  13+2    [0] (indefinite)\n"
      "  15+2      SEQUENCE (indefinite)\n"
      "  17+2        INTEGER (1): 1\n";
  EXPECT_EQ(head, r.out.substr(0, head.size()));
  EXPECT_NE(std::string::npos, r.out.find("OCTET STRING, constructed (indefinite)\n"));
}

TEST(DumpSignature, TimeStampTokenShowsTstInfo) {
  RunResult r = RunTool({"dump", DataPath("cades/signature-timestamp-token.der")});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_NE(std::string::npos,
            r.out.find("OBJECT IDENTIFIER (11): 1.2.840.113549.1.9.16.1.4 (id-ct-TSTInfo)\n"));
}

TEST(DumpHex, IsTheLibraryHexDump) {
  TempDir dir;
  std::string path = dir.Write("small.der", HexBytes("30 03 02 01 05 41 42 43 44 45"));
  RunResult r = RunTool({"dump", "--hex", path});
  EXPECT_EQ(0, r.status);
  EXPECT_EQ(
      "30 03 02 01 05 41 42 43   0....ABC\n"
      "44 45" +
          std::string(12, ' ') + "   DE\n",
      r.out);
  EXPECT_EQ("", r.err);
  // Any bytes: a truncated element is still dumped.
  path = dir.Write("bad.der", HexBytes("30 06 02"));
  r = RunTool({"dump", path, "--hex"});
  EXPECT_EQ(0, r.status);
  EXPECT_EQ("30 06 02" + std::string(10, ' ') + "   0..\n", r.out);
}

}  // namespace
