// korvex/asn1types/NamesTraits.h: traits (Traits.h) between the name values of
// Names.h and the generated records of PKIX1Explicit88 and PKIX1Implicit88.
//
// | traits                                   | record (asn1data::)              | typed value                |
// |------------------------------------------|----------------------------------|----------------------------|
// | ASN1T_AttributeTypeAndValue_traits       | ASN1T_AttributeTypeAndValue      | CAttributeTypeAndValue     |
// | ASN1T_RelativeDistinguishedName_traits   | ASN1T_RelativeDistinguishedName  | CRelativeDistinguishedName |
// | ASN1T_RDNSequence_traits                 | ASN1T_RDNSequence                | CName                      |
// | ASN1T_Name_traits                        | ASN1T_Name                       | CBlob (DER of the Name), CName |
// | ASN1T_GeneralName_traits                 | ASN1T_GeneralName                | CGeneralName               |
// | ASN1T_GeneralNames_traits                | ASN1T_GeneralNames               | CGeneralNames              |
//
// The list traits follow the record's form: a counted array ({n, elem},
// ASN1TArrayList_traits) or a linked list (ASN1TSeqOfList_traits), whichever
// the catalogue generates for the type.
#ifndef KORVEX_ASN1TYPES_NAMESTRAITS_H
#define KORVEX_ASN1TYPES_NAMESTRAITS_H

#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <korvex/asn1gen/PKIX1Implicit88.h>
#include <korvex/asn1types/ArrayListTraits.h>
#include <korvex/asn1types/Names.h>
#include <korvex/asn1types/SeqOfListTraits.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/platform/export.h>

#include <type_traits>

namespace Korvex {
namespace ASN1 {

namespace detail {
// The set and get of a list traits class Impl, and nothing else, so that a
// traits class can take ASN1_T, ASN1_C and copy from GeneratedTraits alone.
template <class Impl, class Record, class List>
struct ListSetGet {
  static void set(ASN1CTXT* ctxt, Record& rec, List const& list) { Impl::set(ctxt, rec, list); }
  static void get(Record const& rec, List& list) { Impl::get(rec, list); }
};
}  // namespace detail

// NameListTraits<Record, ElemTraits, Value, List>: set and get of a generated
// SEQUENCE OF / SET OF record, by the form the catalogue gave it.
template <class Record, class ElemTraits, class Value, class List>
using NameListTraits = detail::ListSetGet<
    typename std::conditional<
        std::is_base_of<ASN1TSeqOfList, Record>::value,
        ASN1TSeqOfList_traits<typename ElemTraits::ASN1_T, ElemTraits, Value, List>,
        ASN1TArrayList_traits<Record, ElemTraits, Value, List>>::type,
    Record, List>;

// ASN1T_AttributeTypeAndValue_traits: set converts the OID text (bad or unset:
// 0x80093101) and copies the value's DER into the record's open type, which
// must be exactly one DER element (otherwise 0x80093101); the value is written
// as it stands. get copies the OID text and the value's DER out.
struct KORVEX_API ASN1T_AttributeTypeAndValue_traits
    : GeneratedTraits<asn1data::ASN1T_AttributeTypeAndValue,
                      asn1data::ASN1C_AttributeTypeAndValue,
                      &asn1data::asn1Copy_AttributeTypeAndValue> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CAttributeTypeAndValue const& v);
  static void get(ASN1_T const& rec, CAttributeTypeAndValue& v);
};

// ASN1T_RelativeDistinguishedName_traits: the pairs in list order (the DER
// encoder sorts the SET OF).
struct ASN1T_RelativeDistinguishedName_traits
    : GeneratedTraits<asn1data::ASN1T_RelativeDistinguishedName,
                      asn1data::ASN1C_RelativeDistinguishedName,
                      &asn1data::asn1Copy_RelativeDistinguishedName>,
      NameListTraits<asn1data::ASN1T_RelativeDistinguishedName,
                     ASN1T_AttributeTypeAndValue_traits, CAttributeTypeAndValue,
                     CRelativeDistinguishedName> {};

// ASN1T_RDNSequence_traits: the RDNs of a CName in wire order.
struct ASN1T_RDNSequence_traits
    : GeneratedTraits<asn1data::ASN1T_RDNSequence, asn1data::ASN1C_RDNSequence,
                      &asn1data::asn1Copy_RDNSequence>,
      NameListTraits<asn1data::ASN1T_RDNSequence, ASN1T_RelativeDistinguishedName_traits,
                     CRelativeDistinguishedName, CName> {};

// ASN1T_Name_traits: the whole-structure traits of a Name held as a CBlob
// with its DER (DerBlobTraits: set decodes the DER into ctxt, get encodes the
// record back; failures 0x80093101), and the traits of a CName: set selects
// rdnSequence and fills it from the list (0x80093106 when ctxt's heap is
// exhausted), get reads the RDN sequence (another selector: 0x80093101).
struct KORVEX_API ASN1T_Name_traits
    : DerBlobTraits<asn1data::ASN1T_Name, asn1data::ASN1C_Name, &asn1data::asn1Copy_Name> {
  using DerBlobTraits::get;
  using DerBlobTraits::set;
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CName const& v);
  static void get(ASN1_T const& rec, CName& v);
};

// ASN1T_GeneralName_traits: set writes the selected alternative (none or an
// unknown number: 0x80093101); the DER alternatives (otherName, x400Address,
// directoryName, ediPartyName) are decoded as their types into ctxt (bad DER:
// 0x80093101), the IA5String alternatives are written one byte per character
// (a character above U+00FF: 0x80093101), registeredID through str2oid (bad
// text: 0x80093101). get reads every alternative back (a DER alternative is
// encoded again from the record); an unknown selector throws 0x80093101.
struct KORVEX_API ASN1T_GeneralName_traits
    : GeneratedTraits<asn1data::ASN1T_GeneralName, asn1data::ASN1C_GeneralName,
                      &asn1data::asn1Copy_GeneralName> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CGeneralName const& v);
  static void get(ASN1_T const& rec, CGeneralName& v);
};

// ASN1T_GeneralNames_traits: the general names in list order.
struct ASN1T_GeneralNames_traits
    : GeneratedTraits<asn1data::ASN1T_GeneralNames, asn1data::ASN1C_GeneralNames,
                      &asn1data::asn1Copy_GeneralNames>,
      NameListTraits<asn1data::ASN1T_GeneralNames, ASN1T_GeneralName_traits, CGeneralName,
                     CGeneralNames> {};

}  // namespace ASN1
}  // namespace Korvex

#endif
