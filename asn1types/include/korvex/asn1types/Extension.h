// korvex/asn1types/Extension.h: certificate and CRL extensions (RFC 5280
// 4.1, 4.2, 5.2, 5.3): the generic extension and its list, and the typed
// extension values.
//
// Every class here is a value: it owns one implementation object, copies it
// deeply, compares by content and converts itself to and from DER with
// encode() / decode(CBlob const&) through the traits of ExtensionTraits.h.
// Optional parts are put through pointers (null clears) and got as pointers
// (null when absent); two absent parts are equal, an absent and a present one
// are not. Failures throw ATL::CAtlException: 0x80093101 for bad DER or a
// value that cannot be encoded, 0x80093106 when a context heap is exhausted,
// 0x80070057 for bad OID text or a bad argument.
//
// The values over general names (distribution points, access descriptions)
// are in ExtDistributionPoint.h and ExtAccess.h, the certificate policies in
// ExtPolicy.h; this header brings them all in.
#ifndef KORVEX_ASN1TYPES_EXTENSION_H
#define KORVEX_ASN1TYPES_EXTENSION_H

#include <korvex/asn1types/NamedBits.h>
#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>
#include <korvex/platform/export.h>

#include <list>

namespace Korvex {
namespace ASN1 {

// CExtension: one Extension (RFC 5280 4.1): extnID as dotted OID text,
// critical (DEFAULT FALSE, written only when true), extnValue as the content
// octets of the OCTET STRING, i.e. the DER of the extension's own value.
class KORVEX_API CExtension {
 public:
  // CExtension(): no OID, not critical, empty value.
  CExtension();
  // CExtension(extnID, extnValue, critical): a copy of each part. A null
  // extnID throws 0x80070057.
  CExtension(char const* extnID, CBlob const& extnValue, bool critical = false);
  CExtension(CExtension const& other);
  CExtension& operator=(CExtension const& other);
  ~CExtension();

  // get_extnID: the dotted OID text ("" when none was put).
  char const* get_extnID() const;
  // put_extnID: stores a copy of the text; null throws 0x80070057. The text is
  // checked when the value is encoded (bad text: 0x80070057).
  void put_extnID(char const* oid);
  bool get_critical() const;
  void put_critical(bool critical);
  // get_extnValue: the DER of the extension's value (the OCTET STRING's
  // content octets).
  CBlob const& get_extnValue() const;
  void put_extnValue(CBlob const& der);

  // encode: the DER of the Extension SEQUENCE.
  CBlob encode() const;
  // decode: replaces the value with the Extension in der. An explicit
  // critical FALSE (not DER, accepted as BER) reads as not critical.
  void decode(CBlob const& der);

 private:
  struct Impl;
  Impl* m_impl;
};

// Equal when the OID texts, the critical flags and the value bytes are equal.
KORVEX_API bool operator==(CExtension const& a, CExtension const& b);
KORVEX_API bool operator!=(CExtension const& a, CExtension const& b);

// CExtensions: Extensions ::= SEQUENCE SIZE (1..MAX) OF Extension, in list
// order. Encoding an empty list throws 0x80093101 (the size constraint).
class KORVEX_API CExtensions : public std::list<CExtension> {
 public:
  // find: the first extension, in list order, whose OID text equals oid byte
  // for byte, or end(). A null oid finds nothing.
  iterator find(char const* oid);
  const_iterator find(char const* oid) const;

  CBlob encode() const;
  // decode: replaces the list with the extensions in der.
  void decode(CBlob const& der);
};

// CrlReason: the CRLReason ENUMERATED (RFC 5280 5.3.1), the value of the
// reasonCode CRL entry extension (2.5.29.21).
class KORVEX_API CrlReason {
 public:
  // The values RFC 5280 defines; 7 is not used.
  enum Reason : unsigned int {
    unspecified = 0,
    keyCompromise = 1,
    cACompromise = 2,
    affiliationChanged = 3,
    superseded = 4,
    cessationOfOperation = 5,
    certificateHold = 6,
    removeFromCRL = 8,
    privilegeWithdrawn = 9,
    aACompromise = 10
  };

  // CrlReason(): unspecified.
  CrlReason();
  // CrlReason(reason): as put_reason.
  explicit CrlReason(unsigned int reason);
  CrlReason(CrlReason const& other);
  CrlReason& operator=(CrlReason const& other);
  ~CrlReason();

