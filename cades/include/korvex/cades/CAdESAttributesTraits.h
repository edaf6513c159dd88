// korvex/cades/CAdESAttributesTraits.h: the CAdES revocation-reference values
// (CAdESAttributes.h) to and from the generated records of the ASN1CADES
// module, in the traits convention of <korvex/asn1types/Traits.h>.
//
// | traits                               | record (ASN1CADES::)         | typed value |
// |--------------------------------------|------------------------------|--------------------------|
// | ASN1T_CrlIdentifier_traits           | ASN1T_CrlIdentifier          | CCrlIdentifier | |
// ASN1T_CrlValidatedID_traits          | ASN1T_CrlValidatedID         | CCrlValidatedID          |
// | ASN1T_CRLListID_traits               | ASN1T_CRLListID              | CCRLListID | |
// ASN1T_OcspIdentifier_traits          | ASN1T_OcspIdentifier         | COcspIdentifier          |
// | ASN1T_OcspResponsesID_traits         | ASN1T_OcspResponsesID        | COcspResponsesID | |
// ASN1T_OcspListID_traits              | ASN1T_OcspListID             | COcspListID              |
// | ASN1T_CrlOcspRef_traits              | ASN1T_CrlOcspRef             | CCrlOcspRef | |
// ASN1T_CompleteRevocationRefs_traits  | ASN1T_CompleteRevocationRefs | CCompleteRevocationRefs  |
// | ASN1T_RevocationValues_traits        | ASN1T_RevocationValues       | CRevocationValues | |
// ASN1T_CompleteCertificateRefs_traits | ASN1T_CompleteCertificateRefs| CCompleteCertificateRefs |
//
// The types of other modules (Name, OtherHash, ResponderID, OtherCertID,
// CertificateList, BasicOCSPResponse) are open types in these records: set
// stores the DER that the part's own encode() makes (or the blob the value
// holds), which must be exactly one element (otherwise 0x80093101); get
// decodes it with the part's own decode(). Every set fills every field of
// the record it is given and takes all storage from ctxt's heap.
#ifndef KORVEX_CADES_CADESATTRIBUTESTRAITS_H
#define KORVEX_CADES_CADESATTRIBUTESTRAITS_H

#include <korvex/asn1gen/ASN1CADES.h>
#include <korvex/asn1types/SeqOfListTraits.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace PKI {
namespace CAdES {

// ASN1T_CrlIdentifier_traits:
// set: crlissuer as an open type; crlIssuedTime as UTCTime "YYMMDDhhmmssZ"
//   (milliseconds dropped; a year outside 1950..2049 throws 1901; no memory
//   for the text 0x8007000E); the number, when present, as big-integer text
//   with its presence bit set.
// get: crlissuer from the open type; the UTCTime YYMMDDhhmm[ss]Z read with
//   the century 20 for YY below 50, else 19 (other forms, such as a time
//   zone offset, throw 0x80093101); the number when its bit is set, else
//   none.
struct KORVEX_API ASN1T_CrlIdentifier_traits
    : ASN1::GeneratedTraits<ASN1CADES::ASN1T_CrlIdentifier, ASN1CADES::ASN1C_CrlIdentifier,
                            &ASN1CADES::asn1Copy_CrlIdentifier> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CCrlIdentifier const& value);
  static void get(ASN1_T const& rec, CCrlIdentifier& value);
};

// ASN1T_CrlValidatedID_traits: crlHash as the open type of
// COtherHash::encode(); the identifier, when present, by
// ASN1T_CrlIdentifier_traits with its presence bit set.
struct KORVEX_API ASN1T_CrlValidatedID_traits
    : ASN1::GeneratedTraits<ASN1CADES::ASN1T_CrlValidatedID, ASN1CADES::ASN1C_CrlValidatedID,
                            &ASN1CADES::asn1Copy_CrlValidatedID> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CCrlValidatedID const& value);
  static void get(ASN1_T const& rec, CCrlValidatedID& value);
};

// ASN1T_CRLListID_traits: the crls list, one element per CCrlValidatedID in
// order (ASN1TSeqOfList_traits).
struct KORVEX_API ASN1T_CRLListID_traits
    : ASN1::GeneratedTraits<ASN1CADES::ASN1T_CRLListID, ASN1CADES::ASN1C_CRLListID,
                            &ASN1CADES::asn1Copy_CRLListID> {
  typedef ASN1::ASN1TSeqOfList_traits<ASN1CADES::ASN1T_CrlValidatedID, ASN1T_CrlValidatedID_traits,
                                      CCrlValidatedID, CCRLListID>
      list_traits;
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CCRLListID const& value);
  static void get(ASN1_T const& rec, CCRLListID& value);
};

