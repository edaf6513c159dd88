// Tests of COtherHashAlgAndValue, COtherHash (COtherHashImpl) and their traits.
#include <gtest/gtest.h>
#include <korvex/asn1types/Hash.h>
#include <korvex/asn1types/HashTraits.h>

#include "pki_values_test_util.h"
#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::ASN1::CAlgorithmIdentifier;
using Korvex::ASN1::COtherHash;
using Korvex::ASN1::COtherHashAlgAndValue;
using Korvex::ASN1::COtherHashImpl;
using typestest::Blob;
using typestest::Hex;
using typestest::ThrownCode;

namespace {

constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";
constexpr char kSha1[] = "1.3.14.3.2.26";
// OtherHashAlgAndValue { sha256, 'AABB'H }.
constexpr char kAlgAndValueHex[] =
    "30 11 30 0B 06 09 60 86 48 01 65 03 04 02 01 04 02 AA BB";
// OtherHash sha1Hash: the 20 bytes 00..13.
constexpr char kSha1HashHex[] =
    "04 14 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13";
constexpr char kTwentyBytes[] = "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13";

TEST(OtherHashAlgAndValueTest, EncodesAndDecodes) {
  COtherHashAlgAndValue value(Blob("AA BB"), CAlgorithmIdentifier(kSha256));
  EXPECT_EQ(kAlgAndValueHex, Hex(value.encode()));

  COtherHashAlgAndValue decoded;
  decoded.decode(Blob(kAlgAndValueHex));
  EXPECT_STREQ(kSha256, decoded.get_hashAlgorithm().get_algorithm());
  EXPECT_EQ("AA BB", Hex(decoded.get_hashValue()));
  EXPECT_TRUE(decoded == value);

  // Empty hash value: OCTET STRING 04 00.
  COtherHashAlgAndValue empty{CBlob(), CAlgorithmIdentifier(kSha1)};
  EXPECT_EQ("30 0B 30 07 06 05 2B 0E 03 02 1A 04 00", Hex(empty.encode()));
}

TEST(OtherHashAlgAndValueTest, AccessorsCopiesAndComparisons) {
  COtherHashAlgAndValue a;
  EXPECT_STREQ("", a.get_hashAlgorithm().get_algorithm());
  EXPECT_EQ(0u, a.get_hashValue().cbData());
  EXPECT_EQ(0x80093101u, ThrownCode([&] { a.encode(); }));  // no algorithm

  a.put_hashAlgorithm(CAlgorithmIdentifier(kSha256));
  a.put_hashValue(Blob("01 02"));
  COtherHashAlgAndValue b(a);
  EXPECT_TRUE(a == b);
  b.put_hashValue(Blob("01 03"));
  EXPECT_TRUE(a != b);
  EXPECT_FALSE(a.compare_hashValue(b));
  b = a;
  EXPECT_TRUE(a == b);

  // compare_hashValue ignores the algorithm's parameters, == does not.
  CAlgorithmIdentifier withNull(kSha256);
  withNull.put_parameters(Blob("05 00"));
  b.put_hashAlgorithm(withNull);
  EXPECT_TRUE(a != b);
  EXPECT_TRUE(a.compare_hashValue(b));
  b.put_hashAlgorithm(CAlgorithmIdentifier(kSha1));
  EXPECT_FALSE(a.compare_hashValue(b));
}

TEST(OtherHashAlgAndValueTest, DecodeFailureLeavesTheValue) {
  COtherHashAlgAndValue value(Blob("01"), CAlgorithmIdentifier(kSha1));
  char const* const bad[] = {
      "30 11 30 0B 06 09 60 86 48 01 65 03 04 02 01 04 02 AA",  // truncated
      "30 0D 30 0B 06 09 60 86 48 01 65 03 04 02 01",  // no hash value
      "30 06 04 02 AA BB 30 00",                         // components swapped
      "04 02 AA BB",
  };
  for (char const* hex : bad) {
    SCOPED_TRACE(hex);
    EXPECT_EQ(0x80093101u, ThrownCode([&] { value.decode(Blob(hex)); }));
    EXPECT_STREQ(kSha1, value.get_hashAlgorithm().get_algorithm());
    EXPECT_EQ("01", Hex(value.get_hashValue()));
  }
}

TEST(OtherHashTest, AlternativesEncodeAndDecode) {
  struct {
    char const* name;
    COtherHash value;
    char const* der;
    unsigned type;
  } const cases[] = {
      {"sha1Hash", COtherHash(Blob(kTwentyBytes)), kSha1HashHex, 1},
      {"otherHash", COtherHash(COtherHashAlgAndValue(Blob("AA BB"), CAlgorithmIdentifier(kSha256))),
       kAlgAndValueHex, 2},
      {"empty sha1Hash", COtherHash(), "04 00", 1},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.type, c.value.get_type());
    EXPECT_EQ(c.der, Hex(c.value.encode()));
    COtherHash decoded(COtherHashAlgAndValue(Blob("FF"), CAlgorithmIdentifier(kSha1)));
    decoded.decode(Blob(c.der));
    EXPECT_EQ(c.type, decoded.get_type());
    EXPECT_TRUE(decoded == c.value);
  }
}

