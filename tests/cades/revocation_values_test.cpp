// CRevocationValues and CCompleteCertificateRefs: exact DER around the real
// CRL and OCSP fixtures, empty lists written as absent, otherRevVals
// ignored, equality, malformed input.
#include <gtest/gtest.h>
#include <korvex/cades/CAdESAttributes.h>

#include <string>

#include "revref_test_util.h"

namespace {

using Korvex::CBlob;
using Korvex::CBlobList;
using Korvex::ASN1::CAlgorithmIdentifier;
using Korvex::ASN1::CBigInteger;
using Korvex::ASN1::CGeneralName;
using Korvex::ASN1::CGeneralNames;
using Korvex::ASN1::CIssuerSerial;
using Korvex::ASN1::COtherCertID;
using Korvex::PKI::CAdES::CCompleteCertificateRefs;
using Korvex::PKI::CAdES::CRevocationValues;
using namespace revreftest;

CBlobList Crls() {
  return CBlobList{Fixture("crl/intermediate-ca.crl"), Fixture("crl/root-ca.crl")};
}

CBlobList Ocsps() { return CBlobList{Fixture("ocsp/resp-good.basic.der")}; }

CRevocationValues Values(CBlobList const* crls, CBlobList const* ocsps) {
  CRevocationValues values;
  values.put_crlVals(crls);
  values.put_ocspVals(ocsps);
  return values;
}

CBlob SeqOf(CBlobList const& list) {
  CBlob all;
  for (CBlob const& b : list) all += b;
  return Tlv(0x30, all);
}

TEST(RevocationValuesTest, ExactDer) {
  CBlobList const crls = Crls();
  CBlobList const ocsps = Ocsps();
  CBlobList const empty;
  struct Case {
    char const* name;
    CRevocationValues values;
    CBlob der;
  };
  const Case kCases[] = {
      {"nothing", CRevocationValues(), Blob("30 00")},
      {"empty lists", Values(&empty, &empty), Blob("30 00")},
      {"CRLs", Values(&crls, nullptr), Tlv(0x30, Tlv(0xA0, SeqOf(crls)))},
      {"OCSP responses", Values(nullptr, &ocsps), Tlv(0x30, Tlv(0xA1, SeqOf(ocsps)))},
      {"both", Values(&crls, &ocsps),
       Tlv(0x30, Cat({Tlv(0xA0, SeqOf(crls)), Tlv(0xA1, SeqOf(ocsps))}))},
      {"empty CRLs beside OCSP", Values(&empty, &ocsps), Tlv(0x30, Tlv(0xA1, SeqOf(ocsps)))},
  };
  for (Case const& c : kCases) {
    SCOPED_TRACE(c.name);
    CBlob der = c.values.encode();
    EXPECT_EQ(Hex(c.der), Hex(der));
    CRevocationValues back = Values(&crls, &ocsps);
    back.decode(der);
    CBlobList const* backCrls = back.get_crlVals();
    CBlobList const* wantCrls = c.values.get_crlVals();
    EXPECT_EQ(wantCrls && !wantCrls->empty(), backCrls != nullptr);
    if (backCrls) {
      EXPECT_TRUE(*backCrls == *wantCrls);
    }
    CBlobList const* backOcsps = back.get_ocspVals();
    CBlobList const* wantOcsps = c.values.get_ocspVals();
    EXPECT_EQ(wantOcsps && !wantOcsps->empty(), backOcsps != nullptr);
    if (backOcsps) {
      EXPECT_TRUE(*backOcsps == *wantOcsps);
    }
    EXPECT_EQ(Hex(der), Hex(back.encode()));
  }
}

TEST(RevocationValuesTest, EmptyButPresentComparesUnequalUntilRoundTrip) {
  CBlobList const empty;
  CRevocationValues const present = Values(&empty, nullptr);
  EXPECT_TRUE(present != CRevocationValues());
  CRevocationValues back;
  back.decode(present.encode());
  EXPECT_TRUE(back == CRevocationValues());
  EXPECT_EQ(nullptr, back.get_crlVals());
  // An empty list on the wire reads as absent too.
  back.decode(Blob("30 08 A0 02 30 00 A1 02 30 00"));
  EXPECT_EQ(nullptr, back.get_crlVals());
  EXPECT_EQ(nullptr, back.get_ocspVals());
}

TEST(RevocationValuesTest, OtherRevValsIsIgnored) {
  CBlobList const ocsps = Ocsps();
  CBlob der =
      Tlv(0x30, Cat({Tlv(0xA1, SeqOf(ocsps)), Blob("A2 0A 30 08 06 02 2A 03 30 02 05 00")}));
  CRevocationValues values;
  values.decode(der);
  EXPECT_TRUE(values == Values(nullptr, &ocsps));
}

TEST(RevocationValuesTest, EachBlobMustBeOneElement) {
  const char* kBad[] = {"", "30", "30 03 02 01", "30 00 30 00", "00"};
  for (char const* hex : kBad) {
    SCOPED_TRACE(hex);
    CBlobList list{Blob("30 00"), Blob(hex)};
    EXPECT_EQ(0x80093101u, ThrownCode([&] { Values(&list, nullptr).encode(); }));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { Values(nullptr, &list).encode(); }));
  }
}

