// IsCertChainValidForSignatureOnTimeNow over the test PKI: the verdict of the
// provider's signature chain policy for each kind of certificate, with the
// exact policy error codes.
#include <korvex/cades/ades_core.h>
#include <korvex/platform/capi/errors.h>

#include "ades_test_util.h"

namespace {

using ades_test::ReadData;
using ades_test::TestConfig;

constexpr unsigned int kUnset = 0xDEADBEEFu;

class ChainValidity : public ::testing::Test {
 protected:
  // The trust store of docs/capi.md: the root as the only trust anchor, the
  // intermediate CA and both CRLs (current) in their folders.
  void Configure(const std::vector<std::string>& intermediates, bool withCrls) {
    std::string text = "\\config\\capi\\TrustAnchors\\Directory = " +
                       config_.Folder("anchors", {"pki/root-ca.der"}).string() + "\n";
    text += "\\config\\capi\\Intermediates\\Directory = " +
            config_.Folder("intermediates-" + std::to_string(++folders_), intermediates).string() +
            "\n";
    if (withCrls) {
      text += "\\config\\capi\\CRL\\Directory = " +
              config_.Folder("crls", {"crl/intermediate-ca.crl", "crl/root-ca.crl"}).string() +
              "\n";
    }
    config_.Write(text);
  }

  static ATL2::CCertContext Load(const std::string& file) {
    ades_test::Bytes der = ReadData(file);
    ATL2::CCertContext cert;
    EXPECT_EQ(S_OK, cert.Create(der.data(), static_cast<DWORD>(der.size())));
    return cert;
  }

  TestConfig config_;
  int folders_ = 0;
};

TEST_F(ChainValidity, PolicyVerdictForEachCertificate) {
  struct Case {
    const char* what;
    const char* file;
    std::vector<std::string> intermediates;
    bool withCrls;
    uint32_t status;
  };
  const std::vector<std::string> kOurCa = {"pki/intermediate-ca.der"};
  const Case kCases[] = {
      {"valid RSA signer", "pki/ee-rsa.der", kOurCa, true, 0},
      {"valid EC signer", "pki/ee-ec.der", kOurCa, true, 0},
      {"expired", "pki/ee-rsa-expired.der", kOurCa, true, 0x800B0101u},  // CERT_E_EXPIRED
      {"revoked", "pki/ee-rsa-revoked.der", kOurCa, true, 0x80092010u},  // CRYPT_E_REVOKED
      // Issued by a root that is not a trust anchor: without that root the
      // chain is partial, with it the root is untrusted.
      {"untrusted, issuer unknown", "pki/ee-untrusted.der", kOurCa, true,
       0x800B010Au},  // CERT_E_CHAINING
      {"untrusted, root at hand",
       "pki/ee-untrusted.der",
       {"pki/untrusted-root-ca.der"},
       true,
       0x800B0109u},  // CERT_E_UNTRUSTEDROOT
      {"untrusted root itself", "pki/untrusted-root-ca.der", kOurCa, true, 0x800B0109u},
      {"intermediate CA missing", "pki/ee-rsa.der", {}, true, 0x800B010Au},
      // Revocation is checked for every element but the root.
      {"no CRLs", "pki/ee-rsa.der", kOurCa, false, 0x80092013u},  // REVOCATION_OFFLINE
      // The signature policy wants digitalSignature or nonRepudiation in the
      // end certificate's key usage; the root has keyCertSign and cRLSign.
      {"CA key as signer", "pki/root-ca.der", kOurCa, true, 0x800B0110u},  // CERT_E_WRONG_USAGE
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    Configure(c.intermediates, c.withCrls);
    ATL2::CCertContext cert = Load(c.file);
    ASSERT_FALSE(cert.IsEmpty());
    PCCERT_CONTEXT before = cert.GetHandle();
    unsigned int status = kUnset;
    EXPECT_EQ(S_OK, IsCertChainValidForSignatureOnTimeNow(cert, &status));
    EXPECT_EQ(c.status, status);
    EXPECT_EQ(before, cert.GetHandle());  // the caller's context is kept
  }
}

TEST_F(ChainValidity, EmptyContextRunsThePolicyOnNoChain) {
  Configure({"pki/intermediate-ca.der"}, true);
  ATL2::CCertContext empty;
  unsigned int status = kUnset;
  // The policy check of a null chain cannot run: E_FAIL, status reset to 0.
  EXPECT_EQ(static_cast<HRESULT>(0x80004005u),
            IsCertChainValidForSignatureOnTimeNow(empty, &status));
  EXPECT_EQ(0u, status);
}

TEST_F(ChainValidity, NullStatusIsRefused) {
  ATL2::CCertContext cert = Load("pki/ee-rsa.der");
  EXPECT_EQ(static_cast<HRESULT>(0x80070057u),
            IsCertChainValidForSignatureOnTimeNow(cert, nullptr));
}

TEST_F(ChainValidity, VerdictFollowsTheTrustStore) {
  ATL2::CCertContext cert = Load("pki/ee-rsa.der");
  unsigned int status = kUnset;
  config_.Write("");  // no trust anchors at all
  EXPECT_EQ(S_OK, IsCertChainValidForSignatureOnTimeNow(cert, &status));
  EXPECT_EQ(0x800B010Au, status);  // no issuer found: CERT_E_CHAINING
  Configure({"pki/intermediate-ca.der"}, true);
  EXPECT_EQ(S_OK, IsCertChainValidForSignatureOnTimeNow(cert, &status));
  EXPECT_EQ(0u, status);
}

}  // namespace
