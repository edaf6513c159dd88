// Bad input of every class through the generated decoders, with the exact
// status each one gets; docs/hostile-input.md lists the classes and points
// here. Every case also frees what was decoded and checks that no heap block
// is left (ExpectDecodeStatus).
#include <gtest/gtest.h>
#include <korvex/asn1gen/Gost28147_89_EncryptionSyntax.h>
#include <korvex/asn1gen/KorvexTestAlgorithms.h>
#include <korvex/asn1rt/ASN1CTime.h>

#include <string>
#include <vector>

#include "codec_fixture.h"

namespace {

using Korvex::Test::Bytes;
using Korvex::Test::Codec;
using Korvex::Test::ExpectDecodeStatus;
using Korvex::Test::ExpectRoundTrip;
using Korvex::Test::FromHex;
using Korvex::Test::ToHex;

#define F(Type) KORVEX_FUNCTIONS(korvextest, Type)

// Record { name "ab", serial 5, items { 04 01 AA }, when UTCTime }.
const std::string kName = "0C026162";
const std::string kSerial = "020105";
const std::string kItems = "30030401AA";
const std::string kWhen = "170D3234303130323033303430355A";
const std::string kRecord = "301B" + kName + kSerial + kItems + kWhen;

// tagHex, a DER length and contentsHex (spaces allowed in contentsHex).
std::string Tlv(const std::string& tagHex, const std::string& contentsHex) {
  const size_t n = FromHex(contentsHex).size();
  Bytes length;
  if (n < 0x80) {
    length = {static_cast<unsigned char>(n)};
  } else if (n < 0x100) {
    length = {0x81, static_cast<unsigned char>(n)};
  } else {
    length = {0x82, static_cast<unsigned char>(n >> 8), static_cast<unsigned char>(n & 0xFF)};
  }
  return tagHex + ToHex(length) + contentsHex;
}

struct Case {
  const char* name;
  std::string input;
  int status;
};

template <typename Record>
void ExpectStatuses(const Korvex::Test::Functions<Record>& f, const std::vector<Case>& cases) {
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    ExpectDecodeStatus(f, k.input, k.status);
  }
}

// Every proper prefix of a valid encoding: the outer length then claims more
// than there is (-5), or the cut falls inside the identifier and length
// octets (-2).
TEST(HostileInput, Truncation) {
  const Bytes whole = FromHex(kRecord);
  for (size_t n = 1; n < whole.size(); ++n) {
    SCOPED_TRACE(n);
    ExpectDecodeStatus(F(Record), ToHex(Bytes(whole.begin(), whole.begin() + n)),
                       n < 2 ? ASN_E_ENDOFBUF : ASN_E_INVLEN);
  }
  ExpectStatuses(F(Record), {
                                // The outer length is honest, an inner one is not.
                                {"inner INTEGER past its SEQUENCE", "3003 020501", ASN_E_INVLEN},
                                {"long-form length cut short", "3082 01", ASN_E_ENDOFBUF},
                                // No buffer at all (a size of 0 with a pointer
                                // means "unbounded" to xd_setp: callers pass sizes).
                                {"empty input", "", ASN_E_INVPARAM},
                            });
}

TEST(HostileInput, OverlongAndHugeLengths) {
  ExpectStatuses(F(Record),
                 {
                     {"five length octets", "3085 0000000000", ASN_E_INVLEN},
                     {"length 0x80000000", "3084 80000000", ASN_E_INVLEN},
                     {"length 0x7FFFFFFF with 2 bytes", "3084 7FFFFFFF 0000", ASN_E_INVLEN},
                     {"inner length 2^24 in a small SEQUENCE", "3006 0C83FFFFFF61", ASN_E_INVLEN},
                 });
  // BER allows a longer length form than needed (X.690 8.1.3.5); DER does
  // not, and the value re-encodes in the shortest one.
  ExpectRoundTrip(F(Record), "3082001B" + kRecord.substr(4), kRecord);
  ExpectRoundTrip(F(Record), "30811B" + kRecord.substr(4), kRecord);
}

