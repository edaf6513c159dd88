// validation_data.h: the complete references and the values of an X Long
// Type 1 signature (RFC 5126 6.2.1, 6.2.2, 6.3.3, 6.3.4), built from
// certificates, CRLs and OCSP responses with the library's CAdES values.
// Everything here is deterministic: the same inputs give the same bytes.
#ifndef ADESTOOL_VALIDATION_DATA_H
#define ADESTOOL_VALIDATION_DATA_H

#include <cstdint>
#include <vector>

#include "digest.h"
#include "pki_items.h"

namespace adestool {

// CertificateRefsDer: CompleteCertificateRefs, one OtherCertID per
// certificate in order: the certificate's hash (the sha1Hash alternative for
// SHA-1, otherHash with the algorithm otherwise) and issuerSerial (the
// issuer as a directoryName, the serial number).
std::vector<uint8_t> CertificateRefsDer(const std::vector<CertificateItem>& certs,
                                        const HashAlgorithm& hash);

// RevocationRefsDer: CompleteRevocationRefs. With certificates, one
// CrlOcspRef per certificate in order, holding the CRLs whose issuer is the
// certificate's issuer and the OCSP responses with a CertID for it (serial
// number and issuer-name hash); a CRL or response that serves none of them
// is an error. Without certificates, one CrlOcspRef with every CRL and
// response. CRLs are referenced by hash and CrlIdentifier (issuer,
// thisUpdate, cRLNumber when present; the identifier is left out when
// thisUpdate is not a UTCTime), responses by OcspIdentifier (responderID,
// producedAt) and the hash of the BasicOCSPResponse.
std::vector<uint8_t> RevocationRefsDer(const std::vector<CertificateItem>& certs,
                                       const std::vector<CrlItem>& crls,
                                       const std::vector<OcspItem>& responses,
                                       const HashAlgorithm& hash);

// CertificateValuesDer: CertificateValues, SEQUENCE OF Certificate with each
// certificate's bytes as they stand (so that their signatures stay valid).
std::vector<uint8_t> CertificateValuesDer(const std::vector<CertificateItem>& certs);

// RevocationValuesDer: RevocationValues with crlVals and ocspVals (each
// absent when empty).
std::vector<uint8_t> RevocationValuesDer(const std::vector<CrlItem>& crls,
                                         const std::vector<OcspItem>& responses);

}  // namespace adestool

#endif
