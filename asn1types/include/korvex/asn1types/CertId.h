// korvex/asn1types/CertId.h: certificate identifiers by hash and, optionally,
// issuer and serial number:
//
//   ESSCertID    (RFC 5035 / RFC 2634 5.4.1)  SHA-1 hash [, IssuerSerial]
//   ESSCertIDv2  (RFC 5035 4)                 [hash algorithm,] hash
//                                             [, IssuerSerial]; the algorithm
//                                             defaults to SHA-256
//   OtherCertID  (RFC 5126 5.7.3.3)           OtherHash [, IssuerSerial]
//   CertId       (RFC 4211 5)                 issuer GeneralName, serial
//
// and the lists that the signing-certificate attributes carry (CESSCertIDList,
// CESSCertIDv2List, COtherCertIDList). Conversions to and from the generated
// records are CertIdTraits.h.
//
// Optional members follow the value-class convention: put_<field>(T const*)
// stores a deep copy (null removes the member), get_<field>() returns a
// pointer that is null when the member is absent and lives until the member
// changes.
#ifndef KORVEX_ASN1TYPES_CERTID_H
#define KORVEX_ASN1TYPES_CERTID_H

#include <korvex/asn1types/AlgorithmIdentifier.h>
#include <korvex/asn1types/BigInteger.h>
#include <korvex/asn1types/Hash.h>
#include <korvex/asn1types/IssuerSerial.h>
#include <korvex/asn1types/Names.h>
#include <korvex/core/Blob.h>
#include <korvex/platform/export.h>

#include <list>
#include <memory>

namespace Korvex {
namespace ASN1 {

// The OID text of SHA-256 (RFC 5754 2.2), ESSCertIDv2's default hash
// algorithm (RFC 5035 4).
constexpr char kESSCertIDv2DefaultHashOid[] = "2.16.840.1.101.3.4.2.1";

// ---- ESSCertID ---------------------------------------------------------------

// CESSCertID: certHash (the SHA-1 of the whole certificate) and an optional
// issuerSerial. Default: empty hash, no issuerSerial.
class KORVEX_API CESSCertID {
 public:
  CESSCertID();
  explicit CESSCertID(CBlob const& certHash);
  CESSCertID(CESSCertID const& other);
  CESSCertID& operator=(CESSCertID const& other);
  ~CESSCertID();

  CBlob const& get_certHash() const;
  void put_certHash(CBlob const& certHash);
  CIssuerSerial const* get_issuerSerial() const;
  void put_issuerSerial(CIssuerSerial const* issuerSerial);

  // encode / decode: DER; failures throw 0x80093101 (decode leaves the value
  // as it was).
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Equal when hashes are equal and issuerSerials are both absent or both
// present and equal.
KORVEX_API bool operator==(CESSCertID const& left, CESSCertID const& right);
KORVEX_API bool operator!=(CESSCertID const& left, CESSCertID const& right);

// ---- ESSCertIDv2 -------------------------------------------------------------

// CESSCertIDv2: hashAlgorithm (by default SHA-256 without parameters),
// certHash and an optional issuerSerial.
//
// Encoding writes hashAlgorithm only when its OID text differs from
// "2.16.840.1.101.3.4.2.1": SHA-256 is left out whatever its parameters, which
// are lost (a SHA-256 with NULL parameters decodes as SHA-256 without). This
// is the established behaviour and is kept. Decoding takes the hashAlgorithm
// on the wire, or SHA-256 without parameters when it is absent.
class KORVEX_API CESSCertIDv2 {
 public:
  CESSCertIDv2();
  // CESSCertIDv2(certHash): SHA-256, the given hash, no issuerSerial.
  explicit CESSCertIDv2(CBlob const& certHash);
  CESSCertIDv2(CBlob const& certHash, CAlgorithmIdentifier const& hashAlgorithm);
  CESSCertIDv2(CESSCertIDv2 const& other);
  CESSCertIDv2& operator=(CESSCertIDv2 const& other);
  ~CESSCertIDv2();

  CAlgorithmIdentifier const& get_hashAlgorithm() const;
  void put_hashAlgorithm(CAlgorithmIdentifier const& hashAlgorithm);
  CBlob const& get_certHash() const;
  void put_certHash(CBlob const& certHash);
  CIssuerSerial const* get_issuerSerial() const;
  void put_issuerSerial(CIssuerSerial const* issuerSerial);

