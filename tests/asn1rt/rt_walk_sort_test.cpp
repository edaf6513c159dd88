// Walking BER: skipping elements, end-of-contents, counting, measuring
// indefinite lengths and the nesting cap; and the DER SET OF sort.
#include <korvex/asn1rt/asn1ber.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "rt_test_util.h"

using rttest::Bytes;
using rttest::Context;
using rttest::Decoder;
using rttest::Hex;

namespace {

std::string Nested(int levels) {
  std::string s;
  for (int i = 0; i < levels; ++i) s += "30 80 ";
  for (int i = 0; i < levels; ++i) s += "00 00 ";
  return s;
}

TEST(RtWalk, NextElement) {
  struct Case {
    const char* name;
    std::string input;
    int status;
    int cursor;
  };
  const Case cases[] = {
      {"definite", "30 03 02 01 05 04 00", 0, 5},
      {"indefinite with nesting", "30 80 30 80 00 00 02 01 05 00 00 05 00", 0, 11},
      {"definite holding indefinite", "30 06 24 80 04 00 00 00 05 00", 0, 8},
      {"64 levels", Nested(64), 0, 256},
      {"65 levels", Nested(65), ASN_E_NESTING, 0},
      {"missing end-of-contents", "30 80 02 01 05", ASN_E_ENDOFBUF, 0},
      {"contents past data", "04 05 00", ASN_E_INVLEN, 0},
      {"empty", "", ASN_E_ENDOFBUF, 0},
      {"huge tag", "1F 90 80 80 80 00 00", ASN_E_BADTAG, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Decoder d(c.input);
    EXPECT_EQ(xd_NextElement(d.get()), c.status);
    EXPECT_EQ(d.get()->errInfo.status, c.status);
    if (c.status == 0) {
      EXPECT_EQ(static_cast<int>(d.cursor()), c.cursor);
    }
  }
}

TEST(RtWalk, MovePastEndOfContents) {
  Decoder d("30 80 02 01 05 24 80 04 00 00 00 30 02 05 00 00 00 FF");
  d.get()->buffer.byteIndex = 2;
  EXPECT_EQ(xd_MovePastEOC(d.get()), 0);
  EXPECT_EQ(d.cursor(), 17u);
  Decoder deep(Nested(70));
  deep.get()->buffer.byteIndex = 2;
  EXPECT_EQ(xd_MovePastEOC(deep.get()), ASN_E_NESTING);
  Decoder open("30 80 02 01 05");
  open.get()->buffer.byteIndex = 2;
  EXPECT_EQ(xd_MovePastEOC(open.get()), ASN_E_ENDOFBUF);
  Decoder eoc("00 00 01");
  EXPECT_EQ(xd_MatchEOC(eoc.get()), 0);
  EXPECT_EQ(xd_MatchEOC(eoc.get()), ASN_E_ENDOFBUF);
  Decoder notEoc("00 01");
  EXPECT_EQ(xd_MatchEOC(notEoc.get()), ASN_E_IDNOTFOU);
  EXPECT_EQ(notEoc.cursor(), 0u);
}

TEST(RtWalk, CountRestoresTheCursor) {
  struct Case {
    const char* name;
    const char* input;
    int length;
    int status;
    int count;
  };
  const Case cases[] = {
      {"definite", "02 01 01 02 01 02 30 00", 8, 0, 3},
      {"part of the data", "02 01 01 02 01 02 30 00", 3, 0, 1},
      {"nothing", "02 01 01", 0, 0, 0},
      {"indefinite", "02 01 01 30 80 00 00 00 00 FF", ASN_K_INDEFLEN, 0, 2},
      {"element runs over the range", "02 01 01 02 01 02", 4, ASN_E_INVLEN, 0},
      {"range past data", "02 01 01", 5, ASN_E_ENDOFBUF, 0},
      {"indefinite without end", "02 01 01", ASN_K_INDEFLEN, ASN_E_ENDOFBUF, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Decoder d(c.input);
    int count = -1;
    EXPECT_EQ(xd_count(d.get(), c.length, &count), c.status);
    if (c.status == 0) {
      EXPECT_EQ(count, c.count);
    }
    EXPECT_EQ(d.cursor(), 0u);
  }
}

TEST(RtWalk, IndefiniteLength) {
  std::vector<ASN1OCTET> a = Bytes("30 80 02 01 05 00 00 FF");
  EXPECT_EQ(xd_indeflen_ex(a.data(), 8), 7);
  EXPECT_EQ(xd_indeflen_ex(a.data(), 4), 0);
  EXPECT_EQ(xd_indeflen_ex(a.data(), 6), ASN_E_ENDOFBUF);
  std::vector<ASN1OCTET> b = Bytes("30 03 02 01 05");
  EXPECT_EQ(xd_indeflen_ex(b.data(), 5), ASN_E_INVLEN);
  std::vector<ASN1OCTET> deep = Bytes(Nested(65));
  EXPECT_EQ(xd_indeflen_ex(deep.data(), static_cast<int>(deep.size())), ASN_E_NESTING);
  std::vector<ASN1OCTET> ok = Bytes(Nested(64));
  EXPECT_EQ(xd_indeflen_ex(ok.data(), static_cast<int>(ok.size())), 256);
}

TEST(RtWalk, CheckEnd) {
  Decoder d("30 80 02 01 05 00 00");
  d.get()->buffer.byteIndex = 2;
  EXPECT_FALSE(xd_chkend(d.get(), 2, ASN_K_INDEFLEN));
  d.get()->buffer.byteIndex = 5;
  EXPECT_TRUE(xd_chkend(d.get(), 2, ASN_K_INDEFLEN));
  EXPECT_TRUE(xd_chkend(d.get(), 2, 3));
  EXPECT_FALSE(xd_chkend(d.get(), 2, 4));
  d.get()->buffer.byteIndex = 7;
  EXPECT_TRUE(xd_chkend(d.get(), 2, 100));
}

// ---- DER SET OF ordering -----------------------------------------------------

// Encodes elements (hex, in value order) backwards as a generated SET OF
// encoder does, recording a location after each, then sorts.
struct SetOf {
  Context ctx;
  rtDList list;
  int sum = 0;
  explicit SetOf(const std::vector<std::string>& elements) {
    EXPECT_EQ(xe_setp(&ctx, nullptr, 0), 0);
    rtDListInit(&list);
    for (size_t i = elements.size(); i-- > 0;) {
      std::vector<ASN1OCTET> b = Bytes(elements[i]);
      int len = b.empty() ? 0 : xe_memcpy(&ctx, b.data(), static_cast<ASN1UINT>(b.size()));
      auto* d = rtMemAllocType(&ctx.c, Asn1BufLocDescr);
      xe_getBufLocDescr(&ctx, static_cast<ASN1UINT>(len), d);
      rtDListAppend(&ctx.c, &list, d);
      sum += len;
    }
  }
};

TEST(RtDerSort, OrdersAsOctetStringsShorterPrefixFirst) {
  struct Case {
    const char* name;
    std::vector<std::string> elements;
    const char* expected;
  };
  const Case cases[] = {
      {"31 before 30", {"31 03 02 01 01", "30 05 02 01 01 05 00"},
       "30 05 02 01 01 05 00 31 03 02 01 01"},
      {"already ordered", {"02 01 01", "02 01 02", "04 00"}, "02 01 01 02 01 02 04 00"},
      {"reversed", {"04 00", "02 01 02", "02 01 01"}, "02 01 01 02 01 02 04 00"},
      {"prefix first", {"AA 00", "AA"}, "AA AA 00"},
      {"duplicates", {"05 00", "02 01 01", "05 00", "02 01 01"}, "02 01 01 02 01 01 05 00 05 00"},
      {"one", {"02 01 07"}, "02 01 07"},
      {"empty element", {"02 01 07", ""}, "02 01 07"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    SetOf s(c.elements);
    EXPECT_EQ(xe_derCanonicalSort(&s.ctx, &s.list), s.sum);
    EXPECT_EQ(s.ctx.Encoded(), c.expected);
    EXPECT_EQ(s.list.count, 0u);
  }
}

TEST(RtDerSort, OrderedInputIsLeftUntouchedWithoutAllocation) {
  rttest::ScopedCountingAlloc scoped;
  {
    SetOf s({"02 01 01", "02 01 02"});
    long calls = scoped.alloc.calls;
    EXPECT_EQ(xe_derCanonicalSort(&s.ctx, &s.list), 6);
    EXPECT_EQ(scoped.alloc.calls, calls);
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtDerSort, MatchesAReferenceSortOnManyElements) {
  std::mt19937 rng(7);
  std::vector<std::string> values;
  std::vector<std::string> hex;
  for (int i = 0; i < 3000; ++i) {
    std::string v;
    int n = 1 + static_cast<int>(rng() % 6);
    for (int k = 0; k < n; ++k) v.push_back(static_cast<char>(rng() % 4));  // many ties
    values.push_back(v);
    hex.push_back(Hex(reinterpret_cast<const ASN1OCTET*>(v.data()), v.size()));
  }
  SetOf s(hex);
  ASSERT_EQ(xe_derCanonicalSort(&s.ctx, &s.list), s.sum);
  std::sort(values.begin(), values.end());  // memcmp order, shorter prefix first
  std::string expected;
  for (const std::string& v : values) expected += v;
  std::string got(reinterpret_cast<const char*>(xe_getp(&s.ctx)), xe_getLength(&s.ctx.c));
  EXPECT_EQ(got, expected);
}

TEST(RtDerSort, NoMemoryStillFreesTheList) {
  rttest::ScopedCountingAlloc scoped;
  {
    SetOf s({"04 00", "02 01 01"});
    scoped.alloc.failAt = scoped.alloc.calls + 2;  // the work block fails
    EXPECT_EQ(xe_derCanonicalSort(&s.ctx, &s.list), ASN_E_NOMEM);
    scoped.alloc.failAt = -1;
    EXPECT_EQ(s.list.count, 0u);
    EXPECT_EQ(s.ctx.Encoded(), "04 00 02 01 01");  // unchanged
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtDerSort, DescriptorOutsideTheMessageIsRefused) {
  SetOf s({"02 01 01"});
  auto* bad = rtMemAllocType(&s.ctx.c, Asn1BufLocDescr);
  bad->numocts = 10;
  bad->offset = 50;
  rtDListAppend(&s.ctx.c, &s.list, bad);
  EXPECT_EQ(xe_derCanonicalSort(&s.ctx, &s.list), ASN_E_INVPARAM);
  EXPECT_EQ(s.list.count, 0u);
}

}  // namespace
