// IssuerSerial.cpp: CIssuerSerial.
#include <korvex/asn1types/CertIdTraits.h>
#include <korvex/asn1types/IssuerSerial.h>

namespace Korvex {
namespace ASN1 {

struct CIssuerSerial::Impl {
  CGeneralNames issuer;
  CBigInteger serialNumber;
};

CIssuerSerial::CIssuerSerial() : m_impl(new Impl) {}

CIssuerSerial::CIssuerSerial(CGeneralNames const& issuer, CBigInteger const& serialNumber)
    : m_impl(new Impl{issuer, serialNumber}) {}

CIssuerSerial::CIssuerSerial(CIssuerSerial const& other) : m_impl(new Impl(*other.m_impl)) {}

CIssuerSerial& CIssuerSerial::operator=(CIssuerSerial const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

CIssuerSerial::~CIssuerSerial() {}

CGeneralNames const& CIssuerSerial::get_issuer() const { return m_impl->issuer; }

void CIssuerSerial::put_issuer(CGeneralNames const& issuer) {
  CGeneralNames copy(issuer);
  m_impl->issuer.swap(copy);
}

CBigInteger const& CIssuerSerial::get_serialNumber() const { return m_impl->serialNumber; }

void CIssuerSerial::put_serialNumber(CBigInteger const& serialNumber) {
  m_impl->serialNumber = serialNumber;
}

CBlob CIssuerSerial::encode() const { return asn1Encode<ASN1T_IssuerSerial_traits>(*this); }

void CIssuerSerial::decode(CBlob const& der) {
  CIssuerSerial decoded;
  asn1Decode<ASN1T_IssuerSerial_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(CIssuerSerial const& left, CIssuerSerial const& right) {
  return left.get_serialNumber() == right.get_serialNumber() &&
         left.get_issuer() == right.get_issuer();
}

bool operator!=(CIssuerSerial const& left, CIssuerSerial const& right) { return !(left == right); }

}  // namespace ASN1
}  // namespace Korvex
