// types_test_util.h: hex helpers, exception checks and a heap watch for the
// value-class tests.
#ifndef KORVEX_TESTS_ASN1TYPES_TYPES_TEST_UTIL_H
#define KORVEX_TESTS_ASN1TYPES_TYPES_TEST_UTIL_H

#include <gtest/gtest.h>
#include <korvex/asn1rt/asn1type.h>
#include <korvex/core/Blob.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "../common/hex_bytes.h"

namespace typestest {

// "02 01 05" -> blob {2, 1, 5}; anything but hex digits is ignored.
inline Korvex::CBlob Blob(std::string const& hex) {
  std::vector<unsigned char> bytes = korvextest::HexToBytes(hex);
  return Korvex::CBlob(bytes.data(), bytes.size());
}

// Blob bytes as "02 01 05".
inline std::string Hex(Korvex::CBlob const& blob) {
  std::string out;
  char buf[4];
  for (unsigned long i = 0; i < blob.cbData(); ++i) {
    std::snprintf(buf, sizeof buf, i ? " %02X" : "%02X", blob.pbData()[i]);
    out += buf;
  }
  return out;
}

// The code of the ATL::CAtlException that f throws; 0 when it throws none
// (another exception type fails the test).
template <class F>
unsigned ThrownCode(F&& f) {
  try {
    f();
  } catch (ATL::CAtlException const& e) {
    return static_cast<unsigned>(e.m_hr);
  }
  return 0;
}

// HeapWatch counts the blocks the runtime's allocation functions hand out and
// can refuse allocations of one exact size (the request is n + 48 for a heap
// block of n bytes). Install it only while no context exists.
class HeapWatch {
 public:
  HeapWatch() {
    live_ = 0;
    failSize_ = 0;
    skip_ = 0;
    rtSetAllocFuncs(Malloc, Realloc, Free);
  }
  ~HeapWatch() { rtSetAllocFuncs(nullptr, nullptr, nullptr); }
  HeapWatch(HeapWatch const&) = delete;
  HeapWatch& operator=(HeapWatch const&) = delete;

  // live: blocks allocated and not yet freed.
  static long live() { return live_; }
  // failRequest: refuse allocation requests of exactly `size` bytes from now
  // on, after letting the first `skip` of them through (size 0: none).
  static void failRequest(size_t size, int skip = 0) {
    failSize_ = size;
    skip_ = skip;
  }
  // failHeapBlock: failRequest for heap blocks of n bytes.
  static void failHeapBlock(size_t n, int skip = 0) {
    failRequest(n ? n + ASN1_MEMBLOCK_HEADER : 0, skip);
  }

 private:
  static void* Malloc(void*, size_t size) {
    if (failSize_ && size == failSize_ && skip_-- <= 0) return nullptr;
    void* p = std::malloc(size);
    if (p) ++live_;
    return p;
  }
  static void* Realloc(void*, void* p, size_t size) {
    void* q = std::realloc(p, size);
    if (!p && q) ++live_;
    return q;
  }
  static void Free(void*, void* p) {
    if (p) --live_;
    std::free(p);
  }
  static inline long live_ = 0;
  static inline size_t failSize_ = 0;
  static inline int skip_ = 0;
};

}  // namespace typestest

#endif
