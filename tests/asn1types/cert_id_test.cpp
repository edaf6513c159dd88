// Tests of CIssuerSerial, CESSCertID, CESSCertIDv2, COtherCertID, CCertId, the
// certificate-ID lists and their traits.
#include <gtest/gtest.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/CertIdTraits.h>

#include <string>

#include "pki_values_test_util.h"
#include "signing_certificate_v2_traits.h"
#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::ASN1::CAlgorithmIdentifier;
using Korvex::ASN1::CBigInteger;
using Korvex::ASN1::CCertId;
using Korvex::ASN1::CESSCertID;
using Korvex::ASN1::CESSCertIDList;
using Korvex::ASN1::CESSCertIDv2;
using Korvex::ASN1::CESSCertIDv2List;
using Korvex::ASN1::CGeneralName;
using Korvex::ASN1::CGeneralNames;
using Korvex::ASN1::CIssuerSerial;
using Korvex::ASN1::COtherCertID;
using Korvex::ASN1::COtherCertIDList;
using Korvex::ASN1::COtherHash;
using Korvex::ASN1::COtherHashAlgAndValue;
using pkitest::kIssuerSerialHex;
using pkitest::TestIssuer;
using pkitest::TestSerial;
using typestest::Blob;
using typestest::Hex;
using typestest::ThrownCode;

