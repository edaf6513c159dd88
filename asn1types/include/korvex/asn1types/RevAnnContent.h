// korvex/asn1types/RevAnnContent.h: the revocation announcement of the
// certificate management protocol (RFC 4210 5.3.16); part of CMP.h.
#ifndef KORVEX_ASN1TYPES_REVANNCONTENT_H
#define KORVEX_ASN1TYPES_REVANNCONTENT_H

#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/Extension.h>
#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>
#include <korvex/platform/export.h>

namespace Korvex {
namespace ASN1 {

// CRevAnnContent: RevAnnContent ::= SEQUENCE { status PKIStatus, certId
// CertId, willBeRevokedAt GeneralizedTime, badSinceDate GeneralizedTime,
// crlDetails Extensions OPTIONAL } (RFC 4210 5.3.16). The times are written
// in whole seconds.
class KORVEX_API CRevAnnContent {
 public:
  // CRevAnnContent(): status accepted, a default CCertId, both times the zero
  // CDateTime (1970-01-01), no CRL details.
  CRevAnnContent();
  CRevAnnContent(int status, CCertId const& certId, CDateTime const& willBeRevokedAt,
                 CDateTime const& badSinceDate);
  CRevAnnContent(CRevAnnContent const& other);
  CRevAnnContent& operator=(CRevAnnContent const& other);
  ~CRevAnnContent();

  int get_status() const;
  void put_status(int status);
  CCertId const& get_certId() const;
  void put_certId(CCertId const& certId);
  CDateTime const& get_willBeRevokedAt() const;
  void put_willBeRevokedAt(CDateTime const& time);
  CDateTime const& get_badSinceDate() const;
  void put_badSinceDate(CDateTime const& time);
  // get_crlDetails / put_crlDetails: the optional extensions (null: absent).
  CExtensions const* get_crlDetails() const;
  void put_crlDetails(CExtensions const* crlDetails);

  CBlob encode() const;
  void decode(CBlob const& der);

 private:
  struct Impl;
  Impl* m_impl;
};

KORVEX_API bool operator==(CRevAnnContent const& a, CRevAnnContent const& b);
KORVEX_API bool operator!=(CRevAnnContent const& a, CRevAnnContent const& b);

}  // namespace ASN1
}  // namespace Korvex

#endif
