// dlist.cpp: doubly linked list with nodes from the context's type heap.
#include "rtintern.h"

namespace {

rtDListNode* NewNode(ASN1CTXT* ctxt, void* data) {
  if (!ctxt) return nullptr;
  auto* node = rtMemAllocType(ctxt, rtDListNode);
  if (!node) return nullptr;
  node->data = data;
  node->next = nullptr;
  node->prev = nullptr;
  return node;
}

// Links node in front of before (null: at the tail).
void LinkBefore(rtDList* list, rtDListNode* before, rtDListNode* node) {
  if (!before) {
    node->prev = list->tail;
    node->next = nullptr;
    if (list->tail) {
      list->tail->next = node;
    } else {
      list->head = node;
    }
    list->tail = node;
  } else {
    node->next = before;
    node->prev = before->prev;
    if (before->prev) {
      before->prev->next = node;
    } else {
      list->head = node;
    }
    before->prev = node;
  }
  ++list->count;
}

}  // namespace

extern "C" {

void rtDListInit(rtDList* list) {
  if (!list) return;
  list->count = 0;
  list->head = nullptr;
  list->tail = nullptr;
}

void rtDListAppendNode(rtDList* list, rtDListNode* node) {
  if (list && node) LinkBefore(list, nullptr, node);
}

rtDListNode* rtDListAppend(ASN1CTXT* ctxt, rtDList* list, void* data) {
  if (!list) return nullptr;
  rtDListNode* node = NewNode(ctxt, data);
  if (node) LinkBefore(list, nullptr, node);
  return node;
}

rtDListNode* rtDListInsert(ASN1CTXT* ctxt, rtDList* list, int index, void* data) {
  if (!list) return nullptr;
  rtDListNode* node = NewNode(ctxt, data);
  if (!node) return nullptr;
  rtDListNode* before = index <= 0 ? list->head : rtDListFindByIndex(list, index);
  LinkBefore(list, before, node);
  return node;
}

rtDListNode* rtDListInsertBefore(ASN1CTXT* ctxt, rtDList* list, rtDListNode* node, void* data) {
  if (!list) return nullptr;
  rtDListNode* fresh = NewNode(ctxt, data);
  if (!fresh) return nullptr;
  LinkBefore(list, node ? node : list->head, fresh);
  return fresh;
}

rtDListNode* rtDListInsertAfter(ASN1CTXT* ctxt, rtDList* list, rtDListNode* node, void* data) {
  if (!list) return nullptr;
  rtDListNode* fresh = NewNode(ctxt, data);
  if (!fresh) return nullptr;
  LinkBefore(list, node ? node->next : nullptr, fresh);
  return fresh;
}

void rtDListRemove(rtDList* list, rtDListNode* node) {
  if (!list || !node) return;
  if (node->next) {
    node->next->prev = node->prev;
  } else {
    list->tail = node->prev;
  }
  if (node->prev) {
    node->prev->next = node->next;
  } else {
    list->head = node->next;
  }
  node->next = nullptr;
  node->prev = nullptr;
  if (list->count) --list->count;
}

rtDListNode* rtDListFindByIndex(const rtDList* list, int index) {
  if (!list || index < 0 || static_cast<unsigned>(index) >= list->count) return nullptr;
  // Walk from the nearer end.
  if (static_cast<unsigned>(index) <= list->count / 2) {
    rtDListNode* node = list->head;
    for (int i = 0; node && i < index; ++i) node = node->next;
    return node;
  }
  rtDListNode* node = list->tail;
  for (unsigned i = list->count - 1; node && i > static_cast<unsigned>(index); --i) node = node->prev;
  return node;
}

rtDListNode* rtDListFindByData(const rtDList* list, const void* data) {
  if (!list) return nullptr;
  for (rtDListNode* node = list->head; node; node = node->next) {
    if (node->data == data) return node;
  }
  return nullptr;
}

int rtDListFindIndexByData(const rtDList* list, const void* data) {
  if (!list) return -1;
  int index = 0;
  for (rtDListNode* node = list->head; node; node = node->next, ++index) {
    if (node->data == data) return index;
  }
  return -1;
}

void rtDListFreeNode(ASN1CTXT* ctxt, rtDList* list, rtDListNode* node) {
  if (!ctxt || !node) return;
  rtDListRemove(list, node);
  rtMemFreePtr(ctxt, node);
}

void rtDListFreeNodes(ASN1CTXT* ctxt, rtDList* list) {
  if (!ctxt || !list) return;
  for (rtDListNode* node = list->head; node;) {
    rtDListNode* next = node->next;
    rtMemFreePtr(ctxt, node);
    node = next;
  }
  rtDListInit(list);
}

void rtDListFreeAll(ASN1CTXT* ctxt, rtDList* list) {
  if (!ctxt || !list) return;
  for (rtDListNode* node = list->head; node;) {
    rtDListNode* next = node->next;
    if (node->data) rtMemFreePtr(ctxt, node->data);
    rtMemFreePtr(ctxt, node);
    node = next;
  }
  rtDListInit(list);
}

}  // extern "C"
