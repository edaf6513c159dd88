// der_walk.h: a checked walk over BER/DER elements held in memory, for the
// commands that read signatures, certificates, CRLs, OCSP responses and
// time-stamp tokens field by field.
//
// Every element read is checked against the element that encloses it and
// against the end of the data; an indefinite length (X.690 8.1.3.6) is
// followed to its end-of-contents octets. A fault throws ToolError
// (status 2) naming the input and the offset.
#ifndef ADESTOOL_DER_WALK_H
#define ADESTOOL_DER_WALK_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "asn1_reader.h"

namespace adestool {

// One element: where it starts, its identifier and length octets, where its
// contents end (before any end-of-contents octets) and where it ends.
struct DerElement {
  size_t offset = 0;
  size_t headerLength = 0;
  bool indefinite = false;
  ASN1TAG tag = 0;
  size_t contentEnd = 0;
  size_t end = 0;

  size_t contentOffset() const { return offset + headerLength; }
  size_t contentLength() const { return contentEnd - contentOffset(); }
  size_t size() const { return end - offset; }
  bool constructed() const { return (tag & TM_FORM_MASK) != 0; }
};

// Tags as Asn1Header reports them.
constexpr ASN1TAG kTagSequence = TM_UNIV | TM_CONS | ASN_ID_SEQ;
constexpr ASN1TAG kTagSet = TM_UNIV | TM_CONS | ASN_ID_SET;
constexpr ASN1TAG kTagInteger = TM_UNIV | ASN_ID_INT;
constexpr ASN1TAG kTagOctetString = TM_UNIV | ASN_ID_OCTSTR;
constexpr ASN1TAG kTagOid = TM_UNIV | ASN_ID_OBJID;
constexpr ASN1TAG kTagUtcTime = TM_UNIV | ASN_ID_UTCTime;
constexpr ASN1TAG kTagGeneralizedTime = TM_UNIV | ASN_ID_GeneralTime;
// [n] constructed, context-specific.
constexpr ASN1TAG ContextTag(unsigned n) { return TM_CTXT | TM_CONS | n; }

class DerWalker {
 public:
  // DerWalker over bytes (kept by the caller) read from the input name.
  DerWalker(const std::vector<uint8_t>& bytes, std::string name);

  const std::vector<uint8_t>& bytes() const { return bytes_; }
  const std::string& name() const { return name_; }

  // Read: the element at offset, which must end at or before limit. what
  // names it in messages ("SignerInfo").
  DerElement Read(size_t offset, size_t limit, std::string_view what);
  // ReadTop: the one element that fills the input (nothing may follow it).
  DerElement ReadTop(std::string_view what);
  // Children: the elements inside a constructed element, in order.
  std::vector<DerElement> Children(const DerElement& parent, std::string_view what);
  // Expect: throws unless element has tag ("offset 12: SignerInfo: expected
  // SEQUENCE").
  void Expect(const DerElement& element, ASN1TAG tag, std::string_view what) const;

  // Slice: the element's whole encoding; Content: its contents octets.
  std::vector<uint8_t> Slice(const DerElement& element) const;
  std::vector<uint8_t> Content(const DerElement& element) const;
  // ContentIs: the contents octets equal bytes (an OID's contents, say).
  bool ContentIs(const DerElement& element, const std::vector<uint8_t>& bytes) const;
  // OidText: the dotted text of an OBJECT IDENTIFIER element.
  std::string OidText(const DerElement& element);

  // Fail throws ToolError (status 2): "NAME: offset N: what".
  [[noreturn]] void Fail(size_t offset, const std::string& what) const;

 private:
  size_t FindEnd(size_t contentOffset, size_t limit, int depth, std::string_view what);

  const std::vector<uint8_t>& bytes_;
  std::string name_;
  Asn1Reader reader_;
};

}  // namespace adestool

#endif
