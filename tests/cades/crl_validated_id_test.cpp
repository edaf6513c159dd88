// CCrlValidatedID and CCRLListID: exact DER, matches in every step,
// equality's absent/present rule, list order, malformed input.
#include <gtest/gtest.h>
#include <korvex/cades/CAdESAttributes.h>

#include <string>

#include "revref_test_util.h"

namespace {

using Korvex::CBlob;
using Korvex::CDateTime;
using Korvex::ASN1::CAlgorithmIdentifier;
using Korvex::ASN1::COtherHash;
using Korvex::ASN1::COtherHashAlgAndValue;
using Korvex::PKI::CAdES::CCrlIdentifier;
using Korvex::PKI::CAdES::CCRLListID;
using Korvex::PKI::CAdES::CCrlValidatedID;
using namespace revreftest;

const char kName[] = "30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74";

CBlob Repeat(unsigned char byte, unsigned long n) {
  CBlob blob(n);
  for (unsigned long i = 0; i < n; ++i) blob.pbData()[i] = byte;
  return blob;
}

COtherHash Sha1(unsigned char byte) { return COtherHash(Repeat(byte, 20)); }

CCrlIdentifier Identifier(int const* number, unsigned second = 0, char const* name = kName) {
  CCrlIdentifier id(Blob(name), CDateTime(2024, 6, 1, 0, 0, second, 0, 0));
  id.put_crlNumber(number);
  return id;
}

CCrlValidatedID Validated(COtherHash const& hash, CCrlIdentifier const* identifier) {
  CCrlValidatedID v(hash);
  v.put_crlIdentifier(identifier);
  return v;
}

const int kTwo = 2, kThree = 3;

std::string Aa20() { return Hex(Repeat(0xAA, 20)); }

TEST(CrlValidatedIDTest, DefaultValue) {
  CCrlValidatedID v;
  EXPECT_TRUE(v.get_crlHash() == COtherHash());
  EXPECT_EQ(nullptr, v.get_crlIdentifier());
  // The default hash is an empty sha1Hash.
  EXPECT_EQ("30 02 04 00", Hex(v.encode()));
}

TEST(CrlValidatedIDTest, ExactDer) {
  CCrlIdentifier const id = Identifier(&kTwo);
  COtherHashAlgAndValue const sha256(Repeat(0x55, 32),
                                     CAlgorithmIdentifier("2.16.840.1.101.3.4.2.1"));
  struct Case {
    char const* name;
    CCrlValidatedID value;
    std::string der;
  };
  const Case kCases[] = {
      {"sha1Hash only", Validated(Sha1(0xAA), nullptr), "30 16 04 14 " + Aa20()},
      {"sha1Hash and identifier", Validated(Sha1(0xAA), &id),
       "30 3B 04 14 " + Aa20() +
           " 30 23 30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74"
           " 17 0D 32 34 30 36 30 31 30 30 30 30 30 30 5A 02 01 02"},
      {"otherHash (SHA-256)", Validated(COtherHash(sha256), nullptr),
       "30 31 30 2F 30 0B 06 09 60 86 48 01 65 03 04 02 01 04 20 " + Hex(Repeat(0x55, 32))},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    CBlob der = c.value.encode();
    EXPECT_EQ(c.der, Hex(der));
    CCrlValidatedID back;
    back.decode(der);
    EXPECT_TRUE(back == c.value);
    EXPECT_EQ(c.der, Hex(back.encode()));
  }
}

TEST(CrlValidatedIDTest, HashThatDoesNotEncode) {
  COtherHash none;
  none.clear();
  CCrlValidatedID v(none);
  EXPECT_EQ(0x80093101u, ThrownCode([&] { v.encode(); }));
}

TEST(CrlValidatedIDTest, IdentifierErrorsPassThrough) {
  CCrlIdentifier late(Blob(kName), CDateTime(2050, 1, 1, 0, 0, 0, 0, 0));
  CCrlValidatedID v = Validated(Sha1(1), &late);
  EXPECT_EQ(1901u, ThrownCode([&] { v.encode(); }));
}

TEST(CrlValidatedIDTest, MalformedInputKeepsTheValue) {
  CBlob const identifier = Identifier(&kTwo).encode();
  struct Case {
    char const* name;
    CBlob der;
  };
  const Case kCases[] = {
      {"empty SEQUENCE", Blob("30 00")},
      {"hash not an OtherHash", Blob("30 03 02 01 05")},
      {"hash an empty SEQUENCE", Blob("30 02 30 00")},
      {"identifier first", Tlv(0x30, identifier)},
      {"identifier broken", Tlv(0x30, Cat({Blob("04 00"), Blob("30 03 02 01 05")}))},
      {"element after the identifier", Tlv(0x30, Cat({Blob("04 00"), identifier, Blob("05 00")}))},
      {"trailing bytes", Cat({Blob("30 02 04 00"), Blob("00 00")})},
      {"truncated", Blob("30 16 04 14 AA AA")},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    CCrlIdentifier id = Identifier(&kThree);
    CCrlValidatedID v = Validated(Sha1(7), &id);
    CCrlValidatedID const before = v;
    EXPECT_EQ(0x80093101u, ThrownCode([&] { v.decode(c.der); }));
    EXPECT_TRUE(v == before);
  }
}

TEST(CrlValidatedIDTest, EqualityAbsentPresentRule) {
  CCrlIdentifier const id = Identifier(&kTwo);
  CCrlValidatedID const without = Validated(Sha1(1), nullptr);
  CCrlValidatedID const with = Validated(Sha1(1), &id);
  EXPECT_TRUE(without == Validated(Sha1(1), nullptr));
  EXPECT_TRUE(with == Validated(Sha1(1), &id));
  EXPECT_TRUE(without != with);
  EXPECT_TRUE(with != without);
  CCrlIdentifier const other = Identifier(&kThree);
  EXPECT_TRUE(with != Validated(Sha1(1), &other));
  EXPECT_TRUE(with != Validated(Sha1(2), &id));
}

TEST(CrlValidatedIDTest, PutIdentifierStoresACopy) {
  CCrlIdentifier id = Identifier(&kTwo);
  CCrlValidatedID v(Sha1(1));
  v.put_crlIdentifier(&id);
  id.put_crlNumber(&kThree);
  EXPECT_EQ(2, v.get_crlIdentifier()->get_intCrlNumber());
  CCrlValidatedID copy(v);
  v.put_crlIdentifier(nullptr);
  EXPECT_EQ(nullptr, v.get_crlIdentifier());
  ASSERT_NE(nullptr, copy.get_crlIdentifier());
  EXPECT_EQ(2, copy.get_crlIdentifier()->get_intCrlNumber());
  // Putting the identifier a value already holds changes nothing.
  copy.put_crlIdentifier(copy.get_crlIdentifier());
  EXPECT_EQ(2, copy.get_crlIdentifier()->get_intCrlNumber());
}

TEST(CrlValidatedIDTest, Matches) {
  CCrlIdentifier const numbered = Identifier(&kTwo);
  CCrlIdentifier const otherNumber = Identifier(&kThree);
  CCrlIdentifier const unnumbered = Identifier(nullptr);
  CCrlIdentifier const laterTime = Identifier(&kTwo, 1);
  CCrlIdentifier const otherIssuer = Identifier(&kTwo, 0, "30 00");
  CCrlValidatedID const base = Validated(Sha1(1), &numbered);
  struct Case {
    char const* name;
    CCrlValidatedID left;
    CCrlValidatedID right;
    bool plain, ignoreId, ignoreNumber, ignoreBoth;
  };
  const Case kCases[] = {
      {"identical", base, base, true, true, true, true},
      {"hashes differ", base, Validated(Sha1(2), &numbered), false, false, false, false},
      {"hashes differ, no identifiers", Validated(Sha1(1), nullptr), Validated(Sha1(2), nullptr),
       false, false, false, false},
      {"neither has an identifier", Validated(Sha1(1), nullptr), Validated(Sha1(1), nullptr), true,
       true, true, true},
      {"right lacks the identifier", base, Validated(Sha1(1), nullptr), false, true, false, true},
      {"left lacks the identifier", Validated(Sha1(1), nullptr), base, false, true, false, true},
      {"times differ", base, Validated(Sha1(1), &laterTime), false, false, false, false},
      {"issuers differ", base, Validated(Sha1(1), &otherIssuer), false, false, false, false},
      {"neither has a number", Validated(Sha1(1), &unnumbered), Validated(Sha1(1), &unnumbered),
       true, true, true, true},
      {"right lacks the number", base, Validated(Sha1(1), &unnumbered), false, false, true, true},
      {"left lacks the number", Validated(Sha1(1), &unnumbered), base, false, false, true, true},
      {"numbers differ", base, Validated(Sha1(1), &otherNumber), false, false, false, false},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.plain, c.left.matches(c.right, false, false));
    EXPECT_EQ(c.ignoreId, c.left.matches(c.right, true, false));
    EXPECT_EQ(c.ignoreNumber, c.left.matches(c.right, false, true));
    EXPECT_EQ(c.ignoreBoth, c.left.matches(c.right, true, true));
  }
  // A sha1Hash and an otherHash naming SHA-1 with the same bytes are
  // different OtherHash values: no match.
  COtherHashAlgAndValue const sha1(Repeat(1, 20), CAlgorithmIdentifier("1.3.14.3.2.26"));
  EXPECT_FALSE(
      Validated(Sha1(1), nullptr).matches(Validated(COtherHash(sha1), nullptr), true, true));
}

