// cades_extension.h: what `imprint` hashes and what `extend` adds to a
// SignerInfo, and the rewrite of a SignedData with new unsigned attributes.
//
// Time-stamp imprints (RFC 5126 6.1.1 and 6.3.5, ETSI EN 319 122-1 5.3 and
// A.1.5.1):
//   signature time-stamp: the hash of the signature value, the contents
//     octets of SignerInfo.signature (no tag, no length);
//   CAdES-C time-stamp: the hash of the concatenation of the signature
//     value as above, then for every signature-time-stamp attribute (in the
//     order they appear), the complete-certificate-references attribute and
//     the complete-revocation-references attribute: the contents octets of
//     the Attribute SEQUENCE, that is the DER of attrType followed by the
//     DER of attrValues (the SEQUENCE's own tag and length left out).
#ifndef ADESTOOL_CADES_EXTENSION_H
#define ADESTOOL_CADES_EXTENSION_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cms_layout.h"
#include "command.h"
#include "digest.h"
#include "pki_items.h"

namespace adestool {

// A signature read from a file: its bytes, a walker over them and the
// layout of its SignedData. The walker refers to input.items[0].bytes, which
// stays in place when the value is moved (the items' buffer moves whole).
struct LoadedSignature {
  Input input;
  std::unique_ptr<DerWalker> walker;
  SignedDataLayout layout;
};

// LoadSignature reads path as one CMS SignedData (DER, BER, PEM or base64).
// Throws ToolError (status 2) for anything else.
LoadedSignature LoadSignature(CommandContext& context, const std::string& path);

// The certificates, CRLs and OCSP responses of --cert, --crl and --ocsp.
struct ValidationInputs {
  std::vector<CertificateItem> certs;
  std::vector<CrlItem> crls;
  std::vector<OcspItem> responses;
  bool empty() const { return certs.empty() && crls.empty() && responses.empty(); }
};

// LoadValidationInputs reads every --cert, --crl and --ocsp file.
ValidationInputs LoadValidationInputs(CommandContext& context);

// The four validation-data attributes of one signer, each a complete
// Attribute encoding.
struct ValidationAttributes {
  std::vector<uint8_t> certificateRefs;
  std::vector<uint8_t> revocationRefs;
  std::vector<uint8_t> certificateValues;
  std::vector<uint8_t> revocationValues;
};

// BuildValidationAttributes: the references and values for signer. The
// signer's certificate is looked up by its sid among the signature's
// certificates and the --cert certificates; the references name the --cert
// certificates other than the signer's, the revocation references cover
// the signer's certificate and then those. Throws ToolError (status 2) when
// the signer's certificate is not found.
ValidationAttributes BuildValidationAttributes(DerWalker& walker, const SignedDataLayout& layout,
                                               size_t signerIndex, const ValidationInputs& inputs,
                                               const HashAlgorithm& refHash);

// AttributeDer: Attribute ::= SEQUENCE { attrType, attrValues SET { value } }.
std::vector<uint8_t> AttributeDer(const std::string& oid, const std::vector<uint8_t>& value);

// EscImprintData: the octets the CAdES-C time-stamp covers for signer. With
// built null, the signer's own reference attributes are used (there must be
// exactly one of each); otherwise the signer must have none and built's
// references are used. Throws CheckFailure (status 1) naming the signature
// when the signer has no signature time-stamp or its references are
// incomplete, and a usage error when built is given to a signer that has
// references.
std::vector<uint8_t> EscImprintData(const DerWalker& walker, const SignerLayout& signer,
                                    size_t signerIndex, const ValidationAttributes* built);

// RequireSignatureTimeStamp throws CheckFailure (status 1) naming the
// signature when signer has no signature time-stamp.
void RequireSignatureTimeStamp(const DerWalker& walker, const SignerLayout& signer,
                               size_t signerIndex);

// SignerNeedsReferences: the signer has neither reference attribute.
bool SignerNeedsReferences(const SignerLayout& signer);

// AddUnsignedAttributes: the SignedData of walker with, for every signer i,
// the attributes additions[i] (complete Attribute encodings) appended to its
// unsignedAttrs. Only the SignerInfos that change are re-encoded, and only
// their unsignedAttrs; every other byte is copied, and the lengths of the
// enclosing elements are rewritten (an indefinite length on the path becomes
// definite).
std::vector<uint8_t> AddUnsignedAttributes(
    const DerWalker& walker, const SignedDataLayout& layout,
    const std::vector<std::vector<std::vector<uint8_t>>>& additions);

// SelectSigners: every signer, or the one that --signer N names (1-based);
// throws a usage error for a number out of range.
std::vector<size_t> SelectSigners(const CommandContext& context, std::string_view command,
                                  const SignedDataLayout& layout);

}  // namespace adestool

#endif
