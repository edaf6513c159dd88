// Building and checking certificate chains (RFC 5280 6) with OpenSSL, and
// reporting the results in the Windows chain structures.
#include <openssl/err.h>
#include <openssl/x509v3.h>

#include <set>

#include "chain_internal.h"
#include "trust_store.h"

namespace korvex::capi {
namespace {

constexpr size_t kMaxDepth = 32;
constexpr DWORD kMinChainParaSize = offsetof(CERT_CHAIN_PARA, RequestedIssuancePolicy);
constexpr char kAnyExtendedKeyUsage[] = "2.5.29.37.0";

Registry<ChainBlock>& Chains() {
  static Registry<ChainBlock>* registry = new Registry<ChainBlock>();
  return *registry;
}

// Candidate is a certificate the builder may use as an issuer. `context` is
// set when the certificate came from a store (it is then reused as is).
struct Candidate {
  X509* x509 = nullptr;
  PCCERT_CONTEXT context = nullptr;
  bool anchor = false;
};

struct Node {
  Candidate cert;
  DWORD info = 0;
  DWORD error = 0;
};

// IssuedBy matches an issuer by name and, when both are there, by key
// identifier (RFC 5280 4.2.1.1, 4.2.1.2). It does not need to understand the
// key, so chains of algorithms the OpenSSL in use cannot verify still link.
bool IssuedBy(X509* subject, X509* issuer) {
  if (X509_NAME_cmp(X509_get_issuer_name(subject), X509_get_subject_name(issuer)) != 0) {
    return false;
  }
  const ASN1_OCTET_STRING* authorityKeyId = X509_get0_authority_key_id(subject);
  const ASN1_OCTET_STRING* subjectKeyId = X509_get0_subject_key_id(issuer);
  return authorityKeyId == nullptr || subjectKeyId == nullptr ||
         ASN1_OCTET_STRING_cmp(authorityKeyId, subjectKeyId) == 0;
}

bool SelfSigned(X509* x) { return IssuedBy(x, x); }

bool TimeValid(X509* x, time_t at) {
  return X509_cmp_time(X509_get0_notBefore(x), &at) < 0 &&
         X509_cmp_time(X509_get0_notAfter(x), &at) > 0;
}

bool SignedBy(X509* subject, X509* issuer) {
  EVP_PKEY* key = X509_get0_pubkey(issuer);
  return key != nullptr && X509_verify(subject, key) == 1;
}

// MatchInfo names how the issuer was found: through the authority key
// identifier (RFC 5280 4.2.1.1) or by name alone.
DWORD MatchInfo(X509* subject) {
  return X509_get0_authority_key_id(subject) != nullptr ? CERT_TRUST_HAS_KEY_MATCH_ISSUER
                                                        : CERT_TRUST_HAS_NAME_MATCH_ISSUER;
}

// ValidForUsage checks the end certificate's extended key usage (RFC 5280
// 4.2.1.12) against the requested one; no extension means any usage.
bool ValidForUsage(X509* x, const CERT_USAGE_MATCH& wanted) {
  if (wanted.Usage.cUsageIdentifier == 0) return true;
  int critical = -1;
  auto* eku = static_cast<EXTENDED_KEY_USAGE*>(
      X509_get_ext_d2i(x, NID_ext_key_usage, &critical, nullptr));
  if (eku == nullptr) return critical == -1;
  std::set<std::string> present;
  for (int i = 0; i < sk_ASN1_OBJECT_num(eku); ++i) {
    present.insert(ObjectText(sk_ASN1_OBJECT_value(eku, i)));
  }
  EXTENDED_KEY_USAGE_free(eku);
  if (present.count(kAnyExtendedKeyUsage) != 0) return true;
  bool all = true, any = false;
  for (DWORD i = 0; i < wanted.Usage.cUsageIdentifier; ++i) {
    const char* oid = wanted.Usage.rgpszUsageIdentifier[i];
    bool has = oid != nullptr && present.count(oid) != 0;
    all = all && has;
    any = any || has;
  }
  return wanted.dwType == USAGE_MATCH_TYPE_OR ? any : all;
}

time_t AsnTimeToUnix(const ASN1_TIME* time) {
  struct tm parts {};
  if (time == nullptr || ASN1_TIME_to_tm(time, &parts) != 1) return 0;
  return timegm(&parts);
}

// CoversCertificate tells whether a CRL is a complete CRL for `cert`: delta
// CRLs (RFC 5280 5.2.4), indirect CRLs and CRLs limited to some reasons or
// to the other kind of certificate (5.2.5) are not used.
bool CoversCertificate(X509_CRL* crl, X509* cert) {
  int critical = -1;
  void* delta = X509_CRL_get_ext_d2i(crl, NID_delta_crl, &critical, nullptr);
  ASN1_INTEGER_free(static_cast<ASN1_INTEGER*>(delta));
  if (critical != -1) return false;
  auto* idp = static_cast<ISSUING_DIST_POINT*>(
      X509_CRL_get_ext_d2i(crl, NID_issuing_distribution_point, &critical, nullptr));
  if (idp == nullptr) return critical == -1;
  bool isCa = X509_check_ca(cert) != 0;
  bool covers = idp->indirectCRL == 0 && idp->onlysomereasons == nullptr &&
                !(idp->onlyuser && isCa) && !(idp->onlyCA && !isCa) && idp->onlyattr == 0;
  ISSUING_DIST_POINT_free(idp);
  return covers;
}

// CheckRevocation looks up `cert` in the newest CRL of its issuer that
// verifies with the issuer's key and is current now (RFC 5280 6.3.3, full
// CRLs of the certificate's own issuer only). Returns the error bits and
// fills `info`.
DWORD CheckRevocation(X509* cert, X509* issuer, const TrustMaterial& material, time_t at,
                      time_t now, CERT_REVOCATION_INFO* info) {
  info->cbSize = sizeof *info;
  const DWORD offline = CERT_TRUST_REVOCATION_STATUS_UNKNOWN | CERT_TRUST_IS_OFFLINE_REVOCATION;
  info->dwRevocationResult = static_cast<DWORD>(CRYPT_E_REVOCATION_OFFLINE);
  if (issuer == nullptr) return offline;
  EVP_PKEY* key = X509_get0_pubkey(issuer);
  X509_CRL* best = nullptr;
  for (const X509CrlPtr& crl : material.crls) {
    if (X509_NAME_cmp(X509_CRL_get_issuer(crl.get()), X509_get_issuer_name(cert)) != 0) continue;
    if (!CoversCertificate(crl.get(), cert)) continue;
    const ASN1_TIME* thisUpdate = X509_CRL_get0_lastUpdate(crl.get());
    const ASN1_TIME* nextUpdate = X509_CRL_get0_nextUpdate(crl.get());
    if (thisUpdate == nullptr || X509_cmp_time(thisUpdate, &now) >= 0) continue;
    if (nextUpdate != nullptr && X509_cmp_time(nextUpdate, &now) <= 0) continue;
    if (key == nullptr || X509_CRL_verify(crl.get(), key) != 1) continue;
    if (best == nullptr ||
        ASN1_TIME_compare(thisUpdate, X509_CRL_get0_lastUpdate(best)) > 0) {
      best = crl.get();
    }
  }
  ERR_clear_error();
  if (best == nullptr) return offline;
  time_t issued = AsnTimeToUnix(X509_CRL_get0_lastUpdate(best));
  info->fHasFreshnessTime = TRUE;
  info->dwFreshnessTime = now > issued ? static_cast<DWORD>(now - issued) : 0;
  X509_REVOKED* entry = nullptr;
  if (X509_CRL_get0_by_cert(best, &entry, cert) == 1 && entry != nullptr &&
      X509_cmp_time(X509_REVOKED_get0_revocationDate(entry), &at) < 0) {
    info->dwRevocationResult = static_cast<DWORD>(CRYPT_E_REVOKED);
    return CERT_TRUST_IS_REVOKED;
  }
  info->dwRevocationResult = 0;
  return 0;
}

class Builder {
 public:
  Builder(PCCERT_CONTEXT end, HCERTSTORE additional, const CERT_CHAIN_PARA& para, DWORD flags,
          time_t at)
      : para_(para), flags_(flags), at_(at), now_(time(nullptr)) {
    material_ = CurrentTrustMaterial();
    for (const X509Ptr& anchor : material_->anchors) pool_.push_back({anchor.get(), nullptr, true});
    AddStore(additional);
    AddStore(end->hCertStore);
    for (const X509Ptr& x : material_->intermediates) pool_.push_back({x.get(), nullptr, false});
    endObject_ = FindCert(end);
    end_ = end;
  }
  ~Builder() {
    for (PCCERT_CONTEXT context : held_) CertFreeCertificateContext(context);
  }

