// Provider contexts: acquisition rules, PP_* parameters, reference counts
// and the ATL::CCryptProv owner.
#include <cstring>

#include <korvex/platform/atl/atlcrypt.h>

#include "capi_test_util.h"

namespace {

using capi_test::LastError;

struct TypeCase {
  DWORD type;
  const char* name;
};

TEST(CapiProvider, EveryTypeRemembersItsTypeAndName) {
  const TypeCase kCases[] = {
      {PROV_RSA_FULL, KORVEX_PROV_RSA_NAME_A},
      {PROV_RSA_AES, KORVEX_PROV_RSA_NAME_A},
      {PROV_DSS, KORVEX_PROV_DSS_NAME_A},
      {75, "Korvex GOST R 34.10-2001 Cryptographic Provider"},
      {80, "Korvex GOST R 34.10-2012 (256) Cryptographic Provider"},
      {81, "Korvex GOST R 34.10-2012 (512) Cryptographic Provider"},
  };
  for (const TypeCase& c : kCases) {
    SCOPED_TRACE(c.type);
    HCRYPTPROV prov = 0;
    ASSERT_TRUE(CryptAcquireContextA(&prov, nullptr, nullptr, c.type, CRYPT_VERIFYCONTEXT));
    DWORD type = 0, size = sizeof type;
    ASSERT_TRUE(CryptGetProvParam(prov, PP_PROVTYPE, reinterpret_cast<BYTE*>(&type), &size, 0));
    EXPECT_EQ(c.type, type);
    EXPECT_EQ(4u, size);

    DWORD nameSize = 0;
    ASSERT_TRUE(CryptGetProvParam(prov, PP_NAME, nullptr, &nameSize, 0));
    EXPECT_EQ(std::strlen(c.name) + 1, nameSize);
    std::vector<char> name(nameSize);
    ASSERT_TRUE(CryptGetProvParam(prov, PP_NAME, reinterpret_cast<BYTE*>(name.data()), &nameSize,
                                  0));
    EXPECT_STREQ(c.name, name.data());
    EXPECT_TRUE(CryptReleaseContext(prov, 0));
  }
}

TEST(CapiProvider, WideAcquireMatchesTheProviderName) {
  HCRYPTPROV prov = 0;
  ASSERT_TRUE(CryptAcquireContextW(&prov, nullptr,
                                   L"Korvex GOST R 34.10-2012 (256) Cryptographic Provider", 80,
                                   CRYPT_VERIFYCONTEXT));
  EXPECT_TRUE(CryptReleaseContext(prov, 0));
  EXPECT_FALSE(CryptAcquireContextW(&prov, nullptr, L"Some Other Provider", 80,
                                    CRYPT_VERIFYCONTEXT));
  EXPECT_EQ(0x80090019u, LastError());  // NTE_KEYSET_NOT_DEF
}

struct AcquireErrorCase {
  const char* what;
  const char* container;
  const char* provider;
  DWORD type;
  DWORD flags;
  uint32_t error;
};

TEST(CapiProvider, AcquireErrors) {
  const AcquireErrorCase kCases[] = {
      {"unknown type", nullptr, nullptr, 999, CRYPT_VERIFYCONTEXT, 0x80090014u},
      {"type 0", nullptr, nullptr, 0, CRYPT_VERIFYCONTEXT, 0x80090014u},
      {"unknown flag", nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT | 0x100, 0x80090009u},
      {"verify + new keyset", nullptr, nullptr, PROV_RSA_FULL,
       CRYPT_VERIFYCONTEXT | CRYPT_NEWKEYSET, 0x80090009u},
      {"new keyset", "c1", nullptr, PROV_RSA_FULL, CRYPT_NEWKEYSET, 0x80090010u},
      {"default container", nullptr, nullptr, PROV_RSA_FULL, 0, 0x80090016u},
      {"named container", "keys", nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT, 0x80090016u},
      {"name of another type", nullptr, KORVEX_PROV_RSA_NAME_A, 75, CRYPT_VERIFYCONTEXT,
       0x80090019u},
  };
  for (const AcquireErrorCase& c : kCases) {
    SCOPED_TRACE(c.what);
    HCRYPTPROV prov = 12345;
    SetLastError(0);
    EXPECT_FALSE(CryptAcquireContextA(&prov, c.container, c.provider, c.type, c.flags));
    EXPECT_EQ(c.error, LastError());
  }
  EXPECT_FALSE(CryptAcquireContextA(nullptr, nullptr, nullptr, PROV_RSA_FULL,
                                    CRYPT_VERIFYCONTEXT));
  EXPECT_EQ(87u, LastError());
}

TEST(CapiProvider, ParameterSizeProtocolAndErrors) {
  HCRYPTPROV prov = 0;
  ASSERT_TRUE(CryptAcquireContextA(&prov, "", nullptr, 81, CRYPT_VERIFYCONTEXT | CRYPT_SILENT));
  DWORD size = 0;
  ASSERT_TRUE(CryptGetProvParam(prov, PP_PROVTYPE, nullptr, &size, 0));
  EXPECT_EQ(4u, size);
  BYTE small[3] = {};
  size = sizeof small;
  EXPECT_FALSE(CryptGetProvParam(prov, PP_PROVTYPE, small, &size, 0));
  EXPECT_EQ(234u, LastError());  // ERROR_MORE_DATA
  EXPECT_EQ(4u, size);

  DWORD value = 0;
  size = sizeof value;
  ASSERT_TRUE(CryptGetProvParam(prov, PP_IMPTYPE, reinterpret_cast<BYTE*>(&value), &size, 0));
  EXPECT_EQ(CRYPT_IMPL_SOFTWARE, value);
  ASSERT_TRUE(CryptGetProvParam(prov, PP_VERSION, reinterpret_cast<BYTE*>(&value), &size, 0));
  EXPECT_EQ(0x200u, value);
  char container[4] = {'x', 'x', 'x', 'x'};
  size = sizeof container;
  ASSERT_TRUE(CryptGetProvParam(prov, PP_CONTAINER, reinterpret_cast<BYTE*>(container), &size, 0));
  EXPECT_EQ(1u, size);
  EXPECT_EQ('\0', container[0]);

  size = sizeof value;
  EXPECT_FALSE(CryptGetProvParam(prov, 9999, reinterpret_cast<BYTE*>(&value), &size, 0));
  EXPECT_EQ(0x8009000Au, LastError());  // NTE_BAD_TYPE
  EXPECT_FALSE(CryptGetProvParam(prov, PP_PROVTYPE, reinterpret_cast<BYTE*>(&value), &size, 1));
  EXPECT_EQ(0x80090009u, LastError());  // NTE_BAD_FLAGS
  EXPECT_FALSE(CryptGetProvParam(prov, PP_PROVTYPE, reinterpret_cast<BYTE*>(&value), nullptr, 0));
  EXPECT_EQ(87u, LastError());
  EXPECT_TRUE(CryptReleaseContext(prov, 0));
}

TEST(CapiProvider, ReferencesAndUnknownHandles) {
  HCRYPTPROV prov = 0;
  ASSERT_TRUE(CryptAcquireContextA(&prov, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT));
  ASSERT_TRUE(CryptContextAddRef(prov, nullptr, 0));
  EXPECT_TRUE(CryptReleaseContext(prov, 0));
  DWORD type = 0, size = sizeof type;
  EXPECT_TRUE(CryptGetProvParam(prov, PP_PROVTYPE, reinterpret_cast<BYTE*>(&type), &size, 0));
  // The second release frees the context even though its flags are wrong.
  EXPECT_FALSE(CryptReleaseContext(prov, 1));
  EXPECT_EQ(0x80090009u, LastError());
  EXPECT_FALSE(CryptGetProvParam(prov, PP_PROVTYPE, reinterpret_cast<BYTE*>(&type), &size, 0));
  EXPECT_EQ(0x80090001u, LastError());  // NTE_BAD_UID
  EXPECT_FALSE(CryptReleaseContext(prov, 0));
  EXPECT_EQ(0x80090001u, LastError());
  EXPECT_FALSE(CryptReleaseContext(0, 0));
  EXPECT_EQ(0x80090001u, LastError());
  EXPECT_FALSE(CryptContextAddRef(0xDEAD, nullptr, 0));
  EXPECT_EQ(0x80090001u, LastError());
}

TEST(CapiProvider, CCryptProvOwnsItsContext) {
  ATL::CCryptProv prov;
  EXPECT_EQ(0u, prov.GetHandle());
  ASSERT_EQ(S_OK, prov.Initialize(80));
  DWORD type = 0;
  ASSERT_EQ(S_OK, prov.GetProvType(&type));
  EXPECT_EQ(80u, type);
  {
    ATL::CCryptProv copy(prov);  // shares the context with its own reference
    EXPECT_EQ(prov.GetHandle(), static_cast<HCRYPTPROV>(copy));
  }
  ASSERT_EQ(S_OK, prov.GetProvType(&type));

  HCRYPTPROV raw = prov.Detach();
  EXPECT_EQ(0u, prov.GetHandle());
  prov.Attach(raw, TRUE);
  EXPECT_EQ(raw, prov.GetHandle());
  EXPECT_EQ(S_OK, prov.Release());
  DWORD size = sizeof type;
  EXPECT_FALSE(CryptGetProvParam(raw, PP_PROVTYPE, reinterpret_cast<BYTE*>(&type), &size, 0));

  EXPECT_EQ(static_cast<HRESULT>(0x80090014u), prov.Initialize(12345));
  EXPECT_EQ(0u, prov.GetHandle());
}

}  // namespace
