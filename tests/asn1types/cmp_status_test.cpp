// The management-protocol status values: PKIFreeText, PKIFailureInfo,
// PKIStatusInfo. Exact DER both ways, the text-conversion code, failures that
// leave the value alone.
#include <gtest/gtest.h>
#include <korvex/asn1types/CMP.h>
#include <korvex/asn1types/CMPTraits.h>

#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

class CmpStatusTest : public typestest::HeapCheckedTest {};

TEST_F(CmpStatusTest, FreeTextExactDer) {
  CPKIFreeText text(L"ok");
  text.add(L"\u0416");      // Cyrillic Zhe: two UTF-8 octets
  text.add(L"\U0001F600");  // outside the BMP: four octets
  CBlob der = text.encode();
  EXPECT_EQ(Hex(der), "30 0E 0C 02 6F 6B 0C 02 D0 96 0C 04 F0 9F 98 80");
  CPKIFreeText back(L"old");
  back.decode(der);
  EXPECT_EQ(back, text);
  ASSERT_EQ(back.size(), 3u);
  EXPECT_EQ(back.back(), std::wstring(L"\U0001F600"));
  // SIZE (1..MAX): the empty list does not encode.
  EXPECT_EQ(ThrownCode([] { CPKIFreeText().encode(); }), 0x80093101u);
  EXPECT_EQ(ThrownCode([] { CPKIFreeText bad(nullptr); }), 0x80070057u);
  EXPECT_EQ(ThrownCode([&] { back.add(nullptr); }), 0x80070057u);
}

