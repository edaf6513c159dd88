// Big-integer text <-> INTEGER content octets (rtBigInt.h).
#include <gtest/gtest.h>
#include <korvex/asn1rt/rtBigInt.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

Bytes Hex(std::string const& hex) {
  Bytes out;
  for (size_t i = 0; i + 1 < hex.size(); i += 2) {
    out.push_back(static_cast<unsigned char>(std::stoul(hex.substr(i, 2), nullptr, 16)));
  }
  return out;
}

std::string ToHex(Bytes const& bytes) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string out;
  for (unsigned char b : bytes) {
    out.push_back(kDigits[b >> 4]);
    out.push_back(kDigits[b & 15]);
  }
  return out;
}

// FromText runs rtBigIntFromText with a generous area; status or the octets.
int FromText(const char* text, int radix, Bytes* octets, bool magnitude = false) {
  unsigned char area[256];
  int n = magnitude ? rtBigIntFromTextUnsigned(text, radix, area, sizeof area)
                    : rtBigIntFromText(text, radix, area, sizeof area);
  if (n > 0) octets->assign(area, area + n);
  return n;
}

std::string ToText(Bytes const& octets, int radix, bool asUnsigned = false) {
  char area[1024];
  int n = asUnsigned
              ? rtBigIntUnsignedToText(octets.data(), octets.size(), radix, area, sizeof area)
              : rtBigIntToText(octets.data(), octets.size(), radix, area, sizeof area);
  if (n < 0) return "status " + std::to_string(n);
  EXPECT_EQ(static_cast<size_t>(n), strlen(area));
  return area;
}

struct TextCase {
  const char* text;
  const char* octets;  // hex of the minimal two's complement
};

TEST(BigIntFromText, MinimalTwosComplementAtTheBoundaries) {
  static const TextCase kCases[] = {
      {"0", "00"},
      {"-0", "00"},
      {"000", "00"},
      {"1", "01"},
      {"127", "7F"},
      {"128", "0080"},
      {"255", "00FF"},
      {"256", "0100"},
      {"32767", "7FFF"},
      {"32768", "008000"},
      {"-1", "FF"},
      {"-127", "81"},
      {"-128", "80"},
      {"-129", "FF7F"},
      {"-255", "FF01"},
      {"-256", "FF00"},
      {"-257", "FEFF"},
      {"-32768", "8000"},
      {"-32769", "FF7FFF"},
      {"007", "07"},
      {"2147483647", "7FFFFFFF"},
      {"-2147483648", "80000000"},
      {"4294967295", "00FFFFFFFF"},
      {"18446744073709551616", "010000000000000000"},
      {"-18446744073709551616", "FF0000000000000000"},
      {"-9223372036854775808", "8000000000000000"},
      {"9223372036854775808", "008000000000000000"},
      {"123456789012345678901234567890", "018EE90FF6C373E0EE4E3F0AD2"},
      {"1000000000", "3B9ACA00"},  // exactly one decimal chunk boundary
      {"0x7f", "7F"},
      {"0X80", "0080"},
      {"0xFF", "00FF"},
      {"-0x80", "80"},
      {"-0x81", "FF7F"},
      {"0x00000001", "01"},
      {"0x0", "00"},
      {"-0x0", "00"},
      {"0xabcdef0123456789", "00ABCDEF0123456789"},
      {"0b0", "00"},
      {"0b1111111", "7F"},
      {"0B10000000", "0080"},
      {"-0b1", "FF"},
      {"-0b10000000", "80"},
  };
  for (auto const& c : kCases) {
    SCOPED_TRACE(c.text);
    Bytes octets;
    ASSERT_GT(FromText(c.text, RT_BIGINT_RADIX_AUTO, &octets), 0);
    EXPECT_EQ(ToHex(octets), c.octets);
    EXPECT_EQ(rtBigIntFromText(c.text, RT_BIGINT_RADIX_AUTO, nullptr, 0),
              static_cast<int>(octets.size()));
  }
}

TEST(BigIntFromText, HugeHexValuesKeepEveryOctet) {
  std::string text = "0x" + std::string(200, 'f');  // 100 octets of FF, positive
  Bytes octets;
  ASSERT_EQ(FromText(text.c_str(), RT_BIGINT_RADIX_AUTO, &octets), 101);
  EXPECT_EQ(octets[0], 0x00);
  EXPECT_EQ(octets[100], 0xFF);
  ASSERT_EQ(FromText(("-" + text).c_str(), RT_BIGINT_RADIX_AUTO, &octets), 101);
  EXPECT_EQ(ToHex(Bytes(octets.begin(), octets.begin() + 2)), "FF00");
  EXPECT_EQ(octets[100], 0x01);
}