TEST(CRLListIDTest, ExactDerAndOrder) {
  CCrlIdentifier const id = Identifier(&kTwo);
  CCRLListID list;
  EXPECT_EQ("30 02 30 00", Hex(list.encode()));
  list.push_back(Validated(Sha1(0xAA), nullptr));
  EXPECT_EQ("30 1A 30 18 30 16 04 14 " + Aa20(), Hex(list.encode()));
  list.push_back(Validated(Sha1(0xBB), &id));
  CBlob der = list.encode();
  CBlob expected = Tlv(0x30, Tlv(0x30, Cat({Validated(Sha1(0xAA), nullptr).encode(),
                                            Validated(Sha1(0xBB), &id).encode()})));
  EXPECT_EQ(Hex(expected), Hex(der));

  CCRLListID back;
  back.push_back(CCrlValidatedID());  // replaced by decode
  back.decode(der);
  ASSERT_EQ(2u, back.size());
  EXPECT_TRUE(back == list);
  EXPECT_EQ(nullptr, back.front().get_crlIdentifier());
  ASSERT_NE(nullptr, back.back().get_crlIdentifier());
  EXPECT_EQ(2, back.back().get_crlIdentifier()->get_intCrlNumber());

  // Order matters; so does the count.
  CCRLListID reversed(list.rbegin(), list.rend());
  EXPECT_TRUE(reversed != list);
  CCRLListID shorter = list;
  shorter.pop_back();
  EXPECT_TRUE(shorter != list);
  EXPECT_TRUE(list != CCRLListID());
  EXPECT_TRUE(CCRLListID() == CCRLListID());

  // An empty list on the wire decodes empty, even into a full list.
  back.decode(Blob("30 02 30 00"));
  EXPECT_TRUE(back.empty());
}

TEST(CRLListIDTest, MalformedInputKeepsTheList) {
  const char* kBad[] = {
      "30 00",          "30 02 31 00",      "30 04 30 02 02 00", "30 04 30 02 30 00",
      "30 02 30 00 00", "30 05 30 03 30 01"};
  for (char const* hex : kBad) {
    SCOPED_TRACE(hex);
    CCRLListID list;
    list.push_back(Validated(Sha1(1), nullptr));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { list.decode(Blob(hex)); }));
    ASSERT_EQ(1u, list.size());
    EXPECT_TRUE(list.front() == Validated(Sha1(1), nullptr));
  }
}

TEST(CrlValidatedIDTest, NothingLeaksUnderAllocationFailures) {
  CCrlIdentifier const id = Identifier(&kTwo);
  CCRLListID list;
  list.push_back(Validated(Sha1(1), &id));
  list.push_back(Validated(Sha1(2), nullptr));
  ExpectCodecCleanUnderFaults(list);
}

}  // namespace
