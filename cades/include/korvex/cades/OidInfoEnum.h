// korvex/cades/OidInfoEnum.h: walks of the CryptoAPI object-identifier
// information table (CryptEnumOIDInfo), one group at a time, with each entry
// unpacked for a typed handler; and the search for the signature algorithm
// that combines a hash algorithm with a public-key algorithm.
//
// To walk a group, derive from the enumerator of that group, implement its
// handler and call Enum():
//
//   class PrintHashes : public ATL2::CHashAlgorithmOidEnum {
//     bool OnHashAlg(char const* oid, wchar_t const* name, unsigned int algId) override {
//       ...;
//       return true;  // go on; false stops the walk
//     }
//   };
//   PrintHashes walk;
//   walk.Enum();  // the hash group (CRYPT_HASH_ALG_OID_GROUP_ID)
//
// To find a signature algorithm, call ATL2::FindSignatureAlgorithm(hashOid,
// pubKeyOid) (docs/cades-helpers.md). Every entry and string handed out is
// the provider's static table data and lives as long as the process.
//
// Failures are thrown as ATL::CAtlException: 0x80004005 (E_FAIL) for a null
// OID where a handler needs one and for a null entry or enumerator given to
// the callback; 0x80070057 (E_INVALIDARG) for a string that cannot be copied.
// An exception thrown by a handler during Enum() stops the walk and is
// rethrown by Enum(); it never unwinds through the provider library.
#ifndef KORVEX_CADES_OIDINFOENUM_H
#define KORVEX_CADES_OIDINFOENUM_H

#include <korvex/platform/atl/atlstr.h>
#include <korvex/platform/capi/oidinfo.h>
#include <korvex/platform/export.h>

#include <exception>

namespace ATL2 {

// COidInfoEnum is the base of every enumerator: Enum() hands each entry of a
// group to OnOidInfo, which a group enumerator implements by unpacking the
// entry for its own handler.
class KORVEX_API COidInfoEnum {
 public:
  COidInfoEnum() noexcept;
  virtual ~COidInfoEnum();

  // OnOidInfo receives one entry; returns true to go on, false to stop.
  virtual bool OnOidInfo(_CRYPT_OID_INFO const* info) = 0;

  // EnumOIDInfoCallback is the callback handed to CryptEnumOIDInfo: arg is
  // the enumerator, as a COidInfoEnum* converted to void*; returns the
  // enumerator's OnOidInfo(info). Called during
  // Enum(), it keeps an exception from the handler for Enum() to rethrow
  // and stops the walk; called directly, it lets the exception through. A
  // null arg throws 0x80004005.
  static BOOL EnumOIDInfoCallback(_CRYPT_OID_INFO const* info, void* arg);

  // Enum walks group groupId of the table (0: every group) in table order,
  // calling OnOidInfo for each entry until it returns false. Returns true
  // when every entry was visited, false when OnOidInfo stopped the walk.
  // Rethrows what a handler threw, after the walk has stopped.
  bool Enum(DWORD groupId);

 private:
  bool m_inWalk;
  std::exception_ptr m_pending;  // what a handler threw during the walk
};

// CHashAlgorithmOidEnum: group 1 (CRYPT_HASH_ALG_OID_GROUP_ID).
class KORVEX_API CHashAlgorithmOidEnum : public COidInfoEnum {
 public:
  static constexpr DWORD kGroupId = CRYPT_HASH_ALG_OID_GROUP_ID;
  using COidInfoEnum::Enum;
  // Enum walks the hash-algorithm group.
  bool Enum() { return Enum(kGroupId); }

  bool OnOidInfo(_CRYPT_OID_INFO const* info) override;
  // OnHashAlg receives the entry's OID text, name and ALG_ID.
  virtual bool OnHashAlg(char const* oid, wchar_t const* name, unsigned int algId) = 0;
};

// CEncryptionAlgorithmOidEnum: group 2 (CRYPT_ENCRYPT_ALG_OID_GROUP_ID).
class KORVEX_API CEncryptionAlgorithmOidEnum : public COidInfoEnum {
 public:
  static constexpr DWORD kGroupId = CRYPT_ENCRYPT_ALG_OID_GROUP_ID;
  using COidInfoEnum::Enum;
  bool Enum() { return Enum(kGroupId); }

