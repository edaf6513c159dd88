// The extension values that hold no names: Extension, Extensions, CRLReason,
// ReasonFlags, KeyUsage, PrivateKeyUsagePeriod. Exact DER both ways, the
// edge cases of each, and no context heap block left behind.
#include <gtest/gtest.h>
#include <korvex/asn1types/Extension.h>
#include <korvex/asn1types/ExtensionTraits.h>

#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::CDateTime;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

class ExtensionValuesTest : public typestest::HeapCheckedTest {};

TEST_F(ExtensionValuesTest, ExtensionExactDer) {
  struct Case {
    char const* oid;
    char const* value;
    bool critical;
    char const* der;
  } const cases[] = {
      // basicConstraints CA:FALSE, critical (RFC 5280 4.2.1.9).
      {"2.5.29.19", "30 00", true, "30 0C 06 03 55 1D 13 01 01 FF 04 02 30 00"},
      // Not critical: DEFAULT FALSE is left out (X.690 11.5).
      {"2.5.29.19", "30 00", false, "30 09 06 03 55 1D 13 04 02 30 00"},
      // An extension our catalogue does not know: the bytes as they stand.
      {"1.3.6.1.4.1.99981.38.77", "0C 02 68 69", false,
       "30 12 06 0A 2B 06 01 04 01 86 8D 0D 26 4D 04 04 0C 02 68 69"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.der);
    CExtension ext(c.oid, Blob(c.value), c.critical);
    EXPECT_EQ(Hex(ext.encode()), Hex(Blob(c.der)));
    CExtension back;
    back.decode(Blob(c.der));
    EXPECT_STREQ(back.get_extnID(), c.oid);
    EXPECT_EQ(back.get_critical(), c.critical);
    EXPECT_EQ(Hex(back.get_extnValue()), Hex(Blob(c.value)));
    EXPECT_TRUE(back == ext);
  }
}

