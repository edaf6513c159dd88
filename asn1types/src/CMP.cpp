// The status values of the certificate management protocol: PKIFreeText,
// PKIFailureInfo, PKIStatusInfo.
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/CMP.h>
#include <korvex/asn1types/CMPTraits.h>

#include <memory>

#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

// ---- CPKIFreeText ----

CPKIFreeText::CPKIFreeText(wchar_t const* text) { add(text); }

void CPKIFreeText::add(wchar_t const* text) {
  if (!text) throwInvalidArgument();
  push_back(text);
}

CBlob CPKIFreeText::encode() const { return asn1Encode<ASN1T_PKIFreeText_traits>(*this); }
void CPKIFreeText::decode(CBlob const& der) {
  detail::decodeWhole<ASN1T_PKIFreeText_traits>(der, *this);
}

// ---- CPKIFailureInfo ----

CPKIFailureInfo::CPKIFailureInfo() {}
CPKIFailureInfo::CPKIFailureInfo(unsigned int mask) : CNamedBits(mask) {}
CBlob CPKIFailureInfo::encode() const { return asn1Encode<ASN1T_PKIFailureInfo_traits>(*this); }
void CPKIFailureInfo::decode(CBlob const& der) {
  detail::decodeWhole<ASN1T_PKIFailureInfo_traits>(der, *this);
}
bool operator==(CPKIFailureInfo const& a, CPKIFailureInfo const& b) {
  return a.get_flags() == b.get_flags();
}
bool operator!=(CPKIFailureInfo const& a, CPKIFailureInfo const& b) { return !(a == b); }

// ---- CPKIStatusInfo ----

struct CPKIStatusInfo::Impl {
  int status = accepted;
  std::unique_ptr<CPKIFreeText> statusString;
  std::unique_ptr<CPKIFailureInfo> failInfo;

  Impl() = default;
  Impl(Impl const& other) : status(other.status) {
    copy_to_auto_ptr(statusString, other.statusString);
    copy_to_auto_ptr(failInfo, other.failInfo);
  }
};

CPKIStatusInfo::CPKIStatusInfo() : m_impl(new Impl) {}
CPKIStatusInfo::CPKIStatusInfo(int status) : m_impl(new Impl) { m_impl->status = status; }
CPKIStatusInfo::CPKIStatusInfo(CPKIStatusInfo const& other) : m_impl(new Impl(*other.m_impl)) {}
CPKIStatusInfo& CPKIStatusInfo::operator=(CPKIStatusInfo const& other) {
  detail::assignImpl(m_impl, other.m_impl);
  return *this;
}
CPKIStatusInfo::~CPKIStatusInfo() { delete m_impl; }

int CPKIStatusInfo::get_status() const { return m_impl->status; }
void CPKIStatusInfo::put_status(int status) { m_impl->status = status; }
CPKIFreeText const* CPKIStatusInfo::get_statusString() const { return m_impl->statusString.get(); }
void CPKIStatusInfo::put_statusString(CPKIFreeText const* text) {
  copy_to_auto_ptr(m_impl->statusString, text);
}
CPKIFailureInfo const* CPKIStatusInfo::get_failInfo() const { return m_impl->failInfo.get(); }
void CPKIStatusInfo::put_failInfo(CPKIFailureInfo const* failInfo) {
  copy_to_auto_ptr(m_impl->failInfo, failInfo);
}

CBlob CPKIStatusInfo::encode() const { return asn1Encode<ASN1T_PKIStatusInfo_traits>(*this); }
void CPKIStatusInfo::decode(CBlob const& der) {
  detail::decodeWhole<ASN1T_PKIStatusInfo_traits>(der, *this);
}

bool operator==(CPKIStatusInfo const& a, CPKIStatusInfo const& b) {
  return a.get_status() == b.get_status() &&
         detail::sameOptional(a.get_statusString(), b.get_statusString()) &&
         detail::sameOptional(a.get_failInfo(), b.get_failInfo());
}
bool operator!=(CPKIStatusInfo const& a, CPKIStatusInfo const& b) { return !(a == b); }

}  // namespace ASN1
}  // namespace Korvex
