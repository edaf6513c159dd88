// The BER decoder's primitives: exact values and exact statuses, the
// bad-input list (long lengths, huge tags, indefinite primitives, long OIDs,
// integers too large) and constructed strings.
#include <korvex/asn1rt/asn1ber.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "rt_test_util.h"

using rttest::Bytes;
using rttest::Decoder;
using rttest::Hex;

namespace {

// A decode step: returns the status and describes the value in *value.
using Step = std::function<int(ASN1CTXT*, std::string*)>;

struct DecodeCase {
  const char* name;
  const char* input;
  Step step;
  int status;
  const char* value;  // expected description when status is 0
  int cursor;         // expected cursor afterwards, -1 to skip
  ASN1USINT flags = 0;
};

void RunDecodeCases(const std::vector<DecodeCase>& cases) {
  for (const DecodeCase& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " [" + c.input + "]");
    Decoder d(c.input, c.flags);
    std::string value;
    int stat = c.step(d.get(), &value);
    EXPECT_EQ(stat, c.status);
    if (stat == 0) {
      EXPECT_EQ(value, c.value);
    } else {
      EXPECT_EQ(d.get()->errInfo.status, c.status) << "failure not recorded";
    }
    if (c.cursor >= 0) {
      EXPECT_EQ(static_cast<int>(d.cursor()), c.cursor);
    }
  }
}

Step Integer(ASN1TagType tagging = ASN1EXPL, int length = 0) {
  return [=](ASN1CTXT* c, std::string* out) {
    ASN1INT v = 0;
    int s = xd_integer(c, &v, tagging, length);
    *out = std::to_string(v);
    return s;
  };
}

Step Unsigned() {
  return [](ASN1CTXT* c, std::string* out) {
    ASN1UINT v = 0;
    int s = xd_unsigned(c, &v, ASN1EXPL, 0);
    *out = std::to_string(v);
    return s;
  };
}

Step Uint16() {
  return [](ASN1CTXT* c, std::string* out) {
    ASN1USINT v = 0;
    int s = xd_uint16(c, &v, ASN1EXPL, 0);
    *out = std::to_string(v);
    return s;
  };
}

Step Int64() {
  return [](ASN1CTXT* c, std::string* out) {
    ASN1INT64 v = 0;
    int s = xd_int64(c, &v, ASN1EXPL, 0);
    *out = std::to_string(v);
    return s;
  };
}

Step Enum() {
  return [](ASN1CTXT* c, std::string* out) {
    ASN1INT v = 0;
    int s = xd_enum(c, &v, ASN1EXPL, 0);
    *out = std::to_string(v);
    return s;
  };
}

Step Boolean(ASN1TagType tagging = ASN1EXPL, int length = 0) {
  return [=](ASN1CTXT* c, std::string* out) {
    ASN1BOOL v = 0;
    int s = xd_boolean(c, &v, tagging, length);
    *out = std::to_string(v);
    return s;
  };
}

Step Null() {
  return [](ASN1CTXT* c, std::string* out) {
    *out = "null";
    return xd_null(c, ASN1EXPL);
  };
}

Step BigInt() {
  return [](ASN1CTXT* c, std::string* out) {
    const char* text = nullptr;
    int s = xd_bigint(c, &text, ASN1EXPL, 0);
    if (text) *out = text;
    return s;
  };
}

Step Oid(ASN1TagType tagging = ASN1EXPL, int length = 0) {
  return [=](ASN1CTXT* c, std::string* out) {
    ASN1OBJID oid{};
    int s = xd_objid(c, &oid, tagging, length);
    for (ASN1UINT i = 0; i < oid.numids; ++i) *out += (i ? "." : "") + std::to_string(oid.subid[i]);
    return s;
  };
}

Step OctStr(ASN1TagType tagging = ASN1EXPL, int length = 0) {
  return [=](ASN1CTXT* c, std::string* out) {
    const ASN1OCTET* data = reinterpret_cast<const ASN1OCTET*>("x");
    ASN1UINT n = 99;
    int s = xd_octstr(c, &data, &n, tagging, length);
    if (s == 0) *out = data ? Hex(data, n) : "null";
    return s;
  };
}

Step OctStrFixed(ASN1UINT capacity) {
  return [=](ASN1CTXT* c, std::string* out) {
    ASN1OCTET data[8] = {};
    ASN1UINT n = capacity;
    int s = xd_octstr_s(c, data, &n, ASN1EXPL, 0);
    if (s == 0) *out = Hex(data, n);
    return s;
  };
}

Step BitStr() {
  return [](ASN1CTXT* c, std::string* out) {
    const ASN1OCTET* data = nullptr;
    ASN1UINT bits = 99;
    int s = xd_bitstr(c, &data, &bits, ASN1EXPL, 0);
    if (s == 0) *out = std::to_string(bits) + ":" + (data ? Hex(data, (bits + 7) / 8) : "null");
    return s;
  };
}

Step BitStrFixed(ASN1UINT capacityBits) {
  return [=](ASN1CTXT* c, std::string* out) {
    ASN1OCTET data[4] = {};
    ASN1UINT bits = capacityBits;
    int s = xd_bitstr_s(c, data, &bits, ASN1EXPL, 0);
    if (s == 0) *out = std::to_string(bits) + ":" + Hex(data, (bits + 7) / 8);
    return s;
  };
}

Step CharStr(ASN1TAG tag) {
  return [=](ASN1CTXT* c, std::string* out) {
    const char* text = nullptr;
    int s = xd_charstr(c, &text, ASN1EXPL, tag, 0);
    if (text) *out = text;
    return s;
  };
}

