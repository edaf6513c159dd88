// digest.cpp: hashing through the CryptoAPI of the platform.
#include "digest.h"

#include <korvex/platform/capi/wincrypt.h>

#include <algorithm>
#include <cctype>

#include "tool_error.h"
#include "value_text.h"

namespace adestool {

namespace {

// Releases the provider and hash handles on every path.
class HashHandles {
 public:
  ~HashHandles() {
    if (hash) CryptDestroyHash(hash);
    if (prov) CryptReleaseContext(prov, 0);
  }
  HCRYPTPROV prov = 0;
  HCRYPTHASH hash = 0;
};

enum class HashStatus { kOk, kNoProvider, kNoAlgorithm, kFailed };

// HashWith: the one path of every hash adestool computes.
HashStatus HashWith(ALG_ID algId, const uint8_t* data, size_t size, std::vector<uint8_t>* value) {
  HashHandles h;
  if (!CryptAcquireContextA(&h.prov, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT)) {
    return HashStatus::kNoProvider;
  }
  if (!CryptCreateHash(h.prov, algId, 0, 0, &h.hash)) return HashStatus::kNoAlgorithm;
  // CryptHashData takes 32-bit lengths; inputs are at most 256 MiB, but feed
  // in pieces all the same.
  size_t done = 0;
  while (done < size) {
    const DWORD piece = static_cast<DWORD>(std::min<size_t>(size - done, 1u << 30));
    if (!CryptHashData(h.hash, data + done, piece, 0)) return HashStatus::kFailed;
    done += piece;
  }
  DWORD length = 0;
  if (!CryptGetHashParam(h.hash, HP_HASHVAL, nullptr, &length, 0)) return HashStatus::kFailed;
  value->assign(length, 0);
  if (!CryptGetHashParam(h.hash, HP_HASHVAL, value->data(), &length, 0)) {
    return HashStatus::kFailed;
  }
  value->resize(length);
  return HashStatus::kOk;
}

}  // namespace

const std::vector<HashAlgorithm>& HashAlgorithms() {
  static const std::vector<HashAlgorithm> algorithms = {
      {"sha1", "1.3.14.3.2.26", CALG_SHA1},
      {"sha256", "2.16.840.1.101.3.4.2.1", CALG_SHA_256},
      {"sha384", "2.16.840.1.101.3.4.2.2", CALG_SHA_384},
      {"sha512", "2.16.840.1.101.3.4.2.3", CALG_SHA_512},
      {"gost94", "1.2.643.2.2.9", CALG_KORVEX_GR3411_94},
      {"gost2012-256", "1.2.643.7.1.1.2.2", CALG_KORVEX_GR3411_2012_256},
      {"gost2012-512", "1.2.643.7.1.1.2.3", CALG_KORVEX_GR3411_2012_512},
  };
  return algorithms;
}

std::string HashNames() {
  std::string text;
  for (const HashAlgorithm& a : HashAlgorithms()) {
    if (!text.empty()) text += ", ";
    text += a.name;
  }
  return text;
}

const HashAlgorithm* FindHashByName(std::string_view name) {
  for (const HashAlgorithm& a : HashAlgorithms()) {
    if (a.name == name) return &a;
  }
  return nullptr;
}

const HashAlgorithm* FindHashByOid(std::string_view oid) {
  for (const HashAlgorithm& a : HashAlgorithms()) {
    if (a.oid == oid) return &a;
  }
  return nullptr;
}

const HashAlgorithm& SelectHash(const std::string* name, std::string_view command) {
  if (!name) return *FindHashByName("sha256");
  const HashAlgorithm* a = FindHashByName(*name);
  if (!a) {
    throw UsageError(std::string(command) + ": unknown hash '" + *name + "' (one of " +
                     HashNames() + ")");
  }
  return *a;
}

std::vector<uint8_t> Digest(const HashAlgorithm& algorithm, const std::vector<uint8_t>& data) {
  std::vector<uint8_t> value;
  switch (HashWith(algorithm.algId, data.data(), data.size(), &value)) {
    case HashStatus::kOk:
      return value;
    case HashStatus::kNoProvider:
      throw UsageError("cannot open the platform's cryptographic provider");
    case HashStatus::kNoAlgorithm:
      throw UsageError("hash " + std::string(algorithm.name) + " is not available here");
    case HashStatus::kFailed:
      break;
  }
  throw UsageError("hashing with " + std::string(algorithm.name) + " failed");
}

bool HashBytes(const std::string& hashOid, const uint8_t* data, size_t size,
               std::vector<uint8_t>* digest) {
  PCCRYPT_OID_INFO info = CryptFindOIDInfo(
      CRYPT_OID_INFO_OID_KEY, const_cast<char*>(hashOid.c_str()), CRYPT_HASH_ALG_OID_GROUP_ID);
  return info != nullptr && HashWith(info->Algid, data, size, digest) == HashStatus::kOk;
}

ImprintMatch MatchImprint(const std::string& hashOid, const uint8_t* imprint, size_t imprintSize,
                          const uint8_t* data, size_t size) {
  std::vector<uint8_t> digest;
  if (!HashBytes(hashOid, data, size, &digest)) return ImprintMatch::kNoHash;
  return digest.size() == imprintSize && std::equal(digest.begin(), digest.end(), imprint)
             ? ImprintMatch::kMatches
             : ImprintMatch::kDiffers;
}

std::string HexLower(const std::vector<uint8_t>& bytes) {
  std::string text = HexText(bytes);
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace adestool
