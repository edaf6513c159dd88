// Tests of CAlgorithmIdentifier, CAlgorithmIdentifierEx and their traits.
#include <gtest/gtest.h>
#include <korvex/asn1types/AlgorithmIdentifier.h>
#include <korvex/asn1types/AlgorithmIdentifierTraits.h>

#include <string>

#include "pki_values_test_util.h"
#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::ASN1::CAlgorithmIdentifier;
using Korvex::ASN1::CAlgorithmIdentifierEx;
using typestest::Blob;
using typestest::Hex;
using typestest::ThrownCode;

namespace {

constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";

struct AlgorithmVector {
  char const* name;
  char const* oid;
  char const* parameters;  // hex, "" = absent
  char const* der;
};

// DER built by hand and checked with openssl asn1parse.
AlgorithmVector const kAlgorithmVectors[] = {
    {"sha256 absent", kSha256, "", "30 0B 06 09 60 86 48 01 65 03 04 02 01"},
    {"sha256 NULL", kSha256, "05 00", "30 0D 06 09 60 86 48 01 65 03 04 02 01 05 00"},
    {"sha1 absent", "1.3.14.3.2.26", "", "30 07 06 05 2B 0E 03 02 1A"},
    {"sha256WithRSA NULL", "1.2.840.113549.1.1.11", "05 00",
     "30 0D 06 09 2A 86 48 86 F7 0D 01 01 0B 05 00"},
    // An OID without an information object keeps its parameters as they are.
    {"unknown OID, raw params", "1.2.3.4", "04 02 AB CD", "30 09 06 03 2A 03 04 04 02 AB CD"},
};

TEST(AlgorithmIdentifierTest, EncodesAndDecodesTheVectors) {
  for (AlgorithmVector const& v : kAlgorithmVectors) {
    SCOPED_TRACE(v.name);
    CAlgorithmIdentifier alg(v.oid);
    alg.put_parameters(Blob(v.parameters));
    EXPECT_EQ(v.der, Hex(alg.encode()));

    CAlgorithmIdentifier decoded;
    decoded.decode(Blob(v.der));
    EXPECT_STREQ(v.oid, decoded.get_algorithm());
    EXPECT_EQ(Hex(Blob(v.parameters)), Hex(decoded.get_parameters()));
    EXPECT_TRUE(decoded == alg);
  }
}

TEST(AlgorithmIdentifierTest, DefaultIsEmptyAndDoesNotEncode) {
  CAlgorithmIdentifier alg;
  EXPECT_STREQ("", alg.get_algorithm());
  EXPECT_EQ(0u, alg.get_parameters().cbData());
  EXPECT_EQ(0x80093101u, ThrownCode([&] { alg.encode(); }));
  CAlgorithmIdentifier null(static_cast<char const*>(nullptr));
  EXPECT_STREQ("", null.get_algorithm());
}

TEST(AlgorithmIdentifierTest, EncodeRefusesBadOidsAndParameters) {
  struct {
    char const* name;
    char const* oid;
    char const* parameters;
  } const cases[] = {
      {"empty OID", "", ""},
      {"double dot", "1..2", ""},
      {"trailing dot", "1.2.", ""},
      {"letters", "1.2x", ""},
      {"last arc 0xFFFFFFFF", "1.2.4294967295", ""},
      // SHA-256's parameters are NULL (RFC 5754 2): an INTEGER is refused by the
      // table decoder, and so are two elements or a truncated one.
      {"sha256 INTEGER params", kSha256, "02 01 05"},
      {"sha256 two NULLs", kSha256, "05 00 05 00"},
      {"sha256 truncated", kSha256, "05"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    CAlgorithmIdentifier alg(c.oid);
    alg.put_parameters(Blob(c.parameters));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { alg.encode(); }));
  }
}

TEST(AlgorithmIdentifierTest, DecodeFailuresLeaveTheValue) {
  char const* const bad[] = {
      "",                                      // nothing
      "30 0B 06 09 60 86 48 01 65 03 04 02",   // truncated
      "31 0B 06 09 60 86 48 01 65 03 04 02 01",  // SET, not SEQUENCE
      "30 02 05 00",                           // no OID
      "30 0F 06 09 60 86 48 01 65 03 04 02 01 05 00 05 00",  // extra element
  };
  for (char const* hex : bad) {
    SCOPED_TRACE(hex);
    CAlgorithmIdentifierEx alg("1.2.3");
    alg.put_parameters(Blob("05 00"));
    alg.put_cachedInfo(7);
    EXPECT_EQ(0x80093101u, ThrownCode([&] { alg.decode(Blob(hex)); }));
    EXPECT_STREQ("1.2.3", alg.get_algorithm());
    EXPECT_EQ("05 00", Hex(alg.get_parameters()));
    EXPECT_EQ(7u, alg.get_cachedInfo());
  }
}

