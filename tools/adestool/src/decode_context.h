// decode_context.h: the runtime contexts that whole signatures, and the
// tokens, certificates and CRLs met inside their attributes, are decoded into.
#ifndef ADESTOOL_DECODE_CONTEXT_H
#define ADESTOOL_DECODE_CONTEXT_H

#include <korvex/asn1rt/asn1type.h>

namespace adestool {

// OpenDecodeContext: initialises ctxt (rtInitContext) with carving on for its
// heap (rtMemHeapSetCarving): a decoded value here lives and goes with its
// context, so its many small blocks are cut from a few chunks instead of one
// allocation each. Returns 0, or the runtime's status with ctxt left closed.
inline int OpenDecodeContext(ASN1CTXT *ctxt) {
  int status = rtInitContext(ctxt, nullptr);
  if (status != 0) return status;
  status = rtMemHeapSetCarving(&ctxt->pTypeMemHeap, 1);
  if (status != 0) rtFreeContext(ctxt);
  return status;
}

}  // namespace adestool

#endif
