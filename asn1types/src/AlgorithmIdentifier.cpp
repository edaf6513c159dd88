// AlgorithmIdentifier.cpp: CAlgorithmIdentifier and CAlgorithmIdentifierEx.
#include <korvex/asn1types/AlgorithmIdentifier.h>
#include <korvex/asn1types/AlgorithmIdentifierTraits.h>

#include <cstring>

namespace Korvex {
namespace ASN1 {

// ---- CAlgorithmIdentifier ----------------------------------------------------------

CAlgorithmIdentifier::CAlgorithmIdentifier() : m_algorithm(nullptr) {}

CAlgorithmIdentifier::CAlgorithmIdentifier(char const* oid) : m_algorithm(oid) {}

CAlgorithmIdentifier::CAlgorithmIdentifier(CAlgorithmIdentifier const& other)
    : m_algorithm(other.m_algorithm), m_parameters(other.m_parameters) {}

CAlgorithmIdentifier& CAlgorithmIdentifier::operator=(CAlgorithmIdentifier const& other) {
  assign(other);
  return *this;
}

CAlgorithmIdentifier::~CAlgorithmIdentifier() {}

void CAlgorithmIdentifier::assign(CAlgorithmIdentifier const& other) {
  if (this == &other) return;
  // Copy first, so a failed allocation leaves this value whole.
  CBlob parameters(other.m_parameters);
  put_algorithm(other.get_algorithm());
  m_parameters.swap(parameters);
}

void CAlgorithmIdentifier::swap(CAlgorithmIdentifier& other) {
  if (this == &other) return;
  CStringProxy mine(m_algorithm);
  put_algorithm(other.get_algorithm());
  other.put_algorithm(mine.c_str());
  m_parameters.swap(other.m_parameters);
}

void CAlgorithmIdentifier::put_algorithm(char const* oid) { m_algorithm = CStringProxy(oid); }

void CAlgorithmIdentifier::put_parameters(CBlob const& parameters) { m_parameters = parameters; }

CBlob CAlgorithmIdentifier::encode() const {
  return asn1Encode<ASN1T_AlgorithmIdentifier_traits>(*this);
}

void CAlgorithmIdentifier::decode(CBlob const& der) {
  // Decoded aside and then assigned: a failure leaves this value alone, and
  // the assignment goes through put_algorithm.
  CAlgorithmIdentifier decoded;
  asn1Decode<ASN1T_AlgorithmIdentifier_traits>(der, decoded);
  assign(decoded);
}

bool operator==(CAlgorithmIdentifier const& left, CAlgorithmIdentifier const& right) {
  return std::strcmp(left.get_algorithm(), right.get_algorithm()) == 0 &&
         left.get_parameters() == right.get_parameters();
}

bool operator!=(CAlgorithmIdentifier const& left, CAlgorithmIdentifier const& right) {
  return !(left == right);
}

// ---- CAlgorithmIdentifierEx --------------------------------------------------------

CAlgorithmIdentifierEx::CAlgorithmIdentifierEx() : m_cachedInfo(0) {}

CAlgorithmIdentifierEx::CAlgorithmIdentifierEx(char const* oid)
    : CAlgorithmIdentifier(oid), m_cachedInfo(0) {}

CAlgorithmIdentifierEx::CAlgorithmIdentifierEx(CAlgorithmIdentifier const& other)
    : CAlgorithmIdentifier(other), m_cachedInfo(0) {}

CAlgorithmIdentifierEx::CAlgorithmIdentifierEx(CAlgorithmIdentifierEx const& other)
    : CAlgorithmIdentifier(other), m_cachedInfo(other.m_cachedInfo) {}

CAlgorithmIdentifierEx& CAlgorithmIdentifierEx::operator=(CAlgorithmIdentifierEx const& other) {
  if (this == &other) return *this;
  assign(other);
  m_cachedInfo = other.m_cachedInfo;
  return *this;
}

CAlgorithmIdentifierEx& CAlgorithmIdentifierEx::operator=(CAlgorithmIdentifier const& other) {
  assign(other);
  return *this;
}

CAlgorithmIdentifierEx::~CAlgorithmIdentifierEx() {}

void CAlgorithmIdentifierEx::swap(CAlgorithmIdentifierEx& other) {
  if (this == &other) return;
  // Read both slots first: the base swap stores the OIDs through
  // put_algorithm, which clears a slot whose OID changes.
  unsigned int mine = m_cachedInfo;
  unsigned int theirs = other.m_cachedInfo;
  CAlgorithmIdentifier::swap(other);
  m_cachedInfo = theirs;
  other.m_cachedInfo = mine;
}

void CAlgorithmIdentifierEx::put_algorithm(char const* oid) {
  if (std::strcmp(get_algorithm(), oid ? oid : "") == 0) return;
  CAlgorithmIdentifier::put_algorithm(oid);
  m_cachedInfo = 0;
}

}  // namespace ASN1
}  // namespace Korvex
