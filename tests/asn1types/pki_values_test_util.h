// pki_values_test_util.h: shared pieces of the tests of the algorithm
// identifier, hash, certificate-ID and time-choice values: the test issuer
// (pki_test_values.h) and a fault injector for the runtime's allocations.
#ifndef KORVEX_TESTS_ASN1TYPES_PKI_VALUES_TEST_UTIL_H
#define KORVEX_TESTS_ASN1TYPES_PKI_VALUES_TEST_UTIL_H

#include <gtest/gtest.h>
#include <korvex/asn1rt/asn1type.h>

#include <cstdlib>

#include "pki_test_values.h"
#include "types_test_util.h"

namespace pkitest {

// FaultInjector counts the runtime's allocations (rtSetAllocFuncs) and can make
// the n-th one from now fail. Install it only while no context exists; it
// restores the default functions when destroyed.
class FaultInjector {
 public:
  FaultInjector() {
    live_ = 0;
    calls_ = 0;
    failAt_ = 0;
    rtSetAllocFuncs(Malloc, Realloc, Free);
  }
  ~FaultInjector() { rtSetAllocFuncs(nullptr, nullptr, nullptr); }
  FaultInjector(FaultInjector const&) = delete;
  FaultInjector& operator=(FaultInjector const&) = delete;

  // failNth: the n-th allocation (malloc or growing realloc) from now fails;
  // 0: none. Resets the call count.
  static void failNth(long n) {
    calls_ = 0;
    failAt_ = n;
  }
  // failed: whether the planned failure happened.
  static bool failed() { return failAt_ != 0 && calls_ >= failAt_; }
  // live: blocks allocated and not yet freed.
  static long live() { return live_; }

 private:
  static bool refuse() { return ++calls_ == failAt_; }
  static void* Malloc(void*, size_t size) {
    if (refuse()) return nullptr;
    void* p = std::malloc(size);
    if (p) ++live_;
    return p;
  }
  static void* Realloc(void*, void* p, size_t size) {
    if (refuse()) return nullptr;
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
};

// ExpectCleanUnderFaults runs f once for every allocation it makes, failing
// that allocation: each run must either succeed or throw one of the codes of
// the value layer (0x80093101 for a failed codec status or buffer,
// 0x80093106 for the context heap, 0x8007000E outside it), and leave no
// runtime block behind.
template <class F>
void ExpectCleanUnderFaults(F&& f) {
  FaultInjector faults;
  for (long n = 1; n < 10000; ++n) {
    SCOPED_TRACE(n);
    FaultInjector::failNth(n);
    unsigned code = typestest::ThrownCode(f);
    bool failed = FaultInjector::failed();
    EXPECT_TRUE(code == 0 || code == 0x80093101u || code == 0x80093106u ||
                code == 0x8007000Eu)
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

}  // namespace pkitest

#endif
