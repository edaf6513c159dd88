// UTF-8 to and from wide, 32-bit and 16-bit units (rtUTF8.h).
#include <gtest/gtest.h>
#include <korvex/asn1rt/rtUTF8.h>

#include <string>
#include <vector>

namespace {

std::string Bytes(std::initializer_list<int> values) {
  std::string out;
  for (int v : values) out.push_back(static_cast<char>(v));
  return out;
}

struct DecodeCase {
  std::string bytes;
  int status;  // bytes taken, or the failure
  unsigned int codePoint;
};

TEST(UTF8DecodeChar, WellFormedSequencesAtEveryBoundary) {
  const DecodeCase kCases[] = {
      {"A", 1, 0x41},
      {Bytes({0x00}), 1, 0x00},
      {Bytes({0x7F}), 1, 0x7F},
      {Bytes({0xC2, 0x80}), 2, 0x80},
      {Bytes({0xC3, 0xA9}), 2, 0xE9},
      {Bytes({0xDF, 0xBF}), 2, 0x7FF},
      {Bytes({0xE0, 0xA0, 0x80}), 3, 0x800},
      {Bytes({0xE2, 0x82, 0xAC}), 3, 0x20AC},
      {Bytes({0xED, 0x9F, 0xBF}), 3, 0xD7FF},
      {Bytes({0xEE, 0x80, 0x80}), 3, 0xE000},
      {Bytes({0xEF, 0xBF, 0xBF}), 3, 0xFFFF},
      {Bytes({0xF0, 0x90, 0x80, 0x80}), 4, 0x10000},
      {Bytes({0xF0, 0x9F, 0x98, 0x80}), 4, 0x1F600},
      {Bytes({0xF4, 0x8F, 0xBF, 0xBF}), 4, 0x10FFFF},
      {Bytes({0xC3, 0xA9, 0x41}), 2, 0xE9},  // only the first character is taken
  };
  for (auto const& c : kCases) {
    SCOPED_TRACE(testing::Message() << "code point " << std::hex << c.codePoint);
    unsigned int codePoint = 0xDEAD;
    EXPECT_EQ(rtUTF8DecodeChar(c.bytes.data(), c.bytes.size(), &codePoint), c.status);
    EXPECT_EQ(codePoint, c.codePoint);
  }
}

TEST(UTF8DecodeChar, OverlongsSurrogatesAndTruncationGiveMinus26) {
  const std::string kBad[] = {
      Bytes({0xC0, 0x80}),              // overlong NUL ("modified UTF-8")
      Bytes({0xC1, 0xBF}),              // overlong 7F
      Bytes({0xE0, 0x80, 0x80}),        // overlong NUL in three
      Bytes({0xE0, 0x9F, 0xBF}),        // overlong 7FF
      Bytes({0xF0, 0x80, 0x80, 0x80}),  // overlong in four
      Bytes({0xF0, 0x8F, 0xBF, 0xBF}),  // overlong FFFF
      Bytes({0xED, 0xA0, 0x80}),        // U+D800
      Bytes({0xED, 0xBF, 0xBF}),        // U+DFFF
      Bytes({0xF4, 0x90, 0x80, 0x80}),  // U+110000
      Bytes({0xF5, 0x80, 0x80, 0x80}),
      Bytes({0xF8, 0x88, 0x80, 0x80, 0x80}),
      Bytes({0xFE}),
      Bytes({0xFF}),
      Bytes({0x80}),  // stray continuation
      Bytes({0xBF}),
      Bytes({0xC3}),  // cut short
      Bytes({0xE2, 0x82}),
      Bytes({0xF0, 0x9F, 0x98}),
      Bytes({0xC3, 0x41}),  // continuation missing
      Bytes({0xE2, 0x28, 0xA1}),
      Bytes({0xF0, 0x9F, 0x41, 0x80}),
      "",
  };
  for (auto const& bytes : kBad) {
    SCOPED_TRACE(testing::Message() << "length " << bytes.size() << " lead "
                                    << (bytes.empty() ? 0 : static_cast<unsigned char>(bytes[0])));
    unsigned int codePoint = 0xDEAD;
    EXPECT_EQ(rtUTF8DecodeChar(bytes.data(), bytes.size(), &codePoint), -26);
    EXPECT_EQ(codePoint, 0xDEADu);
  }
  // A sequence cut by the length argument, not by its bytes.
  std::string euro = Bytes({0xE2, 0x82, 0xAC});
  EXPECT_EQ(rtUTF8DecodeChar(euro.data(), 2, nullptr), -26);
  EXPECT_EQ(rtUTF8DecodeChar(nullptr, 1, nullptr), -30);
}

TEST(UTF8EncodeChar, BoundariesAndRefusals) {
  struct Case {
    unsigned int codePoint;
    std::string bytes;
  };
  const Case kCases[] = {
      {0x00, Bytes({0x00})},
      {0x7F, Bytes({0x7F})},
      {0x80, Bytes({0xC2, 0x80})},
      {0x7FF, Bytes({0xDF, 0xBF})},
      {0x800, Bytes({0xE0, 0xA0, 0x80})},
      {0xD7FF, Bytes({0xED, 0x9F, 0xBF})},
      {0xE000, Bytes({0xEE, 0x80, 0x80})},
      {0xFFFF, Bytes({0xEF, 0xBF, 0xBF})},
      {0x10000, Bytes({0xF0, 0x90, 0x80, 0x80})},
      {0x10FFFF, Bytes({0xF4, 0x8F, 0xBF, 0xBF})},
  };
  for (auto const& c : kCases) {
    SCOPED_TRACE(testing::Message() << std::hex << c.codePoint);
    char out[4];
    int n = rtUTF8EncodeChar(c.codePoint, out, sizeof out);
    ASSERT_EQ(n, static_cast<int>(c.bytes.size()));
    EXPECT_EQ(std::string(out, n), c.bytes);
    EXPECT_EQ(rtUTF8EncodeChar(c.codePoint, nullptr, 0), n);
    EXPECT_EQ(rtUTF8EncodeChar(c.codePoint, out, c.bytes.size() - 1), -17);
  }
  for (unsigned int bad : {0xD800u, 0xDBFFu, 0xDC00u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(testing::Message() << std::hex << bad);
    char out[4];
    EXPECT_EQ(rtUTF8EncodeChar(bad, out, sizeof out), -26);
  }
}

TEST(UTF8RoundTrip, EveryScalarValueEncodesAndDecodesBack) {
  for (unsigned int codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    if (codePoint == 0xD800) codePoint = 0xE000;
    char out[4];
    int n = rtUTF8EncodeChar(codePoint, out, sizeof out);
    unsigned int back = 0;
    if (n < 1 || rtUTF8DecodeChar(out, static_cast<size_t>(n), &back) != n || back != codePoint) {
      FAIL() << "code point " << std::hex << codePoint;
    }
  }
}

TEST(UTF8Validate, CountsCharactersOrRefuses) {
  std::string text = "h" + Bytes({0xC3, 0xA9}) + "llo";
  EXPECT_EQ(rtUTF8Validate(text.data(), text.size()), 5);
  EXPECT_EQ(rtUTF8Len(text.c_str()), 5);
  std::string withNul = Bytes({'a', 0x00, 'b'});
  EXPECT_EQ(rtUTF8Validate(withNul.data(), withNul.size()), 3);
  EXPECT_EQ(rtUTF8Len(withNul.c_str()), 1);
  std::string bad = "ab" + Bytes({0xED, 0xA0, 0x80});
  EXPECT_EQ(rtUTF8Validate(bad.data(), bad.size()), -26);
  EXPECT_EQ(rtUTF8Len(bad.c_str()), -26);
  EXPECT_EQ(rtUTF8Validate(nullptr, 0), 0);
  EXPECT_EQ(rtUTF8Validate(nullptr, 1), -30);
  EXPECT_EQ(rtUTF8Len(nullptr), -30);
}

// "aé€😀": one character of each UTF-8 length.
const std::string kMixed = "a" + Bytes({0xC3, 0xA9, 0xE2, 0x82, 0xAC, 0xF0, 0x9F, 0x98, 0x80});
const wchar_t kMixedWide[] = {L'a', 0xE9, 0x20AC, 0x1F600, 0};

TEST(UTF8ToWCS, ConvertsWithTerminatorAndReportsSizes) {
  EXPECT_EQ(rtUTF8ToWCS(kMixed.c_str(), nullptr, 0), 4);
  wchar_t out[5];
  EXPECT_EQ(rtUTF8ToWCS(kMixed.c_str(), out, 4), -17);  // the terminator needs a slot
  ASSERT_EQ(rtUTF8ToWCS(kMixed.c_str(), out, 5), 4);
  EXPECT_EQ(std::wstring(out), std::wstring(kMixedWide));
  EXPECT_EQ(rtUTF8ToWCS("", out, 1), 0);
  EXPECT_EQ(out[0], L'\0');
  std::string bad = "a" + Bytes({0xC0, 0x80});
  EXPECT_EQ(rtUTF8ToWCS(bad.c_str(), out, 5), -26);
  EXPECT_EQ(rtUTF8ToWCS(bad.c_str(), nullptr, 0), -26);
  EXPECT_EQ(rtUTF8ToWCS(nullptr, out, 5), -30);
}

TEST(WCSToUTF8, ConvertsAndRefusesNonCharacters) {
  EXPECT_EQ(rtWCSToUTF8(kMixedWide, nullptr, 0), 10);
  char out[11];
  EXPECT_EQ(rtWCSToUTF8(kMixedWide, out, 10), -17);
  ASSERT_EQ(rtWCSToUTF8(kMixedWide, out, 11), 10);
  EXPECT_EQ(std::string(out), kMixed);
  const wchar_t surrogate[] = {L'a', 0xD800, 0};
  const wchar_t tooLarge[] = {0x110000, 0};
  const wchar_t negative[] = {static_cast<wchar_t>(-1), 0};
  EXPECT_EQ(rtWCSToUTF8(surrogate, out, sizeof out), -26);
  EXPECT_EQ(rtWCSToUTF8(tooLarge, out, sizeof out), -26);
  EXPECT_EQ(rtWCSToUTF8(negative, nullptr, 0), -26);
  EXPECT_EQ(rtWCSToUTF8(nullptr, out, sizeof out), -30);
}

TEST(UTF8ToUCS4, CountedUnitsKeepEmbeddedNul) {
  std::string text = Bytes({'a', 0x00, 0xF4, 0x8F, 0xBF, 0xBF});
  unsigned int units[3];
  EXPECT_EQ(rtUTF8ToUCS4(text.data(), text.size(), nullptr, 0), 3);
  EXPECT_EQ(rtUTF8ToUCS4(text.data(), text.size(), units, 2), -17);
  ASSERT_EQ(rtUTF8ToUCS4(text.data(), text.size(), units, 3), 3);
  EXPECT_EQ(units[0], 0x61u);
  EXPECT_EQ(units[1], 0x00u);
  EXPECT_EQ(units[2], 0x10FFFFu);
  EXPECT_EQ(rtUTF8ToUCS4(text.data(), 4, units, 3), -26);  // cut inside the last character
  EXPECT_EQ(rtUTF8ToUCS4(nullptr, 0, units, 3), 0);
  EXPECT_EQ(rtUTF8ToUCS4(nullptr, 2, units, 3), -30);
}

TEST(UCS4ToUTF8, WritesTerminatedUTF8) {
  const unsigned int units[] = {0x41, 0xE9, 0x10FFFF};
  char out[8];
  EXPECT_EQ(rtUCS4ToUTF8(units, 3, nullptr, 0), 7);
  EXPECT_EQ(rtUCS4ToUTF8(units, 3, out, 7), -17);
  ASSERT_EQ(rtUCS4ToUTF8(units, 3, out, 8), 7);
  EXPECT_EQ(std::string(out), "A" + Bytes({0xC3, 0xA9, 0xF4, 0x8F, 0xBF, 0xBF}));
  const unsigned int surrogate[] = {0xDC00};
  const unsigned int tooLarge[] = {0x110000};
  EXPECT_EQ(rtUCS4ToUTF8(surrogate, 1, out, sizeof out), -26);
  EXPECT_EQ(rtUCS4ToUTF8(tooLarge, 1, out, sizeof out), -26);
  EXPECT_EQ(rtUCS4ToUTF8(units, 0, out, 1), 0);
  EXPECT_EQ(out[0], '\0');
  EXPECT_EQ(rtUCS4ToUTF8(nullptr, 1, out, sizeof out), -30);
}

TEST(UTF8ToUCS2, BMPOnly) {
  std::string text = "a" + Bytes({0xC3, 0xA9, 0xE2, 0x82, 0xAC, 0xEF, 0xBF, 0xBF});
  unsigned short units[4];
  ASSERT_EQ(rtUTF8ToUCS2(text.data(), text.size(), units, 4), 4);
  EXPECT_EQ(units[0], 0x61);
  EXPECT_EQ(units[1], 0xE9);
  EXPECT_EQ(units[2], 0x20AC);
  EXPECT_EQ(units[3], 0xFFFF);
  std::string emoji = Bytes({0xF0, 0x9F, 0x98, 0x80});
  EXPECT_EQ(rtUTF8ToUCS2(emoji.data(), emoji.size(), units, 4), -26);  // needs a surrogate pair
  EXPECT_EQ(rtUTF8ToUCS2(emoji.data(), emoji.size(), nullptr, 0), -26);
  EXPECT_EQ(rtUTF8ToUCS2(text.data(), text.size(), units, 3), -17);
}

TEST(UCS2ToUTF8, SurrogateUnitsAreRefused) {
  const unsigned short units[] = {0x61, 0x20AC, 0xFFFF};
  char out[8];
  ASSERT_EQ(rtUCS2ToUTF8(units, 3, out, sizeof out), 7);
  EXPECT_EQ(std::string(out), "a" + Bytes({0xE2, 0x82, 0xAC, 0xEF, 0xBF, 0xBF}));
  const unsigned short pair[] = {0xD83D, 0xDE00};
  EXPECT_EQ(rtUCS2ToUTF8(pair, 2, out, sizeof out), -26);
  EXPECT_EQ(rtUCS2ToUTF8(pair, 2, nullptr, 0), -26);
  EXPECT_EQ(rtUCS2ToUTF8(units, 3, out, 7), -17);
  EXPECT_EQ(rtUCS2ToUTF8(nullptr, 3, out, sizeof out), -30);
}

}  // namespace
