// korvex/ocsp/ResponderID.h: the identifier of an OCSP responder (RFC 6960
// 4.2.1):
//
//   ResponderID ::= CHOICE {
//      byName   [1] Name,       -- alternative 1, explicit tag (A1)
//      byKey    [2] KeyHash }   -- alternative 2, explicit tag (A2)
//   KeyHash ::= OCTET STRING    -- SHA-1 of the responder's public key
//                               -- (the subjectPublicKey BIT STRING contents)
//
// The CAdES references name an OCSP response by this identifier and the
// response's producedAt time (RFC 5126 5.7.4.2, OcspIdentifier). The
// conversion to and from the generated record is ResponderIDTraits.h.
#ifndef KORVEX_OCSP_RESPONDERID_H
#define KORVEX_OCSP_RESPONDERID_H

#include <korvex/asn1types/Choice.h>
#include <korvex/asn1types/Names.h>
#include <korvex/core/Blob.h>
#include <korvex/platform/export.h>

#include <memory>

namespace Korvex {
namespace PKI {
namespace OCSP {

// CResponderIDImpl: the CHOICE holder: 1 -> CBlob (byName, the DER of the
// Name), 2 -> CBlob (byKey, the key hash bytes); any other number is the
// no-alternative handler.
class KORVEX_API CResponderIDImpl : public ASN1::Choice {
 public:
  CResponderIDImpl() = default;
  CResponderIDImpl(CResponderIDImpl const&) = default;
  CResponderIDImpl& operator=(CResponderIDImpl const&) = default;
  ASN1::ChoiceValueTraits const* findTraits(unsigned int n) const override;
};

// CResponderID: a value class (deep copies, one owned implementation).
//
// A default value selects no alternative (get_type() 0): it compares equal
// to another such value and does not encode. The Name of byName is kept as
// its DER and is checked only when the value is encoded.
class KORVEX_API CResponderID {
 public:
  // The alternatives, numbered as the generated record's selector.
  enum Type : unsigned int { kNone = 0, kByName = 1, kByKey = 2 };

  CResponderID();
  CResponderID(CResponderID const& other);
  CResponderID& operator=(CResponderID const& other);
  ~CResponderID();

  // fromName / fromKeyHash: a responder ID selecting byName holding the DER
  // of a Name, or byKey holding a key hash.
  static CResponderID fromName(CBlob const& nameDer);
  static CResponderID fromKeyHash(CBlob const& keyHash);

  // get_type: the selected alternative (kNone, kByName, kByKey).
  unsigned int get_type() const;
  // get_byName: the DER of the responder's Name when byName is selected,
  // else null. get_byKey: the key hash when byKey is selected, else null.
  // The pointers live until the value changes.
  CBlob const* get_byName() const;
  CBlob const* get_byKey() const;
  // get_byName(name): decodes the byName DER into name and returns true;
  // false (name untouched) when byName is not selected. DER that is not a
  // Name throws 0x80093101.
  bool get_byName(ASN1::CName& name) const;

  // put_byName: selects byName holding a copy of the Name's DER (the bytes
  // are not checked here). put_byName(CName): the same with name.encode()
  // (a pair that does not encode throws 0x80093101, nothing changes).
  void put_byName(CBlob const& nameDer);
  void put_byName(ASN1::CName const& name);
  // put_byKey: selects byKey holding a copy of the hash (RFC 6960 asks for
  // the 20 bytes of a SHA-1; other lengths are kept as given).
  void put_byKey(CBlob const& keyHash);
  // clear: no alternative.
  void clear();

  // encode: the DER of the ResponderID (A1 .. or A2 ..). No alternative
  // selected, or byName bytes that are not exactly one DER Name, throws
  // 0x80093101. decode: replaces the value with the one decoded from der
  // (BER accepted, the Name written back as DER); bad or trailing bytes throw
  // 0x80093101 and leave the value as it was.
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  std::unique_ptr<CResponderIDImpl> m_impl;
};

// Equal when the same alternative is selected and its bytes are equal (two
// values selecting nothing are equal). Names compare by their DER bytes.
KORVEX_API bool operator==(CResponderID const& left, CResponderID const& right);
KORVEX_API bool operator!=(CResponderID const& left, CResponderID const& right);

}  // namespace OCSP
}  // namespace PKI
}  // namespace Korvex

#endif
