// The generic attributes (CAttrValue, CAttribute, CAttributes) and the typed
// values content type, message digest and signing time: exact DER, the edge
// cases, failures that leave the value alone, no heap block left behind.
#include <gtest/gtest.h>
#include <korvex/asn1types/Attribute.h>
#include <korvex/asn1types/AttributeTraits.h>

#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::CDateTime;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

char const kDataOid[] = "1.2.840.113549.1.7.1";
char const kDataOidDer[] = "06 09 2A 86 48 86 F7 0D 01 07 01";
// Attribute { contentType, { id-data } }
char const kContentTypeAttr[] =
    "30 18 06 09 2A 86 48 86 F7 0D 01 09 03 31 0B 06 09 2A 86 48 86 F7 0D 01 07 01";
// Attribute { messageDigest, { 04 00 } }
char const kEmptyDigestAttr[] = "30 0F 06 09 2A 86 48 86 F7 0D 01 09 04 31 02 04 00";

class AttributeTest : public typestest::HeapCheckedTest {};

TEST_F(AttributeTest, AttrValueParts) {
  CAttrValue empty;
  EXPECT_STREQ(empty.get_oid(), "");
  EXPECT_EQ(empty.get_value().cbData(), 0u);
  EXPECT_STREQ(CAttrValue(nullptr).get_oid(), "");
  CAttrValue v("1.2.3", Blob("05 00"));
  CAttrValue copy(v);
  EXPECT_TRUE(copy == v);
  copy.value() = Blob("01 01 FF");
  EXPECT_TRUE(copy != v);
  EXPECT_EQ(Hex(v.get_value()), "05 00");
  copy = v;
  EXPECT_TRUE(copy == v);
  EXPECT_TRUE(CAttrValue("1.2.4", Blob("05 00")) != v);
}

TEST_F(AttributeTest, AttributeExactDer) {
  CAttribute ct(kOidContentType);
  ct.add(Blob(kDataOidDer));
  EXPECT_EQ(Hex(ct.encode()), Hex(Blob(kContentTypeAttr)));

  // Several values: the SET OF is sorted by the encoder (X.690 11.6), the
  // list keeps its order.
  CAttribute multi("1.2.3");
  multi.add(Blob("02 01 05"));
  multi.add(Blob("01 01 FF"));
  multi.add(Blob("02 01 01"));
  EXPECT_EQ(Hex(multi.encode()), "30 0F 06 02 2A 03 31 09 01 01 FF 02 01 01 02 01 05");
  CAttribute back;
  back.decode(multi.encode());
  EXPECT_STREQ(back.get_oid(), "1.2.3");
  ASSERT_EQ(back.size(), 3u);
  std::string order;
  for (CAttrValue const& value : back) {
    EXPECT_STREQ(value.get_oid(), "1.2.3");
    order += Hex(value.get_value()) + ";";
  }
  EXPECT_EQ(order, "01 01 FF;02 01 01;02 01 05;");
  EXPECT_TRUE(back != multi);  // same values, other order

  // swap exchanges everything.
  CAttribute other("1.2.4");
  other.swap(back);
  EXPECT_STREQ(back.get_oid(), "1.2.4");
  EXPECT_EQ(back.size(), 0u);
  EXPECT_EQ(other.size(), 3u);

  // No value: an empty SET OF.
  EXPECT_EQ(Hex(CAttribute("1.2.3").encode()), "30 06 06 02 2A 03 31 00");
  back.decode(Blob("30 06 06 02 2A 03 31 00"));
  EXPECT_EQ(back.size(), 0u);
}