TEST(AlgorithmIdentifierTest, ReceivedParametersOfAnotherTypeAreKeptButNotWritten) {
  // The decoder keeps bytes that are not of the algorithm's parameters type
  // raw (the element around them is sound); writing them is refused.
  CAlgorithmIdentifier alg;
  alg.decode(Blob("30 0E 06 09 60 86 48 01 65 03 04 02 01 02 01 05"));
  EXPECT_STREQ(kSha256, alg.get_algorithm());
  EXPECT_EQ("02 01 05", Hex(alg.get_parameters()));
  EXPECT_EQ(0x80093101u, ThrownCode([&] { alg.encode(); }));
}

TEST(AlgorithmIdentifierTest, EqualityComparesOidTextAndParameterBytes) {
  CAlgorithmIdentifier a(kSha256), b(kSha256);
  EXPECT_TRUE(a == b);
  b.put_parameters(Blob("05 00"));
  EXPECT_TRUE(a != b);  // same OID, different parameter bytes
  a.put_parameters(Blob("05 00"));
  EXPECT_TRUE(a == b);
  b.put_parameters(CBlob());
  a.put_parameters(CBlob());
  EXPECT_TRUE(a == b);  // absent on both sides
  // The texts are compared as bytes, not as OIDs.
  EXPECT_TRUE(CAlgorithmIdentifier("1.2") != CAlgorithmIdentifier(" 1.2"));
}

TEST(AlgorithmIdentifierTest, CopyAssignAndSwap) {
  CAlgorithmIdentifier a("1.2.3");
  a.put_parameters(Blob("05 00"));
  CAlgorithmIdentifier b(a);
  EXPECT_TRUE(a == b);
  CAlgorithmIdentifier c("9.9");
  c = a;
  EXPECT_TRUE(c == a);
  c.assign(c);
  EXPECT_TRUE(c == a);

  CAlgorithmIdentifier d(kSha256);
  d.swap(a);
  EXPECT_STREQ(kSha256, a.get_algorithm());
  EXPECT_EQ(0u, a.get_parameters().cbData());
  EXPECT_STREQ("1.2.3", d.get_algorithm());
  EXPECT_EQ("05 00", Hex(d.get_parameters()));
}

TEST(AlgorithmIdentifierExTest, CacheKeptForTheSameOidAndClearedOnChange) {
  CAlgorithmIdentifierEx alg(kSha256);
  EXPECT_EQ(0u, alg.get_cachedInfo());
  alg.put_cachedInfo(0x800C);
  alg.put_algorithm(kSha256);  // the OID already held: nothing changes
  EXPECT_EQ(0x800Cu, alg.get_cachedInfo());
  alg.put_parameters(Blob("05 00"));  // parameters do not touch the cache
  EXPECT_EQ(0x800Cu, alg.get_cachedInfo());
  alg.put_algorithm("1.3.14.3.2.26");
  EXPECT_EQ(0u, alg.get_cachedInfo());
  EXPECT_STREQ("1.3.14.3.2.26", alg.get_algorithm());

  alg.put_cachedInfo(5);
  alg.put_algorithm(nullptr);  // null reads as empty text: a change
  EXPECT_EQ(0u, alg.get_cachedInfo());
  EXPECT_STREQ("", alg.get_algorithm());
  alg.put_cachedInfo(5);
  alg.put_algorithm("");
  EXPECT_EQ(5u, alg.get_cachedInfo());
}

