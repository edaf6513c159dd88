// The extension classes over the extensions of real certificates and CRLs
// (tests/data/pki, crl, asn1): every list decodes and encodes back to the
// same bytes, and the typed values read what the fixtures' README says.
#include <gtest/gtest.h>
#include <korvex/asn1types/Extension.h>

#include <map>
#include <string>
#include <vector>

#include "der_walk.h"
#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::CDateTime;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

// The extensions of a certificate: tbsCertificate's [3] EXPLICIT Extensions.
CBlob CertificateExtensions(CBlob const& cert) {
  return Root(cert).child(0).first(0xA3).child(0).der();
}

// The value of the extension oid (which must be present).
CBlob ValueOf(CExtensions const& list, char const* oid) {
  auto it = list.find(oid);
  if (it == list.end()) throw std::runtime_error(std::string("no extension ") + oid);
  return it->get_extnValue();
}

// A general name's URI as narrow text ("" for another alternative).
std::string Uri(CGeneralName const& name) {
  wchar_t const* uri = name.get_uniformResourceIdentifier();
  return uri ? std::string(uri, uri + std::wcslen(uri)) : std::string();
}

// The full-name URI of the only distribution point of a list.
std::string OnlyDistributionPointUri(CCRLDistPointsSyntax const& points) {
  if (points.size() != 1) return "count " + std::to_string(points.size());
  CDistributionPointName const* name = points.front().get_distributionPoint();
  if (!name || !name->get_fullName() || name->get_fullName()->size() != 1) return "no full name";
  return Uri(name->get_fullName()->front());
}

class ExtensionFixturesTest : public typestest::HeapCheckedTest {};

TEST_F(ExtensionFixturesTest, EveryCertificateRoundTrips) {
  for (char const* name :
       {"pki/root-ca.der", "pki/intermediate-ca.der", "pki/ee-rsa.der", "pki/ee-ec.der",
        "pki/ee-rsa-expired.der", "pki/ee-rsa-revoked.der", "pki/ocsp-responder.der", "pki/tsa.der",
        "pki/ee-dn-attrs.der", "pki/cmp-client.der", "pki/untrusted-root-ca.der",
        "pki/ee-untrusted.der", "asn1/gost2012-root-ca.der", "asn1/gost2012-ca.der",
        "asn1/gost2012-qualified-legal.der", "asn1/gost2012-qualified-ip.der"}) {
    SCOPED_TRACE(name);
    CBlob const der = CertificateExtensions(ReadFixture(name));
    CExtensions list;
    list.decode(der);
    EXPECT_GE(list.size(), 2u);
    EXPECT_EQ(Hex(list.encode()), Hex(der));
    // Every certificate has a critical keyUsage.
    ASSERT_NE(list.find("2.5.29.15"), list.end());
    EXPECT_TRUE(list.find("2.5.29.15")->get_critical());
    CKeyUsage usage;
    usage.decode(ValueOf(list, "2.5.29.15"));
    EXPECT_EQ(Hex(usage.encode()), Hex(ValueOf(list, "2.5.29.15")));
  }
}

