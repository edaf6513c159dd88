// korvex/cades/CAdESAttributes.h: the revocation references and values of an
// extended CAdES signature (RFC 5126 6.2.2, 6.2.4 and 6.3.4; ETSI TS 101 733):
//
//   CompleteRevocationRefs ::= SEQUENCE OF CrlOcspRef             (.2.22)
//   CrlOcspRef     ::= SEQUENCE { crlids [0] CRLListID OPTIONAL,
//                                 ocspids [1] OcspListID OPTIONAL,
//                                 otherRev [2] OtherRevRefs OPTIONAL }
//   CRLListID      ::= SEQUENCE { crls SEQUENCE OF CrlValidatedID }
//   CrlValidatedID ::= SEQUENCE { crlHash OtherHash,
//                                 crlIdentifier CrlIdentifier OPTIONAL }
//   CrlIdentifier  ::= SEQUENCE { crlissuer Name, crlIssuedTime UTCTime,
//                                 crlNumber INTEGER OPTIONAL }
//   OcspListID     ::= SEQUENCE { ocspResponses SEQUENCE OF OcspResponsesID }
//   OcspResponsesID ::= SEQUENCE { ocspIdentifier OcspIdentifier,
//                                  ocspRepHash OtherHash OPTIONAL }
//   OcspIdentifier ::= SEQUENCE { ocspResponderID ResponderID,
//                                 producedAt GeneralizedTime }
//   RevocationValues ::= SEQUENCE { crlVals [0] SEQUENCE OF CertificateList
//                                   OPTIONAL, ocspVals [1] SEQUENCE OF
//                                   BasicOCSPResponse OPTIONAL, ... } (.2.24)
//   CompleteCertificateRefs ::= SEQUENCE OF OtherCertID           (.2.21)
//
// Every class is a plain value: copies are deep, equality compares values.
// An optional part is put through a pointer (null removes it, otherwise a
// deep copy replaces it) and got as a pointer (null when absent, valid until
// the part changes); mandatory parts are got as const references. The list
// classes are std::lists of their element, used with the list's own
// operations. encode() returns the DER; decode() replaces the value with the
// one a blob holds (exactly one element) or throws and leaves the value as it
// was. The conversions to and from the generated ASN1CADES records are
// CAdESAttributesTraits.h.
//
// Failures throw ATL::CAtlException:
//   13          put_crlNumber with a negative number; get_intCrlNumber with no
//               number or one that is not in 0..0x7FFFFFFF
//   1901        encoding a CCrlIdentifier whose time is not in 1950..2049
//               (UTCTime holds two year digits, RFC 5280 4.1.2.5.1)
//   0x80093101  malformed DER, or a part that cannot be encoded (an empty or
//               malformed DER part such as a crlissuer, a hash or responder ID
//               that does not encode)
//   0x80093106  the ASN.1 context heap is exhausted
//   0x8007000E  no memory for the UTCTime text of a CCrlIdentifier
#ifndef KORVEX_CADES_CADESATTRIBUTES_H
#define KORVEX_CADES_CADESATTRIBUTES_H

#include <korvex/asn1types/BigInteger.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/Hash.h>
#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>
#include <korvex/ocsp/ResponderID.h>
#include <korvex/platform/export.h>
#include <korvex/platform/win32/windef.h>

#include <list>
#include <memory>

namespace Korvex {
namespace PKI {
namespace CAdES {

// The codes this file's classes throw beside those of the value classes.
constexpr HRESULT kCrlNumberError = 13;       // ERROR_INVALID_DATA
constexpr HRESULT kUtcTimeRangeError = 1901;  // ERROR_INVALID_TIME

// ---- CRL references --------------------------------------------------------

// CCrlIdentifier: the issuer, issue time and number of a CRL (RFC 5126
// 5.7.4.2 / 6.2.2). crlissuer is the DER of the issuer's Name, kept as bytes.
// Default: empty crlissuer, CDateTime(0, 0), no number.
//
// crlIssuedTime is written as UTCTime: whole seconds (the milliseconds are
// dropped), years 1950..2049 only (others throw 1901 when encoding). A decoded
// two-digit year below 50 is 20YY, any other 19YY.
class KORVEX_API CCrlIdentifier {
 public:
  CCrlIdentifier();
  // CCrlIdentifier(crlissuer, crlIssuedTime): no number.
  CCrlIdentifier(CBlob const& crlissuer, CDateTime const& crlIssuedTime);
  CCrlIdentifier(CCrlIdentifier const& other);
  CCrlIdentifier& operator=(CCrlIdentifier const& other);
  ~CCrlIdentifier();

