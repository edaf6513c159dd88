// pki_items.h: the certificates, CRLs, OCSP responses and time-stamp tokens
// that refs, values, imprint and extend read, reduced to the fields those
// commands use. Each keeps its own DER bytes exactly as read.
#ifndef ADESTOOL_PKI_ITEMS_H
#define ADESTOOL_PKI_ITEMS_H

#include <cstdint>
#include <string>
#include <vector>

#include "input.h"

namespace adestool {

// Certificate (RFC 5280 4.1).
struct CertificateItem {
  std::string name;              // for messages
  std::vector<uint8_t> der;      // the whole Certificate
  std::vector<uint8_t> issuer;   // DER of the issuer Name
  std::vector<uint8_t> subject;  // DER of the subject Name
  std::vector<uint8_t> serial;   // contents octets of serialNumber
  std::vector<uint8_t> keyId;    // subjectKeyIdentifier, empty when absent
};

// CertificateList (RFC 5280 5.1).
struct CrlItem {
  std::string name;
  std::vector<uint8_t> der;
  std::vector<uint8_t> issuer;     // DER of the issuer Name
  std::string thisUpdate;          // GeneralizedTime text (a UTCTime gets its century)
  bool thisUpdateIsUtc = false;    // thisUpdate was a UTCTime (1950..2049)
  std::vector<uint8_t> crlNumber;  // contents octets of cRLNumber, empty when absent
};

// One SingleResponse's CertID (RFC 6960 4.1.1).
struct OcspCertId {
  std::string hashOid;  // dotted
  std::vector<uint8_t> issuerNameHash;
  std::vector<uint8_t> serial;  // contents octets
};

// BasicOCSPResponse (RFC 6960 4.2.1), read from it or from the OCSPResponse
// that carries it.
struct OcspItem {
  std::string name;
  std::vector<uint8_t> der;          // the BasicOCSPResponse
  std::vector<uint8_t> responderId;  // DER of the ResponderID ([1] or [2])
  std::string producedAt;            // GeneralizedTime text
  std::vector<OcspCertId> certIds;
};

// A time-stamp token (RFC 3161 2.4.2) and the imprint its TSTInfo holds.
struct TimeStampItem {
  std::string name;              // the file, for messages
  std::vector<uint8_t> token;    // the ContentInfo, as read
  std::string imprintOid;        // messageImprint.hashAlgorithm, dotted
  std::vector<uint8_t> imprint;  // messageImprint.hashedMessage
};

// Each Read* takes every item of an input (PEM blocks included) and throws
// ToolError (status 2) naming the input and the offset for anything that is
// not the expected structure.
std::vector<CertificateItem> ReadCertificates(const Input& input);
std::vector<CrlItem> ReadCrls(const Input& input);
std::vector<OcspItem> ReadOcspResponses(const Input& input);
// ReadTimeStamp: one token, from a TimeStampResp (status granted or
// grantedWithMods) or a bare ContentInfo.
TimeStampItem ReadTimeStamp(const Input& input);

// CertificateItemFromDer: a certificate held in memory (a signature's
// certificates field), named name in messages.
CertificateItem CertificateItemFromDer(const std::vector<uint8_t>& der, const std::string& name);

// ItemName: "FILE" for a one-item input, "FILE (PEM block N)" otherwise.
std::string ItemName(const Input& input, size_t index);

}  // namespace adestool

#endif
