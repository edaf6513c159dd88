// ASN1CUTCTime / ASN1CGeneralizedTime: reading, writing and encoding time text.
#include <gtest/gtest.h>
#include <korvex/asn1rt/ASN1CTime.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

struct Fields {
  int status;
  int year, month, day, hour, minute, second;
  int nanos;  // the fraction at precision 9
  int diff;   // minutes east of UTC
  char zone;  // 'Z', 'L' (local) or 'O' (offset)
};

Fields Parse(bool utcTime, bool der, const char* text) {
  std::unique_ptr<ASN1CTime> time;
  if (utcTime) {
    time.reset(new ASN1CUTCTime(der));
  } else {
    time.reset(new ASN1CGeneralizedTime(der));
  }
  Fields f{};
  f.status = time->parseString(text);
  if (f.status != 0) return f;
  f.year = time->getYear();
  f.month = time->getMonth();
  f.day = time->getDay();
  f.hour = time->getHour();
  f.minute = time->getMinute();
  f.second = time->getSecond();
  f.nanos = time->getFraction(9);
  f.diff = time->getDiff();
  f.zone = time->isUTC() ? 'Z' : time->isLocal() ? 'L' : 'O';
  return f;
}

void ExpectFields(Fields const& got, Fields const& want) {
  ASSERT_EQ(got.status, want.status);
  if (want.status != 0) return;
  EXPECT_EQ(got.year, want.year);
  EXPECT_EQ(got.month, want.month);
  EXPECT_EQ(got.day, want.day);
  EXPECT_EQ(got.hour, want.hour);
  EXPECT_EQ(got.minute, want.minute);
  EXPECT_EQ(got.second, want.second);
  EXPECT_EQ(got.nanos, want.nanos);
  EXPECT_EQ(got.diff, want.diff);
  EXPECT_EQ(got.zone, want.zone);
}

struct ParseCase {
  const char* text;
  Fields want;
};

void RunParseCases(bool utcTime, bool der, std::initializer_list<ParseCase> cases) {
  for (auto const& c : cases) {
    SCOPED_TRACE(testing::Message() << (utcTime ? "UTCTime " : "GeneralizedTime ")
                                    << (der ? "DER " : "BER ") << '"' << c.text << '"');
    ExpectFields(Parse(utcTime, der, c.text), c.want);
  }
}

Fields Status(int status) { return Fields{status, 0, 0, 0, 0, 0, 0, 0, 0, 0}; }

TEST(UTCTimeText, TwoDigitYearsSplitAt50) {
  RunParseCases(true, true,
                {
                    {"490101000000Z", {0, 2049, 1, 1, 0, 0, 0, 0, 0, 'Z'}},
                    {"500101000000Z", {0, 1950, 1, 1, 0, 0, 0, 0, 0, 'Z'}},
                    {"000229120000Z", {0, 2000, 2, 29, 12, 0, 0, 0, 0, 'Z'}},
                    {"991231235959Z", {0, 1999, 12, 31, 23, 59, 59, 0, 0, 'Z'}},
                    {"491231235959Z", {0, 2049, 12, 31, 23, 59, 59, 0, 0, 'Z'}},
                });
}

TEST(UTCTimeText, DerReadsOnlyTheCanonicalForm) {
  RunParseCases(true, true,
                {
                    {"4901010000Z", Status(-3)},  // seconds are required (X.690 11.8.2)
                    {"490101000000+0100", Status(-3)},
                    {"490101000000", Status(-3)},
                    {"490101000000z", Status(-3)},
                    {"4901010000000Z", Status(-3)},
                    {"49010100000Z", Status(-3)},
                    {"490101000000Z ", Status(-3)},
                    {"49a101000000Z", Status(-3)},
                    {"", Status(-3)},
                });
}

TEST(UTCTimeText, InvalidValuesGiveMinus31) {
  RunParseCases(true, true,
                {
                    {"491301000000Z", Status(-31)},  // month 13
                    {"490001000000Z", Status(-31)},  // month 0
                    {"490100000000Z", Status(-31)},  // day 0
                    {"490132000000Z", Status(-31)},  // 32 January
                    {"490230000000Z", Status(-31)},  // 30 February
                    {"010229000000Z", Status(-31)},  // 2001 is no leap year
                    {"490431000000Z", Status(-31)},  // 31 April
                    {"490101240000Z", Status(-31)},  // hour 24
                    {"490101006000Z", Status(-31)},  // minute 60
                    {"490101000060Z", Status(-31)},  // second 60
                });
}

