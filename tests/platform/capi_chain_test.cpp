// Chain building and chain policies over the test PKI: trust statuses with
// their exact bits and the policy errors of each case.
#include <korvex/platform/atl/certcontext.h>

#include "capi_test_util.h"

namespace {

using capi_test::Cert;
using capi_test::LastError;
using capi_test::ReadData;
using capi_test::ScopedConfig;

constexpr DWORD kRevocationFlags = 0x40000100;  // CHAIN_EXCLUDE_ROOT | DISABLE_AUTH_ROOT_AUTO_UPDATE

class CapiChain : public ::testing::Test {
 protected:
  void SetUp() override {
    anchors_ = config_.Folder("anchors", {"pki/root-ca.der"});
    intermediates_ = config_.Folder("intermediates", {"pki/intermediate-ca.der"});
    crls_ = config_.Folder("crls", {"crl/intermediate-ca.crl", "crl/root-ca.crl"});
    Configure(true, true, true);
  }
  void TearDown() override { CertFreeCertificateChain(chain_); }

  void Configure(bool anchors, bool intermediates, bool crls) {
    std::string text;
    if (anchors) text += "\\config\\capi\\TrustAnchors\\Directory = " + anchors_.string() + "\n";
    if (intermediates) {
      text += "\\config\\capi\\Intermediates\\Directory = " + intermediates_.string() + "\n";
    }
    if (crls) text += "\\config\\capi\\CRL\\Directory = " + crls_.string() + "\n";
    config_.Write(text);
  }

  // Build builds the chain of a certificate (freeing the previous one).
  void Build(PCCERT_CONTEXT cert, DWORD flags, HCERTSTORE additional = nullptr) {
    CertFreeCertificateChain(chain_);
    chain_ = nullptr;
    CERT_CHAIN_PARA para{};
    para.cbSize = sizeof para;
    ASSERT_TRUE(CertGetCertificateChain(nullptr, cert, nullptr, additional, &para, flags, nullptr,
                                        &chain_));
    ASSERT_NE(nullptr, chain_);
    ASSERT_EQ(1u, chain_->cChain);
  }

  const CERT_SIMPLE_CHAIN& simple() const { return *chain_->rgpChain[0]; }
  const CERT_CHAIN_ELEMENT& element(size_t i) const { return *simple().rgpElement[i]; }

  CERT_CHAIN_POLICY_STATUS Policy(LPCSTR policy, DWORD flags = 0) {
    CERT_CHAIN_POLICY_PARA para{16, flags, nullptr};
    CERT_CHAIN_POLICY_STATUS status{24, 0xFFFF, 7, 7, nullptr};
    EXPECT_TRUE(CertVerifyCertificateChainPolicy(policy, chain_, &para, &status));
    return status;
  }

