// CAdESCrlValidatedID.cpp: CCrlValidatedID (and its matches), CCRLListID and
// their traits.
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/cades/CAdESAttributesTraits.h>

#include "CAdESSupport.h"

namespace Korvex {
namespace PKI {
namespace CAdES {

struct CCrlValidatedID::Impl {
  ASN1::COtherHash crlHash;
  std::unique_ptr<CCrlIdentifier> crlIdentifier;

  Impl() = default;
  Impl(Impl const& other) : crlHash(other.crlHash) {
    ASN1::copy_to_auto_ptr(crlIdentifier, other.crlIdentifier);
  }
};

CCrlValidatedID::CCrlValidatedID() : m_impl(new Impl) {}

CCrlValidatedID::CCrlValidatedID(ASN1::COtherHash const& crlHash) : m_impl(new Impl) {
  m_impl->crlHash = crlHash;
}

CCrlValidatedID::CCrlValidatedID(CCrlValidatedID const& other) : m_impl(new Impl(*other.m_impl)) {}

CCrlValidatedID& CCrlValidatedID::operator=(CCrlValidatedID const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

CCrlValidatedID::~CCrlValidatedID() {}

ASN1::COtherHash const& CCrlValidatedID::get_crlHash() const { return m_impl->crlHash; }

void CCrlValidatedID::put_crlHash(ASN1::COtherHash const& crlHash) { m_impl->crlHash = crlHash; }

CCrlIdentifier const* CCrlValidatedID::get_crlIdentifier() const {
  return m_impl->crlIdentifier.get();
}

void CCrlValidatedID::put_crlIdentifier(CCrlIdentifier const* crlIdentifier) {
  ASN1::copy_to_auto_ptr(m_impl->crlIdentifier, crlIdentifier);
}

bool CCrlValidatedID::matches(CCrlValidatedID const& other, bool ignoreMissingIdentifier,
                              bool ignoreMissingNumber) const {
  if (get_crlHash() != other.get_crlHash()) return false;
  CCrlIdentifier const* mine = get_crlIdentifier();
  CCrlIdentifier const* theirs = other.get_crlIdentifier();
  if (!mine && !theirs) return true;
  if (ignoreMissingIdentifier && (!mine || !theirs)) return true;
  if (!mine || !theirs) return false;
  if (mine->get_crlIssuedTime() != theirs->get_crlIssuedTime()) return false;
  if (mine->get_crlissuer() != theirs->get_crlissuer()) return false;
  ASN1::CBigInteger const* a = mine->get_longCrlNumber();
  ASN1::CBigInteger const* b = theirs->get_longCrlNumber();
  if (!a && !b) return true;
  if (ignoreMissingNumber && (!a || !b)) return true;
  // A number on one side only does not match.
  return a && b && *a == *b;
}

CBlob CCrlValidatedID::encode() const {
  return ASN1::asn1Encode<ASN1T_CrlValidatedID_traits>(*this);
}

void CCrlValidatedID::decode(CBlob const& der) {
  CCrlValidatedID decoded;
  support::DecodeWhole<ASN1T_CrlValidatedID_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(CCrlValidatedID const& left, CCrlValidatedID const& right) {
  if (left.get_crlHash() != right.get_crlHash()) return false;
  CCrlIdentifier const* a = left.get_crlIdentifier();
  CCrlIdentifier const* b = right.get_crlIdentifier();
  if (!a || !b) return !a && !b;
  return *a == *b;
}

bool operator!=(CCrlValidatedID const& left, CCrlValidatedID const& right) {
  return !(left == right);
}

// ---- CCRLListID ------------------------------------------------------------------

CBlob CCRLListID::encode() const { return ASN1::asn1Encode<ASN1T_CRLListID_traits>(*this); }

void CCRLListID::decode(CBlob const& der) {
  CCRLListID decoded;
  support::DecodeWhole<ASN1T_CRLListID_traits>(der, decoded);
  swap(decoded);
}

bool operator==(CCRLListID const& left, CCRLListID const& right) {
  if (left.size() != right.size()) return false;
  for (auto a = left.begin(), b = right.begin(); a != left.end(); ++a, ++b) {
    if (*a != *b) return false;
  }
  return true;
}

bool operator!=(CCRLListID const& left, CCRLListID const& right) { return !(left == right); }

// ---- traits ------------------------------------------------------------------------

void ASN1T_CrlValidatedID_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CCrlValidatedID const& value) {
  if (!ctxt) ASN1::throwInvalidArgument();
  rec.m.crlIdentifierPresent = 0;
  support::SetOpenType(ctxt, rec.crlHash, value.get_crlHash().encode());
  if (CCrlIdentifier const* identifier = value.get_crlIdentifier()) {
    ASN1T_CrlIdentifier_traits::set(ctxt, rec.crlIdentifier, *identifier);
    rec.m.crlIdentifierPresent = 1;
  }
}

void ASN1T_CrlValidatedID_traits::get(ASN1_T const& rec, CCrlValidatedID& value) {
  ASN1::COtherHash hash;
  hash.decode(support::GetOpenType(rec.crlHash));
  value.put_crlHash(hash);
  if (rec.m.crlIdentifierPresent) {
    CCrlIdentifier identifier;
    ASN1T_CrlIdentifier_traits::get(rec.crlIdentifier, identifier);
    value.put_crlIdentifier(&identifier);
  } else {
    value.put_crlIdentifier(nullptr);
  }
}

void ASN1T_CRLListID_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CCRLListID const& value) {
  list_traits::set(ctxt, rec.crls, value);
}

void ASN1T_CRLListID_traits::get(ASN1_T const& rec, CCRLListID& value) {
  list_traits::get(rec.crls, value);
}

}  // namespace CAdES
}  // namespace PKI
}  // namespace Korvex
