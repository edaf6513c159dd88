// OpenSSL's codec of the same CAdES-BES signed-attribute set: d2i with the
// item PKCS7_ATTR_VERIFY (SET OF X509_ATTRIBUTE as a verifier reads it) and
// i2d with PKCS7_ATTR_SIGN (sorted, as a signer writes it). A file of its own:
// OpenSSL's headers clash with the catalogue's constants.
#include <benchmark/benchmark.h>
#include <openssl/asn1.h>
#include <openssl/pkcs7.h>
#include <openssl/x509.h>

#include "attributes_bench.h"

namespace {

typedef STACK_OF(X509_ATTRIBUTE) AttributeStack;

AttributeStack* DecodeSet(Korvex::CBlob const& der) {
  unsigned char const* p = der.pbData();
  return reinterpret_cast<AttributeStack*>(ASN1_item_d2i(
      nullptr, &p, static_cast<long>(der.cbData()), ASN1_ITEM_rptr(PKCS7_ATTR_VERIFY)));
}

void FreeSet(AttributeStack* set) { sk_X509_ATTRIBUTE_pop_free(set, X509_ATTRIBUTE_free); }

void BM_OpenSSL_CadesBesAttributes_Decode(benchmark::State& state) {
  Korvex::CBlob const der = attrbench::CadesBesSignedAttrsDer();
  for (auto _ : state) {
    AttributeStack* set = DecodeSet(der);
    if (!set) {
      state.SkipWithError("OpenSSL refused the attributes");
      break;
    }
    FreeSet(set);
  }
  state.SetBytesProcessed(state.iterations() * der.cbData());
}
BENCHMARK(BM_OpenSSL_CadesBesAttributes_Decode);

void BM_OpenSSL_CadesBesAttributes_Encode(benchmark::State& state) {
  Korvex::CBlob const der = attrbench::CadesBesSignedAttrsDer();
  AttributeStack* set = DecodeSet(der);
  if (!set) {
    state.SkipWithError("OpenSSL refused the attributes");
    return;
  }
  for (auto _ : state) {
    unsigned char* out = nullptr;
    int n =
        ASN1_item_i2d(reinterpret_cast<ASN1_VALUE*>(set), &out, ASN1_ITEM_rptr(PKCS7_ATTR_SIGN));
    benchmark::DoNotOptimize(n);
    OPENSSL_free(out);
  }
  state.SetBytesProcessed(state.iterations() * der.cbData());
  FreeSet(set);
}
BENCHMARK(BM_OpenSSL_CadesBesAttributes_Encode);

}  // namespace
