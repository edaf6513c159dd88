// Certificate contexts, memory stores, public keys from certificates and
// the ATL2::CCertContext owner, over the certificates of tests/data/pki.
#include <cstring>

#include <korvex/platform/atl/certcontext.h>
#include <korvex/platform/win32/timeapi.h>

#include "capi_test_util.h"

namespace {

using capi_test::Cert;
using capi_test::Hex;
using capi_test::LastError;
using capi_test::ReadData;

uint64_t Ticks(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second) {
  SYSTEMTIME st{year, month, 0, day, hour, minute, second, 0};
  FILETIME ft{};
  EXPECT_TRUE(SystemTimeToFileTime(&st, &ft));
  return (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
}

uint64_t Ticks(const FILETIME& ft) {
  return (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
}

std::string Blob(const CRYPT_INTEGER_BLOB& blob) { return Hex(blob.pbData, blob.cbData); }

TEST(CapiCert, InfoOfTheRsaSigner) {
  std::vector<BYTE> der = ReadData("pki/ee-rsa.der");
  ASSERT_FALSE(der.empty());
  Cert cert(der);
  ASSERT_NE(nullptr, cert.get());
  PCCERT_CONTEXT c = cert.get();
  EXPECT_EQ(X509_ASN_ENCODING, c->dwCertEncodingType);
  ASSERT_EQ(der.size(), c->cbCertEncoded);
  EXPECT_EQ(0, std::memcmp(der.data(), c->pbCertEncoded, der.size()));
  EXPECT_NE(der.data(), c->pbCertEncoded);  // the context owns a copy
  EXPECT_EQ(nullptr, c->hCertStore);

  const CERT_INFO* info = c->pCertInfo;
  EXPECT_EQ(CERT_V3, info->dwVersion);
  EXPECT_EQ("eeffc000", Blob(info->SerialNumber));  // 02 04 00 C0 FF EE, least significant first
  EXPECT_STREQ("1.2.840.113549.1.1.11", info->SignatureAlgorithm.pszObjId);
  EXPECT_EQ("0500", Blob(info->SignatureAlgorithm.Parameters));
  EXPECT_EQ(Ticks(2024, 1, 1, 0, 0, 0), Ticks(info->NotBefore));
  EXPECT_EQ(Ticks(2049, 12, 31, 23, 59, 59), Ticks(info->NotAfter));

  // The issuer is the intermediate's subject, byte for byte.
  Cert intermediate("pki/intermediate-ca.der");
  ASSERT_NE(nullptr, intermediate.get());
  EXPECT_EQ(Blob(intermediate.get()->pCertInfo->Subject), Blob(info->Issuer));
  EXPECT_EQ(0x30, info->Subject.pbData[0]);

  EXPECT_STREQ("1.2.840.113549.1.1.1", info->SubjectPublicKeyInfo.Algorithm.pszObjId);
  EXPECT_EQ("0500", Blob(info->SubjectPublicKeyInfo.Algorithm.Parameters));
  EXPECT_EQ(270u, info->SubjectPublicKeyInfo.PublicKey.cbData);  // RSAPublicKey, 2048-bit
  EXPECT_EQ(0u, info->SubjectPublicKeyInfo.PublicKey.cUnusedBits);
  EXPECT_EQ(0u, info->IssuerUniqueId.cbData);
  EXPECT_EQ(0u, info->SubjectUniqueId.cbData);

  const char* kOids[] = {"2.5.29.19", "2.5.29.15",         "2.5.29.37",
                         "2.5.29.17", "2.5.29.14",         "2.5.29.35",
                         "2.5.29.31", "1.3.6.1.5.5.7.1.1", "2.5.29.32"};
  ASSERT_EQ(9u, info->cExtension);
  for (DWORD i = 0; i < info->cExtension; ++i) {
    EXPECT_STREQ(kOids[i], info->rgExtension[i].pszObjId) << i;
    EXPECT_EQ(i < 2 ? TRUE : FALSE, info->rgExtension[i].fCritical) << i;
  }
  EXPECT_EQ("3000", Blob(info->rgExtension[0].Value));
  EXPECT_EQ("030205e0", Blob(info->rgExtension[1].Value));
}

TEST(CapiCert, LongSerialAndGeneralizedTime) {
  Cert dn("pki/ee-dn-attrs.der");
  ASSERT_NE(nullptr, dn.get());
  std::vector<BYTE> serial(dn.get()->pCertInfo->SerialNumber.pbData,
                           dn.get()->pCertInfo->SerialNumber.pbData +
                               dn.get()->pCertInfo->SerialNumber.cbData);
  EXPECT_EQ("0d0c0b0a09080706050403020100786576726f4b", Hex(serial));
  Cert root("pki/root-ca.der");
  ASSERT_NE(nullptr, root.get());
  EXPECT_EQ(Ticks(2055, 12, 31, 23, 59, 59), Ticks(root.get()->pCertInfo->NotAfter));
}

struct BadInput {
  const char* what;
  std::string hex;
  uint32_t error;
};

TEST(CapiCert, MalformedCertificates) {
  std::vector<BYTE> good = ReadData("pki/ee-rsa.der");
  ASSERT_FALSE(good.empty());
  std::string truncated = Hex(good.data(), good.size() - 10);
  std::string trailing = Hex(good) + "00";
  const BadInput kCases[] = {
      {"SET instead of SEQUENCE", "3100", 0x8009310Bu},
      {"OCTET STRING", "0401ff", 0x8009310Bu},
      {"truncated", truncated, 0x80093102u},
      {"length past the end", "3082ffff3000", 0x80093102u},
      {"SEQUENCE of an INTEGER", "3003020100", 0x80093103u},
      {"trailing byte", trailing, 0x80093103u},
  };
  for (const BadInput& c : kCases) {
    SCOPED_TRACE(c.what);
    std::vector<BYTE> bytes = capi_test::Unhex(c.hex);
    SetLastError(0);
    EXPECT_EQ(nullptr, CertCreateCertificateContext(X509_ASN_ENCODING, bytes.data(),
                                                    static_cast<DWORD>(bytes.size())));
    EXPECT_EQ(c.error, LastError());
  }
  EXPECT_EQ(nullptr, CertCreateCertificateContext(X509_ASN_ENCODING, nullptr, 0));
  EXPECT_EQ(87u, LastError());
  EXPECT_EQ(nullptr, CertCreateCertificateContext(PKCS_7_ASN_ENCODING, good.data(),
                                                  static_cast<DWORD>(good.size())));
  EXPECT_EQ(0x80070057u, LastError());
}

TEST(CapiCert, ReferenceCounting) {
  Cert cert("pki/ee-ec.der");
  ASSERT_NE(nullptr, cert.get());
  PCCERT_CONTEXT copy = CertDuplicateCertificateContext(cert.get());
  EXPECT_EQ(cert.get(), copy);
  EXPECT_TRUE(CertFreeCertificateContext(copy));
  EXPECT_STREQ("1.2.840.10045.2.1", cert.get()->pCertInfo->SubjectPublicKeyInfo.Algorithm.pszObjId);
  EXPECT_EQ(nullptr, CertDuplicateCertificateContext(nullptr));
  EXPECT_TRUE(CertFreeCertificateContext(nullptr));
  CERT_CONTEXT fake{};
  EXPECT_FALSE(CertFreeCertificateContext(&fake));
  EXPECT_EQ(0x80070057u, LastError());
}

TEST(CapiCert, MemoryStore) {
  HCERTSTORE store = CertOpenStore(CERT_STORE_PROV_MEMORY, 0, 0, 0, nullptr);
  ASSERT_NE(nullptr, store);
  std::vector<BYTE> ee = ReadData("pki/ee-rsa.der");
  std::vector<BYTE> ca = ReadData("pki/intermediate-ca.der");
  PCCERT_CONTEXT added = nullptr;
  ASSERT_TRUE(CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, ee.data(),
                                               static_cast<DWORD>(ee.size()), CERT_STORE_ADD_NEW,
                                               &added));
  EXPECT_EQ(store, added->hCertStore);
  EXPECT_FALSE(CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, ee.data(),
                                                static_cast<DWORD>(ee.size()), CERT_STORE_ADD_NEW,
                                                nullptr));
  EXPECT_EQ(0x80092005u, LastError());  // CRYPT_E_EXISTS
  PCCERT_CONTEXT existing = nullptr;
  ASSERT_TRUE(CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, ee.data(),
                                               static_cast<DWORD>(ee.size()),
                                               CERT_STORE_ADD_USE_EXISTING, &existing));
  EXPECT_EQ(added, existing);
  CertFreeCertificateContext(existing);
  Cert caCert(ca);
  ASSERT_TRUE(CertAddCertificateContextToStore(store, caCert.get(), CERT_STORE_ADD_ALWAYS, nullptr));
  EXPECT_FALSE(CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, ee.data(),
                                                static_cast<DWORD>(ee.size()), 99, nullptr));
  EXPECT_EQ(0x80070057u, LastError());

  std::vector<std::string> subjects;
  PCCERT_CONTEXT it = nullptr;
  while ((it = CertEnumCertificatesInStore(store, it)) != nullptr) {
    subjects.push_back(Blob(it->pCertInfo->Subject));
  }
  EXPECT_EQ(0x80092004u, LastError());  // CRYPT_E_NOT_FOUND at the end
  ASSERT_EQ(2u, subjects.size());
  EXPECT_EQ(Blob(added->pCertInfo->Subject), subjects[0]);
  EXPECT_EQ(Blob(caCert.get()->pCertInfo->Subject), subjects[1]);

  // `added` is still held: the check flag reports it, the context survives.
  EXPECT_FALSE(CertCloseStore(store, CERT_CLOSE_STORE_CHECK_FLAG));
  EXPECT_EQ(0x8009200Fu, LastError());  // CRYPT_E_PENDING_CLOSE
  EXPECT_EQ(nullptr, added->hCertStore);
  EXPECT_EQ(CERT_V3, added->pCertInfo->dwVersion);
  EXPECT_TRUE(CertFreeCertificateContext(added));
  EXPECT_FALSE(CertCloseStore(store, 0));
  EXPECT_EQ(0x80070057u, LastError());
  EXPECT_TRUE(CertCloseStore(nullptr, 0));

  EXPECT_EQ(nullptr, CertOpenStore(reinterpret_cast<LPCSTR>(9), 0, 0, 0, nullptr));
  EXPECT_EQ(2u, LastError());  // ERROR_FILE_NOT_FOUND
  HCERTSTORE named = CertOpenStore("Memory", 0, 0, 0, nullptr);
  ASSERT_NE(nullptr, named);
  EXPECT_EQ(named, CertDuplicateStore(named));
  EXPECT_TRUE(CertCloseStore(named, CERT_CLOSE_STORE_CHECK_FLAG));
  EXPECT_TRUE(CertCloseStore(named, CERT_CLOSE_STORE_CHECK_FLAG));
}

