// fuzz_capi_msg: CryptMsgOpenToDecode + CryptMsgUpdate on arbitrary bytes,
// then every parameter CryptMsgGetParam supports, for every index the
// counts allow (and one past them). The first byte chooses the message type
// named at open and whether the bytes arrive in one or two updates.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include <korvex/platform/capi/wincrypt.h>

namespace {

const DWORD kParams[] = {
    CMSG_TYPE_PARAM,          CMSG_CONTENT_PARAM,          CMSG_INNER_CONTENT_TYPE_PARAM,
    CMSG_SIGNER_COUNT_PARAM,  CMSG_SIGNER_INFO_PARAM,      CMSG_SIGNER_CERT_INFO_PARAM,
    CMSG_SIGNER_HASH_ALGORITHM_PARAM, CMSG_SIGNER_AUTH_ATTR_PARAM, CMSG_SIGNER_UNAUTH_ATTR_PARAM,
    CMSG_CERT_COUNT_PARAM,    CMSG_CERT_PARAM,             CMSG_CRL_COUNT_PARAM,
    CMSG_CRL_PARAM,
};

DWORD Count(HCRYPTMSG msg, DWORD param) {
  DWORD value = 0, size = sizeof value;
  return CryptMsgGetParam(msg, param, 0, &value, &size) ? value : 0;
}

void ReadAll(HCRYPTMSG msg, DWORD param, DWORD index) {
  DWORD size = 0;
  if (!CryptMsgGetParam(msg, param, index, nullptr, &size)) return;
  std::vector<BYTE> buffer(size);
  DWORD written = size;
  if (!CryptMsgGetParam(msg, param, index, buffer.data(), &written)) __builtin_trap();
  if (written != size) __builtin_trap();
  // Touch every pointer-carrying structure's first level, so that a pointer
  // outside the buffer shows up under AddressSanitizer.
  if ((param == CMSG_SIGNER_AUTH_ATTR_PARAM || param == CMSG_SIGNER_UNAUTH_ATTR_PARAM) &&
      size >= sizeof(CRYPT_ATTRIBUTES)) {
    const auto* attrs = reinterpret_cast<const CRYPT_ATTRIBUTES*>(buffer.data());
    for (DWORD i = 0; i < attrs->cAttr; ++i) {
      volatile size_t n = std::strlen(attrs->rgAttr[i].pszObjId);
      (void)n;
      for (DWORD j = 0; j < attrs->rgAttr[i].cValue; ++j) {
        const CRYPT_ATTR_BLOB& v = attrs->rgAttr[i].rgValue[j];
        if (v.cbData != 0) {
          volatile BYTE last = v.pbData[v.cbData - 1];
          (void)last;
        }
      }
    }
  }
  if (size > 0 && written > 0) {
    // A buffer that is one byte too short (never a null pointer, which
    // would be a size query).
    DWORD shortSize = size - 1;
    if (CryptMsgGetParam(msg, param, index, buffer.data(), &shortSize)) __builtin_trap();
    if (shortSize != size) __builtin_trap();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const DWORD kTypes[] = {0, CMSG_DATA, CMSG_SIGNED, 0};
  DWORD type = kTypes[data[0] & 3];
  bool split = (data[0] & 4) != 0;
  ++data;
  --size;
  HCRYPTMSG msg = CryptMsgOpenToDecode(X509_ASN_ENCODING | PKCS_7_ASN_ENCODING, 0, type, 0,
                                       nullptr, nullptr);
  if (msg == nullptr) __builtin_trap();
  size_t first = split ? size / 2 : size;
  bool ok = CryptMsgUpdate(msg, data, static_cast<DWORD>(first), !split);
  if (ok && split) {
    ok = CryptMsgUpdate(msg, data + first, static_cast<DWORD>(size - first), TRUE);
  }
  if (ok) {
    DWORD signers = Count(msg, CMSG_SIGNER_COUNT_PARAM);
    DWORD certs = Count(msg, CMSG_CERT_COUNT_PARAM);
    DWORD crls = Count(msg, CMSG_CRL_COUNT_PARAM);
    for (DWORD param : kParams) {
      DWORD limit = 1;
      if (param >= CMSG_SIGNER_INFO_PARAM && param <= CMSG_SIGNER_UNAUTH_ATTR_PARAM) {
        limit = signers + 1;
      } else if (param == CMSG_CERT_PARAM) {
        limit = certs + 1;
      } else if (param == CMSG_CRL_PARAM) {
        limit = crls + 1;
      }
      for (DWORD index = 0; index < limit && index < 64; ++index) ReadAll(msg, param, index);
    }
  }
  if (!CryptMsgClose(msg)) __builtin_trap();
  return 0;
}
