// korvex/asn1types/SeqOfListTraits.h: traits of a SEQUENCE OF / SET OF held
// as a list (ASN1TSeqOfList) over a typed list of values.
#ifndef KORVEX_ASN1TYPES_SEQOFLISTTRAITS_H
#define KORVEX_ASN1TYPES_SEQOFLISTTRAITS_H

#include <korvex/asn1rt/ASN1CSeqOfList.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/ErrorCodes.h>

#include <list>
#include <new>

namespace Korvex {
namespace ASN1 {

// ASN1TSeqOfList_traits<Record, ElemTraits, Value, List>: the list record's
// nodes point to element records of type Record (heap memory of the record's
// context); ElemTraits (Traits.h convention, with set, get and copy over
// Record) converts each element to and from a Value; List is std::list<Value>
// or a class derived from one (CGeneralNames, CBlobList, CAttributes ...).
// The order of the list is the order on the wire (a SET OF is sorted by the
// DER encoder only). Value must be default-constructible and copyable.
//
// A generated list type (a record deriving from ASN1TSeqOfList) gets its own
// traits by deriving from this one and naming its record, control class and
// generated copy:
//
//   struct ASN1T_CRLListID_traits
//       : ASN1TSeqOfList_traits<ASN1T_CrlValidatedID, ASN1T_CrlValidatedID_traits,
//                               CCrlValidatedID, CCRLListID> { ... };
template <class Record, class ElemTraits, class Value, class List = std::list<Value>>
struct ASN1TSeqOfList_traits {
  typedef ASN1TSeqOfList ASN1_T;
  typedef Record element_record;

  // set fills rec from list:
  //  1. a scratch context and a temporary list over it;
  //  2. for each value in order, a zero-filled Record from ctxt's heap
  //     (null: 0x80093106) filled by ElemTraits::set and appended to the
  //     temporary list;
  //  3. rec is re-initialised (empty; its old nodes are forgotten, not freed:
  //     they belong to ctxt), and each temporary element is deep-copied with
  //     ElemTraits::copy into a fresh zero-filled Record of ctxt appended to
  //     rec.
  // An empty list gives an empty rec.
  static void set(ASN1CTXT* ctxt, ASN1TSeqOfList& rec, List const& list) {
    if (!ctxt) throwInvalidArgument();
    // The temporary list's nodes come from a scratch context that the call
    // frees; a context handle serves, no message buffer is needed.
    ctxt_handle scratch;
    if (!scratch.init()) throwHeapError();
    rtDList temporary;
    rtDListInit(&temporary);
    ASN1CSeqOfList elements(scratch.get(), temporary);
    for (Value const& value : list) {
      Record* element = newElement(ctxt);
      ElemTraits::set(ctxt, *element, value);
      if (elements.append(element) != 0) throwHeapError();
    }
    rtDListInit(&rec);
    for (rtDListNode* node = temporary.head; node; node = node->next) {
      Record* element = newElement(ctxt);
      if (!rtDListAppend(ctxt, &rec, element)) throwHeapError();
      ElemTraits::copy(ctxt, *static_cast<Record const*>(node->data), *element);
    }
  }

  // get empties list (destroying every element), then appends one Value per
  // element of rec, in order, filled by ElemTraits::get. A node without an
  // element throws 0x80093101.
  static void get(ASN1TSeqOfList const& rec, List& list) {
    list.clear();
    ASN1CSeqOfListIterator it(rec);
    while (it.hasNext()) {
      auto const* element = static_cast<Record const*>(it.next());
      if (!element) throwCodecError();
      Value value;
      ElemTraits::get(*element, value);
      list.push_back(value);
    }
  }

  // copy: dst becomes a new list in ctxt whose elements are ElemTraits::copy
  // of src's, in order. Copying a list onto itself does nothing.
  static void copy(ASN1CTXT* ctxt, ASN1TSeqOfList const& src, ASN1TSeqOfList& dst) {
    if (&src == &dst) return;
    if (!ctxt) throwInvalidArgument();
    rtDListInit(&dst);
    for (rtDListNode* node = src.head; node; node = node->next) {
      if (!node->data) throwCodecError();
      Record* element = newElement(ctxt);
      if (!rtDListAppend(ctxt, &dst, element)) throwHeapError();
      ElemTraits::copy(ctxt, *static_cast<Record const*>(node->data), *element);
    }
  }

 private:
  // A zero-filled Record from ctxt's heap, constructed in place (a generated
  // record's constructor zeroes it again and sets no owning context, so it is
  // never destroyed: the heap takes it back with the context).
  static Record* newElement(ASN1CTXT* ctxt) {
    void* memory = checkHeap(rtMemHeapAllocZ(&ctxt->pTypeMemHeap, sizeof(Record)));
    return ::new (memory) Record();
  }
};

}  // namespace ASN1
}  // namespace Korvex

#endif
