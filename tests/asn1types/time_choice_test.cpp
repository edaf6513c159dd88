// Tests of CTimeChoice, CTimeChoiceImpl, GetASN1CTimeString and
// ASN1T_Time_traits.
#include <gtest/gtest.h>
#include <korvex/asn1rt/ASN1CTime.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/GeneralizedTimeText.h>
#include <korvex/asn1types/TimeChoice.h>
#include <korvex/asn1types/TimeChoiceTraits.h>

#include <cstdio>
#include <string>

#include "pki_values_test_util.h"
#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::CDateTime;
using Korvex::ASN1::CTimeChoice;
using Korvex::ASN1::CTimeChoiceImpl;
using typestest::Blob;
using typestest::Hex;
using typestest::ThrownCode;

namespace {

CDateTime At(unsigned year, unsigned month, unsigned day, unsigned hour, unsigned minute,
             unsigned second, unsigned millisecond = 0) {
  return CDateTime(year, month, day, hour, minute, second, millisecond, 0);
}

// The DER of a time text with its tag (0x17 UTCTime, 0x18 GeneralizedTime).
std::string TimeDer(int tag, std::string const& text) {
  char head[8];
  std::snprintf(head, sizeof head, "%02X %02X", tag, static_cast<unsigned>(text.size()));
  std::string out = head;
  for (unsigned char c : text) {
    char byte[4];
    std::snprintf(byte, sizeof byte, " %02X", c);
    out += byte;
  }
  return out;
}

TEST(TimeChoiceTest, SelectionRuleAndEncoding) {
  struct {
    char const* name;
    CDateTime time;
    unsigned type;
    std::string der;
  } const cases[] = {
      {"1950, first UTCTime year", At(1950, 1, 1, 0, 0, 0), 1, TimeDer(0x17, "500101000000Z")},
      {"2024", At(2024, 2, 29, 12, 34, 56), 1, TimeDer(0x17, "240229123456Z")},
      {"2049, last UTCTime second", At(2049, 12, 31, 23, 59, 59), 1,
       TimeDer(0x17, "491231235959Z")},
      {"2050, first GeneralizedTime", At(2050, 1, 1, 0, 0, 0), 2,
       TimeDer(0x18, "20500101000000Z")},
      {"9999", At(9999, 12, 31, 23, 59, 59), 2, TimeDer(0x18, "99991231235959Z")},
      // Milliseconds are cut, never rounded up.
      {"2049 .999", At(2049, 12, 31, 23, 59, 59, 999), 1, TimeDer(0x17, "491231235959Z")},
      {"2055 .5", At(2055, 12, 31, 23, 59, 59, 500), 2, TimeDer(0x18, "20551231235959Z")},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    CTimeChoice choice(c.time);
    EXPECT_EQ(c.type, choice.get_type());
    ASSERT_NE(nullptr, choice.get_time());
    EXPECT_TRUE(*choice.get_time() == c.time);  // held with its milliseconds
    EXPECT_EQ(c.der, Hex(choice.encode()));
  }
}

TEST(TimeChoiceTest, DefaultIsTheZeroTimeAsUtcTime) {
  CTimeChoice choice;
  EXPECT_EQ(1u, choice.get_type());
  ASSERT_NE(nullptr, choice.get_time());
  EXPECT_TRUE(*choice.get_time() == CDateTime(0, 0));
  EXPECT_EQ(TimeDer(0x17, "700101000000Z"), Hex(choice.encode()));
}

TEST(TimeChoiceTest, PutTimeReselects) {
  CTimeChoice choice(At(2049, 1, 1, 0, 0, 0));
  choice.put_time(At(2050, 1, 1, 0, 0, 0));
  EXPECT_EQ(2u, choice.get_type());
  choice.put_time(At(2049, 12, 31, 23, 59, 59));
  EXPECT_EQ(1u, choice.get_type());
  EXPECT_TRUE(*choice.get_time() == At(2049, 12, 31, 23, 59, 59));
}

TEST(TimeChoiceTest, TimesTheirAlternativeCannotHoldDoNotEncode) {
  // Below 2050 is utcTime, which holds 1950 to 2049 only (RFC 5280 4.1.2.5.1).
  EXPECT_EQ(0x80093101u, ThrownCode([] { CTimeChoice(At(1949, 12, 31, 23, 59, 59)).encode(); }));
  EXPECT_EQ(0x80093101u, ThrownCode([] { CTimeChoice(At(1601, 1, 1, 0, 0, 0)).encode(); }));
  // Four year digits end with 9999.
  EXPECT_EQ(0x80093101u, ThrownCode([] { CTimeChoice(At(10000, 1, 1, 0, 0, 0)).encode(); }));
}

TEST(TimeChoiceTest, DecodeChoosesTheAlternativeAgain) {
  struct {
    char const* name;
    std::string der;
    CDateTime time;
    unsigned type;
    std::string reencoded;
  } const cases[] = {
      {"GeneralizedTime 2030 becomes utcTime", TimeDer(0x18, "20300101000000Z"),
       At(2030, 1, 1, 0, 0, 0), 1, TimeDer(0x17, "300101000000Z")},
      {"UTCTime 49 is 2049", TimeDer(0x17, "491231235959Z"), At(2049, 12, 31, 23, 59, 59), 1,
       TimeDer(0x17, "491231235959Z")},
      {"UTCTime 50 is 1950", TimeDer(0x17, "500101000000Z"), At(1950, 1, 1, 0, 0, 0), 1,
       TimeDer(0x17, "500101000000Z")},
      {"GeneralizedTime 2050", TimeDer(0x18, "20500101000000Z"), At(2050, 1, 1, 0, 0, 0), 2,
       TimeDer(0x18, "20500101000000Z")},
      {"fraction dropped", TimeDer(0x18, "20500101000000.999Z"), At(2050, 1, 1, 0, 0, 0), 2,
       TimeDer(0x18, "20500101000000Z")},
      {"BER UTCTime without seconds", TimeDer(0x17, "4912312359Z"), At(2049, 12, 31, 23, 59, 0),
       1, TimeDer(0x17, "491231235900Z")},
      {"UTCTime with an offset, moved to UTC", TimeDer(0x17, "491231235959+0100"),
       At(2049, 12, 31, 22, 59, 59), 1, TimeDer(0x17, "491231225959Z")},
      // A local GeneralizedTime with the hour only is a BER form (X.680 46.2).
      {"BER local GeneralizedTime, hour only", TimeDer(0x18, "2050010100"),
       At(2050, 1, 1, 0, 0, 0), 2, TimeDer(0x18, "20500101000000Z")},
      {"GeneralizedTime 1949 cannot come back as UTCTime", TimeDer(0x18, "19491231235959Z"),
       At(1949, 12, 31, 23, 59, 59), 1, ""},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    CTimeChoice choice(At(2060, 6, 6, 6, 6, 6));
    choice.decode(Blob(c.der));
    EXPECT_EQ(c.type, choice.get_type());
    ASSERT_NE(nullptr, choice.get_time());
    EXPECT_TRUE(*choice.get_time() == c.time) << choice.get_time()->tostring().c_str();
    if (c.reencoded.empty()) {
      EXPECT_EQ(0x80093101u, ThrownCode([&] { choice.encode(); }));
    } else {
      EXPECT_EQ(c.reencoded, Hex(choice.encode()));
    }
  }
}

TEST(TimeChoiceTest, MillisecondsNeverSurviveARoundTrip) {
  CDateTime withMillis = At(2024, 5, 6, 12, 0, 0, 999);
  CTimeChoice choice(withMillis);
  CTimeChoice back;
  back.decode(choice.encode());
  ASSERT_NE(nullptr, back.get_time());
  EXPECT_TRUE(*back.get_time() == At(2024, 5, 6, 12, 0, 0));
  EXPECT_TRUE(back != choice);
  EXPECT_EQ(Hex(choice.encode()), Hex(back.encode()));
}

TEST(TimeChoiceTest, DecodeFailuresLeaveTheValue) {
  std::string const bad[] = {
      TimeDer(0x17, "491331235959Z"),    // month 13
      TimeDer(0x17, "490230000000Z"),    // 30 February
      TimeDer(0x17, "49123123595Z"),     // odd digits
      TimeDer(0x18, "10000101000000Z"),  // year 1000: before 1601
      "04 01 00",                        // OCTET STRING
      "17 0D 34 39",                     // truncated
      "",
  };
  for (std::string const& hex : bad) {
    SCOPED_TRACE(hex);
    CTimeChoice choice(At(2051, 1, 1, 0, 0, 0));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { choice.decode(Blob(hex)); }));
    EXPECT_EQ(2u, choice.get_type());
    EXPECT_TRUE(*choice.get_time() == At(2051, 1, 1, 0, 0, 0));
  }
}

