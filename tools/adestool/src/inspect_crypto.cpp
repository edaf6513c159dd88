// inspect_crypto.cpp: signature values and chains through the
// platform's CryptoAPI and the library's chain check.
#include "inspect_crypto.h"

#include <korvex/cades/ades_core.h>
#include <korvex/platform/atl/certcontext.h>
#include <korvex/platform/capi/wincrypt.h>
#include <korvex/platform/win32/errhandlingapi.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tool_error.h"
#include "value_text.h"

namespace adestool {

namespace {

std::string Hresult(uint32_t code) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%08X", code);
  return buf;
}

uint32_t LastErrorCode() { return static_cast<uint32_t>(GetLastError()); }

// Provider is one verification context for the hashes and keys of a check.
class Provider {
 public:
  Provider() {
    if (!CryptAcquireContextA(&handle_, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT)) {
      handle_ = 0;
    }
  }
  ~Provider() {
    if (handle_) CryptReleaseContext(handle_, 0);
  }
  Provider(const Provider &) = delete;
  Provider &operator=(const Provider &) = delete;
  HCRYPTPROV get() const { return handle_; }

 private:
  HCRYPTPROV handle_ = 0;
};

class Hash {
 public:
  ~Hash() {
    if (handle_) CryptDestroyHash(handle_);
  }
  HCRYPTHASH handle_ = 0;
};

class Key {
 public:
  ~Key() {
    if (handle_) CryptDestroyKey(handle_);
  }
  HCRYPTKEY handle_ = 0;
};

// StartHash creates a hash of hashOid over data; false when the platform
// has no such hash.
bool StartHash(HCRYPTPROV prov, const std::string &hashOid, const uint8_t *data, size_t size,
               Hash *hash) {
  PCCRYPT_OID_INFO info = CryptFindOIDInfo(
      CRYPT_OID_INFO_OID_KEY, const_cast<char *>(hashOid.c_str()), CRYPT_HASH_ALG_OID_GROUP_ID);
  if (info == nullptr || prov == 0) return false;
  if (!CryptCreateHash(prov, info->Algid, 0, 0, &hash->handle_)) return false;
  // Inputs are at most 256 MiB, so one call takes them.
  return CryptHashData(hash->handle_, data, static_cast<DWORD>(size), 0) != FALSE;
}

struct StatusName {
  uint32_t code;
  const char *name;
  const char *meaning;
};

const StatusName kChainStatuses[] = {
    {0x80096004u, "TRUST_E_CERT_SIGNATURE", "a certificate's signature does not verify"},
    {0x80092010u, "CRYPT_E_REVOKED", "a certificate is revoked"},
    {0x800B0109u, "CERT_E_UNTRUSTEDROOT", "the chain ends at a root that is not trusted"},
    {0x800B010Au, "CERT_E_CHAINING", "no chain to a trust anchor could be built"},
    {0x800B0110u, "CERT_E_WRONG_USAGE", "the certificate is not valid for signing"},
    {0x800B0101u, "CERT_E_EXPIRED", "a certificate is outside its validity period"},
    {0x80096019u, "TRUST_E_BASIC_CONSTRAINTS", "an issuer is not a CA or exceeds its path length"},
    {0x800B0105u, "CERT_E_CRITICAL", "a certificate has an unknown critical extension"},
    {0x80092013u, "CRYPT_E_REVOCATION_OFFLINE",
     "no current CRL of an issuer is available to check revocation"},
    {0x80092012u, "CRYPT_E_NO_REVOCATION_CHECK", "revocation could not be checked"},
};

bool IsRsaKey(HCRYPTKEY key) {
  ALG_ID algorithm = 0;
  DWORD size = sizeof algorithm;
  if (!CryptGetKeyParam(key, KP_ALGID, reinterpret_cast<BYTE *>(&algorithm), &size, 0)) {
    return false;
  }
  return algorithm == CALG_RSA_KEYX || algorithm == CALG_RSA_SIGN;
}

std::string TempBase() {
  const char *tmp = std::getenv("TMPDIR");
  return tmp && *tmp ? tmp : "/tmp";
}

void WriteFileOrThrow(const std::string &path, const std::vector<uint8_t> &bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char *>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) throw FileError(path, "cannot write the temporary trust settings");
}

