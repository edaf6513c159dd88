// The signature algorithm of a hash and a public-key algorithm, found by the
// two nested walks of the OID information table.
#include <gtest/gtest.h>
#include <korvex/cades/OidInfoEnum.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/capi/hash.h>

#include <string>
#include "../common/thrown_code.h"

namespace {

const char kSha1[] = "1.3.14.3.2.26";
const char kMd5[] = "1.2.840.113549.2.5";
const char kSha256[] = "2.16.840.1.101.3.4.2.1";
const char kSha384[] = "2.16.840.1.101.3.4.2.2";
const char kSha512[] = "2.16.840.1.101.3.4.2.3";
const char kGost94[] = "1.2.643.2.2.9";
const char kStreebog256[] = "1.2.643.7.1.1.2.2";
const char kStreebog512[] = "1.2.643.7.1.1.2.3";
const char kRsa[] = "1.2.840.113549.1.1.1";
const char kEc[] = "1.2.840.10045.2.1";
const char kGost2001[] = "1.2.643.2.2.19";
const char kGost2012_256[] = "1.2.643.7.1.1.1.1";
const char kGost2012_512[] = "1.2.643.7.1.1.1.2";

constexpr HRESULT kFail = static_cast<HRESULT>(0x80004005u);

PCCRYPT_OID_INFO SignatureEntry(const char* oid) {
  return CryptFindOIDInfo(CRYPT_OID_INFO_OID_KEY, const_cast<char*>(oid),
                          CRYPT_SIGN_ALG_OID_GROUP_ID);
}

TEST(FindSignatureAlgorithm, KnownPairs) {
  struct Case {
    const char* hash;
    const char* key;
    const char* signature;
  };
  const Case kCases[] = {
      {kSha256, kRsa, "1.2.840.113549.1.1.11"},  // sha256WithRSAEncryption
      {kSha1, kRsa, "1.2.840.113549.1.1.5"},
      {kSha384, kRsa, "1.2.840.113549.1.1.12"},
      {kSha512, kRsa, "1.2.840.113549.1.1.13"},
      {kSha256, kEc, "1.2.840.10045.4.3.2"},  // ecdsa-with-SHA256
      {kSha1, kEc, "1.2.840.10045.4.1"},
      {kSha384, kEc, "1.2.840.10045.4.3.3"},
      {kSha512, kEc, "1.2.840.10045.4.3.4"},
      // GOST R 34.10-2012 with GOST R 34.11-2012 (RFC 9215 / RFC 7091).
      {kStreebog256, kGost2012_256, "1.2.643.7.1.1.3.2"},
      {kStreebog512, kGost2012_512, "1.2.643.7.1.1.3.3"},
      {kGost94, kGost2001, "1.2.643.2.2.3"},  // GOST R 34.10-2001 (RFC 4491)
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(std::string(c.hash) + " + " + c.key);
    PCCRYPT_OID_INFO found = ATL2::FindSignatureAlgorithm(c.hash, c.key);
    ASSERT_NE(nullptr, found);
    EXPECT_STREQ(c.signature, found->pszOID);
    EXPECT_EQ(CRYPT_SIGN_ALG_OID_GROUP_ID, found->dwGroupId);
    EXPECT_EQ(SignatureEntry(c.signature), found);  // the table's own entry
  }
}

TEST(FindSignatureAlgorithm, NothingFound) {
  struct Case {
    const char* what;
    const char* hash;
    const char* key;
  };
  const Case kCases[] = {
      {"unknown hash", "1.2.3.4", kRsa},
      {"public-key OID as hash", kRsa, kRsa},
      {"hash OID with a trailing blank", "2.16.840.1.101.3.4.2.1 ", kRsa},
      {"prefix of a hash OID", "2.16.840.1.101.3.4.2", kRsa},
      {"empty hash", "", kRsa},
      {"unknown key", kSha256, "1.2.3.4"},
      {"signature OID as key", kSha256, "1.2.840.113549.1.1.11"},
      {"no md5 signature", kMd5, kRsa},
      {"SHA-256 with a GOST key", kSha256, kGost2012_256},
      {"Streebog with RSA", kStreebog256, kRsa},
      {"Streebog-256 with a 512-bit GOST key", kStreebog256, kGost2012_512},
      {"Streebog-512 with a 256-bit GOST key", kStreebog512, kGost2012_256},
      {"null hash", nullptr, kRsa},
      {"null key", kSha256, nullptr},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(nullptr, ATL2::FindSignatureAlgorithm(c.hash, c.key));
  }
}

TEST(CFindSignatureAlgorithmEnum, FoundStopsTheWalkAndSetsStatus) {
  ATL2::CFindSignatureAlgorithmEnum walk(kSha256, kEc);
  EXPECT_EQ(nullptr, walk.GetResult());
  EXPECT_EQ(0x80092004u, walk.GetStatus());
  EXPECT_FALSE(walk.Enum());  // stopped at sha256
  EXPECT_EQ(SignatureEntry("1.2.840.10045.4.3.2"), walk.GetResult());
  EXPECT_EQ(0u, walk.GetStatus());
}

TEST(CFindSignatureAlgorithmEnum, UnknownHashWalksTheWholeGroup) {
  ATL2::CFindSignatureAlgorithmEnum walk("1.2.3.4", kRsa);
  EXPECT_TRUE(walk.Enum());  // every hash entry visited
  EXPECT_EQ(nullptr, walk.GetResult());
  EXPECT_EQ(ATL2::CFindSignatureAlgorithmEnum::kNotFound, walk.GetStatus());
}

TEST(CFindSignatureAlgorithmEnum, LaterEntryWithTheSameOidIsTried) {
  // Two hash entries with the wanted OID: the first (MD5's ALG_ID) pairs
  // with no RSA signature, so the walk goes on; the second finds one.
  ATL2::CFindSignatureAlgorithmEnum walk(kSha256, kRsa);
  EXPECT_TRUE(walk.OnHashAlg(kSha256, L"first", CALG_MD5));
  EXPECT_EQ(nullptr, walk.GetResult());
  EXPECT_EQ(0x80092004u, walk.GetStatus());
  EXPECT_TRUE(walk.OnHashAlg(kSha1, L"other OID", CALG_SHA_256));
  EXPECT_EQ(nullptr, walk.GetResult());
  EXPECT_FALSE(walk.OnHashAlg(kSha256, L"second", CALG_SHA_256));
  EXPECT_EQ(SignatureEntry("1.2.840.113549.1.1.11"), walk.GetResult());
  EXPECT_EQ(0u, walk.GetStatus());
}

TEST(CFindSignatureAlgPubKeyEnum, LooksUpThePairForTheWantedKey) {
  ATL2::CFindSignatureAlgPubKeyEnum keys(CALG_SHA_384, kEc);
  EXPECT_FALSE(keys.Enum());
  EXPECT_EQ(SignatureEntry("1.2.840.10045.4.3.3"), keys.GetResult());

  ATL2::CFindSignatureAlgPubKeyEnum none(CALG_MD5, kRsa);
  EXPECT_TRUE(none.Enum());  // the key matched but the pair has no signature
  EXPECT_EQ(nullptr, none.GetResult());

  // Handler arguments: another OID goes on; the wanted one with the key's
  // ALG_ID from the caller (RSA signature and key-exchange ids are one key).
  ATL2::CFindSignatureAlgPubKeyEnum direct(CALG_SHA1, kRsa);
  EXPECT_TRUE(direct.OnPubKeyAlg(kEc, L"ECC", CALG_ECDSA, 0));
  EXPECT_EQ(nullptr, direct.GetResult());
  EXPECT_FALSE(direct.OnPubKeyAlg(kRsa, L"RSA", CALG_RSA_SIGN, 0));
  EXPECT_EQ(SignatureEntry("1.2.840.113549.1.1.5"), direct.GetResult());
}

TEST(CFindSignatureAlgorithmEnum, NullOidInAHandlerFails) {
  using korvextest::CodeOf;
  ATL2::CFindSignatureAlgorithmEnum hashes(kSha256, kRsa);
  EXPECT_EQ(kFail, CodeOf([&] { hashes.OnHashAlg(nullptr, L"x", CALG_SHA_256); }));
  ATL2::CFindSignatureAlgPubKeyEnum keys(CALG_SHA_256, kRsa);
  EXPECT_EQ(kFail, CodeOf([&] { keys.OnPubKeyAlg(nullptr, L"x", CALG_RSA_KEYX, 0); }));
  // A null wanted OID is the empty text: it matches nothing.
  ATL2::CFindSignatureAlgorithmEnum nullHash(nullptr, kRsa);
  EXPECT_TRUE(nullHash.Enum());
  EXPECT_EQ(nullptr, nullHash.GetResult());
}

}  // namespace
