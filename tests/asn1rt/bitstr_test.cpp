// ASN1CBitStr over dynamic and fixed BIT STRING records.
#include <gtest/gtest.h>
#include <korvex/asn1rt/ASN1CBitStr.h>

#include <string>
#include <vector>

namespace {

class BitStrTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(rtInitContext(&ctxt_, nullptr), 0); }
  void TearDown() override { rtFreeContext(&ctxt_); }

  // Octets of the record, as hex.
  static std::string Hex(ASN1CBitStr const& bits) {
    static const char kDigits[] = "0123456789ABCDEF";
    std::string out;
    for (size_t i = 0; i < (bits.length() + 7) / 8; ++i) {
      out.push_back(kDigits[bits.data()[i] >> 4]);
      out.push_back(kDigits[bits.data()[i] & 15]);
    }
    return out;
  }

  ASN1CTXT ctxt_;
  ASN1DynBitStr record_{};
};

TEST_F(BitStrTest, SettingBitsLengthensFromTheTopBit) {
  ASN1CBitStr bits(&ctxt_, record_);
  EXPECT_EQ(bits.length(), 0u);
  EXPECT_FALSE(bits.get(0));
  ASSERT_EQ(bits.set(0), 0);
  EXPECT_EQ(record_.numbits, 1u);
  EXPECT_EQ(Hex(bits), "80");
  ASSERT_EQ(bits.set(9), 0);
  EXPECT_EQ(record_.numbits, 10u);
  EXPECT_EQ(Hex(bits), "8040");
  EXPECT_TRUE(bits.get(9));
  EXPECT_FALSE(bits.get(8));
  EXPECT_FALSE(bits.isSet(1000));
  EXPECT_EQ(bits.cardinality(), 2u);
}

TEST_F(BitStrTest, RangesAreHalfOpen) {
  ASN1CBitStr bits(&ctxt_, record_, 16);
  struct Step {
    const char* what;
    int (*apply)(ASN1CBitStr&);
    int status;
    ASN1UINT length;
    const char* octets;
  };
  static const Step kSteps[] = {
      {"set [2,5)", [](ASN1CBitStr& b) { return b.set(2, 5); }, 0, 5, "38"},
      {"set [3,3) is empty", [](ASN1CBitStr& b) { return b.set(3, 3); }, 0, 5, "38"},
      {"set [5,2) is reversed", [](ASN1CBitStr& b) { return b.set(5, 2); }, -24, 5, "38"},
      {"set [0,12)", [](ASN1CBitStr& b) { return b.set(0, 12); }, 0, 12, "FFF0"},
      {"clear [4,9)", [](ASN1CBitStr& b) { return b.clear(4, 9); }, 0, 12, "F070"},
      {"clear past the length", [](ASN1CBitStr& b) { return b.clear(10, 16); }, 0, 12, "F040"},
      {"clear [9,1)", [](ASN1CBitStr& b) { return b.clear(9, 1); }, -24, 12, "F040"},
      {"invert [0,16)", [](ASN1CBitStr& b) { return b.invert(0, 16); }, 0, 16, "0FBF"},
      {"invert bit 0", [](ASN1CBitStr& b) { return b.invert(0); }, 0, 16, "8FBF"},
      {"set [10,17) past the maximum", [](ASN1CBitStr& b) { return b.set(10, 17); }, -29, 16,
       "8FBF"},
      {"set bit 16 past the maximum", [](ASN1CBitStr& b) { return b.set(16); }, -29, 16, "8FBF"},
      {"clear bit 16 past the maximum", [](ASN1CBitStr& b) { return b.clear(16); }, -29, 16,
       "8FBF"},
      {"invert bit 99", [](ASN1CBitStr& b) { return b.invert(99); }, -29, 16, "8FBF"},
      {"clear bit 15", [](ASN1CBitStr& b) { return b.clear(15); }, 0, 16, "8FBE"},
      {"clear all", [](ASN1CBitStr& b) { return b.clear(); }, 0, 16, "0000"},
  };
  for (auto const& step : kSteps) {
    SCOPED_TRACE(step.what);
    EXPECT_EQ(step.apply(bits), step.status);
    EXPECT_EQ(bits.length(), step.length);
    EXPECT_EQ(Hex(bits), step.octets);
  }
}

