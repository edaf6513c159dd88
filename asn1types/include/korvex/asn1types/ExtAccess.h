// korvex/asn1types/ExtAccess.h: authority information access (RFC 5280
// 4.2.2.1): AccessDescription and the list that is the value of the
// authorityInfoAccess extension (1.3.6.1.5.5.7.1.1). Part of Extension.h.
#ifndef KORVEX_ASN1TYPES_EXTACCESS_H
#define KORVEX_ASN1TYPES_EXTACCESS_H

#include <korvex/asn1types/Names.h>
#include <korvex/core/Blob.h>
#include <korvex/platform/export.h>

#include <list>

namespace Korvex {
namespace ASN1 {

// Access methods of RFC 5280 4.2.2.1.
constexpr char kOidAdOcsp[] = "1.3.6.1.5.5.7.48.1";
constexpr char kOidAdCaIssuers[] = "1.3.6.1.5.5.7.48.2";

// CAccessDescription: AccessDescription ::= SEQUENCE { accessMethod OBJECT
// IDENTIFIER, accessLocation GeneralName }.
class KORVEX_API CAccessDescription {
 public:
  // CAccessDescription(): no method and a location with no alternative
  // (does not encode).
  CAccessDescription();
  // CAccessDescription(method, location): a null method throws 0x80070057.
  CAccessDescription(char const* accessMethod, CGeneralName const& accessLocation);
  CAccessDescription(CAccessDescription const& other);
  CAccessDescription& operator=(CAccessDescription const& other);
  ~CAccessDescription();

  char const* get_accessMethod() const;
  // put_accessMethod: null throws 0x80070057; the text is checked when
  // encoding.
  void put_accessMethod(char const* oid);
  CGeneralName const& get_accessLocation() const;
  void put_accessLocation(CGeneralName const& location);

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  Impl* m_impl;
};

KORVEX_API bool operator==(CAccessDescription const& a, CAccessDescription const& b);
KORVEX_API bool operator!=(CAccessDescription const& a, CAccessDescription const& b);

// CAuthorityInfoAccessSyntax: AuthorityInfoAccessSyntax ::= SEQUENCE SIZE
// (1..MAX) OF AccessDescription, in order. Encoding an empty list throws
// 0x80093101.
class KORVEX_API CAuthorityInfoAccessSyntax : public std::list<CAccessDescription> {
 public:
  using std::list<CAccessDescription>::list;

  // find: the first description with that access method, or end() (also for
  // null).
  iterator find(char const* accessMethod);
  const_iterator find(char const* accessMethod) const;

  CBlob encode() const;
  void decode(CBlob const& der);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
