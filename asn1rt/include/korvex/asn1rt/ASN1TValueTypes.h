// korvex/asn1rt/ASN1TValueTypes.h: C++ forms of the runtime's counted value
// records: OCTET STRING (ASN1TDynOctStr), BIT STRING (ASN1TDynBitStr) and
// open type (ASN1TOpenType).
//
// Each derives from its C record (ASN1DynOctStr, ASN1DynBitStr, ASN1OpenType)
// and adds no data: same size and layout, trivially copyable, so a generated
// record or typedef of one of these types is read and written by every
// runtime function that takes the C record (xd_octstr, rtCopyOpenType, ...).
// They add construction (zeroed, from a count and a data pointer, from
// another record, C or C++) and assignment (from either form too, or from a
// braced count and pointer: x = {n, p}).
//
// They are views, like the C records: construction and assignment copy the
// count and the data pointer, never the bytes, and nothing is freed when they
// go away. The bytes belong to whoever put them there: the context's type
// heap after a decode or an rtCopy... call, or the caller.
//
// A table-constrained open type (X.682 10) is the engine's Asn1Object
// (korvex/asn1rt/asn1engine.h): numocts and data laid out as ASN1OpenType,
// then the pointer to the value decoded through the information object. An
// ASN1TOpenType has no such pointer, so that it stays layout-compatible with
// the ASN1OpenType fields, list elements and typedefs of plain open types.
#ifndef KORVEX_ASN1RT_ASN1TVALUETYPES_H
#define KORVEX_ASN1RT_ASN1TVALUETYPES_H

#include <korvex/asn1rt/asn1type.h>

#ifdef __cplusplus

#include <type_traits>

// ASN1TCountedRecord: the construction shared by the three forms below;
// Record is a C record of a 32-bit count followed by a data pointer.
template <typename Record>
struct ASN1TCountedRecord : public Record {
  // ASN1TCountedRecord() is the empty value (count 0, null data).
  constexpr ASN1TCountedRecord() : Record{0, nullptr} {}
  // ASN1TCountedRecord(count, data) refers to count units at data.
  constexpr ASN1TCountedRecord(ASN1UINT count, const ASN1OCTET* data) : Record{count, data} {}
  // ASN1TCountedRecord(other) refers to the C record's data.
  constexpr ASN1TCountedRecord(const Record& other)  // NOLINT: converts like its record
      : Record(other) {}
};

// ASN1TDynOctStr: OCTET STRING contents, numocts octets at data.
struct ASN1TDynOctStr : public ASN1TCountedRecord<ASN1DynOctStr> {
  using ASN1TCountedRecord<ASN1DynOctStr>::ASN1TCountedRecord;
};

// ASN1TDynBitStr: BIT STRING value, numbits bits at data (first bit in the
// top bit of the first octet; (numbits + 7) / 8 octets).
struct ASN1TDynBitStr : public ASN1TCountedRecord<ASN1DynBitStr> {
  using ASN1TCountedRecord<ASN1DynBitStr>::ASN1TCountedRecord;
};

// ASN1TOpenType: the complete encoding of one element (tag, length and
// contents), numocts octets at data.
struct ASN1TOpenType : public ASN1TCountedRecord<ASN1OpenType> {
  using ASN1TCountedRecord<ASN1OpenType>::ASN1TCountedRecord;
};

// Generated records, arrays and list elements rely on these.
static_assert(sizeof(ASN1TDynOctStr) == sizeof(ASN1DynOctStr) &&
                  sizeof(ASN1TDynBitStr) == sizeof(ASN1DynBitStr) &&
                  sizeof(ASN1TOpenType) == sizeof(ASN1OpenType),
              "the C++ forms add no data to their C records");
static_assert(std::is_standard_layout<ASN1TDynOctStr>::value &&
                  std::is_standard_layout<ASN1TDynBitStr>::value &&
                  std::is_standard_layout<ASN1TOpenType>::value,
              "the C++ forms keep their C records' layout");
static_assert(std::is_trivially_copyable<ASN1TDynOctStr>::value &&
                  std::is_trivially_copyable<ASN1TDynBitStr>::value &&
                  std::is_trivially_copyable<ASN1TOpenType>::value,
              "the C++ forms copy as their C records do");

#endif  // __cplusplus

#endif
