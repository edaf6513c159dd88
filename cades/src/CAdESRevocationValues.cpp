// CAdESRevocationValues.cpp: CRevocationValues and its traits.
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/SeqOfListTraits.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/cades/CAdESAttributesTraits.h>

#include "CAdESSupport.h"

namespace Korvex {
namespace PKI {
namespace CAdES {

namespace {

// One open-type element per blob; each blob must be one whole element.
struct WholeOpenType_traits {
  typedef ASN1OpenType ASN1_T;
  static void set(ASN1CTXT* ctxt, ASN1OpenType& rec, CBlob const& der) {
    support::SetOpenType(ctxt, rec, der);
  }
  static void get(ASN1OpenType const& rec, CBlob& der) { der = support::GetOpenType(rec); }
  static void copy(ASN1CTXT* ctxt, ASN1OpenType const& src, ASN1OpenType& dst) {
    ASN1::ASN1TOpenType_traits::copy(ctxt, src, dst);
  }
};

typedef ASN1::ASN1TSeqOfList_traits<ASN1OpenType, WholeOpenType_traits, CBlob, CBlobList>
    BlobList_traits;

// SetList writes a present, non-empty list and says whether it did: an empty
// list is left out like an absent one.
bool SetList(ASN1CTXT* ctxt, ASN1TSeqOfList& rec, CBlobList const* list) {
  if (!list || list->empty()) return false;
  BlobList_traits::set(ctxt, rec, *list);
  return true;
}

}  // namespace

struct CRevocationValues::Impl {
  std::unique_ptr<CBlobList> crlVals;
  std::unique_ptr<CBlobList> ocspVals;

  Impl() = default;
  Impl(Impl const& other) {
    ASN1::copy_to_auto_ptr(crlVals, other.crlVals);
    ASN1::copy_to_auto_ptr(ocspVals, other.ocspVals);
  }
};

CRevocationValues::CRevocationValues() : m_impl(new Impl) {}

CRevocationValues::CRevocationValues(CRevocationValues const& other)
    : m_impl(new Impl(*other.m_impl)) {}

CRevocationValues& CRevocationValues::operator=(CRevocationValues const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

CRevocationValues::~CRevocationValues() {}

CBlobList const* CRevocationValues::get_crlVals() const { return m_impl->crlVals.get(); }

void CRevocationValues::put_crlVals(CBlobList const* crlVals) {
  ASN1::copy_to_auto_ptr(m_impl->crlVals, crlVals);
}

CBlobList const* CRevocationValues::get_ocspVals() const { return m_impl->ocspVals.get(); }

void CRevocationValues::put_ocspVals(CBlobList const* ocspVals) {
  ASN1::copy_to_auto_ptr(m_impl->ocspVals, ocspVals);
}

CBlob CRevocationValues::encode() const {
  return ASN1::asn1Encode<ASN1T_RevocationValues_traits>(*this);
}

void CRevocationValues::decode(CBlob const& der) {
  CRevocationValues decoded;
  support::DecodeWhole<ASN1T_RevocationValues_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(CRevocationValues const& left, CRevocationValues const& right) {
  auto same = [](CBlobList const* a, CBlobList const* b) {
    if (!a || !b) return !a && !b;
    return *a == *b;
  };
  return same(left.get_crlVals(), right.get_crlVals()) &&
         same(left.get_ocspVals(), right.get_ocspVals());
}

bool operator!=(CRevocationValues const& left, CRevocationValues const& right) {
  return !(left == right);
}

// ---- traits ------------------------------------------------------------------------

void ASN1T_RevocationValues_traits::set(ASN1CTXT* ctxt, ASN1_T& rec,
                                        CRevocationValues const& value) {
  if (!ctxt) ASN1::throwInvalidArgument();
  rec.m.crlValsPresent = 0;
  rec.m.ocspValsPresent = 0;
  rec.m.otherRevValsPresent = 0;
  if (SetList(ctxt, rec.crlVals, value.get_crlVals())) rec.m.crlValsPresent = 1;
  if (SetList(ctxt, rec.ocspVals, value.get_ocspVals())) rec.m.ocspValsPresent = 1;
}

void ASN1T_RevocationValues_traits::get(ASN1_T const& rec, CRevocationValues& value) {
  CBlobList crlVals;
  if (rec.m.crlValsPresent) BlobList_traits::get(rec.crlVals, crlVals);
  value.put_crlVals(crlVals.empty() ? nullptr : &crlVals);
  CBlobList ocspVals;
  if (rec.m.ocspValsPresent) BlobList_traits::get(rec.ocspVals, ocspVals);
  value.put_ocspVals(ocspVals.empty() ? nullptr : &ocspVals);
}

}  // namespace CAdES
}  // namespace PKI
}  // namespace Korvex
