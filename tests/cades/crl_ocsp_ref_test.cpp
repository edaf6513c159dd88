// CCrlOcspRef and CCompleteRevocationRefs: exact DER with the explicit [0]
// and [1] tags, empty-but-present lists written as absent, the
// absent/present rule of equality, otherRev ignored, malformed input.
#include <gtest/gtest.h>
#include <korvex/cades/CAdESAttributes.h>

#include <string>

#include "revref_test_util.h"

namespace {

using Korvex::CBlob;
using Korvex::CDateTime;
using Korvex::ASN1::COtherHash;
using Korvex::PKI::CAdES::CCompleteRevocationRefs;
using Korvex::PKI::CAdES::CCrlIdentifier;
using Korvex::PKI::CAdES::CCRLListID;
using Korvex::PKI::CAdES::CCrlOcspRef;
using Korvex::PKI::CAdES::CCrlValidatedID;
using Korvex::PKI::CAdES::COcspIdentifier;
using Korvex::PKI::CAdES::COcspListID;
using Korvex::PKI::CAdES::COcspResponsesID;
using Korvex::PKI::OCSP::CResponderID;
using namespace revreftest;

CBlob Hash(unsigned char byte) {
  CBlob blob(20);
  for (int i = 0; i < 20; ++i) blob.pbData()[i] = byte;
  return blob;
}

CCRLListID Crls(unsigned char byte) {
  CCRLListID list;
  list.push_back(CCrlValidatedID(COtherHash(Hash(byte))));
  return list;
}

COcspListID Ocsps(unsigned second) {
  COcspListID list;
  list.push_back(COcspResponsesID(COcspIdentifier(CResponderID::fromKeyHash(Hash(0x11)),
                                                  CDateTime(2024, 6, 1, 12, 0, second, 0, 0))));
  return list;
}

CCrlOcspRef Ref(CCRLListID const* crls, COcspListID const* ocsps) {
  CCrlOcspRef ref;
  ref.put_crlids(crls);
  ref.put_ocspids(ocsps);
  return ref;
}

TEST(CrlOcspRefTest, ExactDer) {
  CCRLListID const crls = Crls(0xAA);
  COcspListID const ocsps = Ocsps(0);
  CBlob const crlsDer = crls.encode();
  CBlob const ocspsDer = ocsps.encode();
  struct Case {
    char const* name;
    CCrlOcspRef ref;
    std::string der;
  };
  const Case kCases[] = {
      {"nothing", CCrlOcspRef(), "30 00"},
      {"crlids", Ref(&crls, nullptr), "30 1E A0 1C 30 1A 30 18 30 16 04 14 " + Hex(Hash(0xAA))},
      {"ocspids", Ref(nullptr, &ocsps), Hex(Tlv(0x30, Tlv(0xA1, ocspsDer)))},
      {"both", Ref(&crls, &ocsps), Hex(Tlv(0x30, Cat({Tlv(0xA0, crlsDer), Tlv(0xA1, ocspsDer)})))},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    CBlob der = c.ref.encode();
    EXPECT_EQ(c.der, Hex(der));
    CCrlOcspRef back = Ref(&crls, &ocsps);
    back.decode(der);
    EXPECT_TRUE(back == c.ref);
    EXPECT_EQ(c.ref.get_crlids() != nullptr, back.get_crlids() != nullptr);
    EXPECT_EQ(c.ref.get_ocspids() != nullptr, back.get_ocspids() != nullptr);
  }
  EXPECT_EQ("30 51 A0 1C", Hex(Ref(&crls, &ocsps).encode()).substr(0, 11));
}

TEST(CrlOcspRefTest, EmptyButPresentListsAreWrittenAsAbsent) {
  CCRLListID const noCrls;
  COcspListID const noOcsps;
  COcspListID const ocsps = Ocsps(0);
  struct Case {
    char const* name;
    CCrlOcspRef ref;
    CCrlOcspRef sameAsAbsent;
  };
  const Case kCases[] = {
      {"empty crlids", Ref(&noCrls, nullptr), CCrlOcspRef()},
      {"empty ocspids", Ref(nullptr, &noOcsps), CCrlOcspRef()},
      {"both empty", Ref(&noCrls, &noOcsps), CCrlOcspRef()},
      {"empty crlids beside ocspids", Ref(&noCrls, &ocsps), Ref(nullptr, &ocsps)},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    EXPECT_TRUE(c.ref != c.sameAsAbsent);  // present and absent differ...
    EXPECT_EQ(Hex(c.sameAsAbsent.encode()), Hex(c.ref.encode()));
    CCrlOcspRef back;
    back.decode(c.ref.encode());
    EXPECT_EQ(nullptr, back.get_crlids());
    EXPECT_TRUE(back == c.sameAsAbsent);  // ...until the round trip
  }
}

TEST(CrlOcspRefTest, EmptyListsOnTheWireReadAsAbsent) {
  // [0] { SEQUENCE { SEQUENCE OF {} } } and [1] the same.
  CCrlOcspRef ref = Ref(nullptr, nullptr);
  ref.decode(Blob("30 0C A0 04 30 02 30 00 A1 04 30 02 30 00"));
  EXPECT_EQ(nullptr, ref.get_crlids());
  EXPECT_EQ(nullptr, ref.get_ocspids());
  EXPECT_EQ("30 00", Hex(ref.encode()));
}

TEST(CrlOcspRefTest, OtherRevIsIgnored) {
  CCRLListID const crls = Crls(0xAA);
  // otherRev [2] OtherRevRefs { 1.2.3, SEQUENCE OF { NULL } }
  CBlob const other = Blob("A2 0A 30 08 06 02 2A 03 30 02 05 00");
  CBlob der = Tlv(0x30, Cat({Tlv(0xA0, crls.encode()), other}));
  CCrlOcspRef ref;
  ref.decode(der);
  EXPECT_TRUE(ref == Ref(&crls, nullptr));
  EXPECT_EQ(Hex(Ref(&crls, nullptr).encode()), Hex(ref.encode()));
}

TEST(CrlOcspRefTest, EqualityAbsentPresentRule) {
  CCRLListID const a = Crls(1), b = Crls(2);
  COcspListID const x = Ocsps(1), y = Ocsps(2);
  EXPECT_TRUE(Ref(&a, &x) == Ref(&a, &x));
  EXPECT_TRUE(Ref(&a, &x) != Ref(&b, &x));
  EXPECT_TRUE(Ref(&a, &x) != Ref(&a, &y));
  EXPECT_TRUE(Ref(&a, nullptr) != Ref(&a, &x));
  EXPECT_TRUE(Ref(nullptr, &x) != Ref(&a, &x));
  EXPECT_TRUE(Ref(&a, &x) != Ref(nullptr, &x));
  EXPECT_TRUE(Ref(nullptr, nullptr) == CCrlOcspRef());
}

TEST(CrlOcspRefTest, AccessorsCopyDeeply) {
  CCRLListID crls = Crls(1);
  CCrlOcspRef ref;
  ref.put_crlids(&crls);
  crls.push_back(CCrlValidatedID());
  ASSERT_NE(nullptr, ref.get_crlids());
  EXPECT_EQ(1u, ref.get_crlids()->size());
  CCrlOcspRef copy(ref);
  CCrlOcspRef assigned;
  assigned = ref;
  ref.put_crlids(nullptr);
  EXPECT_EQ(nullptr, ref.get_crlids());
  EXPECT_EQ(1u, copy.get_crlids()->size());
  EXPECT_EQ(1u, assigned.get_crlids()->size());
}

TEST(CrlOcspRefTest, MalformedInputKeepsTheValue) {
  std::string const crls = Hex(Crls(1).encode());
  const std::string kBad[] = {
      "",
      "31 00",
      "30 02 A0 00",                                     // [0] with nothing inside
      "30 04 A0 02 30 00",                               // CRLListID without crls
      "30 06 A3 04 30 02 30 00",                         // no field [3]
      "30 1E A1 1C " + crls,                             // a CRL list where OCSP ones belong
      "30 06 80 04 30 02 30 00",                         // primitive [0]
      "30 00 00",                                        // trailing byte
      "30 1E A0 1C " + crls.substr(0, crls.size() - 3),  // truncated
  };
  for (std::string const& hex : kBad) {
    SCOPED_TRACE(hex);
    CCRLListID const keep = Crls(9);
    CCrlOcspRef ref = Ref(&keep, nullptr);
    EXPECT_EQ(0x80093101u, ThrownCode([&] { ref.decode(Blob(hex)); }));
    EXPECT_TRUE(ref == Ref(&keep, nullptr));
  }
}

TEST(CompleteRevocationRefsTest, ExactDerAndOrder) {
  CCompleteRevocationRefs refs;
  EXPECT_EQ("30 00", Hex(refs.encode()));
  refs.push_back(CCrlOcspRef());
  EXPECT_EQ("30 02 30 00", Hex(refs.encode()));
  CCRLListID const crls = Crls(0xAA);
  COcspListID const ocsps = Ocsps(7);
  refs.push_back(Ref(&crls, nullptr));
  refs.push_back(Ref(nullptr, &ocsps));
  CBlob der = refs.encode();
  CBlob expected =
      Tlv(0x30, Cat({Blob("30 00"), Ref(&crls, nullptr).encode(), Ref(nullptr, &ocsps).encode()}));
  EXPECT_EQ(Hex(expected), Hex(der));

  CCompleteRevocationRefs back;
  back.push_back(Ref(&crls, &ocsps));  // replaced by decode
  back.decode(der);
  EXPECT_TRUE(back == refs);
  ASSERT_EQ(3u, back.size());
  EXPECT_EQ(nullptr, back.front().get_crlids());
  CCompleteRevocationRefs reversed(refs.rbegin(), refs.rend());
  EXPECT_TRUE(reversed != refs);

  back.decode(Blob("30 00"));
  EXPECT_TRUE(back.empty());
  EXPECT_EQ(0x80093101u, ThrownCode([&] { back.decode(Blob("30 02 31 00")); }));
  EXPECT_EQ(0x80093101u, ThrownCode([&] { back.decode(Blob("30 03 30 01 00")); }));
  EXPECT_TRUE(back.empty());
}

TEST(CompleteRevocationRefsTest, EncodingErrorsPassThrough) {
  CCRLListID crls;
  CCrlValidatedID validated(COtherHash(Hash(1)));
  CCrlIdentifier late(Blob("30 00"), CDateTime(1949, 12, 31, 0, 0, 0, 0, 0));
  validated.put_crlIdentifier(&late);
  crls.push_back(validated);
  CCompleteRevocationRefs refs;
  refs.push_back(Ref(&crls, nullptr));
  EXPECT_EQ(1901u, ThrownCode([&] { refs.encode(); }));
  COcspListID ocsps;
  ocsps.push_back(COcspResponsesID());  // no responder
  refs.front() = Ref(nullptr, &ocsps);
  EXPECT_EQ(0x80093101u, ThrownCode([&] { refs.encode(); }));
}

TEST(CompleteRevocationRefsTest, NothingLeaksUnderAllocationFailures) {
  CCRLListID crls = Crls(1);
  CCrlIdentifier id(Blob("30 00"), CDateTime(2024, 6, 1, 0, 0, 0, 0, 0));
  int const number = 300;
  id.put_crlNumber(&number);
  CCrlValidatedID validated(COtherHash(Hash(2)));
  validated.put_crlIdentifier(&id);
  crls.push_back(validated);
  COcspListID const ocsps = Ocsps(3);
  CCompleteRevocationRefs refs;
  refs.push_back(Ref(&crls, &ocsps));
  refs.push_back(Ref(nullptr, &ocsps));
  ExpectCodecCleanUnderFaults(refs);
}

}  // namespace
