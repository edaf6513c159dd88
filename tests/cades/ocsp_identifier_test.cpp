// COcspIdentifier, COcspResponsesID and COcspListID: exact DER, the
// identifiers of the OCSP fixtures, GeneralizedTime forms, equality and
// malformed input.
#include <gtest/gtest.h>
#include <korvex/cades/CAdESAttributes.h>

#include <string>

#include "revref_test_util.h"

namespace {

using Korvex::CBlob;
using Korvex::CDateTime;
using Korvex::ASN1::COtherHash;
using Korvex::PKI::CAdES::COcspIdentifier;
using Korvex::PKI::CAdES::COcspListID;
using Korvex::PKI::CAdES::COcspResponsesID;
using Korvex::PKI::OCSP::CResponderID;
using namespace revreftest;

const char kKeyHash[] = "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13";
const char kByKey[] = "A2 16 04 14 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13";
const char kName[] = "30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74";

CDateTime Noon(unsigned ms = 0, unsigned us = 0) { return CDateTime(2024, 6, 1, 12, 0, 0, ms, us); }

COcspIdentifier ByKey(CDateTime const& t) {
  return COcspIdentifier(CResponderID::fromKeyHash(Blob(kKeyHash)), t);
}

CBlob Hash(unsigned char byte) {
  CBlob blob(20);
  for (int i = 0; i < 20; ++i) blob.pbData()[i] = byte;
  return blob;
}

TEST(OcspIdentifierTest, DefaultValue) {
  COcspIdentifier id;
  EXPECT_EQ(CResponderID::kNone, id.get_ocspResponderID().get_type());
  EXPECT_EQ(CDateTime(0, 0), id.get_producedAt());
  // A responder ID that names no responder does not encode.
  EXPECT_EQ(0x80093101u, ThrownCode([&] { id.encode(); }));
  COcspResponsesID responses;
  EXPECT_TRUE(responses.get_ocspIdentifier() == id);
  EXPECT_EQ(nullptr, responses.get_ocspRepHash());
}

TEST(OcspIdentifierTest, ExactDer) {
  struct Case {
    char const* name;
    COcspIdentifier id;
    std::string der;
  };
  const Case kCases[] = {
      {"byKey, whole seconds", ByKey(Noon()),
       std::string("30 29 ") + kByKey + " 18 0F 32 30 32 34 30 36 30 31 31 32 30 30 30 30 5A"},
      // producedAt keeps its fraction (no trailing zeros, X.690 11.7.3).
      {"byKey, 250 ms", ByKey(Noon(250)),
       std::string("30 2C ") + kByKey +
           " 18 12 32 30 32 34 30 36 30 31 31 32 30 30 30 30 2E 32 35 5A"},
      {"byKey, 7 us", ByKey(Noon(0, 7)),
       std::string("30 30 ") + kByKey +
           " 18 16 32 30 32 34 30 36 30 31 31 32 30 30 30 30 2E 30 30 30 30 30 37 5A"},
      {"byName", COcspIdentifier(CResponderID::fromName(Blob(kName)), Noon()),
       "30 24 A1 11 30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74"
       " 18 0F 32 30 32 34 30 36 30 31 31 32 30 30 30 30 5A"},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    CBlob der = c.id.encode();
    EXPECT_EQ(c.der, Hex(der));
    COcspIdentifier back;
    back.decode(der);
    EXPECT_TRUE(back == c.id);
    EXPECT_EQ(c.id.get_producedAt(), back.get_producedAt());
  }
}

TEST(OcspIdentifierTest, ProducedAtBeyondFourYearDigits) {
  COcspIdentifier id = ByKey(CDateTime(10000, 1, 1, 0, 0, 0, 0, 0));
  EXPECT_EQ(0x80093101u, ThrownCode([&] { id.encode(); }));
}

CBlob WithTime(std::string const& text) {
  return Tlv(0x30, Cat({Blob(kByKey), Tlv(0x18, Text(text))}));
}

TEST(OcspIdentifierTest, GeneralizedTimeForms) {
  struct Case {
    char const* text;
    CDateTime time;
  };
  const Case kCases[] = {
      {"20240601123045Z", CDateTime(2024, 6, 1, 12, 30, 45, 0, 0)},
      {"202406011230Z", CDateTime(2024, 6, 1, 12, 30, 0, 0, 0)},
      {"2024060112Z", CDateTime(2024, 6, 1, 12, 0, 0, 0, 0)},
      {"20240601123045.5Z", CDateTime(2024, 6, 1, 12, 30, 45, 500, 0)},
      {"20240601123045,5Z", CDateTime(2024, 6, 1, 12, 30, 45, 500, 0)},
      {"20240601123045.1234567Z", CDateTime(2024, 6, 1, 12, 30, 45, 123, 456)},
      {"20500101000000Z", CDateTime(2050, 1, 1, 0, 0, 0, 0, 0)},
      {"16010101000000Z", CDateTime(1601, 1, 1, 0, 0, 0, 0, 0)},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.text);
    COcspIdentifier id;
    id.decode(WithTime(c.text));
    EXPECT_EQ(c.time, id.get_producedAt());
    EXPECT_EQ(kKeyHash, Hex(*id.get_ocspResponderID().get_byKey()));
  }
}

