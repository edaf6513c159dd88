// capi_test_util.h: helpers shared by the CryptoAPI tests.
#ifndef KORVEX_TESTS_PLATFORM_CAPI_TEST_UTIL_H
#define KORVEX_TESTS_PLATFORM_CAPI_TEST_UTIL_H

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <korvex/platform/capi/wincrypt.h>
#include <korvex/platform/win32/errhandlingapi.h>

#include "../common/hex_bytes.h"
#include "../common/scoped_config.h"
#include "../common/test_data.h"

namespace capi_test {

namespace fs = std::filesystem;
using korvextest::DataPath;
using korvextest::ReadData;
using korvextest::ScopedConfig;

// Hex: bytes as "020105", the form the CryptoAPI tests compare with.
inline std::string Hex(const BYTE* data, size_t size) { return korvextest::HexDigits(data, size); }
inline std::string Hex(const std::vector<BYTE>& bytes) { return Hex(bytes.data(), bytes.size()); }

inline std::vector<BYTE> Unhex(const std::string& hex) { return korvextest::HexToBytes(hex); }

// The last error as the unsigned value tests compare with.
inline uint32_t LastError() { return static_cast<uint32_t>(GetLastError()); }

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
