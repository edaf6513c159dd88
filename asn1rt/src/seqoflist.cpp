// seqoflist.cpp: ASN1CSeqOfList over an rtDList.
#include <korvex/asn1rt/ASN1CSeqOfList.h>

ASN1CSeqOfList::ASN1CSeqOfList(ASN1CTXT* ctxt, rtDList& list)
    : m_context(nullptr), m_ctxt(ctxt), m_list(&list), m_changes(0) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1MessageBufferIF& buffer, rtDList& list)
    : m_context(buffer.getContext()), m_ctxt(m_context->getPtr()), m_list(&list), m_changes(0) {
  m_context->_ref();
}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1CType& control, rtDList& list)
    : m_context(control.getContext()), m_ctxt(m_context->getPtr()), m_list(&list), m_changes(0) {
  m_context->_ref();
}

ASN1CSeqOfList::~ASN1CSeqOfList() {
  if (m_context != nullptr) m_context->_unref();
}

int ASN1CSeqOfList::size() const { return static_cast<int>(m_list->count); }

rtDListNode* ASN1CSeqOfList::nodeAt(int index) const {
  if (index < 0 || static_cast<unsigned int>(index) >= m_list->count) return nullptr;
  return rtDListFindByIndex(m_list, index);
}

int ASN1CSeqOfList::append(void* data) {
  if (m_ctxt == nullptr) return ASN_E_INVPARAM;
  if (rtDListAppend(m_ctxt, m_list, data) == nullptr) return ASN_E_NOMEM;
  changed();
  return 0;
}

void* ASN1CSeqOfList::appendNewElement(size_t size) {
  if (m_ctxt == nullptr) return nullptr;
  void* element = rtMemHeapAllocZ(&m_ctxt->pTypeMemHeap, size);
  if (element == nullptr) return nullptr;
  if (append(element) != 0) {
    rtMemHeapFreePtr(&m_ctxt->pTypeMemHeap, element);
    return nullptr;
  }
  return element;
}

int ASN1CSeqOfList::insert(int index, void* data) {
  if (m_ctxt == nullptr) return ASN_E_INVPARAM;
  if (index < 0 || static_cast<unsigned int>(index) > m_list->count) return ASN_E_INVPARAM;
  if (rtDListInsert(m_ctxt, m_list, index, data) == nullptr) return ASN_E_NOMEM;
  changed();
  return 0;
}

void* ASN1CSeqOfList::get(int index) const {
  rtDListNode* node = nodeAt(index);
  return node == nullptr ? nullptr : node->data;
}

void* ASN1CSeqOfList::getFirst() const {
  return m_list->head == nullptr ? nullptr : m_list->head->data;
}

void* ASN1CSeqOfList::getLast() const {
  return m_list->tail == nullptr ? nullptr : m_list->tail->data;
}

int ASN1CSeqOfList::set(int index, void* data) {
  if (m_ctxt == nullptr) return ASN_E_INVPARAM;
  rtDListNode* node = nodeAt(index);
  if (node == nullptr) return ASN_E_INVPARAM;
  node->data = data;  // not a structural change: iterators stay valid
  return 0;
}

int ASN1CSeqOfList::indexOf(const void* data) const { return rtDListFindIndexByData(m_list, data); }

int ASN1CSeqOfList::remove(int index) {
  if (m_ctxt == nullptr) return ASN_E_INVPARAM;
  rtDListNode* node = nodeAt(index);
  if (node == nullptr) return ASN_E_INVPARAM;
  rtDListFreeNode(m_ctxt, m_list, node);
  changed();
  return 0;
}

int ASN1CSeqOfList::remove(const void* data) {
  if (m_ctxt == nullptr) return ASN_E_INVPARAM;
  rtDListNode* node = rtDListFindByData(m_list, data);
  if (node == nullptr) return ASN_E_INVPARAM;
  rtDListFreeNode(m_ctxt, m_list, node);
  changed();
  return 0;
}

void ASN1CSeqOfList::clear() {
  if (m_ctxt == nullptr) return;
  rtDListFreeNodes(m_ctxt, m_list);
  changed();
}

void ASN1CSeqOfList::freeMemory() {
  if (m_ctxt == nullptr) return;
  rtDListFreeAll(m_ctxt, m_list);
  changed();
}

ASN1CSeqOfListIterator ASN1CSeqOfList::iterator() {
  return ASN1CSeqOfListIterator(this, m_list->head);
}

ASN1CSeqOfListIterator ASN1CSeqOfList::iteratorFromLast() {
  return ASN1CSeqOfListIterator(this, nullptr);
}

ASN1CSeqOfListIterator ASN1CSeqOfList::iteratorFrom(int index) {
  if (index <= 0) return iterator();
  return ASN1CSeqOfListIterator(this, nodeAt(index));
}
