// Helpers shared by the CBlob tests: blobs from byte lists and back.
#ifndef KORVEX_TESTS_CORE_BLOB_TEST_UTIL_H
#define KORVEX_TESTS_CORE_BLOB_TEST_UTIL_H

#include <initializer_list>
#include <vector>

#include <korvex/core/Blob.h>

namespace blob_test {

typedef std::vector<unsigned char> Bytes;

inline Korvex::CBlob MakeBlob(Bytes const& bytes) {
  return Korvex::CBlob(bytes.data(), bytes.size());
}

inline Bytes BytesOf(Korvex::CBlob const& blob) {
  return blob.cbData() == 0 ? Bytes() : Bytes(blob.pbData(), blob.pbData() + blob.cbData());
}

}  // namespace blob_test

#endif
