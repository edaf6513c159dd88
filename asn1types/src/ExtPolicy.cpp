// Certificate policies: PolicyQualifierInfo, PolicyInformation and their
// list, with their traits.
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/Extension.h>
#include <korvex/asn1types/ExtensionTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>

#include <cstring>
#include <memory>
#include <string>

#include "ContainerCodecs.h"
#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

// ---- CPolicyQualifierInfo ----

struct CPolicyQualifierInfo::Impl {
  std::string policyQualifierId;
  CBlob qualifier;
};

CPolicyQualifierInfo::CPolicyQualifierInfo() : m_impl(new Impl) {}
CPolicyQualifierInfo::CPolicyQualifierInfo(char const* policyQualifierId, CBlob const& qualifier)
    : m_impl(new Impl) {
  std::unique_ptr<Impl> guard(m_impl);
  m_impl->policyQualifierId = detail::requireText(policyQualifierId);
  m_impl->qualifier = qualifier;
  guard.release();
}
CPolicyQualifierInfo::CPolicyQualifierInfo(CPolicyQualifierInfo const& other)
    : m_impl(new Impl(*other.m_impl)) {}
CPolicyQualifierInfo& CPolicyQualifierInfo::operator=(CPolicyQualifierInfo const& other) {
  detail::assignImpl(m_impl, other.m_impl);
  return *this;
}
CPolicyQualifierInfo::~CPolicyQualifierInfo() { delete m_impl; }

char const* CPolicyQualifierInfo::get_policyQualifierId() const {
  return m_impl->policyQualifierId.c_str();
}
void CPolicyQualifierInfo::put_policyQualifierId(char const* oid) {
  m_impl->policyQualifierId = detail::requireText(oid);
}
CBlob const& CPolicyQualifierInfo::get_qualifier() const { return m_impl->qualifier; }
void CPolicyQualifierInfo::put_qualifier(CBlob const& der) { m_impl->qualifier = der; }

CBlob CPolicyQualifierInfo::encode() const {
  return asn1Encode<containers::PolicyQualifierInfoCodec>(*this);
}
void CPolicyQualifierInfo::decode(CBlob const& der) {
  detail::decodeWhole<containers::PolicyQualifierInfoCodec>(der, *this);
}

bool operator==(CPolicyQualifierInfo const& a, CPolicyQualifierInfo const& b) {
  return std::strcmp(a.get_policyQualifierId(), b.get_policyQualifierId()) == 0 &&
         a.get_qualifier() == b.get_qualifier();
}
bool operator!=(CPolicyQualifierInfo const& a, CPolicyQualifierInfo const& b) { return !(a == b); }

// ---- CPolicyInformation ----

struct CPolicyInformation::Impl {
  std::string policyIdentifier;
  std::unique_ptr<CPolicyQualifierInfoList> policyQualifiers;

  Impl() = default;
  Impl(Impl const& other) : policyIdentifier(other.policyIdentifier) {
    copy_to_auto_ptr(policyQualifiers, other.policyQualifiers);
  }
};

CPolicyInformation::CPolicyInformation() : m_impl(new Impl) {}
CPolicyInformation::CPolicyInformation(char const* policyIdentifier) : m_impl(new Impl) {
  std::unique_ptr<Impl> guard(m_impl);
  m_impl->policyIdentifier = detail::requireText(policyIdentifier);
  guard.release();
}
CPolicyInformation::CPolicyInformation(CPolicyInformation const& other)
    : m_impl(new Impl(*other.m_impl)) {}
CPolicyInformation& CPolicyInformation::operator=(CPolicyInformation const& other) {
  detail::assignImpl(m_impl, other.m_impl);
  return *this;
}
CPolicyInformation::~CPolicyInformation() { delete m_impl; }

