// attribute_describe.h: report nodes for the signed and unsigned
// attributes of a signer (RFC 5652 11, RFC 5035, RFC 5126 5.7-6.4, RFC 3161).
#ifndef ADESTOOL_ATTRIBUTE_DESCRIBE_H
#define ADESTOOL_ATTRIBUTE_DESCRIBE_H

#include <korvex/asn1gen/PKIX1Explicit88.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "inspect_report.h"

namespace adestool {

// What the descriptions of time-stamp tokens check their imprints against.
struct ImprintSources {
  const uint8_t *signature = nullptr;  // this signer's signature value
  size_t signatureSize = 0;
  const uint8_t *content = nullptr;  // the signed content, null when unknown
  size_t contentSize = 0;
  // What the CAdES-C time-stamp covers (cades_extension.h EscImprintData),
  // null when it cannot be formed.
  const uint8_t *escData = nullptr;
  size_t escDataSize = 0;
};

// AttributeLabel: "signingTime (1.2.840.113549.1.9.5)", or the dotted OID
// alone for an identifier without a name.
std::string AttributeLabel(const std::string &dotted);

// DescribeAttribute: the node of one attribute, an array item with a JSON
// object {"oid", "name", "size", "values": [...]} and a text form that
// shows the value on the attribute's own line (or below it). Returns the
// number of its time-stamp tokens whose imprint was compared with sources
// and does not match.
size_t DescribeAttribute(const asn1data::ASN1T_Attribute &attribute, const ImprintSources &sources,
                         ReportNode *list);

// AlgorithmNode: {"oid", "name"}, text "sha256 (2.16.840.1.101.3.4.2.1)".
ReportNode AlgorithmNode(std::string key, std::string label, const std::string &dotted);

}  // namespace adestool

#endif