TEST(HostileInput, DeepNesting) {
  std::string indefinite, definite;
  for (int i = 0; i <= ASN_K_MAXDEPTH; ++i) indefinite += "3080";
  for (int i = 0; i <= ASN_K_MAXDEPTH; ++i) indefinite += "0000";
  // 65 definite-length levels: each SEQUENCE OF holds the next one.
  definite = "3000";
  for (int i = 0; i < ASN_K_MAXDEPTH; ++i) definite = Tlv("30", definite);
  ExpectDecodeStatus(F(Tree), indefinite, ASN_E_NESTING);
  ExpectDecodeStatus(F(Tree), definite, ASN_E_NESTING);
}

// Element counts come from the data, so a count is never larger than the
// input allows; limits on counts are checked after the elements are read.
TEST(HostileInput, HugeCounts) {
  std::string names;
  for (int i = 0; i < 20000; ++i) names += "130141";
  ExpectRoundTrip(F(Names), "3182EA60" + names);
  ExpectStatuses(F(Record),
                 {
                     {"five items where at most four are allowed",
                      Tlv("30", kName + kSerial + Tlv("30", "0400 0400 0400 0400 0401AA") + kWhen),
                      ASN_E_CONSVIO},
                     {"no item where at least one is required",
                      "3018" + kName + kSerial + "3000" + kWhen, ASN_E_CONSVIO},
                 });
}

// UTF8String contents are kept as the bytes they are: text with a NUL inside
// cannot be held as NUL-terminated text and is refused; other invalid UTF-8 is
// refused where it is converted (rtUTF8*, -26: see StatusTable and
// UTF8DecodeChar.OverlongsSurrogatesAndTruncationGiveMinus26).
TEST(HostileInput, CharacterStrings) {
  ExpectStatuses(
      F(Record),
      {
          {"NUL inside the name", "301B 0C026100" + kSerial + kItems + kWhen, ASN_E_INVLEN},
          {"name longer than SIZE (1..8)", "3020 0C09616263646566676869" + kSerial + kItems + kWhen,
           ASN_E_CONSVIO},
          {"empty name", "3019 0C00" + kSerial + kItems + kWhen, ASN_E_CONSVIO},
      });
}

// Generated records keep UTCTime and GeneralizedTime text as it came (the
// element is sound); the time classes read it and refuse what is not a time.
TEST(HostileInput, MalformedTimeTextInRecords) {
  const std::string month13 = "170D3439313330313030303030305A";  // "491301000000Z"
  Codec c;
  korvextest::ASN1T_Record rec;
  ASSERT_EQ(c.decode(&korvextest::asn1D_Record,
                     FromHex("301B" + kName + kSerial + kItems + month13), &rec),
            0);
  EXPECT_STREQ(rec.when.u.utc, "491301000000Z");
  ASN1CUTCTime time(nullptr, rec.when.u.utc);
  EXPECT_EQ(time.getMonth(), ASN_E_INVDATETIME);
  korvextest::asn1Free_Record(c.ctxt(), &rec);
  // A NUL inside the text is refused like in any character string.
  ExpectDecodeStatus(F(Record),
                     "301B" + kName + kSerial + kItems + "170D3439303130313030303000305A",
                     ASN_E_INVLEN);
}

TEST(HostileInput, WrongChoiceTags) {
  ExpectStatuses(
      F(Record),
      {
          {"OCTET STRING where UTCTime or GeneralizedTime is expected",
           "301B" + kName + kSerial + kItems + "040D3234303130323033303430355A", ASN_E_IDNOTFOU},
          {"context tag [0] where the CHOICE has none",
           "301B" + kName + kSerial + kItems + "800D3234303130323033303430355A", ASN_E_IDNOTFOU},
      });
  // Choice is extensible: an unknown alternative is kept as its element.
  Codec c;
  korvextest::ASN1T_Choice rec;
  ASSERT_EQ(c.decode(&korvextest::asn1D_Choice, FromHex("8A0105"), &rec), 0);
  EXPECT_EQ(rec.t, static_cast<ASN1UINT>(korvextest::ASN1T_Choice::T_extElem1));
  EXPECT_EQ(ToHex(c.encode(&korvextest::asn1E_Choice, &rec)), ToHex(FromHex("8A0105")));
  korvextest::asn1Free_Choice(c.ctxt(), &rec);
}

