// Distinguished names as text, both ways: RDN order, multi-valued RDNs,
// RFC 4514 escaping edge cases, unknown types, the readable and exact forms,
// and every syntax error.
#include <gtest/gtest.h>
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/Names.h>

#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

constexpr unsigned kInvalid = 0x80070057u;

// The pairs of a name in wire order as "oid value-hex | ..." (RDNs apart by
// " / ").
std::string Pairs(CName const& name) {
  std::string out;
  for (CRelativeDistinguishedName const& rdn : name) {
    if (!out.empty()) out += " / ";
    std::string pairs;
    for (CAttributeTypeAndValue const& atav : rdn) {
      if (!pairs.empty()) pairs += " | ";
      pairs += std::string(atav.get_type()) + " " + Hex(atav.get_value());
    }
    out += pairs;
  }
  return out;
}

class NameTextTest : public typestest::HeapCheckedTest {};

TEST_F(NameTextTest, ParseAndWriteBack) {
  struct Case {
    wchar_t const* text;
    char const* pairs;      // wire order
    wchar_t const* written;  // NameToString of the result
  } const cases[] = {
      {L"CN=x", "2.5.4.3 0C 01 78", L"CN=x"},
      // The first RDN of the text is the last on the wire.
      {L"CN=x,O=y,C=RU", "2.5.4.6 13 02 52 55 / 2.5.4.10 0C 01 79 / 2.5.4.3 0C 01 78",
       L"CN=x,O=y,C=RU"},
      {L"  CN = x y  ,  O = z  ", "2.5.4.10 0C 01 7A / 2.5.4.3 0C 03 78 20 79", L"CN=x y,O=z"},
      {L"CN=x;O=y", "2.5.4.10 0C 01 79 / 2.5.4.3 0C 01 78", L"CN=x,O=y"},
      {L"cn=x,c=RU", "2.5.4.6 13 02 52 55 / 2.5.4.3 0C 01 78", L"CN=x,C=RU"},
      // Multi-valued RDN: pairs in text order in the list (DER sorts them).
      {L"GN=a + SN=b,C=RU", "2.5.4.6 13 02 52 55 / 2.5.4.42 0C 01 61 | 2.5.4.4 0C 01 62",
       L"GN=a+SN=b,C=RU"},
      {L"E=a@b,DC=x,SERIALNUMBER=7",
       "2.5.4.5 13 01 37 / 0.9.2342.19200300.100.1.25 16 01 78 / 1.2.840.113549.1.9.1 16 03 "
       "61 40 62",
       L"E=a@b,DC=x,SERIALNUMBER=7"},
      {L"OGRN=1027700132195,INN=007707083893",
       "1.2.643.3.131.1.1 0C 0C 30 30 37 37 30 37 30 38 33 38 39 33 / 1.2.643.100.1 0C 0D 31 30 "
       "32 37 37 30 30 31 33 32 31 39 35",
       L"OGRN=1027700132195,INN=007707083893"},
      // Escapes.
      {L"CN=a\\,b", "2.5.4.3 0C 03 61 2C 62", L"CN=a\\,b"},
      {L"CN=\\ lead", "2.5.4.3 0C 05 20 6C 65 61 64", L"CN=\\ lead"},
      {L"CN=trail\\ ", "2.5.4.3 0C 06 74 72 61 69 6C 20", L"CN=trail\\ "},
      {L"CN=\\  two", "2.5.4.3 0C 05 20 20 74 77 6F", L"CN=\\  two"},
      {L"CN=two \\ ", "2.5.4.3 0C 05 74 77 6F 20 20", L"CN=two \\ "},
      {L"CN=\\#hash", "2.5.4.3 0C 05 23 68 61 73 68", L"CN=\\#hash"},
      {L"CN=a#b", "2.5.4.3 0C 03 61 23 62", L"CN=a#b"},
      {L"CN=x\\,\\+\\\"\\\\\\<\\>\\;\\=y", "2.5.4.3 0C 0A 78 2C 2B 22 5C 3C 3E 3B 3D 79",
       L"CN=x\\,\\+\\\"\\\\\\<\\>\\;=y"},
      {L"CN=a=b", "2.5.4.3 0C 03 61 3D 62", L"CN=a=b"},
      {L"CN=\\4B\\6f", "2.5.4.3 0C 02 4B 6F", L"CN=Ko"},
      {L"CN=a\\09b", "2.5.4.3 0C 03 61 09 62", L"CN=a\\09b"},
      {L"CN=", "2.5.4.3 0C 00", L"CN="},
      {L"CN=\\20", "2.5.4.3 0C 01 20", L"CN=\\ "},
      // Non-ASCII, as it stands and as UTF-8 hex pairs.
      {L"CN=\u0418\u0432\u0430\u043d", "2.5.4.3 0C 08 D0 98 D0 B2 D0 B0 D0 BD",
       L"CN=\u0418\u0432\u0430\u043d"},
      {L"CN=\\D0\\98\\D0\\B2\\D0\\B0\\D0\\BD", "2.5.4.3 0C 08 D0 98 D0 B2 D0 B0 D0 BD",
       L"CN=\u0418\u0432\u0430\u043d"},
      {L"CN=\\D0\\98 x", "2.5.4.3 0C 04 D0 98 20 78", L"CN=\u0418 x"},
      {L"CN=\U0001F600", "2.5.4.3 0C 04 F0 9F 98 80", L"CN=\U0001F600"},
      // RFC 1779 quotes.
      {L"O=\"Foo, Inc.\" ,C=US", "2.5.4.6 13 02 55 53 / 2.5.4.10 0C 09 46 6F 6F 2C 20 49 6E 63 2E",
       L"O=Foo\\, Inc.,C=US"},
      {L"O=\" a\\\"b \"", "2.5.4.10 0C 05 20 61 22 62 20", L"O=\\ a\\\"b\\ "},
      // Types by OID.
      {L"2.5.4.3=x", "2.5.4.3 0C 01 78", L"CN=x"},
      {L"OID.2.5.4.3=x", "2.5.4.3 0C 01 78", L"CN=x"},
      {L"1.2.3.4=#0C0178", "1.2.3.4 0C 01 78", L"1.2.3.4=#0C0178"},
      {L"1.2.3.4=#020105", "1.2.3.4 02 01 05", L"1.2.3.4=#020105"},
      {L"1.2.3.4=text", "1.2.3.4 0C 04 74 65 78 74", L"1.2.3.4=#0C0474657874"},
      {L"CN=#020105", "2.5.4.3 02 01 05", L"CN=#020105"},
      {L"CN=#130178", "2.5.4.3 13 01 78", L"CN=x"},  // readable: text of any string
      // Empty names.
      {L"", "", L""},
      {L"   ", "", L""},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(testing::Message() << c.pairs);
    CName name = NameFromString(c.text);
    EXPECT_EQ(Pairs(name), c.pairs);
    EXPECT_EQ(std::wstring(name.toString().c_str()), c.written);
    // The readable text reads back to the same text, the exact text to the
    // same bytes.
    CName again;
    again.fromString(c.written);
    EXPECT_EQ(std::wstring(again.toString().c_str()), c.written);
    EXPECT_EQ(Hex(NameFromString(name.toString(ntfExact).c_str()).encode()), Hex(name.encode()));
  }
}