TEST(OtherHashTest, TypedGettersFollowTheSelection) {
  COtherHash hash;
  EXPECT_EQ(1u, hash.get_type());
  ASSERT_NE(nullptr, hash.get_sha1Hash());
  EXPECT_EQ(0u, hash.get_sha1Hash()->cbData());
  EXPECT_EQ(nullptr, hash.get_otherHash());

  hash.put_otherHash(COtherHashAlgAndValue(Blob("01"), CAlgorithmIdentifier(kSha256)));
  EXPECT_EQ(2u, hash.get_type());
  EXPECT_EQ(nullptr, hash.get_sha1Hash());
  ASSERT_NE(nullptr, hash.get_otherHash());
  EXPECT_EQ("01", Hex(hash.get_otherHash()->get_hashValue()));

  hash.put_sha1Hash(Blob("02"));
  EXPECT_EQ(1u, hash.get_type());
  EXPECT_EQ("02", Hex(*hash.get_sha1Hash()));

  hash.clear();
  EXPECT_EQ(0u, hash.get_type());
  EXPECT_EQ(nullptr, hash.get_sha1Hash());
  EXPECT_EQ(nullptr, hash.get_otherHash());
  EXPECT_EQ(0x80093101u, ThrownCode([&] { hash.encode(); }));
  EXPECT_TRUE(hash == COtherHash(hash));  // nothing selected on both sides
  hash.put_sha1Hash(Blob("03"));
  EXPECT_EQ("04 01 03", Hex(hash.encode()));
}

TEST(OtherHashTest, ImplementationMapsOnlyItsTwoAlternatives) {
  COtherHashImpl impl;
  EXPECT_TRUE(impl.findTraits(1)->isType(1));
  EXPECT_TRUE(impl.findTraits(2)->isType(2));
  EXPECT_TRUE(impl.findTraits(3)->isType(0));  // the no-alternative handler
  EXPECT_TRUE(impl.findTraits(0)->isType(0));
  CBlob blob = Blob("01");
  impl.put_value(7, &blob);  // unknown: the none handler, number kept
  EXPECT_EQ(7u, impl.get_type());
  EXPECT_EQ(nullptr, impl.get_as<CBlob>(1));
}

TEST(OtherHashTest, EqualityAndCompareHashValue) {
  COtherHash sha1(Blob(kTwentyBytes));
  COtherHash sha1Other(COtherHashAlgAndValue(Blob(kTwentyBytes), CAlgorithmIdentifier(kSha1)));
  COtherHash sha256(COtherHashAlgAndValue(Blob(kTwentyBytes), CAlgorithmIdentifier(kSha256)));

  EXPECT_TRUE(sha1 == COtherHash(Blob(kTwentyBytes)));
  EXPECT_TRUE(sha1 != sha1Other);  // different alternatives
  EXPECT_TRUE(sha1 != COtherHash(Blob("00")));
  // The same SHA-1 bytes, as sha1Hash or as otherHash naming SHA-1.
  EXPECT_TRUE(sha1.compare_hashValue(sha1Other));
  EXPECT_TRUE(sha1Other.compare_hashValue(sha1));
  EXPECT_FALSE(sha1.compare_hashValue(sha256));
  EXPECT_FALSE(sha1.compare_hashValue(COtherHash(Blob("00"))));
  COtherHash none;
  none.clear();
  EXPECT_FALSE(none.compare_hashValue(none));
  EXPECT_TRUE(none != sha1);
}

TEST(OtherHashTest, DecodeRefusesOtherAlternativesAndKeepsTheValue) {
  char const* const bad[] = {
      "02 01 05",  // neither OCTET STRING nor SEQUENCE
      "04 05 01",  // truncated
      "30 00",     // OtherHashAlgAndValue without components
      "A0 03 04 01 00",
  };
  for (char const* hex : bad) {
    SCOPED_TRACE(hex);
    COtherHash hash(Blob("77"));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { hash.decode(Blob(hex)); }));
    EXPECT_EQ(1u, hash.get_type());
    EXPECT_EQ("77", Hex(*hash.get_sha1Hash()));
  }
}

TEST(OtherHashTest, TraitsRefuseAnUnknownSelector) {
  asn1data::ASN1T_OtherHash rec;
  rec.t = 3;
  COtherHash hash;
  EXPECT_EQ(0x80093101u, ThrownCode([&] { Korvex::ASN1::ASN1T_OtherHash_traits::get(rec, hash); }));
  rec.t = 1;
  rec.u.sha1Hash = nullptr;  // a selected alternative without its record
  EXPECT_EQ(0x80093101u, ThrownCode([&] { Korvex::ASN1::ASN1T_OtherHash_traits::get(rec, hash); }));
  rec.t = 0;
}

TEST(OtherHashTest, ContextHeapExhaustedWhileCopyingTheHashValue) {
  // A hash value of a size no other block of the encode has: refusing that
  // block is refusing the copy of the hash bytes into the record context.
  CBlob bytes(77);
  COtherHash sha1(bytes);
  COtherHash other(COtherHashAlgAndValue(bytes, CAlgorithmIdentifier(kSha256)));
  typestest::HeapWatch watch;
  typestest::HeapWatch::failHeapBlock(77);
  EXPECT_EQ(0x80093106u, ThrownCode([&] { sha1.encode(); }));
  EXPECT_EQ(0x80093106u, ThrownCode([&] { other.encode(); }));
  EXPECT_EQ(0x80093106u, ThrownCode([&] { other.get_otherHash()->encode(); }));
  typestest::HeapWatch::failHeapBlock(0);
  EXPECT_EQ(0, watch.live());
}

TEST(OtherHashTest, NoLeakOrStrayCodeUnderAllocationFailures) {
  COtherHash hash(COtherHashAlgAndValue(Blob("AA BB"), CAlgorithmIdentifier(kSha256)));
  pkitest::ExpectCleanUnderFaults([&] { hash.encode(); });
  pkitest::ExpectCleanUnderFaults([&] {
    COtherHash decoded;
    decoded.decode(Blob(kAlgAndValueHex));
  });
}

}  // namespace
