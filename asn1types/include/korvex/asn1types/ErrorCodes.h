// korvex/asn1types/ErrorCodes.h: the result codes thrown by the value-class
// layer, and the helpers that throw them.
//
// Every failure of namespace Korvex::ASN1 leaves as ATL::CAtlException with
// one of these codes (or, for failed code-page conversions, the platform's
// last error through ATL::AtlThrowLastWin32):
//   kAsn1CodecError   0x80093101  an encoder or decoder returned a negative
//                                 runtime status, or a value cannot be
//                                 written as ASN.1 (unsupported string type,
//                                 time outside the text forms)
//   kAsn1HeapError    0x80093106  an allocation from a context's heap failed
//   kInvalidArgument  0x80070057  bad OID text, an OID record that cannot be
//                                 printed, an unknown CHOICE alternative, a
//                                 missing or wrong argument
//   kOutOfMemory      0x8007000E  out of memory outside the context heap
#ifndef KORVEX_ASN1TYPES_ERRORCODES_H
#define KORVEX_ASN1TYPES_ERRORCODES_H

#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/win32/windef.h>

namespace Korvex {
namespace ASN1 {

constexpr HRESULT kAsn1CodecError = static_cast<HRESULT>(0x80093101u);
constexpr HRESULT kAsn1HeapError = static_cast<HRESULT>(0x80093106u);
constexpr HRESULT kInvalidArgument = static_cast<HRESULT>(0x80070057u);
constexpr HRESULT kOutOfMemory = static_cast<HRESULT>(0x8007000Eu);

// throwCodecError / throwHeapError / throwInvalidArgument throw
// ATL::CAtlException with the code of their name. They never return.
[[noreturn]] inline void throwCodecError() { ATL::AtlThrowImpl(kAsn1CodecError); }
[[noreturn]] inline void throwHeapError() { ATL::AtlThrowImpl(kAsn1HeapError); }
[[noreturn]] inline void throwInvalidArgument() { ATL::AtlThrowImpl(kInvalidArgument); }

// checkCodecStatus throws kAsn1CodecError when a runtime status is negative
// and otherwise returns it (an encoder's length passes through).
inline int checkCodecStatus(int status) {
  if (status < 0) throwCodecError();
  return status;
}

// checkCopyStatus is the rule for the runtime's and generated copy functions:
// -12 (no memory in the context heap) throws kAsn1HeapError, any other
// negative status kAsn1CodecError.
inline void checkCopyStatus(int status) {
  if (status == -12) throwHeapError();
  if (status < 0) throwCodecError();
}

// checkHeap throws kAsn1HeapError for a null pointer from a context heap and
// otherwise returns the pointer.
template <class T>
inline T* checkHeap(T* p) {
  if (!p) throwHeapError();
  return p;
}

}  // namespace ASN1
}  // namespace Korvex

#endif
