// CRL distribution points: DistributionPointName, DistributionPoint and their
// list, with their traits.
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/Extension.h>
#include <korvex/asn1types/ExtensionTraits.h>
#include <korvex/asn1types/NamesTraits.h>

#include <memory>
#include <new>

#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

// ---- CDistributionPointName ----

ChoiceValueTraits const* CDistributionPointNameImpl::findTraits(unsigned int n) const {
  return selectChoiceTraits<ChoiceValueTraitsT<CGeneralNames, 1>, ChoiceValueTraitsT<CBlob, 2>>(n);
}

CDistributionPointName::CDistributionPointName() : m_impl(new CDistributionPointNameImpl) {
  std::unique_ptr<CDistributionPointNameImpl> guard(m_impl);
  CGeneralNames const none;
  m_impl->put_value(kFullName, &none);
  guard.release();
}

CDistributionPointName::CDistributionPointName(CGeneralNames const& fullName)
    : m_impl(new CDistributionPointNameImpl) {
  std::unique_ptr<CDistributionPointNameImpl> guard(m_impl);
  m_impl->put_value(kFullName, &fullName);
  guard.release();
}

CDistributionPointName::CDistributionPointName(CDistributionPointName const& other)
    : m_impl(new CDistributionPointNameImpl(*other.m_impl)) {}

CDistributionPointName& CDistributionPointName::operator=(CDistributionPointName const& other) {
  detail::assignImpl(m_impl, static_cast<CDistributionPointNameImpl const*>(other.m_impl));
  return *this;
}

CDistributionPointName::~CDistributionPointName() { delete m_impl; }

unsigned int CDistributionPointName::get_type() const { return m_impl->get_type(); }
CGeneralNames const* CDistributionPointName::get_fullName() const {
  return m_impl->get_as<CGeneralNames>(kFullName);
}
CBlob const* CDistributionPointName::get_nameRelativeToCRLIssuer() const {
  return m_impl->get_as<CBlob>(kNameRelativeToCRLIssuer);
}
void CDistributionPointName::put_fullName(CGeneralNames const& names) {
  m_impl->put_value(kFullName, &names);
}
void CDistributionPointName::put_nameRelativeToCRLIssuer(CBlob const& rdnDer) {
  m_impl->put_value(kNameRelativeToCRLIssuer, &rdnDer);
}

CBlob CDistributionPointName::encode() const {
  return asn1Encode<ASN1T_DistributionPointName_traits>(*this);
}

void CDistributionPointName::decode(CBlob const& der) {
  // get selects and fills in one step, but the decoded value is built apart
  // so that a failure leaves this one whole.
  CDistributionPointName decoded;
  detail::decodeWhole<ASN1T_DistributionPointName_traits>(der, decoded);
  std::swap(m_impl, decoded.m_impl);
}

bool operator==(CDistributionPointName const& a, CDistributionPointName const& b) {
  if (a.get_type() != b.get_type()) return false;
  if (a.get_fullName()) return *a.get_fullName() == *b.get_fullName();
  if (a.get_nameRelativeToCRLIssuer()) {
    return *a.get_nameRelativeToCRLIssuer() == *b.get_nameRelativeToCRLIssuer();
  }
  return true;
}
bool operator!=(CDistributionPointName const& a, CDistributionPointName const& b) {
  return !(a == b);
}

// ---- CDistributionPoint ----

struct CDistributionPoint::Impl {
  std::unique_ptr<CDistributionPointName> distributionPoint;
  std::unique_ptr<CReasonFlags> reasons;
  std::unique_ptr<CGeneralNames> cRLIssuer;

  Impl() = default;
  Impl(Impl const& other) {
    copy_to_auto_ptr(distributionPoint, other.distributionPoint);
    copy_to_auto_ptr(reasons, other.reasons);
    copy_to_auto_ptr(cRLIssuer, other.cRLIssuer);
  }
};

CDistributionPoint::CDistributionPoint() : m_impl(new Impl) {}
CDistributionPoint::CDistributionPoint(CDistributionPointName const& distributionPoint)
    : m_impl(new Impl) {
  std::unique_ptr<Impl> guard(m_impl);
  copy_to_auto_ptr(m_impl->distributionPoint, &distributionPoint);
  guard.release();
}
CDistributionPoint::CDistributionPoint(CDistributionPoint const& other)
    : m_impl(new Impl(*other.m_impl)) {}
CDistributionPoint& CDistributionPoint::operator=(CDistributionPoint const& other) {
  detail::assignImpl(m_impl, other.m_impl);
  return *this;
}
CDistributionPoint::~CDistributionPoint() { delete m_impl; }

CDistributionPointName const* CDistributionPoint::get_distributionPoint() const {
  return m_impl->distributionPoint.get();
}
void CDistributionPoint::put_distributionPoint(CDistributionPointName const* name) {
  copy_to_auto_ptr(m_impl->distributionPoint, name);
}
CReasonFlags const* CDistributionPoint::get_reasons() const { return m_impl->reasons.get(); }
void CDistributionPoint::put_reasons(CReasonFlags const* reasons) {
  copy_to_auto_ptr(m_impl->reasons, reasons);
}
CGeneralNames const* CDistributionPoint::get_cRLIssuer() const { return m_impl->cRLIssuer.get(); }
void CDistributionPoint::put_cRLIssuer(CGeneralNames const* issuer) {
  copy_to_auto_ptr(m_impl->cRLIssuer, issuer);
}