TEST(TimeChoiceTest, ClearEmptiesAndAssignmentRestores) {
  CTimeChoice choice(At(2050, 1, 1, 0, 0, 0));
  choice.clear();
  EXPECT_EQ(0u, choice.get_type());
  EXPECT_EQ(nullptr, choice.get_time());
  choice.clear();  // nothing left to destroy
  EXPECT_EQ(0x80093101u, ThrownCode([&] { choice.encode(); }));
  CTimeChoice emptyCopy(choice);
  EXPECT_EQ(0u, emptyCopy.get_type());
  EXPECT_TRUE(emptyCopy == choice);

  choice = CTimeChoice(At(2049, 1, 1, 0, 0, 0));
  EXPECT_EQ(1u, choice.get_type());
  emptyCopy.put_time(At(2050, 1, 1, 0, 0, 0));
  EXPECT_EQ(2u, emptyCopy.get_type());
  CTimeChoice decoded;
  decoded.clear();
  decoded.decode(Blob(TimeDer(0x17, "300101000000Z")));
  EXPECT_EQ(1u, decoded.get_type());
  choice = decoded;
  choice.clear();
  decoded = choice;  // assignment from an empty value empties
  EXPECT_EQ(0u, decoded.get_type());
}

TEST(TimeChoiceTest, EqualityAndCopies) {
  CTimeChoice a(At(2030, 1, 1, 0, 0, 0));
  CTimeChoice b(a);
  EXPECT_TRUE(a == b);
  b.put_time(At(2030, 1, 1, 0, 0, 1));
  EXPECT_TRUE(a != b);
  b = a;
  EXPECT_TRUE(a == b);
  EXPECT_NE(a.get_time(), b.get_time());  // deep copies
}

