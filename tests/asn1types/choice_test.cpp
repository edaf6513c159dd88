// The CHOICE machinery (handlers, Choice, put_value) and copy_to_auto_ptr.
#include <gtest/gtest.h>
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/Choice.h>
#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>

#include <list>
#include <memory>
#include <stdexcept>
#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::CDateTime;
using namespace Korvex::ASN1;
using typestest::ThrownCode;

namespace {

// A value that counts its live instances and can refuse to be copied.
struct Tracked {
  static inline int live = 0;
  static inline bool failCopy = false;
  int id;
  explicit Tracked(int i = 0) : id(i) { ++live; }
  Tracked(Tracked const& o) : id(o.id) {
    if (failCopy) throw std::runtime_error("copy refused");
    ++live;
  }
  Tracked& operator=(Tracked const& o) {
    id = o.id;
    return *this;
  }
  ~Tracked() { --live; }
};

// Alternatives as an implementation class of a value class would list them,
// with the same shape as a general name: text, bytes, a counted value.
class TestChoiceImpl : public Choice {
 public:
  ChoiceValueTraits const* findTraits(unsigned int n) const override {
    return selectChoiceTraits<ChoiceValueTraitsT<std::wstring, 2>, ChoiceValueTraitsT<CBlob, 5>,
                              ChoiceValueTraitsT<Tracked, 7>>(n);
  }
};

// An implementation that has no handler for 9 at all.
class HolesImpl : public TestChoiceImpl {
 public:
  ChoiceValueTraits const* findTraits(unsigned int n) const override {
    return n == 9 ? nullptr : TestChoiceImpl::findTraits(n);
  }
};

class ChoiceTest : public testing::Test {
 protected:
  void TearDown() override {
    Tracked::failCopy = false;
    EXPECT_EQ(Tracked::live, 0);
  }
};

TEST_F(ChoiceTest, HandlersMatchTheirAlternative) {
  auto const& blob5 = ChoiceValueTraitsT<CBlob, 5>::instance();
  EXPECT_TRUE(blob5.isType(5));
  EXPECT_FALSE(blob5.isType(0));
  EXPECT_FALSE(blob5.isType(6));
  // One instance per (T, N).
  EXPECT_EQ(&blob5, &(ChoiceValueTraitsT<CBlob, 5>::instance()));
  EXPECT_NE(static_cast<ChoiceValueTraits const*>(&blob5),
            static_cast<ChoiceValueTraits const*>(&ChoiceValueTraitsT<CBlob, 6>::instance()));

  CBlob original = typestest::Blob("01 02");
  void* copy = blob5.newValue(&original);
  EXPECT_EQ(*static_cast<CBlob*>(copy), original);
  CBlob other = typestest::Blob("03");
  blob5.copyValue(copy, &other);
  EXPECT_EQ(*static_cast<CBlob*>(copy), other);
  blob5.deleteValue(copy);
  blob5.deleteValue(nullptr);

  auto const& none = ChoiceNoneTraits::instance();
  EXPECT_TRUE(none.isType(0));
  EXPECT_FALSE(none.isType(1));
  void* word = reinterpret_cast<void*>(0x1234);
  void* cell = none.newValue(&word);
  EXPECT_EQ(*static_cast<void**>(cell), word);
  void* zero = nullptr;
  none.copyValue(cell, &zero);
  EXPECT_EQ(*static_cast<void**>(cell), nullptr);
  none.deleteValue(cell);
  void* empty = none.newValue(nullptr);
  EXPECT_EQ(*static_cast<void**>(empty), nullptr);
  none.deleteValue(empty);
}

TEST_F(ChoiceTest, SelectFallsBackToNone) {
  TestChoiceImpl impl;
  EXPECT_EQ(impl.findTraits(2), &(ChoiceValueTraitsT<std::wstring, 2>::instance()));
  EXPECT_EQ(impl.findTraits(7), &(ChoiceValueTraitsT<Tracked, 7>::instance()));
  for (unsigned n : {0u, 1u, 3u, 6u, 8u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(n);
    EXPECT_EQ(impl.findTraits(n), &ChoiceNoneTraits::instance());
  }
}

TEST_F(ChoiceTest, PutValueSelectsAndReplaces) {
  TestChoiceImpl impl;
  EXPECT_EQ(impl.get_type(), 0u);
  EXPECT_EQ(impl.get_value(), nullptr);

  std::wstring name = L"host.example";
  impl.put_value(2, &name);
  EXPECT_EQ(impl.get_type(), 2u);
  ASSERT_NE(impl.get_as<std::wstring>(2), nullptr);
  EXPECT_EQ(*impl.get_as<std::wstring>(2), name);
  EXPECT_NE(impl.get_as<std::wstring>(2), &name);  // a copy is held
  EXPECT_EQ(impl.get_as<CBlob>(5), nullptr);

  Tracked t(42);
  impl.put_value(7, &t);
  EXPECT_EQ(Tracked::live, 2);
  EXPECT_EQ(impl.get_as<Tracked>(7)->id, 42);
  EXPECT_EQ(impl.get_as<std::wstring>(2), nullptr);

  // Replacing the value by one taken from itself.
  impl.put_value(7, impl.get_value());
  EXPECT_EQ(Tracked::live, 2);
  EXPECT_EQ(impl.get_as<Tracked>(7)->id, 42);

  CBlob bytes = typestest::Blob("0A");
  impl.put_value(5, &bytes);
  EXPECT_EQ(Tracked::live, 1);  // the held Tracked was deleted
  EXPECT_EQ(*impl.get_as<CBlob>(5), bytes);
}

TEST_F(ChoiceTest, UnknownAlternativeSelectsNone) {
  TestChoiceImpl impl;
  Tracked t(1);
  impl.put_value(7, &t);
  void* word = nullptr;
  impl.put_value(4, &word);
  // The number is reported, every typed getter reports absence.
  EXPECT_EQ(impl.get_type(), 4u);
  EXPECT_EQ(impl.get_as<std::wstring>(2), nullptr);
  EXPECT_EQ(impl.get_as<CBlob>(5), nullptr);
  EXPECT_EQ(impl.get_as<Tracked>(7), nullptr);
  EXPECT_EQ(Tracked::live, 1);
}

TEST_F(ChoiceTest, PutValueRefusalsChangeNothing) {
  HolesImpl impl;
  Tracked t(3);
  impl.put_value(7, &t);
  Tracked other(4);
  EXPECT_EQ(ThrownCode([&] { impl.put_value(9, &other); }), 0x80070057u);
  EXPECT_EQ(ThrownCode([&] { impl.put_value(2, nullptr); }), 0x80070057u);
  EXPECT_EQ(impl.get_type(), 7u);
  EXPECT_EQ(impl.get_as<Tracked>(7)->id, 3);

  // A copy that throws leaves the old selection and value.
  Tracked::failCopy = true;
  EXPECT_THROW(impl.put_value(7, &other), std::runtime_error);
  Tracked::failCopy = false;
  EXPECT_EQ(impl.get_as<Tracked>(7)->id, 3);
  EXPECT_EQ(Tracked::live, 3);
}

TEST_F(ChoiceTest, CopiesAreDeep) {
  TestChoiceImpl a;
  Tracked t(5);
  a.put_value(7, &t);
  TestChoiceImpl b(a);
  EXPECT_EQ(Tracked::live, 3);
  EXPECT_NE(b.get_as<Tracked>(7), a.get_as<Tracked>(7));
  EXPECT_EQ(b.get_as<Tracked>(7)->id, 5);

  TestChoiceImpl c;
  std::wstring text = L"x";
  c.put_value(2, &text);
  c = a;  // another alternative: the old value goes, a copy comes
  EXPECT_EQ(c.get_type(), 7u);
  EXPECT_EQ(Tracked::live, 4);
  Tracked u(6);
  b.put_value(7, &u);
  c = b;  // the same alternative: assigned in place
  EXPECT_EQ(c.get_as<Tracked>(7)->id, 6);
  EXPECT_EQ(Tracked::live, 5);
  TestChoiceImpl const& self = c;
  c = self;
  EXPECT_EQ(c.get_as<Tracked>(7)->id, 6);

  TestChoiceImpl empty;
  c = empty;
  EXPECT_EQ(c.get_type(), 0u);
  EXPECT_EQ(c.get_value(), nullptr);
  EXPECT_EQ(Tracked::live, 4);
  TestChoiceImpl emptyCopy(empty);
  EXPECT_EQ(emptyCopy.get_value(), nullptr);
}

TEST_F(ChoiceTest, ResetAndDestructionFreeTheValue) {
  {
    TestChoiceImpl impl;
    Tracked t(1);
    impl.put_value(7, &t);
    EXPECT_EQ(Tracked::live, 2);
    impl.reset();
    EXPECT_EQ(Tracked::live, 1);
    EXPECT_EQ(impl.get_type(), 0u);
    impl.reset();  // twice is harmless
    impl.put_value(7, &t);
  }
  EXPECT_EQ(Tracked::live, 0);
  // Through the base pointer, as a value class deletes its implementation.
  std::unique_ptr<Choice> owned(new TestChoiceImpl);
  CDateTime when(2030, 1, 1, 0, 0, 0, 0, 0);
  class TimeImpl : public Choice {
   public:
    ChoiceValueTraits const* findTraits(unsigned int n) const override {
      return selectChoiceTraits<ChoiceValueTraitsT<CDateTime, 1>, ChoiceValueTraitsT<CDateTime, 2>>(
          n);
    }
  };
  owned.reset(new TimeImpl);
  owned->put_value(1, &when);
  EXPECT_TRUE(*owned->get_as<CDateTime>(1) == when);
  owned->put_value(2, &when);
  EXPECT_EQ(owned->get_as<CDateTime>(1), nullptr);
  owned.reset();
}

// ---- copy_to_auto_ptr -------------------------------------------------------------

TEST(CopyToAutoPtrTest, CopiesReplacesAndClears) {
  std::unique_ptr<CBlob> dst;
  CBlob src = typestest::Blob("01 02");
  copy_to_auto_ptr(dst, &src);
  ASSERT_NE(dst, nullptr);
  EXPECT_NE(dst.get(), &src);
  EXPECT_EQ(*dst, src);

  CBlob* held = dst.get();
  copy_to_auto_ptr(dst, static_cast<CBlob const*>(held));  // itself: nothing changes
  EXPECT_EQ(dst.get(), held);

  CBlob next = typestest::Blob("03");
  copy_to_auto_ptr(dst, &next);
  EXPECT_EQ(*dst, next);

  copy_to_auto_ptr(dst, static_cast<CBlob const*>(nullptr));
  EXPECT_EQ(dst, nullptr);
  copy_to_auto_ptr(dst, static_cast<CBlob const*>(nullptr));
  EXPECT_EQ(dst, nullptr);
}

TEST(CopyToAutoPtrTest, ListsAndOwnersAndFailures) {
  std::list<Tracked> list{Tracked(1), Tracked(2), Tracked(3)};
  std::unique_ptr<std::list<Tracked>> dst;
  copy_to_auto_ptr(dst, &list);
  ASSERT_EQ(dst->size(), 3u);
  EXPECT_EQ(dst->back().id, 3);
  EXPECT_EQ(Tracked::live, 6);

  std::unique_ptr<std::list<Tracked>> other;
  copy_to_auto_ptr(other, dst);
  EXPECT_EQ(Tracked::live, 9);
  EXPECT_NE(other.get(), dst.get());

  // A copy that fails part-way: nothing of it stays, dst is unchanged.
  std::list<Tracked>* before = dst.get();
  std::list<Tracked> longer{Tracked(7), Tracked(8)};
  Tracked::failCopy = true;
  EXPECT_THROW(copy_to_auto_ptr(dst, &longer), std::runtime_error);
  Tracked::failCopy = false;
  EXPECT_EQ(dst.get(), before);
  EXPECT_EQ(dst->size(), 3u);
  EXPECT_EQ(Tracked::live, 11);
  dst.reset();
  other.reset();
  list.clear();
  longer.clear();
  EXPECT_EQ(Tracked::live, 0);
}

}  // namespace