  ScopedConfig config_;
  capi_test::fs::path anchors_, intermediates_, crls_;
  PCCERT_CHAIN_CONTEXT chain_ = nullptr;
};

TEST_F(CapiChain, ValidThreeCertificateChain) {
  Cert ee("pki/ee-rsa.der");
  ASSERT_NE(nullptr, ee.get());
  Build(ee.get(), kRevocationFlags);
  EXPECT_EQ(sizeof(CERT_CHAIN_CONTEXT), chain_->cbSize);
  EXPECT_EQ(0u, chain_->TrustStatus.dwErrorStatus);
  EXPECT_EQ(0x100u, chain_->TrustStatus.dwInfoStatus);  // HAS_PREFERRED_ISSUER
  ASSERT_EQ(3u, simple().cElement);
  EXPECT_EQ(ee.get(), element(0).pCertContext);
  Cert ca("pki/intermediate-ca.der"), root("pki/root-ca.der");
  EXPECT_EQ(ca.get()->cbCertEncoded, element(1).pCertContext->cbCertEncoded);
  EXPECT_EQ(root.get()->cbCertEncoded, element(2).pCertContext->cbCertEncoded);
  // Issuers found by key identifier; the root is self-signed.
  EXPECT_EQ(0x102u, element(0).TrustStatus.dwInfoStatus);
  EXPECT_EQ(0x102u, element(1).TrustStatus.dwInfoStatus);
  EXPECT_EQ(0x10Au, element(2).TrustStatus.dwInfoStatus);
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(0u, element(i).TrustStatus.dwErrorStatus) << i;
  // Revocation was checked for all but the root, against current CRLs.
  ASSERT_NE(nullptr, element(0).pRevocationInfo);
  EXPECT_EQ(0u, element(0).pRevocationInfo->dwRevocationResult);
  EXPECT_TRUE(element(0).pRevocationInfo->fHasFreshnessTime);
  ASSERT_NE(nullptr, element(1).pRevocationInfo);
  EXPECT_EQ(nullptr, element(2).pRevocationInfo);

  CERT_CHAIN_POLICY_STATUS status = Policy(CERT_CHAIN_POLICY_BASE);
  EXPECT_EQ(0u, status.dwError);
  EXPECT_EQ(-1, status.lChainIndex);
  EXPECT_EQ(-1, status.lElementIndex);
  EXPECT_EQ(0u, Policy(KORVEX_CHAIN_POLICY_SIGNATURE).dwError);
  EXPECT_EQ(0u, Policy("{6b8f3e2a-4c1d-4e7b-9a25-5f0c3d8e1b74}").dwError);
}

struct ChainCase {
  const char* what;
  const char* file;
  DWORD flags;
  bool withIntermediates, withCrls;
  DWORD elements;
  std::vector<DWORD> elementErrors;
  DWORD chainError;
  uint32_t policyError;
  LONG policyElement;
};

TEST_F(CapiChain, StatusesAndPolicyErrors) {
  const DWORD kOffline = 0x01000040;  // IS_OFFLINE_REVOCATION | REVOCATION_STATUS_UNKNOWN
  const ChainCase kCases[] = {
      {"expired", "pki/ee-rsa-expired.der", kRevocationFlags, true, true, 3, {0x1, 0, 0}, 0x1,
       0x800B0101u, 0},
      {"revoked", "pki/ee-rsa-revoked.der", kRevocationFlags, true, true, 3, {0x4, 0, 0}, 0x4,
       0x80092010u, 0},
      {"revoked, not checked", "pki/ee-rsa-revoked.der", 0, true, true, 3, {0, 0, 0}, 0, 0, -1},
      {"revocation offline", "pki/ee-rsa.der", kRevocationFlags, true, false, 3,
       {kOffline, kOffline, 0}, kOffline, 0x80092013u, 0},
      {"end certificate only", "pki/ee-rsa.der", 0x10000000, true, false, 3, {kOffline, 0, 0},
       kOffline, 0x80092013u, 0},
      {"whole chain, root too", "pki/ee-rsa.der", 0x20000000, true, true, 3, {0, 0, 0}, 0, 0, -1},
      {"no issuer", "pki/ee-rsa.der", 0, false, true, 1, {0}, 0x10000, 0x800B010Au, 0},
      {"no issuer, revocation asked", "pki/ee-rsa.der", kRevocationFlags, false, true, 1,
       {kOffline}, 0x10000 | kOffline, 0x800B010Au, 0},
      {"untrusted root", "pki/untrusted-root-ca.der", 0, true, true, 1, {0x20}, 0x20, 0x800B0109u,
       0},
      {"trusted root alone", "pki/root-ca.der", kRevocationFlags, true, true, 1, {0}, 0, 0, -1},
  };
  for (const ChainCase& c : kCases) {
    SCOPED_TRACE(c.what);
    Configure(true, c.withIntermediates, c.withCrls);
    Cert cert(c.file);
    ASSERT_NE(nullptr, cert.get());
    Build(cert.get(), c.flags);
    ASSERT_EQ(c.elements, simple().cElement);
    for (DWORD i = 0; i < c.elements; ++i) {
      EXPECT_EQ(c.elementErrors[i], element(i).TrustStatus.dwErrorStatus) << "element " << i;
    }
    EXPECT_EQ(c.chainError, chain_->TrustStatus.dwErrorStatus);
    EXPECT_EQ(c.chainError, simple().TrustStatus.dwErrorStatus);
    CERT_CHAIN_POLICY_STATUS status = Policy(CERT_CHAIN_POLICY_BASE);
    EXPECT_EQ(c.policyError, status.dwError);
    EXPECT_EQ(c.policyElement, status.lElementIndex);
    EXPECT_EQ(c.policyError == 0 ? -1 : 0, status.lChainIndex);
  }
}

TEST_F(CapiChain, UntrustedRootFromAnAdditionalStore) {
  HCERTSTORE store = CertOpenStore(CERT_STORE_PROV_MEMORY, 0, 0, 0, nullptr);
  std::vector<BYTE> root = ReadData("pki/untrusted-root-ca.der");
  ASSERT_TRUE(CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, root.data(),
                                               static_cast<DWORD>(root.size()),
                                               CERT_STORE_ADD_NEW, nullptr));
  Cert ee("pki/ee-untrusted.der");
  Build(ee.get(), kRevocationFlags, store);
  ASSERT_EQ(2u, simple().cElement);
  // No CRL of the untrusted root: the end certificate's status is unknown.
  EXPECT_EQ(0x01000040u, element(0).TrustStatus.dwErrorStatus);
  EXPECT_EQ(0x20u, element(1).TrustStatus.dwErrorStatus);
  EXPECT_EQ(0x0Cu, element(1).TrustStatus.dwInfoStatus);  // self-signed, name match, not preferred
  EXPECT_EQ(0x01000060u, chain_->TrustStatus.dwErrorStatus);
  EXPECT_EQ(0u, chain_->TrustStatus.dwInfoStatus);
  CERT_CHAIN_POLICY_STATUS status = Policy(CERT_CHAIN_POLICY_BASE);
  EXPECT_EQ(0x800B0109u, status.dwError);
  EXPECT_EQ(1, status.lElementIndex);
  // Allowing unknown CAs leaves the offline revocation; ignoring that passes.
  EXPECT_EQ(0x80092013u, Policy(CERT_CHAIN_POLICY_BASE, 0x10).dwError);
  EXPECT_EQ(0u, Policy(CERT_CHAIN_POLICY_BASE, 0x10 | 0x100).dwError);
  CertCloseStore(store, 0);
}

