// Headers read in place (xd_setp, xd_OpenType, the engine's SEQUENCE OF count)
// give what the general readers give: every length form of X.690 8.1.3, and
// the forms left to the general path (high tag numbers, indefinite lengths,
// four length octets, elements longer than the data).
#include <gtest/gtest.h>
#include <korvex/asn1rt/asn1engine.h>

#include <cstddef>
#include <string>
#include <vector>

#include "rt_test_util.h"

using rttest::Bytes;
using rttest::Context;

namespace {

struct SetpCase {
  const char* hex;
  int status;
  ASN1TAG tag;
  int length;  // complete length reported, -9999 for indefinite
};

TEST(RtInPlaceReads, SetpAgreesWithTheGeneralPath) {
  const SetpCase cases[] = {
      {"04 02 AA BB", 0, 0x04, 4},
      {"30 81 02 05 00", 0, 0x20000010, 5},
      {"30 82 00 02 05 00", 0, 0x20000010, 6},
      {"A3 83 00 00 02 05 00", 0, 0xA0000003, 7},
      {"04 84 00 00 00 01 AA", 0, 0x04, 7},         // four length octets: general path
      {"1F 81 48 01 AA", 0, 0x000000C8, 5},         // tag number 200: general path
      {"30 80 05 00 00 00", 0, 0x20000010, -9999},  // indefinite: general path
      {"04 00", 0, 0x04, 2},
  };
  for (const SetpCase& c : cases) {
    SCOPED_TRACE(c.hex);
    std::vector<ASN1OCTET> der = Bytes(c.hex);
    // With its size the header is read in place; with size 0 (unknown) the
    // general reader measures it.
    for (int size : {static_cast<int>(der.size()), 0}) {
      SCOPED_TRACE(size);
      Context ctx;
      ASN1TAG tag = 0;
      int length = 0;
      EXPECT_EQ(xd_setp(&ctx, der.data(), size, &tag, &length), c.status);
      EXPECT_EQ(tag, c.tag);
      EXPECT_EQ(length, c.length);
      EXPECT_EQ(ctx.c.buffer.byteIndex, 0u);
      if (c.length >= 0) {
        EXPECT_EQ(ctx.c.buffer.size, static_cast<ASN1UINT>(c.length));
      }
    }
  }
}

TEST(RtInPlaceReads, SetpRefusesElementsLongerThanTheSize) {
  for (const char* hex : {"04 03 AA BB", "30 81 05 05 00", "04 82 01 00 AA"}) {
    SCOPED_TRACE(hex);
    std::vector<ASN1OCTET> der = Bytes(hex);
    Context ctx;
    EXPECT_EQ(xd_setp(&ctx, der.data(), static_cast<int>(der.size()), nullptr, nullptr),
              ASN_E_INVLEN);
    EXPECT_EQ(ctx.status(), ASN_E_INVLEN);
  }
}

struct OpenCase {
  const char* hex;
  int status;
  ASN1UINT numocts;  // also the cursor afterwards on success
};

TEST(RtInPlaceReads, OpenTypeMeasuresEveryLengthForm) {
  const OpenCase cases[] = {
      {"05 00 FF", 0, 2},
      {"04 81 02 AA BB FF", 0, 5},
      {"30 82 00 02 05 00 FF", 0, 6},
      {"30 83 00 00 00 FF", 0, 5},
      {"04 84 00 00 00 01 AA FF", 0, 7},  // general path
      {"1F 81 48 01 AA FF", 0, 5},        // general path
      {"30 80 05 00 00 00 FF", 0, 6},     // general path
      {"00 00", ASN_E_STROVFLW, 0},       // no element
      {"04 05 AA", ASN_E_STROVFLW, 0},    // longer than the data
      {"04 82 01 00 AA", ASN_E_STROVFLW, 0},
  };
  for (bool reference : {false, true}) {
    for (const OpenCase& c : cases) {
      SCOPED_TRACE(std::string(c.hex) + (reference ? " (ASN1OPENTYPEREF)" : ""));
      rttest::Decoder d(c.hex, reference ? ASN1OPENTYPEREF : 0);
      const ASN1OCTET* data = nullptr;
      ASN1UINT n = 0;
      EXPECT_EQ(xd_OpenType(d.get(), &data, &n), c.status);
      if (c.status != 0) {
        EXPECT_EQ(d.cursor(), 0u);
        continue;
      }
      EXPECT_EQ(n, c.numocts);
      EXPECT_EQ(d.cursor(), c.numocts);
      ASSERT_NE(data, nullptr);
      EXPECT_EQ(rttest::Hex(data, n), rttest::Hex(d.bytes.data(), n));
      EXPECT_EQ(data == d.bytes.data(), reference);
      if (!reference) rtMemFreePtr(d.get(), data);
    }
  }
}

// SEQUENCE OF INTEGER held as an array: n, then the elements.
struct IntArray {
  ASN1UINT n;
  ASN1INT* elem;
};

const Korvex::Asn1Engine::TypeDesc kIntArray = {Korvex::Asn1Engine::kSequenceOf,
                                                0,
                                                0,
                                                0x20000010,
                                                sizeof(IntArray),
                                                offsetof(IntArray, n),
                                                offsetof(IntArray, elem),
                                                &Korvex::Asn1Engine::kDescInteger,
                                                nullptr,
                                                nullptr,
                                                nullptr,
                                                0};

struct ListCase {
  const char* hex;
  int status;
  std::vector<ASN1INT> values;
};

TEST(RtInPlaceReads, SequenceOfCountsEveryLengthForm) {
  const ListCase cases[] = {
      {"30 00", 0, {}},
      {"30 09 02 01 01 02 01 02 02 01 03", 0, {1, 2, 3}},
      {"30 0C 02 01 01 02 81 01 02 02 82 00 01 03", 0, {1, 2, 3}},  // BER long forms
      {"30 80 02 01 01 02 01 02 00 00", 0, {1, 2}},                 // indefinite: xd_count
      {"30 06 02 01 01 02 84 00", ASN_E_INVLEN, {}},                // runs past the end
  };
  for (bool carve : {false, true}) {
    for (const ListCase& c : cases) {
      SCOPED_TRACE(std::string(c.hex) + (carve ? " (carving)" : ""));
      rttest::ScopedCountingAlloc scoped;
      {
        Context ctx;
        if (carve) {
          ASSERT_EQ(rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1), 0);
        }
        std::vector<ASN1OCTET> der = Bytes(c.hex);
        ASSERT_EQ(xd_setp(&ctx, der.data(), static_cast<int>(der.size()), nullptr, nullptr), 0);
        IntArray value = {0, nullptr};
        int stat = Korvex::Asn1Engine::decode(&ctx, &kIntArray, &value, ASN1EXPL, 0);
        if (c.status == 0) {
          EXPECT_EQ(stat, 0);
          ASSERT_EQ(value.n, c.values.size());
          for (size_t i = 0; i < c.values.size(); ++i) EXPECT_EQ(value.elem[i], c.values[i]);
        } else {
          EXPECT_LT(stat, 0);
        }
        Korvex::Asn1Engine::free(&ctx, &kIntArray, &value);
      }
      EXPECT_EQ(scoped.alloc.live, 0);
    }
  }
}

}  // namespace