// CurrentConfig: the text of the configuration file the process reads now
// (KORVEX_CONFIG, else the default path), empty when there is none.
std::string CurrentConfig() {
  const char *env = std::getenv("KORVEX_CONFIG");
  std::string path = env && *env ? env : "/etc/korvex/korvex.conf";
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::string();
  std::ostringstream text;
  text << in.rdbuf();
  std::string s = text.str();
  if (!s.empty() && s.back() != '\n') s += '\n';
  return s;
}

}  // namespace

CheckResult VerifySignatureValue(const std::vector<uint8_t> &certDer, const std::string &hashOid,
                                 const uint8_t *signedData, size_t signedSize,
                                 const std::vector<uint8_t> &signature) {
  CheckResult result;
  ATL2::CCertContext cert;
  if (certDer.empty() ||
      cert.Create(certDer.data(), static_cast<DWORD>(certDer.size()), X509_ASN_ENCODING) != 0) {
    result.detail = "the signer's certificate cannot be read";
    return result;
  }
  Provider prov;
  Key key;
  if (!CryptImportPublicKeyInfo(prov.get(), X509_ASN_ENCODING,
                                &cert.GetHandle()->pCertInfo->SubjectPublicKeyInfo, &key.handle_)) {
    uint32_t error = LastErrorCode();
    result.detail =
        error == 0x80090008u  // NTE_BAD_ALGID
            ? "the signer's public-key algorithm " +
                  std::string(
                      cert.GetHandle()->pCertInfo->SubjectPublicKeyInfo.Algorithm.pszObjId) +
                  " is not supported"
            : "the signer's public key cannot be used (" + Hresult(error) + ")";
    return result;
  }
  Hash hash;
  if (!StartHash(prov.get(), hashOid, signedData, signedSize, &hash)) {
    result.detail = "no hash for digest algorithm " + hashOid;
    return result;
  }
  std::vector<uint8_t> value = signature;
  if (IsRsaKey(key.handle_)) std::reverse(value.begin(), value.end());
  if (CryptVerifySignatureA(hash.handle_, value.data(), static_cast<DWORD>(value.size()),
                            key.handle_, nullptr, 0)) {
    result.passed = true;
    result.detail = "the signature verifies with the signer's public key";
    return result;
  }
  uint32_t error = LastErrorCode();
  result.detail = error == 0x80090006u
                      ? "the signature does not verify with the signer's public key"
                      : "the signature cannot be checked (" + Hresult(error) + ")";
  return result;
}

CheckResult CheckChainNow(const std::vector<uint8_t> &certDer,
                          const std::vector<std::vector<uint8_t>> &otherCerts) {
  CheckResult result;
  HCERTSTORE store = CertOpenStore(CERT_STORE_PROV_MEMORY, 0, 0, 0, nullptr);
  if (store == nullptr) {
    result.detail = "no certificate store (" + Hresult(LastErrorCode()) + ")";
    return result;
  }
  for (const std::vector<uint8_t> &der : otherCerts) {
    // Certificates that do not parse are left out; the chain shows what is
    // missing.
    CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, der.data(),
                                     static_cast<DWORD>(der.size()), CERT_STORE_ADD_USE_EXISTING,
                                     nullptr);
  }
  PCCERT_CONTEXT stored = nullptr;
  if (!CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, certDer.data(),
                                        static_cast<DWORD>(certDer.size()),
                                        CERT_STORE_ADD_USE_EXISTING, &stored)) {
    CertCloseStore(store, 0);
    result.detail = "the signer's certificate cannot be read";
    return result;
  }
  ATL2::CCertContext cert(stored);
  unsigned int status = 0;
  HRESULT hr = IsCertChainValidForSignatureOnTimeNow(cert, &status);
  CertCloseStore(store, 0);
  if (hr != 0) {
    result.detail = "the chain check could not run (" + Hresult(static_cast<uint32_t>(hr)) + ")";
  } else if (status != 0) {
    result.detail = ChainStatusText(status);
  } else {
    result.passed = true;
    result.detail = "the chain is valid for signing now";
  }
  return result;
}

