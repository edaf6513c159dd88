// The attribute classes over the signed attributes of the fixtures' CMS
// signatures (tests/data/cms) and of the time-stamp token (tests/data/tsp):
// content type, message digest, signing time, signingCertificateV2 and the
// SHA-1 signature's signingCertificate v1, the certificate IDs checked
// against the certificates they name. Every set encodes back to the bytes
// that were signed.
#include <gtest/gtest.h>
#include <korvex/asn1types/Attribute.h>
#include <korvex/platform/capi/wincrypt.h>

#include <string>
#include <vector>

#include "der_walk.h"
#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::CDateTime;
using namespace Korvex::ASN1;
using namespace typestest;

namespace {

char const kSha256OfContent[] =
    "F6 73 90 5F CE B6 AE F2 91 BF 2D 8F 19 A8 84 E7 3B 49 62 F7 68 F9 24 FC 59 08 E3 EC 72 22 70 "
    "65";
char const kSha1OfContent[] = "22 5F A1 4F 54 6D 12 7E 73 57 8C DE 87 3E F2 77 45 06 FE 9A";

// The SignerInfos of a ContentInfo holding SignedData: the last field of
// SignedData (RFC 5652 5.1).
std::vector<Element> SignerInfos(CBlob const& contentInfo) {
  Element signedData = Root(contentInfo).child(1).child(0);
  return signedData.children().back().children();
}

// The signedAttrs of a SignerInfo, [0] IMPLICIT read as the SET OF it is
// (RFC 5652 5.4: the DER that is signed has tag 31).
CBlob SignedAttrs(Element const& signerInfo) { return signerInfo.first(0xA0).der(0x31); }

// The only value of attribute oid.
CBlob OnlyValue(CAttributes const& attrs, char const* oid) {
  auto it = attrs.find(oid);
  if (it == attrs.end() || it->size() != 1) throw std::runtime_error(std::string("no ") + oid);
  return it->begin()->get_value();
}

// The subject Name DER of a certificate.
CBlob SubjectOf(char const* file) { return Root(ReadFixture(file)).child(0).child(5).der(); }

// The digest of a fixture file with the platform's hash (CALG_SHA1,
// CALG_SHA_256): what a certHash of that certificate must hold.
std::string DigestOf(ALG_ID algorithm, char const* file) {
  CBlob const bytes = ReadFixture(file);
  HCRYPTPROV prov = 0;
  HCRYPTHASH hash = 0;
  CBlob out;
  if (!CryptAcquireContextA(&prov, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT)) {
    ADD_FAILURE() << "no provider";
    return "";
  }
  if (CryptCreateHash(prov, algorithm, 0, 0, &hash) &&
      CryptHashData(hash, bytes.pbData(), static_cast<DWORD>(bytes.cbData()), 0)) {
    DWORD size = 64;
    std::vector<BYTE> value(size);
    if (CryptGetHashParam(hash, HP_HASHVAL, value.data(), &size, 0)) {
      out = CBlob(value.data(), size);
    }
  }
  if (hash) CryptDestroyHash(hash);
  CryptReleaseContext(prov, 0);
  EXPECT_NE(0u, out.cbData());
  return Hex(out);
}

// Checks an IssuerSerial against the intermediate CA's name and a serial.
void ExpectIssuerSerial(CIssuerSerial const* issuerSerial, char const* serialHex) {
  ASSERT_NE(issuerSerial, nullptr);
  ASSERT_EQ(issuerSerial->get_issuer().size(), 1u);
  CBlob const* directory = issuerSerial->get_issuer().front().get_directoryName();
  ASSERT_NE(directory, nullptr);
  EXPECT_EQ(Hex(*directory), Hex(SubjectOf("pki/intermediate-ca.der")));
  EXPECT_EQ(Hex(issuerSerial->get_serialNumber().get_value()), serialHex);
}

class AttributeFixturesTest : public typestest::HeapCheckedTest {};

TEST_F(AttributeFixturesTest, CadesSignedAttributes) {
  struct Case {
    char const* file;
    size_t signer;
    char const* serial;
    char const* certificate;
  } const cases[] = {
      {"cms/signed-attached.der", 0, "00 C0 FF EE", "pki/ee-rsa.der"},
      {"cms/signed-detached.der", 0, "00 C0 FF EE", "pki/ee-rsa.der"},
      {"cms/signed-nocerts.der", 0, "00 C0 FF EE", "pki/ee-rsa.der"},
      // The SET OF SignerInfo is in DER order: the EC signer's comes first.
      {"cms/signed-two-signers.der", 0, "10 02", "pki/ee-ec.der"},
      {"cms/signed-two-signers.der", 1, "00 C0 FF EE", "pki/ee-rsa.der"},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(std::string(c.file) + " signer " + std::to_string(c.signer));
    CBlob const file = ReadFixture(c.file);
    CBlob const der = SignedAttrs(SignerInfos(file).at(c.signer));
    CAttributes attrs;
    attrs.decode(der);
    // contentType, signingTime, messageDigest, smimeCapabilities,
    // signingCertificateV2; the signed bytes come back exactly.
    EXPECT_EQ(attrs.size(), 5u);
    EXPECT_EQ(Hex(attrs.encode()), Hex(der));

    CAttrContentType contentType(OnlyValue(attrs, kOidContentType));
    EXPECT_STREQ(contentType.get_contentType(), "1.2.840.113549.1.7.1");
    EXPECT_EQ(Hex(contentType.encode()), Hex(OnlyValue(attrs, kOidContentType)));

    CAttrMessageDigest digest;
    digest.decode(OnlyValue(attrs, kOidMessageDigest));
    EXPECT_EQ(Hex(digest.get_messageDigest()), kSha256OfContent);

    // The signing time of the run that made the fixtures: UTCTime, after the
    // certificates' notBefore.
    CAttrSigningTime signingTime(OnlyValue(attrs, kOidSigningTime));
    EXPECT_EQ(signingTime.get_signingTime().get_type(), 1u);
    ASSERT_NE(signingTime.get_signingTime().get_time(), nullptr);
    EXPECT_GE(signingTime.get_signingTime().get_time()->year(), 2024u);
    EXPECT_EQ(Hex(signingTime.encode()), Hex(OnlyValue(attrs, kOidSigningTime)));

    CBlob const v2 = OnlyValue(attrs, kOidSigningCertificateV2);
    CAttrSigningCertificateV2 signingCertificate(v2);
    EXPECT_EQ(signingCertificate.get_policies(), nullptr);
    ASSERT_EQ(signingCertificate.get_certs().size(), 1u);
    CESSCertIDv2 const& id = signingCertificate.get_certs().front();
    // SHA-256 is the DEFAULT and was omitted.
    EXPECT_STREQ(id.get_hashAlgorithm().get_algorithm(), "2.16.840.1.101.3.4.2.1");
    EXPECT_EQ(id.get_certHash().cbData(), 32u);
    // The hash as the walker reads it: SEQUENCE { SEQUENCE OF { SEQUENCE {
    // OCTET STRING ... } } }.
    Element hash = Root(v2).child(0).child(0).child(0);
    EXPECT_EQ(Hex(id.get_certHash()), Hex(CBlob(hash.contents(), hash.length)));
    // ... and it is the SHA-256 of the signer's certificate (RFC 5035 4).
    EXPECT_EQ(Hex(id.get_certHash()), DigestOf(CALG_SHA_256, c.certificate));
    ExpectIssuerSerial(id.get_issuerSerial(), c.serial);
    EXPECT_EQ(Hex(id.encode()), Hex(Root(v2).child(0).child(0).der()));
    EXPECT_EQ(Hex(signingCertificate.encode()), Hex(v2));
    EXPECT_EQ(Hex(signingCertificate.get_value()), Hex(v2));
  }
}

TEST_F(AttributeFixturesTest, Sha1SignatureSigningCertificateV1) {
  CBlob const der = SignedAttrs(SignerInfos(ReadFixture("cms/signed-sha1-cades.der")).at(0));
  CAttributes attrs;
  attrs.decode(der);
  EXPECT_EQ(Hex(attrs.encode()), Hex(der));
  EXPECT_EQ(attrs.find(kOidSigningCertificateV2), attrs.end());
  CAttrMessageDigest digest(CBlob{});
  digest.decode(OnlyValue(attrs, kOidMessageDigest));
  EXPECT_EQ(Hex(digest.get_messageDigest()), kSha1OfContent);

  CBlob const v1 = OnlyValue(attrs, kOidSigningCertificate);
  CAttrSigningCertificate signingCertificate(v1);
  ASSERT_EQ(signingCertificate.get_certs().size(), 1u);
  CESSCertID const& id = signingCertificate.get_certs().front();
  EXPECT_EQ(Hex(id.get_certHash()), DigestOf(CALG_SHA1, "pki/ee-rsa.der"));  // RFC 2634 5.4.1
  ExpectIssuerSerial(id.get_issuerSerial(), "00 C0 FF EE");
  EXPECT_EQ(Hex(signingCertificate.encode()), Hex(v1));

  // The same value through the attribute container.
  CAttributes rebuilt;
  rebuilt.add(CAttrContentType(OnlyValue(attrs, kOidContentType)));
  rebuilt.add(CAttrSigningTime(OnlyValue(attrs, kOidSigningTime)));
  rebuilt.add(digest);
  rebuilt.push_back(*attrs.find("1.2.840.113549.1.9.15"));
  rebuilt.add(signingCertificate);
  EXPECT_EQ(Hex(rebuilt.encode()), Hex(der));
}

TEST_F(AttributeFixturesTest, TimeStampTokenTwoCertIds) {
  // The TSA's SignerInfo: signingCertificateV2 with the TSA's ESSCertIDv2
  // (hash only) then the intermediate's (hash and issuerSerial: root, 02).
  CBlob const der = SignedAttrs(SignerInfos(ReadFixture("tsp/token.der")).at(0));
  CAttributes attrs;
  attrs.decode(der);
  EXPECT_EQ(Hex(attrs.encode()), Hex(der));
  CAttrContentType contentType(OnlyValue(attrs, kOidContentType));
  EXPECT_STREQ(contentType.get_contentType(), "1.2.840.113549.1.9.16.1.4");  // id-ct-TSTInfo
  CAttrSigningCertificateV2 signingCertificate(OnlyValue(attrs, kOidSigningCertificateV2));
  ASSERT_EQ(signingCertificate.get_certs().size(), 2u);
  EXPECT_EQ(Hex(signingCertificate.get_certs().front().get_certHash()),
            DigestOf(CALG_SHA_256, "pki/tsa.der"));
  EXPECT_EQ(Hex(signingCertificate.get_certs().back().get_certHash()),
            DigestOf(CALG_SHA_256, "pki/intermediate-ca.der"));
  EXPECT_EQ(signingCertificate.get_certs().front().get_issuerSerial(), nullptr);
  CIssuerSerial const* second = signingCertificate.get_certs().back().get_issuerSerial();
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(Hex(*second->get_issuer().front().get_directoryName()),
            Hex(SubjectOf("pki/root-ca.der")));
  EXPECT_EQ(Hex(second->get_serialNumber().get_value()), "02");
  EXPECT_EQ(Hex(signingCertificate.encode()), Hex(OnlyValue(attrs, kOidSigningCertificateV2)));
}

}  // namespace
