// Exact DER of the name values: attribute-type-and-value pairs, RDNs (SET OF
// order), names, every alternative of GeneralName, GeneralNames; decoding
// failures, copies and equality.
#include <gtest/gtest.h>
#include <korvex/asn1types/Names.h>
#include <korvex/asn1types/NamesTraits.h>

#include <functional>
#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

class NamesDerTest : public typestest::HeapCheckedTest {};

CAttributeTypeAndValue Atav(char const* oid, char const* valueHex) {
  return CAttributeTypeAndValue(oid, Blob(valueHex));
}

TEST_F(NamesDerTest, AttributeTypeAndValueBytes) {
  struct Case {
    char const* oid;
    char const* value;
    char const* der;
  } const cases[] = {
      {"2.5.4.3", "0C 01 78", "30 08 06 03 55 04 03 0C 01 78"},
      {"2.5.4.6", "13 02 52 55", "30 09 06 03 55 04 06 13 02 52 55"},
      // Any value goes in as it stands, also one that is no string.
      {"1.2.3.4", "30 03 02 01 07", "30 0A 06 03 2A 03 04 30 03 02 01 07"},
      {"0.9.2342.19200300.100.1.25", "16 01 61",
       "30 0F 06 0A 09 92 26 89 93 F2 2C 64 01 19 16 01 61"},
      // BER a decoder accepted is written back as it came.
      {"2.5.4.3", "2C 80 04 01 78 00 00", "30 0C 06 03 55 04 03 2C 80 04 01 78 00 00"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.der);
    CAttributeTypeAndValue atav = Atav(c.oid, c.value);
    EXPECT_EQ(Hex(atav.encode()), c.der);
    CAttributeTypeAndValue decoded;
    decoded.decode(Blob(c.der));
    EXPECT_STREQ(decoded.get_type(), c.oid);
    EXPECT_EQ(Hex(decoded.get_value()), c.value);
    EXPECT_EQ(decoded, atav);
  }
}