TEST_F(CapiChain, BadSignature) {
  std::vector<BYTE> der = ReadData("pki/ee-rsa.der");
  ASSERT_FALSE(der.empty());
  der.back() ^= 0x01;  // the last octet of the signature value
  Cert cert(der);
  ASSERT_NE(nullptr, cert.get());
  Build(cert.get(), 0);
  ASSERT_EQ(3u, simple().cElement);
  EXPECT_EQ(0x8u, element(0).TrustStatus.dwErrorStatus);
  EXPECT_EQ(0x8u, chain_->TrustStatus.dwErrorStatus);
  CERT_CHAIN_POLICY_STATUS status = Policy(CERT_CHAIN_POLICY_BASE);
  EXPECT_EQ(0x80096004u, status.dwError);
  EXPECT_EQ(0, status.lElementIndex);
}

TEST_F(CapiChain, PolicyFlagsAndPrecedence) {
  Cert expired("pki/ee-rsa-expired.der");
  Build(expired.get(), 0);
  EXPECT_EQ(0x800B0101u, Policy(CERT_CHAIN_POLICY_BASE).dwError);
  EXPECT_EQ(0u, Policy(CERT_CHAIN_POLICY_BASE, 0x1).dwError);

  // Revoked and expired together: revocation comes first.
  Configure(true, true, true);
  Cert revoked("pki/ee-rsa-revoked.der");
  FILETIME later{};
  later.dwHighDateTime = 0x02000000;  // 2057
  CERT_CHAIN_PARA para{};
  para.cbSize = sizeof para;
  CertFreeCertificateChain(chain_);
  chain_ = nullptr;
  ASSERT_TRUE(CertGetCertificateChain(nullptr, revoked.get(), &later, nullptr, &para,
                                      kRevocationFlags, nullptr, &chain_));
  EXPECT_EQ(0x5u, element(0).TrustStatus.dwErrorStatus & 0x5u);
  EXPECT_EQ(0x80092010u, Policy(CERT_CHAIN_POLICY_BASE).dwError);
}

TEST_F(CapiChain, RequestedUsage) {
  Cert tsa("pki/tsa.der");
  const char* timeStamping = "1.3.6.1.5.5.7.3.8";
  const char* email = "1.3.6.1.5.5.7.3.4";
  LPSTR usages[] = {const_cast<LPSTR>(timeStamping), const_cast<LPSTR>(email)};
  CERT_CHAIN_PARA para{};
  para.cbSize = sizeof para;
  para.RequestedUsage.dwType = USAGE_MATCH_TYPE_AND;
  para.RequestedUsage.Usage.cUsageIdentifier = 1;
  para.RequestedUsage.Usage.rgpszUsageIdentifier = usages;
  ASSERT_TRUE(CertGetCertificateChain(nullptr, tsa.get(), nullptr, nullptr, &para, 0, nullptr,
                                      &chain_));
  EXPECT_EQ(0u, chain_->TrustStatus.dwErrorStatus);
  CertFreeCertificateChain(chain_);
  para.RequestedUsage.Usage.cUsageIdentifier = 2;
  ASSERT_TRUE(CertGetCertificateChain(nullptr, tsa.get(), nullptr, nullptr, &para, 0, nullptr,
                                      &chain_));
  EXPECT_EQ(0x10u, chain_->TrustStatus.dwErrorStatus);
  EXPECT_EQ(0x800B0110u, Policy(CERT_CHAIN_POLICY_BASE).dwError);
  EXPECT_EQ(0u, Policy(CERT_CHAIN_POLICY_BASE, 0x20).dwError);
  CertFreeCertificateChain(chain_);
  para.RequestedUsage.dwType = USAGE_MATCH_TYPE_OR;
  ASSERT_TRUE(CertGetCertificateChain(nullptr, tsa.get(), nullptr, nullptr, &para, 0, nullptr,
                                      &chain_));
  EXPECT_EQ(0u, chain_->TrustStatus.dwErrorStatus);
}

