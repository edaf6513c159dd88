// signed_message.cpp: decoding a ContentInfo into a SignedData, and finding
// the signed attributes in the bytes as they arrived.
#include "signed_message.h"

#include <utility>

#include "asn1_names.h"
#include "asn1_reader.h"
#include "asn1_tree.h"
#include "tool_error.h"
#include "value_text.h"

namespace adestool {

namespace {

constexpr ASN1TAG kSequence = TM_UNIV | TM_CONS | ASN_ID_SEQ;
constexpr ASN1TAG kSet = TM_UNIV | TM_CONS | ASN_ID_SET;
constexpr ASN1TAG kContext0 = TM_CTXT | TM_CONS | 0;

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

// Element is one TLV in the message bytes.
struct Element {
  Asn1Header header;
  size_t offset = 0;
  size_t end = 0;  // past the contents (and the end-of-contents octets)
  size_t contentStart() const { return offset + header.headerLength; }
};

// ElementAt reads the element at offset within limit, following
// indefinite lengths to their end-of-contents octets (X.690 8.1.5).
bool ElementAt(Asn1Reader &reader, size_t offset, size_t limit, int depth, Element *out) {
  if (depth > kMaxTreeDepth || offset >= limit) return false;
  Element e;
  e.offset = offset;
  if (reader.ReadHeader(offset, limit, &e.header) != 0) return false;
  size_t pos = e.contentStart();
  if (!e.header.indefinite) {
    if (e.header.length > limit - pos) return false;
    e.end = pos + e.header.length;
    *out = e;
    return true;
  }
  while (true) {
    if (limit - pos >= 2 && reader.data()[pos] == 0 && reader.data()[pos + 1] == 0) {
      e.end = pos + 2;
      *out = e;
      return true;
    }
    Element child;
    if (!ElementAt(reader, pos, limit, depth + 1, &child)) return false;
    pos = child.end;
  }
}

// Children: the elements inside a constructed element.
bool Children(Asn1Reader &reader, const Element &parent, int depth, std::vector<Element> *out) {
  out->clear();
  size_t pos = parent.contentStart();
  size_t stop = parent.header.indefinite ? parent.end - 2 : parent.end;
  while (pos < stop) {
    Element child;
    if (!ElementAt(reader, pos, stop, depth + 1, &child)) return false;
    out->push_back(child);
    pos = child.end;
  }
  return true;
}

// SignedDataElement finds the SignedData inside the ContentInfo (RFC 5652 3).
bool SignedDataElement(Asn1Reader &reader, Element *out) {
  Element contentInfo;
  std::vector<Element> children;
  if (!ElementAt(reader, 0, reader.size(), 0, &contentInfo) ||
      contentInfo.header.tag != kSequence || !Children(reader, contentInfo, 0, &children) ||
      children.size() < 2 || children[1].header.tag != kContext0) {
    return false;
  }
  Element explicitContent = children[1];
  if (!Children(reader, explicitContent, 1, &children) || children.size() != 1 ||
      children[0].header.tag != kSequence) {
    return false;
  }
  *out = children[0];
  return true;
}

// SignerInfoElement finds SignerInfo index: ContentInfo, [0], SignedData,
// its last SET (signerInfos), its element index (RFC 5652 3, 5.1).
bool SignerInfoElement(Asn1Reader &reader, size_t index, Element *out) {
  Element signedData;
  std::vector<Element> children;
  if (!SignedDataElement(reader, &signedData) || !Children(reader, signedData, 2, &children) ||
      children.empty() || children.back().header.tag != kSet) {
    return false;
  }
  Element signerInfos = children.back();
  if (!Children(reader, signerInfos, 3, &children) || index >= children.size()) return false;
  *out = children[index];
  return true;
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
  if (rtInitContext(&message->ctxt_, nullptr) != 0) throw std::bad_alloc();
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
  Asn1Reader reader(bytes_.data(), bytes_.size());
  Element signerInfo;
  std::vector<Element> fields;
  if (!SignerInfoElement(reader, index, &signerInfo) || !Children(reader, signerInfo, 4, &fields)) {
    return der;
  }
  // version, sid, digestAlgorithm, then [0] IMPLICIT signedAttrs if present.
  if (fields.size() < 4 || fields[3].header.tag != kContext0) return der;
  const Element &attrs = fields[3];
  size_t contentEnd = attrs.header.indefinite ? attrs.end - 2 : attrs.end;
  size_t length = contentEnd - attrs.contentStart();
  der.push_back(0x31);  // SET OF (X.690 8.12), in place of the [0] tag
  AppendDerLength(length, &der);
  der.insert(der.end(), bytes_.begin() + static_cast<long>(attrs.contentStart()),
             bytes_.begin() + static_cast<long>(contentEnd));
  return der;
}

std::vector<std::vector<uint8_t>> SignedMessage::CertificateEncodings() const {
  return FieldElements(0);
}

std::vector<std::vector<uint8_t>> SignedMessage::CrlEncodings() const { return FieldElements(1); }

std::vector<std::vector<uint8_t>> SignedMessage::FieldElements(unsigned tagNumber) const {
  std::vector<std::vector<uint8_t>> out;
  Asn1Reader reader(bytes_.data(), bytes_.size());
  Element signedData;
  std::vector<Element> fields;
  if (!SignedDataElement(reader, &signedData) || !Children(reader, signedData, 2, &fields)) {
    return out;
  }
  for (const Element &field : fields) {
    if (field.header.tag != (TM_CTXT | TM_CONS | tagNumber)) continue;
    std::vector<Element> items;
    if (!Children(reader, field, 3, &items)) return out;
    for (const Element &item : items) {
      out.emplace_back(bytes_.begin() + static_cast<long>(item.offset),
                       bytes_.begin() + static_cast<long>(item.end));
    }
  }
  return out;
}

}  // namespace adestool