TEST(RevocationValuesTest, Equality) {
  CBlobList const crls = Crls();
  CBlobList const ocsps = Ocsps();
  CBlobList reversed(crls.rbegin(), crls.rend());
  EXPECT_TRUE(Values(&crls, &ocsps) == Values(&crls, &ocsps));
  EXPECT_TRUE(Values(&crls, &ocsps) != Values(&reversed, &ocsps));
  EXPECT_TRUE(Values(&crls, nullptr) != Values(&crls, &ocsps));
  EXPECT_TRUE(Values(nullptr, &ocsps) != Values(&crls, &ocsps));
  CRevocationValues copy = Values(&crls, &ocsps);
  CRevocationValues assigned;
  assigned = copy;
  copy.put_crlVals(nullptr);
  ASSERT_NE(nullptr, assigned.get_crlVals());
  EXPECT_EQ(2u, assigned.get_crlVals()->size());
}

TEST(RevocationValuesTest, MalformedInputKeepsTheValue) {
  const char* kBad[] = {
      "31 00",
      "30 02 A0 00",                    // [0] without its SEQUENCE OF
      "30 04 A0 02 31 00",              // a SET where the SEQUENCE OF stands
      "30 04 A3 02 30 00",              // no field [3]
      "30 06 A0 04 30 02 30 05",        // truncated element
      "30 00 00",                       // trailing byte
      "30 04 A1 02 30 00 A0 02 30 00",  // [1] before [0]
  };
  CBlobList const crls = Crls();
  for (char const* hex : kBad) {
    SCOPED_TRACE(hex);
    CRevocationValues values = Values(&crls, nullptr);
    EXPECT_EQ(0x80093101u, ThrownCode([&] { values.decode(Blob(hex)); }));
    EXPECT_TRUE(values == Values(&crls, nullptr));
  }
}

TEST(RevocationValuesTest, NothingLeaksUnderAllocationFailures) {
  CBlobList const crls = Crls();
  CBlobList const ocsps = Ocsps();
  CRevocationValues const values = Values(&crls, &ocsps);
  ExpectCodecCleanUnderFaults(values);
}

// ---- CCompleteCertificateRefs ------------------------------------------------

CBlob Hash(unsigned char byte, unsigned long n) {
  CBlob blob(n);
  for (unsigned long i = 0; i < n; ++i) blob.pbData()[i] = byte;
  return blob;
}

TEST(CompleteCertificateRefsTest, ExactDer) {
  CCompleteCertificateRefs refs;
  EXPECT_EQ("30 00", Hex(refs.encode()));
  refs.push_back(COtherCertID(Hash(0xAA, 20)));
  EXPECT_EQ("30 18 30 16 04 14 " + Hex(Hash(0xAA, 20)), Hex(refs.encode()));

  COtherCertID withSerial(Hash(0x55, 32), CAlgorithmIdentifier("2.16.840.1.101.3.4.2.1"));
  CGeneralNames issuer;
  issuer.push_back(CGeneralName());
  issuer.back().put_directoryName(Blob("30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74"));
  CIssuerSerial const serial(issuer, CBigInteger(0xC0FFEEul));
  withSerial.put_issuerSerial(&serial);
  refs.push_back(withSerial);

  CBlob der = refs.encode();
  CBlob expected = Tlv(0x30, Cat({COtherCertID(Hash(0xAA, 20)).encode(), withSerial.encode()}));
  EXPECT_EQ(Hex(expected), Hex(der));
  // OtherCertID { otherHash { SHA-256 }, IssuerSerial { [4] Name, 00 C0 FF EE } }
  EXPECT_EQ(
      "30 4E 30 2F 30 0B 06 09 60 86 48 01 65 03 04 02 01 04 20 " + Hex(Hash(0x55, 32)) +
          " 30 1B 30 13 A4 11 30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 54 65 73 74 02 04 00 C0 FF EE",
      Hex(withSerial.encode()));

  CCompleteCertificateRefs back;
  back.push_back(COtherCertID());
  back.decode(der);
  EXPECT_TRUE(back == refs);
  ASSERT_EQ(2u, back.size());
  ASSERT_NE(nullptr, back.back().get_issuerSerial());
  EXPECT_EQ(CBigInteger(0xC0FFEEul), back.back().get_issuerSerial()->get_serialNumber());
}

TEST(CompleteCertificateRefsTest, ElementErrors) {
  CCompleteCertificateRefs refs;
  refs.push_back(COtherCertID());
  refs.back().put_otherCertHash([] {
    Korvex::ASN1::COtherHash none;
    none.clear();
    return none;
  }());
  EXPECT_EQ(0x80093101u, ThrownCode([&] { refs.encode(); }));

  const char* kBad[] = {"31 00", "30 03 02 01 05", "30 04 30 02 30 00", "30 02 30 00 00",
                        "30 04 30 02 04 00 05"};
  for (char const* hex : kBad) {
    SCOPED_TRACE(hex);
    CCompleteCertificateRefs value;
    value.push_back(COtherCertID(Hash(1, 20)));
    EXPECT_EQ(0x80093101u, ThrownCode([&] { value.decode(Blob(hex)); }));
    ASSERT_EQ(1u, value.size());
    EXPECT_TRUE(value.front() == COtherCertID(Hash(1, 20)));
  }
}

TEST(CompleteCertificateRefsTest, NothingLeaksUnderAllocationFailures) {
  CCompleteCertificateRefs refs;
  refs.push_back(COtherCertID(Hash(0xAA, 20)));
  refs.push_back(COtherCertID(Hash(0x55, 32), CAlgorithmIdentifier("2.16.840.1.101.3.4.2.1")));
  ExpectCodecCleanUnderFaults(refs);
}

}  // namespace