TEST(RtDecode, Integers) {
  RunDecodeCases({
      {"0", "02 01 00", Integer(), 0, "0", 3},
      {"127", "02 01 7F", Integer(), 0, "127", 3},
      {"128", "02 02 00 80", Integer(), 0, "128", 4},
      {"-128", "02 01 80", Integer(), 0, "-128", 3},
      {"-129", "02 02 FF 7F", Integer(), 0, "-129", 4},
      {"INT_MIN", "02 04 80 00 00 00", Integer(), 0, "-2147483648", 6},
      {"non-minimal", "02 02 00 01", Integer(), ASN_E_IDNOTFOU, "", 2},
      {"five octets", "02 05 00 00 00 00 01", Integer(), ASN_E_TOOBIG, "", -1},
      {"empty", "02 00", Integer(), ASN_E_INVLEN, "", -1},
      {"wrong tag", "04 01 00", Integer(), ASN_E_IDNOTFOU, "", 0},
      {"constructed", "22 03 02 01 05", Integer(), ASN_E_IDNOTFOU, "", -1},
      {"longer than data", "02 02 01", Integer(), ASN_E_INVLEN, "", -1},
      {"longer than data, no length check", "02 02 01", Integer(), ASN_E_ENDOFBUF, "", -1,
       ASN1NOLENCHECK},
      {"no data", "", Integer(), ASN_E_ENDOFBUF, "", 0},
      {"tag only", "02", Integer(), ASN_E_ENDOFBUF, "", -1},
      {"implicit", "FF 7F", Integer(ASN1IMPL, 2), 0, "-129", 2},
      {"implicit too long", "00 00 00 00 01", Integer(ASN1IMPL, 5), ASN_E_TOOBIG, "", 0},
      {"implicit past data", "01", Integer(ASN1IMPL, 2), ASN_E_ENDOFBUF, "", 0},
      {"unsigned max", "02 05 00 FF FF FF FF", Unsigned(), 0, "4294967295", 7},
      {"unsigned 5 octets no sign octet", "02 05 01 00 00 00 00", Unsigned(), ASN_E_TOOBIG, "", -1},
      {"unsigned 6 octets", "02 06 00 00 00 00 00 01", Unsigned(), ASN_E_TOOBIG, "", -1},
      {"unsigned no sign extension", "02 01 FF", Unsigned(), 0, "255", 3},
      {"uint16 max", "02 03 00 FF FF", Uint16(), 0, "65535", 5},
      {"uint16 too big", "02 03 01 00 00", Uint16(), ASN_E_TOOBIG, "", -1},
      {"uint16 negative", "02 01 FF", Uint16(), ASN_E_TOOBIG, "", -1},
      {"int64 min", "02 08 80 00 00 00 00 00 00 00", Int64(), 0, "-9223372036854775808", 10},
      {"int64 nine octets", "02 09 00 80 00 00 00 00 00 00 00", Int64(), ASN_E_TOOBIG, "", -1},
      {"enum", "0A 01 03", Enum(), 0, "3", 3},
      {"enum wrong tag", "02 01 03", Enum(), ASN_E_IDNOTFOU, "", 0},
  });
}

TEST(RtDecode, BooleanNullBigInt) {
  RunDecodeCases({
      {"true", "01 01 FF", Boolean(), 0, "255", 3},
      {"stored as is", "01 01 05", Boolean(), 0, "5", 3},
      {"two octets", "01 02 00 00", Boolean(), ASN_E_INVLEN, "", -1},
      {"empty", "01 00", Boolean(), ASN_E_INVLEN, "", -1},
      {"implicit", "00", Boolean(ASN1IMPL, 1), 0, "0", 1},
      {"NULL", "05 00", Null(), 0, "null", 2},
      {"NULL with contents", "05 01 00", Null(), ASN_E_INVLEN, "", -1},
      {"NULL wrong tag", "04 00", Null(), ASN_E_IDNOTFOU, "", 0},
      {"bigint -128", "02 01 80", BigInt(), 0, "-0x80", 3},
      {"bigint 128", "02 02 00 80", BigInt(), 0, "0x80", 4},
      {"bigint 0", "02 01 00", BigInt(), 0, "0", 3},
      {"bigint 2^64", "02 09 01 00 00 00 00 00 00 00 00", BigInt(), 0, "0x10000000000000000", 11},
      {"bigint empty", "02 00", BigInt(), ASN_E_INVLEN, "", -1},
  });
}