TEST_F(ExtensionFixturesTest, EndEntityRsaFullSet) {
  CExtensions list;
  list.decode(CertificateExtensions(ReadFixture("pki/ee-rsa.der")));
  // The order and the critical flags of the README.
  std::string order;
  for (CExtension const& ext : list) {
    order += std::string(ext.get_extnID()) + (ext.get_critical() ? "!" : "") + " ";
  }
  EXPECT_EQ(order,
            "2.5.29.19! 2.5.29.15! 2.5.29.37 2.5.29.17 2.5.29.14 2.5.29.35 2.5.29.31 "
            "1.3.6.1.5.5.7.1.1 2.5.29.32 ");
  EXPECT_EQ(Hex(ValueOf(list, "2.5.29.19")), "30 00");

  CKeyUsage usage;
  usage.decode(ValueOf(list, "2.5.29.15"));
  EXPECT_EQ(Hex(ValueOf(list, "2.5.29.15")), "03 02 05 E0");
  EXPECT_EQ(usage.get_flags(), (1u << CKeyUsage::digitalSignature) |
                                   (1u << CKeyUsage::nonRepudiation) |
                                   (1u << CKeyUsage::keyEncipherment));

  CCRLDistPointsSyntax points;
  points.decode(ValueOf(list, "2.5.29.31"));
  EXPECT_EQ(OnlyDistributionPointUri(points), "http://pki.korvex.example/crl/intermediate-ca.crl");
  EXPECT_EQ(points.front().get_reasons(), nullptr);
  EXPECT_EQ(points.front().get_cRLIssuer(), nullptr);
  EXPECT_EQ(Hex(points.encode()), Hex(ValueOf(list, "2.5.29.31")));

  CAuthorityInfoAccessSyntax access;
  access.decode(ValueOf(list, "1.3.6.1.5.5.7.1.1"));
  ASSERT_EQ(access.size(), 2u);
  EXPECT_STREQ(access.front().get_accessMethod(), kOidAdOcsp);
  EXPECT_EQ(Uri(access.front().get_accessLocation()), "http://ocsp.korvex.example/");
  ASSERT_NE(access.find(kOidAdCaIssuers), access.end());
  EXPECT_EQ(Uri(access.find(kOidAdCaIssuers)->get_accessLocation()),
            "http://pki.korvex.example/cert/intermediate-ca.der");
  EXPECT_EQ(Hex(access.encode()), Hex(ValueOf(list, "1.3.6.1.5.5.7.1.1")));

  CPolicyInformationList policies;
  policies.decode(ValueOf(list, "2.5.29.32"));
  ASSERT_EQ(policies.size(), 1u);
  CPolicyInformation const& policy = policies.front();
  EXPECT_STREQ(policy.get_policyIdentifier(), "1.3.6.1.4.1.99981.38.1");
  ASSERT_NE(policy.get_policyQualifiers(), nullptr);
  ASSERT_EQ(policy.get_policyQualifiers()->size(), 2u);
  CPolicyQualifierInfo const& cps = policy.get_policyQualifiers()->front();
  EXPECT_STREQ(cps.get_policyQualifierId(), kOidQtCps);
  // CPSuri: an IA5String, kept as its DER.
  EXPECT_EQ(
      Hex(cps.get_qualifier()),
      "16 1E " +
          Hex(CBlob(reinterpret_cast<unsigned char const*>("https://pki.korvex.example/cps"), 30)));
  CPolicyQualifierInfo const& notice = policy.get_policyQualifiers()->back();
  EXPECT_STREQ(notice.get_policyQualifierId(), kOidQtUnotice);
  EXPECT_EQ(notice.get_qualifier().pbData()[0], 0x30);  // UserNotice SEQUENCE
  EXPECT_EQ(Hex(policies.encode()), Hex(ValueOf(list, "2.5.29.32")));
}

TEST_F(ExtensionFixturesTest, CertificateAuthorities) {
  CExtensions root;
  root.decode(CertificateExtensions(ReadFixture("pki/root-ca.der")));
  CKeyUsage usage;
  usage.decode(ValueOf(root, "2.5.29.15"));
  EXPECT_EQ(usage.get_flags(), (1u << CKeyUsage::keyCertSign) | (1u << CKeyUsage::cRLSign));
  EXPECT_EQ(root.find("2.5.29.31"), root.end());

  CExtensions intermediate;
  intermediate.decode(CertificateExtensions(ReadFixture("pki/intermediate-ca.der")));
  usage.decode(ValueOf(intermediate, "2.5.29.15"));
  EXPECT_EQ(usage.get_flags(), (1u << CKeyUsage::digitalSignature) |
                                   (1u << CKeyUsage::keyCertSign) | (1u << CKeyUsage::cRLSign));
  CCRLDistPointsSyntax points;
  points.decode(ValueOf(intermediate, "2.5.29.31"));
  EXPECT_EQ(OnlyDistributionPointUri(points), "http://pki.korvex.example/crl/root-ca.crl");
  CAuthorityInfoAccessSyntax access;
  access.decode(ValueOf(intermediate, "1.3.6.1.5.5.7.1.1"));
  ASSERT_EQ(access.size(), 1u);
  EXPECT_STREQ(access.front().get_accessMethod(), kOidAdCaIssuers);
  EXPECT_EQ(Uri(access.front().get_accessLocation()), "http://pki.korvex.example/cert/root-ca.der");
  CPolicyInformationList policies;
  policies.decode(ValueOf(intermediate, "2.5.29.32"));
  ASSERT_EQ(policies.size(), 1u);
  EXPECT_STREQ(policies.front().get_policyIdentifier(), kOidAnyPolicy);
  EXPECT_EQ(policies.front().get_policyQualifiers(), nullptr);
  EXPECT_EQ(Hex(policies.encode()), "30 08 30 06 06 04 55 1D 20 00");
}

