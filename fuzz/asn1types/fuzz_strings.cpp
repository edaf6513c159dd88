// decodeCharString on arbitrary bytes. Whatever text it returns must come back
// unchanged through every string type that can hold it: UniversalString
// always, UTF8String without surrogates, BMPString within U+FFFF, and the
// narrow types for ASCII (the fuzzer runs in the "C" locale).
#include <korvex/asn1types/Util.h>
#include <korvex/platform/atl/atlexcept.h>
#include <stdint.h>
#include <stdlib.h>

#include <cwchar>
#include <string>

using namespace Korvex::ASN1;

namespace {

void CheckRoundTrip(std::wstring const& text, StringType type) {
  try {
    Korvex::CBlob der = encodeCharString(text.c_str(), type);
    if (decodeCharString(der).c_str() != text) abort();
  } catch (ATL::CAtlException const&) {
    abort();  // a text the type can hold must encode and decode
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::wstring text;
  try {
    text = decodeCharString(Korvex::CBlob(data, size)).c_str();
  } catch (ATL::CAtlException const& e) {
    // Bad input is refused with the encoding error, or the heap error.
    if (static_cast<unsigned>(e.m_hr) != 0x80093101u &&
        static_cast<unsigned>(e.m_hr) != 0x80093106u) {
      abort();
    }
    return 0;
  }
  bool unicode = true, bmp = true, ascii = true;
  for (wchar_t c : text) {
    unsigned u = static_cast<unsigned>(c);
    if (u > 0x10FFFF || (u >= 0xD800 && u <= 0xDFFF)) unicode = false;
    if (u > 0xFFFF) bmp = false;
    if (u > 0x7F) ascii = false;
  }
  CheckRoundTrip(text, stUniversalString);
  if (unicode) CheckRoundTrip(text, stUTF8String);
  if (bmp) CheckRoundTrip(text, stBMPString);
  if (ascii) {
    CheckRoundTrip(text, stPrintableString);
    CheckRoundTrip(text, stTeletexString);
    CheckRoundTrip(text, stIA5String);
  }
  return 0;
}
