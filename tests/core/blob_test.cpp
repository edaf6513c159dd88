#include <gtest/gtest.h>

#include <unistd.h>

#include <new>
#include <utility>

#include <korvex/core/Blob.h>
#include <korvex/platform/atl/atlexcept.h>

#include "blob_test_util.h"

using Korvex::CBlob;
using Korvex::CBlobList;
using namespace blob_test;

namespace {

TEST(BlobConstruct, DefaultSizedAndCopied) {
  CBlob empty;
  EXPECT_EQ(0u, empty.cbData());
  EXPECT_EQ(nullptr, empty.pbData());

  CBlob zeros(5ul);
  EXPECT_EQ(Bytes(5, 0), BytesOf(zeros));

  EXPECT_EQ(0u, CBlob(0ul).cbData());

  unsigned char source[] = {0x00, 0xFF, 0x7F};
  CBlob copied(source, 3);
  source[0] = 0x55;  // the blob owns its own copy
  EXPECT_EQ((Bytes{0x00, 0xFF, 0x7F}), BytesOf(copied));
  EXPECT_EQ(nullptr, CBlob(source, 0).pbData());

  CBlob deep(copied);
  EXPECT_NE(copied.pbData(), deep.pbData());
  deep.pbData()[0] = 0x11;
  EXPECT_EQ(0x00, copied.pbData()[0]);
  EXPECT_EQ(nullptr, CBlob(empty).pbData());
}

TEST(BlobAssign, ZeroLengthFreesOwnBytesAreSafeNullIsRejected) {
  CBlob blob = MakeBlob({1, 2, 3, 4});
  blob.assign(blob.pbData() + 1, 2);  // the source lives in the array being replaced
  EXPECT_EQ((Bytes{2, 3}), BytesOf(blob));

  CBlob const& alias = blob;
  blob = alias;  // self-assignment
  EXPECT_EQ((Bytes{2, 3}), BytesOf(blob));

  try {
    blob.assign(nullptr, 3);
    FAIL() << "no exception";
  } catch (ATL::CAtlException const& e) {
    EXPECT_EQ(E_POINTER, e.m_hr);
  }
  EXPECT_EQ((Bytes{2, 3}), BytesOf(blob));

  blob.assign(blob.pbData(), 0);
  EXPECT_EQ(0u, blob.cbData());
  EXPECT_EQ(nullptr, blob.pbData());

  CBlob target = MakeBlob({9});
  target = CBlob();
  EXPECT_EQ(0u, target.cbData());
  EXPECT_EQ(nullptr, target.pbData());
}

TEST(BlobResize, ShrinkKeepsArrayGrowthFollowsSizeNotArray) {
  CBlob blob = MakeBlob({1, 2, 3, 4});
  unsigned char* array = blob.pbData();

  blob.resize_to(2);
  EXPECT_EQ(array, blob.pbData());
  EXPECT_EQ((Bytes{1, 2}), BytesOf(blob));
  blob.resize_to(2);
  EXPECT_EQ(array, blob.pbData());

  // The old array could hold three bytes, yet growing past the size reallocates.
  blob.resize_to(3);
  EXPECT_NE(array, blob.pbData());
  EXPECT_EQ(3u, blob.cbData());
  EXPECT_EQ(1, blob.pbData()[0]);
  EXPECT_EQ(2, blob.pbData()[1]);

  array = blob.pbData();
  blob.clear();
  EXPECT_EQ(0u, blob.cbData());
  EXPECT_EQ(array, blob.pbData());

  CBlob grown;
  grown.resize_to(3);
  EXPECT_EQ(3u, grown.cbData());
  EXPECT_NE(nullptr, grown.pbData());
}

TEST(BlobSwap, ExchangesFieldsWithoutCopying) {
  CBlob a = MakeBlob({1, 2});
  CBlob b;
  unsigned char* array = a.pbData();
  a.swap(b);
  EXPECT_EQ(nullptr, a.pbData());
  EXPECT_EQ(0u, a.cbData());
  EXPECT_EQ(array, b.pbData());
  EXPECT_EQ((Bytes{1, 2}), BytesOf(b));
}

TEST(BlobReverse, ReversesInPlace) {
  struct Case {
    Bytes in, out;
  } cases[] = {
      {{}, {}},
      {{1}, {1}},
      {{1, 2}, {2, 1}},
      {{1, 2, 3}, {3, 2, 1}},
      {{0, 0xFF, 0x10, 0x20}, {0x20, 0x10, 0xFF, 0}},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.in));
    CBlob blob = MakeBlob(c.in);
    blob.reverse();
    EXPECT_EQ(c.out, BytesOf(blob));
  }
}