TEST_F(NamesDerTest, AttributeTypeAndValueRefusals) {
  struct Case {
    char const* what;
    char const* oid;
    char const* value;
  } const cases[] = {
      {"no value", "2.5.4.3", ""},
      {"two elements", "2.5.4.3", "0C 01 78 0C 01 79"},
      {"truncated value", "2.5.4.3", "0C 05 78"},
      {"primitive of indefinite length", "2.5.4.3", "0C 80 78 00 00"},
      {"indefinite length without its end", "2.5.4.3", "2C 80 04 01 78 00"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.what);
    CAttributeTypeAndValue atav = Atav(c.oid, c.value);
    EXPECT_EQ(ThrownCode([&] { atav.encode(); }), kCodec);
  }
  CAttributeTypeAndValue unset;
  EXPECT_STREQ(unset.get_type(), "");
  EXPECT_EQ(ThrownCode([&] { unset.encode(); }), kCodec);
  EXPECT_EQ(ThrownCode([&] { unset.put_type("1..2"); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([&] { unset.put_type(nullptr); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([&] { CAttributeTypeAndValue("x", CBlob()); }), kInvalidArg);
  // put_type keeps the canonical text.
  unset.put_type(" 2.5.4.3");
  EXPECT_STREQ(unset.get_type(), "2.5.4.3");
}

TEST_F(NamesDerTest, DecodeFailuresLeaveTheValue) {
  CAttributeTypeAndValue atav = Atav("2.5.4.3", "0C 01 78");
  for (char const* bad : {"", "30 08 06 03 55 04 03 0C 01", "31 08 06 03 55 04 03 0C 01 78",
                          "30 03 06 01 55"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(ThrownCode([&] { atav.decode(Blob(bad)); }), kCodec);
    EXPECT_EQ(Hex(atav.get_value()), "0C 01 78");
  }
  CName name;
  name.push_back(CRelativeDistinguishedName{atav});
  EXPECT_EQ(ThrownCode([&] { name.decode(Blob("30 03 31 01 00")); }), kCodec);
  EXPECT_EQ(name.size(), 1u);
  CGeneralName gn;
  gn.put_dNSName(L"a");
  EXPECT_EQ(ThrownCode([&] { gn.decode(Blob("89 01 00")); }), kCodec);  // no [9]
  EXPECT_STREQ(gn.get_dNSName(), L"a");
  CGeneralNames list(2);
  EXPECT_EQ(ThrownCode([&] { list.decode(Blob("30 02 82 05")); }), kCodec);
  EXPECT_EQ(list.size(), 2u);
}

TEST_F(NamesDerTest, NamesDecodeWhatRealDataHolds) {
  // Attribute values are kept as bytes, not checked against the X.520
  // types, so names that break their bounds still decode and encode again.
  std::string cn65 = "30 4C 31 4A 30 48 06 03 55 04 03 0C 41";
  for (int i = 0; i < 65; ++i) cn65 += " 61";
  struct Case {
    char const* what;
    std::string der;
  } const cases[] = {
      {"three-letter country", "30 0E 31 0C 30 0A 06 03 55 04 06 13 03 52 55 53"},
      {"IA5String CN", "30 0E 31 0C 30 0A 06 03 55 04 03 16 03 61 62 63"},
      {"empty CN", "30 0B 31 09 30 07 06 03 55 04 03 0C 00"},
      {"CN of 65 characters", cn65},
      {"UTF8String that is no UTF-8", "30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 FF FF FF FF"},
      {"value that is no string", "30 0E 31 0C 30 0A 06 03 55 04 03 02 03 01 00 01"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.what);
    CName name;
    name.decode(Blob(c.der));
    EXPECT_EQ(Hex(name.encode()), c.der);
    CGeneralName dir;
    dir.put_directoryName(Blob(c.der));
    CGeneralName back;
    back.decode(dir.encode());
    EXPECT_EQ(Hex(*back.get_directoryName()), c.der);
  }
  // What is not one complete Name is still refused.
  for (char const* bad : {"30 00 00", "30 02 31 00", "30 80 00 00 00"}) {
    SCOPED_TRACE(bad);
    CName name;
    EXPECT_EQ(ThrownCode([&] { name.decode(Blob(bad)); }), kCodec);
  }
}

TEST_F(NamesDerTest, RelativeDistinguishedNameSortsItsSet) {
  // X.690 11.6: CN (30 08 ...) sorts before C (30 09 ...) whatever the list
  // order; decoding gives the DER order.
  CRelativeDistinguishedName rdn{Atav("2.5.4.6", "13 02 52 55"), Atav("2.5.4.3", "0C 01 62")};
  std::string const der =
      "31 15 30 08 06 03 55 04 03 0C 01 62 30 09 06 03 55 04 06 13 02 52 55";
  EXPECT_EQ(Hex(rdn.encode()), der);
  CRelativeDistinguishedName decoded;
  decoded.decode(Blob(der));
  ASSERT_EQ(decoded.size(), 2u);
  EXPECT_STREQ(decoded.front().get_type(), "2.5.4.3");
  EXPECT_NE(decoded, rdn);  // lists compare in order
  rdn.reverse();
  EXPECT_EQ(decoded, rdn);
  EXPECT_EQ(ThrownCode([] { CRelativeDistinguishedName().encode(); }), kCodec);
}

TEST_F(NamesDerTest, NameBytes) {
  CName name;
  EXPECT_EQ(Hex(name.encode()), "30 00");
  name.push_back(CRelativeDistinguishedName{Atav("2.5.4.6", "13 02 52 55")});
  name.push_back(CRelativeDistinguishedName{Atav("2.5.4.3", "0C 01 78")});
  std::string const der =
      "30 19 31 0B 30 09 06 03 55 04 06 13 02 52 55 31 0A 30 08 06 03 55 04 03 0C 01 78";
  EXPECT_EQ(Hex(name.encode()), der);
  CName decoded;
  decoded.decode(Blob(der));
  EXPECT_EQ(decoded, name);
  // The whole-structure form of the traits takes and gives the same bytes.
  EXPECT_EQ(Hex(asn1Encode<ASN1T_Name_traits>(Blob(der))), der);
  CBlob back;
  asn1Decode<ASN1T_Name_traits>(Blob(der), back);
  EXPECT_EQ(Hex(back), der);
  // An empty RDN inside a name has no encoding.
  name.push_back(CRelativeDistinguishedName());
  EXPECT_EQ(ThrownCode([&] { name.encode(); }), kCodec);
}

TEST_F(NamesDerTest, GeneralNameAlternatives) {
  CName dir;
  dir.push_back(CRelativeDistinguishedName{Atav("2.5.4.3", "0C 01 78")});
  struct Case {
    char const* what;
    unsigned type;
    std::function<void(CGeneralName&)> put;
    char const* der;
  } const cases[] = {
      {"otherName", CGeneralName::kOtherName,
       [](CGeneralName& g) { g.put_otherName(Blob("30 0A 06 03 2A 03 04 A0 03 02 01 05")); },
       "A0 0A 06 03 2A 03 04 A0 03 02 01 05"},
      {"rfc822Name", CGeneralName::kRfc822Name,
       [](CGeneralName& g) { g.put_rfc822Name(L"a@b"); }, "81 03 61 40 62"},
      {"dNSName", CGeneralName::kDNSName, [](CGeneralName& g) { g.put_dNSName(L"x.y"); },
       "82 03 78 2E 79"},
      {"x400Address", CGeneralName::kX400Address,
       [](CGeneralName& g) { g.put_x400Address(Blob("30 02 30 00")); }, "A3 02 30 00"},
      {"directoryName", CGeneralName::kDirectoryName,
       [&](CGeneralName& g) { g.put_directoryName(dir); },
       "A4 0E 30 0C 31 0A 30 08 06 03 55 04 03 0C 01 78"},
      {"empty directoryName", CGeneralName::kDirectoryName,
       [](CGeneralName& g) { g.put_directoryName(Blob("30 00")); }, "A4 02 30 00"},
      {"ediPartyName", CGeneralName::kEdiPartyName,
       [](CGeneralName& g) { g.put_ediPartyName(Blob("30 05 A1 03 0C 01 70")); },
       "A5 05 A1 03 0C 01 70"},
      {"uniformResourceIdentifier", CGeneralName::kUniformResourceIdentifier,
       [](CGeneralName& g) { g.put_uniformResourceIdentifier(L"u:"); }, "86 02 75 3A"},
      {"iPAddress", CGeneralName::kIPAddress,
       [](CGeneralName& g) { g.put_iPAddress(Blob("C0 00 02 01")); }, "87 04 C0 00 02 01"},
      {"registeredID", CGeneralName::kRegisteredID,
       [](CGeneralName& g) { g.put_registeredID("1.2.3"); }, "88 02 2A 03"},
      {"registeredID wide", CGeneralName::kRegisteredID,
       [](CGeneralName& g) { g.put_registeredID(L"2.5.4.3"); }, "88 03 55 04 03"},
      {"Latin-1 text", CGeneralName::kDNSName,
       [](CGeneralName& g) { g.put_dNSName(L"\u00e9"); }, "82 01 E9"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.what);
    CGeneralName gn;
    c.put(gn);
    EXPECT_EQ(gn.get_type(), c.type);
    EXPECT_EQ(Hex(gn.encode()), c.der);
    CGeneralName decoded;
    decoded.decode(Blob(c.der));
    EXPECT_EQ(decoded.get_type(), c.type);
    EXPECT_EQ(decoded, gn);
    EXPECT_EQ(Hex(decoded.encode()), c.der);
  }
}

TEST_F(NamesDerTest, GeneralNameGettersAndRefusals) {
  CGeneralName gn;
  EXPECT_EQ(gn.get_type(), 0u);
  EXPECT_EQ(ThrownCode([&] { gn.encode(); }), kCodec);
  gn.put_uniformResourceIdentifier(L"http://x/");
  EXPECT_STREQ(gn.get_uniformResourceIdentifier(), L"http://x/");
  EXPECT_EQ(gn.get_dNSName(), nullptr);
  EXPECT_EQ(gn.get_iPAddress(), nullptr);
  EXPECT_EQ(gn.get_directoryName(), nullptr);
  CName unused;
  EXPECT_FALSE(gn.get_directoryName(unused));

  struct Case {
    char const* what;
    std::function<void(CGeneralName&)> put;
    unsigned putCode;
    unsigned encodeCode;
  } const cases[] = {
      {"null text", [](CGeneralName& g) { g.put_dNSName(nullptr); }, kInvalidArg, 0},
      {"bad OID", [](CGeneralName& g) { g.put_registeredID("1.2."); }, kInvalidArg, 0},
      {"non-ASCII OID", [](CGeneralName& g) { g.put_registeredID(L"1.\u00e9"); }, kInvalidArg, 0},
      {"character above U+00FF", [](CGeneralName& g) { g.put_rfc822Name(L"\u0100"); }, 0,
       kCodec},
      {"directoryName that is no Name",
       [](CGeneralName& g) { g.put_directoryName(Blob("04 00")); }, 0, kCodec},
      {"directoryName with trailing bytes",
       [](CGeneralName& g) { g.put_directoryName(Blob("30 00 00")); }, 0, kCodec},
      {"empty otherName", [](CGeneralName& g) { g.put_otherName(CBlob()); }, 0, kCodec},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.what);
    CGeneralName g;
    g.put_dNSName(L"kept");
    EXPECT_EQ(ThrownCode([&] { c.put(g); }), c.putCode);
    if (c.putCode) {
      EXPECT_STREQ(g.get_dNSName(), L"kept");
    } else {
      EXPECT_EQ(ThrownCode([&] { g.encode(); }), c.encodeCode);
    }
  }
  // A decoded IA5String byte above 0x7F comes back as its Latin-1 character
  // and encodes again unchanged.
  CGeneralName latin;
  latin.decode(Blob("81 02 41 FF"));
  EXPECT_STREQ(latin.get_rfc822Name(), L"A\u00ff");
  EXPECT_EQ(Hex(latin.encode()), "81 02 41 FF");
}

TEST_F(NamesDerTest, GeneralNameImplHandlers) {
  CGeneralNameImpl impl;
  EXPECT_TRUE(impl.findTraits(1)->isType(1));
  typedef ChoiceValueTraitsT<CBlob, 5> DirectoryNameHandler;
  typedef ChoiceValueTraitsT<std::wstring, 9> RegisteredIdHandler;
  EXPECT_EQ(impl.findTraits(5), &DirectoryNameHandler::instance());
  EXPECT_EQ(impl.findTraits(9), &RegisteredIdHandler::instance());
  EXPECT_EQ(impl.findTraits(0), &ChoiceNoneTraits::instance());
  EXPECT_EQ(impl.findTraits(10), &ChoiceNoneTraits::instance());
  std::wstring text = L"x";
  impl.put_value(CGeneralName::kDNSName, &text);
  EXPECT_EQ(*impl.get_as<std::wstring>(CGeneralName::kDNSName), L"x");
  // An unknown number selects the no-alternative handler: the number is
  // reported, every typed getter reports absence.
  void* word = nullptr;
  impl.put_value(12, &word);
  EXPECT_EQ(impl.get_type(), 12u);
  EXPECT_EQ(impl.get_as<std::wstring>(CGeneralName::kDNSName), nullptr);
  CGeneralNameImpl copy(impl);
  EXPECT_EQ(copy.get_type(), 12u);
}

TEST_F(NamesDerTest, GeneralNameCopiesAndEquality) {
  CGeneralName a;
  a.put_iPAddress(Blob("0A 00 00 01"));
  CGeneralName b(a);
  EXPECT_EQ(a, b);
  b.put_iPAddress(Blob("0A 00 00 02"));
  EXPECT_NE(a, b);
  EXPECT_EQ(Hex(*a.get_iPAddress()), "0A 00 00 01");  // deep copy
  b = a;
  EXPECT_EQ(a, b);
  CGeneralName dns;
  dns.put_dNSName(L"0A");
  EXPECT_NE(a, dns);  // another alternative
  CGeneralName uri;
  uri.put_uniformResourceIdentifier(L"0A");
  EXPECT_NE(dns, uri);  // same text, another alternative
  a.clear();
  EXPECT_EQ(a.get_type(), 0u);
  EXPECT_EQ(a, CGeneralName());
  CGeneralName fromName(CName{});
  EXPECT_EQ(Hex(*fromName.get_directoryName()), "30 00");
}

TEST_F(NamesDerTest, GeneralNamesBytes) {
  CGeneralNames names;
  names.push_back(CGeneralName());
  names.back().put_dNSName(L"x.y");
  names.push_back(CGeneralName());
  names.back().put_iPAddress(Blob("7F 00 00 01"));
  std::string const der = "30 0B 82 03 78 2E 79 87 04 7F 00 00 01";
  EXPECT_EQ(Hex(names.encode()), der);
  CGeneralNames decoded;
  decoded.decode(Blob(der));
  EXPECT_EQ(decoded, names);
  decoded.reverse();
  EXPECT_NE(decoded, names);
  // SIZE (1..MAX): no empty list either way.
  EXPECT_EQ(ThrownCode([] { CGeneralNames().encode(); }), kCodec);
  EXPECT_EQ(ThrownCode([&] { decoded.decode(Blob("30 00")); }), kCodec);
  EXPECT_EQ(ThrownCode([&] { decoded.decode(Blob(der + " 00")); }), kCodec);
  EXPECT_EQ(decoded.size(), 2u);
  // An element that cannot be written fails the whole list.
  names.push_back(CGeneralName());
  EXPECT_EQ(ThrownCode([&] { names.encode(); }), kCodec);
}

}  // namespace
