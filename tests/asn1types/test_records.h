// test_records.h: two hand-made "generated" types for exercising the traits
// templates without the module catalogue:
//   TestOctets     ::= OCTET STRING
//   TestOctetsList ::= SEQUENCE OF TestOctets   (list form)
// each with a record, a control class calling the xe_/xd_ primitives, a deep
// copy, and traits over CBlob / CBlobList.
#ifndef KORVEX_TESTS_ASN1TYPES_TEST_RECORDS_H
#define KORVEX_TESTS_ASN1TYPES_TEST_RECORDS_H

#include <korvex/asn1rt/ASN1CSeqOfList.h>
#include <korvex/asn1rt/asn1CppTypes.h>
#include <korvex/asn1rt/asn1ber.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/SeqOfListTraits.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/core/Blob.h>

namespace typestest {

struct ASN1T_TestOctets {
  ASN1DynOctStr value;
  ASN1T_TestOctets() {
    value.numocts = 0;
    value.data = nullptr;
  }
};

inline int asn1Copy_TestOctets(ASN1CTXT* ctxt, ASN1T_TestOctets const* src, ASN1T_TestOctets* dst) {
  if (src == dst) return 0;
  return rtCopyDynOctStr(ctxt, &src->value, &dst->value);
}

class ASN1C_TestOctets : public ASN1CType {
 public:
  ASN1C_TestOctets(ASN1MessageBufferIF& buffer, ASN1T_TestOctets& data)
      : ASN1CType(buffer), msgData(data) {}
  int EncodeTo(ASN1MessageBufferIF& buffer) override {
    setMsgBuf(buffer);
    buffer.init();
    return xe_octstr(buffer.getCtxtPtr(), msgData.value.data, msgData.value.numocts, ASN1EXPL);
  }
  int DecodeFrom(ASN1MessageBufferIF& buffer) override {
    setMsgBuf(buffer);
    buffer.init();
    return xd_octstr(buffer.getCtxtPtr(), &msgData.value.data, &msgData.value.numocts, ASN1EXPL, 0);
  }

 private:
  ASN1T_TestOctets& msgData;
};

struct ASN1T_TestOctets_traits
    : Korvex::ASN1::GeneratedTraits<ASN1T_TestOctets, ASN1C_TestOctets, &asn1Copy_TestOctets> {
  static void set(ASN1CTXT* ctxt, ASN1T_TestOctets& rec, Korvex::CBlob const& v) {
    Korvex::ASN1::ASN1TDynOctStr_traits::set(ctxt, rec.value, v);
  }
  static void get(ASN1T_TestOctets const& rec, Korvex::CBlob& v) {
    Korvex::ASN1::ASN1TDynOctStr_traits::get(rec.value, v);
  }
};

// SEQUENCE OF TestOctets; nodes point to ASN1T_TestOctets in the heap.
struct ASN1T_TestOctetsList : public ASN1TSeqOfList {};

inline int asn1Copy_TestOctetsList(ASN1CTXT* ctxt, ASN1T_TestOctetsList const* src,
                                   ASN1T_TestOctetsList* dst) {
  if (src == dst) return 0;
  rtDListInit(dst);
  for (rtDListNode* node = src->head; node; node = node->next) {
    auto* element = static_cast<ASN1T_TestOctets*>(rtMemAllocZ(ctxt, sizeof(ASN1T_TestOctets)));
    if (!element || !rtDListAppend(ctxt, dst, element)) return ASN_E_NOMEM;
    int stat = asn1Copy_TestOctets(ctxt, static_cast<ASN1T_TestOctets*>(node->data), element);
    if (stat != 0) return stat;
  }
  return 0;
}

class ASN1C_TestOctetsList : public ASN1CType {
 public:
  ASN1C_TestOctetsList(ASN1MessageBufferIF& buffer, ASN1T_TestOctetsList& data)
      : ASN1CType(buffer), msgData(data) {}
  int EncodeTo(ASN1MessageBufferIF& buffer) override {
    setMsgBuf(buffer);
    buffer.init();
    ASN1CTXT* ctxt = buffer.getCtxtPtr();
    int sum = 0;
    for (rtDListNode* node = msgData.tail; node; node = node->prev) {
      auto* element = static_cast<ASN1T_TestOctets*>(node->data);
      int len = xe_octstr(ctxt, element->value.data, element->value.numocts, ASN1EXPL);
      if (len < 0) return len;
      sum += len;
    }
    return xe_tag_len(ctxt, TM_UNIV | TM_CONS | ASN_ID_SEQ, sum);
  }
  int DecodeFrom(ASN1MessageBufferIF& buffer) override {
    setMsgBuf(buffer);
    buffer.init();
    ASN1CTXT* ctxt = buffer.getCtxtPtr();
    int length = 0;
    int stat = xd_match1(ctxt, 0x30, &length);
    if (stat != 0) return stat;
    ASN1UINT start = ctxt->buffer.byteIndex;
    rtDListInit(&msgData);
    while (!xd_chkend(ctxt, start, length)) {
      auto* element = static_cast<ASN1T_TestOctets*>(rtMemAllocZ(ctxt, sizeof(ASN1T_TestOctets)));
      if (!element || !rtDListAppend(ctxt, &msgData, element)) return ASN_E_NOMEM;
      stat = xd_octstr(ctxt, &element->value.data, &element->value.numocts, ASN1EXPL, 0);
      if (stat != 0) return stat;
    }
    return 0;
  }

 private:
  ASN1T_TestOctetsList& msgData;
};

struct ASN1T_TestOctetsList_traits
    : Korvex::ASN1::ASN1TSeqOfList_traits<ASN1T_TestOctets, ASN1T_TestOctets_traits, Korvex::CBlob,
                                          Korvex::CBlobList> {
  typedef ASN1T_TestOctetsList ASN1_T;
  typedef ASN1C_TestOctetsList ASN1_C;
  static void copy(ASN1CTXT* ctxt, ASN1T_TestOctetsList const& src, ASN1T_TestOctetsList& dst) {
    Korvex::ASN1::checkCopyStatus(asn1Copy_TestOctetsList(ctxt, &src, &dst));
  }
};

}  // namespace typestest

#endif
