// CNamedBits and the mask <-> BIT STRING conversion of the named-bit values.
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/NamedBits.h>

#include "NamedBitsCodec.h"

namespace Korvex {
namespace ASN1 {

struct CNamedBits::Impl {
  unsigned int mask;
};

CNamedBits::CNamedBits() : m_impl(new Impl{0}) {}
CNamedBits::CNamedBits(unsigned int mask) : m_impl(new Impl{mask}) {}
CNamedBits::CNamedBits(CNamedBits const& other) : m_impl(new Impl(*other.m_impl)) {}
CNamedBits& CNamedBits::operator=(CNamedBits const& other) {
  *m_impl = *other.m_impl;
  return *this;
}
CNamedBits::~CNamedBits() { delete m_impl; }

unsigned int CNamedBits::get_flags() const { return m_impl->mask; }
void CNamedBits::put_flags(unsigned int mask) { m_impl->mask = mask; }

bool CNamedBits::get_bit(unsigned int n) const {
  return n < kMaxBits && (m_impl->mask & (1u << n)) != 0;
}

void CNamedBits::put_bit(unsigned int n, bool on) {
  if (n >= kMaxBits) throwInvalidArgument();
  if (on) {
    m_impl->mask |= 1u << n;
  } else {
    m_impl->mask &= ~(1u << n);
  }
}

namespace detail {

void maskToBitString(ASN1CTXT* ctxt, ASN1DynBitStr& rec, unsigned int mask) {
  unsigned int bits = 0;
  for (unsigned int n = 0; n < CNamedBits::kMaxBits; ++n) {
    if (mask & (1u << n)) bits = n + 1;
  }
  rec.numbits = bits;
  rec.data = nullptr;
  if (bits == 0) return;
  unsigned int const bytes = (bits + 7) / 8;
  auto* data = static_cast<ASN1OCTET*>(checkHeap(rtMemHeapAllocZ(&ctxt->pTypeMemHeap, bytes)));
  for (unsigned int n = 0; n < bits; ++n) {
    if (mask & (1u << n)) data[n / 8] |= static_cast<ASN1OCTET>(0x80u >> (n % 8));
  }
  rec.data = data;
}

unsigned int bitStringToMask(ASN1DynBitStr const& rec) {
  if (rec.numbits && !rec.data) throwCodecError();
  unsigned int mask = 0;
  for (ASN1UINT n = 0; n < rec.numbits; ++n) {
    if (!(rec.data[n / 8] & (0x80u >> (n % 8)))) continue;
    if (n >= CNamedBits::kMaxBits) throwCodecError();
    mask |= 1u << n;
  }
  return mask;
}

}  // namespace detail
}  // namespace ASN1
}  // namespace Korvex
