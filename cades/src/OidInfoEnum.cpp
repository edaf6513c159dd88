// The OID information walks: CryptEnumOIDInfo over one group, each entry
// unpacked for the handler of its group enumerator.
#include <korvex/cades/OidInfoEnum.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/win32/winerror.h>

#include <cstring>

namespace ATL2 {
namespace {

void RequireEntry(_CRYPT_OID_INFO const* info) {
  if (info == nullptr) ATL::AtlThrowImpl(E_FAIL);
}

// ExtraWord returns 32-bit word `index` of the entry's extra information,
// 0 when the extra information ends before it. Read with memcpy: the bytes
// need not be aligned.
unsigned int ExtraWord(_CRYPT_OID_INFO const* info, DWORD index) {
  const CRYPT_DATA_BLOB& extra = info->ExtraInfo;
  const DWORD offset = index * sizeof(unsigned int);
  if (extra.pbData == nullptr || extra.cbData < offset + sizeof(unsigned int)) return 0;
  unsigned int word;
  std::memcpy(&word, extra.pbData + offset, sizeof word);
  return word;
}

}  // namespace

COidInfoEnum::COidInfoEnum() noexcept : m_inWalk(false) {}

COidInfoEnum::~COidInfoEnum() = default;

BOOL COidInfoEnum::EnumOIDInfoCallback(_CRYPT_OID_INFO const* info, void* arg) {
  if (arg == nullptr) ATL::AtlThrowImpl(E_FAIL);
  COidInfoEnum* self = static_cast<COidInfoEnum*>(arg);
  if (!self->m_inWalk) return self->OnOidInfo(info) ? TRUE : FALSE;
  // Inside a walk the provider library is between Enum() and the handler:
  // keep the exception and stop the walk rather than unwind through it.
  try {
    return self->OnOidInfo(info) ? TRUE : FALSE;
  } catch (...) {
    self->m_pending = std::current_exception();
    return FALSE;
  }
}

bool COidInfoEnum::Enum(DWORD groupId) {
  // A handler may start another walk of this same object; each walk keeps
  // its own state.
  const bool outerInWalk = m_inWalk;
  std::exception_ptr outerPending = m_pending;
  m_inWalk = true;
  m_pending = nullptr;
  const BOOL completed = CryptEnumOIDInfo(groupId, 0, this, &COidInfoEnum::EnumOIDInfoCallback);
  std::exception_ptr thrown = m_pending;
  m_inWalk = outerInWalk;
  m_pending = outerPending;
  if (thrown) std::rethrow_exception(thrown);
  return completed != FALSE;
}

bool CHashAlgorithmOidEnum::OnOidInfo(_CRYPT_OID_INFO const* info) {
  RequireEntry(info);
  return OnHashAlg(info->pszOID, info->pwszName, info->Algid);
}

bool CEncryptionAlgorithmOidEnum::OnOidInfo(_CRYPT_OID_INFO const* info) {
  RequireEntry(info);
  return OnEncryptionAlg(info->pszOID, info->pwszName, info->Algid);
}

bool CPublicKeyAlgorithmOidEnum::OnOidInfo(_CRYPT_OID_INFO const* info) {
  RequireEntry(info);
  return OnPubKeyAlg(info->pszOID, info->pwszName, info->Algid, ExtraWord(info, 0));
}

bool CSignatureAlgorithmOidEnum::OnOidInfo(_CRYPT_OID_INFO const* info) {
  RequireEntry(info);
  return OnSignatureAlg(info->pszOID, info->pwszName, info->Algid, ExtraWord(info, 0),
                        ExtraWord(info, 1), ExtraWord(info, 2));
}

bool CRdnAttributeOidEnum::OnOidInfo(_CRYPT_OID_INFO const* info) {
  RequireEntry(info);
  // The value types are a zero-terminated array; the closing zero is not
  // counted, and an array of the zero alone is handed on as none.
  const CRYPT_DATA_BLOB& extra = info->ExtraInfo;
  unsigned int const* types = nullptr;
  unsigned int count = 0;
  if (extra.pbData != nullptr && extra.cbData / sizeof(unsigned int) > 1) {
    types = reinterpret_cast<unsigned int const*>(extra.pbData);
    count = extra.cbData / sizeof(unsigned int) - 1;
  }
  return OnRdnAttr(info->pszOID, info->pwszName, info->dwValue, types, count);
}

bool CExtensionOrAttributeOidEnum::OnOidInfo(_CRYPT_OID_INFO const* info) {
  RequireEntry(info);
  return OnExtensionOrAttribute(info->pszOID, info->pwszName);
}

bool CEnhancedKeyUsageOidEnum::OnOidInfo(_CRYPT_OID_INFO const* info) {
  RequireEntry(info);
  return OnEnhancedKeyUsage(info->pszOID, info->pwszName);
}

bool CPolicyOidEnum::OnOidInfo(_CRYPT_OID_INFO const* info) {
  RequireEntry(info);
  return OnPolicy(info->pszOID, info->pwszName);
}

bool CTemplateOidEnum::OnOidInfo(_CRYPT_OID_INFO const* info) {
  RequireEntry(info);
  return OnTemplate(info->pszOID, info->pwszName);
}

}  // namespace ATL2
