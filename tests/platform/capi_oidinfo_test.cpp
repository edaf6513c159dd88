// The OID information table: lookups by every key type, group walks, and
// the hash + public key -> signature search that the CAdES layer makes.
#include <cstring>
#include <string>

#include "capi_test_util.h"

namespace {

using capi_test::LastError;

std::vector<std::string> Walk(DWORD group) {
  std::vector<std::string> oids;
  EXPECT_TRUE(CryptEnumOIDInfo(
      group, 0, &oids, [](PCCRYPT_OID_INFO info, void* arg) -> BOOL {
        static_cast<std::vector<std::string>*>(arg)->push_back(info->pszOID);
        return TRUE;
      }));
  return oids;
}

TEST(CapiOidInfo, EveryEntryIsWellFormed) {
  std::vector<PCCRYPT_OID_INFO> all;
  ASSERT_TRUE(CryptEnumOIDInfo(0, 0, &all, [](PCCRYPT_OID_INFO info, void* arg) -> BOOL {
    static_cast<std::vector<PCCRYPT_OID_INFO>*>(arg)->push_back(info);
    return TRUE;
  }));
  ASSERT_GT(all.size(), 80u);
  for (PCCRYPT_OID_INFO info : all) {
    SCOPED_TRACE(info->pszOID);
    EXPECT_EQ(sizeof(CRYPT_OID_INFO), info->cbSize);
    EXPECT_EQ(64u, info->cbSize);
    EXPECT_GE(info->dwGroupId, 1u);
    EXPECT_LE(info->dwGroupId, 9u);
    ASSERT_NE(nullptr, info->pwszName);
    EXPECT_NE(0, info->pwszName[0]);
    // Each OID is found again by OID text within its group.
    EXPECT_EQ(info, CryptFindOIDInfo(CRYPT_OID_INFO_OID_KEY, const_cast<char*>(info->pszOID),
                                     info->dwGroupId));
    if (info->dwGroupId == CRYPT_RDN_ATTR_OID_GROUP_ID) {
      // A zero-terminated DWORD array of value types.
      ASSERT_GE(info->ExtraInfo.cbData, 8u);
      ASSERT_EQ(0u, info->ExtraInfo.cbData % 4);
      DWORD last;
      std::memcpy(&last, info->ExtraInfo.pbData + info->ExtraInfo.cbData - 4, 4);
      EXPECT_EQ(0u, last);
    }
    if (info->dwGroupId == CRYPT_SIGN_ALG_OID_GROUP_ID) {
      ASSERT_EQ(12u, info->ExtraInfo.cbData);
      DWORD keyAlg;
      std::memcpy(&keyAlg, info->ExtraInfo.pbData, 4);
      // RSA signatures name the signature key id, the key entry the exchange one.
      if (keyAlg == CALG_RSA_SIGN) keyAlg = CALG_RSA_KEYX;
      EXPECT_NE(nullptr, CryptFindOIDInfo(CRYPT_OID_INFO_ALGID_KEY, &keyAlg, 0)) << keyAlg;
    }
  }
}

struct GroupCase {
  DWORD group;
  std::vector<std::string> contains;
};

TEST(CapiOidInfo, GroupsHoldRsaEcAndGost) {
  const GroupCase kCases[] = {
      {CRYPT_HASH_ALG_OID_GROUP_ID,
       {"1.3.14.3.2.26", "2.16.840.1.101.3.4.2.1", "2.16.840.1.101.3.4.2.3", "1.2.643.2.2.9",
        "1.2.643.7.1.1.2.2", "1.2.643.7.1.1.2.3"}},
      {CRYPT_ENCRYPT_ALG_OID_GROUP_ID,
       {"2.16.840.1.101.3.4.1.42", "1.2.643.2.2.21", "1.2.643.7.1.1.5.2"}},
      {CRYPT_PUBKEY_ALG_OID_GROUP_ID,
       {"1.2.840.113549.1.1.1", "1.2.840.10045.2.1", "1.2.643.2.2.19", "1.2.643.7.1.1.1.1",
        "1.2.643.7.1.1.1.2"}},
      {CRYPT_SIGN_ALG_OID_GROUP_ID,
       {"1.2.840.113549.1.1.11", "1.2.840.10045.4.3.2", "1.2.643.2.2.3", "1.2.643.7.1.1.3.2",
        "1.2.643.7.1.1.3.3"}},
      {CRYPT_RDN_ATTR_OID_GROUP_ID, {"2.5.4.3", "2.5.4.6", "1.2.643.100.1", "1.2.643.3.131.1.1"}},
      {CRYPT_EXT_OR_ATTR_OID_GROUP_ID,
       {"2.5.29.15", "1.2.840.113549.1.9.16.2.47", "1.2.840.113549.1.9.16.2.14"}},
      {CRYPT_ENHKEY_USAGE_OID_GROUP_ID, {"1.3.6.1.5.5.7.3.4", "1.3.6.1.5.5.7.3.8"}},
      {CRYPT_POLICY_OID_GROUP_ID, {"2.5.29.32.0", "1.2.643.100.113.1"}},
      {CRYPT_TEMPLATE_OID_GROUP_ID, {"1.3.6.1.4.1.311.21.7"}},
  };
  size_t total = 0;
  for (const GroupCase& c : kCases) {
    SCOPED_TRACE(c.group);
    std::vector<std::string> oids = Walk(c.group);
    total += oids.size();
    for (const std::string& oid : c.contains) {
      EXPECT_NE(oids.end(), std::find(oids.begin(), oids.end(), oid)) << oid;
    }
  }
  EXPECT_EQ(Walk(0).size(), total);
}

TEST(CapiOidInfo, FindByNameAlgIdAndSignKey) {
  PCCRYPT_OID_INFO info = CryptFindOIDInfo(CRYPT_OID_INFO_NAME_KEY, const_cast<wchar_t*>(L"SHA256"),
                                           CRYPT_HASH_ALG_OID_GROUP_ID);
  ASSERT_NE(nullptr, info);
  EXPECT_STREQ("2.16.840.1.101.3.4.2.1", info->pszOID);
  EXPECT_EQ(CALG_SHA_256, info->Algid);

  ALG_ID alg = CALG_KORVEX_GR3411_2012_256;
  info = CryptFindOIDInfo(CRYPT_OID_INFO_ALGID_KEY, &alg, CRYPT_HASH_ALG_OID_GROUP_ID);
  ASSERT_NE(nullptr, info);
  EXPECT_STREQ("1.2.643.7.1.1.2.2", info->pszOID);
  EXPECT_STREQ(L"GOST R 34.11-2012 256 bit", info->pwszName);

  struct SignCase {
    ALG_ID hash, key;
    const char* oid;
  };
  const SignCase kCases[] = {
      {CALG_SHA_256, CALG_RSA_KEYX, "1.2.840.113549.1.1.11"},
      {CALG_SHA_256, CALG_RSA_SIGN, "1.2.840.113549.1.1.11"},
      {CALG_SHA1, CALG_RSA_KEYX, "1.2.840.113549.1.1.5"},
      {CALG_SHA_384, CALG_ECDSA, "1.2.840.10045.4.3.3"},
      {CALG_KORVEX_GR3411_94, CALG_KORVEX_GR3410_2001, "1.2.643.2.2.3"},
      {CALG_KORVEX_GR3411_2012_256, CALG_KORVEX_GR3410_2012_256, "1.2.643.7.1.1.3.2"},
      {CALG_KORVEX_GR3411_2012_512, CALG_KORVEX_GR3410_2012_512, "1.2.643.7.1.1.3.3"},
  };
  for (const SignCase& c : kCases) {
    SCOPED_TRACE(c.oid);
    ALG_ID pair[2] = {c.hash, c.key};
    info = CryptFindOIDInfo(CRYPT_OID_INFO_SIGN_KEY, pair, CRYPT_SIGN_ALG_OID_GROUP_ID);
    ASSERT_NE(nullptr, info);
    EXPECT_STREQ(c.oid, info->pszOID);
  }
  ALG_ID mismatch[2] = {CALG_KORVEX_GR3411_2012_512, CALG_RSA_KEYX};
  EXPECT_EQ(nullptr, CryptFindOIDInfo(CRYPT_OID_INFO_SIGN_KEY, mismatch, 0));
  EXPECT_EQ(nullptr, CryptFindOIDInfo(CRYPT_OID_INFO_OID_KEY, const_cast<char*>("1.2.3.4"), 0));
  EXPECT_EQ(nullptr, CryptFindOIDInfo(CRYPT_OID_INFO_OID_KEY, nullptr, 0));
  EXPECT_EQ(nullptr, CryptFindOIDInfo(99, const_cast<char*>("2.5.4.3"), 0));
  // The OID of a group other than the one asked for is not found.
  EXPECT_EQ(nullptr, CryptFindOIDInfo(CRYPT_OID_INFO_OID_KEY, const_cast<char*>("2.5.4.3"),
                                      CRYPT_HASH_ALG_OID_GROUP_ID));
}

TEST(CapiOidInfo, RdnEntriesListValueTypes) {
  PCCRYPT_OID_INFO info =
      CryptFindOIDInfo(CRYPT_OID_INFO_OID_KEY, const_cast<char*>("1.2.643.100.3"), 0);
  ASSERT_NE(nullptr, info);
  EXPECT_STREQ(L"SNILS", info->pwszName);
  ASSERT_EQ(8u, info->ExtraInfo.cbData);
  DWORD types[2];
  std::memcpy(types, info->ExtraInfo.pbData, sizeof types);
  EXPECT_EQ(CERT_RDN_NUMERIC_STRING, types[0]);
  EXPECT_EQ(0u, types[1]);
}

// The walk of the signature-algorithm search: the hash group, then for a
// matching hash the public-key group, then CryptFindOIDInfo by sign key.
struct Search {
  std::string hashOid, keyOid;
  ALG_ID hashAlg = 0;
  PCCRYPT_OID_INFO found = nullptr;
  int hashEntriesSeen = 0;
};

PCCRYPT_OID_INFO FindSignature(const std::string& hashOid, const std::string& keyOid,
                               int* hashEntriesSeen) {
  Search search{hashOid, keyOid};
  CryptEnumOIDInfo(CRYPT_HASH_ALG_OID_GROUP_ID, 0, &search,
                   [](PCCRYPT_OID_INFO info, void* arg) -> BOOL {
                     auto* s = static_cast<Search*>(arg);
                     ++s->hashEntriesSeen;
                     if (s->hashOid != info->pszOID) return TRUE;
                     s->hashAlg = info->Algid;
                     CryptEnumOIDInfo(CRYPT_PUBKEY_ALG_OID_GROUP_ID, 0, s,
                                      [](PCCRYPT_OID_INFO key, void* arg2) -> BOOL {
                                        auto* s2 = static_cast<Search*>(arg2);
                                        if (s2->keyOid != key->pszOID) return TRUE;
                                        ALG_ID pair[2] = {s2->hashAlg, key->Algid};
                                        s2->found = CryptFindOIDInfo(CRYPT_OID_INFO_SIGN_KEY, pair,
                                                                     CRYPT_SIGN_ALG_OID_GROUP_ID);
                                        return s2->found == nullptr;
                                      });
                     return s->found == nullptr;
                   });
  *hashEntriesSeen = search.hashEntriesSeen;
  return search.found;
}

TEST(CapiOidInfo, SignatureSearchForHashAndKey) {
  int seen = 0;
  PCCRYPT_OID_INFO info = FindSignature("1.2.643.7.1.1.2.2", "1.2.643.7.1.1.1.1", &seen);
  ASSERT_NE(nullptr, info);
  EXPECT_STREQ("1.2.643.7.1.1.3.2", info->pszOID);
  info = FindSignature("2.16.840.1.101.3.4.2.1", "1.2.840.113549.1.1.1", &seen);
  ASSERT_NE(nullptr, info);
  EXPECT_STREQ("1.2.840.113549.1.1.11", info->pszOID);
  info = FindSignature("2.16.840.1.101.3.4.2.2", "1.2.840.10045.2.1", &seen);
  ASSERT_NE(nullptr, info);
  EXPECT_STREQ("1.2.840.10045.4.3.3", info->pszOID);

  size_t hashCount = Walk(CRYPT_HASH_ALG_OID_GROUP_ID).size();
  EXPECT_EQ(nullptr, FindSignature("1.2.3.4.5", "1.2.840.113549.1.1.1", &seen));
  EXPECT_EQ(static_cast<int>(hashCount), seen);  // the whole hash group was walked
  EXPECT_EQ(nullptr, FindSignature("1.2.643.7.1.1.2.3", "1.2.840.113549.1.1.1", &seen));
}

TEST(CapiOidInfo, EnumStopsWhenTheCallbackSaysSo) {
  int calls = 0;
  SetLastError(0);
  EXPECT_FALSE(CryptEnumOIDInfo(0, 0, &calls, [](PCCRYPT_OID_INFO, void* arg) -> BOOL {
    return ++*static_cast<int*>(arg) < 3;
  }));
  EXPECT_EQ(3, calls);
  EXPECT_EQ(0u, LastError());
  EXPECT_FALSE(CryptEnumOIDInfo(0, 0, nullptr, nullptr));
  EXPECT_EQ(0x80070057u, LastError());
  EXPECT_FALSE(CryptEnumOIDInfo(0, 1, nullptr, [](PCCRYPT_OID_INFO, void*) -> BOOL { return 1; }));
  EXPECT_EQ(0x80070057u, LastError());
  EXPECT_TRUE(Walk(42).empty());
}

}  // namespace
