// Big-integer text through the engine (serial numbers, CRL numbers): its direct
// conversions of the common case give exactly what xd_bigint / xe_bigint give,
// statuses included, for values of every length, both signs and malformed
// contents; and text in other forms still encodes through xe_bigint.
#include <gtest/gtest.h>
#include <korvex/asn1rt/asn1engine.h>

#include <random>
#include <string>
#include <vector>

#include "codec_fixture.h"

namespace {

using Korvex::Asn1Engine::kDescBigInteger;
using Korvex::Test::Bytes;
using Korvex::Test::FromHex;
using Korvex::Test::ToHex;

struct Decoded {
  int status;
  std::string text;
};

// INTEGER der decoded by the engine (engine == true) or by xd_bigint.
Decoded DecodeWith(const Bytes& der, bool engine) {
  ASN1CTXT c;
  rtInitContext(&c, nullptr);
  Decoded d{xd_setp(&c, der.data(), static_cast<int>(der.size()), nullptr, nullptr), ""};
  const char* text = nullptr;
  if (d.status >= 0) {
    d.status = engine ? Korvex::Asn1Engine::decode(&c, &kDescBigInteger, &text, ASN1EXPL, 0)
                      : xd_bigint(&c, &text, ASN1EXPL, 0);
  }
  if (d.status == 0 && text) d.text = text;
  rtFreeContext(&c);
  return d;
}

// text encoded by the engine or by xe_bigint: the bytes, or the status.
std::string EncodeWith(const char* text, bool engine) {
  ASN1CTXT c;
  rtInitContext(&c, nullptr);
  xe_setp(&c, nullptr, 0);
  const char* value = text;
  int len = engine ? Korvex::Asn1Engine::encode(&c, &kDescBigInteger, const_cast<char**>(&value),
                                                ASN1EXPL)
                   : xe_bigint(&c, text, ASN1EXPL);
  std::string out =
      len < 0 ? "status " + std::to_string(len) : ToHex(Bytes(xe_getp(&c), xe_getp(&c) + len));
  rtFreeContext(&c);
  return out;
}

TEST(EngineBigInteger, DecodesAndEncodesAsTheRuntimeDoes) {
  std::vector<Bytes> inputs;
  const char* kFixed[] = {"020100",     "02017F",       "02020080",       "0202FF7F", "020180",
                          "0203C0FFEE", "020400C0FFEE", "0202007F",       "0202FF80", "0200",
                          "02810100",   "0203000001",   "02050000000001", "0201",     "02807F0000"};
  for (const char* hex : kFixed) inputs.push_back(FromHex(hex));
  std::mt19937 random(20240601);
  for (int i = 0; i < 2000; ++i) {
    size_t n = 1 + random() % 40;
    Bytes contents(n);
    for (auto& b : contents) b = static_cast<unsigned char>(random());
    if (i % 3 == 0) contents[0] &= 0x7F;  // more non-negative values
    Bytes der{0x02, static_cast<unsigned char>(n)};
    der.insert(der.end(), contents.begin(), contents.end());
    inputs.push_back(der);
  }
  for (const Bytes& der : inputs) {
    SCOPED_TRACE(ToHex(der));
    Decoded ours = DecodeWith(der, true);
    Decoded theirs = DecodeWith(der, false);
    EXPECT_EQ(ours.status, theirs.status);
    EXPECT_EQ(ours.text, theirs.text);
    if (ours.status == 0) {
      EXPECT_EQ(EncodeWith(ours.text.c_str(), true), EncodeWith(ours.text.c_str(), false));
      if (der[1] < 0x80) {  // DER input comes back as it was
        EXPECT_EQ(EncodeWith(ours.text.c_str(), true), ToHex(der));
      }
    }
  }
}

TEST(EngineBigInteger, TextInEveryFormEncodes) {
  const char* kTexts[] = {"0x0",   "0x00001", "0xC0FFEE", "0x80", "0xFF", "0x0080", "255",
                          "-0x80", "-1",      "0",        "0x",   "0xg1", "",       "12a"};
  for (const char* text : kTexts) {
    SCOPED_TRACE(text);
    EXPECT_EQ(EncodeWith(text, true), EncodeWith(text, false));
  }
  EXPECT_EQ(EncodeWith("0x00C0FFEE", true), "02 04 00 C0 FF EE");
}

}  // namespace