namespace {

constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";
constexpr char kSha512[] = "2.16.840.1.101.3.4.2.3";
constexpr char kSha1[] = "1.3.14.3.2.26";

std::string Cat(std::string const& a, std::string const& b) { return a + " " + b; }

CIssuerSerial TestIssuerSerial() { return CIssuerSerial(TestIssuer(), TestSerial()); }

// ---- IssuerSerial -------------------------------------------------------------

TEST(IssuerSerialTest, EncodesAndDecodes) {
  CIssuerSerial value = TestIssuerSerial();
  EXPECT_EQ(kIssuerSerialHex, Hex(value.encode()));

  CIssuerSerial decoded;
  decoded.decode(Blob(kIssuerSerialHex));
  ASSERT_EQ(1u, decoded.get_issuer().size());
  EXPECT_EQ(5u, decoded.get_issuer().front().get_type());  // directoryName
  EXPECT_EQ(Hex(Blob(pkitest::kNameHex)), Hex(*decoded.get_issuer().front().get_directoryName()));
  EXPECT_EQ("00 C0 FF EE", Hex(decoded.get_serialNumber().get_value()));
  EXPECT_TRUE(decoded == value);
}

TEST(IssuerSerialTest, SerialNumbersAndIssuerLists) {
  struct {
    char const* name;
    CBigInteger serial;
    char const* serialDer;
  } const cases[] = {
      {"zero", CBigInteger(), "02 01 00"},
      {"0x7F", CBigInteger(0x7Ful), "02 01 7F"},
      {"0x80 gets a leading zero", CBigInteger(0x80ul), "02 02 00 80"},
      {"negative", CBigInteger(reinterpret_cast<unsigned char const*>("\xFF\x7F"), 2),
       "02 02 FF 7F"},
      {"20 octets (RFC 5280 maximum)",
       CBigInteger(Blob("4B 6F 72 76 65 78 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D").pbData(),
                   20),
       "02 14 4B 6F 72 76 65 78 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    CIssuerSerial value(TestIssuer(), c.serial);
    CBlob der = value.encode();
    std::string expected = Cat("30 16 A4 14 30 12 31 10 30 0E 06 03 55 04 03 0C 07 54 65 73 74 20 43 41",
                               c.serialDer);
    EXPECT_EQ(expected, Hex(der).substr(6));
    CIssuerSerial decoded;
    decoded.decode(der);
    EXPECT_TRUE(decoded.get_serialNumber() == c.serial);
  }

  // Two names, in order.
  CGeneralNames two = TestIssuer();
  CGeneralName uri;
  uri.put_uniformResourceIdentifier(L"http://ca.example/");
  two.push_back(uri);
  CIssuerSerial value(two, CBigInteger(1ul));
  CIssuerSerial decoded;
  decoded.decode(value.encode());
  ASSERT_EQ(2u, decoded.get_issuer().size());
  EXPECT_EQ(7u, decoded.get_issuer().back().get_type());
  EXPECT_TRUE(decoded == value);
  // GeneralNames is SIZE (1..MAX) (RFC 5280 4.2.1.6): no issuer, no encoding.
  EXPECT_EQ(0x80093101u,
            ThrownCode([] { CIssuerSerial(CGeneralNames(), CBigInteger(1ul)).encode(); }));
}

TEST(IssuerSerialTest, AccessorsEqualityAndFailures) {
  CIssuerSerial a;
  EXPECT_TRUE(a.get_issuer().empty());
  EXPECT_TRUE(a.get_serialNumber() == CBigInteger());
  a.put_issuer(TestIssuer());
  a.put_serialNumber(TestSerial());
  EXPECT_TRUE(a == TestIssuerSerial());
  CIssuerSerial b(a);
  b.put_serialNumber(CBigInteger(1ul));
  EXPECT_TRUE(a != b);
  b = a;
  EXPECT_TRUE(a == b);
  b.put_issuer(CGeneralNames());
  EXPECT_TRUE(a != b);

  // A general name without an alternative does not encode.
  CGeneralNames bad(1);
  EXPECT_EQ(0x80093101u, ThrownCode([&] { CIssuerSerial(bad, CBigInteger()).encode(); }));
  // Decoding failures leave the value.
  char const* const badDer[] = {"30 03 02 01 05", "30 05 30 00 04 01 05", "30 1E 30 16"};
  for (char const* hex : badDer) {
    SCOPED_TRACE(hex);
    EXPECT_EQ(0x80093101u, ThrownCode([&] { a.decode(Blob(hex)); }));
    EXPECT_TRUE(a == TestIssuerSerial());
  }
}

// ---- ESSCertID ----------------------------------------------------------------

TEST(ESSCertIDTest, EncodesAndDecodes) {
  struct {
    char const* name;
    bool withIssuerSerial;
    std::string der;
  } const cases[] = {
      {"hash only", false, "30 07 04 05 01 02 03 04 05"},
      {"with issuerSerial", true, Cat("30 27 04 05 01 02 03 04 05", kIssuerSerialHex)},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    CESSCertID id(Blob("01 02 03 04 05"));
    CIssuerSerial issuerSerial = TestIssuerSerial();
    id.put_issuerSerial(c.withIssuerSerial ? &issuerSerial : nullptr);
    EXPECT_EQ(c.der, Hex(id.encode()));

    CESSCertID decoded;
    decoded.put_issuerSerial(&issuerSerial);  // removed by a decode without one
    decoded.decode(Blob(c.der));
    EXPECT_EQ("01 02 03 04 05", Hex(decoded.get_certHash()));
    EXPECT_EQ(c.withIssuerSerial, decoded.get_issuerSerial() != nullptr);
    EXPECT_TRUE(decoded == id);
  }
}

TEST(ESSCertIDTest, OptionalIssuerSerialIsCopiedAndCompared) {
  CESSCertID a(Blob("01"));
  EXPECT_EQ(nullptr, a.get_issuerSerial());
  CIssuerSerial issuerSerial = TestIssuerSerial();
  a.put_issuerSerial(&issuerSerial);
  ASSERT_NE(nullptr, a.get_issuerSerial());
  EXPECT_NE(&issuerSerial, a.get_issuerSerial());  // a copy is held

  CESSCertID b(a);
  ASSERT_NE(nullptr, b.get_issuerSerial());
  EXPECT_NE(a.get_issuerSerial(), b.get_issuerSerial());  // deep copy
  EXPECT_TRUE(a == b);
  b.put_issuerSerial(nullptr);
  EXPECT_TRUE(a != b);  // one absent
  EXPECT_TRUE(b != a);
  a.put_issuerSerial(a.get_issuerSerial());  // onto itself: nothing changes
  ASSERT_NE(nullptr, a.get_issuerSerial());
  EXPECT_TRUE(*a.get_issuerSerial() == issuerSerial);
  b = a;
  EXPECT_TRUE(a == b);
  b.put_certHash(Blob("02"));
  EXPECT_TRUE(a != b);
  EXPECT_EQ("30 02 04 00", Hex(CESSCertID().encode()));
}

// ---- ESSCertIDv2 --------------------------------------------------------------

TEST(ESSCertIDv2Test, DefaultAlgorithmIsSha256AndIsLeftOut) {
  CESSCertIDv2 id;
  EXPECT_STREQ(kSha256, id.get_hashAlgorithm().get_algorithm());
  EXPECT_EQ(0u, id.get_hashAlgorithm().get_parameters().cbData());
  EXPECT_STREQ(kSha256, CESSCertIDv2(Blob("01")).get_hashAlgorithm().get_algorithm());

  struct {
    char const* name;
    char const* oid;
    char const* parameters;
    std::string der;
    char const* decodedParameters;
  } const cases[] = {
      {"SHA-256", kSha256, "", "30 06 04 04 01 02 03 04", ""},
      // Only the OID text is compared: explicit NULL parameters are lost.
      {"SHA-256 with NULL", kSha256, "05 00", "30 06 04 04 01 02 03 04", ""},
      {"SHA-512", kSha512, "",
       "30 13 30 0B 06 09 60 86 48 01 65 03 04 02 03 04 04 01 02 03 04", ""},
      {"SHA-1 with NULL", kSha1, "05 00", "30 11 30 09 06 05 2B 0E 03 02 1A 05 00 04 04 01 02 03 04",
       "05 00"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.name);
    CAlgorithmIdentifier algorithm(c.oid);
    algorithm.put_parameters(Blob(c.parameters));
    CESSCertIDv2 value(Blob("01 02 03 04"), algorithm);
    EXPECT_EQ(c.der, Hex(value.encode()));
    CESSCertIDv2 decoded(Blob("FF"), CAlgorithmIdentifier("1.2.3"));
    decoded.decode(Blob(c.der));
    EXPECT_STREQ(c.oid, decoded.get_hashAlgorithm().get_algorithm());
    EXPECT_EQ(Hex(Blob(c.decodedParameters)), Hex(decoded.get_hashAlgorithm().get_parameters()));
    EXPECT_EQ("01 02 03 04", Hex(decoded.get_certHash()));
  }
}

TEST(ESSCertIDv2Test, ExplicitSha256OnTheWireIsTakenAsWritten) {
  // BER may carry the DEFAULT value; the decoded one is taken, parameters and all.
  CESSCertIDv2 decoded;
  decoded.decode(Blob("30 15 30 0D 06 09 60 86 48 01 65 03 04 02 01 05 00 04 04 01 02 03 04"));
  EXPECT_STREQ(kSha256, decoded.get_hashAlgorithm().get_algorithm());
  EXPECT_EQ("05 00", Hex(decoded.get_hashAlgorithm().get_parameters()));
  // Written again, DER leaves it out.
  EXPECT_EQ("30 06 04 04 01 02 03 04", Hex(decoded.encode()));
}

TEST(ESSCertIDv2Test, WithIssuerSerial) {
  std::string der =
      Cat("30 33 30 0B 06 09 60 86 48 01 65 03 04 02 03 04 04 01 02 03 04", kIssuerSerialHex);
  CESSCertIDv2 value(Blob("01 02 03 04"), CAlgorithmIdentifier(kSha512));
  CIssuerSerial issuerSerial = TestIssuerSerial();
  value.put_issuerSerial(&issuerSerial);
  EXPECT_EQ(der, Hex(value.encode()));
  CESSCertIDv2 decoded;
  decoded.decode(Blob(der));
  ASSERT_NE(nullptr, decoded.get_issuerSerial());
  EXPECT_TRUE(*decoded.get_issuerSerial() == issuerSerial);
  EXPECT_TRUE(decoded == value);

  CESSCertIDv2 copy(value);
  copy.put_hashAlgorithm(CAlgorithmIdentifier(kSha256));
  EXPECT_TRUE(copy != value);
  copy = value;
  EXPECT_TRUE(copy == value);
  copy.put_issuerSerial(nullptr);
  EXPECT_TRUE(copy != value);
}

TEST(ESSCertIDv2Test, FailuresThrowAndLeaveTheValue) {
  CESSCertIDv2 bad(Blob("01"), CAlgorithmIdentifier("1..2"));
  EXPECT_EQ(0x80093101u, ThrownCode([&] { bad.encode(); }));
  CAlgorithmIdentifier wrongParams(kSha512);
  wrongParams.put_parameters(Blob("02 01 00"));
  bad.put_hashAlgorithm(wrongParams);
  EXPECT_EQ(0x80093101u, ThrownCode([&] { bad.encode(); }));

  char const* const badDer[] = {
      "30 00",                                 // certHash missing
      "30 06 04 04 01 02 03",                  // truncated
      "30 08 04 04 01 02 03 04 05 00",         // an element after the last
      "30 0B 30 07 06 05 2B 0E 03 02 1A 30 00",  // hash missing after the algorithm
  };
  for (char const* hex : badDer) {
    SCOPED_TRACE(hex);
    CESSCertIDv2 value(Blob("AA"), CAlgorithmIdentifier(kSha1));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { value.decode(Blob(hex)); }));
    EXPECT_STREQ(kSha1, value.get_hashAlgorithm().get_algorithm());
    EXPECT_EQ("AA", Hex(value.get_certHash()));
  }
}