TEST(BigIntFromText, InvalidTextIsRefusedWithMinus9) {
  static const char* const kTexts[] = {
      "",    "-",    "0x",  "0b",  "-0x", "12a",  "0x1g",  "0b2", " 1",  "1 ",       "+1",
      "--1", "0x-1", "1.5", "1e3", "x1",  "0xx1", "0b0b1", "-",   "\t7", "\xd9\xa1",
  };
  for (const char* text : kTexts) {
    SCOPED_TRACE(testing::Message() << "text \"" << text << "\"");
    unsigned char area[8] = {0xAA};
    EXPECT_EQ(rtBigIntFromText(text, RT_BIGINT_RADIX_AUTO, area, sizeof area), -9);
    EXPECT_EQ(area[0], 0xAA) << "nothing is written on failure";
    EXPECT_EQ(rtBigIntFromTextUnsigned(text, RT_BIGINT_RADIX_AUTO, area, sizeof area), -9);
  }
}

TEST(BigIntFromText, ExplicitRadix) {
  struct Case {
    const char* text;
    int radix;
    int status;
    const char* octets;
  };
  static const Case kCases[] = {
      {"ff", 16, 2, "00FF"}, {"0xff", 16, 2, "00FF"}, {"0b1", 16, 2, "00B1"},  // b is a hex digit
      {"-7f", 16, 1, "81"},  {"101", 2, 1, "05"},     {"0b101", 2, 1, "05"},  {"0x1", 2, -9, ""},
      {"2", 2, -9, ""},      {"0x1", 10, -9, ""},     {"ff", 10, -9, ""},     {"99", 10, 1, "63"},
      {"1", 8, -30, ""},     {"1", 3, -30, ""},       {"1", -1, -30, ""},     {"1", 36, -30, ""},
  };
  for (auto const& c : kCases) {
    SCOPED_TRACE(testing::Message() << c.text << " radix " << c.radix);
    Bytes octets;
    ASSERT_EQ(FromText(c.text, c.radix, &octets), c.status);
    if (c.status > 0) {
      EXPECT_EQ(ToHex(octets), c.octets);
    }
  }
}

TEST(BigIntFromText, NullTextAndShortAreas) {
  unsigned char area[2];
  EXPECT_EQ(rtBigIntFromText(nullptr, RT_BIGINT_RADIX_AUTO, area, sizeof area), -30);
  EXPECT_EQ(rtBigIntFromTextUnsigned(nullptr, RT_BIGINT_RADIX_AUTO, area, sizeof area), -30);
  EXPECT_EQ(rtBigIntFromText("128", RT_BIGINT_RADIX_AUTO, area, 1), -17);
  EXPECT_EQ(rtBigIntFromText("128", RT_BIGINT_RADIX_AUTO, area, 2), 2);
  EXPECT_EQ(rtBigIntFromText("65536", RT_BIGINT_RADIX_AUTO, area, 2), -17);
  EXPECT_EQ(rtBigIntFromText("1", RT_BIGINT_RADIX_AUTO, area, 0), -17);
}

TEST(BigIntFromTextUnsigned, NonNegativeWithSignOctet) {
  static const TextCase kCases[] = {
      {"0", "00"},
      {"-0", "00"},
      {"127", "7F"},
      {"128", "0080"},
      {"255", "00FF"},
      {"0xff", "00FF"},
      {"65535", "00FFFF"},
      {"4294967295", "00FFFFFFFF"},
      {"0x80000000", "0080000000"},
  };
  for (auto const& c : kCases) {
    SCOPED_TRACE(c.text);
    Bytes octets;
    ASSERT_GT(FromText(c.text, RT_BIGINT_RADIX_AUTO, &octets, true), 0);
    EXPECT_EQ(ToHex(octets), c.octets);
  }
  for (const char* negative : {"-1", "-5", "-0x80", "-0b1"}) {
    SCOPED_TRACE(negative);
    Bytes octets;
    EXPECT_EQ(FromText(negative, RT_BIGINT_RADIX_AUTO, &octets, true), -9);
  }
}

TEST(BigIntToText, EveryRadixFromTwosComplement) {
  struct Case {
    const char* octets;
    const char* decimal;
    const char* hex;
    const char* binary;
  };
  static const Case kCases[] = {
      {"", "0", "0", "0"},
      {"00", "0", "0", "0"},
      {"0000", "0", "0", "0"},
      {"01", "1", "0x1", "0b1"},
      {"7F", "127", "0x7f", "0b1111111"},
      {"80", "-128", "-0x80", "-0b10000000"},
      {"0080", "128", "0x80", "0b10000000"},
      {"FF", "-1", "-0x1", "-0b1"},
      {"FFFF", "-1", "-0x1", "-0b1"},
      {"FF7F", "-129", "-0x81", "-0b10000001"},
      {"FF00", "-256", "-0x100", "-0b100000000"},
      {"000001", "1", "0x1", "0b1"},
      {"0100", "256", "0x100", "0b100000000"},
      {"3B9ACA00", "1000000000", "0x3b9aca00", "0b111011100110101100101000000000"},
      {"010000000000000000", "18446744073709551616", "0x10000000000000000",
       "0b10000000000000000000000000000000000000000000000000000000000000000"},
      {"8000000000000000", "-9223372036854775808", "-0x8000000000000000",
       "-0b1000000000000000000000000000000000000000000000000000000000000000"},
      {"018EE90FF6C373E0EE4E3F0AD2", "123456789012345678901234567890",
       "0x18ee90ff6c373e0ee4e3f0ad2",
       "0b11000111011101001000011111111011011000011011100111110000011101110010011100011111100001010"
       "110"
       "10010"},
  };
  for (auto const& c : kCases) {
    SCOPED_TRACE(c.octets);
    Bytes octets = Hex(c.octets);
    EXPECT_EQ(ToText(octets, 10), c.decimal);
    EXPECT_EQ(ToText(octets, 16), c.hex);
    EXPECT_EQ(ToText(octets, 2), c.binary);
  }
}

