// Decoding CMS messages (RFC 5652): Data and SignedData, by OpenSSL.
//
// The message is decoded once, when the final update arrives, into plain
// data (signers, attributes, certificates, CRLs, content) so that
// CryptMsgGetParam only copies out and the OpenSSL objects do not outlive
// the update.
#include <openssl/cms.h>
#include <openssl/err.h>
#include <openssl/objects.h>
#include <openssl/x509.h>

#include <new>

#include "msg_pack.h"

namespace korvex::capi {
namespace {

struct Attribute {
  std::string oid;
  std::vector<std::vector<BYTE>> values;  // DER of each AttributeValue
};

struct Signer {
  DWORD version = 1;
  std::vector<BYTE> issuer;        // DER Name, empty for a key-identifier signer
  std::vector<BYTE> serialOrKeyId; // little-endian serial, or the key identifier
  std::string digestOid, signatureOid;
  std::vector<BYTE> digestParams, signatureParams, signature;
  bool hasSignedAttrs = false, hasUnsignedAttrs = false;
  std::vector<Attribute> signedAttrs, unsignedAttrs;
};

struct Message {
  std::mutex mutex;
  long refs = 1;  // guarded by mutex
  DWORD openType = 0;
  DWORD flags = 0;
  bool hasStream = false;
  CMSG_STREAM_INFO stream{};
  std::vector<BYTE> input;
  bool decoded = false;
  DWORD type = 0;
  std::string innerType;
  std::vector<BYTE> content;
  std::vector<Signer> signers;
  std::vector<std::vector<BYTE>> certs, crls;
};

constexpr char kDataOid[] = "1.2.840.113549.1.7.1";
constexpr char kSignedDataOid[] = "1.2.840.113549.1.7.2";
constexpr DWORD kReleaseContextFlag = 0x00008000u;  // CMSG_CRYPT_RELEASE_CONTEXT_FLAG

Registry<Message>& Messages() {
  static Registry<Message>* registry = new Registry<Message>();
  return *registry;
}

struct CmsFree {
  void operator()(CMS_ContentInfo* cms) const { CMS_ContentInfo_free(cms); }
};
using CmsPtr = std::unique_ptr<CMS_ContentInfo, CmsFree>;

bool ReadAttributes(int count, X509_ATTRIBUTE* (*get)(const CMS_SignerInfo*, int),
                    const CMS_SignerInfo* si, std::vector<Attribute>* out) {
  for (int i = 0; i < count; ++i) {
    X509_ATTRIBUTE* attr = get(si, i);
    Attribute a;
    a.oid = ObjectText(X509_ATTRIBUTE_get0_object(attr));
    if (a.oid.empty()) return false;
    int values = X509_ATTRIBUTE_count(attr);
    for (int j = 0; j < values; ++j) {
      ASN1_TYPE* value = X509_ATTRIBUTE_get0_type(attr, j);
      std::vector<BYTE> der = Encode([&](unsigned char** p) { return i2d_ASN1_TYPE(value, p); });
      if (der.empty()) return false;
      a.values.push_back(std::move(der));
    }
    out->push_back(std::move(a));
  }
  return true;
}

bool ReadAlgorithm(X509_ALGOR* algorithm, std::string* oid, std::vector<BYTE>* params) {
  if (algorithm == nullptr) return false;
  std::vector<BYTE> der = Encode([&](unsigned char** p) { return i2d_X509_ALGOR(algorithm, p); });
  return SplitAlgorithm(der, oid, params);
}

bool ReadSigner(CMS_SignerInfo* si, Signer* out) {
  ASN1_OCTET_STRING* keyId = nullptr;
  X509_NAME* issuer = nullptr;
  ASN1_INTEGER* serial = nullptr;
  if (CMS_SignerInfo_get0_signer_id(si, &keyId, &issuer, &serial) != 1) return false;
  if (keyId != nullptr) {
    out->version = 3;  // RFC 5652 5.3: subjectKeyIdentifier signers are version 3
    out->serialOrKeyId.assign(ASN1_STRING_get0_data(keyId),
                              ASN1_STRING_get0_data(keyId) + ASN1_STRING_length(keyId));
  } else {
    if (issuer == nullptr || serial == nullptr) return false;
    out->issuer = Encode([&](unsigned char** p) { return i2d_X509_NAME(issuer, p); });
    std::vector<BYTE> der = Encode([&](unsigned char** p) { return i2d_ASN1_INTEGER(serial, p); });
    Tlv tlv;
    if (out->issuer.empty() || !ReadTlv(der.data(), der.size(), &tlv)) return false;
    out->serialOrKeyId.assign(der.rbegin(), der.rbegin() + static_cast<long>(tlv.length));
  }
  X509_ALGOR* digest = nullptr;
  X509_ALGOR* signature = nullptr;
  CMS_SignerInfo_get0_algs(si, nullptr, nullptr, &digest, &signature);
  if (!ReadAlgorithm(digest, &out->digestOid, &out->digestParams) ||
      !ReadAlgorithm(signature, &out->signatureOid, &out->signatureParams)) {
    return false;
  }
  ASN1_OCTET_STRING* value = CMS_SignerInfo_get0_signature(si);
  if (value != nullptr) {
    out->signature.assign(ASN1_STRING_get0_data(value),
                          ASN1_STRING_get0_data(value) + ASN1_STRING_length(value));
  }
  int signedCount = CMS_signed_get_attr_count(si);
  int unsignedCount = CMS_unsigned_get_attr_count(si);
  out->hasSignedAttrs = signedCount > 0;
  out->hasUnsignedAttrs = unsignedCount > 0;
  return ReadAttributes(signedCount, CMS_signed_get_attr, si, &out->signedAttrs) &&
         ReadAttributes(unsignedCount, CMS_unsigned_get_attr, si, &out->unsignedAttrs);
}

// Decode turns the collected bytes into the message's plain data; returns 0
// or the HRESULT to report.
// IsContentInfo tells a ContentInfo (a SEQUENCE starting with the content
// type OID, RFC 5652 3) from the bare content a caller may give when it
// names the message type.
bool IsContentInfo(const std::vector<BYTE>& input) {
  if (input.size() < 3 || input[0] != 0x30) return false;
  size_t header = 2;
  if (input[1] > 0x80) header += input[1] & 0x7F;
  return header < input.size() && input[header] == 0x06;
}

// WrapContent puts bare content of a known type into a ContentInfo.
std::vector<BYTE> WrapContent(DWORD type, const std::vector<BYTE>& body) {
  ASN1_OBJECT* object = OBJ_txt2obj(type == CMSG_SIGNED ? kSignedDataOid : kDataOid, 1);
  std::vector<BYTE> content =
      Encode([&](unsigned char** p) { return i2d_ASN1_OBJECT(object, p); });
  ASN1_OBJECT_free(object);
  AppendTlv(&content, 0xA0, body);
  std::vector<BYTE> out;
  AppendTlv(&out, 0x30, content);
  return out;
}

HRESULT Decode(Message* m) {
  if (m->openType != 0 && !m->input.empty() && !IsContentInfo(m->input)) {
    m->input = WrapContent(m->openType, m->input);
  }
  const BYTE* data = m->input.data();
  const unsigned char* p = data;
  CmsPtr cms(d2i_CMS_ContentInfo(nullptr, &p, static_cast<long>(m->input.size())));
  if (!cms) return DerClassify(data, m->input.size());
  int nid = OBJ_obj2nid(CMS_get0_type(cms.get()));
  DWORD type = nid == NID_pkcs7_signed ? CMSG_SIGNED : nid == NID_pkcs7_data ? CMSG_DATA : 0;
  if (type == 0 || (m->openType != 0 && m->openType != type)) return CRYPT_E_INVALID_MSG_TYPE;
  m->type = type;
  if (ASN1_OCTET_STRING** content = CMS_get0_content(cms.get())) {
    if (*content != nullptr) {
      m->content.assign(ASN1_STRING_get0_data(*content),
                        ASN1_STRING_get0_data(*content) + ASN1_STRING_length(*content));
    }
  }
  if (type == CMSG_DATA) {
    m->innerType = kDataOid;
    return 0;
  }
  m->innerType = ObjectText(CMS_get0_eContentType(cms.get()));
  if (m->innerType.empty()) return CRYPT_E_ASN1_CORRUPT;

  STACK_OF(X509)* certs = CMS_get1_certs(cms.get());
  for (int i = 0; i < sk_X509_num(certs); ++i) {
    X509* x = sk_X509_value(certs, i);
    m->certs.push_back(Encode([&](unsigned char** q) { return i2d_X509(x, q); }));
  }
  sk_X509_pop_free(certs, X509_free);
  STACK_OF(X509_CRL)* crls = CMS_get1_crls(cms.get());
  for (int i = 0; i < sk_X509_CRL_num(crls); ++i) {
    X509_CRL* crl = sk_X509_CRL_value(crls, i);
    m->crls.push_back(Encode([&](unsigned char** q) { return i2d_X509_CRL(crl, q); }));
  }
  sk_X509_CRL_pop_free(crls, X509_CRL_free);

  STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(cms.get());
  for (int i = 0; i < sk_CMS_SignerInfo_num(signers); ++i) {
    Signer signer;
    if (!ReadSigner(sk_CMS_SignerInfo_value(signers, i), &signer)) return CRYPT_E_ASN1_CORRUPT;
    m->signers.push_back(std::move(signer));
  }
  return 0;
}

// ------------------------------------------------------------ output forms

CRYPT_ATTRIBUTES PackAttributes(Packer& packer, const std::vector<Attribute>& attrs) {
  CRYPT_ATTRIBUTES out{static_cast<DWORD>(attrs.size()), nullptr};
  if (attrs.empty()) return out;
  size_t arrayOffset = packer.Reserve(attrs.size() * sizeof(CRYPT_ATTRIBUTE), alignof(void*));
  out.rgAttr = reinterpret_cast<PCRYPT_ATTRIBUTE>(packer.At(arrayOffset));
  for (size_t i = 0; i < attrs.size(); ++i) {
    const Attribute& a = attrs[i];
    CRYPT_ATTRIBUTE record{};
    record.cValue = static_cast<DWORD>(a.values.size());
    size_t valuesOffset =
        packer.Reserve(a.values.size() * sizeof(CRYPT_ATTR_BLOB), alignof(void*));
    record.rgValue = a.values.empty() ? nullptr
                                      : reinterpret_cast<PCRYPT_ATTR_BLOB>(packer.At(valuesOffset));
    for (size_t j = 0; j < a.values.size(); ++j) {
      CRYPT_ATTR_BLOB blob = packer.PackBytes(a.values[j]);
      packer.Put(valuesOffset + j * sizeof(CRYPT_ATTR_BLOB), blob);
    }
    record.pszObjId = packer.PackString(a.oid);
    packer.Put(arrayOffset + i * sizeof(CRYPT_ATTRIBUTE), record);
  }
  return out;
}

CRYPT_ALGORITHM_IDENTIFIER PackAlgorithm(Packer& packer, const std::string& oid,
                                         const std::vector<BYTE>& params) {
  CRYPT_ALGORITHM_IDENTIFIER out{};
  out.pszObjId = packer.PackString(oid);
  out.Parameters = packer.PackBytes(params);
  return out;
}

void PackSignerInfo(Packer& packer, const Signer& s) {
  size_t top = packer.Reserve(sizeof(CMSG_SIGNER_INFO), alignof(void*));
  CMSG_SIGNER_INFO info{};
  info.dwVersion = s.version;
  info.Issuer = packer.PackBytes(s.issuer);
  info.SerialNumber = packer.PackBytes(s.serialOrKeyId);
  info.HashAlgorithm = PackAlgorithm(packer, s.digestOid, s.digestParams);
  info.HashEncryptionAlgorithm = PackAlgorithm(packer, s.signatureOid, s.signatureParams);
  info.EncryptedHash = packer.PackBytes(s.signature);
  info.AuthAttrs = PackAttributes(packer, s.signedAttrs);
  info.UnauthAttrs = PackAttributes(packer, s.unsignedAttrs);
  packer.Put(top, info);
}

void PackSignerCertInfo(Packer& packer, const Signer& s) {
  size_t top = packer.Reserve(sizeof(CERT_INFO), alignof(void*));
  CERT_INFO info{};
  info.Issuer = packer.PackBytes(s.issuer);
  info.SerialNumber = packer.PackBytes(s.serialOrKeyId);
  packer.Put(top, info);
}

// Emit runs `pack` twice under the size protocol of CryptMsgGetParam.
template <typename F>
BOOL Emit(F pack, void* pvData, DWORD* pcbData) {
  Packer measure(nullptr);
  pack(measure);
  size_t size = measure.size();
  if (size > 0xFFFFFFFFu) return Fail(E_OUTOFMEMORY);
  if (pvData == nullptr) {
    *pcbData = static_cast<DWORD>(size);
    return TRUE;
  }
  if (*pcbData < size) {
    *pcbData = static_cast<DWORD>(size);
    SetLastError(ERROR_MORE_DATA);
    return FALSE;
  }
  Packer fill(static_cast<BYTE*>(pvData));
  pack(fill);
  *pcbData = static_cast<DWORD>(size);
  return TRUE;
}

BOOL Bytes(const std::vector<BYTE>& bytes, void* pvData, DWORD* pcbData) {
  return CopyOut(bytes.data(), bytes.size(), static_cast<BYTE*>(pvData), pcbData);
}

BOOL Number(DWORD value, void* pvData, DWORD* pcbData) {
  return CopyOut(&value, sizeof value, static_cast<BYTE*>(pvData), pcbData);
}

BOOL GetParam(Message& m, DWORD param, DWORD index, void* pvData, DWORD* pcbData) {
  switch (param) {
    case CMSG_TYPE_PARAM:
    case CMSG_CONTENT_PARAM:
    case CMSG_INNER_CONTENT_TYPE_PARAM:
    case CMSG_SIGNER_COUNT_PARAM:
    case CMSG_SIGNER_INFO_PARAM:
    case CMSG_SIGNER_CERT_INFO_PARAM:
    case CMSG_SIGNER_HASH_ALGORITHM_PARAM:
    case CMSG_SIGNER_AUTH_ATTR_PARAM:
    case CMSG_SIGNER_UNAUTH_ATTR_PARAM:
    case CMSG_CERT_COUNT_PARAM:
    case CMSG_CERT_PARAM:
    case CMSG_CRL_COUNT_PARAM:
    case CMSG_CRL_PARAM:
      break;
    default:
      return Fail(E_INVALIDARG);
  }
  if (!m.decoded) return Fail(CRYPT_E_STREAM_MSG_NOT_READY);
  switch (param) {
    case CMSG_TYPE_PARAM:
      return Number(m.type, pvData, pcbData);
    case CMSG_CONTENT_PARAM:
      return Bytes(m.content, pvData, pcbData);
    case CMSG_INNER_CONTENT_TYPE_PARAM:
      return CopyOut(m.innerType.c_str(), m.innerType.size() + 1, static_cast<BYTE*>(pvData),
                     pcbData);
    default:
      break;
  }
  if (m.type != CMSG_SIGNED) return Fail(CRYPT_E_INVALID_MSG_TYPE);
  switch (param) {
    case CMSG_SIGNER_COUNT_PARAM:
      return Number(static_cast<DWORD>(m.signers.size()), pvData, pcbData);
    case CMSG_CERT_COUNT_PARAM:
      return Number(static_cast<DWORD>(m.certs.size()), pvData, pcbData);
    case CMSG_CRL_COUNT_PARAM:
      return Number(static_cast<DWORD>(m.crls.size()), pvData, pcbData);
    case CMSG_CERT_PARAM:
      if (index >= m.certs.size()) return Fail(CRYPT_E_INVALID_INDEX);
      return Bytes(m.certs[index], pvData, pcbData);
    case CMSG_CRL_PARAM:
      if (index >= m.crls.size()) return Fail(CRYPT_E_INVALID_INDEX);
      return Bytes(m.crls[index], pvData, pcbData);
    default:
      break;
  }
  if (index >= m.signers.size()) return Fail(CRYPT_E_INVALID_INDEX);
  const Signer& s = m.signers[index];
  switch (param) {
    case CMSG_SIGNER_INFO_PARAM:
      return Emit([&](Packer& p) { PackSignerInfo(p, s); }, pvData, pcbData);
    case CMSG_SIGNER_CERT_INFO_PARAM:
      return Emit([&](Packer& p) { PackSignerCertInfo(p, s); }, pvData, pcbData);
    case CMSG_SIGNER_HASH_ALGORITHM_PARAM:
      return Emit(
          [&](Packer& p) {
            size_t top = p.Reserve(sizeof(CRYPT_ALGORITHM_IDENTIFIER), alignof(void*));
            p.Put(top, PackAlgorithm(p, s.digestOid, s.digestParams));
          },
          pvData, pcbData);
    case CMSG_SIGNER_AUTH_ATTR_PARAM:
    case CMSG_SIGNER_UNAUTH_ATTR_PARAM: {
      bool auth = param == CMSG_SIGNER_AUTH_ATTR_PARAM;
      if (!(auth ? s.hasSignedAttrs : s.hasUnsignedAttrs)) return Fail(CRYPT_E_ATTRIBUTES_MISSING);
      const std::vector<Attribute>& attrs = auth ? s.signedAttrs : s.unsignedAttrs;
      return Emit(
          [&](Packer& p) {
            size_t top = p.Reserve(sizeof(CRYPT_ATTRIBUTES), alignof(void*));
            p.Put(top, PackAttributes(p, attrs));
          },
          pvData, pcbData);
    }
    default:
      return Fail(E_INVALIDARG);
  }
}

BOOL Update(Message& m, const BYTE* pbData, DWORD cbData, BOOL fFinal) {
  if (m.decoded) {
    // Only a detached signature takes more bytes: the content it signs.
    if ((m.flags & CMSG_DETACHED_FLAG) == 0) return Fail(CRYPT_E_MSG_ERROR);
    m.content.insert(m.content.end(), pbData, pbData + cbData);
    return TRUE;
  }
  m.input.insert(m.input.end(), pbData, pbData + cbData);
  if (!fFinal) return TRUE;
  HRESULT hr = Decode(&m);
  ERR_clear_error();
  std::vector<BYTE>().swap(m.input);
  if (hr != 0) {
    m.content.clear();
    m.certs.clear();
    m.crls.clear();
    m.signers.clear();
    m.innerType.clear();
    return Fail(hr);
  }
  m.decoded = true;
  if (m.hasStream && m.stream.pfnStreamOutput != nullptr) {
    // A callback that fails without saying why leaves CRYPT_E_MSG_ERROR.
    DWORD saved = GetLastError();
    SetLastError(static_cast<DWORD>(CRYPT_E_MSG_ERROR));
    if (!m.stream.pfnStreamOutput(m.stream.pvArg, m.content.empty() ? nullptr : m.content.data(),
                                  static_cast<DWORD>(m.content.size()), TRUE)) {
      return FALSE;
    }
    SetLastError(saved);
  }
  return TRUE;
}

}  // namespace

bool MessageCertificates(HCRYPTMSG message, std::vector<std::vector<BYTE>>* out) {
  std::shared_ptr<Message> m = Messages().Find(message);
  if (!m) return false;
  std::lock_guard<std::mutex> lock(m->mutex);
  if (!m->decoded) return false;
  *out = m->certs;
  return true;
}

}  // namespace korvex::capi

