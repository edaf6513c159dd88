// The C++ forms of the counted value records (ASN1TDynOctStr, ASN1TDynBitStr,
// ASN1TOpenType): construction, assignment, and use in place of the C record
// by the primitives and the copies, byte for byte.
#include <korvex/asn1rt/ASN1CSeqOfList.h>
#include <korvex/asn1rt/ASN1TObjId.h>
#include <korvex/asn1rt/ASN1TValueTypes.h>
#include <korvex/asn1rt/asn1CppTypes.h>

#include <gtest/gtest.h>

#include <cstddef>

#include "rt_test_util.h"

using rttest::Context;
using rttest::Decoder;
using rttest::Hex;

namespace {

const ASN1OCTET kBytes[] = {0x05, 0x00, 0xAA};

// Every form keeps its C record's field offsets.
static_assert(offsetof(ASN1TDynOctStr, numocts) == offsetof(ASN1DynOctStr, numocts) &&
                  offsetof(ASN1TDynOctStr, data) == offsetof(ASN1DynOctStr, data),
              "octet string layout");
static_assert(offsetof(ASN1TDynBitStr, numbits) == offsetof(ASN1DynBitStr, numbits) &&
                  offsetof(ASN1TDynBitStr, data) == offsetof(ASN1DynBitStr, data),
              "bit string layout");
static_assert(offsetof(ASN1TOpenType, numocts) == offsetof(ASN1OpenType, numocts) &&
                  offsetof(ASN1TOpenType, data) == offsetof(ASN1OpenType, data),
              "open type layout");
// The value records the generated types name exist with their C layouts too.
static_assert(sizeof(ASN1TObjId) == sizeof(ASN1OBJID), "object identifier layout");
static_assert(sizeof(ASN1TSeqOfList) == sizeof(rtDList), "list layout");
// Construction is usable in constant expressions (zero-cost constants).
constexpr ASN1TOpenType kAbsent;
static_assert(kAbsent.numocts == 0 && kAbsent.data == nullptr, "zeroed at compile time");

// Construction and assignment of one form, checked on its count field.
template <typename T, typename C, typename Count>
void CheckConstructionAndAssignment(Count C::*count) {
  T zero;
  EXPECT_EQ(zero.*count, 0u);
  EXPECT_EQ(zero.data, nullptr);

  T two(2, kBytes);
  EXPECT_EQ(two.*count, 2u);
  EXPECT_EQ(two.data, kBytes);

  C record{};
  record.*count = 3;
  record.data = kBytes;
  T fromRecord(record);
  EXPECT_EQ(fromRecord.*count, 3u);
  EXPECT_EQ(fromRecord.data, kBytes);

  T copy(two);
  EXPECT_EQ(copy.*count, 2u);
  EXPECT_EQ(copy.data, kBytes);

  T assigned;
  assigned = record;  // from the C record
  EXPECT_EQ(assigned.*count, 3u);
  assigned = two;  // from the C++ form
  EXPECT_EQ(assigned.*count, 2u);
  assigned = {1, kBytes + 2};  // from a braced count and pointer
  EXPECT_EQ(assigned.*count, 1u);
  EXPECT_EQ(assigned.data, kBytes + 2);
  assigned = T();
  EXPECT_EQ(assigned.*count, 0u);
  EXPECT_EQ(assigned.data, nullptr);

  // A C record can be set from the C++ form (slicing copies both fields).
  C back = two;
  EXPECT_EQ(back.*count, 2u);
  EXPECT_EQ(back.data, kBytes);
}

TEST(RtValueTypes, ConstructAndAssign) {
  {
    SCOPED_TRACE("ASN1TDynOctStr");
    CheckConstructionAndAssignment<ASN1TDynOctStr>(&ASN1DynOctStr::numocts);
  }
  {
    SCOPED_TRACE("ASN1TDynBitStr");
    CheckConstructionAndAssignment<ASN1TDynBitStr>(&ASN1DynBitStr::numbits);
  }
  {
    SCOPED_TRACE("ASN1TOpenType");
    CheckConstructionAndAssignment<ASN1TOpenType>(&ASN1OpenType::numocts);
  }
}

// The C++ forms go straight into the primitives and copies that take the C
// records, and an array of them has the C records' stride.
TEST(RtValueTypes, PrimitivesReadAndWriteThem) {
  Decoder d("04 02 AA BB 03 02 06 C0 30 03 02 01 05");
  ASN1TDynOctStr oct;
  ASSERT_EQ(xd_octstr(d.get(), &oct.data, &oct.numocts, ASN1EXPL, 0), 0);
  EXPECT_EQ(Hex(oct.data, oct.numocts), "AA BB");
  ASN1TDynBitStr bits;
  ASSERT_EQ(xd_bitstr(d.get(), &bits.data, &bits.numbits, ASN1EXPL, 0), 0);
  EXPECT_EQ(bits.numbits, 2u);
  EXPECT_EQ(Hex(bits.data, 1), "C0");
  ASN1TOpenType open;
  ASSERT_EQ(xd_OpenType(d.get(), &open.data, &open.numocts), 0);
  EXPECT_EQ(Hex(open.data, open.numocts), "30 03 02 01 05");

  Context ctx;
  ASN1TOpenType copies[2];
  static_assert(sizeof(copies) == 2 * sizeof(ASN1OpenType), "array stride");
  ASSERT_EQ(rtCopyOpenType(ctx.get(), &open, &copies[1]), 0);
  EXPECT_NE(copies[1].data, open.data);
  EXPECT_EQ(Hex(copies[1].data, copies[1].numocts), "30 03 02 01 05");
  EXPECT_EQ(copies[0].numocts, 0u);
  ASN1TDynBitStr bitsCopy;
  ASSERT_EQ(rtCopyDynBitStr(ctx.get(), &bits, &bitsCopy), 0);
  EXPECT_EQ(bitsCopy.numbits, 2u);

  ASSERT_EQ(xe_setp(ctx.get(), nullptr, 0), 0);
  int n = xe_OpenType(ctx.get(), copies[1].data, copies[1].numocts);
  ASSERT_EQ(n, 5);
  n = xe_bitstr(ctx.get(), bitsCopy.data, bitsCopy.numbits, ASN1EXPL);
  ASSERT_EQ(n, 4);
  ASN1TDynOctStr out(2, kBytes + 1);
  n = xe_octstr(ctx.get(), out.data, out.numocts, ASN1EXPL);
  ASSERT_EQ(n, 4);
  EXPECT_EQ(ctx.Encoded(), "04 02 00 AA 03 02 06 C0 30 03 02 01 05");
}

}  // namespace
