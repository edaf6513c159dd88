// CryptVerifySignature on certificate signatures of tests/data/pki: the
// intermediate CA's RSA signature over the TBSCertificate of ee-rsa.
#include <algorithm>

#include "capi_test_util.h"

namespace {

using capi_test::Cert;
using capi_test::LastError;
using capi_test::ReadData;

// The TBSCertificate (RFC 5280 4.1) and the signature octets of a
// certificate whose outer and TBS lengths take two octets (30 82 LL LL).
struct SignedParts {
  std::vector<BYTE> tbs;
  std::vector<BYTE> signature;  // big-endian, as the BIT STRING holds it
};

SignedParts SplitCertificate(const std::vector<BYTE> &der, size_t signatureSize) {
  SignedParts parts;
  size_t tbsLength = (static_cast<size_t>(der[6]) << 8) | der[7];
  parts.tbs.assign(der.begin() + 4, der.begin() + 8 + static_cast<long>(tbsLength));
  parts.signature.assign(der.end() - static_cast<long>(signatureSize), der.end());
  return parts;
}

class VerifySignature : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(CryptAcquireContextA(&prov_, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT));
    Cert issuer("pki/intermediate-ca.der");
    ASSERT_NE(nullptr, issuer.get());
    ASSERT_TRUE(CryptImportPublicKeyInfo(prov_, X509_ASN_ENCODING,
                                         &issuer.get()->pCertInfo->SubjectPublicKeyInfo, &key_));
    parts_ = SplitCertificate(ReadData("pki/ee-rsa.der"), 256);
  }
  void TearDown() override {
    if (key_) CryptDestroyKey(key_);
    CryptReleaseContext(prov_, 0);
  }

  HCRYPTHASH Hash(ALG_ID algorithm, const std::vector<BYTE> &data) {
    HCRYPTHASH hash = 0;
    EXPECT_TRUE(CryptCreateHash(prov_, algorithm, 0, 0, &hash));
    EXPECT_TRUE(CryptHashData(hash, data.data(), static_cast<DWORD>(data.size()), 0));
    return hash;
  }

  // Verify hashes data and checks signature (given big-endian) with the key.
  BOOL Verify(ALG_ID algorithm, const std::vector<BYTE> &data, std::vector<BYTE> signature) {
    std::reverse(signature.begin(), signature.end());
    HCRYPTHASH hash = Hash(algorithm, data);
    BOOL ok = CryptVerifySignatureA(hash, signature.data(), static_cast<DWORD>(signature.size()),
                                    key_, nullptr, 0);
    DWORD error = GetLastError();
    CryptDestroyHash(hash);
    SetLastError(error);
    return ok;
  }

  HCRYPTPROV prov_ = 0;
  HCRYPTKEY key_ = 0;
  SignedParts parts_;
};

TEST_F(VerifySignature, RsaPkcs1OverSha256) {
  EXPECT_TRUE(Verify(CALG_SHA_256, parts_.tbs, parts_.signature));

  struct Failure {
    const char *what;
    ALG_ID algorithm;
    size_t flipByte;  // index into the TBS (or SIZE_MAX: none)
    bool bigEndian;   // pass the signature without reversing it
  };
  const Failure kFailures[] = {
      {"another hash algorithm", CALG_SHA1, SIZE_MAX, false},
      {"one byte of the data changed", CALG_SHA_256, 100, false},
      {"the signature in CMS byte order", CALG_SHA_256, SIZE_MAX, true},
  };
  for (const Failure &f : kFailures) {
    SCOPED_TRACE(f.what);
    std::vector<BYTE> tbs = parts_.tbs;
    if (f.flipByte != SIZE_MAX) tbs[f.flipByte] ^= 1;
    std::vector<BYTE> signature = parts_.signature;
    if (f.bigEndian) std::reverse(signature.begin(), signature.end());
    EXPECT_FALSE(Verify(f.algorithm, tbs, signature));
    EXPECT_EQ(0x80090006u, LastError());  // NTE_BAD_SIGNATURE
  }
}

TEST_F(VerifySignature, ArgumentErrors) {
  HCRYPTHASH hash = Hash(CALG_SHA_256, parts_.tbs);
  const BYTE sig[1] = {0};
  EXPECT_FALSE(CryptVerifySignatureA(hash, sig, 1, 0x1234, nullptr, 0));
  EXPECT_EQ(0x80090003u, LastError());  // NTE_BAD_KEY
  EXPECT_FALSE(CryptVerifySignatureA(hash, sig, 1, key_, nullptr, 1));
  EXPECT_EQ(0x80090009u, LastError());  // NTE_BAD_FLAGS
  EXPECT_FALSE(CryptVerifySignatureA(hash, nullptr, 1, key_, nullptr, 0));
  EXPECT_EQ(87u, LastError());  // ERROR_INVALID_PARAMETER
  EXPECT_FALSE(CryptVerifySignatureA(0x1234, sig, 1, key_, nullptr, 0));
  EXPECT_EQ(0x80090002u, LastError());  // NTE_BAD_HASH
  EXPECT_TRUE(CryptDestroyHash(hash));
}

}  // namespace