TEST(UTCTimeText, BerReadsOffsetsAndMissingSeconds) {
  RunParseCases(true, false,
                {
                    {"4901010000Z", {0, 2049, 1, 1, 0, 0, 0, 0, 0, 'Z'}},
                    {"490101000000+0130", {0, 2049, 1, 1, 0, 0, 0, 0, 90, 'O'}},
                    {"490101000000-0500", {0, 2049, 1, 1, 0, 0, 0, 0, -300, 'O'}},
                    {"4901011200-0800", {0, 2049, 1, 1, 12, 0, 0, 0, -480, 'O'}},
                    {"490101000000", Status(-3)},  // UTCTime always has a zone (X.680 47.3)
                    {"490101000000+01", Status(-3)},
                    {"490101000000.5Z", Status(-3)},  // and no fraction
                    {"490101000000+2400", Status(-31)},
                    {"490101000000+0160", Status(-31)},
                });
}

TEST(GeneralizedTimeText, DerFormsWithFractions) {
  RunParseCases(false, true,
                {
                    {"20231231235959Z", {0, 2023, 12, 31, 23, 59, 59, 0, 0, 'Z'}},
                    {"20231231235959.5Z", {0, 2023, 12, 31, 23, 59, 59, 500000000, 0, 'Z'}},
                    {"20231231235959.123456789Z", {0, 2023, 12, 31, 23, 59, 59, 123456789, 0, 'Z'}},
                    {"20231231235959.0000000001Z", {0, 2023, 12, 31, 23, 59, 59, 0, 0, 'Z'}},
                    {"99991231235959Z", {0, 9999, 12, 31, 23, 59, 59, 0, 0, 'Z'}},
                    {"00000101000000Z", {0, 0, 1, 1, 0, 0, 0, 0, 0, 'Z'}},
                    {"20000229000000Z", {0, 2000, 2, 29, 0, 0, 0, 0, 0, 'Z'}},
                    {"20231231235959.10Z", Status(-3)},  // trailing zero (X.690 11.7.3)
                    {"20231231235959.0Z", Status(-3)},
                    {"20231231235959.Z", Status(-3)},
                    {"20231231235959,5Z", Status(-3)},  // comma (X.690 11.7.4)
                    {"202312312359Z", Status(-3)},
                    {"20231231235959", Status(-3)},
                    {"20231231235959+0100", Status(-3)},
                    {"2023123123595Z", Status(-3)},
                    {"20231301000000Z", Status(-31)},
                    {"20230229000000Z", Status(-31)},
                    {"20240230000000Z", Status(-31)},
                    {"19000229000000Z", Status(-31)},  // 1900 is no leap year
                    {"20231231240000Z", Status(-31)},
                });
}

TEST(GeneralizedTimeText, BerFormsWithFractionsOfAnyUnit) {
  RunParseCases(false, false,
                {
                    {"2023123123", {0, 2023, 12, 31, 23, 0, 0, 0, 0, 'L'}},
                    {"202312312359", {0, 2023, 12, 31, 23, 59, 0, 0, 0, 'L'}},
                    {"2023123112.5", {0, 2023, 12, 31, 12, 30, 0, 0, 0, 'L'}},
                    {"2023123112.5Z", {0, 2023, 12, 31, 12, 30, 0, 0, 0, 'Z'}},
                    {"202312311230.25", {0, 2023, 12, 31, 12, 30, 15, 0, 0, 'L'}},
                    // 0.1234 h = 7 min 24.24 s
                    {"2023123112.1234", {0, 2023, 12, 31, 12, 7, 24, 240000000, 0, 'L'}},
                    {"20231231123045.5+0530", {0, 2023, 12, 31, 12, 30, 45, 500000000, 330, 'O'}},
                    {"20231231123045-08", {0, 2023, 12, 31, 12, 30, 45, 0, -480, 'O'}},
                    {"20231231123045.500Z", {0, 2023, 12, 31, 12, 30, 45, 500000000, 0, 'Z'}},
                    {"20231231123045,25Z", {0, 2023, 12, 31, 12, 30, 45, 250000000, 0, 'Z'}},
                    {"20231231123045.", Status(-3)},
                    {"20231231123045.5.5", Status(-3)},
                    {"20231231123045+1", Status(-3)},
                    {"20231231123045Z0", Status(-3)},
                    {"202312311", Status(-3)},
                    {"20231231123045.123456789012345678901234567890123", Status(-31)},
                });
}

