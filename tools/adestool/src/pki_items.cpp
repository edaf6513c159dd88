// pki_items.cpp: reading certificates, CRLs, OCSP responses and time-stamp
// tokens field by field with DerWalker.
#include "pki_items.h"

#include "asn1_names.h"
#include "cms_layout.h"
#include "der_walk.h"
#include "tool_error.h"

namespace adestool {

namespace {

constexpr ASN1TAG kTagEnumerated = TM_UNIV | ASN_ID_ENUM;
constexpr ASN1TAG kTagBitString = TM_UNIV | ASN_ID_BITSTR;

std::vector<uint8_t> Range(const std::vector<uint8_t>& bytes, size_t from, size_t to) {
  return std::vector<uint8_t>(bytes.begin() + from, bytes.begin() + to);
}

// The text of a UTCTime or GeneralizedTime element as GeneralizedTime text;
// a UTCTime's two-digit year YY is 19YY from 50 up, else 20YY (RFC 5280
// 4.1.2.5.1).
std::string TimeText(DerWalker& w, const DerElement& e, const std::string& what, bool* isUtc) {
  if (e.tag != kTagUtcTime && e.tag != kTagGeneralizedTime) {
    w.Fail(e.offset, what + ": expected UTCTime or GeneralizedTime, found " + TagName(e.tag));
  }
  const std::vector<uint8_t> text = w.Content(e);
  std::string s(text.begin(), text.end());
  for (char c : s) {
    if (!((c >= '0' && c <= '9') || c == 'Z' || c == '.'))
      w.Fail(e.offset, what + ": invalid time");
  }
  *isUtc = e.tag == kTagUtcTime;
  if (*isUtc) {
    if (s.size() < 2) w.Fail(e.offset, what + ": invalid time");
    s = ((s[0] - '0') * 10 + (s[1] - '0') >= 50 ? "19" : "20") + s;
  }
  if (s.size() < 15 || s.back() != 'Z') w.Fail(e.offset, what + ": invalid time");
  return s;
}

// Skips the optional [0] EXPLICIT version of a TBSCertificate /
// ResponseData.
size_t SkipExplicitVersion(const std::vector<DerElement>& fields) {
  return !fields.empty() && fields[0].tag == ContextTag(0) ? 1 : 0;
}

std::vector<uint8_t> FindSubjectKeyId(DerWalker& w, const DerElement& extensions) {
  std::vector<DerElement> wrapper = w.Children(extensions, "certificate extensions");
  if (wrapper.size() != 1)
    w.Fail(extensions.offset, "certificate extensions: expected one SEQUENCE");
  for (const DerElement& ext : w.Children(wrapper[0], "certificate extension")) {
    std::vector<DerElement> parts = w.Children(ext, "certificate extension");
    if (parts.size() < 2) w.Fail(ext.offset, "certificate extension: too few fields");
    if (w.OidText(parts[0]) != oids::kSubjectKeyIdentifier) continue;
    const DerElement& value = parts.back();
    w.Expect(value, kTagOctetString, "subjectKeyIdentifier");
    DerElement keyId = w.Read(value.contentOffset(), value.contentEnd, "subjectKeyIdentifier");
    w.Expect(keyId, kTagOctetString, "subjectKeyIdentifier");
    return w.Content(keyId);
  }
  return {};
}

CertificateItem ReadCertificate(const std::vector<uint8_t>& der, const std::string& name) {
  DerWalker w(der, name);
  DerElement cert = w.ReadTop("Certificate");
  w.Expect(cert, kTagSequence, "Certificate");
  std::vector<DerElement> top = w.Children(cert, "Certificate");
  if (top.size() != 3) w.Fail(cert.offset, "Certificate: expected 3 fields");
  w.Expect(top[0], kTagSequence, "TBSCertificate");
  std::vector<DerElement> tbs = w.Children(top[0], "TBSCertificate");
  size_t i = SkipExplicitVersion(tbs);
  if (tbs.size() < i + 6) w.Fail(top[0].offset, "TBSCertificate: too few fields");
  CertificateItem item;
  item.name = name;
  item.der = der;
  w.Expect(tbs[i], kTagInteger, "serialNumber");
  item.serial = w.Content(tbs[i]);
  w.Expect(tbs[i + 2], kTagSequence, "issuer");
  item.issuer = w.Slice(tbs[i + 2]);
  w.Expect(tbs[i + 4], kTagSequence, "subject");
  item.subject = w.Slice(tbs[i + 4]);
  for (size_t k = i + 6; k < tbs.size(); ++k) {
    if (tbs[k].tag == ContextTag(3)) item.keyId = FindSubjectKeyId(w, tbs[k]);
  }
  return item;
}

CrlItem ReadCrl(const std::vector<uint8_t>& der, const std::string& name) {
  DerWalker w(der, name);
  DerElement crl = w.ReadTop("CertificateList");
  w.Expect(crl, kTagSequence, "CertificateList");
  std::vector<DerElement> top = w.Children(crl, "CertificateList");
  if (top.size() != 3) w.Fail(crl.offset, "CertificateList: expected 3 fields");
  w.Expect(top[0], kTagSequence, "TBSCertList");
  std::vector<DerElement> tbs = w.Children(top[0], "TBSCertList");
  size_t i = !tbs.empty() && tbs[0].tag == kTagInteger ? 1 : 0;
  if (tbs.size() < i + 3) w.Fail(top[0].offset, "TBSCertList: too few fields");
  CrlItem item;
  item.name = name;
  item.der = der;
  w.Expect(tbs[i + 1], kTagSequence, "CRL issuer");
  item.issuer = w.Slice(tbs[i + 1]);
  item.thisUpdate = TimeText(w, tbs[i + 2], "thisUpdate", &item.thisUpdateIsUtc);
  for (size_t k = i + 3; k < tbs.size(); ++k) {
    if (tbs[k].tag != ContextTag(0)) continue;
    std::vector<DerElement> wrapper = w.Children(tbs[k], "crlExtensions");
    if (wrapper.size() != 1) w.Fail(tbs[k].offset, "crlExtensions: expected one SEQUENCE");
    for (const DerElement& ext : w.Children(wrapper[0], "CRL extension")) {
      std::vector<DerElement> parts = w.Children(ext, "CRL extension");
      if (parts.size() < 2) w.Fail(ext.offset, "CRL extension: too few fields");
      if (w.OidText(parts[0]) != oids::kCrlNumber) continue;
      w.Expect(parts.back(), kTagOctetString, "cRLNumber");
      DerElement number =
          w.Read(parts.back().contentOffset(), parts.back().contentEnd, "cRLNumber");
      w.Expect(number, kTagInteger, "cRLNumber");
      item.crlNumber = w.Content(number);
    }
  }
  return item;
}

// The BasicOCSPResponse inside an OCSPResponse (RFC 6960 4.2.1), or der
// itself when it is one.
std::vector<uint8_t> BasicResponseBytes(const std::vector<uint8_t>& der, const std::string& name) {
  DerWalker w(der, name);
  DerElement top = w.ReadTop("OCSP response");
  w.Expect(top, kTagSequence, "OCSP response");
  std::vector<DerElement> fields = w.Children(top, "OCSP response");
  if (fields.empty() || fields[0].tag != kTagEnumerated) return der;
  const std::vector<uint8_t> status = w.Content(fields[0]);
  if (status != std::vector<uint8_t>{0}) {
    w.Fail(fields[0].offset, "OCSP response status is not successful");
  }
  if (fields.size() != 2 || fields[1].tag != ContextTag(0)) {
    w.Fail(top.offset, "OCSP response without responseBytes");
  }
  std::vector<DerElement> wrapper = w.Children(fields[1], "responseBytes");
  if (wrapper.size() != 1) w.Fail(fields[1].offset, "responseBytes: expected one SEQUENCE");
  std::vector<DerElement> rb = w.Children(wrapper[0], "responseBytes");
  if (rb.size() != 2) w.Fail(wrapper[0].offset, "responseBytes: expected 2 fields");
  if (w.OidText(rb[0]) != oids::kOcspBasic) {
    w.Fail(rb[0].offset, "responseType is not id-pkix-ocsp-basic");
  }
  return OctetStringValue(w, rb[1], "response");
}

OcspItem ReadOcsp(const std::vector<uint8_t>& der, const std::string& name) {
  OcspItem item;
  item.name = name;
  item.der = BasicResponseBytes(der, name);
  const bool inner = item.der.size() != der.size();
  DerWalker w(item.der, inner ? name + " (BasicOCSPResponse)" : name);
  DerElement basic = w.ReadTop("BasicOCSPResponse");
  w.Expect(basic, kTagSequence, "BasicOCSPResponse");
  std::vector<DerElement> top = w.Children(basic, "BasicOCSPResponse");
  if (top.size() < 3) w.Fail(basic.offset, "BasicOCSPResponse: too few fields");
  w.Expect(top[0], kTagSequence, "ResponseData");
  w.Expect(top[2], kTagBitString, "BasicOCSPResponse signature");
  std::vector<DerElement> rd = w.Children(top[0], "ResponseData");
  size_t i = SkipExplicitVersion(rd);
  if (rd.size() < i + 3) w.Fail(top[0].offset, "ResponseData: too few fields");
  if (rd[i].tag != ContextTag(1) && rd[i].tag != ContextTag(2)) {
    w.Fail(rd[i].offset, "responderID: expected [1] or [2], found " + TagName(rd[i].tag));
  }
  item.responderId = w.Slice(rd[i]);
  w.Expect(rd[i + 1], kTagGeneralizedTime, "producedAt");
  bool utc = false;
  item.producedAt = TimeText(w, rd[i + 1], "producedAt", &utc);
  w.Expect(rd[i + 2], kTagSequence, "responses");
  for (const DerElement& single : w.Children(rd[i + 2], "SingleResponse")) {
    std::vector<DerElement> parts = w.Children(single, "SingleResponse");
    if (parts.empty()) w.Fail(single.offset, "SingleResponse: no certID");
    std::vector<DerElement> certId = w.Children(parts[0], "CertID");
    if (certId.size() != 4) w.Fail(parts[0].offset, "CertID: expected 4 fields");
    std::vector<DerElement> alg = w.Children(certId[0], "CertID hashAlgorithm");
    if (alg.empty()) w.Fail(certId[0].offset, "CertID hashAlgorithm: empty");
    OcspCertId id;
    id.hashOid = w.OidText(alg[0]);
    w.Expect(certId[1], kTagOctetString, "issuerNameHash");
    id.issuerNameHash = w.Content(certId[1]);
    w.Expect(certId[3], kTagInteger, "CertID serialNumber");
    id.serial = w.Content(certId[3]);
    item.certIds.push_back(id);
  }
  return item;
}

// The token and imprint of a TimeStampToken ContentInfo held in der.
// walkerName names the bytes in messages with offsets, name the file.
TimeStampItem ReadToken(const std::vector<uint8_t>& der, const std::string& name,
                        const std::string& walkerName) {
  DerWalker w(der, walkerName);
  SignedDataLayout layout = ReadSignedData(w);
  std::vector<DerElement> sd = w.Children(layout.signedData, "SignedData");
  std::vector<DerElement> encap = w.Children(sd[2], "encapContentInfo");
  if (encap.size() != 2 || w.OidText(encap[0]) != oids::kTstInfo) {
    w.Fail(sd[2].offset, "not a time-stamp token (eContentType is not id-ct-TSTInfo)");
  }
  std::vector<DerElement> wrapped = w.Children(encap[1], "eContent");
  if (wrapped.size() != 1) w.Fail(encap[1].offset, "eContent: expected one OCTET STRING");
  const std::vector<uint8_t> tstInfo = OctetStringValue(w, wrapped[0], "eContent");
  DerWalker t(tstInfo, walkerName + " (TSTInfo)");
  DerElement info = t.ReadTop("TSTInfo");
  t.Expect(info, kTagSequence, "TSTInfo");
  std::vector<DerElement> fields = t.Children(info, "TSTInfo");
  if (fields.size() < 3) t.Fail(info.offset, "TSTInfo: too few fields");
  t.Expect(fields[2], kTagSequence, "messageImprint");
  std::vector<DerElement> mi = t.Children(fields[2], "messageImprint");
  if (mi.size() != 2) t.Fail(fields[2].offset, "messageImprint: expected 2 fields");
  t.Expect(mi[0], kTagSequence, "messageImprint hashAlgorithm");
  std::vector<DerElement> alg = t.Children(mi[0], "messageImprint hashAlgorithm");
  if (alg.empty()) t.Fail(mi[0].offset, "messageImprint hashAlgorithm: empty");
  TimeStampItem item;
  item.name = name;
  item.token = der;
  item.imprintOid = t.OidText(alg[0]);
  t.Expect(mi[1], kTagOctetString, "hashedMessage");
  item.imprint = t.Content(mi[1]);
  return item;
}

}  // namespace

std::string ItemName(const Input& input, size_t index) {
  if (input.items.size() == 1) return input.name;
  return input.name + " (PEM block " + std::to_string(index + 1) + ")";
}

CertificateItem CertificateItemFromDer(const std::vector<uint8_t>& der, const std::string& name) {
  return ReadCertificate(der, name);
}

std::vector<CertificateItem> ReadCertificates(const Input& input) {
  std::vector<CertificateItem> items;
  for (size_t i = 0; i < input.items.size(); ++i) {
    items.push_back(ReadCertificate(input.items[i].bytes, ItemName(input, i)));
  }
  return items;
}

std::vector<CrlItem> ReadCrls(const Input& input) {
  std::vector<CrlItem> items;
  for (size_t i = 0; i < input.items.size(); ++i) {
    items.push_back(ReadCrl(input.items[i].bytes, ItemName(input, i)));
  }
  return items;
}

std::vector<OcspItem> ReadOcspResponses(const Input& input) {
  std::vector<OcspItem> items;
  for (size_t i = 0; i < input.items.size(); ++i) {
    items.push_back(ReadOcsp(input.items[i].bytes, ItemName(input, i)));
  }
  return items;
}

TimeStampItem ReadTimeStamp(const Input& input) {
  if (input.items.size() != 1) {
    throw FileError(input.name, "expected one time-stamp token, found " +
                                    std::to_string(input.items.size()) + " PEM blocks");
  }
  const std::vector<uint8_t>& der = input.items[0].bytes;
  DerWalker w(der, input.name);
  DerElement top = w.ReadTop("time-stamp");
  w.Expect(top, kTagSequence, "time-stamp");
  std::vector<DerElement> fields = w.Children(top, "time-stamp");
  if (!fields.empty() && fields[0].tag == kTagOid) return ReadToken(der, input.name, input.name);
  // TimeStampResp ::= SEQUENCE { status PKIStatusInfo, timeStampToken OPTIONAL }
  if (fields.empty()) w.Fail(top.offset, "time-stamp: empty SEQUENCE");
  w.Expect(fields[0], kTagSequence, "TimeStampResp status");
  std::vector<DerElement> status = w.Children(fields[0], "PKIStatusInfo");
  if (status.empty()) w.Fail(fields[0].offset, "PKIStatusInfo: empty");
  w.Expect(status[0], kTagInteger, "PKIStatus");
  const std::vector<uint8_t> value = w.Content(status[0]);
  if (value != std::vector<uint8_t>{0} && value != std::vector<uint8_t>{1}) {
    w.Fail(status[0].offset, "the time-stamp response was not granted");
  }
  if (fields.size() != 2) w.Fail(top.offset, "the time-stamp response holds no token");
  return ReadToken(Range(der, fields[1].offset, fields[1].end), input.name,
                   input.name + " (timeStampToken)");
}

}  // namespace adestool
