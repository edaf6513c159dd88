// cms_layout.cpp: ReadSignedData and ReadSignedDataIn.
#include "cms_layout.h"

namespace adestool {

namespace {

constexpr int kMaxSegmentDepth = 8;

void AppendSegments(DerWalker& walker, const DerElement& element, const std::string& what,
                    int depth, std::vector<uint8_t>* out) {
  if (!element.constructed()) {
    const std::vector<uint8_t> part = walker.Content(element);
    out->insert(out->end(), part.begin(), part.end());
    return;
  }
  if (depth >= kMaxSegmentDepth) walker.Fail(element.offset, what + ": segments nested too deep");
  for (const DerElement& segment : walker.Children(element, what)) {
    if ((segment.tag & ~TM_FORM_MASK) != kTagOctetString) {
      walker.Fail(segment.offset, what + ": segment is not an OCTET STRING");
    }
    AppendSegments(walker, segment, what, depth + 1, out);
  }
}

AttributeLayout ReadAttribute(DerWalker& walker, const DerElement& attribute,
                              const std::string& what) {
  walker.Expect(attribute, kTagSequence, what);
  std::vector<DerElement> parts = walker.Children(attribute, what);
  if (parts.size() != 2) walker.Fail(attribute.offset, what + ": expected attrType and attrValues");
  AttributeLayout layout;
  layout.attribute = attribute;
  layout.oid = walker.OidText(parts[0]);
  walker.Expect(parts[1], kTagSet, what + " attrValues");
  layout.values = walker.Children(parts[1], what + " value");
  return layout;
}

SignerLayout ReadSigner(DerWalker& walker, const DerElement& signerInfo, size_t number) {
  const std::string what = "SignerInfo " + std::to_string(number);
  walker.Expect(signerInfo, kTagSequence, what);
  SignerLayout s;
  s.signerInfo = signerInfo;
  s.fields = walker.Children(signerInfo, what);
  // version, sid, digestAlgorithm, [signedAttrs], signatureAlgorithm, signature.
  size_t i = 3;
  if (s.fields.size() > i && s.fields[i].tag == ContextTag(0)) ++i;
  ++i;  // signatureAlgorithm
  if (s.fields.size() <= i) walker.Fail(signerInfo.offset, what + ": no signature");
  walker.Expect(s.fields[0], kTagInteger, what + " version");
  s.sid = s.fields[1];
  walker.Expect(s.fields[2], kTagSequence, what + " digestAlgorithm");
  walker.Expect(s.fields[i - 1], kTagSequence, what + " signatureAlgorithm");
  if ((s.fields[i].tag & ~TM_FORM_MASK) != kTagOctetString) {
    walker.Expect(s.fields[i], kTagOctetString, what + " signature");
  }
  s.signatureIndex = i;
  s.signature = OctetStringValue(walker, s.fields[i], what + " signature");
  if (s.fields.size() > i + 2) walker.Fail(s.fields[i + 2].offset, what + ": unexpected field");
  if (s.fields.size() == i + 2) {
    const DerElement& unsignedAttrs = s.fields[i + 1];
    walker.Expect(unsignedAttrs, ContextTag(1), what + " unsignedAttrs");
    s.hasUnsignedAttrs = true;
    for (const DerElement& a : walker.Children(unsignedAttrs, what + " unsigned attribute")) {
      s.unsignedAttrs.push_back(ReadAttribute(walker, a, what + " unsigned attribute"));
    }
  }
  return s;
}

}  // namespace

std::vector<const AttributeLayout*> SignerLayout::FindUnsigned(const std::string& oid) const {
  std::vector<const AttributeLayout*> found;
  for (const AttributeLayout& a : unsignedAttrs) {
    if (a.oid == oid) found.push_back(&a);
  }
  return found;
}

std::vector<uint8_t> OctetStringValue(DerWalker& walker, const DerElement& element,
                                      const std::string& what) {
  std::vector<uint8_t> value;
  AppendSegments(walker, element, what, 0, &value);
  return value;
}

SignedDataLayout ReadSignedData(DerWalker& walker) {
  return ReadSignedDataIn(walker, walker.ReadTop("ContentInfo"));
}

SignedDataLayout ReadSignedDataIn(DerWalker& walker, const DerElement& contentInfo) {
  SignedDataLayout layout;
  layout.contentInfo = contentInfo;
  walker.Expect(layout.contentInfo, kTagSequence, "ContentInfo");
  std::vector<DerElement> ci = walker.Children(layout.contentInfo, "ContentInfo");
  if (ci.size() != 2) walker.Fail(layout.contentInfo.offset, "ContentInfo: expected 2 fields");
  if (walker.OidText(ci[0]) != oids::kSignedData) {
    walker.Fail(ci[0].offset, "not a CMS SignedData (content type " + walker.OidText(ci[0]) + ")");
  }
  layout.explicitContent = ci[1];
  walker.Expect(ci[1], ContextTag(0), "ContentInfo content");
  std::vector<DerElement> inner = walker.Children(ci[1], "ContentInfo content");
  if (inner.size() != 1) walker.Fail(ci[1].offset, "ContentInfo content: expected one SignedData");
  layout.signedData = inner[0];
  walker.Expect(layout.signedData, kTagSequence, "SignedData");
  std::vector<DerElement> sd = walker.Children(layout.signedData, "SignedData");
  if (sd.size() < 4) walker.Fail(layout.signedData.offset, "SignedData: too few fields");
  walker.Expect(sd[0], kTagInteger, "SignedData version");
  walker.Expect(sd[1], kTagSet, "SignedData digestAlgorithms");
  walker.Expect(sd[2], kTagSequence, "SignedData encapContentInfo");
  size_t i = 3;
  if (i < sd.size() && sd[i].tag == ContextTag(0)) {
    layout.certificates = walker.Children(sd[i], "certificate");
    ++i;
  }
  if (i < sd.size() && sd[i].tag == ContextTag(1)) {
    layout.crls = walker.Children(sd[i], "CRL");
    ++i;
  }
  if (i + 1 != sd.size()) {
    walker.Fail(i < sd.size() ? sd[i].offset : layout.signedData.offset,
                "SignedData: expected signerInfos last");
  }
  layout.signerInfos = sd[i];
  walker.Expect(layout.signerInfos, kTagSet, "SignedData signerInfos");
  std::vector<DerElement> signers = walker.Children(layout.signerInfos, "SignerInfo");
  for (size_t n = 0; n < signers.size(); ++n) {
    layout.signers.push_back(ReadSigner(walker, signers[n], n + 1));
  }
  if (layout.signers.empty()) walker.Fail(layout.signerInfos.offset, "SignedData has no signers");
  return layout;
}

}  // namespace adestool
