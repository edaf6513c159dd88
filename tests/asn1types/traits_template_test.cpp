// The encode/decode templates over hand-made records: exact bytes, the failure
// codes, and that every context and heap block is freed on every path.
#include <gtest/gtest.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/Traits.h>

#include "test_records.h"
#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::CBlobList;
using Korvex::ASN1::asn1Decode;
using Korvex::ASN1::asn1DecodeT;
using Korvex::ASN1::asn1Encode;
using Korvex::ASN1::asn1EncodeT;
using Korvex::ASN1::ctxt_handle;
using namespace typestest;

namespace {

class TraitsTemplateTest : public typestest::HeapCheckedTest {};

TEST_F(TraitsTemplateTest, EncodeWritesExactBytes) {
  struct Case {
    char const* value;
    char const* der;
  } const cases[] = {
      {"", "04 00"},
      {"01 02 03", "04 03 01 02 03"},
      {"FF", "04 01 FF"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.value);
    EXPECT_EQ(Hex(asn1Encode<ASN1T_TestOctets_traits>(Blob(c.value))), c.der);
    EXPECT_EQ(HeapWatch::live(), 0);
  }
}

TEST_F(TraitsTemplateTest, EncodeLongValueUsesLongLength) {
  CBlob value(300);
  CBlob der = asn1Encode<ASN1T_TestOctets_traits>(value);
  ASSERT_EQ(der.cbData(), 304u);
  EXPECT_EQ(Hex(CBlob(der.pbData(), 4)), "04 82 01 2C");
}

TEST_F(TraitsTemplateTest, DecodeReadsDerAndBer) {
  struct Case {
    char const* der;
    char const* value;
  } const cases[] = {
      {"04 00", ""},
      {"04 03 01 02 03", "01 02 03"},
      // Constructed, indefinite length (X.690 8.7.3): the segments are joined.
      {"24 80 04 01 01 04 02 02 03 00 00", "01 02 03"},
      // Bytes after the element are not part of it.
      {"04 01 AA 05 00", "AA"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.der);
    CBlob value = Blob("EE EE");
    asn1Decode<ASN1T_TestOctets_traits>(Blob(c.der), value);
    EXPECT_EQ(Hex(value), Hex(Blob(c.value)));
    EXPECT_EQ(HeapWatch::live(), 0);
  }
}

TEST_F(TraitsTemplateTest, DecodeFailuresThrowCodecErrorAndKeepValue) {
  char const* const cases[] = {
      "",                // nothing to decode
      "04",              // tag without length
      "04 05 01 02",     // shorter than its length
      "05 00",           // wrong tag
      "04 85 00 00 00",  // five length octets
      "24 80 04 01 01",  // indefinite, no end-of-contents
      "30 03 04 01 01",  // a SEQUENCE, not an OCTET STRING
  };
  for (char const* der : cases) {
    SCOPED_TRACE(der);
    CBlob value = Blob("EE EE");
    EXPECT_EQ(ThrownCode([&] { asn1Decode<ASN1T_TestOctets_traits>(Blob(der), value); }), kCodec);
    EXPECT_EQ(Hex(value), "EE EE");
    EXPECT_EQ(HeapWatch::live(), 0);
  }
}

// set that fills the record with a value the encoder refuses (bytes claimed,
// none given: xe_octstr's -18).
struct BrokenSetTraits : ASN1T_TestOctets_traits {
  static void set(ASN1CTXT*, ASN1T_TestOctets& rec, CBlob const&) {
    rec.value.numocts = 3;
    rec.value.data = nullptr;
  }
};

// set that allocates in the record context and then fails.
struct ThrowingSetTraits : ASN1T_TestOctets_traits {
  static void set(ASN1CTXT* ctxt, ASN1T_TestOctets& rec, CBlob const& v) {
    ASN1T_TestOctets_traits::set(ctxt, rec, v);
    throw ATL::CAtlException(static_cast<HRESULT>(0x80001234u));
  }
};

// get that fails after the decode succeeded.
struct ThrowingGetTraits : ASN1T_TestOctets_traits {
  static void get(ASN1T_TestOctets const&, CBlob&) {
    throw ATL::CAtlException(static_cast<HRESULT>(0x80005678u));
  }
};

TEST_F(TraitsTemplateTest, EncoderFailureThrowsCodecError) {
  EXPECT_EQ(ThrownCode([] { asn1Encode<BrokenSetTraits>(Blob("01")); }), kCodec);
}

TEST_F(TraitsTemplateTest, TraitsExceptionsPassThroughAndFreeEverything) {
  EXPECT_EQ(ThrownCode([] { asn1Encode<ThrowingSetTraits>(Blob("01 02")); }), 0x80001234u);
  EXPECT_EQ(HeapWatch::live(), 0);
  CBlob value;
  EXPECT_EQ(ThrownCode([&] { asn1Decode<ThrowingGetTraits>(Blob("04 01 01"), value); }),
            0x80005678u);
}

TEST_F(TraitsTemplateTest, RecordHeapExhaustedThrowsHeapError) {
  // The record's 1000 content bytes are the only heap block of that size.
  HeapWatch::failHeapBlock(1000);
  EXPECT_EQ(ThrownCode([] { asn1Encode<ASN1T_TestOctets_traits>(CBlob(1000)); }), kHeap);
  HeapWatch::failHeapBlock(0);
}

TEST_F(TraitsTemplateTest, BufferContextFailureThrowsCodecError) {
  // No heap record (48 bytes) can be made: the buffers' contexts fail.
  HeapWatch::failRequest(sizeof(ASN1MemHeap));
  EXPECT_EQ(ThrownCode([] { asn1Encode<ASN1T_TestOctets_traits>(Blob("01")); }), kCodec);
  CBlob value;
  EXPECT_EQ(ThrownCode([&] { asn1Decode<ASN1T_TestOctets_traits>(Blob("04 01 01"), value); }),
            kCodec);
  HeapWatch::failRequest(0);
}

TEST_F(TraitsTemplateTest, EncodeTCopiesTheCallersRecord) {
  ctxt_handle ctxt;
  ASSERT_TRUE(ctxt.init());
  ASN1T_TestOctets rec;
  ASN1T_TestOctets_traits::set(ctxt, rec, Blob("0A 0B"));
  size_t blocks = rtMemHeapBlockCount(&ctxt.get()->pTypeMemHeap);
  EXPECT_EQ(Hex(asn1EncodeT<ASN1T_TestOctets_traits>(rec)), "04 02 0A 0B");
  // The caller's record and context are untouched.
  EXPECT_EQ(rtMemHeapBlockCount(&ctxt.get()->pTypeMemHeap), blocks);
  CBlob value;
  ASN1T_TestOctets_traits::get(rec, value);
  EXPECT_EQ(Hex(value), "0A 0B");
}

TEST_F(TraitsTemplateTest, DecodeTCopiesIntoTheTargetContext) {
  ctxt_handle target;
  ASSERT_TRUE(target.init());
  ASN1T_TestOctets rec;
  asn1DecodeT<ASN1T_TestOctets_traits>(Blob("04 03 01 02 03"), target, rec);
  // The temporary buffer is gone; the copy lives in target's heap.
  EXPECT_EQ(rtMemHeapBlockCount(&target.get()->pTypeMemHeap), 1u);
  CBlob value;
  ASN1T_TestOctets_traits::get(rec, value);
  EXPECT_EQ(Hex(value), "01 02 03");

  ASN1T_TestOctets other;
  EXPECT_EQ(
      ThrownCode([&] { asn1DecodeT<ASN1T_TestOctets_traits>(Blob("04 03 01"), target, other); }),
      kCodec);
  EXPECT_EQ(rtMemHeapBlockCount(&target.get()->pTypeMemHeap), 1u);
  EXPECT_EQ(other.value.data, nullptr);
  EXPECT_EQ(
      ThrownCode([&] { asn1DecodeT<ASN1T_TestOctets_traits>(Blob("04 00"), nullptr, other); }),
      kInvalidArg);
  target.release();
}

TEST_F(TraitsTemplateTest, DecodeTHeapExhaustedInTargetThrowsHeapError) {
  ctxt_handle target;
  ASSERT_TRUE(target.init());
  // 700 bytes: the decoder's block and the copy's block have the same size;
  // the first goes through, the copy's is refused.
  HeapWatch::failHeapBlock(700, 1);
  std::string der = "04 82 02 BC";
  for (int i = 0; i < 700; ++i) der += " 5A";
  ASN1T_TestOctets rec;
  EXPECT_EQ(ThrownCode([&] { asn1DecodeT<ASN1T_TestOctets_traits>(Blob(der), target, rec); }),
            kHeap);
  HeapWatch::failHeapBlock(0);
}

// ---- A whole structure kept as its DER --------------------------------------------

typedef Korvex::ASN1::DerBlobTraits<ASN1T_TestOctets, ASN1C_TestOctets, &asn1Copy_TestOctets>
    OctetsDerTraits;

TEST_F(TraitsTemplateTest, DerBlobTraitsDecodeIntoTheContextAndEncodeBack) {
  ctxt_handle ctxt;
  ASSERT_TRUE(ctxt.init());
  ASN1T_TestOctets rec;
  // BER in, DER out: the record holds the value, not the bytes.
  OctetsDerTraits::set(ctxt, rec, Blob("24 80 04 01 0A 04 01 0B 00 00"));
  EXPECT_EQ(rtMemHeapBlockCount(&ctxt.get()->pTypeMemHeap), 1u);
  CBlob der;
  OctetsDerTraits::get(rec, der);
  EXPECT_EQ(Hex(der), "04 02 0A 0B");
  // Inside a bigger value: the blob is the member's whole encoding.
  EXPECT_EQ(Hex(asn1Encode<OctetsDerTraits>(Blob("04 01 7F"))), "04 01 7F");

  EXPECT_EQ(ThrownCode([&] { OctetsDerTraits::set(ctxt, rec, Blob("05 00")); }), kCodec);
  EXPECT_EQ(ThrownCode([&] { OctetsDerTraits::set(ctxt, rec, CBlob()); }), kCodec);
  EXPECT_EQ(ThrownCode([&] { OctetsDerTraits::set(nullptr, rec, Blob("04 00")); }), kInvalidArg);
  ASN1T_TestOctets broken;
  broken.value.numocts = 2;  // bytes claimed, none given
  EXPECT_EQ(ThrownCode([&] { OctetsDerTraits::get(broken, der); }), kCodec);
  EXPECT_EQ(Hex(der), "04 02 0A 0B");
}

// ---- SEQUENCE OF through ASN1TSeqOfList_traits -------------------------------

TEST_F(TraitsTemplateTest, ListEncodesInListOrder) {
  struct Case {
    CBlobList list;
    char const* der;
  } const cases[] = {
      {{}, "30 00"},
      {{Blob("0A")}, "30 03 04 01 0A"},
      {{Blob("0A"), Blob(""), Blob("0C 0D")}, "30 09 04 01 0A 04 00 04 02 0C 0D"},
      {{Blob("0C"), Blob("0B"), Blob("0A")}, "30 09 04 01 0C 04 01 0B 04 01 0A"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.der);
    EXPECT_EQ(Hex(asn1Encode<ASN1T_TestOctetsList_traits>(c.list)), c.der);
    CBlobList back{Blob("FF")};
    asn1Decode<ASN1T_TestOctetsList_traits>(Blob(c.der), back);
    EXPECT_EQ(back, c.list);
  }
}

TEST_F(TraitsTemplateTest, ListDecodeEmptiesTheListFirst) {
  CBlobList list{Blob("01"), Blob("02")};
  asn1Decode<ASN1T_TestOctetsList_traits>(Blob("30 00"), list);
  EXPECT_TRUE(list.empty());
  list = {Blob("01")};
  asn1Decode<ASN1T_TestOctetsList_traits>(Blob("30 80 04 01 0B 00 00"), list);
  EXPECT_EQ(list, CBlobList{Blob("0B")});
}

TEST_F(TraitsTemplateTest, ListDecodeFailureThrowsAndKeepsList) {
  char const* const cases[] = {"30 03 04 02 0A", "30 03 05 01 0A", "31 00", "30 02 04"};
  for (char const* der : cases) {
    SCOPED_TRACE(der);
    CBlobList list{Blob("01")};
    EXPECT_EQ(ThrownCode([&] { asn1Decode<ASN1T_TestOctetsList_traits>(Blob(der), list); }),
              kCodec);
    EXPECT_EQ(list, CBlobList{Blob("01")});
  }
}

TEST_F(TraitsTemplateTest, ListSetReinitialisesTheRecordList) {
  ctxt_handle ctxt;
  ASSERT_TRUE(ctxt.init());
  ASN1T_TestOctetsList rec;
  ASN1T_TestOctetsList_traits::set(ctxt, rec, CBlobList{Blob("01"), Blob("02")});
  ASSERT_EQ(rec.count, 2u);
  ASN1T_TestOctetsList_traits::set(ctxt, rec, CBlobList{Blob("03")});
  ASSERT_EQ(rec.count, 1u);
  CBlobList back;
  ASN1T_TestOctetsList_traits::get(rec, back);
  EXPECT_EQ(back, CBlobList{Blob("03")});
  ASN1T_TestOctetsList_traits::set(ctxt, rec, CBlobList{});
  EXPECT_EQ(rec.count, 0u);
  EXPECT_EQ(rec.head, nullptr);
}

TEST_F(TraitsTemplateTest, ListSetHeapExhaustedThrowsHeapError) {
  HeapWatch::failHeapBlock(sizeof(ASN1T_TestOctets));
  EXPECT_EQ(ThrownCode([] { asn1Encode<ASN1T_TestOctetsList_traits>(CBlobList{Blob("01")}); }),
            kHeap);
  HeapWatch::failHeapBlock(0);
}

TEST_F(TraitsTemplateTest, ListEncodeTAndDecodeTRoundTrip) {
  ctxt_handle target;
  ASSERT_TRUE(target.init());
  ASN1T_TestOctetsList rec;
  asn1DecodeT<ASN1T_TestOctetsList_traits>(Blob("30 06 04 01 0A 04 01 0B"), target, rec);
  EXPECT_EQ(rec.count, 2u);
  EXPECT_EQ(Hex(asn1EncodeT<ASN1T_TestOctetsList_traits>(rec)), "30 06 04 01 0A 04 01 0B");

  // The generic list copy: the same elements, in order, in another context.
  ctxt_handle other;
  ASSERT_TRUE(other.init());
  ASN1TSeqOfList copy;
  using Base = Korvex::ASN1::ASN1TSeqOfList_traits<ASN1T_TestOctets, ASN1T_TestOctets_traits, CBlob,
                                                   CBlobList>;
  Base::copy(other, rec, copy);
  target.release();  // the copy does not depend on the source's context
  CBlobList back;
  Base::get(copy, back);
  EXPECT_EQ(back, (CBlobList{Blob("0A"), Blob("0B")}));
  Base::copy(other, copy, copy);  // onto itself: nothing
  EXPECT_EQ(copy.count, 2u);
}

}  // namespace
