// unit_text_input_test.cpp: the strict base64 decoder, PEM parsing and form
// detection of adestool_core, called directly.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base64.h"
#include "input.h"
#include "pem.h"
#include "tool_error.h"

namespace {

using adestool::Base64Error;
using adestool::DecodeBase64;

std::vector<uint8_t> V(const std::string& s) { return std::vector<uint8_t>(s.begin(), s.end()); }

TEST(Base64, AcceptsExactlyTheCanonicalText) {
  struct Case {
    const char* text;
    std::string bytes;
  } cases[] = {
      {"", ""},
      {" \n\t", ""},
      {"Zg==", "f"},
      {"Zm8=", "fo"},
      {"Zm9v", "foo"},
      {"Zm9vYmFy", "foobar"},
      {" Zm9v\r\nYmE=\n", "fooba"},
      {"+/+/", std::string("\xFB\xFF\xBF", 3)},
      {"AAAA", std::string(3, '\0')},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    std::vector<uint8_t> out;
    Base64Error error;
    ASSERT_TRUE(DecodeBase64(c.text, &out, &error)) << error.what;
    EXPECT_EQ(V(c.bytes), out);
  }
}

TEST(Base64, RejectsWithTheOffsetAndReason) {
  struct Case {
    const char* text;
    size_t offset;
    const char* what;
  } cases[] = {
      {"Zm9", 3, "base64 data ends inside a 4-character group"},
      {"Zm9vY", 5, "base64 data ends inside a 4-character group"},
      {"Zm-v", 2, "invalid base64 character '-'"},
      {"Zm_v", 2, "invalid base64 character '_'"},
      {"Zm9v\x01", 4, "invalid base64 character \\x01"},
      {"Zm9v\xC3\xA9", 4, "invalid base64 character \\xC3"},
      {"Z===", 1, "misplaced base64 padding '='"},
      {"====", 0, "misplaced base64 padding '='"},
      {"Zm=v", 3, "base64 data after the '=' padding"},
      {"Zg==Zg==", 4, "base64 data after the '=' padding"},
      {"Zh==", 1, "non-zero padding bits in base64 data"},
      {"Zm9=", 2, "non-zero padding bits in base64 data"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    std::vector<uint8_t> out;
    Base64Error error;
    EXPECT_FALSE(DecodeBase64(c.text, &out, &error));
    EXPECT_EQ(c.offset, error.offset);
    EXPECT_EQ(c.what, error.what);
  }
}

TEST(Pem, BlocksInOrderWithTextAroundThem) {
  const std::string text =
      "Certificate:\n    Data: ...\n"
      "-----BEGIN CERTIFICATE-----\nMAMC\nAQU=\n-----END CERTIFICATE-----\n"
      "between\n"
      "  -----BEGIN X509 CRL-----  \r\n  MAA=\r\n-----END X509 CRL-----";
  std::vector<adestool::PemBlock> blocks;
  std::string error;
  ASSERT_TRUE(adestool::ParsePem(text, &blocks, &error)) << error;
  ASSERT_EQ(2u, blocks.size());
  EXPECT_EQ("CERTIFICATE", blocks[0].label);
  EXPECT_EQ(V("\x30\x03\x02\x01\x05"), blocks[0].der);
  EXPECT_EQ(3u, blocks[0].beginLine);
  EXPECT_EQ("X509 CRL", blocks[1].label);
  EXPECT_EQ(V(std::string("\x30\x00", 2)), blocks[1].der);
  EXPECT_EQ(8u, blocks[1].beginLine);
}

TEST(Pem, MalformedBlocks) {
  struct Case {
    const char* text;
    const char* error;
  } cases[] = {
      {"-----BEGIN A----\nMAA=\n-----END A-----\n", "PEM block 1, line 1: malformed BEGIN line"},
      {"-----BEGIN A-----\nMAA=\n-----BEGIN B-----\n",
       "PEM block 1 (A), line 3: BEGIN line inside the block (no END line before it)"},
      {"-----BEGIN A-----\nMAA=\n-----END A----\n",
       "PEM block 1 (A), line 3: END line does not match the BEGIN line"},
      {"-----BEGIN A-----\nMAA=\n-----END A-----\n-----BEGIN B-----\nMA\n-----END B-----\n",
       "PEM block 2 (B): base64 data ends inside a 4-character group"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    std::vector<adestool::PemBlock> blocks;
    std::string error;
    EXPECT_FALSE(adestool::ParsePem(c.text, &blocks, &error));
    EXPECT_EQ(c.error, error);
  }
}

TEST(InputForm, DetectedFromTheContents) {
  struct Case {
    const char* what;
    std::string bytes;
    adestool::InputForm form;
    size_t items;
  } cases[] = {
      {"DER", std::string("\x30\x03\x02\x01\x05", 5), adestool::InputForm::kDer, 1},
      {"DER that starts like text", std::string("0\x03\x02\x01\x05", 5), adestool::InputForm::kDer,
       1},
      {"base64", "MAMCAQU=\n", adestool::InputForm::kBase64, 1},
      {"PEM", "-----BEGIN A-----\nMAMCAQU=\n-----END A-----\n", adestool::InputForm::kPem, 1},
      {"PEM with UTF-8 text", "\xD0\x9F\xD0\xB8\n-----BEGIN A-----\nMAA=\n-----END A-----\n",
       adestool::InputForm::kPem, 1},
      {"text with a DEL is binary", "MAMCAQU=\x7F", adestool::InputForm::kDer, 1},
      {"overlong UTF-8 is binary", "MAMC\xC0\xAF", adestool::InputForm::kDer, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    adestool::Input input = adestool::DecodeInput("x", V(c.bytes));
    EXPECT_EQ(c.form, input.form);
    EXPECT_EQ(c.items, input.items.size());
  }
}

TEST(InputForm, ErrorsCarryStatus2) {
  try {
    adestool::DecodeInput("name.txt", V("a b"));
    FAIL() << "no error";
  } catch (const adestool::ToolError& e) {
    EXPECT_EQ(2, e.status());
    EXPECT_STREQ(
        "adestool: name.txt: not DER, PEM or base64: base64 data ends inside a 4-character group",
        e.what());
  }
}

}  // namespace
