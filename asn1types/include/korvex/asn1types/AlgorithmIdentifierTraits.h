// korvex/asn1types/AlgorithmIdentifierTraits.h: CAlgorithmIdentifier to and
// from asn1data::ASN1T_AlgorithmIdentifier (Traits.h convention).
#ifndef KORVEX_ASN1TYPES_ALGORITHMIDENTIFIERTRAITS_H
#define KORVEX_ASN1TYPES_ALGORITHMIDENTIFIERTRAITS_H

#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <korvex/asn1types/AlgorithmIdentifier.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// ASN1T_AlgorithmIdentifier_traits:
// set: the record is cleared; the OID text goes through str2oid (failure:
//   0x80093101). A non-empty parameters blob is copied into ctxt's heap as the
//   open-type bytes, marked present, and resolved by the generated table
//   decoder (asn1DTC_AlgorithmIdentifier) against the algorithm's information
//   object: parameters that object's type rejects throw 0x80093101 (an OID
//   without an object keeps the bytes as they are). An empty blob leaves the
//   parameters absent. Heap exhaustion: 0x80093106.
// get: the OID as dotted text through the value's virtual put_algorithm (a
//   CAlgorithmIdentifierEx resets its cache), then the parameter bytes when
//   present, else an empty blob.
// copy: asn1Copy_AlgorithmIdentifier.
struct KORVEX_API ASN1T_AlgorithmIdentifier_traits
    : GeneratedTraits<asn1data::ASN1T_AlgorithmIdentifier, asn1data::ASN1C_AlgorithmIdentifier,
                      &asn1data::asn1Copy_AlgorithmIdentifier> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CAlgorithmIdentifier const& value);
  static void get(ASN1_T const& rec, CAlgorithmIdentifier& value);
};

}  // namespace ASN1
}  // namespace Korvex

#endif
