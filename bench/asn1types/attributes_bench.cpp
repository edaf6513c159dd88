// The signed attributes of a CAdES-BES signature through CAttributes: encode
// and decode of the whole set, decode followed by reading every typed value
// (what a verifier does), and building the set from values (what a signer
// does). OpenSSL's codec of the same bytes is in
// attributes_openssl_bench.cpp. Run: asn1types_attrs_bench
#include "attributes_bench.h"

#include <benchmark/benchmark.h>
#include <korvex/asn1types/Attribute.h>

#include <stdexcept>

#include "der_walk.h"

using Korvex::CBlob;
using Korvex::CDateTime;
using namespace Korvex::ASN1;

namespace {

CBlob Bytes(unsigned char first, unsigned long n) {
  CBlob blob(n);
  for (unsigned long i = 0; i < n; ++i) blob.pbData()[i] = static_cast<unsigned char>(first + i);
  return blob;
}

// The signer's certificate ID: SHA-256 of the certificate, issuerSerial.
CESSCertIDv2List SignerCertIds() {
  CName issuerName;
  issuerName.decode(
      typestest::Root(typestest::ReadFixture("pki/intermediate-ca.der")).child(0).child(5).der());
  CGeneralNames issuer;
  issuer.push_back(CGeneralName(issuerName));
  unsigned char const serial[] = {0x00, 0xC0, 0xFF, 0xEE};
  CIssuerSerial issuerSerial(issuer, CBigInteger(serial, sizeof serial));
  CESSCertIDv2 id(Bytes(0x40, 32));
  id.put_issuerSerial(&issuerSerial);
  CESSCertIDv2List certs;
  certs.push_back(id);
  return certs;
}

CAttributes BuildSet(CESSCertIDv2List const& certs) {
  CAttributes attrs;
  attrs.add(CAttrContentType("1.2.840.113549.1.7.1"));
  attrs.add(CAttrSigningTime(CDateTime(2024, 6, 1, 12, 0, 0, 0, 0)));
  attrs.add(CAttrMessageDigest(Bytes(0x10, 32)));
  attrs.add(CAttrSigningCertificateV2(certs));
  return attrs;
}

void BM_CadesBesAttributes_Encode(benchmark::State& state) {
  CAttributes const attrs = BuildSet(SignerCertIds());
  for (auto _ : state) benchmark::DoNotOptimize(attrs.encode());
  state.SetBytesProcessed(state.iterations() * attrs.encode().cbData());
}
BENCHMARK(BM_CadesBesAttributes_Encode);

void BM_CadesBesAttributes_Decode(benchmark::State& state) {
  CBlob const der = attrbench::CadesBesSignedAttrsDer();
  for (auto _ : state) {
    CAttributes attrs;
    attrs.decode(der);
    benchmark::DoNotOptimize(attrs);
  }
  state.SetBytesProcessed(state.iterations() * der.cbData());
}
BENCHMARK(BM_CadesBesAttributes_Decode);

// Decode, then read each typed value as a verifier does.
void BM_CadesBesAttributes_DecodeTyped(benchmark::State& state) {
  CBlob const der = attrbench::CadesBesSignedAttrsDer();
  for (auto _ : state) {
    CAttributes attrs;
    attrs.decode(der);
    CAttrContentType contentType(attrs.find(kOidContentType)->begin()->get_value());
    CAttrMessageDigest digest;
    digest.decode(attrs.find(kOidMessageDigest)->begin()->get_value());
    CAttrSigningTime time(attrs.find(kOidSigningTime)->begin()->get_value());
    CAttrSigningCertificateV2 certs(attrs.find(kOidSigningCertificateV2)->begin()->get_value());
    benchmark::DoNotOptimize(certs.get_certs().front().get_certHash().cbData());
  }
  state.SetBytesProcessed(state.iterations() * der.cbData());
}
BENCHMARK(BM_CadesBesAttributes_DecodeTyped);

// Build the set from values (each typed value encodes itself), then encode.
void BM_CadesBesAttributes_BuildAndEncode(benchmark::State& state) {
  CESSCertIDv2List const certs = SignerCertIds();
  for (auto _ : state) benchmark::DoNotOptimize(BuildSet(certs).encode());
}
BENCHMARK(BM_CadesBesAttributes_BuildAndEncode);

}  // namespace

namespace attrbench {

CBlob CadesBesSignedAttrsDer() { return BuildSet(SignerCertIds()).encode(); }

}  // namespace attrbench
