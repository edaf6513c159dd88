// korvex/asn1types/Choice.h: the run-time-typed holder behind every CHOICE
// value class.
//
// A CHOICE value class (CGeneralName, COtherHash, CTimeChoice ...) owns one
// implementation object derived from Choice. The implementation holds the
// number of the selected alternative (the T_<alternative> selector of the
// generated record, counted from 1; 0 = none) and one owned heap value of that
// alternative's C++ type. A ChoiceValueTraits handler per alternative knows how
// to copy and delete that value; the implementation class maps numbers to
// handlers in findTraits, falling back to the no-alternative handler for every
// number it does not know, so no number is ever without a handler:
//
//   class CTimeChoiceImpl : public Choice {
//    public:
//     ChoiceValueTraits const* findTraits(unsigned int n) const override {
//       return selectChoiceTraits<ChoiceValueTraitsT<CDateTime, 1>,
//                                 ChoiceValueTraitsT<CDateTime, 2>>(n);
//     }
//   };
//
// The value class's typed setters call put_value(N, &local) and its typed
// getters get_as<T>(N). Copying an implementation object (its copy constructor
// or assignment) copies the held value deeply through the handler.
#ifndef KORVEX_ASN1TYPES_CHOICE_H
#define KORVEX_ASN1TYPES_CHOICE_H

#include <korvex/platform/export.h>

#include <new>

namespace Korvex {
namespace ASN1 {

// ChoiceValueTraits: the handler of one alternative. Virtual operations in
// this order: destructor, isType, deleteValue, newValue, copyValue.
class KORVEX_API ChoiceValueTraits {
 public:
  virtual ~ChoiceValueTraits();
  // isType: whether this is the handler of alternative n.
  virtual bool isType(unsigned int n) const = 0;
  // deleteValue: deletes a value made by newValue (null does nothing).
  virtual void deleteValue(void* value) const = 0;
  // newValue: a new heap value copy-constructed from *value; the caller owns
  // it. Exceptions of the copy pass through, nothing is left allocated.
  virtual void* newValue(void const* value) const = 0;
  // copyValue: assigns *src to *dst (both made by this handler).
  virtual void copyValue(void* dst, void const* src) const = 0;

 protected:
  constexpr ChoiceValueTraits() = default;
  ChoiceValueTraits(ChoiceValueTraits const&) = delete;
  ChoiceValueTraits& operator=(ChoiceValueTraits const&) = delete;
};

namespace detail {
// Static storage for a handler that is built on first use and never
// destroyed, so that values destroyed at exit can still reach their handler.
template <class Handler>
Handler const& choiceHandlerInstance() {
  alignas(Handler) static unsigned char storage[sizeof(Handler)];
  static Handler const* const instance = new (storage) Handler();
  return *instance;
}
}  // namespace detail

// ChoiceValueTraitsT<T, N>: the handler of alternative N holding a T (T must
// be copy-constructible and assignable). One instance per (T, N), reached
// through instance().
template <class T, unsigned int N>
class KORVEX_API ChoiceValueTraitsT : public ChoiceValueTraits {
 public:
  typedef T value_type;
  static constexpr unsigned int kAlternative = N;

  static ChoiceValueTraitsT const& instance() {
    return detail::choiceHandlerInstance<ChoiceValueTraitsT>();
  }

  bool isType(unsigned int n) const override { return n == N; }
  void deleteValue(void* value) const override { delete static_cast<T*>(value); }
  void* newValue(void const* value) const override { return new T(*static_cast<T const*>(value)); }
  void copyValue(void* dst, void const* src) const override {
    *static_cast<T*>(dst) = *static_cast<T const*>(src);
  }

 private:
  template <class Handler>
  friend Handler const& detail::choiceHandlerInstance();
  ChoiceValueTraitsT() = default;
};

// ChoiceValueTraitsT<void*, 0>: the no-alternative handler. Its value is a
// heap cell holding one pointer-sized word (null when made from a null value);
// nothing reads the word.
template <>
class KORVEX_API ChoiceValueTraitsT<void*, 0> : public ChoiceValueTraits {
 public:
  typedef void* value_type;
  static constexpr unsigned int kAlternative = 0;

  static ChoiceValueTraitsT const& instance() {
    return detail::choiceHandlerInstance<ChoiceValueTraitsT>();
  }

  bool isType(unsigned int n) const override { return n == 0; }
  void deleteValue(void* value) const override { delete static_cast<void**>(value); }
  void* newValue(void const* value) const override {
    return new void*(value ? *static_cast<void* const*>(value) : nullptr);
  }
  void copyValue(void* dst, void const* src) const override {
    if (dst && src) *static_cast<void**>(dst) = *static_cast<void* const*>(src);
  }

 private:
  template <class Handler>
  friend Handler const& detail::choiceHandlerInstance();
  ChoiceValueTraitsT() = default;
};

typedef ChoiceValueTraitsT<void*, 0> ChoiceNoneTraits;

// selectChoiceTraits<Handlers...>(n): the first of the handlers whose isType(n)
// holds, else the no-alternative handler. The body of a typical findTraits.
template <class... Handlers>
ChoiceValueTraits const* selectChoiceTraits(unsigned int n) {
  ChoiceValueTraits const* found = nullptr;
  // Left to right; || stops at the first match.
  (void)((found = Handlers::instance().isType(n) ? &Handlers::instance() : nullptr) || ...);
  return found ? found : &ChoiceNoneTraits::instance();
}

// Choice: the abstract base of every CHOICE implementation class. It holds the
// selected alternative (0 = none) and the owned value made by that
// alternative's handler.
class KORVEX_API Choice {
 public:
  // ~Choice deletes the held value through its handler.
  virtual ~Choice();
  // findTraits: the handler of alternative n; implementations fall back to
  // ChoiceNoneTraits for numbers they do not know (a null answer is refused
  // by put_value).
  virtual ChoiceValueTraits const* findTraits(unsigned int n) const = 0;

  // get_type: the selected alternative, also when its handler is the
  // no-alternative one (an unknown number put through put_value).
  unsigned int get_type() const { return m_selected; }
  // get_value: the held value (null when none is held).
  void const* get_value() const { return m_value; }
  // get_as<T>(n): the held value as a T when alternative n is selected, else
  // null. The typed getters of the value classes.
  template <class T>
  T const* get_as(unsigned int n) const {
    return m_selected == n ? static_cast<T const*>(m_value) : nullptr;
  }

  // put_value selects alternative n holding a copy of *value:
  //  1. the handlers of the current and of the new alternative are looked up;
  //  2. a null handler, or a null value, throws 0x80070057 and changes nothing;
  //  3. the new handler copies *value, then the current handler deletes the
  //     held value, and n becomes the selection. The copy is made first, so a
  //     copy that throws leaves the old selection and value in place.
  void put_value(unsigned int n, void const* value);

  // reset: back to no alternative (0) and no value.
  void reset();

 protected:
  // A new implementation selects 0 with no value, under the no-alternative
  // handler; its value class then puts its default alternative.
  Choice();
  // Deep copies: the other's value is copied through its handler.
  Choice(Choice const& other);
  Choice& operator=(Choice const& other);

 private:
  unsigned int m_selected;
  void* m_value;
  // The handler of m_selected as found when it was selected: the destructor
  // cannot call findTraits (the derived object is gone by then).
  ChoiceValueTraits const* m_traits;
};

}  // namespace ASN1
}  // namespace Korvex

#endif
