// Random values of every generated type, built from the descriptor tables
// alone (record_generator.h) with fixed seeds: each encodes, decodes back to
// an equal value that encodes to the same bytes, copies to an equal value,
// and frees without leaving a heap block. The type lists are those of the
// fuzz targets (fuzz/asn1gen/*_types.h) and our own test module.
#include <gtest/gtest.h>
#include <korvex/asn1gen/KorvexTestAlgorithms.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "../../fuzz/asn1gen/cades_types.h"
#include "../../fuzz/asn1gen/catalogue_cmp_types.h"
#include "../../fuzz/asn1gen/catalogue_cms_types.h"
#include "../../fuzz/asn1gen/catalogue_misc_types.h"
#include "../../fuzz/asn1gen/catalogue_ocsp_tsp_types.h"
#include "../../fuzz/asn1gen/catalogue_pkix_types.h"
#include "../../fuzz/asn1gen/record_generator.h"
#include "../../fuzz/asn1gen/signature_policy_types.h"
#include "codec_fixture.h"

namespace {

using Korvex::Asn1Engine::TypeDesc;
using Korvex::Test::Bytes;
using Korvex::Test::EncodeValue;
using Korvex::Test::RecordGenerator;
using Korvex::Test::SameValue;
using Korvex::Test::ToHex;

// Values per type; KORVEX_RANDOM_ROUNDS asks for more in a longer run.
int Rounds() {
  const char* env = std::getenv("KORVEX_RANDOM_ROUNDS");
  int n = env ? std::atoi(env) : 0;
  return n > 0 ? n : 16;
}

struct Context {
  ASN1CTXT c;
  Context() { rtInitContext(&c, nullptr); }
  ~Context() { rtFreeContext(&c); }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
  size_t blocks() { return rtMemHeapBlockCount(&c.pTypeMemHeap); }
};

// One random value of desc from seed through encode, decode, re-encode, copy
// and free. Returns what went wrong, empty when nothing did; *made tells
// whether the generator could build a value at all.
std::string RoundTrip(const TypeDesc* desc, unsigned seed, bool* made) {
  Context gen;
  std::vector<unsigned char> value(desc->size);
  RecordGenerator generator(&gen.c, seed);
  *made = generator.fill(desc, value.data());
  if (!*made) return "";
  int status = 0;
  Bytes der = EncodeValue(desc, value.data(), &status);
  if (status < 0) return "generated value does not encode: " + std::to_string(status);

  Context dec;
  size_t before = dec.blocks();
  std::vector<unsigned char> back(desc->size), copy(desc->size);
  std::string fault;
  status = xd_setp(&dec.c, der.data(), static_cast<int>(der.size()), nullptr, nullptr);
  if (status == 0) status = Korvex::Asn1Engine::decode(&dec.c, desc, back.data(), ASN1EXPL, 0);
  std::string where;
  if (status != 0) {
    fault = "does not decode: " + std::to_string(status);
  } else if (dec.c.buffer.byteIndex != der.size()) {
    fault = "decode stopped at " + std::to_string(dec.c.buffer.byteIndex);
  } else if (!SameValue(desc, value.data(), back.data(), &where)) {
    fault = "decoded value differs at " + where;
  } else if (EncodeValue(desc, back.data(), &status) != der) {
    fault = "decoded value encodes differently";
  } else if (Korvex::Asn1Engine::copy(&dec.c, desc, back.data(), copy.data()) != 0) {
    fault = "copy failed";
  } else if (!SameValue(desc, back.data(), copy.data(), &where)) {
    fault = "copy differs at " + where;
  }
  Korvex::Asn1Engine::free(&dec.c, desc, copy.data());
  Korvex::Asn1Engine::free(&dec.c, desc, back.data());
  if (fault.empty() && dec.blocks() != before) fault = "free left heap blocks";
  return fault.empty() ? "" : fault + " (DER " + ToHex(der) + ")";
}

void RandomRoundTrips(const char* group, const TypeDesc* const* types, size_t count,
                      unsigned seedBase) {
  const int rounds = Rounds();
  size_t made = 0, refused = 0, failures = 0;
  for (size_t i = 0; i < count; ++i) {
    for (int round = 0; round < rounds; ++round) {
      const unsigned seed = seedBase + static_cast<unsigned>(i * 1000 + round);
      bool ok = false;
      std::string fault = RoundTrip(types[i], seed, &ok);
      ok ? ++made : ++refused;
      if (!fault.empty() && ++failures <= 10) {
        ADD_FAILURE() << group << " type #" << i << ", seed " << seed << ": " << fault;
      }
    }
  }
  EXPECT_EQ(failures, 0u) << group;
  EXPECT_EQ(refused, 0u) << group << ": values the generator could not build";
  EXPECT_EQ(made, count * rounds) << group;
}

template <typename ListFn>
void RandomRoundTrips(const char* group, ListFn list, unsigned seedBase) {
  size_t count = 0;
  const TypeDesc* const* types = list(&count);
  ASSERT_GT(count, 0u);
  RandomRoundTrips(group, types, count, seedBase);
}

TEST(DescriptorRandom, TestModule) {
  using namespace korvextest;
  const TypeDesc* const types[] = {&asn1Desc_AlgorithmIdentifier,
                                   &asn1Desc__testAlgorithm_Type,
                                   &asn1Desc_Version,
                                   &asn1Desc_Color,
                                   &asn1Desc_Flags,
                                   &asn1Desc_Record,
                                   &asn1Desc_Settings,
                                   &asn1Desc_Options,
                                   &asn1Desc_Names,
                                   &asn1Desc_Choice,
                                   &asn1Desc_Tree};
  RandomRoundTrips("KorvexTestAlgorithms", types, sizeof types / sizeof types[0], 1);
}

TEST(DescriptorRandom, CadesModule) {
  RandomRoundTrips("ASN1CADES", &Korvex::Fuzz::CadesTypes, 100000);
}
TEST(DescriptorRandom, SignaturePolicyModule) {
  RandomRoundTrips("signature policy", &Korvex::Fuzz::SignaturePolicyTypes, 200000);
}
TEST(DescriptorRandom, CataloguePkix) {
  RandomRoundTrips("PKIX", &Korvex::Fuzz::PkixTypes, 300000);
}
TEST(DescriptorRandom, CatalogueCms) { RandomRoundTrips("CMS", &Korvex::Fuzz::CmsTypes, 400000); }
TEST(DescriptorRandom, CatalogueOcspTsp) {
  RandomRoundTrips("OCSP/TSP", &Korvex::Fuzz::OcspTspTypes, 500000);
}
TEST(DescriptorRandom, CatalogueCmp) { RandomRoundTrips("CMP", &Korvex::Fuzz::CmpTypes, 600000); }
TEST(DescriptorRandom, CatalogueMisc) {
  RandomRoundTrips("misc", &Korvex::Fuzz::MiscTypes, 700000);
}

}  // namespace
