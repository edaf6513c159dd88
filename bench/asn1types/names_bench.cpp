// Distinguished names as text, both ways, for a typical six-attribute name,
// with OpenSSL as the peer on the same name in the same run.
//   text -> DER: ours parses RFC 4514 text through the attribute-type
//     register; OpenSSL has no RFC 4514 parser, so its side adds the six
//     pre-split entries (X509_NAME_add_entry_by_txt, UTF-8) and serialises.
//   DER -> text: decode and write RFC 4514 text; OpenSSL: d2i_X509_NAME and
//     X509_NAME_print_ex with XN_FLAG_RFC2253 into a memory BIO.
// Run: asn1types_names_bench
#include <benchmark/benchmark.h>
#include <korvex/asn1types/DistinguishedNameText.h>
#include <korvex/asn1types/Names.h>
#include <openssl/bio.h>
#include <openssl/x509.h>

#include <string>

namespace {

using namespace Korvex::ASN1;
using Korvex::CBlob;

wchar_t const kText[] =
    L"CN=Korvex Test RSA Signer,OU=Signers,O=Korvex Test PKI,L=Moscow,ST=Moscow,C=RU";

struct Entry {
  char const* field;
  char const* value;
};
// Wire order (the text's RDNs reversed).
Entry const kEntries[] = {{"C", "RU"},
                          {"ST", "Moscow"},
                          {"L", "Moscow"},
                          {"O", "Korvex Test PKI"},
                          {"OU", "Signers"},
                          {"CN", "Korvex Test RSA Signer"}};

void BM_NameTextToDer(benchmark::State& state) {
  for (auto _ : state) {
    CBlob der = NameFromString(kText).encode();
    benchmark::DoNotOptimize(der.pbData());
  }
}
BENCHMARK(BM_NameTextToDer);

void BM_NameDerToText(benchmark::State& state) {
  CBlob const der = NameFromString(kText).encode();
  for (auto _ : state) {
    CName name;
    name.decode(der);
    Korvex::CWStringProxy text = name.toString();
    benchmark::DoNotOptimize(text.c_str());
  }
}
BENCHMARK(BM_NameDerToText);

void BM_NameDerToTextExact(benchmark::State& state) {
  CBlob const der = NameFromString(kText).encode();
  for (auto _ : state) {
    CName name;
    name.decode(der);
    Korvex::CWStringProxy text = name.toString(ntfExact);
    benchmark::DoNotOptimize(text.c_str());
  }
}
BENCHMARK(BM_NameDerToTextExact);

void BM_OpenSSL_NameEntriesToDer(benchmark::State& state) {
  for (auto _ : state) {
    X509_NAME* name = X509_NAME_new();
    for (Entry const& e : kEntries) {
      X509_NAME_add_entry_by_txt(name, e.field, MBSTRING_UTF8,
                                 reinterpret_cast<unsigned char const*>(e.value), -1, -1, 0);
    }
    unsigned char* der = nullptr;
    int length = i2d_X509_NAME(name, &der);
    benchmark::DoNotOptimize(length);
    OPENSSL_free(der);
    X509_NAME_free(name);
  }
}
BENCHMARK(BM_OpenSSL_NameEntriesToDer);

void BM_OpenSSL_NameDerToText(benchmark::State& state) {
  CBlob const der = NameFromString(kText).encode();
  for (auto _ : state) {
    unsigned char const* p = der.pbData();
    X509_NAME* name = d2i_X509_NAME(nullptr, &p, static_cast<long>(der.cbData()));
    BIO* out = BIO_new(BIO_s_mem());
    X509_NAME_print_ex(out, name, 0, XN_FLAG_RFC2253);
    char* text = nullptr;
    long length = BIO_get_mem_data(out, &text);
    benchmark::DoNotOptimize(length);
    BIO_free(out);
    X509_NAME_free(name);
  }
}
BENCHMARK(BM_OpenSSL_NameDerToText);

}  // namespace
