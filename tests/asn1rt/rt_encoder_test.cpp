// The BER/DER encoder: exact bytes of every primitive, buffer handling and
// open types.
#include <korvex/asn1rt/asn1ber.h>

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "rt_test_util.h"

using rttest::Bytes;
using rttest::Context;
using rttest::Hex;

namespace {

struct EncodeCase {
  const char* name;
  std::function<int(ASN1CTXT*)> encode;
  int result;            // the returned length or status
  const char* expected;  // encoded bytes (hex)
  bool recorded = true;  // a failure is recorded in the context
};

void RunEncodeCases(const std::vector<EncodeCase>& cases) {
  for (const EncodeCase& c : cases) {
    SCOPED_TRACE(c.name);
    Context ctx;
    ASSERT_EQ(xe_setp(&ctx, nullptr, 0), 0);
    EXPECT_EQ(c.encode(&ctx), c.result);
    EXPECT_EQ(ctx.Encoded(), c.expected);
    if (c.result < 0 && c.recorded) {
      EXPECT_EQ(ctx.status(), c.result);
    }
  }
}

template <typename T>
std::function<int(ASN1CTXT*)> Int(int (*fn)(ASN1CTXT*, const T*, ASN1TagType), T v,
                                  ASN1TagType tagging = ASN1EXPL) {
  return [=](ASN1CTXT* c) { return fn(c, &v, tagging); };
}

TEST(RtEncode, Integers) {
  RunEncodeCases({
      {"0", Int<ASN1INT>(xe_integer, 0), 3, "02 01 00"},
      {"127", Int<ASN1INT>(xe_integer, 127), 3, "02 01 7F"},
      {"128", Int<ASN1INT>(xe_integer, 128), 4, "02 02 00 80"},
      {"256", Int<ASN1INT>(xe_integer, 256), 4, "02 02 01 00"},
      {"-1", Int<ASN1INT>(xe_integer, -1), 3, "02 01 FF"},
      {"-128", Int<ASN1INT>(xe_integer, -128), 3, "02 01 80"},
      {"-129", Int<ASN1INT>(xe_integer, -129), 4, "02 02 FF 7F"},
      {"INT_MAX", Int<ASN1INT>(xe_integer, INT_MAX), 6, "02 04 7F FF FF FF"},
      {"INT_MIN", Int<ASN1INT>(xe_integer, INT_MIN), 6, "02 04 80 00 00 00"},
      {"implicit 128", Int<ASN1INT>(xe_integer, 128, ASN1IMPL), 2, "00 80"},
      {"enum 3", Int<ASN1INT>(xe_enum, 3), 3, "0A 01 03"},
      {"unsigned 0", Int<ASN1UINT>(xe_unsigned, 0u), 3, "02 01 00"},
      {"unsigned 0x80", Int<ASN1UINT>(xe_unsigned, 0x80u), 4, "02 02 00 80"},
      {"unsigned max", Int<ASN1UINT>(xe_unsigned, 0xFFFFFFFFu), 7, "02 05 00 FF FF FF FF"},
      {"uint16 0x7F", Int<ASN1USINT>(xe_uint16, ASN1USINT{0x7F}), 3, "02 01 7F"},
      {"uint16 0x1234", Int<ASN1USINT>(xe_uint16, ASN1USINT{0x1234}), 4, "02 02 12 34"},
      {"uint16 max", Int<ASN1USINT>(xe_uint16, ASN1USINT{0xFFFF}), 5, "02 03 00 FF FF"},
      {"int64 min", Int<ASN1INT64>(xe_int64, LLONG_MIN), 10, "02 08 80 00 00 00 00 00 00 00"},
      {"int64 2^32", Int<ASN1INT64>(xe_int64, 0x100000000LL), 7, "02 05 01 00 00 00 00"},
      {"null value", [](ASN1CTXT* c) { return xe_integer(c, nullptr, ASN1EXPL); }, -18, ""},
      {"null unsigned", [](ASN1CTXT* c) { return xe_unsigned(c, nullptr, ASN1EXPL); }, -18, ""},
  });
}

TEST(RtEncode, BooleanAndNull) {
  RunEncodeCases({
      {"true", Int<ASN1BOOL>(xe_boolean, ASN1BOOL{1}), 3, "01 01 FF"},
      {"any non-zero", Int<ASN1BOOL>(xe_boolean, ASN1BOOL{5}), 3, "01 01 FF"},
      {"false", Int<ASN1BOOL>(xe_boolean, ASN1BOOL{0}), 3, "01 01 00"},
      {"implicit", Int<ASN1BOOL>(xe_boolean, ASN1BOOL{1}, ASN1IMPL), 1, "FF"},
      {"null ptr", [](ASN1CTXT* c) { return xe_boolean(c, nullptr, ASN1EXPL); }, -18, ""},
      {"NULL", [](ASN1CTXT* c) { return xe_null(c, ASN1EXPL); }, 2, "05 00"},
      {"NULL implicit", [](ASN1CTXT* c) { return xe_null(c, ASN1IMPL); }, 0, ""},
  });
}

TEST(RtEncode, BigIntegersFromText) {
  auto big = [](const char* text) {
    return [=](ASN1CTXT* c) { return xe_bigint(c, text, ASN1EXPL); };
  };
  auto ubig = [](const char* text) {
    return [=](ASN1CTXT* c) { return xe_biguint(c, text, ASN1EXPL); };
  };
  RunEncodeCases({
      {"0", big("0"), 3, "02 01 00"},
      {"128", big("128"), 4, "02 02 00 80"},
      {"-129", big("-129"), 4, "02 02 FF 7F"},
      {"0x80", big("0x80"), 4, "02 02 00 80"},
      {"0b101", big("0b101"), 3, "02 01 05"},
      {"2^64", big("18446744073709551616"), 11, "02 09 01 00 00 00 00 00 00 00 00"},
      {"implicit", [](ASN1CTXT* c) { return xe_bigint(c, "255", ASN1IMPL); }, 2, "00 FF"},
      {"invalid text", big("12a"), -9, ""},
      {"empty text", big(""), -9, ""},
      {"null text", [](ASN1CTXT* c) { return xe_bigint(c, nullptr, ASN1EXPL); }, -18, ""},
      {"unsigned 255", ubig("255"), 4, "02 02 00 FF"},
      {"unsigned negative", ubig("-1"), -9, ""},
  });
}

TEST(RtEncode, LengthsAndTags) {
  auto len = [](int l) { return [=](ASN1CTXT* c) { return xe_len(c, l); }; };
  auto tag = [](ASN1TAG t) { return [=](ASN1CTXT* c) { return xe_tag(c, t); }; };
  auto id = [](ASN1UINT v) { return [=](ASN1CTXT* c) { return xe_identifier(c, v); }; };
  RunEncodeCases({
      {"len 0", len(0), 1, "00"},
      {"len 127", len(127), 1, "7F"},
      {"len 128", len(128), 2, "81 80"},
      {"len 256", len(256), 3, "82 01 00"},
      {"len 65536", len(65536), 4, "83 01 00 00"},
      {"len INT_MAX", len(INT_MAX), 5, "84 7F FF FF FF"},
      {"len indefinite", len(ASN_K_INDEFLEN), 1, "80"},
      {"len other negative", len(-5), 0, ""},
      {"tag 30", tag(30), 1, "1E"},
      {"tag [0] cons", tag(TM_CTXT | TM_CONS | 0), 1, "A0"},
      {"tag 31", tag(31), 2, "1F 1F"},
      {"tag [31]", tag(TM_CTXT | 31), 2, "9F 1F"},
      {"tag 200", tag(200), 3, "1F 81 48"},
      {"tag APPLICATION 128 cons", tag(TM_APPL | TM_CONS | 128), 3, "7F 81 00"},
      {"tag max", tag(TM_PRIV | 0x1FFFFFFF), 6, "DF 81 FF FF FF 7F"},
      {"identifier 0", id(0), 1, "00"},
      {"identifier 128", id(128), 2, "81 00"},
      {"identifier max", id(0xFFFFFFFFu), 5, "8F FF FF FF 7F"},
  });
}

TEST(RtEncode, TagLenIsTheTailOfEveryEncoder) {
  RunEncodeCases({
      {"sequence", [](ASN1CTXT* c) { return xe_tag_len(c, 0x20000010, 5); }, 7, "30 05"},
      {"indefinite", [](ASN1CTXT* c) { return xe_tag_len(c, 0x20000010, -9999); }, 2, "30 80"},
      {"status passes", [](ASN1CTXT* c) { return xe_tag_len(c, 0x20000010, ASN_E_INVOBJID); },
       -4, "", false},
      {"long length", [](ASN1CTXT* c) { return xe_tag_len(c, TM_CTXT | 200, 300); }, 306,
       "9F 81 48 82 01 2C"},
  });
}

TEST(RtEncode, ObjectIdentifiers) {
  auto oid = [](std::vector<ASN1UINT> arcs) {
    return [=](ASN1CTXT* c) {
      ASN1OBJID o{};
      o.numids = static_cast<ASN1UINT>(arcs.size());
      for (size_t i = 0; i < arcs.size() && i < ASN_K_MAXSUBIDS; ++i) o.subid[i] = arcs[i];
      return xe_objid(c, &o, ASN1EXPL);
    };
  };
  std::vector<ASN1UINT> arcs128(128, 1);
  std::vector<ASN1UINT> arcs129(129, 1);
  std::string expected128 = "06 7F 29";
  for (int i = 0; i < 126; ++i) expected128 += " 01";
  RunEncodeCases({
      {"rsadsi", oid({1, 2, 840, 113549}), 8, "06 06 2A 86 48 86 F7 0D"},
      {"sha256WithRSA", oid({1, 2, 840, 113549, 1, 1, 11}), 11, "06 09 2A 86 48 86 F7 0D 01 01 0B"},
      {"2.999", oid({2, 999}), 4, "06 02 88 37"},
      {"0.39", oid({0, 39}), 3, "06 01 27"},
      {"2.40", oid({2, 40}), 3, "06 01 78"},
      {"2.(max-80)", oid({2, 0xFFFFFFFFu - 80}), 7, "06 05 8F FF FF FF 7F"},
      {"128 arcs", oid(arcs128), 129, expected128.c_str()},
      {"first arc 3", oid({3, 1}), -4, ""},
      {"one arc", oid({1}), -4, ""},
      {"0.40", oid({0, 40}), -4, ""},
      {"1.40", oid({1, 40}), -4, ""},
      {"2.(max-79)", oid({2, 0xFFFFFFFFu - 79}), -4, ""},
      {"129 arcs", oid(arcs129), -4, ""},
      {"null", [](ASN1CTXT* c) { return xe_objid(c, nullptr, ASN1EXPL); }, -18, ""},
  });
}

TEST(RtEncode, StringsAndBitStrings) {
  static const ASN1OCTET kData[] = {0xFF, 0x80, 0x61, 0x62, 0x63};
  static ASN116BITCHAR bmp[] = {0x0041, 0x263A};
  static ASN132BITCHAR ucs[] = {0x1F600};
  RunEncodeCases({
      {"bits 0", [](ASN1CTXT* c) { return xe_bitstr(c, nullptr, 0, ASN1EXPL); }, 3, "03 01 00"},
      {"bits 9", [](ASN1CTXT* c) { return xe_bitstr(c, kData, 9, ASN1EXPL); }, 5, "03 03 07 FF 80"},
      {"bits 16", [](ASN1CTXT* c) { return xe_bitstr(c, kData, 16, ASN1EXPL); }, 5, "03 03 00 FF 80"},
      {"bits 1 kept as given", [](ASN1CTXT* c) { return xe_bitstr(c, kData, 1, ASN1EXPL); }, 4,
       "03 02 07 FF"},
      {"bits implicit", [](ASN1CTXT* c) { return xe_bitstr(c, kData, 8, ASN1IMPL); }, 2, "00 FF"},
      {"bits null data", [](ASN1CTXT* c) { return xe_bitstr(c, nullptr, 9, ASN1EXPL); }, 0, ""},
      {"octets", [](ASN1CTXT* c) { return xe_octstr(c, kData + 2, 3, ASN1EXPL); }, 5,
       "04 03 61 62 63"},
      {"octets empty", [](ASN1CTXT* c) { return xe_octstr(c, nullptr, 0, ASN1EXPL); }, 2, "04 00"},
      {"octets null", [](ASN1CTXT* c) { return xe_octstr(c, nullptr, 5, ASN1EXPL); }, -18, ""},
      {"IA5", [](ASN1CTXT* c) { return xe_charstr(c, "hi", ASN1EXPL, TM_UNIV | 22); }, 4,
       "16 02 68 69"},
      {"IA5 implicit", [](ASN1CTXT* c) { return xe_charstr(c, "hi", ASN1IMPL, TM_UNIV | 22); }, 2,
       "68 69"},
      {"empty text", [](ASN1CTXT* c) { return xe_charstr(c, "", ASN1EXPL, TM_UNIV | 12); }, 2,
       "0C 00"},
      {"null text", [](ASN1CTXT* c) { return xe_charstr(c, nullptr, ASN1EXPL, TM_UNIV | 22); },
       -18, ""},
      {"BMP",
       [](ASN1CTXT* c) {
         Asn116BitCharString s{2, bmp};
         return xe_16BitCharStr(c, &s, ASN1EXPL, TM_UNIV | ASN_ID_BMPString);
       },
       6, "1E 04 00 41 26 3A"},
      {"Universal",
       [](ASN1CTXT* c) {
         Asn132BitCharString s{1, ucs};
         return xe_32BitCharStr(c, &s, ASN1EXPL, TM_UNIV | ASN_ID_UniversalString);
       },
       6, "1C 04 00 01 F6 00"},
      {"BMP null", [](ASN1CTXT* c) { return xe_16BitCharStr(c, nullptr, ASN1EXPL, 30); }, -18, ""},
  });
}

TEST(RtEncode, OidOf128ArcsRoundTrips) {
  Context ctx;
  ASSERT_EQ(xe_setp(&ctx, nullptr, 0), 0);
  ASN1OBJID o{};
  o.numids = 128;
  for (ASN1UINT i = 0; i < 128; ++i) o.subid[i] = i < 2 ? 1 : 0xFFFFFFFFu - i;
  int len = xe_objid(&ctx, &o, ASN1EXPL);
  ASSERT_EQ(len, 4 + 1 + 126 * 5);  // 06 82 02 77, 41, 126 five-octet arcs
  ASN1CTXT d;
  ASSERT_EQ(rtInitContext(&d, nullptr), 0);
  ASSERT_EQ(xd_setp(&d, xe_getp(&ctx), len, nullptr, nullptr), 0);
  ASN1OBJID back{};
  EXPECT_EQ(xd_objid(&d, &back, ASN1EXPL, 0), 0);
  EXPECT_EQ(rtCmpOID(&o, &back), 1);
  rtFreeContext(&d);
}

TEST(RtEncode, StaticBufferKeepsItsLastByteAndOverflowsWithMinusOne) {
  ASN1OCTET buf[10];
  Context ctx;
  ASSERT_EQ(xe_setp(&ctx, buf, sizeof(buf)), 0);
  EXPECT_EQ(ctx.c.buffer.byteIndex, 9u);
  const ASN1OCTET nine[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_EQ(xe_memcpy(&ctx, nine, 9), 9);
  EXPECT_EQ(xe_getp(&ctx), buf);
  EXPECT_EQ(xe_memcpy(&ctx, nine, 1), ASN_E_BUFOVFLW);
  EXPECT_EQ(ctx.status(), ASN_E_BUFOVFLW);
  EXPECT_EQ(xe_expandBuffer(&ctx, 1), ASN_E_BUFOVFLW);

  Context ctx2;
  ASSERT_EQ(xe_setp(&ctx2, buf, sizeof(buf)), 0);
  EXPECT_EQ(xe_octstr(&ctx2, nine, 7, ASN1EXPL), 9);
  ASSERT_EQ(xe_setp(&ctx2, buf, sizeof(buf)), 0);
  EXPECT_EQ(xe_octstr(&ctx2, nine, 8, ASN1EXPL), ASN_E_BUFOVFLW);
  EXPECT_EQ(xe_setp(&ctx2, buf, 0), ASN_E_BUFOVFLW);
  EXPECT_EQ(xe_memcpy(&ctx2, nullptr, 1), ASN_E_BADVALUE);
}

TEST(RtEncode, DynamicBufferGrowsAndKeepsTheEncodedTail) {
  Context ctx;
  ASSERT_EQ(xe_setp(&ctx, nullptr, 16), 0);
  ASN1INT v = 5;
  ASSERT_EQ(xe_integer(&ctx, &v, ASN1EXPL), 3);
  std::vector<ASN1OCTET> big(100000);
  for (size_t i = 0; i < big.size(); ++i) big[i] = static_cast<ASN1OCTET>(i * 7);
  int len = xe_octstr(&ctx, big.data(), static_cast<ASN1UINT>(big.size()), ASN1EXPL);
  ASSERT_EQ(len, 100005);
  ASN1OCTET* p = xe_getp(&ctx);
  EXPECT_EQ(Hex(p, 5), "04 83 01 86 A0");
  EXPECT_EQ(std::vector<ASN1OCTET>(p + 5, p + 5 + big.size()), big);
  EXPECT_EQ(Hex(p + len, 3), "02 01 05");
  EXPECT_EQ(xe_getLength(&ctx.c), 100008u);
  EXPECT_GE(ctx.c.buffer.size, 100009u);
  // The buffer was replaced, not leaked: one block in the heap.
  EXPECT_EQ(rtMemHeapBlockCount(&ctx.c.pMsgMemHeap), 1u);
  // Many small writes.
  for (int i = 0; i < 50000; ++i) ASSERT_EQ(xe_integer(&ctx, &v, ASN1EXPL), 3);
  EXPECT_EQ(xe_getLength(&ctx.c), 100008u + 150000u);
}

TEST(RtEncode, GrowthFailureIsNoMemory) {
  rttest::ScopedCountingAlloc scoped;
  {
    Context ctx;
    ASSERT_EQ(xe_setp(&ctx, nullptr, 8), 0);
    scoped.alloc.failAt = scoped.alloc.calls + 1;
    std::vector<ASN1OCTET> big(64, 1);
    EXPECT_EQ(xe_octstr(&ctx, big.data(), 64, ASN1EXPL), ASN_E_NOMEM);
    scoped.alloc.failAt = -1;
    EXPECT_EQ(ctx.status(), ASN_E_NOMEM);
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtEncode, BufferLocationAndSavedState) {
  Context ctx;
  ASSERT_EQ(xe_setp(&ctx, nullptr, 0), 0);
  ASN1INT v = 1;
  xe_integer(&ctx, &v, ASN1EXPL);
  Asn1BufLocDescr d;
  xe_getBufLocDescr(&ctx, 3, &d);
  EXPECT_EQ(d.numocts, 3u);
  EXPECT_EQ(d.offset, 3u);

  ASN1BUFSAVE state;
  ctx.c.flags = ASN1INDEFLEN | ASN1LASTEOC | ASN1CONSTAG;
  xu_SaveBufferState(&ctx, &state);
  EXPECT_EQ(state.byteIndex, ctx.c.buffer.byteIndex);
  EXPECT_EQ(state.flags, ASN1INDEFLEN | ASN1LASTEOC | ASN1CONSTAG);
  xe_integer(&ctx, &v, ASN1EXPL);
  xu_RestoreBufferState(&ctx, &state);
  EXPECT_EQ(ctx.c.buffer.byteIndex, state.byteIndex);
  EXPECT_EQ(ctx.c.flags, ASN1INDEFLEN | ASN1CONSTAG);
  // Null state: the context's own slot.
  xu_SaveBufferState(&ctx, nullptr);
  EXPECT_EQ(ctx.c.savedInfo.byteIndex, ctx.c.buffer.byteIndex);
}

TEST(RtEncode, OpenTypes) {
  struct Case {
    const char* name;
    const char* input;
    int result;
    const char* expected;
  };
  const Case cases[] = {
      {"first element only", "30 03 02 01 05 FF FF", 5, "30 03 02 01 05"},
      {"NULL", "05 00", 2, "05 00"},
      {"indefinite", "30 80 02 01 05 00 00 04 01", 7, "30 80 02 01 05 00 00"},
      {"nested indefinite", "30 80 24 80 04 00 00 00 00 00", 10,
       "30 80 24 80 04 00 00 00 00 00"},
      {"zero tag and length", "00 00", -18, ""},
      {"element longer than the data", "30 05 02 01", -5, ""},
      {"indefinite without end", "30 80 02 01 05", -5, ""},
      {"truncated header", "30", -2, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Context ctx;
    ASSERT_EQ(xe_setp(&ctx, nullptr, 0), 0);
    std::vector<ASN1OCTET> in = Bytes(c.input);
    EXPECT_EQ(xe_OpenType(&ctx, in.data(), static_cast<ASN1UINT>(in.size())), c.result);
    EXPECT_EQ(ctx.Encoded(), c.expected);
  }
  Context ctx;
  ASSERT_EQ(xe_setp(&ctx, nullptr, 0), 0);
  EXPECT_EQ(xe_OpenType(&ctx, nullptr, 0), 0);
  EXPECT_EQ(xe_OpenType(&ctx, nullptr, 3), ASN_E_BADVALUE);
  // Encoded in place: nothing is copied.
  ASN1INT v = 7;
  ASSERT_EQ(xe_integer(&ctx, &v, ASN1EXPL), 3);
  EXPECT_EQ(xe_OpenType(&ctx, xe_getp(&ctx), 3), 3);
  EXPECT_EQ(ctx.Encoded(), "02 01 07");
}

TEST(RtEncode, OpenTypeListComesOutInListOrder) {
  Context ctx;
  ASSERT_EQ(xe_setp(&ctx, nullptr, 0), 0);
  std::vector<ASN1OCTET> a = Bytes("02 01 01"), b = Bytes("04 00"), c = Bytes("05 00");
  ASN1OpenType oa{3, a.data()}, ob{2, b.data()}, oc{2, c.data()};
  rtDList list;
  rtDListInit(&list);
  rtDListAppend(&ctx.c, &list, &oa);
  rtDListAppend(&ctx.c, &list, &ob);
  rtDListAppend(&ctx.c, &list, &oc);
  EXPECT_EQ(xe_OpenTypeExt(&ctx, &list), 7);
  EXPECT_EQ(ctx.Encoded(), "02 01 01 04 00 05 00");
  std::vector<ASN1OCTET> bad = Bytes("00 00");
  ASN1OpenType obad{2, bad.data()};
  rtDListAppend(&ctx.c, &list, &obad);
  EXPECT_EQ(xe_OpenTypeExt(&ctx, &list), ASN_E_BADVALUE);
  EXPECT_EQ(ctx.status(), ASN_E_BADVALUE);
  rtDListFreeNodes(&ctx.c, &list);
}

TEST(RtEncode, BackwardsSequenceOfComponents) {
  // AlgorithmIdentifier { sha256WithRSAEncryption, NULL } written last to first.
  Context ctx;
  ASSERT_EQ(xe_setp(&ctx, nullptr, 0), 0);
  int len = xe_null(&ctx, ASN1EXPL);
  ASN1OBJID oid{7, {1, 2, 840, 113549, 1, 1, 11}};
  len += xe_objid(&ctx, &oid, ASN1EXPL);
  EXPECT_EQ(xe_tag_len(&ctx, TM_UNIV | TM_CONS | ASN_ID_SEQ, len), 15);
  EXPECT_EQ(ctx.Encoded(), "30 0D 06 09 2A 86 48 86 F7 0D 01 01 0B 05 00");
}

}  // namespace
