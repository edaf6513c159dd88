// CCrlIdentifier: exact DER, the CRL-number forms (code 13), the UTCTime
// range rule (code 1901), decoding of the two-digit year, malformed input,
// and the identifiers of the real CRL fixtures.
#include <gtest/gtest.h>
#include <korvex/cades/CAdESAttributes.h>

#include <climits>
#include <string>

#include "revref_test_util.h"

namespace {

using Korvex::CBlob;
using Korvex::CDateTime;
using Korvex::ASN1::CBigInteger;
using Korvex::PKI::CAdES::CCrlIdentifier;
using namespace revreftest;

// Name: CN=Test (UTF8String).
const char kName[] = "30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74";

CDateTime At(unsigned y, unsigned mo, unsigned d, unsigned h, unsigned mi, unsigned s,
             unsigned ms = 0) {
  return CDateTime(y, mo, d, h, mi, s, ms, 0);
}

CCrlIdentifier Identifier(CDateTime const& t) { return CCrlIdentifier(Blob(kName), t); }

TEST(CrlIdentifierTest, DefaultValue) {
  CCrlIdentifier id;
  EXPECT_EQ(0u, id.get_crlissuer().cbData());
  EXPECT_EQ(CDateTime(0, 0), id.get_crlIssuedTime());
  EXPECT_EQ(nullptr, id.get_longCrlNumber());
  EXPECT_EQ(13u, ThrownCode([&] { id.get_intCrlNumber(); }));
  // An empty issuer is no element: encoding it would write an unreadable
  // SEQUENCE.
  EXPECT_EQ(0x80093101u, ThrownCode([&] { id.encode(); }));
}

TEST(CrlIdentifierTest, ExactDer) {
  struct Case {
    char const* name;
    int const* number;
    char const* der;
  };
  static const int kTwo = 2, kZero = 0, kMax = INT_MAX, k128 = 128;
  const Case kCases[] = {
      {"no number", nullptr,
       "30 20 30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74"
       " 17 0D 32 34 30 36 30 31 30 30 30 30 30 30 5A"},
      {"number 2", &kTwo,
       "30 23 30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74"
       " 17 0D 32 34 30 36 30 31 30 30 30 30 30 30 5A 02 01 02"},
      {"number 0", &kZero,
       "30 23 30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74"
       " 17 0D 32 34 30 36 30 31 30 30 30 30 30 30 5A 02 01 00"},
      {"number 128 gets a sign octet", &k128,
       "30 24 30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74"
       " 17 0D 32 34 30 36 30 31 30 30 30 30 30 30 5A 02 02 00 80"},
      {"number 0x7FFFFFFF", &kMax,
       "30 26 30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74"
       " 17 0D 32 34 30 36 30 31 30 30 30 30 30 30 5A 02 04 7F FF FF FF"},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    CCrlIdentifier id = Identifier(At(2024, 6, 1, 0, 0, 0));
    id.put_crlNumber(c.number);
    CBlob der = id.encode();
    EXPECT_EQ(c.der, Hex(der));
    CCrlIdentifier back;
    back.decode(der);
    EXPECT_TRUE(back == id);
    EXPECT_EQ(Hex(Blob(kName)), Hex(back.get_crlissuer()));
    if (c.number) {
      EXPECT_EQ(*c.number, back.get_intCrlNumber());
    } else {
      EXPECT_EQ(nullptr, back.get_longCrlNumber());
    }
  }
}

TEST(CrlIdentifierTest, CrlNumberForms) {
  CCrlIdentifier id = Identifier(At(2024, 6, 1, 0, 0, 0));
  int const zero = 0;
  id.put_crlNumber(&zero);
  ASSERT_NE(nullptr, id.get_longCrlNumber());
  EXPECT_EQ(0, id.get_intCrlNumber());

  int const max = INT_MAX;
  id.put_crlNumber(&max);
  EXPECT_EQ(INT_MAX, id.get_intCrlNumber());
  EXPECT_EQ(CBigInteger(0x7FFFFFFFul), *id.get_longCrlNumber());

  // 2^31 is a CRL number (RFC 5280 5.2.3 allows 20 octets) but no int.
  CBigInteger const big(0x80000000ul);
  id.put_longCrlNumber(&big);
  EXPECT_EQ(13u, ThrownCode([&] { id.get_intCrlNumber(); }));
  ASSERT_NE(nullptr, id.get_longCrlNumber());
  EXPECT_EQ(big, *id.get_longCrlNumber());

  // Bigger than an unsigned long: the parse overflows.
  unsigned char const huge[] = {0x01, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  CBigInteger const tooBig(huge, sizeof huge);
  id.put_longCrlNumber(&tooBig);
  EXPECT_EQ(13u, ThrownCode([&] { id.get_intCrlNumber(); }));

  // A negative number (malformed, but INTEGER holds it) is no int either.
  unsigned char const minusOne[] = {0xFF};
  CBigInteger const negative(minusOne, 1);
  id.put_longCrlNumber(&negative);
  EXPECT_EQ(13u, ThrownCode([&] { id.get_intCrlNumber(); }));
  EXPECT_EQ("02 01 FF", Hex(id.encode()).substr(Hex(id.encode()).size() - 8));

  // A negative int is refused and the number stays as it was.
  id.put_crlNumber(&max);
  int const minus = -1;
  EXPECT_EQ(13u, ThrownCode([&] { id.put_crlNumber(&minus); }));
  int const lowest = INT_MIN;
  EXPECT_EQ(13u, ThrownCode([&] { id.put_crlNumber(&lowest); }));
  EXPECT_EQ(INT_MAX, id.get_intCrlNumber());

  // Null removes the one stored number, whichever form set it.
  id.put_crlNumber(nullptr);
  EXPECT_EQ(nullptr, id.get_longCrlNumber());
  EXPECT_EQ(13u, ThrownCode([&] { id.get_intCrlNumber(); }));
  id.put_longCrlNumber(&big);
  id.put_longCrlNumber(nullptr);
  EXPECT_EQ(nullptr, id.get_longCrlNumber());

  // put_longCrlNumber stores a copy.
  CBigInteger changing(5ul);
  id.put_longCrlNumber(&changing);
  changing = CBigInteger(6ul);
  EXPECT_EQ(5, id.get_intCrlNumber());
}

TEST(CrlIdentifierTest, UtcTimeRange) {
  struct Case {
    char const* name;
    CDateTime time;
    unsigned code;
    char const* text;  // the UTCTime written
  };
  const Case kCases[] = {
      {"last second of 2049", At(2049, 12, 31, 23, 59, 59), 0, "491231235959Z"},
      {"first second of 2050", At(2050, 1, 1, 0, 0, 0), 1901, ""},
      {"first second of 1950", At(1950, 1, 1, 0, 0, 0), 0, "500101000000Z"},
      {"last second of 1949", At(1949, 12, 31, 23, 59, 59), 1901, ""},
      {"the FILETIME epoch", At(1601, 1, 1, 0, 0, 0), 1901, ""},
      {"the default time", CDateTime(0, 0), 0, "700101000000Z"},
      {"milliseconds are dropped", At(2024, 6, 1, 12, 30, 45, 999), 0, "240601123045Z"},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    CCrlIdentifier id = Identifier(c.time);
    unsigned code = ThrownCode([&] { id.encode(); });
    EXPECT_EQ(c.code, code);
    if (code == 0) {
      CBlob der = id.encode();
      Element time = Root(der).child(1);
      EXPECT_EQ(0x17, time.tag());
      EXPECT_EQ(c.text, time.text());
    }
  }
  // Beyond any calendar: 2^63 ticks and more.
  _FILETIME far{0xFFFFFFFFu, 0xFFFFFFF0u};
  CCrlIdentifier id = Identifier(CDateTime(far));
  EXPECT_EQ(1901u, ThrownCode([&] { id.encode(); }));
}

TEST(CrlIdentifierTest, MillisecondsAreLostOnEncode) {
  CCrlIdentifier id = Identifier(At(2024, 6, 1, 12, 30, 45, 250));
  CCrlIdentifier back;
  back.decode(id.encode());
  EXPECT_EQ(At(2024, 6, 1, 12, 30, 45), back.get_crlIssuedTime());
  EXPECT_FALSE(back == id);
  id.put_crlIssuedTime(At(2024, 6, 1, 12, 30, 45));
  EXPECT_TRUE(back == id);
}

CBlob WithTime(std::string const& utcTime) {
  return Tlv(0x30, Cat({Blob(kName), Tlv(0x17, Text(utcTime))}));
}

TEST(CrlIdentifierTest, DecodesTwoDigitYears) {
  struct Case {
    char const* text;
    CDateTime time;
  };
  const Case kCases[] = {
      {"491231235959Z", At(2049, 12, 31, 23, 59, 59)},
      {"500101000000Z", At(1950, 1, 1, 0, 0, 0)},
      {"000229120000Z", At(2000, 2, 29, 12, 0, 0)},
      {"991231235959Z", At(1999, 12, 31, 23, 59, 59)},
      // X.680 lets UTCTime leave out the seconds.
      {"2406011230Z", At(2024, 6, 1, 12, 30, 0)},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.text);
    CCrlIdentifier id;
    id.decode(WithTime(c.text));
    EXPECT_EQ(c.time, id.get_crlIssuedTime());
    EXPECT_EQ(nullptr, id.get_longCrlNumber());
  }
}

TEST(CrlIdentifierTest, MalformedInputKeepsTheValue) {
  struct Case {
    char const* name;
    CBlob der;
  };
  const Case kCases[] = {
      {"empty", CBlob()},
      {"truncated", Blob("30 23 30 0F 31 0D")},
      {"not a SEQUENCE", Blob("31 03 02 01 02")},
      {"no time", Tlv(0x30, Blob(kName))},
      {"no issuer", Tlv(0x30, Tlv(0x17, Text("240601000000Z")))},
      {"GeneralizedTime instead of UTCTime",
       Tlv(0x30, Cat({Blob(kName), Tlv(0x18, Text("20240601000000Z"))}))},
      {"time zone offset", WithTime("240601000000+0300")},
      {"local time", WithTime("240601000000")},
      {"fraction", WithTime("240601000000.5Z")},
      {"letters", WithTime("24O601000000Z")},
      {"one year digit", WithTime("4Z")},
      {"month 13", WithTime("241301000000Z")},
      {"30 February", WithTime("240230000000Z")},
      {"hour 24", WithTime("240601240000Z")},
      {"empty time", WithTime("")},
      {"trailing bytes", Cat({WithTime("240601000000Z"), Blob("00")})},
      {"element after the number",
       Tlv(0x30, Cat({Blob(kName), Tlv(0x17, Text("240601000000Z")), Blob("02 01 02 05 00")}))},
      {"number not an INTEGER",
       Tlv(0x30, Cat({Blob(kName), Tlv(0x17, Text("240601000000Z")), Blob("04 01 02")}))},
      {"empty INTEGER",
       Tlv(0x30, Cat({Blob(kName), Tlv(0x17, Text("240601000000Z")), Blob("02 00")}))},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    CCrlIdentifier id = Identifier(At(2024, 1, 2, 3, 4, 5));
    int const seven = 7;
    id.put_crlNumber(&seven);
    CCrlIdentifier const before = id;
    EXPECT_EQ(0x80093101u, ThrownCode([&] { id.decode(c.der); }));
    EXPECT_TRUE(id == before);
  }
}

TEST(CrlIdentifierTest, IssuerMustBeOneElement) {
  const char* kBad[] = {"30", "30 05 02 01", "30 00 30 00", "05 00 00"};
  for (char const* hex : kBad) {
    SCOPED_TRACE(hex);
    CCrlIdentifier id(Blob(hex), At(2024, 6, 1, 0, 0, 0));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { id.encode(); }));
  }
  // An indefinite-length Name is one element too and is written as it stands.
  CBlob ber = Blob("30 80 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74 00 00");
  CCrlIdentifier id(ber, At(2024, 6, 1, 0, 0, 0));
  CCrlIdentifier back;
  back.decode(id.encode());
  EXPECT_EQ(Hex(ber), Hex(back.get_crlissuer()));
}

