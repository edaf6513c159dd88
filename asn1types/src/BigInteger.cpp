// BigInteger.cpp: CBigInteger, signed two's-complement bytes of any length.
#include <korvex/asn1types/BigInteger.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/Traits.h>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace Korvex {
namespace ASN1 {

struct CBigIntegerImpl {
  CBlob bytes;
};

namespace {

typedef std::vector<unsigned char> Bytes;

Bytes ToBytes(CBlob const& blob) { return Bytes(blob.pbData(), blob.pbData() + blob.cbData()); }

bool Negative(unsigned char const* p, size_t n) { return n > 0 && (p[0] & 0x80) != 0; }

// The value sign-extended on the left to n bytes (n at least its size).
Bytes Extend(CBlob const& blob, size_t n) {
  unsigned char fill = Negative(blob.pbData(), blob.cbData()) ? 0xFF : 0x00;
  Bytes out(n - blob.cbData(), fill);
  out.insert(out.end(), blob.pbData(), blob.pbData() + blob.cbData());
  return out;
}

// Drops redundant sign bytes (X.690 8.3.2); zero stays one 00 byte.
void Minimise(Bytes& b) {
  if (b.empty()) {
    b.push_back(0);
    return;
  }
  size_t drop = 0;
  while (drop + 1 < b.size() && ((b[drop] == 0x00 && !(b[drop + 1] & 0x80)) ||
                                 (b[drop] == 0xFF && (b[drop + 1] & 0x80)))) {
    ++drop;
  }
  b.erase(b.begin(), b.begin() + static_cast<std::ptrdiff_t>(drop));
}

// Two's-complement sum, one byte wider than the wider operand so that it
// cannot overflow.
Bytes Sum(CBlob const& a, CBlob const& b) {
  size_t n = std::max(a.cbData(), b.cbData()) + 1;
  Bytes x = Extend(a, n), y = Extend(b, n);
  unsigned carry = 0;
  for (size_t i = n; i-- > 0;) {
    unsigned s = x[i] + y[i] + carry;
    x[i] = static_cast<unsigned char>(s);
    carry = s >> 8;
  }
  Minimise(x);
  return x;
}

// The four bytes of a signed int.
CBlob IntBytes(int n) {
  unsigned u = static_cast<unsigned>(n);
  unsigned char b[4] = {static_cast<unsigned char>(u >> 24), static_cast<unsigned char>(u >> 16),
                        static_cast<unsigned char>(u >> 8), static_cast<unsigned char>(u)};
  return CBlob(b, 4);
}

}  // namespace

CBigInteger::CBigInteger() : m_impl(new CBigIntegerImpl) {}

CBigInteger::CBigInteger(unsigned char const* bytes, unsigned long n) : m_impl(nullptr) {
  if (!bytes && n) throwInvalidArgument();
  m_impl = new CBigIntegerImpl;
  try {
    m_impl->bytes.assign(bytes, n);
  } catch (...) {
    delete m_impl;
    throw;
  }
}

CBigInteger::CBigInteger(unsigned long value) : m_impl(new CBigIntegerImpl) {
  Bytes b;
  for (int shift = 56; shift >= 0; shift -= 8)
    b.push_back(static_cast<unsigned char>(value >> shift));
  b.insert(b.begin(), 0x00);  // non-negative: a sign byte, trimmed below when redundant
  Minimise(b);
  try {
    m_impl->bytes.assign(b.data(), b.size());
  } catch (...) {
    delete m_impl;
    throw;
  }
}

CBigInteger::CBigInteger(CBigInteger const& other) : m_impl(new CBigIntegerImpl(*other.m_impl)) {}

CBigInteger& CBigInteger::operator=(CBigInteger const& other) {
  CBigInteger copy(other);
  swap(copy);
  return *this;
}

CBigInteger::~CBigInteger() { delete m_impl; }

void CBigInteger::swap(CBigInteger& other) noexcept { std::swap(m_impl, other.m_impl); }

CBlob const& CBigInteger::get_value() const { return m_impl->bytes; }

void CBigInteger::put_value(CBlob const& bytes) { m_impl->bytes = bytes; }

bool CBigInteger::isNegative() const {
  return Negative(m_impl->bytes.pbData(), m_impl->bytes.cbData());
}

CBigInteger& CBigInteger::add(CBigInteger const& other) {
  Bytes sum = Sum(m_impl->bytes, other.m_impl->bytes);
  m_impl->bytes.assign(sum.data(), sum.size());
  return *this;
}

CBigInteger& CBigInteger::increment(int n) {
  CBlob addend = IntBytes(n);
  Bytes sum = Sum(m_impl->bytes, addend);
  m_impl->bytes.assign(sum.data(), sum.size());
  return *this;
}

CBigInteger& CBigInteger::operator++() { return increment(1); }

CBigInteger CBigInteger::operator++(int) {
  CBigInteger before(*this);
  increment(1);
  return before;
}

CBigInteger CBigInteger::abs() const {
  CBlob const& v = m_impl->bytes;
  Bytes b;
  if (isNegative()) {
    // -v = ~v + 1, one byte wider so that the most negative value fits.
    b = Extend(v, v.cbData() + 1);
    for (unsigned char& c : b) c = static_cast<unsigned char>(~c);
    for (size_t i = b.size(); i-- > 0;) {
      if (++b[i] != 0) break;
    }
  } else {
    b = ToBytes(v);
  }
  Minimise(b);
  return CBigInteger(b.data(), b.size());
}

int CBigInteger::compare(CBigInteger const& other) const {
  bool negA = isNegative(), negB = other.isNegative();
  if (negA != negB) return negA ? -1 : 1;
  // Same sign: at equal width two's-complement bytes order as unsigned ones.
  size_t n = std::max(m_impl->bytes.cbData(), other.m_impl->bytes.cbData());
  if (n == 0) return 0;
  Bytes a = Extend(m_impl->bytes, n), b = Extend(other.m_impl->bytes, n);
  int c = std::memcmp(a.data(), b.data(), n);
  return c < 0 ? -1 : c > 0 ? 1 : 0;
}

CBlob CBigInteger::encode() const { return asn1Encode<ASN1BigInteger_traits>(*this); }

void CBigInteger::decode(CBlob const& der) {
  CBigInteger decoded;
  asn1Decode<ASN1BigInteger_traits>(der, decoded);
  swap(decoded);
}

bool operator==(CBigInteger const& l, CBigInteger const& r) { return l.compare(r) == 0; }
bool operator!=(CBigInteger const& l, CBigInteger const& r) { return l.compare(r) != 0; }
bool operator<(CBigInteger const& l, CBigInteger const& r) { return l.compare(r) < 0; }
bool operator<=(CBigInteger const& l, CBigInteger const& r) { return l.compare(r) <= 0; }
bool operator>(CBigInteger const& l, CBigInteger const& r) { return l.compare(r) > 0; }
bool operator>=(CBigInteger const& l, CBigInteger const& r) { return l.compare(r) >= 0; }

}  // namespace ASN1
}  // namespace Korvex
