// The ESS certificate IDs inside real signatures made by `openssl cms -cades`
// and `openssl ts` (tests/data/README.md, sections 4 and 5): decoded, checked
// against the certificates they name, and written again byte for byte.
#include <gtest/gtest.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/CertIdTraits.h>
#include <korvex/platform/capi/wincrypt.h>

#include <algorithm>
#include <string>
#include <vector>

#include "signing_certificate_v2_traits.h"
#include "types_test_util.h"

using Korvex::CBlob;
using Korvex::ASN1::CBigInteger;
using Korvex::ASN1::CESSCertID;
using Korvex::ASN1::CESSCertIDList;
using Korvex::ASN1::CESSCertIDv2;
using Korvex::ASN1::CESSCertIDv2List;
using typestest::Blob;
using typestest::Hex;

namespace {

CBlob ReadData(char const* relative) {
  CBlob blob;
  blob.readFromFile((std::string(KORVEX_TEST_DATA_DIR) + "/" + relative).c_str());
  return blob;
}

// One DER element inside a blob: its offset, header length and content length.
struct Element {
  unsigned long offset = 0;
  unsigned long header = 0;
  unsigned long length = 0;
  unsigned long end() const { return offset + header + length; }
};

// The element at `offset` (definite lengths only; fails the test otherwise).
Element ElementAt(CBlob const& der, unsigned long offset) {
  Element e;
  e.offset = offset;
  unsigned char const* p = der.pbData();
  unsigned long n = der.cbData();
  EXPECT_LT(offset + 1, n);
  if (offset + 1 >= n) return e;
  unsigned long i = offset + 1;
  unsigned char first = p[i++];
  if (first < 0x80) {
    e.length = first;
  } else {
    unsigned count = first & 0x7F;
    EXPECT_TRUE(count >= 1 && count <= 4);
    for (unsigned k = 0; k < count && i < n; ++k) e.length = (e.length << 8) | p[i++];
  }
  e.header = i - offset;
  EXPECT_LE(e.end(), n);
  return e;
}

CBlob Bytes(CBlob const& der, Element const& e) {
  return CBlob(der.pbData() + e.offset, e.header + e.length);
}

// The DER of the single value of the signed attribute `oid` (given as the DER
// of the OBJECT IDENTIFIER): the attribute is the SEQUENCE { type, SET { value } }
// that follows the OID's bytes.
CBlob AttributeValue(CBlob const& message, CBlob const& oid) {
  unsigned char const* begin = message.pbData();
  unsigned char const* end = begin + message.cbData();
  unsigned char const* hit = std::search(begin, end, oid.pbData(), oid.pbData() + oid.cbData());
  EXPECT_NE(end, hit) << "attribute not found";
  if (hit == end) return CBlob();
  Element set = ElementAt(message, static_cast<unsigned long>(hit - begin) + oid.cbData());
  EXPECT_EQ(0x31, message.pbData()[set.offset]);
  Element value = ElementAt(message, set.offset + set.header);
  EXPECT_EQ(set.end(), value.end()) << "one value expected";
  return Bytes(message, value);
}

// The issuer Name and serial-number contents of a DER certificate
// (Certificate ::= SEQUENCE { TBSCertificate { [0] version, serialNumber,
// signature, issuer, ... } }).
void IssuerAndSerial(CBlob const& certificate, CBlob& issuer, CBlob& serial) {
  Element cert = ElementAt(certificate, 0);
  Element tbs = ElementAt(certificate, cert.header);
  Element version = ElementAt(certificate, tbs.offset + tbs.header);
  ASSERT_EQ(0xA0, certificate.pbData()[version.offset]);
  Element serialNumber = ElementAt(certificate, version.end());
  Element signature = ElementAt(certificate, serialNumber.end());
  Element name = ElementAt(certificate, signature.end());
  issuer = Bytes(certificate, name);
  serial = CBlob(certificate.pbData() + serialNumber.offset + serialNumber.header,
                 serialNumber.length);
}

// The digest of bytes with the platform's hash (CALG_SHA1, CALG_SHA_256).
CBlob Digest(ALG_ID algorithm, CBlob const& bytes) {
  HCRYPTPROV prov = 0;
  HCRYPTHASH hash = 0;
  CBlob out;
  if (!CryptAcquireContextA(&prov, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT)) {
    ADD_FAILURE() << "no provider";
    return out;
  }
  if (CryptCreateHash(prov, algorithm, 0, 0, &hash) &&
      CryptHashData(hash, bytes.pbData(), static_cast<DWORD>(bytes.cbData()), 0)) {
    DWORD size = 64;
    std::vector<BYTE> value(size);
    if (CryptGetHashParam(hash, HP_HASHVAL, value.data(), &size, 0)) out = CBlob(value.data(), size);
  }
  if (hash) CryptDestroyHash(hash);
  CryptReleaseContext(prov, 0);
  EXPECT_NE(0u, out.cbData());
  return out;
}

// The issuerSerial of id names `certificate`: its issuer as the one
// directoryName, its serial number.
template <class Id>
void ExpectIssuerSerialNames(Id const& id, CBlob const& certificate) {
  CBlob issuer, serial;
  IssuerAndSerial(certificate, issuer, serial);
  ASSERT_NE(nullptr, id.get_issuerSerial());
  auto const& names = id.get_issuerSerial()->get_issuer();
  ASSERT_EQ(1u, names.size());
  ASSERT_NE(nullptr, names.front().get_directoryName());
  EXPECT_EQ(Hex(issuer), Hex(*names.front().get_directoryName()));
  EXPECT_TRUE(id.get_issuerSerial()->get_serialNumber() ==
              CBigInteger(serial.pbData(), serial.cbData()));
}

// id-aa-signingCertificateV2 (1.2.840.113549.1.9.16.2.47) and
// id-aa-signingCertificate (1.2.840.113549.1.9.16.2.12).
constexpr char kSigningCertificateV2Oid[] = "06 0B 2A 86 48 86 F7 0D 01 09 10 02 2F";
constexpr char kSigningCertificateOid[] = "06 0B 2A 86 48 86 F7 0D 01 09 10 02 0C";

TEST(SigningCertificateFixtureTest, CmsSignerESSCertIDv2) {
  CBlob signature = ReadData("cms/signed-attached.der");
  CBlob value = AttributeValue(signature, Blob(kSigningCertificateV2Oid));
  // SigningCertificateV2 ::= SEQUENCE { certs SEQUENCE OF ESSCertIDv2, ... }
  Element outer = ElementAt(value, 0);
  Element certs = ElementAt(value, outer.header);
  Element first = ElementAt(value, certs.offset + certs.header);
  EXPECT_EQ(certs.end(), first.end()) << "one ESSCertIDv2";
  CBlob firstDer = Bytes(value, first);

  CESSCertIDv2 id;
  id.decode(firstDer);
  CBlob signer = ReadData("pki/ee-rsa.der");
  EXPECT_STREQ("2.16.840.1.101.3.4.2.1", id.get_hashAlgorithm().get_algorithm());
  EXPECT_EQ(0u, id.get_hashAlgorithm().get_parameters().cbData());
  EXPECT_EQ(Hex(Digest(CALG_SHA_256, signer)), Hex(id.get_certHash()));
  ExpectIssuerSerialNames(id, signer);
  EXPECT_EQ("00 C0 FF EE", Hex(id.get_issuerSerial()->get_serialNumber().get_value()));
  EXPECT_EQ(Hex(firstDer), Hex(id.encode()));

  // The whole attribute value through the list traits.
  CESSCertIDv2List list;
  Korvex::ASN1::asn1Decode<pkitest::SigningCertificateV2Certs_traits>(value, list);
  ASSERT_EQ(1u, list.size());
  EXPECT_TRUE(list.front() == id);
  EXPECT_EQ(Hex(value), Hex(Korvex::ASN1::asn1Encode<pkitest::SigningCertificateV2Certs_traits>(list)));
}

TEST(SigningCertificateFixtureTest, CmsSignerESSCertIDv1) {
  CBlob signature = ReadData("cms/signed-sha1-cades.der");
  CBlob value = AttributeValue(signature, Blob(kSigningCertificateOid));
  Element outer = ElementAt(value, 0);
  Element certs = ElementAt(value, outer.header);
  Element first = ElementAt(value, certs.offset + certs.header);
  CBlob firstDer = Bytes(value, first);

  CESSCertID id;
  id.decode(firstDer);
  CBlob signer = ReadData("pki/ee-rsa.der");
  EXPECT_EQ(Hex(Digest(CALG_SHA1, signer)), Hex(id.get_certHash()));
  ExpectIssuerSerialNames(id, signer);
  EXPECT_EQ(Hex(firstDer), Hex(id.encode()));

  // SEQUENCE OF ESSCertID through its list traits.
  CESSCertIDList list;
  CBlob certsDer = Bytes(value, certs);
  Korvex::ASN1::asn1Decode<Korvex::ASN1::ASN1T__SeqOfESSCertID_traits>(certsDer, list);
  ASSERT_EQ(1u, list.size());
  EXPECT_TRUE(list.front() == id);
  EXPECT_EQ(Hex(certsDer),
            Hex(Korvex::ASN1::asn1Encode<Korvex::ASN1::ASN1T__SeqOfESSCertID_traits>(list)));
}

TEST(SigningCertificateFixtureTest, TimeStampTokenTwoESSCertIDv2) {
  CBlob token = ReadData("tsp/token.der");
  CBlob value = AttributeValue(token, Blob(kSigningCertificateV2Oid));
  CESSCertIDv2List list;
  Korvex::ASN1::asn1Decode<pkitest::SigningCertificateV2Certs_traits>(value, list);
  ASSERT_EQ(2u, list.size());

  // The TSA's: certHash only. The intermediate's: certHash and issuerSerial
  // naming the root, serial 02. SHA-256 is the DEFAULT and was left out.
  CESSCertIDv2 const& tsa = list.front();
  CESSCertIDv2 const& intermediate = list.back();
  EXPECT_STREQ("2.16.840.1.101.3.4.2.1", tsa.get_hashAlgorithm().get_algorithm());
  EXPECT_EQ(Hex(Digest(CALG_SHA_256, ReadData("pki/tsa.der"))), Hex(tsa.get_certHash()));
  EXPECT_EQ(nullptr, tsa.get_issuerSerial());
  CBlob intermediateCert = ReadData("pki/intermediate-ca.der");
  EXPECT_EQ(Hex(Digest(CALG_SHA_256, intermediateCert)), Hex(intermediate.get_certHash()));
  ExpectIssuerSerialNames(intermediate, intermediateCert);
  EXPECT_TRUE(intermediate.get_issuerSerial()->get_serialNumber() == CBigInteger(2ul));

  EXPECT_EQ(Hex(value), Hex(Korvex::ASN1::asn1Encode<pkitest::SigningCertificateV2Certs_traits>(list)));
}

}  // namespace
