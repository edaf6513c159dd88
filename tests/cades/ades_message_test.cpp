// GetUnauthAttr over real CMS SignedData: signers without unsigned
// attributes, the message errors, and signers given unsigned attributes by
// DER surgery on the fixtures, read back in place.
#include <korvex/cades/ades_core.h>
#include <korvex/platform/capi/errors.h>
#include <korvex/platform/capi/msg.h>

#include <cstring>

#include "ades_test_util.h"

namespace {

using ades_test::Bytes;
using ades_test::Concat;
using ades_test::Encode;
using ades_test::ReadData;
using ades_test::TestConfig;
using ades_test::Unhex;

const std::string kExceptionLine = "ades GetUnauthAttr: Exception thrown: _hr";

// Message owns a decoded message handle.
class Message {
 public:
  explicit Message(const Bytes& der) {
    handle_ =
        CryptMsgOpenToDecode(X509_ASN_ENCODING | PKCS_7_ASN_ENCODING, 0, 0, 0, nullptr, nullptr);
    EXPECT_NE(nullptr, handle_);
    if (!der.empty()) {
      EXPECT_TRUE(CryptMsgUpdate(handle_, der.data(), static_cast<DWORD>(der.size()), TRUE));
    }
  }
  ~Message() {
    if (handle_ != nullptr) CryptMsgClose(handle_);
  }
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  HCRYPTMSG get() const { return handle_; }
  // Close closes the handle now; false when the handle was no longer open
  // or had references left (a second close then fails).
  bool CloseExactlyOnce() {
    bool first = CryptMsgClose(handle_) != FALSE;
    bool second = CryptMsgClose(handle_) != FALSE;
    handle_ = nullptr;
    return first && !second;
  }

