// korvex/asn1types/ExtPolicy.h: certificate policies (RFC 5280 4.2.1.4):
// PolicyQualifierInfo, PolicyInformation and the list of them, which is the
// value of the certificatePolicies extension (2.5.29.32) and the `policies`
// of the signing-certificate attributes (RFC 5035 5.4). Part of Extension.h.
#ifndef KORVEX_ASN1TYPES_EXTPOLICY_H
#define KORVEX_ASN1TYPES_EXTPOLICY_H

#include <korvex/core/Blob.h>
#include <korvex/platform/export.h>

#include <list>

namespace Korvex {
namespace ASN1 {

// Policy identifiers and qualifier types of RFC 5280 4.2.1.4.
constexpr char kOidAnyPolicy[] = "2.5.29.32.0";
constexpr char kOidQtCps[] = "1.3.6.1.5.5.7.2.1";      // qualifier: CPSuri (IA5String)
constexpr char kOidQtUnotice[] = "1.3.6.1.5.5.7.2.2";  // qualifier: UserNotice

// CPolicyQualifierInfo: PolicyQualifierInfo ::= SEQUENCE { policyQualifierId
// OBJECT IDENTIFIER, qualifier ANY DEFINED BY policyQualifierId }: the id as
// dotted text and the complete DER of the qualifier (for qtCps an IA5String,
// for qtUnotice a UserNotice SEQUENCE), kept as it stands.
class KORVEX_API CPolicyQualifierInfo {
 public:
  // CPolicyQualifierInfo(): no id, no qualifier (does not encode).
  CPolicyQualifierInfo();
  // CPolicyQualifierInfo(id, qualifier): a null id throws 0x80070057.
  CPolicyQualifierInfo(char const* policyQualifierId, CBlob const& qualifier);
  CPolicyQualifierInfo(CPolicyQualifierInfo const& other);
  CPolicyQualifierInfo& operator=(CPolicyQualifierInfo const& other);
  ~CPolicyQualifierInfo();

  char const* get_policyQualifierId() const;
  // put_policyQualifierId: null throws 0x80070057; the text is checked when
  // encoding.
  void put_policyQualifierId(char const* oid);
  // get_qualifier / put_qualifier: the DER of the qualifier; when encoding it
  // must be exactly one element (otherwise 0x80093101).
  CBlob const& get_qualifier() const;
  void put_qualifier(CBlob const& der);

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  Impl* m_impl;
};

KORVEX_API bool operator==(CPolicyQualifierInfo const& a, CPolicyQualifierInfo const& b);
KORVEX_API bool operator!=(CPolicyQualifierInfo const& a, CPolicyQualifierInfo const& b);

// CPolicyQualifierInfoList: the qualifiers of one policy, in order.
class KORVEX_API CPolicyQualifierInfoList : public std::list<CPolicyQualifierInfo> {
 public:
  using std::list<CPolicyQualifierInfo>::list;
};

// CPolicyInformation: PolicyInformation ::= SEQUENCE { policyIdentifier
// CertPolicyId, policyQualifiers SEQUENCE SIZE (1..MAX) OF
// PolicyQualifierInfo OPTIONAL }.
class KORVEX_API CPolicyInformation {
 public:
  // CPolicyInformation(): no identifier (does not encode), no qualifiers.
  CPolicyInformation();
  // CPolicyInformation(oid): that policy without qualifiers (null: 0x80070057).
  explicit CPolicyInformation(char const* policyIdentifier);
  CPolicyInformation(CPolicyInformation const& other);
  CPolicyInformation& operator=(CPolicyInformation const& other);
  ~CPolicyInformation();

  char const* get_policyIdentifier() const;
  void put_policyIdentifier(char const* oid);
  // get_policyQualifiers: null when absent. put_policyQualifiers: null
  // removes them, otherwise a copy replaces them; a present but empty list
  // does not encode (SIZE (1..MAX): 0x80093101).
  CPolicyQualifierInfoList const* get_policyQualifiers() const;
  void put_policyQualifiers(CPolicyQualifierInfoList const* qualifiers);

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  Impl* m_impl;
};

KORVEX_API bool operator==(CPolicyInformation const& a, CPolicyInformation const& b);
KORVEX_API bool operator!=(CPolicyInformation const& a, CPolicyInformation const& b);

// CPolicyInformationList: certificatePolicies ::= SEQUENCE SIZE (1..MAX) OF
// PolicyInformation, in order; also the policies of the signing-certificate
// attributes. Encoding an empty list throws 0x80093101.
class KORVEX_API CPolicyInformationList : public std::list<CPolicyInformation> {
 public:
  using std::list<CPolicyInformation>::list;

  // find: the first policy with that identifier, or end() (also for null).
  iterator find(char const* oid);
  const_iterator find(char const* oid) const;

  CBlob encode() const;
  void decode(CBlob const& der);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
