// HashTraits.cpp: COtherHashAlgAndValue <-> ASN1T_OtherHashAlgAndValue and
// COtherHash <-> ASN1T_OtherHash.
#include <korvex/asn1types/AlgorithmIdentifierTraits.h>
#include <korvex/asn1types/HashTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>

#include <new>

namespace Korvex {
namespace ASN1 {

namespace {

// A zero-filled T from ctxt's type heap, constructed in place. Generated
// records made this way own no context (mpContext stays null), so nothing
// destroys them: the heap takes them back with the context.
template <class T>
T* NewHeapRecord(ASN1CTXT* ctxt) {
  void* memory = checkHeap(rtMemHeapAllocZ(&ctxt->pTypeMemHeap, sizeof(T)));
  return ::new (memory) T();
}

}  // namespace

void ASN1T_OtherHashAlgAndValue_traits::set(ASN1CTXT* ctxt, ASN1_T& rec,
                                            COtherHashAlgAndValue const& value) {
  if (!ctxt) throwInvalidArgument();
  ASN1T_AlgorithmIdentifier_traits::set(ctxt, rec.hashAlgorithm, value.get_hashAlgorithm());
  ASN1TDynOctStr_traits::set(ctxt, rec.hashValue, value.get_hashValue());
}

void ASN1T_OtherHashAlgAndValue_traits::get(ASN1_T const& rec, COtherHashAlgAndValue& value) {
  CAlgorithmIdentifier algorithm;
  ASN1T_AlgorithmIdentifier_traits::get(rec.hashAlgorithm, algorithm);
  CBlob hashValue;
  ASN1TDynOctStr_traits::get(rec.hashValue, hashValue);
  value.put_hashAlgorithm(algorithm);
  value.put_hashValue(hashValue);
}

void ASN1T_OtherHash_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, COtherHash const& value) {
  if (!ctxt) throwInvalidArgument();
  rec.t = 0;
  if (CBlob const* sha1 = value.get_sha1Hash()) {
    asn1data::ASN1T_OtherHashValue* bytes = NewHeapRecord<asn1data::ASN1T_OtherHashValue>(ctxt);
    ASN1TDynOctStr_traits::set(ctxt, *bytes, *sha1);
    rec.u.sha1Hash = bytes;
    rec.t = asn1data::ASN1T_OtherHash::T_sha1Hash;
  } else if (COtherHashAlgAndValue const* other = value.get_otherHash()) {
    auto* record = NewHeapRecord<asn1data::ASN1T_OtherHashAlgAndValue>(ctxt);
    ASN1T_OtherHashAlgAndValue_traits::set(ctxt, *record, *other);
    rec.u.otherHash = record;
    rec.t = asn1data::ASN1T_OtherHash::T_otherHash;
  }
}

void ASN1T_OtherHash_traits::get(ASN1_T const& rec, COtherHash& value) {
  if (rec.t == asn1data::ASN1T_OtherHash::T_sha1Hash && rec.u.sha1Hash) {
    CBlob sha1;
    ASN1TDynOctStr_traits::get(*rec.u.sha1Hash, sha1);
    value.put_sha1Hash(sha1);
  } else if (rec.t == asn1data::ASN1T_OtherHash::T_otherHash && rec.u.otherHash) {
    COtherHashAlgAndValue other;
    ASN1T_OtherHashAlgAndValue_traits::get(*rec.u.otherHash, other);
    value.put_otherHash(other);
  } else {
    throwCodecError();
  }
}

}  // namespace ASN1
}  // namespace Korvex
