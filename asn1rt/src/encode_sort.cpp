// encode_sort.cpp: DER ordering of SET OF elements (X.690 11.6): the encoded
// elements are put in ascending order as octet strings, a shorter element that
// is a prefix of a longer one first.
//
// The elements are sorted through an array of descriptors with a stable
// O(n log n) merge sort, so 100,000 elements cost no more than a few million
// comparisons; an already ordered list is detected in one pass and left alone.
#include <algorithm>
#include <cstring>

#include "encode_intern.h"

using korvex_rt::Fail;

namespace {

struct Element {
  const ASN1OCTET* bytes;
  ASN1UINT length;
};

// memcmp over the shorter length; equal prefixes put the shorter first.
inline int Compare(const Element& a, const Element& b) {
  ASN1UINT n = a.length < b.length ? a.length : b.length;
  int c = n ? std::memcmp(a.bytes, b.bytes, n) : 0;
  if (c != 0) return c;
  return a.length < b.length ? -1 : a.length > b.length ? 1 : 0;
}

}  // namespace

extern "C" {

int xe_derCanonicalSort(ASN1CTXT* ctxt, rtDList* list) {
  if (!ctxt || !list) return 0;
  const ASN1UINT count = list->count;
  const ASN1UINT encodedEnd = ctxt->buffer.size ? ctxt->buffer.size - 1 : 0;
  const ASN1UINT encodedLen = xe_getLength(ctxt);

  // The list holds the elements in encoding order: the first entry was encoded
  // first and lies last in the buffer. Bytes are in ascending order when the
  // entries are in descending order.
  Element* elems = nullptr;
  if (count > 1) {
    elems = static_cast<Element*>(rtMemAlloc(ctxt, sizeof(Element) * count));
    if (!elems) {
      rtDListFreeAll(ctxt, list);
      return Fail(ctxt, ASN_E_NOMEM);
    }
  }
  unsigned long long total = 0;
  ASN1UINT i = 0;
  for (rtDListNode* node = list->head; node; node = node->next, ++i) {
    auto* d = static_cast<const Asn1BufLocDescr*>(node->data);
    // A descriptor must name bytes inside the encoded message.
    if (!d || d->offset > encodedLen || d->numocts > d->offset) {
      rtMemFreePtr(ctxt, elems);
      rtDListFreeAll(ctxt, list);
      return Fail(ctxt, ASN_E_INVPARAM);
    }
    total += d->numocts;
    if (elems && i < count) elems[i] = Element{ctxt->buffer.data + encodedEnd - d->offset, d->numocts};
  }
  if (total > encodedLen) {
    rtMemFreePtr(ctxt, elems);
    rtDListFreeAll(ctxt, list);
    return Fail(ctxt, ASN_E_INVPARAM);
  }
  auto descending = [](const Element& a, const Element& b) { return Compare(a, b) > 0; };
  bool ordered = true;
  for (ASN1UINT k = 1; k < count && ordered; ++k) {
    ordered = Compare(elems[k - 1], elems[k]) >= 0;
  }
  if (!ordered) {
    auto* block = static_cast<ASN1OCTET*>(rtMemAlloc(ctxt, static_cast<size_t>(total)));
    if (!block) {
      rtMemFreePtr(ctxt, elems);
      rtDListFreeAll(ctxt, list);
      return Fail(ctxt, ASN_E_NOMEM);
    }
    std::stable_sort(elems, elems + count, descending);
    // First (largest) entry to the end of the block, and so on backwards.
    size_t pos = static_cast<size_t>(total);
    for (ASN1UINT k = 0; k < count; ++k) {
      pos -= elems[k].length;
      if (elems[k].length) std::memcpy(block + pos, elems[k].bytes, elems[k].length);
    }
    std::memcpy(ctxt->buffer.data + ctxt->buffer.byteIndex, block, static_cast<size_t>(total));
    rtMemFreePtr(ctxt, block);
  }
  rtMemFreePtr(ctxt, elems);
  rtDListFreeAll(ctxt, list);
  return static_cast<int>(total);
}

}  // extern "C"
