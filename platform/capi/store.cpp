// Memory certificate stores.
#include <cstring>

#include "capi_internal.h"

namespace korvex::capi {

struct Store {
  std::mutex mutex;
  std::vector<PCCERT_CONTEXT> certs;  // one reference each
  long opens = 1;
};

namespace {

Registry<Store>& Stores() {
  static Registry<Store>* registry = new Registry<Store>();
  return *registry;
}

HCERTSTORE NewStore() {
  auto store = std::make_shared<Store>();
  HCERTSTORE handle = store.get();
  Stores().Add(handle, std::move(store));
  return handle;
}

bool SameEncoding(PCCERT_CONTEXT a, PCCERT_CONTEXT b) {
  return a->cbCertEncoded == b->cbCertEncoded &&
         std::memcmp(a->pbCertEncoded, b->pbCertEncoded, a->cbCertEncoded) == 0;
}

// Add puts `context` (whose reference it takes over) into the store under
// the disposition rules of CertAddEncodedCertificateToStore.
BOOL Add(HCERTSTORE handle, PCCERT_CONTEXT context, DWORD disposition, PCCERT_CONTEXT* out) {
  std::shared_ptr<Store> store = Stores().Find(handle);
  if (!store) {
    CertFreeCertificateContext(context);
    return Fail(E_INVALIDARG);
  }
  PCCERT_CONTEXT result = nullptr;
  PCCERT_CONTEXT replaced = nullptr;
  {
    std::lock_guard<std::mutex> lock(store->mutex);
    auto existing = store->certs.end();
    for (auto it = store->certs.begin(); it != store->certs.end(); ++it) {
      if (SameEncoding(*it, context)) existing = it;
    }
    switch (disposition) {
      case CERT_STORE_ADD_NEW:
        if (existing != store->certs.end()) {
          CertFreeCertificateContext(context);
          return Fail(CRYPT_E_EXISTS);
        }
        store->certs.push_back(context);
        result = context;
        break;
      case CERT_STORE_ADD_USE_EXISTING:
        if (existing != store->certs.end()) {
          CertFreeCertificateContext(context);
          result = *existing;
        } else {
          store->certs.push_back(context);
          result = context;
        }
        break;
      case CERT_STORE_ADD_REPLACE_EXISTING:
        if (existing != store->certs.end()) {
          replaced = *existing;
          *existing = context;
        } else {
          store->certs.push_back(context);
        }
        result = context;
        break;
      case CERT_STORE_ADD_ALWAYS:
        store->certs.push_back(context);
        result = context;
        break;
      default:
        CertFreeCertificateContext(context);
        return Fail(E_INVALIDARG);
    }
    if (out != nullptr) *out = CertDuplicateCertificateContext(result);
  }
  if (replaced != nullptr) {
    if (auto old = FindCert(replaced)) {
      std::lock_guard<std::mutex> lock(old->mutex);
      old->context.hCertStore = nullptr;
    }
    CertFreeCertificateContext(replaced);
  }
  return TRUE;
}

}  // namespace

std::vector<PCCERT_CONTEXT> StoreSnapshot(HCERTSTORE handle) {
  std::vector<PCCERT_CONTEXT> out;
  std::shared_ptr<Store> store = Stores().Find(handle);
  if (!store) return out;
  std::lock_guard<std::mutex> lock(store->mutex);
  for (PCCERT_CONTEXT context : store->certs) out.push_back(CertDuplicateCertificateContext(context));
  return out;
}

}  // namespace korvex::capi

using namespace korvex::capi;

extern "C" HCERTSTORE CertOpenStore(LPCSTR lpszStoreProvider, DWORD /*dwEncodingType*/,
                                    HCRYPTPROV /*hCryptProv*/, DWORD /*dwFlags*/,
                                    const void* pvPara) {
  // Predefined providers are small integers in place of a name (the
  // CryptoAPI convention for OID-or-number arguments).
  uintptr_t number = reinterpret_cast<uintptr_t>(lpszStoreProvider);
  bool isNumber = number <= 0xFFFF;
  if ((isNumber && lpszStoreProvider == CERT_STORE_PROV_MEMORY) ||
      (!isNumber && std::strcmp(lpszStoreProvider, sz_CERT_STORE_PROV_MEMORY) == 0)) {
    return NewStore();
  }
  if (isNumber && lpszStoreProvider == CERT_STORE_PROV_MSG) {
    std::vector<std::vector<BYTE>> certs;
    if (!MessageCertificates(const_cast<void*>(pvPara), &certs)) {
      SetLastError(static_cast<DWORD>(E_INVALIDARG));
      return nullptr;
    }
    HCERTSTORE store = NewStore();
    for (const std::vector<BYTE>& der : certs) {
      CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, der.data(),
                                       static_cast<DWORD>(der.size()), CERT_STORE_ADD_ALWAYS,
                                       nullptr);
    }
    return store;
  }
  SetLastError(ERROR_FILE_NOT_FOUND);
  return nullptr;
}

