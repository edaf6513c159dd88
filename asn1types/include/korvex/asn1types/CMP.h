// korvex/asn1types/CMP.h: the status values of the certificate management
// protocol (RFC 4210 5.2.3, 5.3.16, 5.3.21): PKIFreeText, PKIFailureInfo,
// PKIStatusInfo, and (RevAnnContent.h, included here) the revocation
// announcement RevAnnContent. The same
// PKIStatusInfo is the status of a time-stamp response (RFC 3161 2.4.2) and
// of a DVCS response (RFC 3029).
//
// Values own their parts, copy deeply, compare by content (optional parts:
// both absent is equal, one absent is not) and convert themselves with
// encode() / decode(CBlob const&) through the traits of CMPTraits.h.
// Failures throw ATL::CAtlException: 0x80093101 for bad DER or a value that
// cannot be encoded, 0x80093106 when a context heap is exhausted, 0x8009310E
// for text that cannot be converted between UTF-8 and wide characters,
// 0x80070057 for a bad argument.
#ifndef KORVEX_ASN1TYPES_CMP_H
#define KORVEX_ASN1TYPES_CMP_H

#include <korvex/asn1types/Extension.h>
#include <korvex/asn1types/NamedBits.h>
#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>
#include <korvex/platform/export.h>

#include <list>
#include <string>

namespace Korvex {
namespace ASN1 {

// kTextConversionError: text that cannot be converted (a wide character that
// UTF-8 cannot write, UTF-8 that is not well formed).
constexpr HRESULT kTextConversionError = static_cast<HRESULT>(0x8009310Eu);

// CPKIFreeText: PKIFreeText ::= SEQUENCE SIZE (1..MAX) OF UTF8String, each
// string held as wide text, in order. Encoding an empty list throws
// 0x80093101 (the size constraint); a string with a surrogate or a value
// above U+10FFFF throws 0x8009310E; decoding UTF-8 that is not well formed
// throws 0x8009310E (the strings before it are kept, as decode writes them in
// order).
class KORVEX_API CPKIFreeText : public std::list<std::wstring> {
 public:
  CPKIFreeText() = default;
  // CPKIFreeText(text): a list of one string, a copy of text (null throws
  // 0x80070057).
  explicit CPKIFreeText(wchar_t const* text);

  // add: appends a copy of text (null throws 0x80070057).
  void add(wchar_t const* text);

  CBlob encode() const;
  void decode(CBlob const& der);
};

// CPKIFailureInfo: PKIFailureInfo ::= BIT STRING (RFC 4210 5.2.3), the named
// failure bits of a rejection.
class KORVEX_API CPKIFailureInfo : public CNamedBits {
 public:
  enum Bit : unsigned int {
    badAlg = 0,
    badMessageCheck = 1,
    badRequest = 2,
    badTime = 3,
    badCertId = 4,
    badDataFormat = 5,
    wrongAuthority = 6,
    incorrectData = 7,
    missingTimeStamp = 8,
    badPOP = 9,
    certRevoked = 10,
    certConfirmed = 11,
    wrongIntegrity = 12,
    badRecipientNonce = 13,
    timeNotAvailable = 14,
    unacceptedPolicy = 15,
    unacceptedExtension = 16,
    addInfoNotAvailable = 17,
    badSenderNonce = 18,
    badCertTemplate = 19,
    signerNotTrusted = 20,
    transactionIdInUse = 21,
    unsupportedVersion = 22,
    notAuthorized = 23,
    systemUnavail = 24,
    systemFailure = 25,
    duplicateCertReq = 26
  };

  // CPKIFailureInfo(): no bit set; CPKIFailureInfo(mask): the bits of mask.
  CPKIFailureInfo();
  explicit CPKIFailureInfo(unsigned int mask);

  // encode: the DER BIT STRING up to the last bit set; decode: see CNamedBits.
  CBlob encode() const;
  void decode(CBlob const& der);
};

KORVEX_API bool operator==(CPKIFailureInfo const& a, CPKIFailureInfo const& b);
KORVEX_API bool operator!=(CPKIFailureInfo const& a, CPKIFailureInfo const& b);

// CPKIStatusInfo: PKIStatusInfo ::= SEQUENCE { status PKIStatus, statusString
// PKIFreeText OPTIONAL, failInfo PKIFailureInfo OPTIONAL }.
class KORVEX_API CPKIStatusInfo {
 public:
  // The PKIStatus values of RFC 4210 (INTEGER: other numbers are carried too).
  enum Status : int {
    accepted = 0,
    grantedWithMods = 1,
    rejection = 2,
    waiting = 3,
    revocationWarning = 4,
    revocationNotification = 5,
    keyUpdateWarning = 6
  };

  // CPKIStatusInfo(): accepted, no text, no failure information.
  CPKIStatusInfo();
  explicit CPKIStatusInfo(int status);
  CPKIStatusInfo(CPKIStatusInfo const& other);
  CPKIStatusInfo& operator=(CPKIStatusInfo const& other);
  ~CPKIStatusInfo();

  int get_status() const;
  void put_status(int status);
  // get_statusString: the text, null when absent. put_statusString: null
  // removes it, otherwise a copy replaces it.
  CPKIFreeText const* get_statusString() const;
  void put_statusString(CPKIFreeText const* text);
  // get_failInfo / put_failInfo: the failure bits, the same way. A present
  // but empty failInfo encodes as the empty BIT STRING 03 01 00.
  CPKIFailureInfo const* get_failInfo() const;
  void put_failInfo(CPKIFailureInfo const* failInfo);

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  Impl* m_impl;
};

KORVEX_API bool operator==(CPKIStatusInfo const& a, CPKIStatusInfo const& b);
KORVEX_API bool operator!=(CPKIStatusInfo const& a, CPKIStatusInfo const& b);

}  // namespace ASN1
}  // namespace Korvex

#include <korvex/asn1types/RevAnnContent.h>

#endif
