// AttributeTypeAndValue.cpp: CAttributeTypeAndValue and its traits.
#include <korvex/asn1types/AttributeTypeRegister.h>
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/Names.h>
#include <korvex/asn1types/NamesTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>

#include <string>
#include <utility>

#include "NameCodecs.h"
#include "NameSupport.h"

namespace Korvex {
namespace ASN1 {

struct CAttributeTypeAndValue::Impl {
  std::string type;
  CBlob value;
};

namespace {

// The canonical dotted text of an OID text (str2oid accepts blanks and signs
// around the arcs; the stored text is what oid2str writes back). Bad or null
// text throws 0x80070057.
std::string canonicalOid(char const* text) {
  if (!text) throwInvalidArgument();
  ASN1OBJID oid = toASN1OBJID(text);
  return toOID(oid).c_str();
}

}  // namespace

CAttributeTypeAndValue::CAttributeTypeAndValue() : m_impl(new Impl()) {}

CAttributeTypeAndValue::CAttributeTypeAndValue(char const* type, CBlob const& value)
    : m_impl(new Impl()) {
  try {
    m_impl->type = canonicalOid(type);
    m_impl->value = value;
  } catch (...) {
    delete m_impl;
    throw;
  }
}

CAttributeTypeAndValue::CAttributeTypeAndValue(CAttributeTypeAndValue const& other)
    : m_impl(new Impl(*other.m_impl)) {}

CAttributeTypeAndValue& CAttributeTypeAndValue::operator=(CAttributeTypeAndValue const& other) {
  if (this != &other) {
    CAttributeTypeAndValue copy(other);
    swap(copy);
  }
  return *this;
}

CAttributeTypeAndValue::~CAttributeTypeAndValue() { delete m_impl; }

void CAttributeTypeAndValue::swap(CAttributeTypeAndValue& other) noexcept {
  std::swap(m_impl, other.m_impl);
}

char const* CAttributeTypeAndValue::get_type() const { return m_impl->type.c_str(); }

void CAttributeTypeAndValue::put_type(char const* type) { m_impl->type = canonicalOid(type); }

CBlob const& CAttributeTypeAndValue::get_value() const { return m_impl->value; }

void CAttributeTypeAndValue::put_value(CBlob const& der) { m_impl->value = der; }

CWStringProxy CAttributeTypeAndValue::get_text() const {
  return CATAVRegister::valueToStr(m_impl->type.c_str(), m_impl->value);
}

CWStringProxy CAttributeTypeAndValue::toString(unsigned int flags) const {
  return AtavToString(*this, flags);
}

bool CAttributeTypeAndValue::operator==(CAttributeTypeAndValue const& other) const {
  return m_impl->type == other.m_impl->type && m_impl->value == other.m_impl->value;
}

CBlob CAttributeTypeAndValue::encode() const { return asn1Encode<names::AtavCodec>(*this); }

void CAttributeTypeAndValue::decode(CBlob const& der) {
  CAttributeTypeAndValue decoded;
  names::decodeWhole<names::AtavCodec>(der, decoded);
  swap(decoded);
}

// ---- traits -------------------------------------------------------------------

void ASN1T_AttributeTypeAndValue_traits::set(ASN1CTXT* ctxt, ASN1_T& rec,
                                             CAttributeTypeAndValue const& v) {
  if (!ctxt) throwInvalidArgument();
  // An unset or unreadable type, and a value that is not one element, would
  // otherwise be written as a broken encoding: refuse them here.
  if (!names::parseOid(v.get_type(), &rec.type)) throwCodecError();
  if (!names::isSingleElement(v.get_value())) throwCodecError();
  // The value goes in as it stands: with no decoded value attached, the
  // encoder writes the open type's bytes unchanged.
  Asn1TObject_traits::set(ctxt, rec.value, v.get_value());
}

void ASN1T_AttributeTypeAndValue_traits::get(ASN1_T const& rec, CAttributeTypeAndValue& v) {
  CStringProxy type(nullptr);
  ASN1TObjId_traits::get(rec.type, type);
  CBlob value;
  Asn1TObject_traits::get(rec.value, value);
  // The decoder's OID text is canonical already; it is stored as it stands
  // (str2oid would refuse a last arc of 4294967295 that DER can carry).
  CAttributeTypeAndValue result;
  result.m_impl->type = type.c_str();
  result.m_impl->value.swap(value);
  v.swap(result);
}

}  // namespace ASN1
}  // namespace Korvex
