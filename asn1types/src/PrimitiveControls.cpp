// PrimitiveControls.cpp: control classes over the runtime's primitive records.
#include <korvex/asn1rt/asn1ber.h>
#include <korvex/asn1types/PrimitiveControls.h>

namespace Korvex {
namespace ASN1 {

PrimitiveControl::PrimitiveControl(ASN1MessageBufferIF& buffer, void* record, EncodeFn encode,
                                   DecodeFn decode)
    : ASN1CType(buffer), m_record(record), m_encode(encode), m_decode(decode) {}

int PrimitiveControl::EncodeTo(ASN1MessageBufferIF& buffer) {
  setMsgBuf(buffer);
  int stat = buffer.init();
  if (stat < 0) return stat;
  return m_encode(buffer.getCtxtPtr(), m_record);
}

int PrimitiveControl::DecodeFrom(ASN1MessageBufferIF& buffer) {
  setMsgBuf(buffer);
  int stat = buffer.init();
  if (stat < 0) return stat;
  return m_decode(buffer.getCtxtPtr(), m_record);
}

namespace {

int EncodeObjId(ASN1CTXT* ctxt, void* r) {
  return xe_objid(ctxt, static_cast<ASN1OBJID*>(r), ASN1EXPL);
}
int DecodeObjId(ASN1CTXT* ctxt, void* r) {
  return xd_objid(ctxt, static_cast<ASN1OBJID*>(r), ASN1EXPL, 0);
}

template <ASN1TAG Tag>
int EncodeText(ASN1CTXT* ctxt, void* r) {
  return xe_charstr(ctxt, *static_cast<char const**>(r), ASN1EXPL, Tag);
}
template <ASN1TAG Tag>
int DecodeText(ASN1CTXT* ctxt, void* r) {
  return xd_charstr(ctxt, static_cast<char const**>(r), ASN1EXPL, Tag, 0);
}

int EncodeOctStr(ASN1CTXT* ctxt, void* r) {
  auto* s = static_cast<ASN1DynOctStr*>(r);
  return xe_octstr(ctxt, s->data, s->numocts, ASN1EXPL);
}
int DecodeOctStr(ASN1CTXT* ctxt, void* r) {
  auto* s = static_cast<ASN1DynOctStr*>(r);
  return xd_octstr(ctxt, &s->data, &s->numocts, ASN1EXPL, 0);
}

int EncodeBitStr(ASN1CTXT* ctxt, void* r) {
  auto* s = static_cast<ASN1DynBitStr*>(r);
  return xe_bitstr(ctxt, s->data, s->numbits, ASN1EXPL);
}
int DecodeBitStr(ASN1CTXT* ctxt, void* r) {
  auto* s = static_cast<ASN1DynBitStr*>(r);
  return xd_bitstr(ctxt, &s->data, &s->numbits, ASN1EXPL, 0);
}

// The open-type bytes of ASN1OpenType and of Asn1Object (data, numocts).
template <class Record>
int EncodeOpenType(ASN1CTXT* ctxt, void* r) {
  auto* s = static_cast<Record*>(r);
  return xe_OpenType(ctxt, s->data, s->numocts);
}
template <class Record>
int DecodeOpenType(ASN1CTXT* ctxt, void* r) {
  auto* s = static_cast<Record*>(r);
  return xd_OpenType(ctxt, &s->data, &s->numocts);
}

int DecodeObject(ASN1CTXT* ctxt, void* r) {
  static_cast<Asn1Object*>(r)->decoded = nullptr;
  return DecodeOpenType<Asn1Object>(ctxt, r);
}

int EncodeBigInt(ASN1CTXT* ctxt, void* r) {
  return xe_bigint(ctxt, *static_cast<char const**>(r), ASN1EXPL);
}
int DecodeBigInt(ASN1CTXT* ctxt, void* r) {
  return xd_bigint(ctxt, static_cast<char const**>(r), ASN1EXPL, 0);
}

}  // namespace

ASN1C_ObjId::ASN1C_ObjId(ASN1MessageBufferIF& buffer, ASN1OBJID& data)
    : PrimitiveControl(buffer, &data, EncodeObjId, DecodeObjId) {}

ASN1C_IA5String::ASN1C_IA5String(ASN1MessageBufferIF& buffer, char const*& data)
    : PrimitiveControl(buffer, &data, EncodeText<TM_UNIV | ASN_ID_IA5String>,
                       DecodeText<TM_UNIV | ASN_ID_IA5String>) {}

ASN1C_UTF8String::ASN1C_UTF8String(ASN1MessageBufferIF& buffer, char const*& data)
    : PrimitiveControl(buffer, &data, EncodeText<TM_UNIV | ASN_ID_UTF8String>,
                       DecodeText<TM_UNIV | ASN_ID_UTF8String>) {}

ASN1C_GeneralizedTime::ASN1C_GeneralizedTime(ASN1MessageBufferIF& buffer, char const*& data)
    : PrimitiveControl(buffer, &data, EncodeText<TM_UNIV | ASN_ID_GeneralTime>,
                       DecodeText<TM_UNIV | ASN_ID_GeneralTime>) {}

ASN1C_OctStr::ASN1C_OctStr(ASN1MessageBufferIF& buffer, ASN1DynOctStr& data)
    : PrimitiveControl(buffer, &data, EncodeOctStr, DecodeOctStr) {}

ASN1C_BitStr::ASN1C_BitStr(ASN1MessageBufferIF& buffer, ASN1DynBitStr& data)
    : PrimitiveControl(buffer, &data, EncodeBitStr, DecodeBitStr) {}

ASN1C_OpenType::ASN1C_OpenType(ASN1MessageBufferIF& buffer, ASN1OpenType& data)
    : PrimitiveControl(buffer, &data, EncodeOpenType<ASN1OpenType>, DecodeOpenType<ASN1OpenType>) {}

ASN1C_Object::ASN1C_Object(ASN1MessageBufferIF& buffer, Asn1Object& data)
    : PrimitiveControl(buffer, &data, EncodeOpenType<Asn1Object>, DecodeObject) {}

ASN1C_BigInt::ASN1C_BigInt(ASN1MessageBufferIF& buffer, char const*& data)
    : PrimitiveControl(buffer, &data, EncodeBigInt, DecodeBigInt) {}

}  // namespace ASN1
}  // namespace Korvex