  CBlob const& get_crlissuer() const;
  void put_crlissuer(CBlob const& crlissuer);
  CDateTime const& get_crlIssuedTime() const;
  void put_crlIssuedTime(CDateTime const& crlIssuedTime);

  // get_longCrlNumber: the number, or null when absent. put_longCrlNumber:
  // null removes the number, otherwise a copy replaces it.
  ASN1::CBigInteger const* get_longCrlNumber() const;
  void put_longCrlNumber(ASN1::CBigInteger const* crlNumber);
  // put_crlNumber: null removes the number; a negative value throws 13 and
  // changes nothing; otherwise the value becomes the number (the int form is
  // another way to set the one stored number).
  void put_crlNumber(int const* crlNumber);
  // get_intCrlNumber: the number as an int. Throws 13 when there is none, or
  // when it is negative or 0x80000000 or more (get_longCrlNumber still gives
  // it).
  int get_intCrlNumber() const;

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Equal when times, issuer bytes and numbers (both absent, or both present
// and equal in value) are equal.
KORVEX_API bool operator==(CCrlIdentifier const& left, CCrlIdentifier const& right);
KORVEX_API bool operator!=(CCrlIdentifier const& left, CCrlIdentifier const& right);

// CCrlValidatedID: the hash of a CRL and, optionally, its identifier.
// Default: a default COtherHash (an empty sha1Hash), no identifier.
class KORVEX_API CCrlValidatedID {
 public:
  CCrlValidatedID();
  explicit CCrlValidatedID(ASN1::COtherHash const& crlHash);
  CCrlValidatedID(CCrlValidatedID const& other);
  CCrlValidatedID& operator=(CCrlValidatedID const& other);
  ~CCrlValidatedID();

  ASN1::COtherHash const& get_crlHash() const;
  void put_crlHash(ASN1::COtherHash const& crlHash);
  CCrlIdentifier const* get_crlIdentifier() const;
  void put_crlIdentifier(CCrlIdentifier const* crlIdentifier);

  // matches: a looser equality for finding a reference among the CRLs at
  // hand. In order: different hashes -> false; neither has an identifier ->
  // true; ignoreMissingIdentifier and either lacks it -> true; only one has
  // it -> false; different times -> false; different issuer bytes -> false;
  // neither has a number -> true; ignoreMissingNumber and either lacks it ->
  // true; otherwise whether both have a number and the numbers are equal.
  bool matches(CCrlValidatedID const& other, bool ignoreMissingIdentifier,
               bool ignoreMissingNumber) const;

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Equal when hashes are equal and identifiers are both absent or both present
// and equal.
KORVEX_API bool operator==(CCrlValidatedID const& left, CCrlValidatedID const& right);
KORVEX_API bool operator!=(CCrlValidatedID const& left, CCrlValidatedID const& right);

// CCRLListID: the CRLs of one reference, in order.
class KORVEX_API CCRLListID : public std::list<CCrlValidatedID> {
 public:
  using std::list<CCrlValidatedID>::list;
  CBlob encode() const;
  void decode(CBlob const& der);
};

// Equal when both hold the same number of elements, equal pairwise in order.
KORVEX_API bool operator==(CCRLListID const& left, CCRLListID const& right);
KORVEX_API bool operator!=(CCRLListID const& left, CCRLListID const& right);

// ---- OCSP references -------------------------------------------------------

// COcspIdentifier: the responder and producedAt time of an OCSP response.
// Default: a responder ID selecting nothing (which does not encode),
// CDateTime(0, 0). producedAt is written as GeneralizedTime with its
// fraction of a second, if any (RFC 5126 keeps the response's own time).
class KORVEX_API COcspIdentifier {
 public:
  COcspIdentifier();
  COcspIdentifier(OCSP::CResponderID const& ocspResponderID, CDateTime const& producedAt);
  COcspIdentifier(COcspIdentifier const& other);
  COcspIdentifier& operator=(COcspIdentifier const& other);
  ~COcspIdentifier();

  OCSP::CResponderID const& get_ocspResponderID() const;
  void put_ocspResponderID(OCSP::CResponderID const& ocspResponderID);
  CDateTime const& get_producedAt() const;
  void put_producedAt(CDateTime const& producedAt);

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Equal when responder IDs and producedAt are equal.
KORVEX_API bool operator==(COcspIdentifier const& left, COcspIdentifier const& right);
KORVEX_API bool operator!=(COcspIdentifier const& left, COcspIdentifier const& right);

// COcspResponsesID: an OCSP response by identifier and, optionally, hash.
// Default: a default identifier, no hash.
class KORVEX_API COcspResponsesID {
 public:
  COcspResponsesID();
  explicit COcspResponsesID(COcspIdentifier const& ocspIdentifier);
  COcspResponsesID(COcspResponsesID const& other);
  COcspResponsesID& operator=(COcspResponsesID const& other);
  ~COcspResponsesID();

  COcspIdentifier const& get_ocspIdentifier() const;
  void put_ocspIdentifier(COcspIdentifier const& ocspIdentifier);
  ASN1::COtherHash const* get_ocspRepHash() const;
  void put_ocspRepHash(ASN1::COtherHash const* ocspRepHash);

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Equal when identifiers are equal and hashes are both absent or both present
// and equal.
KORVEX_API bool operator==(COcspResponsesID const& left, COcspResponsesID const& right);
KORVEX_API bool operator!=(COcspResponsesID const& left, COcspResponsesID const& right);

// COcspListID: the OCSP responses of one reference, in order.
class KORVEX_API COcspListID : public std::list<COcspResponsesID> {
 public:
  using std::list<COcspResponsesID>::list;
  CBlob encode() const;
  void decode(CBlob const& der);
};

// Equal when both hold the same number of elements, equal pairwise in order.
KORVEX_API bool operator==(COcspListID const& left, COcspListID const& right);
KORVEX_API bool operator!=(COcspListID const& left, COcspListID const& right);

// ---- Complete revocation references ----------------------------------------

// CCrlOcspRef: the CRLs and OCSP responses that one certificate of the path
// was checked with. Default: both absent. A present but empty list is
// written as absent (the lists have at least one element on the wire, RFC
// 5126 6.2.2) and an empty list on the wire reads as absent. otherRev is
// neither written nor read.
class KORVEX_API CCrlOcspRef {
 public:
  CCrlOcspRef();
  CCrlOcspRef(CCrlOcspRef const& other);
  CCrlOcspRef& operator=(CCrlOcspRef const& other);
  ~CCrlOcspRef();

  CCRLListID const* get_crlids() const;
  void put_crlids(CCRLListID const* crlids);
  COcspListID const* get_ocspids() const;
  void put_ocspids(COcspListID const* ocspids);

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Equal when crlids and ocspids are each both absent, or both present and
// equal as lists.
KORVEX_API bool operator==(CCrlOcspRef const& left, CCrlOcspRef const& right);
KORVEX_API bool operator!=(CCrlOcspRef const& left, CCrlOcspRef const& right);

// CCompleteRevocationRefs: the value of the complete-revocation-references
// attribute (1.2.840.113549.1.9.16.2.22), one CCrlOcspRef per certificate.
// Lists compare with the list's own ==.
class KORVEX_API CCompleteRevocationRefs : public std::list<CCrlOcspRef> {
 public:
  using std::list<CCrlOcspRef>::list;
  CBlob encode() const;
  void decode(CBlob const& der);
};

// ---- Revocation values ------------------------------------------------------

// CRevocationValues: the value of the revocation-values attribute
// (1.2.840.113549.1.9.16.2.24): CRLs (each blob the DER of a
// CertificateList) and OCSP responses (each blob the DER of a
// BasicOCSPResponse). Default: both absent. Empty lists are written as absent
// and read as absent; otherRevVals is neither written nor read. Each blob
// must be exactly one DER element when encoding.
class KORVEX_API CRevocationValues {
 public:
  CRevocationValues();
  CRevocationValues(CRevocationValues const& other);
  CRevocationValues& operator=(CRevocationValues const& other);
  ~CRevocationValues();

  CBlobList const* get_crlVals() const;
  void put_crlVals(CBlobList const* crlVals);
  CBlobList const* get_ocspVals() const;
  void put_ocspVals(CBlobList const* ocspVals);

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Equal when both lists are each both absent, or both present and equal blob
// by blob in order.
KORVEX_API bool operator==(CRevocationValues const& left, CRevocationValues const& right);
KORVEX_API bool operator!=(CRevocationValues const& left, CRevocationValues const& right);

// ---- Complete certificate references ----------------------------------------

// CCompleteCertificateRefs: the value of the complete-certificate-references
// attribute (1.2.840.113549.1.9.16.2.21), one COtherCertID per certificate.
// Each element is encoded with its own encode() and the DER inserted as it
// stands; decoding reads each element with COtherCertID::decode.
class KORVEX_API CCompleteCertificateRefs : public std::list<ASN1::COtherCertID> {
 public:
  using std::list<ASN1::COtherCertID>::list;
  CBlob encode() const;
  void decode(CBlob const& der);
};

}  // namespace CAdES
}  // namespace PKI
}  // namespace Korvex

#endif
