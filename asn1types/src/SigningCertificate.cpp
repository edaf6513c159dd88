// The signing-certificate attributes (SigningCertificate, V2, Other) and
// their traits. The three share their code through SigningCertificateCodec.
#include <korvex/asn1types/AttributeTraits.h>
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/CertIdTraits.h>
#include <korvex/asn1types/ExtensionTraits.h>
#include <korvex/asn1types/SigningCertificate.h>

#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

// SigningCertificateCodec: what the three classes do alike. Attr is the
// class, Traits its traits.
struct SigningCertificateCodec {
  // store: makes the DER of (certs, policies) and, once it is made, takes
  // the parts and the DER into self; a failure changes nothing.
  template <class Traits, class Attr, class List>
  static void store(Attr& self, List const& certs, CPolicyInformationList const* policies) {
    Attr next{typename Attr::PartsOnly()};
    next.m_certs = certs;
    copy_to_auto_ptr(next.m_policies, policies);
    CBlob der = asn1Encode<Traits>(next);
    self.m_certs.swap(next.m_certs);
    self.m_policies.swap(next.m_policies);
    self.value().swap(der);
  }

  // load: reads the parts from der and, once read, takes them and a copy of
  // der (when it is not already the value) into self.
  template <class Traits, class Attr>
  static void load(Attr& self, CBlob const& der) {
    detail::requireOneElement(der);
    Attr parts{typename Attr::PartsOnly()};
    asn1Decode<Traits>(der, parts);
    if (&der != &self.get_value()) {
      CBlob copy(der);
      self.value().swap(copy);
    }
    self.m_certs.swap(parts.m_certs);
    self.m_policies.swap(parts.m_policies);
  }

  // copyParts: the parts of a copy (the DER is copied by CAttrValue).
  template <class Attr>
  static void copyParts(Attr& self, Attr const& other) {
    copy_to_auto_ptr(self.m_policies, other.m_policies);
  }

  // assign: the copy assignment, made whole before anything changes.
  template <class Attr>
  static void assign(Attr& self, Attr const& other) {
    if (&self == &other) return;
    Attr copy(other);
    static_cast<CAttrValue&>(self) = copy;
    self.m_certs.swap(copy.m_certs);
    self.m_policies.swap(copy.m_policies);
  }

  // setRecord / getRecord: the traits' set and get over the record fields.
  template <class ListTraits, class Record, class Attr>
  static void setRecord(ASN1CTXT* ctxt, Record& rec, Attr const& v) {
    ListTraits::set(ctxt, rec.certs, v.m_certs);
    rec.m.policiesPresent = v.m_policies ? 1 : 0;
    if (v.m_policies) ASN1T__SeqOfPolicyInformation_traits::set(ctxt, rec.policies, *v.m_policies);
  }

  template <class ListTraits, class Record, class Attr>
  static void getRecord(Record const& rec, Attr& v) {
    ListTraits::get(rec.certs, v.m_certs);
    if (rec.m.policiesPresent) {
      std::unique_ptr<CPolicyInformationList> policies(new CPolicyInformationList);
      ASN1T__SeqOfPolicyInformation_traits::get(rec.policies, *policies);
      v.m_policies.swap(policies);
    } else {
      v.m_policies.reset();
    }
  }
};

// ---- CAttrSigningCertificate ----

CAttrSigningCertificate::CAttrSigningCertificate(PartsOnly) : CAttrValue(kOidSigningCertificate) {}
CAttrSigningCertificate::CAttrSigningCertificate() : CAttrValue(kOidSigningCertificate) {
  encode();
}
CAttrSigningCertificate::CAttrSigningCertificate(CESSCertIDList const& certs)
    : CAttrValue(kOidSigningCertificate) {
  put_certs(certs);
}
CAttrSigningCertificate::CAttrSigningCertificate(CBlob const& der)
    : CAttrValue(kOidSigningCertificate) {
  decode(der);
}
CAttrSigningCertificate::CAttrSigningCertificate(CAttrSigningCertificate const& other)
    : CAttrValue(other), m_certs(other.m_certs) {
  SigningCertificateCodec::copyParts(*this, other);
}
CAttrSigningCertificate& CAttrSigningCertificate::operator=(CAttrSigningCertificate const& other) {
  SigningCertificateCodec::assign(*this, other);
  return *this;
}
CAttrSigningCertificate::~CAttrSigningCertificate() = default;

