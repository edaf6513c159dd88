// ades_test_util.h: helpers shared by the CryptoAPI-helper tests of the
// CAdES layer, by their local names: a private configuration (KORVEX_CONFIG)
// with a trace file, test data and a little DER (all from tests/common).
#ifndef KORVEX_TESTS_CADES_ADES_TEST_UTIL_H
#define KORVEX_TESTS_CADES_ADES_TEST_UTIL_H

#include <filesystem>
#include <string>

#include "../common/der_edit.h"
#include "../common/hex_bytes.h"
#include "../common/scoped_config.h"
#include "../common/test_data.h"

namespace ades_test {

namespace fs = std::filesystem;
using Bytes = korvextest::Bytes;
using TestConfig = korvextest::ScopedConfig;
using korvextest::AppendAt;
using korvextest::Concat;
using korvextest::DataPath;
using korvextest::Encode;
using korvextest::ReadData;

inline Bytes Unhex(const std::string& hex) { return korvextest::HexToBytes(hex); }

}  // namespace ades_test

#endif
