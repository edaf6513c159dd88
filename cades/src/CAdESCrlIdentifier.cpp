// CAdESCrlIdentifier.cpp: CCrlIdentifier, its CRL-number forms and
// ASN1T_CrlIdentifier_traits.
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/Util.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/cades/CAdESAttributesTraits.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "CAdESSupport.h"

namespace Korvex {
namespace PKI {
namespace CAdES {

struct CCrlIdentifier::Impl {
  CBlob crlissuer;
  CDateTime crlIssuedTime{0, 0};
  std::unique_ptr<ASN1::CBigInteger> crlNumber;

  Impl() = default;
  Impl(Impl const& other) : crlissuer(other.crlissuer), crlIssuedTime(other.crlIssuedTime) {
    ASN1::copy_to_auto_ptr(crlNumber, other.crlNumber);
  }
};

CCrlIdentifier::CCrlIdentifier() : m_impl(new Impl) {}

CCrlIdentifier::CCrlIdentifier(CBlob const& crlissuer, CDateTime const& crlIssuedTime)
    : m_impl(new Impl) {
  m_impl->crlissuer = crlissuer;
  m_impl->crlIssuedTime = crlIssuedTime;
}

CCrlIdentifier::CCrlIdentifier(CCrlIdentifier const& other) : m_impl(new Impl(*other.m_impl)) {}

CCrlIdentifier& CCrlIdentifier::operator=(CCrlIdentifier const& other) {
  if (this != &other) m_impl.reset(new Impl(*other.m_impl));
  return *this;
}

CCrlIdentifier::~CCrlIdentifier() {}

CBlob const& CCrlIdentifier::get_crlissuer() const { return m_impl->crlissuer; }

void CCrlIdentifier::put_crlissuer(CBlob const& crlissuer) { m_impl->crlissuer = crlissuer; }

CDateTime const& CCrlIdentifier::get_crlIssuedTime() const { return m_impl->crlIssuedTime; }

void CCrlIdentifier::put_crlIssuedTime(CDateTime const& crlIssuedTime) {
  m_impl->crlIssuedTime = crlIssuedTime;
}

ASN1::CBigInteger const* CCrlIdentifier::get_longCrlNumber() const {
  return m_impl->crlNumber.get();
}

void CCrlIdentifier::put_longCrlNumber(ASN1::CBigInteger const* crlNumber) {
  ASN1::copy_to_auto_ptr(m_impl->crlNumber, crlNumber);
}

void CCrlIdentifier::put_crlNumber(int const* crlNumber) {
  if (!crlNumber) {
    put_longCrlNumber(nullptr);
    return;
  }
  if (*crlNumber < 0) ATL::AtlThrowImpl(kCrlNumberError);
  // Hexadecimal big-integer text: "0x" and eight digits always fit the
  // buffer; a longer result would mean a wider int than this code knows.
  char text[11] = {};
  int const written = std::snprintf(text, sizeof text, "0x%08x", static_cast<unsigned>(*crlNumber));
  if (written < 0 || written >= static_cast<int>(sizeof text)) ATL::AtlThrowImpl(kCrlNumberError);
  ASN1::CBigInteger const number = ASN1::ASN1StringToBigInteger(text);
  put_longCrlNumber(&number);
}

int CCrlIdentifier::get_intCrlNumber() const {
  ASN1::CBigInteger const* number = get_longCrlNumber();
  if (!number) ATL::AtlThrowImpl(kCrlNumberError);
  ASN1::ctxt_handle context;
  if (!context.init()) ATL::AtlThrowImpl(ASN1::kOutOfMemory);
  // Hexadecimal text ("0x1f", "-0x80", "0"); strtoul takes the "0x" itself
  // and turns a minus into a huge value, which the range check refuses.
  char const* text = ASN1::BigIntegerToASN1String(context.get(), *number);
  char* end = nullptr;
  errno = 0;
  unsigned long const value = std::strtoul(text, &end, 16);
  if (errno != 0 || end == text || *end != '\0') ATL::AtlThrowImpl(kCrlNumberError);
  if (value >= 0x80000000ul) ATL::AtlThrowImpl(kCrlNumberError);
  return static_cast<int>(value);
}

CBlob CCrlIdentifier::encode() const { return ASN1::asn1Encode<ASN1T_CrlIdentifier_traits>(*this); }

void CCrlIdentifier::decode(CBlob const& der) {
  CCrlIdentifier decoded;
  support::DecodeWhole<ASN1T_CrlIdentifier_traits>(der, decoded);
  m_impl.swap(decoded.m_impl);
}

bool operator==(CCrlIdentifier const& left, CCrlIdentifier const& right) {
  if (left.get_crlIssuedTime() != right.get_crlIssuedTime()) return false;
  if (left.get_crlissuer() != right.get_crlissuer()) return false;
  ASN1::CBigInteger const* a = left.get_longCrlNumber();
  ASN1::CBigInteger const* b = right.get_longCrlNumber();
  if (!a || !b) return !a && !b;
  return *a == *b;
}

bool operator!=(CCrlIdentifier const& left, CCrlIdentifier const& right) {
  return !(left == right);
}

// ---- ASN1T_CrlIdentifier_traits -------------------------------------------------

void ASN1T_CrlIdentifier_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CCrlIdentifier const& value) {
  if (!ctxt) ASN1::throwInvalidArgument();
  rec.m.crlNumberPresent = 0;
  rec.crlNumber = nullptr;
  support::SetOpenType(ctxt, rec.crlissuer, value.get_crlissuer());
  rec.crlIssuedTime = support::UtcTimeText(ctxt, value.get_crlIssuedTime());
  if (ASN1::CBigInteger const* number = value.get_longCrlNumber()) {
    rec.crlNumber = ASN1::BigIntegerToASN1String(ctxt, *number);
    rec.m.crlNumberPresent = 1;
  }
}

void ASN1T_CrlIdentifier_traits::get(ASN1_T const& rec, CCrlIdentifier& value) {
  value.put_crlissuer(support::GetOpenType(rec.crlissuer));
  value.put_crlIssuedTime(support::ParseUtcTime(rec.crlIssuedTime));
  if (rec.m.crlNumberPresent) {
    if (!rec.crlNumber) ASN1::throwCodecError();
    ASN1::CBigInteger const number = ASN1::ASN1StringToBigInteger(rec.crlNumber);
    value.put_longCrlNumber(&number);
  } else {
    value.put_longCrlNumber(nullptr);
  }
}

}  // namespace CAdES
}  // namespace PKI
}  // namespace Korvex
