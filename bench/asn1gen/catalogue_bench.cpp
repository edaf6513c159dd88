// The catalogue's codecs side by side with OpenSSL's on the same bytes in the
// same run: decode, and decode plus re-encode, of an RSA and an EC certificate,
// CRLs of 1,000 and 100,000 entries, a CMS SignedData with CAdES attributes, an
// OCSP response and a time-stamp token. Each benchmark reports MB/s and
// objects/s (the CRLs also ns per entry); after the run a table gives both
// throughputs and our/OpenSSL ratio for every case.
//
// The 100,000-entry CRL is made once into the build tree by
// tests/data/make-fixtures.sh --large (openssl command line); without it those
// two cases are skipped.
#include <benchmark/benchmark.h>
#include <korvex/asn1gen/CryptographicMessageSyntax2004.h>
#include <korvex/asn1gen/OCSP_2013_88.h>
#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <openssl/cms.h>
#include <openssl/ocsp.h>
#include <openssl/pkcs7.h>
#include <openssl/ts.h>
#include <openssl/x509.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;
using Korvex::Asn1Engine::TypeDesc;

Bytes ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Makes the 100,000-entry CRL in the build tree when it is not there yet.
std::string LargeCrl() {
  const std::string dir = KORVEX_BENCH_DATA_DIR;
  const std::string path = dir + "/intermediate-ca-100k.crl";
  struct stat st;
  if (stat(path.c_str(), &st) != 0) {
    const std::string cmd = "bash '" + std::string(KORVEX_TEST_DATA_DIR) +
                            "/make-fixtures.sh' --large '" + dir + "' >/dev/null";
    if (std::system(cmd.c_str()) != 0) return {};
  }
  return path;
}

// What OpenSSL does with one kind of object: d2i, i2d and free.
struct Peer {
  void* (*decode)(const unsigned char** p, long n);
  int (*encode)(void* v, unsigned char** out);
  void (*free)(void* v);
};

template <typename T, T* (*D)(T**, const unsigned char**, long),
          int (*E)(const T*, unsigned char**), void (*F)(T*)>
Peer MakePeer() {
  return {[](const unsigned char** p, long n) -> void* { return D(nullptr, p, n); },
          [](void* v, unsigned char** out) { return E(static_cast<const T*>(v), out); },
          [](void* v) { F(static_cast<T*>(v)); }};
}

// OpenSSL keeps a time-stamp token as PKCS #7 and reads its TSTInfo apart
// (PKCS7_to_TS_TST_INFO): both make its decode, as both make ours.
Peer TokenPeer() {
  struct Token {
    PKCS7* p7;
    TS_TST_INFO* info;
  };
  return {[](const unsigned char** p, long n) -> void* {
            PKCS7* p7 = d2i_PKCS7(nullptr, p, n);
            if (!p7) return nullptr;
            TS_TST_INFO* info = PKCS7_to_TS_TST_INFO(p7);
            if (!info) {
              PKCS7_free(p7);
              return nullptr;
            }
            return new Token{p7, info};
          },
          [](void* v, unsigned char** out) { return i2d_PKCS7(static_cast<Token*>(v)->p7, out); },
          [](void* v) {
            Token* t = static_cast<Token*>(v);
            TS_TST_INFO_free(t->info);
            PKCS7_free(t->p7);
            delete t;
          }};
}

// OpenSSL leaves an OCSP response's BasicOCSPResponse as octets until
// OCSP_response_get1_basic decodes it; both make its decode, as both make ours.
Peer OcspPeer() {
  struct Response {
    OCSP_RESPONSE* resp;
    OCSP_BASICRESP* basic;
  };
  return {[](const unsigned char** p, long n) -> void* {
            OCSP_RESPONSE* resp = d2i_OCSP_RESPONSE(nullptr, p, n);
            if (!resp) return nullptr;
            OCSP_BASICRESP* basic = OCSP_response_get1_basic(resp);
            if (!basic) {
              OCSP_RESPONSE_free(resp);
              return nullptr;
            }
            return new Response{resp, basic};
          },
          [](void* v, unsigned char** out) {
            return i2d_OCSP_RESPONSE(static_cast<Response*>(v)->resp, out);
          },
          [](void* v) {
            Response* r = static_cast<Response*>(v);
            OCSP_BASICRESP_free(r->basic);
            OCSP_RESPONSE_free(r->resp);
            delete r;
          }};
}

