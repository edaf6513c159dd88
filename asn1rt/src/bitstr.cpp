// bitstr.cpp: ASN1CBitStr storage, length and single bits.
#include <korvex/asn1rt/ASN1CBitStr.h>
#include <string.h>

#include <algorithm>

#include "bitstr_bits.h"

using Korvex::rt::BitMask;
using Korvex::rt::OctetsFor;
using Korvex::rt::ZeroBits;

ASN1CBitStr::ASN1CBitStr(ASN1CTXT* ctxt, ASN1DynBitStr& bitStr, ASN1UINT maxBits)
    : m_context(nullptr),
      m_ctxt(ctxt),
      m_numbits(&bitStr.numbits),
      m_dynData(&bitStr.data),
      m_fixedData(nullptr),
      m_maxBits(maxBits == 0 || maxBits > kMaxBits ? kMaxBits : maxBits),
      m_owned(nullptr),
      m_ownedSize(0) {}

ASN1CBitStr::ASN1CBitStr(ASN1MessageBufferIF& buffer, ASN1DynBitStr& bitStr, ASN1UINT maxBits)
    : ASN1CBitStr(buffer.getCtxtPtr(), bitStr, maxBits) {
  m_context = buffer.getContext();
  m_context->_ref();
}

ASN1CBitStr::ASN1CBitStr(ASN1CType& control, ASN1DynBitStr& bitStr, ASN1UINT maxBits)
    : ASN1CBitStr(control.getCtxtPtr(), bitStr, maxBits) {
  m_context = control.getContext();
  m_context->_ref();
}

ASN1CBitStr::ASN1CBitStr(ASN1OCTET* data, ASN1UINT& numbits, ASN1UINT capacityBits)
    : m_context(nullptr),
      m_ctxt(nullptr),
      m_numbits(&numbits),
      m_dynData(nullptr),
      m_fixedData(data),
      m_maxBits(data == nullptr ? 0 : std::min(capacityBits, kMaxBits)),
      m_owned(nullptr),
      m_ownedSize(0) {
  if (numbits > m_maxBits) numbits = m_maxBits;
}

ASN1CBitStr::~ASN1CBitStr() {
  if (m_context != nullptr) m_context->_unref();
}

ASN1UINT ASN1CBitStr::length() const { return *m_numbits; }

const ASN1OCTET* ASN1CBitStr::data() const {
  return m_fixedData != nullptr ? m_fixedData : *m_dynData;
}

ASN1OCTET* ASN1CBitStr::writable(ASN1UINT bits, int* status) {
  if (bits > m_maxBits) {
    *status = ASN_E_OUTOFBND;
    return nullptr;
  }
  if (m_fixedData != nullptr) return m_fixedData;
  if (m_ctxt == nullptr) {
    *status = ASN_E_INVPARAM;
    return nullptr;
  }
  size_t needed = OctetsFor(bits);
  const ASN1OCTET* current = *m_dynData;
  bool ours = current != nullptr && current == m_owned;
  if (ours && m_ownedSize >= needed) return m_owned;

  // A new block: twice the old one when growing our own, so that setting
  // bits one after another stays linear.
  size_t used = current == nullptr ? 0 : OctetsFor(*m_numbits);
  if (ours) used = std::min(used, m_ownedSize);
  size_t size = std::max(needed, used);
  if (ours) size = std::max(size, std::min(2 * m_ownedSize, OctetsFor(m_maxBits)));
  if (size == 0) size = 1;
  ASN1OCTET* block = static_cast<ASN1OCTET*>(rtMemHeapAllocZ(&m_ctxt->pTypeMemHeap, size));
  if (block == nullptr) {
    *status = ASN_E_NOMEM;
    return nullptr;
  }
  if (used != 0) memcpy(block, current, used);
  // Octets read from elsewhere may carry bits past the length (BER lets
  // the unused bits be anything); ours keep them zero, as DER wants
  // (X.690 11.2.1).
  if (used * 8 > *m_numbits) ZeroBits(block, *m_numbits, static_cast<ASN1UINT>(used * 8));
  if (ours) rtMemHeapFreePtr(&m_ctxt->pTypeMemHeap, m_owned);
  m_owned = block;
  m_ownedSize = size;
  *m_dynData = block;
  return block;
}

int ASN1CBitStr::lengthen(ASN1UINT numbits) {
  int status = 0;
  ASN1OCTET* bits = writable(numbits, &status);
  if (bits == nullptr) return status;
  // Zero to the end of the last octet: a caller's fixed array may hold
  // stale bits there.
  ZeroBits(bits, *m_numbits, static_cast<ASN1UINT>(OctetsFor(numbits) * 8));
  *m_numbits = numbits;
  return 0;
}

int ASN1CBitStr::setLength(ASN1UINT numbits) {
  if (numbits > *m_numbits) return lengthen(numbits);
  if (numbits == *m_numbits) return 0;
  if (numbits % 8 != 0) {
    int status = 0;
    ASN1OCTET* bits = writable(numbits, &status);
    if (bits == nullptr) return status;
    ZeroBits(bits, numbits, static_cast<ASN1UINT>(OctetsFor(numbits) * 8));
  }
  *m_numbits = numbits;
  return 0;
}

bool ASN1CBitStr::get(ASN1UINT bit) const {
  if (bit >= *m_numbits) return false;
  return (data()[bit / 8] & BitMask(bit)) != 0;
}

int ASN1CBitStr::set(ASN1UINT bit) {
  if (bit >= m_maxBits) return ASN_E_OUTOFBND;
  return changeRange(bit, bit + 1, 1);
}

int ASN1CBitStr::clear(ASN1UINT bit) {
  if (bit >= m_maxBits) return ASN_E_OUTOFBND;
  return changeRange(bit, bit + 1, 0);
}

int ASN1CBitStr::invert(ASN1UINT bit) {
  if (bit >= m_maxBits) return ASN_E_OUTOFBND;
  return changeRange(bit, bit + 1, 2);
}

int ASN1CBitStr::set(ASN1UINT from, ASN1UINT to) { return changeRange(from, to, 1); }
int ASN1CBitStr::clear(ASN1UINT from, ASN1UINT to) { return changeRange(from, to, 0); }
int ASN1CBitStr::invert(ASN1UINT from, ASN1UINT to) { return changeRange(from, to, 2); }

int ASN1CBitStr::clear() { return changeRange(0, *m_numbits, 0); }

int ASN1CBitStr::changeRange(ASN1UINT from, ASN1UINT to, int how) {
  if (from > to) return ASN_E_RANGERR;
  if (to > m_maxBits) return ASN_E_OUTOFBND;
  if (how == 0) to = std::min(to, *m_numbits);  // clearing past the length changes nothing
  if (from >= to) return 0;
  if (to > *m_numbits) {
    int status = lengthen(to);
    if (status != 0) return status;
  }
  int status = 0;
  ASN1OCTET* bits = writable(*m_numbits, &status);
  if (bits == nullptr) return status;
  for (ASN1UINT i = from; i < to;) {
    ASN1OCTET mask;
    ASN1UINT step;
    if (i % 8 == 0 && to - i >= 8) {
      mask = 0xFF;
      step = 8;
    } else {
      mask = BitMask(i);
      step = 1;
    }
    ASN1OCTET& octet = bits[i / 8];
    if (how == 0) {
      octet = static_cast<ASN1OCTET>(octet & ~mask);
    } else if (how == 1) {
      octet = static_cast<ASN1OCTET>(octet | mask);
    } else {
      octet = static_cast<ASN1OCTET>(octet ^ mask);
    }
    i += step;
  }
  return 0;
}
