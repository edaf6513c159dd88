// Decoding CMS messages: parameters of SignedData, attributes in the
// Windows structures with pointers into the caller's buffer, and the errors
// of bad messages, handles and parameters.
#include <cstring>
#include <algorithm>
#include <map>
#include <set>
#include <memory>

#include "../common/der_edit.h"
#include "capi_test_util.h"

namespace {

using capi_test::Hex;
using capi_test::LastError;
using capi_test::ReadData;
using capi_test::Unhex;

const char kContentTypeOid[] = "1.2.840.113549.1.9.3";
const char kMessageDigestOid[] = "1.2.840.113549.1.9.4";
const char kSigningTimeOid[] = "1.2.840.113549.1.9.5";
const char kSmimeCapabilitiesOid[] = "1.2.840.113549.1.9.15";
const char kSigningCertificateV2Oid[] = "1.2.840.113549.1.9.16.2.47";
const char kTimeStampTokenOid[] = "1.2.840.113549.1.9.16.2.14";
// SHA-256 of cms/content.txt.
const char kContentDigest[] = "f673905fceb6aef291bf2d8f19a884e73b4962f768f924fc5908e3ec72227065";

// WithTimeStamp adds the unsigned attribute id-aa-signatureTimeStampToken
// (RFC 5126 6.1.1) holding `token` to the first signer of a SignedData:
// ContentInfo [0] SignedData, signerInfos (last), first SignerInfo.
std::vector<BYTE> WithTimeStamp(const std::vector<BYTE>& message, const std::vector<BYTE>& token) {
  using korvextest::Concat;
  using korvextest::Encode;
  const std::vector<BYTE> oid = Encode(0x06, Unhex("2a864886f70d010910020e"));
  const std::vector<BYTE> attribute = Encode(0x30, Concat({oid, Encode(0x31, token)}));
  return korvextest::AppendAt(message, {1, 0, -1, 0}, Encode(0xA1, attribute));
}

// ---------------------------------------------------------------- helpers

struct MsgCloser {
  void operator()(void* msg) const { CryptMsgClose(msg); }
};
using Msg = std::unique_ptr<void, MsgCloser>;

Msg Decode(const std::vector<BYTE>& bytes, DWORD type = 0, DWORD flags = 0) {
  Msg msg(CryptMsgOpenToDecode(X509_ASN_ENCODING | PKCS_7_ASN_ENCODING, flags, type, 0, nullptr,
                               nullptr));
  if (!msg) return msg;
  if (!CryptMsgUpdate(msg.get(), bytes.data(), static_cast<DWORD>(bytes.size()), TRUE)) {
    return Msg();
  }
  return msg;
}

DWORD Number(HCRYPTMSG msg, DWORD param) {
  DWORD value = 0xFFFFFFFF, size = sizeof value;
  EXPECT_TRUE(CryptMsgGetParam(msg, param, 0, &value, &size));
  EXPECT_EQ(4u, size);
  return value;
}

// Param reads a parameter into a buffer of exactly the size asked for.
std::vector<BYTE> Param(HCRYPTMSG msg, DWORD param, DWORD index) {
  DWORD size = 0;
  if (!CryptMsgGetParam(msg, param, index, nullptr, &size)) return {};
  std::vector<BYTE> buffer(size);
  EXPECT_TRUE(CryptMsgGetParam(msg, param, index, buffer.data(), &size));
  EXPECT_EQ(buffer.size(), size);
  return buffer;
}

// Inside checks that a pointer of a returned structure points into it.
bool Inside(const std::vector<BYTE>& block, const void* p, size_t size) {
  const BYTE* b = static_cast<const BYTE*>(p);
  return b >= block.data() && b + size <= block.data() + block.size();
}

std::map<std::string, std::vector<std::string>> Attributes(const std::vector<BYTE>& block) {
  std::map<std::string, std::vector<std::string>> out;
  const auto* attrs = reinterpret_cast<const CRYPT_ATTRIBUTES*>(block.data());
  EXPECT_TRUE(Inside(block, attrs->rgAttr, attrs->cAttr * sizeof(CRYPT_ATTRIBUTE)));
  for (DWORD i = 0; i < attrs->cAttr; ++i) {
    const CRYPT_ATTRIBUTE& a = attrs->rgAttr[i];
    EXPECT_TRUE(Inside(block, a.pszObjId, std::strlen(a.pszObjId) + 1));
    EXPECT_TRUE(Inside(block, a.rgValue, a.cValue * sizeof(CRYPT_ATTR_BLOB)));
    for (DWORD j = 0; j < a.cValue; ++j) {
      EXPECT_TRUE(Inside(block, a.rgValue[j].pbData, a.rgValue[j].cbData));
      out[a.pszObjId].push_back(Hex(a.rgValue[j].pbData, a.rgValue[j].cbData));
    }
  }
  return out;
}

std::string Sha256(const std::vector<BYTE>& data) {
  HCRYPTPROV prov = 0;
  HCRYPTHASH hash = 0;
  BYTE value[32];
  DWORD size = sizeof value;
  bool ok = CryptAcquireContextA(&prov, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT) &&
            CryptCreateHash(prov, CALG_SHA_256, 0, 0, &hash) &&
            CryptHashData(hash, data.data(), static_cast<DWORD>(data.size()), 0) &&
            CryptGetHashParam(hash, HP_HASHVAL, value, &size, 0);
  CryptDestroyHash(hash);
  CryptReleaseContext(prov, 0);
  return ok ? Hex(value, size) : "";
}

std::vector<BYTE> Content() { return ReadData("cms/content.txt"); }

// ---------------------------------------------------------------- tests

TEST(CapiMsg, SignedDataParameters) {
  std::vector<BYTE> message = ReadData("cms/signed-attached.der");
  ASSERT_FALSE(message.empty());
  Msg msg = Decode(message);
  ASSERT_TRUE(msg);
  EXPECT_EQ(CMSG_SIGNED, Number(msg.get(), CMSG_TYPE_PARAM));
  EXPECT_EQ(1u, Number(msg.get(), CMSG_SIGNER_COUNT_PARAM));
  EXPECT_EQ(2u, Number(msg.get(), CMSG_CERT_COUNT_PARAM));
  EXPECT_EQ(0u, Number(msg.get(), CMSG_CRL_COUNT_PARAM));
  EXPECT_EQ(Content(), Param(msg.get(), CMSG_CONTENT_PARAM, 0));
  std::vector<BYTE> type = Param(msg.get(), CMSG_INNER_CONTENT_TYPE_PARAM, 0);
  EXPECT_STREQ("1.2.840.113549.1.7.1", reinterpret_cast<const char*>(type.data()));
  // The certificates, in the order of the message: intermediate, signer.
  EXPECT_EQ(ReadData("pki/intermediate-ca.der"), Param(msg.get(), CMSG_CERT_PARAM, 0));
  EXPECT_EQ(ReadData("pki/ee-rsa.der"), Param(msg.get(), CMSG_CERT_PARAM, 1));

  std::vector<BYTE> hashAlg = Param(msg.get(), CMSG_SIGNER_HASH_ALGORITHM_PARAM, 0);
  const auto* alg = reinterpret_cast<const CRYPT_ALGORITHM_IDENTIFIER*>(hashAlg.data());
  EXPECT_STREQ("2.16.840.1.101.3.4.2.1", alg->pszObjId);
  EXPECT_TRUE(Inside(hashAlg, alg->pszObjId, 23));

  std::vector<BYTE> certInfo = Param(msg.get(), CMSG_SIGNER_CERT_INFO_PARAM, 0);
  const auto* info = reinterpret_cast<const CERT_INFO*>(certInfo.data());
  EXPECT_EQ("eeffc000", Hex(info->SerialNumber.pbData, info->SerialNumber.cbData));
  capi_test::Cert ca("pki/intermediate-ca.der");
  EXPECT_EQ(Hex(ca.get()->pCertInfo->Subject.pbData, ca.get()->pCertInfo->Subject.cbData),
            Hex(info->Issuer.pbData, info->Issuer.cbData));
}

TEST(CapiMsg, AuthenticatedAttributesAsWindowsStructures) {
  Msg msg = Decode(ReadData("cms/signed-attached.der"));
  ASSERT_TRUE(msg);
  std::vector<BYTE> block = Param(msg.get(), CMSG_SIGNER_AUTH_ATTR_PARAM, 0);
  ASSERT_GE(block.size(), sizeof(CRYPT_ATTRIBUTES));
  const auto* attrs = reinterpret_cast<const CRYPT_ATTRIBUTES*>(block.data());
  ASSERT_EQ(5u, attrs->cAttr);
  const char* kOrder[] = {kContentTypeOid, kSigningTimeOid, kMessageDigestOid,
                          kSmimeCapabilitiesOid, kSigningCertificateV2Oid};
  for (DWORD i = 0; i < 5; ++i) {
    EXPECT_STREQ(kOrder[i], attrs->rgAttr[i].pszObjId) << i;
    EXPECT_EQ(1u, attrs->rgAttr[i].cValue) << i;
  }
  auto values = Attributes(block);
  EXPECT_EQ("06092a864886f70d010701", values[kContentTypeOid][0]);
  EXPECT_EQ(std::string("0420") + kContentDigest, values[kMessageDigestOid][0]);
  const std::string& time = values[kSigningTimeOid][0];
  ASSERT_EQ(30u, time.size());
  EXPECT_EQ("170d", time.substr(0, 4));  // UTCTime, 13 octets
  EXPECT_EQ("5a", time.substr(28));      // ...Z
  // The ESSCertIDv2 holds the SHA-256 of the signer's certificate.
  std::string essCertId = values[kSigningCertificateV2Oid][0];
  EXPECT_NE(std::string::npos, essCertId.find("0420" + Sha256(ReadData("pki/ee-rsa.der"))));

  // The same attributes inside CMSG_SIGNER_INFO.
  std::vector<BYTE> signer = Param(msg.get(), CMSG_SIGNER_INFO_PARAM, 0);
  const auto* si = reinterpret_cast<const CMSG_SIGNER_INFO*>(signer.data());
  EXPECT_EQ(1u, si->dwVersion);
  EXPECT_STREQ("2.16.840.1.101.3.4.2.1", si->HashAlgorithm.pszObjId);
  EXPECT_STREQ("1.2.840.113549.1.1.1", si->HashEncryptionAlgorithm.pszObjId);
  EXPECT_EQ("0500", Hex(si->HashEncryptionAlgorithm.Parameters.pbData,
                        si->HashEncryptionAlgorithm.Parameters.cbData));
  EXPECT_EQ(256u, si->EncryptedHash.cbData);
  EXPECT_TRUE(Inside(signer, si->EncryptedHash.pbData, 256));
  ASSERT_EQ(5u, si->AuthAttrs.cAttr);
  EXPECT_STREQ(kMessageDigestOid, si->AuthAttrs.rgAttr[2].pszObjId);
  EXPECT_EQ(0u, si->UnauthAttrs.cAttr);
  EXPECT_EQ(nullptr, si->UnauthAttrs.rgAttr);
}

TEST(CapiMsg, UnauthenticatedAttributes) {
  Msg plain = Decode(ReadData("cms/signed-attached.der"));
  ASSERT_TRUE(plain);
  DWORD size = 0;
  EXPECT_FALSE(CryptMsgGetParam(plain.get(), CMSG_SIGNER_UNAUTH_ATTR_PARAM, 0, nullptr, &size));
  EXPECT_EQ(0x8009100Fu, LastError());  // CRYPT_E_ATTRIBUTES_MISSING

  std::vector<BYTE> token = ReadData("cades/signature-timestamp-token.der");
  ASSERT_FALSE(token.empty());
  std::vector<BYTE> stamped = WithTimeStamp(ReadData("cms/signed-attached.der"), token);
  ASSERT_FALSE(stamped.empty());
  Msg msg = Decode(stamped);
  ASSERT_TRUE(msg);
  // The size protocol as GetUnauthAttr uses it, in a duplicated handle.
  HCRYPTMSG dup = CryptMsgDuplicate(msg.get());
  ASSERT_EQ(msg.get(), dup);
  size = 0;
  ASSERT_TRUE(CryptMsgGetParam(dup, CMSG_SIGNER_UNAUTH_ATTR_PARAM, 0, nullptr, &size));
  std::vector<BYTE> block(size + 16);
  DWORD shortSize = size - 1;
  EXPECT_FALSE(CryptMsgGetParam(dup, CMSG_SIGNER_UNAUTH_ATTR_PARAM, 0, block.data(), &shortSize));
  EXPECT_EQ(234u, LastError());
  EXPECT_EQ(size, shortSize);
  DWORD written = static_cast<DWORD>(block.size());
  ASSERT_TRUE(CryptMsgGetParam(dup, CMSG_SIGNER_UNAUTH_ATTR_PARAM, 0, block.data(), &written));
  EXPECT_EQ(size, written);
  EXPECT_TRUE(CryptMsgClose(dup));
  block.resize(written);
  const auto* attrs = reinterpret_cast<const CRYPT_ATTRIBUTES*>(block.data());
  ASSERT_EQ(1u, attrs->cAttr);
  EXPECT_STREQ(kTimeStampTokenOid, attrs->rgAttr[0].pszObjId);
  auto values = Attributes(block);
  ASSERT_EQ(1u, values[kTimeStampTokenOid].size());
  EXPECT_EQ(Hex(token), values[kTimeStampTokenOid][0]);
  // The authenticated attributes are unchanged.
  EXPECT_EQ(5u, reinterpret_cast<const CRYPT_ATTRIBUTES*>(
                    Param(msg.get(), CMSG_SIGNER_AUTH_ATTR_PARAM, 0).data())
                    ->cAttr);
}

TEST(CapiMsg, TwoSignersDetachedAndIndefiniteLength) {
  Msg two = Decode(ReadData("cms/signed-two-signers.der"));
  ASSERT_TRUE(two);
  EXPECT_EQ(2u, Number(two.get(), CMSG_SIGNER_COUNT_PARAM));
  EXPECT_EQ(3u, Number(two.get(), CMSG_CERT_COUNT_PARAM));
  // DER orders the SET OF SignerInfo by encoding; both signers are there.
  std::set<std::string> algorithms;
  for (DWORD i = 0; i < 2; ++i) {
    std::vector<BYTE> signer = Param(two.get(), CMSG_SIGNER_INFO_PARAM, i);
    algorithms.insert(
        reinterpret_cast<const CMSG_SIGNER_INFO*>(signer.data())->HashEncryptionAlgorithm.pszObjId);
  }
  EXPECT_EQ((std::set<std::string>{"1.2.840.113549.1.1.1", "1.2.840.10045.4.3.2"}), algorithms);
  DWORD size = 0;
  EXPECT_FALSE(CryptMsgGetParam(two.get(), CMSG_SIGNER_INFO_PARAM, 2, nullptr, &size));
  EXPECT_EQ(0x80091008u, LastError());  // CRYPT_E_INVALID_INDEX
  EXPECT_FALSE(CryptMsgGetParam(two.get(), CMSG_CERT_PARAM, 3, nullptr, &size));
  EXPECT_EQ(0x80091008u, LastError());
  EXPECT_FALSE(CryptMsgGetParam(two.get(), CMSG_CRL_PARAM, 0, nullptr, &size));
  EXPECT_EQ(0x80091008u, LastError());

  Msg ber = Decode(ReadData("cms/signed-indefinite.ber"));
  ASSERT_TRUE(ber);
  EXPECT_EQ(Content(), Param(ber.get(), CMSG_CONTENT_PARAM, 0));
  EXPECT_EQ(1u, Number(ber.get(), CMSG_SIGNER_COUNT_PARAM));

  // Detached: the content follows the signature in later updates.
  Msg detached = Decode(ReadData("cms/signed-detached.der"), 0, CMSG_DETACHED_FLAG);
  ASSERT_TRUE(detached);
  EXPECT_TRUE(Param(detached.get(), CMSG_CONTENT_PARAM, 0).empty());
  std::vector<BYTE> content = Content();
  ASSERT_TRUE(CryptMsgUpdate(detached.get(), content.data(), static_cast<DWORD>(content.size()),
                             TRUE));
  EXPECT_EQ(content, Param(detached.get(), CMSG_CONTENT_PARAM, 0));

  Msg noCerts = Decode(ReadData("cms/signed-nocerts.der"));
  ASSERT_TRUE(noCerts);
  EXPECT_EQ(0u, Number(noCerts.get(), CMSG_CERT_COUNT_PARAM));
}

TEST(CapiMsg, UpdatesInPiecesAndBareContent) {
  std::vector<BYTE> message = ReadData("cms/signed-attached.der");
  Msg msg(CryptMsgOpenToDecode(PKCS_7_ASN_ENCODING, 0, 0, 0, nullptr, nullptr));
  ASSERT_TRUE(msg);
  DWORD size = 0;
  EXPECT_FALSE(CryptMsgGetParam(msg.get(), CMSG_SIGNER_COUNT_PARAM, 0, nullptr, &size));
  EXPECT_EQ(0x80091010u, LastError());  // CRYPT_E_STREAM_MSG_NOT_READY
  for (size_t pos = 0; pos < message.size(); pos += 1000) {
    size_t n = std::min<size_t>(1000, message.size() - pos);
    ASSERT_TRUE(CryptMsgUpdate(msg.get(), message.data() + pos, static_cast<DWORD>(n),
                               pos + n == message.size()));
  }
  EXPECT_EQ(1u, Number(msg.get(), CMSG_SIGNER_COUNT_PARAM));
  EXPECT_FALSE(CryptMsgUpdate(msg.get(), message.data(), 1, TRUE));
  EXPECT_EQ(0x80091001u, LastError());  // CRYPT_E_MSG_ERROR

  // With the type named, the SignedData may come without its ContentInfo.
  // ContentInfo: contentType, [0] EXPLICIT SignedData.
  using korvextest::Children;
  using korvextest::ContentOf;
  std::vector<BYTE> bare = Children(ContentOf(Children(ContentOf(message)).at(1))).at(0);
  Msg named = Decode(bare, CMSG_SIGNED);
  ASSERT_TRUE(named);
  EXPECT_EQ(Content(), Param(named.get(), CMSG_CONTENT_PARAM, 0));
  Msg wrapped = Decode(message, CMSG_SIGNED);
  ASSERT_TRUE(wrapped);
  EXPECT_EQ(1u, Number(wrapped.get(), CMSG_SIGNER_COUNT_PARAM));
}

TEST(CapiMsg, StreamOutputReceivesTheContent) {
  struct Sink {
    std::vector<BYTE> bytes;
    int calls = 0;
    bool fail = false;
  } sink;
  CMSG_STREAM_INFO stream{0,
                          [](const void* arg, BYTE* data, DWORD size, BOOL final) -> BOOL {
                            auto* s = static_cast<Sink*>(const_cast<void*>(arg));
                            ++s->calls;
                            s->bytes.insert(s->bytes.end(), data, data + size);
                            return !s->fail && final;
                          },
                          &sink};
  std::vector<BYTE> message = ReadData("cms/signed-attached.der");
  Msg msg(CryptMsgOpenToDecode(PKCS_7_ASN_ENCODING, 0, 0, 0, nullptr, &stream));
  ASSERT_TRUE(CryptMsgUpdate(msg.get(), message.data(), static_cast<DWORD>(message.size()), TRUE));
  EXPECT_EQ(1, sink.calls);
  EXPECT_EQ(Content(), sink.bytes);

  sink.fail = true;
  Msg failing(CryptMsgOpenToDecode(PKCS_7_ASN_ENCODING, 0, 0, 0, nullptr, &stream));
  EXPECT_FALSE(
      CryptMsgUpdate(failing.get(), message.data(), static_cast<DWORD>(message.size()), TRUE));
  EXPECT_EQ(0x80091001u, LastError());
}

struct BadMessage {
  const char* what;
  std::vector<BYTE> bytes;
  DWORD type;
  uint32_t error;
};

TEST(CapiMsg, MalformedAndUnsupportedMessages) {
  std::vector<BYTE> good = ReadData("cms/signed-attached.der");
  ASSERT_FALSE(good.empty());
  std::vector<BYTE> truncated(good.begin(), good.end() - 40);
  std::vector<BYTE> retagged = good;
  retagged[0] = 0x31;
  const BadMessage kCases[] = {
      {"empty", {}, 0, 0x80093102u},
      {"SET", retagged, 0, 0x8009310Bu},
      {"truncated", truncated, 0, 0x80093102u},
      {"SEQUENCE of an INTEGER", Unhex("3003020100"), 0, 0x80093103u},
      {"enveloped", ReadData("cms/enveloped-rsa.der"), 0, 0x80091004u},
      {"digested", ReadData("cms/digested.der"), 0, 0x80091004u},
      {"signed, opened as data", good, CMSG_DATA, 0x80091004u},
  };
  for (const BadMessage& c : kCases) {
    SCOPED_TRACE(c.what);
    Msg msg(CryptMsgOpenToDecode(PKCS_7_ASN_ENCODING, 0, c.type, 0, nullptr, nullptr));
    ASSERT_TRUE(msg);
    SetLastError(0);
    EXPECT_FALSE(CryptMsgUpdate(msg.get(), c.bytes.data(), static_cast<DWORD>(c.bytes.size()),
                                TRUE));
    EXPECT_EQ(c.error, LastError());
    DWORD size = 0;
    EXPECT_FALSE(CryptMsgGetParam(msg.get(), CMSG_TYPE_PARAM, 0, nullptr, &size));
  }
}

TEST(CapiMsg, DataMessages) {
  // A Data ContentInfo: 30 LL 06 09 <id-data> A0 LL 04 LL <octets>.
  std::vector<BYTE> message =
      Unhex("301606092a864886f70d010701a009040748656c6c6f2121");
  Msg msg = Decode(message);
  ASSERT_TRUE(msg);
  EXPECT_EQ(CMSG_DATA, Number(msg.get(), CMSG_TYPE_PARAM));
  EXPECT_EQ("48656c6c6f2121", Hex(Param(msg.get(), CMSG_CONTENT_PARAM, 0)));
  DWORD size = 0;
  EXPECT_FALSE(CryptMsgGetParam(msg.get(), CMSG_SIGNER_COUNT_PARAM, 0, nullptr, &size));
  EXPECT_EQ(0x80091004u, LastError());
  Msg bare = Decode(Unhex("040748656c6c6f2121"), CMSG_DATA);
  ASSERT_TRUE(bare);
  EXPECT_EQ("48656c6c6f2121", Hex(Param(bare.get(), CMSG_CONTENT_PARAM, 0)));
}

TEST(CapiMsg, BadHandlesAndParameters) {
  EXPECT_EQ(nullptr, CryptMsgOpenToDecode(X509_ASN_ENCODING, 0, 0, 0, nullptr, nullptr));
  EXPECT_EQ(0x80070057u, LastError());
  EXPECT_EQ(nullptr, CryptMsgOpenToDecode(PKCS_7_ASN_ENCODING, 0x1, 0, 0, nullptr, nullptr));
  EXPECT_EQ(0x80070057u, LastError());
  EXPECT_EQ(nullptr, CryptMsgOpenToDecode(PKCS_7_ASN_ENCODING, 0, CMSG_ENVELOPED, 0, nullptr,
                                          nullptr));
  EXPECT_EQ(0x80091004u, LastError());

  int local = 0;
  DWORD size = 0;
  EXPECT_FALSE(CryptMsgUpdate(&local, nullptr, 0, TRUE));
  EXPECT_EQ(0x80070057u, LastError());
  EXPECT_FALSE(CryptMsgGetParam(&local, CMSG_TYPE_PARAM, 0, nullptr, &size));
  EXPECT_EQ(0x80070057u, LastError());
  EXPECT_EQ(nullptr, CryptMsgDuplicate(&local));
  EXPECT_FALSE(CryptMsgClose(&local));
  EXPECT_EQ(0x80070057u, LastError());
  EXPECT_TRUE(CryptMsgClose(nullptr));

  Msg msg = Decode(ReadData("cms/signed-attached.der"));
  ASSERT_TRUE(msg);
  EXPECT_FALSE(CryptMsgGetParam(msg.get(), 999, 0, nullptr, &size));
  EXPECT_EQ(0x80070057u, LastError());
  EXPECT_FALSE(CryptMsgGetParam(msg.get(), CMSG_TYPE_PARAM, 0, nullptr, nullptr));
  EXPECT_EQ(0x80070057u, LastError());
  EXPECT_FALSE(CryptMsgUpdate(msg.get(), nullptr, 5, FALSE));
  EXPECT_EQ(0x80070057u, LastError());

  // A message store holds the message's certificates.
  HCERTSTORE store = CertOpenStore(CERT_STORE_PROV_MSG, X509_ASN_ENCODING, 0, 0, msg.get());
  ASSERT_NE(nullptr, store);
  int count = 0;
  for (PCCERT_CONTEXT c = nullptr; (c = CertEnumCertificatesInStore(store, c)) != nullptr;) ++count;
  EXPECT_EQ(2, count);
  EXPECT_TRUE(CertCloseStore(store, CERT_CLOSE_STORE_CHECK_FLAG));
  EXPECT_EQ(nullptr, CertOpenStore(CERT_STORE_PROV_MSG, 0, 0, 0, &local));
  EXPECT_EQ(0x80070057u, LastError());
}

}  // namespace
