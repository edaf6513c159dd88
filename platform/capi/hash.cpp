// Hash objects over OpenSSL message digests.
#include <openssl/err.h>
#include <openssl/evp.h>

#include "capi_internal.h"

namespace korvex::capi {
namespace {

struct Hash {
  std::shared_ptr<Provider> provider;  // keeps the context alive
  ALG_ID algorithm = 0;
  const EVP_MD* md = nullptr;
  MdCtxPtr ctx;
  bool finished = false;
  std::vector<BYTE> value;
  std::mutex mutex;
};

Registry<Hash>& Hashes() {
  static Registry<Hash>* registry = new Registry<Hash>();
  return *registry;
}

// FetchDigest finds the OpenSSL digest of an ALG_ID; the GOST names are
// those of the GOST provider and engine for OpenSSL, tried in turn.
const EVP_MD* FetchDigest(ALG_ID algorithm) {
  if (const EVP_MD* md = StandardDigest(algorithm)) return md;
  static const struct {
    ALG_ID algorithm;
    const char* names[3];
  } kGost[] = {
      {CALG_KORVEX_GR3411_94, {"md_gost94", "GOST R 34.11-94", nullptr}},
      {CALG_KORVEX_GR3411_2012_256, {"md_gost12_256", "streebog256", "GOST R 34.11-2012 256"}},
      {CALG_KORVEX_GR3411_2012_512, {"md_gost12_512", "streebog512", "GOST R 34.11-2012 512"}},
  };
  for (const auto& entry : kGost) {
    if (entry.algorithm != algorithm) continue;
    for (const char* name : entry.names) {
      if (name == nullptr) break;
      // A digest that a provider supplies is fetched once and kept for the
      // life of the process, like the built-in EVP_sha*() objects.
      if (EVP_MD* fetched = EVP_MD_fetch(nullptr, name, nullptr)) return fetched;
      if (const EVP_MD* legacy = EVP_get_digestbyname(name)) return legacy;
    }
  }
  return nullptr;
}

const EVP_MD* DigestOf(ALG_ID algorithm) {
  static std::mutex mutex;
  static std::unordered_map<ALG_ID, const EVP_MD*> cache;
  std::lock_guard<std::mutex> lock(mutex);
  auto it = cache.find(algorithm);
  if (it != cache.end()) return it->second;
  const EVP_MD* md = FetchDigest(algorithm);
  ERR_clear_error();  // failed fetches of absent GOST digests leave errors behind
  cache[algorithm] = md;
  return md;
}

std::shared_ptr<Hash> FindHash(HCRYPTHASH handle) { return Hashes().Find(handle); }

}  // namespace

const EVP_MD* StandardDigest(ALG_ID algorithm) {
  switch (algorithm) {
    case CALG_MD5:
      return EVP_md5();
    case CALG_SHA1:
      return EVP_sha1();
    case CALG_SHA_256:
      return EVP_sha256();
    case CALG_SHA_384:
      return EVP_sha384();
    case CALG_SHA_512:
      return EVP_sha512();
    default:
      return nullptr;
  }
}

}  // namespace korvex::capi

using namespace korvex::capi;

extern "C" BOOL CryptCreateHash(HCRYPTPROV hProv, ALG_ID Algid, HCRYPTKEY hKey, DWORD dwFlags,
                                HCRYPTHASH* phHash) {
  std::shared_ptr<Provider> provider = FindProvider(hProv);
  if (!provider) return Fail(NTE_BAD_UID);
  if (phHash == nullptr) return FailWin32(ERROR_INVALID_PARAMETER);
  if (hKey != 0) return Fail(NTE_BAD_KEY);
  if (dwFlags != 0) return Fail(NTE_BAD_FLAGS);
  const EVP_MD* md = DigestOf(Algid);
  if (md == nullptr) return Fail(NTE_BAD_ALGID);
  auto hash = std::make_shared<Hash>();
  hash->provider = provider;
  hash->algorithm = Algid;
  hash->md = md;
  hash->ctx.reset(EVP_MD_CTX_new());
  if (!hash->ctx) return Fail(NTE_NO_MEMORY);
  if (EVP_DigestInit_ex(hash->ctx.get(), md, nullptr) != 1) return Fail(NTE_BAD_ALGID);
  return Hashes().Publish(std::move(hash), phHash);
}

