// Certificate contexts: one parsed X.509 certificate each (RFC 5280 4.1).
#include <openssl/err.h>
#include <openssl/x509.h>

#include <algorithm>

#include "capi_internal.h"

namespace korvex::capi {
namespace {

Registry<CertObject>& Certs() {
  static Registry<CertObject>* registry = new Registry<CertObject>();
  return *registry;
}

void SetBlob(CRYPT_INTEGER_BLOB* blob, std::vector<BYTE>& bytes) {
  blob->cbData = static_cast<DWORD>(bytes.size());
  blob->pbData = bytes.empty() ? nullptr : bytes.data();
}

void SetBits(CRYPT_BIT_BLOB* blob, const ASN1_BIT_STRING* bits, std::vector<BYTE>* storage) {
  if (bits == nullptr) return;
  storage->assign(ASN1_STRING_get0_data(bits), ASN1_STRING_get0_data(bits) + ASN1_STRING_length(bits));
  blob->cbData = static_cast<DWORD>(storage->size());
  blob->pbData = storage->empty() ? nullptr : storage->data();
  blob->cUnusedBits = (bits->flags & ASN1_STRING_FLAG_BITS_LEFT) ? (bits->flags & 7) : 0;
}

// Fill builds the CERT_INFO of object->x509; false when a field cannot be
// represented (the certificate is then refused as corrupt).
bool Fill(CertObject* object) {
  X509* x = object->x509.get();
  CERT_INFO& info = object->info;
  info.dwVersion = static_cast<DWORD>(X509_get_version(x));

  // Serial number: the INTEGER content octets, least significant first.
  std::vector<BYTE> serial = Encode([&](unsigned char** p) {
    return i2d_ASN1_INTEGER(const_cast<ASN1_INTEGER*>(X509_get0_serialNumber(x)), p);
  });
  Tlv tlv;
  if (!ReadTlv(serial.data(), serial.size(), &tlv)) return false;
  object->serial.assign(serial.rbegin(), serial.rbegin() + static_cast<long>(tlv.length));
  SetBlob(&info.SerialNumber, object->serial);

  std::vector<BYTE> sigAlg = Encode([&](unsigned char** p) {
    return i2d_X509_ALGOR(const_cast<X509_ALGOR*>(X509_get0_tbs_sigalg(x)), p);
  });
  if (!SplitAlgorithm(sigAlg, &object->signatureOid, &object->signatureParams)) return false;
  info.SignatureAlgorithm.pszObjId = &object->signatureOid[0];
  SetBlob(&info.SignatureAlgorithm.Parameters, object->signatureParams);

  object->issuer = Encode([&](unsigned char** p) { return i2d_X509_NAME(X509_get_issuer_name(x), p); });
  object->subject =
      Encode([&](unsigned char** p) { return i2d_X509_NAME(X509_get_subject_name(x), p); });
  SetBlob(&info.Issuer, object->issuer);
  SetBlob(&info.Subject, object->subject);
  if (!AsnTimeToFileTime(X509_get0_notBefore(x), &info.NotBefore) ||
      !AsnTimeToFileTime(X509_get0_notAfter(x), &info.NotAfter)) {
    return false;
  }

  // SubjectPublicKeyInfo: algorithm and the BIT STRING as encoded.
  std::vector<BYTE> spki =
      Encode([&](unsigned char** p) { return i2d_X509_PUBKEY(X509_get_X509_PUBKEY(x), p); });
  Tlv outer, algorithm, key;
  if (!ReadTlv(spki.data(), spki.size(), &outer)) return false;
  const BYTE* body = spki.data() + outer.header;
  if (!ReadTlv(body, outer.length, &algorithm)) return false;
  std::vector<BYTE> algorithmDer(body, body + algorithm.total());
  if (!SplitAlgorithm(algorithmDer, &object->keyOid, &object->keyParams)) return false;
  const BYTE* keyTlv = body + algorithm.total();
  if (!ReadTlv(keyTlv, outer.length - algorithm.total(), &key) || key.tag != 0x03 ||
      key.length == 0) {
    return false;
  }
  object->keyBits.assign(keyTlv + key.header + 1, keyTlv + key.total());
  info.SubjectPublicKeyInfo.Algorithm.pszObjId = &object->keyOid[0];
  SetBlob(&info.SubjectPublicKeyInfo.Algorithm.Parameters, object->keyParams);
  info.SubjectPublicKeyInfo.PublicKey.cbData = static_cast<DWORD>(object->keyBits.size());
  info.SubjectPublicKeyInfo.PublicKey.pbData =
      object->keyBits.empty() ? nullptr : object->keyBits.data();
  info.SubjectPublicKeyInfo.PublicKey.cUnusedBits = keyTlv[key.header] & 7;

  const ASN1_BIT_STRING* issuerUid = nullptr;
  const ASN1_BIT_STRING* subjectUid = nullptr;
  X509_get0_uids(x, &issuerUid, &subjectUid);
  SetBits(&info.IssuerUniqueId, issuerUid, &object->issuerUid);
  SetBits(&info.SubjectUniqueId, subjectUid, &object->subjectUid);

  int count = X509_get_ext_count(x);
  object->extensions.resize(static_cast<size_t>(std::max(count, 0)));
  object->extensionOids.resize(object->extensions.size());
  object->extensionValues.resize(object->extensions.size());
  for (int i = 0; i < count; ++i) {
    X509_EXTENSION* ext = X509_get_ext(x, i);
    size_t n = static_cast<size_t>(i);
    object->extensionOids[n] = ObjectText(X509_EXTENSION_get_object(ext));
    if (object->extensionOids[n].empty()) return false;
    const ASN1_OCTET_STRING* value = X509_EXTENSION_get_data(ext);
    object->extensionValues[n].assign(ASN1_STRING_get0_data(value),
                                      ASN1_STRING_get0_data(value) + ASN1_STRING_length(value));
    CERT_EXTENSION& out = object->extensions[n];
    out.pszObjId = &object->extensionOids[n][0];
    out.fCritical = X509_EXTENSION_get_critical(ext) ? TRUE : FALSE;
    SetBlob(&out.Value, object->extensionValues[n]);
  }
  info.cExtension = static_cast<DWORD>(object->extensions.size());
  info.rgExtension = object->extensions.empty() ? nullptr : object->extensions.data();

  object->context.dwCertEncodingType = X509_ASN_ENCODING;
  object->context.pbCertEncoded = object->der.data();
  object->context.cbCertEncoded = static_cast<DWORD>(object->der.size());
  object->context.pCertInfo = &object->info;
  return true;
}

PCCERT_CONTEXT Register(std::shared_ptr<CertObject> object, HCERTSTORE store) {
  object->context.hCertStore = store;
  PCCERT_CONTEXT handle = &object->context;
  Certs().Add(handle, std::move(object));
  return handle;
}

}  // namespace

PCCERT_CONTEXT NewCertContext(const BYTE* der, size_t size, HCERTSTORE store) {
  if (der == nullptr || size == 0 || size > 0x7FFFFFFF) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  const unsigned char* p = der;
  X509Ptr x509(d2i_X509(nullptr, &p, static_cast<long>(size)));
  ERR_clear_error();
  if (!x509) {
    SetLastError(static_cast<DWORD>(DerClassify(der, size)));
    return nullptr;
  }
  if (p != der + size) {
    SetLastError(static_cast<DWORD>(CRYPT_E_ASN1_CORRUPT));
    return nullptr;
  }
  auto object = std::make_shared<CertObject>();
  object->x509 = std::move(x509);
  object->der.assign(der, der + size);
  if (!Fill(object.get())) {
    SetLastError(static_cast<DWORD>(CRYPT_E_ASN1_CORRUPT));
    return nullptr;
  }
  return Register(std::move(object), store);
}

PCCERT_CONTEXT NewCertContextFromX509(X509Ptr x509, HCERTSTORE store) {
  auto object = std::make_shared<CertObject>();
  object->der = Encode([&](unsigned char** p) { return i2d_X509(x509.get(), p); });
  object->x509 = std::move(x509);
  if (object->der.empty() || !Fill(object.get())) {
    SetLastError(static_cast<DWORD>(CRYPT_E_ASN1_CORRUPT));
    return nullptr;
  }
  return Register(std::move(object), store);
}

std::shared_ptr<CertObject> FindCert(PCCERT_CONTEXT context) { return Certs().Find(context); }

}  // namespace korvex::capi

