// CharString.cpp: wide text to and from the DER of the ASN.1 character-string
// types (X.680 41, X.690 8.23).
#include <korvex/asn1rt/asn1ber.h>
#include <korvex/asn1rt/rtUTF8.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/Util.h>

#include <cwchar>
#include <string>
#include <vector>

namespace Korvex {
namespace ASN1 {

namespace {

// The encoder's buffer could not grow (-12) is the context heap running out;
// every other negative status is an encoding failure.
int CheckEncoded(int status) {
  if (status == ASN_E_NOMEM) throwHeapError();
  return checkCodecStatus(status);
}

// Writes the content of one string type with its universal tag; returns the
// encoded length.
int EncodeContents(ASN1CTXT* ctxt, wchar_t const* text, StringType type) {
  switch (type) {
    case stUTF8String: {
      int n = rtWCSToUTF8(text, nullptr, 0);
      if (n < 0) throwCodecError();  // a surrogate or a value above U+10FFFF
      auto* utf8 = checkHeap(static_cast<char*>(rtMemAlloc(ctxt, static_cast<size_t>(n) + 1)));
      if (rtWCSToUTF8(text, utf8, static_cast<size_t>(n) + 1) != n) throwCodecError();
      return xe_charstr(ctxt, utf8, ASN1EXPL, TM_UNIV | ASN_ID_UTF8String);
    }
    case stPrintableString:
    case stTeletexString:
    case stIA5String: {
      ASN1TAG tag = type == stPrintableString ? ASN_ID_PrintableString
                    : type == stTeletexString ? ASN_ID_TeletexString
                                              : ASN_ID_IA5String;
      CStringProxy narrow = tostring(text);
      return xe_charstr(ctxt, narrow.c_str(), ASN1EXPL, TM_UNIV | tag);
    }
    case stBMPString: {
      size_t n = std::wcslen(text);
      if (n > ASN1_MEMBLOCK_MAX / sizeof(ASN116BITCHAR)) throwHeapError();
      auto* units =
          checkHeap(static_cast<ASN116BITCHAR*>(rtMemAlloc(ctxt, n * sizeof(ASN116BITCHAR))));
      for (size_t i = 0; i < n; ++i) {
        // One 16-bit unit per character: a character beyond the BMP has none.
        if (static_cast<unsigned int>(text[i]) > 0xFFFFu) throwCodecError();
        units[i] = static_cast<ASN116BITCHAR>(text[i]);
      }
      Asn116BitCharString str;
      str.nchars = static_cast<ASN1UINT>(n);
      str.data = units;
      return xe_16BitCharStr(ctxt, &str, ASN1EXPL, TM_UNIV | ASN_ID_BMPString);
    }
    case stUniversalString: {
      size_t n = std::wcslen(text);
      if (n > ASN1_MEMBLOCK_MAX / sizeof(ASN132BITCHAR)) throwHeapError();
      auto* units =
          checkHeap(static_cast<ASN132BITCHAR*>(rtMemAlloc(ctxt, n * sizeof(ASN132BITCHAR))));
      for (size_t i = 0; i < n; ++i) units[i] = static_cast<ASN132BITCHAR>(text[i]);
      Asn132BitCharString str;
      str.nchars = static_cast<ASN1UINT>(n);
      str.data = units;
      return xe_32BitCharStr(ctxt, &str, ASN1EXPL, TM_UNIV | ASN_ID_UniversalString);
    }
    default:
      throwCodecError();
  }
}

// Wide text of count units, up to the first NUL character.
template <class Unit>
CWStringProxy FromUnits(Unit const* units, ASN1UINT count) {
  std::wstring text;
  text.reserve(count);
  for (ASN1UINT i = 0; i < count && units[i] != 0; ++i)
    text.push_back(static_cast<wchar_t>(units[i]));
  return CWStringProxy(text.c_str());
}

CWStringProxy FromUTF8(char const* utf8) {
  int n = rtUTF8ToWCS(utf8, nullptr, 0);
  if (n < 0) throwCodecError();
  std::vector<wchar_t> wide(static_cast<size_t>(n) + 1);
  if (rtUTF8ToWCS(utf8, wide.data(), wide.size()) != n) throwCodecError();
  return CWStringProxy(wide.data());
}

// A decoder status: -12 is the heap, anything else negative the encoding.
void CheckDecoded(int status) {
  if (status == ASN_E_NOMEM) throwHeapError();
  checkCodecStatus(status);
}

}  // namespace

CBlob encodeCharString(wchar_t const* text, StringType type) {
  if (type < stUTF8String || type > stUniversalString) throwCodecError();
  if (!text) throwInvalidArgument();
  ctxt_handle context;
  if (!context.init()) throwHeapError();
  if (xe_setp(context, nullptr, 0) != 0) throwHeapError();
  int length = CheckEncoded(EncodeContents(context, text, type));
  return CBlob(xe_getp(context), static_cast<unsigned long>(length));
}

CWStringProxy decodeCharString(CBlob const& der) {
  if (der.cbData() == 0 || der.cbData() > 0x7FFFFFFFul) throwCodecError();
  ctxt_handle context;
  if (!context.init()) throwHeapError();
  ASN1CTXT* ctxt = context;
  // Install the bytes (the element must be complete), then peek at its tag.
  CheckDecoded(xd_setp(ctxt, der.pbData(), static_cast<int>(der.cbData()), nullptr, nullptr));
  ASN1TAG tag = 0;
  int length = 0;
  CheckDecoded(xd_tag_len(ctxt, &tag, &length, 0));
  if ((tag & TM_CLASS_MASK) != TM_UNIV) throwCodecError();
  // Primitive or constructed (X.690 8.23.6): the decoders join segments.
  ASN1TAG universal = TM_UNIV | (tag & TM_IDMASK);
  switch (tag & TM_IDMASK) {
    case ASN_ID_UTF8String: {
      char const* utf8 = nullptr;
      CheckDecoded(xd_charstr(ctxt, &utf8, ASN1EXPL, universal, 0));
      return FromUTF8(utf8 ? utf8 : "");
    }
    case ASN_ID_NumericString:
    case ASN_ID_PrintableString:
    case ASN_ID_TeletexString:
    case ASN_ID_IA5String: {
      char const* narrow = nullptr;
      CheckDecoded(xd_charstr(ctxt, &narrow, ASN1EXPL, universal, 0));
      return towstring(narrow ? narrow : "");
    }
    case ASN_ID_UniversalString: {
      Asn132BitCharString str = {0, nullptr};
      CheckDecoded(xd_32BitCharStr(ctxt, &str, ASN1EXPL, universal, 0));
      return FromUnits(str.data, str.nchars);
    }
    case ASN_ID_BMPString: {
      Asn116BitCharString str = {0, nullptr};
      CheckDecoded(xd_16BitCharStr(ctxt, &str, ASN1EXPL, universal, 0));
      return FromUnits(str.data, str.nchars);
    }
    default:
      throwCodecError();
  }
}

}  // namespace ASN1
}  // namespace Korvex
