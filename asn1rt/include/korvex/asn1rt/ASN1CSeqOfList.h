// korvex/asn1rt/ASN1CSeqOfList.h: a SEQUENCE OF / SET OF list record seen as
// a list of element pointers, with an iterator.
//
// ASN1CSeqOfList works on an rtDList that the caller owns (the list form of
// a generated SEQUENCE OF record). Nodes, and elements made with
// appendNewElement, come from the type heap of the context the list object
// was given; the list holds element pointers and frees elements only in
// freeMemory. A list object made without a context can be read and walked
// but not changed (changes report -30).
//
// ASN1CSeqOfListIterator walks the list both ways (next / prev) and can
// remove, replace or insert at its position, like a list iterator of other
// languages: remove and set act on the element last returned by next or prev,
// and report -27 when there is none (before the first step, or after a
// remove or insert). A change made to the list other than through the
// iterator itself (through the list object, or through the rtDList
// functions when it changes the element count) makes the iterator report
// -28 from then on. An iterator must not outlive its list object.
#ifndef KORVEX_ASN1RT_ASN1CSEQOFLIST_H
#define KORVEX_ASN1RT_ASN1CSEQOFLIST_H

#include <korvex/asn1rt/asn1CppTypes.h>
#include <korvex/asn1rt/asn1type.h>
#include <stddef.h>

// ASN1TSeqOfList: the list form of a generated SEQUENCE OF / SET OF record
// field, an rtDList that starts empty.
struct ASN1TSeqOfList : public rtDList {
  ASN1TSeqOfList() { rtDListInit(this); }
};

class ASN1CSeqOfList;

class KORVEX_API ASN1CSeqOfListIterator {
 public:
  // ASN1CSeqOfListIterator(list) walks a bare list from its first element;
  // it can read but not change it (remove, set and insert give -30).
  explicit ASN1CSeqOfListIterator(const rtDList& list);

  // hasNext / hasPrev tell whether next / prev would return an element.
  bool hasNext() const;
  bool hasPrev() const;
  // next / prev return the element after / before the position and step
  // over it. At the end, or when the list changed under the iterator, they
  // return null and status() says why (-27 or -28); elements may themselves
  // be null pointers, so status() is the way to tell.
  void* next();
  void* prev();
  // status is the result of the last operation: 0, -27, -28 or -30.
  int status() const { return m_status; }

  // remove takes the element last returned out of the list (its node is
  // freed, the element is not). Returns 0, -27, -28, -30 or -12.
  int remove();
  // set replaces the element last returned with `data`. 0, -27, -28, -30.
  int set(void* data);
  // insert puts `data` at the position: a later next() returns the element
  // that followed, a later prev() the new one. 0, -28, -30 or -12.
  int insert(void* data);

 private:
  friend class ASN1CSeqOfList;
  ASN1CSeqOfListIterator(ASN1CSeqOfList* owner, rtDListNode* nextNode);
  int check();

  ASN1CSeqOfList* m_owner;  // null for a bare, read-only walk
  rtDList* m_list;
  rtDListNode* m_next;          // the node next() returns; null at the end
  rtDListNode* m_lastReturned;  // the node remove() and set() act on
  unsigned int m_expectedChanges;
  unsigned int m_expectedCount;
  int m_status;
};

class KORVEX_API ASN1CSeqOfList {
 public:
  // ASN1CSeqOfList(ctxt, list) works on `list` with ctxt's type heap; a null
  // ctxt gives a read-only list object.
  ASN1CSeqOfList(ASN1CTXT* ctxt, rtDList& list);
  // ASN1CSeqOfList(buffer, list) / (control, list) use the context of a
  // message buffer or a control object, and keep it alive while they live.
  ASN1CSeqOfList(ASN1MessageBufferIF& buffer, rtDList& list);
  ASN1CSeqOfList(ASN1CType& control, rtDList& list);
  ~ASN1CSeqOfList();
  ASN1CSeqOfList(const ASN1CSeqOfList&) = delete;
  ASN1CSeqOfList& operator=(const ASN1CSeqOfList&) = delete;

  // size / isEmpty: the number of elements, and whether there is none.
  int size() const;
  bool isEmpty() const { return size() == 0; }

  // append adds `data` at the end. Returns 0, -12 or -30.
  int append(void* data);
  // appendNewElement allocates `size` zeroed bytes from the type heap and
  // appends them; returns the element, or null when either allocation fails
  // (nothing is left allocated then) or the list object is read-only.
  void* appendNewElement(size_t size);
  // insert puts `data` at position `index` (0 to size(); size() appends).
  // Returns 0, -12, or -30 for an index outside that range.
  int insert(int index, void* data);

  // get returns element `index`, or null when there is no such element.
  void* get(int index) const;
  void* getFirst() const;
  void* getLast() const;
  // set replaces element `index`; returns 0 or -30 (no such element).
  int set(int index, void* data);
  // indexOf returns the position of the first element equal to `data`
  // (pointer comparison), or -1; contains tells whether there is one.
  int indexOf(const void* data) const;
  bool contains(const void* data) const { return indexOf(data) >= 0; }

  // remove(index) / remove(data) take one element out (its node is freed,
  // the element is not). 0, or -30 when there is no such element.
  int remove(int index);
  int remove(const void* data);
  // clear frees every node and leaves the list empty; the elements stay.
  void clear();
  // freeMemory frees every node and every element (rtDListFreeAll).
  void freeMemory();

  // iterator starts before the first element, iteratorFromLast after the
  // last (walk it with prev), iteratorFrom(index) before element `index`
  // (an index past the end starts after the last element).
  ASN1CSeqOfListIterator iterator();
  ASN1CSeqOfListIterator iteratorFromLast();
  ASN1CSeqOfListIterator iteratorFrom(int index);

 private:
  friend class ASN1CSeqOfListIterator;
  rtDListNode* nodeAt(int index) const;
  void changed() { ++m_changes; }

  ASN1Context* m_context;  // held reference, when made from a buffer or control object
  ASN1CTXT* m_ctxt;
  rtDList* m_list;
  unsigned int m_changes;  // counts structural changes, for the iterators
};

#endif
