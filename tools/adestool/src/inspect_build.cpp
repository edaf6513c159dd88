// inspect_build.cpp: the report tree of a SignedData and its checks.
#include "inspect_build.h"

#include <korvex/asn1gen/CertificateExtensions.h>
#include <korvex/asn1gen/PKIX1Implicit88.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/platform/atl/atlexcept.h>

#include <algorithm>
#include <set>

#include "attribute_describe.h"
#include "cades_extension.h"
#include "cades_level.h"
#include "digest.h"
#include "inspect_crypto.h"
#include "tool_error.h"
#include "value_text.h"

namespace adestool {

namespace {

using namespace asn1data;

constexpr char kMessageDigestOid[] = "1.2.840.113549.1.9.4";
constexpr char kRsaPssOid[] = "1.2.840.113549.1.1.10";

const ASN1T_Attribute *FindAttribute(const ASN1T_SignedAttributes &attrs, const char *oid) {
  for (ASN1UINT i = 0; i < attrs.n; ++i) {
    if (DottedOid(attrs.elem[i].type) == oid) return &attrs.elem[i];
  }
  return nullptr;
}

// SubjectKeyId: the subjectKeyIdentifier extension of a certificate
// (RFC 5280 4.2.1.2), or null.
const ASN1DynOctStr *SubjectKeyId(const ASN1T_TBSCertificate &tbs) {
  if (!tbs.m.extensionsPresent) return nullptr;
  for (ASN1UINT i = 0; i < tbs.extensions.n; ++i) {
    const ASN1T_Extension &ext = tbs.extensions.elem[i];
    if (rtCmpOID(&ext.extnID, &id_ce_subjectKeyIdentifier)) {
      return static_cast<const ASN1DynOctStr *>(ext.extnValue.decoded);
    }
  }
  return nullptr;
}

bool SameOctets(const ASN1DynOctStr &a, const ASN1DynOctStr &b) {
  return a.numocts == b.numocts && std::equal(a.data, a.data + a.numocts, b.data);
}

// SignerCertificateIndex: the index among the SignedData's certificates of
// the one sid names (RFC 5652 5.3), or -1.
long SignerCertificateIndex(const ASN1T_SignedData &sd, const ASN1T_SignerIdentifier &sid) {
  if (!sd.m.certificatesPresent) return -1;
  for (ASN1UINT i = 0; i < sd.certificates.n; ++i) {
    const ASN1T_CertificateChoices &choice = sd.certificates.elem[i];
    if (choice.t != ASN1T_CertificateChoices::T_certificate || !choice.u.certificate) continue;
    const ASN1T_TBSCertificate &tbs = choice.u.certificate->tbsCertificate;
    if (sid.t == ASN1T_SignerIdentifier::T_issuerAndSerialNumber && sid.u.issuerAndSerialNumber) {
      const ASN1T_IssuerAndSerialNumber &is = *sid.u.issuerAndSerialNumber;
      if (SerialText(is.serialNumber) == SerialText(tbs.serialNumber) &&
          NameText(is.issuer) == NameText(tbs.issuer)) {
        return static_cast<long>(i);
      }
    } else if (sid.t == ASN1T_SignerIdentifier::T_subjectKeyIdentifier &&
               sid.u.subjectKeyIdentifier) {
      const ASN1DynOctStr *ski = SubjectKeyId(tbs);
      if (ski && SameOctets(*ski, *sid.u.subjectKeyIdentifier)) return static_cast<long>(i);
    }
  }
  return -1;
}

ReportNode IdentifierNode(const ASN1T_SignerIdentifier &sid) {
  ReportNode node = ReportNode::Object("identifier", "identifier");
  if (sid.t == ASN1T_SignerIdentifier::T_issuerAndSerialNumber && sid.u.issuerAndSerialNumber) {
    node.String("type", "type", "issuer and serial number");
    node.String("issuer", "issuer", NameText(sid.u.issuerAndSerialNumber->issuer));
    node.String("serial", "serial", SerialText(sid.u.issuerAndSerialNumber->serialNumber));
    node.Null("key_id", "key identifier").JsonOnly();
  } else if (sid.t == ASN1T_SignerIdentifier::T_subjectKeyIdentifier &&
             sid.u.subjectKeyIdentifier) {
    node.String("type", "type", "subject key identifier");
    node.Null("issuer", "issuer").JsonOnly();
    node.Null("serial", "serial").JsonOnly();
    node.String("key_id", "key identifier",
                HexText(sid.u.subjectKeyIdentifier->data, sid.u.subjectKeyIdentifier->numocts));
  }
  return node;
}

ReportNode CheckNode(const char *key, const char *label, const CheckResult &result) {
  ReportNode node = ReportNode::Object(key, label);
  node.Boolean("passed", "passed", result.passed);
  node.String("detail", "detail", result.detail);
  node.SetInlineText((result.passed ? "passed: " : "FAILED: ") + result.detail);
  return node;
}

CheckResult CheckMessageDigest(const ASN1T_SignerInfo &si, const std::string &digestOid,
                               const uint8_t *content, size_t size) {
  CheckResult result;
  const ASN1T_Attribute *attr = FindAttribute(si.signedAttrs, kMessageDigestOid);
  const ASN1DynOctStr *expected =
      attr && attr->values.n == 1 ? static_cast<const ASN1DynOctStr *>(attr->values.elem[0].decoded)
                                  : nullptr;
  if (expected == nullptr) {
    result.detail = "no usable messageDigest attribute";
    return result;
  }
  std::vector<uint8_t> digest;
  if (!HashBytes(digestOid, content, size, &digest)) {
    result.detail = "no hash for digest algorithm " + digestOid;
    return result;
  }
  result.passed = digest.size() == expected->numocts &&
                  std::equal(digest.begin(), digest.end(), expected->data);
  std::string name = AlgorithmName(digestOid);
  if (name.empty()) name = digestOid;
  result.detail = result.passed
                      ? "the " + name + " digest of the content matches"
                      : "the " + name + " digest of the content is " + HexText(digest) +
                            ", the attribute holds " + HexText(expected->data, expected->numocts);
  return result;
}

struct SignerContext {
  const SignedMessage &message;
  const InspectOptions &options;
  const std::vector<std::vector<uint8_t>> &certs;  // raw, in the SignedData's order
  const uint8_t *content;                          // null when unknown
  size_t contentSize;
};

void AddVerification(const SignerContext &ctx, size_t index, const ASN1T_SignerInfo &si,
                     ReportNode *signer, std::vector<std::string> *failures) {
  const std::string label = "signer " + std::to_string(index + 1) + ": ";
  ReportNode &node = signer->Add(ReportNode::Object("verification", "verification"));
  const std::string digestOid = DottedOid(si.digestAlgorithm.algorithm);
  const bool hasSignedAttrs = si.m.signedAttrsPresent != 0;

  if (hasSignedAttrs) {
    CheckResult digest = CheckMessageDigest(si, digestOid, ctx.content, ctx.contentSize);
    node.Add(CheckNode("message_digest", "message digest", digest));
    if (!digest.passed) failures->push_back(label + "message digest: " + digest.detail);
  } else {
    node.Null("message_digest", "message digest").JsonOnly();
  }

  long certIndex = SignerCertificateIndex(ctx.message.signedData(), si.sid);
  std::vector<uint8_t> certDer;
  if (certIndex >= 0 && static_cast<size_t>(certIndex) < ctx.certs.size()) {
    certDer = ctx.certs[static_cast<size_t>(certIndex)];
  }
  CheckResult signature;
  if (certDer.empty()) {
    signature.detail = "the signer's certificate is not in the message";
  } else if (DottedOid(si.signatureAlgorithm.algorithm) == kRsaPssOid) {
    signature.detail = "RSASSA-PSS signatures cannot be checked";
  } else {
    std::vector<uint8_t> signedBytes =
        hasSignedAttrs ? ctx.message.SignedAttributesDer(index) : std::vector<uint8_t>();
    const uint8_t *data = hasSignedAttrs ? signedBytes.data() : ctx.content;
    size_t size = hasSignedAttrs ? signedBytes.size() : ctx.contentSize;
    std::vector<uint8_t> value(si.signature.data, si.signature.data + si.signature.numocts);
    if (hasSignedAttrs && signedBytes.empty()) {
      signature.detail = "the signed attributes cannot be located";
    } else {
      signature = VerifySignatureValue(certDer, digestOid, data, size, value);
    }
  }
  node.Add(CheckNode("signature", "signature", signature));
  if (!signature.passed) failures->push_back(label + "signature: " + signature.detail);

  if (!ctx.options.checkChain) {
    node.Null("chain", "chain").JsonOnly();
    return;
  }
  CheckResult chain;
  if (certDer.empty()) {
    chain.detail = "the signer's certificate is not in the message";
  } else {
    chain = CheckChainNow(certDer, ctx.certs);
  }
  node.Add(CheckNode("chain", "chain", chain));
  if (!chain.passed) failures->push_back(label + "chain: " + chain.detail);
}

void AddLevel(const ASN1T_SignerInfo &si, ReportNode *signer) {
  std::set<std::string> present;
  if (si.m.unsignedAttrsPresent) {
    for (ASN1UINT i = 0; i < si.unsignedAttrs.n; ++i) {
      present.insert(DottedOid(si.unsignedAttrs.elem[i].type));
    }
  }
  CadesLevel level = DetermineLevel(present);
  ReportNode &node = signer->Add(ReportNode::Object("level", "CAdES level"));
  node.String("format", "format", level.format);
  if (level.next.empty()) {
    node.Null("next", "next");
  } else {
    node.String("next", "next", level.next);
  }
  ReportNode &missing = node.Add(ReportNode::Array("missing", "missing for next"));
  for (const std::string &oid : level.missing) {
    ReportNode &item = missing.Add(AlgorithmNode("", "attribute", oid));
    item.SetInlineText(AttributeLabel(oid));
  }
}

// EscData: what signer index's CAdES-C time-stamp covers, computed as
// `imprint --for esc` computes it; empty when the signer has no such
// time-stamp or the data cannot be formed (no signature time-stamp, a
// reference attribute missing or repeated, bytes that do not lay out).
std::vector<uint8_t> EscData(const SignedMessage &message, size_t index) {
  const SignedDataLayout *layout = message.layout();
  if (layout == nullptr || index >= layout->signers.size()) return {};
  const SignerLayout &signer = layout->signers[index];
  if (signer.FindUnsigned(oids::kEscTimeStamp).empty()) return {};
  try {
    return EscImprintData(*message.walker(), signer, index, nullptr);
  } catch (const ToolError &) {
    return {};
  }
}

// ImprintFailure: the --verify failure of a time-stamp attribute whose
// imprint does not match what it covers, empty for the attributes whose
// imprints --verify does not hold to (content and archive time-stamps).
std::string ImprintFailure(const std::string &oid) {
  if (oid == oids::kSignatureTimeStamp) {
    return "signature time-stamp: the token's imprint does not match the signature value";
  }
  if (oid == oids::kEscTimeStamp) {
    return "CAdES-C time-stamp: the token's imprint does not match the CAdES-C data";
  }
  return std::string();
}

ReportNode SignerNode(const SignerContext &ctx, size_t index, std::vector<std::string> *failures) {
  const ASN1T_SignerInfo &si = ctx.message.signedData().signerInfos.elem[index];
  ReportNode node = ReportNode::Object("", "signer " + std::to_string(index + 1));
  node.Integer("index", "index", static_cast<int64_t>(index + 1)).JsonOnly();
  node.Integer("version", "version", si.version);
  node.Add(IdentifierNode(si.sid));
  node.Add(AlgorithmNode("digest_algorithm", "digest algorithm",
                         DottedOid(si.digestAlgorithm.algorithm)));
  node.Add(AlgorithmNode("signature_algorithm", "signature algorithm",
                         DottedOid(si.signatureAlgorithm.algorithm)));
  node.Integer("signature_size", "signature size", si.signature.numocts);

  ImprintSources sources;
  sources.signature = si.signature.data;
  sources.signatureSize = si.signature.numocts;
  sources.content = ctx.content;
  sources.contentSize = ctx.contentSize;
  const std::vector<uint8_t> escData = EscData(ctx.message, index);
  if (!escData.empty()) {
    sources.escData = escData.data();
    sources.escDataSize = escData.size();
  }

  ReportNode &signedAttrs = node.Add(ReportNode::Array("signed_attributes", "signed attributes"));
  if (si.m.signedAttrsPresent) {
    for (ASN1UINT i = 0; i < si.signedAttrs.n; ++i) {
      DescribeAttribute(si.signedAttrs.elem[i], sources, &signedAttrs);
    }
  }
  ReportNode &unsignedAttrs =
      node.Add(ReportNode::Array("unsigned_attributes", "unsigned attributes"));
  if (si.m.unsignedAttrsPresent) {
    for (ASN1UINT i = 0; i < si.unsignedAttrs.n; ++i) {
      const ASN1T_Attribute &attr = si.unsignedAttrs.elem[i];
      const size_t mismatches = DescribeAttribute(attr, sources, &unsignedAttrs);
      const std::string failure = ImprintFailure(DottedOid(attr.type));
      if (ctx.options.verify && mismatches > 0 && !failure.empty()) {
        failures->push_back("signer " + std::to_string(index + 1) + ": " + failure);
      }
    }
  }
  AddLevel(si, &node);
  if (ctx.options.verify) {
    AddVerification(ctx, index, si, &node, failures);
  } else {
    node.Null("verification", "verification").JsonOnly();
  }
  return node;
}

}  // namespace

InspectOutcome BuildInspectReport(const std::string &fileName, const SignedMessage &message,
                                  const InspectOptions &options) {
  InspectOutcome outcome;
  ReportNode &root = outcome.report;
  const ASN1T_SignedData &sd = message.signedData();
  root.Integer("schema_version", "schema version", 1).JsonOnly();
  root.String("file", "file", fileName);
  root.Integer("version", "SignedData version", sd.version);
  root.Add(
      AlgorithmNode("content_type", "content type", DottedOid(sd.encapContentInfo.eContentType)));

  const uint8_t *content = message.contentData();
  size_t contentSize = message.contentSize();
  if (!message.attached() && options.detachedContent) {
    content = options.detachedContent->data();
    contentSize = options.detachedContent->size();
  }
  const bool known = message.attached() || options.detachedContent;
  ReportNode &contentNode = root.Add(ReportNode::Object("content", "content"));
  contentNode.Boolean("attached", "attached", message.attached());
  if (known) {
    contentNode.Integer("size", "size", static_cast<int64_t>(contentSize));
  } else {
    contentNode.Null("size", "size");
  }
  contentNode.SetInlineText(
      std::string(message.attached() ? "attached" : "detached") +
      (known ? ", " + std::to_string(contentSize) + " bytes" : std::string()));

  std::vector<std::vector<uint8_t>> certs = message.CertificateEncodings();
  root.Integer("certificates", "certificates", sd.m.certificatesPresent ? sd.certificates.n : 0);
  root.Integer("crls", "CRLs", sd.m.crlsPresent ? sd.crls.n : 0);

  SignerContext ctx{message, options, certs, known ? content : nullptr, contentSize};
  ReportNode &signers = root.Add(ReportNode::Array("signers", "signers"));
  for (ASN1UINT i = 0; i < sd.signerInfos.n; ++i) {
    signers.Add(SignerNode(ctx, i, &outcome.failures));
  }
  return outcome;
}

std::vector<std::vector<uint8_t>> CarriedCrls(const SignedMessage &message) {
  std::vector<std::vector<uint8_t>> crls = message.CrlEncodings();
  const ASN1T_SignedData &sd = message.signedData();
  for (ASN1UINT s = 0; s < sd.signerInfos.n; ++s) {
    const ASN1T_SignerInfo &si = sd.signerInfos.elem[s];
    if (!si.m.unsignedAttrsPresent) continue;
    for (ASN1UINT a = 0; a < si.unsignedAttrs.n; ++a) {
      const ASN1T_Attribute &attr = si.unsignedAttrs.elem[a];
      if (DottedOid(attr.type) != oids::kRevocationValues) continue;
      for (ASN1UINT v = 0; v < attr.values.n; ++v) {
        try {
          Korvex::PKI::CAdES::CRevocationValues values;
          values.decode(Korvex::CBlob(attr.values.elem[v].data, attr.values.elem[v].numocts));
          if (const Korvex::CBlobList *list = values.get_crlVals()) {
            for (const Korvex::CBlob &crl : *list) {
              crls.emplace_back(crl.pbData(), crl.pbData() + crl.cbData());
            }
          }
        } catch (const ATL::CAtlException &) {
          // The report shows the value as undecodable; no CRLs from it.
        }
      }
    }
  }
  return crls;
}

}  // namespace adestool
