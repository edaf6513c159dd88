// Inputs found by the fuzz targets of the value classes, each named after the
// SHA-1 of the fuzzer's input (its first byte picks the class, the rest is the
// DER shown here). Each test pins the behaviour the target now expects.
#include <gtest/gtest.h>
#include <korvex/asn1types/Attribute.h>

#include "types_test_util.h"

using namespace Korvex::ASN1;
using namespace typestest;

namespace {

class Regression : public HeapCheckedTest {};

// A signing time given as GeneralizedTime before 1950 (here with a fraction of
// an hour, X.680 46) decodes; the value then takes the UTCTime alternative
// by the 2050 rule, which cannot hold the year, so encode() refuses it with the
// codec code and keeps the DER the attribute was read from.
struct EarlySigningTime {
  char const* name;
  char const* der;
  unsigned year, month, day, hour;
};

void CheckEarlySigningTime(EarlySigningTime const& c) {
  SCOPED_TRACE(c.name);
  CAttrSigningTime attr(Korvex::CDateTime(2024, 1, 2, 3, 4, 5, 0, 0));
  attr.decode(Blob(c.der));
  Korvex::CDateTime const* t = attr.get_signingTime().get_time();
  ASSERT_NE(t, nullptr);
  EXPECT_EQ(attr.get_signingTime().get_type(), 1u);  // utcTime
  EXPECT_EQ(t->year(), c.year);
  EXPECT_EQ(t->month(), c.month);
  EXPECT_EQ(t->day(), c.day);
  EXPECT_EQ(t->hour(), c.hour);
  EXPECT_EQ(ThrownCode([&] { attr.encode(); }), kCodec);
  EXPECT_EQ(Hex(attr.get_value()), c.der);
  EXPECT_EQ(attr.get_signingTime().get_time()->year(), c.year);
}

// fuzz_attrs_decode input 04 18 0D "1612050602,4Z".
TEST_F(Regression, crash_970b0f40bc2f) {
  CheckEarlySigningTime({"GeneralizedTime 1612-05-06 02h,4",
                         "18 0D 31 36 31 32 30 35 30 36 30 32 2C 34 5A", 1612, 5, 6, 2});
}

// fuzz_attrs_decode input 04 18 0D "1916051200,0Z".
TEST_F(Regression, crash_750414bc5c7e) {
  CheckEarlySigningTime({"GeneralizedTime 1916-05-12 00h,0",
                         "18 0D 31 39 31 36 30 35 31 32 30 30 2C 30 5A", 1916, 5, 12, 0});
}

}  // namespace