  unsigned int get_reason() const;
  // put_reason: a number that is not one of the Reason values throws
  // 0x80070057 and changes nothing.
  void put_reason(unsigned int reason);

  // encode: the DER ENUMERATED. decode: a value outside the list throws
  // 0x80093101.
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  Impl* m_impl;
};

KORVEX_API bool operator==(CrlReason const& a, CrlReason const& b);
KORVEX_API bool operator!=(CrlReason const& a, CrlReason const& b);

// CReasonFlags: ReasonFlags (RFC 5280 4.2.1.13), the reasons of a
// distribution point and of an issuing distribution point.
class KORVEX_API CReasonFlags : public CNamedBits {
 public:
  // The named bits (bit numbers, not masks).
  enum Bit : unsigned int {
    unused = 0,
    keyCompromise = 1,
    cACompromise = 2,
    affiliationChanged = 3,
    superseded = 4,
    cessationOfOperation = 5,
    certificateHold = 6,
    privilegeWithdrawn = 7,
    aACompromise = 8
  };

  // CReasonFlags(): no bit set; CReasonFlags(mask): the bits of mask.
  CReasonFlags();
  explicit CReasonFlags(unsigned int mask);

  // encode: the DER BIT STRING; decode: see CNamedBits.
  CBlob encode() const;
  void decode(CBlob const& der);
};

KORVEX_API bool operator==(CReasonFlags const& a, CReasonFlags const& b);
KORVEX_API bool operator!=(CReasonFlags const& a, CReasonFlags const& b);

// CKeyUsage: KeyUsage (RFC 5280 4.2.1.3), the value of extension 2.5.29.15.
class KORVEX_API CKeyUsage : public CNamedBits {
 public:
  enum Bit : unsigned int {
    digitalSignature = 0,
    nonRepudiation = 1,
    keyEncipherment = 2,
    dataEncipherment = 3,
    keyAgreement = 4,
    keyCertSign = 5,
    cRLSign = 6,
    encipherOnly = 7,
    decipherOnly = 8
  };

  CKeyUsage();
  explicit CKeyUsage(unsigned int mask);

  CBlob encode() const;
  void decode(CBlob const& der);
};

KORVEX_API bool operator==(CKeyUsage const& a, CKeyUsage const& b);
KORVEX_API bool operator!=(CKeyUsage const& a, CKeyUsage const& b);

// CExtPrivateKeyUsagePeriod: PrivateKeyUsagePeriod (RFC 3280 4.2.1.4,
// extension 2.5.29.16): notBefore [0] and notAfter [1], both optional
// GeneralizedTime. Times are written in whole seconds (milliseconds are cut,
// as every GeneralizedTime field of this library writes them).
class KORVEX_API CExtPrivateKeyUsagePeriod {
 public:
  // CExtPrivateKeyUsagePeriod(): both times absent.
  CExtPrivateKeyUsagePeriod();
  // CExtPrivateKeyUsagePeriod(notBefore, notAfter): copies of the times given
  // (null: absent).
  CExtPrivateKeyUsagePeriod(CDateTime const* notBefore, CDateTime const* notAfter);
  CExtPrivateKeyUsagePeriod(CExtPrivateKeyUsagePeriod const& other);
  CExtPrivateKeyUsagePeriod& operator=(CExtPrivateKeyUsagePeriod const& other);
  ~CExtPrivateKeyUsagePeriod();

  CDateTime const* get_notBefore() const;
  void put_notBefore(CDateTime const* time);
  CDateTime const* get_notAfter() const;
  void put_notAfter(CDateTime const* time);

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  Impl* m_impl;
};

KORVEX_API bool operator==(CExtPrivateKeyUsagePeriod const& a, CExtPrivateKeyUsagePeriod const& b);
KORVEX_API bool operator!=(CExtPrivateKeyUsagePeriod const& a, CExtPrivateKeyUsagePeriod const& b);

}  // namespace ASN1
}  // namespace Korvex

#include <korvex/asn1types/ExtAccess.h>
#include <korvex/asn1types/ExtDistributionPoint.h>
#include <korvex/asn1types/ExtPolicy.h>

#endif