// ---- OtherCertID ---------------------------------------------------------------

TEST(OtherCertIDTest, EncodesAndDecodes) {
  COtherCertID sha1(Blob("00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13"));
  EXPECT_EQ(1u, sha1.get_otherCertHash().get_type());
  std::string sha1Der = "30 16 04 14 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13";
  EXPECT_EQ(sha1Der, Hex(sha1.encode()));

  COtherCertID other(Blob("AA BB"), CAlgorithmIdentifier(kSha256));
  EXPECT_EQ(2u, other.get_otherCertHash().get_type());
  CIssuerSerial issuerSerial = TestIssuerSerial();
  other.put_issuerSerial(&issuerSerial);
  std::string otherDer =
      Cat("30 33 30 11 30 0B 06 09 60 86 48 01 65 03 04 02 01 04 02 AA BB", kIssuerSerialHex);
  EXPECT_EQ(otherDer, Hex(other.encode()));

  COtherCertID decoded;
  decoded.decode(Blob(otherDer));
  EXPECT_TRUE(decoded == other);
  decoded.decode(Blob(sha1Der));
  EXPECT_TRUE(decoded == sha1);
  EXPECT_EQ(nullptr, decoded.get_issuerSerial());

  // A SHA-1 given as algorithm and value stays the otherHash alternative.
  COtherCertID explicitSha1(Blob("01"), CAlgorithmIdentifier(kSha1));
  EXPECT_EQ(2u, explicitSha1.get_otherCertHash().get_type());
  EXPECT_EQ("30 0E 30 0C 30 07 06 05 2B 0E 03 02 1A 04 01 01", Hex(explicitSha1.encode()));
  EXPECT_EQ("30 02 04 00", Hex(COtherCertID().encode()));
}

