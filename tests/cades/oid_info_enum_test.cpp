// The OID information enumerators: what each group's handler receives for a
// known entry of the provider's table and for hand-made entries at the
// edges of the extra information, how walks stop and fail, and the
// signature-algorithm search.
#include <gtest/gtest.h>
#include <korvex/cades/OidInfoEnum.h>
#include <korvex/platform/atl/atlexcept.h>
#include <korvex/platform/capi/hash.h>
#include <korvex/platform/capi/provider.h>

#include <functional>
#include <string>
#include <vector>
#include "../common/thrown_code.h"

namespace {

using ATL2::COidInfoEnum;

// One handler call, whatever the group: the pointers and up to five words.
struct Call {
  std::string oid;
  std::wstring name;
  std::vector<unsigned int> words;
  bool operator==(const Call& o) const {
    return oid == o.oid && name == o.name && words == o.words;
  }
};

std::string Text(const char* s) { return s ? s : "(null)"; }
std::wstring Text(const wchar_t* s) { return s ? s : L"(null)"; }

void PrintTo(const Call& c, std::ostream* os) {
  *os << c.oid << " [";
  for (wchar_t w : c.name) *os << static_cast<char>(w < 128 ? w : '?');
  *os << "]";
  for (unsigned int w : c.words) *os << " 0x" << std::hex << w << std::dec;
}

// CallLog keeps the handler calls of a walk and says whether to go on:
// true while fewer than `stopAfter` calls have been made.
struct CallLog {
  std::vector<Call> calls;
  size_t stopAfter = SIZE_MAX;
  const Call* Find(const std::string& oid) const {
    for (const Call& c : calls) {
      if (c.oid == oid) return &c;
    }
    return nullptr;
  }
  bool Record(Call call) {
    calls.push_back(std::move(call));
    return calls.size() < stopAfter;
  }
};

// Recorder<E> is enumerator E with a handler that records into its CallLog.
template <typename E>
class Recorder;

template <>
class Recorder<ATL2::CHashAlgorithmOidEnum> : public ATL2::CHashAlgorithmOidEnum, public CallLog {
  bool OnHashAlg(const char* oid, const wchar_t* name, unsigned int algId) override {
    return Record({Text(oid), Text(name), {algId}});
  }
};
template <>
class Recorder<ATL2::CEncryptionAlgorithmOidEnum> : public ATL2::CEncryptionAlgorithmOidEnum,
                                                    public CallLog {
  bool OnEncryptionAlg(const char* oid, const wchar_t* name, unsigned int algId) override {
    return Record({Text(oid), Text(name), {algId}});
  }
};
template <>
class Recorder<ATL2::CPublicKeyAlgorithmOidEnum> : public ATL2::CPublicKeyAlgorithmOidEnum,
                                                   public CallLog {
  bool OnPubKeyAlg(const char* oid, const wchar_t* name, unsigned int algId,
                   unsigned int extra) override {
    return Record({Text(oid), Text(name), {algId, extra}});
  }
};
template <>
class Recorder<ATL2::CSignatureAlgorithmOidEnum> : public ATL2::CSignatureAlgorithmOidEnum,
                                                   public CallLog {
  bool OnSignatureAlg(const char* oid, const wchar_t* name, unsigned int hashAlgId, unsigned int e0,
                      unsigned int e1, unsigned int e2) override {
    return Record({Text(oid), Text(name), {hashAlgId, e0, e1, e2}});
  }
};
template <>
class Recorder<ATL2::CRdnAttributeOidEnum> : public ATL2::CRdnAttributeOidEnum, public CallLog {
 public:
  std::vector<const unsigned int*> typePointers;