TEST(GeneralizedTimeText, LongFractionsAreKeptWhole) {
  ASN1CGeneralizedTime time(true);
  const char* text = "20231231123045.12345678901234567890123456789012Z";  // 32 digits
  ASSERT_EQ(time.parseString(text), 0);
  char out[64];
  ASSERT_NE(time.getTimeString(out, sizeof out), nullptr);
  EXPECT_STREQ(out, text);
  EXPECT_EQ(time.getFraction(3), 123);
  EXPECT_EQ(time.getFraction(0), 0);
  EXPECT_EQ(time.getFraction(10), -30);
}

// Setting fields the way a date value is rendered: clear, then year to second.
std::string Render(ASN1CTime& time, int y, int mo, int d, int h, int mi, int s) {
  time.clear();
  int statuses[] = {time.setYear(y), time.setMonth(mo),  time.setDay(d),
                    time.setHour(h), time.setMinute(mi), time.setSecond(s)};
  for (int status : statuses) {
    if (status != 0) return "status " + std::to_string(status);
  }
  std::string text(time.getTimeStringLen() + 1, '\0');
  if (time.getTimeString(&text[0], text.size()) == nullptr) return "no text";
  text.pop_back();
  return text;
}

TEST(UTCTimeFields, RenderingFollowsTheTwoDigitRule) {
  ASN1CUTCTime time(true);
  EXPECT_EQ(Render(time, 2049, 12, 31, 23, 59, 59), "491231235959Z");
  EXPECT_EQ(Render(time, 1950, 1, 1, 0, 0, 0), "500101000000Z");
  EXPECT_EQ(Render(time, 2000, 2, 29, 8, 5, 3), "000229080503Z");
  EXPECT_EQ(Render(time, 2050, 1, 1, 0, 0, 0), "status -31");
  EXPECT_EQ(Render(time, 1949, 12, 31, 23, 59, 59), "status -31");
}

TEST(GeneralizedTimeFields, RenderingWithFractionsAndZones) {
  ASN1CGeneralizedTime der(true);
  EXPECT_EQ(Render(der, 2050, 1, 1, 0, 0, 0), "20500101000000Z");
  ASSERT_EQ(der.setFraction(500, 3), 0);
  char out[64];
  EXPECT_STREQ(der.getTimeString(out, sizeof out), "20500101000000.5Z");
  ASSERT_EQ(der.setFraction(120, 6), 0);
  EXPECT_STREQ(der.getTimeString(out, sizeof out), "20500101000000.00012Z");
  ASSERT_EQ(der.setFraction(0), 0);
  EXPECT_STREQ(der.getTimeString(out, sizeof out), "20500101000000Z");
  // DER writes UTC: an offset is applied first, across a year end here.
  EXPECT_EQ(Render(der, 2024, 1, 1, 0, 30, 0), "20240101003000Z");
  ASSERT_EQ(der.setDiff(60), 0);
  EXPECT_STREQ(der.getTimeString(out, sizeof out), "20231231233000Z");
  EXPECT_EQ(der.getDiff(), 60);  // the fields keep what was set
  EXPECT_EQ(der.setLocal(), -31);

  ASN1CGeneralizedTime ber(false);
  EXPECT_EQ(Render(ber, 2024, 6, 1, 12, 0, 0), "20240601120000Z");
  ASSERT_EQ(ber.setDiff(5, 30), 0);
  EXPECT_STREQ(ber.getTimeString(out, sizeof out), "20240601120000+0530");
  ASSERT_EQ(ber.setDiff(-8, 0), 0);
  EXPECT_STREQ(ber.getTimeString(out, sizeof out), "20240601120000-0800");
  EXPECT_EQ(ber.getDiffHour(), -8);
  EXPECT_EQ(ber.getDiffMinute(), 0);
  ASSERT_EQ(ber.setLocal(), 0);
  EXPECT_STREQ(ber.getTimeString(out, sizeof out), "20240601120000");
  EXPECT_TRUE(ber.isLocal());
  ASSERT_EQ(ber.setUTC(), 0);
  EXPECT_TRUE(ber.isUTC());
}

