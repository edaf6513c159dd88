// Traits of the management-protocol status values: PKIFreeText,
// PKIFailureInfo, PKIStatusInfo.
#include <korvex/asn1types/CMPTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>

#include <climits>

#include "NamedBitsCodec.h"
#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

namespace {

// UTF-8 conversion failures are this value class's own code; heap and other
// failures pass through.
template <class F>
void convertText(F&& convert) {
  try {
    convert();
  } catch (ATL::CAtlException const& e) {
    if (e.m_hr == kAsn1CodecError) ATL::AtlThrowImpl(kTextConversionError);
    throw;
  }
}

}  // namespace

void ASN1T_PKIFreeText_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CPKIFreeText const& v) {
  std::size_t const count = v.size();
  if (count == 0) {
    rec.n = 0;
    rec.elem = nullptr;
    return;
  }
  if (count > UINT_MAX / sizeof(char const*)) throwCodecError();
  auto** strings = static_cast<char const**>(
      checkHeap(rtMemHeapAllocZ(&ctxt->pTypeMemHeap, count * sizeof(char const*))));
  std::size_t i = 0;
  for (std::wstring const& text : v) {
    convertText([&] { ASN1UTF8String_traits::set(ctxt, strings[i], text.c_str()); });
    ++i;
  }
  rec.n = static_cast<ASN1UINT>(count);
  rec.elem = strings;
}

void ASN1T_PKIFreeText_traits::get(ASN1_T const& rec, CPKIFreeText& v) {
  v.clear();
  if (rec.n && !rec.elem) throwCodecError();
  for (ASN1UINT i = 0; i < rec.n; ++i) {
    CWStringProxy text(nullptr);
    convertText([&] { ASN1UTF8String_traits::get(rec.elem[i], text); });
    v.push_back(text.c_str());
  }
}

void ASN1T_PKIFailureInfo_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CPKIFailureInfo const& v) {
  detail::maskToBitString(ctxt, rec, v.get_flags());
}

void ASN1T_PKIFailureInfo_traits::get(ASN1_T const& rec, CPKIFailureInfo& v) {
  v.put_flags(detail::bitStringToMask(rec));
}

void ASN1T_PKIStatusInfo_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CPKIStatusInfo const& v) {
  rec.status = v.get_status();
  rec.m.statusStringPresent = v.get_statusString() ? 1 : 0;
  if (v.get_statusString())
    ASN1T_PKIFreeText_traits::set(ctxt, rec.statusString, *v.get_statusString());
  rec.m.failInfoPresent = v.get_failInfo() ? 1 : 0;
  if (v.get_failInfo()) ASN1T_PKIFailureInfo_traits::set(ctxt, rec.failInfo, *v.get_failInfo());
}

void ASN1T_PKIStatusInfo_traits::get(ASN1_T const& rec, CPKIStatusInfo& v) {
  v.put_status(rec.status);
  if (rec.m.statusStringPresent) {
    CPKIFreeText text;
    ASN1T_PKIFreeText_traits::get(rec.statusString, text);
    v.put_statusString(&text);
  } else {
    v.put_statusString(nullptr);
  }
  if (rec.m.failInfoPresent) {
    CPKIFailureInfo failInfo;
    ASN1T_PKIFailureInfo_traits::get(rec.failInfo, failInfo);
    v.put_failInfo(&failInfo);
  } else {
    v.put_failInfo(nullptr);
  }
}

}  // namespace ASN1
}  // namespace Korvex
