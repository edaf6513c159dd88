// GeneralName.cpp: CGeneralNameImpl, CGeneralName, CGeneralNames and the
// general-name traits.
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/Names.h>
#include <korvex/asn1types/NamesTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>

#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "NameCodecs.h"
#include "NameSupport.h"

namespace Korvex {
namespace ASN1 {

namespace {

typedef ChoiceValueTraitsT<CBlob, CGeneralName::kOtherName> OtherNameHandler;
typedef ChoiceValueTraitsT<std::wstring, CGeneralName::kRfc822Name> Rfc822NameHandler;
typedef ChoiceValueTraitsT<std::wstring, CGeneralName::kDNSName> DNSNameHandler;
typedef ChoiceValueTraitsT<CBlob, CGeneralName::kX400Address> X400AddressHandler;
typedef ChoiceValueTraitsT<CBlob, CGeneralName::kDirectoryName> DirectoryNameHandler;
typedef ChoiceValueTraitsT<CBlob, CGeneralName::kEdiPartyName> EdiPartyNameHandler;
typedef ChoiceValueTraitsT<std::wstring, CGeneralName::kUniformResourceIdentifier> URIHandler;
typedef ChoiceValueTraitsT<CBlob, CGeneralName::kIPAddress> IPAddressHandler;
typedef ChoiceValueTraitsT<std::wstring, CGeneralName::kRegisteredID> RegisteredIDHandler;

// Whether alternative n holds text (std::wstring) rather than bytes (CBlob).
bool isTextAlternative(unsigned int n) {
  return n == CGeneralName::kRfc822Name || n == CGeneralName::kDNSName ||
         n == CGeneralName::kUniformResourceIdentifier || n == CGeneralName::kRegisteredID;
}

bool isBlobAlternative(unsigned int n) {
  return n == CGeneralName::kOtherName || n == CGeneralName::kX400Address ||
         n == CGeneralName::kDirectoryName || n == CGeneralName::kEdiPartyName ||
         n == CGeneralName::kIPAddress;
}

std::wstring requireText(wchar_t const* text) {
  if (!text) throwInvalidArgument();
  return std::wstring(text);
}

// A zeroed record of type T in ctxt's heap, constructed in place and owning
// no context (the heap takes it back with the context).
template <class T>
T* newRecord(ASN1CTXT* ctxt) {
  void* memory = checkHeap(rtMemHeapAllocZ(&ctxt->pTypeMemHeap, sizeof(T)));
  return ::new (memory) T();
}

// A DER alternative: the blob must be one element (the decoder would ignore
// what follows it), decoded as its type into a new record of ctxt.
template <class Traits>
typename Traits::ASN1_T* derAlternative(ASN1CTXT* ctxt, CBlob const* der) {
  if (!der || !names::isSingleElement(*der)) throwCodecError();
  auto* rec = newRecord<typename Traits::ASN1_T>(ctxt);
  Traits::set(ctxt, *rec, *der);
  return rec;
}

// An IA5String alternative: one byte per character, NUL-terminated, in
// ctxt's heap. A character above U+00FF cannot be written.
char const* ia5Alternative(ASN1CTXT* ctxt, wchar_t const* text) {
  std::string bytes;
  if (!text || !names::toLatin1(text, bytes)) throwCodecError();
  auto* out = static_cast<char*>(checkHeap(rtMemHeapAlloc(&ctxt->pTypeMemHeap, bytes.size() + 1)));
  std::memcpy(out, bytes.c_str(), bytes.size() + 1);
  return out;
}

template <class Traits>
CBlob derOf(typename Traits::ASN1_T const* rec) {
  if (!rec) throwCodecError();
  CBlob der;
  Traits::get(*rec, der);
  return der;
}

// Dotted OID text checked with str2oid and written back canonically.
std::wstring registeredIdText(char const* oid) {
  if (!oid) throwInvalidArgument();
  ASN1OBJID rec = toASN1OBJID(oid);
  return names::latin1Text(toOID(rec).c_str());
}

}  // namespace

// ---- CGeneralNameImpl ---------------------------------------------------------------

ChoiceValueTraits const* CGeneralNameImpl::findTraits(unsigned int n) const {
  return selectChoiceTraits<OtherNameHandler, Rfc822NameHandler, DNSNameHandler,
                            X400AddressHandler, DirectoryNameHandler, EdiPartyNameHandler,
                            URIHandler, IPAddressHandler, RegisteredIDHandler>(n);
}

// ---- CGeneralName -------------------------------------------------------------------

CGeneralName::CGeneralName() : m_impl(new CGeneralNameImpl()) {}

CGeneralName::CGeneralName(CName const& directoryName) : m_impl(new CGeneralNameImpl()) {
  try {
    put_directoryName(directoryName);
  } catch (...) {
    delete m_impl;
    throw;
  }
}

CGeneralName::CGeneralName(CGeneralName const& other)
    : m_impl(new CGeneralNameImpl(*other.m_impl)) {}

CGeneralName& CGeneralName::operator=(CGeneralName const& other) {
  if (this != &other) *m_impl = *other.m_impl;
  return *this;
}

CGeneralName::~CGeneralName() { delete m_impl; }

void CGeneralName::swap(CGeneralName& other) noexcept { std::swap(m_impl, other.m_impl); }

unsigned int CGeneralName::get_type() const { return m_impl->get_type(); }

void CGeneralName::clear() { m_impl->reset(); }

CBlob const* CGeneralName::get_otherName() const { return m_impl->get_as<CBlob>(kOtherName); }

wchar_t const* CGeneralName::get_rfc822Name() const {
  std::wstring const* text = m_impl->get_as<std::wstring>(kRfc822Name);
  return text ? text->c_str() : nullptr;
}

wchar_t const* CGeneralName::get_dNSName() const {
  std::wstring const* text = m_impl->get_as<std::wstring>(kDNSName);
  return text ? text->c_str() : nullptr;
}

CBlob const* CGeneralName::get_x400Address() const {
  return m_impl->get_as<CBlob>(kX400Address);
}

CBlob const* CGeneralName::get_directoryName() const {
  return m_impl->get_as<CBlob>(kDirectoryName);
}

CBlob const* CGeneralName::get_ediPartyName() const {
  return m_impl->get_as<CBlob>(kEdiPartyName);
}

wchar_t const* CGeneralName::get_uniformResourceIdentifier() const {
  std::wstring const* text = m_impl->get_as<std::wstring>(kUniformResourceIdentifier);
  return text ? text->c_str() : nullptr;
}

CBlob const* CGeneralName::get_iPAddress() const { return m_impl->get_as<CBlob>(kIPAddress); }

wchar_t const* CGeneralName::get_registeredID() const {
  std::wstring const* text = m_impl->get_as<std::wstring>(kRegisteredID);
  return text ? text->c_str() : nullptr;
}

bool CGeneralName::get_directoryName(CName& name) const {
  CBlob const* der = get_directoryName();
  if (!der) return false;
  name.decode(*der);
  return true;
}

void CGeneralName::put_otherName(CBlob const& der) { m_impl->put_value(kOtherName, &der); }

void CGeneralName::put_rfc822Name(wchar_t const* text) {
  std::wstring value = requireText(text);
  m_impl->put_value(kRfc822Name, &value);
}

void CGeneralName::put_dNSName(wchar_t const* text) {
  std::wstring value = requireText(text);
  m_impl->put_value(kDNSName, &value);
}

void CGeneralName::put_x400Address(CBlob const& der) { m_impl->put_value(kX400Address, &der); }

void CGeneralName::put_directoryName(CBlob const& der) {
  m_impl->put_value(kDirectoryName, &der);
}

void CGeneralName::put_directoryName(CName const& name) {
  CBlob der = name.encode();
  m_impl->put_value(kDirectoryName, &der);
}

void CGeneralName::put_ediPartyName(CBlob const& der) { m_impl->put_value(kEdiPartyName, &der); }

void CGeneralName::put_uniformResourceIdentifier(wchar_t const* text) {
  std::wstring value = requireText(text);
  m_impl->put_value(kUniformResourceIdentifier, &value);
}

void CGeneralName::put_iPAddress(CBlob const& octets) { m_impl->put_value(kIPAddress, &octets); }

void CGeneralName::put_registeredID(char const* oid) {
  std::wstring value = registeredIdText(oid);
  m_impl->put_value(kRegisteredID, &value);
}

void CGeneralName::put_registeredID(wchar_t const* oid) {
  std::string narrow;
  // Dotted OID text is ASCII; anything else cannot be an OID.
  if (!oid || !names::toLatin1(oid, narrow)) throwInvalidArgument();
  put_registeredID(narrow.c_str());
}

bool CGeneralName::operator==(CGeneralName const& other) const {
  unsigned int type = get_type();
  if (type != other.get_type()) return false;
  if (isTextAlternative(type)) {
    return *m_impl->get_as<std::wstring>(type) == *other.m_impl->get_as<std::wstring>(type);
  }
  if (isBlobAlternative(type)) {
    return *m_impl->get_as<CBlob>(type) == *other.m_impl->get_as<CBlob>(type);
  }
  return true;  // no alternative: the numbers decide
}

CBlob CGeneralName::encode() const { return asn1Encode<names::GeneralNameCodec>(*this); }

void CGeneralName::decode(CBlob const& der) {
  CGeneralName decoded;
  names::decodeWhole<names::GeneralNameCodec>(der, decoded);
  swap(decoded);
}

// ---- CGeneralNames ---------------------------------------------------------------------

CBlob CGeneralNames::encode() const { return asn1Encode<names::GeneralNamesCodec>(*this); }

void CGeneralNames::decode(CBlob const& der) {
  CGeneralNames decoded;
  names::decodeWhole<names::GeneralNamesCodec>(der, decoded);
  swap(decoded);
}

// ---- ASN1T_GeneralName_traits ----------------------------------------------------------

void ASN1T_GeneralName_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CGeneralName const& v) {
  if (!ctxt) throwInvalidArgument();
  typedef asn1data::ASN1T_GeneralName R;
  unsigned int const type = v.get_type();
  switch (type) {
    case CGeneralName::kOtherName:
      rec.u.otherName = derAlternative<names::OtherNameDer>(ctxt, v.get_otherName());
      break;
    case CGeneralName::kRfc822Name:
      rec.u.rfc822Name = ia5Alternative(ctxt, v.get_rfc822Name());
      break;
    case CGeneralName::kDNSName:
      rec.u.dNSName = ia5Alternative(ctxt, v.get_dNSName());
      break;
    case CGeneralName::kX400Address:
      rec.u.x400Address = derAlternative<names::ORAddressDer>(ctxt, v.get_x400Address());
      break;
    case CGeneralName::kDirectoryName:
      rec.u.directoryName = derAlternative<names::NameDer>(ctxt, v.get_directoryName());
      break;
    case CGeneralName::kEdiPartyName:
      rec.u.ediPartyName = derAlternative<names::EDIPartyNameDer>(ctxt, v.get_ediPartyName());
      break;
    case CGeneralName::kUniformResourceIdentifier:
      rec.u.uniformResourceIdentifier = ia5Alternative(ctxt, v.get_uniformResourceIdentifier());
      break;
    case CGeneralName::kIPAddress: {
      auto* octets = newRecord<ASN1DynOctStr>(ctxt);
      ASN1TDynOctStr_traits::set(ctxt, *octets, *v.get_iPAddress());
      rec.u.iPAddress = octets;
      break;
    }
    case CGeneralName::kRegisteredID: {
      std::string text;
      if (!names::toLatin1(v.get_registeredID(), text)) throwCodecError();
      auto* oid = newRecord<ASN1OBJID>(ctxt);
      if (!names::parseOid(text.c_str(), oid)) throwCodecError();
      rec.u.registeredID = oid;
      break;
    }
    default:
      // No alternative (or one this class does not know): nothing to write.
      throwCodecError();
  }
  rec.t = static_cast<decltype(R::t)>(type);
}

void ASN1T_GeneralName_traits::get(ASN1_T const& rec, CGeneralName& v) {
  CGeneralName result;
  switch (rec.t) {
    case CGeneralName::kOtherName:
      result.put_otherName(derOf<names::OtherNameDer>(rec.u.otherName));
      break;
    case CGeneralName::kRfc822Name:
      result.put_rfc822Name(names::latin1Text(rec.u.rfc822Name).c_str());
      break;
    case CGeneralName::kDNSName:
      result.put_dNSName(names::latin1Text(rec.u.dNSName).c_str());
      break;
    case CGeneralName::kX400Address:
      result.put_x400Address(derOf<names::ORAddressDer>(rec.u.x400Address));
      break;
    case CGeneralName::kDirectoryName:
      result.put_directoryName(derOf<names::NameDer>(rec.u.directoryName));
      break;
    case CGeneralName::kEdiPartyName:
      result.put_ediPartyName(derOf<names::EDIPartyNameDer>(rec.u.ediPartyName));
      break;
    case CGeneralName::kUniformResourceIdentifier:
      result.put_uniformResourceIdentifier(
          names::latin1Text(rec.u.uniformResourceIdentifier).c_str());
      break;
    case CGeneralName::kIPAddress: {
      if (!rec.u.iPAddress) throwCodecError();
      CBlob octets;
      ASN1TDynOctStr_traits::get(*rec.u.iPAddress, octets);
      result.put_iPAddress(octets);
      break;
    }
    case CGeneralName::kRegisteredID: {
      if (!rec.u.registeredID) throwCodecError();
      CBlob text;
      if (!oid2str(text, rec.u.registeredID)) throwCodecError();
      // Stored as the decoder gives it: a DER OID may end in an arc that
      // str2oid would refuse.
      std::wstring wide = names::latin1Text(reinterpret_cast<char const*>(text.pbData()));
      result.m_impl->put_value(CGeneralName::kRegisteredID, &wide);
      break;
    }
    default:
      throwCodecError();
  }
  v.swap(result);
}

}  // namespace ASN1
}  // namespace Korvex