TEST(TimeChoiceImplTest, AlternativesAndUnknownNumbers) {
  CTimeChoiceImpl impl;
  EXPECT_EQ(0u, impl.get_type());
  EXPECT_TRUE(impl.findTraits(1)->isType(1));
  EXPECT_TRUE(impl.findTraits(2)->isType(2));
  EXPECT_TRUE(impl.findTraits(3)->isType(0));
  CDateTime t = At(2020, 1, 1, 0, 0, 0);
  impl.put_value(2, &t);
  EXPECT_TRUE(*impl.get_as<CDateTime>(2) == t);
  impl.put_value(9, &t);
  EXPECT_EQ(9u, impl.get_type());
  EXPECT_EQ(nullptr, impl.get_as<CDateTime>(2));
  CTimeChoiceImpl copy(impl);
  EXPECT_EQ(9u, copy.get_type());
}

TEST(GetASN1CTimeStringTest, RendersThroughTheRuntimeTimeObjects) {
  CDateTime t = At(2024, 1, 2, 3, 4, 5, 678);
  ASN1CUTCTime utc(true);
  EXPECT_EQ("240102030405Z", Korvex::ASN1::GetASN1CTimeString(t, utc));
  ASN1CGeneralizedTime generalized(true);
  EXPECT_EQ("20240102030405Z", Korvex::ASN1::GetASN1CTimeString(t, generalized));
  // The object is reset first: earlier fields do not leak into the next text.
  EXPECT_EQ("20500101000000Z",
            Korvex::ASN1::GetASN1CTimeString(At(2050, 1, 1, 0, 0, 0), generalized));
  EXPECT_EQ(0x80093101u, ThrownCode([&] {
              Korvex::ASN1::GetASN1CTimeString(At(2050, 1, 1, 0, 0, 0), utc);
            }));
  EXPECT_EQ("491231235959Z",
            Korvex::ASN1::GetASN1CTimeString(At(2049, 12, 31, 23, 59, 59), utc));
}

