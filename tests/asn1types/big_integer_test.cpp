// CBigInteger arithmetic and codec, the big-integer text conversions and the
// OCTET STRING helpers.
#include <gtest/gtest.h>
#include <korvex/asn1types/BigInteger.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/Util.h>

#include <climits>
#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

CBigInteger Big(char const* hex) {
  CBlob b = Blob(hex);
  return CBigInteger(b.pbData(), b.cbData());
}

std::string Bytes(CBigInteger const& v) { return Hex(v.get_value()); }

TEST(CBigIntegerTest, Construction) {
  EXPECT_EQ(Bytes(CBigInteger()), "");
  EXPECT_EQ(Bytes(CBigInteger(0ul)), "00");
  EXPECT_EQ(Bytes(CBigInteger(0x7Ful)), "7F");
  EXPECT_EQ(Bytes(CBigInteger(0x80ul)), "00 80");
  EXPECT_EQ(Bytes(CBigInteger(0x1234ul)), "12 34");
  EXPECT_EQ(Bytes(CBigInteger(ULONG_MAX)), "00 FF FF FF FF FF FF FF FF");
  // Bytes are kept as given.
  EXPECT_EQ(Bytes(Big("00 00 01 00")), "00 00 01 00");
  EXPECT_EQ(ThrownCode([] { CBigInteger(nullptr, 2); }), kInvalidArg);
  EXPECT_EQ(Bytes(CBigInteger(nullptr, 0)), "");
}

TEST(CBigIntegerTest, CopiesAreDeep) {
  CBigInteger a = Big("01 02");
  CBigInteger b(a);
  CBigInteger c;
  c = a;
  ++a;
  EXPECT_EQ(Bytes(a), "01 03");
  EXPECT_EQ(Bytes(b), "01 02");
  EXPECT_EQ(Bytes(c), "01 02");
  CBigInteger const& self = c;
  c = self;  // self-assignment keeps the value
  EXPECT_EQ(Bytes(c), "01 02");
  c.put_value(Blob("FF"));
  EXPECT_TRUE(c.isNegative());
  EXPECT_EQ(Bytes(b), "01 02");
}

TEST(CBigIntegerTest, IncrementCarriesAndSigns) {
  struct Case {
    char const* start;
    int n;
    char const* result;
  } const cases[] = {
      {"7F", 1, "00 80"},           // 127 + 1 stays positive
      {"FF", 1, "00"},              // -1 + 1
      {"00 FF", 1, "01 00"},        // 255 + 1
      {"00 FF FF", 1, "01 00 00"},  // carry through two bytes
      {"80", -1, "FF 7F"},          // -128 - 1
      {"00 80", -1, "7F"},          // 128 - 1, minimal again
      {"", 1, "01"},                // no bytes is zero
      {"", -1, "FF"},
      {"7F FF FF FF", 1, "00 80 00 00 00"},
      {"00", INT_MIN, "80 00 00 00"},
      {"80 00 00 00", -1, "FF 7F FF FF FF"},
      {"01 00", -256, "00"},
      {"00 00 00 05", 0, "05"},  // a result is always minimal
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(testing::Message() << c.start << " + " << c.n);
    CBigInteger v = Big(c.start);
    v.increment(c.n);
    EXPECT_EQ(Bytes(v), c.result);
  }
}