TEST(TimeFields, SettersRefuseInvalidValues) {
  ASN1CGeneralizedTime time(true);
  time.clear();
  EXPECT_EQ(time.getYear(), -31);  // not set yet
  EXPECT_EQ(time.getHour(), 0);
  EXPECT_EQ(time.getTimeStringLen(), 0u);
  char out[32];
  EXPECT_EQ(time.getTimeString(out, sizeof out), nullptr);
  EXPECT_EQ(time.setMonth(13), -31);
  EXPECT_EQ(time.setMonth(0), -31);
  EXPECT_EQ(time.setDay(32), -31);
  ASSERT_EQ(time.setDay(29), 0);  // without year and month, 29 could be 29 February
  ASSERT_EQ(time.setMonth(2), 0);
  EXPECT_EQ(time.setYear(2023), -31);  // ... but not in 2023
  ASSERT_EQ(time.setYear(2024), 0);
  EXPECT_EQ(time.setMonth(4), 0);
  EXPECT_EQ(time.setDay(31), -31);
  EXPECT_EQ(time.setYear(10000), -31);
  EXPECT_EQ(time.setYear(-1), -31);
  EXPECT_EQ(time.setHour(24), -31);
  EXPECT_EQ(time.setHour(-1), -31);
  EXPECT_EQ(time.setMinute(60), -31);
  EXPECT_EQ(time.setSecond(60), -31);
  EXPECT_EQ(time.setFraction(1000, 3), -31);
  EXPECT_EQ(time.setFraction(-1, 3), -31);
  EXPECT_EQ(time.setFraction(1, 10), -31);
  EXPECT_EQ(time.setDiff(24 * 60), -31);
  EXPECT_EQ(time.setDiff(24, 0), -31);
  EXPECT_EQ(time.setDiff(1, 60), -31);
  ASSERT_EQ(time.setDiff(-23, 59), 0);
  EXPECT_EQ(time.getDiff(), -1439);
  EXPECT_STREQ(time.getTimeString(out, sizeof out), "20240429235900Z");  // 00:00 + 23:59

  ASN1CUTCTime utc(false);
  utc.clear();
  EXPECT_EQ(utc.setFraction(5, 1), -31);  // UTCTime has no fractions
  EXPECT_EQ(utc.setFraction(0, 3), 0);
  EXPECT_EQ(utc.setLocal(), -31);  // nor local times
}

TEST(TimeFields, ToUTCMovesTheOffset) {
  ASN1CGeneralizedTime time(false);
  ASSERT_EQ(time.parseString("20231231233000-0100"), 0);
  ASSERT_EQ(time.toUTC(), 0);
  EXPECT_EQ(time.getYear(), 2024);
  EXPECT_EQ(time.getMonth(), 1);
  EXPECT_EQ(time.getDay(), 1);
  EXPECT_EQ(time.getHour(), 0);
  EXPECT_EQ(time.getMinute(), 30);
  EXPECT_TRUE(time.isUTC());

  ASN1CUTCTime utc(false);
  ASSERT_EQ(utc.parseString("491231233000-0100"), 0);
  EXPECT_EQ(utc.toUTC(), -31);  // 2050 is past UTCTime
  EXPECT_EQ(utc.getYear(), 2049);
  ASSERT_EQ(utc.parseString("000229233000-0100"), 0);
  ASSERT_EQ(utc.toUTC(), 0);
  EXPECT_EQ(utc.getMonth(), 3);
  EXPECT_EQ(utc.getDay(), 1);
}

class BoundTimeTest : public testing::Test {
 protected:
  ASN1BEREncodeBuffer buffer_;
  size_t Blocks() { return rtMemHeapBlockCount(&buffer_.getCtxtPtr()->pTypeMemHeap); }
};

TEST_F(BoundTimeTest, SettersRewriteTheBoundText) {
  const char* const original = "491231235959Z";
  const char* text = original;
  ASN1CUTCTime time(buffer_, text);
  EXPECT_EQ(time.getYear(), 2049);
  ASSERT_EQ(time.setYear(2020), 0);
  EXPECT_NE(text, original);
  EXPECT_STREQ(text, "201231235959Z");
  EXPECT_STREQ(original, "491231235959Z");
  ASSERT_EQ(time.setMinute(7), 0);
  EXPECT_STREQ(text, "201231230759Z");

  size_t blocks = Blocks();
  for (int i = 0; i < 50; ++i) ASSERT_EQ(time.setSecond(i), 0);
  EXPECT_EQ(Blocks(), blocks) << "each rewrite frees the text written before";

  text = "000101000000Z";  // the bound pointer moves: the fields follow it
  EXPECT_EQ(time.getYear(), 2000);
  EXPECT_EQ(time.getSecond(), 0);
}