CESSCertIDList const& CAttrSigningCertificate::get_certs() const { return m_certs; }
void CAttrSigningCertificate::put_certs(CESSCertIDList const& certs) {
  SigningCertificateCodec::store<ASN1T_SigningCertificate_traits>(*this, certs, m_policies.get());
}
CPolicyInformationList const* CAttrSigningCertificate::get_policies() const {
  return m_policies.get();
}
void CAttrSigningCertificate::put_policies(CPolicyInformationList const* policies) {
  SigningCertificateCodec::store<ASN1T_SigningCertificate_traits>(*this, m_certs, policies);
}
CBlob const& CAttrSigningCertificate::encode() {
  SigningCertificateCodec::store<ASN1T_SigningCertificate_traits>(*this, m_certs, m_policies.get());
  return get_value();
}
void CAttrSigningCertificate::decode() {
  SigningCertificateCodec::load<ASN1T_SigningCertificate_traits>(*this, get_value());
}
void CAttrSigningCertificate::decode(CBlob const& der) {
  SigningCertificateCodec::load<ASN1T_SigningCertificate_traits>(*this, der);
}

void ASN1T_SigningCertificate_traits::set(ASN1CTXT* ctxt, ASN1_T& rec,
                                          CAttrSigningCertificate const& v) {
  SigningCertificateCodec::setRecord<ASN1T__SeqOfESSCertID_traits>(ctxt, rec, v);
}
void ASN1T_SigningCertificate_traits::get(ASN1_T const& rec, CAttrSigningCertificate& v) {
  SigningCertificateCodec::getRecord<ASN1T__SeqOfESSCertID_traits>(rec, v);
}

// ---- CAttrSigningCertificateV2 ----

CAttrSigningCertificateV2::CAttrSigningCertificateV2(PartsOnly)
    : CAttrValue(kOidSigningCertificateV2) {}
CAttrSigningCertificateV2::CAttrSigningCertificateV2() : CAttrValue(kOidSigningCertificateV2) {
  encode();
}
CAttrSigningCertificateV2::CAttrSigningCertificateV2(CESSCertIDv2List const& certs)
    : CAttrValue(kOidSigningCertificateV2) {
  put_certs(certs);
}
CAttrSigningCertificateV2::CAttrSigningCertificateV2(CBlob const& der)
    : CAttrValue(kOidSigningCertificateV2) {
  decode(der);
}
CAttrSigningCertificateV2::CAttrSigningCertificateV2(CAttrSigningCertificateV2 const& other)
    : CAttrValue(other), m_certs(other.m_certs) {
  SigningCertificateCodec::copyParts(*this, other);
}
CAttrSigningCertificateV2& CAttrSigningCertificateV2::operator=(
    CAttrSigningCertificateV2 const& other) {
  SigningCertificateCodec::assign(*this, other);
  return *this;
}
CAttrSigningCertificateV2::~CAttrSigningCertificateV2() = default;

CESSCertIDv2List const& CAttrSigningCertificateV2::get_certs() const { return m_certs; }
void CAttrSigningCertificateV2::put_certs(CESSCertIDv2List const& certs) {
  SigningCertificateCodec::store<ASN1T_SigningCertificateV2_traits>(*this, certs, m_policies.get());
}
CPolicyInformationList const* CAttrSigningCertificateV2::get_policies() const {
  return m_policies.get();
}
void CAttrSigningCertificateV2::put_policies(CPolicyInformationList const* policies) {
  SigningCertificateCodec::store<ASN1T_SigningCertificateV2_traits>(*this, m_certs, policies);
}
CBlob const& CAttrSigningCertificateV2::encode() {
  SigningCertificateCodec::store<ASN1T_SigningCertificateV2_traits>(*this, m_certs,
                                                                    m_policies.get());
  return get_value();
}
void CAttrSigningCertificateV2::decode() {
  SigningCertificateCodec::load<ASN1T_SigningCertificateV2_traits>(*this, get_value());
}
void CAttrSigningCertificateV2::decode(CBlob const& der) {
  SigningCertificateCodec::load<ASN1T_SigningCertificateV2_traits>(*this, der);
}