TEST(CrlIdentifierTest, EqualityAbsentPresentRule) {
  CCrlIdentifier a = Identifier(At(2024, 6, 1, 0, 0, 0));
  CCrlIdentifier b = a;
  EXPECT_TRUE(a == b);
  int const one = 1, two = 2;
  b.put_crlNumber(&one);
  EXPECT_TRUE(a != b);  // one number absent
  EXPECT_TRUE(b != a);
  a.put_crlNumber(&one);
  EXPECT_TRUE(a == b);
  b.put_crlNumber(&two);
  EXPECT_TRUE(a != b);
  // Numbers compare by value, not by their bytes.
  unsigned char const padded[] = {0x00, 0x00, 0x02};
  CBigInteger const paddedTwo(padded, sizeof padded);
  a.put_longCrlNumber(&paddedTwo);
  EXPECT_TRUE(a == b);
  // Issuer bytes and time.
  CCrlIdentifier c = a;
  c.put_crlissuer(Blob("30 00"));
  EXPECT_TRUE(a != c);
  c = a;
  c.put_crlIssuedTime(At(2024, 6, 1, 0, 0, 1));
  EXPECT_TRUE(a != c);
}

TEST(CrlIdentifierTest, CopiesAreDeep) {
  CCrlIdentifier a = Identifier(At(2024, 6, 1, 0, 0, 0));
  int const one = 1;
  a.put_crlNumber(&one);
  CCrlIdentifier b(a);
  CCrlIdentifier c;
  c = a;
  a.put_crlNumber(nullptr);
  a.put_crlissuer(Blob("30 00"));
  EXPECT_EQ(1, b.get_intCrlNumber());
  EXPECT_EQ(1, c.get_intCrlNumber());
  EXPECT_EQ(Hex(Blob(kName)), Hex(c.get_crlissuer()));
  CCrlIdentifier& alias = c;
  c = alias;
  EXPECT_EQ(1, c.get_intCrlNumber());
}