TEST_F(BitStrTest, FixedArrayNeverGrowsPastItsCapacity) {
  ASN1OCTET storage[2] = {0xFF, 0xFF};  // stale bits past the length
  ASN1UINT numbits = 0;
  ASN1CBitStr bits(storage, numbits, 12);
  EXPECT_EQ(bits.maxLength(), 12u);
  ASSERT_EQ(bits.set(11), 0);
  EXPECT_EQ(numbits, 12u);
  EXPECT_EQ(storage[0], 0x00);  // lengthening brings zero bits, not stale ones
  EXPECT_EQ(storage[1], 0x10);
  EXPECT_EQ(bits.set(12), -29);
  EXPECT_EQ(bits.set(0, 13), -29);
  EXPECT_EQ(bits.setLength(13), -29);
  EXPECT_EQ(numbits, 12u);

  ASN1UINT tooLong = 40;
  ASN1CBitStr clamped(storage, tooLong, 12);
  EXPECT_EQ(tooLong, 12u);
}

TEST_F(BitStrTest, ExtractionPacksFromTheTopBit) {
  const ASN1OCTET source[] = {0xA5, 0x3C};
  ASN1DynBitStr decoded{16, source};
  ASN1CBitStr bits(&ctxt_, decoded);
  ASN1OCTET out[3] = {0xEE, 0xEE, 0xEE};
  EXPECT_EQ(bits.get(4, 12, out, 1), 1);
  EXPECT_EQ(out[0], 0x53);
  EXPECT_EQ(bits.get(0, 11, out, 2), 2);
  EXPECT_EQ(out[0], 0xA5);
  EXPECT_EQ(out[1], 0x20);  // bits past the range are zero
  EXPECT_EQ(bits.get(1, 10, out, 2), 2);
  EXPECT_EQ(out[0], 0x4A);
  EXPECT_EQ(out[1], 0x00);
  EXPECT_EQ(bits.get(3, 3, out, 0), 0);
  EXPECT_EQ(bits.get(0, 16, out, 1), -17);
  EXPECT_EQ(bits.get(0, 17, out, 3), -29);
  EXPECT_EQ(bits.get(5, 3, out, 3), -24);
  EXPECT_EQ(bits.get(0, 8, nullptr, 3), -30);
}

TEST_F(BitStrTest, ForeignOctetsAreCopiedBeforeTheFirstChange) {
  const ASN1OCTET source[] = {0xFF};  // 4 bits used; BER lets the other 4 be anything
  ASN1DynBitStr decoded{4, source};
  ASN1CBitStr bits(&ctxt_, decoded);
  EXPECT_EQ(bits.cardinality(), 4u);
  ASSERT_EQ(bits.set(5), 0);
  EXPECT_NE(decoded.data, source);
  EXPECT_EQ(source[0], 0xFF);
  EXPECT_EQ(decoded.numbits, 6u);
  EXPECT_EQ(decoded.data[0], 0xF4);  // 1111 0 1, stale bit 4 dropped
}

TEST_F(BitStrTest, GrowingFreesOutgrownBlocks) {
  ASN1CBitStr bits(&ctxt_, record_);
  for (ASN1UINT i = 0; i < 1000; ++i) ASSERT_EQ(bits.set(i), 0);
  EXPECT_EQ(bits.cardinality(), 1000u);
  EXPECT_EQ(rtMemHeapBlockCount(&ctxt_.pTypeMemHeap), 1u);
  EXPECT_EQ(bits.nextClearBit(0), 1000);
}

TEST_F(BitStrTest, SearchAndCount) {
  ASN1CBitStr bits(&ctxt_, record_);
  ASSERT_EQ(bits.setLength(40), 0);
  EXPECT_TRUE(bits.isEmpty());
  EXPECT_EQ(bits.nextSetBit(0), -1);
  ASSERT_EQ(bits.set(3), 0);
  ASSERT_EQ(bits.set(33), 0);
  EXPECT_EQ(bits.nextSetBit(0), 3);
  EXPECT_EQ(bits.nextSetBit(4), 33);
  EXPECT_EQ(bits.nextSetBit(34), -1);
  EXPECT_EQ(bits.nextClearBit(3), 4);
  EXPECT_EQ(bits.nextClearBit(41), -1);
  ASSERT_EQ(bits.set(0, 40), 0);
  EXPECT_EQ(bits.nextClearBit(0), 40);
  EXPECT_EQ(bits.cardinality(), 40u);
}

TEST_F(BitStrTest, LengthChangesNeverResurrectBits) {
  ASN1CBitStr bits(&ctxt_, record_);
  ASSERT_EQ(bits.set(0, 8), 0);
  ASSERT_EQ(bits.setLength(3), 0);
  EXPECT_EQ(Hex(bits), "E0");
  ASSERT_EQ(bits.setLength(8), 0);
  EXPECT_EQ(Hex(bits), "E0");
}

