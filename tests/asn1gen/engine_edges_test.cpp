// Engine paths the module tests leave aside: SET components in any order and
// unknown ones, skipped extension additions, UniversalString values, types
// defined as a tagged type, OCTET STRINGs containing more than their value,
// typed open values whose encoding outgrows the first work buffer, the
// information objects' own operations and object sets keyed by INTEGER.
#include <gtest/gtest.h>
#include <korvex/asn1gen/KorvexTestAlgorithms.h>
#include <korvex/asn1gen/PKIX1Explicit88.h>

#include <string>

#include "codec_fixture.h"

namespace {

using Korvex::Asn1Engine::InfoObject;
using Korvex::Asn1Engine::ObjectSet;
using Korvex::Test::Bytes;
using Korvex::Test::Codec;
using Korvex::Test::ExpectDecodeStatus;
using Korvex::Test::ExpectRoundTrip;
using Korvex::Test::FromHex;
using Korvex::Test::ToHex;

#define TEST_F_(Type) KORVEX_FUNCTIONS(korvextest, Type)
#define PKIX_F(Type) KORVEX_FUNCTIONS(asn1data, Type)

// Settings ::= SET { enabled [0] BOOLEAN, level [1] INTEGER (0..7) OPTIONAL,
// note IA5String OPTIONAL }, explicit tags.
TEST(EngineEdges, SetComponentsInAnyOrderComeOutInTagOrder) {
  struct Case {
    const char* name;
    const char* input;
    const char* der;  // empty: the input itself
  } cases[] = {
      // X.690 8.6.4 / 10.3: universal class first, then context-specific by
      // number.
      {"reversed", "310D A1030201 03 A0030101FF 160161", "310D 160161 A0030101FF A103020103"},
      {"already in DER order", "310D 160161 A0030101FF A103020103", ""},
      {"optional components absent", "3105 A003010100", ""},
      {"only the note besides the mandatory one", "3108 160178 A0030101FF", ""},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    ExpectRoundTrip(TEST_F_(Settings), k.input, k.der);
  }
}

TEST(EngineEdges, SetPresenceBitsFollowTheInput) {
  Codec c;
  korvextest::ASN1T_Settings rec;
  ASSERT_EQ(c.decode(&korvextest::asn1D_Settings, FromHex("3108 160178 A0030101FF"), &rec), 0);
  EXPECT_EQ(rec.enabled, 0xFF);
  EXPECT_EQ(rec.m.levelPresent, 0u);
  EXPECT_EQ(rec.m.notePresent, 1u);
  EXPECT_STREQ(rec.note, "x");
  korvextest::asn1Free_Settings(c.ctxt(), &rec);
}

TEST(EngineEdges, SetRejectsUnknownAndRepeatedComponents) {
  struct Case {
    const char* name;
    const char* input;
    int status;
  } cases[] = {
      {"OCTET STRING is no component", "3108 A0030101FF 040100", ASN_E_NOTINSEQ},
      {"note twice", "310B A0030101FF 160161 160162", ASN_E_SETDUPL},
      {"mandatory [0] missing", "3103 160161", ASN_E_SETMISRQ},
      {"level out of its range 0..7", "310A A0030101FF A103020108", ASN_E_CONSVIO},
      {"component reaching past the SET", "3105 A0040101FF", ASN_E_INVLEN},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    ExpectDecodeStatus(TEST_F_(Settings), k.input, k.status);
  }
}

// Record is extensible ("..."): an element after the last known component is
// an unknown extension addition, skipped on decode and not written back.
TEST(EngineEdges, UnknownExtensionAdditionsAreSkipped) {
  const std::string body =
      "0C026162020105"
      "30030401AA"
      "170D3234303130323033303430355A";
  ExpectRoundTrip(TEST_F_(Record), "301D" + body + "0400", "301B" + body);
  ExpectRoundTrip(TEST_F_(Record), "3024" + body + "3007 A0050403010203", "301B" + body);
  // A constructed unknown element in indefinite form is skipped whole.
  ExpectRoundTrip(TEST_F_(Record), "3080" + body + "30800400 0000 0000", "301B" + body);
  // Skipping still checks the element's own length.
  ExpectDecodeStatus(TEST_F_(Record), "301D" + body + "0405", ASN_E_INVLEN);
}

// DirectoryString's universalString alternative: four octets per character,
// big-endian (X.680 41, UniversalString).
TEST(EngineEdges, UniversalStringRoundTrip) {
  ExpectRoundTrip(PKIX_F(DirectoryString), "1C08 00000041 0001F600");
  // DirectoryString's alternatives are SIZE (1..MAX) (RFC 5280 4.1.2.4).
  ExpectDecodeStatus(PKIX_F(DirectoryString), "1C00", ASN_E_CONSVIO);

  Codec c;
  asn1data::ASN1T_DirectoryString rec;
  ASSERT_EQ(c.decode(&asn1data::asn1D_DirectoryString, FromHex("1C08 00000041 0001F600"), &rec), 0);
  ASSERT_EQ(rec.t, static_cast<ASN1UINT>(asn1data::ASN1T_DirectoryString::T_universalString));
  ASSERT_EQ(rec.u.universalString->nchars, 2u);
  EXPECT_EQ(rec.u.universalString->data[0], 0x41u);
  EXPECT_EQ(rec.u.universalString->data[1], 0x1F600u);
  asn1data::asn1Free_DirectoryString(c.ctxt(), &rec);
}

TEST(EngineEdges, UniversalStringOfPartialCharactersIsRejected) {
  // 3 octets cannot hold a whole 4-octet character.
  ExpectDecodeStatus(PKIX_F(DirectoryString), "1C03 000041", ASN_E_INVLEN);
}

// CountryName ::= [APPLICATION 1] CHOICE {...}: a type defined as a tagged
// type (RFC 5280 appendix A.1), whose tag is explicit around the CHOICE.
TEST(EngineEdges, TypeDefinedAsATaggedType) {
  ExpectRoundTrip(PKIX_F(CountryName), "6104 13025255");
  ExpectRoundTrip(PKIX_F(CountryName), "6105 1203373737");
  struct Case {
    const char* name;
    const char* input;
    int status;
  } cases[] = {
      {"wrong outer tag", "6204 13025255", ASN_E_IDNOTFOU},
      {"inner alternative unknown", "6104 04025255", ASN_E_IDNOTFOU},
      {"two elements inside the explicit tag", "6108 13025255 13025255", ASN_E_INVLEN},
      {"inner element past the tag's length", "6103 13025255", ASN_E_INVLEN},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    ExpectDecodeStatus(PKIX_F(CountryName), k.input, k.status);
  }
}

// extnValue is an OCTET STRING containing the DER of the extension's type. When
// the contents hold more than one value of that type, the extension still
// decodes, the value stays raw (decoded null) and the bytes come back as they
// were.
TEST(EngineEdges, OctetStringContainingMoreThanItsValueStaysRaw) {
  struct Case {
    const char* name;
    const char* input;
    bool typed;
  } cases[] = {
      {"basicConstraints {}", "3009 0603551D13 04023000", true},
      {"basicConstraints {} then NULL", "300B 0603551D13 040430000500", false},
      {"basicConstraints with a truncated value", "300A 0603551D13 0403300101", false},
      {"empty contents", "3007 0603551D13 0400", false},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    ExpectRoundTrip(PKIX_F(Extension), k.input);
    Codec c;
    asn1data::ASN1T_Extension rec;
    ASSERT_EQ(c.decode(&asn1data::asn1D_Extension, FromHex(k.input), &rec), 0);
    EXPECT_EQ(rec.extnValue.decoded != nullptr, k.typed);
    EXPECT_EQ(c.ctxt()->errInfo.status, 0) << "a raw value records no status";
    asn1data::asn1Free_Extension(c.ctxt(), &rec);
  }
}

Bytes Concat(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Tag, DER length (X.690 10.1) and contents.
Bytes Tlv(unsigned char tag, const Bytes& contents) {
  Bytes out{tag};
  size_t n = contents.size();
  if (n < 0x80) {
    out.push_back(static_cast<unsigned char>(n));
  } else if (n < 0x100) {
    out.insert(out.end(), {0x81, static_cast<unsigned char>(n)});
  } else {
    out.insert(out.end(),
               {0x82, static_cast<unsigned char>(n >> 8), static_cast<unsigned char>(n & 0xFF)});
  }
  return Concat(out, contents);
}

// asn1ETC_ encodes the typed parameters into the record's bytes; a value
// larger than the first 512-byte work buffer is encoded again in a larger one.
TEST(EngineEdges, EncodeTablesGrowsItsWorkBuffer) {
  for (size_t labelLength : {1u, 505u, 506u, 2000u}) {
    SCOPED_TRACE(labelLength);
    Codec c;
    const std::string label(labelLength, 'a');
    korvextest::ASN1T__testAlgorithm_Type params;
    params.rounds = 7;
    params.m.labelPresent = 1;
    params.label = label.c_str();
    korvextest::ASN1T_AlgorithmIdentifier rec;
    rec.algorithm = korvextest::id_testParams;
    rec.m.parametersPresent = 1;
    rec.parameters.decoded = &params;
    ASSERT_EQ(korvextest::asn1ETC_AlgorithmIdentifier(c.ctxt(), &rec), 0);
    EXPECT_EQ(c.ctxt()->errInfo.status, 0) << "a retried work buffer leaves no status";
    // SEQUENCE { INTEGER 7, UTF8String label }
    const Bytes expected =
        Tlv(0x30, Concat(FromHex("020107"), Tlv(0x0C, Bytes(label.begin(), label.end()))));
    EXPECT_EQ(Bytes(rec.parameters.data, rec.parameters.data + rec.parameters.numocts) == expected,
              true)
        << "numocts " << rec.parameters.numocts << ", expected " << expected.size();
    rtMemFreePtr(c.ctxt(), const_cast<ASN1OCTET*>(rec.parameters.data));
    rec.parameters.decoded = nullptr;
  }
}

// The operations of one information object on a value of its type field.
TEST(EngineEdges, InfoObjectEncodesCopiesAndFreesItsType) {
  const InfoObject& o = korvextest::testAlgorithm;
  Codec c;
  size_t before = c.blocks();
  korvextest::ASN1T__testAlgorithm_Type params;
  params.rounds = 100;

  ASN1CTXT* enc = c.encodeCtxt();
  ASSERT_EQ(xe_setp(enc, nullptr, 0), 0);
  ASSERT_EQ(o.encode(enc, &params), 5);
  EXPECT_EQ(ToHex(Bytes(xe_getp(enc), xe_getp(enc) + 5)), ToHex(FromHex("3003020164")));

  void* copy = &params;  // overwritten by copy
  ASSERT_EQ(o.copy(c.ctxt(), &params, &copy), 0);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(static_cast<korvextest::ASN1T__testAlgorithm_Type*>(copy)->rounds, 100);
  o.free(c.ctxt(), copy);

  void* none = &params;
  EXPECT_EQ(o.copy(c.ctxt(), nullptr, &none), 0);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(c.blocks(), before);

  // A value outside its limits is refused by encode as by the record's encoder.
  params.rounds = 101;
  EXPECT_EQ(o.encode(enc, &params), ASN_E_CONSVIO);
  // A null value, or an object with no type in that field, gives -18.
  EXPECT_EQ(o.encode(enc, nullptr), ASN_E_BADVALUE);
  const InfoObject untyped{o.key, nullptr, nullptr};
  EXPECT_EQ(untyped.encode(enc, &params), ASN_E_BADVALUE);
  EXPECT_EQ(untyped.copy(c.ctxt(), &params, &copy), ASN_E_BADVALUE);
  EXPECT_EQ(copy, nullptr);
  const Bytes null = FromHex("0500");
  void* decoded = &params;
  EXPECT_EQ(untyped.decode(c.ctxt(), null.data(), 2, &decoded), ASN_E_BADVALUE);
  EXPECT_EQ(decoded, nullptr);
  EXPECT_EQ(o.copy(nullptr, &params, &copy), ASN_E_INVPARAM);
  EXPECT_EQ(o.copy(c.ctxt(), &params, nullptr), ASN_E_INVPARAM);
  o.free(c.ctxt(), nullptr);  // does nothing
}

// Object sets keyed by INTEGER (X.681 UNIQUE INTEGER fields): the compiler
// sorts the objects by value; lookup is a binary search that misses cleanly,
// and an OID lookup in an INTEGER set (or the reverse) finds nothing.
TEST(EngineEdges, IntegerKeyedObjectSet) {
  static const ASN1INT keys[] = {-5, 0, 3, 17, 1000};
  static const InfoObject objects[] = {{&keys[0], nullptr, nullptr},
                                       {&keys[1], nullptr, nullptr},
                                       {&keys[2], nullptr, nullptr},
                                       {&keys[3], nullptr, nullptr},
                                       {&keys[4], nullptr, nullptr}};
  static const InfoObject* const sorted[] = {&objects[0], &objects[1], &objects[2], &objects[3],
                                             &objects[4]};
  const ObjectSet set{sorted, 5, Korvex::Asn1Engine::kKeyInteger};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(set.lookup(keys[i]), &objects[i]) << keys[i];
  for (ASN1INT miss : {-6, -1, 1, 16, 18, 1001}) EXPECT_EQ(set.lookup(miss), nullptr) << miss;
  EXPECT_EQ(set.lookup(korvextest::id_testParams), nullptr);
  EXPECT_EQ(korvextest::SupportedAlgorithms::instance().lookup(ASN1INT{3}), nullptr);
  const ObjectSet empty{nullptr, 0, Korvex::Asn1Engine::kKeyInteger};
  EXPECT_EQ(empty.lookup(ASN1INT{0}), nullptr);
}

}  // namespace