TEST_F(CapiChain, SignaturePolicyWantsASigningKey) {
  // The root's key may only sign certificates and CRLs.
  Cert root("pki/root-ca.der");
  Build(root.get(), 0);
  EXPECT_EQ(0u, Policy(CERT_CHAIN_POLICY_BASE).dwError);
  CERT_CHAIN_POLICY_STATUS status = Policy(KORVEX_CHAIN_POLICY_SIGNATURE);
  EXPECT_EQ(0x800B0110u, status.dwError);
  EXPECT_EQ(0, status.lElementIndex);
  EXPECT_EQ(0u, Policy(CERT_CHAIN_POLICY_BASIC_CONSTRAINTS).dwError);
}

TEST_F(CapiChain, GostChainWithUnverifiableSignatures) {
  // The GOST fixtures carry random signature octets.
  config_.Folder("gost", {"asn1/gost2012-root-ca.der"});
  config_.Write("\\config\\capi\\TrustAnchors\\Directory = " + (config_.dir() / "gost").string() +
                "\n");
  HCERTSTORE store = CertOpenStore(CERT_STORE_PROV_MEMORY, 0, 0, 0, nullptr);
  std::vector<BYTE> ca = ReadData("asn1/gost2012-ca.der");
  ASSERT_TRUE(CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, ca.data(),
                                               static_cast<DWORD>(ca.size()),
                                               CERT_STORE_ADD_NEW, nullptr));
  Cert ee("asn1/gost2012-qualified-legal.der");
  ASSERT_NE(nullptr, ee.get());
  Build(ee.get(), 0, store);
  ASSERT_EQ(3u, simple().cElement);
  EXPECT_EQ(0x8u, chain_->TrustStatus.dwErrorStatus & 0x8u);
  EXPECT_EQ(0u, chain_->TrustStatus.dwErrorStatus & 0x20u);  // the anchor is trusted
  EXPECT_EQ(0x80096004u, Policy(CERT_CHAIN_POLICY_BASE).dwError);
  CertCloseStore(store, 0);
}

TEST_F(CapiChain, MissingLocationsMeanNoTrust) {
  config_.Write(
      "\\config\\capi\\TrustAnchors\\Directory = /nonexistent/korvex/anchors\n"
      "\\config\\capi\\TrustAnchors\\File = /nonexistent/korvex/bundle.pem\n"
      "\\config\\capi\\CRL\\Directory = /nonexistent/korvex/crl\n");
  Cert root("pki/root-ca.der");
  Build(root.get(), 0);
  EXPECT_EQ(0x20u, chain_->TrustStatus.dwErrorStatus);
  EXPECT_EQ(0x800B0109u, Policy(CERT_CHAIN_POLICY_BASE).dwError);

  // A PEM bundle file works as an anchor location too; the chain goes on
  // past an anchor that is not a root.
  config_.Write("\\config\\capi\\TrustAnchors\\File = " +
                capi_test::DataPath("pki/ca-chain.pem").string() + "\n");
  Cert ee("pki/ee-rsa.der");
  Build(ee.get(), 0);
  EXPECT_EQ(0u, chain_->TrustStatus.dwErrorStatus);
  EXPECT_EQ(3u, simple().cElement);
}

