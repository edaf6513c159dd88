// cades_samples.h: the CAdES values the benchmarks measure, built the same
// way wherever they are measured (the catalogue's side-by-side table and the
// value-class benchmarks).
#ifndef KORVEX_BENCH_CADES_SAMPLES_H
#define KORVEX_BENCH_CADES_SAMPLES_H

#include <korvex/cades/CAdESAttributes.h>

#include <cstddef>

namespace Korvex::Bench {

// FilledBlob: n octets of byte (a stand-in hash).
inline CBlob FilledBlob(unsigned char byte, unsigned long n) {
  CBlob blob(n);
  for (unsigned long i = 0; i < n; ++i) blob.pbData()[i] = byte;
  return blob;
}

// CrlIssuerName: the issuer Name of a well-formed DER CRL, RFC 5280 5.1
// (CertificateList { tbsCertList { version, signature, issuer ... } }).
// Benchmark input is our own fixture, so it is not checked.
inline CBlob CrlIssuerName(CBlob const& crl) {
  unsigned char const* p = crl.pbData();
  auto skipHeader = [](unsigned char const*& q) {
    ++q;
    unsigned n = *q++;
    if (n & 0x80) q += n & 0x7F;
  };
  auto skipElement = [](unsigned char const*& q) {
    ++q;
    unsigned long len = *q++;
    if (len & 0x80) {
      unsigned n = len & 0x7F;
      len = 0;
      while (n--) len = (len << 8) | *q++;
    }
    q += len;
  };
  skipHeader(p);   // CertificateList
  skipHeader(p);   // tbsCertList
  skipElement(p);  // version
  skipElement(p);  // signature
  unsigned char const* start = p;
  skipElement(p);  // issuer
  return CBlob(start, static_cast<unsigned long>(p - start));
}

// SampleRevocationRefs: count references, each a CrlOcspRef with one CRL
// reference (hash, the CRL's issuer, time, number 2) and one OCSP reference
// (responder key hash, producedAt, response hash).
inline PKI::CAdES::CCompleteRevocationRefs SampleRevocationRefs(CBlob const& crl, long count) {
  namespace CAdES = PKI::CAdES;
  CAdES::CCrlIdentifier identifier(CrlIssuerName(crl), CDateTime(2024, 6, 1, 0, 0, 0, 0, 0));
  int const number = 2;
  identifier.put_crlNumber(&number);
  CAdES::CCrlValidatedID validated(ASN1::COtherHash(FilledBlob(0x11, 20)));
  validated.put_crlIdentifier(&identifier);
  CAdES::CCRLListID crls;
  crls.push_back(validated);
  CAdES::COcspResponsesID ocsp(CAdES::COcspIdentifier(
      PKI::OCSP::CResponderID::fromKeyHash(FilledBlob(0x22, 20)), CDateTime(2024, 6, 1, 12, 0, 0, 0, 0)));
  ASN1::COtherHash const hash(FilledBlob(0x33, 20));
  ocsp.put_ocspRepHash(&hash);
  CAdES::COcspListID ocsps;
  ocsps.push_back(ocsp);
  CAdES::CCrlOcspRef ref;
  ref.put_crlids(&crls);
  ref.put_ocspids(&ocsps);
  return CAdES::CCompleteRevocationRefs(static_cast<std::size_t>(count), ref);
}

}  // namespace Korvex::Bench

#endif
