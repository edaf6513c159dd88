// validation_data.cpp: complete references and values through
// CCompleteCertificateRefs, CCompleteRevocationRefs and CRevocationValues.
#include "validation_data.h"

#include <korvex/asn1types/AlgorithmIdentifier.h>
#include <korvex/asn1types/BigInteger.h>
#include <korvex/asn1types/CertId.h>
#include <korvex/asn1types/Hash.h>
#include <korvex/asn1types/IssuerSerial.h>
#include <korvex/asn1types/Names.h>
#include <korvex/cades/CAdESAttributes.h>
#include <korvex/ocsp/ResponderID.h>
#include <korvex/platform/atl/atlexcept.h>

#include <cstdio>

#include "der_writer.h"
#include "tool_error.h"

namespace adestool {

namespace {

using Korvex::CBlob;
using Korvex::CBlobList;
using Korvex::CDateTime;
using namespace Korvex::ASN1;
using namespace Korvex::PKI::CAdES;

CBlob ToBlob(const std::vector<uint8_t>& bytes) {
  return CBlob(bytes.data(), static_cast<unsigned long>(bytes.size()));
}

std::vector<uint8_t> FromBlob(const CBlob& blob) {
  return std::vector<uint8_t>(blob.pbData(), blob.pbData() + blob.cbData());
}

bool IsSha1(const HashAlgorithm& hash) { return hash.name == "sha1"; }

COtherHash OtherHash(const HashAlgorithm& hash, const std::vector<uint8_t>& data) {
  const CBlob value = ToBlob(Digest(hash, data));
  if (IsSha1(hash)) return COtherHash(value);
  const std::string oid(hash.oid);
  return COtherHash(COtherHashAlgAndValue(value, CAlgorithmIdentifier(oid.c_str())));
}

// A library failure while building a value names the item it was built from.
[[noreturn]] void LibraryFailure(const std::string& name, const ATL::CAtlException& e) {
  char code[16];
  std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(e.m_hr));
  throw FileError(name, std::string("cannot be referenced: library error ") + code);
}

bool SelfIssued(const CertificateItem& cert) { return cert.issuer == cert.subject; }

bool CrlServes(const CrlItem& crl, const CertificateItem& cert) {
  return !SelfIssued(cert) && crl.issuer == cert.issuer;
}

bool OcspServes(const OcspItem& response, const CertificateItem& cert) {
  if (SelfIssued(cert)) return false;
  for (const OcspCertId& id : response.certIds) {
    if (id.serial != cert.serial) continue;
    const HashAlgorithm* hash = FindHashByOid(id.hashOid);
    if (hash && Digest(*hash, cert.issuer) == id.issuerNameHash) return true;
  }
  return false;
}

CCrlValidatedID CrlReference(const CrlItem& crl, const HashAlgorithm& hash) {
  try {
    CCrlValidatedID ref(OtherHash(hash, crl.der));
    if (crl.thisUpdateIsUtc) {
      CCrlIdentifier id(ToBlob(crl.issuer), CDateTime(crl.thisUpdate.c_str()));
      if (!crl.crlNumber.empty()) {
        CBigInteger number(crl.crlNumber.data(), static_cast<unsigned long>(crl.crlNumber.size()));
        id.put_longCrlNumber(&number);
      }
      ref.put_crlIdentifier(&id);
    }
    ref.encode();  // fails here, naming the CRL, rather than in the whole list
    return ref;
  } catch (const ATL::CAtlException& e) {
    LibraryFailure(crl.name, e);
  }
}

COcspResponsesID OcspReference(const OcspItem& response, const HashAlgorithm& hash) {
  try {
    Korvex::PKI::OCSP::CResponderID responder;
    responder.decode(ToBlob(response.responderId));
    COcspResponsesID ref(COcspIdentifier(responder, CDateTime(response.producedAt.c_str())));
    const COtherHash repHash = OtherHash(hash, response.der);
    ref.put_ocspRepHash(&repHash);
    ref.encode();
    return ref;
  } catch (const ATL::CAtlException& e) {
    LibraryFailure(response.name, e);
  }
}

CCrlOcspRef MakeRef(const CCRLListID& crls, const COcspListID& responses) {
  CCrlOcspRef ref;
  if (!crls.empty()) ref.put_crlids(&crls);
  if (!responses.empty()) ref.put_ocspids(&responses);
  return ref;
}

}  // namespace