TEST_F(CapiChain, BadArguments) {
  Cert ee("pki/ee-rsa.der");
  CERT_CHAIN_PARA para{};
  para.cbSize = sizeof para;
  PCCERT_CHAIN_CONTEXT chain = reinterpret_cast<PCCERT_CHAIN_CONTEXT>(1);
  EXPECT_FALSE(CertGetCertificateChain(nullptr, nullptr, nullptr, nullptr, &para, 0, nullptr,
                                       &chain));
  EXPECT_EQ(nullptr, chain);
  EXPECT_EQ(0x80070057u, LastError());
  EXPECT_FALSE(CertGetCertificateChain(nullptr, ee.get(), nullptr, nullptr, nullptr, 0, nullptr,
                                       &chain));
  EXPECT_EQ(0x80070057u, LastError());
  para.cbSize = 8;
  EXPECT_FALSE(CertGetCertificateChain(nullptr, ee.get(), nullptr, nullptr, &para, 0, nullptr,
                                       &chain));
  EXPECT_EQ(0x80070057u, LastError());
  para.cbSize = sizeof para;
  EXPECT_FALSE(CertGetCertificateChain(reinterpret_cast<HCERTCHAINENGINE>(7), ee.get(), nullptr,
                                       nullptr, &para, 0, nullptr, &chain));
  EXPECT_FALSE(CertGetCertificateChain(nullptr, ee.get(), nullptr, nullptr, &para, 0, &para,
                                       &chain));
  CERT_CONTEXT fake{};
  EXPECT_FALSE(CertGetCertificateChain(nullptr, &fake, nullptr, nullptr, &para, 0, nullptr,
                                       &chain));
  EXPECT_EQ(0x80070057u, LastError());

  CERT_CHAIN_POLICY_PARA policyPara{16, 0, nullptr};
  CERT_CHAIN_POLICY_STATUS status{24, 0, 0, 0, nullptr};
  // No chain at all: the policy cannot run.
  EXPECT_FALSE(CertVerifyCertificateChainPolicy(KORVEX_CHAIN_POLICY_SIGNATURE, nullptr, &policyPara,
                                                &status));
  EXPECT_EQ(87u, LastError());
  EXPECT_EQ(0u, status.dwError);
  Build(ee.get(), 0);
  EXPECT_FALSE(CertVerifyCertificateChainPolicy("{00000000-0000-0000-0000-000000000000}", chain_,
                                                &policyPara, &status));
  EXPECT_EQ(0x80092004u, LastError());
  EXPECT_FALSE(CertVerifyCertificateChainPolicy(CERT_CHAIN_POLICY_BASE, chain_, &policyPara,
                                                nullptr));
  EXPECT_EQ(87u, LastError());
  status.cbSize = 8;
  EXPECT_FALSE(CertVerifyCertificateChainPolicy(CERT_CHAIN_POLICY_BASE, chain_, &policyPara,
                                                &status));
  EXPECT_EQ(0x80070057u, LastError());
  status.cbSize = 24;
  EXPECT_TRUE(CertVerifyCertificateChainPolicy(CERT_CHAIN_POLICY_BASE, chain_, nullptr, &status));

  // Duplicated chains need one free each; unknown pointers are ignored.
  EXPECT_EQ(chain_, CertDuplicateCertificateChain(chain_));
  CertFreeCertificateChain(chain_);
  EXPECT_TRUE(CertVerifyCertificateChainPolicy(CERT_CHAIN_POLICY_BASE, chain_, nullptr, &status));
  CertFreeCertificateChain(reinterpret_cast<PCCERT_CHAIN_CONTEXT>(&status));
  CertFreeCertificateChain(nullptr);
}

// The calls of a "valid for signature now" check: chain with flags
// 0x40000100 and a zeroed chain para, then the provider's policy with a
// 16-byte para and a 24-byte status.
TEST_F(CapiChain, SignatureCheckAsTheCAdESLayerMakesIt) {
  struct Case {
    const char* file;
    uint32_t status;
  };
  const Case kCases[] = {
      {"pki/ee-rsa.der", 0},
      {"pki/ee-rsa-expired.der", 0x800B0101u},
      {"pki/ee-rsa-revoked.der", 0x80092010u},
      {"pki/ee-untrusted.der", 0x800B010Au},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.file);
    std::vector<BYTE> der = ReadData(c.file);
    ATL2::CCertContext cert;
    ASSERT_EQ(S_OK, cert.Create(der.data(), static_cast<DWORD>(der.size())));
    CERT_CHAIN_PARA para{};
    para.cbSize = sizeof para;
    PCCERT_CHAIN_CONTEXT chain = nullptr;
    ASSERT_TRUE(CertGetCertificateChain(nullptr, cert, nullptr, nullptr, &para, 0x40000100,
                                        nullptr, &chain));
    CERT_CHAIN_POLICY_PARA policyPara{16, 0, nullptr};
    CERT_CHAIN_POLICY_STATUS status{24, 0, 0, 0, nullptr};
    ASSERT_TRUE(CertVerifyCertificateChainPolicy(KORVEX_CHAIN_POLICY_SIGNATURE, chain, &policyPara,
                                                 &status));
    EXPECT_EQ(c.status, status.dwError);
    CertFreeCertificateChain(chain);
  }
}

}  // namespace
