// The signature algorithm of a (hash, public key) pair: a walk of the hash
// group that, for the wanted hash, walks the public-key group and asks the
// table for the signature entry of the two ALG_IDs. Walking by OID rather
// than looking the OIDs up directly keeps every entry with the wanted OID in
// play: a later hash entry with the same OID is tried when an earlier one
// pairs with no signature algorithm.
#include <korvex/cades/OidInfoEnum.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/win32/winerror.h>

#include <cstring>

namespace ATL2 {

CFindSignatureAlgorithmEnum::CFindSignatureAlgorithmEnum(char const* hashOid, char const* pubKeyOid)
    : m_hashOid(hashOid), m_pubKeyOid(pubKeyOid), m_result(nullptr), m_status(kNotFound) {}

bool CFindSignatureAlgorithmEnum::OnHashAlg(char const* oid, wchar_t const* /*name*/,
                                            unsigned int algId) {
  if (oid == nullptr) ATL::AtlThrowImpl(E_FAIL);
  if (std::strcmp(oid, m_hashOid.GetString()) != 0) return true;
  CFindSignatureAlgPubKeyEnum keys(algId, m_pubKeyOid.GetString());
  keys.Enum();
  if (keys.GetResult() == nullptr) return true;
  m_result = keys.GetResult();
  m_status = 0;
  return false;
}

CFindSignatureAlgPubKeyEnum::CFindSignatureAlgPubKeyEnum(unsigned int hashAlgId,
                                                         char const* pubKeyOid)
    : m_hashAlgId(hashAlgId), m_pubKeyOid(pubKeyOid), m_result(nullptr) {}

bool CFindSignatureAlgPubKeyEnum::OnPubKeyAlg(char const* oid, wchar_t const* /*name*/,
                                              unsigned int algId, unsigned int /*extra*/) {
  if (oid == nullptr) ATL::AtlThrowImpl(E_FAIL);
  if (std::strcmp(oid, m_pubKeyOid.GetString()) != 0) return true;
  ALG_ID pair[2] = {m_hashAlgId, algId};
  m_result = CryptFindOIDInfo(CRYPT_OID_INFO_SIGN_KEY, pair, CRYPT_SIGN_ALG_OID_GROUP_ID);
  return m_result == nullptr;
}

_CRYPT_OID_INFO const* FindSignatureAlgorithm(char const* hashOid, char const* pubKeyOid) {
  if (hashOid == nullptr || pubKeyOid == nullptr) return nullptr;
  CFindSignatureAlgorithmEnum walk(hashOid, pubKeyOid);
  walk.Enum();
  return walk.GetResult();
}

}  // namespace ATL2
