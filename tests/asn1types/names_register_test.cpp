// The attribute-type register: the 22 entries of the library in order, the
// lookups, value conversions and pair building.
#include <gtest/gtest.h>
#include <korvex/asn1types/AttributeTypeRegister.h>

#include <iterator>
#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

TEST(AttributeTypeRegisterTest, LibraryEntriesInOrder) {
  struct Entry {
    CATAVRegister const* global;
    char const* type;
    wchar_t const* name;
    StringType stringType;
  } const expected[] = {
      {&commonNameAttribute, "2.5.4.3", L"CN", stUTF8String},
      {&countryNameAttribute, "2.5.4.6", L"C", stPrintableString},
      {&localityNameAttribute, "2.5.4.7", L"L", stUTF8String},
      {&stateOrProvinceNameAttribute, "2.5.4.8", L"ST", stUTF8String},
      {&emailAddressAttribute, "1.2.840.113549.1.9.1", L"E", stIA5String},
      {&organizationNameAttribute, "2.5.4.10", L"O", stUTF8String},
      {&organizationUnitNameAttribute, "2.5.4.11", L"OU", stUTF8String},
      {&titleAttribute, "2.5.4.12", L"T", stUTF8String},
      {&givenNameAttribute, "2.5.4.42", L"GN", stUTF8String},
      {&initialsAttribute, "2.5.4.43", L"I", stUTF8String},
      {&surnameAttribute, "2.5.4.4", L"SN", stUTF8String},
      {&pseudonymAttribute, "2.5.4.65", L"PS", stUTF8String},
      {&ogrnAttribute, "1.2.643.100.1", L"OGRN", stUTF8String},
      {&ogrnipAttribute, "1.2.643.100.5", L"OGRNIP", stUTF8String},
      {&snilsAttribute, "1.2.643.100.3", L"SNILS", stUTF8String},
      {&innleAttribute, "1.2.643.100.4", L"INNLE", stUTF8String},
      {&innAttribute, "1.2.643.3.131.1.1", L"INN", stUTF8String},
      {&streetAddressAttribute, "2.5.4.9", L"STREET", stUTF8String},
      {&domainComponentAttribute, "0.9.2342.19200300.100.1.25", L"DC", stIA5String},
      {&unstructuredNameAttribute, "1.2.840.113549.1.9.2", L"UnstructuredName", stUTF8String},
      {&PostalCodeAttribute, "2.5.4.17", L"PostalCode", stUTF8String},
      {&serialNumberAttribute, "2.5.4.5", L"SERIALNUMBER", stPrintableString},
  };
  CATAVRegister::List const& entries = CATAVRegister::registered();
  ASSERT_GE(entries.size(), 22u);
  auto it = entries.begin();
  for (Entry const& e : expected) {
    SCOPED_TRACE(e.type);
    EXPECT_STREQ(it->get_type(), e.type);
    EXPECT_STREQ(it->get_name(), e.name);
    EXPECT_EQ(it->get_stringType(), e.stringType);
    EXPECT_EQ(it->get_maxLength(), 32768ul);
    EXPECT_STREQ(e.global->get_type(), e.type);
    EXPECT_STREQ(e.global->get_name(), e.name);
    EXPECT_EQ(e.global->get_stringType(), e.stringType);
    EXPECT_EQ(CATAVRegister::find(e.type), it);
    EXPECT_EQ(CATAVRegister::find(e.name), it);
    ++it;
  }
}

