// korvex/asn1types/SigningCertificate.h: the signing-certificate attributes
// that bind a signature to the signer's certificate: SigningCertificate
// (RFC 2634 5.4, SHA-1), SigningCertificateV2 (RFC 5035 3, any hash) and
// OtherSigningCertificate (RFC 5126 5.7.3.2). Part of Attribute.h.
//
// Each holds its list of certificate IDs (the first identifies the signing
// certificate) and the optional list of policies, and keeps the DER of the
// attribute value in step with them as the other typed attribute values do.
#ifndef KORVEX_ASN1TYPES_SIGNINGCERTIFICATE_H
#define KORVEX_ASN1TYPES_SIGNINGCERTIFICATE_H

#include <korvex/asn1types/Attribute.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/ExtPolicy.h>
#include <korvex/core/Blob.h>
#include <korvex/platform/export.h>

#include <memory>

namespace Korvex {
namespace ASN1 {

struct ASN1T_SigningCertificate_traits;
struct ASN1T_SigningCertificateV2_traits;
struct ASN1T_OtherSigningCertificate_traits;
struct SigningCertificateCodec;

// CAttrSigningCertificate: signingCertificate (1.2.840.113549.1.9.16.2.12),
// SigningCertificate ::= SEQUENCE { certs SEQUENCE OF ESSCertID, policies
// SEQUENCE OF PolicyInformation OPTIONAL }.
class KORVEX_API CAttrSigningCertificate : public CAttrValue {
 public:
  // CAttrSigningCertificate(): no certificate IDs, no policies.
  CAttrSigningCertificate();
  explicit CAttrSigningCertificate(CESSCertIDList const& certs);
  // CAttrSigningCertificate(der): the value in the DER (failure 0x80093101).
  explicit CAttrSigningCertificate(CBlob const& der);
  CAttrSigningCertificate(CAttrSigningCertificate const& other);
  CAttrSigningCertificate& operator=(CAttrSigningCertificate const& other);
  ~CAttrSigningCertificate() override;

  CESSCertIDList const& get_certs() const;
  // put_certs / put_policies replace the part and the DER at once; a value
  // that cannot be encoded throws and changes nothing. put_policies(null)
  // removes the policies; a present but empty list is written as 30 00 (the
  // SEQUENCE OF has no size constraint) and reads back present.
  void put_certs(CESSCertIDList const& certs);
  CPolicyInformationList const* get_policies() const;
  void put_policies(CPolicyInformationList const* policies);

  // encode: the DER made again from the parts (also held as get_value());
  // decode: the parts read from get_value(), or from der (which then becomes
  // the value). A failed decode changes nothing.
  CBlob const& encode();
  void decode();
  void decode(CBlob const& der);

 private:
  friend struct ASN1T_SigningCertificate_traits;
  friend struct SigningCertificateCodec;
  struct PartsOnly {};
  // A value whose DER is not made (the codec fills and encodes it).
  explicit CAttrSigningCertificate(PartsOnly);

  CESSCertIDList m_certs;
  std::unique_ptr<CPolicyInformationList> m_policies;
};

// CAttrSigningCertificateV2: signingCertificateV2 (1.2.840.113549.1.9.16.2.47),
// SigningCertificateV2 ::= SEQUENCE { certs SEQUENCE OF ESSCertIDv2, policies
// SEQUENCE OF PolicyInformation OPTIONAL }. The same interface.
class KORVEX_API CAttrSigningCertificateV2 : public CAttrValue {
 public:
  CAttrSigningCertificateV2();
  explicit CAttrSigningCertificateV2(CESSCertIDv2List const& certs);
  explicit CAttrSigningCertificateV2(CBlob const& der);
  CAttrSigningCertificateV2(CAttrSigningCertificateV2 const& other);
  CAttrSigningCertificateV2& operator=(CAttrSigningCertificateV2 const& other);
  ~CAttrSigningCertificateV2() override;

  CESSCertIDv2List const& get_certs() const;
  void put_certs(CESSCertIDv2List const& certs);
  CPolicyInformationList const* get_policies() const;
  void put_policies(CPolicyInformationList const* policies);

  CBlob const& encode();
  void decode();
  void decode(CBlob const& der);

 private:
  friend struct ASN1T_SigningCertificateV2_traits;
  friend struct SigningCertificateCodec;
  struct PartsOnly {};
  // A value whose DER is not made (the codec fills and encodes it).
  explicit CAttrSigningCertificateV2(PartsOnly);

  CESSCertIDv2List m_certs;
  std::unique_ptr<CPolicyInformationList> m_policies;
};

// CAttrOtherSigningCertificate: otherSigningCertificate
// (1.2.840.113549.1.9.16.2.19), OtherSigningCertificate ::= SEQUENCE { certs
// SEQUENCE OF OtherCertID, policies SEQUENCE OF PolicyInformation OPTIONAL }.
// The same interface.
class KORVEX_API CAttrOtherSigningCertificate : public CAttrValue {
 public:
  CAttrOtherSigningCertificate();
  explicit CAttrOtherSigningCertificate(COtherCertIDList const& certs);
  explicit CAttrOtherSigningCertificate(CBlob const& der);
  CAttrOtherSigningCertificate(CAttrOtherSigningCertificate const& other);
  CAttrOtherSigningCertificate& operator=(CAttrOtherSigningCertificate const& other);
  ~CAttrOtherSigningCertificate() override;

  COtherCertIDList const& get_certs() const;
  void put_certs(COtherCertIDList const& certs);
  CPolicyInformationList const* get_policies() const;
  void put_policies(CPolicyInformationList const* policies);

  CBlob const& encode();
  void decode();
  void decode(CBlob const& der);

 private:
  friend struct ASN1T_OtherSigningCertificate_traits;
  friend struct SigningCertificateCodec;
  struct PartsOnly {};
  // A value whose DER is not made (the codec fills and encodes it).
  explicit CAttrOtherSigningCertificate(PartsOnly);

  COtherCertIDList m_certs;
  std::unique_ptr<CPolicyInformationList> m_policies;
};

}  // namespace ASN1
}  // namespace Korvex

#endif
