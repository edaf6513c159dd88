// The CryptoAPI helpers: the chain check of a signer's certificate at the
// present moment on the three-certificate test chain (end entity,
// intermediate CA, root; revocation against both CRLs), beside OpenSSL's
// X509_verify_cert on the same certificates and CRLs; and the
// signature-algorithm search over the OID information table.
// Run: cades_bench --benchmark_filter='Chain|Signature'
#include <benchmark/benchmark.h>
#include <korvex/cades/OidInfoEnum.h>
#include <korvex/cades/ades_core.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::vector<unsigned char> ReadData(const std::string& name) {
  std::ifstream in(fs::path(KORVEX_TEST_DATA_DIR) / name, std::ios::binary);
  return std::vector<unsigned char>(std::istreambuf_iterator<char>(in),
                                    std::istreambuf_iterator<char>());
}

// TrustStore is the test PKI's trust store, configured through a private
// KORVEX_CONFIG for the whole run and removed at exit.
class TrustStore {
 public:
  TrustStore() {
    std::string pattern = (fs::temp_directory_path() / "korvex-cades-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) return;
    dir_ = pattern;
    std::string config;
    config +=
        "\\config\\capi\\TrustAnchors\\Directory = " + Folder("anchors", {"pki/root-ca.der"}) +
        "\n";
    config += "\\config\\capi\\Intermediates\\Directory = " +
              Folder("intermediates", {"pki/intermediate-ca.der"}) + "\n";
    config += "\\config\\capi\\CRL\\Directory = " +
              Folder("crls", {"crl/intermediate-ca.crl", "crl/root-ca.crl"}) + "\n";
    fs::path file = dir_ / "korvex.conf";
    std::ofstream(file, std::ios::binary) << config;
    setenv("KORVEX_CONFIG", file.c_str(), 1);
  }
  ~TrustStore() {
    std::error_code ignored;
    if (!dir_.empty()) fs::remove_all(dir_, ignored);
  }

  static TrustStore& Get() {
    static TrustStore store;
    return store;
  }

 private:
  std::string Folder(const std::string& name, const std::vector<std::string>& files) {
    fs::path folder = dir_ / name;
    fs::create_directories(folder);
    for (const std::string& f : files) {
      fs::copy_file(fs::path(KORVEX_TEST_DATA_DIR) / f, folder / fs::path(f).filename());
    }
    return folder.string();
  }
  fs::path dir_;
};

void BM_IsCertChainValidForSignatureOnTimeNow(benchmark::State& state) {
  TrustStore::Get();
  std::vector<unsigned char> der = ReadData("pki/ee-rsa.der");
  ATL2::CCertContext cert;
  if (cert.Create(der.data(), static_cast<DWORD>(der.size())) != S_OK) {
    state.SkipWithError("cannot read pki/ee-rsa.der");
    return;
  }
  unsigned int status = 0;
  if (IsCertChainValidForSignatureOnTimeNow(cert, &status) != S_OK || status != 0) {
    state.SkipWithError("the test chain does not validate");
    return;
  }
  for (auto _ : state) {
    HRESULT hr = IsCertChainValidForSignatureOnTimeNow(cert, &status);
    benchmark::DoNotOptimize(hr);
    benchmark::DoNotOptimize(status);
  }
}
BENCHMARK(BM_IsCertChainValidForSignatureOnTimeNow);

// The peer: OpenSSL verifying the same chain with the same CRLs, objects
// parsed once outside the loop (our check finds them in its cached store).
void BM_OpenSSL_VerifyChainWithCrls(benchmark::State& state) {
  auto certificate = [](const std::string& name) {
    std::vector<unsigned char> der = ReadData(name);
    const unsigned char* p = der.data();
    return d2i_X509(nullptr, &p, static_cast<long>(der.size()));
  };
  auto crl = [](const std::string& name) {
    std::vector<unsigned char> der = ReadData(name);
    const unsigned char* p = der.data();
    return d2i_X509_CRL(nullptr, &p, static_cast<long>(der.size()));
  };
  X509* ee = certificate("pki/ee-rsa.der");
  X509* ca = certificate("pki/intermediate-ca.der");
  X509* root = certificate("pki/root-ca.der");
  X509_CRL* caCrl = crl("crl/intermediate-ca.crl");
  X509_CRL* rootCrl = crl("crl/root-ca.crl");
  X509_STORE* store = X509_STORE_new();
  STACK_OF(X509)* untrusted = sk_X509_new_null();
  bool ready = ee && ca && root && caCrl && rootCrl && store && untrusted &&
               X509_STORE_add_cert(store, root) == 1 && X509_STORE_add_crl(store, caCrl) == 1 &&
               X509_STORE_add_crl(store, rootCrl) == 1 && sk_X509_push(untrusted, ca) > 0;
  if (ready) {
    // Revocation of the end certificate and the intermediate CA.
    X509_STORE_set_flags(store, X509_V_FLAG_CRL_CHECK | X509_V_FLAG_CRL_CHECK_ALL);
    X509_STORE_CTX* ctx = X509_STORE_CTX_new();
    ready =
        ctx && X509_STORE_CTX_init(ctx, store, ee, untrusted) == 1 && X509_verify_cert(ctx) == 1;
    X509_STORE_CTX_free(ctx);
  }
  if (!ready) {
    state.SkipWithError("OpenSSL does not validate the test chain");
  } else {
    for (auto _ : state) {
      X509_STORE_CTX* ctx = X509_STORE_CTX_new();
      X509_STORE_CTX_init(ctx, store, ee, untrusted);
      int ok = X509_verify_cert(ctx);
      benchmark::DoNotOptimize(ok);
      X509_STORE_CTX_free(ctx);
    }
  }
  sk_X509_free(untrusted);
  X509_STORE_free(store);
  X509_CRL_free(caCrl);
  X509_CRL_free(rootCrl);
  X509_free(ee);
  X509_free(ca);
  X509_free(root);
}
BENCHMARK(BM_OpenSSL_VerifyChainWithCrls);

struct Pair {
  const char* label;
  const char* hash;
  const char* key;
};
const Pair kPairs[] = {
    {"sha256+RSA", "2.16.840.1.101.3.4.2.1", "1.2.840.113549.1.1.1"},
    {"sha256+EC", "2.16.840.1.101.3.4.2.1", "1.2.840.10045.2.1"},
    {"streebog512+GOST2012-512", "1.2.643.7.1.1.2.3", "1.2.643.7.1.1.1.2"},
    {"unknown hash", "1.2.3.4", "1.2.840.113549.1.1.1"},
};

void BM_FindSignatureAlgorithm(benchmark::State& state) {
  const Pair& pair = kPairs[state.range(0)];
  state.SetLabel(pair.label);
  for (auto _ : state) {
    benchmark::DoNotOptimize(ATL2::FindSignatureAlgorithm(pair.hash, pair.key));
  }
}
BENCHMARK(BM_FindSignatureAlgorithm)->DenseRange(0, 3);

}  // namespace
