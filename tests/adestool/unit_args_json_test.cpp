// unit_args_json_test.cpp: the argument parser and the JSON writer that
// later subcommands build on, called directly.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "args.h"
#include "json_writer.h"
#include "tool_error.h"

namespace {

using adestool::OptionSpec;
using adestool::ParseArgs;

const std::vector<OptionSpec> kSpecs = {
    {"json", 0, false, "", "", false},
    {"output", 'o', true, "FILE", "", false},
    {"cert", 'c', true, "FILE", "", true},
    {"verbose", 'v', false, "", "", true},
};

TEST(Args, FormsOfOptionsAndArguments) {
  adestool::ParsedArgs a = ParseArgs({"in.der", "--json", "-o", "-", "--cert=a.der", "-cb.der",
                                      "--cert", "--c.der", "-v", "-v", "-", "--", "--json", "-o"},
                                     kSpecs, "inspect");
  EXPECT_EQ((std::vector<std::string>{"in.der", "-", "--json", "-o"}), a.positionals());
  EXPECT_TRUE(a.Has("json"));
  ASSERT_NE(nullptr, a.Value("output"));
  EXPECT_EQ("-", *a.Value("output"));
  EXPECT_EQ((std::vector<std::string>{"a.der", "b.der", "--c.der"}), a.Values("cert"));
  EXPECT_EQ(2u, a.Values("verbose").size());
  EXPECT_FALSE(a.helpRequested());
  EXPECT_EQ(nullptr, ParseArgs({}, kSpecs, "inspect").Value("output"));
  EXPECT_TRUE(ParseArgs({"x", "-h", "--bogus"}, kSpecs, "inspect").helpRequested());
  EXPECT_TRUE(ParseArgs({"--bogus", "x", "--help"}, kSpecs, "inspect").helpRequested());
  EXPECT_FALSE(ParseArgs({"--", "--help"}, kSpecs, "inspect").helpRequested());
}

TEST(Args, UsageErrors) {
  struct Case {
    std::vector<std::string> args;
    const char* message;
  } cases[] = {
      {{"--nope"}, "unknown option '--nope'"},
      {{"-z"}, "unknown option '-z'"},
      {{"-vv"}, "unknown option '-vv'"},
      {{"--json=1"}, "option '--json' takes no value"},
      {{"--output"}, "option '--output' needs a value (FILE)"},
      {{"-o"}, "option '-o' needs a value (FILE)"},
      {{"-o", "a", "--output=b"}, "option '--output' given more than once"},
      {{"--output=a", "-ob"}, "option '-o' given more than once"},
      {{"--json", "--json"}, "option '--json' given more than once"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    try {
      ParseArgs(c.args, kSpecs, "inspect");
      ADD_FAILURE() << "no error";
    } catch (const adestool::ToolError& e) {
      EXPECT_EQ(2, e.status());
      EXPECT_EQ(std::string("adestool: inspect: ") + c.message + " (try 'adestool inspect --help')",
                e.what());
    }
  }
}

TEST(Json, NestedDocumentInWritingOrder) {
  adestool::JsonWriter w;
  w.BeginObject()
      .Field("file", "sig.p7s")
      .Field("level", "T")
      .Field("signers", 1)
      .Field("detached", false)
      .Key("attributes")
      .BeginArray()
      .BeginObject()
      .Field("oid", "1.2.840.113549.1.9.16.2.14")
      .Key("value")
      .Null()
      .EndObject()
      .Uint(18446744073709551615ull)
      .Int(-5)
      .EndArray()
      .Key("empty")
      .BeginObject()
      .EndObject()
      .Key("none")
      .BeginArray()
      .EndArray()
      .EndObject();
  EXPECT_EQ(
      "{\n"
      "  \"file\": \"sig.p7s\",\n"
      "  \"level\": \"T\",\n"
      "  \"signers\": 1,\n"
      "  \"detached\": false,\n"
      "  \"attributes\": [\n"
      "    {\n"
      "      \"oid\": \"1.2.840.113549.1.9.16.2.14\",\n"
      "      \"value\": null\n"
      "    },\n"
      "    18446744073709551615,\n"
      "    -5\n"
      "  ],\n"
      "  \"empty\": {},\n"
      "  \"none\": []\n"
      "}\n",
      w.Finish());
}

TEST(Json, StringEscaping) {
  struct Case {
    std::string in;
    std::string out;
  } cases[] = {
      {"plain", "\"plain\""},
      {"q\"b\\s/", "\"q\\\"b\\\\s/\""},
      {"\b\f\n\r\t", "\"\\b\\f\\n\\r\\t\""},
      {std::string("\x00\x01\x1F", 3), "\"\\u0000\\u0001\\u001F\""},
      {"\xD0\x9A\xF0\x9F\x98\x80", "\"\xD0\x9A\xF0\x9F\x98\x80\""},
      {"a\xFF"
       "b\xC3",
       "\"a\xEF\xBF\xBD"
       "b\xEF\xBF\xBD\""},
      {"\xED\xA0\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.out);
    EXPECT_EQ(c.out, adestool::JsonEscape(c.in));
  }
}

TEST(Json, MisuseIsAProgrammingError) {
  auto expectLogicError = [](auto&& build) {
    adestool::JsonWriter w;
    EXPECT_THROW(build(w), std::logic_error);
  };
  expectLogicError([](adestool::JsonWriter& w) { w.BeginObject().String("no key"); });
  expectLogicError([](adestool::JsonWriter& w) { w.BeginObject().Field("a", 1).Field("a", 2); });
  expectLogicError([](adestool::JsonWriter& w) { w.BeginArray().Key("k"); });
  expectLogicError([](adestool::JsonWriter& w) { w.BeginArray().EndObject(); });
  expectLogicError([](adestool::JsonWriter& w) { w.BeginObject().Finish(); });
  expectLogicError([](adestool::JsonWriter& w) { w.Int(1).Int(2); });
  expectLogicError([](adestool::JsonWriter& w) { w.Finish(); });
}

}  // namespace
