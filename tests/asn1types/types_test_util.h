// types_test_util.h: hex helpers, exception checks, the thrown codes and a
// heap-checked fixture for the value-class tests (the helpers of
// tests/common by their local names).
#ifndef KORVEX_TESTS_ASN1TYPES_TYPES_TEST_UTIL_H
#define KORVEX_TESTS_ASN1TYPES_TYPES_TEST_UTIL_H

#include <gtest/gtest.h>

#include "../common/alloc_faults.h"
#include "../common/blob_values.h"

namespace typestest {

using korvextest::Blob;
using korvextest::HeapWatch;
using korvextest::Hex;
using korvextest::ThrownCode;

// The codes the value classes throw: a codec failure, an exhausted context
// heap, a bad argument.
constexpr unsigned kCodec = 0x80093101u;
constexpr unsigned kHeap = 0x80093106u;
constexpr unsigned kInvalidArg = 0x80070057u;

// HeapCheckedTest: a fixture whose every test ends with every block the
// runtime handed out freed.
class HeapCheckedTest : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(HeapWatch::live(), 0); }
  HeapWatch watch_;
};

}  // namespace typestest

#endif
