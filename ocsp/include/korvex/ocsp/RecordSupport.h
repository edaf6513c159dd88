// korvex/ocsp/RecordSupport.h: what the value layers after the value classes
// (OCSP here, CAdES after it) share over their generated records: the
// whole-element check of an input before it is decoded or written as an
// open type, and a record built in a context's heap. Inline, over the
// runtime's exported functions.
#ifndef KORVEX_OCSP_RECORDSUPPORT_H
#define KORVEX_OCSP_RECORDSUPPORT_H

#include <korvex/asn1rt/asn1ber.h>
#include <korvex/asn1rt/asn1type.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/core/Blob.h>

#include <new>

namespace Korvex {
namespace PKI {
namespace detail {

// IsWholeElement: der holds exactly one BER element (definite or indefinite
// length) and nothing after it; the generated decoders stop after the first
// element and would drop the rest unseen. A context for the measurement that
// cannot be made throws 0x80093106.
inline bool IsWholeElement(CBlob const& der) {
  if (der.cbData() < 2 || der.cbData() > 0x7FFFFFFFul) return false;
  ASN1::ctxt_handle scratch;
  if (!scratch.init()) ASN1::throwHeapError();
  int const size = static_cast<int>(der.cbData());
  int length = 0;
  // xd_setp measures the first element: its whole length when definite,
  // ASN_K_INDEFLEN when indefinite (measured separately, end-of-contents
  // octets included); an element longer than the blob fails.
  if (xd_setp(scratch.get(), der.pbData(), size, nullptr, &length) != 0) return false;
  if (length == ASN_K_INDEFLEN) return xd_indeflen_ex(der.pbData(), size) == size;
  return length == size;
}

// NewRecord<Record>(ctxt): a zero-filled record from ctxt's heap, built in
// place and owning no context, so the heap takes it back with the context
// (no memory: 0x80093106).
template <class Record>
Record* NewRecord(ASN1CTXT* ctxt) {
  void* memory = ASN1::checkHeap(rtMemHeapAllocZ(&ctxt->pTypeMemHeap, sizeof(Record)));
  return ::new (memory) Record();
}

}  // namespace detail
}  // namespace PKI
}  // namespace Korvex

#endif
