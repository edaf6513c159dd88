// bitstr_ops.cpp: ASN1CBitStr queries, extraction and bitwise combination.
#include <korvex/asn1rt/ASN1CBitStr.h>
#include <string.h>

#include <algorithm>
#include <new>
#include <vector>

#include "bitstr_bits.h"

using Korvex::rt::BitMask;
using Korvex::rt::LastOctetMask;
using Korvex::rt::OctetsFor;
using Korvex::rt::ZeroBits;

namespace {

// OctetAt reads octet i of a string of `bits` bits with the bits past its
// length masked off (decoded octets may carry anything there).
ASN1OCTET OctetAt(const ASN1OCTET* octets, ASN1UINT bits, size_t i) {
  size_t count = OctetsFor(bits);
  if (i >= count) return 0;
  return i + 1 == count ? static_cast<ASN1OCTET>(octets[i] & LastOctetMask(bits)) : octets[i];
}

}  // namespace

int ASN1CBitStr::get(ASN1UINT from, ASN1UINT to, ASN1OCTET* out, size_t outSize) const {
  if (from > to) return ASN_E_RANGERR;
  if (to > *m_numbits) return ASN_E_OUTOFBND;
  if (out == nullptr) return ASN_E_INVPARAM;
  size_t count = OctetsFor(to - from);
  if (outSize < count) return ASN_E_STROVFLW;
  memset(out, 0, count);
  const ASN1OCTET* bits = data();
  if (from % 8 == 0) {
    if (count != 0) memcpy(out, bits + from / 8, count);
    if (count != 0)
      out[count - 1] = static_cast<ASN1OCTET>(out[count - 1] & LastOctetMask(to - from));
    return static_cast<int>(count);
  }
  for (ASN1UINT i = from; i < to; ++i) {
    if (bits[i / 8] & BitMask(i)) out[(i - from) / 8] |= BitMask(i - from);
  }
  return static_cast<int>(count);
}

ASN1UINT ASN1CBitStr::cardinality() const {
  const ASN1OCTET* bits = data();
  ASN1UINT length = *m_numbits;
  ASN1UINT count = 0;
  for (size_t i = 0; i < OctetsFor(length); ++i) {
    count += static_cast<ASN1UINT>(__builtin_popcount(OctetAt(bits, length, i)));
  }
  return count;
}

long ASN1CBitStr::nextSetBit(ASN1UINT from) const {
  const ASN1OCTET* bits = data();
  ASN1UINT length = *m_numbits;
  for (ASN1UINT i = from; i < length;) {
    ASN1OCTET octet = OctetAt(bits, length, i / 8);
    if (i % 8 == 0 && octet == 0) {
      i += 8;  // skip empty octets whole
      continue;
    }
    if (octet & BitMask(i)) return static_cast<long>(i);
    ++i;
  }
  return -1;
}

long ASN1CBitStr::nextClearBit(ASN1UINT from) const {
  const ASN1OCTET* bits = data();
  ASN1UINT length = *m_numbits;
  for (ASN1UINT i = from; i < length;) {
    ASN1OCTET octet = OctetAt(bits, length, i / 8);
    if (i % 8 == 0 && octet == 0xFF && length - i >= 8) {
      i += 8;
      continue;
    }
    if (!(octet & BitMask(i))) return static_cast<long>(i);
    ++i;
  }
  return from <= length ? static_cast<long>(length) : -1;
}

int ASN1CBitStr::combine(Op op, const ASN1OCTET* other, ASN1UINT otherBits) {
  if (other == nullptr && otherBits != 0) return ASN_E_INVPARAM;
  // The other operand is read into a copy first: it may be this very
  // string's storage, which growing could move.
  std::vector<ASN1OCTET> operand;
  try {
    operand.resize(OctetsFor(otherBits));
  } catch (std::bad_alloc const&) {
    return ASN_E_NOMEM;
  }
  for (size_t i = 0; i < operand.size(); ++i) operand[i] = OctetAt(other, otherBits, i);

  bool widens = op == Op::kOr || op == Op::kXor;
  if (widens && otherBits > *m_numbits) {
    int status = lengthen(otherBits);
    if (status != 0) return status;
  }
  ASN1UINT length = *m_numbits;
  if (length == 0) return 0;
  int status = 0;
  ASN1OCTET* bits = writable(length, &status);
  if (bits == nullptr) return status;
  size_t count = OctetsFor(length);
  for (size_t i = 0; i < count; ++i) {
    ASN1OCTET value = i < operand.size() ? operand[i] : 0;
    switch (op) {
      case Op::kAnd:
        bits[i] = static_cast<ASN1OCTET>(bits[i] & value);
        break;
      case Op::kOr:
        bits[i] = static_cast<ASN1OCTET>(bits[i] | value);
        break;
      case Op::kXor:
        bits[i] = static_cast<ASN1OCTET>(bits[i] ^ value);
        break;
      case Op::kAndNot:
        bits[i] = static_cast<ASN1OCTET>(bits[i] & ~value);
        break;
    }
  }
  ZeroBits(bits, length, static_cast<ASN1UINT>(count * 8));
  return 0;
}

int ASN1CBitStr::doAnd(const ASN1OCTET* other, ASN1UINT bits) {
  return combine(Op::kAnd, other, bits);
}
int ASN1CBitStr::doOr(const ASN1OCTET* other, ASN1UINT bits) {
  return combine(Op::kOr, other, bits);
}
int ASN1CBitStr::doXor(const ASN1OCTET* other, ASN1UINT bits) {
  return combine(Op::kXor, other, bits);
}
int ASN1CBitStr::doAndNot(const ASN1OCTET* other, ASN1UINT bits) {
  return combine(Op::kAndNot, other, bits);
}
int ASN1CBitStr::doAnd(const ASN1CBitStr& other) { return doAnd(other.data(), other.length()); }
int ASN1CBitStr::doOr(const ASN1CBitStr& other) { return doOr(other.data(), other.length()); }
int ASN1CBitStr::doXor(const ASN1CBitStr& other) { return doXor(other.data(), other.length()); }
int ASN1CBitStr::doAndNot(const ASN1CBitStr& other) {
  return doAndNot(other.data(), other.length());
}

ASN1UINT ASN1CBitStr::removeTrailingZeros() {
  ASN1UINT length = *m_numbits;
  const ASN1OCTET* bits = data();
  while (length > 0) {
    ASN1UINT last = length - 1;
    if (OctetAt(bits, *m_numbits, last / 8) & BitMask(last)) break;
    --length;
  }
  // Shortening may need to zero bits past the new length in a copy of our
  // own; if that copy cannot be had, the length stays as it was.
  if (setLength(length) != 0) return *m_numbits;
  return length;
}

bool ASN1CBitStr::equals(const ASN1OCTET* other, ASN1UINT otherBits) const {
  if (otherBits != *m_numbits) return false;
  if (other == nullptr) return otherBits == 0;
  const ASN1OCTET* bits = data();
  for (size_t i = 0; i < OctetsFor(otherBits); ++i) {
    if (OctetAt(bits, otherBits, i) != OctetAt(other, otherBits, i)) return false;
  }
  return true;
}

bool ASN1CBitStr::operator==(const ASN1CBitStr& other) const {
  return equals(other.data(), other.length());
}
