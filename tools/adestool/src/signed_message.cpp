// signed_message.cpp: decoding a ContentInfo into a SignedData, and laying
// out the bytes as they arrived.
#include "signed_message.h"

#include <utility>

#include "asn1_names.h"
#include "asn1_tree.h"
#include "tool_error.h"
#include "value_text.h"

namespace adestool {

namespace {

const char *StatusMeaning(int status) {
  switch (status) {
    case ASN_E_ENDOFBUF:
      return "data ends early";
    case ASN_E_IDNOTFOU:
      return "unexpected tag";
    case ASN_E_INVOBJID:
      return "invalid object identifier";
    case ASN_E_INVLEN:
      return "invalid length";
    case ASN_E_SETMISRQ:
      return "missing element";
    case ASN_E_NOTINSEQ:
      return "unexpected element";
    case ASN_E_CONSVIO:
      return "constraint violated";
    case ASN_E_NESTING:
      return "nested too deeply";
    case ASN_E_NOMEM:
      return "out of memory";
    default:
      return "malformed";
  }
}

// DecodeFailure: the message for bytes that did not decode as a
// ContentInfo. Bytes that are not well-formed BER name their first fault
// with its offset; well-formed bytes of another structure the status.
std::string DecodeFailure(const std::vector<uint8_t> &bytes, int status) {
  std::string tree;
  DumpFailure failure;
  if (!DumpAsn1Tree(bytes.data(), bytes.size(), &tree, &failure)) {
    return "not a CMS ContentInfo: offset " + std::to_string(failure.offset) + ": " + failure.what;
  }
  return "not a CMS ContentInfo (" + std::string(StatusMeaning(status)) + ", decoder status " +
         std::to_string(status) + ")";
}

void AppendDerLength(size_t length, std::vector<uint8_t> *out) {
  if (length < 0x80) {
    out->push_back(static_cast<uint8_t>(length));
    return;
  }
  uint8_t octets[sizeof(size_t)];
  size_t count = 0;
  for (size_t n = length; n; n >>= 8) octets[count++] = static_cast<uint8_t>(n & 0xFF);
  out->push_back(static_cast<uint8_t>(0x80 | count));
  while (count) out->push_back(octets[--count]);
}

}  // namespace

std::unique_ptr<SignedMessage> SignedMessage::Decode(const std::string &name,
                                                     std::vector<uint8_t> bytes) {
  std::unique_ptr<SignedMessage> message(new SignedMessage());
  message->bytes_ = std::move(bytes);
  const std::vector<uint8_t> &data = message->bytes_;
  if (data.size() > 0x7FFFFFFF) throw FileError(name, "not a CMS ContentInfo: too large");
  if (OpenDecodeContext(&message->ctxt_) != 0) throw std::bad_alloc();
  message->ctxtOpen_ = true;
  int status =
      xd_setp(&message->ctxt_, data.data(), static_cast<int>(data.size()), nullptr, nullptr);
  if (status >= 0) {
    status = asn1data::asn1D_ContentInfo(&message->ctxt_, &message->contentInfo_, ASN1EXPL, 0);
  }
  if (status < 0) throw FileError(name, DecodeFailure(data, status));
  const asn1data::ASN1T_ContentInfo &info = message->contentInfo_;
  if (!rtCmpOID(&info.contentType, &asn1data::id_signedData)) {
    const std::string type = DottedOid(info.contentType);
    const std::string typeName = OidName(type);
    throw FileError(name, "not a CMS SignedData (content type " + type +
                              (typeName.empty() ? "" : ", " + typeName) + ")");
  }
  message->signedData_ = static_cast<const asn1data::ASN1T_SignedData *>(info.content.decoded);
  if (message->signedData_ == nullptr) {
    throw FileError(name, "not a CMS SignedData: its content does not decode as SignedData");
  }
  // The layout reads the ContentInfo where it starts; bytes after it (padding
  // left by the tool that wrote the signature) are no part of it.
  message->walker_ = std::make_unique<DerWalker>(message->bytes_, name);
  try {
    const DerElement contentInfo = message->walker_->Read(0, data.size(), "ContentInfo");
    message->layout_ =
        std::make_unique<SignedDataLayout>(ReadSignedDataIn(*message->walker_, contentInfo));
  } catch (const ToolError &) {
    // The report still comes from the decoded values; what needs the
    // layout is shown as not available.
  }
  return message;
}

SignedMessage::~SignedMessage() {
  if (ctxtOpen_) {
    asn1data::asn1Free_ContentInfo(&ctxt_, &contentInfo_);
    rtFreeContext(&ctxt_);
  }
}

bool SignedMessage::attached() const {
  return signedData_->encapContentInfo.m.eContentPresent != 0;
}

const uint8_t *SignedMessage::contentData() const {
  return attached() ? signedData_->encapContentInfo.eContent.data : nullptr;
}

size_t SignedMessage::contentSize() const {
  return attached() ? signedData_->encapContentInfo.eContent.numocts : 0;
}

std::vector<uint8_t> SignedMessage::SignedAttributesDer(size_t index) const {
  std::vector<uint8_t> der;
  if (!layout_ || index >= layout_->signers.size()) return der;
  // version, sid, digestAlgorithm, then [0] IMPLICIT signedAttrs if present.
  const std::vector<DerElement> &fields = layout_->signers[index].fields;
  if (fields.size() < 4 || fields[3].tag != ContextTag(0)) return der;
  const DerElement &attrs = fields[3];
  der.push_back(0x31);  // SET OF (X.690 8.12), in place of the [0] tag
  AppendDerLength(attrs.contentLength(), &der);
  der.insert(der.end(), bytes_.begin() + static_cast<long>(attrs.contentOffset()),
             bytes_.begin() + static_cast<long>(attrs.contentEnd));
  return der;
}

std::vector<std::vector<uint8_t>> SignedMessage::CertificateEncodings() const {
  return layout_ ? Encodings(layout_->certificates) : std::vector<std::vector<uint8_t>>();
}

std::vector<std::vector<uint8_t>> SignedMessage::CrlEncodings() const {
  return layout_ ? Encodings(layout_->crls) : std::vector<std::vector<uint8_t>>();
}

std::vector<std::vector<uint8_t>> SignedMessage::Encodings(
    const std::vector<DerElement> &elements) const {
  std::vector<std::vector<uint8_t>> out;
  out.reserve(elements.size());
  for (const DerElement &e : elements) out.push_back(walker_->Slice(e));
  return out;
}

}  // namespace adestool
