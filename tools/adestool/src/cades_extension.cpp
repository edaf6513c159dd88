// cades_extension.cpp: validation attributes, imprint data and the rewrite
// of a SignedData.
#include "cades_extension.h"

#include <utility>

#include "der_writer.h"
#include "tool_error.h"
#include "validation_data.h"

namespace adestool {

namespace {

std::vector<uint8_t> Range(const std::vector<uint8_t>& bytes, size_t from, size_t to) {
  return std::vector<uint8_t>(bytes.begin() + from, bytes.begin() + to);
}

// The contents octets of an Attribute encoding made by AttributeDer (or any
// definite-length element): what follows its identifier and length octets.
std::vector<uint8_t> ContentOf(const std::vector<uint8_t>& element) {
  size_t header = 2;
  if (element[1] & 0x80) header += element[1] & 0x7F;
  return Range(element, header, element.size());
}

bool SameCertificate(const CertificateItem& cert, const DerWalker& walker, const DerElement& sid,
                     const std::vector<DerElement>& sidParts) {
  if (sid.tag == kTagSequence) {
    return sidParts.size() == 2 && walker.Slice(sidParts[0]) == cert.issuer &&
           walker.Content(sidParts[1]) == cert.serial;
  }
  return !cert.keyId.empty() && walker.Content(sid) == cert.keyId;
}

std::string SignerName(size_t index) { return "signer " + std::to_string(index + 1); }

}  // namespace

LoadedSignature LoadSignature(CommandContext& context, const std::string& path) {
  LoadedSignature sig;
  sig.input = context.LoadInput(path);
  if (sig.input.items.size() != 1) {
    throw FileError(sig.input.name, "expected one signature, found " +
                                        std::to_string(sig.input.items.size()) + " PEM blocks");
  }
  sig.walker = std::make_unique<DerWalker>(sig.input.items[0].bytes, sig.input.name);
  sig.layout = ReadSignedData(*sig.walker);
  return sig;
}

ValidationInputs LoadValidationInputs(CommandContext& context) {
  ValidationInputs inputs;
  for (const std::string& path : context.args().Values("cert")) {
    for (CertificateItem& c : ReadCertificates(context.LoadInput(path))) {
      inputs.certs.push_back(std::move(c));
    }
  }
  for (const std::string& path : context.args().Values("crl")) {
    for (CrlItem& c : ReadCrls(context.LoadInput(path))) inputs.crls.push_back(std::move(c));
  }
  for (const std::string& path : context.args().Values("ocsp")) {
    for (OcspItem& r : ReadOcspResponses(context.LoadInput(path))) {
      inputs.responses.push_back(std::move(r));
    }
  }
  return inputs;
}

std::vector<uint8_t> AttributeDer(const std::string& oid, const std::vector<uint8_t>& value) {
  std::vector<uint8_t> content = DerOid(oid);
  Append(&content, DerWrap(0x31, value));
  return DerWrap(0x30, content);
}

ValidationAttributes BuildValidationAttributes(DerWalker& walker, const SignedDataLayout& layout,
                                               size_t signerIndex, const ValidationInputs& inputs,
                                               const HashAlgorithm& refHash) {
  const SignerLayout& signer = layout.signers[signerIndex];
  std::vector<DerElement> sidParts;
  if (signer.sid.tag == kTagSequence) {
    sidParts = walker.Children(signer.sid, "IssuerAndSerialNumber");
  } else if (signer.sid.tag != (TM_CTXT | 0)) {
    walker.Fail(signer.sid.offset, SignerName(signerIndex) + ": unknown SignerIdentifier");
  }
  const CertificateItem* signerCert = nullptr;
  std::vector<CertificateItem> embedded;
  for (const DerElement& choice : layout.certificates) {
    if (choice.tag != kTagSequence) continue;  // attribute and other certificates
    embedded.push_back(CertificateItemFromDer(
        walker.Slice(choice),
        walker.name() + " (certificate at offset " + std::to_string(choice.offset) + ")"));
  }
  for (const CertificateItem& c : embedded) {
    if (SameCertificate(c, walker, signer.sid, sidParts)) signerCert = &c;
  }
  for (const CertificateItem& c : inputs.certs) {
    if (!signerCert && SameCertificate(c, walker, signer.sid, sidParts)) signerCert = &c;
  }
  if (!signerCert) {
    throw FileError(walker.name(), SignerName(signerIndex) +
                                       ": its certificate is neither in the signature nor "
                                       "among the --cert files");
  }
  std::vector<CertificateItem> referenced;
  for (const CertificateItem& c : inputs.certs) {
    if (c.der != signerCert->der) referenced.push_back(c);
  }
  std::vector<CertificateItem> path{*signerCert};
  path.insert(path.end(), referenced.begin(), referenced.end());

  ValidationAttributes a;
  a.certificateRefs = AttributeDer(oids::kCertificateRefs, CertificateRefsDer(referenced, refHash));
  a.revocationRefs = AttributeDer(oids::kRevocationRefs,
                                  RevocationRefsDer(path, inputs.crls, inputs.responses, refHash));
  a.certificateValues = AttributeDer(oids::kCertificateValues, CertificateValuesDer(referenced));
  a.revocationValues =
      AttributeDer(oids::kRevocationValues, RevocationValuesDer(inputs.crls, inputs.responses));
  return a;
}

void RequireSignatureTimeStamp(const DerWalker& walker, const SignerLayout& signer,
                               size_t signerIndex) {
  if (signer.FindUnsigned(oids::kSignatureTimeStamp).empty()) {
    throw CheckFailure(walker.name(), SignerName(signerIndex) +
                                          " has no signature time-stamp (extend it to t first)");
  }
}

bool SignerNeedsReferences(const SignerLayout& signer) {
  return signer.FindUnsigned(oids::kCertificateRefs).empty() &&
         signer.FindUnsigned(oids::kRevocationRefs).empty();
}

std::vector<uint8_t> EscImprintData(const DerWalker& walker, const SignerLayout& signer,
                                    size_t signerIndex, const ValidationAttributes* built) {
  const std::string who = SignerName(signerIndex);
  std::vector<uint8_t> data = signer.signature;
  RequireSignatureTimeStamp(walker, signer, signerIndex);
  for (const AttributeLayout* a : signer.FindUnsigned(oids::kSignatureTimeStamp)) {
    Append(&data, Range(walker.bytes(), a->attribute.contentOffset(), a->attribute.contentEnd));
  }
  if (built) {
    if (!SignerNeedsReferences(signer)) {
      throw UsageError(walker.name() + ": " + who +
                       " already has complete references; give no --cert, --crl or --ocsp");
    }
    Append(&data, ContentOf(built->certificateRefs));
    Append(&data, ContentOf(built->revocationRefs));
    return data;
  }
  struct Reference {
    const char* oid;
    const char* name;
  };
  for (const Reference& ref :
       {Reference{oids::kCertificateRefs, "complete-certificate-references"},
        Reference{oids::kRevocationRefs, "complete-revocation-references"}}) {
    const std::vector<const AttributeLayout*> found = signer.FindUnsigned(ref.oid);
    if (found.empty()) {
      throw CheckFailure(walker.name(), who + " has no " + ref.name + " attribute");
    }
    if (found.size() > 1) {
      throw CheckFailure(walker.name(), who + " has more than one " + ref.name + " attribute");
    }
    Append(&data, Range(walker.bytes(), found[0]->attribute.contentOffset(),
                        found[0]->attribute.contentEnd));
  }
  return data;
}

std::vector<uint8_t> AddUnsignedAttributes(
    const DerWalker& walker, const SignedDataLayout& layout,
    const std::vector<std::vector<std::vector<uint8_t>>>& additions) {
  const std::vector<uint8_t>& bytes = walker.bytes();
  std::vector<uint8_t> signerInfos;
  for (size_t i = 0; i < layout.signers.size(); ++i) {
    const SignerLayout& s = layout.signers[i];
    if (i >= additions.size() || additions[i].empty()) {
      Append(&signerInfos, walker.Slice(s.signerInfo));
      continue;
    }
    // Everything up to and including the signature stays as it is, the
    // signed attributes with it.
    std::vector<uint8_t> content = Range(bytes, s.fields[0].offset, s.fields[s.signatureIndex].end);
    std::vector<uint8_t> attributes;
    if (s.hasUnsignedAttrs) {
      const DerElement& old = s.fields.back();
      attributes = Range(bytes, old.contentOffset(), old.contentEnd);
    }
    for (const std::vector<uint8_t>& a : additions[i]) Append(&attributes, a);
    Append(&content, DerWrap(0xA1, attributes));
    Append(&signerInfos, DerWrap(0x30, content));
  }
  // SignedData: its fields before signerInfos as they stand, then the new set.
  std::vector<uint8_t> signedData =
      Range(bytes, layout.signedData.contentOffset(), layout.signerInfos.offset);
  Append(&signedData, DerWrap(0x31, signerInfos));
  const std::vector<uint8_t> explicitContent = DerWrap(0xA0, DerWrap(0x30, signedData));
  std::vector<uint8_t> contentInfo =
      Range(bytes, layout.contentInfo.contentOffset(), layout.explicitContent.offset);
  Append(&contentInfo, explicitContent);
  return DerWrap(0x30, contentInfo);
}

std::vector<size_t> SelectSigners(const CommandContext& context, std::string_view command,
                                  const SignedDataLayout& layout) {
  const std::string* n = context.args().Value("signer");
  std::vector<size_t> selected;
  if (!n) {
    for (size_t i = 0; i < layout.signers.size(); ++i) selected.push_back(i);
    return selected;
  }
  const size_t count = layout.signers.size();
  if (n->empty() || n->size() > 6 || n->find_first_not_of("0123456789") != std::string::npos ||
      std::stoul(*n) < 1 || std::stoul(*n) > count) {
    throw UsageError(std::string(command) + ": --signer " + *n + ": the signature has " +
                     std::to_string(count) + (count == 1 ? " signer" : " signers"));
  }
  selected.push_back(std::stoul(*n) - 1);
  return selected;
}

}  // namespace adestool
