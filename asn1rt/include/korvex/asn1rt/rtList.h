// korvex/asn1rt/rtList.h: doubly and singly linked lists of the ASN.1 runtime.
//
// A list holds untyped data pointers. Nodes are taken from the type heap of the
// context passed to the functions that allocate, so a list dies with its context
// when nobody frees it. Lists never own their data except in rtDListFreeAll and
// rtSListFreeAll, which free each data pointer from the same heap as well.
//
// This header needs only the context's name, so it can be included on its own.
#ifndef KORVEX_ASN1RT_RTLIST_H
#define KORVEX_ASN1RT_RTLIST_H

#include <korvex/platform/export.h>

struct ASN1CTXT;

/* Doubly linked list. */
typedef struct rtDListNode {
  void* data;
  struct rtDListNode* next;
  struct rtDListNode* prev;
} rtDListNode;

typedef struct rtDList {
  unsigned int count;
  rtDListNode* head;
  rtDListNode* tail;
} rtDList;

/* Singly linked list. */
typedef struct rtSListNode {
  void* data;
  struct rtSListNode* next;
} rtSListNode;

typedef struct rtSList {
  unsigned int count;
  rtSListNode* head;
  rtSListNode* tail;
} rtSList;

KORVEX_BEGIN_C

/* rtDListInit: makes list empty (count 0, no nodes). Does not free anything. */
KORVEX_API void rtDListInit(rtDList* list);

/* rtDListAppend: adds data at the tail in a new node from ctxt's type heap.
 * Returns the node, or null when the node cannot be allocated (list unchanged). */
KORVEX_API rtDListNode* rtDListAppend(struct ASN1CTXT* ctxt, rtDList* list, void* data);

/* rtDListInsert: inserts data so that it becomes element number index (0 based);
 * an index at or past the count appends. Returns the node, or null on no memory. */
KORVEX_API rtDListNode* rtDListInsert(struct ASN1CTXT* ctxt, rtDList* list, int index,
                                      void* data);

/* rtDListInsertBefore / rtDListInsertAfter: insert data next to node, which must
 * belong to list; a null node inserts at the head (Before) or tail (After).
 * Return the new node, or null on no memory. */
KORVEX_API rtDListNode* rtDListInsertBefore(struct ASN1CTXT* ctxt, rtDList* list,
                                            rtDListNode* node, void* data);
KORVEX_API rtDListNode* rtDListInsertAfter(struct ASN1CTXT* ctxt, rtDList* list,
                                           rtDListNode* node, void* data);

/* rtDListAppendNode: links an already allocated node at the tail. */
KORVEX_API void rtDListAppendNode(rtDList* list, rtDListNode* node);

/* rtDListRemove: unlinks node from list without freeing node or data. */
KORVEX_API void rtDListRemove(rtDList* list, rtDListNode* node);

/* rtDListFindByIndex: the node at position index (0 based), or null. */
KORVEX_API rtDListNode* rtDListFindByIndex(const rtDList* list, int index);

/* rtDListFindByData: the first node whose data pointer equals data, or null. */
KORVEX_API rtDListNode* rtDListFindByData(const rtDList* list, const void* data);

/* rtDListFindIndexByData: the position of the first node holding data, or -1. */
KORVEX_API int rtDListFindIndexByData(const rtDList* list, const void* data);

/* rtDListFreeNode: unlinks node and frees it (not its data) from ctxt's type heap. */
KORVEX_API void rtDListFreeNode(struct ASN1CTXT* ctxt, rtDList* list, rtDListNode* node);

/* rtDListFreeNodes: frees every node (not the data) and leaves list empty. */
KORVEX_API void rtDListFreeNodes(struct ASN1CTXT* ctxt, rtDList* list);

/* rtDListFreeAll: frees every node and every non-null data pointer from ctxt's
 * type heap, and leaves list empty. */
KORVEX_API void rtDListFreeAll(struct ASN1CTXT* ctxt, rtDList* list);

/* rtSListInit: makes list empty. Does not free anything. */
KORVEX_API void rtSListInit(rtSList* list);

/* rtSListAppend: adds data at the tail in a new node from ctxt's type heap.
 * Returns the node, or null when the node cannot be allocated. */
KORVEX_API rtSListNode* rtSListAppend(struct ASN1CTXT* ctxt, rtSList* list, void* data);

/* rtSListInsert: inserts data as element number index; past the end appends.
 * Returns the node, or null on no memory. */
KORVEX_API rtSListNode* rtSListInsert(struct ASN1CTXT* ctxt, rtSList* list, int index,
                                      void* data);

/* rtSListRemove: unlinks the first node holding data and frees that node (not
 * the data). Returns 1 when a node was removed, 0 when data is not in list. */
KORVEX_API int rtSListRemove(struct ASN1CTXT* ctxt, rtSList* list, const void* data);

/* rtSListFindByIndex: the node at position index, or null. */
KORVEX_API rtSListNode* rtSListFindByIndex(const rtSList* list, int index);

/* rtSListFindByData: the first node holding data, or null. */
KORVEX_API rtSListNode* rtSListFindByData(const rtSList* list, const void* data);

/* rtSListFreeNodes: frees every node (not the data) and leaves list empty. */
KORVEX_API void rtSListFreeNodes(struct ASN1CTXT* ctxt, rtSList* list);

/* rtSListFreeAll: frees every node and every non-null data pointer from ctxt's
 * type heap, and leaves list empty. */
KORVEX_API void rtSListFreeAll(struct ASN1CTXT* ctxt, rtSList* list);

KORVEX_END_C

#endif
