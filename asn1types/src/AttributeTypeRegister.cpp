// AttributeTypeRegister.cpp: the register of name attribute types and the 22
// entries the library registers at load.
#include <korvex/asn1types/AttributeTypeRegister.h>
#include <korvex/asn1types/ErrorCodes.h>

#include <cstring>
#include <cwchar>
#include <string>

#include "NameSupport.h"

namespace Korvex {
namespace ASN1 {

CATAVRegister::CATAVRegister(char const* type, wchar_t const* name, StringType stringType,
                             unsigned long maxLength)
    : m_type(type ? type : ""),
      m_name(name ? name : L""),
      m_stringType(stringType),
      m_maxLength(maxLength) {
  if (!type || !name) throwInvalidArgument();
  list().push_back(*this);
}

CATAVRegister::CATAVRegister(CATAVRegister const& other) = default;
CATAVRegister& CATAVRegister::operator=(CATAVRegister const& other) = default;
CATAVRegister::~CATAVRegister() = default;

CATAVRegister::List& CATAVRegister::list() {
  // Built on first use: the entries below register from their constructors,
  // which may run before or after other load-time code that looks them up.
  static List registered_;
  return registered_;
}

CATAVRegister::List const& CATAVRegister::registered() { return list(); }

CATAVRegister::const_iterator CATAVRegister::end() { return list().cend(); }

CATAVRegister::const_iterator CATAVRegister::find(char const* type) {
  List const& entries = list();
  if (!type) return entries.cend();
  for (auto it = entries.cbegin(); it != entries.cend(); ++it) {
    if (it->m_type == type) return it;
  }
  return entries.cend();
}

CATAVRegister::const_iterator CATAVRegister::find(wchar_t const* name) {
  List const& entries = list();
  if (!name) return entries.cend();
  for (auto it = entries.cbegin(); it != entries.cend(); ++it) {
    if (it->m_name == name) return it;
  }
  return entries.cend();
}

CWStringProxy CATAVRegister::typeToStr(char const* type) {
  if (!type) throwInvalidArgument();
  const_iterator it = find(type);
  if (it != end()) return CWStringProxy(it->get_name());
  return towstring(type);
}

CStringProxy CATAVRegister::typeFromStr(wchar_t const* name) {
  if (!name) throwInvalidArgument();
  const_iterator it = find(name);
  if (it != end()) return CStringProxy(it->get_type());
  return tostring(name);
}

CBlob CATAVRegister::valueFromStr(char const* type, wchar_t const* text, StringType stringType) {
  if (!type || !text) throwInvalidArgument();
  const_iterator it = find(type);
  if (it != end()) {
    if (std::wcslen(text) > it->m_maxLength) throwInvalidArgument();
    if (stringType == stDefault) stringType = it->m_stringType;
  } else if (stringType == stDefault) {
    // An unregistered type has no string type of its own: UTF8String is what
    // RFC 5280 4.1.2.4 asks of new directory strings.
    stringType = stUTF8String;
  }
  return encodeCharString(text, stringType);
}

CWStringProxy CATAVRegister::valueToStr(char const* /*type*/, CBlob const& der) {
  if (der.cbData() > 0 && names::isCharStringTag(der.pbData()[0])) return decodeCharString(der);
  // RFC 4514 2.4: a value with no string form is '#' and the hex of its BER.
  std::wstring text = L"#" + names::hexText(der);
  return CWStringProxy(text.c_str());
}

CAttributeTypeAndValue CATAVRegister::makeATAV(wchar_t const* type, wchar_t const* value,
                                               StringType stringType) {
  if (!type || !value) throwInvalidArgument();
  CStringProxy oid = typeFromStr(type);
  // The pair checks the OID text: a name the register does not know and that
  // is no dotted OID ("cn") is refused with 0x80070057.
  CAttributeTypeAndValue atav;
  atav.put_type(oid.c_str());
  atav.put_value(valueFromStr(atav.get_type(), value, stringType));
  return atav;
}

CAttributeTypeAndValue CATAVRegister::makeATAV(wchar_t const* text, StringType stringType) {
  if (!text) throwInvalidArgument();
  wchar_t const* equals = std::wcschr(text, L'=');
  if (!equals) throwInvalidArgument();
  std::wstring type(text, equals);
  return makeATAV(type.c_str(), equals + 1, stringType);
}

// ---- the library's entries, in registration order --------------------------------

namespace {
constexpr unsigned long kMaxLength = 32768;
}  // namespace

CATAVRegister const commonNameAttribute("2.5.4.3", L"CN", stUTF8String, kMaxLength);
CATAVRegister const countryNameAttribute("2.5.4.6", L"C", stPrintableString, kMaxLength);
CATAVRegister const localityNameAttribute("2.5.4.7", L"L", stUTF8String, kMaxLength);
CATAVRegister const stateOrProvinceNameAttribute("2.5.4.8", L"ST", stUTF8String, kMaxLength);
CATAVRegister const emailAddressAttribute("1.2.840.113549.1.9.1", L"E", stIA5String, kMaxLength);
CATAVRegister const organizationNameAttribute("2.5.4.10", L"O", stUTF8String, kMaxLength);
CATAVRegister const organizationUnitNameAttribute("2.5.4.11", L"OU", stUTF8String, kMaxLength);
CATAVRegister const titleAttribute("2.5.4.12", L"T", stUTF8String, kMaxLength);
CATAVRegister const givenNameAttribute("2.5.4.42", L"GN", stUTF8String, kMaxLength);
CATAVRegister const initialsAttribute("2.5.4.43", L"I", stUTF8String, kMaxLength);
CATAVRegister const surnameAttribute("2.5.4.4", L"SN", stUTF8String, kMaxLength);
CATAVRegister const pseudonymAttribute("2.5.4.65", L"PS", stUTF8String, kMaxLength);
CATAVRegister const ogrnAttribute("1.2.643.100.1", L"OGRN", stUTF8String, kMaxLength);
CATAVRegister const ogrnipAttribute("1.2.643.100.5", L"OGRNIP", stUTF8String, kMaxLength);
CATAVRegister const snilsAttribute("1.2.643.100.3", L"SNILS", stUTF8String, kMaxLength);
CATAVRegister const innleAttribute("1.2.643.100.4", L"INNLE", stUTF8String, kMaxLength);
CATAVRegister const innAttribute("1.2.643.3.131.1.1", L"INN", stUTF8String, kMaxLength);
CATAVRegister const streetAddressAttribute("2.5.4.9", L"STREET", stUTF8String, kMaxLength);
CATAVRegister const domainComponentAttribute("0.9.2342.19200300.100.1.25", L"DC", stIA5String,
                                             kMaxLength);
CATAVRegister const unstructuredNameAttribute("1.2.840.113549.1.9.2", L"UnstructuredName",
                                              stUTF8String, kMaxLength);
CATAVRegister const PostalCodeAttribute("2.5.4.17", L"PostalCode", stUTF8String, kMaxLength);
CATAVRegister const serialNumberAttribute("2.5.4.5", L"SERIALNUMBER", stPrintableString,
                                          kMaxLength);

}  // namespace ASN1
}  // namespace Korvex