// The identifiers of the fixture CRLs (tests/data/crl), built from the CRLs'
// own issuer, thisUpdate and cRLNumber (RFC 5126 5.7.4.2 CrlIdentifier).
TEST(CrlIdentifierTest, FixtureCrls) {
  struct Case {
    char const* file;
    CDateTime thisUpdate;
    int number;
  };
  const Case kCases[] = {
      {"crl/root-ca.crl", At(2024, 6, 1, 0, 0, 0), 1},
      {"crl/intermediate-ca.crl", At(2024, 6, 1, 0, 0, 0), 2},
      {"crl/intermediate-ca-delta.crl", At(2024, 7, 1, 0, 0, 0), 3},
      {"crl/intermediate-ca-1000.crl", At(2024, 8, 1, 0, 0, 0), 4},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.file);
    CrlFacts facts = ReadCrlFacts(Fixture(c.file));
    ASSERT_EQ(0x17, facts.thisUpdateTag);
    CCrlIdentifier id(facts.issuer, c.thisUpdate);
    id.put_crlNumber(&c.number);
    CBlob expected =
        Tlv(0x30, Cat({facts.issuer, Tlv(0x17, Text(facts.thisUpdate)), Tlv(0x02, facts.number)}));
    CBlob der = id.encode();
    EXPECT_EQ(Hex(expected), Hex(der));
    CCrlIdentifier back;
    back.decode(expected);
    EXPECT_TRUE(back == id);
    EXPECT_EQ(c.number, back.get_intCrlNumber());
    EXPECT_EQ(c.thisUpdate, back.get_crlIssuedTime());
  }
}

TEST(CrlIdentifierTest, NothingLeaksUnderAllocationFailures) {
  CCrlIdentifier id = Identifier(At(2024, 6, 1, 0, 0, 0));
  int const number = 77;
  id.put_crlNumber(&number);
  ExpectCodecCleanUnderFaults(id);
  ExpectCleanUnderFaults([&] { id.get_intCrlNumber(); });
}

}  // namespace
