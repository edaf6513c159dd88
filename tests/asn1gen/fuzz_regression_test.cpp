// Inputs found by the fuzz targets of the generated types, each test named
// after the SHA-1 of the fuzzer's input (its first byte picks the type, the
// rest is the DER shown here), with the neighbouring cases of the same rule.
#include <gtest/gtest.h>
#include <korvex/asn1gen/CertificateExtensions.h>

#include <string>

#include "catalogue_support.h"
#include "codec_fixture.h"

namespace Korvex {
namespace Test {
namespace {

struct NamedBitsCase {
  const char* name;
  const Asn1Engine::TypeDesc* desc;
  const char* input;
  const char* der;  // our encoding of the decoded value
};

void ExpectNamedBitsRoundTrip(const NamedBitsCase& c) {
  SCOPED_TRACE(c.name);
  Outcome o = RoundTrip(c.desc, FromHex(c.input));
  ASSERT_EQ(o.status, 0);
  EXPECT_EQ(o.broken, "");
  EXPECT_EQ(ToHex(o.der), ToHex(FromHex(c.der)));
}

// BasicNameForms ::= BIT STRING {...} (SIZE (1..MAX)) of X.509. DER drops
// every trailing 0 bit of a named-bit string, a value without 1 bits being
// 03 01 00 (X.690 11.2.2 note 2); the size's lower bound holds by padding
// (note 1), so it binds neither the encoder nor the decoder. A decoded value of
// 0 bits only used to fail its encode with -23 (all its bits trimmed away).
const NamedBitsCase kBasicNameForms[] = {
    {"seven zero bits", &asn1data::asn1Desc_BasicNameForms, "03 02 01 00", "03 01 00"},
    {"sixteen zero bits", &asn1data::asn1Desc_BasicNameForms, "03 03 00 00 00", "03 01 00"},
    {"one zero bit", &asn1data::asn1Desc_BasicNameForms, "03 02 07 00", "03 01 00"},
    {"no bits at all", &asn1data::asn1Desc_BasicNameForms, "03 01 00", "03 01 00"},
    {"dNSName with trailing zeros", &asn1data::asn1Desc_BasicNameForms, "03 03 00 40 00",
     "03 02 06 40"},
    {"rfc822Name", &asn1data::asn1Desc_BasicNameForms, "03 02 07 80", "03 02 07 80"},
};

TEST(Regression, NamedBitsTrimBelowTheSizeLowerBound) {
  for (const NamedBitsCase& c : kBasicNameForms) ExpectNamedBitsRoundTrip(c);
}

// catalogue_pkix_fuzz input A4 | 03 02 01 00 FF 14 00 (BasicNameForms; the
// bytes after the element stay unread).
TEST(Regression, crash_9328a0bf0a8a) {
  ExpectNamedBitsRoundTrip({"BasicNameForms of seven zero bits", &asn1data::asn1Desc_BasicNameForms,
                            "03 02 01 00 FF 14 00", "03 01 00"});
}

// catalogue_pkix_fuzz input A6 | 30 05 80 03 04 00 00 01 00 00 00 (NameForms
// with basicNameForms [0] of twelve zero bits).
TEST(Regression, crash_b8d20c233be0) {
  ExpectNamedBitsRoundTrip({"NameForms with twelve zero bits", &asn1data::asn1Desc_NameForms,
                            "30 05 80 03 04 00 00 01 00 00 00", "30 03 80 01 00"});
}

// Records with no bits, or with trailing 0 bits, encode as DER: the lower size
// bound does not refuse them.
TEST(Regression, NamedBitsEncodeFromRecords) {
  struct Case {
    const char* name;
    unsigned numbits;
    unsigned char bits[2];
    const char* der;
  } cases[] = {
      {"empty record", 0, {0, 0}, "03 01 00"},
      {"eight zero bits", 8, {0x00, 0}, "03 01 00"},
      {"registeredID and zeros", 16, {0x01, 0x00}, "03 02 00 01"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Context ctx;
    ASSERT_GE(xe_setp(ctx.get(), nullptr, 0), 0);
    unsigned char bits[2] = {c.bits[0], c.bits[1]};
    asn1data::ASN1T_BasicNameForms value;
    value.numbits = c.numbits;
    value.data = c.numbits ? bits : nullptr;
    int len = Asn1Engine::encode(ctx.get(), &asn1data::asn1Desc_BasicNameForms, &value, ASN1EXPL);
    ASSERT_GT(len, 0);
    const unsigned char* p = xe_getp(ctx.get());
    EXPECT_EQ(ToHex(Bytes(p, p + len)), ToHex(FromHex(c.der)));
  }
}

}  // namespace
}  // namespace Test
}  // namespace Korvex
