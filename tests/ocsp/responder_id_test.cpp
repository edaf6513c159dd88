// CResponderID (RFC 6960 4.2.1 ResponderID): exact DER of both alternatives,
// the responders of the OCSP fixtures, names that a strict X.520 reading
// would refuse, BER input, malformed input and equality.
#include <gtest/gtest.h>
#include <korvex/asn1types/Names.h>
#include <korvex/ocsp/ResponderID.h>
#include <korvex/ocsp/ResponderIDTraits.h>

#include <string>

#include "../cades/revref_test_util.h"

namespace {

using Korvex::CBlob;
using Korvex::ASN1::CName;
using Korvex::PKI::OCSP::CResponderID;
using namespace revreftest;

// Name: CN=Test (UTF8String).
const char kName[] = "30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74";
const char kKeyHash[] = "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13";

TEST(ResponderIDTest, DefaultSelectsNothing) {
  CResponderID id;
  EXPECT_EQ(CResponderID::kNone, id.get_type());
  EXPECT_EQ(nullptr, id.get_byName());
  EXPECT_EQ(nullptr, id.get_byKey());
  EXPECT_EQ(0x80093101u, ThrownCode([&] { id.encode(); }));
  EXPECT_TRUE(id == CResponderID());
}

TEST(ResponderIDTest, ExactDer) {
  struct Case {
    char const* name;
    CResponderID id;
    char const* der;
  };
  const Case kCases[] = {
      {"byName", CResponderID::fromName(Blob(kName)),
       "A1 11 30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74"},
      {"byKey", CResponderID::fromKeyHash(Blob(kKeyHash)),
       "A2 16 04 14 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13"},
      {"byKey, empty hash", CResponderID::fromKeyHash(CBlob()), "A2 02 04 00"},
      {"byName, empty Name", CResponderID::fromName(Blob("30 00")), "A1 02 30 00"},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    CBlob der = c.id.encode();
    EXPECT_EQ(c.der, Hex(der));
    CResponderID back;
    back.decode(der);
    EXPECT_TRUE(back == c.id);
    EXPECT_EQ(c.id.get_type(), back.get_type());
    EXPECT_EQ(c.der, Hex(back.encode()));
  }
}

TEST(ResponderIDTest, Accessors) {
  CResponderID id;
  id.put_byName(Blob(kName));
  EXPECT_EQ(CResponderID::kByName, id.get_type());
  ASSERT_NE(nullptr, id.get_byName());
  EXPECT_EQ(kName, Hex(*id.get_byName()));
  EXPECT_EQ(nullptr, id.get_byKey());
  CName name;
  EXPECT_TRUE(id.get_byName(name));
  EXPECT_EQ(L"CN=Test", std::wstring(name.toString().c_str()));

  id.put_byKey(Blob(kKeyHash));
  EXPECT_EQ(CResponderID::kByKey, id.get_type());
  EXPECT_EQ(nullptr, id.get_byName());
  EXPECT_EQ(kKeyHash, Hex(*id.get_byKey()));
  CName untouched;
  untouched.fromString(L"CN=Keep");
  EXPECT_FALSE(id.get_byName(untouched));
  EXPECT_EQ(1u, untouched.size());

  CResponderID fromName;
  fromName.put_byName(name);
  EXPECT_TRUE(fromName == CResponderID::fromName(Blob(kName)));

  id.clear();
  EXPECT_EQ(CResponderID::kNone, id.get_type());
  EXPECT_EQ(nullptr, id.get_byKey());
}

TEST(ResponderIDTest, EqualityAndCopies) {
  CResponderID name = CResponderID::fromName(Blob(kName));
  CResponderID key = CResponderID::fromKeyHash(Blob(kKeyHash));
  // The same bytes under the other alternative are another responder.
  CResponderID keyOfNameBytes = CResponderID::fromKeyHash(Blob(kName));
  EXPECT_TRUE(name != key);
  EXPECT_TRUE(name != keyOfNameBytes);
  EXPECT_TRUE(name != CResponderID());
  EXPECT_TRUE(key != CResponderID::fromKeyHash(Blob("00")));

  CResponderID copy(name);
  CResponderID assigned;
  assigned = key;
  name.put_byKey(Blob("FF"));
  key.clear();
  EXPECT_EQ(kName, Hex(*copy.get_byName()));
  EXPECT_EQ(kKeyHash, Hex(*assigned.get_byKey()));
}

// The responders of the fixture responses (tests/data/ocsp): the
// BasicOCSPResponse's responderID decoded and written back byte for byte.
TEST(ResponderIDTest, FixtureResponders) {
  struct Case {
    char const* file;
    unsigned type;
  };
  const Case kCases[] = {
      {"ocsp/resp-good.basic.der", CResponderID::kByName},
      {"ocsp/resp-revoked.basic.der", CResponderID::kByName},
      {"ocsp/resp-ca-signed.basic.der", CResponderID::kByKey},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.file);
    OcspFacts facts = ReadOcspFacts(Fixture(c.file));
    CResponderID id;
    id.decode(facts.responderID);
    EXPECT_EQ(c.type, id.get_type());
    EXPECT_EQ(Hex(facts.responderID), Hex(id.encode()));
    Element inner = Root(facts.responderID).child(0);
    if (c.type == CResponderID::kByName) {
      EXPECT_EQ(Hex(inner.der()), Hex(*id.get_byName()));
      CName name;
      id.get_byName(name);
      EXPECT_EQ(L"CN=Korvex Test OCSP Responder,OU=Validation Services,O=Korvex Test PKI,C=RU",
                std::wstring(name.toString().c_str()));
    } else {
      EXPECT_EQ(20u, id.get_byKey()->cbData());
      EXPECT_EQ(Hex(CBlob(inner.contents(), inner.length)), Hex(*id.get_byKey()));
    }
  }
}