TEST_F(ExtensionFixturesTest, GostQualifiedCertificates) {
  CExtensions legal;
  legal.decode(CertificateExtensions(ReadFixture("asn1/gost2012-qualified-legal.der")));
  // privateKeyUsagePeriod [0] 20240101000000Z - [1] 20250331235959Z.
  CExtPrivateKeyUsagePeriod period;
  period.decode(ValueOf(legal, "2.5.29.16"));
  ASSERT_NE(period.get_notBefore(), nullptr);
  ASSERT_NE(period.get_notAfter(), nullptr);
  EXPECT_TRUE(*period.get_notBefore() == CDateTime(2024, 1, 1, 0, 0, 0, 0, 0));
  EXPECT_TRUE(*period.get_notAfter() == CDateTime(2025, 3, 31, 23, 59, 59, 0, 0));
  EXPECT_EQ(Hex(period.encode()), Hex(ValueOf(legal, "2.5.29.16")));
  CPolicyInformationList policies;
  policies.decode(ValueOf(legal, "2.5.29.32"));
  ASSERT_EQ(policies.size(), 2u);
  EXPECT_NE(policies.find("1.2.643.100.113.1"), policies.end());
  EXPECT_NE(policies.find("1.2.643.100.113.2"), policies.end());
  CCRLDistPointsSyntax points;
  points.decode(ValueOf(legal, "2.5.29.31"));
  EXPECT_EQ(OnlyDistributionPointUri(points), "http://gost.korvex.example/crl/gost-ca.crl");
  CKeyUsage usage;
  usage.decode(ValueOf(legal, "2.5.29.15"));
  EXPECT_EQ(usage.get_flags(), 0x1Fu & ~(1u << CKeyUsage::dataEncipherment));

  CExtensions ip;
  ip.decode(CertificateExtensions(ReadFixture("asn1/gost2012-qualified-ip.der")));
  EXPECT_EQ(ip.find("2.5.29.16"), ip.end());
  policies.decode(ValueOf(ip, "2.5.29.32"));
  ASSERT_EQ(policies.size(), 1u);
  EXPECT_STREQ(policies.front().get_policyIdentifier(), "1.2.643.100.113.1");
}

// The CRL entries of a CRL: serial (hex digits) -> reasonCode, -1 without one.
std::map<std::string, int> ReasonCodes(CBlob const& crl) {
  std::map<std::string, int> reasons;
  Element tbs = Root(crl).child(0);
  std::vector<Element> parts = tbs.children();
  // version, signature, issuer, thisUpdate, nextUpdate, revokedCertificates.
  if (parts.size() < 6 || parts[5].tag() != 0x30) return reasons;
  for (Element const& entry : parts[5].children()) {
    std::vector<Element> fields = entry.children();
    std::string serial = Hex(CBlob(fields[0].contents(), fields[0].length));
    int reason = -1;
    if (fields.size() > 2) {
      CExtensions extensions;
      extensions.decode(fields[2].der());
      EXPECT_EQ(Hex(extensions.encode()), Hex(fields[2].der()));
      auto it = extensions.find("2.5.29.21");
      if (it != extensions.end()) {
        CrlReason code;
        code.decode(it->get_extnValue());
        EXPECT_EQ(Hex(code.encode()), Hex(it->get_extnValue()));
        reason = static_cast<int>(code.get_reason());
      }
    }
    reasons[serial] = reason;
  }
  return reasons;
}