// X.690 8.3.2 holds for BER too: a redundant leading 00 or FF octet is
// refused with -3 by every integer decoder, after the size rule (-33) and the
// end of the data (-2); the cursor stays on the contents.
TEST(RtDecode, IntegersMustBeMinimal) {
  RunDecodeCases({
      {"00 before a clear bit", "02 02 00 7F", Integer(), ASN_E_IDNOTFOU, "", 2},
      {"FF before a set bit", "02 02 FF 80", Integer(), ASN_E_IDNOTFOU, "", 2},
      {"two redundant octets", "02 03 00 00 80", Integer(), ASN_E_IDNOTFOU, "", 2},
      {"four octets for 1", "02 04 00 00 00 01", Integer(), ASN_E_IDNOTFOU, "", 2},
      {"-1 in two octets", "02 02 FF FF", Integer(), ASN_E_IDNOTFOU, "", 2},
      {"zero in two octets", "02 02 00 00", Integer(), ASN_E_IDNOTFOU, "", 2},
      {"sign octet needed", "02 02 00 80", Integer(), 0, "128", 4},
      {"sign octet needed, negative", "02 02 FF 7F", Integer(), 0, "-129", 4},
      {"too long before non-minimal", "02 05 00 00 00 00 01", Integer(), ASN_E_TOOBIG, "", -1},
      {"past data before non-minimal", "02 03 00 01", Integer(), ASN_E_ENDOFBUF, "", -1,
       ASN1NOLENCHECK},
      {"implicit", "00 7F", Integer(ASN1IMPL, 2), ASN_E_IDNOTFOU, "", 0},
      {"enum", "0A 02 00 03", Enum(), ASN_E_IDNOTFOU, "", 2},
      {"enum negative", "0A 02 FF FF", Enum(), ASN_E_IDNOTFOU, "", 2},
      {"int64", "02 09 00 00 00 00 00 00 00 00 01", Int64(), ASN_E_TOOBIG, "", -1},
      {"int64 eight octets", "02 08 00 00 00 00 00 00 00 01", Int64(), ASN_E_IDNOTFOU, "", 2},
      {"uint16", "02 02 00 05", Uint16(), ASN_E_IDNOTFOU, "", 2},
      {"uint16 sign octet", "02 03 00 80 00", Uint16(), 0, "32768", 5},
      {"unsigned", "02 02 00 7F", Unsigned(), ASN_E_IDNOTFOU, "", 2},
      {"unsigned five octets", "02 05 00 00 00 00 01", Unsigned(), ASN_E_IDNOTFOU, "", 2},
      {"unsigned sign octet", "02 05 00 80 00 00 00", Unsigned(), 0, "2147483648", 7},
      {"bigint", "02 02 00 01", BigInt(), ASN_E_IDNOTFOU, "", 2},
      {"bigint negative", "02 03 FF FF 80", BigInt(), ASN_E_IDNOTFOU, "", 2},
      {"bigint long", "02 0A 00 00 00 00 00 00 00 00 00 01", BigInt(), ASN_E_IDNOTFOU, "", 2},
      {"bigint sign octet", "02 0A 00 80 00 00 00 00 00 00 00 00", BigInt(), 0,
       "0x800000000000000000", 12},
  });
}

// xd_bigint writes lowercase hexadecimal with a "0x" prefix ("-0x" when
// negative; zero is "0"): xe_bigint reads it back to the same contents, and a
// base-16 strtoul parses the text of a small value.
TEST(RtDecode, BigIntTextIsHexThatEncodesBack) {
  const char* const kInputs[] = {
      "02 01 00", "02 01 05", "02 01 7F", "02 02 00 80", "02 01 80", "02 02 FF 7F",
      "02 02 7F FF", "02 09 01 00 00 00 00 00 00 00 00", "02 08 80 00 00 00 00 00 00 00",
  };
  for (const char* input : kInputs) {
    SCOPED_TRACE(input);
    Decoder d(input);
    const char* text = nullptr;
    ASSERT_EQ(xd_bigint(d.get(), &text, ASN1EXPL, 0), 0);
    ASSERT_NE(text, nullptr);
    rttest::Context enc;
    ASSERT_EQ(xe_setp(enc.get(), nullptr, 0), 0);
    int n = xe_bigint(enc.get(), text, ASN1EXPL);
    EXPECT_EQ(enc.Encoded(), Hex(Bytes(input))) << text;
    EXPECT_EQ(n, static_cast<int>(Bytes(input).size()));
  }
  Decoder d("02 02 12 AB");
  const char* text = nullptr;
  ASSERT_EQ(xd_bigint(d.get(), &text, ASN1EXPL, 0), 0);
  EXPECT_STREQ(text, "0x12ab");
  char* end = nullptr;
  EXPECT_EQ(std::strtoul(text, &end, 16), 0x12ABul);
  EXPECT_EQ(*end, '\0');
}

TEST(RtDecode, ObjectIdentifiers) {
  std::string arcs128 = "06 7F 29", arcs129 = "06 81 80 29";
  std::string value128 = "1.1";
  for (int i = 0; i < 126; ++i) {
    arcs128 += " 01";
    arcs129 += " 01";
    value128 += ".1";
  }
  arcs129 += " 01";
  RunDecodeCases({
      {"1.2.840", "06 03 2A 86 48", Oid(), 0, "1.2.840", 5},
      {"rsadsi", "06 06 2A 86 48 86 F7 0D", Oid(), 0, "1.2.840.113549", 8},
      {"2.999", "06 02 88 37", Oid(), 0, "2.999", 4},
      {"0.0", "06 01 00", Oid(), 0, "0.0", 3},
      {"0.39", "06 01 27", Oid(), 0, "0.39", 3},
      {"1.0", "06 01 28", Oid(), 0, "1.0", 3},
      {"2.0", "06 01 50", Oid(), 0, "2.0", 3},
      {"arc 2^32-1", "06 06 2A 8F FF FF FF 7F", Oid(), 0, "1.2.4294967295", 8},
      {"ends in a sub-identifier", "06 02 2A 86", Oid(), ASN_E_INVOBJID, "", -1},
      {"arc beyond 32 bits", "06 06 2A 90 80 80 80 00", Oid(), ASN_E_INVOBJID, "", -1},
      {"leading 0x80", "06 03 2A 80 01", Oid(), ASN_E_INVOBJID, "", -1},
      {"empty", "06 00", Oid(), ASN_E_INVLEN, "", -1},
      {"longer than data", "06 05 2A 86 48", Oid(), ASN_E_INVLEN, "", -1},
      {"past data, no length check", "06 05 2A 86 48", Oid(), ASN_E_ENDOFBUF, "", -1,
       ASN1NOLENCHECK},
      {"implicit", "2A 86 48", Oid(ASN1IMPL, 3), 0, "1.2.840", 3},
      {"128 arcs", arcs128.c_str(), Oid(), 0, value128.c_str(), 129},
      {"129 arcs", arcs129.c_str(), Oid(), ASN_E_INVOBJID, "", -1},
  });
}

