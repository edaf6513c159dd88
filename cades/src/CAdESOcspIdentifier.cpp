// CAdESOcspIdentifier.cpp: COcspIdentifier, COcspResponsesID, COcspListID and
// their traits.
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/GeneralizedTimeText.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/cades/CAdESAttributesTraits.h>

#include "CAdESSupport.h"

namespace Korvex {
namespace PKI {
namespace CAdES {

// ---- COcspIdentifier -------------------------------------------------------------

struct COcspIdentifier::Impl {
  OCSP::CResponderID ocspResponderID;
  CDateTime producedAt{0, 0};
};

COcspIdentifier::COcspIdentifier() : m_impl(new Impl) {}

COcspIdentifier::COcspIdentifier(OCSP::CResponderID const& ocspResponderID,
                                 CDateTime const& producedAt)
    : m_impl(new Impl) {
  m_impl->ocspResponderID = ocspResponderID;
  m_impl->producedAt = producedAt;
}

COcspIdentifier::COcspIdentifier(COcspIdentifier const& other) : m_impl(new Impl(*other.m_impl)) {}

COcspIdentifier& COcspIdentifier::operator=(COcspIdentifier const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

COcspIdentifier::~COcspIdentifier() {}

OCSP::CResponderID const& COcspIdentifier::get_ocspResponderID() const {
  return m_impl->ocspResponderID;
}

void COcspIdentifier::put_ocspResponderID(OCSP::CResponderID const& ocspResponderID) {
  m_impl->ocspResponderID = ocspResponderID;
}

CDateTime const& COcspIdentifier::get_producedAt() const { return m_impl->producedAt; }

void COcspIdentifier::put_producedAt(CDateTime const& producedAt) {
  m_impl->producedAt = producedAt;
}

CBlob COcspIdentifier::encode() const {
  return ASN1::asn1Encode<ASN1T_OcspIdentifier_traits>(*this);
}

void COcspIdentifier::decode(CBlob const& der) {
  COcspIdentifier decoded;
  support::DecodeWhole<ASN1T_OcspIdentifier_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(COcspIdentifier const& left, COcspIdentifier const& right) {
  return left.get_ocspResponderID() == right.get_ocspResponderID() &&
         left.get_producedAt() == right.get_producedAt();
}

bool operator!=(COcspIdentifier const& left, COcspIdentifier const& right) {
  return !(left == right);
}

// ---- COcspResponsesID --------------------------------------------------------------

struct COcspResponsesID::Impl {
  COcspIdentifier ocspIdentifier;
  std::unique_ptr<ASN1::COtherHash> ocspRepHash;

  Impl() = default;
  Impl(Impl const& other) : ocspIdentifier(other.ocspIdentifier) {
    ASN1::copy_to_auto_ptr(ocspRepHash, other.ocspRepHash);
  }
};

COcspResponsesID::COcspResponsesID() : m_impl(new Impl) {}

COcspResponsesID::COcspResponsesID(COcspIdentifier const& ocspIdentifier) : m_impl(new Impl) {
  m_impl->ocspIdentifier = ocspIdentifier;
}

COcspResponsesID::COcspResponsesID(COcspResponsesID const& other)
    : m_impl(new Impl(*other.m_impl)) {}

COcspResponsesID& COcspResponsesID::operator=(COcspResponsesID const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

COcspResponsesID::~COcspResponsesID() {}

COcspIdentifier const& COcspResponsesID::get_ocspIdentifier() const {
  return m_impl->ocspIdentifier;
}

void COcspResponsesID::put_ocspIdentifier(COcspIdentifier const& ocspIdentifier) {
  m_impl->ocspIdentifier = ocspIdentifier;
}

ASN1::COtherHash const* COcspResponsesID::get_ocspRepHash() const {
  return m_impl->ocspRepHash.get();
}

void COcspResponsesID::put_ocspRepHash(ASN1::COtherHash const* ocspRepHash) {
  ASN1::copy_to_auto_ptr(m_impl->ocspRepHash, ocspRepHash);
}

CBlob COcspResponsesID::encode() const {
  return ASN1::asn1Encode<ASN1T_OcspResponsesID_traits>(*this);
}

void COcspResponsesID::decode(CBlob const& der) {
  COcspResponsesID decoded;
  support::DecodeWhole<ASN1T_OcspResponsesID_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(COcspResponsesID const& left, COcspResponsesID const& right) {
  if (left.get_ocspIdentifier() != right.get_ocspIdentifier()) return false;
  ASN1::COtherHash const* a = left.get_ocspRepHash();
  ASN1::COtherHash const* b = right.get_ocspRepHash();
  if (!a || !b) return !a && !b;
  return *a == *b;
}

bool operator!=(COcspResponsesID const& left, COcspResponsesID const& right) {
  return !(left == right);
}

// ---- COcspListID -----------------------------------------------------------------

CBlob COcspListID::encode() const { return ASN1::asn1Encode<ASN1T_OcspListID_traits>(*this); }

void COcspListID::decode(CBlob const& der) {
  COcspListID decoded;
  support::DecodeWhole<ASN1T_OcspListID_traits>(der, decoded);
  swap(decoded);
}

bool operator==(COcspListID const& left, COcspListID const& right) {
  if (left.size() != right.size()) return false;
  for (auto a = left.begin(), b = right.begin(); a != left.end(); ++a, ++b) {
    if (*a != *b) return false;
  }
  return true;
}

bool operator!=(COcspListID const& left, COcspListID const& right) { return !(left == right); }

// ---- traits ------------------------------------------------------------------------

void ASN1T_OcspIdentifier_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, COcspIdentifier const& value) {
  if (!ctxt) ASN1::throwInvalidArgument();
  support::SetOpenType(ctxt, rec.ocspResponderID, value.get_ocspResponderID().encode());
  // The response's own producedAt, fraction included (no whole-second cut).
  rec.producedAt = ASN1::DateToASN1GeneralizedTime(ctxt, value.get_producedAt(), false);
}

void ASN1T_OcspIdentifier_traits::get(ASN1_T const& rec, COcspIdentifier& value) {
  OCSP::CResponderID responder;
  responder.decode(support::GetOpenType(rec.ocspResponderID));
  value.put_ocspResponderID(responder);
  value.put_producedAt(support::ParseGeneralizedTime(rec.producedAt));
}

void ASN1T_OcspResponsesID_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, COcspResponsesID const& value) {
  if (!ctxt) ASN1::throwInvalidArgument();
  rec.m.ocspRepHashPresent = 0;
  ASN1T_OcspIdentifier_traits::set(ctxt, rec.ocspIdentifier, value.get_ocspIdentifier());
  if (ASN1::COtherHash const* hash = value.get_ocspRepHash()) {
    support::SetOpenType(ctxt, rec.ocspRepHash, hash->encode());
    rec.m.ocspRepHashPresent = 1;
  }
}

void ASN1T_OcspResponsesID_traits::get(ASN1_T const& rec, COcspResponsesID& value) {
  COcspIdentifier identifier;
  ASN1T_OcspIdentifier_traits::get(rec.ocspIdentifier, identifier);
  value.put_ocspIdentifier(identifier);
  if (rec.m.ocspRepHashPresent) {
    ASN1::COtherHash hash;
    hash.decode(support::GetOpenType(rec.ocspRepHash));
    value.put_ocspRepHash(&hash);
  } else {
    value.put_ocspRepHash(nullptr);
  }
}

void ASN1T_OcspListID_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, COcspListID const& value) {
  list_traits::set(ctxt, rec.ocspResponses, value);
}

void ASN1T_OcspListID_traits::get(ASN1_T const& rec, COcspListID& value) {
  list_traits::get(rec.ocspResponses, value);
}

}  // namespace CAdES
}  // namespace PKI
}  // namespace Korvex
