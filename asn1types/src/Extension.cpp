// The generic extension, its list, and the typed values that hold no names:
// CRL reason, reason flags, key usage, private-key usage period.
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/Extension.h>
#include <korvex/asn1types/ExtensionTraits.h>

#include <cstring>
#include <memory>
#include <string>

#include "ContainerCodecs.h"
#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

// ---- CExtension ----

struct CExtension::Impl {
  std::string extnID;
  bool critical = false;
  CBlob extnValue;
};

CExtension::CExtension() : m_impl(new Impl) {}

CExtension::CExtension(char const* extnID, CBlob const& extnValue, bool critical)
    : m_impl(new Impl) {
  std::unique_ptr<Impl> guard(m_impl);
  m_impl->extnID = detail::requireText(extnID);
  m_impl->extnValue = extnValue;
  m_impl->critical = critical;
  guard.release();
}

CExtension::CExtension(CExtension const& other) : m_impl(new Impl(*other.m_impl)) {}

CExtension& CExtension::operator=(CExtension const& other) {
  detail::assignImpl(m_impl, other.m_impl);
  return *this;
}

CExtension::~CExtension() { delete m_impl; }

char const* CExtension::get_extnID() const { return m_impl->extnID.c_str(); }
void CExtension::put_extnID(char const* oid) { m_impl->extnID = detail::requireText(oid); }
bool CExtension::get_critical() const { return m_impl->critical; }
void CExtension::put_critical(bool critical) { m_impl->critical = critical; }
CBlob const& CExtension::get_extnValue() const { return m_impl->extnValue; }
void CExtension::put_extnValue(CBlob const& der) { m_impl->extnValue = der; }

CBlob CExtension::encode() const { return asn1Encode<containers::ExtensionCodec>(*this); }
void CExtension::decode(CBlob const& der) {
  detail::decodeWhole<containers::ExtensionCodec>(der, *this);
}

bool operator==(CExtension const& a, CExtension const& b) {
  return std::strcmp(a.get_extnID(), b.get_extnID()) == 0 && a.get_critical() == b.get_critical() &&
         a.get_extnValue() == b.get_extnValue();
}
bool operator!=(CExtension const& a, CExtension const& b) { return !(a == b); }

// ---- CExtensions ----

CExtensions::iterator CExtensions::find(char const* oid) {
  iterator it = begin();
  while (oid && it != end() && std::strcmp(it->get_extnID(), oid) != 0) ++it;
  return oid ? it : end();
}

CExtensions::const_iterator CExtensions::find(char const* oid) const {
  const_iterator it = begin();
  while (oid && it != end() && std::strcmp(it->get_extnID(), oid) != 0) ++it;
  return oid ? it : end();
}

CBlob CExtensions::encode() const { return asn1Encode<containers::ExtensionsCodec>(*this); }
void CExtensions::decode(CBlob const& der) {
  detail::decodeWhole<containers::ExtensionsCodec>(der, *this);
}

// ---- CrlReason ----

namespace {
bool isCrlReason(unsigned int reason) { return reason <= 10 && reason != 7; }
}  // namespace

struct CrlReason::Impl {
  unsigned int reason;
};

CrlReason::CrlReason() : m_impl(new Impl{unspecified}) {}

CrlReason::CrlReason(unsigned int reason) : m_impl(nullptr) {
  if (!isCrlReason(reason)) throwInvalidArgument();
  m_impl = new Impl{reason};
}

CrlReason::CrlReason(CrlReason const& other) : m_impl(new Impl(*other.m_impl)) {}
CrlReason& CrlReason::operator=(CrlReason const& other) {
  detail::assignImpl(m_impl, other.m_impl);
  return *this;
}
CrlReason::~CrlReason() { delete m_impl; }

unsigned int CrlReason::get_reason() const { return m_impl->reason; }
void CrlReason::put_reason(unsigned int reason) {
  if (!isCrlReason(reason)) throwInvalidArgument();
  m_impl->reason = reason;
}

CBlob CrlReason::encode() const { return asn1Encode<ASN1T_CRLReason_traits>(*this); }
void CrlReason::decode(CBlob const& der) {
  detail::decodeWhole<ASN1T_CRLReason_traits>(der, *this);
}

bool operator==(CrlReason const& a, CrlReason const& b) { return a.get_reason() == b.get_reason(); }
bool operator!=(CrlReason const& a, CrlReason const& b) { return !(a == b); }

