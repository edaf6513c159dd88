// trust_store.h: the trust anchors, intermediate certificates and CRLs the
// chain engine reads from the locations the configuration names. Not
// installed.
#ifndef KORVEX_PLATFORM_CAPI_TRUST_STORE_H
#define KORVEX_PLATFORM_CAPI_TRUST_STORE_H

#include "capi_internal.h"

namespace korvex::capi {

// Configuration paths (docs/capi.md, docs/configuration.md).
constexpr char kTrustAnchorsDirKey[] = "\\config\\capi\\TrustAnchors\\Directory";
constexpr char kTrustAnchorsFileKey[] = "\\config\\capi\\TrustAnchors\\File";
constexpr char kIntermediatesDirKey[] = "\\config\\capi\\Intermediates\\Directory";
constexpr char kCrlDirKey[] = "\\config\\capi\\CRL\\Directory";

struct TrustMaterial {
  std::vector<X509Ptr> anchors;
  std::vector<X509Ptr> intermediates;
  std::vector<X509CrlPtr> crls;
};

// CurrentTrustMaterial returns what the configured locations hold now. The
// result is cached and read again only when the configuration or a file in
// those locations (name, size, modification time) changes.
std::shared_ptr<const TrustMaterial> CurrentTrustMaterial();

}  // namespace korvex::capi

#endif