TEST(RtDecode, OctetStrings) {
  std::string deep;
  for (int i = 0; i < 70; ++i) deep += "24 80 ";
  RunDecodeCases({
      {"primitive", "04 03 01 02 03", OctStr(), 0, "01 02 03", 5},
      {"empty", "04 00", OctStr(), 0, "null", 2},
      {"constructed definite", "24 08 04 02 01 02 04 02 03 04", OctStr(), 0, "01 02 03 04", 10},
      {"constructed indefinite nested",
       "24 80 04 02 01 02 24 80 04 01 03 00 00 00 00 05 00", OctStr(), 0, "01 02 03", 15},
      {"mixed nesting", "24 0A 24 80 04 01 AA 00 00 04 01 BB", OctStr(), 0, "AA BB", 12},
      {"constructed empty", "24 00", OctStr(), 0, "null", 2},
      {"wrong segment tag", "24 03 02 01 05", OctStr(), ASN_E_IDNOTFOU, "", -1},
      {"segment overruns parent", "24 03 04 02 01 02", OctStr(), ASN_E_INVLEN, "", -1},
      {"no end-of-contents", "24 80 04 01 AA", OctStr(), ASN_E_ENDOFBUF, "", -1},
      {"indefinite primitive", "04 80 01 00 00", OctStr(), ASN_E_INVLEN, "", -1},
      {"nesting too deep", deep.c_str(), OctStr(), ASN_E_NESTING, "", -1},
      {"wrong tag", "03 01 00", OctStr(), ASN_E_IDNOTFOU, "", 0},
      {"implicit constructed via flag", "04 01 AA 04 01 BB", OctStr(ASN1IMPL, 6), 0, "AA BB", 6,
       ASN1CONSTAG},
      {"implicit indefinite", "04 01 AA 00 00", OctStr(ASN1IMPL, ASN_K_INDEFLEN), 0, "AA", 5},
      {"fixed fits", "04 02 AA BB", OctStrFixed(2), 0, "AA BB", 4},
      {"fixed too small", "04 03 AA BB CC", OctStrFixed(2), ASN_E_STROVFLW, "", -1},
      {"fixed constructed", "24 06 04 01 AA 04 01 BB", OctStrFixed(2), 0, "AA BB", 8},
  });
}

TEST(RtDecode, BitStrings) {
  RunDecodeCases({
      {"no bits", "03 01 00", BitStr(), 0, "0:null", 3},
      {"9 bits", "03 03 07 FF 80", BitStr(), 0, "9:FF 80", 5},
      {"16 bits", "03 03 00 12 34", BitStr(), 0, "16:12 34", 5},
      {"empty contents", "03 00", BitStr(), ASN_E_INVLEN, "", -1},
      {"unused bits with no data", "03 01 07", BitStr(), ASN_E_INVLEN, "", -1},
      {"unused bits above 7", "03 02 08 FF", BitStr(), ASN_E_INVLEN, "", -1},
      {"constructed", "23 80 03 02 00 0F 03 02 04 F0 00 00", BitStr(), 0, "12:0F F0", 12},
      {"unused bits before the last segment", "23 08 03 02 04 F0 03 02 00 0F", BitStr(),
       ASN_E_INVLEN, "", -1},
      {"constructed without segments", "23 00", BitStr(), ASN_E_INVLEN, "", -1},
      {"fixed fits", "03 02 00 AB", BitStrFixed(8), 0, "8:AB", 4},
      {"fixed too small", "03 03 07 FF 80", BitStrFixed(8), ASN_E_STROVFLW, "", -1},
  });
}

TEST(RtDecode, CharacterStrings) {
  auto bmp = [](ASN1CTXT* c, std::string* out) {
    Asn116BitCharString s{};
    int st = xd_16BitCharStr(c, &s, ASN1EXPL, TM_UNIV | ASN_ID_BMPString, 0);
    for (ASN1UINT i = 0; i < s.nchars; ++i) *out += std::to_string(s.data[i]) + ";";
    return st;
  };
  auto ucs = [](ASN1CTXT* c, std::string* out) {
    Asn132BitCharString s{};
    int st = xd_32BitCharStr(c, &s, ASN1EXPL, TM_UNIV | ASN_ID_UniversalString, 0);
    for (ASN1UINT i = 0; i < s.nchars; ++i) *out += std::to_string(s.data[i]) + ";";
    return st;
  };
  RunDecodeCases({
      {"IA5", "16 02 68 69", CharStr(TM_UNIV | ASN_ID_IA5String), 0, "hi", 4},
      {"empty", "0C 00", CharStr(TM_UNIV | ASN_ID_UTF8String), 0, "", 2},
      {"constructed", "36 80 04 01 68 04 01 69 00 00", CharStr(TM_UNIV | ASN_ID_IA5String), 0,
       "hi", 10},
      {"other tag", "13 02 68 69", CharStr(TM_UNIV | ASN_ID_IA5String), ASN_E_IDNOTFOU, "", 0},
      {"high tag number", "9F 81 48 01 41", CharStr(TM_CTXT | 200), 0, "A", 5},
      {"BMP", "1E 04 00 41 26 3A", bmp, 0, "65;9786;", 6},
      {"BMP odd", "1E 03 00 41 26", bmp, ASN_E_INVLEN, "", -1},
      {"Universal", "1C 04 00 01 F6 00", ucs, 0, "128512;", 6},
      {"Universal partial unit", "1C 02 00 01", ucs, ASN_E_INVLEN, "", -1},
      {"BMP empty", "1E 00", bmp, 0, "", 2},
      {"BMP constructed", "3E 08 04 02 00 41 04 02 26 3A", bmp, 0, "65;9786;", 10},
      {"BMP odd across segments", "3E 07 04 01 00 04 02 41 26", bmp, ASN_E_INVLEN, "", 2},
      {"Universal constructed", "3C 80 04 02 00 01 04 02 F6 00 00 00", ucs, 0, "128512;", 12},
  });
}

