// ades_test_util.h: helpers shared by the CryptoAPI-helper tests of the
// CAdES layer: a private configuration (KORVEX_CONFIG) with a trace file,
// test data and a little DER.
#ifndef KORVEX_TESTS_CADES_ADES_TEST_UTIL_H
#define KORVEX_TESTS_CADES_ADES_TEST_UTIL_H

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace ades_test {

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

inline fs::path DataPath(const std::string& name) { return fs::path(KORVEX_TEST_DATA_DIR) / name; }

// ReadData reads a file of tests/data; a missing file fails the test.
inline Bytes ReadData(const std::string& name) {
  std::ifstream in(DataPath(name), std::ios::binary);
  EXPECT_TRUE(in.good()) << "missing test data " << name;
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline Bytes Unhex(const std::string& hex) {
  Bytes out;
  for (size_t i = 0; i + 1 < hex.size(); i += 2) {
    out.push_back(static_cast<uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  return out;
}

// TestConfig points KORVEX_CONFIG at a private configuration in a private
// directory, restoring the previous value at the end. Every Write goes to a
// new file name, so the support library sees a changed configuration even
// when two versions have the same size and time stamp.
class TestConfig {
 public:
  TestConfig() {
    std::string pattern = (fs::path(::testing::TempDir()) / "korvex-cades-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) dir_ = pattern;
    if (const char* old = std::getenv("KORVEX_CONFIG")) {
      saved_ = old;
      hadSaved_ = true;
    }
    Write("");
  }
  ~TestConfig() {
    if (hadSaved_) {
      setenv("KORVEX_CONFIG", saved_.c_str(), 1);
    } else {
      unsetenv("KORVEX_CONFIG");
    }
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
  }
  TestConfig(const TestConfig&) = delete;
  TestConfig& operator=(const TestConfig&) = delete;

  const fs::path& dir() const { return dir_; }
  fs::path TraceFile() const { return dir_ / "trace.log"; }

  // Write replaces the configuration with `text`.
  void Write(const std::string& text) {
    fs::path path = dir_ / ("korvex-" + std::to_string(++generation_) + ".conf");
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
    setenv("KORVEX_CONFIG", path.c_str(), 1);
  }

  // TraceSettings are the lines that send the "ades" component's trace at
  // `level` to TraceFile().
  std::string TraceSettings(const std::string& level) const {
    return "\\config\\trace\\ades\\file = " + TraceFile().string() +
           "\n\\config\\trace\\ades\\level = " + level + "\n";
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

  // TraceLines returns the trace file's lines with the time, process and
  // thread prefix checked and removed ("ades CheckProvider: text"), and
  // empties the file.
  std::vector<std::string> TakeTraceLines() const {
    std::vector<std::string> lines;
    std::ifstream in(TraceFile(), std::ios::binary);
    static const std::regex kPrefix(R"(^\d{4}-\d{2}-\d{2}T\d{2}:\d{2}:\d{2}\.\d{3}Z \d+:\d+ )");
    std::string line;
    while (std::getline(in, line)) {
      std::smatch match;
      EXPECT_TRUE(std::regex_search(line, match, kPrefix)) << "trace line: " << line;
      lines.push_back(match.empty() ? line : line.substr(match.length(0)));
    }
    in.close();
    std::error_code ignored;
    fs::remove(TraceFile(), ignored);
    return lines;
  }

 private:
  fs::path dir_;
  std::string saved_;
  bool hadSaved_ = false;
  int generation_ = 0;
};

// --- DER surgery: rewriting one nested element of definite-length DER.

// Tlv is one element: tag byte, header length and content length.
struct Tlv {
  uint8_t tag = 0;
  size_t header = 0;
  size_t length = 0;
};

// ReadTlv reads the element at data[0..size) (single-byte tags, definite
// lengths, as DER has); false when it does not fit.
inline bool ReadTlv(const uint8_t* data, size_t size, Tlv* out) {
  if (size < 2) return false;
  out->tag = data[0];
  size_t length = data[1];
  size_t header = 2;
  if (length & 0x80) {
    const size_t octets = length & 0x7F;
    if (octets == 0 || octets > 4 || size < 2 + octets) return false;
    length = 0;
    for (size_t i = 0; i < octets; ++i) length = (length << 8) | data[2 + i];
    header += octets;
  }
  if (size - header < length) return false;
  out->header = header;
  out->length = length;
  return true;
}

// Encode writes tag, DER length (X.690 8.1.3: short form below 128, else the
// fewest length octets) and content.
inline Bytes Encode(uint8_t tag, const Bytes& content) {
  Bytes out{tag};
  const size_t n = content.size();
  if (n < 0x80) {
    out.push_back(static_cast<uint8_t>(n));
  } else {
    Bytes octets;
    for (size_t v = n; v != 0; v >>= 8) octets.insert(octets.begin(), static_cast<uint8_t>(v));
    out.push_back(static_cast<uint8_t>(0x80 | octets.size()));
    out.insert(out.end(), octets.begin(), octets.end());
  }
  out.insert(out.end(), content.begin(), content.end());
  return out;
}

inline Bytes Concat(const std::vector<Bytes>& parts) {
  Bytes out;
  for (const Bytes& part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

// Children splits a constructed element's content into its elements.
inline std::vector<Bytes> Children(const Bytes& content) {
  std::vector<Bytes> out;
  size_t at = 0;
  while (at < content.size()) {
    Tlv tlv;
    if (!ReadTlv(content.data() + at, content.size() - at, &tlv)) {
      ADD_FAILURE() << "malformed DER at offset " << at;
      return out;
    }
    const size_t total = tlv.header + tlv.length;
    out.emplace_back(content.begin() + at, content.begin() + at + total);
    at += total;
  }
  return out;
}

// AppendAt returns `der` with `addition` appended to the content of the
// element reached by `path` (child indexes from the outermost element; -1
// is the last child), every enclosing length recomputed.
inline Bytes AppendAt(const Bytes& der, const std::vector<int>& path, const Bytes& addition,
                      size_t depth = 0) {
  Tlv tlv;
  if (!ReadTlv(der.data(), der.size(), &tlv)) {
    ADD_FAILURE() << "malformed DER";
    return der;
  }
  Bytes content(der.begin() + tlv.header, der.begin() + tlv.header + tlv.length);
  if (depth == path.size()) {
    content.insert(content.end(), addition.begin(), addition.end());
    return Encode(tlv.tag, content);
  }
  std::vector<Bytes> children = Children(content);
  const int index = path[depth] < 0 ? static_cast<int>(children.size()) - 1 : path[depth];
  if (index < 0 || static_cast<size_t>(index) >= children.size()) {
    ADD_FAILURE() << "no child " << path[depth] << " at depth " << depth;
    return der;
  }
  children[index] = AppendAt(children[index], path, addition, depth + 1);
  return Encode(tlv.tag, Concat(children));
}

}  // namespace ades_test

#endif
