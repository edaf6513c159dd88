// CAdESCrlOcspRef.cpp: CCrlOcspRef, CCompleteRevocationRefs and their traits.
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/cades/CAdESAttributesTraits.h>

#include "CAdESSupport.h"

namespace Korvex {
namespace PKI {
namespace CAdES {

struct CCrlOcspRef::Impl {
  std::unique_ptr<CCRLListID> crlids;
  std::unique_ptr<COcspListID> ocspids;

  Impl() = default;
  Impl(Impl const& other) {
    ASN1::copy_to_auto_ptr(crlids, other.crlids);
    ASN1::copy_to_auto_ptr(ocspids, other.ocspids);
  }
};

CCrlOcspRef::CCrlOcspRef() : m_impl(new Impl) {}

CCrlOcspRef::CCrlOcspRef(CCrlOcspRef const& other) : m_impl(new Impl(*other.m_impl)) {}

CCrlOcspRef& CCrlOcspRef::operator=(CCrlOcspRef const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

CCrlOcspRef::~CCrlOcspRef() {}

CCRLListID const* CCrlOcspRef::get_crlids() const { return m_impl->crlids.get(); }

void CCrlOcspRef::put_crlids(CCRLListID const* crlids) {
  ASN1::copy_to_auto_ptr(m_impl->crlids, crlids);
}

COcspListID const* CCrlOcspRef::get_ocspids() const { return m_impl->ocspids.get(); }

void CCrlOcspRef::put_ocspids(COcspListID const* ocspids) {
  ASN1::copy_to_auto_ptr(m_impl->ocspids, ocspids);
}

CBlob CCrlOcspRef::encode() const { return ASN1::asn1Encode<ASN1T_CrlOcspRef_traits>(*this); }

void CCrlOcspRef::decode(CBlob const& der) {
  CCrlOcspRef decoded;
  support::DecodeWhole<ASN1T_CrlOcspRef_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

namespace {

// The absent/present rule: both absent, or both present and equal.
template <class T>
bool SameOptional(T const* a, T const* b) {
  if (!a || !b) return !a && !b;
  return *a == *b;
}

}  // namespace

bool operator==(CCrlOcspRef const& left, CCrlOcspRef const& right) {
  return SameOptional(left.get_crlids(), right.get_crlids()) &&
         SameOptional(left.get_ocspids(), right.get_ocspids());
}

bool operator!=(CCrlOcspRef const& left, CCrlOcspRef const& right) { return !(left == right); }

// ---- CCompleteRevocationRefs ------------------------------------------------------

CBlob CCompleteRevocationRefs::encode() const {
  return ASN1::asn1Encode<ASN1T_CompleteRevocationRefs_traits>(*this);
}

void CCompleteRevocationRefs::decode(CBlob const& der) {
  CCompleteRevocationRefs decoded;
  support::DecodeWhole<ASN1T_CompleteRevocationRefs_traits>(der, decoded);
  swap(decoded);
}

// ---- traits ------------------------------------------------------------------------

void ASN1T_CrlOcspRef_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CCrlOcspRef const& value) {
  if (!ctxt) ASN1::throwInvalidArgument();
  rec.m.crlidsPresent = 0;
  rec.m.ocspidsPresent = 0;
  rec.m.otherRevPresent = 0;
  // The lists are SEQUENCE OF with at least one element in practice (RFC 5126
  // 6.2.2 gives a reference per certificate checked): an empty list says
  // nothing and is left out.
  CCRLListID const* crlids = value.get_crlids();
  if (crlids && !crlids->empty()) {
    ASN1T_CRLListID_traits::set(ctxt, rec.crlids, *crlids);
    rec.m.crlidsPresent = 1;
  }
  COcspListID const* ocspids = value.get_ocspids();
  if (ocspids && !ocspids->empty()) {
    ASN1T_OcspListID_traits::set(ctxt, rec.ocspids, *ocspids);
    rec.m.ocspidsPresent = 1;
  }
}

void ASN1T_CrlOcspRef_traits::get(ASN1_T const& rec, CCrlOcspRef& value) {
  CCRLListID crlids;
  if (rec.m.crlidsPresent) ASN1T_CRLListID_traits::get(rec.crlids, crlids);
  value.put_crlids(crlids.empty() ? nullptr : &crlids);
  COcspListID ocspids;
  if (rec.m.ocspidsPresent) ASN1T_OcspListID_traits::get(rec.ocspids, ocspids);
  value.put_ocspids(ocspids.empty() ? nullptr : &ocspids);
}

void ASN1T_CompleteRevocationRefs_traits::copy(ASN1CTXT* ctxt, ASN1_T const& src, ASN1_T& dst) {
  ASN1::checkCopyStatus(ASN1CADES::asn1Copy_CompleteRevocationRefs(ctxt, &src, &dst));
}

}  // namespace CAdES
}  // namespace PKI
}  // namespace Korvex
