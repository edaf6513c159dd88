// ASN1TObjId / ASN1TObjId64: construction, assignment and the -1 failures.
#include <gtest/gtest.h>
#include <korvex/asn1rt/ASN1TObjId.h>

#include <vector>

namespace {

const ASN1UINT kRsa[] = {1, 2, 840, 113549};

ASN1OBJID MakeOid(std::vector<ASN1UINT> const& arcs) {
  ASN1OBJID oid{};
  oid.numids = static_cast<ASN1UINT>(arcs.size());
  for (size_t i = 0; i < arcs.size(); ++i) oid.subid[i] = arcs[i];
  return oid;
}

TEST(ASN1TObjId, ConstructsFromArcsRecordsAndCopies) {
  ASN1TObjId empty;
  EXPECT_EQ(empty.numids, 0u);

  ASN1TObjId rsa(4, kRsa);
  ASSERT_EQ(rsa.numids, 4u);
  EXPECT_EQ(rsa.subid[3], 113549u);

  ASN1OBJID record = MakeOid({2, 5, 4, 3});
  ASN1TObjId fromRecord(record);
  EXPECT_TRUE(fromRecord == record);
  ASN1TObjId copy(fromRecord);
  EXPECT_TRUE(copy == fromRecord);
  EXPECT_TRUE(copy != rsa);

  // The wrapper is the record: runtime functions take it as it is.
  EXPECT_EQ(sizeof(ASN1TObjId), sizeof(ASN1OBJID));
  EXPECT_EQ(rtCmpOID(&copy, &record), 1);
}

TEST(ASN1TObjId, AssignmentReplacesEveryArc) {
  ASN1TObjId oid(4, kRsa);
  oid = MakeOid({2, 5});
  EXPECT_EQ(oid.numids, 2u);
  EXPECT_TRUE(oid == MakeOid({2, 5}));
  ASN1TObjId& self = oid;
  oid = self;  // self-assignment keeps the value
  EXPECT_TRUE(oid == MakeOid({2, 5}));
}

TEST(ASN1TObjId, ValuesThatDoNotFitLeaveItEmptyAndReportMinus1) {
  ASN1TObjId oid(4, kRsa);
  std::vector<ASN1UINT> many(ASN_K_MAXSUBIDS + 1, 7);
  EXPECT_EQ(oid.set(static_cast<ASN1UINT>(many.size()), many.data()), -1);
  EXPECT_EQ(oid.numids, 0u);

  ASN1TObjId tooMany(static_cast<ASN1UINT>(many.size()), many.data());
  EXPECT_EQ(tooMany.numids, 0u);
  ASN1TObjId nullArcs(3, nullptr);
  EXPECT_EQ(nullArcs.numids, 0u);
  EXPECT_EQ(oid.set(0, nullptr), 0);  // no arcs need no array

  EXPECT_EQ(oid.set(ASN_K_MAXSUBIDS, many.data()), 0);  // exactly 128 arcs fit
  EXPECT_EQ(oid.numids, static_cast<ASN1UINT>(ASN_K_MAXSUBIDS));

  ASN1OBJID corrupt = MakeOid({1, 2});
  corrupt.numids = 500;
  EXPECT_EQ(oid.set(corrupt), -1);
  EXPECT_EQ(oid.numids, 0u);
}

TEST(ASN1TObjId, NarrowingFrom64BitArcs) {
  ASN1TObjId64 wide;
  const ASN1UINT64 uuidArc[] = {2, 25, 0xFFFFFFFFull};
  ASSERT_EQ(wide.set(3, uuidArc), 0);
  ASN1TObjId narrow(wide);
  ASSERT_EQ(narrow.numids, 3u);
  EXPECT_EQ(narrow.subid[2], 0xFFFFFFFFu);

  const ASN1UINT64 tooWide[] = {2, 25, 0x100000000ull};
  ASN1TObjId64 uuid(3, tooWide);
  EXPECT_EQ(uuid.numids, 3u);
  EXPECT_EQ(uuid.subid[2], 0x100000000ull);
  ASN1TObjId failed(uuid);
  EXPECT_EQ(failed.numids, 0u);
  ASN1TObjId target(4, kRsa);
  EXPECT_EQ(target.set(uuid), -1);
  EXPECT_EQ(target.numids, 0u);
  target = wide;
  EXPECT_EQ(target.numids, 3u);
}

TEST(ASN1TObjId64, WidensAndCompares) {
  ASN1TObjId64 wide(MakeOid({1, 2, 840, 113549}));
  ASSERT_EQ(wide.numids, 4u);
  EXPECT_EQ(wide.subid[3], 113549ull);
  ASN1TObjId64 copy(wide);
  EXPECT_TRUE(copy == wide);
  copy.subid[3] = 1ull << 40;
  EXPECT_TRUE(copy != wide);
  wide = copy;
  EXPECT_TRUE(wide == copy);
  std::vector<ASN1UINT64> many(ASN_K_MAXSUBIDS + 1, 1);
  EXPECT_EQ(wide.set(static_cast<ASN1UINT>(many.size()), many.data()), -1);
  EXPECT_EQ(wide.numids, 0u);
}

}  // namespace
