// The templates over a compiler-generated type: AlgorithmIdentifier of our test
// module (a SEQUENCE of an OID and a table-constrained open type), with a
// traits class written the way the value classes write theirs.
#include <gtest/gtest.h>
#include <korvex/asn1gen/KorvexTestAlgorithms.h>
#include <korvex/asn1types/ContextHandle.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/SeqOfListTraits.h>
#include <korvex/asn1types/Traits.h>

#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::CStringProxy;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

struct AlgId {
  std::string oid;
  CBlob params;
  bool operator==(AlgId const& o) const { return oid == o.oid && params == o.params; }
};

struct AlgIdTraits
    : GeneratedTraits<korvextest::ASN1T_AlgorithmIdentifier, korvextest::ASN1C_AlgorithmIdentifier,
                      &korvextest::asn1Copy_AlgorithmIdentifier> {
  static void set(ASN1CTXT* ctxt, ASN1_T& rec, AlgId const& v) {
    ASN1TObjId_traits::set(ctxt, rec.algorithm, v.oid.c_str());
    rec.m.parametersPresent = v.params.cbData() ? 1 : 0;
    if (rec.m.parametersPresent) {
      Asn1TObject_traits::set(ctxt, rec.parameters, v.params);
      // Let the algorithm's information object read the parameters.
      if (korvextest::asn1DTC_AlgorithmIdentifier(ctxt, &rec) != 0) throwCodecError();
    }
  }
  static void get(ASN1_T const& rec, AlgId& v) {
    CStringProxy text(nullptr);
    ASN1TObjId_traits::get(rec.algorithm, text);
    v.oid = text.c_str();
    if (rec.m.parametersPresent) {
      Asn1TObject_traits::get(rec.parameters, v.params);
    } else {
      v.params = CBlob();
    }
  }
};

class GeneratedTraitsTest : public typestest::HeapCheckedTest {};

TEST_F(GeneratedTraitsTest, WorkedExampleBytes) {
  struct Case {
    AlgId value;
    char const* der;
  } const cases[] = {
      {{"1.2.840.113549.1.1.11", CBlob()}, "30 0B 06 09 2A 86 48 86 F7 0D 01 01 0B"},
      {{"1.2.840.113549.1.1.11", Blob("05 00")}, "30 0D 06 09 2A 86 48 86 F7 0D 01 01 0B 05 00"},
      // An algorithm the set does not know keeps its raw parameters.
      {{"1.2.3.4", Blob("04 01 AA")}, "30 08 06 03 2A 03 04 04 01 AA"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.der);
    EXPECT_EQ(Hex(asn1Encode<AlgIdTraits>(c.value)), c.der);
    AlgId back{"x", Blob("FF")};
    asn1Decode<AlgIdTraits>(Blob(c.der), back);
    EXPECT_TRUE(back == c.value);
  }
}

TEST_F(GeneratedTraitsTest, DecodeStatusesBecomeCodecError) {
  char const* const cases[] = {
      "30 00",                                               // -8
      "30 0F 06 09 2A 86 48 86 F7 0D 01 01 0B 05 00 05 00",  // -10
      "31 0B 06 09 2A 86 48 86 F7 0D 01 01 0B",              // -3
  };
  for (char const* der : cases) {
    SCOPED_TRACE(der);
    AlgId v{"keep", CBlob()};
    EXPECT_EQ(ThrownCode([&] { asn1Decode<AlgIdTraits>(Blob(der), v); }), 0x80093101u);
    EXPECT_EQ(v.oid, "keep");
  }
}

TEST_F(GeneratedTraitsTest, ParametersOfAnotherTypeStayRaw) {
  // rsaEncryption's parameters are NULL; an INTEGER is not a value of the
  // object's type, so it is carried as raw bytes, as under an unknown key,
  // and the element round-trips as it came.
  CBlob der = asn1Encode<AlgIdTraits>(AlgId{"1.2.840.113549.1.1.1", Blob("02 01 00")});
  EXPECT_EQ(Hex(der), "30 0E 06 09 2A 86 48 86 F7 0D 01 01 01 02 01 00");
  AlgId back;
  asn1Decode<AlgIdTraits>(der, back);
  EXPECT_EQ(back.oid, "1.2.840.113549.1.1.1");
  EXPECT_EQ(Hex(back.params), "02 01 00");
}

TEST_F(GeneratedTraitsTest, EncodeTAndDecodeTUseTheGeneratedCopy) {
  ctxt_handle target;
  ASSERT_TRUE(target.init());
  korvextest::ASN1T_AlgorithmIdentifier rec;
  asn1DecodeT<AlgIdTraits>(Blob("30 0D 06 09 2A 86 48 86 F7 0D 01 01 0B 05 00"), target, rec);
  ASSERT_EQ(rec.m.parametersPresent, 1u);
  EXPECT_NE(rec.parameters.decoded, nullptr);  // the object's copy came along
  EXPECT_EQ(Hex(asn1EncodeT<AlgIdTraits>(rec)), "30 0D 06 09 2A 86 48 86 F7 0D 01 01 0B 05 00");
  AlgId v;
  AlgIdTraits::get(rec, v);
  EXPECT_EQ(v.oid, "1.2.840.113549.1.1.11");
  target.release();
}

TEST_F(GeneratedTraitsTest, ListOfGeneratedElements) {
  typedef ASN1TSeqOfList_traits<korvextest::ASN1T_AlgorithmIdentifier, AlgIdTraits, AlgId>
      ListTraits;
  ctxt_handle ctxt;
  ASSERT_TRUE(ctxt.init());
  std::list<AlgId> list{{"1.2.840.113549.1.1.1", Blob("05 00")}, {"2.5.4.3", CBlob()}};
  ASN1TSeqOfList rec;
  ListTraits::set(ctxt, rec, list);
  ASSERT_EQ(rec.count, 2u);
  ASN1TSeqOfList copy;
  ListTraits::copy(ctxt, rec, copy);
  std::list<AlgId> back{{"old", CBlob()}};
  ListTraits::get(copy, back);
  EXPECT_TRUE(back == list);
  ctxt.release();
}

TEST_F(GeneratedTraitsTest, WholeStructureAsDer) {
  typedef DerBlobTraits<korvextest::ASN1T_AlgorithmIdentifier,
                        korvextest::ASN1C_AlgorithmIdentifier,
                        &korvextest::asn1Copy_AlgorithmIdentifier>
      AlgIdDerTraits;
  ctxt_handle ctxt;
  ASSERT_TRUE(ctxt.init());
  korvextest::ASN1T_AlgorithmIdentifier rec;
  AlgIdDerTraits::set(ctxt, rec, Blob("30 0D 06 09 2A 86 48 86 F7 0D 01 01 0B 05 00"));
  EXPECT_EQ(rec.m.parametersPresent, 1u);
  CBlob der;
  AlgIdDerTraits::get(rec, der);
  EXPECT_EQ(Hex(der), "30 0D 06 09 2A 86 48 86 F7 0D 01 01 0B 05 00");
  EXPECT_EQ(ThrownCode([&] { AlgIdDerTraits::set(ctxt, rec, Blob("30 00")); }), 0x80093101u);
  ctxt.release();
}

}  // namespace