TEST(BlobAppend, AppendsBytesAndSelfAppendOnlyDoublesSize) {
  CBlob blob = MakeBlob({1, 2});
  blob += MakeBlob({3});
  EXPECT_EQ((Bytes{1, 2, 3}), BytesOf(blob));

  unsigned char* array = blob.pbData();
  blob += CBlob();
  EXPECT_EQ(array, blob.pbData());
  EXPECT_EQ((Bytes{1, 2, 3}), BytesOf(blob));

  CBlob empty;
  empty += MakeBlob({0, 0xFF});
  EXPECT_EQ((Bytes{0, 0xFF}), BytesOf(empty));

  // The source size is read after the resize: appending a blob to itself
  // doubles the size but leaves the second half unset.
  CBlob self = MakeBlob({7, 8});
  self += self;
  ASSERT_EQ(4u, self.cbData());
  EXPECT_EQ(7, self.pbData()[0]);
  EXPECT_EQ(8, self.pbData()[1]);
}

enum class Order { kLess, kEqual, kGreater };

void ExpectOrder(CBlob const& a, CBlob const& b, Order order) {
  EXPECT_EQ(order == Order::kEqual, a == b);
  EXPECT_EQ(order != Order::kEqual, a != b);
  EXPECT_EQ(order == Order::kLess, a < b);
  EXPECT_EQ(order != Order::kGreater, a <= b);
  EXPECT_EQ(order == Order::kGreater, a > b);
  EXPECT_EQ(order != Order::kLess, a >= b);
}

TEST(BlobCompare, LexicographicUnsignedShorterPrefixFirst) {
  struct Case {
    Bytes a, b;
    Order order;
  } cases[] = {
      {{}, {}, Order::kEqual},
      {{1, 2}, {1, 2}, Order::kEqual},
      {{1, 2}, {1, 2, 0}, Order::kLess},
      {{1, 2, 0}, {1, 2}, Order::kGreater},
      {{1, 3}, {1, 2, 0xFF}, Order::kGreater},
      {{}, {0}, Order::kLess},
      {{0x7F}, {0x80}, Order::kLess},  // unsigned bytes
      {{0xFF, 0}, {0x01, 0xFF}, Order::kGreater},
      {{1, 2, 3}, {1, 2, 4}, Order::kLess},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.a) + " vs " + testing::PrintToString(c.b));
    ExpectOrder(MakeBlob(c.a), MakeBlob(c.b), c.order);
  }
}

// A blob of the given size without touching its bytes (resize_to leaves
// them unset), or an empty blob when the machine cannot spare the space.
bool MakeHuge(CBlob& blob, unsigned long size) {
  long pages = sysconf(_SC_PHYS_PAGES);
  long page = sysconf(_SC_PAGESIZE);
  if (pages <= 0 || page <= 0 || static_cast<unsigned long>(pages) * page / 4 < size) return false;
  try {
    blob.resize_to(size);
  } catch (std::bad_alloc const&) {
    return false;
  }
  return true;
}

TEST(BlobCompare, SizeDifferenceIsTruncatedTo32Bits) {
  CBlob empty;
  CBlob half;  // 2^31 bytes: the 32-bit difference is INT32_MIN either way round
  if (!MakeHuge(half, 1ul << 31)) GTEST_SKIP() << "not enough memory for a 2 GiB blob";
  EXPECT_TRUE(empty < half);
  EXPECT_TRUE(half < empty);
  EXPECT_FALSE(half > empty);
  EXPECT_FALSE(half == empty);
  half.assign(nullptr, 0);  // release the array before the next one

  CBlob wrap;  // 2^32 bytes: the truncated difference is zero
  if (!MakeHuge(wrap, 1ul << 32)) GTEST_SKIP() << "not enough memory for a 4 GiB blob";
  EXPECT_FALSE(empty < wrap);
  EXPECT_FALSE(wrap < empty);
  EXPECT_TRUE(empty <= wrap);
  EXPECT_TRUE(wrap >= empty);
  EXPECT_TRUE(empty != wrap);
}

TEST(BlobList, KeepsOrderAndCopiesDeeply) {
  CBlobList list{MakeBlob({1}), MakeBlob({2, 3})};
  list.push_back(MakeBlob({}));
  CBlobList copy(list);
  ASSERT_EQ(3u, copy.size());
  EXPECT_NE(list.front().pbData(), copy.front().pbData());
  copy.front().pbData()[0] = 9;
  EXPECT_EQ((Bytes{1}), BytesOf(list.front()));
  EXPECT_EQ((Bytes{2, 3}), BytesOf(*std::next(copy.begin())));
  EXPECT_EQ(0u, copy.back().cbData());
}

}  // namespace
