// Public-key objects made from a certificate's SubjectPublicKeyInfo.
#include <openssl/err.h>
#include <openssl/objects.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include <algorithm>

#include "capi_internal.h"

namespace korvex::capi {
namespace {

struct Key {
  std::shared_ptr<Provider> provider;
  ALG_ID algorithm = 0;
  DWORD bits = 0;
  PkeyPtr pkey;  // null for GOST keys the OpenSSL in use cannot read
};

Registry<Key>& Keys() {
  static Registry<Key>* registry = new Registry<Key>();
  return *registry;
}

// GostBits is the key size of a GOST public-key algorithm (RFC 4491 2.3,
// RFC 9215 3), 0 for other algorithms.
DWORD GostBits(ALG_ID algorithm) {
  switch (algorithm) {
    case CALG_KORVEX_GR3410_2001:
    case CALG_KORVEX_GR3410_2012_256:
      return 256;
    case CALG_KORVEX_GR3410_2012_512:
      return 512;
    default:
      return 0;
  }
}

// ReadKey asks OpenSSL for the key of the SubjectPublicKeyInfo (RFC 5280
// 4.1.2.7) rebuilt in DER from the structure's parts.
PkeyPtr ReadKey(const CERT_PUBLIC_KEY_INFO& info) {
  ASN1_OBJECT* object = OBJ_txt2obj(info.Algorithm.pszObjId, 1);
  if (object == nullptr) return nullptr;
  int oidSize = i2d_ASN1_OBJECT(object, nullptr);
  std::vector<BYTE> algorithm;
  if (oidSize > 0) {
    algorithm.resize(static_cast<size_t>(oidSize));
    unsigned char* p = algorithm.data();
    i2d_ASN1_OBJECT(object, &p);
  }
  ASN1_OBJECT_free(object);
  if (oidSize <= 0) return nullptr;
  const CRYPT_OBJID_BLOB& params = info.Algorithm.Parameters;
  algorithm.insert(algorithm.end(), params.pbData, params.pbData + params.cbData);
  std::vector<BYTE> bits;
  bits.push_back(static_cast<BYTE>(info.PublicKey.cUnusedBits & 7));
  bits.insert(bits.end(), info.PublicKey.pbData, info.PublicKey.pbData + info.PublicKey.cbData);
  std::vector<BYTE> body;
  AppendTlv(&body, 0x30, algorithm);
  AppendTlv(&body, 0x03, bits);
  std::vector<BYTE> spki;
  AppendTlv(&spki, 0x30, body);
  const unsigned char* p = spki.data();
  PkeyPtr key(d2i_PUBKEY(nullptr, &p, static_cast<long>(spki.size())));
  if (key && p != spki.data() + spki.size()) key.reset();
  return key;
}

struct PkeyCtxFree {
  void operator()(EVP_PKEY_CTX* c) const { EVP_PKEY_CTX_free(c); }
};

// VerifyWithKey checks signature over digest; true only when it verifies.
bool VerifyWithKey(EVP_PKEY* pkey, const EVP_MD* md, const std::vector<BYTE>& digest,
                   const std::vector<BYTE>& signature) {
  std::unique_ptr<EVP_PKEY_CTX, PkeyCtxFree> ctx(EVP_PKEY_CTX_new(pkey, nullptr));
  if (!ctx || EVP_PKEY_verify_init(ctx.get()) != 1) return false;
  if (EVP_PKEY_get_base_id(pkey) == EVP_PKEY_RSA &&
      EVP_PKEY_CTX_set_rsa_padding(ctx.get(), RSA_PKCS1_PADDING) != 1) {
    return false;
  }
  if (EVP_PKEY_CTX_set_signature_md(ctx.get(), md) != 1) return false;
  return EVP_PKEY_verify(ctx.get(), signature.data(), signature.size(), digest.data(),
                         digest.size()) == 1;
}

}  // namespace
}  // namespace korvex::capi

using namespace korvex::capi;