TEST(RtDecode, NullTargetsAreBadValues) {
  Decoder d("02 01 00");
  EXPECT_EQ(xd_integer(d.get(), nullptr, ASN1EXPL, 0), ASN_E_BADVALUE);
  EXPECT_EQ(xd_octstr(d.get(), nullptr, nullptr, ASN1EXPL, 0), ASN_E_BADVALUE);
  EXPECT_EQ(xd_OpenType(d.get(), nullptr, nullptr), ASN_E_BADVALUE);
  EXPECT_EQ(d.cursor(), 0u);
}

TEST(RtDecode, AllocationFailureIsNoMemory) {
  rttest::ScopedCountingAlloc scoped;
  {
    Decoder d("04 02 AA BB");
    scoped.alloc.failAt = scoped.alloc.calls + 1;
    const ASN1OCTET* data;
    ASN1UINT n;
    EXPECT_EQ(xd_octstr(d.get(), &data, &n, ASN1EXPL, 0), ASN_E_NOMEM);
    scoped.alloc.failAt = -1;
  }
  EXPECT_EQ(scoped.alloc.live, 0);
}

// ---- Tags and lengths ------------------------------------------------------

TEST(RtDecode, Tags) {
  auto tag = [](ASN1CTXT* c, std::string* out) {
    ASN1TAG t = 0;
    int s = xd_tag(c, &t);
    char buf[16];
    snprintf(buf, sizeof(buf), "%08X", t);
    *out = buf;
    return s;
  };
  RunDecodeCases({
      {"universal 2", "02", tag, 0, "00000002", 1},
      {"[0] constructed", "A0", tag, 0, "A0000000", 1},
      {"31", "1F 1F", tag, 0, "0000001F", 2},
      {"[200]", "9F 81 48", tag, 0, "800000C8", 3},
      {"largest", "DF 81 FF FF FF 7F", tag, 0, "DFFFFFFF", 6},
      {"above 0x1FFFFFFF", "1F 82 80 80 80 00", tag, ASN_E_BADTAG, "", -1},
      {"six groups", "1F 80 80 80 80 80 01", tag, ASN_E_BADTAG, "", -1},
      {"no groups", "1F", tag, ASN_E_ENDOFBUF, "", -1},
      // X.690 8.1.2.2, 8.1.2.4.2 c: numbers below 31 take the one-octet form,
      // and the first group is never 0x80 (a leading zero group).
      {"long form of 0", "1F 00", tag, ASN_E_IDNOTFOU, "", 0},
      {"long form of 30", "9F 1E", tag, ASN_E_IDNOTFOU, "", 0},
      {"long form of 16 constructed", "3F 10", tag, ASN_E_IDNOTFOU, "", 0},
      {"leading zero group", "1F 80 1F", tag, ASN_E_IDNOTFOU, "", 0},
      {"leading zero group, larger", "5F 80 81 00", tag, ASN_E_IDNOTFOU, "", 0},
      {"[APPLICATION 128]", "5F 81 00", tag, 0, "40000080", 3},
      {"unfinished groups", "1F 81", tag, ASN_E_ENDOFBUF, "", -1},
      {"empty", "", tag, ASN_E_ENDOFBUF, "", 0},
  });
}

TEST(RtDecode, Lengths) {
  auto len = [](ASN1CTXT* c, std::string* out) {
    int l = 0;
    int s = xd_len(c, &l);
    *out = std::to_string(l);
    return s;
  };
  std::string l256 = "82 01 00" + std::string(256 * 3, ' ');
  std::vector<ASN1OCTET> filler(256, 0);
  std::string with256 = "82 01 00 " + Hex(filler);
  RunDecodeCases({
      {"short", "05 00 00 00 00 00", len, 0, "5", 1},
      {"127", ("7F " + Hex(std::vector<ASN1OCTET>(127))).c_str(), len, 0, "127", 1},
      {"256", with256.c_str(), len, 0, "256", 3},
      {"indefinite", "80", len, 0, "-9999", 1},
      {"four octets reading -9999 are indefinite", "84 FF FF D8 F1", len, 0, "-9999", 5},
      {"negative", "84 80 00 00 00", len, ASN_E_INVLEN, "", -1},
      {"five length octets", "85 01 00 00 00 00", len, ASN_E_INVLEN, "", -1},
      {"reserved FF", "FF", len, ASN_E_INVLEN, "", -1},
      {"truncated", "82 01", len, ASN_E_ENDOFBUF, "", -1},
      {"longer than data", "81 05 00", len, ASN_E_INVLEN, "", -1},
      {"no length check", "81 05 00", len, 0, "5", 2, ASN1NOLENCHECK},
  });
}