char const* CPolicyInformation::get_policyIdentifier() const {
  return m_impl->policyIdentifier.c_str();
}
void CPolicyInformation::put_policyIdentifier(char const* oid) {
  m_impl->policyIdentifier = detail::requireText(oid);
}
CPolicyQualifierInfoList const* CPolicyInformation::get_policyQualifiers() const {
  return m_impl->policyQualifiers.get();
}
void CPolicyInformation::put_policyQualifiers(CPolicyQualifierInfoList const* qualifiers) {
  copy_to_auto_ptr(m_impl->policyQualifiers, qualifiers);
}

CBlob CPolicyInformation::encode() const {
  return asn1Encode<containers::PolicyInformationCodec>(*this);
}
void CPolicyInformation::decode(CBlob const& der) {
  detail::decodeWhole<containers::PolicyInformationCodec>(der, *this);
}

bool operator==(CPolicyInformation const& a, CPolicyInformation const& b) {
  return std::strcmp(a.get_policyIdentifier(), b.get_policyIdentifier()) == 0 &&
         detail::sameOptional(a.get_policyQualifiers(), b.get_policyQualifiers());
}
bool operator!=(CPolicyInformation const& a, CPolicyInformation const& b) { return !(a == b); }

// ---- CPolicyInformationList ----

CPolicyInformationList::iterator CPolicyInformationList::find(char const* oid) {
  if (!oid) return end();
  iterator it = begin();
  while (it != end() && std::strcmp(it->get_policyIdentifier(), oid) != 0) ++it;
  return it;
}

CPolicyInformationList::const_iterator CPolicyInformationList::find(char const* oid) const {
  if (!oid) return end();
  const_iterator it = begin();
  while (it != end() && std::strcmp(it->get_policyIdentifier(), oid) != 0) ++it;
  return it;
}

CBlob CPolicyInformationList::encode() const {
  return asn1Encode<containers::CertificatePoliciesCodec>(*this);
}
void CPolicyInformationList::decode(CBlob const& der) {
  detail::decodeWhole<containers::CertificatePoliciesCodec>(der, *this);
}

// ---- traits ----

namespace {
typedef ASN1TArrayList_traits<asn1data::ASN1T_PolicyInformation_policyQualifiers,
                              ASN1T_PolicyQualifierInfo_traits, CPolicyQualifierInfo,
                              CPolicyQualifierInfoList>
    QualifierListTraits;
}  // namespace

void ASN1T_PolicyQualifierInfo_traits::set(ASN1CTXT* ctxt, ASN1_T& rec,
                                           CPolicyQualifierInfo const& v) {
  ASN1TObjId_traits::set(ctxt, rec.policyQualifierId, v.get_policyQualifierId());
  detail::requireOneElement(v.get_qualifier());
  Asn1TObject_traits::set(ctxt, rec.qualifier, v.get_qualifier());
}

void ASN1T_PolicyQualifierInfo_traits::get(ASN1_T const& rec, CPolicyQualifierInfo& v) {
  v.put_policyQualifierId(detail::oidText(rec.policyQualifierId).c_str());
  CBlob qualifier;
  Asn1TObject_traits::get(rec.qualifier, qualifier);
  detail::requireOneElement(qualifier);  // as the encoder will require
  v.put_qualifier(qualifier);
}

void ASN1T_PolicyInformation_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CPolicyInformation const& v) {
  ASN1TObjId_traits::set(ctxt, rec.policyIdentifier, v.get_policyIdentifier());
  rec.m.policyQualifiersPresent = v.get_policyQualifiers() ? 1 : 0;
  if (v.get_policyQualifiers()) {
    QualifierListTraits::set(ctxt, rec.policyQualifiers, *v.get_policyQualifiers());
  }
}

void ASN1T_PolicyInformation_traits::get(ASN1_T const& rec, CPolicyInformation& v) {
  v.put_policyIdentifier(detail::oidText(rec.policyIdentifier).c_str());
  if (rec.m.policyQualifiersPresent) {
    CPolicyQualifierInfoList qualifiers;
    QualifierListTraits::get(rec.policyQualifiers, qualifiers);
    v.put_policyQualifiers(&qualifiers);
  } else {
    v.put_policyQualifiers(nullptr);
  }
}

}  // namespace ASN1
}  // namespace Korvex
