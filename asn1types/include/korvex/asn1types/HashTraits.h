// korvex/asn1types/HashTraits.h: COtherHashAlgAndValue and COtherHash to and
// from their generated records (Traits.h convention).
#ifndef KORVEX_ASN1TYPES_HASHTRAITS_H
#define KORVEX_ASN1TYPES_HASHTRAITS_H

#include <korvex/asn1gen/ETS_ElectronicSignatureFormats_ExplicitSyntax88.h>
#include <korvex/asn1types/Hash.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// ASN1T_OtherHashAlgAndValue_traits: hashAlgorithm through
// ASN1T_AlgorithmIdentifier_traits, hashValue as OCTET STRING contents (heap
// exhaustion while copying them: 0x80093106).
struct KORVEX_API ASN1T_OtherHashAlgAndValue_traits
    : GeneratedTraits<asn1data::ASN1T_OtherHashAlgAndValue, asn1data::ASN1C_OtherHashAlgAndValue,
                      &asn1data::asn1Copy_OtherHashAlgAndValue> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, COtherHashAlgAndValue const& value);
  static void get(ASN1_T const& rec, COtherHashAlgAndValue& value);
};

// ASN1T_OtherHash_traits:
// set: alternative 1 stores a heap OCTET STRING record, 2 a heap
//   OtherHashAlgAndValue record, both from ctxt; a value selecting nothing (or
//   an unknown number) leaves the record unselected, which the encoder
//   refuses (0x80093101).
// get: selector 1 or 2 is put through the matching setter; any other selector
//   (or a missing alternative record) throws 0x80093101.
struct KORVEX_API ASN1T_OtherHash_traits
    : GeneratedTraits<asn1data::ASN1T_OtherHash, asn1data::ASN1C_OtherHash,
                      &asn1data::asn1Copy_OtherHash> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, COtherHash const& value);
  static void get(ASN1_T const& rec, COtherHash& value);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