TEST(HostileInput, TrailingData) {
  // After the last component of a SEQUENCE that is not extensible.
  ExpectDecodeStatus(F(AlgorithmIdentifier), "3009 0603550400 0500 0500", ASN_E_NOTINSEQ);
  // A second element inside an explicit tag.
  ExpectDecodeStatus(F(Record), "3021 A0050201020500" + kName + kSerial + kItems + kWhen,
                     ASN_E_INVLEN);
  // After the outermost element: xd_setp cuts the buffer to the first
  // element; the caller learns from the cursor that bytes were left over.
  Codec c;
  korvextest::ASN1T_AlgorithmIdentifier rec;
  ASSERT_EQ(c.decode(&korvextest::asn1D_AlgorithmIdentifier, FromHex("3005 0603550400 FFFF"), &rec),
            0);
  EXPECT_EQ(c.ctxt()->buffer.byteIndex, 7u);
  korvextest::asn1Free_AlgorithmIdentifier(c.ctxt(), &rec);
}

TEST(HostileInput, ZeroLengthAndEmptyOpenTypes) {
  ExpectStatuses(F(AlgorithmIdentifier),
                 {
                     // An open type must be a whole element; 00 00 is end-of-contents.
                     {"parameters 00 00", "3007 0603550400 0000", ASN_E_STROVFLW},
                     {"parameters cut inside their header", "3006 0603550400 05", ASN_E_ENDOFBUF},
                     {"parameters longer than the SEQUENCE", "3007 0603550400 0502", ASN_E_INVLEN},
                 });
  // A known algorithm whose parameters are not a value of their type keeps
  // the raw bytes (rsaEncryption takes NULL).
  Codec c;
  korvextest::ASN1T_AlgorithmIdentifier rec;
  ASSERT_EQ(c.decode(&korvextest::asn1D_AlgorithmIdentifier,
                     FromHex("300E 06092A864886F70D010101 02010F"), &rec),
            0);
  EXPECT_EQ(rec.parameters.decoded, nullptr);
  EXPECT_EQ(rec.parameters.numocts, 3u);
  korvextest::asn1Free_AlgorithmIdentifier(c.ctxt(), &rec);
}

// 30 07 06 03 55 04 00 00 00: UNIVERSAL 0 is reserved for end-of-contents
// (X.690 8.1.5, X.680 8.6), so inside definite-length contents it is no unknown
// extension addition or alternative: an extensible SEQUENCE or SET refuses it
// as an element after the last component (-10), an extensible CHOICE as a tag
// it does not know (-3), as they would without the extension marker.
TEST(HostileInput, BlobParametersUniversal0Elements) {
  const std::string kParamSet = "0603550400";
  ExpectStatuses(
      KORVEX_FUNCTIONS(asn1data, Gost28147_89_BlobParameters),
      {
          {"00 00 after the last component", "3007" + kParamSet + "0000", ASN_E_NOTINSEQ},
          {"constructed 20 00", "3007" + kParamSet + "2000", ASN_E_NOTINSEQ},
          {"00 01 05 with contents", "3008" + kParamSet + "000105", ASN_E_NOTINSEQ},
          {"00 00 after a skipped addition", "3009" + kParamSet + "0400 0000", ASN_E_NOTINSEQ},
      });
  // Other unknown additions are still skipped, and an indefinite length still
  // ends at its end-of-contents.
  ExpectRoundTrip(KORVEX_FUNCTIONS(asn1data, Gost28147_89_BlobParameters),
                  "3007" + kParamSet + "0400", "3005" + kParamSet);
  ExpectRoundTrip(KORVEX_FUNCTIONS(asn1data, Gost28147_89_BlobParameters),
                  "3080" + kParamSet + "0400 0000", "3005" + kParamSet);

  ExpectDecodeStatus(F(Record), "301D" + kRecord.substr(4) + "0000", ASN_E_NOTINSEQ);
  // Options ::= SET { enabled [0] BOOLEAN, note IA5String OPTIONAL, ... }
  ExpectStatuses(F(Options),
                 {
                     {"00 00 after the components", "3107 A0030101FF 0000", ASN_E_NOTINSEQ},
                     {"00 00 before the components", "3107 0000 A0030101FF", ASN_E_NOTINSEQ},
                     {"constructed 20 00", "3107 A0030101FF 2000", ASN_E_NOTINSEQ},
                 });
  ExpectRoundTrip(F(Options), "3108 040100 A0030101FF", "3105 A0030101FF");
  ExpectStatuses(F(Choice), {
                                {"00 00", "0000", ASN_E_IDNOTFOU},
                                {"constructed 20 00", "2000", ASN_E_IDNOTFOU},
                                {"00 01 05 with contents", "000105", ASN_E_IDNOTFOU},
                            });
}

