// CertIdTraits.cpp: the certificate identifiers <-> their generated records.
#include <korvex/asn1types/AlgorithmIdentifierTraits.h>
#include <korvex/asn1types/CertIdTraits.h>
#include <korvex/asn1types/HashTraits.h>
#include <korvex/asn1types/PrimitiveTraits.h>

#include <cstring>

namespace Korvex {
namespace ASN1 {

namespace {

// The optional issuerSerial of the ESS and CAdES identifiers: written and
// marked present exactly when the value holds one.
template <class Record>
void SetIssuerSerial(ASN1CTXT* ctxt, Record& rec, CIssuerSerial const* issuerSerial) {
  rec.m.issuerSerialPresent = 0;
  if (!issuerSerial) return;
  ASN1T_IssuerSerial_traits::set(ctxt, rec.issuerSerial, *issuerSerial);
  rec.m.issuerSerialPresent = 1;
}

// Reads the optional issuerSerial into value (removing it when absent).
template <class Record, class Value>
void GetIssuerSerial(Record const& rec, Value& value) {
  if (!rec.m.issuerSerialPresent) {
    value.put_issuerSerial(nullptr);
    return;
  }
  CIssuerSerial issuerSerial;
  ASN1T_IssuerSerial_traits::get(rec.issuerSerial, issuerSerial);
  value.put_issuerSerial(&issuerSerial);
}

// IssuerSerial and CertId: the same two fields, issuer and serialNumber,
// the issuer a GeneralNames in one and a GeneralName in the other. get reads
// both before it changes the value.
template <class IssuerTraits, class Record, class Value>
void SetIssuerAndSerial(ASN1CTXT* ctxt, Record& rec, Value const& value) {
  if (!ctxt) throwInvalidArgument();
  IssuerTraits::set(ctxt, rec.issuer, value.get_issuer());
  ASN1BigInteger_traits::set(ctxt, rec.serialNumber, value.get_serialNumber());
}

template <class IssuerTraits, class Issuer, class Record, class Value>
void GetIssuerAndSerial(Record const& rec, Value& value) {
  Issuer issuer;
  IssuerTraits::get(rec.issuer, issuer);
  CBigInteger serialNumber;
  ASN1BigInteger_traits::get(rec.serialNumber, serialNumber);
  value.put_issuer(issuer);
  value.put_serialNumber(serialNumber);
}

}  // namespace

// ---- IssuerSerial ------------------------------------------------------------------

void ASN1T_IssuerSerial_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CIssuerSerial const& value) {
  SetIssuerAndSerial<ASN1T_GeneralNames_traits>(ctxt, rec, value);
}

void ASN1T_IssuerSerial_traits::get(ASN1_T const& rec, CIssuerSerial& value) {
  GetIssuerAndSerial<ASN1T_GeneralNames_traits, CGeneralNames>(rec, value);
}

// ---- ESSCertID ---------------------------------------------------------------------

void ASN1T_ESSCertID_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CESSCertID const& value) {
  if (!ctxt) throwInvalidArgument();
  ASN1TDynOctStr_traits::set(ctxt, rec.certHash, value.get_certHash());
  SetIssuerSerial(ctxt, rec, value.get_issuerSerial());
}

void ASN1T_ESSCertID_traits::get(ASN1_T const& rec, CESSCertID& value) {
  CBlob certHash;
  ASN1TDynOctStr_traits::get(rec.certHash, certHash);
  value.put_certHash(certHash);
  GetIssuerSerial(rec, value);
}

// ---- ESSCertIDv2 -------------------------------------------------------------------

void ASN1T_ESSCertIDv2_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CESSCertIDv2 const& value) {
  if (!ctxt) throwInvalidArgument();
  // RFC 5035 4 gives hashAlgorithm the DEFAULT SHA-256. Only the OID text is
  // compared: SHA-256 is left out whatever its parameters (they are lost), as
  // this library has always written it.
  CAlgorithmIdentifier const& algorithm = value.get_hashAlgorithm();
  rec.m.hashAlgorithmPresent = 0;
  if (std::strcmp(algorithm.get_algorithm(), kESSCertIDv2DefaultHashOid) != 0) {
    ASN1T_AlgorithmIdentifier_traits::set(ctxt, rec.hashAlgorithm, algorithm);
    rec.m.hashAlgorithmPresent = 1;
  }
  ASN1TDynOctStr_traits::set(ctxt, rec.certHash, value.get_certHash());
  SetIssuerSerial(ctxt, rec, value.get_issuerSerial());
}

void ASN1T_ESSCertIDv2_traits::get(ASN1_T const& rec, CESSCertIDv2& value) {
  CAlgorithmIdentifier algorithm(kESSCertIDv2DefaultHashOid);
  if (rec.m.hashAlgorithmPresent) ASN1T_AlgorithmIdentifier_traits::get(rec.hashAlgorithm, algorithm);
  CBlob certHash;
  ASN1TDynOctStr_traits::get(rec.certHash, certHash);
  value.put_hashAlgorithm(algorithm);
  value.put_certHash(certHash);
  GetIssuerSerial(rec, value);
}

// ---- OtherCertID -------------------------------------------------------------------

void ASN1T_OtherCertID_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, COtherCertID const& value) {
  if (!ctxt) throwInvalidArgument();
  ASN1T_OtherHash_traits::set(ctxt, rec.otherCertHash, value.get_otherCertHash());
  SetIssuerSerial(ctxt, rec, value.get_issuerSerial());
}

void ASN1T_OtherCertID_traits::get(ASN1_T const& rec, COtherCertID& value) {
  COtherHash otherCertHash;
  ASN1T_OtherHash_traits::get(rec.otherCertHash, otherCertHash);
  value.put_otherCertHash(otherCertHash);
  GetIssuerSerial(rec, value);
}

// ---- CertId ------------------------------------------------------------------------

void ASN1T_CertId_traits::set(ASN1CTXT* ctxt, ASN1_T& rec, CCertId const& value) {
  SetIssuerAndSerial<ASN1T_GeneralName_traits>(ctxt, rec, value);
}

void ASN1T_CertId_traits::get(ASN1_T const& rec, CCertId& value) {
  GetIssuerAndSerial<ASN1T_GeneralName_traits, CGeneralName>(rec, value);
}

}  // namespace ASN1
}  // namespace Korvex