std::string ChainStatusText(uint32_t status) {
  for (const StatusName &s : kChainStatuses) {
    if (s.code == status) return std::string(s.name) + " (" + Hresult(status) + "): " + s.meaning;
  }
  return "chain status " + Hresult(status);
}

TrustSetup::TrustSetup(const std::vector<std::vector<uint8_t>> &anchors,
                       const std::vector<std::vector<uint8_t>> &crls) {
  std::string pattern = TempBase() + "/adestool-trust-XXXXXX";
  std::vector<char> buf(pattern.begin(), pattern.end());
  buf.push_back('\0');
  if (mkdtemp(buf.data()) == nullptr) {
    throw FileError(TempBase(), "cannot create a temporary directory for --trust");
  }
  dir_ = buf.data();
  if (dir_.find('"') != std::string::npos) {
    rmdir(dir_.c_str());
    throw FileError(dir_, "temporary directory name holds a quote");
  }
  try {
    Write(anchors, crls);
  } catch (...) {
    RemoveFiles();
    throw;
  }
}

void TrustSetup::Write(const std::vector<std::vector<uint8_t>> &anchors,
                       const std::vector<std::vector<uint8_t>> &crls) {
  std::string config = CurrentConfig();

  // The anchors of --trust are the only ones: the directory holds them and
  // the file setting is emptied.
  mkdir((dir_ + "/anchors").c_str(), 0700);
  for (size_t i = 0; i < anchors.size(); ++i) {
    WriteFileOrThrow(dir_ + "/anchors/anchor-" + std::to_string(i + 1) + ".der", anchors[i]);
  }
  config += "\\config\\capi\\TrustAnchors\\Directory = \"" + dir_ + "/anchors\"\n";
  config += "\\config\\capi\\TrustAnchors\\File = \"\"\n";
  if (!crls.empty()) {
    mkdir((dir_ + "/crls").c_str(), 0700);
    for (size_t i = 0; i < crls.size(); ++i) {
      WriteFileOrThrow(dir_ + "/crls/crl-" + std::to_string(i + 1) + ".der", crls[i]);
    }
    config += "\\config\\capi\\CRL\\Directory = \"" + dir_ + "/crls\"\n";
  }
  std::string path = dir_ + "/korvex.conf";
  WriteFileOrThrow(path, std::vector<uint8_t>(config.begin(), config.end()));
  const char *old = std::getenv("KORVEX_CONFIG");
  hadConfig_ = old != nullptr;
  if (old) oldConfig_ = old;
  setenv("KORVEX_CONFIG", path.c_str(), 1);
  configSet_ = true;
}

TrustSetup::~TrustSetup() {
  if (configSet_) {
    if (hadConfig_) {
      setenv("KORVEX_CONFIG", oldConfig_.c_str(), 1);
    } else {
      unsetenv("KORVEX_CONFIG");
    }
  }
  RemoveFiles();
}

void TrustSetup::RemoveFiles() {
  for (const char *sub : {"/anchors", "/crls"}) {
    std::string d = dir_ + sub;
    for (size_t i = 1;; ++i) {
      std::string name =
          d + (std::string(sub) == "/anchors" ? "/anchor-" : "/crl-") + std::to_string(i) + ".der";
      if (unlink(name.c_str()) != 0) break;
    }
    rmdir(d.c_str());
  }
  unlink((dir_ + "/korvex.conf").c_str());
  rmdir(dir_.c_str());
}

}  // namespace adestool