TEST(OtherCertIDTest, CompareNoHashParamIgnoresOnlyTheParameters) {
  CAlgorithmIdentifier sha256Null(kSha256);
  sha256Null.put_parameters(Blob("05 00"));
  COtherCertID a(Blob("AA"), CAlgorithmIdentifier(kSha256));
  COtherCertID b(Blob("AA"), sha256Null);
  EXPECT_TRUE(a != b);
  EXPECT_TRUE(a.compare_noHashParam(b));

  COtherCertID c(Blob("AB"), sha256Null);
  EXPECT_FALSE(a.compare_noHashParam(c));
  COtherCertID d(Blob("AA"), CAlgorithmIdentifier(kSha512));
  EXPECT_FALSE(a.compare_noHashParam(d));

  // issuerSerial: absent/present rule, then equality.
  CIssuerSerial issuerSerial = TestIssuerSerial();
  b.put_issuerSerial(&issuerSerial);
  EXPECT_FALSE(a.compare_noHashParam(b));
  a.put_issuerSerial(&issuerSerial);
  EXPECT_TRUE(a.compare_noHashParam(b));
  CIssuerSerial otherSerial(TestIssuer(), CBigInteger(2ul));
  a.put_issuerSerial(&otherSerial);
  EXPECT_FALSE(a.compare_noHashParam(b));

  // sha1Hash and otherHash naming SHA-1 are the same hash.
  COtherCertID sha1(Blob("01 02"));
  COtherCertID sha1AsOther(Blob("01 02"), CAlgorithmIdentifier(kSha1));
  EXPECT_TRUE(sha1 != sha1AsOther);
  EXPECT_TRUE(sha1.compare_noHashParam(sha1AsOther));
}