  bool OnOidInfo(_CRYPT_OID_INFO const* info) override;
  // OnEncryptionAlg receives the entry's OID text, name and ALG_ID.
  virtual bool OnEncryptionAlg(char const* oid, wchar_t const* name, unsigned int algId) = 0;
};

// CPublicKeyAlgorithmOidEnum: group 3 (CRYPT_PUBKEY_ALG_OID_GROUP_ID).
class KORVEX_API CPublicKeyAlgorithmOidEnum : public COidInfoEnum {
 public:
  static constexpr DWORD kGroupId = CRYPT_PUBKEY_ALG_OID_GROUP_ID;
  using COidInfoEnum::Enum;
  bool Enum() { return Enum(kGroupId); }

  bool OnOidInfo(_CRYPT_OID_INFO const* info) override;
  // OnPubKeyAlg receives the entry's OID text, name, ALG_ID and the first
  // 32-bit word of its extra information (0 when it has fewer than 4 bytes).
  virtual bool OnPubKeyAlg(char const* oid, wchar_t const* name, unsigned int algId,
                           unsigned int extra) = 0;
};

// CSignatureAlgorithmOidEnum: group 4 (CRYPT_SIGN_ALG_OID_GROUP_ID).
class KORVEX_API CSignatureAlgorithmOidEnum : public COidInfoEnum {
 public:
  static constexpr DWORD kGroupId = CRYPT_SIGN_ALG_OID_GROUP_ID;
  using COidInfoEnum::Enum;
  bool Enum() { return Enum(kGroupId); }

  bool OnOidInfo(_CRYPT_OID_INFO const* info) override;
  // OnSignatureAlg receives the entry's OID text, name, ALG_ID (the hash)
  // and the first three 32-bit words of its extra information, each 0 when
  // the extra information is too short to hold it. This provider's table
  // stores the public-key ALG_ID, flags and the provider type there.
  virtual bool OnSignatureAlg(char const* oid, wchar_t const* name, unsigned int hashAlgId,
                              unsigned int extra0, unsigned int extra1, unsigned int extra2) = 0;
};

// CRdnAttributeOidEnum: group 5 (CRYPT_RDN_ATTR_OID_GROUP_ID).
class KORVEX_API CRdnAttributeOidEnum : public COidInfoEnum {
 public:
  static constexpr DWORD kGroupId = CRYPT_RDN_ATTR_OID_GROUP_ID;
  using COidInfoEnum::Enum;
  bool Enum() { return Enum(kGroupId); }

  bool OnOidInfo(_CRYPT_OID_INFO const* info) override;
  // OnRdnAttr receives the entry's OID text, name, value field and its
  // allowed value types (CERT_RDN_*): the extra information read in place as
  // a zero-terminated array of 32-bit words, and their number without the
  // closing zero (extra-information bytes / 4 - 1). valueTypes is null and
  // count 0 when the array holds only the closing zero or there is none.
  virtual bool OnRdnAttr(char const* oid, wchar_t const* name, unsigned int algId,
                         unsigned int const* valueTypes, unsigned int count) = 0;
};

// CExtensionOrAttributeOidEnum: group 6 (CRYPT_EXT_OR_ATTR_OID_GROUP_ID).
class KORVEX_API CExtensionOrAttributeOidEnum : public COidInfoEnum {
 public:
  static constexpr DWORD kGroupId = CRYPT_EXT_OR_ATTR_OID_GROUP_ID;
  using COidInfoEnum::Enum;
  bool Enum() { return Enum(kGroupId); }

  bool OnOidInfo(_CRYPT_OID_INFO const* info) override;
  // OnExtensionOrAttribute receives the entry's OID text and name.
  virtual bool OnExtensionOrAttribute(char const* oid, wchar_t const* name) = 0;
};

// CEnhancedKeyUsageOidEnum: group 7 (CRYPT_ENHKEY_USAGE_OID_GROUP_ID).
class KORVEX_API CEnhancedKeyUsageOidEnum : public COidInfoEnum {
 public:
  static constexpr DWORD kGroupId = CRYPT_ENHKEY_USAGE_OID_GROUP_ID;
  using COidInfoEnum::Enum;
  bool Enum() { return Enum(kGroupId); }

  bool OnOidInfo(_CRYPT_OID_INFO const* info) override;
  // OnEnhancedKeyUsage receives the entry's OID text and name.
  virtual bool OnEnhancedKeyUsage(char const* oid, wchar_t const* name) = 0;
};

// CPolicyOidEnum: group 8 (CRYPT_POLICY_OID_GROUP_ID).
class KORVEX_API CPolicyOidEnum : public COidInfoEnum {
 public:
  static constexpr DWORD kGroupId = CRYPT_POLICY_OID_GROUP_ID;
  using COidInfoEnum::Enum;
  bool Enum() { return Enum(kGroupId); }