TEST(AlgorithmIdentifierExTest, ChangesThroughTheBaseReachTheCache) {
  CAlgorithmIdentifierEx alg(kSha256);
  alg.put_cachedInfo(1);
  CAlgorithmIdentifier& base = alg;

  // decode stores the OID through the virtual put_algorithm.
  base.decode(Blob("30 0B 06 09 60 86 48 01 65 03 04 02 01"));
  EXPECT_EQ(1u, alg.get_cachedInfo());  // same OID
  base.decode(Blob("30 07 06 05 2B 0E 03 02 1A"));
  EXPECT_EQ(0u, alg.get_cachedInfo());
  EXPECT_STREQ("1.3.14.3.2.26", alg.get_algorithm());

  alg.put_cachedInfo(2);
  base = CAlgorithmIdentifier("1.3.14.3.2.26");
  EXPECT_EQ(2u, alg.get_cachedInfo());
  base = CAlgorithmIdentifier(kSha256);
  EXPECT_EQ(0u, alg.get_cachedInfo());

  // swap stores the OIDs through put_algorithm as well.
  alg.put_cachedInfo(3);
  CAlgorithmIdentifier other("1.2.3");
  base.swap(other);
  EXPECT_EQ(0u, alg.get_cachedInfo());
  EXPECT_STREQ("1.2.3", alg.get_algorithm());
}

TEST(AlgorithmIdentifierExTest, CopiesCarryTheCacheAndSwapExchangesIt) {
  CAlgorithmIdentifierEx a(kSha256);
  a.put_cachedInfo(11);
  CAlgorithmIdentifierEx b(a);
  EXPECT_EQ(11u, b.get_cachedInfo());
  CAlgorithmIdentifierEx c("1.2");
  c.put_cachedInfo(22);
  c = a;
  EXPECT_EQ(11u, c.get_cachedInfo());
  CAlgorithmIdentifierEx fromBase{CAlgorithmIdentifier(kSha256)};
  EXPECT_EQ(0u, fromBase.get_cachedInfo());
  fromBase.put_cachedInfo(44);
  fromBase = CAlgorithmIdentifier(kSha256);  // same OID: the slot stays
  EXPECT_EQ(44u, fromBase.get_cachedInfo());
  fromBase = CAlgorithmIdentifier("1.2");
  EXPECT_EQ(0u, fromBase.get_cachedInfo());

  CAlgorithmIdentifierEx d("1.2");
  d.put_cachedInfo(33);
  a.swap(d);
  EXPECT_STREQ("1.2", a.get_algorithm());
  EXPECT_EQ(33u, a.get_cachedInfo());
  EXPECT_STREQ(kSha256, d.get_algorithm());
  EXPECT_EQ(11u, d.get_cachedInfo());
}

TEST(AlgorithmIdentifierTraitsTest, SetFillsTheRecordFromTheContextHeap) {
  typestest::HeapWatch watch;
  {
    ASN1BERDecodeBuffer owner;
    asn1data::ASN1T_AlgorithmIdentifier rec;
    CAlgorithmIdentifier alg(kSha256);
    alg.put_parameters(Blob("05 00"));
    Korvex::ASN1::ASN1T_AlgorithmIdentifier_traits::set(owner.getCtxtPtr(), rec, alg);
    EXPECT_EQ(1u, rec.m.parametersPresent);
    EXPECT_EQ(9u, rec.algorithm.numids);
    EXPECT_EQ(2u, rec.parameters.numocts);
    // The table decoder resolved the parameters as SHA-256's NULL.
    EXPECT_NE(nullptr, rec.parameters.decoded);

    asn1data::ASN1T_AlgorithmIdentifier copy;
    Korvex::ASN1::ASN1T_AlgorithmIdentifier_traits::copy(owner.getCtxtPtr(), rec, copy);
    CAlgorithmIdentifier back;
    Korvex::ASN1::ASN1T_AlgorithmIdentifier_traits::get(copy, back);
    EXPECT_TRUE(back == alg);

    EXPECT_EQ(0x80070057u, ThrownCode([&] {
                Korvex::ASN1::ASN1T_AlgorithmIdentifier_traits::set(nullptr, rec, alg);
              }));
  }
  EXPECT_EQ(0, watch.live());
}

TEST(AlgorithmIdentifierTraitsTest, NoLeakOrStrayCodeUnderAllocationFailures) {
  CAlgorithmIdentifier alg(kSha256);
  alg.put_parameters(Blob("05 00"));
  CBlob der = Blob("30 0D 06 09 60 86 48 01 65 03 04 02 01 05 00");
  pkitest::ExpectCleanUnderFaults([&] { EXPECT_EQ(Hex(der), Hex(alg.encode())); });
  pkitest::ExpectCleanUnderFaults([&] {
    CAlgorithmIdentifier decoded;
    decoded.decode(der);
    EXPECT_TRUE(decoded == alg);
  });
}

}  // namespace
