// The distinguished-name text parser on arbitrary text (the input read as
// UTF-8, ill-formed octets as U+FFFD, up to its first NUL). Whatever parses
// must encode; its DER must decode and encode to the same bytes; the exact
// text of that name must read back to the same DER; the readable text must
// be writable.
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/Names.h>
#include <korvex/platform/atl/atlexcept.h>
#include <stdint.h>
#include <stdlib.h>

#include <string>

using namespace Korvex::ASN1;

namespace {

std::wstring Utf8Text(uint8_t const* data, size_t size) {
  std::wstring out;
  size_t i = 0;
  while (i < size && data[i]) {
    unsigned lead = data[i];
    int more = lead < 0x80 ? 0 : (lead & 0xE0) == 0xC0 ? 1 : (lead & 0xF0) == 0xE0 ? 2
                                : (lead & 0xF8) == 0xF0 ? 3 : -1;
    unsigned long cp = more == 0 ? lead : more == 1 ? (lead & 0x1F) : more == 2 ? (lead & 0x0F)
                                                                                : (lead & 0x07);
    bool ok = more >= 0 && i + more < size;
    for (int k = 1; ok && k <= more; ++k) {
      if ((data[i + k] & 0xC0) != 0x80) ok = false;
      cp = (cp << 6) | (data[i + k] & 0x3F);
    }
    if (!ok || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
      out += L'\uFFFD';
      ++i;
      continue;
    }
    out += static_cast<wchar_t>(cp);
    i += static_cast<size_t>(more) + 1;
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::wstring const text = Utf8Text(data, size);
  CName name;
  try {
    name = NameFromString(text.c_str());
  } catch (ATL::CAtlException const& e) {
    unsigned code = static_cast<unsigned>(e.m_hr);
    // Bad text, or a value its string type cannot hold.
    if (code != 0x80070057u && code != 0x80093101u) abort();
    return 0;
  }
  try {
    Korvex::CBlob der = name.encode();
    CName decoded;
    decoded.decode(der);
    // The same name: equal bytes (a multi-valued RDN comes back in DER
    // order, not in the order of the text).
    if (decoded.encode() != der || decoded.size() != name.size()) abort();
    std::wstring exact = decoded.toString(ntfExact).c_str();
    if (NameFromString(exact.c_str()).encode() != der) abort();
    std::wstring readable = decoded.toString().c_str();
    (void)readable;
  } catch (ATL::CAtlException const&) {
    abort();  // a parsed name must encode, decode and print
  }
  return 0;
}
