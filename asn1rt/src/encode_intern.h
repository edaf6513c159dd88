// encode_intern.h: fast paths shared by the encoder sources; not installed.
#ifndef KORVEX_ASN1RT_SRC_ENCODE_INTERN_H
#define KORVEX_ASN1RT_SRC_ENCODE_INTERN_H

#include "rtintern.h"

namespace korvex_rt {

// Grows the buffer and reserves n bytes; returns 0 or the recorded status.
// *out is always set (null on failure).
int ReserveSlow(ASN1CTXT* ctxt, ASN1UINT n, ASN1OCTET** out);

// Moves the byte index back by n and sets *out to where the n bytes go,
// growing a dynamic buffer when needed. Returns 0, or -1 (static buffer full)
// or -12, recorded in the context; *out is null then.
inline int Reserve(ASN1CTXT* ctxt, ASN1UINT n, ASN1OCTET** out) {
  if (ctxt->buffer.byteIndex >= n) {
    ctxt->buffer.byteIndex -= n;
    *out = ctxt->buffer.data + ctxt->buffer.byteIndex;
    return ASN_OK;
  }
  return ReserveSlow(ctxt, n, out);
}

// Puts the n bytes staged at p in front of the encoded data. Returns n, or
// the status of Reserve.
inline int PutStaged(ASN1CTXT* ctxt, const ASN1OCTET* p, ASN1UINT n) {
  ASN1OCTET* dest;
  int stat = Reserve(ctxt, n, &dest);
  if (stat != ASN_OK) return stat;
  for (ASN1UINT i = 0; i < n; ++i) dest[i] = p[i];
  return static_cast<int>(n);
}

// Writes the identifier and length octets of (tag, length) ending at end;
// returns their count (at most 6 + 5). length -9999 writes 0x80.
inline int PutHeaderBackwards(ASN1OCTET* end, ASN1TAG tag, int length) {
  ASN1OCTET* p = end;
  if (length == ASN_K_INDEFLEN) {
    *--p = 0x80;
  } else if (length < 0x80) {
    *--p = static_cast<ASN1OCTET>(length);
  } else {
    unsigned v = static_cast<unsigned>(length);
    int n = 0;
    while (v) {
      *--p = static_cast<ASN1OCTET>(v);
      v >>= 8;
      ++n;
    }
    *--p = static_cast<ASN1OCTET>(0x80 | n);
  }
  ASN1OCTET first = static_cast<ASN1OCTET>((tag >> 24) & 0xE0);
  ASN1UINT number = tag & TM_IDMASK;
  if (number < 31) {
    *--p = static_cast<ASN1OCTET>(first | number);
  } else {
    *--p = static_cast<ASN1OCTET>(number & 0x7F);
    number >>= 7;
    while (number) {
      *--p = static_cast<ASN1OCTET>(0x80 | (number & 0x7F));
      number >>= 7;
    }
    *--p = static_cast<ASN1OCTET>(first | 0x1F);
  }
  return static_cast<int>(end - p);
}

}  // namespace korvex_rt

#endif