// ---- CReasonFlags, CKeyUsage ----

CReasonFlags::CReasonFlags() {}
CReasonFlags::CReasonFlags(unsigned int mask) : CNamedBits(mask) {}
CBlob CReasonFlags::encode() const { return asn1Encode<ASN1T_ReasonFlags_traits>(*this); }
void CReasonFlags::decode(CBlob const& der) {
  detail::decodeWhole<ASN1T_ReasonFlags_traits>(der, *this);
}
bool operator==(CReasonFlags const& a, CReasonFlags const& b) {
  return a.get_flags() == b.get_flags();
}
bool operator!=(CReasonFlags const& a, CReasonFlags const& b) { return !(a == b); }

CKeyUsage::CKeyUsage() {}
CKeyUsage::CKeyUsage(unsigned int mask) : CNamedBits(mask) {}
CBlob CKeyUsage::encode() const { return asn1Encode<ASN1T_KeyUsage_traits>(*this); }
void CKeyUsage::decode(CBlob const& der) { detail::decodeWhole<ASN1T_KeyUsage_traits>(der, *this); }
bool operator==(CKeyUsage const& a, CKeyUsage const& b) { return a.get_flags() == b.get_flags(); }
bool operator!=(CKeyUsage const& a, CKeyUsage const& b) { return !(a == b); }

// ---- CExtPrivateKeyUsagePeriod ----

struct CExtPrivateKeyUsagePeriod::Impl {
  std::unique_ptr<CDateTime> notBefore;
  std::unique_ptr<CDateTime> notAfter;

  Impl() = default;
  Impl(Impl const& other) {
    copy_to_auto_ptr(notBefore, other.notBefore);
    copy_to_auto_ptr(notAfter, other.notAfter);
  }
};

CExtPrivateKeyUsagePeriod::CExtPrivateKeyUsagePeriod() : m_impl(new Impl) {}

CExtPrivateKeyUsagePeriod::CExtPrivateKeyUsagePeriod(CDateTime const* notBefore,
                                                     CDateTime const* notAfter)
    : m_impl(new Impl) {
  std::unique_ptr<Impl> guard(m_impl);
  copy_to_auto_ptr(m_impl->notBefore, notBefore);
  copy_to_auto_ptr(m_impl->notAfter, notAfter);
  guard.release();
}

CExtPrivateKeyUsagePeriod::CExtPrivateKeyUsagePeriod(CExtPrivateKeyUsagePeriod const& other)
    : m_impl(new Impl(*other.m_impl)) {}

CExtPrivateKeyUsagePeriod& CExtPrivateKeyUsagePeriod::operator=(
    CExtPrivateKeyUsagePeriod const& other) {
  detail::assignImpl(m_impl, other.m_impl);
  return *this;
}

CExtPrivateKeyUsagePeriod::~CExtPrivateKeyUsagePeriod() { delete m_impl; }

CDateTime const* CExtPrivateKeyUsagePeriod::get_notBefore() const {
  return m_impl->notBefore.get();
}
void CExtPrivateKeyUsagePeriod::put_notBefore(CDateTime const* time) {
  copy_to_auto_ptr(m_impl->notBefore, time);
}
CDateTime const* CExtPrivateKeyUsagePeriod::get_notAfter() const { return m_impl->notAfter.get(); }
void CExtPrivateKeyUsagePeriod::put_notAfter(CDateTime const* time) {
  copy_to_auto_ptr(m_impl->notAfter, time);
}

CBlob CExtPrivateKeyUsagePeriod::encode() const {
  return asn1Encode<ASN1T_PrivateKeyUsagePeriod_traits>(*this);
}
void CExtPrivateKeyUsagePeriod::decode(CBlob const& der) {
  detail::decodeWhole<ASN1T_PrivateKeyUsagePeriod_traits>(der, *this);
}

bool operator==(CExtPrivateKeyUsagePeriod const& a, CExtPrivateKeyUsagePeriod const& b) {
  return detail::sameOptional(a.get_notBefore(), b.get_notBefore()) &&
         detail::sameOptional(a.get_notAfter(), b.get_notAfter());
}
bool operator!=(CExtPrivateKeyUsagePeriod const& a, CExtPrivateKeyUsagePeriod const& b) {
  return !(a == b);
}

}  // namespace ASN1
}  // namespace Korvex
