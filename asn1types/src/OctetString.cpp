// OctetString.cpp: bytes to and from the DER of an OCTET STRING.
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/asn1types/Util.h>

namespace Korvex {
namespace ASN1 {

CBlob toOctetString(CBlob const& bytes) { return asn1Encode<ASN1TDynOctStr_traits>(bytes); }

CBlob fromOctetString(CBlob const& der) {
  CBlob bytes;
  asn1Decode<ASN1TDynOctStr_traits>(der, bytes);
  return bytes;
}

}  // namespace ASN1
}  // namespace Korvex
