// Hash objects: digests of "abc" (FIPS 180-4 examples, RFC 1321 A.5), the
// hash state machine and the error codes of bad calls.
#include "capi_test_util.h"

namespace {

using capi_test::Hex;
using capi_test::LastError;

class CapiHash : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(CryptAcquireContextA(&prov_, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT));
  }
  void TearDown() override { CryptReleaseContext(prov_, 0); }

  std::string Digest(HCRYPTHASH hash) {
    DWORD size = 0;
    if (!CryptGetHashParam(hash, HP_HASHVAL, nullptr, &size, 0)) return "size query failed";
    std::vector<BYTE> value(size);
    if (!CryptGetHashParam(hash, HP_HASHVAL, value.data(), &size, 0)) return "read failed";
    return Hex(value.data(), size);
  }

  HCRYPTPROV prov_ = 0;
};

struct DigestCase {
  ALG_ID algorithm;
  DWORD size;
  const char* abc;
};

TEST_F(CapiHash, DigestsOfAbc) {
  const DigestCase kCases[] = {
      {CALG_MD5, 16, "900150983cd24fb0d6963f7d28e17f72"},
      {CALG_SHA1, 20, "a9993e364706816aba3e25717850c26c9cd0d89d"},
      {CALG_SHA_256, 32, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
      {CALG_SHA_384, 48,
       "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed8086072ba1e7cc2358baeca1"
       "34c825a7"},
      {CALG_SHA_512, 64,
       "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a2192992a274fc1a836ba3c23"
       "a3feebbd454d4423643ce80e2a9ac94fa54ca49f"},
  };
  for (const DigestCase& c : kCases) {
    SCOPED_TRACE(c.algorithm);
    HCRYPTHASH hash = 0;
    ASSERT_TRUE(CryptCreateHash(prov_, c.algorithm, 0, 0, &hash));
    // "abc" in two pieces, the second through CRYPT_USERDATA.
    ASSERT_TRUE(CryptHashData(hash, reinterpret_cast<const BYTE*>("a"), 1, 0));
    ASSERT_TRUE(CryptHashData(hash, reinterpret_cast<const BYTE*>("bc"), 2, CRYPT_USERDATA));
    DWORD value = 0, size = sizeof value;
    ASSERT_TRUE(CryptGetHashParam(hash, HP_HASHSIZE, reinterpret_cast<BYTE*>(&value), &size, 0));
    EXPECT_EQ(c.size, value);
    ASSERT_TRUE(CryptGetHashParam(hash, HP_ALGID, reinterpret_cast<BYTE*>(&value), &size, 0));
    EXPECT_EQ(c.algorithm, value);
    EXPECT_EQ(c.abc, Digest(hash));
    // The value can be read again; adding data is refused from now on.
    EXPECT_EQ(c.abc, Digest(hash));
    EXPECT_FALSE(CryptHashData(hash, reinterpret_cast<const BYTE*>("d"), 1, 0));
    EXPECT_EQ(0x8009000Cu, LastError());  // NTE_BAD_HASH_STATE
    EXPECT_TRUE(CryptDestroyHash(hash));
  }
}

TEST_F(CapiHash, ShortBufferDoesNotFinishTheHash) {
  HCRYPTHASH hash = 0;
  ASSERT_TRUE(CryptCreateHash(prov_, CALG_SHA_256, 0, 0, &hash));
  ASSERT_TRUE(CryptHashData(hash, reinterpret_cast<const BYTE*>("ab"), 2, 0));
  BYTE small[31];
  DWORD size = sizeof small;
  EXPECT_FALSE(CryptGetHashParam(hash, HP_HASHVAL, small, &size, 0));
  EXPECT_EQ(234u, LastError());
  EXPECT_EQ(32u, size);
  ASSERT_TRUE(CryptHashData(hash, reinterpret_cast<const BYTE*>("c"), 1, 0));
  EXPECT_EQ("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", Digest(hash));
  EXPECT_TRUE(CryptDestroyHash(hash));
}

TEST_F(CapiHash, DuplicateCopiesTheState) {
  HCRYPTHASH hash = 0, copy = 0;
  ASSERT_TRUE(CryptCreateHash(prov_, CALG_SHA1, 0, 0, &hash));
  ASSERT_TRUE(CryptHashData(hash, reinterpret_cast<const BYTE*>("ab"), 2, 0));
  ASSERT_TRUE(CryptDuplicateHash(hash, nullptr, 0, &copy));
  ASSERT_TRUE(CryptHashData(hash, reinterpret_cast<const BYTE*>("c"), 1, 0));
  ASSERT_TRUE(CryptHashData(copy, reinterpret_cast<const BYTE*>("c"), 1, 0));
  EXPECT_EQ("a9993e364706816aba3e25717850c26c9cd0d89d", Digest(hash));
  EXPECT_EQ("a9993e364706816aba3e25717850c26c9cd0d89d", Digest(copy));
  EXPECT_TRUE(CryptDestroyHash(hash));
  EXPECT_TRUE(CryptDestroyHash(copy));
}

TEST_F(CapiHash, HashOutlivesItsProviderHandle) {
  HCRYPTPROV prov = 0;
  ASSERT_TRUE(CryptAcquireContextA(&prov, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT));
  HCRYPTHASH hash = 0;
  ASSERT_TRUE(CryptCreateHash(prov, CALG_SHA_256, 0, 0, &hash));
  ASSERT_TRUE(CryptReleaseContext(prov, 0));
  ASSERT_TRUE(CryptHashData(hash, reinterpret_cast<const BYTE*>("abc"), 3, 0));
  EXPECT_EQ("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", Digest(hash));
  EXPECT_TRUE(CryptDestroyHash(hash));
}

TEST_F(CapiHash, GostHashesWhenProvided) {
  const ALG_ID kGost[] = {CALG_KORVEX_GR3411_94, CALG_KORVEX_GR3411_2012_256,
                          CALG_KORVEX_GR3411_2012_512};
  const DWORD kSizes[] = {32, 32, 64};
  for (size_t i = 0; i < 3; ++i) {
    SCOPED_TRACE(kGost[i]);
    HCRYPTHASH hash = 0;
    if (!CryptCreateHash(prov_, kGost[i], 0, 0, &hash)) {
      // This OpenSSL has no GOST provider or engine.
      EXPECT_EQ(0x80090008u, LastError());  // NTE_BAD_ALGID
      continue;
    }
    DWORD size = 0, length = sizeof size;
    ASSERT_TRUE(CryptGetHashParam(hash, HP_HASHSIZE, reinterpret_cast<BYTE*>(&size), &length, 0));
    EXPECT_EQ(kSizes[i], size);
    EXPECT_TRUE(CryptDestroyHash(hash));
  }
}

TEST_F(CapiHash, Errors) {
  HCRYPTHASH hash = 0;
  EXPECT_FALSE(CryptCreateHash(prov_, CALG_AES_128, 0, 0, &hash));
  EXPECT_EQ(0x80090008u, LastError());
  EXPECT_FALSE(CryptCreateHash(prov_, CALG_SHA1, 0, 1, &hash));
  EXPECT_EQ(0x80090009u, LastError());
  EXPECT_FALSE(CryptCreateHash(prov_, CALG_SHA1, 42, 0, &hash));
  EXPECT_EQ(0x80090003u, LastError());  // NTE_BAD_KEY
  EXPECT_FALSE(CryptCreateHash(prov_, CALG_SHA1, 0, 0, nullptr));
  EXPECT_EQ(87u, LastError());
  EXPECT_FALSE(CryptCreateHash(0xBAD, CALG_SHA1, 0, 0, &hash));
  EXPECT_EQ(0x80090001u, LastError());

  ASSERT_TRUE(CryptCreateHash(prov_, CALG_SHA1, 0, 0, &hash));
  EXPECT_FALSE(CryptHashData(hash, nullptr, 1, 0));
  EXPECT_EQ(87u, LastError());
  EXPECT_TRUE(CryptHashData(hash, nullptr, 0, 0));
  EXPECT_FALSE(CryptHashData(hash, reinterpret_cast<const BYTE*>("x"), 1, 2));
  EXPECT_EQ(0x80090009u, LastError());
  DWORD value = 0, size = sizeof value;
  EXPECT_FALSE(CryptGetHashParam(hash, 3, reinterpret_cast<BYTE*>(&value), &size, 0));
  EXPECT_EQ(0x8009000Au, LastError());
  EXPECT_FALSE(CryptGetHashParam(hash, HP_ALGID, reinterpret_cast<BYTE*>(&value), &size, 1));
  EXPECT_EQ(0x80090009u, LastError());
  EXPECT_TRUE(CryptDestroyHash(hash));

  EXPECT_FALSE(CryptHashData(hash, reinterpret_cast<const BYTE*>("x"), 1, 0));
  EXPECT_EQ(0x80090002u, LastError());  // NTE_BAD_HASH
  EXPECT_FALSE(CryptGetHashParam(hash, HP_ALGID, reinterpret_cast<BYTE*>(&value), &size, 0));
  EXPECT_EQ(0x80090002u, LastError());
  EXPECT_FALSE(CryptDestroyHash(hash));
  EXPECT_EQ(0x80090002u, LastError());
  EXPECT_FALSE(CryptDestroyHash(0));
  EXPECT_EQ(0x80090002u, LastError());
}

}  // namespace