TEST_F(BoundTimeTest, UnreadableBoundText) {
  const char* text = "garbage";
  ASN1CGeneralizedTime time(buffer_, text);
  EXPECT_EQ(time.getYear(), -3);
  EXPECT_FALSE(time.isUTC());
  EXPECT_EQ(time.getDiffHour(), 0);
  EXPECT_EQ(time.getTimeStringLen(), 0u);
  text = "20241301000000Z";
  EXPECT_EQ(time.getMonth(), -31);
  // Setting fields replaces it once the date is complete.
  ASSERT_EQ(time.setYear(2024), 0);
  ASSERT_EQ(time.setMonth(2), 0);
  EXPECT_STREQ(text, "20241301000000Z");
  ASSERT_EQ(time.setDay(29), 0);
  EXPECT_STREQ(text, "20240229000000Z");
}

TEST_F(BoundTimeTest, ParseStringLeavesTheBoundTextAlone) {
  const char* text = nullptr;
  ASN1CGeneralizedTime time(buffer_, text, false);
  ASSERT_EQ(time.parseString("2024022912.75Z"), 0);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(time.getMinute(), 45);
  EXPECT_EQ(time.parseString("2024"), -3);
  EXPECT_EQ(time.getMinute(), 45);  // unchanged by the failure
  EXPECT_EQ(time.parseString(nullptr), -30);
  ASSERT_EQ(time.setSecond(1), 0);
  EXPECT_STREQ(text, "20240229124501Z");
  char small[15];
  EXPECT_EQ(time.getTimeString(small, sizeof small), nullptr);  // 15 characters + NUL
  EXPECT_EQ(time.getTimeString(nullptr, 0), nullptr);
}

TEST(TimeEncoding, EncodesWithTheUniversalTagAndDecodesBack) {
  ASN1BEREncodeBuffer encoder;
  const char* text = "491231235959Z";
  ASN1CUTCTime utc(encoder, text);
  ASSERT_EQ(utc.EncodeTo(encoder), 15);
  const ASN1OCTET* der = encoder.getMsgPtr();
  const ASN1OCTET expected[] = {0x17, 0x0D, '4', '9', '1', '2', '3', '1',
                                '2',  '3',  '5', '9', '5', '9', 'Z'};
  ASSERT_EQ(std::memcmp(der, expected, sizeof expected), 0);

  ASN1BERDecodeBuffer decoder(der, 15);
  const char* decoded = nullptr;
  ASN1CUTCTime back(decoder, decoded);
  ASSERT_EQ(back.DecodeFrom(decoder), 0);
  EXPECT_STREQ(decoded, "491231235959Z");
  EXPECT_EQ(back.getYear(), 2049);

  ASN1BERDecodeBuffer wrongTag(der, 15);
  const char* none = nullptr;
  ASN1CGeneralizedTime general(wrongTag, none);
  EXPECT_EQ(general.DecodeFrom(wrongTag), -3);

  ASN1BEREncodeBuffer generalEncoder;
  const char* generalText = "20500101000000.25Z";
  ASN1CGeneralizedTime fifty(generalEncoder, generalText);
  ASSERT_EQ(fifty.EncodeTo(generalEncoder), 20);
  EXPECT_EQ(generalEncoder.getMsgPtr()[0], 0x18);
}

TEST(TimeEncoding, RefusesWhatDoesNotReadAsATime) {
  const ASN1OCTET noSeconds[] = {0x17, 0x0B, '4', '9', '0', '1', '0', '1', '0', '0', '0', '0', 'Z'};
  ASN1BERDecodeBuffer strict(noSeconds, sizeof noSeconds);
  const char* text = nullptr;
  ASN1CUTCTime der(strict, text, true);
  EXPECT_EQ(der.DecodeFrom(strict), -3);

  ASN1BERDecodeBuffer lenient(noSeconds, sizeof noSeconds);
  const char* lenientText = nullptr;
  ASN1CUTCTime ber(lenient, lenientText, false);
  ASSERT_EQ(ber.DecodeFrom(lenient), 0);
  EXPECT_EQ(ber.getSecond(), 0);

  ASN1BEREncodeBuffer encoder;
  const char* nothing = nullptr;
  ASN1CUTCTime empty(encoder, nothing);
  EXPECT_EQ(empty.EncodeTo(encoder), -18);
  const char* bad = "491301000000Z";
  ASN1CUTCTime invalid(encoder, bad);
  EXPECT_EQ(invalid.EncodeTo(encoder), -31);
}

}  // namespace
