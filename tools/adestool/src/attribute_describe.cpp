// attribute_describe.cpp: one report node per attribute of a signer.
//
// The values come typed from the catalogue's attribute set where it knows
// the identifier; the revocation and certificate references and the
// revocation values are read through the library's CAdES value classes.
#include "attribute_describe.h"

#include <korvex/asn1gen/CryptographicMessageSyntax2004.h>
#include <korvex/asn1gen/ETS_ElectronicSignatureFormats_ExplicitSyntax88.h>
#include <korvex/asn1gen/ExtendedSecurityServices.h>
#include <korvex/asn1gen/ExtendedSecurityServices_2006.h>
#include <korvex/asn1gen/OCSP_2013_88.h>
#include <korvex/asn1gen/PKIXTSP.h>
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstdio>

#include "asn1_names.h"
#include "digest.h"
#include "signed_message.h"
#include "value_text.h"

namespace adestool {

namespace {

using namespace asn1data;
namespace CAdES = Korvex::PKI::CAdES;
namespace ASN1 = Korvex::ASN1;

constexpr char kSha1[] = "1.3.14.3.2.26";
constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";

std::string Label(const char *base, size_t index) { return base + std::to_string(index + 1); }

std::string Code(uint32_t code) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%08X", code);
  return buf;
}

// NamedOidNode: {"oid", "name"} with the text "name (dotted)", or the
// dotted text alone when name is empty.
ReportNode NamedOidNode(std::string key, std::string label, const std::string &dotted,
                        const std::string &name) {
  ReportNode node = ReportNode::Object(std::move(key), std::move(label));
  node.String("oid", "oid", dotted);
  if (name.empty()) {
    node.Null("name", "name");
  } else {
    node.String("name", "name", name);
  }
  node.SetInlineText(name.empty() ? dotted : name + " (" + dotted + ")");
  return node;
}

ReportNode OidNode(std::string key, std::string label, const std::string &dotted) {
  return NamedOidNode(std::move(key), std::move(label), dotted, OidName(dotted));
}

void OptionalString(ReportNode *node, const char *key, const char *label, bool present,
                    const std::string &value) {
  if (present) {
    node->String(key, label, value);
  } else {
    node->Null(key, label);
  }
}

// ---- strings

std::string Utf8OfUnits(const uint32_t *units, size_t count) {
  std::wstring wide;
  for (size_t i = 0; i < count; ++i) wide += static_cast<wchar_t>(units[i]);
  return Utf8OfWideText(wide.c_str());
}

template <typename Choice>
std::string DirectoryStringText(const Choice &s) {
  switch (s.t) {
    case Choice::T_teletexString:
      return s.u.teletexString ? s.u.teletexString : "";
    case Choice::T_printableString:
      return s.u.printableString ? s.u.printableString : "";
    case Choice::T_utf8String:
      return s.u.utf8String ? s.u.utf8String : "";
    case Choice::T_universalString: {
      if (!s.u.universalString) return std::string();
      std::vector<uint32_t> units(s.u.universalString->data,
                                  s.u.universalString->data + s.u.universalString->nchars);
      return Utf8OfUnits(units.data(), units.size());
    }
    case Choice::T_bmpString: {
      if (!s.u.bmpString) return std::string();
      std::vector<uint32_t> units(s.u.bmpString->data, s.u.bmpString->data + s.u.bmpString->nchars);
      return Utf8OfUnits(units.data(), units.size());
    }
    default:
      return std::string();
  }
}

// ---- names of the value classes

std::string BlobHex(const Korvex::CBlob &blob) { return HexText(blob.pbData(), blob.cbData()); }

std::string NameOfDer(const Korvex::CBlob &der) {
  try {
    ASN1::CName name;
    name.decode(der);
    return Utf8OfWideText(ASN1::NameToString(name).c_str());
  } catch (const ATL::CAtlException &) {
    return "<name without a text form>";
  }
}

std::string GeneralNameValueText(const ASN1::CGeneralName &name) {
  switch (name.get_type()) {
    case ASN1::CGeneralName::kDirectoryName: {
      const Korvex::CBlob *der = name.get_directoryName();
      return der ? NameOfDer(*der) : std::string();
    }
    case ASN1::CGeneralName::kRfc822Name:
      return "email:" + Utf8OfWideText(name.get_rfc822Name());
    case ASN1::CGeneralName::kDNSName:
      return "dns:" + Utf8OfWideText(name.get_dNSName());
    default:
      return "<general name of type " + std::to_string(name.get_type()) + ">";
  }
}

std::string JoinGeneralNames(const ASN1::CGeneralNames &names) {
  std::string text;
  for (const ASN1::CGeneralName &name : names) {
    if (!text.empty()) text += "; ";
    text += GeneralNameValueText(name);
  }
  return text;
}

std::string DateText(const Korvex::CDateTime &when) {
  return TimeText(when.getGeneralizedTime().c_str(), false);
}

std::string BigIntegerHex(const ASN1::CBigInteger &value) {
  std::string hex = BlobHex(value.get_value());
  return hex.empty() ? "00" : hex;
}

// ---- certificate identifiers (RFC 2634 5.4.1, RFC 5035 4, RFC 5126 5.7.3.3)

void AddIssuerSerial(ReportNode *node, bool present, const ASN1T_IssuerSerial &issuerSerial) {
  std::string issuer;
  if (present) {
    for (ASN1UINT i = 0; i < issuerSerial.issuer.n; ++i) {
      if (!issuer.empty()) issuer += "; ";
      issuer += GeneralNameText(issuerSerial.issuer.elem[i]);
    }
  }
  OptionalString(node, "issuer", "issuer", present, issuer);
  OptionalString(node, "serial", "serial", present,
                 present ? SerialText(issuerSerial.serialNumber) : std::string());
}

ReportNode CertIdNode(size_t index, const std::string &hashOid, const ASN1DynOctStr &hash,
                      bool issuerSerialPresent, const ASN1T_IssuerSerial &issuerSerial) {
  ReportNode node = ReportNode::Object("", Label("cert ", index));
  node.Add(AlgorithmNode("hash_algorithm", "hash algorithm", hashOid));
  node.String("hash", "hash", HexText(hash.data, hash.numocts));
  AddIssuerSerial(&node, issuerSerialPresent, issuerSerial);
  return node;
}

ReportNode OtherCertIdNode(size_t index, const ASN1T_OtherCertID &id) {
  if (id.otherCertHash.t == ASN1T_OtherHash::T_otherHash && id.otherCertHash.u.otherHash) {
    const ASN1T_OtherHashAlgAndValue &h = *id.otherCertHash.u.otherHash;
    return CertIdNode(index, DottedOid(h.hashAlgorithm.algorithm), h.hashValue,
                      id.m.issuerSerialPresent, id.issuerSerial);
  }
  ASN1DynOctStr empty{0, nullptr};
  const ASN1DynOctStr *hash = id.otherCertHash.u.sha1Hash ? id.otherCertHash.u.sha1Hash : &empty;
  return CertIdNode(index, kSha1, *hash, id.m.issuerSerialPresent, id.issuerSerial);
}

ReportNode PoliciesNode(bool present, const ASN1T__SeqOfPolicyInformation &policies) {
  ReportNode list = ReportNode::Array("policies", "policies");
  if (present) {
    for (ASN1UINT i = 0; i < policies.n; ++i) {
      list.Add(OidNode("", Label("policy ", i), DottedOid(policies.elem[i].policyIdentifier)));
    }
  }
  return list;
}

ReportNode SigningCertificateNode(const ASN1T_SigningCertificate &value) {
  ReportNode node = ReportNode::Object("", "");
  ReportNode &certs = node.Add(ReportNode::Array("certs", "certs"));
  for (ASN1UINT i = 0; i < value.certs.n; ++i) {
    const ASN1T_ESSCertID &id = value.certs.elem[i];
    certs.Add(CertIdNode(i, kSha1, id.certHash, id.m.issuerSerialPresent, id.issuerSerial));
  }
  node.Add(PoliciesNode(value.m.policiesPresent, value.policies));
  return node;
}

ReportNode SigningCertificateV2Node(const ASN1T_SigningCertificateV2 &value) {
  ReportNode node = ReportNode::Object("", "");
  ReportNode &certs = node.Add(ReportNode::Array("certs", "certs"));
  for (ASN1UINT i = 0; i < value.certs.n; ++i) {
    const ASN1T_ESSCertIDv2 &id = value.certs.elem[i];
    // hashAlgorithm DEFAULT id-sha256 (RFC 5035 4).
    std::string hashOid =
        id.m.hashAlgorithmPresent ? DottedOid(id.hashAlgorithm.algorithm) : kSha256;
    certs.Add(CertIdNode(i, hashOid, id.certHash, id.m.issuerSerialPresent, id.issuerSerial));
  }
  node.Add(PoliciesNode(value.m.policiesPresent, value.policies));
  return node;
}

ReportNode OtherSigningCertificateNode(const ASN1T_OtherSigningCertificate &value) {
  ReportNode node = ReportNode::Object("", "");
  ReportNode &certs = node.Add(ReportNode::Array("certs", "certs"));
  for (ASN1UINT i = 0; i < value.certs.n; ++i) certs.Add(OtherCertIdNode(i, value.certs.elem[i]));
  node.Add(PoliciesNode(value.m.policiesPresent, value.policies));
  return node;
}

// ---- policy, commitment, location (RFC 5126 5.8.1, 5.11.1, 5.11.2)

std::string QualifierText(const ASN1OpenType &value) {
  // SPuri is an IA5String (tag 22); other qualifiers are shown as hex.
  if (value.numocts >= 2 && value.data[0] == 0x16 && value.data[1] < 0x80 &&
      static_cast<ASN1UINT>(value.data[1]) + 2 == value.numocts) {
    return std::string(reinterpret_cast<const char *>(value.data + 2), value.data[1]);
  }
  return HexText(value.data, value.numocts);
}

ReportNode SignaturePolicyNode(const ASN1T_SignaturePolicy &value) {
  ReportNode node = ReportNode::Object("", "");
  bool implied = value.t == ASN1T_SignaturePolicy::T_signaturePolicyImplied;
  node.Boolean("implied", "implied", implied);
  const ASN1T_SignaturePolicyId *id =
      value.t == ASN1T_SignaturePolicy::T_signaturePolicyId ? value.u.signaturePolicyId : nullptr;
  if (id == nullptr) {
    node.Null("policy", "policy");
    node.Null("hash_algorithm", "hash algorithm");
    node.Null("hash", "hash");
    node.Add(ReportNode::Array("qualifiers", "qualifiers"));
    return node;
  }
  node.Add(OidNode("policy", "policy", DottedOid(id->sigPolicyId)));
  node.Add(AlgorithmNode("hash_algorithm", "hash algorithm",
                         DottedOid(id->sigPolicyHash.hashAlgorithm.algorithm)));
  node.String("hash", "hash",
              HexText(id->sigPolicyHash.hashValue.data, id->sigPolicyHash.hashValue.numocts));
  ReportNode &qualifiers = node.Add(ReportNode::Array("qualifiers", "qualifiers"));
  if (id->m.sigPolicyQualifiersPresent) {
    for (ASN1UINT i = 0; i < id->sigPolicyQualifiers.n; ++i) {
      const ASN1T_SigPolicyQualifierInfo &q = id->sigPolicyQualifiers.elem[i];
      ReportNode &item = qualifiers.Add(ReportNode::Object("", Label("qualifier ", i)));
      item.Add(OidNode("oid", "type", DottedOid(q.sigPolicyQualifierId)));
      item.String("value", "value", QualifierText(q.sigQualifier));
    }
  }
  return node;
}

ReportNode CommitmentTypeNode(const ASN1T_CommitmentTypeIndication &value) {
  ReportNode node = ReportNode::Object("", "");
  node.Add(OidNode("type", "type", DottedOid(value.commitmentTypeId)));
  ReportNode &qualifiers = node.Add(ReportNode::Array("qualifiers", "qualifiers"));
  if (value.m.commitmentTypeQualifierPresent) {
    for (ASN1UINT i = 0; i < value.commitmentTypeQualifier.n; ++i) {
      qualifiers.Add(
          OidNode("", Label("qualifier ", i),
                  DottedOid(value.commitmentTypeQualifier.elem[i].commitmentTypeIdentifier)));
    }
  }
  return node;
}

ReportNode SignerLocationNode(const ASN1T_SignerLocation &value) {
  ReportNode node = ReportNode::Object("", "");
  OptionalString(&node, "country", "country", value.m.countryNamePresent,
                 DirectoryStringText(value.countryName));
  OptionalString(&node, "locality", "locality", value.m.localityNamePresent,
                 DirectoryStringText(value.localityName));
  ReportNode &lines = node.Add(ReportNode::Array("postal_address", "postal address"));
  if (value.m.postalAdddressPresent) {
    for (ASN1UINT i = 0; i < value.postalAdddress.n; ++i) {
      lines.String("", Label("line ", i), DirectoryStringText(value.postalAdddress.elem[i]));
    }
  }
  return node;
}

// ---- time-stamp tokens (RFC 3161 2.4.2)

enum class ImprintOver { kNothing, kSignature, kContent, kEscData };

// TokenNode: the token's TSTInfo and, where over names data that is known,
// whether the imprint is its hash; *mismatches counts the imprints that
// are not.
ReportNode TokenNode(const ASN1T_ContentInfo &token, ImprintOver over,
                     const ImprintSources &sources, size_t *mismatches) {
  ReportNode node = ReportNode::Object("", "");
  const auto *sd = rtCmpOID(&token.contentType, &id_signedData)
                       ? static_cast<const ASN1T_SignedData *>(token.content.decoded)
                       : nullptr;
  const ASN1T_TSTInfo *tst = nullptr;
  if (sd && rtCmpOID(&sd->encapContentInfo.eContentType, &id_ct_TSTInfo)) {
    tst = static_cast<const ASN1T_TSTInfo *>(sd->encapContentInfo.eContent.decoded);
  }
  if (tst == nullptr) {
    node.String("error", "error", "not a time-stamp token (no TSTInfo in a SignedData)");
    return node;
  }
  node.String("gen_time", "time", TimeText(tst->genTime, false));
  node.String("serial", "serial", SerialText(tst->serialNumber));
  OptionalString(&node, "tsa", "TSA", tst->m.tsaPresent,
                 tst->m.tsaPresent ? GeneralNameText(tst->tsa) : std::string());
  node.Add(OidNode("policy", "policy", DottedOid(tst->policy)));
  std::string hashOid = DottedOid(tst->messageImprint.hashAlgorithm.algorithm);
  node.Add(AlgorithmNode("imprint_algorithm", "imprint algorithm", hashOid));
  const ASN1DynOctStr &imprint = tst->messageImprint.hashedMessage;
  node.String("imprint", "imprint", HexText(imprint.data, imprint.numocts));

  const uint8_t *data = nullptr;
  size_t size = 0;
  const char *comparedWith = "";  // JSON imprint_compared_with, and the text label
  if (over == ImprintOver::kSignature && sources.signature) {
    data = sources.signature;
    size = sources.signatureSize;
    comparedWith = "signature value";
  } else if (over == ImprintOver::kContent && sources.content) {
    data = sources.content;
    size = sources.contentSize;
    comparedWith = "content";
  } else if (over == ImprintOver::kEscData && sources.escData) {
    data = sources.escData;
    size = sources.escDataSize;
    comparedWith = "CAdES-C data";
  }
  const ImprintMatch match = data == nullptr
                                 ? ImprintMatch::kNoHash
                                 : MatchImprint(hashOid, imprint.data, imprint.numocts, data, size);
  if (match == ImprintMatch::kNoHash) {
    node.Null("imprint_compared_with", "imprint compared with").JsonOnly();
    node.Null("imprint_matches", "imprint matches").JsonOnly();
    node.String("", "imprint matches", "not checked").TextOnly();
    return node;
  }
  const bool matches = match == ImprintMatch::kMatches;
  if (!matches) ++*mismatches;
  node.String("imprint_compared_with", "imprint compared with", comparedWith).JsonOnly();
  node.Boolean("imprint_matches", std::string("imprint matches the ") + comparedWith, matches);
  return node;
}

// ---- references and values through the CAdES value classes

void AddOtherHash(ReportNode *node, const ASN1::COtherHash &hash) {
  if (const ASN1::COtherHashAlgAndValue *other = hash.get_otherHash()) {
    node->Add(AlgorithmNode("hash_algorithm", "hash algorithm",
                            other->get_hashAlgorithm().get_algorithm()));
    node->String("hash", "hash", BlobHex(other->get_hashValue()));
  } else {
    node->Add(AlgorithmNode("hash_algorithm", "hash algorithm", kSha1));
    const Korvex::CBlob *sha1 = hash.get_sha1Hash();
    node->String("hash", "hash", sha1 ? BlobHex(*sha1) : std::string());
  }
}

ReportNode CertificateRefsNode(const Korvex::CBlob &der) {
  CAdES::CCompleteCertificateRefs refs;
  refs.decode(der);
  ReportNode node = ReportNode::Object("", "");
  ReportNode &certs = node.Add(ReportNode::Array("certs", "certs"));
  size_t index = 0;
  for (const ASN1::COtherCertID &id : refs) {
    ReportNode &item = certs.Add(ReportNode::Object("", Label("cert ", index++)));
    AddOtherHash(&item, id.get_otherCertHash());
    const ASN1::CIssuerSerial *issuerSerial = id.get_issuerSerial();
    OptionalString(&item, "issuer", "issuer", issuerSerial != nullptr,
                   issuerSerial ? JoinGeneralNames(issuerSerial->get_issuer()) : std::string());
    OptionalString(&item, "serial", "serial", issuerSerial != nullptr,
                   issuerSerial ? BigIntegerHex(issuerSerial->get_serialNumber()) : std::string());
  }
  return node;
}

ReportNode CrlIdNode(size_t index, const CAdES::CCrlValidatedID &id) {
  ReportNode node = ReportNode::Object("", Label("CRL ", index));
  AddOtherHash(&node, id.get_crlHash());
  const CAdES::CCrlIdentifier *crl = id.get_crlIdentifier();
  OptionalString(&node, "issuer", "issuer", crl != nullptr,
                 crl ? NameOfDer(crl->get_crlissuer()) : std::string());
  OptionalString(&node, "issued_time", "issued", crl != nullptr,
                 crl ? DateText(crl->get_crlIssuedTime()) : std::string());
  const ASN1::CBigInteger *number = crl ? crl->get_longCrlNumber() : nullptr;
  OptionalString(&node, "number", "number", number != nullptr,
                 number ? BigIntegerHex(*number) : std::string());
  return node;
}

std::string ResponderText(const Korvex::PKI::OCSP::CResponderID &responder) {
  if (const Korvex::CBlob *name = responder.get_byName()) return NameOfDer(*name);
  if (const Korvex::CBlob *key = responder.get_byKey()) return "key hash " + BlobHex(*key);
  return std::string();
}

ReportNode OcspIdNode(size_t index, const CAdES::COcspResponsesID &id) {
  ReportNode node = ReportNode::Object("", Label("OCSP ", index));
  const CAdES::COcspIdentifier &ocsp = id.get_ocspIdentifier();
  node.String("responder", "responder", ResponderText(ocsp.get_ocspResponderID()));
  node.String("produced_at", "produced at", DateText(ocsp.get_producedAt()));
  if (const ASN1::COtherHash *hash = id.get_ocspRepHash()) {
    AddOtherHash(&node, *hash);
  } else {
    node.Null("hash_algorithm", "hash algorithm");
    node.Null("hash", "hash");
  }
  return node;
}

ReportNode RevocationRefsNode(const Korvex::CBlob &der) {
  CAdES::CCompleteRevocationRefs refs;
  refs.decode(der);
  ReportNode node = ReportNode::Object("", "");
  ReportNode &list = node.Add(ReportNode::Array("refs", "refs"));
  size_t index = 0;
  for (const CAdES::CCrlOcspRef &ref : refs) {
    ReportNode &item = list.Add(ReportNode::Object("", Label("certificate ", index++)));
    ReportNode &crls = item.Add(ReportNode::Array("crl_ids", "CRL ids"));
    if (const CAdES::CCRLListID *ids = ref.get_crlids()) {
      size_t i = 0;
      for (const CAdES::CCrlValidatedID &id : *ids) crls.Add(CrlIdNode(i++, id));
    }
    ReportNode &ocsps = item.Add(ReportNode::Array("ocsp_ids", "OCSP ids"));
    if (const CAdES::COcspListID *ids = ref.get_ocspids()) {
      size_t i = 0;
      for (const CAdES::COcspResponsesID &id : *ids) ocsps.Add(OcspIdNode(i++, id));
    }
  }
  return node;
}

void AddCrlFields(const ASN1T_CertificateList &crl, ReportNode *node) {
  const ASN1T_TBSCertList &tbs = crl.tbsCertList;
  node->String("issuer", "issuer", NameText(tbs.issuer));
  node->String("this_update", "this update", TimeText(tbs.thisUpdate));
  OptionalString(node, "next_update", "next update", tbs.m.nextUpdatePresent,
                 tbs.m.nextUpdatePresent ? TimeText(tbs.nextUpdate) : std::string());
  node->Integer("entries", "entries",
                tbs.m.revokedCertificatesPresent ? tbs.revokedCertificates.n : 0);
}

// CrlValueNode: typed is the CRL as the whole-message decode already holds
// it (null when it did not decode there), der its encoding.
ReportNode CrlValueNode(size_t index, const ASN1T_CertificateList *typed,
                        const Korvex::CBlob &der) {
  ReportNode node = ReportNode::Object("", Label("CRL ", index));
  if (typed) {
    AddCrlFields(*typed, &node);
    return node;
  }
  Decoded<ASN1T_CertificateList> crl(der.pbData(), der.cbData(), &asn1D_CertificateList,
                                     &asn1Free_CertificateList);
  if (!crl.ok()) {
    node.String("error", "error", "does not decode as a CRL");
    return node;
  }
  AddCrlFields(crl.record(), &node);
  return node;
}

ReportNode OcspValueNode(size_t index, const Korvex::CBlob &der) {
  ReportNode node = ReportNode::Object("", Label("OCSP ", index));
  Decoded<ASN1T_BasicOCSPResponse> response(der.pbData(), der.cbData(), &asn1D_BasicOCSPResponse,
                                            &asn1Free_BasicOCSPResponse);
  if (!response.ok()) {
    node.String("error", "error", "does not decode as a BasicOCSPResponse");
    return node;
  }
  const ASN1T_ResponseData &data = response.record().tbsResponseData;
  std::string responder;
  if (data.responderID.t == ASN1T_ResponderID::T_byName && data.responderID.u.byName) {
    responder = NameText(*data.responderID.u.byName);
  } else if (data.responderID.t == ASN1T_ResponderID::T_byKey && data.responderID.u.byKey) {
    responder =
        "key hash " + HexText(data.responderID.u.byKey->data, data.responderID.u.byKey->numocts);
  }
  node.String("responder", "responder", responder);
  node.String("produced_at", "produced at", TimeText(data.producedAt, false));
  node.Integer("responses", "responses", data.responses.n);
  return node;
}

ReportNode RevocationValuesNode(const Korvex::CBlob &der, const ASN1T_RevocationValues *typed) {
  CAdES::CRevocationValues values;
  values.decode(der);
  ReportNode node = ReportNode::Object("", "");
  ReportNode &crls = node.Add(ReportNode::Array("crls", "CRLs"));
  if (const Korvex::CBlobList *list = values.get_crlVals()) {
    // The CRLs are decoded once, with the message, when they fit the type.
    const bool useTyped = typed && typed->m.crlValsPresent && typed->crlVals.n == list->size();
    size_t i = 0;
    for (const Korvex::CBlob &crl : *list) {
      crls.Add(CrlValueNode(i, useTyped ? &typed->crlVals.elem[i] : nullptr, crl));
      ++i;
    }
  }
  ReportNode &ocsps = node.Add(ReportNode::Array("ocsp_responses", "OCSP responses"));
  if (const Korvex::CBlobList *list = values.get_ocspVals()) {
    size_t i = 0;
    for (const Korvex::CBlob &response : *list) ocsps.Add(OcspValueNode(i++, response));
  }
  return node;
}

ReportNode CertificateValuesNode(const ASN1T_CertificateValues &value) {
  ReportNode node = ReportNode::Object("", "");
  ReportNode &certs = node.Add(ReportNode::Array("certs", "certs"));
  for (ASN1UINT i = 0; i < value.n; ++i) {
    const ASN1T_TBSCertificate &tbs = value.elem[i].tbsCertificate;
    ReportNode &item = certs.Add(ReportNode::Object("", Label("cert ", i)));
    item.String("subject", "subject", NameText(tbs.subject));
    item.String("issuer", "issuer", NameText(tbs.issuer));
    item.String("serial", "serial", SerialText(tbs.serialNumber));
  }
  return node;
}

// ---- dispatch

enum class ValueKind {
  kUnknown,
  kContentType,
  kMessageDigest,
  kSigningTime,
  kSigningCertificate,
  kSigningCertificateV2,
  kOtherSigningCertificate,
  kSignaturePolicy,
  kCommitmentType,
  kSignerLocation,
  kContentTimestamp,
  kSignatureTimestamp,
  kEscTimestamp,  // CAdES-C time-stamp
  kTimestamp,     // certCRL and archive time-stamps
  kCertificateRefs,
  kRevocationRefs,
  kCertificateValues,
  kRevocationValues,
};

struct KnownAttribute {
  const char *oid;
  ValueKind kind;
};

const KnownAttribute kKnownAttributes[] = {
    {"1.2.840.113549.1.9.3", ValueKind::kContentType},
    {"1.2.840.113549.1.9.4", ValueKind::kMessageDigest},
    {"1.2.840.113549.1.9.5", ValueKind::kSigningTime},
    {"1.2.840.113549.1.9.16.2.12", ValueKind::kSigningCertificate},
    {"1.2.840.113549.1.9.16.2.47", ValueKind::kSigningCertificateV2},
    {"1.2.840.113549.1.9.16.2.19", ValueKind::kOtherSigningCertificate},
    {"1.2.840.113549.1.9.16.2.15", ValueKind::kSignaturePolicy},
    {"1.2.840.113549.1.9.16.2.16", ValueKind::kCommitmentType},
    {"1.2.840.113549.1.9.16.2.17", ValueKind::kSignerLocation},
    {"1.2.840.113549.1.9.16.2.20", ValueKind::kContentTimestamp},
    {"1.2.840.113549.1.9.16.2.14", ValueKind::kSignatureTimestamp},
    {"1.2.840.113549.1.9.16.2.25", ValueKind::kEscTimestamp},
    {"1.2.840.113549.1.9.16.2.26", ValueKind::kTimestamp},
    {"1.2.840.113549.1.9.16.2.27", ValueKind::kTimestamp},
    {"0.4.0.1733.2.4", ValueKind::kTimestamp},
    {"1.2.840.113549.1.9.16.2.21", ValueKind::kCertificateRefs},
    {"1.2.840.113549.1.9.16.2.22", ValueKind::kRevocationRefs},
    {"1.2.840.113549.1.9.16.2.23", ValueKind::kCertificateValues},
    {"1.2.840.113549.1.9.16.2.24", ValueKind::kRevocationValues},
};

ValueKind KindOf(const std::string &dotted) {
  for (const KnownAttribute &known : kKnownAttributes) {
    if (dotted == known.oid) return known.kind;
  }
  return ValueKind::kUnknown;
}

ReportNode Undecodable(const std::string &why) {
  ReportNode node = ReportNode::Object("", "");
  node.String("error", "error", why);
  return node;
}

// TokenOf: a time-stamp token value, typed by the catalogue or, for the
// identifiers it does not list (the v3 archive time-stamp), decoded here.
ReportNode TokenValue(const Asn1Object &value, ImprintOver over, const ImprintSources &sources,
                      size_t *mismatches) {
  if (value.decoded) {
    return TokenNode(*static_cast<const ASN1T_ContentInfo *>(value.decoded), over, sources,
                     mismatches);
  }
  Decoded<ASN1T_ContentInfo> token(value.data, value.numocts, &asn1D_ContentInfo,
                                   &asn1Free_ContentInfo);
  if (!token.ok()) return Undecodable("does not decode as a time-stamp token");
  return TokenNode(token.record(), over, sources, mismatches);
}

ReportNode ValueNode(ValueKind kind, const Asn1Object &value, const ImprintSources &sources,
                     size_t *mismatches) {
  const void *typed = value.decoded;
  Korvex::CBlob der(value.data, value.numocts);
  try {
    switch (kind) {
      case ValueKind::kContentType:
        if (!typed) break;
        return OidNode("", "", DottedOid(*static_cast<const ASN1OBJID *>(typed)));
      case ValueKind::kMessageDigest: {
        if (!typed) break;
        ReportNode node = ReportNode::Object("", "");
        const auto *digest = static_cast<const ASN1DynOctStr *>(typed);
        node.String("digest", "digest", HexText(digest->data, digest->numocts));
        node.SetInlineText(HexText(digest->data, digest->numocts));
        return node;
      }
      case ValueKind::kSigningTime: {
        if (!typed) break;
        ReportNode node = ReportNode::Object("", "");
        std::string text = TimeText(*static_cast<const ASN1T_Time *>(typed));
        node.String("time", "time", text);
        node.SetInlineText(text);
        return node;
      }
      case ValueKind::kSigningCertificate:
        if (!typed) break;
        return SigningCertificateNode(*static_cast<const ASN1T_SigningCertificate *>(typed));
      case ValueKind::kSigningCertificateV2:
        if (!typed) break;
        return SigningCertificateV2Node(*static_cast<const ASN1T_SigningCertificateV2 *>(typed));
      case ValueKind::kOtherSigningCertificate:
        if (!typed) break;
        return OtherSigningCertificateNode(
            *static_cast<const ASN1T_OtherSigningCertificate *>(typed));
      case ValueKind::kSignaturePolicy:
        if (!typed) break;
        return SignaturePolicyNode(*static_cast<const ASN1T_SignaturePolicy *>(typed));
      case ValueKind::kCommitmentType:
        if (!typed) break;
        return CommitmentTypeNode(*static_cast<const ASN1T_CommitmentTypeIndication *>(typed));
      case ValueKind::kSignerLocation:
        if (!typed) break;
        return SignerLocationNode(*static_cast<const ASN1T_SignerLocation *>(typed));
      case ValueKind::kContentTimestamp:
        return TokenValue(value, ImprintOver::kContent, sources, mismatches);
      case ValueKind::kSignatureTimestamp:
        return TokenValue(value, ImprintOver::kSignature, sources, mismatches);
      case ValueKind::kEscTimestamp:
        return TokenValue(value, ImprintOver::kEscData, sources, mismatches);
      case ValueKind::kTimestamp:
        return TokenValue(value, ImprintOver::kNothing, sources, mismatches);
      case ValueKind::kCertificateRefs:
        return CertificateRefsNode(der);
      case ValueKind::kRevocationRefs:
        return RevocationRefsNode(der);
      case ValueKind::kCertificateValues:
        if (!typed) break;
        return CertificateValuesNode(*static_cast<const ASN1T_CertificateValues *>(typed));
      case ValueKind::kRevocationValues:
        return RevocationValuesNode(der, static_cast<const ASN1T_RevocationValues *>(typed));
      case ValueKind::kUnknown: {
        ReportNode node = ReportNode::Object("", "");
        node.Integer("size", "size", value.numocts);
        node.SetInlineText(std::to_string(value.numocts) + " bytes");
        return node;
      }
    }
  } catch (const ATL::CAtlException &e) {
    return Undecodable("does not decode (" + Code(static_cast<uint32_t>(e.m_hr)) + ")");
  }
  return Undecodable("does not decode as the attribute's type");
}

}  // namespace

