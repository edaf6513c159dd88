// capi_test_util.h: helpers shared by the CryptoAPI tests.
#ifndef KORVEX_TESTS_PLATFORM_CAPI_TEST_UTIL_H
#define KORVEX_TESTS_PLATFORM_CAPI_TEST_UTIL_H

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <korvex/platform/capi/wincrypt.h>
#include <korvex/platform/win32/errhandlingapi.h>

namespace capi_test {

namespace fs = std::filesystem;

inline std::string Hex(const BYTE* data, size_t size) {
  static const char kDigits[] = "0123456789abcdef";
  std::string out;
  for (size_t i = 0; i < size; ++i) {
    out.push_back(kDigits[data[i] >> 4]);
    out.push_back(kDigits[data[i] & 15]);
  }
  return out;
}
inline std::string Hex(const std::vector<BYTE>& bytes) { return Hex(bytes.data(), bytes.size()); }

inline std::vector<BYTE> Unhex(const std::string& hex) {
  std::vector<BYTE> out;
  for (size_t i = 0; i + 1 < hex.size(); i += 2) {
    out.push_back(static_cast<BYTE>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  return out;
}

inline fs::path DataPath(const std::string& name) {
  return fs::path(KORVEX_TEST_DATA_DIR) / name;
}

// ReadData reads a file of tests/data; empty when it is missing.
inline std::vector<BYTE> ReadData(const std::string& name) {
  std::ifstream in(DataPath(name), std::ios::binary);
  return std::vector<BYTE>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The last error as the unsigned value tests compare with.
inline uint32_t LastError() { return static_cast<uint32_t>(GetLastError()); }

// ScopedConfig points KORVEX_CONFIG at a private configuration file in a
// private directory, restoring the old value at the end.
class ScopedConfig {
 public:
  ScopedConfig() {
    std::string pattern = (fs::path(::testing::TempDir()) / "korvex-capi-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) dir_ = pattern;
    if (const char* old = std::getenv("KORVEX_CONFIG")) {
      saved_ = old;
      hadSaved_ = true;
    }
    Write("");
  }
  ~ScopedConfig() {
    if (hadSaved_) {
      setenv("KORVEX_CONFIG", saved_.c_str(), 1);
    } else {
      unsetenv("KORVEX_CONFIG");
    }
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
  }
  ScopedConfig(const ScopedConfig&) = delete;
  ScopedConfig& operator=(const ScopedConfig&) = delete;

  const fs::path& dir() const { return dir_; }

  void Write(const std::string& text) {
    fs::path path = dir_ / "korvex.conf";
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
    setenv("KORVEX_CONFIG", path.c_str(), 1);
  }

  // Folder makes a sub-directory holding copies of the named data files.
  fs::path Folder(const std::string& name, const std::vector<std::string>& files) {
    fs::path folder = dir_ / name;
    fs::create_directories(folder);
    for (const std::string& file : files) {
      fs::copy_file(DataPath(file), folder / fs::path(file).filename(),
                    fs::copy_options::overwrite_existing);
    }
    return folder;
  }

 private:
  fs::path dir_;
  std::string saved_;
  bool hadSaved_ = false;
};

// Cert owns a certificate context made from a data file.
class Cert {
 public:
  explicit Cert(const std::string& name) : Cert(ReadData(name)) {}
  explicit Cert(const std::vector<BYTE>& der) {
    if (!der.empty()) {
      context_ = CertCreateCertificateContext(X509_ASN_ENCODING, der.data(),
                                              static_cast<DWORD>(der.size()));
    }
  }
  ~Cert() { CertFreeCertificateContext(context_); }
  Cert(const Cert&) = delete;
  Cert& operator=(const Cert&) = delete;
  PCCERT_CONTEXT get() const { return context_; }

 private:
  PCCERT_CONTEXT context_ = nullptr;
};

}  // namespace capi_test

#endif