TEST_F(AttributeTest, AttributeValuesAndErrors) {
  CAttribute attr(kOidMessageDigest);
  // A value of another type is refused; one without a type takes this one.
  EXPECT_EQ(ThrownCode([&] { attr.add(CAttrValue(kOidContentType, Blob("04 00"))); }), 0x80070057u);
  attr.add(CAttrValue(nullptr, Blob("04 00")));
  attr.add(CAttrMessageDigest(Blob("01 02")));
  ASSERT_EQ(attr.size(), 2u);
  EXPECT_STREQ(attr.begin()->get_oid(), kOidMessageDigest);
  attr.erase(attr.begin());
  ASSERT_EQ(attr.size(), 1u);
  EXPECT_EQ(Hex(attr.begin()->get_value()), "04 02 01 02");

  // A value that is not exactly one element would lose bytes: refused.
  for (char const* bad : {"", "04 00 04 00", "04 03 01", "00 00", "30 80 04 00"}) {
    SCOPED_TRACE(bad);
    CAttribute withBad(kOidMessageDigest);
    withBad.add(Blob(bad));
    EXPECT_EQ(ThrownCode([&] { withBad.encode(); }), 0x80093101u);
  }
  // A BER value with an indefinite length is one element and goes as it is.
  CAttribute ber("1.2.3");
  ber.add(Blob("30 80 04 00 00 00"));
  EXPECT_EQ(Hex(ber.encode()), "30 0C 06 02 2A 03 31 06 30 80 04 00 00 00");
  // Bad type text.
  EXPECT_EQ(ThrownCode([] { CAttribute().encode(); }), 0x80070057u);
  EXPECT_EQ(ThrownCode([] { CAttribute("1.x").encode(); }), 0x80070057u);
  // Malformed DER leaves the attribute as it was.
  CAttribute keep(kOidContentType);
  keep.add(Blob(kDataOidDer));
  for (char const* bad : {"30 0F 06 09 2A 86 48 86 F7 0D 01 09 04 31 02 04",
                          "31 06 06 02 2A 03 31 00", "30 06 06 02 2A 03 30 00", "30 04 06 02 2A 03",
                          // a value with tag 00: let through by the decoder,
                          // refused as the encoder would refuse it
                          "30 09 06 02 2A 03 31 03 00 01 05"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(ThrownCode([&] { keep.decode(Blob(bad)); }), 0x80093101u);
    EXPECT_STREQ(keep.get_oid(), kOidContentType);
    EXPECT_EQ(keep.size(), 1u);
  }
}

TEST_F(AttributeTest, AttributesFindEraseAdd) {
  CAttributes attrs;
  EXPECT_EQ(Hex(attrs.encode()), "31 00");
  attrs.add(CAttrContentType(kDataOid));
  attrs.add(CAttrMessageDigest());
  EXPECT_EQ(attrs.size(), 2u);
  // Sorted on the wire: the shorter message-digest attribute first.
  EXPECT_EQ(Hex(attrs.encode()),
            "31 2B " + Hex(Blob(kEmptyDigestAttr)) + " " + Hex(Blob(kContentTypeAttr)));
  // add() joins an attribute of the same type.
  attrs.add(CAttrMessageDigest(Blob("AA")));
  ASSERT_EQ(attrs.size(), 2u);
  EXPECT_EQ(attrs.find(kOidMessageDigest)->size(), 2u);
  EXPECT_EQ(ThrownCode([&] { attrs.add(CAttrValue()); }), 0x80070057u);

  CAttributes back;
  back.decode(attrs.encode());
  ASSERT_EQ(back.size(), 2u);
  EXPECT_STREQ(back.begin()->get_oid(), kOidMessageDigest);
  EXPECT_EQ(back.find("1.2.840.113549.1.9.5"), back.end());  // not present: end()
  EXPECT_EQ(back.find(nullptr), back.end());
  CAttributes const& constant = back;
  ASSERT_NE(constant.find(kOidContentType), constant.end());
  EXPECT_EQ(Hex(constant.find(kOidContentType)->begin()->get_value()), kDataOidDer);

  // erase(oid) removes every attribute of the type.
  back.push_back(CAttribute(kOidContentType));
  EXPECT_EQ(back.erase(kOidContentType), 2u);
  EXPECT_EQ(back.erase(kOidContentType), 0u);
  EXPECT_EQ(back.erase(static_cast<char const*>(nullptr)), 0u);
  ASSERT_EQ(back.size(), 1u);
  back.erase(back.begin());  // the list's own erase
  EXPECT_TRUE(back.empty());

  // A value its attribute's type refuses (a content type that is an OCTET
  // STRING) is kept as bytes; the typed class refuses it.
  CAttributes odd;
  odd.decode(Blob("31 11 30 0F 06 09 2A 86 48 86 F7 0D 01 09 03 31 02 04 00"));
  EXPECT_EQ(Hex(odd.front().begin()->get_value()), "04 00");
  EXPECT_EQ(ThrownCode([&] { CAttrContentType bad(odd.front().begin()->get_value()); }),
            0x80093101u);

  // Decoding an empty SET OF empties the list; bad DER keeps it.
  attrs.decode(Blob("31 00"));
  EXPECT_TRUE(attrs.empty());
  attrs.add(CAttrMessageDigest());
  EXPECT_EQ(ThrownCode([&] { attrs.decode(Blob("31 03 30 01 06")); }), 0x80093101u);
  EXPECT_EQ(attrs.size(), 1u);
}

TEST_F(AttributeTest, ContentType) {
  CAttrContentType ct(kDataOid);
  EXPECT_STREQ(ct.get_oid(), kOidContentType);
  EXPECT_STREQ(ct.get_contentType(), kDataOid);
  EXPECT_EQ(Hex(ct.get_value()), kDataOidDer);
  ct.put_contentType("1.2.840.113549.1.9.16.1.4");
  EXPECT_EQ(Hex(ct.get_value()), "06 0B 2A 86 48 86 F7 0D 01 09 10 01 04");
  // Bad text: refused, nothing changes.
  EXPECT_EQ(ThrownCode([&] { ct.put_contentType("1..2"); }), 0x80070057u);
  EXPECT_EQ(ThrownCode([&] { ct.put_contentType(nullptr); }), 0x80070057u);
  EXPECT_EQ(ThrownCode([] { CAttrContentType bad("x"); }), 0x80070057u);
  EXPECT_STREQ(ct.get_contentType(), "1.2.840.113549.1.9.16.1.4");
  // From DER, and back after the DER was changed through value().
  CAttrContentType fromDer(Blob(kDataOidDer));
  EXPECT_STREQ(fromDer.get_contentType(), kDataOid);
  fromDer.value() = Blob("06 03 2A 03 04");
  fromDer.decode();
  EXPECT_STREQ(fromDer.get_contentType(), "1.2.3.4");
  EXPECT_EQ(Hex(fromDer.encode()), "06 03 2A 03 04");
  EXPECT_EQ(ThrownCode([&] { fromDer.decode(Blob("04 01 00")); }), 0x80093101u);
  EXPECT_STREQ(fromDer.get_contentType(), "1.2.3.4");
  EXPECT_EQ(Hex(fromDer.get_value()), "06 03 2A 03 04");
  EXPECT_EQ(ThrownCode([] { CAttrContentType bad(Blob("06 00")); }), 0x80093101u);
  // One value is one element: trailing bytes are refused.
  EXPECT_EQ(ThrownCode([&] { fromDer.decode(Blob("06 03 2A 03 04 00")); }), 0x80093101u);
}

TEST_F(AttributeTest, MessageDigest) {
  CAttrMessageDigest empty;
  EXPECT_STREQ(empty.get_oid(), kOidMessageDigest);
  EXPECT_EQ(Hex(empty.get_value()), "04 00");  // an empty digest: 04 00
  CAttrMessageDigest md(Blob("01 02 03"));
  EXPECT_EQ(Hex(md.get_value()), "04 03 01 02 03");
  md.put_messageDigest(Blob("FF"));
  EXPECT_EQ(Hex(md.get_value()), "04 01 FF");
  md.decode(Blob("04 02 AB CD"));
  EXPECT_EQ(Hex(md.get_messageDigest()), "AB CD");
  EXPECT_EQ(Hex(md.get_value()), "04 02 AB CD");
  for (char const* bad : {"04 03 01", "03 01 00", "04 01 01 02"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(ThrownCode([&] { md.decode(Blob(bad)); }), 0x80093101u);
    EXPECT_EQ(Hex(md.get_messageDigest()), "AB CD");
  }
  md.value() = Blob("04 00");
  md.decode();
  EXPECT_EQ(md.get_messageDigest().cbData(), 0u);
  EXPECT_EQ(Hex(md.encode()), "04 00");
}

TEST_F(AttributeTest, SigningTimeUtcAndGeneralized) {
  struct Case {
    CDateTime time;
    unsigned type;
    char const* der;
  } const cases[] = {
      {CDateTime(2049, 12, 31, 23, 59, 59, 0, 0), 1,
       "17 0D 34 39 31 32 33 31 32 33 35 39 35 39 5A"},
      {CDateTime(2050, 1, 1, 0, 0, 0, 0, 0), 2,
       "18 0F 32 30 35 30 30 31 30 31 30 30 30 30 30 30 5A"},
      {CDateTime(1950, 1, 1, 0, 0, 0, 0, 0), 1, "17 0D 35 30 30 31 30 31 30 30 30 30 30 30 5A"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.der);
    CAttrSigningTime st(c.time);
    EXPECT_STREQ(st.get_oid(), kOidSigningTime);
    EXPECT_EQ(st.get_signingTime().get_type(), c.type);
    EXPECT_EQ(Hex(st.get_value()), Hex(Blob(c.der)));
    CAttrSigningTime back{Blob(c.der)};
    ASSERT_NE(back.get_signingTime().get_time(), nullptr);
    EXPECT_TRUE(*back.get_signingTime().get_time() == c.time);
  }
  // Milliseconds are not written.
  CAttrSigningTime st(CDateTime(2024, 5, 6, 7, 8, 9, 500, 0));
  EXPECT_EQ(Hex(st.get_value()), "17 0D 32 34 30 35 30 36 30 37 30 38 30 39 5A");
  // A GeneralizedTime before 2050 reads back as utcTime and re-encodes so.
  st.decode(Blob("18 0F 32 30 33 30 30 31 30 31 30 30 30 30 30 30 5A"));
  EXPECT_EQ(st.get_signingTime().get_type(), 1u);
  EXPECT_EQ(Hex(st.encode()), "17 0D 33 30 30 31 30 31 30 30 30 30 30 30 5A");
  // A failed decode keeps the time and the DER.
  EXPECT_EQ(ThrownCode([&] { st.decode(Blob("17 02 34 39")); }), 0x80093101u);
  EXPECT_EQ(Hex(st.get_value()), "17 0D 33 30 30 31 30 31 30 30 30 30 30 30 5A");
  EXPECT_EQ(st.get_signingTime().get_time()->year(), 2030u);
  // Before 1950 UTCTime cannot hold it.
  EXPECT_EQ(ThrownCode([] { CAttrSigningTime old(CDateTime(1949, 12, 31, 0, 0, 0, 0, 0)); }),
            0x80093101u);
  st.put_signingTime(CDateTime(2051, 2, 3, 4, 5, 6, 0, 0));
  EXPECT_EQ(st.get_signingTime().get_type(), 2u);
  EXPECT_EQ(Hex(st.get_value()), "18 0F 32 30 35 31 30 32 30 33 30 34 30 35 30 36 5A");
}

TEST_F(AttributeTest, HeapExhaustionLeavesNothing) {
  CAttributes attrs;
  attrs.add(CAttrContentType(kDataOid));
  attrs.add(CAttrMessageDigest(Blob("01 02 03 04")));
  attrs.add(CAttrSigningTime(CDateTime(2024, 1, 2, 3, 4, 5, 0, 0)));
  CBlob const expected = attrs.encode();
  for (size_t size = 1; size < 400; ++size) {
    HeapWatch::failHeapBlock(size);
    unsigned code = ThrownCode([&] { attrs.encode(); });
    EXPECT_TRUE(code == 0 || code == 0x80093106u || code == 0x80093101u) << size;
    CAttributes back;
    code = ThrownCode([&] { back.decode(expected); });
    EXPECT_TRUE(code == 0 || code == 0x80093106u || code == 0x80093101u) << size;
    HeapWatch::failHeapBlock(0);
  }
  CAttributes back;
  back.decode(attrs.encode());
  EXPECT_EQ(Hex(back.encode()), Hex(expected));
}

}  // namespace