  bool valid() const { return endObject_ != nullptr; }

  std::shared_ptr<ChainBlock> Build() {
    X509* endX509 = endObject_->x509.get();
    path_.push_back({{endX509, end_, IsAnchor(endX509)}, 0, 0});
    bool partial = false, cyclic = false, selfSigned = false;
    while (true) {
      Node& current = path_.back();
      if (SelfSigned(current.cert.x509)) {
        selfSigned = true;
        break;
      }
      if (path_.size() >= kMaxDepth) {
        partial = true;
        break;
      }
      const Candidate* issuer = FindIssuer(current.cert.x509);
      if (issuer == nullptr) {
        // An anchor that is not a root ends the chain when nothing issued it.
        partial = !current.cert.anchor;
        break;
      }
      current.info |= MatchInfo(current.cert.x509);
      if (InPath(issuer->x509)) {
        cyclic = partial = true;
        break;
      }
      path_.push_back({*issuer, 0, 0});
    }
    ERR_clear_error();
    return Assess(partial, cyclic, selfSigned);
  }

 private:
  void AddStore(HCERTSTORE store) {
    if (store == nullptr) return;
    for (PCCERT_CONTEXT context : StoreSnapshot(store)) {
      held_.push_back(context);
      if (auto object = FindCert(context)) {
        X509* x = object->x509.get();
        pool_.push_back({x, context, IsAnchor(x)});
      }
    }
  }

