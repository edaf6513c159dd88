#include <gtest/gtest.h>

#include <stdlib.h>
#include <unistd.h>

#include <clocale>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <korvex/core/Blob.h>
#include <korvex/platform/atl/atlexcept.h>

#include "blob_test_util.h"
#include "../common/thrown_code.h"

using Korvex::CBlob;
using namespace blob_test;

namespace {

constexpr HRESULT kFileNotFound = static_cast<HRESULT>(0x80070002u);
constexpr HRESULT kFileCorrupt = static_cast<HRESULT>(0x80070570u);

// A fresh directory under TMPDIR, removed with everything in it afterwards.
class BlobFileTest : public testing::Test {
 protected:
  void SetUp() override {
    char const* tmp = getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/korvex-blob-XXXXXX";
    ASSERT_NE(nullptr, mkdtemp(&pattern[0]));
    dir_ = pattern;
  }
  void TearDown() override {
    std::error_code ignored;
    if (!dir_.empty()) std::filesystem::remove_all(dir_, ignored);
  }

  std::string Path(char const* name) const { return dir_ + "/" + name; }

  static void WriteRaw(std::string const& path, std::string const& content) {
    std::ofstream(path, std::ios::binary) << content;
  }
  static std::string ReadRaw(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  std::string dir_;
};

using korvextest::CodeOf;

TEST_F(BlobFileTest, WriteThenReadGivesExactBytes) {
  Bytes bytes{0x00, 0xFF, 0x0D, 0x0A, 0x1A, 0x00};
  std::string path = Path("data.bin");
  MakeBlob(bytes).writeToFile(path.c_str());
  EXPECT_EQ(std::string("\x00\xFF\r\n\x1A\x00", 6), ReadRaw(path));

  CBlob read = MakeBlob({9, 9, 9, 9, 9, 9, 9, 9});
  read.readFromFile(path.c_str());
  EXPECT_EQ(bytes, BytesOf(read));
}

TEST_F(BlobFileTest, WriteTruncatesAndEmptyBlobMakesEmptyFile) {
  std::string path = Path("long.bin");
  WriteRaw(path, "0123456789");
  MakeBlob({'a', 'b'}).writeToFile(path.c_str());
  EXPECT_EQ("ab", ReadRaw(path));
  CBlob().writeToFile(path.c_str());
  EXPECT_EQ("", ReadRaw(path));
}

TEST_F(BlobFileTest, EmptyFileGivesEmptyBlobWithoutArray) {
  std::string path = Path("empty.bin");
  WriteRaw(path, "");
  CBlob blob = MakeBlob({1, 2, 3});
  EXPECT_EQ(S_OK, CodeOf([&] { blob.readFromFile(path.c_str()); }));
  EXPECT_EQ(0u, blob.cbData());
  EXPECT_EQ(nullptr, blob.pbData());
}

TEST_F(BlobFileTest, UnreadablePathsThrowAndLeaveBlobEmpty) {
  struct Case {
    char const* what;
    std::string path;
    HRESULT code;
  } cases[] = {
      {"missing file", Path("missing.bin"), kFileNotFound},
      {"inside a missing folder", Path("no-such-dir/data.bin"), kFileNotFound},
      {"empty path", "", kFileNotFound},
      // A directory opens on Linux but cannot be read.
      {"directory", dir_, kFileCorrupt},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.what);
    CBlob blob = MakeBlob({1, 2, 3});
    EXPECT_EQ(c.code, CodeOf([&] { blob.readFromFile(c.path.c_str()); }));
    EXPECT_EQ(0u, blob.cbData());
  }
  CBlob blob = MakeBlob({1});
  EXPECT_EQ(kFileNotFound, CodeOf([&] { blob.readFromFile(static_cast<char const*>(nullptr)); }));
  EXPECT_EQ(0u, blob.cbData());
}

TEST_F(BlobFileTest, UnwritablePathsThrowAndLeaveBlobUnchanged) {
  CBlob blob = MakeBlob({1, 2, 3});
  for (std::string const& path : {Path("no-such-dir/data.bin"), dir_, std::string()}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(kFileNotFound, CodeOf([&] { blob.writeToFile(path.c_str()); }));
    EXPECT_EQ((Bytes{1, 2, 3}), BytesOf(blob));
  }
  EXPECT_EQ(kFileNotFound, CodeOf([&] { blob.writeToFile(static_cast<wchar_t const*>(nullptr)); }));
}

std::wstring Widen(std::string const& ascii) { return std::wstring(ascii.begin(), ascii.end()); }

TEST_F(BlobFileTest, WidePathsRoundTripAndReportTheSameCodes) {
  std::wstring path = Widen(Path("wide.bin"));
  MakeBlob({0xCA, 0xFE}).writeToFile(path.c_str());
  EXPECT_EQ("\xCA\xFE", ReadRaw(Path("wide.bin")));
  CBlob blob;
  blob.readFromFile(path.c_str());
  EXPECT_EQ((Bytes{0xCA, 0xFE}), BytesOf(blob));

  std::wstring missing = Widen(Path("no-such-dir/x"));
  EXPECT_EQ(kFileNotFound, CodeOf([&] { blob.readFromFile(missing.c_str()); }));
  EXPECT_EQ(0u, blob.cbData());
  wchar_t const* none = nullptr;
  EXPECT_EQ(kFileNotFound, CodeOf([&] { blob.readFromFile(none); }));
}

// The converted path gets one byte per wide character: in UTF-8 a path with
// non-ASCII characters loses its tail, on a character boundary.
TEST_F(BlobFileTest, WidePathLongerInMultibyteFormIsCut) {
  std::string saved = std::setlocale(LC_CTYPE, nullptr);
  if (!std::setlocale(LC_CTYPE, "C.UTF-8")) GTEST_SKIP() << "no C.UTF-8 locale";
  std::wstring path = Widen(dir_ + "/") + L"\u0436abc";  // ж is two bytes in UTF-8
  MakeBlob({0x42}).writeToFile(path.c_str());
  std::setlocale(LC_CTYPE, saved.c_str());
  std::string const zhe = "\xD0\xB6";
  EXPECT_EQ("\x42", ReadRaw(dir_ + "/" + zhe + "ab"));
  EXPECT_EQ("", ReadRaw(dir_ + "/" + zhe + "abc"));
}

}  // namespace
