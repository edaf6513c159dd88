// korvex/ocsp/ResponderIDTraits.h: CResponderID to and from the generated
// record asn1data::ASN1T_ResponderID (OCSP-2013-88, RFC 6960 B.1), in the
// traits convention of <korvex/asn1types/Traits.h>.
#ifndef KORVEX_OCSP_RESPONDERIDTRAITS_H
#define KORVEX_OCSP_RESPONDERIDTRAITS_H

#include <korvex/asn1gen/OCSP_2013_88.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/ocsp/ResponderID.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace PKI {
namespace OCSP {

// ASN1T_ResponderID_traits:
// set: byName decodes the Name's DER (exactly one element, relaxed as the
//   name classes decode it: attribute values are kept as bytes) into a Name
//   record of ctxt's heap; byKey copies the hash into an OCTET STRING record
//   of ctxt's heap. No alternative, or a Name that does not decode, throws
//   0x80093101; an exhausted heap 0x80093106.
// get: selector 1 writes the Name record back as DER into byName, 2 copies
//   the key hash into byKey; any other selector, or a missing alternative
//   record, throws 0x80093101.
struct KORVEX_API ASN1T_ResponderID_traits
    : ASN1::GeneratedTraits<asn1data::ASN1T_ResponderID, asn1data::ASN1C_ResponderID,
                            &asn1data::asn1Copy_ResponderID> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, CResponderID const& value);
  static void get(ASN1_T const& rec, CResponderID& value);
};

}  // namespace OCSP
}  // namespace PKI
}  // namespace Korvex

#endif