TEST(OcspIdentifierTest, MalformedInputKeepsTheValue) {
  struct Case {
    char const* name;
    CBlob der;
  };
  const Case kCases[] = {
      {"local time", WithTime("20240601123045")},
      {"offset", WithTime("20240601123045+0300")},
      {"separator without digits", WithTime("20240601123045.Z")},
      {"fraction of an hour", WithTime("2024060112.5Z")},
      {"odd length", WithTime("202406011Z")},
      {"letters", WithTime("2024O601123045Z")},
      {"month 13", WithTime("20241301000000Z")},
      {"before 1601", WithTime("16001231235959Z")},
      {"empty time", WithTime("")},
      {"UTCTime", Tlv(0x30, Cat({Blob(kByKey), Tlv(0x17, Text("240601123045Z"))}))},
      {"responder not a ResponderID",
       Tlv(0x30, Cat({Blob("04 01 00"), Tlv(0x18, Text("20240601123045Z"))}))},
      {"responder [3]", Tlv(0x30, Cat({Blob("A3 02 04 00"), Tlv(0x18, Text("20240601123045Z"))}))},
      {"no time", Tlv(0x30, Blob(kByKey))},
      {"trailing bytes", Cat({WithTime("20240601123045Z"), Blob("00")})},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    COcspIdentifier id = ByKey(Noon(1));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { id.decode(c.der); }));
    EXPECT_TRUE(id == ByKey(Noon(1)));
  }
}

TEST(OcspIdentifierTest, Equality) {
  COcspIdentifier const a = ByKey(Noon());
  EXPECT_TRUE(a == ByKey(Noon()));
  EXPECT_TRUE(a != ByKey(Noon(1)));
  EXPECT_TRUE(a != COcspIdentifier(CResponderID::fromKeyHash(Blob("01")), Noon()));
  EXPECT_TRUE(a != COcspIdentifier(CResponderID::fromName(Blob(kName)), Noon()));
  COcspIdentifier b;
  b.put_ocspResponderID(CResponderID::fromKeyHash(Blob(kKeyHash)));
  b.put_producedAt(Noon());
  EXPECT_TRUE(a == b);
}

// The identifiers of the fixture responses: responderID and producedAt of the
// BasicOCSPResponse (RFC 5126 5.7.4.2 OcspIdentifier).
TEST(OcspIdentifierTest, FixtureResponses) {
  const char* kFiles[] = {"ocsp/resp-good.basic.der", "ocsp/resp-revoked.basic.der",
                          "ocsp/resp-ca-signed.basic.der"};
  for (char const* file : kFiles) {
    SCOPED_TRACE(file);
    OcspFacts facts = ReadOcspFacts(Fixture(file));
    CResponderID responder;
    responder.decode(facts.responderID);
    COcspIdentifier id(responder, CDateTime(facts.producedAt.c_str()));
    CBlob expected = Tlv(0x30, Cat({facts.responderID, Tlv(0x18, Text(facts.producedAt))}));
    EXPECT_EQ(Hex(expected), Hex(id.encode()));
    COcspIdentifier back;
    back.decode(expected);
    EXPECT_TRUE(back == id);
  }
}

