// Traits of the runtime's primitive records, through the templates and one by
// one: exact bytes, failure codes, heap ownership.
#include <gtest/gtest.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/GeneralizedTimeText.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/Traits.h>

#include <cstring>

#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::CDateTime;
using Korvex::CStringProxy;
using Korvex::CWStringProxy;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

class PrimitiveTraitsTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(ctxt_.init()); }
  void TearDown() override {
    ctxt_.release();
    EXPECT_EQ(HeapWatch::live(), 0);
  }
  size_t Blocks() { return rtMemHeapBlockCount(&ctxt_.get()->pTypeMemHeap); }

  HeapWatch watch_;
  ctxt_handle ctxt_;
};

// ---- OBJECT IDENTIFIER ----------------------------------------------------------

TEST_F(PrimitiveTraitsTest, ObjIdRoundTrips) {
  struct Case {
    char const* text;
    char const* der;
  } const cases[] = {
      {"1.2.840.113549", "06 06 2A 86 48 86 F7 0D"},
      {"2.5.4.3", "06 03 55 04 03"},
      {"2.999.1", "06 03 88 37 01"},
      {"0.0", "06 01 00"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(Hex(asn1Encode<ASN1TObjId_traits>(c.text)), c.der);
    CStringProxy back(nullptr);
    asn1Decode<ASN1TObjId_traits>(Blob(c.der), back);
    EXPECT_STREQ(back.c_str(), c.text);
  }
}

TEST_F(PrimitiveTraitsTest, ObjIdFailures) {
  // Text str2oid refuses: invalid argument.
  EXPECT_EQ(ThrownCode([] { asn1Encode<ASN1TObjId_traits>("1..2"); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([] { asn1Encode<ASN1TObjId_traits>(static_cast<char const*>(nullptr)); }),
            kInvalidArg);
  // Text it accepts but X.690 8.19 cannot write: the encoder's -4.
  EXPECT_EQ(ThrownCode([] { asn1Encode<ASN1TObjId_traits>("3.1"); }), kCodec);
  EXPECT_EQ(ThrownCode([] { asn1Encode<ASN1TObjId_traits>("7"); }), kCodec);
  // A record no decoder makes cannot be printed.
  ASN1OBJID big = {};
  big.numids = ASN_K_MAXSUBIDS + 1;
  CStringProxy text("x");
  EXPECT_EQ(ThrownCode([&] { ASN1TObjId_traits::get(big, text); }), kInvalidArg);
  EXPECT_STREQ(text.c_str(), "x");
}

TEST_F(PrimitiveTraitsTest, ObjIdSetAndCopyUseNoHeap) {
  ASN1OBJID rec = {}, copy = {};
  ASN1TObjId_traits::set(ctxt_, rec, "1.3.6.1");
  ASN1TObjId_traits::copy(ctxt_, rec, copy);
  EXPECT_EQ(Blocks(), 0u);
  ASSERT_EQ(copy.numids, 4u);
  EXPECT_EQ(copy.subid[3], 1u);
}

// ---- IA5String ------------------------------------------------------------------

TEST_F(PrimitiveTraitsTest, IA5StringRoundTrips) {
  EXPECT_EQ(Hex(asn1Encode<ASN1IA5String_traits>("abc")), "16 03 61 62 63");
  EXPECT_EQ(Hex(asn1Encode<ASN1IA5String_traits>("")), "16 00");
  CStringProxy text(nullptr);
  asn1Decode<ASN1IA5String_traits>(Blob("16 02 68 69"), text);
  EXPECT_STREQ(text.c_str(), "hi");
  EXPECT_EQ(ThrownCode([&] { asn1Decode<ASN1IA5String_traits>(Blob("13 02 68 69"), text); }),
            kCodec);
  EXPECT_EQ(ThrownCode([] { asn1Encode<ASN1IA5String_traits>(static_cast<char const*>(nullptr)); }),
            kInvalidArg);
}

TEST_F(PrimitiveTraitsTest, IA5StringCopySharesTheSourceText) {
  char const* src = nullptr;
  ASN1IA5String_traits::set(ctxt_, src, "shared");
  size_t before = Blocks();
  char const* dst = nullptr;
  ASN1IA5String_traits::copy(ctxt_, src, dst);
  EXPECT_EQ(dst, src);
  // The copy was made all the same and stays in the heap.
  EXPECT_EQ(Blocks(), before + 1);
  ASN1IA5String_traits::copy(ctxt_, nullptr, dst);
  EXPECT_EQ(dst, nullptr);
}

// ---- UTF8String ------------------------------------------------------------------

TEST_F(PrimitiveTraitsTest, UTF8StringRoundTrips) {
  struct Case {
    wchar_t const* text;
    char const* der;
  } const cases[] = {
      {L"", "0C 00"},
      {L"abc", "0C 03 61 62 63"},
      {L"\u00E9\u20AC", "0C 05 C3 A9 E2 82 AC"},
      {L"\U0001F600", "0C 04 F0 9F 98 80"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.der);
    EXPECT_EQ(Hex(asn1Encode<ASN1UTF8String_traits>(c.text)), c.der);
    CWStringProxy back(nullptr);
    asn1Decode<ASN1UTF8String_traits>(Blob(c.der), back);
    EXPECT_STREQ(back.c_str(), c.text);
  }
}

TEST_F(PrimitiveTraitsTest, UTF8StringFailures) {
  wchar_t const surrogate[] = {0xD800, 0};
  EXPECT_EQ(ThrownCode([&] { asn1Encode<ASN1UTF8String_traits>(surrogate); }), kCodec);
  EXPECT_EQ(
      ThrownCode([] { asn1Encode<ASN1UTF8String_traits>(static_cast<wchar_t const*>(nullptr)); }),
      kInvalidArg);
  CWStringProxy text(L"keep");
  char const* const bad[] = {"0C 01 FF", "0C 02 C0 AF", "0C 03 ED A0 80", "0C 01 C3"};
  for (char const* der : bad) {
    SCOPED_TRACE(der);
    EXPECT_EQ(ThrownCode([&] { asn1Decode<ASN1UTF8String_traits>(Blob(der), text); }), kCodec);
    EXPECT_STREQ(text.c_str(), L"keep");
  }
}

TEST_F(PrimitiveTraitsTest, UTF8StringCopyIsDeep) {
  char const* src = nullptr;
  ASN1UTF8String_traits::set(ctxt_, src, L"x\u00FF");
  char const* dst = nullptr;
  ASN1UTF8String_traits::copy(ctxt_, src, dst);
  EXPECT_NE(dst, src);
  EXPECT_STREQ(dst, "x\xC3\xBF");
}

// ---- OCTET STRING and BIT STRING -------------------------------------------------

TEST_F(PrimitiveTraitsTest, OctStrSetGetCopy) {
  ASN1TDynOctStr rec, copy;
  ASN1TDynOctStr_traits::set(ctxt_, rec, Blob("01 02"));
  ASN1TDynOctStr_traits::copy(ctxt_, rec, copy);
  EXPECT_NE(copy.data, rec.data);
  CBlob back;
  ASN1TDynOctStr_traits::get(copy, back);
  EXPECT_EQ(Hex(back), "01 02");
  // A record that claims bytes it does not have.
  ASN1TDynOctStr broken(2, nullptr);
  EXPECT_EQ(ThrownCode([&] { ASN1TDynOctStr_traits::get(broken, back); }), kCodec);
  EXPECT_EQ(ThrownCode([&] { ASN1TDynOctStr_traits::copy(ctxt_, broken, copy); }), kCodec);
  EXPECT_EQ(ThrownCode([&] { ASN1TDynOctStr_traits::set(nullptr, rec, back); }), kInvalidArg);
}

TEST_F(PrimitiveTraitsTest, OctStrHeapExhausted) {
  ASN1TDynOctStr rec;
  HeapWatch::failHeapBlock(5);
  EXPECT_EQ(ThrownCode([&] { ASN1TDynOctStr_traits::set(ctxt_, rec, CBlob(5)); }), kHeap);
  HeapWatch::failHeapBlock(0);
}

TEST_F(PrimitiveTraitsTest, BitStrRoundTrips) {
  EXPECT_EQ(Hex(asn1Encode<ASN1TDynBitStr_traits>(Blob("A5 0F"))), "03 03 00 A5 0F");
  EXPECT_EQ(Hex(asn1Encode<ASN1TDynBitStr_traits>(CBlob())), "03 01 00");
  struct Case {
    char const* der;
    char const* bytes;
  } const cases[] = {
      {"03 03 00 A5 0F", "A5 0F"},
      {"03 02 07 80", "80"},  // one bit: the byte that holds it
      {"03 01 00", ""},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.der);
    CBlob back;
    asn1Decode<ASN1TDynBitStr_traits>(Blob(c.der), back);
    EXPECT_EQ(Hex(back), Hex(Blob(c.bytes)));
  }
  ASN1TDynBitStr rec(9, reinterpret_cast<ASN1OCTET const*>("\xFF\x80")), copy;
  ASN1TDynBitStr_traits::copy(ctxt_, rec, copy);
  EXPECT_EQ(copy.numbits, 9u);
  EXPECT_EQ(std::memcmp(copy.data, "\xFF\x80", 2), 0);
}

// ---- Open types -----------------------------------------------------------------

TEST_F(PrimitiveTraitsTest, OpenTypeRoundTrips) {
  EXPECT_EQ(Hex(asn1Encode<ASN1TOpenType_traits>(Blob("05 00"))), "05 00");
  // Only the first complete element is written.
  EXPECT_EQ(Hex(asn1Encode<ASN1TOpenType_traits>(Blob("30 03 02 01 05 FF"))), "30 03 02 01 05");
  EXPECT_EQ(Hex(asn1Encode<ASN1TOpenType_traits>(CBlob())), "");
  EXPECT_EQ(ThrownCode([] { asn1Encode<ASN1TOpenType_traits>(Blob("30 05 02 01")); }), kCodec);
  CBlob back;
  asn1Decode<ASN1TOpenType_traits>(Blob("30 80 02 01 05 00 00"), back);
  EXPECT_EQ(Hex(back), "30 80 02 01 05 00 00");
}

TEST_F(PrimitiveTraitsTest, ObjectKeepsBytesAndNoDecodedValue) {
  EXPECT_EQ(Hex(asn1Encode<Asn1TObject_traits>(Blob("02 01 7F"))), "02 01 7F");
  CBlob back;
  asn1Decode<Asn1TObject_traits>(Blob("04 01 AA"), back);
  EXPECT_EQ(Hex(back), "04 01 AA");

  int marker = 0;
  Asn1Object rec = {0, nullptr, &marker}, copy = {0, nullptr, &marker};
  Asn1TObject_traits::set(ctxt_, rec, Blob("05 00"));
  EXPECT_EQ(rec.decoded, nullptr);
  Asn1TObject_traits::copy(ctxt_, rec, copy);
  EXPECT_EQ(copy.decoded, nullptr);
  EXPECT_EQ(copy.numocts, 2u);
  EXPECT_NE(copy.data, rec.data);
}

// ---- GeneralizedTime --------------------------------------------------------------

TEST_F(PrimitiveTraitsTest, GeneralizedTimeCutsTheFraction) {
  CDateTime t(2024, 1, 31, 12, 0, 0, 999, 0);
  EXPECT_EQ(Hex(asn1Encode<ASN1GeneralizedTime_traits>(t)),
            "18 0F 32 30 32 34 30 31 33 31 31 32 30 30 30 30 5A");  // 20240131120000Z
  EXPECT_STREQ(DateToASN1GeneralizedTime(ctxt_, t, true), "20240131120000Z");
  EXPECT_STREQ(DateToASN1GeneralizedTime(ctxt_, t, false), "20240131120000.999Z");
  EXPECT_STREQ(DateToASN1GeneralizedTime(ctxt_, CDateTime(9999, 12, 31, 23, 59, 59, 0, 0), true),
               "99991231235959Z");
}

TEST_F(PrimitiveTraitsTest, GeneralizedTimeFailures) {
  EXPECT_EQ(ThrownCode([&] {
              DateToASN1GeneralizedTime(ctxt_, CDateTime(10000, 1, 1, 0, 0, 0, 0, 0), true);
            }),
            kCodec);
  EXPECT_EQ(ThrownCode([] { DateToASN1GeneralizedTime(nullptr, CDateTime(0, 0), true); }),
            kInvalidArg);
  HeapWatch::failHeapBlock(16);  // "20240131120000Z" and its NUL
  EXPECT_EQ(ThrownCode([&] {
              DateToASN1GeneralizedTime(ctxt_, CDateTime(2024, 1, 31, 12, 0, 0, 0, 0), true);
            }),
            kHeap);
  HeapWatch::failHeapBlock(0);
}

TEST_F(PrimitiveTraitsTest, GeneralizedTimeDecodesAndCopies) {
  CDateTime t(0, 0);
  asn1Decode<ASN1GeneralizedTime_traits>(
      Blob("18 11 32 30 32 34 30 31 33 31 32 33 35 39 35 39 2E 35 5A"),
      t);  // 20240131235959.5Z
  EXPECT_TRUE(t == CDateTime(2024, 1, 31, 23, 59, 59, 500, 0));

  char const* src = "20240131235959.5Z";
  char const* dst = nullptr;
  ASN1GeneralizedTime_traits::copy(ctxt_, src, dst);
  EXPECT_STREQ(dst, "20240131235959Z");

  // The static encode / decode pair, tag 24 explicit.
  ASN1BEREncodeBuffer encoder;
  char const* text = "20500101000000Z";
  int n = ASN1GeneralizedTime_traits::encode(encoder, text);
  ASSERT_EQ(n, 17);
  CBlob der(encoder.getMsgPtr(), static_cast<unsigned long>(n));
  ASN1BERDecodeBuffer decoder(der.pbData(), static_cast<int>(der.cbData()));
  char const* read = nullptr;
  ASSERT_EQ(ASN1GeneralizedTime_traits::decode(decoder, read), 0);
  EXPECT_STREQ(read, text);
  CBlob utc = Blob("17 02 35 30");
  ASN1BERDecodeBuffer wrong(utc.pbData(), static_cast<int>(utc.cbData()));
  EXPECT_LT(ASN1GeneralizedTime_traits::decode(wrong, read), 0);
}

TEST_F(PrimitiveTraitsTest, GeneralizedTimeBadTextPassesTheParsersCode) {
  CDateTime t(0, 0);
  EXPECT_EQ(ThrownCode([&] {
              asn1Decode<ASN1GeneralizedTime_traits>(Blob("18 08 32 30 32 34 41 42 30 31"), t);
            }),
            0x8007076Du);
}

}  // namespace