ReportNode AlgorithmNode(std::string key, std::string label, const std::string &dotted) {
  return NamedOidNode(std::move(key), std::move(label), dotted, AlgorithmName(dotted));
}

std::string AttributeLabel(const std::string &dotted) {
  std::string name = OidName(dotted);
  return name.empty() ? dotted : name + " (" + dotted + ")";
}

size_t DescribeAttribute(const ASN1T_Attribute &attribute, const ImprintSources &sources,
                         ReportNode *list) {
  size_t mismatches = 0;
  const std::string dotted = DottedOid(attribute.type);
  const std::string name = OidName(dotted);
  const ValueKind kind = KindOf(dotted);
  ReportNode &node = list->Add(ReportNode::Object("", AttributeLabel(dotted)));
  node.String("oid", "oid", dotted).JsonOnly();
  if (name.empty()) {
    node.Null("name", "name").JsonOnly();
  } else {
    node.String("name", "name", name).JsonOnly();
  }
  int64_t size = 0;
  for (ASN1UINT i = 0; i < attribute.values.n; ++i) size += attribute.values.elem[i].numocts;
  node.Integer("size", "size", size).JsonOnly();
  // The values array is added last: references into the node's members do
  // not survive adding to it.
  ReportNode values = ReportNode::Array("values", "values");
  values.JsonOnly();
  for (ASN1UINT i = 0; i < attribute.values.n; ++i) {
    ReportNode value = ValueNode(kind, attribute.values.elem[i], sources, &mismatches);
    if (attribute.values.n == 1) {
      // The value on the attribute's own line, or its members below it.
      if (!value.text().empty()) {
        node.SetInlineText(value.text());
      } else {
        for (const ReportNode &member : value.children()) {
          if (member.inText()) node.Add(member).TextOnly();
        }
      }
    } else {
      ReportNode text = ReportNode::Object("", Label("value ", i));
      text.SetInlineText(value.text());
      for (const ReportNode &member : value.children()) text.Add(member);
      node.Add(std::move(text)).TextOnly();
    }
    values.Add(std::move(value));
  }
  node.Add(std::move(values));
  if (attribute.values.n == 0) node.SetInlineText("no values");
  return mismatches;
}

}  // namespace adestool
