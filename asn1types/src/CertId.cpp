// CertId.cpp: CESSCertID, CESSCertIDv2, COtherCertID and CCertId.
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/CertIdTraits.h>

namespace Korvex {
namespace ASN1 {

namespace {

// Optional members: both absent, or both present and equal.
template <class T>
bool SameOptional(T const* left, T const* right) {
  if (!left || !right) return !left && !right;
  return *left == *right;
}

}  // namespace

// ---- CESSCertID --------------------------------------------------------------------

struct CESSCertID::Impl {
  CBlob certHash;
  std::unique_ptr<CIssuerSerial> issuerSerial;

  Impl() = default;
  explicit Impl(CBlob const& hash) : certHash(hash) {}
  Impl(Impl const& other) : certHash(other.certHash) {
    copy_to_auto_ptr(issuerSerial, other.issuerSerial);
  }
  Impl& operator=(Impl const&) = delete;
};

CESSCertID::CESSCertID() : m_impl(new Impl) {}
CESSCertID::CESSCertID(CBlob const& certHash) : m_impl(new Impl(certHash)) {}
CESSCertID::CESSCertID(CESSCertID const& other) : m_impl(new Impl(*other.m_impl)) {}

CESSCertID& CESSCertID::operator=(CESSCertID const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

CESSCertID::~CESSCertID() {}

CBlob const& CESSCertID::get_certHash() const { return m_impl->certHash; }
void CESSCertID::put_certHash(CBlob const& certHash) { m_impl->certHash = certHash; }

CIssuerSerial const* CESSCertID::get_issuerSerial() const { return m_impl->issuerSerial.get(); }
void CESSCertID::put_issuerSerial(CIssuerSerial const* issuerSerial) {
  copy_to_auto_ptr(m_impl->issuerSerial, issuerSerial);
}

CBlob CESSCertID::encode() const { return asn1Encode<ASN1T_ESSCertID_traits>(*this); }

void CESSCertID::decode(CBlob const& der) {
  CESSCertID decoded;
  asn1Decode<ASN1T_ESSCertID_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(CESSCertID const& left, CESSCertID const& right) {
  return left.get_certHash() == right.get_certHash() &&
         SameOptional(left.get_issuerSerial(), right.get_issuerSerial());
}

bool operator!=(CESSCertID const& left, CESSCertID const& right) { return !(left == right); }

// ---- CESSCertIDv2 ------------------------------------------------------------------

struct CESSCertIDv2::Impl {
  CAlgorithmIdentifier hashAlgorithm;
  CBlob certHash;
  std::unique_ptr<CIssuerSerial> issuerSerial;

  Impl(CAlgorithmIdentifier const& algorithm, CBlob const& hash)
      : hashAlgorithm(algorithm), certHash(hash) {}
  Impl(Impl const& other) : hashAlgorithm(other.hashAlgorithm), certHash(other.certHash) {
    copy_to_auto_ptr(issuerSerial, other.issuerSerial);
  }
  Impl& operator=(Impl const&) = delete;
};

CESSCertIDv2::CESSCertIDv2()
    : m_impl(new Impl(CAlgorithmIdentifier(kESSCertIDv2DefaultHashOid), CBlob())) {}

CESSCertIDv2::CESSCertIDv2(CBlob const& certHash)
    : m_impl(new Impl(CAlgorithmIdentifier(kESSCertIDv2DefaultHashOid), certHash)) {}

CESSCertIDv2::CESSCertIDv2(CBlob const& certHash, CAlgorithmIdentifier const& hashAlgorithm)
    : m_impl(new Impl(hashAlgorithm, certHash)) {}

CESSCertIDv2::CESSCertIDv2(CESSCertIDv2 const& other) : m_impl(new Impl(*other.m_impl)) {}

CESSCertIDv2& CESSCertIDv2::operator=(CESSCertIDv2 const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

CESSCertIDv2::~CESSCertIDv2() {}

CAlgorithmIdentifier const& CESSCertIDv2::get_hashAlgorithm() const {
  return m_impl->hashAlgorithm;
}
void CESSCertIDv2::put_hashAlgorithm(CAlgorithmIdentifier const& hashAlgorithm) {
  m_impl->hashAlgorithm = hashAlgorithm;
}

CBlob const& CESSCertIDv2::get_certHash() const { return m_impl->certHash; }
void CESSCertIDv2::put_certHash(CBlob const& certHash) { m_impl->certHash = certHash; }

CIssuerSerial const* CESSCertIDv2::get_issuerSerial() const {
  return m_impl->issuerSerial.get();
}
void CESSCertIDv2::put_issuerSerial(CIssuerSerial const* issuerSerial) {
  copy_to_auto_ptr(m_impl->issuerSerial, issuerSerial);
}

CBlob CESSCertIDv2::encode() const { return asn1Encode<ASN1T_ESSCertIDv2_traits>(*this); }

void CESSCertIDv2::decode(CBlob const& der) {
  CESSCertIDv2 decoded;
  asn1Decode<ASN1T_ESSCertIDv2_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(CESSCertIDv2 const& left, CESSCertIDv2 const& right) {
  return left.get_hashAlgorithm() == right.get_hashAlgorithm() &&
         left.get_certHash() == right.get_certHash() &&
         SameOptional(left.get_issuerSerial(), right.get_issuerSerial());
}

bool operator!=(CESSCertIDv2 const& left, CESSCertIDv2 const& right) { return !(left == right); }

// ---- COtherCertID ------------------------------------------------------------------

struct COtherCertID::Impl {
  COtherHash otherCertHash;
  std::unique_ptr<CIssuerSerial> issuerSerial;

  explicit Impl(COtherHash const& hash) : otherCertHash(hash) {}
  Impl(Impl const& other) : otherCertHash(other.otherCertHash) {
    copy_to_auto_ptr(issuerSerial, other.issuerSerial);
  }
  Impl& operator=(Impl const&) = delete;
};

COtherCertID::COtherCertID() : m_impl(new Impl(COtherHash())) {}

COtherCertID::COtherCertID(CBlob const& sha1Hash) : m_impl(new Impl(COtherHash(sha1Hash))) {}

COtherCertID::COtherCertID(CBlob const& hashValue, CAlgorithmIdentifier const& hashAlgorithm)
    : m_impl(new Impl(COtherHash(COtherHashAlgAndValue(hashValue, hashAlgorithm)))) {}

COtherCertID::COtherCertID(COtherCertID const& other) : m_impl(new Impl(*other.m_impl)) {}

COtherCertID& COtherCertID::operator=(COtherCertID const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

COtherCertID::~COtherCertID() {}

COtherHash const& COtherCertID::get_otherCertHash() const { return m_impl->otherCertHash; }
void COtherCertID::put_otherCertHash(COtherHash const& otherCertHash) {
  m_impl->otherCertHash = otherCertHash;
}

CIssuerSerial const* COtherCertID::get_issuerSerial() const {
  return m_impl->issuerSerial.get();
}
void COtherCertID::put_issuerSerial(CIssuerSerial const* issuerSerial) {
  copy_to_auto_ptr(m_impl->issuerSerial, issuerSerial);
}

bool COtherCertID::compare_noHashParam(COtherCertID const& other) const {
  return get_otherCertHash().compare_hashValue(other.get_otherCertHash()) &&
         SameOptional(get_issuerSerial(), other.get_issuerSerial());
}

CBlob COtherCertID::encode() const { return asn1Encode<ASN1T_OtherCertID_traits>(*this); }

void COtherCertID::decode(CBlob const& der) {
  COtherCertID decoded;
  asn1Decode<ASN1T_OtherCertID_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(COtherCertID const& left, COtherCertID const& right) {
  return left.get_otherCertHash() == right.get_otherCertHash() &&
         SameOptional(left.get_issuerSerial(), right.get_issuerSerial());
}

bool operator!=(COtherCertID const& left, COtherCertID const& right) { return !(left == right); }

// ---- CCertId -----------------------------------------------------------------------

struct CCertId::Impl {
  CGeneralName issuer;
  CBigInteger serialNumber;
};

CCertId::CCertId() : m_impl(new Impl) {}

CCertId::CCertId(CGeneralName const& issuer, CBigInteger const& serialNumber)
    : m_impl(new Impl{issuer, serialNumber}) {}

CCertId::CCertId(CCertId const& other) : m_impl(new Impl(*other.m_impl)) {}

CCertId& CCertId::operator=(CCertId const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

CCertId::~CCertId() {}

CGeneralName const& CCertId::get_issuer() const { return m_impl->issuer; }
void CCertId::put_issuer(CGeneralName const& issuer) { m_impl->issuer = issuer; }

CBigInteger const& CCertId::get_serialNumber() const { return m_impl->serialNumber; }
void CCertId::put_serialNumber(CBigInteger const& serialNumber) {
  m_impl->serialNumber = serialNumber;
}

CBlob CCertId::encode() const { return asn1Encode<ASN1T_CertId_traits>(*this); }

void CCertId::decode(CBlob const& der) {
  CCertId decoded;
  asn1Decode<ASN1T_CertId_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(CCertId const& left, CCertId const& right) {
  return left.get_serialNumber() == right.get_serialNumber() &&
         left.get_issuer() == right.get_issuer();
}

bool operator!=(CCertId const& left, CCertId const& right) { return !(left == right); }

}  // namespace ASN1
}  // namespace Korvex