TEST(RtDecode, TagLenPeeksOrAdvances) {
  Decoder d("30 03 02 01 05 04 80");
  ASN1TAG tag;
  int len;
  EXPECT_EQ(xd_tag_len(d.get(), &tag, &len, 0), 0);
  EXPECT_EQ(tag, 0x20000010u);
  EXPECT_EQ(len, 3);
  EXPECT_EQ(d.cursor(), 0u);
  EXPECT_EQ(d.get()->flags & ASN1CONSTAG, 0);
  EXPECT_EQ(xd_tag_len(d.get(), &tag, &len, XM_ADVANCE), 0);
  EXPECT_EQ(d.cursor(), 2u);
  EXPECT_EQ(d.get()->flags & ASN1CONSTAG, ASN1CONSTAG);
  EXPECT_EQ(d.get()->savedInfo.byteIndex, 0u);
  EXPECT_EQ(xd_tag_len(d.get(), &tag, &len, XM_ADVANCE), 0);
  EXPECT_EQ(d.get()->flags & ASN1CONSTAG, 0);
  d.get()->buffer.byteIndex = 5;
  EXPECT_EQ(xd_tag_len(d.get(), &tag, &len, XM_ADVANCE), ASN_E_INVLEN);  // 04 80
  d.get()->buffer.byteIndex = 7;
  EXPECT_EQ(xd_tag_len(d.get(), &tag, &len, XM_ADVANCE), ASN_E_ENDOFBUF);
  // End of an indefinite message.
  Decoder e("02 01 05");
  e.get()->flags = ASN1INDEFLEN | ASN1LASTEOC;
  EXPECT_EQ(xd_tag_len(e.get(), &tag, &len, XM_ADVANCE), ASN_E_ENDOFBUF);
  EXPECT_EQ(xd_match1(e.get(), 0x02, &len), ASN_E_ENDOFBUF);
  EXPECT_EQ(xd_Tag1AndLen(e.get(), &len), ASN_E_ENDOFBUF);
}

TEST(RtDecode, Match1) {
  Decoder d("02 01 05 24 80 00 00 04 80");
  int len = 0;
  EXPECT_EQ(xd_match1(d.get(), 0x04, &len), ASN_E_IDNOTFOU);
  EXPECT_EQ(d.get()->errInfo.status, ASN_E_IDNOTFOU);
  EXPECT_EQ(d.cursor(), 0u);
  EXPECT_EQ(xd_match1(d.get(), 0x02, &len), 0);
  EXPECT_EQ(len, 1);
  EXPECT_EQ(d.cursor(), 2u);
  d.get()->buffer.byteIndex = 3;
  // The constructed bit is ignored in the comparison and noted in the flags.
  EXPECT_EQ(xd_match1(d.get(), 0x04, &len), 0);
  EXPECT_EQ(len, ASN_K_INDEFLEN);
  EXPECT_EQ(d.get()->flags & ASN1CONSTAG, ASN1CONSTAG);
  d.get()->buffer.byteIndex = 7;
  EXPECT_EQ(xd_match1(d.get(), 0x04, &len), ASN_E_INVLEN);
  Decoder t("02");
  EXPECT_EQ(xd_match1(t.get(), 0x02, &len), ASN_E_ENDOFBUF);
  // Regression (fuzz_asn1rt_walk): a two-octet identifier 7F 00 was once read
  // as tag 7F with length 00 on the fast path. 7F 00 is now refused as a
  // long form of tag number 0 (X.690 8.1.2.2); 7F 1F is the valid two-octet
  // identifier of the same shape.
  Decoder zero("7F 00 80 00 00");
  EXPECT_EQ(xd_Tag1AndLen(zero.get(), &len), ASN_E_IDNOTFOU);
  EXPECT_EQ(zero.get()->errInfo.status, ASN_E_IDNOTFOU);
  Decoder two("7F 1F 80 00 00");
  EXPECT_EQ(xd_Tag1AndLen(two.get(), &len), 0);
  EXPECT_EQ(len, ASN_K_INDEFLEN);
  EXPECT_EQ(two.cursor(), 3u);
  Decoder u("A1 03 02 01 05");
  EXPECT_EQ(xd_Tag1AndLen(u.get(), &len), 0);
  EXPECT_EQ(len, 3);
  EXPECT_EQ(u.get()->flags & ASN1CONSTAG, ASN1CONSTAG);
}