TEST_F(NameTextTest, FullDer) {
  EXPECT_EQ(Hex(NameFromString(L"CN=x,C=RU").encode()),
            "30 19 31 0B 30 09 06 03 55 04 06 13 02 52 55 31 0A 30 08 06 03 55 04 03 0C 01 78");
  // The multi-valued RDN is sorted by the DER encoder.
  EXPECT_EQ(Hex(NameFromString(L"C=RU+CN=b").encode()),
            "30 17 31 15 30 08 06 03 55 04 03 0C 01 62 30 09 06 03 55 04 06 13 02 52 55");
  EXPECT_EQ(Hex(NameFromString(L"").encode()), "30 00");
  EXPECT_EQ(Hex(NameFromString(L"CN=x", stBMPString).encode()),
            "30 0D 31 0B 30 09 06 03 55 04 03 1E 02 00 78");
}

TEST_F(NameTextTest, SyntaxErrors) {
  std::wstring const tooLong = L"CN=" + std::wstring(32769, L'a');
  wchar_t const* const cases[] = {
      L"CN",           L"=x",           L"CN=x,",       L",CN=x",       L"CN=x,,O=y",
      L"CN=a+",        L"+CN=a",        L"FOO=x",       L"1.2.=x",      L"OID.=x",
      L"C N=x",        L"CN=\\",        L"CN=\\q",      L"CN=\\4",      L"CN=\\4G",
      L"CN=#",         L"CN=#0C01",     L"CN=#0C017",   L"CN=#0C0178 z", L"CN=#0C01780C0178",
      L"CN=#zz",       L"CN=\"abc",     L"CN=\"abc\" d", L"CN=\\00",    L"CN=a\\00",
      L"CN=\\C3",      L"CN=\\C3x",     L"CN=\\C0\\80", L"CN=\\ED\\A0\\80", L"CN=\\F4\\90\\80\\80",
      L"C\\N=x",       L"\"CN\"=x",     tooLong.c_str(),
  };
  for (wchar_t const* text : cases) {
    std::wstring const shown = std::wstring(text).substr(0, 40);
    SCOPED_TRACE(std::string(shown.begin(), shown.end()));
    CName name = NameFromString(L"CN=kept");
    EXPECT_EQ(ThrownCode([&] { name.fromString(text); }), kInvalid);
    EXPECT_EQ(Pairs(name), "2.5.4.3 0C 04 6B 65 70 74");
  }
  EXPECT_EQ(ThrownCode([] { NameFromString(nullptr); }), kInvalid);
}

