// korvex/asn1rt/ASN1TObjId.h: object identifier value records with
// construction, assignment and comparison.
//
// ASN1TObjId is an ASN1OBJID (arc count and up to 128 32-bit arcs) with C++
// construction and assignment; it adds no data, so a generated record field
// of type ASN1TObjId is read and written by every function that takes an
// ASN1OBJID. ASN1TObjId64 does the same for identifiers whose arcs need 64
// bits (X.667 UUID arcs under 2.25, for example).
//
// Construction or assignment from a value that does not fit (more than 128
// arcs, a null arc array with a non-zero count, a 64-bit arc above
// 0xFFFFFFFF for ASN1TObjId) leaves an empty identifier (no arcs); the
// set() members report the same failures as -1.
#ifndef KORVEX_ASN1RT_ASN1TOBJID_H
#define KORVEX_ASN1RT_ASN1TOBJID_H

#include <korvex/asn1rt/asn1type.h>

/* Object identifier with 64-bit arcs: arc count and up to 128 arcs. */
typedef struct ASN1OBJID64 {
  ASN1UINT numids;
  ASN1UINT64 subid[ASN_K_MAXSUBIDS];
} ASN1OBJID64;

#ifdef __cplusplus

struct KORVEX_API ASN1TObjId : public ASN1OBJID {
  // ASN1TObjId() is the empty identifier.
  ASN1TObjId();
  // ASN1TObjId(numids, subids) copies `numids` arcs from `subids`.
  ASN1TObjId(ASN1UINT numids, const ASN1UINT* subids);
  ASN1TObjId(const ASN1OBJID& oid);  // NOLINT: converts like the record it extends
  ASN1TObjId(const ASN1TObjId& oid);
  // ASN1TObjId(oid64) takes the arcs of a 64-bit identifier when all fit.
  explicit ASN1TObjId(const ASN1OBJID64& oid);

  ASN1TObjId& operator=(const ASN1OBJID& rhs);
  ASN1TObjId& operator=(const ASN1TObjId& rhs);
  ASN1TObjId& operator=(const ASN1OBJID64& rhs);

  // set copies the arcs; returns 0, or -1 with the identifier left empty
  // when they do not fit.
  int set(ASN1UINT numids, const ASN1UINT* subids);
  int set(const ASN1OBJID& oid);
  int set(const ASN1OBJID64& oid);

  // operator== compares arc counts and then the arcs.
  bool operator==(const ASN1OBJID& rhs) const;
  bool operator!=(const ASN1OBJID& rhs) const { return !(*this == rhs); }
};

struct KORVEX_API ASN1TObjId64 : public ASN1OBJID64 {
  ASN1TObjId64();
  ASN1TObjId64(ASN1UINT numids, const ASN1UINT64* subids);
  ASN1TObjId64(const ASN1OBJID64& oid);  // NOLINT
  ASN1TObjId64(const ASN1TObjId64& oid);
  // ASN1TObjId64(oid) widens a 32-bit identifier; it fails only for an
  // invalid arc count.
  explicit ASN1TObjId64(const ASN1OBJID& oid);

  ASN1TObjId64& operator=(const ASN1OBJID64& rhs);
  ASN1TObjId64& operator=(const ASN1TObjId64& rhs);
  ASN1TObjId64& operator=(const ASN1OBJID& rhs);

  int set(ASN1UINT numids, const ASN1UINT64* subids);
  int set(const ASN1OBJID64& oid);
  int set(const ASN1OBJID& oid);

  bool operator==(const ASN1OBJID64& rhs) const;
  bool operator!=(const ASN1OBJID64& rhs) const { return !(*this == rhs); }
};

#endif  // __cplusplus

#endif