TEST(AttributeTypeRegisterTest, TypeNames) {
  EXPECT_STREQ(CATAVRegister::typeToStr("2.5.4.3").c_str(), L"CN");
  EXPECT_STREQ(CATAVRegister::typeToStr("1.2.643.100.3").c_str(), L"SNILS");
  EXPECT_STREQ(CATAVRegister::typeToStr("1.2.3.4").c_str(), L"1.2.3.4");
  EXPECT_STREQ(CATAVRegister::typeFromStr(L"OGRN").c_str(), "1.2.643.100.1");
  // Exact, case-sensitive: "cn" is not "CN" and passes through.
  EXPECT_STREQ(CATAVRegister::typeFromStr(L"cn").c_str(), "cn");
  EXPECT_STREQ(CATAVRegister::typeFromStr(L"1.2.3.4").c_str(), "1.2.3.4");
  EXPECT_EQ(CATAVRegister::find("2.5.4.3 "), CATAVRegister::end());
  EXPECT_EQ(CATAVRegister::find(L"Cn"), CATAVRegister::end());
  EXPECT_EQ(CATAVRegister::find(static_cast<char const*>(nullptr)), CATAVRegister::end());
  EXPECT_EQ(ThrownCode([] { CATAVRegister::typeToStr(nullptr); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([] { CATAVRegister::typeFromStr(nullptr); }), kInvalidArg);
}

TEST(AttributeTypeRegisterTest, MakeAtav) {
  struct Case {
    wchar_t const* text;
    StringType stringType;
    char const* type;
    char const* value;
  } const cases[] = {
      {L"C=RU", stDefault, "2.5.4.6", "13 02 52 55"},
      {L"E=x", stDefault, "1.2.840.113549.1.9.1", "16 01 78"},
      {L"CN=x", stDefault, "2.5.4.3", "0C 01 78"},
      {L"DC=x", stDefault, "0.9.2342.19200300.100.1.25", "16 01 78"},
      {L"SERIALNUMBER=7", stDefault, "2.5.4.5", "13 01 37"},
      {L"CN=x", stBMPString, "2.5.4.3", "1E 02 00 78"},  // an explicit type wins
      {L"C=RU", stUTF8String, "2.5.4.6", "0C 02 52 55"},
      {L"CN=a=b", stDefault, "2.5.4.3", "0C 03 61 3D 62"},  // split at the first '='
      {L"CN=", stDefault, "2.5.4.3", "0C 00"},
      {L"1.2.3.4=x", stDefault, "1.2.3.4", "0C 01 78"},  // unregistered: UTF8String
      {L"1.2.3.4=x", stIA5String, "1.2.3.4", "16 01 78"},
      {L"CN= x ", stDefault, "2.5.4.3", "0C 03 20 78 20"},  // taken as it stands
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(testing::Message() << c.type << " " << c.value);
    CAttributeTypeAndValue atav = CATAVRegister::makeATAV(c.text, c.stringType);
    EXPECT_STREQ(atav.get_type(), c.type);
    EXPECT_EQ(Hex(atav.get_value()), c.value);
  }
  CAttributeTypeAndValue two = CATAVRegister::makeATAV(L"O", L"Korvex", stDefault);
  EXPECT_EQ(Hex(two.get_value()), "0C 06 4B 6F 72 76 65 78");

  EXPECT_EQ(ThrownCode([] { CATAVRegister::makeATAV(L"CN", stDefault); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([] { CATAVRegister::makeATAV(L"cn=x", stDefault); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([] { CATAVRegister::makeATAV(L"=x", stDefault); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([] { CATAVRegister::makeATAV(nullptr, stDefault); }), kInvalidArg);
  EXPECT_EQ(ThrownCode([] { CATAVRegister::makeATAV(L"CN=x", static_cast<StringType>(7)); }),
            kCodec);
}

TEST(AttributeTypeRegisterTest, ValueConversions) {
  std::wstring limit(32768, L'a');
  EXPECT_EQ(CATAVRegister::valueFromStr("2.5.4.3", limit.c_str(), stDefault).cbData(),
            32768u + 4u);
  std::wstring over(32769, L'a');
  EXPECT_EQ(ThrownCode([&] { CATAVRegister::valueFromStr("2.5.4.3", over.c_str(), stDefault); }),
            kInvalidArg);
  // An unregistered type has no limit.
  EXPECT_EQ(CATAVRegister::valueFromStr("1.2.3.4", over.c_str(), stDefault).cbData(),
            32769u + 4u);
  EXPECT_EQ(ThrownCode([] { CATAVRegister::valueFromStr("2.5.4.3", nullptr, stDefault); }),
            kInvalidArg);

  struct Case {
    char const* der;
    wchar_t const* text;
  } const cases[] = {
      {"0C 01 78", L"x"},
      {"13 02 52 55", L"RU"},
      {"1E 04 04 18 04 32", L"\u0418\u0432"},
      {"02 01 05", L"#020105"},
      {"30 00", L"#3000"},
      {"", L"#"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.der);
    EXPECT_STREQ(CATAVRegister::valueToStr("2.5.4.3", Blob(c.der)).c_str(), c.text);
  }
  // A character string that does not decode passes decodeCharString's code on.
  EXPECT_EQ(ThrownCode([] { CATAVRegister::valueToStr(nullptr, Blob("0C 01 FF")); }), kCodec);
}

TEST(AttributeTypeRegisterTest, RegistrationAtRunTime) {
  std::size_t before = CATAVRegister::registered().size();
  CATAVRegister mine("1.3.6.1.4.1.99981.38.777", L"KorvexTestAttr", stIA5String, 4);
  ASSERT_EQ(CATAVRegister::registered().size(), before + 1);
  EXPECT_STREQ(CATAVRegister::registered().back().get_name(), L"KorvexTestAttr");
  // A copy registers nothing.
  CATAVRegister copy(mine);
  EXPECT_EQ(CATAVRegister::registered().size(), before + 1);
  EXPECT_STREQ(CATAVRegister::typeToStr("1.3.6.1.4.1.99981.38.777").c_str(), L"KorvexTestAttr");
  EXPECT_EQ(Hex(CATAVRegister::makeATAV(L"KorvexTestAttr=abcd", stDefault).get_value()),
            "16 04 61 62 63 64");
  EXPECT_EQ(ThrownCode([] { CATAVRegister::makeATAV(L"KorvexTestAttr=abcde", stDefault); }),
            kInvalidArg);
  EXPECT_EQ(ThrownCode([] { CATAVRegister(nullptr, L"x", stDefault, 1); }), kInvalidArg);
  EXPECT_EQ(CATAVRegister::registered().size(), before + 1);
}

}  // namespace
