#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include <korvex/platform/atl/atlstr.h>
#include "../common/thrown_code.h"

using ATL::CStringA;

namespace {

std::string Text(CStringA const& s) { return std::string(s.GetString(), s.GetLength()); }

using korvextest::CodeOf;

TEST(CStringA, ConstructionCopiesAndNeverHandsOutNull) {
  CStringA empty;
  EXPECT_TRUE(empty.IsEmpty());
  ASSERT_NE(nullptr, empty.GetString());
  EXPECT_STREQ("", empty.GetString());
  EXPECT_STREQ("", static_cast<char const*>(CStringA(static_cast<char const*>(nullptr))));

  CStringA bytes("a\0b", 3);  // pointer and length keep embedded NULs
  EXPECT_EQ(3, bytes.GetLength());
  EXPECT_EQ(std::string("a\0b", 3), Text(bytes));
  EXPECT_EQ("xxx", Text(CStringA('x', 3)));

  CStringA copy(bytes);
  copy.SetAt(0, 'z');
  EXPECT_EQ('a', bytes[0]);
  CStringA moved(std::move(copy));
  EXPECT_EQ(std::string("z\0b", 3), Text(moved));
  EXPECT_TRUE(copy.IsEmpty());  // NOLINT: moved-from state is specified as empty

  CStringA assigned;
  assigned = "text";
  CStringA const& alias = assigned;
  assigned = alias;  // self-assignment
  EXPECT_EQ("text", Text(assigned));
  assigned = 'c';
  EXPECT_EQ("c", Text(assigned));

  EXPECT_EQ(E_INVALIDARG, CodeOf([] { CStringA bad(nullptr, 2); }));
  EXPECT_EQ(E_INVALIDARG, CodeOf([] { CStringA bad("abc", -1); }));
}

TEST(CStringA, AppendAndConcatenateIncludingOwnText) {
  CStringA s("ab");
  s += "cd";
  s += 'e';
  s += CStringA("f\0g", 3);
  s.Append("hij", 2);
  s.AppendChar('!');
  EXPECT_EQ(std::string("abcdef\0ghi!", 11), Text(s));

  CStringA self("xy");
  self += self;
  self.Append(self.GetString() + 1, 2);  // source inside the buffer that may move
  EXPECT_EQ("xyxyyx", Text(self));
  self.SetString(self.GetString() + 2, 3);
  EXPECT_EQ("xyy", Text(self));

  CStringA a("12");
  EXPECT_EQ("1234", Text(a + CStringA("34")));
  EXPECT_EQ("12ab", Text(a + "ab"));
  EXPECT_EQ("ab12", Text("ab" + a));
  EXPECT_EQ("12x", Text(a + 'x'));
  EXPECT_EQ("x12", Text('x' + a));
  EXPECT_EQ("12", Text(a + static_cast<char const*>(nullptr)));
}

TEST(CStringA, ComparisonUsesAllCharactersAsUnsigned) {
  EXPECT_TRUE(CStringA("abc") == "abc");
  EXPECT_TRUE("abc" == CStringA("abc"));
  EXPECT_TRUE(CStringA("abc") == CStringA("abc"));
  EXPECT_TRUE(CStringA("abc") != "abd");
  EXPECT_TRUE(CStringA("a\0b", 3) != CStringA("a"));
  EXPECT_TRUE(CStringA("a") < CStringA("a\0", 2));
  EXPECT_TRUE(CStringA("ab") < CStringA("abc"));
  EXPECT_TRUE(CStringA("abc") < "b");
  EXPECT_TRUE("a" < CStringA("b"));
  EXPECT_TRUE(CStringA("\x7F") < CStringA("\x80"));
  EXPECT_FALSE(CStringA("b") < CStringA("b"));
  EXPECT_TRUE(CStringA() == static_cast<char const*>(nullptr));
  EXPECT_EQ(0, CStringA("q").Compare("q"));
  EXPECT_GT(0, CStringA("").Compare("q"));
}

TEST(CStringA, BufferHoldsZeroBytesAndLengthFollowsRelease) {
  CStringA s("ab");
  char* buffer = s.GetBuffer(10);
  EXPECT_EQ(2, s.GetLength());  // unchanged until released
  EXPECT_GE(s.GetAllocLength(), 10);
  EXPECT_EQ('a', buffer[0]);
  std::memcpy(buffer, "hello\0xyz", 9);
  s.ReleaseBuffer();
  EXPECT_EQ("hello", Text(s));

  char* raw = s.GetBufferSetLength(4);
  EXPECT_EQ(4, s.GetLength());
  std::memcpy(raw, "\x00\x01\x00\x02", 4);
  s.ReleaseBufferSetLength(4);
  EXPECT_EQ(std::string("\x00\x01\x00\x02", 4), Text(s));
  EXPECT_EQ('\0', s.GetString()[4]);

  s.ReleaseBuffer(1);
  EXPECT_EQ(std::string("\0", 1), Text(s));

  CStringA full;
  std::memset(full.GetBuffer(3), 'z', 3);  // no NUL written: the allocated length counts
  full.ReleaseBuffer();
  EXPECT_EQ("zzz", Text(full));

  CStringA kept("keep");
  kept.Preallocate(100);
  EXPECT_GE(kept.GetAllocLength(), 100);
  EXPECT_EQ("keep", Text(kept));
  kept.Truncate(2);
  EXPECT_EQ("ke", Text(kept));
  kept.Empty();
  EXPECT_TRUE(kept.IsEmpty());
  EXPECT_EQ(0, kept.GetAllocLength());
}

TEST(CStringA, RangeErrorsThrowInvalidArg) {
  CStringA s("abc");
  struct Case {
    char const* what;
    void (*call)(CStringA&);
  } cases[] = {
      {"GetBuffer(-1)", [](CStringA& x) { x.GetBuffer(-1); }},
      {"GetBufferSetLength(-1)", [](CStringA& x) { x.GetBufferSetLength(-1); }},
      {"Preallocate(-1)", [](CStringA& x) { x.Preallocate(-1); }},
      {"ReleaseBufferSetLength past allocation",
       [](CStringA& x) { x.ReleaseBufferSetLength(x.GetAllocLength() + 1); }},
      {"ReleaseBuffer(-2)", [](CStringA& x) { x.ReleaseBuffer(-2); }},
      {"Truncate(4)", [](CStringA& x) { x.Truncate(4); }},
      {"GetAt(4)", [](CStringA& x) { x.GetAt(4); }},
      {"GetAt(-1)", [](CStringA& x) { x.GetAt(-1); }},
      {"SetAt(3)", [](CStringA& x) { x.SetAt(3, 'x'); }},
      {"Append(null, 1)", [](CStringA& x) { x.Append(nullptr, 1); }},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.what);
    CStringA copy(s);
    EXPECT_EQ(E_INVALIDARG, CodeOf([&] { c.call(copy); }));
    EXPECT_EQ("abc", Text(copy));
  }
  EXPECT_EQ('\0', s.GetAt(3));
}