 private:
  // Words: the value field, the count, then the value types read through
  // the pointer.
  bool OnRdnAttr(const char* oid, const wchar_t* name, unsigned int algId,
                 const unsigned int* types, unsigned int count) override {
    typePointers.push_back(types);
    std::vector<unsigned int> words = {algId, count};
    if (types != nullptr) words.insert(words.end(), types, types + count);
    return Record({Text(oid), Text(name), words});
  }
};
template <>
class Recorder<ATL2::CExtensionOrAttributeOidEnum> : public ATL2::CExtensionOrAttributeOidEnum,
                                                     public CallLog {
  bool OnExtensionOrAttribute(const char* oid, const wchar_t* name) override {
    return Record({Text(oid), Text(name), {}});
  }
};
template <>
class Recorder<ATL2::CEnhancedKeyUsageOidEnum> : public ATL2::CEnhancedKeyUsageOidEnum,
                                                 public CallLog {
  bool OnEnhancedKeyUsage(const char* oid, const wchar_t* name) override {
    return Record({Text(oid), Text(name), {}});
  }
};
template <>
class Recorder<ATL2::CPolicyOidEnum> : public ATL2::CPolicyOidEnum, public CallLog {
  bool OnPolicy(const char* oid, const wchar_t* name) override {
    return Record({Text(oid), Text(name), {}});
  }
};
template <>
class Recorder<ATL2::CTemplateOidEnum> : public ATL2::CTemplateOidEnum, public CallLog {
  bool OnTemplate(const char* oid, const wchar_t* name) override {
    return Record({Text(oid), Text(name), {}});
  }
};

using korvextest::CodeOf;

constexpr HRESULT kFail = static_cast<HRESULT>(0x80004005u);

// WalkGroup walks E's group and checks, for the known entry, what the
// handler received, and that every entry visited belongs to the group.
template <typename E>
void WalkGroup(DWORD group, const Call& known) {
  SCOPED_TRACE("group " + std::to_string(group) + ", " + known.oid);
  EXPECT_EQ(group, E::kGroupId);
  Recorder<E> walk;
  EXPECT_TRUE(walk.Enum());  // every entry visited
  const Call* found = walk.Find(known.oid);
  ASSERT_NE(nullptr, found);
  EXPECT_EQ(known, *found);
  for (const Call& c : walk.calls) {
    PCCRYPT_OID_INFO info =
        CryptFindOIDInfo(CRYPT_OID_INFO_OID_KEY, const_cast<char*>(c.oid.c_str()), 0);
    ASSERT_NE(nullptr, info) << c.oid;
    EXPECT_EQ(group, info->dwGroupId) << c.oid;
  }
  // Stopping at the first entry: one call, and Enum reports the stop.
  Recorder<E> first;
  first.stopAfter = 1;
  EXPECT_FALSE(first.Enum());
  ASSERT_EQ(1u, first.calls.size());
  EXPECT_EQ(walk.calls.front(), first.calls.front());
}

TEST(OidInfoEnum, EachGroupHandsOnItsKnownEntry) {
  WalkGroup<ATL2::CHashAlgorithmOidEnum>(1, {"2.16.840.1.101.3.4.2.1", L"sha256", {CALG_SHA_256}});
  WalkGroup<ATL2::CEncryptionAlgorithmOidEnum>(
      2, {"2.16.840.1.101.3.4.1.42", L"aes256", {CALG_AES_256}});
  // Public keys: ALG_ID and the first extra word (the table's flags, 0).
  WalkGroup<ATL2::CPublicKeyAlgorithmOidEnum>(3,
                                              {"1.2.840.113549.1.1.1", L"RSA", {CALG_RSA_KEYX, 0}});
  // Signatures: the hash ALG_ID, then key ALG_ID, flags, provider type.
  WalkGroup<ATL2::CSignatureAlgorithmOidEnum>(
      4, {"1.2.840.10045.4.3.2", L"sha256ECDSA", {CALG_SHA_256, CALG_ECDSA, 0, 0}});
  WalkGroup<ATL2::CSignatureAlgorithmOidEnum>(
      4,
      {"1.2.643.7.1.1.3.2",
       L"GOST R 34.11-2012/34.10-2012 256 bit",
       {CALG_KORVEX_GR3411_2012_256, CALG_KORVEX_GR3410_2012_256, 0, PROV_KORVEX_GOST_2012_256}});
  // RDN attributes: value field 0, the count, then the value types.
  WalkGroup<ATL2::CRdnAttributeOidEnum>(5, {"2.5.4.6", L"C", {0, 1, CERT_RDN_PRINTABLE_STRING}});
  WalkGroup<ATL2::CRdnAttributeOidEnum>(
      5, {"2.5.4.3",
          L"CN",
          {0, 4, CERT_RDN_PRINTABLE_STRING, CERT_RDN_UNICODE_STRING, CERT_RDN_UTF8_STRING,
           CERT_RDN_TELETEX_STRING}});
  WalkGroup<ATL2::CExtensionOrAttributeOidEnum>(6, {"2.5.29.15", L"Key Usage", {}});
  WalkGroup<ATL2::CEnhancedKeyUsageOidEnum>(7, {"1.3.6.1.5.5.7.3.4", L"Secure Email", {}});
  WalkGroup<ATL2::CPolicyOidEnum>(8, {"1.2.643.100.113.1", L"Class KC1", {}});
  WalkGroup<ATL2::CTemplateOidEnum>(9, {"1.3.6.1.4.1.311.20.2", L"Certificate Template Name", {}});
}

TEST(OidInfoEnum, RdnValueTypesArePointedToInPlace) {
  Recorder<ATL2::CRdnAttributeOidEnum> walk;
  ASSERT_TRUE(walk.Enum());
  ASSERT_EQ(walk.calls.size(), walk.typePointers.size());
  PCCRYPT_OID_INFO info = CryptFindOIDInfo(CRYPT_OID_INFO_OID_KEY, const_cast<char*>("2.5.4.6"),
                                           CRYPT_RDN_ATTR_OID_GROUP_ID);
  ASSERT_NE(nullptr, info);
  for (size_t i = 0; i < walk.calls.size(); ++i) {
    if (walk.calls[i].oid == "2.5.4.6") {
      EXPECT_EQ(reinterpret_cast<const unsigned int*>(info->ExtraInfo.pbData),
                walk.typePointers[i]);
    }
  }
}

// A hand-made entry whose extra information is the first `bytes` bytes of
// {0x11, 0x22, 0x33, 0x44}.
struct MadeEntry {
  explicit MadeEntry(DWORD bytes, DWORD algId = 0x8004) {
    info.cbSize = sizeof info;
    info.pszOID = "1.2.3.4";
    info.pwszName = L"made";
    info.Algid = algId;
    info.ExtraInfo.cbData = bytes;
    info.ExtraInfo.pbData = bytes ? reinterpret_cast<BYTE*>(words) : nullptr;
  }
  unsigned int words[4] = {0x11, 0x22, 0x33, 0x44};
  CRYPT_OID_INFO info{};
};

TEST(OidInfoEnum, ExtraWordsDependOnTheExtraInformationSize) {
  struct Case {
    DWORD bytes;
    unsigned int pubKey;
    std::vector<unsigned int> signature;  // the three words
  };
  const Case kCases[] = {
      {0, 0, {0, 0, 0}},
      {3, 0, {0, 0, 0}},
      {4, 0x11, {0x11, 0, 0}},
      {7, 0x11, {0x11, 0, 0}},
      {8, 0x11, {0x11, 0x22, 0}},
      {11, 0x11, {0x11, 0x22, 0}},
      {12, 0x11, {0x11, 0x22, 0x33}},
      {16, 0x11, {0x11, 0x22, 0x33}},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.bytes);
    MadeEntry entry(c.bytes);
    Recorder<ATL2::CPublicKeyAlgorithmOidEnum> keys;
    EXPECT_TRUE(keys.OnOidInfo(&entry.info));
    EXPECT_EQ((std::vector<unsigned int>{0x8004, c.pubKey}), keys.calls.at(0).words);
    Recorder<ATL2::CSignatureAlgorithmOidEnum> signatures;
    EXPECT_TRUE(signatures.OnOidInfo(&entry.info));
    std::vector<unsigned int> expected = {0x8004};
    expected.insert(expected.end(), c.signature.begin(), c.signature.end());
    EXPECT_EQ(expected, signatures.calls.at(0).words);
  }
}