TEST_F(ExtensionFixturesTest, CrlReasonCodes) {
  std::map<std::string, int> base = ReasonCodes(ReadFixture("crl/intermediate-ca.crl"));
  EXPECT_EQ(base, (std::map<std::string, int>{{"10 04", CrlReason::keyCompromise},
                                              {"1F 01", CrlReason::cessationOfOperation},
                                              {"1F 02", CrlReason::certificateHold},
                                              {"1F 03", -1}}));
  std::map<std::string, int> delta = ReasonCodes(ReadFixture("crl/intermediate-ca-delta.crl"));
  EXPECT_EQ(delta, (std::map<std::string, int>{{"1F 02", CrlReason::removeFromCRL},
                                               {"1F 04", CrlReason::superseded}}));
  std::map<std::string, int> full = ReasonCodes(ReadFixture("crl/intermediate-ca-1000.crl"));
  EXPECT_EQ(full.size(), 1000u);
  // The fabricated entries cycle: none, unspecified, keyCompromise,
  // affiliationChanged, superseded, cessationOfOperation.
  EXPECT_EQ(full["10 00 00"], -1);
  EXPECT_EQ(full["10 00 01"], CrlReason::unspecified);
  EXPECT_EQ(full["10 00 02"], CrlReason::keyCompromise);
  EXPECT_EQ(full["10 00 03"], CrlReason::affiliationChanged);
  EXPECT_EQ(full["10 00 04"], CrlReason::superseded);
  EXPECT_EQ(full["10 00 05"], CrlReason::cessationOfOperation);
  EXPECT_EQ(full["10 00 06"], -1);
  EXPECT_TRUE(ReasonCodes(ReadFixture("crl/root-ca.crl")).empty());
}

TEST_F(ExtensionFixturesTest, CrlExtensions) {
  CBlob const crl = ReadFixture("crl/intermediate-ca.crl");
  Element crlExtensions = Root(crl).child(0).first(0xA0).child(0);
  CExtensions list;
  list.decode(crlExtensions.der());
  EXPECT_EQ(Hex(list.encode()), Hex(crlExtensions.der()));
  // freshestCRL has the syntax of cRLDistributionPoints.
  CCRLDistPointsSyntax freshest;
  freshest.decode(ValueOf(list, "2.5.29.46"));
  EXPECT_EQ(OnlyDistributionPointUri(freshest),
            "http://pki.korvex.example/crl/intermediate-ca-delta.crl");
  // issuingDistributionPoint [0] holds a DistributionPointName (an explicit
  // CHOICE tag around [0] fullName).
  CBlob const idp = ValueOf(list, "2.5.29.28");
  Element dpName = Root(idp).child(0).child(0);
  CDistributionPointName name;
  name.decode(dpName.der());
  EXPECT_EQ(name.get_type(), 1u);
  ASSERT_NE(name.get_fullName(), nullptr);
  EXPECT_EQ(Uri(name.get_fullName()->front()), "http://pki.korvex.example/crl/intermediate-ca.crl");
  EXPECT_EQ(Hex(name.encode()), Hex(dpName.der()));
  // The delta CRL's critical deltaCRLIndicator.
  CExtensions deltaList;
  deltaList.decode(
      Root(ReadFixture("crl/intermediate-ca-delta.crl")).child(0).first(0xA0).child(0).der());
  ASSERT_NE(deltaList.find("2.5.29.27"), deltaList.end());
  EXPECT_TRUE(deltaList.find("2.5.29.27")->get_critical());
  EXPECT_EQ(Hex(ValueOf(deltaList, "2.5.29.27")), "02 01 02");
}

}  // namespace
