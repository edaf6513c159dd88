// capi_internal.h: helpers shared by the CryptoAPI sources of libkorvex-capi.
// Not installed; nothing here is exported.
#ifndef KORVEX_PLATFORM_CAPI_CAPI_INTERNAL_H
#define KORVEX_PLATFORM_CAPI_CAPI_INTERNAL_H

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <cstdint>
#include <cstring>
#include <ctime>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include <korvex/platform/capi/wincrypt.h>
#include <korvex/platform/win32/errhandlingapi.h>

namespace korvex::capi {

// Fail records hr as the thread's last error and returns FALSE, so that an
// API function can end with `return Fail(NTE_BAD_UID);`.
inline BOOL Fail(HRESULT hr) {
  SetLastError(static_cast<DWORD>(hr));
  return FALSE;
}

// FailWin32 is Fail for a bare Win32 error number (ERROR_INVALID_PARAMETER...).
inline BOOL FailWin32(DWORD error) {
  SetLastError(error);
  return FALSE;
}

// Registry keeps the live objects of one kind, keyed by the handle value the
// caller holds, so that every API function can tell a live handle from a
// stale or made-up one instead of touching freed memory. Lookups hand out a
// shared_ptr, which keeps the object alive for the rest of the call even if
// another thread releases the handle meanwhile.
template <typename T>
class Registry {
 public:
  void Add(const void* handle, std::shared_ptr<T> object) {
    std::lock_guard<std::mutex> lock(mutex_);
    objects_[reinterpret_cast<uintptr_t>(handle)] = std::move(object);
  }
  std::shared_ptr<T> Find(const void* handle) const {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = objects_.find(reinterpret_cast<uintptr_t>(handle));
    return it == objects_.end() ? nullptr : it->second;
  }
  std::shared_ptr<T> Find(uintptr_t handle) const {
    return Find(reinterpret_cast<const void*>(handle));
  }
  // Publish adds a new object under its own address and stores that address
  // in *out as the caller's handle.
  template <typename Handle>
  BOOL Publish(std::shared_ptr<T> object, Handle* out) {
    T* address = object.get();
    Add(address, std::move(object));
    *out = reinterpret_cast<Handle>(address);
    return TRUE;
  }
  // Remove forgets the handle; returns the object (null when unknown).
  std::shared_ptr<T> Remove(const void* handle) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = objects_.find(reinterpret_cast<uintptr_t>(handle));
    if (it == objects_.end()) return nullptr;
    std::shared_ptr<T> object = std::move(it->second);
    objects_.erase(it);
    return object;
  }

 private:
  mutable std::mutex mutex_;
  std::unordered_map<uintptr_t, std::shared_ptr<T>> objects_;
};

// ---------------------------------------------------------------- OpenSSL

struct X509Free {
  void operator()(X509* x) const { X509_free(x); }
};
struct X509CrlFree {
  void operator()(X509_CRL* x) const { X509_CRL_free(x); }
};
struct PkeyFree {
  void operator()(EVP_PKEY* k) const { EVP_PKEY_free(k); }
};
struct MdCtxFree {
  void operator()(EVP_MD_CTX* c) const { EVP_MD_CTX_free(c); }
};
using X509Ptr = std::unique_ptr<X509, X509Free>;
using X509CrlPtr = std::unique_ptr<X509_CRL, X509CrlFree>;
using PkeyPtr = std::unique_ptr<EVP_PKEY, PkeyFree>;
using MdCtxPtr = std::unique_ptr<EVP_MD_CTX, MdCtxFree>;

// ObjectText is the dotted text of an OBJECT IDENTIFIER ("" when unreadable).
std::string ObjectText(const ASN1_OBJECT* object);

// AsnTimeToFileTime converts an ASN.1 UTCTime/GeneralizedTime to FILETIME
// ticks; false when the time cannot be read.
bool AsnTimeToFileTime(const ASN1_TIME* time, FILETIME* out);

// FileTimeToUnix / UnixNow: the seconds since 1970 of a FILETIME / now.
time_t FileTimeToUnix(const FILETIME& ft);

// DerClassify names the ASN.1 error for bytes OpenSSL refused to decode as
// a SEQUENCE: CRYPT_E_ASN1_BADTAG when they do not start with a SEQUENCE
// tag, CRYPT_E_ASN1_EOD when the outer length runs past the end,
// CRYPT_E_ASN1_CORRUPT otherwise (X.690 8.1.2-8.1.3).
HRESULT DerClassify(const BYTE* data, size_t size);