TEST(BigIntToText, UnsignedReadsTheTopBitAsMagnitude) {
  EXPECT_EQ(ToText(Hex("80"), 10, true), "128");
  EXPECT_EQ(ToText(Hex("FF"), 16, true), "0xff");
  EXPECT_EQ(ToText(Hex("FFFFFFFF"), 10, true), "4294967295");
  EXPECT_EQ(ToText(Hex("0000"), 10, true), "0");
}

TEST(BigIntToText, SizesAndInvalidParameters) {
  Bytes octets = Hex("0080");
  char area[8];
  EXPECT_EQ(rtBigIntToText(octets.data(), octets.size(), 10, nullptr, 0), 3);
  EXPECT_EQ(rtBigIntToText(octets.data(), octets.size(), 10, area, 3), -17);  // no room for NUL
  EXPECT_EQ(rtBigIntToText(octets.data(), octets.size(), 10, area, 4), 3);
  EXPECT_STREQ(area, "128");
  EXPECT_EQ(rtBigIntToText(octets.data(), octets.size(), 8, area, sizeof area), -30);
  EXPECT_EQ(rtBigIntToText(octets.data(), octets.size(), 0, area, sizeof area), -30);
  EXPECT_EQ(rtBigIntToText(nullptr, 1, 10, area, sizeof area), -30);
  EXPECT_EQ(rtBigIntToText(nullptr, 0, 10, area, sizeof area), 1);
  EXPECT_STREQ(area, "0");
  EXPECT_EQ(rtBigIntUnsignedToText(nullptr, 2, 16, area, sizeof area), -30);
}

// Minimal strips redundant sign octets the way X.690 8.3.2 demands.
Bytes Minimal(Bytes octets) {
  if (octets.empty()) return {0x00};
  while (octets.size() > 1 && ((octets[0] == 0x00 && !(octets[1] & 0x80)) ||
                               (octets[0] == 0xFF && (octets[1] & 0x80)))) {
    octets.erase(octets.begin());
  }
  return octets;
}

TEST(BigIntRoundTrip, OctetsThroughEveryRadixComeBackMinimal) {
  std::mt19937 random(20240521);
  for (int i = 0; i < 2000; ++i) {
    Bytes octets(random() % 40);
    for (auto& b : octets) b = static_cast<unsigned char>(random());
    if (!octets.empty() && random() % 4 == 0) octets[0] = random() % 2 ? 0x00 : 0xFF;
    for (int radix : {2, 10, 16}) {
      std::string text = ToText(octets, radix);
      SCOPED_TRACE(testing::Message() << ToHex(octets) << " as " << text);
      Bytes back;
      ASSERT_GT(FromText(text.c_str(), RT_BIGINT_RADIX_AUTO, &back), 0);
      EXPECT_EQ(ToHex(back), ToHex(Minimal(octets)));
    }
  }
}

TEST(BigIntCompareText, OrdersValuesAcrossForms) {
  struct Case {
    const char* left;
    const char* right;
    int order;
  };
  static const Case kCases[] = {
      {"0x10", "16", 0},    {"-1", "0", -1},
      {"100", "99", 1},     {"-100", "-99", -1},
      {"0", "-0", 0},       {"0b11", "3", 0},
      {"-0x80", "-128", 0}, {"18446744073709551616", "18446744073709551615", 1},
  };
  for (auto const& c : kCases) {
    SCOPED_TRACE(testing::Message() << c.left << " vs " << c.right);
    int order = 7;
    ASSERT_EQ(rtBigIntCompareText(c.left, c.right, &order), 0);
    EXPECT_EQ(order, c.order);
    ASSERT_EQ(rtBigIntCompareText(c.right, c.left, &order), 0);
    EXPECT_EQ(order, -c.order);
  }
  int order;
  EXPECT_EQ(rtBigIntCompareText("1", "x", &order), -9);
  EXPECT_EQ(rtBigIntCompareText(nullptr, "1", &order), -30);
  EXPECT_EQ(rtBigIntCompareText("1", "1", nullptr), -30);
}

}  // namespace
