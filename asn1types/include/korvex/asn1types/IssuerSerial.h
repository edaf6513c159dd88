// korvex/asn1types/IssuerSerial.h: IssuerSerial (RFC 5035 / RFC 2634 5.4.1),
// a certificate named by its issuer's general names and its serial number.
//
//   IssuerSerial ::= SEQUENCE { issuer GeneralNames,
//                               serialNumber CertificateSerialNumber }
//
// Conversion to and from asn1data::ASN1T_IssuerSerial is CertIdTraits.h.
#ifndef KORVEX_ASN1TYPES_ISSUERSERIAL_H
#define KORVEX_ASN1TYPES_ISSUERSERIAL_H

#include <korvex/asn1types/BigInteger.h>
#include <korvex/asn1types/Names.h>
#include <korvex/core/Blob.h>
#include <korvex/platform/export.h>

#include <memory>

namespace Korvex {
namespace ASN1 {

// CIssuerSerial: a value class (deep copies, one owned implementation).
// Default: no issuer names, serial number zero.
class KORVEX_API CIssuerSerial {
 public:
  CIssuerSerial();
  CIssuerSerial(CGeneralNames const& issuer, CBigInteger const& serialNumber);
  CIssuerSerial(CIssuerSerial const& other);
  CIssuerSerial& operator=(CIssuerSerial const& other);
  ~CIssuerSerial();

  CGeneralNames const& get_issuer() const;
  void put_issuer(CGeneralNames const& issuer);
  CBigInteger const& get_serialNumber() const;
  void put_serialNumber(CBigInteger const& serialNumber);

  // encode: the DER; a general name that does not encode throws 0x80093101.
  // decode: replaces the value; failure throws 0x80093101 and leaves it as
  // it was.
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Equal when the issuer lists are equal (count, then name by name in order)
// and the serial numbers are equal by value.
KORVEX_API bool operator==(CIssuerSerial const& left, CIssuerSerial const& right);
KORVEX_API bool operator!=(CIssuerSerial const& left, CIssuerSerial const& right);

}  // namespace ASN1
}  // namespace Korvex

#endif
