// cms_builder.cpp: DER surgery on the CMS fixtures for the inspect tests.
#include "cms_builder.h"

#include <korvex/cades/CAdESAttributes.h>
#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>
#include <korvex/ocsp/ResponderID.h>

#include <stdexcept>

#include "tool_runner.h"

namespace adestool_test {

namespace {

constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";

struct Element {
  unsigned char tag = 0;
  size_t header = 0;
  size_t length = 0;
};

// Read parses the DER element at der[offset] (one-octet tags, definite
// lengths, as the fixtures are DER).
Element Read(const std::string &der, size_t offset) {
  Element e;
  if (offset + 2 > der.size()) throw std::runtime_error("truncated element");
  e.tag = static_cast<unsigned char>(der[offset]);
  unsigned char first = static_cast<unsigned char>(der[offset + 1]);
  e.header = 2;
  if (first < 0x80) {
    e.length = first;
  } else {
    size_t count = first & 0x7F;
    if (count == 0 || count > 4) throw std::runtime_error("unsupported length");
    for (size_t i = 0; i < count; ++i) {
      e.length = (e.length << 8) | static_cast<unsigned char>(der[offset + 2 + i]);
    }
    e.header += count;
  }
  if (offset + e.header + e.length > der.size()) throw std::runtime_error("element too long");
  return e;
}

std::vector<std::string> Children(const std::string &der) {
  Element outer = Read(der, 0);
  std::vector<std::string> children;
  size_t pos = outer.header;
  size_t end = outer.header + outer.length;
  while (pos < end) {
    Element e = Read(der, pos);
    children.push_back(der.substr(pos, e.header + e.length));
    pos += e.header + e.length;
  }
  return children;
}

std::string Join(const std::vector<std::string> &parts) {
  std::string out;
  for (const std::string &p : parts) out += p;
  return out;
}

unsigned char TagOf(const std::string &der) { return static_cast<unsigned char>(der[0]); }

std::string Rewrap(const std::string &der, const std::vector<std::string> &children) {
  return Tlv(TagOf(der), Join(children));
}

// EditSignedData applies edit to the SignedData's fields inside the
// ContentInfo cms and rebuilds the lengths around them.
template <typename Edit>
std::string EditSignedData(const std::string &cms, Edit edit) {
  std::vector<std::string> info = Children(cms);         // contentType, [0]
  std::vector<std::string> wrapper = Children(info[1]);  // SignedData
  std::vector<std::string> fields = Children(wrapper[0]);
  edit(&fields);
  wrapper[0] = Rewrap(wrapper[0], fields);
  info[1] = Rewrap(info[1], wrapper);
  return Rewrap(cms, info);
}

Korvex::CBlob ToBlob(const std::string &s) {
  return Korvex::CBlob(reinterpret_cast<const unsigned char *>(s.data()),
                       static_cast<unsigned long>(s.size()));
}

std::string FromBlob(const Korvex::CBlob &b) {
  return std::string(reinterpret_cast<const char *>(b.pbData()), b.cbData());
}

// CrlIssuer: the DER issuer Name of a CRL (RFC 5280 5.1).
std::string CrlIssuer(const std::string &crl) {
  std::vector<std::string> tbs = Children(Children(crl)[0]);
  // version is optional: the issuer follows the signature AlgorithmIdentifier.
  return TagOf(tbs[0]) == 0x02 ? tbs[2] : tbs[1];
}

Korvex::PKI::CAdES::CCrlValidatedID CrlRef(const std::string &crl, int number) {
  using namespace Korvex;
  ASN1::COtherHashAlgAndValue hash(ToBlob(std::string(32, static_cast<char>(number & 0xFF))),
                                   ASN1::CAlgorithmIdentifier(kSha256));
  PKI::CAdES::CCrlValidatedID id{ASN1::COtherHash(hash)};
  PKI::CAdES::CCrlIdentifier identifier(ToBlob(CrlIssuer(crl)), CDateTime("20240701000000Z"));
  identifier.put_crlNumber(&number);
  id.put_crlIdentifier(&identifier);
  return id;
}

std::string CertificateRefs() {
  using namespace Korvex;
  PKI::CAdES::CCompleteCertificateRefs refs;
  refs.push_back(ASN1::COtherCertID(ToBlob(std::string(20, '\x11'))));
  refs.push_back(
      ASN1::COtherCertID(ToBlob(std::string(32, '\x22')), ASN1::CAlgorithmIdentifier(kSha256)));
  return FromBlob(refs.encode());
}

std::string RevocationRefs(size_t crlRefs) {
  using namespace Korvex;
  std::string crl = ReadFile(DataPath("crl/intermediate-ca.crl"));
  PKI::CAdES::CCRLListID crls;
  for (size_t i = 0; i < crlRefs; ++i) crls.push_back(CrlRef(crl, static_cast<int>(i + 1)));
  PKI::OCSP::CResponderID responder;
  responder.put_byKey(ToBlob(std::string(20, '\x33')));
  PKI::CAdES::COcspListID ocsps;
  ocsps.push_back(PKI::CAdES::COcspResponsesID(
      PKI::CAdES::COcspIdentifier(responder, CDateTime("20240702120000Z"))));
  PKI::CAdES::CCrlOcspRef ref;
  ref.put_crlids(&crls);
  ref.put_ocspids(&ocsps);
  PKI::CAdES::CCompleteRevocationRefs refs;
  refs.push_back(ref);
  return FromBlob(refs.encode());
}

std::string RevocationValues(const std::vector<std::string> &crls) {
  Korvex::CBlobList list;
  for (const std::string &crl : crls) list.push_back(ToBlob(crl));
  Korvex::PKI::CAdES::CRevocationValues values;
  values.put_crlVals(&list);
  return FromBlob(values.encode());
}

std::string Token() { return ReadFile(DataPath("cades/signature-timestamp-token.der")); }

std::string Signed() { return ReadFile(DataPath("cms/signed-attached.der")); }

}  // namespace

std::string Tlv(unsigned char tag, const std::string &content) {
  std::string out(1, static_cast<char>(tag));
  size_t n = content.size();
  if (n < 0x80) {
    out += static_cast<char>(n);
  } else {
    std::string octets;
    for (; n; n >>= 8) octets.insert(octets.begin(), static_cast<char>(n & 0xFF));
    out += static_cast<char>(0x80 | octets.size());
    out += octets;
  }
  return out + content;
}

std::string OidDer(const std::string &dotted) {
  std::vector<unsigned long> arcs;
  size_t pos = 0;
  while (pos <= dotted.size()) {
    size_t dot = dotted.find('.', pos);
    if (dot == std::string::npos) dot = dotted.size();
    arcs.push_back(std::stoul(dotted.substr(pos, dot - pos)));
    pos = dot + 1;
  }
  std::string body;
  auto base128 = [&body](unsigned long v) {
    std::string bytes(1, static_cast<char>(v & 0x7F));
    for (v >>= 7; v; v >>= 7) bytes.insert(bytes.begin(), static_cast<char>(0x80 | (v & 0x7F)));
    body += bytes;
  };
  base128(arcs[0] * 40 + arcs[1]);
  for (size_t i = 2; i < arcs.size(); ++i) base128(arcs[i]);
  return Tlv(0x06, body);
}

std::string AttributeDer(const std::string &dotted, const std::string &valueDer) {
  return Tlv(0x30, OidDer(dotted) + Tlv(0x31, valueDer));
}

std::string AddUnsignedAttributes(const std::string &cms, size_t signer,
                                  const std::vector<std::string> &attributes) {
  return EditSignedData(cms, [&](std::vector<std::string> *fields) {
    std::string &set = fields->back();  // signerInfos
    std::vector<std::string> signers = Children(set);
    std::vector<std::string> parts = Children(signers.at(signer));
    if (TagOf(parts.back()) == 0xA1) {
      std::vector<std::string> existing = Children(parts.back());
      existing.insert(existing.end(), attributes.begin(), attributes.end());
      parts.back() = Tlv(0xA1, Join(existing));
    } else {
      parts.push_back(Tlv(0xA1, Join(attributes)));
    }
    signers[signer] = Rewrap(signers[signer], parts);
    set = Rewrap(set, signers);
  });
}

std::string AddCrls(const std::string &cms, const std::vector<std::string> &crls) {
  return EditSignedData(cms, [&](std::vector<std::string> *fields) {
    // crls [1] comes after certificates [0], before signerInfos (RFC 5652 5.1).
    auto where = fields->end() - 1;
    if (TagOf(*(where - 1)) == 0xA1) {
      std::vector<std::string> existing = Children(*(where - 1));
      existing.insert(existing.end(), crls.begin(), crls.end());
      *(where - 1) = Tlv(0xA1, Join(existing));
    } else {
      fields->insert(where, Tlv(0xA1, Join(crls)));
    }
  });
}

std::string FlipByteOf(const std::string &cms, const std::string &needle) {
  size_t at = cms.find(needle);
  if (at == std::string::npos) throw std::runtime_error("needle not found");
  std::string out = cms;
  out[at + needle.size() / 2] ^= 0x01;
  return out;
}

std::string CadesT() {
  return AddUnsignedAttributes(Signed(), 0, {AttributeDer("1.2.840.113549.1.9.16.2.14", Token())});
}

std::string CadesXLongType1() {
  std::string intermediateCrl = ReadFile(DataPath("crl/intermediate-ca.crl"));
  std::string rootCrl = ReadFile(DataPath("crl/root-ca.crl"));
  std::string certs = ReadFile(DataPath("pki/ee-rsa.der")) +
                      ReadFile(DataPath("pki/intermediate-ca.der")) +
                      ReadFile(DataPath("pki/root-ca.der"));
  return AddUnsignedAttributes(
      CadesT(), 0,
      {AttributeDer("1.2.840.113549.1.9.16.2.21", CertificateRefs()),
       AttributeDer("1.2.840.113549.1.9.16.2.22", RevocationRefs(1)),
       AttributeDer("1.2.840.113549.1.9.16.2.25", Token()),
       AttributeDer("1.2.840.113549.1.9.16.2.23", Tlv(0x30, certs)),
       AttributeDer("1.2.840.113549.1.9.16.2.24", RevocationValues({intermediateCrl, rootCrl}))});
}

std::string CadesA() {
  return AddUnsignedAttributes(CadesXLongType1(), 0, {AttributeDer("0.4.0.1733.2.4", Token())});
}

std::string CadesWithRevocationMaterial(size_t crlRefs, size_t crlCopies) {
  std::string crl = ReadFile(DataPath("crl/intermediate-ca-1000.crl"));
  return AddUnsignedAttributes(
      CadesT(), 0,
      {AttributeDer("1.2.840.113549.1.9.16.2.22", RevocationRefs(crlRefs)),
       AttributeDer("1.2.840.113549.1.9.16.2.24",
                    RevocationValues(std::vector<std::string>(crlCopies, crl)))});
}

}  // namespace adestool_test