extern "C" HCERTSTORE CertDuplicateStore(HCERTSTORE hCertStore) {
  std::shared_ptr<Store> store = Stores().Find(hCertStore);
  if (!store) return nullptr;
  std::lock_guard<std::mutex> lock(store->mutex);
  ++store->opens;
  return hCertStore;
}

extern "C" BOOL CertCloseStore(HCERTSTORE hCertStore, DWORD dwFlags) {
  if (hCertStore == nullptr) return TRUE;
  std::shared_ptr<Store> store = Stores().Find(hCertStore);
  if (!store) return Fail(E_INVALIDARG);
  std::vector<PCCERT_CONTEXT> certs;
  {
    std::lock_guard<std::mutex> lock(store->mutex);
    if (--store->opens > 0) return TRUE;
    certs.swap(store->certs);
  }
  Stores().Remove(hCertStore);
  bool pending = false;
  for (PCCERT_CONTEXT context : certs) {
    if (auto object = FindCert(context)) {
      std::lock_guard<std::mutex> lock(object->mutex);
      if (object->refs > 1) pending = true;
      object->context.hCertStore = nullptr;
    }
    CertFreeCertificateContext(context);
  }
  if (pending && (dwFlags & CERT_CLOSE_STORE_CHECK_FLAG) != 0) return Fail(CRYPT_E_PENDING_CLOSE);
  return TRUE;
}

extern "C" BOOL CertAddEncodedCertificateToStore(HCERTSTORE hCertStore, DWORD dwCertEncodingType,
                                                 const BYTE* pbCertEncoded, DWORD cbCertEncoded,
                                                 DWORD dwAddDisposition,
                                                 PCCERT_CONTEXT* ppCertContext) {
  if (ppCertContext != nullptr) *ppCertContext = nullptr;
  if (!Stores().Find(hCertStore)) return Fail(E_INVALIDARG);
  if ((dwCertEncodingType & X509_ASN_ENCODING) == 0) return Fail(E_INVALIDARG);
  PCCERT_CONTEXT context = NewCertContext(pbCertEncoded, cbCertEncoded, hCertStore);
  if (context == nullptr) return FALSE;
  return Add(hCertStore, context, dwAddDisposition, ppCertContext);
}

extern "C" BOOL CertAddCertificateContextToStore(HCERTSTORE hCertStore,
                                                 PCCERT_CONTEXT pCertContext,
                                                 DWORD dwAddDisposition,
                                                 PCCERT_CONTEXT* ppStoreContext) {
  if (ppStoreContext != nullptr) *ppStoreContext = nullptr;
  if (!Stores().Find(hCertStore) || !FindCert(pCertContext)) return Fail(E_INVALIDARG);
  PCCERT_CONTEXT context =
      NewCertContext(pCertContext->pbCertEncoded, pCertContext->cbCertEncoded, hCertStore);
  if (context == nullptr) return FALSE;
  return Add(hCertStore, context, dwAddDisposition, ppStoreContext);
}

extern "C" PCCERT_CONTEXT CertEnumCertificatesInStore(HCERTSTORE hCertStore,
                                                      PCCERT_CONTEXT pPrevCertContext) {
  std::shared_ptr<Store> store = Stores().Find(hCertStore);
  if (!store) {
    CertFreeCertificateContext(pPrevCertContext);
    SetLastError(static_cast<DWORD>(E_INVALIDARG));
    return nullptr;
  }
  PCCERT_CONTEXT next = nullptr;
  {
    std::lock_guard<std::mutex> lock(store->mutex);
    size_t index = 0;
    if (pPrevCertContext != nullptr) {
      index = store->certs.size();
      for (size_t i = 0; i < store->certs.size(); ++i) {
        if (store->certs[i] == pPrevCertContext) index = i + 1;
      }
    }
    if (index < store->certs.size()) next = CertDuplicateCertificateContext(store->certs[index]);
  }
  CertFreeCertificateContext(pPrevCertContext);
  if (next == nullptr) SetLastError(static_cast<DWORD>(CRYPT_E_NOT_FOUND));
  return next;
}
