// korvex/asn1types/GeneralizedTimeText.h: a CDateTime as GeneralizedTime text
// in an ASN.1 context.
#ifndef KORVEX_ASN1TYPES_GENERALIZEDTIMETEXT_H
#define KORVEX_ASN1TYPES_GENERALIZEDTIMETEXT_H

#include <korvex/asn1rt/asn1type.h>
#include <korvex/core/DateTime.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// DateToASN1GeneralizedTime returns t as "YYYYMMDDhhmmss[.f]Z" text
// (CDateTime::getGeneralizedTime) allocated from ctxt's type heap. With
// wholeSeconds the milliseconds and microseconds are cut off, never rounded:
// 12:00:00.999 is written 12:00:00 (RFC 5280 4.1.2.5.2 wants no fraction).
// A time after the year 9999 (which four year digits cannot hold) throws
// 0x80093101; no heap memory 0x80093106; a null ctxt 0x80070057.
KORVEX_API char const* DateToASN1GeneralizedTime(ASN1CTXT* ctxt, CDateTime const& t,
                                                 bool wholeSeconds);

}  // namespace ASN1
}  // namespace Korvex

#endif