TEST(RtDecode, MatchSearchesSkipsAndPeeks) {
  const ASN1TAG k1 = TM_CTXT | 1;
  {
    Decoder d("80 01 AA 81 01 BB");
    int len = 0;
    EXPECT_EQ(xd_match(d.get(), k1, &len, XM_ADVANCE), ASN_E_IDNOTFOU);
    EXPECT_EQ(d.cursor(), 0u);
    EXPECT_EQ(d.get()->errInfo.status, ASN_E_IDNOTFOU);
    EXPECT_EQ(xd_match(d.get(), k1, &len, XM_SEARCH | XM_ADVANCE), 0);
    EXPECT_EQ(len, 1);
    EXPECT_EQ(d.cursor(), 5u);
  }
  {
    Decoder d("80 01 AA 81 01 BB");
    int len = 0;
    EXPECT_EQ(xd_match(d.get(), k1, &len, XM_SEARCH), 0);  // peek
    EXPECT_EQ(d.cursor(), 3u);
    // Skipping [1] reaches the end of the data: not a search, so -2.
    EXPECT_EQ(xd_match(d.get(), TM_CTXT | 0, &len, XM_SKIP | XM_ADVANCE), ASN_E_ENDOFBUF);
    EXPECT_EQ(d.cursor(), 3u);
    d.get()->buffer.byteIndex = 0;
    EXPECT_EQ(xd_match(d.get(), k1, &len, XM_SKIP | XM_ADVANCE), 0);
    EXPECT_EQ(d.cursor(), 5u);
  }
  {
    // The search enters constructed elements.
    Decoder d("A0 03 81 01 BB");
    int len = 0;
    EXPECT_EQ(xd_match(d.get(), k1 | TM_CONS, &len, XM_SEARCH | XM_ADVANCE), 0);
    EXPECT_EQ(d.cursor(), 4u);
    EXPECT_EQ(d.get()->flags & ASN1CONSTAG, 0);
  }
  {
    Decoder d("80 01 AA 82 00");
    EXPECT_EQ(xd_match(d.get(), k1, nullptr, XM_SEARCH | XM_ADVANCE), ASN_E_IDNOTFOU);
    EXPECT_EQ(d.cursor(), 0u);
    Decoder e("");
    EXPECT_EQ(xd_match(e.get(), k1, nullptr, XM_ADVANCE), ASN_E_ENDOFBUF);
    Decoder f("9F 82 80 80 80 00 00");
    EXPECT_EQ(xd_match(f.get(), k1, nullptr, XM_ADVANCE), ASN_E_BADTAG);
  }
}

TEST(RtDecode, SetpMeasuresTheMessage) {
  {
    Decoder d("");
    std::vector<ASN1OCTET> m = Bytes("30 03 02 01 05 FF FF");
    ASN1TAG tag;
    int len;
    EXPECT_EQ(xd_setp(d.get(), m.data(), static_cast<int>(m.size()), &tag, &len), 0);
    EXPECT_EQ(tag, 0x20000010u);
    EXPECT_EQ(len, 5);
    EXPECT_EQ(d.get()->buffer.size, 5u);
    EXPECT_EQ(d.cursor(), 0u);
    EXPECT_EQ(d.get()->buffer.bitOffset, 8);
    EXPECT_EQ(xd_setp(d.get(), m.data(), 0, &tag, &len), 0);  // size unknown
    EXPECT_EQ(len, 5);
    EXPECT_EQ(xd_setp(d.get(), m.data(), 4, &tag, &len), ASN_E_INVLEN);
    EXPECT_EQ(xd_setp(d.get(), nullptr, 4, &tag, &len), ASN_E_INVPARAM);
  }
  {
    Decoder d("");
    std::vector<ASN1OCTET> m = Bytes("30 80 02 01 05 00 00 FF");
    ASN1TAG tag;
    int len;
    d.get()->flags = ASN1LASTEOC;
    EXPECT_EQ(xd_setp(d.get(), m.data(), static_cast<int>(m.size()), &tag, &len), 0);
    EXPECT_EQ(len, ASN_K_INDEFLEN);
    EXPECT_EQ(d.get()->flags & (ASN1INDEFLEN | ASN1LASTEOC), ASN1INDEFLEN);
    EXPECT_EQ(d.get()->buffer.size, 7u);
    // Decode it: the end of the message is noticed.
    int l;
    ASN1INT v;
    EXPECT_EQ(xd_match1(d.get(), 0x30, &l), 0);
    EXPECT_EQ(xd_integer(d.get(), &v, ASN1EXPL, 0), 0);
    EXPECT_EQ(v, 5);
    EXPECT_EQ(xd_MatchEOC(d.get()), 0);
    EXPECT_EQ(d.get()->flags & ASN1LASTEOC, ASN1LASTEOC);
    EXPECT_EQ(xd_tag_len(d.get(), &tag, &l, XM_ADVANCE), ASN_E_ENDOFBUF);
    std::vector<ASN1OCTET> open = Bytes("30 80 02 01 05");
    EXPECT_EQ(xd_setp(d.get(), open.data(), static_cast<int>(open.size()), &tag, &len),
              ASN_E_INVLEN);
  }
  ASN1CTXT raw{};
  std::vector<ASN1OCTET> m = Bytes("05 00");
  EXPECT_EQ(xd_setp(&raw, m.data(), 2, nullptr, nullptr), ASN_E_NOTINIT);
}

// Every reader of tag and length refuses a long-form identifier that is not
// minimal with -3, recorded, and leaves the cursor where it was.
TEST(RtDecode, LongFormTagsAreRefusedEverywhere) {
  const ASN1TAG k5 = TM_CTXT | 5;
  for (const char* input : {"9F 05 01 00", "9F 80 05 01 00"}) {
    SCOPED_TRACE(input);
    ASN1TAG tag = 0;
    int len = 0;
    {
      Decoder d(input);
      EXPECT_EQ(xd_tag_len(d.get(), &tag, &len, XM_ADVANCE), ASN_E_IDNOTFOU);
      EXPECT_EQ(d.get()->errInfo.status, ASN_E_IDNOTFOU);
      EXPECT_EQ(d.cursor(), 0u);
    }
    {
      Decoder d(input);
      EXPECT_EQ(xd_match(d.get(), k5, &len, XM_ADVANCE), ASN_E_IDNOTFOU);
      EXPECT_EQ(d.cursor(), 0u);
    }
    {
      Decoder d(input);
      EXPECT_EQ(xd_match1(d.get(), 0x9F, &len), ASN_E_IDNOTFOU);  // a high-number octet
      EXPECT_EQ(d.cursor(), 0u);
    }
    {
      Decoder d("");
      std::vector<ASN1OCTET> m = Bytes(input);
      EXPECT_EQ(xd_setp(d.get(), m.data(), static_cast<int>(m.size()), &tag, &len),
                ASN_E_IDNOTFOU);
    }
  }
  // The minimal forms of the same shape are read.
  Decoder d("9F 1F 01 00");
  ASN1TAG tag = 0;
  int len = 0;
  EXPECT_EQ(xd_tag_len(d.get(), &tag, &len, XM_ADVANCE), 0);
  EXPECT_EQ(tag, TM_CTXT | 31u);
  EXPECT_EQ(len, 1);
  EXPECT_EQ(d.cursor(), 3u);
}

