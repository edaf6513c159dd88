// cms_layout.h: where the parts of a CMS SignedData (RFC 5652 5) lie in its
// encoding, down to each SignerInfo's signature value and unsigned
// attributes, as offsets into the bytes (nothing is decoded into values, so
// that the bytes can be copied exactly as they stand).
//
//   ContentInfo ::= SEQUENCE { contentType OID, content [0] EXPLICIT ANY }
//   SignedData ::= SEQUENCE { version, digestAlgorithms SET,
//     encapContentInfo SEQUENCE, certificates [0] IMPLICIT OPTIONAL,
//     crls [1] IMPLICIT OPTIONAL, signerInfos SET OF SignerInfo }
//   SignerInfo ::= SEQUENCE { version, sid, digestAlgorithm,
//     signedAttrs [0] IMPLICIT OPTIONAL, signatureAlgorithm,
//     signature OCTET STRING, unsignedAttrs [1] IMPLICIT SET OF Attribute OPTIONAL }
#ifndef ADESTOOL_CMS_LAYOUT_H
#define ADESTOOL_CMS_LAYOUT_H

#include <string>
#include <vector>

#include "der_walk.h"

namespace adestool {

// Attribute ::= SEQUENCE { attrType OID, attrValues SET OF ANY }
struct AttributeLayout {
  DerElement attribute;            // the SEQUENCE
  std::string oid;                 // dotted attrType
  std::vector<DerElement> values;  // the elements of attrValues
};

struct SignerLayout {
  DerElement signerInfo;
  std::vector<DerElement> fields;  // the SignerInfo's children, in order
  DerElement sid;
  size_t signatureIndex = 0;       // fields[signatureIndex] is the signature
  std::vector<uint8_t> signature;  // the signature value (contents octets)
  bool hasUnsignedAttrs = false;   // fields.back() is the [1] when set
  std::vector<AttributeLayout> unsignedAttrs;

  // FindUnsigned: the unsigned attributes of type oid, in order.
  std::vector<const AttributeLayout*> FindUnsigned(const std::string& oid) const;
};

struct SignedDataLayout {
  DerElement contentInfo;
  DerElement explicitContent;  // the [0] of the ContentInfo
  DerElement signedData;
  DerElement signerInfos;
  std::vector<DerElement> certificates;  // CertificateChoices, in order
  std::vector<DerElement> crls;          // RevocationInfoChoices, in order
  std::vector<SignerLayout> signers;
};

// ReadSignedData: the layout of the one ContentInfo of id-signedData that
// fills the walker's input. Throws ToolError (status 2) for anything else,
// naming the offset of the fault.
SignedDataLayout ReadSignedData(DerWalker& walker);

// ReadSignedDataIn: the same for the ContentInfo element contentInfo of the
// walker's input (bytes may follow it, as after a signature padded by the
// tool that wrote it).
SignedDataLayout ReadSignedDataIn(DerWalker& walker, const DerElement& contentInfo);

// OctetStringValue: the value of an OCTET STRING element, primitive or (BER)
// constructed from segments.
std::vector<uint8_t> OctetStringValue(DerWalker& walker, const DerElement& element,
                                      const std::string& what);

// Well-known object identifiers, dotted.
namespace oids {
constexpr const char kSignedData[] = "1.2.840.113549.1.7.2";
constexpr const char kTstInfo[] = "1.2.840.113549.1.9.16.1.4";
constexpr const char kSignatureTimeStamp[] = "1.2.840.113549.1.9.16.2.14";
constexpr const char kCertificateRefs[] = "1.2.840.113549.1.9.16.2.21";
constexpr const char kRevocationRefs[] = "1.2.840.113549.1.9.16.2.22";
constexpr const char kCertificateValues[] = "1.2.840.113549.1.9.16.2.23";
constexpr const char kRevocationValues[] = "1.2.840.113549.1.9.16.2.24";
constexpr const char kEscTimeStamp[] = "1.2.840.113549.1.9.16.2.25";
constexpr const char kCrlNumber[] = "2.5.29.20";
constexpr const char kSubjectKeyIdentifier[] = "2.5.29.14";
constexpr const char kOcspBasic[] = "1.3.6.1.5.5.7.48.1.1";
}  // namespace oids

}  // namespace adestool

#endif
