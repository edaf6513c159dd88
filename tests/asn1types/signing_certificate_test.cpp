// The signing-certificate attributes (v1, v2, other) and the revocation
// announcement: exact DER, parts and DER kept in step, failures that change
// nothing, no heap block left behind.
#include <gtest/gtest.h>
#include <korvex/asn1types/Attribute.h>
#include <korvex/asn1types/AttributeTraits.h>
#include <korvex/asn1types/CMP.h>

#include <string>

#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::CDateTime;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

char const kHash20[] = "11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11";
// certificatePolicies { anyPolicy }
char const kAnyPolicies[] = "30 08 30 06 06 04 55 1D 20 00";

CPolicyInformationList AnyPolicy() {
  CPolicyInformationList list;
  list.push_back(CPolicyInformation(kOidAnyPolicy));
  return list;
}

class SigningCertificateTest : public typestest::HeapCheckedTest {};

TEST_F(SigningCertificateTest, VersionOneExactDer) {
  CAttrSigningCertificate empty;
  EXPECT_STREQ(empty.get_oid(), kOidSigningCertificate);
  EXPECT_TRUE(empty.get_certs().empty());
  EXPECT_EQ(Hex(empty.get_value()), "30 02 30 00");

  CESSCertIDList certs;
  certs.push_back(CESSCertID(Blob(kHash20)));
  CAttrSigningCertificate attr(certs);
  std::string const der = std::string("30 1A 30 18 30 16 04 14 ") + kHash20;
  EXPECT_EQ(Hex(attr.get_value()), der);
  CPolicyInformationList const policies = AnyPolicy();
  attr.put_policies(&policies);
  EXPECT_EQ(Hex(attr.get_value()),
            std::string("30 24 30 18 30 16 04 14 ") + kHash20 + " " + kAnyPolicies);
  CAttrSigningCertificate back(attr.get_value());
  ASSERT_NE(back.get_policies(), nullptr);
  EXPECT_EQ(*back.get_policies(), policies);
  EXPECT_TRUE(back.get_certs() == certs);
  EXPECT_TRUE(back == attr);
  attr.put_policies(nullptr);
  EXPECT_EQ(Hex(attr.get_value()), der);
  EXPECT_EQ(attr.get_policies(), nullptr);
}

TEST_F(SigningCertificateTest, VersionTwoDefaultHashAndPolicies) {
  CESSCertIDv2List certs;
  certs.push_back(CESSCertIDv2(Blob("01 02")));
  CAttrSigningCertificateV2 attr(certs);
  EXPECT_STREQ(attr.get_oid(), kOidSigningCertificateV2);
  // SHA-256 is the DEFAULT hash algorithm and is left out.
  EXPECT_EQ(Hex(attr.get_value()), "30 08 30 06 30 04 04 02 01 02");
  CPolicyInformationList const policies = AnyPolicy();
  attr.put_policies(&policies);
  std::string const withPolicies = std::string("30 12 30 06 30 04 04 02 01 02 ") + kAnyPolicies;
  EXPECT_EQ(Hex(attr.get_value()), withPolicies);

  CAttrSigningCertificateV2 back;
  EXPECT_EQ(Hex(back.get_value()), "30 02 30 00");
  back.decode(Blob(withPolicies));
  EXPECT_STREQ(back.get_certs().front().get_hashAlgorithm().get_algorithm(),
               "2.16.840.1.101.3.4.2.1");
  ASSERT_NE(back.get_policies(), nullptr);
  EXPECT_EQ(Hex(back.encode()), withPolicies);

  // Copy and assignment are deep and keep parts and DER together.
  CAttrSigningCertificateV2 copy(back);
  copy.put_policies(nullptr);
  EXPECT_NE(back.get_policies(), nullptr);
  EXPECT_EQ(Hex(copy.get_value()), "30 08 30 06 30 04 04 02 01 02");
  copy = back;
  EXPECT_EQ(Hex(copy.get_value()), withPolicies);
  ASSERT_NE(copy.get_policies(), nullptr);
  auto const& self = copy;
  copy = self;  // self-assignment keeps the value
  EXPECT_EQ(Hex(copy.get_value()), withPolicies);

  // The DER changed through value() is read back by decode().
  copy.value() = Blob("30 02 30 00");
  copy.decode();
  EXPECT_TRUE(copy.get_certs().empty());
  EXPECT_EQ(copy.get_policies(), nullptr);

  // Failures change nothing: bad DER, trailing bytes, a wrong tag.
  for (char const* bad :
       {"30 08 30 06 30 04 04 02 01", "30 02 30 00 00", "31 02 30 00", "30 04 30 00 31 00"}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(ThrownCode([&] { back.decode(Blob(bad)); }), 0x80093101u);
    EXPECT_EQ(Hex(back.get_value()), withPolicies);
    EXPECT_NE(back.get_policies(), nullptr);
  }
  // The policies have no size constraint (RFC 5035 3): present and empty is
  // 30 00 and reads back present.
  CPolicyInformationList const none;
  back.put_policies(&none);
  EXPECT_EQ(Hex(back.get_value()), "30 0A 30 06 30 04 04 02 01 02 30 00");
  CAttrSigningCertificateV2 emptyPolicies(back.get_value());
  ASSERT_NE(emptyPolicies.get_policies(), nullptr);
  EXPECT_TRUE(emptyPolicies.get_policies()->empty());
  // A policy that does not encode changes nothing.
  CPolicyInformationList badPolicy;
  badPolicy.push_back(CPolicyInformation("1..2"));
  EXPECT_EQ(ThrownCode([&] { back.put_policies(&badPolicy); }), 0x80070057u);
  EXPECT_EQ(Hex(back.get_value()), "30 0A 30 06 30 04 04 02 01 02 30 00");
  EXPECT_TRUE(back.get_policies()->empty());
}