TEST(GetASN1CTimeStringTest, GeneralizedTimeTextCutsMilliseconds) {
  Korvex::ASN1::ctxt_handle ctxt;
  ASSERT_TRUE(ctxt.init());
  EXPECT_STREQ("20240506120000Z", Korvex::ASN1::DateToASN1GeneralizedTime(
                                       ctxt, At(2024, 5, 6, 12, 0, 0, 999), true));
  EXPECT_STREQ("20240506120000.999Z", Korvex::ASN1::DateToASN1GeneralizedTime(
                                           ctxt, At(2024, 5, 6, 12, 0, 0, 999), false));
}

TEST(TimeTraitsTest, RecordSelectorsAndFailures) {
  Korvex::ASN1::ctxt_handle ctxt;
  ASSERT_TRUE(ctxt.init());
  asn1data::ASN1T_Time rec;
  Korvex::ASN1::ASN1T_Time_traits::set(ctxt, rec, CTimeChoice(At(2050, 1, 1, 0, 0, 0)));
  EXPECT_EQ(2u, rec.t);
  EXPECT_STREQ("20500101000000Z", rec.u.generalTime);
  Korvex::ASN1::ASN1T_Time_traits::set(ctxt, rec, CTimeChoice(At(2049, 1, 1, 0, 0, 0)));
  EXPECT_EQ(1u, rec.t);
  EXPECT_STREQ("490101000000Z", rec.u.utcTime);

  // A cleared value leaves the record as it is.
  CTimeChoice empty;
  empty.clear();
  asn1data::ASN1T_Time untouched;
  Korvex::ASN1::ASN1T_Time_traits::set(ctxt, untouched, empty);
  EXPECT_EQ(0u, untouched.t);

  CTimeChoice value;
  untouched.t = 3;
  EXPECT_EQ(0x80093101u,
            ThrownCode([&] { Korvex::ASN1::ASN1T_Time_traits::get(untouched, value); }));
  untouched.t = 1;
  untouched.u.utcTime = nullptr;
  EXPECT_EQ(0x80093101u,
            ThrownCode([&] { Korvex::ASN1::ASN1T_Time_traits::get(untouched, value); }));
  untouched.t = 0;
  EXPECT_EQ(1u, value.get_type());
  EXPECT_TRUE(*value.get_time() == CDateTime(0, 0));
}

TEST(TimeTraitsTest, NoLeakOrStrayCodeUnderAllocationFailures) {
  CTimeChoice utc(At(2049, 12, 31, 23, 59, 59));
  CTimeChoice generalized(At(2050, 1, 1, 0, 0, 0));
  pkitest::ExpectCleanUnderFaults([&] { utc.encode(); });
  pkitest::ExpectCleanUnderFaults([&] { generalized.encode(); });
  CBlob der = generalized.encode();
  pkitest::ExpectCleanUnderFaults([&] {
    CTimeChoice decoded;
    decoded.decode(der);
  });
}

}  // namespace