  // encode / decode: DER; bad algorithm OID text or parameters throw
  // 0x80093101 when encoding, as does bad DER when decoding (which leaves the
  // value as it was).
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Equal when algorithms (parameters included), hashes and issuerSerials
// (absent/present rule) are equal.
KORVEX_API bool operator==(CESSCertIDv2 const& left, CESSCertIDv2 const& right);
KORVEX_API bool operator!=(CESSCertIDv2 const& left, CESSCertIDv2 const& right);

// ---- OtherCertID -------------------------------------------------------------

// COtherCertID: otherCertHash (COtherHash) and an optional issuerSerial.
// Default: an empty sha1Hash, no issuerSerial.
class KORVEX_API COtherCertID {
 public:
  COtherCertID();
  // COtherCertID(sha1Hash): otherCertHash is the sha1Hash alternative.
  explicit COtherCertID(CBlob const& sha1Hash);
  // COtherCertID(hashValue, hashAlgorithm): otherCertHash is the otherHash
  // alternative holding both (also when the algorithm is SHA-1).
  COtherCertID(CBlob const& hashValue, CAlgorithmIdentifier const& hashAlgorithm);
  COtherCertID(COtherCertID const& other);
  COtherCertID& operator=(COtherCertID const& other);
  ~COtherCertID();

  COtherHash const& get_otherCertHash() const;
  void put_otherCertHash(COtherHash const& otherCertHash);
  CIssuerSerial const* get_issuerSerial() const;
  void put_issuerSerial(CIssuerSerial const* issuerSerial);

  // compare_noHashParam: equality that ignores the parameters of the hash
  // algorithm: the hashes compare_hashValue-equal (same algorithm OID and
  // bytes; a sha1Hash matches an otherHash naming SHA-1), and the
  // issuerSerials both absent or both present and equal.
  bool compare_noHashParam(COtherCertID const& other) const;

  // encode / decode: DER; failures throw 0x80093101 (decode leaves the value
  // as it was).
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Equal when the hashes are equal (COtherHash equality: same alternative,
// equal values) and the issuerSerials follow the absent/present rule.
KORVEX_API bool operator==(COtherCertID const& left, COtherCertID const& right);
KORVEX_API bool operator!=(COtherCertID const& left, COtherCertID const& right);

// ---- CertId ------------------------------------------------------------------

// CCertId: CertId ::= SEQUENCE { issuer GeneralName, serialNumber INTEGER }
// (RFC 4211 5), the certificate identifier of certificate management.
// Default: a general name with no alternative (which does not encode) and the
// serial number zero.
class KORVEX_API CCertId {
 public:
  CCertId();
  CCertId(CGeneralName const& issuer, CBigInteger const& serialNumber);
  CCertId(CCertId const& other);
  CCertId& operator=(CCertId const& other);
  ~CCertId();

  CGeneralName const& get_issuer() const;
  void put_issuer(CGeneralName const& issuer);
  CBigInteger const& get_serialNumber() const;
  void put_serialNumber(CBigInteger const& serialNumber);

  // encode: the DER; an issuer without an alternative or one that does not
  // encode throws 0x80093101. decode: replaces the value; failure throws
  // 0x80093101 and leaves it as it was.
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

KORVEX_API bool operator==(CCertId const& left, CCertId const& right);
KORVEX_API bool operator!=(CCertId const& left, CCertId const& right);

// ---- Lists -------------------------------------------------------------------

// The `certs` of SigningCertificate, SigningCertificateV2 and
// OtherSigningCertificate, in wire order (the first names the signer's
// certificate, RFC 5035 5.4.1). Plain lists: copies are deep, == compares
// count then element by element.
class KORVEX_API CESSCertIDList : public std::list<CESSCertID> {
 public:
  using std::list<CESSCertID>::list;
};

class KORVEX_API CESSCertIDv2List : public std::list<CESSCertIDv2> {
 public:
  using std::list<CESSCertIDv2>::list;
};

class KORVEX_API COtherCertIDList : public std::list<COtherCertID> {
 public:
  using std::list<COtherCertID>::list;
};

}  // namespace ASN1
}  // namespace Korvex

#endif