// Tlv is one DER element inside a buffer (X.690 8.1.2-8.1.3).
struct Tlv {
  BYTE tag = 0;
  size_t header = 0;  // tag and length octets
  size_t length = 0;  // content octets
  size_t total() const { return header + length; }
};

// ReadTlv reads the element at data[0..size); false when it does not fit or
// uses a form DER does not allow (indefinite length, high tag numbers).
bool ReadTlv(const BYTE* data, size_t size, Tlv* out);

// SplitAlgorithm takes an AlgorithmIdentifier's DER apart into OID text and
// parameter DER (RFC 5280 4.1.1.2).
bool SplitAlgorithm(const std::vector<BYTE>& der, std::string* oid, std::vector<BYTE>* params);

// AppendTlv appends one DER element (X.690 8.1.2-8.1.3) of a tag and content.
void AppendTlv(std::vector<BYTE>* out, BYTE tag, const std::vector<BYTE>& content);

// Encode runs an OpenSSL i2d-style encoder twice (size, then bytes).
template <typename F>
std::vector<BYTE> Encode(F encoder) {
  std::vector<BYTE> out;
  int size = encoder(nullptr);
  if (size <= 0) return out;
  out.resize(static_cast<size_t>(size));
  unsigned char* p = out.data();
  encoder(&p);
  return out;
}

// ---------------------------------------------------------------- objects

struct Provider {
  DWORD type = 0;
  std::string name;
  std::mutex mutex;
  long refs = 1;  // guarded by mutex
};

// ProviderName is the PP_NAME of a provider type, or null for an unknown type.
const char* ProviderName(DWORD type);
std::shared_ptr<Provider> FindProvider(HCRYPTPROV handle);

struct Store;

// One certificate context. `context` comes first so that the address the
// caller holds as PCCERT_CONTEXT is the address of the object.
struct CertObject {
  CERT_CONTEXT context{};
  CERT_INFO info{};
  X509Ptr x509;
  std::vector<BYTE> der;
  // Storage the CERT_INFO pointers point into.
  std::vector<BYTE> serial;                   // little-endian
  std::string signatureOid, keyOid;
  std::vector<BYTE> signatureParams, keyParams, keyBits, issuer, subject;
  std::vector<BYTE> issuerUid, subjectUid;
  std::vector<CERT_EXTENSION> extensions;
  std::vector<std::string> extensionOids;
  std::vector<std::vector<BYTE>> extensionValues;
  std::mutex mutex;
  long refs = 1;  // guarded by mutex
};

// NewCertContext parses DER into a registered context with one reference
// (null and the last error set on failure).
PCCERT_CONTEXT NewCertContext(const BYTE* der, size_t size, HCERTSTORE store);
// NewCertContextFromX509 registers a context over an X509 (whose reference
// it takes over).
PCCERT_CONTEXT NewCertContextFromX509(X509Ptr x509, HCERTSTORE store);
std::shared_ptr<CertObject> FindCert(PCCERT_CONTEXT context);

// Store contents, for the chain builder.
std::vector<PCCERT_CONTEXT> StoreSnapshot(HCERTSTORE store);  // new references

// MessageCertificates is the DER of every certificate of a decoded message
// (false for a handle that is not a decoded message).
bool MessageCertificates(HCRYPTMSG message, std::vector<std::vector<BYTE>>* out);

// ---------------------------------------------------------------- output

// CopyOut implements the size protocol of the Get*Param functions: with a
// null buffer it stores the size; with a short one ERROR_MORE_DATA (size
// stored); otherwise it copies and stores the size.
BOOL CopyOut(const void* data, size_t size, BYTE* out, DWORD* outSize);

// CopyOutDword is CopyOut of a parameter that is one DWORD.
inline BOOL CopyOutDword(DWORD value, BYTE* out, DWORD* outSize) {
  return CopyOut(&value, sizeof value, out, outSize);
}

// StandardDigest: the OpenSSL digest of a non-GOST hash ALG_ID (MD5, SHA-1,
// SHA-2), or null. Hash objects add the GOST digests on top of these;
// signature checks take only these, whose OIDs go into an RSA DigestInfo.
const EVP_MD* StandardDigest(ALG_ID algorithm);

}  // namespace korvex::capi

#endif