using namespace korvex::capi;

extern "C" HCRYPTMSG CryptMsgOpenToDecode(DWORD dwMsgEncodingType, DWORD dwFlags,
                                          DWORD dwMsgType, HCRYPTPROV /*hCryptProv*/,
                                          PCERT_INFO /*pRecipientInfo*/,
                                          PCMSG_STREAM_INFO pStreamInfo) {
  if ((dwMsgEncodingType & PKCS_7_ASN_ENCODING) == 0 ||
      (dwFlags & ~(CMSG_DETACHED_FLAG | kReleaseContextFlag)) != 0) {
    SetLastError(static_cast<DWORD>(E_INVALIDARG));
    return nullptr;
  }
  if (dwMsgType != 0 && dwMsgType != CMSG_DATA && dwMsgType != CMSG_SIGNED) {
    SetLastError(static_cast<DWORD>(CRYPT_E_INVALID_MSG_TYPE));
    return nullptr;
  }
  try {
    auto m = std::make_shared<Message>();
    m->openType = dwMsgType;
    m->flags = dwFlags;
    if (pStreamInfo != nullptr) {
      m->hasStream = true;
      m->stream = *pStreamInfo;
    }
    HCRYPTMSG handle = m.get();
    Messages().Add(handle, std::move(m));
    return handle;
  } catch (const std::bad_alloc&) {
    SetLastError(static_cast<DWORD>(E_OUTOFMEMORY));
    return nullptr;
  }
}

