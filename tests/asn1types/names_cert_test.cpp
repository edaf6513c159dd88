// Names of the test certificates (tests/data/pki): subjects and issuers,
// the many-attribute subject of ee-dn-attrs.der, and the GeneralNames of
// subjectAltName and authorityKeyIdentifier, decoded, re-encoded and
// written as text.
#include <gtest/gtest.h>
#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/Names.h>
#include <korvex/asn1types/NamesTraits.h>

#include <string>

#include "names_test_util.h"
#include "types_test_util.h"

using Korvex::CBlob;
using namespace Korvex::ASN1;
using namespace namestest;
using namespace typestest;

namespace {

class CertificateNamesTest : public typestest::HeapCheckedTest {};

TEST_F(CertificateNamesTest, SubjectsAndIssuersDecodeReencodeAndPrint) {
  struct Case {
    char const* file;
    wchar_t const* subject;
    wchar_t const* issuer;
  } const cases[] = {
      {"pki/root-ca.der", L"CN=Korvex Test Root CA,O=Korvex Test PKI,C=RU",
       L"CN=Korvex Test Root CA,O=Korvex Test PKI,C=RU"},
      {"pki/intermediate-ca.der",
       L"CN=Korvex Test Intermediate CA,OU=Certification Authorities,O=Korvex Test PKI,C=RU",
       L"CN=Korvex Test Root CA,O=Korvex Test PKI,C=RU"},
      {"pki/ee-rsa.der",
       L"E=signer@korvex.example,CN=Korvex Test RSA Signer,OU=Signers,O=Korvex Test PKI,C=RU",
       L"CN=Korvex Test Intermediate CA,OU=Certification Authorities,O=Korvex Test PKI,C=RU"},
      {"pki/ee-ec.der", L"CN=Korvex Test EC Signer,OU=Signers,O=Korvex Test PKI,C=RU",
       L"CN=Korvex Test Intermediate CA,OU=Certification Authorities,O=Korvex Test PKI,C=RU"},
      {"pki/ee-untrusted.der", L"CN=Korvex Untrusted Signer,O=Korvex Untrusted PKI,C=RU",
       L"CN=Korvex Untrusted Root CA,O=Korvex Untrusted PKI,C=RU"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.file);
    CertificateNames names = NamesOf(c.file);
    CName subject, issuer;
    subject.decode(names.subject);
    issuer.decode(names.issuer);
    EXPECT_EQ(subject.encode(), names.subject);
    EXPECT_EQ(issuer.encode(), names.issuer);
    EXPECT_EQ(std::wstring(subject.toString().c_str()), c.subject);
    EXPECT_EQ(std::wstring(issuer.toString().c_str()), c.issuer);
    // These names use the register's string types throughout, so the text
    // reads back to the same bytes in both modes.
    EXPECT_EQ(NameFromString(c.subject).encode(), names.subject);
    EXPECT_EQ(NameFromString(subject.toString(ntfExact).c_str()).encode(), names.subject);
  }
}

TEST_F(CertificateNamesTest, ManyAttributeSubject) {
  CertificateNames names = NamesOf("pki/ee-dn-attrs.der");
  CName subject;
  subject.decode(names.subject);
  ASSERT_EQ(subject.size(), 14u);
  EXPECT_EQ(subject.encode(), names.subject);

  struct Pair {
    char const* oid;
    unsigned char tag;
    wchar_t const* text;
  } const expected[] = {
      {"0.9.2342.19200300.100.1.25", 0x16, L"example"},
      {"0.9.2342.19200300.100.1.25", 0x16, L"korvex"},
      {"2.5.4.6", 0x13, L"RU"},
      {"2.5.4.8", 0x0C, L"Москва"},
      {"2.5.4.7", 0x13, L"Moscow"},
      {"2.5.4.9", 0x0C, L"ул. Тверская, д. 1"},
      {"2.5.4.10", 0x13, L"Korvex Test PKI"},
      {"2.5.4.11", 0x13, L"Quality Assurance"},
      {"2.5.4.12", 0x13, L"Test Engineer"},
      {"2.5.4.42", 0x0C, L"Иван"},  // the multi-valued RDN, DER order
      {"2.5.4.4", 0x0C, L"Иванов"},
      {"2.5.4.3", 0x0C, L"Иван Иванов"},
      {"2.5.4.5", 0x13, L"KX-0001"},
      {"0.9.2342.19200300.100.1.1", 0x13, L"ivanov"},
      {"1.2.840.113549.1.9.1", 0x16, L"ivanov@korvex.example"},
  };
  std::size_t i = 0;
  for (CRelativeDistinguishedName const& rdn : subject) {
    for (CAttributeTypeAndValue const& atav : rdn) {
      ASSERT_LT(i, sizeof expected / sizeof expected[0]);
      SCOPED_TRACE(expected[i].oid);
      EXPECT_STREQ(atav.get_type(), expected[i].oid);
      EXPECT_EQ(atav.get_value().pbData()[0], expected[i].tag);
      EXPECT_EQ(std::wstring(atav.get_text().c_str()), expected[i].text);
      ++i;
    }
  }
  EXPECT_EQ(i, 15u);
  auto rdn10 = std::next(subject.begin(), 9);
  EXPECT_EQ(rdn10->size(), 2u);

  // userId is not registered: OID and hex. The street's comma is escaped.
  std::wstring const readable =
      L"E=ivanov@korvex.example,0.9.2342.19200300.100.1.1=#13066976616E6F76,"
      L"SERIALNUMBER=KX-0001,CN=Иван Иванов,GN=Иван+SN=Иванов,T=Test Engineer,"
      L"OU=Quality Assurance,O=Korvex Test PKI,STREET=ул. Тверская\\, д. 1,L=Moscow,"
      L"ST=Москва,C=RU,DC=korvex,DC=example";
  EXPECT_EQ(std::wstring(subject.toString().c_str()), readable);

  // Exact text: the PrintableString values of UTF8String attributes are hex,
  // and the text gives back the certificate's bytes.
  std::wstring exact = subject.toString(ntfExact).c_str();
  EXPECT_NE(exact.find(L"L=#13064D6F73636F77"), std::wstring::npos) << exact;
  EXPECT_NE(exact.find(L"ST=Москва"), std::wstring::npos) << exact;
  EXPECT_EQ(NameFromString(exact.c_str()).encode(), names.subject);

  // Readable text reads back to the same text (string types follow the
  // register, so the bytes may differ).
  CName reread = NameFromString(readable.c_str());
  EXPECT_EQ(std::wstring(reread.toString().c_str()), readable);
}

TEST_F(CertificateNamesTest, SubjectAltNameOfEeRsa) {
  CertificateNames names = NamesOf("pki/ee-rsa.der");
  ASSERT_GT(names.subjectAltName.cbData(), 0u);
  CGeneralNames san;
  san.decode(names.subjectAltName);
  ASSERT_EQ(san.size(), 9u);
  EXPECT_EQ(san.encode(), names.subjectAltName);

  wchar_t const* const expected[] = {
      L"DNS:signer.korvex.example",
      L"DNS:*.signer.korvex.example",
      L"email:signer@korvex.example",
      L"URI:https://korvex.example/people/signer",
      L"IP:192.0.2.10",
      L"IP:2001:db8::10",
      L"DirName:CN=Signer Directory Entry,O=Korvex Test PKI,C=RU",
      L"RID:1.3.6.1.4.1.99981.38.99",
  };
  std::size_t i = 0;
  for (CGeneralName const& gn : san) {
    SCOPED_TRACE(i);
    if (i < 8) {
      EXPECT_EQ(std::wstring(gn.toString().c_str()), expected[i]);
    }
    ++i;
  }
  EXPECT_EQ(std::wstring(san.back().toString().c_str()).substr(0, 11), L"othername:#");
  auto it = san.begin();
  EXPECT_STREQ(it->get_dNSName(), L"signer.korvex.example");
  EXPECT_EQ(it->get_type(), CGeneralName::kDNSName);
  std::advance(it, 2);
  EXPECT_STREQ(it->get_rfc822Name(), L"signer@korvex.example");
  EXPECT_EQ(it->get_dNSName(), nullptr);
  std::advance(it, 2);
  EXPECT_EQ(Hex(*it->get_iPAddress()), "C0 00 02 0A");
  std::advance(it, 2);
  CName dir;
  ASSERT_TRUE(it->get_directoryName(dir));
  EXPECT_EQ(std::wstring(dir.toString().c_str()),
            L"CN=Signer Directory Entry,O=Korvex Test PKI,C=RU");
  std::advance(it, 1);
  EXPECT_STREQ(it->get_registeredID(), L"1.3.6.1.4.1.99981.38.99");
  std::advance(it, 1);
  ASSERT_NE(it->get_otherName(), nullptr);
  // The AnotherName SEQUENCE: the OID, then [0] EXPLICIT UTF8String.
  std::string hex = Hex(*it->get_otherName());
  EXPECT_EQ(hex.substr(0, 3 * 14), "30 25 06 0A 2B 06 01 04 01 82 37 14 02 03 ");
  EXPECT_EQ(hex.substr(3 * 14, 3 * 4), "A0 17 0C 15 ");
}

TEST_F(CertificateNamesTest, AuthorityCertIssuerOfIntermediate) {
  CertificateNames names = NamesOf("pki/intermediate-ca.der");
  ASSERT_GT(names.authorityCertIssuer.cbData(), 0u);
  // [1] IMPLICIT GeneralNames: the same contents under the SEQUENCE tag.
  CBlob der = names.authorityCertIssuer;
  der.pbData()[0] = 0x30;
  CGeneralNames issuer;
  issuer.decode(der);
  ASSERT_EQ(issuer.size(), 1u);
  EXPECT_EQ(std::wstring(issuer.front().toString().c_str()),
            L"DirName:CN=Korvex Test Root CA,O=Korvex Test PKI,C=RU");
  EXPECT_EQ(issuer.encode(), der);
  // The directoryName holds the root's subject, byte for byte.
  EXPECT_EQ(*issuer.front().get_directoryName(), NamesOf("pki/root-ca.der").subject);
}

TEST_F(CertificateNamesTest, NameTraitsOverTheGeneratedCertificate) {
  // ASN1T_Name_traits as whole-structure traits: the subject record of a
  // certificate decoded by the catalogue gives the subject's DER.
  CBlob cert = ReadData("pki/ee-dn-attrs.der");
  ASN1BERDecodeBuffer buffer(cert.pbData(), static_cast<int>(cert.cbData()));
  asn1data::ASN1T_Certificate record;
  asn1data::ASN1C_Certificate control(buffer, record);
  ASSERT_EQ(control.DecodeFrom(buffer), 0);
  CBlob subject;
  ASN1T_Name_traits::get(record.tbsCertificate.subject, subject);
  EXPECT_EQ(subject, NamesOf("pki/ee-dn-attrs.der").subject);
  CName name;
  ASN1T_Name_traits::get(record.tbsCertificate.subject, name);
  EXPECT_EQ(name.size(), 14u);
}

}  // namespace