struct Case {
  std::string name;
  std::string path;
  const TypeDesc* desc;
  Peer peer;
  long entries;  // CRL entries (per-entry cost), 0 otherwise
  Bytes der;
};

// A decode context whose records go back to its heap after each iteration.
class Ours {
 public:
  explicit Ours(const TypeDesc* desc) : desc_(desc), rec_(desc->size) {
    rtInitContext(&dec_, nullptr);
    rtInitContext(&enc_, nullptr);
  }
  ~Ours() {
    rtFreeContext(&dec_);
    rtFreeContext(&enc_);
  }
  Ours(const Ours&) = delete;
  Ours& operator=(const Ours&) = delete;

  bool Decode(const Bytes& der) {
    rtErrReset(&dec_.errInfo);
    if (xd_setp(&dec_, der.data(), static_cast<int>(der.size()), nullptr, nullptr) < 0)
      return false;
    return Korvex::Asn1Engine::decode(&dec_, desc_, rec_.data(), ASN1EXPL, 0) == 0;
  }
  // Encodes the decoded record into out (sized for it); the length or -1.
  int Encode(Bytes& out) {
    rtErrReset(&enc_.errInfo);
    if (xe_setp(&enc_, out.data(), static_cast<int>(out.size())) < 0) return -1;
    int len = Korvex::Asn1Engine::encode(&enc_, desc_, rec_.data(), ASN1EXPL);
    return len < 0 ? -1 : len;
  }
  void Free() { Korvex::Asn1Engine::free(&dec_, desc_, rec_.data()); }

 private:
  const TypeDesc* desc_;
  std::vector<unsigned char> rec_;
  ASN1CTXT dec_;
  ASN1CTXT enc_;
};

void Count(benchmark::State& state, const Case& c) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(c.der.size()));
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
  if (c.entries) {
    // time / (iterations x entries x 1e-9): nanoseconds per entry.
    state.counters["ns_per_entry"] = benchmark::Counter(
        static_cast<double>(c.entries) * 1e-9,
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  }
}

void OursDecode(benchmark::State& state, const Case* c) {
  Ours ours(c->desc);
  for (auto _ : state) {
    if (!ours.Decode(c->der)) {
      state.SkipWithError("decode failed");
      break;
    }
    ours.Free();
  }
  Count(state, *c);
}

void OursRoundTrip(benchmark::State& state, const Case* c) {
  Ours ours(c->desc);
  Bytes out(c->der.size() + 64);
  for (auto _ : state) {
    if (!ours.Decode(c->der) || ours.Encode(out) != static_cast<int>(c->der.size())) {
      state.SkipWithError("round trip failed");
      break;
    }
    ours.Free();
  }
  Count(state, *c);
}

void PeerDecode(benchmark::State& state, const Case* c) {
  for (auto _ : state) {
    const unsigned char* p = c->der.data();
    void* v = c->peer.decode(&p, static_cast<long>(c->der.size()));
    if (!v) {
      state.SkipWithError("OpenSSL decode failed");
      break;
    }
    c->peer.free(v);
  }
  Count(state, *c);
}

void PeerRoundTrip(benchmark::State& state, const Case* c) {
  Bytes out(c->der.size() + 64);
  for (auto _ : state) {
    const unsigned char* p = c->der.data();
    void* v = c->peer.decode(&p, static_cast<long>(c->der.size()));
    unsigned char* q = out.data();
    if (!v || c->peer.encode(v, &q) != static_cast<int>(c->der.size())) {
      if (v) c->peer.free(v);
      state.SkipWithError("OpenSSL round trip failed");
      break;
    }
    c->peer.free(v);
  }
  Count(state, *c);
}