extern "C" BOOL CryptMsgUpdate(HCRYPTMSG hCryptMsg, const BYTE* pbData, DWORD cbData,
                               BOOL fFinal) {
  std::shared_ptr<Message> m = Messages().Find(hCryptMsg);
  if (!m || (pbData == nullptr && cbData != 0)) return Fail(E_INVALIDARG);
  std::lock_guard<std::mutex> lock(m->mutex);
  try {
    return Update(*m, pbData, cbData, fFinal);
  } catch (const std::bad_alloc&) {
    return Fail(E_OUTOFMEMORY);
  }
}

extern "C" BOOL CryptMsgGetParam(HCRYPTMSG hCryptMsg, DWORD dwParamType, DWORD dwIndex,
                                 void* pvData, DWORD* pcbData) {
  std::shared_ptr<Message> m = Messages().Find(hCryptMsg);
  if (!m || pcbData == nullptr) return Fail(E_INVALIDARG);
  std::lock_guard<std::mutex> lock(m->mutex);
  return GetParam(*m, dwParamType, dwIndex, pvData, pcbData);
}

extern "C" HCRYPTMSG CryptMsgDuplicate(HCRYPTMSG hCryptMsg) {
  std::shared_ptr<Message> m = Messages().Find(hCryptMsg);
  if (!m) return nullptr;
  std::lock_guard<std::mutex> lock(m->mutex);
  ++m->refs;
  return hCryptMsg;
}

extern "C" BOOL CryptMsgClose(HCRYPTMSG hCryptMsg) {
  if (hCryptMsg == nullptr) return TRUE;
  std::shared_ptr<Message> m = Messages().Find(hCryptMsg);
  if (!m) return Fail(E_INVALIDARG);
  bool last;
  {
    std::lock_guard<std::mutex> lock(m->mutex);
    last = --m->refs == 0;
  }
  if (last) Messages().Remove(hCryptMsg);
  return TRUE;
}