TEST(OcspResponsesIDTest, ExactDer) {
  COcspIdentifier const id = ByKey(Noon());
  std::string const idDer = Hex(id.encode());
  COcspResponsesID withoutHash(id);
  EXPECT_EQ("30 2B " + idDer, Hex(withoutHash.encode()));
  COcspResponsesID withHash(id);
  COtherHash const hash(Hash(0xCC));
  withHash.put_ocspRepHash(&hash);
  EXPECT_EQ("30 41 " + idDer + " 04 14 " + Hex(Hash(0xCC)), Hex(withHash.encode()));

  for (COcspResponsesID const* value : {&withoutHash, &withHash}) {
    COcspResponsesID back;
    back.decode(value->encode());
    EXPECT_TRUE(back == *value);
  }
  COcspResponsesID back;
  back.decode(withHash.encode());
  ASSERT_NE(nullptr, back.get_ocspRepHash());
  EXPECT_EQ(Hex(Hash(0xCC)), Hex(*back.get_ocspRepHash()->get_sha1Hash()));
  back.decode(withoutHash.encode());
  EXPECT_EQ(nullptr, back.get_ocspRepHash());
}

TEST(OcspResponsesIDTest, EqualityAbsentPresentRule) {
  COcspResponsesID const plain(ByKey(Noon()));
  COcspResponsesID hashed(ByKey(Noon()));
  COtherHash const one(Hash(1)), two(Hash(2));
  hashed.put_ocspRepHash(&one);
  EXPECT_TRUE(plain != hashed);
  EXPECT_TRUE(hashed != plain);
  COcspResponsesID other = hashed;
  EXPECT_TRUE(other == hashed);
  other.put_ocspRepHash(&two);
  EXPECT_TRUE(other != hashed);
  other.put_ocspRepHash(nullptr);
  EXPECT_TRUE(other == plain);
  other.put_ocspIdentifier(ByKey(Noon(5)));
  EXPECT_TRUE(other != plain);
}

TEST(OcspResponsesIDTest, MalformedInput) {
  std::string const idHex = Hex(ByKey(Noon()).encode());
  const std::string kBad[] = {
      "30 00",
      "30 02 04 00",                      // a hash without identifier
      "30 2F " + idHex + " 02 02 01 05",  // the hash an INTEGER
      "30 2F " + idHex + " 04 00 05 00",  // an element after the hash
      "30 2D " + idHex + " 30 00",        // an empty OtherHash SEQUENCE
  };
  for (std::string const& hex : kBad) {
    SCOPED_TRACE(hex);
    COcspResponsesID value(ByKey(Noon()));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { value.decode(Blob(hex)); }));
    EXPECT_TRUE(value == COcspResponsesID(ByKey(Noon())));
  }
}

TEST(OcspListIDTest, ExactDerAndOrder) {
  COcspListID list;
  EXPECT_EQ("30 02 30 00", Hex(list.encode()));
  list.push_back(COcspResponsesID(ByKey(Noon())));
  list.push_back(COcspResponsesID(ByKey(Noon(1))));
  CBlob expected = Tlv(0x30, Tlv(0x30, Cat({COcspResponsesID(ByKey(Noon())).encode(),
                                            COcspResponsesID(ByKey(Noon(1))).encode()})));
  CBlob der = list.encode();
  EXPECT_EQ(Hex(expected), Hex(der));
  COcspListID back;
  back.decode(der);
  EXPECT_TRUE(back == list);
  COcspListID reversed(list.rbegin(), list.rend());
  EXPECT_TRUE(reversed != list);
  COcspListID shorter = list;
  shorter.pop_front();
  EXPECT_TRUE(shorter != list);
  EXPECT_EQ(0x80093101u, ThrownCode([&] { back.decode(Blob("30 02 31 00")); }));
  EXPECT_TRUE(back == list);
}

TEST(OcspListIDTest, NothingLeaksUnderAllocationFailures) {
  COcspListID list;
  COcspResponsesID hashed(COcspIdentifier(CResponderID::fromName(Blob(kName)), Noon(3)));
  COtherHash const hash(Hash(9));
  hashed.put_ocspRepHash(&hash);
  list.push_back(hashed);
  list.push_back(COcspResponsesID(ByKey(Noon())));
  ExpectCodecCleanUnderFaults(list);
}

}  // namespace
