// pki_values_test_util.h: shared pieces of the tests of the algorithm
// identifier, hash, certificate-ID and time-choice values: the test issuer
// (pki_test_values.h) and the runtime fault injector of tests/common.
#ifndef KORVEX_TESTS_ASN1TYPES_PKI_VALUES_TEST_UTIL_H
#define KORVEX_TESTS_ASN1TYPES_PKI_VALUES_TEST_UTIL_H

#include "../common/alloc_faults.h"
#include "pki_test_values.h"
#include "types_test_util.h"

namespace pkitest {

using korvextest::ExpectCleanUnderFaults;
using korvextest::ExpectCodecCleanUnderFaults;
using korvextest::FaultInjector;

}  // namespace pkitest

#endif
