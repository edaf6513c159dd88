// cms_builder.h: CAdES signatures for the inspect tests, made from the
// fixtures of tests/data by adding DER to them (unsigned attributes, CRLs)
// without touching what the signature covers.
#ifndef ADESTOOL_TESTS_CMS_BUILDER_H
#define ADESTOOL_TESTS_CMS_BUILDER_H

#include <cstddef>
#include <string>
#include <vector>

namespace adestool_test {

// Tlv: one DER element with a one-octet tag (X.690 8.1.2, 8.1.3).
std::string Tlv(unsigned char tag, const std::string &content);

// OidDer: the DER OBJECT IDENTIFIER of dotted text (X.690 8.19).
std::string OidDer(const std::string &dotted);

// AttributeDer: Attribute ::= SEQUENCE { type, SET OF value } with one value.
std::string AttributeDer(const std::string &dotted, const std::string &valueDer);

// AddUnsignedAttributes: the DER ContentInfo cms with attributes (each an
// AttributeDer) appended to the unsignedAttrs [1] of signer index (created
// when absent). Every length around them is rewritten.
std::string AddUnsignedAttributes(const std::string &cms, size_t signer,
                                  const std::vector<std::string> &attributes);

// AddCrls: cms with crls appended to the SignedData's crls [1] field.
std::string AddCrls(const std::string &cms, const std::vector<std::string> &crls);

// FlipByteOf: cms with one byte of the first occurrence of needle changed
// (needle must occur).
std::string FlipByteOf(const std::string &cms, const std::string &needle);

// Signatures built from cms/signed-attached.der of tests/data and the
// time-stamp token of the same run (cades/).
std::string CadesT();  // + signatureTimeStampToken
// + CAdES-C time-stamp, complete certificate and revocation references,
// certificate values and revocation values (CRLs of the intermediate and the
// root): X Long Type 1.
std::string CadesXLongType1();
std::string CadesA();  // + the v3 archive time-stamp (0.4.0.1733.2.4)

// CadesWithRevocationMaterial: CAdES-T carrying refs to crlRefs CRLs and
// crlCopies copies of the intermediate's 1,000-entry CRL as values (for the
// speed measurement).
std::string CadesWithRevocationMaterial(size_t crlRefs, size_t crlCopies);

}  // namespace adestool_test

#endif
