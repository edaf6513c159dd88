// encode_sort.cpp: DER ordering of SET OF elements (X.690 11.6): the encoded
// elements are put in ascending order as octet strings, a shorter element that
// is a prefix of a longer one first.
//
// One pass over the list checks the descriptors and whether the elements are
// already in order; then nothing is allocated or copied. Otherwise the
// elements are sorted through an array with a stable O(n log n) merge sort,
// so 100,000 elements cost a few million comparisons, not billions.
#include <algorithm>
#include <cstring>

#include "encode_intern.h"

using korvex_rt::Fail;

namespace {

struct Element {
  const ASN1OCTET* bytes;
  ASN1UINT length;
  unsigned long long key;  // first eight octets, big-endian, zero padded
};

unsigned long long KeyOf(const ASN1OCTET* p, ASN1UINT n) {
  unsigned long long k = 0;
  for (ASN1UINT i = 0; i < 8; ++i) k = (k << 8) | (i < n ? p[i] : 0);
  return k;
}

// memcmp over the shorter length; equal prefixes put the shorter first. The
// key decides most comparisons without touching the element bytes; equal keys
// (which zero padding can also give) fall back to the bytes.
inline int Compare(const Element& a, const Element& b) {
  if (a.key != b.key) return a.key < b.key ? -1 : 1;
  ASN1UINT n = a.length < b.length ? a.length : b.length;
  int c = n ? std::memcmp(a.bytes, b.bytes, n) : 0;
  if (c != 0) return c;
  return a.length < b.length ? -1 : a.length > b.length ? 1 : 0;
}

int Finish(ASN1CTXT* ctxt, rtDList* list, Element* elems, int result) {
  rtMemFreePtr(ctxt, elems);
  rtDListFreeAll(ctxt, list);
  return result < 0 ? Fail(ctxt, result) : result;
}

}  // namespace

extern "C" {

int xe_derCanonicalSort(ASN1CTXT* ctxt, rtDList* list) {
  if (!ctxt || !list) return 0;
  const ASN1UINT encodedEnd = ctxt->buffer.size ? ctxt->buffer.size - 1 : 0;
  const ASN1UINT encodedLen = xe_getLength(ctxt);
  auto elementOf = [&](const rtDListNode* node, Element* out) {
    auto* d = static_cast<const Asn1BufLocDescr*>(node->data);
    // A descriptor must name bytes inside the encoded message.
    if (!d || d->offset > encodedLen || d->numocts > d->offset) return false;
    const ASN1OCTET* bytes = ctxt->buffer.data + encodedEnd - d->offset;
    *out = Element{bytes, d->numocts, KeyOf(bytes, d->numocts)};
    return true;
  };

  // The list holds the elements in encoding order: the first entry was encoded
  // first and lies last in the buffer. The bytes are in ascending order when
  // the entries are in descending order.
  unsigned long long total = 0;
  ASN1UINT count = 0;
  bool ordered = true;
  Element prev{nullptr, 0, 0};
  for (rtDListNode* node = list->head; node; node = node->next, ++count) {
    Element e;
    if (!elementOf(node, &e)) return Finish(ctxt, list, nullptr, ASN_E_INVPARAM);
    if (count && ordered && Compare(prev, e) < 0) ordered = false;
    prev = e;
    total += e.length;
  }
  if (total > encodedLen) return Finish(ctxt, list, nullptr, ASN_E_INVPARAM);
  if (ordered) return Finish(ctxt, list, nullptr, static_cast<int>(total));

  auto* elems = static_cast<Element*>(rtMemAlloc(ctxt, sizeof(Element) * count));
  auto* block = static_cast<ASN1OCTET*>(rtMemAlloc(ctxt, static_cast<size_t>(total)));
  if (!elems || !block) {
    rtMemFreePtr(ctxt, block);
    return Finish(ctxt, list, elems, ASN_E_NOMEM);
  }
  ASN1UINT i = 0;
  for (rtDListNode* node = list->head; node; node = node->next) elementOf(node, &elems[i++]);
  std::stable_sort(elems, elems + count,
                   [](const Element& a, const Element& b) { return Compare(a, b) > 0; });
  // First (largest) entry to the end of the block, and so on backwards.
  size_t pos = static_cast<size_t>(total);
  for (ASN1UINT k = 0; k < count; ++k) {
    pos -= elems[k].length;
    if (elems[k].length) std::memcpy(block + pos, elems[k].bytes, elems[k].length);
  }
  std::memcpy(ctxt->buffer.data + ctxt->buffer.byteIndex, block, static_cast<size_t>(total));
  rtMemFreePtr(ctxt, block);
  return Finish(ctxt, list, elems, static_cast<int>(total));
}

}  // extern "C"
