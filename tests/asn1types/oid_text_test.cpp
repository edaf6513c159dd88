// Object identifiers to and from dotted text: str2oid's exact rules, oid2str,
// toASN1OBJID and toOID.
#include <gtest/gtest.h>
#include <korvex/asn1types/Util.h>

#include <string>
#include <vector>

#include "types_test_util.h"

using Korvex::CBlob;
using namespace Korvex::ASN1;
using typestest::ThrownCode;

namespace {

std::vector<ASN1UINT> Arcs(ASN1OBJID const& oid) {
  return std::vector<ASN1UINT>(oid.subid, oid.subid + oid.numids);
}

TEST(Str2OidTest, AcceptedTexts) {
  struct Case {
    char const* text;
    std::vector<ASN1UINT> arcs;
  } const cases[] = {
      {"1.2.840.113549", {1, 2, 840, 113549}},
      {" 1.2 ", {1, 2}},
      {"1 . 2", {1, 2}},  // white space around numbers
      {"\t1.\n2\t", {1, 2}},
      {"5", {5}},                          // one arc: no other check is made
      {"4294967295.1", {0xFFFFFFFFu, 1}},  // only the last arc is tested
      {"1.2.4294967296", {1, 2, 0}},       // stored cut to 32 bits
      {"+1.-1.2", {1, 0xFFFFFFFFu, 2}},    // strtoul's sign
      // The last arc's test compares strtoul's whole unsigned long: -1 is
      // 2^64 - 1 there, not 0xFFFFFFFF.
      {"-1", {0xFFFFFFFFu}},
      {"007.08", {7, 8}},
      {"9.99.0", {9, 99, 0}},  // first arcs not range-checked
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.text);
    ASN1OBJID oid;
    ASSERT_EQ(str2oid(c.text, &oid), 0u);
    EXPECT_EQ(Arcs(oid), c.arcs);
  }
}

TEST(Str2OidTest, RefusedTexts) {
  char const* const cases[] = {
      "",    "   ", "1..2", "1.2.",           ".1.2", "1.2x",   "1.2 x",
      "1 2", "x.1", "1.x",  "1.2.4294967295", "1,2",  "1.2.3.",
  };
  for (char const* text : cases) {
    SCOPED_TRACE(text);
    ASN1OBJID oid;
    EXPECT_EQ(str2oid(text, &oid), 1u);
  }
  ASN1OBJID oid;
  EXPECT_EQ(str2oid(nullptr, &oid), 1u);
  EXPECT_EQ(str2oid("1.2", nullptr), 1u);
}

TEST(Str2OidTest, ArcCountIsBoundedByTheRecord) {
  std::string text = "1";
  for (int i = 1; i < ASN_K_MAXSUBIDS; ++i) text += ".7";
  ASN1OBJID oid;
  ASSERT_EQ(str2oid(text.c_str(), &oid), 0u);
  EXPECT_EQ(oid.numids, 128u);
  EXPECT_EQ(str2oid((text + ".7").c_str(), &oid), 1u);
  EXPECT_EQ(str2oid((text + ".7.8.9").c_str(), &oid), 1u);
  EXPECT_EQ(oid.numids, 128u);
}

TEST(Oid2StrTest, WritesDottedDecimal) {
  struct Case {
    std::vector<ASN1UINT> arcs;
    char const* text;
  } const cases[] = {
      {{2, 5, 4, 3}, "2.5.4.3"},
      {{}, ""},
      {{0}, "0"},
      {{1, 2, 840, 113549, 1, 1, 11}, "1.2.840.113549.1.1.11"},
      {{4294967295u, 10, 100, 0}, "4294967295.10.100.0"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.text);
    ASN1OBJID oid = {};
    oid.numids = static_cast<ASN1UINT>(c.arcs.size());
    for (size_t i = 0; i < c.arcs.size(); ++i) oid.subid[i] = c.arcs[i];
    CBlob out =
        typestest::Blob("FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF");
    ASSERT_EQ(oid2str(out, &oid), 1);
    // Exactly the text and its NUL.
    EXPECT_EQ(out.cbData(), std::string(c.text).size() + 1);
    EXPECT_STREQ(reinterpret_cast<char const*>(out.pbData()), c.text);
  }
}

TEST(Oid2StrTest, RefusesWhatItCannotRead) {
  CBlob out = typestest::Blob("41 00");
  EXPECT_EQ(oid2str(out, nullptr), 0);
  ASN1OBJID oid = {};
  oid.numids = 129;
  EXPECT_EQ(oid2str(out, &oid), 0);
  EXPECT_EQ(typestest::Hex(out), "41 00");
}

TEST(OidValueTest, ToAsn1ObjIdAndToOid) {
  ASN1OBJID oid = toASN1OBJID("1.3.6.1.5.5.7.48.1");
  EXPECT_EQ(Arcs(oid), (std::vector<ASN1UINT>{1, 3, 6, 1, 5, 5, 7, 48, 1}));
  EXPECT_STREQ(toOID(oid).c_str(), "1.3.6.1.5.5.7.48.1");
  EXPECT_EQ(ThrownCode([] { toASN1OBJID("1.2."); }), 0x80070057u);
  EXPECT_EQ(ThrownCode([] { toASN1OBJID(nullptr); }), 0x80070057u);
  oid.numids = 200;
  EXPECT_EQ(ThrownCode([&] { toOID(oid); }), 0x80070057u);
  ASN1OBJID empty = {};
  EXPECT_STREQ(toOID(empty).c_str(), "");
}

}  // namespace