  bool OnOidInfo(_CRYPT_OID_INFO const* info) override;
  // OnPolicy receives the entry's OID text and name.
  virtual bool OnPolicy(char const* oid, wchar_t const* name) = 0;
};

// CTemplateOidEnum: group 9 (CRYPT_TEMPLATE_OID_GROUP_ID).
class KORVEX_API CTemplateOidEnum : public COidInfoEnum {
 public:
  static constexpr DWORD kGroupId = CRYPT_TEMPLATE_OID_GROUP_ID;
  using COidInfoEnum::Enum;
  bool Enum() { return Enum(kGroupId); }

  bool OnOidInfo(_CRYPT_OID_INFO const* info) override;
  // OnTemplate receives the entry's OID text and name.
  virtual bool OnTemplate(char const* oid, wchar_t const* name) = 0;
};

// CFindSignatureAlgorithmEnum walks the hash group for hashOid; for each
// entry with that OID it walks the public-key group for pubKeyOid and asks
// the table for the signature algorithm of the pair
// (CryptFindOIDInfo(CRYPT_OID_INFO_SIGN_KEY, {hash ALG_ID, key ALG_ID},
// CRYPT_SIGN_ALG_OID_GROUP_ID)). The first one found ends the walk.
class KORVEX_API CFindSignatureAlgorithmEnum : public CHashAlgorithmOidEnum {
 public:
  // Status before anything is found (CRYPT_E_NOT_FOUND); 0 once found.
  static constexpr unsigned int kNotFound = 0x80092004u;

  // The OIDs are copied; null is the empty text, which no entry has.
  CFindSignatureAlgorithmEnum(char const* hashOid, char const* pubKeyOid);

  // OnHashAlg: a null oid throws 0x80004005; another OID goes on (true);
  // the wanted one runs the public-key walk and stops (false) when it found
  // a signature algorithm, which becomes the result with status 0.
  bool OnHashAlg(char const* oid, wchar_t const* name, unsigned int algId) override;

  // GetResult returns the signature algorithm found, null until then.
  _CRYPT_OID_INFO const* GetResult() const noexcept { return m_result; }
  // GetStatus returns 0 once a result is stored, kNotFound before.
  unsigned int GetStatus() const noexcept { return m_status; }

 private:
  ATL::CStringT<char> m_hashOid;
  ATL::CStringT<char> m_pubKeyOid;
  _CRYPT_OID_INFO const* m_result;
  unsigned int m_status;
};

// CFindSignatureAlgPubKeyEnum walks the public-key group for one OID and
// looks up the signature algorithm of (hashAlgId, that key's ALG_ID).
class KORVEX_API CFindSignatureAlgPubKeyEnum : public CPublicKeyAlgorithmOidEnum {
 public:
  // The OID is copied; null is the empty text.
  CFindSignatureAlgPubKeyEnum(unsigned int hashAlgId, char const* pubKeyOid);

  // OnPubKeyAlg: a null oid throws 0x80004005; another OID goes on (true);
  // the wanted one stores the signature algorithm of the pair and stops
  // (false) when there is one, goes on (true) otherwise.
  bool OnPubKeyAlg(char const* oid, wchar_t const* name, unsigned int algId,
                   unsigned int extra) override;

  // GetResult returns the signature algorithm found, null until then.
  _CRYPT_OID_INFO const* GetResult() const noexcept { return m_result; }

 private:
  unsigned int m_hashAlgId;
  ATL::CStringT<char> m_pubKeyOid;
  _CRYPT_OID_INFO const* m_result;
};

// FindSignatureAlgorithm returns the table's signature algorithm for the
// hash algorithm hashOid and the public-key algorithm pubKeyOid (dotted OID
// texts, compared exactly), e.g. 2.16.840.1.101.3.4.2.1 (sha256) with
// 1.2.840.113549.1.1.1 (rsaEncryption) gives the entry of
// 1.2.840.113549.1.1.11 (sha256WithRSAEncryption). Returns null when either
// OID is null or unknown or the pair has no signature algorithm. The entry
// is static table data: never free it.
KORVEX_API _CRYPT_OID_INFO const* FindSignatureAlgorithm(char const* hashOid,
                                                         char const* pubKeyOid);

}  // namespace ATL2

#endif
