// The generic attribute containers: CAttrValue, CAttribute, CAttributes.
#include <korvex/asn1types/Attribute.h>
#include <korvex/asn1types/AttributeTraits.h>

#include <cstring>
#include <list>
#include <string>
#include <utility>

#include "ContainerCodecs.h"
#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

// ---- CAttrValue ----

CAttrValue::CAttrValue() : m_oid(nullptr) {}
CAttrValue::CAttrValue(char const* oid) : m_oid(oid) {}
CAttrValue::CAttrValue(char const* oid, CBlob const& value) : m_oid(oid), m_value(value) {}
CAttrValue::CAttrValue(CAttrValue const& other) = default;
CAttrValue& CAttrValue::operator=(CAttrValue const& other) {
  if (this != &other) {
    // Both copies are made before either member changes.
    CStringProxy oid(other.m_oid);
    CBlob value(other.m_value);
    m_oid = oid;
    m_value.swap(value);
  }
  return *this;
}
CAttrValue::~CAttrValue() = default;

char const* CAttrValue::get_oid() const { return m_oid.c_str(); }
CBlob const& CAttrValue::get_value() const { return m_value; }
CBlob& CAttrValue::value() { return m_value; }

bool operator==(CAttrValue const& a, CAttrValue const& b) {
  return std::strcmp(a.get_oid(), b.get_oid()) == 0 && a.get_value() == b.get_value();
}
bool operator!=(CAttrValue const& a, CAttrValue const& b) { return !(a == b); }

// ---- CAttribute ----

struct CAttribute::Impl {
  std::string oid;
  std::list<CAttrValue> values;
};

CAttribute::CAttribute() : m_impl(new Impl) {}
CAttribute::CAttribute(char const* oid) : m_impl(new Impl) {
  if (oid) m_impl->oid = oid;
}
CAttribute::CAttribute(CAttribute const& other) : m_impl(new Impl(*other.m_impl)) {}
CAttribute& CAttribute::operator=(CAttribute const& other) {
  detail::assignImpl(m_impl, other.m_impl);
  return *this;
}
CAttribute::~CAttribute() { delete m_impl; }
void CAttribute::swap(CAttribute& other) noexcept { std::swap(m_impl, other.m_impl); }

char const* CAttribute::get_oid() const { return m_impl->oid.c_str(); }

void CAttribute::add(CAttrValue const& value) {
  char const* type = value.get_oid();
  if (*type && m_impl->oid != type) throwInvalidArgument();
  m_impl->values.push_back(CAttrValue(m_impl->oid.c_str(), value.get_value()));
}

void CAttribute::add(CBlob const& der) {
  m_impl->values.push_back(CAttrValue(m_impl->oid.c_str(), der));
}

CAttribute::iterator CAttribute::begin() { return m_impl->values.begin(); }
CAttribute::iterator CAttribute::end() { return m_impl->values.end(); }
CAttribute::const_iterator CAttribute::begin() const { return m_impl->values.begin(); }
CAttribute::const_iterator CAttribute::end() const { return m_impl->values.end(); }
std::size_t CAttribute::size() const { return m_impl->values.size(); }
CAttribute::iterator CAttribute::erase(iterator it) { return m_impl->values.erase(it); }

CBlob CAttribute::encode() const { return asn1Encode<containers::AttributeCodec>(*this); }
void CAttribute::decode(CBlob const& der) {
  detail::decodeWhole<containers::AttributeCodec>(der, *this);
}

bool operator==(CAttribute const& a, CAttribute const& b) {
  if (std::strcmp(a.get_oid(), b.get_oid()) != 0 || a.size() != b.size()) return false;
  auto other = b.begin();
  for (CAttrValue const& value : a) {
    if (value.get_value() != other->get_value()) return false;
    ++other;
  }
  return true;
}
bool operator!=(CAttribute const& a, CAttribute const& b) { return !(a == b); }

// ---- CAttributes ----

CAttributes::iterator CAttributes::find(char const* oid) {
  if (!oid) return end();
  iterator it = begin();
  while (it != end() && std::strcmp(it->get_oid(), oid) != 0) ++it;
  return it;
}

CAttributes::const_iterator CAttributes::find(char const* oid) const {
  if (!oid) return end();
  const_iterator it = begin();
  while (it != end() && std::strcmp(it->get_oid(), oid) != 0) ++it;
  return it;
}

std::size_t CAttributes::erase(char const* oid) {
  std::size_t removed = 0;
  if (!oid) return removed;
  for (iterator it = begin(); it != end();) {
    if (std::strcmp(it->get_oid(), oid) == 0) {
      it = std::list<CAttribute>::erase(it);
      ++removed;
    } else {
      ++it;
    }
  }
  return removed;
}

void CAttributes::add(CAttrValue const& value) {
  if (!*value.get_oid()) throwInvalidArgument();
  iterator it = find(value.get_oid());
  if (it != end()) {
    it->add(value);
    return;
  }
  CAttribute attribute(value.get_oid());
  attribute.add(value);
  push_back(attribute);
}

CBlob CAttributes::encode() const { return asn1Encode<containers::AttributesCodec>(*this); }
void CAttributes::decode(CBlob const& der) {
  detail::decodeWhole<containers::AttributesCodec>(der, *this);
}

}  // namespace ASN1
}  // namespace Korvex
