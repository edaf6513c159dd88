// DER character strings from and to wide text, and the code-page helpers.
#include <gtest/gtest.h>
#include <korvex/asn1types/Util.h>

#include <cwchar>
#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

class CharStringTest : public typestest::HeapCheckedTest {};

TEST_F(CharStringTest, EncodesEachType) {
  struct Case {
    wchar_t const* text;
    StringType type;
    char const* der;
  } const cases[] = {
      {L"abc", stIA5String, "16 03 61 62 63"},
      {L"abc", stUTF8String, "0C 03 61 62 63"},
      {L"abc", stPrintableString, "13 03 61 62 63"},
      {L"abc", stTeletexString, "14 03 61 62 63"},
      {L"abc", stBMPString, "1E 06 00 61 00 62 00 63"},
      {L"abc", stUniversalString, "1C 0C 00 00 00 61 00 00 00 62 00 00 00 63"},
      {L"", stIA5String, "16 00"},
      {L"", stBMPString, "1E 00"},
      {L"\u00E9", stUTF8String, "0C 02 C3 A9"},
      {L"\u20AC", stBMPString, "1E 02 20 AC"},
      {L"\U0001F600", stUniversalString, "1C 04 00 01 F6 00"},
      {L"\U0001F600", stUTF8String, "0C 04 F0 9F 98 80"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(testing::Message() << c.der);
    EXPECT_EQ(Hex(encodeCharString(c.text, c.type)), c.der);
  }
}

TEST_F(CharStringTest, EncodeRefusals) {
  for (unsigned type : {0u, 7u, 100u}) {
    SCOPED_TRACE(type);
    EXPECT_EQ(ThrownCode([&] { encodeCharString(L"abc", static_cast<StringType>(type)); }), kCodec);
  }
  // A character a BMPString unit cannot hold, a surrogate in UTF-8.
  EXPECT_EQ(ThrownCode([] { encodeCharString(L"a\U0001F600", stBMPString); }), kCodec);
  wchar_t const surrogate[] = {L'a', 0xDC00, 0};
  EXPECT_EQ(ThrownCode([&] { encodeCharString(surrogate, stUTF8String); }), kCodec);
  EXPECT_EQ(ThrownCode([] { encodeCharString(nullptr, stIA5String); }), kInvalidArg);
}

TEST_F(CharStringTest, LongTextUsesLongLength) {
  std::wstring text(200, L'x');
  CBlob der = encodeCharString(text.c_str(), stBMPString);
  ASSERT_EQ(der.cbData(), 404u);
  EXPECT_EQ(Hex(CBlob(der.pbData(), 6)), "1E 82 01 90 00 78");
  EXPECT_STREQ(decodeCharString(der).c_str(), text.c_str());
}

TEST_F(CharStringTest, DecodesEachTag) {
  struct Case {
    char const* der;
    wchar_t const* text;
  } const cases[] = {
      {"0C 05 C3 A9 E2 82 AC", L"\u00E9\u20AC"},
      {"12 03 31 32 33", L"123"},
      {"13 02 41 42", L"AB"},
      {"14 01 5A", L"Z"},
      {"16 03 61 62 63", L"abc"},
      {"1C 08 00 00 00 41 00 01 F6 00", L"A\U0001F600"},
      {"1E 04 00 41 20 AC", L"A\u20AC"},
      {"16 00", L""},
      {"1E 00", L""},
      // Constructed forms are joined; their segments are OCTET STRINGs
      // (X.690 8.23.6).
      {"36 80 04 01 61 04 02 62 63 00 00", L"abc"},
      {"2C 08 04 01 61 04 03 C3 A9 62", L"a\u00E9b"},
      {"3E 08 04 02 00 41 04 02 00 42", L"AB"},
      // The text ends at its first NUL character.
      {"1E 06 00 41 00 00 00 42", L"A"},
      {"16 03 61 00 62", L"a"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.der);
    EXPECT_STREQ(decodeCharString(Blob(c.der)).c_str(), c.text);
  }
}

TEST_F(CharStringTest, DecodeRefusals) {
  char const* const cases[] = {
      "",                // nothing
      "04 01 61",        // OCTET STRING
      "17 01 30",        // UTCTime: not a character string here
      "1A 01 61",        // VisibleString: not among the types read
      "80 01 61",        // context-specific [0]
      "4C 01 61",        // application class with number 12
      "16 05 61",        // shorter than its length
      "0C 01 FF",        // not UTF-8
      "0C 03 ED A0 80",  // an encoded surrogate
      "1E 03 00 41 00",  // odd length for 16-bit units
      "1C 02 00 41",     // not a whole 32-bit unit
      "16",              // no length
  };
  for (char const* der : cases) {
    SCOPED_TRACE(der);
    EXPECT_EQ(ThrownCode([&] { decodeCharString(Blob(der)); }), kCodec);
  }
}

TEST_F(CharStringTest, EveryTypeRoundTripsAsciiText) {
  for (unsigned type = stUTF8String; type <= stUniversalString; ++type) {
    SCOPED_TRACE(type);
    CBlob der = encodeCharString(L"Korvex 1.0", static_cast<StringType>(type));
    EXPECT_STREQ(decodeCharString(der).c_str(), L"Korvex 1.0");
  }
}

TEST(StringConvertTest, NarrowAndWide) {
  // The test process runs in the "C" locale: ASCII passes, the rest does not.
  EXPECT_STREQ(tostring(L"abc").c_str(), "abc");
  EXPECT_STREQ(tostring(L"").c_str(), "");
  EXPECT_STREQ(tostring(L"a\u00E9").c_str(), "a?");
  unsigned short const utf16[] = {0x0041, 0x0042, 0};
  EXPECT_STREQ(tostring(utf16).c_str(), "AB");
  unsigned short const pair[] = {0x0041, 0xD83D, 0xDE00, 0x0042, 0};
  EXPECT_STREQ(tostring(pair).c_str(), "A?B");  // one character, not two
  EXPECT_STREQ(towstring("xyz").c_str(), L"xyz");
  EXPECT_STREQ(towstring("").c_str(), L"");
  EXPECT_EQ(ThrownCode([] { tostring(static_cast<wchar_t const*>(nullptr)); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([] { tostring(static_cast<unsigned short const*>(nullptr)); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([] { towstring(static_cast<char const*>(nullptr)); }), kInvalidArg);
}

TEST(StringConvertTest, Integers) {
  struct Case {
    int value;
    char const* text;
    wchar_t const* wide;
  } const cases[] = {
      {0, "0", L"0"},
      {17, "17", L"17"},
      {-5, "-5", L"-5"},
      {2147483647, "2147483647", L"2147483647"},
      {-2147483647 - 1, "-2147483648", L"-2147483648"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_STREQ(tostring(c.value).c_str(), c.text);
    EXPECT_STREQ(towstring(c.value).c_str(), c.wide);
  }
}

}  // namespace