TEST_F(ExtensionValuesTest, ExtensionBerAndErrors) {
  // An explicit critical FALSE is BER, read as not critical.
  CExtension ext;
  ext.decode(Blob("30 0C 06 03 55 1D 13 01 01 00 04 02 30 00"));
  EXPECT_FALSE(ext.get_critical());
  EXPECT_EQ(Hex(ext.encode()), "30 09 06 03 55 1D 13 04 02 30 00");

  // Malformed DER: the value keeps what it held.
  CExtension keep("2.5.29.15", Blob("03 02 05 A0"), true);
  // (The last: one element and a byte after it, refused rather than
  // ignored.)
  for (char const* bad :
       {"30 0C 06 03 55 1D 13 01 01 FF 04 02 30", "31 09 06 03 55 1D 13 04 02 30 00",
        "30 05 06 03 55 1D 13", "04 00", "30 09 06 03 55 1D 13 04 02 30 00 00"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(ThrownCode([&] { keep.decode(Blob(bad)); }), 0x80093101u);
    EXPECT_STREQ(keep.get_extnID(), "2.5.29.15");
    EXPECT_TRUE(keep.get_critical());
  }
  // Bad OID text shows when encoding; a null OID at once.
  EXPECT_EQ(ThrownCode([] { CExtension("1..2", CBlob()).encode(); }), 0x80070057u);
  EXPECT_EQ(ThrownCode([] { CExtension().encode(); }), 0x80070057u);
  EXPECT_EQ(ThrownCode([] { CExtension(nullptr, CBlob()); }), 0x80070057u);
  EXPECT_EQ(ThrownCode([&] { keep.put_extnID(nullptr); }), 0x80070057u);
}

TEST_F(ExtensionValuesTest, ExtensionCopyAndEquality) {
  CExtension a("2.5.29.15", Blob("03 02 05 A0"), true);
  CExtension b(a);
  EXPECT_TRUE(a == b);
  b.put_critical(false);
  EXPECT_TRUE(a != b);
  b = a;
  EXPECT_TRUE(a == b);
  b.put_extnValue(Blob("03 02 07 80"));
  EXPECT_TRUE(a != b);
  EXPECT_EQ(Hex(a.get_extnValue()), "03 02 05 A0");  // deep copy
  b = a;
  b.put_extnID("2.5.29.16");
  EXPECT_TRUE(a != b);
  auto const& self = b;
  b = self;  // self-assignment keeps the value
  EXPECT_STREQ(b.get_extnID(), "2.5.29.16");
}

TEST_F(ExtensionValuesTest, ExtensionsListInOrder) {
  CExtensions list;
  // SIZE (1..MAX): the empty list does not encode.
  EXPECT_EQ(ThrownCode([&] { list.encode(); }), 0x80093101u);
  list.push_back(CExtension("2.5.29.19", Blob("30 00"), true));
  list.push_back(CExtension("2.5.29.15", Blob("03 02 07 80"), true));
  CBlob der = list.encode();
  EXPECT_EQ(
      Hex(der),
      "30 1E 30 0C 06 03 55 1D 13 01 01 FF 04 02 30 00 30 0E 06 03 55 1D 0F 01 01 FF 04 04 03 "
      "02 07 80");
  CExtensions back;
  back.push_back(CExtension("1.2.3", CBlob()));
  back.decode(der);
  EXPECT_TRUE(back == list);
  ASSERT_NE(back.find("2.5.29.15"), back.end());
  EXPECT_EQ(Hex(back.find("2.5.29.15")->get_extnValue()), "03 02 07 80");
  EXPECT_EQ(back.find("2.5.29.1"), back.end());  // a prefix is not a match
  EXPECT_EQ(back.find(nullptr), back.end());
  CExtensions const& constant = back;
  EXPECT_EQ(constant.find("2.5.29.19"), constant.begin());
  // A value its extension's type refuses (keyUsage as NULL) is kept as bytes
  // by the list; the typed class refuses it.
  CExtensions odd;
  odd.decode(Blob("30 0E 30 0C 06 03 55 1D 0F 01 01 FF 04 02 05 00"));
  ASSERT_EQ(odd.size(), 1u);
  EXPECT_EQ(Hex(odd.front().get_extnValue()), "05 00");
  CKeyUsage usage;
  EXPECT_EQ(ThrownCode([&] { usage.decode(odd.front().get_extnValue()); }), 0x80093101u);
  // A bad element in the middle fails the whole list.
  EXPECT_EQ(ThrownCode([&] { back.decode(Blob("30 05 30 03 06 01 00")); }), 0x80093101u);
}

TEST_F(ExtensionValuesTest, CrlReasonValues) {
  struct Case {
    unsigned reason;
    char const* der;
  } const cases[] = {{CrlReason::unspecified, "0A 01 00"},
                     {CrlReason::keyCompromise, "0A 01 01"},
                     {CrlReason::certificateHold, "0A 01 06"},
                     {CrlReason::removeFromCRL, "0A 01 08"},
                     {CrlReason::aACompromise, "0A 01 0A"}};
  for (Case const& c : cases) {
    SCOPED_TRACE(c.der);
    EXPECT_EQ(Hex(CrlReason(c.reason).encode()), Hex(Blob(c.der)));
    CrlReason back;
    back.decode(Blob(c.der));
    EXPECT_EQ(back.get_reason(), c.reason);
  }
  EXPECT_EQ(CrlReason().get_reason(), 0u);
  // 7 is not a reason (RFC 5280 5.3.1), nor is 11.
  CrlReason r(CrlReason::superseded);
  EXPECT_EQ(ThrownCode([&] { r.put_reason(7); }), 0x80070057u);
  EXPECT_EQ(ThrownCode([&] { CrlReason bad(11); }), 0x80070057u);
  EXPECT_EQ(r.get_reason(), 4u);
  for (char const* bad : {"0A 01 07", "0A 01 0B", "02 01 01", "0A 00", "0A 02 00", "0A 01 01 00"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(ThrownCode([&] { r.decode(Blob(bad)); }), 0x80093101u);
    EXPECT_EQ(r.get_reason(), 4u);
  }
  EXPECT_TRUE(CrlReason(1) == CrlReason(CrlReason::keyCompromise));
  EXPECT_TRUE(CrlReason(1) != CrlReason(2));
}

TEST_F(ExtensionValuesTest, NamedBitStrings) {
  struct Case {
    unsigned mask;
    char const* der;
  } const cases[] = {
      {0, "03 01 00"},                         // no bit: the empty BIT STRING
      {1u << 0, "03 02 07 80"},                // bit 0 only
      {(1u << 1) | (1u << 2), "03 02 05 60"},  // trailing zero bits dropped (X.690 11.2.2)
      {1u << 8, "03 03 07 00 80"},             // bit 8: a second octet
      {1u << 31, "03 05 00 00 00 00 01"},      // the last bit a mask holds
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.der);
    EXPECT_EQ(Hex(CReasonFlags(c.mask).encode()), Hex(Blob(c.der)));
    EXPECT_EQ(Hex(CKeyUsage(c.mask).encode()), Hex(Blob(c.der)));
    CReasonFlags flags;
    flags.decode(Blob(c.der));
    EXPECT_EQ(flags.get_flags(), c.mask);
  }
  // BER with trailing zero bits and unused bits that are set reads by value.
  CKeyUsage usage;
  usage.decode(Blob("03 03 00 E0 00"));
  EXPECT_EQ(usage.get_flags(), 7u);
  EXPECT_EQ(Hex(usage.encode()), "03 02 05 E0");
  // A set bit beyond the 32 a value holds is refused; unset ones are not.
  usage.decode(Blob("03 06 00 80 00 00 00 00"));
  EXPECT_EQ(usage.get_flags(), 1u);
  EXPECT_EQ(ThrownCode([&] { usage.decode(Blob("03 06 07 00 00 00 00 80")); }), 0x80093101u);
  EXPECT_EQ(usage.get_flags(), 1u);
  EXPECT_EQ(ThrownCode([&] { usage.decode(Blob("04 01 00")); }), 0x80093101u);

  CReasonFlags reasons;
  EXPECT_TRUE(reasons.empty());
  reasons.put_bit(CReasonFlags::keyCompromise);
  reasons.put_bit(CReasonFlags::aACompromise);
  EXPECT_TRUE(reasons.get_bit(CReasonFlags::keyCompromise));
  EXPECT_FALSE(reasons.get_bit(CReasonFlags::unused));
  EXPECT_FALSE(reasons.get_bit(40));
  EXPECT_EQ(Hex(reasons.encode()), "03 03 07 40 80");
  reasons.put_bit(CReasonFlags::aACompromise, false);
  EXPECT_EQ(Hex(reasons.encode()), "03 02 06 40");
  EXPECT_EQ(ThrownCode([&] { reasons.put_bit(32); }), 0x80070057u);
  CReasonFlags copy(reasons);
  EXPECT_TRUE(copy == reasons);
  copy.put_flags(0);
  EXPECT_TRUE(copy != reasons);
  EXPECT_EQ(reasons.get_flags(), 2u);
}

TEST_F(ExtensionValuesTest, PrivateKeyUsagePeriod) {
  CDateTime const from(2024, 1, 1, 0, 0, 0, 0, 0);
  CDateTime const to(2025, 3, 31, 23, 59, 59, 0, 0);
  struct Case {
    CDateTime const* notBefore;
    CDateTime const* notAfter;
    char const* der;
  } const cases[] = {
      {&from, &to,
       "30 22 80 0F 32 30 32 34 30 31 30 31 30 30 30 30 30 30 5A 81 0F 32 30 32 35 30 33 33 31 "
       "32 33 35 39 35 39 5A"},
      {nullptr, &to, "30 11 81 0F 32 30 32 35 30 33 33 31 32 33 35 39 35 39 5A"},
      {&from, nullptr, "30 11 80 0F 32 30 32 34 30 31 30 31 30 30 30 30 30 30 5A"},
      {nullptr, nullptr, "30 00"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.der);
    CExtPrivateKeyUsagePeriod period(c.notBefore, c.notAfter);
    EXPECT_EQ(Hex(period.encode()), Hex(Blob(c.der)));
    CExtPrivateKeyUsagePeriod back(&to, &from);
    back.decode(Blob(c.der));
    EXPECT_TRUE(back == period);
    EXPECT_EQ(back.get_notBefore() != nullptr, c.notBefore != nullptr);
    EXPECT_EQ(back.get_notAfter() != nullptr, c.notAfter != nullptr);
  }
  // Milliseconds are cut when written.
  CDateTime const withMillis(2024, 1, 1, 0, 0, 0, 999, 0);
  CExtPrivateKeyUsagePeriod period(&withMillis, nullptr);
  CExtPrivateKeyUsagePeriod back;
  back.decode(period.encode());
  ASSERT_NE(back.get_notBefore(), nullptr);
  EXPECT_TRUE(*back.get_notBefore() == from);
  EXPECT_TRUE(back != period);
  // Absent/present rule, and a failed decode keeps the value.
  CExtPrivateKeyUsagePeriod one(&from, nullptr), two(nullptr, &from);
  EXPECT_TRUE(one != two);
  EXPECT_EQ(ThrownCode([&] { one.decode(Blob("30 03 80 01 31")); }), 0x80093101u);
  EXPECT_TRUE(one == CExtPrivateKeyUsagePeriod(&from, nullptr));
  one.put_notBefore(nullptr);
  EXPECT_TRUE(one == CExtPrivateKeyUsagePeriod());
}

// Every allocation path fails once: the exception carries the heap code or
// the codec code, never leaks, and the value stays usable.
TEST_F(ExtensionValuesTest, HeapExhaustionLeavesNothing) {
  CExtensions list;
  list.push_back(CExtension("2.5.29.19", Blob("30 00"), true));
  list.push_back(CExtension("2.5.29.15", Blob("03 02 07 80"), true));
  CBlob const expected = list.encode();
  for (size_t size = 1; size < 400; ++size) {
    HeapWatch::failHeapBlock(size);
    unsigned code = ThrownCode([&] { list.encode(); });
    EXPECT_TRUE(code == 0 || code == 0x80093106u || code == 0x80093101u) << size;
    HeapWatch::failHeapBlock(0);
  }
  EXPECT_EQ(Hex(list.encode()), Hex(expected));
}

}  // namespace
