// korvex/asn1types/Hash.h: hash values of the CAdES references (RFC 5126
// 5.7.3.3 and 5.8.2): OtherHashAlgAndValue and the OtherHash CHOICE.
//
//   OtherHash ::= CHOICE { sha1Hash OtherHashValue,   -- alternative 1
//                          otherHash OtherHashAlgAndValue }  -- alternative 2
//   OtherHashAlgAndValue ::= SEQUENCE { hashAlgorithm AlgorithmIdentifier,
//                                       hashValue OtherHashValue }
//
// Conversions to and from the generated records are HashTraits.h.
#ifndef KORVEX_ASN1TYPES_HASH_H
#define KORVEX_ASN1TYPES_HASH_H

#include <korvex/asn1types/AlgorithmIdentifier.h>
#include <korvex/asn1types/Choice.h>
#include <korvex/core/Blob.h>
#include <korvex/platform/export.h>

#include <memory>

namespace Korvex {
namespace ASN1 {

// COtherHashAlgAndValue: a hash value and the algorithm that made it. A value
// class: deep copies, one owned implementation.
class KORVEX_API COtherHashAlgAndValue {
 public:
  // COtherHashAlgAndValue(): empty algorithm, empty hash value.
  COtherHashAlgAndValue();
  COtherHashAlgAndValue(CBlob const& hashValue, CAlgorithmIdentifier const& hashAlgorithm);
  COtherHashAlgAndValue(COtherHashAlgAndValue const& other);
  COtherHashAlgAndValue& operator=(COtherHashAlgAndValue const& other);
  ~COtherHashAlgAndValue();

  CAlgorithmIdentifier const& get_hashAlgorithm() const;
  void put_hashAlgorithm(CAlgorithmIdentifier const& hashAlgorithm);
  CBlob const& get_hashValue() const;
  void put_hashValue(CBlob const& hashValue);

  // compare_hashValue: true when both hold the same hash: equal algorithm
  // OID texts and equal hash bytes. The algorithms' parameters are not
  // compared.
  bool compare_hashValue(COtherHashAlgAndValue const& other) const;

  // encode: DER (failures as CAlgorithmIdentifier::encode). decode: replaces
  // the value; failure throws 0x80093101 and leaves it as it was.
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Equal when algorithms (parameters included) and hash values are equal.
KORVEX_API bool operator==(COtherHashAlgAndValue const& left, COtherHashAlgAndValue const& right);
KORVEX_API bool operator!=(COtherHashAlgAndValue const& left, COtherHashAlgAndValue const& right);

// COtherHashImpl: the CHOICE holder of COtherHash: 1 -> CBlob (sha1Hash),
// 2 -> COtherHashAlgAndValue (otherHash), any other number -> no alternative.
class KORVEX_API COtherHashImpl : public Choice {
 public:
  enum { sha1Hash = 1, otherHash = 2 };
  COtherHashImpl();
  COtherHashImpl(COtherHashImpl const& other);
  COtherHashImpl& operator=(COtherHashImpl const& other);
  ~COtherHashImpl() override;
  ChoiceValueTraits const* findTraits(unsigned int n) const override;
};

// COtherHash: the OtherHash CHOICE. A default value selects sha1Hash holding
// an empty blob; clear() selects no alternative (get_type() 0), which
// encode() refuses with 0x80093101.
class KORVEX_API COtherHash {
 public:
  COtherHash();
  // COtherHash(sha1Hash): alternative 1 holding the bare SHA-1 value.
  explicit COtherHash(CBlob const& sha1Hash);
  // COtherHash(otherHash): alternative 2.
  explicit COtherHash(COtherHashAlgAndValue const& otherHash);
  COtherHash(COtherHash const& other);
  COtherHash& operator=(COtherHash const& other);
  ~COtherHash();

  // get_type: the selected alternative (1 sha1Hash, 2 otherHash; 0 after
  // clear()).
  unsigned int get_type() const;
  // get_sha1Hash / get_otherHash: the held value when that alternative is
  // selected, else null. The pointer lives until the value changes.
  CBlob const* get_sha1Hash() const;
  COtherHashAlgAndValue const* get_otherHash() const;
  // put_sha1Hash / put_otherHash: select the alternative holding a copy
  // (Choice::put_value; 0x80070057 cannot occur with these fixed numbers).
  void put_sha1Hash(CBlob const& sha1Hash);
  void put_otherHash(COtherHashAlgAndValue const& otherHash);
  // clear: no alternative, no value.
  void clear();

  // compare_hashValue: true when both name the same hash bytes: two sha1Hash
  // values with equal bytes, two otherHash values that compare_hashValue
  // equal, or a sha1Hash and an otherHash whose algorithm is SHA-1
  // (1.3.14.3.2.26) with equal bytes. False when either selects nothing.
  bool compare_hashValue(COtherHash const& other) const;

  // encode: DER of the selected alternative (none selected: 0x80093101).
  // decode: replaces the value; bad DER or an alternative other than 1 and 2
  // throws 0x80093101 and leaves the value as it was.
  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  std::unique_ptr<COtherHashImpl> m_impl;
};

// Equal when the same alternative is selected and the values are equal (two
// values selecting nothing are equal).
KORVEX_API bool operator==(COtherHash const& left, COtherHash const& right);
KORVEX_API bool operator!=(COtherHash const& left, COtherHash const& right);

// The OID text of SHA-1 (RFC 3279 2.2.1), the algorithm of a sha1Hash.
constexpr char kSha1AlgorithmOid[] = "1.3.14.3.2.26";

}  // namespace ASN1
}  // namespace Korvex

#endif
