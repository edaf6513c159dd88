// korvex/asn1types/Attribute.h: CMS attributes (RFC 5652 5.3, 11): the
// generic containers (one value, an attribute with its SET OF values, a set
// of attributes) and the typed values a CAdES signer writes and checks:
// content type, message digest, signing time and (SigningCertificate.h,
// included here) the three signing-certificate attributes.
//
// A typed attribute value derives from CAttrValue: it keeps the attribute
// type, the DER of the value and one typed member. Its setters and
// constructors keep the two in step (the DER is made at once); encode()
// makes the DER again from the typed member and decode() reads the typed
// member back from the DER (after a caller changed it through value()).
// Being a CAttrValue, a typed value is added to a CAttribute or CAttributes
// as it stands.
//
// Failures throw ATL::CAtlException: 0x80093101 for bad DER or a value that
// cannot be encoded, 0x80093106 when a context heap is exhausted, 0x80070057
// for bad OID text or a bad argument.
#ifndef KORVEX_ASN1TYPES_ATTRIBUTE_H
#define KORVEX_ASN1TYPES_ATTRIBUTE_H

#include <korvex/asn1types/TimeChoice.h>
#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>
#include <korvex/core/StringProxy.h>
#include <korvex/platform/export.h>

#include <cstddef>
#include <list>

namespace Korvex {
namespace ASN1 {

// The attribute types of the typed values (dotted OID text).
constexpr char kOidContentType[] = "1.2.840.113549.1.9.3";                    // RFC 5652 11.1
constexpr char kOidMessageDigest[] = "1.2.840.113549.1.9.4";                  // RFC 5652 11.2
constexpr char kOidSigningTime[] = "1.2.840.113549.1.9.5";                    // RFC 5652 11.3
constexpr char kOidSigningCertificate[] = "1.2.840.113549.1.9.16.2.12";       // RFC 2634 5.4
constexpr char kOidSigningCertificateV2[] = "1.2.840.113549.1.9.16.2.47";     // RFC 5035 3
constexpr char kOidOtherSigningCertificate[] = "1.2.840.113549.1.9.16.2.19";  // RFC 5126 5.7.3.2

// CAttrValue: one attribute value with its attribute type: oid (dotted text)
// and value (the complete DER of one value, tag and length included).
class KORVEX_API CAttrValue {
 public:
  // CAttrValue(): no type, empty value. A null oid is the empty text.
  CAttrValue();
  explicit CAttrValue(char const* oid);
  CAttrValue(char const* oid, CBlob const& value);
  CAttrValue(CAttrValue const& other);
  CAttrValue& operator=(CAttrValue const& other);
  virtual ~CAttrValue();

  // get_oid: the attribute type's dotted text ("" when none).
  char const* get_oid() const;
  // get_value: the DER of the value; value(): the same, modifiable (a typed
  // value reads a changed DER back with decode()).
  CBlob const& get_value() const;
  CBlob& value();

 private:
  CStringProxy m_oid;
  CBlob m_value;
};

// Equal when the types' texts and the values' bytes are equal (typed values
// compare the same way, by their DER).
KORVEX_API bool operator==(CAttrValue const& a, CAttrValue const& b);
KORVEX_API bool operator!=(CAttrValue const& a, CAttrValue const& b);

// CAttribute: Attribute ::= SEQUENCE { attrType OBJECT IDENTIFIER, attrValues
// SET OF AttributeValue }: the type as dotted text and the values in list
// order (the DER encoder sorts the SET OF, X.690 11.6).
class KORVEX_API CAttribute {
 public:
  typedef std::list<CAttrValue>::iterator iterator;
  typedef std::list<CAttrValue>::const_iterator const_iterator;

  // CAttribute(): no type, no values; CAttribute(oid): that type (null is the
  // empty text; the text is checked when encoding).
  CAttribute();
  explicit CAttribute(char const* oid);
  CAttribute(CAttribute const& other);
  CAttribute& operator=(CAttribute const& other);
  ~CAttribute();
  // swap: exchanges the two attributes' contents.
  void swap(CAttribute& other) noexcept;

  char const* get_oid() const;

  // add(value): appends a value of this attribute. Its type must be empty or
  // this attribute's (otherwise 0x80070057, nothing is added); the stored
  // value carries this attribute's type. add(der): appends the DER as a value.
  void add(CAttrValue const& value);
  void add(CBlob const& der);

  iterator begin();
  iterator end();
  const_iterator begin() const;
  const_iterator end() const;
  std::size_t size() const;
  // erase: removes the value at it and returns the iterator after it.
  iterator erase(iterator it);