TEST(OidInfoEnum, RdnCountLeavesOutTheClosingZero) {
  struct Case {
    DWORD bytes;
    bool pointer;
    unsigned int count;
  };
  const Case kCases[] = {
      {0, false, 0}, {3, false, 0}, {4, false, 0},  // nothing, or the closing zero alone
      {7, false, 0}, {8, true, 1},  {12, true, 2}, {16, true, 3},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.bytes);
    MadeEntry entry(c.bytes, 0);
    Recorder<ATL2::CRdnAttributeOidEnum> rdn;
    EXPECT_TRUE(rdn.OnOidInfo(&entry.info));
    EXPECT_EQ(c.pointer ? entry.words : nullptr, rdn.typePointers.at(0));
    EXPECT_EQ(c.count, rdn.calls.at(0).words.at(1));
  }
}

TEST(OidInfoEnum, EntriesWithoutTextArePassedOn) {
  MadeEntry entry(0);
  entry.info.pszOID = nullptr;
  entry.info.pwszName = nullptr;
  Recorder<ATL2::CPolicyOidEnum> policies;
  EXPECT_TRUE(policies.OnOidInfo(&entry.info));
  EXPECT_EQ((Call{"(null)", L"(null)", {}}), policies.calls.at(0));
}

TEST(OidInfoEnum, NullEntryOrEnumeratorFails) {
  Recorder<ATL2::CHashAlgorithmOidEnum> hashes;
  Recorder<ATL2::CEncryptionAlgorithmOidEnum> ciphers;
  Recorder<ATL2::CPublicKeyAlgorithmOidEnum> keys;
  Recorder<ATL2::CSignatureAlgorithmOidEnum> signatures;
  Recorder<ATL2::CRdnAttributeOidEnum> rdn;
  Recorder<ATL2::CExtensionOrAttributeOidEnum> extensions;
  Recorder<ATL2::CEnhancedKeyUsageOidEnum> usages;
  Recorder<ATL2::CPolicyOidEnum> policies;
  Recorder<ATL2::CTemplateOidEnum> templates;
  COidInfoEnum* all[] = {&hashes,     &ciphers, &keys,     &signatures, &rdn,
                         &extensions, &usages,  &policies, &templates};
  for (COidInfoEnum* e : all) {
    EXPECT_EQ(kFail, CodeOf([&] { e->OnOidInfo(nullptr); }));
    EXPECT_EQ(kFail, CodeOf([&] { COidInfoEnum::EnumOIDInfoCallback(nullptr, e); }));
  }
  MadeEntry entry(0);
  EXPECT_EQ(kFail, CodeOf([&] { COidInfoEnum::EnumOIDInfoCallback(&entry.info, nullptr); }));
}