TEST_F(BitStrTest, LogicOperations) {
  struct Case {
    const char* what;
    int op;  // 0 and, 1 or, 2 xor, 3 and-not
    std::vector<ASN1OCTET> other;
    ASN1UINT otherBits;
    ASN1UINT length;
    const char* octets;
  };
  // Start: 1100 1010 11 (10 bits, C A C0).
  const Case kCases[] = {
      {"and with shorter", 0, {0xF0}, 6, 10, "C000"},
      {"or with longer", 1, {0x00, 0x00, 0x80}, 17, 17, "CAC080"},
      {"or with shorter", 1, {0x30}, 4, 10, "FAC0"},
      {"xor with equal", 2, {0xFF, 0xC0}, 10, 10, "3500"},
      {"xor ignores foreign unused bits", 2, {0x00, 0x3F}, 10, 10, "CAC0"},
      {"and-not", 3, {0x0F, 0xFF}, 10, 10, "C000"},
      {"and-not with nothing", 3, {}, 0, 10, "CAC0"},
  };
  for (auto const& c : kCases) {
    SCOPED_TRACE(c.what);
    ASN1DynBitStr record{};
    ASN1CBitStr bits(&ctxt_, record);
    ASSERT_EQ(bits.set(0, 2), 0);
    ASSERT_EQ(bits.set(4), 0);
    ASSERT_EQ(bits.set(6), 0);
    ASSERT_EQ(bits.set(8, 10), 0);
    ASSERT_EQ(Hex(bits), "CAC0");
    const ASN1OCTET* other = c.other.empty() ? nullptr : c.other.data();
    int status = c.op == 0   ? bits.doAnd(other, c.otherBits)
                 : c.op == 1 ? bits.doOr(other, c.otherBits)
                 : c.op == 2 ? bits.doXor(other, c.otherBits)
                             : bits.doAndNot(other, c.otherBits);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(bits.length(), c.length);
    EXPECT_EQ(Hex(bits), c.octets);
  }
  ASN1CBitStr bits(&ctxt_, record_);
  EXPECT_EQ(bits.doAnd(nullptr, 3), -30);
  EXPECT_EQ(bits.doOr(nullptr, 1), -30);
  EXPECT_EQ(bits.doXor(nullptr, 8), -30);
  EXPECT_EQ(bits.doAndNot(nullptr, 2), -30);
}

TEST_F(BitStrTest, CombiningWithItself) {
  ASN1CBitStr bits(&ctxt_, record_);
  ASSERT_EQ(bits.set(1), 0);
  ASSERT_EQ(bits.set(6), 0);
  ASSERT_EQ(bits.doOr(bits), 0);
  EXPECT_EQ(Hex(bits), "42");
  ASSERT_EQ(bits.doXor(bits), 0);
  EXPECT_TRUE(bits.isEmpty());
}

TEST_F(BitStrTest, TrailingZerosAndEquality) {
  ASN1CBitStr bits(&ctxt_, record_);
  ASSERT_EQ(bits.set(0), 0);
  ASSERT_EQ(bits.set(2, 4), 0);
  ASSERT_EQ(bits.setLength(10), 0);
  EXPECT_EQ(bits.removeTrailingZeros(), 4u);
  EXPECT_EQ(Hex(bits), "B0");
  ASSERT_EQ(bits.clear(), 0);
  EXPECT_EQ(bits.removeTrailingZeros(), 0u);

  const ASN1OCTET clean[] = {0xF0};
  const ASN1OCTET dirty[] = {0xFF};
  ASN1DynBitStr a{4, clean}, b{4, dirty}, c{5, clean};
  ASN1CBitStr left(&ctxt_, a), right(&ctxt_, b), longer(&ctxt_, c);
  EXPECT_TRUE(left == right);
  EXPECT_TRUE(left != longer);
  EXPECT_TRUE(left.equals(dirty, 4));
  EXPECT_FALSE(left.equals(nullptr, 0));
}

TEST(BitStrNoContext, DynamicRecordWithoutContextCannotChange) {
  ASN1DynBitStr record{};
  ASN1CBitStr bits(nullptr, record);
  EXPECT_EQ(bits.set(0), -30);
  EXPECT_EQ(record.numbits, 0u);
  EXPECT_EQ(bits.clear(0), 0);  // nothing to clear
}

TEST(BitStrContexts, ABufferContextLivesAsLongAsTheBitString) {
  auto* buffer = new ASN1BEREncodeBuffer;
  ASN1TDynBitStr record;
  {
    ASN1CBitStr bits(*buffer, record, 8);
    delete buffer;
    ASSERT_EQ(bits.set(7), 0);
    EXPECT_EQ(bits.length(), 8u);
    EXPECT_EQ(bits.set(8), -29);
  }
}

}  // namespace
