// Encode and decode of the CAdES revocation attributes through the generated
// codecs: CompleteRevocationRefs of 1, 100 and 10,000 references, and
// RevocationValues holding 100 CRLs (synthesised DER, ~2 KB each).
#include <benchmark/benchmark.h>
#include <korvex/asn1gen/ASN1CADES.h>

#include <cstdio>
#include <vector>

namespace {

using namespace ASN1CADES;
using Bytes = std::vector<unsigned char>;

void Append(Bytes& out, const Bytes& b) { out.insert(out.end(), b.begin(), b.end()); }

// One DER element: tag, definite length, contents.
Bytes Tlv(unsigned char tag, const Bytes& contents) {
  Bytes out{tag};
  size_t n = contents.size();
  if (n < 128) {
    out.push_back(static_cast<unsigned char>(n));
  } else {
    Bytes len;
    for (; n; n >>= 8) len.insert(len.begin(), static_cast<unsigned char>(n & 0xFF));
    out.push_back(static_cast<unsigned char>(0x80 | len.size()));
    Append(out, len);
  }
  Append(out, contents);
  return out;
}

// A CrlOcspRef with one CRL reference: SHA-1 OtherHash, issuer, time, number.
Bytes CrlOcspRef(unsigned i) {
  Bytes hash(20);
  for (size_t k = 0; k < hash.size(); ++k) hash[k] = static_cast<unsigned char>(i * 31 + k);
  Bytes issuer =
      Tlv(0x30, Tlv(0x31, Tlv(0x30, [] {
                      Bytes atv = Tlv(0x06, {0x55, 0x04, 0x03});
                      Append(atv, Tlv(0x0C, {'K', 'o', 'r', 'v', 'e', 'x', ' ', 'C', 'A'}));
                      return atv;
                    }())));
  char time[16];
  std::snprintf(time, sizeof time, "2401%02u120000Z", 1 + i % 28);
  Bytes id = issuer;
  Append(id, Tlv(0x17, Bytes(time, time + 13)));
  Append(id, Tlv(0x02, {static_cast<unsigned char>(0x01 + (i >> 16) % 0x7F),
                        static_cast<unsigned char>(i >> 8), static_cast<unsigned char>(i)}));
  Bytes validated = Tlv(0x04, hash);
  Append(validated, Tlv(0x30, id));
  return Tlv(0x30, Tlv(0xA0, Tlv(0x30, Tlv(0x30, Tlv(0x30, validated)))));
}

Bytes CompleteRevocationRefsDer(unsigned count) {
  Bytes refs;
  for (unsigned i = 0; i < count; ++i) Append(refs, CrlOcspRef(i));
  return Tlv(0x30, refs);
}

// A CertificateList-shaped element of about 2 KB (its contents are opaque here).
Bytes CrlDer(unsigned i) {
  Bytes revoked;
  for (unsigned k = 0; k < 50; ++k) {
    Bytes entry = Tlv(0x02, {0x01, static_cast<unsigned char>(i), static_cast<unsigned char>(k)});
    Append(entry, Tlv(0x17, Bytes(13, '0')));
    Append(revoked, Tlv(0x30, entry));
  }
  Bytes tbs = Tlv(0x02, {0x01});
  Append(tbs, Tlv(0x30, Tlv(0x06, {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x0B})));
  Append(tbs, Tlv(0x30, revoked));
  Bytes crl = Tlv(0x30, tbs);
  Append(crl, Tlv(0x30, Tlv(0x06, {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x0B})));
  Append(crl, Tlv(0x03, Bytes(257, 0x5A)));
  return Tlv(0x30, crl);
}

Bytes RevocationValuesDer(unsigned crls) {
  Bytes list;
  for (unsigned i = 0; i < crls; ++i) Append(list, CrlDer(i));
  return Tlv(0x30, Tlv(0xA0, Tlv(0x30, list)));
}

template <typename Record>
void Decode(benchmark::State& state, const Bytes& der,
            int (*decode)(ASN1CTXT*, Record*, ASN1TagType, int)) {
  for (auto _ : state) {
    ASN1CTXT ctxt;
    rtInitContext(&ctxt, nullptr);
    Record rec;
    xd_setp(&ctxt, der.data(), static_cast<int>(der.size()), nullptr, nullptr);
    int stat = decode(&ctxt, &rec, ASN1EXPL, 0);
    if (stat < 0) state.SkipWithError("decode failed");
    benchmark::DoNotOptimize(rec);
    rtFreeContext(&ctxt);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * der.size()));
}

template <typename Record>
void Encode(benchmark::State& state, const Bytes& der,
            int (*decode)(ASN1CTXT*, Record*, ASN1TagType, int),
            int (*encode)(ASN1CTXT*, Record*, ASN1TagType)) {
  ASN1CTXT source;
  rtInitContext(&source, nullptr);
  Record rec;
  xd_setp(&source, der.data(), static_cast<int>(der.size()), nullptr, nullptr);
  if (decode(&source, &rec, ASN1EXPL, 0) < 0) state.SkipWithError("decode failed");
  for (auto _ : state) {
    ASN1CTXT ctxt;
    rtInitContext(&ctxt, nullptr);
    xe_setp(&ctxt, nullptr, 0);
    int len = encode(&ctxt, &rec, ASN1EXPL);
    if (len != static_cast<int>(der.size())) state.SkipWithError("encode differs");
    rtFreeContext(&ctxt);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * der.size()));
  rtFreeContext(&source);
}

void BM_DecodeCompleteRevocationRefs(benchmark::State& state) {
  static const Bytes k1 = CompleteRevocationRefsDer(1), k100 = CompleteRevocationRefsDer(100),
                     k10000 = CompleteRevocationRefsDer(10000);
  const Bytes& der = state.range(0) == 1 ? k1 : state.range(0) == 100 ? k100 : k10000;
  Decode(state, der, &asn1D_CompleteRevocationRefs);
}
BENCHMARK(BM_DecodeCompleteRevocationRefs)->Arg(1)->Arg(100)->Arg(10000);

void BM_EncodeCompleteRevocationRefs(benchmark::State& state) {
  Bytes der = CompleteRevocationRefsDer(static_cast<unsigned>(state.range(0)));
  Encode(state, der, &asn1D_CompleteRevocationRefs, &asn1E_CompleteRevocationRefs);
}
BENCHMARK(BM_EncodeCompleteRevocationRefs)->Arg(1)->Arg(100)->Arg(10000);

void BM_DecodeRevocationValues100Crls(benchmark::State& state) {
  static const Bytes der = RevocationValuesDer(100);
  Decode(state, der, &asn1D_RevocationValues);
}
BENCHMARK(BM_DecodeRevocationValues100Crls);

void BM_EncodeRevocationValues100Crls(benchmark::State& state) {
  static const Bytes der = RevocationValuesDer(100);
  Encode(state, der, &asn1D_RevocationValues, &asn1E_RevocationValues);
}
BENCHMARK(BM_EncodeRevocationValues100Crls);

}  // namespace