// ASN1T_OcspIdentifier_traits: the responder ID as the open type of
// CResponderID::encode(); producedAt as GeneralizedTime text with its
// fraction (DateToASN1GeneralizedTime without whole seconds). get reads
// YYYYMMDDhh[mm[ss[.f]]]Z (other forms throw 0x80093101).
struct KORVEX_API ASN1T_OcspIdentifier_traits
    : ASN1::GeneratedTraits<ASN1CADES::ASN1T_OcspIdentifier, ASN1CADES::ASN1C_OcspIdentifier,
                            &ASN1CADES::asn1Copy_OcspIdentifier> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, COcspIdentifier const& value);
  static void get(ASN1_T const& rec, COcspIdentifier& value);
};

// ASN1T_OcspResponsesID_traits: the identifier by ASN1T_OcspIdentifier_traits;
// the hash, when present, as the open type of COtherHash::encode() with its
// presence bit set.
struct KORVEX_API ASN1T_OcspResponsesID_traits
    : ASN1::GeneratedTraits<ASN1CADES::ASN1T_OcspResponsesID, ASN1CADES::ASN1C_OcspResponsesID,
                            &ASN1CADES::asn1Copy_OcspResponsesID> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, COcspResponsesID const& value);
  static void get(ASN1_T const& rec, COcspResponsesID& value);
};

// ASN1T_OcspListID_traits: the ocspResponses list, one element per
// COcspResponsesID in order.
struct KORVEX_API ASN1T_OcspListID_traits
    : ASN1::GeneratedTraits<ASN1CADES::ASN1T_OcspListID, ASN1CADES::ASN1C_OcspListID,
                            &ASN1CADES::asn1Copy_OcspListID> {
  typedef ASN1::ASN1TSeqOfList_traits<ASN1CADES::ASN1T_OcspResponsesID,
                                      ASN1T_OcspResponsesID_traits, COcspResponsesID, COcspListID>
      list_traits;
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, COcspListID const& value);
  static void get(ASN1_T const& rec, COcspListID& value);
};

// ASN1T_CrlOcspRef_traits: crlids and ocspids are written (bit set) only when
// present and not empty; get takes a list whose bit is set and which has
// elements, and removes it otherwise. otherRev is never written and is
// ignored when read.
struct KORVEX_API ASN1T_CrlOcspRef_traits
    : ASN1::GeneratedTraits<ASN1CADES::ASN1T_CrlOcspRef, ASN1CADES::ASN1C_CrlOcspRef,
                            &ASN1CADES::asn1Copy_CrlOcspRef> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CCrlOcspRef const& value);
  static void get(ASN1_T const& rec, CCrlOcspRef& value);
};

// ASN1T_CompleteRevocationRefs_traits: one CrlOcspRef per element, in order.
struct KORVEX_API ASN1T_CompleteRevocationRefs_traits
    : ASN1::ASN1TSeqOfList_traits<ASN1CADES::ASN1T_CrlOcspRef, ASN1T_CrlOcspRef_traits, CCrlOcspRef,
                                  CCompleteRevocationRefs> {
  typedef ASN1CADES::ASN1T_CompleteRevocationRefs ASN1_T;
  typedef ASN1CADES::ASN1C_CompleteRevocationRefs ASN1_C;
  static void copy(ASN1CTXT* ctxt, ASN1_T const& src, ASN1_T& dst);
};

// ASN1T_RevocationValues_traits: crlVals and ocspVals are written (bit set,
// each blob an open-type element) only when present and not empty; get takes
// a list whose bit is set and which has elements, and removes it otherwise.
// otherRevVals is never written and is ignored when read.
struct KORVEX_API ASN1T_RevocationValues_traits
    : ASN1::GeneratedTraits<ASN1CADES::ASN1T_RevocationValues, ASN1CADES::ASN1C_RevocationValues,
                            &ASN1CADES::asn1Copy_RevocationValues> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CRevocationValues const& value);
  static void get(ASN1_T const& rec, CRevocationValues& value);
};

// ASN1T_CompleteCertificateRefs_traits: each COtherCertID's encode() as an
// open-type element, in order; get decodes each element with
// COtherCertID::decode.
struct KORVEX_API ASN1T_CompleteCertificateRefs_traits
    : ASN1::GeneratedTraits<ASN1CADES::ASN1T_CompleteCertificateRefs,
                            ASN1CADES::ASN1C_CompleteCertificateRefs,
                            &ASN1CADES::asn1Copy_CompleteCertificateRefs> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CCompleteCertificateRefs const& value);
  static void get(ASN1_T const& rec, CCompleteCertificateRefs& value);
};

}  // namespace CAdES
}  // namespace PKI
}  // namespace Korvex

#endif
