// unit_names_test.cpp: tag names, object identifier names and the text
// forms of dump values, called directly.
#include <gtest/gtest.h>

#include <string>

#include "asn1_names.h"
#include "asn1_text.h"

namespace {

TEST(Names, TagNamesByClass) {
  struct Case {
    ASN1TAG tag;
    const char* name;
  } cases[] = {
      {TM_UNIV | TM_CONS | 16, "SEQUENCE"},
      {TM_UNIV | 6, "OBJECT IDENTIFIER"},
      {TM_UNIV | 15, "[UNIVERSAL 15]"},
      {TM_UNIV | 37, "[UNIVERSAL 37]"},
      {TM_CTXT | TM_CONS | 0, "[0]"},
      {TM_APPL | 1, "[APPLICATION 1]"},
      {TM_PRIV | 0x1FFFFFFF, "[PRIVATE 536870911]"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.name, adestool::TagName(c.tag));
  }
}

TEST(Names, PlatformNamesFirstThenOurTable) {
  struct Case {
    const char* oid;
    const char* name;
  } cases[] = {
      {"2.5.4.3", "CN"},                                         // platform
      {"1.2.840.113549.1.9.16.2.47", "Signing Certificate V2"},  // platform wins over ours
      {"1.2.840.113549.1.7.2", "id-signedData"},                 // ours
      {"1.2.840.113549.1.9.16.2.4", "id-aa-contentHint"},
      {"0.4.0.1733.2.4", "id-aa-ets-archiveTimestampV3"},
      {"1.3.6.1.5.5.7.48.1.1", "id-pkix-ocsp-basic"},
      {"1.2.3.4", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.oid);
    EXPECT_EQ(c.name, adestool::OidName(c.oid));
  }
  // Our table also holds the CAdES names the platform has, for platforms
  // whose table is smaller.
  EXPECT_STREQ("id-aa-signingCertificateV2",
               adestool::BuiltinOidName("1.2.840.113549.1.9.16.2.47"));
}

TEST(Text, TimesReadOnlyInDerForm) {
  struct Case {
    bool utc;
    const char* text;
    const char* reading;
  } cases[] = {
      {true, "490101000000Z", "2049-01-01 00:00:00 UTC"},
      {true, "500101000000Z", "1950-01-01 00:00:00 UTC"},
      {true, "241231235960Z", "2024-12-31 23:59:60 UTC"},
      {true, "2401010000Z", ""},
      {true, "240101000000+0100", ""},
      {true, "241301000000Z", ""},
      {true, "240100000000Z", ""},
      {false, "20240229120000Z", "2024-02-29 12:00:00 UTC"},
      {false, "20240229120000.5Z", "2024-02-29 12:00:00.5 UTC"},
      {false, "20240229120000.50Z", ""},
      {false, "20240229120000.Z", ""},
      {false, "20240229120000,5Z", ""},
      {false, "2024022912000Z", ""},
      {false, "20240229120000", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    std::string t = c.text;
    EXPECT_EQ(c.reading,
              adestool::DescribeTime(c.utc, reinterpret_cast<const uint8_t*>(t.data()), t.size()));
  }
}

TEST(Text, QuotedAndCutText) {
  const std::string bytes = "ab\"c";
  EXPECT_EQ("\"ab\" ... (4 bytes)",
            adestool::QuoteBytes(reinterpret_cast<const uint8_t*>(bytes.data()), 4, false, 2));
  EXPECT_EQ("\"ab\\\"c\"",
            adestool::QuoteBytes(reinterpret_cast<const uint8_t*>(bytes.data()), 4, false, 4));
  const std::string utf8 = "\xC2\xA0\xC2\x85";  // U+00A0 stays, C1 control U+0085 is escaped
  EXPECT_EQ("\"\xC2\xA0\\xC2\\x85\"",
            adestool::QuoteBytes(reinterpret_cast<const uint8_t*>(utf8.data()), 4, true, 10));
  EXPECT_EQ("\"A\\u0007\\uD800\\U00110000\xE2\x82\xAC\" ... (6 characters)",
            adestool::QuoteCodePoints(U"A\u0007\xD800\x110000\u20AC!", 5));
}

}  // namespace