  // encode: the DER of the Attribute; bad or empty type text throws
  // 0x80070057, a value that is not one DER element 0x80093101.
  CBlob encode() const;
  // decode: replaces type and values with those of the DER.
  void decode(CBlob const& der);

 private:
  struct Impl;
  Impl* m_impl;
};

// Equal when the types' texts are equal and the values' DER are equal pairwise
// in list order.
KORVEX_API bool operator==(CAttribute const& a, CAttribute const& b);
KORVEX_API bool operator!=(CAttribute const& a, CAttribute const& b);

// CAttributes: the SET OF Attribute of a signer (signedAttrs, unsignedAttrs),
// in list order. The list does not keep types unique; add(CAttrValue) adds to
// the attribute already present.
class KORVEX_API CAttributes : public std::list<CAttribute> {
 public:
  using std::list<CAttribute>::erase;

  // find: the first attribute, in list order, whose type text equals oid byte
  // for byte, or end() (also for a null oid).
  iterator find(char const* oid);
  const_iterator find(char const* oid) const;
  // erase(oid): removes every attribute of that type; returns how many.
  std::size_t erase(char const* oid);
  // add(value): appends value to the first attribute of its type, or to a new
  // attribute of that type at the end of the list. A value without a type
  // throws 0x80070057.
  void add(CAttrValue const& value);

  // encode: the DER SET OF Attribute (sorted by the encoder; an empty list is
  // 31 00). decode: replaces the list with the attributes of a SET OF
  // Attribute (the signedAttrs of a SignerInfo once its [0] is read as 31).
  CBlob encode() const;
  void decode(CBlob const& der);
};

// CAttrContentType: content-type (1.2.840.113549.1.9.3), the OID of the
// signed content, held as dotted text.
class KORVEX_API CAttrContentType : public CAttrValue {
 public:
  // CAttrContentType(oid): that content type (bad text: 0x80070057).
  explicit CAttrContentType(char const* oid);
  // CAttrContentType(der): the content type in the DER of an OBJECT
  // IDENTIFIER (failure 0x80093101).
  explicit CAttrContentType(CBlob const& der);

  char const* get_contentType() const;
  // put_contentType: replaces the content type and the DER (bad or null text:
  // 0x80070057, nothing changes).
  void put_contentType(char const* oid);

  // encode: the DER made again from the content type (returned, also held as
  // get_value()); decode: the content type read from get_value(), or from der
  // (which then becomes the value). A failed decode changes nothing.
  CBlob const& encode();
  void decode();
  void decode(CBlob const& der);

 private:
  CStringProxy m_contentType;
};

// CAttrMessageDigest: message-digest (1.2.840.113549.1.9.4), the digest
// bytes, written as an OCTET STRING.
class KORVEX_API CAttrMessageDigest : public CAttrValue {
 public:
  // CAttrMessageDigest(): an empty digest (04 00).
  CAttrMessageDigest();
  explicit CAttrMessageDigest(CBlob const& digest);

  CBlob const& get_messageDigest() const;
  // put_messageDigest: stores the digest and sets the DER at once.
  void put_messageDigest(CBlob const& digest);

  // encode / decode as CAttrContentType's (decode unwraps the OCTET STRING;
  // a failed decode changes nothing).
  CBlob const& encode();
  void decode();
  void decode(CBlob const& der);

 private:
  CBlob m_messageDigest;
};

// CAttrSigningTime: signing-time (1.2.840.113549.1.9.5), a Time: years
// before 2050 as UTCTime, later ones as GeneralizedTime (RFC 5652 11.3).
// Milliseconds are not written.
class KORVEX_API CAttrSigningTime : public CAttrValue {
 public:
  // CAttrSigningTime(t): the time choice of t and its DER at once (a year
  // before 1950 cannot be written as UTCTime: 0x80093101).
  explicit CAttrSigningTime(CDateTime const& t);
  // CAttrSigningTime(der): the time in the DER of a Time (0x80093101).
  explicit CAttrSigningTime(CBlob const& der);

  // get_signingTime: the time choice (its alternative chosen by the year).
  CTimeChoice const& get_signingTime() const;
  // put_signingTime: replaces the time and the DER.
  void put_signingTime(CDateTime const& t);

  CBlob const& encode();
  void decode();
  void decode(CBlob const& der);

 private:
  CTimeChoice m_signingTime;
};

}  // namespace ASN1
}  // namespace Korvex

#include <korvex/asn1types/SigningCertificate.h>

#endif
