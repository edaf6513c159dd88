// Choice.cpp: the CHOICE holder and the handler base.
#include <korvex/asn1types/Choice.h>
#include <korvex/asn1types/ErrorCodes.h>

namespace Korvex {
namespace ASN1 {

ChoiceValueTraits::~ChoiceValueTraits() {}

Choice::Choice() : m_selected(0), m_value(nullptr), m_traits(&ChoiceNoneTraits::instance()) {}

Choice::Choice(Choice const& other)
    : m_selected(other.m_selected),
      m_value(other.m_value ? other.m_traits->newValue(other.m_value) : nullptr),
      m_traits(other.m_traits) {}

Choice& Choice::operator=(Choice const& other) {
  if (this == &other) return *this;
  if (m_traits == other.m_traits && m_value && other.m_value) {
    // Same alternative type: assign in place, no allocation.
    m_traits->copyValue(m_value, other.m_value);
    m_selected = other.m_selected;
    return *this;
  }
  void* copy = other.m_value ? other.m_traits->newValue(other.m_value) : nullptr;
  m_traits->deleteValue(m_value);
  m_value = copy;
  m_traits = other.m_traits;
  m_selected = other.m_selected;
  return *this;
}

Choice::~Choice() { m_traits->deleteValue(m_value); }

void Choice::put_value(unsigned int n, void const* value) {
  ChoiceValueTraits const* current = m_traits;
  ChoiceValueTraits const* next = findTraits(n);
  if (!next || !value) throwInvalidArgument();
  void* copy = next->newValue(value);
  current->deleteValue(m_value);
  m_value = copy;
  m_traits = next;
  m_selected = n;
}

void Choice::reset() {
  m_traits->deleteValue(m_value);
  m_value = nullptr;
  m_traits = &ChoiceNoneTraits::instance();
  m_selected = 0;
}

}  // namespace ASN1
}  // namespace Korvex
