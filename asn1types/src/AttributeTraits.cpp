// Traits of the generic attribute: Attribute.
#include <korvex/asn1types/AttributeTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>

#include <climits>

#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

void ASN1T_Attribute_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CAttribute const& v) {
  ASN1TObjId_traits::set(ctxt, rec.type, v.get_oid());
  std::size_t const count = v.size();
  rec.values.n = 0;
  rec.values.elem = nullptr;
  if (count == 0) return;
  if (count > UINT_MAX / sizeof(Asn1Object)) throwCodecError();
  auto* values = static_cast<Asn1Object*>(
      checkHeap(rtMemHeapAllocZ(&ctxt->pTypeMemHeap, count * sizeof(Asn1Object))));
  std::size_t i = 0;
  for (CAttrValue const& value : v) {
    // The encoder writes an open type's first element only: a value must be
    // exactly one, or the attribute would silently lose bytes.
    detail::requireOneElement(value.get_value());
    Asn1TObject_traits::set(ctxt, values[i++], value.get_value());
  }
  rec.values.n = static_cast<ASN1UINT>(count);
  rec.values.elem = values;
}

void ASN1T_Attribute_traits::get(ASN1_T const& rec, CAttribute& v) {
  if (rec.values.n && !rec.values.elem) throwCodecError();
  CAttribute attribute(detail::oidText(rec.type).c_str());
  for (ASN1UINT i = 0; i < rec.values.n; ++i) {
    CBlob der;
    Asn1TObject_traits::get(rec.values.elem[i], der);
    // What decodes must encode again: a value the encoder would refuse (an
    // element with the end-of-contents tag 00, which the decoder lets
    // through as an open type) is refused here too.
    detail::requireOneElement(der);
    attribute.add(der);
  }
  v.swap(attribute);
}

}  // namespace ASN1
}  // namespace Korvex
