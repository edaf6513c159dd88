// Traits of the extension values that hold no names: Extension, CRLReason,
// ReasonFlags, KeyUsage, PrivateKeyUsagePeriod.
#include <korvex/asn1types/ExtensionTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>

#include "NamedBitsCodec.h"
#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

void ASN1T_Extension_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CExtension const& v) {
  ASN1TObjId_traits::set(ctxt, rec.extnID, v.get_extnID());
  // critical is DEFAULT FALSE: DER leaves a default value out (X.690 11.5).
  rec.m.criticalPresent = v.get_critical() ? 1 : 0;
  rec.critical = v.get_critical() ? 1 : 0;
  // extnValue is an OCTET STRING (CONTAINING ...): its contents are the DER
  // of the extension's value, written as they stand (the decoded pointer
  // stays null, so the encoder does not re-encode them).
  Asn1TObject_traits::set(ctxt, rec.extnValue, v.get_extnValue());
}

void ASN1T_Extension_traits::get(ASN1_T const& rec, CExtension& v) {
  v.put_extnID(detail::oidText(rec.extnID).c_str());
  v.put_critical(rec.m.criticalPresent && rec.critical);
  CBlob value;
  Asn1TObject_traits::get(rec.extnValue, value);
  v.put_extnValue(value);
}

void ASN1T_CRLReason_traits::set(ASN1CTXT*, ASN1_T& rec, CrlReason const& v) {
  rec = v.get_reason();
}

void ASN1T_CRLReason_traits::get(ASN1_T const& rec, CrlReason& v) {
  // The decoder has checked the ENUMERATED's value list already; a record
  // built by hand with another number is not a CRL reason.
  try {
    v.put_reason(rec);
  } catch (ATL::CAtlException const&) {
    throwCodecError();
  }
}

void ASN1T_ReasonFlags_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CReasonFlags const& v) {
  detail::maskToBitString(ctxt, rec, v.get_flags());
}

void ASN1T_ReasonFlags_traits::get(ASN1_T const& rec, CReasonFlags& v) {
  v.put_flags(detail::bitStringToMask(rec));
}

void ASN1T_KeyUsage_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CKeyUsage const& v) {
  detail::maskToBitString(ctxt, rec, v.get_flags());
}

void ASN1T_KeyUsage_traits::get(ASN1_T const& rec, CKeyUsage& v) {
  v.put_flags(detail::bitStringToMask(rec));
}

void ASN1T_PrivateKeyUsagePeriod_traits::set(ASN1CTXT* ctxt, ASN1_T& rec,
                                             CExtPrivateKeyUsagePeriod const& v) {
  rec.m.notBeforePresent = v.get_notBefore() ? 1 : 0;
  if (v.get_notBefore()) ASN1GeneralizedTime_traits::set(ctxt, rec.notBefore, *v.get_notBefore());
  rec.m.notAfterPresent = v.get_notAfter() ? 1 : 0;
  if (v.get_notAfter()) ASN1GeneralizedTime_traits::set(ctxt, rec.notAfter, *v.get_notAfter());
}

void ASN1T_PrivateKeyUsagePeriod_traits::get(ASN1_T const& rec, CExtPrivateKeyUsagePeriod& v) {
  if (rec.m.notBeforePresent) {
    CDateTime const time = detail::readGeneralizedTime(rec.notBefore);
    v.put_notBefore(&time);
  } else {
    v.put_notBefore(nullptr);
  }
  if (rec.m.notAfterPresent) {
    CDateTime const time = detail::readGeneralizedTime(rec.notAfter);
    v.put_notAfter(&time);
  } else {
    v.put_notAfter(nullptr);
  }
}

}  // namespace ASN1
}  // namespace Korvex
