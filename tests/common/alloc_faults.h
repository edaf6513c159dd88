// alloc_faults.h: a watch on the ASN.1 runtime's allocation functions
// (rtSetAllocFuncs) for the tests of the value classes: it counts live
// blocks and fails the n-th allocation or every one of a given size. Install
// it only while no context exists. Header-only.
#ifndef KORVEX_TESTS_COMMON_ALLOC_FAULTS_H
#define KORVEX_TESTS_COMMON_ALLOC_FAULTS_H

#include <gtest/gtest.h>
#include <korvex/asn1rt/asn1type.h>

#include <cstddef>
#include <cstdlib>
#include <ios>
#include <type_traits>

#include "blob_values.h"

namespace korvextest {

// AllocWatch counts the blocks the runtime's allocation functions hand out
// and can refuse allocations in two ways: the n-th call from now (failNth,
// malloc or realloc), or every request of one exact size (failRequest). It
// restores the default functions when destroyed. FaultInjector and
// HeapWatch are its names in the two uses.
class AllocWatch {
 public:
  AllocWatch() {
    live_ = 0;
    calls_ = 0;
    failAt_ = 0;
    failSize_ = 0;
    skip_ = 0;
    rtSetAllocFuncs(Malloc, Realloc, Free);
  }
  ~AllocWatch() { rtSetAllocFuncs(nullptr, nullptr, nullptr); }
  AllocWatch(AllocWatch const&) = delete;
  AllocWatch& operator=(AllocWatch const&) = delete;

  // failNth: the n-th allocation (malloc or realloc) from now fails; 0:
  // none. Resets the call count.
  static void failNth(long n) {
    calls_ = 0;
    failAt_ = n;
  }
  // failed: whether the failure planned by failNth happened.
  static bool failed() { return failAt_ != 0 && calls_ >= failAt_; }
  // live: blocks allocated and not yet freed.
  static long live() { return live_; }
  // failRequest: refuse malloc requests of exactly `size` bytes from now on,
  // after letting the first `skip` of them through (size 0: none).
  static void failRequest(size_t size, int skip = 0) {
    failSize_ = size;
    skip_ = skip;
  }
  // failHeapBlock: failRequest for heap blocks of n bytes (the request is
  // n + ASN1_MEMBLOCK_HEADER).
  static void failHeapBlock(size_t n, int skip = 0) {
    failRequest(n ? n + ASN1_MEMBLOCK_HEADER : 0, skip);
  }

 private:
  static bool refuseCall() { return ++calls_ == failAt_; }
  static void* Malloc(void*, size_t size) {
    if (refuseCall()) return nullptr;
    if (failSize_ && size == failSize_ && skip_-- <= 0) return nullptr;
    void* p = std::malloc(size);
    if (p) ++live_;
    return p;
  }
  static void* Realloc(void*, void* p, size_t size) {
    if (refuseCall()) return nullptr;
    void* q = std::realloc(p, size);
    if (!p && q) ++live_;
    return q;
  }
  static void Free(void*, void* p) {
    if (p) --live_;
    std::free(p);
  }
  static inline long live_ = 0;
  static inline long calls_ = 0;
  static inline long failAt_ = 0;
  static inline size_t failSize_ = 0;
  static inline int skip_ = 0;
};

using FaultInjector = AllocWatch;
using HeapWatch = AllocWatch;

// ExpectCleanUnderFaults runs f once for every allocation it makes, failing
// that allocation: each run must either succeed or throw one of the codes of
// the value layer (0x80093101 for a failed codec status or buffer,
// 0x80093106 for the context heap, 0x8007000E outside it), and leave no
// runtime block behind.
template <class F>
void ExpectCleanUnderFaults(F&& f) {
  FaultInjector faults;
  for (long n = 1; n < 100000; ++n) {
    SCOPED_TRACE(n);
    FaultInjector::failNth(n);
    unsigned code = ThrownCode(f);
    bool failed = FaultInjector::failed();
    EXPECT_TRUE(code == 0 || code == 0x80093101u || code == 0x80093106u || code == 0x8007000Eu)
        << std::hex << code;
    EXPECT_EQ(0, FaultInjector::live());
    if (!failed) {
      EXPECT_EQ(0u, code);
      EXPECT_GT(n, 1) << "f allocated nothing through the runtime";
      return;  // every allocation of f has been refused once
    }
  }
  ADD_FAILURE() << "too many allocations";
}

// ExpectCodecCleanUnderFaults: ExpectCleanUnderFaults over value's encode,
// then over the decode of what it wrote into a fresh value of its class.
template <class Value>
void ExpectCodecCleanUnderFaults(Value& value) {
  Korvex::CBlob const der = value.encode();
  ExpectCleanUnderFaults([&] { value.encode(); });
  ExpectCleanUnderFaults([&] {
    std::remove_const_t<Value> back;
    back.decode(der);
  });
}

}  // namespace korvextest

#endif
