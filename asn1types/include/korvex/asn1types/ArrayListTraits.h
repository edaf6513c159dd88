// korvex/asn1types/ArrayListTraits.h: traits of a SEQUENCE OF / SET OF that
// the generated code holds as a counted array ({n, elem}) over a typed list.
//
// The catalogue's list records (ASN1T_Extensions, ASN1T_Attributes,
// ASN1T__SeqOfESSCertID ...) are arrays rather than linked lists; this is the
// array counterpart of ASN1TSeqOfList_traits (SeqOfListTraits.h), with the
// same contract: set fills the record from the list in list order (the DER
// encoder alone sorts a SET OF, X.690 11.6), get replaces the list's contents
// with one value per element, in order.
#ifndef KORVEX_ASN1TYPES_ARRAYLISTTRAITS_H
#define KORVEX_ASN1TYPES_ARRAYLISTTRAITS_H

#include <korvex/asn1rt/asn1type.h>
#include <korvex/asn1types/ErrorCodes.h>

#include <climits>
#include <list>
#include <new>
#include <type_traits>

namespace Korvex {
namespace ASN1 {

// ASN1TArrayList_traits<ArrayRecord, ElemTraits, Value, List>: ArrayRecord has
// the members `n` (count) and `elem` (pointer to the first element record);
// ElemTraits converts one element record to and from a Value (Traits.h
// convention; set and get are used); List is std::list<Value> or a class
// derived from one. Value must be default-constructible and copyable.
//
// A generated list type derives its traits from this one and adds its record,
// control class and generated copy through GeneratedTraits:
//
//   struct ASN1T_Extensions_traits
//       : GeneratedTraits<asn1data::ASN1T_Extensions, asn1data::ASN1C_Extensions,
//                         &asn1data::asn1Copy_Extensions>,
//         ASN1TArrayList_traits<asn1data::ASN1T_Extensions, ASN1T_Extension_traits,
//                               CExtension, CExtensions> {};
//
// (set and get come from this template, ASN1_T, ASN1_C and copy from
// GeneratedTraits.)
template <class ArrayRecord, class ElemTraits, class Value, class List = std::list<Value>>
struct ASN1TArrayList_traits {
  typedef typename std::remove_pointer<decltype(ArrayRecord::elem)>::type element_record;

  // set: one zero-filled element array of list.size() records from ctxt's heap
  // (null: 0x80093101 when the size cannot be expressed, 0x80093106 when the
  // heap refuses), each element filled by ElemTraits::set in list order. rec's
  // count and array are written only once every element is filled, so a
  // failure leaves rec as it was (the partial array stays in ctxt's heap until
  // the context is freed). An empty list gives an empty array.
  static void set(ASN1CTXT* ctxt, ArrayRecord& rec, List const& list) {
    if (!ctxt) throwInvalidArgument();
    std::size_t const count = list.size();
    if (count == 0) {
      rec.n = 0;
      rec.elem = nullptr;
      return;
    }
    if (count > UINT_MAX / sizeof(element_record)) throwCodecError();
    void* memory = checkHeap(rtMemHeapAllocZ(&ctxt->pTypeMemHeap, count * sizeof(element_record)));
    auto* elements = static_cast<element_record*>(memory);
    // Generated records zero themselves and own no context when built this
    // way, so the heap takes them back with the context, undestroyed.
    for (std::size_t i = 0; i < count; ++i) ::new (&elements[i]) element_record();
    std::size_t i = 0;
    for (Value const& value : list) ElemTraits::set(ctxt, elements[i++], value);
    rec.n = static_cast<decltype(rec.n)>(count);
    rec.elem = elements;
  }

  // get: list is emptied, then one Value per element of rec is appended, in
  // order, filled by ElemTraits::get. A count without an array throws
  // 0x80093101. When an element fails, the list keeps the elements before it.
  static void get(ArrayRecord const& rec, List& list) {
    list.clear();
    if (rec.n && !rec.elem) throwCodecError();
    for (decltype(rec.n) i = 0; i < rec.n; ++i) {
      list.push_back(Value());
      try {
        ElemTraits::get(rec.elem[i], list.back());
      } catch (...) {
        list.pop_back();
        throw;
      }
    }
  }
};

}  // namespace ASN1
}  // namespace Korvex

#endif
