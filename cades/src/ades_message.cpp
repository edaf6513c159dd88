// GetUnauthAttr: the unsigned attributes of one signer of an open message,
// as the provider returns them.
#include <korvex/cades/ades_core.h>
#include <korvex/platform/capi/errors.h>
#include <korvex/platform/capi/msg.h>
#include <korvex/platform/win32/errhandlingapi.h>

#include "ades_trace.h"

namespace {

constexpr char kFunction[] = "GetUnauthAttr";

[[noreturn]] void ThrowTraced(HRESULT hr) {
  ADES_TRACE(ADES_TRACE_LEVEL_DEBUG, kFunction, "Exception thrown: _hr\n");
  ATL::AtlThrowImpl(hr);
}

// CheckCall turns a failed message call into an exception: the last error
// e as 0x80070000 | (e & 0xFFFF) when positive, as it stands when negative
// (the CryptoAPI errors are HRESULTs already). A failure that leaves no last
// error is not reported.
void CheckCall(BOOL ok) {
  if (ok) return;
  const LONG error = static_cast<LONG>(GetLastError());
  if (error == 0) return;
  ThrowTraced(error > 0 ? static_cast<HRESULT>(0x80070000u | (static_cast<DWORD>(error) & 0xFFFFu))
                        : static_cast<HRESULT>(error));
}

// MessageDuplicate holds the duplicate of the caller's handle and closes it
// on every way out, so the caller's reference count ends where it began.
class MessageDuplicate {
 public:
  explicit MessageDuplicate(HCRYPTMSG message) noexcept : m_msg(CryptMsgDuplicate(message)) {}
  ~MessageDuplicate() {
    if (m_msg != nullptr) CryptMsgClose(m_msg);
  }
  MessageDuplicate(MessageDuplicate const&) = delete;
  MessageDuplicate& operator=(MessageDuplicate const&) = delete;

  HCRYPTMSG Get() const noexcept { return m_msg; }

 private:
  HCRYPTMSG m_msg;
};

}  // namespace

void GetUnauthAttr(void* message, unsigned int signerIndex, ATL::CStringT<char>& out) {
  MessageDuplicate msg(message);
  if (msg.Get() == nullptr) ThrowTraced(E_FAIL);

  DWORD size = 0;
  CheckCall(
      CryptMsgGetParam(msg.Get(), CMSG_SIGNER_UNAUTH_ATTR_PARAM, signerIndex, nullptr, &size));
  // The structure is written straight into out's buffer: its internal
  // pointers point into that buffer, so the bytes must not move afterwards.
  // A size beyond the int range of the string class is E_INVALIDARG.
  char* data = out.GetBuffer(static_cast<int>(size));
  CheckCall(CryptMsgGetParam(msg.Get(), CMSG_SIGNER_UNAUTH_ATTR_PARAM, signerIndex, data, &size));
  out.ReleaseBufferSetLength(static_cast<int>(size));
}