TEST(CBigIntegerTest, AddAndIncrementOperators) {
  struct Case {
    char const* a;
    char const* b;
    char const* sum;
  } const cases[] = {
      {"01", "02", "03"},
      {"7F", "7F", "00 FE"},
      {"FF", "FF", "FE"},     // -1 + -1
      {"80", "80", "FF 00"},  // -128 + -128
      {"00 FF FF FF FF", "01", "01 00 00 00 00"},
      {"FF FF", "00 01", "00"},  // redundant sign bytes
      {"05", "FB", "00"},        // 5 + -5
      {"01 00 00 00 00 00", "FF", "00 FF FF FF FF FF"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(testing::Message() << c.a << " + " << c.b);
    CBigInteger v = Big(c.a);
    v.add(Big(c.b));
    EXPECT_EQ(Bytes(v), c.sum);
    CBigInteger w = Big(c.b);
    w.add(Big(c.a));
    EXPECT_EQ(Bytes(w), c.sum);
  }
  CBigInteger x = Big("7F");
  CBigInteger before = x++;
  EXPECT_EQ(Bytes(before), "7F");
  EXPECT_EQ(Bytes(x), "00 80");
  EXPECT_EQ(Bytes(++x), "00 81");
  x.add(x);  // adding a value to itself
  EXPECT_EQ(Bytes(x), "01 02");
}

TEST(CBigIntegerTest, CompareAndAbs) {
  // In increasing order; equal neighbours marked.
  char const* const ordered[] = {"80 00", "FF 00", "80", "FF",    "",      "00",
                                 "00 00", "01",    "7F", "00 80", "01 00", "7F FF FF FF FF"};
  auto rank = [](int i) { return i >= 5 && i <= 6 ? 4 : i; };  // "", 00, 00 00 are zero
  for (int i = 0; i < 12; ++i) {
    for (int j = 0; j < 12; ++j) {
      SCOPED_TRACE(testing::Message() << ordered[i] << " vs " << ordered[j]);
      int expected = rank(i) < rank(j) ? -1 : rank(i) > rank(j) ? 1 : 0;
      CBigInteger a = Big(ordered[i]), b = Big(ordered[j]);
      EXPECT_EQ(a.compare(b), expected);
      EXPECT_EQ(a == b, expected == 0);
      EXPECT_EQ(a != b, expected != 0);
      EXPECT_EQ(a < b, expected < 0);
      EXPECT_EQ(a <= b, expected <= 0);
      EXPECT_EQ(a > b, expected > 0);
      EXPECT_EQ(a >= b, expected >= 0);
    }
  }
  EXPECT_EQ(Bytes(Big("80").abs()), "00 80");
  EXPECT_EQ(Bytes(Big("FF").abs()), "01");
  EXPECT_EQ(Bytes(Big("FF 00").abs()), "01 00");
  EXPECT_EQ(Bytes(Big("00 05").abs()), "05");
  EXPECT_EQ(Bytes(Big("80 00 00 00").abs()), "00 80 00 00 00");
  EXPECT_EQ(Bytes(CBigInteger().abs()), "00");
}

TEST(CBigIntegerTest, EncodeDecodeAsInteger) {
  struct Case {
    char const* bytes;
    char const* der;
  } const cases[] = {
      {"", "02 01 00"},         {"00", "02 01 00"},
      {"7F", "02 01 7F"},       {"00 80", "02 02 00 80"},
      {"80", "02 01 80"},       {"FF FF 7F", "02 02 FF 7F"},  // held non-minimal, written minimal
      {"00 00 01", "02 01 01"}, {"01 02 03 04 05 06 07 08 09", "02 09 01 02 03 04 05 06 07 08 09"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.bytes);
    EXPECT_EQ(Hex(Big(c.bytes).encode()), c.der);
    CBigInteger back = Big("11 22");
    back.decode(Blob(c.der));
    EXPECT_TRUE(back == Big(c.bytes));
  }
  CBigInteger keep = Big("42");
  // Redundant sign octets are refused: X.690 8.3.2 forbids them in BER too.
  for (char const* der : {"", "02 00", "04 01 05", "02 02 01", "02 03 00 00 80", "02 02 FF 80"}) {
    SCOPED_TRACE(der);
    EXPECT_EQ(ThrownCode([&] { keep.decode(Blob(der)); }), kCodec);
    EXPECT_EQ(Bytes(keep), "42");
  }
}

TEST(BigIntegerTextTest, TextConversions) {
  struct Case {
    char const* bytes;
    char const* text;
  } const cases[] = {
      {"", "0"},       {"00", "0"},    {"7F", "0x7f"},     {"00 80", "0x80"},
      {"80", "-0x80"}, {"FF", "-0x1"}, {"01 00", "0x100"}, {"00 00 01 00", "0x100"},
  };
  ctxt_handle ctxt;
  ASSERT_TRUE(ctxt.init());
  for (auto const& c : cases) {
    SCOPED_TRACE(c.bytes);
    CBlob text;
    BigIntegerToString(Big(c.bytes), text);
    EXPECT_EQ(text.cbData(), std::string(c.text).size() + 1);
    EXPECT_STREQ(reinterpret_cast<char const*>(text.pbData()), c.text);
    EXPECT_STREQ(BigIntegerToASN1String(ctxt, Big(c.bytes)), c.text);
    EXPECT_TRUE(ASN1StringToBigInteger(c.text) == Big(c.bytes));
  }
  CBigInteger v;
  StringToBigInteger("300", v);  // decimal is read too
  EXPECT_EQ(Bytes(v), "01 2C");
  StringToBigInteger("0x0000000a", v);  // the form "0x%08x" writes
  EXPECT_EQ(Bytes(v), "0A");
  StringToBigInteger("-129", v);
  EXPECT_EQ(Bytes(v), "FF 7F");
  for (char const* bad : {"", "0x", "12a", "- 1", "0xg"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(ThrownCode([&] { StringToBigInteger(bad, v); }), kInvalidArg);
    EXPECT_EQ(Bytes(v), "FF 7F");
  }
  EXPECT_EQ(ThrownCode([&] { StringToBigInteger(nullptr, v); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([] { BigIntegerToASN1String(nullptr, CBigInteger()); }), kInvalidArg);
}

TEST(BigIntegerTextTest, DwordConversions) {
  ctxt_handle ctxt;
  ASSERT_TRUE(ctxt.init());
  struct Case {
    unsigned value;
    char const* text;
  } const cases[] = {
      {0, "0"},
      {0x7F, "0x7f"},
      {0x100, "0x100"},
      {0x7FFFFFFF, "0x7fffffff"},
      {0x80000000u, "-0x80000000"},
      {0xFFFFFFFFu, "-0x1"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_STREQ(DWORDToASN1BigInteger(ctxt, c.value), c.text);
  }
  EXPECT_EQ(ThrownCode([] { DWORDToASN1BigInteger(nullptr, 1); }), kInvalidArg);

  // The fold multiplies by 11: only single-byte values come back unchanged.
  struct Fold {
    char const* text;
    unsigned value;
  } const folds[] = {
      {"0x7f", 127},
      {"0", 0},
      {"0x100", 11},
      {"0x80", 128},  // bytes 00 80
      {"0x10203", 1 * 121 + 2 * 11 + 3},
      {"-0x1", 255},
      {"0x7fffffff", 127u * 1331 + 255u * 121 + 255u * 11 + 255u},
  };
  for (auto const& f : folds) {
    SCOPED_TRACE(f.text);
    EXPECT_EQ(ASN1BigIntegerToDWORD(f.text), f.value);
  }
  EXPECT_EQ(ThrownCode([] { ASN1BigIntegerToDWORD("0x80000000"); }), kInvalidArg);  // 5 bytes
  EXPECT_EQ(ThrownCode([] { ASN1BigIntegerToDWORD("0x1ffffffff"); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([] { ASN1BigIntegerToDWORD("junk"); }), kInvalidArg);
}

TEST(BigIntegerTextTest, DwordHeapExhaustedIsOutOfMemory) {
  HeapWatch watch;
  {
    ctxt_handle ctxt;
    ASSERT_TRUE(ctxt.init());
    HeapWatch::failHeapBlock(sizeof("0x100"));
    EXPECT_EQ(ThrownCode([&] { DWORDToASN1BigInteger(ctxt, 0x100); }), 0x8007000Eu);
    EXPECT_EQ(ThrownCode([&] { BigIntegerToASN1String(ctxt, CBigInteger(0x100ul)); }), 0x80093106u);
    HeapWatch::failHeapBlock(0);
  }
  EXPECT_EQ(HeapWatch::live(), 0);
}

TEST(OctetStringTest, WrapAndUnwrap) {
  HeapWatch watch;
  EXPECT_EQ(Hex(toOctetString(CBlob())), "04 00");
  EXPECT_EQ(Hex(toOctetString(Blob("DE AD"))), "04 02 DE AD");
  EXPECT_EQ(Hex(fromOctetString(Blob("04 02 DE AD"))), "DE AD");
  EXPECT_EQ(Hex(fromOctetString(Blob("04 00"))), "");
  EXPECT_EQ(Hex(fromOctetString(Blob("24 06 04 01 DE 04 01 AD"))), "DE AD");
  for (char const* der : {"", "03 01 00", "04 03 01", "04"}) {
    SCOPED_TRACE(der);
    EXPECT_EQ(ThrownCode([&] { fromOctetString(Blob(der)); }), kCodec);
  }
  HeapWatch::failHeapBlock(3);
  EXPECT_EQ(ThrownCode([] { toOctetString(Blob("01 02 03")); }), 0x80093106u);
  HeapWatch::failHeapBlock(0);
  EXPECT_EQ(HeapWatch::live(), 0);
}

}  // namespace
