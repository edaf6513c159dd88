// The typed attribute values of a CAdES signer: content type, message digest,
// signing time. An attribute value is exactly one element: decode() refuses
// bytes after it (0x80093101) rather than dropping them.
#include <korvex/asn1types/Attribute.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/asn1types/Util.h>

#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

// ---- CAttrContentType: OBJECT IDENTIFIER (RFC 5652 11.1) ----

CAttrContentType::CAttrContentType(char const* oid)
    : CAttrValue(kOidContentType), m_contentType(nullptr) {
  put_contentType(oid);
}

CAttrContentType::CAttrContentType(CBlob const& der)
    : CAttrValue(kOidContentType), m_contentType(nullptr) {
  decode(der);
}

char const* CAttrContentType::get_contentType() const { return m_contentType.c_str(); }

void CAttrContentType::put_contentType(char const* oid) {
  CBlob der = asn1Encode<ASN1TObjId_traits>(detail::requireText(oid));
  m_contentType = oid;
  value().swap(der);
}

CBlob const& CAttrContentType::encode() {
  CBlob der = asn1Encode<ASN1TObjId_traits>(m_contentType.c_str());
  value().swap(der);
  return get_value();
}

void CAttrContentType::decode() {
  detail::requireOneElement(get_value());
  CStringProxy oid(nullptr);
  asn1Decode<ASN1TObjId_traits>(get_value(), oid);
  m_contentType = oid;
}

void CAttrContentType::decode(CBlob const& der) {
  detail::requireOneElement(der);
  CStringProxy oid(nullptr);
  asn1Decode<ASN1TObjId_traits>(der, oid);
  CBlob copy(der);
  m_contentType = oid;
  value().swap(copy);
}

// ---- CAttrMessageDigest: OCTET STRING (RFC 5652 11.2) ----

CAttrMessageDigest::CAttrMessageDigest() : CAttrValue(kOidMessageDigest) {
  put_messageDigest(CBlob());
}

CAttrMessageDigest::CAttrMessageDigest(CBlob const& digest) : CAttrValue(kOidMessageDigest) {
  put_messageDigest(digest);
}

CBlob const& CAttrMessageDigest::get_messageDigest() const { return m_messageDigest; }

void CAttrMessageDigest::put_messageDigest(CBlob const& digest) {
  CBlob der = toOctetString(digest);
  CBlob copy(digest);
  m_messageDigest.swap(copy);
  value().swap(der);
}

CBlob const& CAttrMessageDigest::encode() {
  CBlob der = toOctetString(m_messageDigest);
  value().swap(der);
  return get_value();
}

void CAttrMessageDigest::decode() {
  detail::requireOneElement(get_value());
  CBlob digest = fromOctetString(get_value());
  m_messageDigest.swap(digest);
}

void CAttrMessageDigest::decode(CBlob const& der) {
  detail::requireOneElement(der);
  CBlob digest = fromOctetString(der);
  CBlob copy(der);
  m_messageDigest.swap(digest);
  value().swap(copy);
}

// ---- CAttrSigningTime: Time (RFC 5652 11.3) ----

CAttrSigningTime::CAttrSigningTime(CDateTime const& t) : CAttrValue(kOidSigningTime) {
  put_signingTime(t);
}

CAttrSigningTime::CAttrSigningTime(CBlob const& der) : CAttrValue(kOidSigningTime) { decode(der); }

CTimeChoice const& CAttrSigningTime::get_signingTime() const { return m_signingTime; }

void CAttrSigningTime::put_signingTime(CDateTime const& t) {
  CTimeChoice time(t);
  CBlob der = time.encode();
  m_signingTime = time;
  value().swap(der);
}

CBlob const& CAttrSigningTime::encode() {
  CBlob der = m_signingTime.encode();
  value().swap(der);
  return get_value();
}

void CAttrSigningTime::decode() {
  detail::requireOneElement(get_value());
  CTimeChoice time;
  time.decode(get_value());
  m_signingTime = time;
}

void CAttrSigningTime::decode(CBlob const& der) {
  detail::requireOneElement(der);
  CTimeChoice time;
  time.decode(der);
  CBlob copy(der);
  m_signingTime = time;
  value().swap(copy);
}

}  // namespace ASN1
}  // namespace Korvex