// Prints the usual console output, then the side-by-side table.
class TableReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& r : runs) {
      // One iteration run, or the mean of repetitions (--benchmark_repetitions).
      if (r.error_occurred) continue;
      if (r.run_type == Run::RT_Aggregate && r.aggregate_name != "mean") continue;
      const std::string name = r.run_name.str();
      auto bytes = r.counters.find("bytes_per_second");
      if (bytes != r.counters.end()) rates_[name] = bytes->second.value / 1e6;
      auto items = r.counters.find("items_per_second");
      if (items != r.counters.end()) objects_[name] = items->second.value;
      auto entry = r.counters.find("ns_per_entry");
      if (entry != r.counters.end()) perEntry_[name] = entry->second.value;
    }
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf("\n%-22s %-15s %11s %11s %12s %12s %7s %13s\n", "object", "operation", "ours MB/s",
                "peer MB/s", "ours obj/s", "peer obj/s", "ratio", "ns/entry o/p");
    for (const auto& kv : rates_) {
      // Names are <operation>/<object>/<implementation>.
      const std::string& name = kv.first;
      size_t a = name.find('/'), b = name.rfind('/');
      if (a == std::string::npos || name.compare(b + 1, std::string::npos, "ours") != 0) continue;
      std::string peer = name.substr(0, b) + "/openssl";
      auto p = rates_.find(peer);
      if (p == rates_.end()) continue;
      std::string entries;
      if (perEntry_.count(name) && perEntry_.count(peer)) {
        char text[32];
        std::snprintf(text, sizeof text, "%.0f/%.0f", perEntry_[name], perEntry_[peer]);
        entries = text;
      }
      std::printf("%-22s %-15s %11.1f %11.1f %12.0f %12.0f %6.2fx %13s\n",
                  name.substr(a + 1, b - a - 1).c_str(), name.substr(0, a).c_str(), kv.second,
                  p->second, objects_[name], objects_[peer], kv.second / p->second,
                  entries.c_str());
    }
  }

 private:
  std::map<std::string, double> rates_;
  std::map<std::string, double> objects_;
  std::map<std::string, double> perEntry_;
};

}  // namespace

int main(int argc, char** argv) {
  const std::string data = KORVEX_TEST_DATA_DIR;
  std::vector<std::unique_ptr<Case>> cases;
  auto add = [&](const char* name, const std::string& path, const TypeDesc* desc, Peer peer,
                 long entries) {
    cases.push_back(
        std::unique_ptr<Case>(new Case{name, path, desc, peer, entries, ReadFile(path)}));
  };
  const Peer x509 = MakePeer<X509, d2i_X509, i2d_X509, X509_free>();
  const Peer crl = MakePeer<X509_CRL, d2i_X509_CRL, i2d_X509_CRL, X509_CRL_free>();
  add("RSA certificate", data + "/pki/ee-rsa.der", &asn1data::asn1Desc_Certificate, x509, 0);
  add("EC certificate", data + "/pki/ee-ec.der", &asn1data::asn1Desc_Certificate, x509, 0);
  add("CRL 1,000", data + "/crl/intermediate-ca-1000.crl", &asn1data::asn1Desc_CertificateList, crl,
      1000);
  add("CRL 100,000", LargeCrl(), &asn1data::asn1Desc_CertificateList, crl, 100000);
  add("CMS CAdES", data + "/cms/signed-attached.der", &asn1data::asn1Desc_ContentInfo,
      MakePeer<CMS_ContentInfo, d2i_CMS_ContentInfo, i2d_CMS_ContentInfo, CMS_ContentInfo_free>(),
      0);
  add("OCSP response", data + "/ocsp/resp-good.der", &asn1data::asn1Desc_OCSPResponse, OcspPeer(),
      0);
  add("time-stamp token", data + "/tsp/token.der", &asn1data::asn1Desc_ContentInfo, TokenPeer(), 0);

  for (const auto& c : cases) {
    if (c->der.empty()) {
      std::fprintf(stderr, "catalogue_bench: %s: no input at '%s', skipped\n", c->name.c_str(),
                   c->path.c_str());
      continue;
    }
    const Case* p = c.get();
    benchmark::RegisterBenchmark(("decode/" + c->name + "/ours").c_str(), OursDecode, p);
    benchmark::RegisterBenchmark(("decode/" + c->name + "/openssl").c_str(), PeerDecode, p);
    benchmark::RegisterBenchmark(("decode+encode/" + c->name + "/ours").c_str(), OursRoundTrip, p);
    benchmark::RegisterBenchmark(("decode+encode/" + c->name + "/openssl").c_str(), PeerRoundTrip,
                                 p);
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  TableReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