std::vector<uint8_t> CertificateRefsDer(const std::vector<CertificateItem>& certs,
                                        const HashAlgorithm& hash) {
  CCompleteCertificateRefs refs;
  for (const CertificateItem& cert : certs) {
    try {
      const CBlob value = ToBlob(Digest(hash, cert.der));
      const std::string oid(hash.oid);
      COtherCertID id = IsSha1(hash) ? COtherCertID(value)
                                     : COtherCertID(value, CAlgorithmIdentifier(oid.c_str()));
      CGeneralName issuer;
      issuer.put_directoryName(ToBlob(cert.issuer));
      CGeneralNames names;
      names.push_back(issuer);
      const CIssuerSerial issuerSerial(
          names, CBigInteger(cert.serial.data(), static_cast<unsigned long>(cert.serial.size())));
      id.put_issuerSerial(&issuerSerial);
      id.encode();
      refs.push_back(id);
    } catch (const ATL::CAtlException& e) {
      LibraryFailure(cert.name, e);
    }
  }
  return FromBlob(refs.encode());
}

std::vector<uint8_t> RevocationRefsDer(const std::vector<CertificateItem>& certs,
                                       const std::vector<CrlItem>& crls,
                                       const std::vector<OcspItem>& responses,
                                       const HashAlgorithm& hash) {
  CCompleteRevocationRefs refs;
  if (certs.empty()) {
    CCRLListID crlIds;
    for (const CrlItem& crl : crls) crlIds.push_back(CrlReference(crl, hash));
    COcspListID ocspIds;
    for (const OcspItem& r : responses) ocspIds.push_back(OcspReference(r, hash));
    refs.push_back(MakeRef(crlIds, ocspIds));
    return FromBlob(refs.encode());
  }
  std::vector<bool> crlUsed(crls.size()), ocspUsed(responses.size());
  for (const CertificateItem& cert : certs) {
    CCRLListID crlIds;
    for (size_t i = 0; i < crls.size(); ++i) {
      if (!CrlServes(crls[i], cert)) continue;
      crlIds.push_back(CrlReference(crls[i], hash));
      crlUsed[i] = true;
    }
    COcspListID ocspIds;
    for (size_t i = 0; i < responses.size(); ++i) {
      if (!OcspServes(responses[i], cert)) continue;
      ocspIds.push_back(OcspReference(responses[i], hash));
      ocspUsed[i] = true;
    }
    refs.push_back(MakeRef(crlIds, ocspIds));
  }
  for (size_t i = 0; i < crls.size(); ++i) {
    if (!crlUsed[i]) throw FileError(crls[i].name, "the CRL covers none of the certificates");
  }
  for (size_t i = 0; i < responses.size(); ++i) {
    if (!ocspUsed[i]) {
      throw FileError(responses[i].name, "the OCSP response covers none of the certificates");
    }
  }
  return FromBlob(refs.encode());
}

std::vector<uint8_t> CertificateValuesDer(const std::vector<CertificateItem>& certs) {
  std::vector<uint8_t> content;
  for (const CertificateItem& cert : certs) Append(&content, cert.der);
  return DerWrap(0x30, content);
}

std::vector<uint8_t> RevocationValuesDer(const std::vector<CrlItem>& crls,
                                         const std::vector<OcspItem>& responses) {
  CRevocationValues values;
  CBlobList crlVals;
  for (const CrlItem& crl : crls) crlVals.push_back(ToBlob(crl.der));
  CBlobList ocspVals;
  for (const OcspItem& r : responses) ocspVals.push_back(ToBlob(r.der));
  if (!crlVals.empty()) values.put_crlVals(&crlVals);
  if (!ocspVals.empty()) values.put_ocspVals(&ocspVals);
  return FromBlob(values.encode());
}

}  // namespace adestool