struct KeyCase {
  const char* file;
  ALG_ID algorithm;
  DWORD bits;
};

TEST(CapiCert, PublicKeysFromCertificates) {
  HCRYPTPROV prov = 0;
  ASSERT_TRUE(CryptAcquireContextA(&prov, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT));
  const KeyCase kCases[] = {
      {"pki/ee-rsa.der", CALG_RSA_KEYX, 2048},
      {"pki/ee-ec.der", CALG_ECDSA, 256},
      {"asn1/gost2012-qualified-legal.der", CALG_KORVEX_GR3410_2012_256, 256},
      {"asn1/gost2012-qualified-ip.der", CALG_KORVEX_GR3410_2012_512, 512},
  };
  for (const KeyCase& c : kCases) {
    SCOPED_TRACE(c.file);
    Cert cert(c.file);
    ASSERT_NE(nullptr, cert.get());
    HCRYPTKEY key = 0;
    ASSERT_TRUE(CryptImportPublicKeyInfo(prov, X509_ASN_ENCODING,
                                         &cert.get()->pCertInfo->SubjectPublicKeyInfo, &key));
    DWORD value = 0, size = sizeof value;
    ASSERT_TRUE(CryptGetKeyParam(key, KP_ALGID, reinterpret_cast<BYTE*>(&value), &size, 0));
    EXPECT_EQ(c.algorithm, value);
    ASSERT_TRUE(CryptGetKeyParam(key, KP_KEYLEN, reinterpret_cast<BYTE*>(&value), &size, 0));
    EXPECT_EQ(c.bits, value);
    EXPECT_FALSE(CryptGetKeyParam(key, 1234, reinterpret_cast<BYTE*>(&value), &size, 0));
    EXPECT_EQ(0x8009000Au, LastError());
    EXPECT_TRUE(CryptDestroyKey(key));
    EXPECT_FALSE(CryptDestroyKey(key));
    EXPECT_EQ(0x80090003u, LastError());  // NTE_BAD_KEY
  }

  Cert rsa("pki/ee-rsa.der");
  CERT_PUBLIC_KEY_INFO info = rsa.get()->pCertInfo->SubjectPublicKeyInfo;
  HCRYPTKEY key = 0;
  info.PublicKey.cbData = 10;  // a cut RSAPublicKey
  EXPECT_FALSE(CryptImportPublicKeyInfo(prov, X509_ASN_ENCODING, &info, &key));
  EXPECT_EQ(0x80090015u, LastError());  // NTE_BAD_PUBLIC_KEY
  info = rsa.get()->pCertInfo->SubjectPublicKeyInfo;
  info.Algorithm.pszObjId = const_cast<char*>("1.2.3.4");
  EXPECT_FALSE(CryptImportPublicKeyInfo(prov, X509_ASN_ENCODING, &info, &key));
  EXPECT_EQ(0x80090008u, LastError());
  EXPECT_FALSE(CryptImportPublicKeyInfo(prov, X509_ASN_ENCODING, nullptr, &key));
  EXPECT_EQ(87u, LastError());
  EXPECT_FALSE(CryptImportPublicKeyInfo(0x77, X509_ASN_ENCODING,
                                        &rsa.get()->pCertInfo->SubjectPublicKeyInfo, &key));
  EXPECT_EQ(0x80090001u, LastError());
  CryptReleaseContext(prov, 0);
}

TEST(CapiCert, CCertContextOwnsItsContext) {
  std::vector<BYTE> der = ReadData("pki/tsa.der");
  ATL2::CCertContext empty;
  EXPECT_TRUE(empty.IsEmpty());
  ATL2::CCertContext cert;
  ASSERT_EQ(S_OK, cert.Create(der.data(), static_cast<DWORD>(der.size())));
  ASSERT_FALSE(cert.IsEmpty());
  ATL2::CCertContext copy(cert);
  EXPECT_EQ(cert.GetHandle(), copy.GetHandle());
  copy = empty;
  EXPECT_TRUE(copy.IsEmpty());
  PCCERT_CONTEXT raw = cert.Detach();
  EXPECT_TRUE(cert.IsEmpty());
  copy.Attach(raw);
  EXPECT_EQ(raw, static_cast<PCCERT_CONTEXT>(copy));
  EXPECT_EQ(CERT_V3, copy->pCertInfo->dwVersion);

  BYTE junk[] = {0x31, 0x00};
  EXPECT_EQ(static_cast<HRESULT>(0x8009310Bu), cert.Create(junk, sizeof junk));
  EXPECT_TRUE(cert.IsEmpty());
}

}  // namespace