  bool IsAnchor(X509* x) const {
    for (const X509Ptr& anchor : material_->anchors) {
      if (X509_cmp(anchor.get(), x) == 0) return true;
    }
    return false;
  }

  bool InPath(X509* x) const {
    for (const Node& node : path_) {
      if (X509_cmp(node.cert.x509, x) == 0) return true;
    }
    return false;
  }

  // FindIssuer prefers, among the certificates whose name and key
  // identifier fit, one whose key verifies the signature, then one valid at
  // the validation time, then a trust anchor.
  const Candidate* FindIssuer(X509* subject) const {
    const Candidate* best = nullptr;
    int bestScore = -1;
    for (const Candidate& candidate : pool_) {
      if (X509_cmp(candidate.x509, subject) == 0) continue;
      if (!IssuedBy(subject, candidate.x509)) continue;
      int score = (SignedBy(subject, candidate.x509) ? 4 : 0) +
                  (TimeValid(candidate.x509, at_) ? 2 : 0) + (candidate.anchor ? 1 : 0);
      if (score > bestScore) {
        best = &candidate;
        bestScore = score;
      }
    }
    return best;
  }

  bool CheckRevocationOf(size_t index, bool selfSignedTop) const {
    bool isRoot = selfSignedTop && index + 1 == path_.size();
    if ((flags_ & CERT_CHAIN_REVOCATION_CHECK_CHAIN) != 0) return true;
    if ((flags_ & CERT_CHAIN_REVOCATION_CHECK_CHAIN_EXCLUDE_ROOT) != 0 && !isRoot) return true;
    return (flags_ & CERT_CHAIN_REVOCATION_CHECK_END_CERT) != 0 && index == 0;
  }

  std::shared_ptr<ChainBlock> Assess(bool partial, bool cyclic, bool selfSigned) {
    size_t count = path_.size();
    bool trusted = path_.back().cert.anchor;
    auto block = std::make_shared<ChainBlock>();
    block->elements.resize(count);
    block->elementPointers.resize(count);
    block->revocation.resize(count);
    block->topSelfSigned = selfSigned;
    block->endKeyUsage = X509_get_key_usage(path_[0].cert.x509);

    DWORD chainError = (partial ? CERT_TRUST_IS_PARTIAL_CHAIN : 0) |
                       (cyclic ? CERT_TRUST_IS_CYCLIC : 0);
    for (size_t i = 0; i < count; ++i) {
      Node& node = path_[i];
      X509* x = node.cert.x509;
      if (!TimeValid(x, at_)) node.error |= CERT_TRUST_IS_NOT_TIME_VALID;
      bool top = i + 1 == count;
      if (!top) {
        if (!SignedBy(x, path_[i + 1].cert.x509)) node.error |= CERT_TRUST_IS_NOT_SIGNATURE_VALID;
      } else if (selfSigned) {
        node.info |= CERT_TRUST_IS_SELF_SIGNED | MatchInfo(x);
        if (!SignedBy(x, x)) node.error |= CERT_TRUST_IS_NOT_SIGNATURE_VALID;
        if (!trusted) node.error |= CERT_TRUST_IS_UNTRUSTED_ROOT;
      }
      if (i > 0) {
        // RFC 5280 6.1.4 (k), (l), (m): issuers must be CAs, and a path
        // length constraint bounds the CA certificates below.
        long pathLength = X509_get_pathlen(x);
        if (X509_check_ca(x) == 0 ||
            (pathLength >= 0 && static_cast<long>(i) - 1 > pathLength)) {
          node.error |= CERT_TRUST_INVALID_BASIC_CONSTRAINTS;
        }
      }
      if ((X509_get_extension_flags(x) & (EXFLAG_CRITICAL | EXFLAG_INVALID)) != 0) {
        node.error |= CERT_TRUST_INVALID_EXTENSION;
      }
      if (i == 0 && !ValidForUsage(x, para_.RequestedUsage)) {
        node.error |= CERT_TRUST_IS_NOT_VALID_FOR_USAGE;
      }
      CERT_CHAIN_ELEMENT& element = block->elements[i];
      if (CheckRevocationOf(i, selfSigned)) {
        X509* issuer = !top ? path_[i + 1].cert.x509 : selfSigned ? x : nullptr;
        node.error |= CheckRevocation(x, issuer, *material_, at_, now_, &block->revocation[i]);
        element.pRevocationInfo = &block->revocation[i];
      }
      if (trusted) node.info |= CERT_TRUST_HAS_PREFERRED_ISSUER;
      chainError |= node.error;

      element.cbSize = sizeof element;
      element.pCertContext = node.cert.context != nullptr
                                 ? CertDuplicateCertificateContext(node.cert.context)
                                 : NewCertContextFromX509(X509Ptr(X509_dup_ref(x)), nullptr);
      element.TrustStatus.dwErrorStatus = node.error;
      element.TrustStatus.dwInfoStatus = node.info;
      block->elementPointers[i] = &element;
      if (element.pCertContext == nullptr) return nullptr;
    }
    ERR_clear_error();

    CERT_TRUST_STATUS status{chainError, trusted ? CERT_TRUST_HAS_PREFERRED_ISSUER : 0u};
    block->simple.cbSize = sizeof block->simple;
    block->simple.TrustStatus = status;
    block->simple.cElement = static_cast<DWORD>(count);
    block->simple.rgpElement = block->elementPointers.data();
    block->simplePointer = &block->simple;
    block->context.cbSize = sizeof block->context;
    block->context.TrustStatus = status;
    block->context.cChain = 1;
    block->context.rgpChain = &block->simplePointer;
    block->context.dwCreateFlags = flags_;
    return block;
  }

