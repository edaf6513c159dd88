// signed_message.h: a CMS SignedData (RFC 5652 5) decoded with the
// generated types, attached or detached.
//
// The whole ContentInfo is decoded once into one runtime context; the
// table-constrained open types inside (attribute values, the encapsulated
// content, time-stamp tokens) come typed where the catalogue knows them.
// The message also lays out the bytes as they arrived (cms_layout.h), the
// same walk `imprint` and `extend` make: each signer's signed attributes,
// whose DER with a SET OF tag is what the signature covers (RFC 5652 5.4),
// its unsigned attributes as they stand, and the certificates and CRLs.
#ifndef ADESTOOL_SIGNED_MESSAGE_H
#define ADESTOOL_SIGNED_MESSAGE_H

#include <korvex/asn1gen/CryptographicMessageSyntax2004.h>
#include <korvex/asn1rt/asn1ber.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cms_layout.h"
#include "decode_context.h"
#include "der_walk.h"

namespace adestool {

class SignedMessage {
 public:
  // Decode reads bytes (kept by the message) as a ContentInfo holding a
  // SignedData. Throws ToolError (status 2) naming name: "not a CMS
  // ContentInfo (decoder status -3)", "not a CMS SignedData (content type
  // 1.2.840.113549.1.7.1)".
  static std::unique_ptr<SignedMessage> Decode(const std::string &name, std::vector<uint8_t> bytes);
  ~SignedMessage();
  SignedMessage(const SignedMessage &) = delete;
  SignedMessage &operator=(const SignedMessage &) = delete;

  const asn1data::ASN1T_SignedData &signedData() const { return *signedData_; }
  const std::vector<uint8_t> &bytes() const { return bytes_; }

  // Attached: the SignedData carries its content (eContent present).
  bool attached() const;
  // Content: the encapsulated content octets (empty when detached).
  const uint8_t *contentData() const;
  size_t contentSize() const;

  // SignedAttributesDer: the DER that signer index's signature covers, the
  // signed attributes with the SET OF tag 0x31 (RFC 5652 5.4); empty when
  // the signer has none or they cannot be located.
  std::vector<uint8_t> SignedAttributesDer(size_t index) const;

  // CertificateEncodings / CrlEncodings: the elements of the SignedData's
  // certificates [0] and crls [1] fields as they stand in the bytes, in
  // order (the order of signedData().certificates and .crls).
  std::vector<std::vector<uint8_t>> CertificateEncodings() const;
  std::vector<std::vector<uint8_t>> CrlEncodings() const;

  // layout / walker: the layout of the bytes and the walker over them, null
  // when the bytes do not lay out as a SignedData (cms_layout.h is stricter
  // than the decoder in a few places: no signers, deeply segmented strings).
  const SignedDataLayout *layout() const { return layout_.get(); }
  const DerWalker *walker() const { return walker_.get(); }

 private:
  SignedMessage() = default;
  std::vector<std::vector<uint8_t>> Encodings(const std::vector<DerElement> &elements) const;

  std::vector<uint8_t> bytes_;
  std::unique_ptr<DerWalker> walker_;  // over bytes_
  std::unique_ptr<SignedDataLayout> layout_;
  ASN1CTXT ctxt_{};
  bool ctxtOpen_ = false;
  asn1data::ASN1T_ContentInfo contentInfo_;
  const asn1data::ASN1T_SignedData *signedData_ = nullptr;
};

// Decoded owns one record of a generated type decoded from bytes that it
// keeps, with its own runtime context (for time-stamp tokens, certificates
// and CRLs met inside attributes).
template <typename Record>
class Decoded {
 public:
  using DecodeFn = int (*)(ASN1CTXT *, Record *, ASN1TagType, int);
  using FreeFn = void (*)(ASN1CTXT *, Record *);
  Decoded(const uint8_t *data, size_t size, DecodeFn decode, FreeFn free)
      : bytes_(data, data + size), free_(free) {
    if (OpenDecodeContext(&ctxt_) != 0) return;
    open_ = true;
    if (bytes_.empty() || bytes_.size() > 0x7FFFFFFF) return;
    if (xd_setp(&ctxt_, bytes_.data(), static_cast<int>(bytes_.size()), nullptr, nullptr) < 0) {
      return;
    }
    ok_ = decode(&ctxt_, &record_, ASN1EXPL, 0) >= 0;
  }
  ~Decoded() {
    if (open_) {
      free_(&ctxt_, &record_);
      rtFreeContext(&ctxt_);
    }
  }
  Decoded(const Decoded &) = delete;
  Decoded &operator=(const Decoded &) = delete;

  // ok: the bytes decoded as the type.
  bool ok() const { return ok_; }
  const Record &record() const { return record_; }

 private:
  std::vector<uint8_t> bytes_;
  FreeFn free_;
  ASN1CTXT ctxt_{};
  bool open_ = false;
  bool ok_ = false;
  Record record_;
};

}  // namespace adestool

#endif
