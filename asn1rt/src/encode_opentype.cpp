// encode_opentype.cpp: open types, copied into the message as they stand. Only
// the first complete element of the given bytes is taken.
#include <cstring>

#include "decode_intern.h"
#include "encode_intern.h"

using korvex_rt::Fail;

extern "C" {

int xe_OpenType(ASN1CTXT* ctxt, const ASN1OCTET* data, ASN1UINT numocts) {
  if (numocts == 0) return 0;
  if (!data) return Fail(ctxt, ASN_E_BADVALUE);
  // Read the element's header from a context on the stack: no heap is needed
  // to measure, and the bytes are never read past numocts.
  ASN1CTXT tmp;
  std::memset(&tmp, 0, sizeof(tmp));
  tmp.initCode = ASN1_CTXT_INITCODE;
  tmp.pAllocUserData = ctxt->pAllocUserData;
  int size = numocts > 0x7FFFFFFFu ? 0x7FFFFFFF : static_cast<int>(numocts);
  ASN1TAG tag;
  int len;
  int stat = xd_setp(&tmp, data, size, &tag, &len);
  if (stat != ASN_OK) return Fail(ctxt, stat);
  if (tag == 0 && len == 2) return Fail(ctxt, ASN_E_BADVALUE);  // 00 00: no element
  // xd_setp measured an indefinite element; its extent is the buffer size.
  ASN1UINT total = len == ASN_K_INDEFLEN ? tmp.buffer.size : static_cast<ASN1UINT>(len);
  if (data == xe_getp(ctxt)) return static_cast<int>(total);  // already in place
  return xe_memcpy(ctxt, data, total);
}

int xe_OpenTypeExt(ASN1CTXT* ctxt, const rtDList* list) {
  if (!list) return 0;
  int sum = 0;
  for (rtDListNode* node = list->tail; node; node = node->prev) {
    auto* open = static_cast<const ASN1OpenType*>(node->data);
    if (!open) return Fail(ctxt, ASN_E_BADVALUE);
    int len = xe_OpenType(ctxt, open->data, open->numocts);
    if (len < 0) return Fail(ctxt, len);
    sum += len;
  }
  return sum;
}

}  // extern "C"