extern "C" BOOL CryptImportPublicKeyInfo(HCRYPTPROV hCryptProv, DWORD dwCertEncodingType,
                                         PCERT_PUBLIC_KEY_INFO pInfo, HCRYPTKEY* phKey) {
  std::shared_ptr<Provider> provider = FindProvider(hCryptProv);
  if (!provider) return Fail(NTE_BAD_UID);
  if (pInfo == nullptr || phKey == nullptr || pInfo->Algorithm.pszObjId == nullptr ||
      (pInfo->PublicKey.cbData != 0 && pInfo->PublicKey.pbData == nullptr) ||
      (pInfo->Algorithm.Parameters.cbData != 0 && pInfo->Algorithm.Parameters.pbData == nullptr)) {
    return FailWin32(ERROR_INVALID_PARAMETER);
  }
  if ((dwCertEncodingType & X509_ASN_ENCODING) == 0) return Fail(E_INVALIDARG);
  PCCRYPT_OID_INFO entry = CryptFindOIDInfo(
      CRYPT_OID_INFO_OID_KEY, const_cast<char*>(pInfo->Algorithm.pszObjId),
      CRYPT_PUBKEY_ALG_OID_GROUP_ID);
  if (entry == nullptr) return Fail(NTE_BAD_ALGID);

  auto key = std::make_shared<Key>();
  key->provider = provider;
  key->algorithm = entry->Algid;
  key->pkey = ReadKey(*pInfo);
  ERR_clear_error();
  if (key->pkey) {
    key->bits = static_cast<DWORD>(EVP_PKEY_get_bits(key->pkey.get()));
  } else if (DWORD bits = GostBits(entry->Algid)) {
    key->bits = bits;  // kept as an opaque GOST key
  } else {
    return Fail(NTE_BAD_PUBLIC_KEY);
  }
  Keys().Add(key.get(), key);
  *phKey = reinterpret_cast<HCRYPTKEY>(key.get());
  return TRUE;
}

extern "C" BOOL CryptGetKeyParam(HCRYPTKEY hKey, DWORD dwParam, BYTE* pbData, DWORD* pdwDataLen,
                                 DWORD dwFlags) {
  std::shared_ptr<Key> key = Keys().Find(hKey);
  if (!key) return Fail(NTE_BAD_KEY);
  if (pdwDataLen == nullptr) return FailWin32(ERROR_INVALID_PARAMETER);
  if (dwFlags != 0) return Fail(NTE_BAD_FLAGS);
  DWORD number;
  switch (dwParam) {
    case KP_ALGID:
      number = key->algorithm;
      break;
    case KP_KEYLEN:
      number = key->bits;
      break;
    default:
      return Fail(NTE_BAD_TYPE);
  }
  return CopyOut(&number, sizeof number, pbData, pdwDataLen);
}

extern "C" BOOL CryptDestroyKey(HCRYPTKEY hKey) {
  if (!Keys().Remove(reinterpret_cast<const void*>(hKey))) return Fail(NTE_BAD_KEY);
  return TRUE;
}

extern "C" BOOL CryptVerifySignatureA(HCRYPTHASH hHash, const BYTE* pbSignature, DWORD dwSigLen,
                                      HCRYPTKEY hPubKey, LPCSTR szDescription, DWORD dwFlags) {
  (void)szDescription;  // ignored, as Windows has done since NT 4
  std::shared_ptr<Key> key = Keys().Find(hPubKey);
  if (!key) return Fail(NTE_BAD_KEY);
  if (dwFlags != 0) return Fail(NTE_BAD_FLAGS);
  if (pbSignature == nullptr && dwSigLen != 0) return FailWin32(ERROR_INVALID_PARAMETER);
  ALG_ID algorithm = 0;
  DWORD size = sizeof algorithm;
  if (!CryptGetHashParam(hHash, HP_ALGID, reinterpret_cast<BYTE*>(&algorithm), &size, 0)) {
    return FALSE;  // the hash's own error (NTE_BAD_HASH)
  }
  size = 0;
  if (!CryptGetHashParam(hHash, HP_HASHVAL, nullptr, &size, 0)) return FALSE;
  std::vector<BYTE> digest(size);
  if (!CryptGetHashParam(hHash, HP_HASHVAL, digest.data(), &size, 0)) return FALSE;
  digest.resize(size);
  if (!key->pkey) return Fail(NTE_BAD_KEY);
  const EVP_MD* md = StandardDigest(algorithm);
  int type = EVP_PKEY_get_base_id(key->pkey.get());
  if (md == nullptr || (type != EVP_PKEY_RSA && type != EVP_PKEY_EC)) return Fail(NTE_BAD_ALGID);
  std::vector<BYTE> signature(pbSignature, pbSignature + dwSigLen);
  // CryptoAPI keeps RSA signatures least significant byte first.
  if (type == EVP_PKEY_RSA) std::reverse(signature.begin(), signature.end());
  bool ok = VerifyWithKey(key->pkey.get(), md, digest, signature);
  ERR_clear_error();
  return ok ? TRUE : Fail(NTE_BAD_SIGNATURE);
}
