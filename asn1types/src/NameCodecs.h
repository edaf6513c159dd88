// NameCodecs.h (internal): the traits through which the name values encode
// and decode themselves.
//
// The catalogue's AttributeTypeAndValue constrains its value by the table of
// naming attributes, so its generated decoder also decodes every value as
// the attribute's X.520 type and refuses what real names hold: a CN of more
// than 64 characters, an IA5String CN, an empty value, a three-letter
// country. A name value keeps attribute values as the bytes that stand on
// the wire, so the value classes use the generated descriptors with their
// table constraints taken out: the same records, tags and size limits, and
// the open types kept as bytes (X.682 10: a value whose type is not known is
// left undecoded). Encoding is unchanged (raw bytes are written as they
// stand either way).
#ifndef KORVEX_ASN1TYPES_SRC_NAMECODECS_H
#define KORVEX_ASN1TYPES_SRC_NAMECODECS_H

#include <korvex/asn1rt/asn1engine.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/NamesTraits.h>
#include <korvex/asn1types/Traits.h>

#include "NameSupport.h"

namespace Korvex {
namespace ASN1 {
namespace names {

// untabled: a copy of the descriptor graph of `generated` (every type it
// reaches) whose members carry no table constraint. Built once per
// descriptor, never freed.
Asn1Engine::TypeDesc const* untabled(Asn1Engine::TypeDesc const* generated);

// untabledOf<Generated>(): untabled(Generated), looked up once.
template <Asn1Engine::TypeDesc const* Generated>
Asn1Engine::TypeDesc const* untabledOf() {
  static Asn1Engine::TypeDesc const* const desc = untabled(Generated);
  return desc;
}

// The control class of a record over the untabled descriptor.
template <class Record, Asn1Engine::TypeDesc const* Generated>
class UntabledControl : public Asn1Engine::Control {
 public:
  UntabledControl(ASN1MessageBufferIF& buffer, Record& rec)
      : Control(buffer, untabledOf<Generated>(), &rec) {}
};

// The deep copy over the untabled descriptor (decoded values are not copied:
// there are none).
template <class Record, Asn1Engine::TypeDesc const* Generated>
int untabledCopy(ASN1CTXT* ctxt, Record const* src, Record* dst) {
  return Asn1Engine::copy(ctxt, untabledOf<Generated>(), src, dst);
}

// decodeWhole: der must be exactly one element (the decoder would leave
// what follows it unread, and the value would silently lose it), then
// asn1Decode<Traits>. Failures throw 0x80093101.
template <class Traits, class Value>
void decodeWhole(CBlob const& der, Value& v) {
  if (!isSingleElement(der)) throwCodecError();
  asn1Decode<Traits>(der, v);
}

// Codec<Traits, Record, Generated>: Traits with the untabled control and
// copy.
template <class Traits, class Record, Asn1Engine::TypeDesc const* Generated>
struct Codec : Traits {
  typedef UntabledControl<Record, Generated> ASN1_C;
  static void copy(ASN1CTXT* ctxt, Record const& src, Record& dst) {
    checkCopyStatus(untabledCopy<Record, Generated>(ctxt, &src, &dst));
  }
};

// Whole-structure traits (CBlob of the DER) over the untabled descriptor.
template <class Record, Asn1Engine::TypeDesc const* Generated>
using DerCodec = DerBlobTraits<Record, UntabledControl<Record, Generated>,
                               &untabledCopy<Record, Generated>>;

typedef Codec<ASN1T_AttributeTypeAndValue_traits, asn1data::ASN1T_AttributeTypeAndValue,
              &asn1data::asn1Desc_AttributeTypeAndValue>
    AtavCodec;
typedef Codec<ASN1T_RelativeDistinguishedName_traits, asn1data::ASN1T_RelativeDistinguishedName,
              &asn1data::asn1Desc_RelativeDistinguishedName>
    RdnCodec;
typedef Codec<ASN1T_Name_traits, asn1data::ASN1T_Name, &asn1data::asn1Desc_Name> NameCodec;
typedef Codec<ASN1T_GeneralName_traits, asn1data::ASN1T_GeneralName,
              &asn1data::asn1Desc_GeneralName>
    GeneralNameCodec;
typedef Codec<ASN1T_GeneralNames_traits, asn1data::ASN1T_GeneralNames,
              &asn1data::asn1Desc_GeneralNames>
    GeneralNamesCodec;

typedef DerCodec<asn1data::ASN1T_Name, &asn1data::asn1Desc_Name> NameDer;
typedef DerCodec<asn1data::ASN1T_GeneralName_otherName, &asn1data::asn1Desc_GeneralName_otherName>
    OtherNameDer;
typedef DerCodec<asn1data::ASN1T_ORAddress, &asn1data::asn1Desc_ORAddress> ORAddressDer;
typedef DerCodec<asn1data::ASN1T_EDIPartyName, &asn1data::asn1Desc_EDIPartyName> EDIPartyNameDer;

}  // namespace names
}  // namespace ASN1
}  // namespace Korvex

#endif
