// Authority information access: AccessDescription and its list, with their
// traits.
#include <korvex/asn1types/Extension.h>
#include <korvex/asn1types/ExtensionTraits.h>
#include <korvex/asn1types/NamesTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>

#include <cstring>
#include <memory>
#include <string>

#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

struct CAccessDescription::Impl {
  std::string accessMethod;
  CGeneralName accessLocation;
};

CAccessDescription::CAccessDescription() : m_impl(new Impl) {}
CAccessDescription::CAccessDescription(char const* accessMethod, CGeneralName const& accessLocation)
    : m_impl(new Impl) {
  std::unique_ptr<Impl> guard(m_impl);
  m_impl->accessMethod = detail::requireText(accessMethod);
  m_impl->accessLocation = accessLocation;
  guard.release();
}
CAccessDescription::CAccessDescription(CAccessDescription const& other)
    : m_impl(new Impl(*other.m_impl)) {}
CAccessDescription& CAccessDescription::operator=(CAccessDescription const& other) {
  detail::assignImpl(m_impl, other.m_impl);
  return *this;
}
CAccessDescription::~CAccessDescription() { delete m_impl; }

char const* CAccessDescription::get_accessMethod() const { return m_impl->accessMethod.c_str(); }
void CAccessDescription::put_accessMethod(char const* oid) {
  m_impl->accessMethod = detail::requireText(oid);
}
CGeneralName const& CAccessDescription::get_accessLocation() const {
  return m_impl->accessLocation;
}
void CAccessDescription::put_accessLocation(CGeneralName const& location) {
  m_impl->accessLocation = location;
}

CBlob CAccessDescription::encode() const {
  return asn1Encode<ASN1T_AccessDescription_traits>(*this);
}
void CAccessDescription::decode(CBlob const& der) {
  detail::decodeWhole<ASN1T_AccessDescription_traits>(der, *this);
}

bool operator==(CAccessDescription const& a, CAccessDescription const& b) {
  return std::strcmp(a.get_accessMethod(), b.get_accessMethod()) == 0 &&
         a.get_accessLocation() == b.get_accessLocation();
}
bool operator!=(CAccessDescription const& a, CAccessDescription const& b) { return !(a == b); }

CAuthorityInfoAccessSyntax::iterator CAuthorityInfoAccessSyntax::find(char const* accessMethod) {
  if (!accessMethod) return end();
  iterator it = begin();
  while (it != end() && std::strcmp(it->get_accessMethod(), accessMethod) != 0) ++it;
  return it;
}

CAuthorityInfoAccessSyntax::const_iterator CAuthorityInfoAccessSyntax::find(
    char const* accessMethod) const {
  if (!accessMethod) return end();
  const_iterator it = begin();
  while (it != end() && std::strcmp(it->get_accessMethod(), accessMethod) != 0) ++it;
  return it;
}

CBlob CAuthorityInfoAccessSyntax::encode() const {
  return asn1Encode<ASN1T_AuthorityInfoAccessSyntax_traits>(*this);
}
void CAuthorityInfoAccessSyntax::decode(CBlob const& der) {
  detail::decodeWhole<ASN1T_AuthorityInfoAccessSyntax_traits>(der, *this);
}

void ASN1T_AccessDescription_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CAccessDescription const& v) {
  ASN1TObjId_traits::set(ctxt, rec.accessMethod, v.get_accessMethod());
  ASN1T_GeneralName_traits::set(ctxt, rec.accessLocation, v.get_accessLocation());
}

void ASN1T_AccessDescription_traits::get(ASN1_T const& rec, CAccessDescription& v) {
  v.put_accessMethod(detail::oidText(rec.accessMethod).c_str());
  CGeneralName location;
  ASN1T_GeneralName_traits::get(rec.accessLocation, location);
  v.put_accessLocation(location);
}

}  // namespace ASN1
}  // namespace Korvex