// Real responders' names hold what a strict X.520 reading refuses: a CN over
// 64 characters, an IA5String CN, a three-letter country. They are kept.
TEST(ResponderIDTest, NamesAreKeptAsTheyStand) {
  std::string const longCn(70, 'x');
  CBlob const names[] = {
      Tlv(0x30, Tlv(0x31, Tlv(0x30, Cat({Blob("06 03 55 04 03"), Tlv(0x0C, Text(longCn))})))),
      Tlv(0x30, Tlv(0x31, Tlv(0x30, Cat({Blob("06 03 55 04 03"), Tlv(0x16, Text("ia5"))})))),
      Tlv(0x30, Tlv(0x31, Tlv(0x30, Cat({Blob("06 03 55 04 06"), Tlv(0x13, Text("RUS"))})))),
  };
  for (CBlob const& name : names) {
    SCOPED_TRACE(Hex(name));
    CBlob der = Tlv(0xA1, name);
    CResponderID id;
    id.decode(der);
    EXPECT_EQ(Hex(name), Hex(*id.get_byName()));
    EXPECT_EQ(Hex(der), Hex(id.encode()));
  }
}

TEST(ResponderIDTest, BerIsReadAndWrittenAsDer) {
  // Indefinite lengths around and inside the Name; a constructed OCTET
  // STRING key hash (X.690 8.7.3).
  struct Case {
    char const* ber;
    char const* der;
  };
  const Case kCases[] = {
      {"A1 80 30 80 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74 00 00 00 00",
       "A1 11 30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74"},
      {"A2 80 24 80 04 01 AA 04 01 BB 00 00 00 00", "A2 04 04 02 AA BB"},
      {"A2 81 03 04 01 CC", "A2 03 04 01 CC"},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.ber);
    CResponderID id;
    id.decode(Blob(c.ber));
    EXPECT_EQ(c.der, Hex(id.encode()));
  }
}

TEST(ResponderIDTest, MalformedInputKeepsTheValue) {
  const char* kBad[] = {
      "",                                                    // nothing
      "A1",                                                  // no length
      "A1 11 30 0F 31 0D",                                   // truncated
      "A3 02 04 00",                                         // no such alternative
      "A0 02 30 00",                                         // [0] is not an alternative
      "30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74",  // a bare Name
      "04 14 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13",  // bare hash
      "A1 03 02 01 05",     // byName holding an INTEGER
      "A2 03 02 01 05",     // byKey holding an INTEGER
      "A2 00",              // byKey without its OCTET STRING
      "A2 02 04 00 00",     // explicit tag longer than its contents
      "A2 02 04 00 05 00",  // trailing element
      "A1 04 30 02 31 00",  // an empty RDN (SET SIZE (1..MAX))
      "82 02 04 00",        // primitive form of the explicit tag
  };
  for (char const* hex : kBad) {
    SCOPED_TRACE(hex);
    CResponderID id = CResponderID::fromKeyHash(Blob(kKeyHash));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { id.decode(Blob(hex)); }));
    EXPECT_EQ(kKeyHash, Hex(*id.get_byKey()));
  }
}

TEST(ResponderIDTest, NameMustBeOneNameWhenEncoding) {
  const char* kBad[] = {"", "30", "30 0F 31 0D", "30 00 30 00", "02 01 05", "30 02 31 00"};
  for (char const* hex : kBad) {
    SCOPED_TRACE(hex);
    CResponderID id = CResponderID::fromName(Blob(hex));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { id.encode(); }));
  }
}

TEST(ResponderIDTest, TraitsRefuseUnknownSelectors) {
  asn1data::ASN1T_ResponderID rec;
  rec.t = 3;
  CResponderID id;
  EXPECT_EQ(0x80093101u,
            ThrownCode([&] { Korvex::PKI::OCSP::ASN1T_ResponderID_traits::get(rec, id); }));
  rec.t = asn1data::ASN1T_ResponderID::T_byKey;
  rec.u.byKey = nullptr;
  EXPECT_EQ(0x80093101u,
            ThrownCode([&] { Korvex::PKI::OCSP::ASN1T_ResponderID_traits::get(rec, id); }));
  rec.t = 0;
}

TEST(ResponderIDTest, NothingLeaksUnderAllocationFailures) {
  CResponderID byName = CResponderID::fromName(Blob(kName));
  CResponderID byKey = CResponderID::fromKeyHash(Blob(kKeyHash));
  CBlob nameDer = byName.encode();
  CBlob keyDer = byKey.encode();
  ExpectCleanUnderFaults([&] { byName.encode(); });
  ExpectCleanUnderFaults([&] { byKey.encode(); });
  ExpectCleanUnderFaults([&] {
    CResponderID id;
    id.decode(nameDer);
  });
  ExpectCleanUnderFaults([&] {
    CResponderID id;
    id.decode(keyDer);
  });
}

}  // namespace
