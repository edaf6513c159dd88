// inspect_crypto.h: the checks of `adestool inspect --verify`, through the
// platform's CryptoAPI: signature values and certificate chains (digests
// are digest.h's).
#ifndef ADESTOOL_INSPECT_CRYPTO_H
#define ADESTOOL_INSPECT_CRYPTO_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace adestool {

// The outcome of one check.
struct CheckResult {
  bool passed = false;
  std::string detail;  // what failed, or what passed ("sha256 digest matches")
};

// VerifySignatureValue checks signature (as CMS carries it) over signedData
// with the public key of the certificate certDer, hashing with hashOid
// (RFC 5652 5.6). RSA signatures are given to the platform least
// significant byte first, as CryptVerifySignature takes them.
CheckResult VerifySignatureValue(const std::vector<uint8_t> &certDer, const std::string &hashOid,
                                 const uint8_t *signedData, size_t signedSize,
                                 const std::vector<uint8_t> &signature);

// CheckChainNow checks the chain of certDer at the present moment with the
// library's IsCertChainValidForSignatureOnTimeNow; the other certificates
// of the message (otherCerts) are offered to the chain builder as the
// certificate's own store. Trust and CRL locations come from the
// configuration the process reads (see TrustSetup).
CheckResult CheckChainNow(const std::vector<uint8_t> &certDer,
                          const std::vector<std::vector<uint8_t>> &otherCerts);

// TrustSetup points the process's configuration at the anchors of
// --trust and at the CRLs the signature carries: it writes a temporary
// configuration file (the settings of the current one, then the trust
// anchor file and, when crls is not empty, a CRL directory) and sets
// KORVEX_CONFIG to it for the rest of the run. The files go when the object
// does and KORVEX_CONFIG is restored.
class TrustSetup {
 public:
  // anchors: the DER of every anchor certificate; crls: DER CRLs. Throws
  // ToolError (status 2) when the temporary files cannot be written.
  TrustSetup(const std::vector<std::vector<uint8_t>> &anchors,
             const std::vector<std::vector<uint8_t>> &crls);
  ~TrustSetup();
  TrustSetup(const TrustSetup &) = delete;
  TrustSetup &operator=(const TrustSetup &) = delete;

 private:
  void Write(const std::vector<std::vector<uint8_t>> &anchors,
             const std::vector<std::vector<uint8_t>> &crls);
  void RemoveFiles();

  std::string dir_;
  bool configSet_ = false;
  bool hadConfig_ = false;
  std::string oldConfig_;
};

// ChainStatusText: "CERT_E_UNTRUSTEDROOT (0x800B0109): the root is not
// trusted" and the like for a chain-policy status.
std::string ChainStatusText(uint32_t status);

}  // namespace adestool

#endif