 private:
  HCRYPTMSG handle_ = nullptr;
};

// Thrown returns the code GetUnauthAttr throws, 0 when it does not throw.
HRESULT Thrown(HCRYPTMSG message, unsigned int signer, ATL::CStringT<char>& out) {
  try {
    GetUnauthAttr(message, signer, out);
  } catch (const ATL::CAtlException& e) {
    return e.m_hr;
  }
  return 0;
}

// --- Unsigned attributes added to a fixture (RFC 5652 5.3:
// unsignedAttrs [1] IMPLICIT SET OF Attribute, after the signature).

// An attribute of our test arc with two values: INTEGER 5 and
// UTF8String "korvex" (DER order within the SET).
const char kTestAttrOid[] = "1.3.6.1.4.1.99981.38.77";
const Bytes kTestAttrOidDer = Unhex("060A2B06010401868D0D264D");
const Bytes kInteger5 = Unhex("020105");
const Bytes kUtf8Korvex = Unhex("0C066B6F72766578");
// id-aa-signatureTimeStampToken (RFC 5126 6.1.1) holding the fixture token.
const char kTimeStampOid[] = "1.2.840.113549.1.9.16.2.14";
const Bytes kTimeStampOidDer = Unhex("060B2A864886F70D010910020E");

Bytes Attribute(const Bytes& oidDer, const std::vector<Bytes>& values) {
  return Encode(0x30, Concat({oidDer, Encode(0x31, Concat(values))}));
}

// UnsignedAttrs is the [1] element holding the test attribute and the
// time-stamp token, in DER SET OF order (the short encoding sorts first).
Bytes UnsignedAttrs(const Bytes& token) {
  return Encode(0xA1, Concat({Attribute(kTestAttrOidDer, {kInteger5, kUtf8Korvex}),
                              Attribute(kTimeStampOidDer, {token})}));
}

// WithUnsignedAttrs appends the [1] element to SignerInfo `signer` of a
// ContentInfo holding SignedData: ContentInfo / [0] / SignedData /
// signerInfos (its last field) / SignerInfo.
Bytes WithUnsignedAttrs(const Bytes& contentInfo, int signer, const Bytes& token) {
  return ades_test::AppendAt(contentInfo, {1, 0, -1, signer}, UnsignedAttrs(token));
}

Bytes BlobBytes(const CRYPT_ATTR_BLOB& blob) {
  return Bytes(blob.pbData, blob.pbData + blob.cbData);
}

// ExpectAddedAttributes checks the block GetUnauthAttr returned: two
// attributes exactly as added, every pointer inside out's own bytes.
void ExpectAddedAttributes(const ATL::CStringT<char>& out, const Bytes& token) {
  const char* begin = out.GetString();
  const char* end = begin + out.GetLength();
  auto inside = [&](const void* p, size_t size) {
    const char* c = static_cast<const char*>(p);
    return c >= begin && c + size <= end;
  };
  ASSERT_GE(static_cast<size_t>(out.GetLength()), sizeof(CRYPT_ATTRIBUTES));
  const auto* attrs = reinterpret_cast<const CRYPT_ATTRIBUTES*>(begin);
  ASSERT_EQ(2u, attrs->cAttr);
  ASSERT_TRUE(inside(attrs->rgAttr, 2 * sizeof(CRYPT_ATTRIBUTE)));

  const CRYPT_ATTRIBUTE& first = attrs->rgAttr[0];
  ASSERT_TRUE(inside(first.pszObjId, std::strlen(kTestAttrOid) + 1));
  EXPECT_STREQ(kTestAttrOid, first.pszObjId);
  ASSERT_EQ(2u, first.cValue);
  ASSERT_TRUE(inside(first.rgValue, 2 * sizeof(CRYPT_ATTR_BLOB)));
  for (DWORD i = 0; i < 2; ++i) {
    EXPECT_TRUE(inside(first.rgValue[i].pbData, first.rgValue[i].cbData)) << i;
  }
  EXPECT_EQ(kInteger5, BlobBytes(first.rgValue[0]));
  EXPECT_EQ(kUtf8Korvex, BlobBytes(first.rgValue[1]));

  const CRYPT_ATTRIBUTE& second = attrs->rgAttr[1];
  ASSERT_TRUE(inside(second.pszObjId, std::strlen(kTimeStampOid) + 1));
  EXPECT_STREQ(kTimeStampOid, second.pszObjId);
  ASSERT_EQ(1u, second.cValue);
  ASSERT_TRUE(inside(second.rgValue, sizeof(CRYPT_ATTR_BLOB)));
  ASSERT_TRUE(inside(second.rgValue[0].pbData, second.rgValue[0].cbData));
  EXPECT_EQ(token, BlobBytes(second.rgValue[0]));
}

class UnauthAttr : public ::testing::Test {
 protected:
  void SetUp() override { config_.Write(config_.TraceSettings("0x08")); }
  TestConfig config_;
};

TEST_F(UnauthAttr, SurgeryKeepsTheSignedPartAndAddsOnlyTheAttributes) {
  // The rewrite changes lengths only: the SignerInfo's signed fields and
  // signature are the same bytes, so the signature still verifies.
  const Bytes original = ReadData("cms/signed-attached.der");
  const Bytes token = ReadData("cades/signature-timestamp-token.der");
  const Bytes modified = WithUnsignedAttrs(original, 0, token);
  const Bytes added = UnsignedAttrs(token);
  // [1] with a two-octet length (the token alone is over 3000 octets).
  ASSERT_GT(added.size(), 4u);
  EXPECT_EQ(Unhex("A182"), Bytes(added.begin(), added.begin() + 2));
  EXPECT_EQ(added.size() - 4, (size_t{added[2]} << 8) | added[3]);
  EXPECT_EQ(original.size() + added.size(), modified.size());
  const Bytes signature = ReadData("cades/signed-attached.signature-value.bin");
  ASSERT_EQ(256u, signature.size());
  // The signature OCTET STRING (04 82 01 00 ...) is now followed by [1].
  const Bytes tail = Concat({Unhex("04820100"), signature, added});
  ASSERT_GE(modified.size(), tail.size());
  EXPECT_EQ(tail, Bytes(modified.end() - static_cast<long>(tail.size()), modified.end()));
}

TEST_F(UnauthAttr, ReadsAddedAttributesInPlace) {
  const Bytes token = ReadData("cades/signature-timestamp-token.der");
  Message msg(WithUnsignedAttrs(ReadData("cms/signed-attached.der"), 0, token));
  ATL::CStringT<char> out("previous contents");
  ASSERT_NO_THROW(GetUnauthAttr(msg.get(), 0, out));
  DWORD size = 0;
  ASSERT_TRUE(CryptMsgGetParam(msg.get(), CMSG_SIGNER_UNAUTH_ATTR_PARAM, 0, nullptr, &size));
  EXPECT_EQ(static_cast<int>(size), out.GetLength());
  ExpectAddedAttributes(out, token);
  EXPECT_EQ(std::vector<std::string>{}, config_.TakeTraceLines());
  // The duplicate made inside was closed: the caller's handle has its one
  // reference left.
  EXPECT_TRUE(msg.CloseExactlyOnce());
}

TEST_F(UnauthAttr, TwoSignersOnlyOneWithAttributes) {
  const Bytes token = ReadData("cades/signature-timestamp-token.der");
  Message msg(WithUnsignedAttrs(ReadData("cms/signed-two-signers.der"), 1, token));
  ATL::CStringT<char> out;
  ASSERT_NO_THROW(GetUnauthAttr(msg.get(), 1, out));
  ExpectAddedAttributes(out, token);
  ATL::CStringT<char> none("kept");
  EXPECT_EQ(static_cast<HRESULT>(CRYPT_E_ATTRIBUTES_MISSING), Thrown(msg.get(), 0, none));
  EXPECT_EQ("kept", none);
  EXPECT_EQ(std::vector<std::string>{kExceptionLine}, config_.TakeTraceLines());
}

TEST_F(UnauthAttr, FailuresThrowTheMessageErrorAndTraceIt) {
  struct Case {
    const char* what;
    const char* file;  // null: a message that was never given its bytes
    unsigned int signer;
    uint32_t code;
  };
  const Case kCases[] = {
      {"signer without unsigned attributes", "cms/signed-attached.der", 0,
       0x8009100Fu},  // CRYPT_E_ATTRIBUTES_MISSING, a negative last error as it stands
      {"detached signature", "cms/signed-detached.der", 0, 0x8009100Fu},
      {"no certificates", "cms/signed-nocerts.der", 0, 0x8009100Fu},
      {"first of two signers", "cms/signed-two-signers.der", 0, 0x8009100Fu},
      {"second of two signers", "cms/signed-two-signers.der", 1, 0x8009100Fu},
      {"no such signer", "cms/signed-attached.der", 1, 0x80091008u},  // CRYPT_E_INVALID_INDEX
      {"signer index far out", "cms/signed-two-signers.der", 0xFFFFFFFFu, 0x80091008u},
      {"not decoded yet", nullptr, 0, 0x80091010u},  // CRYPT_E_STREAM_MSG_NOT_READY
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    Message msg(c.file ? ReadData(c.file) : Bytes());
    ATL::CStringT<char> out("kept");
    EXPECT_EQ(static_cast<HRESULT>(c.code), Thrown(msg.get(), c.signer, out));
    EXPECT_EQ("kept", out);
    EXPECT_EQ(4, out.GetLength());
    EXPECT_EQ(std::vector<std::string>{kExceptionLine}, config_.TakeTraceLines());
    EXPECT_TRUE(msg.CloseExactlyOnce());
  }
}

TEST_F(UnauthAttr, DataMessageHasNoSigners) {
  // ContentInfo { id-data, [0] OCTET STRING "abcdef" } (RFC 5652 4).
  Message msg(Unhex("301506092A864886F70D010701A0080406616263646566"));
  ATL::CStringT<char> out;
  EXPECT_EQ(static_cast<HRESULT>(CRYPT_E_INVALID_MSG_TYPE), Thrown(msg.get(), 0, out));
  EXPECT_EQ(std::vector<std::string>{kExceptionLine}, config_.TakeTraceLines());
}

TEST_F(UnauthAttr, HandleThatCannotBeDuplicated) {
  int notAMessage = 0;
  const HCRYPTMSG kHandles[] = {nullptr, &notAMessage};
  for (HCRYPTMSG handle : kHandles) {
    SCOPED_TRACE(handle == nullptr ? "null" : "unknown");
    ATL::CStringT<char> out("kept");
    EXPECT_EQ(static_cast<HRESULT>(0x80004005u), Thrown(handle, 0, out));
    EXPECT_EQ("kept", out);
    EXPECT_EQ(std::vector<std::string>{kExceptionLine}, config_.TakeTraceLines());
  }
}

TEST_F(UnauthAttr, ExceptionLineNeedsTheDebugLevel) {
  Message msg(ReadData("cms/signed-attached.der"));
  for (const char* level : {"0x01", "0x77", "0"}) {
    SCOPED_TRACE(level);
    config_.Write(config_.TraceSettings(level));
    ATL::CStringT<char> out;
    EXPECT_EQ(static_cast<HRESULT>(CRYPT_E_ATTRIBUTES_MISSING), Thrown(msg.get(), 0, out));
    EXPECT_EQ(std::vector<std::string>{}, config_.TakeTraceLines());
  }
}

}  // namespace
