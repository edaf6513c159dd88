// test_data.h: the files of tests/data, shared by the test binaries.
// Header-only; include it as "../common/test_data.h".
#ifndef KORVEX_TESTS_COMMON_TEST_DATA_H
#define KORVEX_TESTS_COMMON_TEST_DATA_H

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace korvextest {

// DataPath: tests/data/<name>.
inline std::filesystem::path DataPath(const std::string& name) {
  return std::filesystem::path(KORVEX_TEST_DATA_DIR) / name;
}

// ReadData: the bytes of tests/data/<name>; a missing file fails the test
// and reads as empty.
inline std::vector<unsigned char> ReadData(const std::string& name) {
  std::ifstream in(DataPath(name), std::ios::binary);
  EXPECT_TRUE(in.good()) << "missing test data " << name;
  return std::vector<unsigned char>(std::istreambuf_iterator<char>(in),
                                    std::istreambuf_iterator<char>());
}

}  // namespace korvextest

#endif
