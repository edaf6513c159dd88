// The revocation announcement of the certificate management protocol, with
// its traits.
#include <korvex/asn1types/AutoPtr.h>
#include <korvex/asn1types/CMP.h>
#include <korvex/asn1types/CMPTraits.h>
#include <korvex/asn1types/CertIdTraits.h>
#include <korvex/asn1types/ExtensionTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>

#include <memory>

#include "ContainerCodecs.h"
#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {

struct CRevAnnContent::Impl {
  int status = CPKIStatusInfo::accepted;
  CCertId certId;
  CDateTime willBeRevokedAt{0, 0};
  CDateTime badSinceDate{0, 0};
  std::unique_ptr<CExtensions> crlDetails;

  Impl() = default;
  Impl(Impl const& other)
      : status(other.status),
        certId(other.certId),
        willBeRevokedAt(other.willBeRevokedAt),
        badSinceDate(other.badSinceDate) {
    copy_to_auto_ptr(crlDetails, other.crlDetails);
  }
};

CRevAnnContent::CRevAnnContent() : m_impl(new Impl) {}

CRevAnnContent::CRevAnnContent(int status, CCertId const& certId, CDateTime const& willBeRevokedAt,
                               CDateTime const& badSinceDate)
    : m_impl(new Impl) {
  std::unique_ptr<Impl> guard(m_impl);
  m_impl->status = status;
  m_impl->certId = certId;
  m_impl->willBeRevokedAt = willBeRevokedAt;
  m_impl->badSinceDate = badSinceDate;
  guard.release();
}

CRevAnnContent::CRevAnnContent(CRevAnnContent const& other) : m_impl(new Impl(*other.m_impl)) {}
CRevAnnContent& CRevAnnContent::operator=(CRevAnnContent const& other) {
  detail::assignImpl(m_impl, other.m_impl);
  return *this;
}
CRevAnnContent::~CRevAnnContent() { delete m_impl; }

int CRevAnnContent::get_status() const { return m_impl->status; }
void CRevAnnContent::put_status(int status) { m_impl->status = status; }
CCertId const& CRevAnnContent::get_certId() const { return m_impl->certId; }
void CRevAnnContent::put_certId(CCertId const& certId) { m_impl->certId = certId; }
CDateTime const& CRevAnnContent::get_willBeRevokedAt() const { return m_impl->willBeRevokedAt; }
void CRevAnnContent::put_willBeRevokedAt(CDateTime const& time) { m_impl->willBeRevokedAt = time; }
CDateTime const& CRevAnnContent::get_badSinceDate() const { return m_impl->badSinceDate; }
void CRevAnnContent::put_badSinceDate(CDateTime const& time) { m_impl->badSinceDate = time; }
CExtensions const* CRevAnnContent::get_crlDetails() const { return m_impl->crlDetails.get(); }
void CRevAnnContent::put_crlDetails(CExtensions const* crlDetails) {
  copy_to_auto_ptr(m_impl->crlDetails, crlDetails);
}

CBlob CRevAnnContent::encode() const { return asn1Encode<containers::RevAnnContentCodec>(*this); }
void CRevAnnContent::decode(CBlob const& der) {
  detail::decodeWhole<containers::RevAnnContentCodec>(der, *this);
}

bool operator==(CRevAnnContent const& a, CRevAnnContent const& b) {
  return a.get_status() == b.get_status() && a.get_certId() == b.get_certId() &&
         a.get_willBeRevokedAt() == b.get_willBeRevokedAt() &&
         a.get_badSinceDate() == b.get_badSinceDate() &&
         detail::sameOptional(a.get_crlDetails(), b.get_crlDetails());
}
bool operator!=(CRevAnnContent const& a, CRevAnnContent const& b) { return !(a == b); }

void ASN1T_RevAnnContent_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CRevAnnContent const& v) {
  rec.status = v.get_status();
  ASN1T_CertId_traits::set(ctxt, rec.certId, v.get_certId());
  ASN1GeneralizedTime_traits::set(ctxt, rec.willBeRevokedAt, v.get_willBeRevokedAt());
  ASN1GeneralizedTime_traits::set(ctxt, rec.badSinceDate, v.get_badSinceDate());
  rec.m.crlDetailsPresent = v.get_crlDetails() ? 1 : 0;
  if (v.get_crlDetails()) ASN1T_Extensions_traits::set(ctxt, rec.crlDetails, *v.get_crlDetails());
}

void ASN1T_RevAnnContent_traits::get(ASN1_T const& rec, CRevAnnContent& v) {
  v.put_status(rec.status);
  CCertId certId;
  ASN1T_CertId_traits::get(rec.certId, certId);
  v.put_certId(certId);
  v.put_willBeRevokedAt(detail::readGeneralizedTime(rec.willBeRevokedAt));
  v.put_badSinceDate(detail::readGeneralizedTime(rec.badSinceDate));
  if (rec.m.crlDetailsPresent) {
    CExtensions details;
    ASN1T_Extensions_traits::get(rec.crlDetails, details);
    v.put_crlDetails(&details);
  } else {
    v.put_crlDetails(nullptr);
  }
}

}  // namespace ASN1
}  // namespace Korvex