TEST(OtherCertIDTest, AccessorsAndDecodeFailures) {
  COtherCertID id;
  id.put_otherCertHash(COtherHash(COtherHashAlgAndValue(Blob("01"), CAlgorithmIdentifier(kSha1))));
  EXPECT_EQ(2u, id.get_otherCertHash().get_type());
  COtherCertID copy(id);
  EXPECT_TRUE(copy == id);

  char const* const badDer[] = {"30 00", "30 03 02 01 01", "30 05 04 01 01 30 00"};
  for (char const* hex : badDer) {
    SCOPED_TRACE(hex);
    EXPECT_EQ(0x80093101u, ThrownCode([&] { id.decode(Blob(hex)); }));
    EXPECT_TRUE(copy == id);
  }
  COtherHash none;
  none.clear();
  id.put_otherCertHash(none);
  EXPECT_EQ(0x80093101u, ThrownCode([&] { id.encode(); }));
}

// ---- CertId --------------------------------------------------------------------

TEST(CertIdTest, EncodesAndDecodes) {
  constexpr char kDer[] =
      "30 19 A4 14 30 12 31 10 30 0E 06 03 55 04 03 0C 07 54 65 73 74 20 43 41 02 01 05";
  CCertId id(pkitest::TestDirectoryName(), CBigInteger(5ul));
  EXPECT_EQ(kDer, Hex(id.encode()));
  CCertId decoded;
  decoded.decode(Blob(kDer));
  EXPECT_EQ(5u, decoded.get_issuer().get_type());
  EXPECT_TRUE(decoded.get_serialNumber() == CBigInteger(5ul));
  EXPECT_TRUE(decoded == id);

  CCertId copy(id);
  copy.put_serialNumber(CBigInteger(6ul));
  EXPECT_TRUE(copy != id);
  copy = id;
  CGeneralName uri;
  uri.put_uniformResourceIdentifier(L"http://ca.example/");
  copy.put_issuer(uri);
  EXPECT_TRUE(copy != id);
  EXPECT_EQ(7u, copy.get_issuer().get_type());

  // The default issuer selects nothing and does not encode.
  EXPECT_EQ(0x80093101u, ThrownCode([&] { CCertId().encode(); }));
  EXPECT_EQ(0x80093101u, ThrownCode([&] { decoded.decode(Blob("30 03 02 01 05")); }));
  EXPECT_TRUE(decoded == id);
}

// ---- Lists ---------------------------------------------------------------------

TEST(CertIdListTest, SigningCertificateV2CertsInOrder) {
  CESSCertIDv2List certs;
  certs.push_back(CESSCertIDv2(Blob("01 02 03 04")));
  CESSCertIDv2 second(Blob("01 02 03 04"), CAlgorithmIdentifier(kSha512));
  CIssuerSerial issuerSerial = TestIssuerSerial();
  second.put_issuerSerial(&issuerSerial);
  certs.push_back(second);

  std::string der = Cat(
      "30 3F 30 3D 30 06 04 04 01 02 03 04 30 33 30 0B 06 09 60 86 48 01 65 03 04 02 03 04 04 "
      "01 02 03 04",
      kIssuerSerialHex);
  CBlob encoded = Korvex::ASN1::asn1Encode<pkitest::SigningCertificateV2Certs_traits>(certs);
  EXPECT_EQ(der, Hex(encoded));

  CESSCertIDv2List decoded;
  decoded.push_back(CESSCertIDv2());  // replaced by the decode
  Korvex::ASN1::asn1Decode<pkitest::SigningCertificateV2Certs_traits>(encoded, decoded);
  EXPECT_TRUE(decoded == certs);

  // An empty list: SEQUENCE { SEQUENCE {} }, and decoding it empties the list.
  EXPECT_EQ("30 02 30 00", Hex(Korvex::ASN1::asn1Encode<pkitest::SigningCertificateV2Certs_traits>(
                               CESSCertIDv2List())));
  Korvex::ASN1::asn1Decode<pkitest::SigningCertificateV2Certs_traits>(Blob("30 02 30 00"), decoded);
  EXPECT_TRUE(decoded.empty());
}

