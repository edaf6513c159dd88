// Engine rules on our own test module: DER DEFAULT handling, named bits, SET
// ordering, SET OF sorting, CHOICE extensions, table constraints, limits and the
// nesting bound.
#include <gtest/gtest.h>
#include <korvex/asn1gen/KorvexTestAlgorithms.h>

#include <string>

#include "codec_fixture.h"

namespace {

using namespace korvextest;
using Korvex::Test::Bytes;
using Korvex::Test::Codec;
using Korvex::Test::ExpectDecodeStatus;
using Korvex::Test::ExpectRoundTrip;
using Korvex::Test::FromHex;
using Korvex::Test::ToHex;

#define F(Type) KORVEX_FUNCTIONS(korvextest, Type)

// Record with name "ab", serial 5, one item 04 01 AA and a UTCTime.
const char kRecordBody[] =
    "0C026162020105"
    "30030401AA"
    "170D3234303130323033303430355A";

struct RecordParts {
  ASN1T_Record rec;
  ASN1DynOctStr item{1, reinterpret_cast<const ASN1OCTET*>("\xAA")};
  unsigned char bits = 0;
  RecordParts() {
    rec.name = "ab";
    rec.serial = "5";
    rec.items.n = 1;
    rec.items.elem = &item;
    rec.when.t = ASN1T_Record_when::T_utc;
    rec.when.u.utc = "240102030405Z";
  }
};

TEST(EngineRules, DefaultComponentsUnderDer) {
  const std::string body = kRecordBody;
  struct Case {
    const char* name;
    int version;    // -1: absent
    int flagsBits;  // -1: absent, 0: eight zero bits, 8: first bit set
    std::string der;
  } cases[] = {
      {"both absent", -1, -1, "301B" + body},
      {"version equal to its default", Version_v1, -1, "301B" + body},
      {"version v3", Version_v3, -1, "3020 A003020102" + body},
      {"flags all zero equal the default {}", -1, 0, "301B" + body},
      {"flags with trailing zero bits trimmed", -1, 8,
       "301F" + body.substr(0, 14) + "82020780" + body.substr(14)},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    Codec c;
    RecordParts p;
    if (k.version >= 0) {
      p.rec.m.versionPresent = 1;
      p.rec.version = k.version;
    }
    if (k.flagsBits >= 0) {
      p.bits = k.flagsBits ? 0x80 : 0x00;
      p.rec.m.flagsPresent = 1;
      p.rec.flags.numbits = 8;
      p.rec.flags.data = &p.bits;
    }
    EXPECT_EQ(ToHex(c.encode(&asn1E_Record, &p.rec)), ToHex(FromHex(k.der)));
  }
}

TEST(EngineRules, AbsentDefaultDecodesToItsValue) {
  Codec c;
  ASN1T_Record rec;
  ASSERT_EQ(c.decode(&asn1D_Record, FromHex(std::string("301B") + kRecordBody), &rec), 0);
  EXPECT_EQ(rec.m.versionPresent, 0u);
  EXPECT_EQ(rec.version, Version_v1);
  EXPECT_EQ(rec.m.flagsPresent, 0u);
  EXPECT_EQ(rec.flags.numbits, 0u);
  EXPECT_NE(rec.serial, nullptr);
  asn1Free_Record(c.ctxt(), &rec);
}

TEST(EngineRules, RecordStatuses) {
  std::string body = kRecordBody;
  struct Case {
    const char* name;
    std::string der;
    int status;
  } cases[] = {
      {"extension addition skipped", "301D" + body + "0500", 0},
      {"enumeration outside its values", "301E" + body.substr(0, 14) + "810105" + body.substr(14),
       ASN_E_INVENUM},
      {"name over 8 characters", "3022 0C09616161616161616161" + body.substr(8), ASN_E_CONSVIO},
      {"five items",
       "3027" + body.substr(0, 14) + "300F 0401AA0401AA0401AA0401AA0401AA" + body.substr(24),
       ASN_E_CONSVIO},
      {"wrong CHOICE tag", "301B" + body.substr(0, 24) + "130D3234303130323033303430355A",
       ASN_E_IDNOTFOU},
      {"serial missing", "3018" + body.substr(0, 8) + body.substr(14), ASN_E_IDNOTFOU},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    ExpectDecodeStatus(F(Record), k.der, k.status);
  }
}

TEST(EngineRules, EnumerationOutsideValuesRefusedOnEncode) {
  Codec c;
  RecordParts p;
  p.rec.m.colorPresent = 1;
  p.rec.color = 3;
  c.encode(&asn1E_Record, &p.rec);
  EXPECT_EQ(c.lastStatus(), ASN_E_INVENUM);
}

TEST(EngineRules, SetComponentsInTagOrder) {
  Codec c;
  ASN1T_Settings s;
  s.enabled = 0xFF;
  s.m.levelPresent = 1;
  s.level = 5;
  s.m.notePresent = 1;
  s.note = "x";
  // X.690 10.3: IA5String (universal 22) before [0] and [1].
  const char der[] = "310D 160178 A0030101FF A103020105";
  EXPECT_EQ(ToHex(c.encode(&asn1E_Settings, &s)), ToHex(FromHex(der)));
  ExpectRoundTrip(F(Settings), "310D A103020105 160178 A0030101FF", der);
  ExpectDecodeStatus(F(Settings), "310A A0030101FF A0030101FF", ASN_E_SETDUPL);
  ExpectDecodeStatus(F(Settings), "3105 A103020105", ASN_E_SETMISRQ);
  ExpectDecodeStatus(F(Settings), "3105 A103020108", ASN_E_CONSVIO);
}

TEST(EngineRules, SetOfSortedUnderDer) {
  Codec c;
  const char* names[] = {"b", "ab", "a"};
  ASN1T_Names set;
  set.n = 3;
  set.elem = names;
  EXPECT_EQ(ToHex(c.encode(&asn1E_Names, &set)), ToHex(FromHex("310A 130161 130162 13026162")));
}

TEST(EngineRules, ChoiceAlternatives) {
  struct Case {
    const char* name;
    const char* input;
    ASN1UINT t;
  } cases[] = {
      {"number", "020105", ASN1T_Choice::T_number},
      {"implicit text", "80026869", ASN1T_Choice::T_text},
      {"record by pointer", "300B06092A864886F70D01010B", ASN1T_Choice::T_algo},
      {"explicit list", "A1063004 06022A03", ASN1T_Choice::T_ids},
      {"unknown alternative kept", "85020102", ASN1T_Choice::T_extElem1},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    Codec c;
    ASN1T_Choice ch;
    ASSERT_EQ(c.decode(&asn1D_Choice, FromHex(k.input), &ch), 0);
    EXPECT_EQ(ch.t, k.t);
    asn1Free_Choice(c.ctxt(), &ch);
    ExpectRoundTrip(F(Choice), k.input);
  }
  ExpectDecodeStatus(F(Choice), "020201FF", ASN_E_CONSVIO);
}

TEST(EngineRules, TableConstraintDecodesTypedValue) {
  Codec c;
  ASN1T_AlgorithmIdentifier alg;
  Bytes der = FromHex("3010 06092B06010401868D1F01 3003020105");
  ASSERT_EQ(c.decode(&asn1D_AlgorithmIdentifier, der, &alg), 0);
  ASSERT_NE(alg.parameters.decoded, nullptr);
  auto* params = static_cast<ASN1T__testAlgorithm_Type*>(alg.parameters.decoded);
  EXPECT_EQ(params->rounds, 5);
  EXPECT_EQ(params->m.labelPresent, 0u);

  // A changed typed value is what gets encoded.
  params->rounds = 7;
  EXPECT_EQ(ToHex(c.encode(&asn1E_AlgorithmIdentifier, &alg)),
            ToHex(FromHex("3010 06092B06010401868D1F01 3003020107")));
  params->rounds = 0;
  c.encode(&asn1E_AlgorithmIdentifier, &alg);
  EXPECT_EQ(c.lastStatus(), ASN_E_CONSVIO);
  params->rounds = 5;

  // The deep copy carries its own typed value.
  ASN1T_AlgorithmIdentifier copy;
  ASSERT_EQ(asn1Copy_AlgorithmIdentifier(c.ctxt(), &alg, &copy), 0);
  ASSERT_NE(copy.parameters.decoded, nullptr);
  EXPECT_NE(copy.parameters.decoded, alg.parameters.decoded);
  EXPECT_EQ(static_cast<ASN1T__testAlgorithm_Type*>(copy.parameters.decoded)->rounds, 5);
  asn1Free_AlgorithmIdentifier(c.ctxt(), &copy);
  asn1Free_AlgorithmIdentifier(c.ctxt(), &alg);
}

TEST(EngineRules, TableConstraintStatuses) {
  ExpectRoundTrip(F(AlgorithmIdentifier), "3010 06092B06010401868D1F01 3003020105");
  // Unknown identifier: only the raw bytes.
  {
    Codec c;
    ASN1T_AlgorithmIdentifier alg;
    ASSERT_EQ(c.decode(&asn1D_AlgorithmIdentifier, FromHex("3008 06032A0304 020101"), &alg), 0);
    EXPECT_EQ(alg.m.parametersPresent, 1u);
    EXPECT_EQ(alg.parameters.numocts, 3u);
    EXPECT_EQ(alg.parameters.decoded, nullptr);
    asn1Free_AlgorithmIdentifier(c.ctxt(), &alg);
  }
  // Known identifier, parameters that are not a value of its type (outside
  // their limits, of another type): the raw bytes stay, no typed value, no
  // status, and the value re-encodes as it came.
  const char* kNotItsType[] = {"3011 06092B06010401868D1F01 3004020200C8",
                               "300E 06092B06010401868D1F01 020105"};
  for (const char* hex : kNotItsType) {
    SCOPED_TRACE(hex);
    Codec c;
    ASN1T_AlgorithmIdentifier alg;
    ASSERT_EQ(c.decode(&asn1D_AlgorithmIdentifier, FromHex(hex), &alg), 0);
    EXPECT_EQ(c.ctxt()->errInfo.status, 0);
    EXPECT_EQ(alg.parameters.decoded, nullptr);
    EXPECT_EQ(ToHex(c.encode(&asn1E_AlgorithmIdentifier, &alg)), ToHex(FromHex(hex)));
    asn1Free_AlgorithmIdentifier(c.ctxt(), &alg);
    ExpectRoundTrip(F(AlgorithmIdentifier), hex);
  }
  // The element around the parameters must still be sound.
  ExpectDecodeStatus(F(AlgorithmIdentifier), "3011 06092B06010401868D1F01 3005020200C8",
                     ASN_E_INVLEN);
}

TEST(EngineRules, TableFunctionsAndObjectSet) {
  const ALGORITHM* obj = SupportedAlgorithms::instance().lookupObject(id_testParams);
  ASSERT_EQ(obj, &testAlgorithm);
  EXPECT_EQ(SupportedAlgorithms::instance().lookupObject(id_sha256WithRSAEncryption),
            &sha256WithRSAEncryption);
  ASN1OBJID unknown = {3, {1, 2, 3}};
  EXPECT_EQ(SupportedAlgorithms::instance().lookupObject(unknown), nullptr);

  Codec c;
  ASN1T__testAlgorithm_Type params;
  params.rounds = 9;
  params.m.labelPresent = 1;
  params.label = "k";
  ASN1T_AlgorithmIdentifier alg;
  alg.algorithm = id_testParams;
  alg.m.parametersPresent = 1;
  alg.parameters.decoded = &params;
  ASSERT_EQ(asn1ETC_AlgorithmIdentifier(c.ctxt(), &alg), 0);
  EXPECT_EQ(ToHex(Bytes(alg.parameters.data, alg.parameters.data + alg.parameters.numocts)),
            "30 06 02 01 09 0C 01 6B");
  alg.parameters.decoded = nullptr;
  ASSERT_EQ(asn1DTC_AlgorithmIdentifier(c.ctxt(), &alg), 0);
  ASSERT_NE(alg.parameters.decoded, nullptr);
  EXPECT_STREQ(static_cast<ASN1T__testAlgorithm_Type*>(alg.parameters.decoded)->label, "k");
  asn1Free_AlgorithmIdentifier(c.ctxt(), &alg);
}

TEST(EngineRules, OpenTypesCanPointIntoTheMessage) {
  Codec c;
  rtCtxtSetFlag(c.ctxt(), ASN1OPENTYPEREF);
  Bytes der = FromHex("3008 06032A0304 020101");
  ASN1T_AlgorithmIdentifier alg;
  ASSERT_EQ(c.decode(&asn1D_AlgorithmIdentifier, der, &alg), 0);
  size_t before = c.blocks();
  asn1Free_AlgorithmIdentifier(c.ctxt(), &alg);  // must not free message bytes
  EXPECT_EQ(c.blocks(), before);
}

std::string Nested(int levels) {
  std::string s;
  for (int i = 0; i < levels; ++i) s += "3080";
  for (int i = 0; i < levels; ++i) s += "0000";
  return s;
}

TEST(EngineRules, NestingIsBounded) {
  ExpectRoundTrip(
      F(Tree), Nested(20),
      "3026302430223020301E301C301A30183016301430123010300E300C300A30083006300430023000");
  ExpectDecodeStatus(F(Tree), Nested(ASN_K_MAXDEPTH + 5), ASN_E_NESTING);
}

TEST(EngineRules, FreeIsSafeOnNullAndZeroedRecords) {
  Codec c;
  asn1Free_Record(c.ctxt(), nullptr);
  ASN1T_Record rec;
  asn1Free_Record(c.ctxt(), &rec);
  asn1Free_Record(c.ctxt(), &rec);
  asn1Free_Record(nullptr, &rec);
  EXPECT_EQ(asn1Copy_Record(c.ctxt(), &rec, &rec), 0);
}

}  // namespace
