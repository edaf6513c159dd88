#include <gtest/gtest.h>

#include <string>

#include <korvex/core/Blob.h>

#include "blob_test_util.h"

using Korvex::CBlob;
using namespace blob_test;

namespace {

TEST(BlobReadHex, ParsesPairsBetweenWhitespaceAndStopsQuietly) {
  struct Case {
    char const* text;
    Bytes bytes;
  } cases[] = {
      {" 0a1B  ff zz", {0x0A, 0x1B, 0xFF}},
      {"abc", {0xAB}},  // a trailing lone digit is ignored
      {"g0", {}},
      {"", {}},
      {"   ", {}},
      {"A B", {}},  // whitespace may not split a pair
      {"0g", {}},
      {"01x02", {0x01}},
      {"01 0", {0x01}},
      {"\t\n\v\f\r01\t02\n", {0x01, 0x02}},
      {"0123456789abcdefABCDEF",
       {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xAB, 0xCD, 0xEF}},
      {"00ff7F80", {0x00, 0xFF, 0x7F, 0x80}},
      {"01 :02", {0x01}},
      {"01\x80\x30\x32", {0x01}},  // 0x80 is not a space in the C locale
      {"0x10", {}},
      {"-1", {}},
      {"G1", {}},
      {"@A", {}},  // neighbours of the digit ranges in ASCII
      {"/0", {}},
      {"9:", {}},
      {"`a", {}},
      {"fg", {}},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(std::string("\"") + c.text + "\"");
    CBlob blob = MakeBlob({0x55, 0x66});
    blob.readFromHexString(c.text);
    EXPECT_EQ(c.bytes, BytesOf(blob));
  }
}

TEST(BlobReadHex, KeepsArrayAsWorkingSpace) {
  CBlob blob(100ul);
  unsigned char* array = blob.pbData();
  blob.readFromHexString("0102");
  EXPECT_EQ(array, blob.pbData());
  EXPECT_EQ((Bytes{1, 2}), BytesOf(blob));

  blob.readFromHexString("zz");
  EXPECT_EQ(0u, blob.cbData());
  EXPECT_EQ(array, blob.pbData());

  CBlob fresh;  // an empty blob gets an array even when nothing parses
  fresh.readFromHexString("");
  EXPECT_EQ(0u, fresh.cbData());
  EXPECT_NE(nullptr, fresh.pbData());

  fresh.readFromHexString(nullptr);
  EXPECT_EQ(0u, fresh.cbData());
}

TEST(BlobWriteHex, UpperCaseWithOptionalGroupSeparators) {
  struct Case {
    Bytes bytes;
    unsigned long group;
    char const* text;
  } cases[] = {
      {{0x0A, 0x1B, 0xFF}, 0, "0A1BFF"},
      {{0x0A, 0x1B, 0xFF}, 1, "0A 1B FF"},
      {{0x0A, 0x1B, 0xFF}, 2, "0A1B FF"},
      {{0x0A, 0x1B, 0xFF}, 3, "0A1BFF"},
      {{0x0A, 0x1B, 0xFF}, 4, "0A1BFF"},
      {{1, 2, 3, 4}, 2, "0102 0304"},
      {{1, 2, 3, 4, 5, 6, 7}, 3, "010203 040506 07"},
      {{0x00}, 1, "00"},
      {{0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}, 0, "0123456789ABCDEF"},
      {{}, 0, ""},
      {{}, 1, ""},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.bytes) + " group " + std::to_string(c.group));
    EXPECT_STREQ(c.text, MakeBlob(c.bytes).writeToHexString(c.group).c_str());
  }
}

TEST(BlobHex, EveryByteValueRoundTrips) {
  Bytes all;
  for (int b = 0; b < 256; ++b) all.push_back(static_cast<unsigned char>(b));
  for (unsigned long group : {0ul, 1ul, 5ul, 256ul}) {
    SCOPED_TRACE(group);
    Korvex::CStringProxy text = MakeBlob(all).writeToHexString(group);
    CBlob back;
    back.readFromHexString(text.c_str());
    EXPECT_EQ(all, BytesOf(back));
  }
}

}  // namespace
