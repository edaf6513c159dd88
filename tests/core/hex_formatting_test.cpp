#include <gtest/gtest.h>

#include <string>

#include <korvex/core/HexFormatting.h>

#include "blob_test_util.h"

using namespace blob_test;

namespace {

TEST(HexFormatting, PrintableIsVisibleAsciiOnly) {
  for (int c = 0; c < 256; ++c) {
    SCOPED_TRACE(c);
    EXPECT_EQ(c >= 0x21 && c <= 0x7E, IsPrintForHex(static_cast<unsigned char>(c)));
  }
}

TEST(HexFormatting, EightBytesALineWithShortLastLinePaddedByTwo) {
  struct Case {
    char const* what;
    Bytes bytes;
    std::string dump;
  } cases[] = {
      {"empty", {}, ""},
      {"one byte", {0x41}, "41" + std::string(7 * 2, ' ') + "   A\n"},
      {"eight bytes", {'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H'},
       "41 42 43 44 45 46 47 48   ABCDEFGH\n"},
      {"nine bytes", {'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I'},
       "41 42 43 44 45 46 47 48   ABCDEFGH\n"
       "49" + std::string(7 * 2, ' ') + "   I\n"},
      {"unprintable", {0x20, 0x7F, 0xFF, 0x00, 0x21, 0x7E},
       "20 7F FF 00 21 7E" + std::string(2 * 2, ' ') + "   ....!~\n"},
      {"sixteen bytes", {0, 1, 2, 3, 4, 5, 6, 7, 0x30, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37},
       "00 01 02 03 04 05 06 07   ........\n"
       "30 31 32 33 34 35 36 37   01234567\n"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.what);
    ATL::CStringA dump = GetFormattedHexString(MakeBlob(c.bytes));
    EXPECT_EQ(c.dump, std::string(dump.GetString(), dump.GetLength()));
  }
}

}  // namespace
