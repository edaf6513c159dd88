// der_writer.cpp: DER lengths, wrapping and object identifiers.
#include "der_writer.h"

#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/platform/atl/atlexcept.h>

#include <stdexcept>
#include <string>

namespace adestool {

std::vector<uint8_t> DerLength(size_t length) {
  if (length < 0x80) return {static_cast<uint8_t>(length)};
  std::vector<uint8_t> octets;
  for (size_t n = length; n != 0; n >>= 8) octets.insert(octets.begin(), n & 0xFF);
  octets.insert(octets.begin(), static_cast<uint8_t>(0x80 | octets.size()));
  return octets;
}

std::vector<uint8_t> DerWrap(uint8_t identifier, const std::vector<uint8_t>& content) {
  std::vector<uint8_t> out{identifier};
  Append(&out, DerLength(content.size()));
  Append(&out, content);
  return out;
}

std::vector<uint8_t> DerOid(std::string_view dotted) {
  // The library's OID text parser and encoder (str2oid, xe_objid).
  try {
    const Korvex::CBlob der =
        Korvex::ASN1::asn1Encode<Korvex::ASN1::ASN1TObjId_traits>(std::string(dotted).c_str());
    return std::vector<uint8_t>(der.pbData(), der.pbData() + der.cbData());
  } catch (const ATL::CAtlException&) {
    throw std::invalid_argument("invalid object identifier text");
  }
}

void Append(std::vector<uint8_t>* out, const std::vector<uint8_t>& bytes) {
  out->insert(out->end(), bytes.begin(), bytes.end());
}

}  // namespace adestool
