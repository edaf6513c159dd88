// seqoflist_iterator.cpp: ASN1CSeqOfListIterator.
//
// The position lies between two nodes and is kept as the node that next()
// returns (null past the last). An iterator notices changes made elsewhere
// by comparing the list object's change counter, and the element count, with
// what it saw after its own last change.
#include <korvex/asn1rt/ASN1CSeqOfList.h>

ASN1CSeqOfListIterator::ASN1CSeqOfListIterator(const rtDList& list)
    : m_owner(nullptr),
      m_list(const_cast<rtDList*>(&list)),  // never written without an owner
      m_next(list.head),
      m_lastReturned(nullptr),
      m_expectedChanges(0),
      m_expectedCount(list.count),
      m_status(0) {}

ASN1CSeqOfListIterator::ASN1CSeqOfListIterator(ASN1CSeqOfList* owner, rtDListNode* nextNode)
    : m_owner(owner),
      m_list(owner->m_list),
      m_next(nextNode),
      m_lastReturned(nullptr),
      m_expectedChanges(owner->m_changes),
      m_expectedCount(owner->m_list->count),
      m_status(0) {}

int ASN1CSeqOfListIterator::check() {
  bool changed = m_list->count != m_expectedCount ||
                 (m_owner != nullptr && m_owner->m_changes != m_expectedChanges);
  m_status = changed ? ASN_E_ITERCHANGED : 0;
  return m_status;
}

bool ASN1CSeqOfListIterator::hasNext() const { return m_next != nullptr; }

bool ASN1CSeqOfListIterator::hasPrev() const {
  return m_next != nullptr ? m_next->prev != nullptr : m_list->tail != nullptr;
}

void* ASN1CSeqOfListIterator::next() {
  if (check() != 0) return nullptr;
  if (m_next == nullptr) {
    m_status = ASN_E_ITERNOTPOS;
    return nullptr;
  }
  m_lastReturned = m_next;
  m_next = m_next->next;
  return m_lastReturned->data;
}

void* ASN1CSeqOfListIterator::prev() {
  if (check() != 0) return nullptr;
  rtDListNode* previous = m_next != nullptr ? m_next->prev : m_list->tail;
  if (previous == nullptr) {
    m_status = ASN_E_ITERNOTPOS;
    return nullptr;
  }
  m_lastReturned = previous;
  m_next = previous;
  return previous->data;
}

int ASN1CSeqOfListIterator::remove() {
  if (check() != 0) return m_status;
  if (m_owner == nullptr || m_owner->m_ctxt == nullptr) return m_status = ASN_E_INVPARAM;
  if (m_lastReturned == nullptr) return m_status = ASN_E_ITERNOTPOS;
  if (m_next == m_lastReturned) m_next = m_lastReturned->next;  // it came from prev()
  rtDListFreeNode(m_owner->m_ctxt, m_list, m_lastReturned);
  m_lastReturned = nullptr;
  m_owner->changed();
  m_expectedChanges = m_owner->m_changes;
  m_expectedCount = m_list->count;
  return 0;
}

int ASN1CSeqOfListIterator::set(void* data) {
  if (check() != 0) return m_status;
  if (m_owner == nullptr || m_owner->m_ctxt == nullptr) return m_status = ASN_E_INVPARAM;
  if (m_lastReturned == nullptr) return m_status = ASN_E_ITERNOTPOS;
  m_lastReturned->data = data;
  return 0;
}

int ASN1CSeqOfListIterator::insert(void* data) {
  if (check() != 0) return m_status;
  if (m_owner == nullptr || m_owner->m_ctxt == nullptr) return m_status = ASN_E_INVPARAM;
  // rtDListInsertBefore puts a node at the head when given none, so the
  // end of the list is an append.
  rtDListNode* node = m_next != nullptr ? rtDListInsertBefore(m_owner->m_ctxt, m_list, m_next, data)
                                        : rtDListAppend(m_owner->m_ctxt, m_list, data);
  if (node == nullptr) return m_status = ASN_E_NOMEM;
  m_lastReturned = nullptr;
  m_owner->changed();
  m_expectedChanges = m_owner->m_changes;
  m_expectedCount = m_list->count;
  return 0;
}
