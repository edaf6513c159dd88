// ResponderID.cpp: CResponderIDImpl, CResponderID and ASN1T_ResponderID_traits.
#include <korvex/asn1rt/asn1ber.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/NamesTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/ocsp/RecordSupport.h>
#include <korvex/ocsp/ResponderID.h>
#include <korvex/ocsp/ResponderIDTraits.h>

#include <new>

namespace Korvex {
namespace PKI {
namespace OCSP {

using ASN1::checkHeap;
using ASN1::throwCodecError;
using PKI::detail::IsWholeElement;
using PKI::detail::NewRecord;

namespace {

typedef ASN1::ChoiceValueTraitsT<CBlob, CResponderID::kByName> ByNameHandler;
typedef ASN1::ChoiceValueTraitsT<CBlob, CResponderID::kByKey> ByKeyHandler;

}  // namespace

// ---- CResponderIDImpl -------------------------------------------------------

ASN1::ChoiceValueTraits const* CResponderIDImpl::findTraits(unsigned int n) const {
  return ASN1::selectChoiceTraits<ByNameHandler, ByKeyHandler>(n);
}

// ---- CResponderID -----------------------------------------------------------

CResponderID::CResponderID() : m_impl(new CResponderIDImpl) {}

CResponderID::CResponderID(CResponderID const& other)
    : m_impl(new CResponderIDImpl(*other.m_impl)) {}

CResponderID& CResponderID::operator=(CResponderID const& other) {
  if (this != &other) m_impl.reset(new CResponderIDImpl(*other.m_impl));
  return *this;
}

CResponderID::~CResponderID() {}

CResponderID CResponderID::fromName(CBlob const& nameDer) {
  CResponderID id;
  id.put_byName(nameDer);
  return id;
}

CResponderID CResponderID::fromKeyHash(CBlob const& keyHash) {
  CResponderID id;
  id.put_byKey(keyHash);
  return id;
}

unsigned int CResponderID::get_type() const { return m_impl->get_type(); }

CBlob const* CResponderID::get_byName() const { return m_impl->get_as<CBlob>(kByName); }

CBlob const* CResponderID::get_byKey() const { return m_impl->get_as<CBlob>(kByKey); }

bool CResponderID::get_byName(ASN1::CName& name) const {
  CBlob const* der = get_byName();
  if (!der) return false;
  name.decode(*der);
  return true;
}

void CResponderID::put_byName(CBlob const& nameDer) { m_impl->put_value(kByName, &nameDer); }

void CResponderID::put_byName(ASN1::CName const& name) {
  CBlob der = name.encode();
  m_impl->put_value(kByName, &der);
}

void CResponderID::put_byKey(CBlob const& keyHash) { m_impl->put_value(kByKey, &keyHash); }

void CResponderID::clear() { m_impl->reset(); }

CBlob CResponderID::encode() const { return ASN1::asn1Encode<ASN1T_ResponderID_traits>(*this); }

void CResponderID::decode(CBlob const& der) {
  if (!IsWholeElement(der)) throwCodecError();
  CResponderID decoded;
  ASN1::asn1Decode<ASN1T_ResponderID_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(CResponderID const& left, CResponderID const& right) {
  if (left.get_type() != right.get_type()) return false;
  switch (left.get_type()) {
    case CResponderID::kByName:
      return *left.get_byName() == *right.get_byName();
    case CResponderID::kByKey:
      return *left.get_byKey() == *right.get_byKey();
    default:
      // Nothing selected on either side (an unknown number holds no value).
      return true;
  }
}

bool operator!=(CResponderID const& left, CResponderID const& right) { return !(left == right); }

// ---- ASN1T_ResponderID_traits -------------------------------------------------

void ASN1T_ResponderID_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CResponderID const& value) {
  if (!ctxt) ASN1::throwInvalidArgument();
  switch (value.get_type()) {
    case CResponderID::kByName: {
      // The name classes read attribute values as bytes, so a Name that real
      // responders use (a CN over 64 characters, an IA5String CN) is taken as
      // it stands; CName::decode also refuses bytes after the Name.
      ASN1::CName name;
      name.decode(*value.get_byName());
      auto* record = NewRecord<asn1data::ASN1T_Name>(ctxt);
      ASN1::ASN1T_Name_traits::set(ctxt, *record, name);
      rec.t = asn1data::ASN1T_ResponderID::T_byName;
      rec.u.byName = record;
      return;
    }
    case CResponderID::kByKey: {
      auto* record = NewRecord<asn1data::ASN1T_KeyHash>(ctxt);
      ASN1::ASN1TDynOctStr_traits::set(ctxt, *record, *value.get_byKey());
      rec.t = asn1data::ASN1T_ResponderID::T_byKey;
      rec.u.byKey = record;
      return;
    }
    default:
      throwCodecError();
  }
}

void ASN1T_ResponderID_traits::get(ASN1_T const& rec, CResponderID& value) {
  switch (rec.t) {
    case asn1data::ASN1T_ResponderID::T_byName: {
      if (!rec.u.byName) throwCodecError();
      CBlob der;
      ASN1::ASN1T_Name_traits::get(*rec.u.byName, der);
      value.put_byName(der);
      return;
    }
    case asn1data::ASN1T_ResponderID::T_byKey: {
      if (!rec.u.byKey) throwCodecError();
      CBlob hash;
      ASN1::ASN1TDynOctStr_traits::get(*rec.u.byKey, hash);
      value.put_byKey(hash);
      return;
    }
    default:
      throwCodecError();
  }
}

}  // namespace OCSP
}  // namespace PKI
}  // namespace Korvex