TEST_F(NameTextTest, ExactForm) {
  struct Case {
    char const* der;
    wchar_t const* readable;
    wchar_t const* exact;
  } const cases[] = {
      // The register's own string types: text in both forms.
      {"30 0C 31 0A 30 08 06 03 55 04 03 0C 01 78", L"CN=x", L"CN=x"},
      {"30 0B 31 09 30 07 06 03 55 04 06 13 00", L"C=", L"C="},
      // Another string type than the register's: hex in the exact form.
      {"30 0C 31 0A 30 08 06 03 55 04 03 13 01 78", L"CN=x", L"CN=#130178"},
      {"30 0D 31 0B 30 09 06 03 55 04 03 1E 02 00 78", L"CN=x", L"CN=#1E020078"},
      // A UTF8String holding NUL: its text stops there; the exact form keeps it.
      {"30 0E 31 0C 30 0A 06 03 55 04 03 0C 03 61 00 62", L"CN=a", L"CN=#0C03610062"},
      // Not UTF-8, not a string: hex in both forms.
      {"30 0C 31 0A 30 08 06 03 55 04 03 0C 01 FF", L"CN=#0C01FF", L"CN=#0C01FF"},
      {"30 0B 31 09 30 07 06 03 55 04 03 05 00", L"CN=#0500", L"CN=#0500"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.der);
    CName name;
    name.decode(Blob(c.der));
    EXPECT_EQ(std::wstring(name.toString().c_str()), c.readable);
    EXPECT_EQ(std::wstring(name.toString(ntfExact).c_str()), c.exact);
    EXPECT_EQ(Hex(NameFromString(c.exact).encode()), c.der);
  }
}

TEST_F(NameTextTest, PairsAndRdnsAlone) {
  CAttributeTypeAndValue atav = AtavFromString(L" CN = \\ a ");
  EXPECT_EQ(Hex(atav.get_value()), "0C 02 20 61");
  EXPECT_STREQ(atav.toString().c_str(), L"CN=\\ a");
  EXPECT_STREQ(AtavToString(atav).c_str(), L"CN=\\ a");
  EXPECT_EQ(ThrownCode([] { AtavFromString(L"CN=a,O=b"); }), kInvalid);
  EXPECT_EQ(ThrownCode([] { AtavFromString(L"CN=a+O=b"); }), kInvalid);
  EXPECT_EQ(ThrownCode([] { AtavFromString(nullptr); }), kInvalid);

  CRelativeDistinguishedName rdn = NameFromString(L"GN=a+SN=b").front();
  EXPECT_STREQ(rdn.toString().c_str(), L"GN=a+SN=b");
  EXPECT_EQ(ThrownCode([] { CRelativeDistinguishedName().toString(); }), kInvalid);
  CName withEmpty;
  withEmpty.push_back(CRelativeDistinguishedName());
  EXPECT_EQ(ThrownCode([&] { withEmpty.toString(); }), kInvalid);

  EXPECT_STREQ(EscapeDNValue(L" #a, ").c_str(), L"\\ #a\\,\\ ");
  EXPECT_STREQ(EscapeDNValue(L"").c_str(), L"");
  EXPECT_STREQ(EscapeDNValue(L"\x7f").c_str(), L"\\7F");
  EXPECT_EQ(ThrownCode([] { EscapeDNValue(nullptr); }), kInvalid);
}

}  // namespace