  static X509* X509_dup_ref(X509* x) {
    X509_up_ref(x);
    return x;
  }

  const CERT_CHAIN_PARA& para_;
  DWORD flags_;
  time_t at_;
  time_t now_;
  std::shared_ptr<const TrustMaterial> material_;
  std::vector<Candidate> pool_;
  std::vector<PCCERT_CONTEXT> held_;
  std::vector<Node> path_;
  std::shared_ptr<CertObject> endObject_;
  PCCERT_CONTEXT end_ = nullptr;
};

}  // namespace

std::shared_ptr<ChainBlock> FindChain(PCCERT_CHAIN_CONTEXT chain) { return Chains().Find(chain); }

}  // namespace korvex::capi

using namespace korvex::capi;

extern "C" BOOL CertGetCertificateChain(HCERTCHAINENGINE hChainEngine,
                                        PCCERT_CONTEXT pCertContext, LPFILETIME pTime,
                                        HCERTSTORE hAdditionalStore, PCERT_CHAIN_PARA pChainPara,
                                        DWORD dwFlags, LPVOID pvReserved,
                                        PCCERT_CHAIN_CONTEXT* ppChainContext) {
  if (ppChainContext != nullptr) *ppChainContext = nullptr;
  if (ppChainContext == nullptr || pCertContext == nullptr || pChainPara == nullptr ||
      pChainPara->cbSize < kMinChainParaSize || pvReserved != nullptr ||
      (hChainEngine != HCCE_CURRENT_USER && hChainEngine != HCCE_LOCAL_MACHINE) ||
      (pChainPara->RequestedUsage.Usage.cUsageIdentifier != 0 &&
       pChainPara->RequestedUsage.Usage.rgpszUsageIdentifier == nullptr)) {
    return Fail(E_INVALIDARG);
  }
  try {
    time_t at = pTime != nullptr ? FileTimeToUnix(*pTime) : time(nullptr);
    Builder builder(pCertContext, hAdditionalStore, *pChainPara, dwFlags, at);
    if (!builder.valid()) return Fail(E_INVALIDARG);
    std::shared_ptr<ChainBlock> block = builder.Build();
    if (!block) return Fail(E_OUTOFMEMORY);
    PCCERT_CHAIN_CONTEXT handle = &block->context;
    Chains().Add(handle, std::move(block));
    *ppChainContext = handle;
    return TRUE;
  } catch (const std::bad_alloc&) {
    return Fail(E_OUTOFMEMORY);
  }
}

extern "C" PCCERT_CHAIN_CONTEXT CertDuplicateCertificateChain(PCCERT_CHAIN_CONTEXT pChainContext) {
  std::shared_ptr<ChainBlock> block = FindChain(pChainContext);
  if (!block) return nullptr;
  std::lock_guard<std::mutex> lock(block->mutex);
  ++block->refs;
  return pChainContext;
}

extern "C" void CertFreeCertificateChain(PCCERT_CHAIN_CONTEXT pChainContext) {
  std::shared_ptr<ChainBlock> block = FindChain(pChainContext);
  if (!block) return;
  bool last;
  {
    std::lock_guard<std::mutex> lock(block->mutex);
    last = --block->refs == 0;
  }
  if (last) Chains().Remove(pChainContext);
}
