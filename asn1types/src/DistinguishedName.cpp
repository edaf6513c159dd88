// DistinguishedName.cpp: CRelativeDistinguishedName, CName and the CName form
// of ASN1T_Name_traits.
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/Names.h>
#include <korvex/asn1types/NamesTraits.h>

#include <new>

#include "NameCodecs.h"

namespace Korvex {
namespace ASN1 {

// ---- CRelativeDistinguishedName ---------------------------------------------------

CWStringProxy CRelativeDistinguishedName::toString(unsigned int flags) const {
  return RdnToString(*this, flags);
}

CBlob CRelativeDistinguishedName::encode() const {
  // SET SIZE (1..MAX): an empty RDN is no valid encoding.
  if (empty()) throwCodecError();
  return asn1Encode<names::RdnCodec>(*this);
}

void CRelativeDistinguishedName::decode(CBlob const& der) {
  CRelativeDistinguishedName decoded;
  names::decodeWhole<names::RdnCodec>(der, decoded);
  swap(decoded);
}

// ---- CName ----------------------------------------------------------------------

CWStringProxy CName::toString(unsigned int flags) const { return NameToString(*this, flags); }

void CName::fromString(wchar_t const* text, StringType stringType) {
  CName parsed = NameFromString(text, stringType);
  swap(parsed);
}

CBlob CName::encode() const { return asn1Encode<names::NameCodec>(*this); }

void CName::decode(CBlob const& der) {
  CName decoded;
  names::decodeWhole<names::NameCodec>(der, decoded);
  swap(decoded);
}

// ---- ASN1T_Name_traits over CName ----------------------------------------------------

void ASN1T_Name_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CName const& v) {
  if (!ctxt) throwInvalidArgument();
  for (CRelativeDistinguishedName const& rdn : v) {
    if (rdn.empty()) throwCodecError();  // SET SIZE (1..MAX)
  }
  void* memory = checkHeap(rtMemHeapAllocZ(&ctxt->pTypeMemHeap, sizeof(asn1data::ASN1T_RDNSequence)));
  // Zeroed and owning no context: the heap takes it back with the context.
  auto* sequence = ::new (memory) asn1data::ASN1T_RDNSequence();
  ASN1T_RDNSequence_traits::set(ctxt, *sequence, v);
  rec.t = asn1data::ASN1T_Name::T_rdnSequence;
  rec.u.rdnSequence = sequence;
}

void ASN1T_Name_traits::get(ASN1_T const& rec, CName& v) {
  if (rec.t != asn1data::ASN1T_Name::T_rdnSequence || !rec.u.rdnSequence) throwCodecError();
  ASN1T_RDNSequence_traits::get(*rec.u.rdnSequence, v);
}

}  // namespace ASN1
}  // namespace Korvex
