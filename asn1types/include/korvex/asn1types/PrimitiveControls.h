// korvex/asn1types/PrimitiveControls.h: control classes for the runtime's
// primitive records, so that the encode/decode templates (Traits.h) work on
// a bare OBJECT IDENTIFIER, string, OCTET STRING ... as they do on a generated
// type.
//
// Each class binds a caller's record (borrowed, never freed here) to a message
// buffer like a generated ASN1C_<Type>: EncodeTo(buffer) makes buffer the
// message buffer, lets it initialise itself and writes the record with its
// universal tag (explicit tagging), returning the length or a negative status;
// DecodeFrom(buffer) reads it back, returning 0 or a negative status, with the
// decoded storage in the buffer's heap.
#ifndef KORVEX_ASN1TYPES_PRIMITIVECONTROLS_H
#define KORVEX_ASN1TYPES_PRIMITIVECONTROLS_H

#include <korvex/asn1rt/asn1CppTypes.h>
#include <korvex/asn1rt/asn1engine.h>
#include <korvex/asn1rt/asn1type.h>

namespace Korvex {
namespace ASN1 {

// PrimitiveControl: the common part, one encode and one decode function over
// an untyped record.
class KORVEX_API PrimitiveControl : public ASN1CType {
 public:
  typedef int (*EncodeFn)(ASN1CTXT* ctxt, void* record);
  typedef int (*DecodeFn)(ASN1CTXT* ctxt, void* record);

  int EncodeTo(ASN1MessageBufferIF& buffer) override;
  int DecodeFrom(ASN1MessageBufferIF& buffer) override;

 protected:
  PrimitiveControl(ASN1MessageBufferIF& buffer, void* record, EncodeFn encode, DecodeFn decode);

 private:
  void* m_record;
  EncodeFn m_encode;
  DecodeFn m_decode;
};

// ASN1C_ObjId: OBJECT IDENTIFIER (xe_objid / xd_objid).
class KORVEX_API ASN1C_ObjId : public PrimitiveControl {
 public:
  ASN1C_ObjId(ASN1MessageBufferIF& buffer, ASN1OBJID& data);
};

// ASN1C_IA5String / ASN1C_UTF8String / ASN1C_GeneralizedTime: NUL-terminated
// text under universal tag 22, 12 or 24 (xe_charstr / xd_charstr). The UTF-8
// form is not checked here; the traits convert it.
class KORVEX_API ASN1C_IA5String : public PrimitiveControl {
 public:
  ASN1C_IA5String(ASN1MessageBufferIF& buffer, char const*& data);
};

class KORVEX_API ASN1C_UTF8String : public PrimitiveControl {
 public:
  ASN1C_UTF8String(ASN1MessageBufferIF& buffer, char const*& data);
};

class KORVEX_API ASN1C_GeneralizedTime : public PrimitiveControl {
 public:
  ASN1C_GeneralizedTime(ASN1MessageBufferIF& buffer, char const*& data);
};

// ASN1C_OctStr: OCTET STRING (xe_octstr / xd_octstr).
class KORVEX_API ASN1C_OctStr : public PrimitiveControl {
 public:
  ASN1C_OctStr(ASN1MessageBufferIF& buffer, ASN1DynOctStr& data);
};

// ASN1C_BitStr: BIT STRING (xe_bitstr / xd_bitstr).
class KORVEX_API ASN1C_BitStr : public PrimitiveControl {
 public:
  ASN1C_BitStr(ASN1MessageBufferIF& buffer, ASN1DynBitStr& data);
};

// ASN1C_OpenType: one complete element of any type, written as it stands
// (xe_OpenType) and read whole, header included (xd_OpenType).
class KORVEX_API ASN1C_OpenType : public PrimitiveControl {
 public:
  ASN1C_OpenType(ASN1MessageBufferIF& buffer, ASN1OpenType& data);
};

// ASN1C_Object: the open-type bytes of a table-constrained open type
// (Asn1Object) as ASN1C_OpenType does; the decoded-value pointer is neither
// written nor set (decoding leaves it null).
class KORVEX_API ASN1C_Object : public PrimitiveControl {
 public:
  ASN1C_Object(ASN1MessageBufferIF& buffer, Asn1Object& data);
};

// ASN1C_BigInt: INTEGER held as big-integer text (xe_bigint / xd_bigint; the
// decoded text is hexadecimal, "0x.." or "-0x..", and "0" for zero).
class KORVEX_API ASN1C_BigInt : public PrimitiveControl {
 public:
  ASN1C_BigInt(ASN1MessageBufferIF& buffer, char const*& data);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