TEST_F(SigningCertificateTest, OtherSigningCertificate) {
  COtherCertIDList certs;
  certs.push_back(COtherCertID(Blob(kHash20)));
  CAttrOtherSigningCertificate attr(certs);
  EXPECT_STREQ(attr.get_oid(), kOidOtherSigningCertificate);
  // OtherCertID { otherCertHash sha1Hash OCTET STRING }
  std::string const der = std::string("30 1A 30 18 30 16 04 14 ") + kHash20;
  EXPECT_EQ(Hex(attr.get_value()), der);
  CAttrOtherSigningCertificate back(Blob(der));
  ASSERT_EQ(back.get_certs().size(), 1u);
  EXPECT_TRUE(back.get_certs().front() == certs.front());
  EXPECT_EQ(Hex(back.encode()), der);
  // As an attribute of a set.
  CAttributes attrs;
  attrs.add(back);
  CAttributes decoded;
  decoded.decode(attrs.encode());
  ASSERT_NE(decoded.find(kOidOtherSigningCertificate), decoded.end());
  EXPECT_EQ(Hex(decoded.find(kOidOtherSigningCertificate)->begin()->get_value()), der);
}

TEST_F(SigningCertificateTest, RevocationAnnouncement) {
  CGeneralName issuer;
  issuer.put_dNSName(L"a");
  CCertId const certId(issuer, Korvex::ASN1::CBigInteger(5ul));
  CRevAnnContent announcement(CPKIStatusInfo::revocationWarning, certId,
                              CDateTime(2024, 7, 1, 0, 0, 0, 0, 0),
                              CDateTime(2024, 6, 1, 0, 0, 0, 0, 0));
  std::string const times =
      "18 0F 32 30 32 34 30 37 30 31 30 30 30 30 30 30 5A "
      "18 0F 32 30 32 34 30 36 30 31 30 30 30 30 30 30 5A";
  std::string const der = "30 2D 02 01 04 30 06 82 01 61 02 01 05 " + times;
  EXPECT_EQ(Hex(announcement.encode()), der);
  CExtensions details;
  details.push_back(CExtension("2.5.29.21", Blob("0A 01 01")));
  announcement.put_crlDetails(&details);
  std::string const withDetails = "30 3B 02 01 04 30 06 82 01 61 02 01 05 " + times +
                                  " 30 0C 30 0A 06 03 55 1D 15 04 03 0A 01 01";
  EXPECT_EQ(Hex(announcement.encode()), withDetails);
  CRevAnnContent back;
  back.decode(Blob(withDetails));
  EXPECT_TRUE(back == announcement);
  ASSERT_NE(back.get_crlDetails(), nullptr);
  back.put_crlDetails(nullptr);
  EXPECT_TRUE(back != announcement);
  EXPECT_EQ(Hex(back.encode()), der);
  // Default: no issuer alternative, which does not encode.
  EXPECT_EQ(ThrownCode([] { CRevAnnContent().encode(); }), 0x80093101u);
  // Bad time text in the DER is a decoding failure; fields before it stay.
  std::string badTime = der;
  badTime.replace(badTime.find("32 30 32 34 30 37"), 2, "41");
  EXPECT_EQ(ThrownCode([&] { back.decode(Blob(badTime)); }), 0x80093101u);
  EXPECT_EQ(back.get_status(), CPKIStatusInfo::revocationWarning);
}

TEST_F(SigningCertificateTest, HeapExhaustionLeavesNothing) {
  CESSCertIDv2List certs;
  certs.push_back(CESSCertIDv2(Blob("01 02 03")));
  certs.push_back(CESSCertIDv2(Blob("04 05 06")));
  CPolicyInformationList const policies = AnyPolicy();
  CAttrSigningCertificateV2 attr(certs);
  attr.put_policies(&policies);
  CBlob const expected = attr.get_value();
  for (size_t size = 1; size < 300; ++size) {
    HeapWatch::failHeapBlock(size);
    unsigned code = ThrownCode([&] { attr.encode(); });
    EXPECT_TRUE(code == 0 || code == 0x80093106u || code == 0x80093101u) << size;
    code = ThrownCode([&] { attr.decode(expected); });
    EXPECT_TRUE(code == 0 || code == 0x80093106u || code == 0x80093101u) << size;
    HeapWatch::failHeapBlock(0);
    EXPECT_EQ(Hex(attr.get_value()), Hex(expected));
  }
}

}  // namespace