TEST(CertIdListTest, SeqOfTraitsRoundTripEachListType) {
  CESSCertIDList v1;
  v1.push_back(CESSCertID(Blob("01")));
  v1.push_back(CESSCertID(Blob("02")));
  CBlob der = Korvex::ASN1::asn1Encode<Korvex::ASN1::ASN1T__SeqOfESSCertID_traits>(v1);
  EXPECT_EQ("30 0A 30 03 04 01 01 30 03 04 01 02", Hex(der));
  CESSCertIDList v1Back;
  Korvex::ASN1::asn1Decode<Korvex::ASN1::ASN1T__SeqOfESSCertID_traits>(der, v1Back);
  EXPECT_TRUE(v1Back == v1);

  COtherCertIDList other;
  other.push_back(COtherCertID(Blob("01")));
  other.push_back(COtherCertID(Blob("02"), CAlgorithmIdentifier(kSha1)));
  der = Korvex::ASN1::asn1Encode<Korvex::ASN1::ASN1T__SeqOfOtherCertID_traits>(other);
  EXPECT_EQ("30 15 30 03 04 01 01 30 0E 30 0C 30 07 06 05 2B 0E 03 02 1A 04 01 02", Hex(der));
  COtherCertIDList otherBack;
  Korvex::ASN1::asn1Decode<Korvex::ASN1::ASN1T__SeqOfOtherCertID_traits>(der, otherBack);
  EXPECT_TRUE(otherBack == other);

  // A bad element fails the whole decode and reports 0x80093101.
  EXPECT_EQ(0x80093101u, ThrownCode([&] {
              Korvex::ASN1::asn1Decode<Korvex::ASN1::ASN1T__SeqOfESSCertID_traits>(
                  Blob("30 05 30 03 02 01 01"), v1Back);
            }));
}

TEST(CertIdTraitsTest, ContextHeapExhaustedWhileCopyingTheHash) {
  CBlob bytes(77);
  CESSCertID v1(bytes);
  CESSCertIDv2 v2(bytes);
  COtherCertID other(bytes, CAlgorithmIdentifier(kSha256));
  typestest::HeapWatch watch;
  typestest::HeapWatch::failHeapBlock(77);
  EXPECT_EQ(0x80093106u, ThrownCode([&] { v1.encode(); }));
  EXPECT_EQ(0x80093106u, ThrownCode([&] { v2.encode(); }));
  EXPECT_EQ(0x80093106u, ThrownCode([&] { other.encode(); }));
  typestest::HeapWatch::failHeapBlock(0);
  EXPECT_EQ(0, watch.live());
}

TEST(CertIdTraitsTest, NoLeakOrStrayCodeUnderAllocationFailures) {
  CESSCertIDv2 v2(Blob("01 02 03 04"), CAlgorithmIdentifier(kSha512));
  CIssuerSerial issuerSerial = TestIssuerSerial();
  v2.put_issuerSerial(&issuerSerial);
  pkitest::ExpectCodecCleanUnderFaults(v2);

  COtherCertID other(Blob("AA"), CAlgorithmIdentifier(kSha256));
  other.put_issuerSerial(&issuerSerial);
  pkitest::ExpectCodecCleanUnderFaults(other);

  CESSCertIDv2List certs(3, v2);
  pkitest::ExpectCleanUnderFaults(
      [&] { Korvex::ASN1::asn1Encode<pkitest::SigningCertificateV2Certs_traits>(certs); });
  CCertId certId(pkitest::TestDirectoryName(), TestSerial());
  pkitest::ExpectCleanUnderFaults([&] { certId.encode(); });
}

}  // namespace