TEST(CStringA, FindReturnsIndexOrMinusOne) {
  CStringA s("abcabc");
  struct Case {
    char const* what;
    int got, want;
  } cases[] = {
      {"'c'", s.Find('c'), 2},
      {"'c' from 3", s.Find('c', 3), 5},
      {"'c' from 6", s.Find('c', 6), -1},
      {"'x'", s.Find('x'), -1},
      {"'a' from -1", s.Find('a', -1), -1},
      {"\"bc\"", s.Find("bc"), 1},
      {"\"bc\" from 2", s.Find("bc", 2), 4},
      {"\"cab\"", s.Find("cab"), 2},
      {"\"abcd\"", s.Find("abcd"), -1},
      {"\"\" from 6", s.Find("", 6), 6},
      {"\"\" from 7", s.Find("", 7), -1},
      {"'b' after a NUL", CStringA("a\0b", 3).Find('b'), 2},
      {"last 'b'", s.ReverseFind('b'), 4},
      {"last 'z'", s.ReverseFind('z'), -1},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(c.want, c.got);
  }
}

TEST(CStringA, MidLeftRightClampIntoTheString) {
  CStringA s("abcdef");
  struct Case {
    char const* what;
    CStringA got;
    char const* want;
  } cases[] = {
      {"Mid(1, 3)", s.Mid(1, 3), "bcd"},
      {"Mid(4, 10)", s.Mid(4, 10), "ef"},
      {"Mid(-2, 2)", s.Mid(-2, 2), "ab"},
      {"Mid(7, 1)", s.Mid(7, 1), ""},
      {"Mid(2, -1)", s.Mid(2, -1), ""},
      {"Mid(2)", s.Mid(2), "cdef"},
      {"Left(3)", s.Left(3), "abc"},
      {"Left(10)", s.Left(10), "abcdef"},
      {"Left(-1)", s.Left(-1), ""},
      {"Right(2)", s.Right(2), "ef"},
      {"Right(10)", s.Right(10), "abcdef"},
      {"Right(-1)", s.Right(-1), ""},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(c.want, Text(c.got));
  }
}

TEST(CStringA, FormatIsPrintfStyle) {
  CStringA s("old");
  s.Format("%d-%s-%02X-%c", 42, "x", 10, 'z');
  EXPECT_EQ("42-x-0A-z", Text(s));
  s.AppendFormat("/%u", 7u);
  EXPECT_EQ("42-x-0A-z/7", Text(s));
  s.Format("[%s]", s.GetString());  // arguments may be the string itself
  EXPECT_EQ("[42-x-0A-z/7]", Text(s));

  std::string big(5000, 'q');
  s.Format("%s!", big.c_str());
  EXPECT_EQ(big + "!", Text(s));
  s.Format("%s", "");
  EXPECT_TRUE(s.IsEmpty());
}

}  // namespace