// Thrower throws from its handler at the n-th call.
class Thrower : public ATL2::CHashAlgorithmOidEnum {
 public:
  explicit Thrower(size_t at) : at_(at) {}
  size_t calls = 0;

 private:
  bool OnHashAlg(const char*, const wchar_t*, unsigned int) override {
    if (++calls == at_) ATL::AtlThrowImpl(static_cast<HRESULT>(0x8009310Eu));
    return true;
  }
  size_t at_;
};

TEST(OidInfoEnum, HandlerExceptionStopsTheWalkAndComesOutOfEnum) {
  Thrower thrower(2);
  EXPECT_EQ(static_cast<HRESULT>(0x8009310Eu), CodeOf([&] { thrower.Enum(); }));
  EXPECT_EQ(2u, thrower.calls);  // nothing after the throw
  // The object is usable again: the next walk starts clean.
  thrower.calls = 0;
  EXPECT_EQ(static_cast<HRESULT>(0x8009310Eu), CodeOf([&] { thrower.Enum(); }));

  // Called directly, the callback lets the exception through.
  Thrower direct(1);
  MadeEntry entry(0);
  EXPECT_EQ(static_cast<HRESULT>(0x8009310Eu),
            CodeOf([&] { COidInfoEnum::EnumOIDInfoCallback(&entry.info, &direct); }));
}

// Nested walks the same object in its first handler call.
class Nested : public ATL2::CHashAlgorithmOidEnum {
 public:
  std::vector<std::string> seen;
  bool innerResult = true;

 private:
  bool OnHashAlg(const char* oid, const wchar_t*, unsigned int) override {
    seen.push_back(oid);
    if (seen.size() == 1) innerResult = Enum(CRYPT_PUBKEY_ALG_OID_GROUP_ID);
    return true;
  }
};

TEST(OidInfoEnum, HandlerMayWalkTheSameObjectAgain) {
  Recorder<ATL2::CHashAlgorithmOidEnum> hashes;
  ASSERT_TRUE(hashes.Enum());
  Recorder<ATL2::CHashAlgorithmOidEnum> keysAsHashes;
  ASSERT_TRUE(keysAsHashes.Enum(CRYPT_PUBKEY_ALG_OID_GROUP_ID));
  Nested nested;
  EXPECT_TRUE(nested.Enum());
  EXPECT_TRUE(nested.innerResult);
  ASSERT_EQ(hashes.calls.size() + keysAsHashes.calls.size(), nested.seen.size());
  // The first hash, then the whole key group, then the other hashes.
  EXPECT_EQ(hashes.calls[0].oid, nested.seen[0]);
  EXPECT_EQ(keysAsHashes.calls[0].oid, nested.seen[1]);
  EXPECT_EQ(hashes.calls.back().oid, nested.seen.back());
}

TEST(OidInfoEnum, EveryGroupAtOnce) {
  Recorder<ATL2::CTemplateOidEnum> everything;
  EXPECT_TRUE(everything.Enum(0));
  size_t total = 0;
  for (DWORD group = 1; group <= CRYPT_LAST_OID_GROUP_ID; ++group) {
    Recorder<ATL2::CTemplateOidEnum> one;
    EXPECT_TRUE(one.Enum(group));
    EXPECT_FALSE(one.calls.empty()) << group;
    total += one.calls.size();
  }
  EXPECT_EQ(total, everything.calls.size());
}

}  // namespace
