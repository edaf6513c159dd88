// CAdESSupport.h (internal): what the traits of the CAdES revocation values
// share: open-type fields holding the DER of another module's type, whole-
// input decoding, and the two time texts of the references.
#ifndef KORVEX_CADES_SRC_CADESSUPPORT_H
#define KORVEX_CADES_SRC_CADESSUPPORT_H

#include <korvex/asn1rt/asn1type.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>
#include <korvex/ocsp/RecordSupport.h>

#include <new>

namespace Korvex {
namespace PKI {
namespace CAdES {
namespace support {

// IsWholeElement and NewRecord: those of the OCSP layer (RecordSupport.h).
using PKI::detail::IsWholeElement;
using PKI::detail::NewRecord;

// SetOpenType: der, which must be one whole element (else 0x80093101), copied
// into ctxt's heap as the open type's bytes (no memory: 0x80093106).
void SetOpenType(ASN1CTXT* ctxt, ASN1OpenType& rec, CBlob const& der);
// GetOpenType: the open type's bytes (none: 0x80093101).
CBlob GetOpenType(ASN1OpenType const& rec);

// DecodeWhole<Traits>(der, value): der must be one whole element (the
// generated decoders stop after the first one and would drop the rest
// unseen), then asn1Decode<Traits> into value. Failures throw 0x80093101.
template <class Traits, class Value>
void DecodeWhole(CBlob const& der, Value& value) {
  if (!IsWholeElement(der)) ASN1::throwCodecError();
  ASN1::asn1Decode<Traits>(der, value);
}

// UtcTimeText: t as DER UTCTime text "YYMMDDhhmmssZ" in ctxt's heap: the
// fraction of a second is dropped; a year outside 1950..2049 throws 1901; no
// memory for the text throws 0x8007000E.
char const* UtcTimeText(ASN1CTXT* ctxt, CDateTime const& t);

// ParseUtcTime: UTCTime text "YYMMDDhhmm[ss]Z" (X.680 47.3 with UTC; DER
// always writes the seconds, X.690 11.8) as a CDateTime, YY below 50 meaning
// 20YY and otherwise 19YY (RFC 5280 4.1.2.5.1). Any other text, a time-zone
// offset included, throws 0x80093101.
CDateTime ParseUtcTime(char const* text);

// ParseGeneralizedTime: GeneralizedTime text "YYYYMMDDhh[mm[ss[(.|,)f]]]Z"
// (X.680 46.3 with UTC) as a CDateTime; fraction digits past the sixth are
// ignored. Local times, offsets, fractions of hours or minutes and dates the
// calendar refuses (or before 1601) throw 0x80093101.
CDateTime ParseGeneralizedTime(char const* text);

}  // namespace support
}  // namespace CAdES
}  // namespace PKI
}  // namespace Korvex

#endif