TEST_F(CmpStatusTest, FreeTextConversionFailures) {
  // A lone surrogate cannot be written as UTF-8.
  CPKIFreeText surrogate;
  surrogate.push_back(std::wstring(1, static_cast<wchar_t>(0xD800)));
  EXPECT_EQ(ThrownCode([&] { surrogate.encode(); }), 0x8009310Eu);
  CPKIFreeText tooHigh;
  tooHigh.push_back(std::wstring(1, static_cast<wchar_t>(0x110000)));
  EXPECT_EQ(ThrownCode([&] { tooHigh.encode(); }), 0x8009310Eu);
  // Decoding UTF-8 that is not well formed: the strings before it stay.
  CPKIFreeText text(L"old");
  for (char const* bad : {"30 07 0C 02 6F 6B 0C 01 FF", "30 07 0C 02 6F 6B 0C 01 C3",
                          "30 08 0C 02 6F 6B 0C 02 C0 80", "30 09 0C 02 6F 6B 0C 03 ED A0 80"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(ThrownCode([&] { text.decode(Blob(bad)); }), 0x8009310Eu);
    ASSERT_EQ(text.size(), 1u);
    EXPECT_EQ(text.front(), std::wstring(L"ok"));
  }
  // Malformed DER is the codec code and leaves the list.
  EXPECT_EQ(ThrownCode([&] { text.decode(Blob("30 04 0C 02 6F")); }), 0x80093101u);
  EXPECT_EQ(ThrownCode([&] { text.decode(Blob("30 04 04 02 6F 6B")); }), 0x80093101u);
  EXPECT_EQ(text.front(), std::wstring(L"ok"));
}

TEST_F(CmpStatusTest, FailureInfoBits) {
  struct Case {
    unsigned mask;
    char const* der;
  } const cases[] = {
      {1u << CPKIFailureInfo::badRequest, "03 02 05 20"},
      {1u << CPKIFailureInfo::badAlg, "03 02 07 80"},
      {1u << CPKIFailureInfo::duplicateCertReq, "03 05 05 00 00 00 20"},
      {(1u << CPKIFailureInfo::badPOP) | (1u << CPKIFailureInfo::systemFailure),
       "03 05 06 00 40 00 40"},
      {0, "03 01 00"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.der);
    EXPECT_EQ(Hex(CPKIFailureInfo(c.mask).encode()), Hex(Blob(c.der)));
    CPKIFailureInfo back(0xFFFFFFFFu);
    back.decode(Blob(c.der));
    EXPECT_EQ(back.get_flags(), c.mask);
  }
  CPKIFailureInfo info;
  info.put_bit(CPKIFailureInfo::signerNotTrusted);
  EXPECT_TRUE(info.get_bit(20));
  EXPECT_TRUE(info == CPKIFailureInfo(1u << 20));
  EXPECT_EQ(ThrownCode([&] { info.decode(Blob("03 02 05")); }), 0x80093101u);
  EXPECT_EQ(info.get_flags(), 1u << 20);
}

TEST_F(CmpStatusTest, StatusInfoExactDer) {
  CPKIStatusInfo accepted;
  EXPECT_EQ(accepted.get_status(), CPKIStatusInfo::accepted);
  EXPECT_EQ(accepted.get_statusString(), nullptr);
  EXPECT_EQ(accepted.get_failInfo(), nullptr);
  EXPECT_EQ(Hex(accepted.encode()), "30 03 02 01 00");

  CPKIStatusInfo rejection(CPKIStatusInfo::rejection);
  CPKIFreeText const text(L"x");
  CPKIFailureInfo const failure(1u << CPKIFailureInfo::badRequest);
  rejection.put_statusString(&text);
  rejection.put_failInfo(&failure);
  char const kRejection[] = "30 0C 02 01 02 30 03 0C 01 78 03 02 05 20";
  EXPECT_EQ(Hex(rejection.encode()), Hex(Blob(kRejection)));
  CPKIStatusInfo back;
  back.decode(Blob(kRejection));
  EXPECT_TRUE(back == rejection);
  ASSERT_NE(back.get_statusString(), nullptr);
  EXPECT_EQ(back.get_statusString()->front(), std::wstring(L"x"));
  ASSERT_NE(back.get_failInfo(), nullptr);
  EXPECT_TRUE(back.get_failInfo()->get_bit(CPKIFailureInfo::badRequest));

  // Absent/present rule; a present but empty failInfo is the empty BIT STRING.
  CPKIStatusInfo onlyText(CPKIStatusInfo::rejection);
  onlyText.put_statusString(&text);
  EXPECT_TRUE(onlyText != rejection);
  CPKIFailureInfo const none;
  CPKIStatusInfo emptyBits(CPKIStatusInfo::waiting);
  emptyBits.put_failInfo(&none);
  EXPECT_EQ(Hex(emptyBits.encode()), "30 06 02 01 03 03 01 00");
  back.decode(Blob("30 06 02 01 03 03 01 00"));
  ASSERT_NE(back.get_failInfo(), nullptr);
  EXPECT_EQ(back.get_statusString(), nullptr);
  EXPECT_TRUE(back.get_failInfo()->empty());
  // Another status number is carried as it is.
  EXPECT_EQ(Hex(CPKIStatusInfo(300).encode()), "30 04 02 02 01 2C");
  back.put_failInfo(nullptr);
  EXPECT_TRUE(back == CPKIStatusInfo(CPKIStatusInfo::waiting));

  // Copies are deep.
  CPKIStatusInfo copy(rejection);
  copy.put_statusString(nullptr);
  EXPECT_NE(rejection.get_statusString(), nullptr);
  copy = rejection;
  EXPECT_TRUE(copy == rejection);

  // Malformed DER leaves the value.
  for (char const* bad : {"30 03 02 01", "30 00", "30 05 02 01 00 05 00", "31 03 02 01 00"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(ThrownCode([&] { copy.decode(Blob(bad)); }), 0x80093101u);
    EXPECT_TRUE(copy == rejection);
  }
}

TEST_F(CmpStatusTest, HeapExhaustionLeavesNothing) {
  CPKIStatusInfo info(CPKIStatusInfo::rejection);
  CPKIFreeText text(L"first");
  text.add(L"second");
  CPKIFailureInfo const failure(1u << CPKIFailureInfo::badTime);
  info.put_statusString(&text);
  info.put_failInfo(&failure);
  CBlob const expected = info.encode();
  for (size_t size = 1; size < 300; ++size) {
    HeapWatch::failHeapBlock(size);
    unsigned code = ThrownCode([&] { info.encode(); });
    EXPECT_TRUE(code == 0 || code == 0x80093106u || code == 0x80093101u) << size;
    CPKIStatusInfo back;
    code = ThrownCode([&] { back.decode(expected); });
    EXPECT_TRUE(code == 0 || code == 0x80093106u || code == 0x80093101u) << size;
    HeapWatch::failHeapBlock(0);
  }
}

}  // namespace