using namespace korvex::capi;

extern "C" PCCERT_CONTEXT CertCreateCertificateContext(DWORD dwCertEncodingType,
                                                       const BYTE* pbCertEncoded,
                                                       DWORD cbCertEncoded) {
  if ((dwCertEncodingType & X509_ASN_ENCODING) == 0) {
    SetLastError(static_cast<DWORD>(E_INVALIDARG));
    return nullptr;
  }
  return NewCertContext(pbCertEncoded, cbCertEncoded, nullptr);
}

extern "C" PCCERT_CONTEXT CertDuplicateCertificateContext(PCCERT_CONTEXT pCertContext) {
  std::shared_ptr<CertObject> object = FindCert(pCertContext);
  if (!object) return nullptr;
  std::lock_guard<std::mutex> lock(object->mutex);
  ++object->refs;
  return pCertContext;
}

extern "C" BOOL CertFreeCertificateContext(PCCERT_CONTEXT pCertContext) {
  if (pCertContext == nullptr) return TRUE;
  std::shared_ptr<CertObject> object = FindCert(pCertContext);
  if (!object) return Fail(E_INVALIDARG);
  bool last;
  {
    std::lock_guard<std::mutex> lock(object->mutex);
    last = --object->refs == 0;
  }
  if (last) Certs().Remove(pCertContext);
  return TRUE;
}
