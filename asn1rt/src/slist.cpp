// slist.cpp: singly linked list with nodes from the context's type heap.
#include "rtintern.h"

extern "C" {

void rtSListInit(rtSList* list) {
  if (!list) return;
  list->count = 0;
  list->head = nullptr;
  list->tail = nullptr;
}

static rtSListNode* NewSNode(ASN1CTXT* ctxt, void* data) {
  if (!ctxt) return nullptr;
  auto* node = rtMemAllocType(ctxt, rtSListNode);
  if (!node) return nullptr;
  node->data = data;
  node->next = nullptr;
  return node;
}

rtSListNode* rtSListAppend(ASN1CTXT* ctxt, rtSList* list, void* data) {
  if (!list) return nullptr;
  rtSListNode* node = NewSNode(ctxt, data);
  if (!node) return nullptr;
  if (list->tail) {
    list->tail->next = node;
  } else {
    list->head = node;
  }
  list->tail = node;
  ++list->count;
  return node;
}

rtSListNode* rtSListInsert(ASN1CTXT* ctxt, rtSList* list, int index, void* data) {
  if (!list) return nullptr;
  if (index >= 0 && static_cast<unsigned>(index) >= list->count) {
    return rtSListAppend(ctxt, list, data);
  }
  rtSListNode* node = NewSNode(ctxt, data);
  if (!node) return nullptr;
  if (index <= 0) {
    node->next = list->head;
    list->head = node;
    if (!list->tail) list->tail = node;
  } else {
    rtSListNode* prev = rtSListFindByIndex(list, index - 1);
    node->next = prev->next;
    prev->next = node;
  }
  ++list->count;
  return node;
}

int rtSListRemove(ASN1CTXT* ctxt, rtSList* list, const void* data) {
  if (!list) return 0;
  rtSListNode* prev = nullptr;
  for (rtSListNode* node = list->head; node; prev = node, node = node->next) {
    if (node->data != data) continue;
    if (prev) {
      prev->next = node->next;
    } else {
      list->head = node->next;
    }
    if (list->tail == node) list->tail = prev;
    --list->count;
    if (ctxt) rtMemFreePtr(ctxt, node);
    return 1;
  }
  return 0;
}

rtSListNode* rtSListFindByIndex(const rtSList* list, int index) {
  if (!list || index < 0 || static_cast<unsigned>(index) >= list->count) return nullptr;
  rtSListNode* node = list->head;
  for (int i = 0; node && i < index; ++i) node = node->next;
  return node;
}

rtSListNode* rtSListFindByData(const rtSList* list, const void* data) {
  if (!list) return nullptr;
  for (rtSListNode* node = list->head; node; node = node->next) {
    if (node->data == data) return node;
  }
  return nullptr;
}

void rtSListFreeNodes(ASN1CTXT* ctxt, rtSList* list) {
  if (!ctxt || !list) return;
  for (rtSListNode* node = list->head; node;) {
    rtSListNode* next = node->next;
    rtMemFreePtr(ctxt, node);
    node = next;
  }
  rtSListInit(list);
}

void rtSListFreeAll(ASN1CTXT* ctxt, rtSList* list) {
  if (!ctxt || !list) return;
  for (rtSListNode* node = list->head; node;) {
    rtSListNode* next = node->next;
    if (node->data) rtMemFreePtr(ctxt, node->data);
    rtMemFreePtr(ctxt, node);
    node = next;
  }
  rtSListInit(list);
}

}  // extern "C"
