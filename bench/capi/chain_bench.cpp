// The chain check of a three-certificate chain (end entity, intermediate,
// root) as the CAdES layer makes it: CertGetCertificateChain with
// revocation checking of all but the root against the test CRLs, then the
// provider's signature policy. A variant without revocation checking shows
// what the CRL lookups cost.
#include <benchmark/benchmark.h>

#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <korvex/platform/capi/wincrypt.h>

namespace {

namespace fs = std::filesystem;

std::vector<BYTE> Read(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<BYTE>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Setup writes a configuration with the test root as the only anchor, the
// intermediate in the intermediate directory and the two CRLs.
class Setup {
 public:
  Setup() {
    fs::path data(KORVEX_TEST_DATA_DIR);
    std::string pattern = (fs::temp_directory_path() / "korvex-capi-bench-XXXXXX").string();
    dir_ = mkdtemp(pattern.data());
    Copy(data / "pki/root-ca.der", "anchors");
    Copy(data / "pki/intermediate-ca.der", "intermediates");
    Copy(data / "crl/intermediate-ca.crl", "crls");
    Copy(data / "crl/root-ca.crl", "crls");
    std::ofstream(dir_ / "korvex.conf")
        << "\\config\\capi\\TrustAnchors\\Directory = " << (dir_ / "anchors").string() << "\n"
        << "\\config\\capi\\Intermediates\\Directory = " << (dir_ / "intermediates").string()
        << "\n"
        << "\\config\\capi\\CRL\\Directory = " << (dir_ / "crls").string() << "\n";
    setenv("KORVEX_CONFIG", (dir_ / "korvex.conf").c_str(), 1);
    std::vector<BYTE> der = Read(data / "pki/ee-rsa.der");
    cert_ = CertCreateCertificateContext(X509_ASN_ENCODING, der.data(),
                                         static_cast<DWORD>(der.size()));
  }
  ~Setup() {
    CertFreeCertificateContext(cert_);
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
  }
  PCCERT_CONTEXT cert() const { return cert_; }

 private:
  void Copy(const fs::path& from, const std::string& folder) {
    fs::create_directories(dir_ / folder);
    fs::copy_file(from, dir_ / folder / from.filename(), fs::copy_options::overwrite_existing);
  }
  fs::path dir_;
  PCCERT_CONTEXT cert_ = nullptr;
};

void CheckChain(benchmark::State& state, DWORD flags) {
  Setup setup;
  if (setup.cert() == nullptr) {
    state.SkipWithError("tests/data/pki/ee-rsa.der is missing");
    return;
  }
  for (auto _ : state) {
    CERT_CHAIN_PARA para{};
    para.cbSize = sizeof para;
    PCCERT_CHAIN_CONTEXT chain = nullptr;
    if (!CertGetCertificateChain(nullptr, setup.cert(), nullptr, nullptr, &para, flags, nullptr,
                                 &chain)) {
      state.SkipWithError("CertGetCertificateChain failed");
      return;
    }
    CERT_CHAIN_POLICY_PARA policyPara{16, 0, nullptr};
    CERT_CHAIN_POLICY_STATUS status{24, 0, 0, 0, nullptr};
    CertVerifyCertificateChainPolicy(KORVEX_CHAIN_POLICY_SIGNATURE, chain, &policyPara, &status);
    if (status.dwError != 0 || chain->rgpChain[0]->cElement != 3) {
      state.SkipWithError("the chain did not check out");
      CertFreeCertificateChain(chain);
      return;
    }
    CertFreeCertificateChain(chain);
  }
}

void BM_ChainCheckWithRevocation(benchmark::State& state) { CheckChain(state, 0x40000100); }
void BM_ChainCheckWithoutRevocation(benchmark::State& state) { CheckChain(state, 0x100); }

BENCHMARK(BM_ChainCheckWithRevocation);
BENCHMARK(BM_ChainCheckWithoutRevocation);

}  // namespace
