// Hash.cpp: COtherHashAlgAndValue, COtherHashImpl and COtherHash.
#include <korvex/asn1types/Hash.h>
#include <korvex/asn1types/HashTraits.h>

#include <cstring>

namespace Korvex {
namespace ASN1 {

// ---- COtherHashAlgAndValue ---------------------------------------------------------

struct COtherHashAlgAndValue::Impl {
  CAlgorithmIdentifier hashAlgorithm;
  CBlob hashValue;
};

COtherHashAlgAndValue::COtherHashAlgAndValue() : m_impl(new Impl) {}

COtherHashAlgAndValue::COtherHashAlgAndValue(CBlob const& hashValue,
                                             CAlgorithmIdentifier const& hashAlgorithm)
    : m_impl(new Impl{hashAlgorithm, hashValue}) {}

COtherHashAlgAndValue::COtherHashAlgAndValue(COtherHashAlgAndValue const& other)
    : m_impl(new Impl(*other.m_impl)) {}

COtherHashAlgAndValue& COtherHashAlgAndValue::operator=(COtherHashAlgAndValue const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

COtherHashAlgAndValue::~COtherHashAlgAndValue() {}

CAlgorithmIdentifier const& COtherHashAlgAndValue::get_hashAlgorithm() const {
  return m_impl->hashAlgorithm;
}

void COtherHashAlgAndValue::put_hashAlgorithm(CAlgorithmIdentifier const& hashAlgorithm) {
  m_impl->hashAlgorithm = hashAlgorithm;
}

CBlob const& COtherHashAlgAndValue::get_hashValue() const { return m_impl->hashValue; }

void COtherHashAlgAndValue::put_hashValue(CBlob const& hashValue) {
  m_impl->hashValue = hashValue;
}

bool COtherHashAlgAndValue::compare_hashValue(COtherHashAlgAndValue const& other) const {
  return std::strcmp(get_hashAlgorithm().get_algorithm(),
                     other.get_hashAlgorithm().get_algorithm()) == 0 &&
         get_hashValue() == other.get_hashValue();
}

CBlob COtherHashAlgAndValue::encode() const {
  return asn1Encode<ASN1T_OtherHashAlgAndValue_traits>(*this);
}

void COtherHashAlgAndValue::decode(CBlob const& der) {
  COtherHashAlgAndValue decoded;
  asn1Decode<ASN1T_OtherHashAlgAndValue_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(COtherHashAlgAndValue const& left, COtherHashAlgAndValue const& right) {
  return left.get_hashAlgorithm() == right.get_hashAlgorithm() &&
         left.get_hashValue() == right.get_hashValue();
}

bool operator!=(COtherHashAlgAndValue const& left, COtherHashAlgAndValue const& right) {
  return !(left == right);
}

// ---- COtherHashImpl ----------------------------------------------------------------

COtherHashImpl::COtherHashImpl() {}
COtherHashImpl::COtherHashImpl(COtherHashImpl const& other) : Choice(other) {}
COtherHashImpl& COtherHashImpl::operator=(COtherHashImpl const& other) {
  Choice::operator=(other);
  return *this;
}
COtherHashImpl::~COtherHashImpl() {}

ChoiceValueTraits const* COtherHashImpl::findTraits(unsigned int n) const {
  return selectChoiceTraits<ChoiceValueTraitsT<CBlob, sha1Hash>,
                            ChoiceValueTraitsT<COtherHashAlgAndValue, otherHash>>(n);
}

// ---- COtherHash --------------------------------------------------------------------

COtherHash::COtherHash() : m_impl(new COtherHashImpl) { put_sha1Hash(CBlob()); }

COtherHash::COtherHash(CBlob const& sha1Hash) : m_impl(new COtherHashImpl) {
  put_sha1Hash(sha1Hash);
}

COtherHash::COtherHash(COtherHashAlgAndValue const& otherHash) : m_impl(new COtherHashImpl) {
  put_otherHash(otherHash);
}

COtherHash::COtherHash(COtherHash const& other) : m_impl(new COtherHashImpl(*other.m_impl)) {}

COtherHash& COtherHash::operator=(COtherHash const& other) {
  if (this != &other) m_impl.reset(new COtherHashImpl(*other.m_impl));
  return *this;
}

COtherHash::~COtherHash() {}

unsigned int COtherHash::get_type() const { return m_impl->get_type(); }

CBlob const* COtherHash::get_sha1Hash() const {
  return m_impl->get_as<CBlob>(COtherHashImpl::sha1Hash);
}

COtherHashAlgAndValue const* COtherHash::get_otherHash() const {
  return m_impl->get_as<COtherHashAlgAndValue>(COtherHashImpl::otherHash);
}

void COtherHash::put_sha1Hash(CBlob const& sha1Hash) {
  m_impl->put_value(COtherHashImpl::sha1Hash, &sha1Hash);
}

void COtherHash::put_otherHash(COtherHashAlgAndValue const& otherHash) {
  m_impl->put_value(COtherHashImpl::otherHash, &otherHash);
}

void COtherHash::clear() { m_impl->reset(); }

namespace {

// The algorithm OID and bytes of a hash, a sha1Hash read as SHA-1.
bool HashOf(COtherHash const& hash, char const** oid, CBlob const** bytes) {
  if (CBlob const* sha1 = hash.get_sha1Hash()) {
    *oid = kSha1AlgorithmOid;
    *bytes = sha1;
    return true;
  }
  if (COtherHashAlgAndValue const* other = hash.get_otherHash()) {
    *oid = other->get_hashAlgorithm().get_algorithm();
    *bytes = &other->get_hashValue();
    return true;
  }
  return false;
}

}  // namespace

bool COtherHash::compare_hashValue(COtherHash const& other) const {
  char const* myOid;
  char const* otherOid;
  CBlob const* myBytes;
  CBlob const* otherBytes;
  if (!HashOf(*this, &myOid, &myBytes) || !HashOf(other, &otherOid, &otherBytes)) return false;
  return std::strcmp(myOid, otherOid) == 0 && *myBytes == *otherBytes;
}

CBlob COtherHash::encode() const { return asn1Encode<ASN1T_OtherHash_traits>(*this); }

void COtherHash::decode(CBlob const& der) {
  COtherHash decoded;
  asn1Decode<ASN1T_OtherHash_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(COtherHash const& left, COtherHash const& right) {
  if (left.get_type() != right.get_type()) return false;
  if (CBlob const* sha1 = left.get_sha1Hash()) return *sha1 == *right.get_sha1Hash();
  if (COtherHashAlgAndValue const* other = left.get_otherHash()) {
    return *other == *right.get_otherHash();
  }
  return true;
}

bool operator!=(COtherHash const& left, COtherHash const& right) { return !(left == right); }

}  // namespace ASN1
}  // namespace Korvex
