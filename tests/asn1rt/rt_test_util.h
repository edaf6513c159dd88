// rt_test_util.h: hex helpers, a context fixture and a counting allocator for
// the runtime's tests.
#ifndef KORVEX_TESTS_ASN1RT_RT_TEST_UTIL_H
#define KORVEX_TESTS_ASN1RT_RT_TEST_UTIL_H

#include <korvex/asn1rt/asn1ber.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "../common/hex_bytes.h"

namespace rttest {

// "02 01 05" -> {2, 1, 5}; spaces are ignored.
inline std::vector<ASN1OCTET> Bytes(const std::string& hex) { return korvextest::HexToBytes(hex); }

// Bytes as "02 01 05".
inline std::string Hex(const ASN1OCTET* p, size_t n) { return korvextest::BytesToHex(p, n); }

inline std::string Hex(const std::vector<ASN1OCTET>& v) { return Hex(v.data(), v.size()); }

// An initialised context, freed at the end of the scope.
struct Context {
  ASN1CTXT c;
  Context() { EXPECT_EQ(rtInitContext(&c, nullptr), 0); }
  ~Context() { rtFreeContext(&c); }
  ASN1CTXT* operator&() { return &c; }
  ASN1CTXT* get() { return &c; }
  // The encoded message so far, as hex.
  std::string Encoded() { return Hex(xe_getp(&c), xe_getLength(&c)); }
  int status() const { return c.errInfo.status; }
};

// A decode context over a copy of hex bytes, installed with
// rtInitContextBuffer (no xd_setp; the buffer size is exactly the bytes).
struct Decoder {
  Context ctx;
  std::vector<ASN1OCTET> bytes;
  explicit Decoder(const std::string& hex, ASN1USINT flags = 0) : bytes(Bytes(hex)) {
    // Keep a valid pointer even for no bytes.
    bytes.reserve(1);
    EXPECT_EQ(rtInitContextBuffer(&ctx.c, bytes.data(), static_cast<ASN1UINT>(bytes.size())), 0);
    ctx.c.flags = flags;
  }
  ASN1CTXT* get() { return &ctx.c; }
  ASN1UINT cursor() const { return ctx.c.buffer.byteIndex; }
};

// Allocation functions that count live blocks, can fail on the n-th call and
// check the user data they receive.
struct CountingAlloc {
  static CountingAlloc*& Current() {
    static CountingAlloc* current = nullptr;
    return current;
  }
  long live = 0;
  long calls = 0;
  long failAt = -1;  // call number (1-based) that fails; -1 never
  void* expectedUserData = nullptr;
  bool userDataMismatch = false;
  size_t lastSize = 0;
  std::set<void*> blocks;

  static void* Malloc(void* userData, size_t size) {
    CountingAlloc* a = Current();
    if (userData != a->expectedUserData) a->userDataMismatch = true;
    ++a->calls;
    if (a->failAt >= 0 && a->calls >= a->failAt) return nullptr;
    void* p = std::malloc(size ? size : 1);
    // A recognisable fill, so tests can tell copied bytes from fresh ones.
    if (p) std::memset(p, 0xCD, size);
    a->lastSize = size;
    ++a->live;
    a->blocks.insert(p);
    return p;
  }
  static void* Realloc(void*, void* p, size_t size) { return std::realloc(p, size); }
  static void Free(void* userData, void* p) {
    CountingAlloc* a = Current();
    if (userData != a->expectedUserData) a->userDataMismatch = true;
    if (!p) return;
    EXPECT_EQ(a->blocks.erase(p), 1u) << "block freed twice or never allocated";
    --a->live;
    std::free(p);
  }
};

// Installs a CountingAlloc for the scope of the object; restores the defaults.
struct ScopedCountingAlloc {
  CountingAlloc alloc;
  ScopedCountingAlloc() {
    CountingAlloc::Current() = &alloc;
    rtSetAllocFuncs(CountingAlloc::Malloc, CountingAlloc::Realloc, CountingAlloc::Free);
  }
  ~ScopedCountingAlloc() {
    rtSetAllocFuncs(nullptr, nullptr, nullptr);
    CountingAlloc::Current() = nullptr;
  }
};

}  // namespace rttest

#endif