// ---- Open types --------------------------------------------------------------

TEST(RtDecode, OpenTypes) {
  auto open = [](ASN1CTXT* c, std::string* out) {
    const ASN1OCTET* data = nullptr;
    ASN1UINT n = 0;
    int s = xd_OpenType(c, &data, &n);
    if (s == 0) *out = Hex(data, n);
    return s;
  };
  RunDecodeCases({
      {"definite", "30 03 02 01 05 FF", open, 0, "30 03 02 01 05", 5},
      {"indefinite", "30 80 02 01 05 00 00 FF", open, 0, "30 80 02 01 05 00 00", 7},
      {"zero tag and length", "00 00", open, ASN_E_STROVFLW, "", 0},
      {"longer than the buffer", "30 05 02 01", open, ASN_E_STROVFLW, "", 0},
      {"indefinite without end", "30 80 02 01 05", open, ASN_E_STROVFLW, "", 0},
      {"empty", "", open, ASN_E_ENDOFBUF, "", 0},
      {"indefinite primitive", "04 80 00 00", open, ASN_E_INVLEN, "", 0},
  });
}

TEST(RtDecode, OpenTypeCopiesUnlessReferenceFlag) {
  Decoder d("05 00 05 00");
  const ASN1OCTET* data = nullptr;
  ASN1UINT n = 0;
  ASSERT_EQ(xd_OpenType(d.get(), &data, &n), 0);
  EXPECT_NE(data, d.bytes.data());
  EXPECT_EQ(rtMemHeapBlockSize(data), 2u);
  rtCtxtSetFlag(d.get(), ASN1OPENTYPEREF);
  ASSERT_EQ(xd_OpenType(d.get(), &data, &n), 0);
  EXPECT_EQ(data, d.bytes.data() + 2);
}

TEST(RtDecode, OpenTypeExtensionsUpToTheEnd) {
  {
    Decoder d("30 08 02 01 01 04 01 AA 05 00 01 01 FF");
    int len;
    ASSERT_EQ(xd_match1(d.get(), 0x30, &len), 0);
    ASN1UINT start = d.cursor();
    rtDList list;
    rtDListInit(&list);
    ASSERT_EQ(xd_OpenTypeExt(d.get(), start, len, &list), 0);
    ASSERT_EQ(list.count, 3u);
    auto* third = static_cast<ASN1OpenType*>(list.tail->data);
    EXPECT_EQ(Hex(third->data, third->numocts), "05 00");
    EXPECT_EQ(d.cursor(), 10u);
    rtMemFreeOpenSeqExt(d.get(), &list);
  }
  {
    Decoder d("30 80 02 01 01 00 00");
    int len;
    ASSERT_EQ(xd_match1(d.get(), 0x30, &len), 0);
    rtDList list;
    rtDListInit(&list);
    ASSERT_EQ(xd_OpenTypeExt(d.get(), d.cursor(), len, &list), 0);
    EXPECT_EQ(list.count, 1u);
    EXPECT_EQ(d.cursor(), 5u);  // the end-of-contents octets stay
    EXPECT_EQ(xd_OpenTypeAppend(d.get(), &list), ASN_E_STROVFLW);
    EXPECT_EQ(xd_OpenTypeAppend(d.get(), nullptr), ASN_E_BADVALUE);
  }
}

TEST(RtDecode, ConstructedStringSizeAndMemcpy) {
  Decoder d("24 80 04 02 01 02 24 80 04 01 03 00 00 00 00");
  d.get()->buffer.byteIndex = 2;
  int enc = 0, size = 0;
  EXPECT_EQ(xd_consStrIndefLenAndSize(d.get(), TM_UNIV | ASN_ID_OCTSTR, &enc, &size), 0);
  EXPECT_EQ(enc, 13);
  EXPECT_EQ(size, 3);
  EXPECT_EQ(d.cursor(), 2u);
  Decoder b("23 80 03 02 00 0F 03 02 04 F0 00 00");
  b.get()->buffer.byteIndex = 2;
  EXPECT_EQ(xd_consStrIndefLenAndSize(b.get(), TM_UNIV | ASN_ID_BITSTR, &enc, &size), 0);
  EXPECT_EQ(size, 2);
  Decoder bad("24 80 04 01");
  bad.get()->buffer.byteIndex = 2;
  EXPECT_EQ(xd_consStrIndefLenAndSize(bad.get(), TM_UNIV | ASN_ID_OCTSTR, &enc, &size),
            ASN_E_INVLEN);

  Decoder m("01 02 03");
  ASN1OCTET out[3];
  EXPECT_EQ(xd_memcpy(m.get(), out, 2), 0);
  EXPECT_EQ(Hex(out, 2), "01 02");
  EXPECT_EQ(xd_memcpy(m.get(), out, 2), ASN_E_ENDOFBUF);
  EXPECT_EQ(m.cursor(), 2u);
}

}  // namespace
