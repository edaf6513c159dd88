// der_walk.h: the BER reader of tests/common under the value-class tests'
// names, to cut real structures (signed attributes, extensions, CMP status)
// out of the fixture files without going through the classes under test.
#ifndef KORVEX_TESTS_ASN1TYPES_DER_WALK_H
#define KORVEX_TESTS_ASN1TYPES_DER_WALK_H

#include "../common/ber_walk.h"

namespace typestest {

using korvextest::Element;
using korvextest::ParseElement;
using korvextest::Root;

// ReadFixture: the bytes of tests/data/<name>.
inline Korvex::CBlob ReadFixture(char const* name) { return korvextest::Fixture(name); }

}  // namespace typestest

#endif