// X.690 8.3.2 (minimal INTEGER contents) and 8.1.2.4 (long-form identifiers
// only above 30) bind BER as well as DER.
TEST(HostileInput, NonMinimalIntegersAndTags) {
  ExpectStatuses(
      F(Record),
      {
          {"serial 00 05", "301C" + kName + "02020005" + kItems + kWhen, ASN_E_IDNOTFOU},
          {"serial FF 80", "301C" + kName + "0202FF80" + kItems + kWhen, ASN_E_IDNOTFOU},
          {"serial without contents", "301A" + kName + "0200" + kItems + kWhen, ASN_E_INVLEN},
          {"SEQUENCE tag in long form", "3F10 1B" + kRecord.substr(4), ASN_E_IDNOTFOU},
          {"long-form tag with a leading 80 group", "3F8010 1B" + kRecord.substr(4),
           ASN_E_IDNOTFOU},
          {"tag number above 0x1FFFFFFF", "3F8280808000 1B" + kRecord.substr(4), ASN_E_BADTAG},
      });
  ExpectDecodeStatus(F(Version), "A003 02020001", ASN_E_IDNOTFOU);
}

// The decoders read BER: an indefinite length is accepted on constructed
// elements and re-encoded definite; DER's forms are the encoder's job. On a
// primitive element an indefinite length is an error in BER too (X.690 8.1.3.2).
TEST(HostileInput, IndefiniteLengths) {
  ExpectRoundTrip(F(Record), "3080" + kRecord.substr(4) + "0000", kRecord);
  ExpectRoundTrip(F(Record), "3080" + kName + kSerial + "3080 0401AA 0000" + kWhen + "0000",
                  kRecord);
  ExpectStatuses(F(Record),
                 {
                     {"INTEGER with an indefinite length",
                      "3080" + kName + "0280 05 0000" + kItems + kWhen + "0000", ASN_E_INVLEN},
                     // xd_setp measures the outermost element first.
                     {"end-of-contents missing", "3080" + kRecord.substr(4), ASN_E_INVLEN},
                 });
}

// Only strings may be constructed (X.690 8.1.2.5); BOOLEAN, INTEGER, NULL and
// OBJECT IDENTIFIER in constructed form, or a SEQUENCE in primitive form, are
// refused.
TEST(HostileInput, WrongForms) {
  ExpectStatuses(F(Record), {
                                {"constructed INTEGER",
                                 "301D" + kName + "2203020105" + kItems + kWhen, ASN_E_IDNOTFOU},
                                {"primitive SEQUENCE", "101B" + kRecord.substr(4), ASN_E_IDNOTFOU},
                            });
  ExpectDecodeStatus(F(AlgorithmIdentifier), "3007 2605 0603550400", ASN_E_IDNOTFOU);
  // Constructed strings are BER and are joined.
  ExpectRoundTrip(F(Record), "3021" + kName + kSerial + "3009 2407 0401AA 0400 0400" + kWhen,
                  "301B" + kName + kSerial + kItems + kWhen);
}

}  // namespace
