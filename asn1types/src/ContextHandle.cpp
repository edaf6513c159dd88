// ContextHandle.cpp: ctxt_handle.
#include <korvex/asn1types/ContextHandle.h>

#include <cstring>

namespace Korvex {
namespace ASN1 {

// Zeroed so that the validity marker is clear and rtFreeContext ignores it.
ctxt_handle::ctxt_handle() { std::memset(&m_ctxt, 0, sizeof m_ctxt); }

ctxt_handle::~ctxt_handle() { release(); }

bool ctxt_handle::init() { return rtInitContext(&m_ctxt, nullptr) == 0; }

void ctxt_handle::release() { rtFreeContext(&m_ctxt); }

}  // namespace ASN1
}  // namespace Korvex
