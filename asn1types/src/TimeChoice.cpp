// TimeChoice.cpp: CTimeChoiceImpl, CTimeChoice and GetASN1CTimeString.
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/TimeChoice.h>
#include <korvex/asn1types/TimeChoiceTraits.h>

#include <vector>

namespace Korvex {
namespace ASN1 {

namespace {

// RFC 5280 4.1.2.5: UTCTime through 2049, GeneralizedTime from 2050 on.
constexpr unsigned int kFirstGeneralizedTimeYear = 2050;

unsigned int AlternativeOf(CDateTime const& t) {
  return t.year() < kFirstGeneralizedTimeYear ? CTimeChoiceImpl::utcTime
                                              : CTimeChoiceImpl::generalTime;
}

}  // namespace

// ---- CTimeChoiceImpl ---------------------------------------------------------------

CTimeChoiceImpl::CTimeChoiceImpl() {}
CTimeChoiceImpl::CTimeChoiceImpl(CTimeChoiceImpl const& other) : Choice(other) {}
CTimeChoiceImpl& CTimeChoiceImpl::operator=(CTimeChoiceImpl const& other) {
  Choice::operator=(other);
  return *this;
}
CTimeChoiceImpl::~CTimeChoiceImpl() {}

ChoiceValueTraits const* CTimeChoiceImpl::findTraits(unsigned int n) const {
  return selectChoiceTraits<ChoiceValueTraitsT<CDateTime, utcTime>,
                            ChoiceValueTraitsT<CDateTime, generalTime>>(n);
}

// ---- CTimeChoice -------------------------------------------------------------------

CTimeChoice::CTimeChoice() : m_impl(new CTimeChoiceImpl) { put_time(CDateTime(0, 0)); }

CTimeChoice::CTimeChoice(CDateTime const& t) : m_impl(new CTimeChoiceImpl) { put_time(t); }

CTimeChoice::CTimeChoice(CTimeChoice const& other)
    : m_impl(other.m_impl ? new CTimeChoiceImpl(*other.m_impl) : nullptr) {}

CTimeChoice& CTimeChoice::operator=(CTimeChoice const& other) {
  if (this != &other) {
    m_impl.reset(other.m_impl ? new CTimeChoiceImpl(*other.m_impl) : nullptr);
  }
  return *this;
}

CTimeChoice::~CTimeChoice() {}

unsigned int CTimeChoice::get_type() const { return m_impl ? m_impl->get_type() : 0; }

CDateTime const* CTimeChoice::get_time() const {
  if (!m_impl) return nullptr;
  unsigned int type = m_impl->get_type();
  if (type != CTimeChoiceImpl::utcTime && type != CTimeChoiceImpl::generalTime) return nullptr;
  return m_impl->get_as<CDateTime>(type);
}

void CTimeChoice::put_time(CDateTime const& t) {
  if (!m_impl) m_impl.reset(new CTimeChoiceImpl);
  m_impl->put_value(AlternativeOf(t), &t);
}

void CTimeChoice::clear() { m_impl.reset(); }

CBlob CTimeChoice::encode() const { return asn1Encode<ASN1T_Time_traits>(*this); }

void CTimeChoice::decode(CBlob const& der) {
  CTimeChoice decoded;
  asn1Decode<ASN1T_Time_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(CTimeChoice const& left, CTimeChoice const& right) {
  if (left.get_type() != right.get_type()) return false;
  CDateTime const* l = left.get_time();
  CDateTime const* r = right.get_time();
  if (!l || !r) return !l && !r;
  return *l == *r;
}

bool operator!=(CTimeChoice const& left, CTimeChoice const& right) { return !(left == right); }

// ---- GetASN1CTimeString ------------------------------------------------------------

std::string GetASN1CTimeString(CDateTime const& t, ASN1CTime& timeObject) {
  timeObject.clear();
  // Year, month and day first: the object writes its text once all three are
  // known, and checks each later field against them.
  if (timeObject.setYear(static_cast<int>(t.year())) != 0 ||
      timeObject.setMonth(static_cast<int>(t.month())) != 0 ||
      timeObject.setDay(static_cast<int>(t.day())) != 0 ||
      timeObject.setHour(static_cast<int>(t.hour())) != 0 ||
      timeObject.setMinute(static_cast<int>(t.minute())) != 0 ||
      timeObject.setSecond(static_cast<int>(t.second())) != 0) {
    throwCodecError();
  }
  std::vector<char> text(timeObject.getTimeStringLen() + 1, '\0');
  if (!timeObject.getTimeString(text.data(), text.size())) throwCodecError();
  return std::string(text.data());
}

}  // namespace ASN1
}  // namespace Korvex