extern "C" BOOL CryptHashData(HCRYPTHASH hHash, const BYTE* pbData, DWORD dwDataLen,
                              DWORD dwFlags) {
  std::shared_ptr<Hash> hash = FindHash(hHash);
  if (!hash) return Fail(NTE_BAD_HASH);
  if ((dwFlags & ~CRYPT_USERDATA) != 0) return Fail(NTE_BAD_FLAGS);
  if (pbData == nullptr && dwDataLen != 0) return FailWin32(ERROR_INVALID_PARAMETER);
  std::lock_guard<std::mutex> lock(hash->mutex);
  if (hash->finished) return Fail(NTE_BAD_HASH_STATE);
  if (dwDataLen != 0 && EVP_DigestUpdate(hash->ctx.get(), pbData, dwDataLen) != 1) {
    return Fail(NTE_FAIL);
  }
  return TRUE;
}

extern "C" BOOL CryptGetHashParam(HCRYPTHASH hHash, DWORD dwParam, BYTE* pbData,
                                  DWORD* pdwDataLen, DWORD dwFlags) {
  std::shared_ptr<Hash> hash = FindHash(hHash);
  if (!hash) return Fail(NTE_BAD_HASH);
  if (pdwDataLen == nullptr) return FailWin32(ERROR_INVALID_PARAMETER);
  if (dwFlags != 0) return Fail(NTE_BAD_FLAGS);
  std::lock_guard<std::mutex> lock(hash->mutex);
  switch (dwParam) {
    case HP_ALGID:
      return CopyOutDword(hash->algorithm, pbData, pdwDataLen);
    case HP_HASHSIZE:
      return CopyOutDword(static_cast<DWORD>(EVP_MD_get_size(hash->md)), pbData, pdwDataLen);
    case HP_HASHVAL: {
      size_t size = static_cast<size_t>(EVP_MD_get_size(hash->md));
      // A size query or a short buffer must not finish the hash.
      if (pbData == nullptr || *pdwDataLen < size) {
        return CopyOut(nullptr, size, pbData, pdwDataLen);
      }
      if (!hash->finished) {
        hash->value.resize(size);
        unsigned int written = 0;
        if (EVP_DigestFinal_ex(hash->ctx.get(), hash->value.data(), &written) != 1) {
          return Fail(NTE_FAIL);
        }
        hash->finished = true;
      }
      return CopyOut(hash->value.data(), hash->value.size(), pbData, pdwDataLen);
    }
    default:
      return Fail(NTE_BAD_TYPE);
  }
}

extern "C" BOOL CryptDuplicateHash(HCRYPTHASH hHash, DWORD* pdwReserved, DWORD dwFlags,
                                   HCRYPTHASH* phHash) {
  std::shared_ptr<Hash> hash = FindHash(hHash);
  if (!hash) return Fail(NTE_BAD_HASH);
  if (pdwReserved != nullptr || phHash == nullptr) return FailWin32(ERROR_INVALID_PARAMETER);
  if (dwFlags != 0) return Fail(NTE_BAD_FLAGS);
  auto copy = std::make_shared<Hash>();
  {
    std::lock_guard<std::mutex> lock(hash->mutex);
    copy->provider = hash->provider;
    copy->algorithm = hash->algorithm;
    copy->md = hash->md;
    copy->finished = hash->finished;
    copy->value = hash->value;
    copy->ctx.reset(EVP_MD_CTX_new());
    if (!copy->ctx || EVP_MD_CTX_copy_ex(copy->ctx.get(), hash->ctx.get()) != 1) {
      return Fail(NTE_NO_MEMORY);
    }
  }
  return Hashes().Publish(std::move(copy), phHash);
}

extern "C" BOOL CryptDestroyHash(HCRYPTHASH hHash) {
  if (!Hashes().Remove(reinterpret_cast<const void*>(hHash))) return Fail(NTE_BAD_HASH);
  return TRUE;
}
