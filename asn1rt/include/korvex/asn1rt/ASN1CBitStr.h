// korvex/asn1rt/ASN1CBitStr.h: a BIT STRING record seen as a set of bits.
//
// ASN1CBitStr works on a bit string record that the caller owns, either a
// dynamic record (ASN1DynBitStr: bit count and a pointer to octets in the
// context's type heap) or a fixed array with a bit count beside it. Bit 0 is
// the top bit of the first octet (X.690 8.6.2), as named bits are numbered.
//
// Setting a bit at or past the length lengthens the string (with zero bits
// in between); reading or clearing past the length sees zero bits. Bits past
// the length in the last octet are kept zero by every change made here.
// Ranges are half-open: [from, to) holds the bits from..to-1.
//
// Dynamic records grow in the context's type heap. The first change to a
// record whose octets this object did not allocate itself (decoded or copied
// data, or another object's) copies them into a block of its own first, so
// octets that belong to someone else are never written; a block this object
// allocated and then outgrew is freed from the heap.
//
// Statuses: -12 no memory, -17 an extraction target too small, -24 a range
// whose start is after its end, -29 a bit index at or past the most bits the
// string may hold (the fixed capacity, or the maximum given to the dynamic
// constructor), -30 a null argument or a dynamic record without a context.
#ifndef KORVEX_ASN1RT_ASN1CBITSTR_H
#define KORVEX_ASN1RT_ASN1CBITSTR_H

#include <korvex/asn1rt/asn1CppTypes.h>
#include <korvex/asn1rt/asn1type.h>

class KORVEX_API ASN1CBitStr {
 public:
  // Most bits a dynamic record may hold unless the constructor says fewer.
  static constexpr ASN1UINT kMaxBits = 0x7FFFFFF8u;

  // ASN1CBitStr(ctxt, bitStr, maxBits) works on a dynamic record whose
  // storage comes from ctxt's type heap; maxBits 0 means kMaxBits.
  ASN1CBitStr(ASN1CTXT* ctxt, ASN1DynBitStr& bitStr, ASN1UINT maxBits = 0);
  // The same with the context of a message buffer or a control object, which
  // is kept alive while this object lives.
  ASN1CBitStr(ASN1MessageBufferIF& buffer, ASN1DynBitStr& bitStr, ASN1UINT maxBits = 0);
  ASN1CBitStr(ASN1CType& control, ASN1DynBitStr& bitStr, ASN1UINT maxBits = 0);
  // ASN1CBitStr(data, numbits, capacityBits) works on a fixed array of
  // (capacityBits + 7) / 8 octets whose current length is numbits (a count
  // above the capacity is cut to it, so nothing past the array is read).
  ASN1CBitStr(ASN1OCTET* data, ASN1UINT& numbits, ASN1UINT capacityBits);
  ~ASN1CBitStr();
  ASN1CBitStr(const ASN1CBitStr&) = delete;
  ASN1CBitStr& operator=(const ASN1CBitStr&) = delete;

  // length returns the number of bits; maxLength the most it may hold.
  ASN1UINT length() const;
  ASN1UINT maxLength() const { return m_maxBits; }
  // setLength cuts the string or lengthens it with zero bits.
  int setLength(ASN1UINT numbits);

  // set, clear and invert change one bit or the bits of [from, to).
  int set(ASN1UINT bit);
  int set(ASN1UINT from, ASN1UINT to);
  int clear(ASN1UINT bit);
  int clear(ASN1UINT from, ASN1UINT to);
  int invert(ASN1UINT bit);
  int invert(ASN1UINT from, ASN1UINT to);
  // clear() zeroes every bit and keeps the length.
  int clear();

  // get / isSet test one bit (false past the length).
  bool get(ASN1UINT bit) const;
  bool isSet(ASN1UINT bit) const { return get(bit); }
  // get(from, to, out, outSize) copies the bits of [from, to) into `out`,
  // packed from the top bit of out[0], with the unused bits of the last
  // octet zero. Returns the number of octets written; -24, -29 when `to` is
  // past the length, -17 when outSize is too small, -30 for null out.
  int get(ASN1UINT from, ASN1UINT to, ASN1OCTET* out, size_t outSize) const;

  // cardinality counts the set bits; isEmpty tells whether there are none.
  ASN1UINT cardinality() const;
  bool isEmpty() const { return cardinality() == 0; }
  // nextSetBit / nextClearBit give the first set (clear) bit at or after
  // `from`, or -1 when there is none before the length (for nextClearBit,
  // the length itself when every bit up to it is set).
  long nextSetBit(ASN1UINT from) const;
  long nextClearBit(ASN1UINT from) const;

  // doAnd / doOr / doXor / doAndNot combine the string with another one bit
  // by bit (the shorter one read as zero bits past its length). Or and xor
  // lengthen the string to the longer of the two; and and and-not keep its
  // length. -30 for null octets with a non-zero bit count.
  int doAnd(const ASN1OCTET* data, ASN1UINT numbits);
  int doOr(const ASN1OCTET* data, ASN1UINT numbits);
  int doXor(const ASN1OCTET* data, ASN1UINT numbits);
  int doAndNot(const ASN1OCTET* data, ASN1UINT numbits);
  int doAnd(const ASN1CBitStr& other);
  int doOr(const ASN1CBitStr& other);
  int doXor(const ASN1CBitStr& other);
  int doAndNot(const ASN1CBitStr& other);

  // removeTrailingZeros shortens the string to end at its last set bit, the
  // DER form of a named-bit list (X.690 11.2.2). Returns the new length.
  ASN1UINT removeTrailingZeros();

  // equals compares lengths and bits (unused bits of the last octet aside).
  bool equals(const ASN1OCTET* data, ASN1UINT numbits) const;
  bool operator==(const ASN1CBitStr& other) const;
  bool operator!=(const ASN1CBitStr& other) const { return !(*this == other); }

  // data returns the octets (may be null for an empty dynamic string).
  const ASN1OCTET* data() const;

 private:
  enum class Op { kAnd, kOr, kXor, kAndNot };
  int combine(Op op, const ASN1OCTET* data, ASN1UINT numbits);
  // writable returns storage that holds at least `bits` bits and may be
  // written, or null with the status in *status.
  ASN1OCTET* writable(ASN1UINT bits, int* status);
  int lengthen(ASN1UINT numbits);
  int changeRange(ASN1UINT from, ASN1UINT to, int how);

  ASN1Context* m_context;  // held reference, when made from a buffer or control object
  ASN1CTXT* m_ctxt;
  ASN1UINT* m_numbits;
  const ASN1OCTET** m_dynData;  // the record's data pointer (dynamic records)
  ASN1OCTET* m_fixedData;       // the caller's array (fixed records)
  ASN1UINT m_maxBits;
  ASN1OCTET* m_owned;  // the block this object allocated, if any
  size_t m_ownedSize;
};

#endif
