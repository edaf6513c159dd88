// korvex/asn1types/ContextHandle.h: an owned ASN.1 runtime context.
#ifndef KORVEX_ASN1TYPES_CONTEXTHANDLE_H
#define KORVEX_ASN1TYPES_CONTEXTHANDLE_H

#include <korvex/asn1rt/asn1type.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// ctxt_handle owns one ASN1CTXT for the length of a conversion: init() makes
// it usable, release() (or the destructor) frees it with every block of its
// heap. The record starts zeroed, so releasing a handle that was never
// initialised does nothing. Not copyable; one thread at a time.
class KORVEX_API ctxt_handle {
 public:
  ctxt_handle();
  ~ctxt_handle();
  ctxt_handle(ctxt_handle const&) = delete;
  ctxt_handle& operator=(ctxt_handle const&) = delete;

  // init runs rtInitContext(ctxt, 0) and returns true when it returned 0
  // (false: no memory for the heap record). Call release() before a second
  // init().
  bool init();
  // release runs rtFreeContext: the heap and a runtime-allocated buffer are
  // freed and the context is uninitialised again. Harmless when repeated.
  void release();

  // get: the runtime context (owned by the handle).
  ASN1CTXT* get() { return &m_ctxt; }
  operator ASN1CTXT*() { return &m_ctxt; }  // NOLINT: passes where a context is asked for

 private:
  ASN1CTXT m_ctxt;
};

}  // namespace ASN1
}  // namespace Korvex

#endif