CBlob CDistributionPoint::encode() const {
  return asn1Encode<ASN1T_DistributionPoint_traits>(*this);
}
void CDistributionPoint::decode(CBlob const& der) {
  detail::decodeWhole<ASN1T_DistributionPoint_traits>(der, *this);
}

bool operator==(CDistributionPoint const& a, CDistributionPoint const& b) {
  return detail::sameOptional(a.get_distributionPoint(), b.get_distributionPoint()) &&
         detail::sameOptional(a.get_reasons(), b.get_reasons()) &&
         detail::sameOptional(a.get_cRLIssuer(), b.get_cRLIssuer());
}
bool operator!=(CDistributionPoint const& a, CDistributionPoint const& b) { return !(a == b); }

// ---- CCRLDistPointsSyntax ----

CBlob CCRLDistPointsSyntax::encode() const {
  return asn1Encode<ASN1T_CRLDistPointsSyntax_traits>(*this);
}
void CCRLDistPointsSyntax::decode(CBlob const& der) {
  detail::decodeWhole<ASN1T_CRLDistPointsSyntax_traits>(der, *this);
}

// ---- traits ----

namespace {

// A zero-filled record of type T from ctxt's heap, constructed in place (the
// heap takes it back with the context).
template <class T>
T* newRecord(ASN1CTXT* ctxt) {
  return ::new (checkHeap(rtMemHeapAllocZ(&ctxt->pTypeMemHeap, sizeof(T)))) T();
}

}  // namespace

void ASN1T_DistributionPointName_traits::set(ASN1CTXT* ctxt, ASN1_T& rec,
                                             CDistributionPointName const& v) {
  if (CGeneralNames const* names = v.get_fullName()) {
    auto* fullName = newRecord<asn1data::ASN1T_GeneralNames>(ctxt);
    ASN1T_GeneralNames_traits::set(ctxt, *fullName, *names);
    rec.u.fullName = fullName;
    rec.t = asn1data::ASN1T_DistributionPointName::T_fullName;
  } else if (CBlob const* rdnDer = v.get_nameRelativeToCRLIssuer()) {
    auto* rdn = newRecord<asn1data::ASN1T_RelativeDistinguishedName>(ctxt);
    // The RDN's DER, decoded into the record; the IMPLICIT [1] replaces its
    // SET tag when written.
    asn1DecodeT<ASN1T_RelativeDistinguishedName_traits>(*rdnDer, ctxt, *rdn);
    rec.u.nameRelativeToCRLIssuer = rdn;
    rec.t = asn1data::ASN1T_DistributionPointName::T_nameRelativeToCRLIssuer;
  } else {
    throwCodecError();
  }
}

void ASN1T_DistributionPointName_traits::get(ASN1_T const& rec, CDistributionPointName& v) {
  switch (rec.t) {
    case asn1data::ASN1T_DistributionPointName::T_fullName: {
      if (!rec.u.fullName) throwCodecError();
      CGeneralNames names;
      ASN1T_GeneralNames_traits::get(*rec.u.fullName, names);
      v.put_fullName(names);
      break;
    }
    case asn1data::ASN1T_DistributionPointName::T_nameRelativeToCRLIssuer:
      if (!rec.u.nameRelativeToCRLIssuer) throwCodecError();
      v.put_nameRelativeToCRLIssuer(
          asn1EncodeT<ASN1T_RelativeDistinguishedName_traits>(*rec.u.nameRelativeToCRLIssuer));
      break;
    default:
      throwCodecError();
  }
}

void ASN1T_DistributionPoint_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CDistributionPoint const& v) {
  rec.m.distributionPointPresent = v.get_distributionPoint() ? 1 : 0;
  if (v.get_distributionPoint()) {
    ASN1T_DistributionPointName_traits::set(ctxt, rec.distributionPoint,
                                            *v.get_distributionPoint());
  }
  rec.m.reasonsPresent = v.get_reasons() ? 1 : 0;
  if (v.get_reasons()) ASN1T_ReasonFlags_traits::set(ctxt, rec.reasons, *v.get_reasons());
  rec.m.cRLIssuerPresent = v.get_cRLIssuer() ? 1 : 0;
  if (v.get_cRLIssuer()) ASN1T_GeneralNames_traits::set(ctxt, rec.cRLIssuer, *v.get_cRLIssuer());
}

void ASN1T_DistributionPoint_traits::get(ASN1_T const& rec, CDistributionPoint& v) {
  if (rec.m.distributionPointPresent) {
    CDistributionPointName name;
    ASN1T_DistributionPointName_traits::get(rec.distributionPoint, name);
    v.put_distributionPoint(&name);
  } else {
    v.put_distributionPoint(nullptr);
  }
  if (rec.m.reasonsPresent) {
    CReasonFlags reasons;
    ASN1T_ReasonFlags_traits::get(rec.reasons, reasons);
    v.put_reasons(&reasons);
  } else {
    v.put_reasons(nullptr);
  }
  if (rec.m.cRLIssuerPresent) {
    CGeneralNames issuer;
    ASN1T_GeneralNames_traits::get(rec.cRLIssuer, issuer);
    v.put_cRLIssuer(&issuer);
  } else {
    v.put_cRLIssuer(nullptr);
  }
}

}  // namespace ASN1
}  // namespace Korvex