void ASN1T_SigningCertificateV2_traits::set(ASN1CTXT* ctxt, ASN1_T& rec,
                                            CAttrSigningCertificateV2 const& v) {
  SigningCertificateCodec::setRecord<ASN1T__SeqOfESSCertIDv2_traits>(ctxt, rec, v);
}
void ASN1T_SigningCertificateV2_traits::get(ASN1_T const& rec, CAttrSigningCertificateV2& v) {
  SigningCertificateCodec::getRecord<ASN1T__SeqOfESSCertIDv2_traits>(rec, v);
}

// ---- CAttrOtherSigningCertificate ----

CAttrOtherSigningCertificate::CAttrOtherSigningCertificate(PartsOnly)
    : CAttrValue(kOidOtherSigningCertificate) {}
CAttrOtherSigningCertificate::CAttrOtherSigningCertificate()
    : CAttrValue(kOidOtherSigningCertificate) {
  encode();
}
CAttrOtherSigningCertificate::CAttrOtherSigningCertificate(COtherCertIDList const& certs)
    : CAttrValue(kOidOtherSigningCertificate) {
  put_certs(certs);
}
CAttrOtherSigningCertificate::CAttrOtherSigningCertificate(CBlob const& der)
    : CAttrValue(kOidOtherSigningCertificate) {
  decode(der);
}
CAttrOtherSigningCertificate::CAttrOtherSigningCertificate(
    CAttrOtherSigningCertificate const& other)
    : CAttrValue(other), m_certs(other.m_certs) {
  SigningCertificateCodec::copyParts(*this, other);
}
CAttrOtherSigningCertificate& CAttrOtherSigningCertificate::operator=(
    CAttrOtherSigningCertificate const& other) {
  SigningCertificateCodec::assign(*this, other);
  return *this;
}
CAttrOtherSigningCertificate::~CAttrOtherSigningCertificate() = default;

COtherCertIDList const& CAttrOtherSigningCertificate::get_certs() const { return m_certs; }
void CAttrOtherSigningCertificate::put_certs(COtherCertIDList const& certs) {
  SigningCertificateCodec::store<ASN1T_OtherSigningCertificate_traits>(*this, certs,
                                                                       m_policies.get());
}
CPolicyInformationList const* CAttrOtherSigningCertificate::get_policies() const {
  return m_policies.get();
}
void CAttrOtherSigningCertificate::put_policies(CPolicyInformationList const* policies) {
  SigningCertificateCodec::store<ASN1T_OtherSigningCertificate_traits>(*this, m_certs, policies);
}
CBlob const& CAttrOtherSigningCertificate::encode() {
  SigningCertificateCodec::store<ASN1T_OtherSigningCertificate_traits>(*this, m_certs,
                                                                       m_policies.get());
  return get_value();
}
void CAttrOtherSigningCertificate::decode() {
  SigningCertificateCodec::load<ASN1T_OtherSigningCertificate_traits>(*this, get_value());
}
void CAttrOtherSigningCertificate::decode(CBlob const& der) {
  SigningCertificateCodec::load<ASN1T_OtherSigningCertificate_traits>(*this, der);
}

void ASN1T_OtherSigningCertificate_traits::set(ASN1CTXT* ctxt, ASN1_T& rec,
                                               CAttrOtherSigningCertificate const& v) {
  SigningCertificateCodec::setRecord<ASN1T__SeqOfOtherCertID_traits>(ctxt, rec, v);
}
void ASN1T_OtherSigningCertificate_traits::get(ASN1_T const& rec, CAttrOtherSigningCertificate& v) {
  SigningCertificateCodec::getRecord<ASN1T__SeqOfOtherCertID_traits>(rec, v);
}

}  // namespace ASN1
}  // namespace Korvex
