// The decoders of the name classes; the first byte selects the class. What a
// decoder accepts must encode, and that DER must decode to the same value and
// encode to the same bytes again (BER input becomes DER around the attribute
// values, which are kept as they stand). The text forms must not fail on a
// decoded name except where documented.
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/Names.h>
#include <korvex/asn1types/NamesTraits.h>
#include <korvex/platform/atl/atlexcept.h>
#include <stdint.h>
#include <stdlib.h>

using namespace Korvex::ASN1;
using Korvex::CBlob;

namespace {

template <class T>
void RoundTrip(CBlob const& input) {
  T value;
  try {
    value.decode(input);
  } catch (ATL::CAtlException const& e) {
    unsigned code = static_cast<unsigned>(e.m_hr);
    if (code != 0x80093101u && code != 0x80093106u) abort();
    return;
  }
  try {
    CBlob der = value.encode();
    T again;
    again.decode(der);
    if (!(again == value)) abort();
    if (again.encode() != der) abort();
  } catch (ATL::CAtlException const&) {
    abort();
  }
}

void Text(CName const& name) {
  try {
    std::wstring exact = name.toString(ntfExact).c_str();
    if (NameFromString(exact.c_str()).encode() != name.encode()) abort();
    (void)name.toString();
  } catch (ATL::CAtlException const& e) {
    // Only an empty RDN has no text form (and does not decode).
    (void)e;
    abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  CBlob input(data + 1, size - 1);
  switch (data[0] % 6) {
    case 0:
      RoundTrip<CAttributeTypeAndValue>(input);
      break;
    case 1:
      RoundTrip<CRelativeDistinguishedName>(input);
      break;
    case 2: {
      RoundTrip<CName>(input);
      CName name;
      try {
        name.decode(input);
      } catch (ATL::CAtlException const&) {
        return 0;
      }
      Text(name);
      break;
    }
    case 3: {
      RoundTrip<CGeneralName>(input);
      CGeneralName gn;
      try {
        gn.decode(input);
      } catch (ATL::CAtlException const&) {
        return 0;
      }
      (void)gn.toString();
      break;
    }
    case 4:
      RoundTrip<CGeneralNames>(input);
      break;
    default: {
      // The whole-structure traits over the catalogue's own Name decoder.
      CBlob der;
      try {
        asn1Decode<ASN1T_Name_traits>(input, der);
      } catch (ATL::CAtlException const&) {
        return 0;
      }
      CName name;
      try {
        name.decode(der);
      } catch (ATL::CAtlException const&) {
        abort();  // what the strict decoder accepts, the name value accepts
      }
      break;
    }
  }
  return 0;
}
