// CDateTimeSpan: construction and the fixed-length unit constants.
#include <korvex/core/DateTime.h>

#include "DateTimeTicks.h"

namespace Korvex {

CDateTimeSpan::CDateTimeSpan() : m_highPart(0), m_lowPart(0) {}

CDateTimeSpan::CDateTimeSpan(unsigned int seconds, unsigned int microseconds) {
  DateTimeTicks::set(*this, static_cast<uint64_t>(seconds) * kTicksPerSecond +
                                static_cast<unsigned int>(microseconds * 10u));
}

CDateTimeSpan::CDateTimeSpan(CDateTimeSpan const& other)
    : m_highPart(other.m_highPart), m_lowPart(other.m_lowPart) {}

CDateTimeSpan& CDateTimeSpan::operator=(CDateTimeSpan const& other) {
  CDateTimeSpan copy(other);
  swap(copy);
  return *this;
}

void CDateTimeSpan::swap(CDateTimeSpan& other) {
  const unsigned int high = m_highPart;
  const unsigned int low = m_lowPart;
  m_highPart = other.m_highPart;
  m_lowPart = other.m_lowPart;
  other.m_highPart = high;
  other.m_lowPart = low;
}

unsigned int CDateTimeSpan::getLowPart() { return m_lowPart; }
unsigned int CDateTimeSpan::getHighPart() { return m_highPart; }

namespace {
// Built by the library's static initialisers and only read afterwards.
const CDateTimeSpan kOneYear(31536000u, 0u);  // 365 days
const CDateTimeSpan kOneMonth(2592000u, 0u);  // 30 days
const CDateTimeSpan kOneDay(86400u, 0u);
const CDateTimeSpan kOneHour(3600u, 0u);
const CDateTimeSpan kOneMinute(60u, 0u);
const CDateTimeSpan kOneSecond(1u, 0u);
const CDateTimeSpan kOneMillisecond(0u, 1000u);
}  // namespace

CDateTimeSpan const& CDateTimeSpan::OneYear() { return kOneYear; }
CDateTimeSpan const& CDateTimeSpan::OneMonth() { return kOneMonth; }
CDateTimeSpan const& CDateTimeSpan::OneDay() { return kOneDay; }
CDateTimeSpan const& CDateTimeSpan::OneHour() { return kOneHour; }
CDateTimeSpan const& CDateTimeSpan::OneMinute() { return kOneMinute; }
CDateTimeSpan const& CDateTimeSpan::OneSecond() { return kOneSecond; }
CDateTimeSpan const& CDateTimeSpan::OneMillisecond() { return kOneMillisecond; }

}  // namespace Korvex
