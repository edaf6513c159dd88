// The catalogue's codecs side by side with OpenSSL's on the same bytes in the
// same run: decode, and decode plus re-encode, of an RSA and an EC certificate,
// CRLs of 10, 1,000 and 100,000 entries, an OCSP response, a CMS SignedData
// with CAdES attributes, a time-stamp token, and the CAdES values
// CompleteRevocationRefs (10,000 references) and RevocationValues (100 CRLs).
//
// Four implementations per object (benchmark names <operation>/<object>/<impl>):
//   ours         a fresh context per object whose heap cuts its blocks from
//                chunks (rtMemHeapSetCarving), dropped whole with the context;
//   ours-blocks  one context reused, one heap block per field, the value freed
//                field by field (Korvex::Asn1Engine::free);
//   tmpl         OpenSSL's template engine on plain templates declared in
//                openssl_templates.cpp (ASN1_item_d2i / i2d / free);
//   api          OpenSSL's public API (d2i_X509, d2i_X509_CRL ...), which adds
//                callbacks, caches and hashes to the templates.
// After the run a table gives MB/s and objects/s of each, the ratios ours/tmpl
// and ours/api, the CRL cost per entry, and the peak memory of one decoded
// object, counted through the allocation hooks of both libraries
// (rtSetAllocFuncs, CRYPTO_set_mem_functions).
//
// The 100,000-entry CRL is made once into the build tree by
// tests/data/make-fixtures.sh --large (openssl command line); without it those
// cases are skipped. The 10-entry CRL is the 1,000-entry one cut to its first
// ten entries (its signature no longer verifies; no codec checks it).
#include <benchmark/benchmark.h>
#include <korvex/asn1gen/ASN1CADES.h>
#include <korvex/asn1gen/CryptographicMessageSyntax2004.h>
#include <korvex/asn1gen/OCSP_2013_88.h>
#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <korvex/cades/CAdESAttributes.h>
#include <malloc.h>
#include <openssl/cms.h>
#include <openssl/crypto.h>
#include <openssl/ocsp.h>
#include <openssl/pkcs7.h>
#include <openssl/ts.h>
#include <openssl/x509.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "../common/cades_samples.h"
#include "openssl_templates.h"

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

// ---- DER helpers for the synthesised inputs --------------------------------

struct Tlv {
  size_t start;     // first identifier octet
  size_t contents;  // first contents octet
  size_t end;       // one past the last contents octet
};

// The element at pos (definite lengths only, as DER has).
bool ReadTlv(const Bytes& der, size_t pos, Tlv* out) {
  if (pos + 2 > der.size()) return false;
  size_t p = pos + 1;
  size_t len = der[p++];
  if (len & 0x80) {
    size_t n = len & 0x7F;
    if (n == 0 || n > 4 || p + n > der.size()) return false;
    len = 0;
    while (n--) len = (len << 8) | der[p++];
  }
  if (p + len > der.size()) return false;
  *out = {pos, p, p + len};
  return true;
}

void PutHeader(Bytes& out, unsigned char tag, size_t len) {
  out.push_back(tag);
  if (len < 0x80) {
    out.push_back(static_cast<unsigned char>(len));
    return;
  }
  unsigned char octets[4];
  int n = 0;
  for (size_t v = len; v; v >>= 8) octets[n++] = static_cast<unsigned char>(v);
  out.push_back(static_cast<unsigned char>(0x80 | n));
  while (n) out.push_back(octets[--n]);
}

Bytes Wrap(unsigned char tag, const Bytes& contents) {
  Bytes out;
  PutHeader(out, tag, contents.size());
  out.insert(out.end(), contents.begin(), contents.end());
  return out;
}

Bytes Slice(const Bytes& der, size_t from, size_t to) {
  return Bytes(der.begin() + static_cast<long>(from), der.begin() + static_cast<long>(to));
}

// A CRL cut to its first `keep` revoked entries (RFC 5280 5.1: tbsCertList
// holds version, signature, issuer, thisUpdate, nextUpdate, then the entries).
Bytes CutCrl(const Bytes& crl, size_t keep) {
  Tlv outer, tbs, field;
  if (crl.empty() || !ReadTlv(crl, 0, &outer) || !ReadTlv(crl, outer.contents, &tbs)) return {};
  Bytes tbsContents;
  for (size_t pos = tbs.contents; pos < tbs.end; pos = field.end) {
    if (!ReadTlv(crl, pos, &field)) return {};
    if (crl[pos] != 0x30) {  // version, times, extensions [0]
      Bytes copy = Slice(crl, field.start, field.end);
      tbsContents.insert(tbsContents.end(), copy.begin(), copy.end());
      continue;
    }
    // A SEQUENCE: the signature algorithm, the issuer or the entry list, which
    // is the one whose first element is itself a SEQUENCE of an INTEGER.
    Tlv first, inner;
    bool entries = ReadTlv(crl, field.contents, &first) && crl[first.start] == 0x30 &&
                   ReadTlv(crl, first.contents, &inner) && crl[inner.start] == 0x02;
    if (!entries) {
      Bytes copy = Slice(crl, field.start, field.end);
      tbsContents.insert(tbsContents.end(), copy.begin(), copy.end());
      continue;
    }
    Bytes kept;
    size_t at = field.contents;
    for (size_t i = 0; i < keep && at < field.end; ++i) {
      Tlv entry;
      if (!ReadTlv(crl, at, &entry)) return {};
      Bytes copy = Slice(crl, entry.start, entry.end);
      kept.insert(kept.end(), copy.begin(), copy.end());
      at = entry.end;
    }
    Bytes wrapped = Wrap(0x30, kept);
    tbsContents.insert(tbsContents.end(), wrapped.begin(), wrapped.end());
  }
  Bytes contents = Wrap(0x30, tbsContents);
  Bytes rest = Slice(crl, tbs.end, outer.end);
  contents.insert(contents.end(), rest.begin(), rest.end());
  return Wrap(0x30, contents);
}

// ---- CAdES values, encoded through the value classes -----------------------

Korvex::CBlob Blob(const Bytes& b) {
  return Korvex::CBlob(b.data(), static_cast<unsigned long>(b.size()));
}

Bytes ToBytes(const Korvex::CBlob& blob) {
  return Bytes(blob.pbData(), blob.pbData() + blob.cbData());
}

// CompleteRevocationRefs of count references (bench/common/cades_samples.h).
Bytes RevocationRefs(const Bytes& crl, long count) {
  return ToBytes(Korvex::Bench::SampleRevocationRefs(Blob(crl), count).encode());
}

// RevocationValues holding count copies of one CRL.
Bytes RevocationValues(const Bytes& crl, long count) {
  Korvex::CBlobList crls(static_cast<size_t>(count), Blob(crl));
  Korvex::PKI::CAdES::CRevocationValues values;
  values.put_crlVals(&crls);
  return ToBytes(values.encode());
}

// ---- Peak memory: both libraries' allocations counted ----------------------

struct MemCount {
  bool on = false;
  long long live = 0;
  long long peak = 0;
  void Add(void* p) {
    if (!on || !p) return;
    live += static_cast<long long>(malloc_usable_size(p));
    if (live > peak) peak = live;
  }
  void Sub(void* p) {
    if (on && p) live -= static_cast<long long>(malloc_usable_size(p));
  }
  void Start() {
    live = peak = 0;
    on = true;
  }
};
MemCount g_mem;

void* CountedMalloc(size_t n) {
  void* p = std::malloc(n);
  g_mem.Add(p);
  return p;
}
void* CountedRealloc(void* p, size_t n) {
  g_mem.Sub(p);
  void* q = std::realloc(p, n);
  g_mem.Add(q ? q : (n ? p : nullptr));
  return q;
}
void CountedFree(void* p) {
  g_mem.Sub(p);
  std::free(p);
}

void* RtMalloc(void*, size_t n) { return CountedMalloc(n); }
void* RtRealloc(void*, void* p, size_t n) { return CountedRealloc(p, n); }
void RtFree(void*, void* p) { CountedFree(p); }
void* SslMalloc(size_t n, const char*, int) { return CountedMalloc(n); }
void* SslRealloc(void* p, size_t n, const char*, int) { return CountedRealloc(p, n); }
void SslFree(void* p, const char*, int) { CountedFree(p); }

// ---- The implementations ----------------------------------------------------

// What an OpenSSL interface does with one kind of object: decode, encode, free.
struct Peer {
  void* (*decode)(const unsigned char** p, long n) = nullptr;
  int (*encode)(void* v, unsigned char** out) = nullptr;
  void (*free)(void* v) = nullptr;
  bool valid() const { return decode != nullptr; }
};

template <typename T, T* (*D)(T**, const unsigned char**, long),
          int (*E)(const T*, unsigned char**), void (*F)(T*)>
Peer ApiPeer() {
  return {[](const unsigned char** p, long n) -> void* { return D(nullptr, p, n); },
          [](void* v, unsigned char** out) { return E(static_cast<const T*>(v), out); },
          [](void* v) { F(static_cast<T*>(v)); }};
}

// OpenSSL keeps a time-stamp token as PKCS #7 and reads its TSTInfo apart
// (PKCS7_to_TS_TST_INFO): both make its decode, as both make ours.
Peer TokenApiPeer() {
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
Peer OcspApiPeer() {
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

// A plain template: ASN1_item_d2i / i2d / free.
template <const ASN1_ITEM* (*Item)()>
Peer TemplatePeer() {
  return {
      [](const unsigned char** p, long n) -> void* { return ASN1_item_d2i(nullptr, p, n, Item()); },
      [](void* v, unsigned char** out) {
        return ASN1_item_i2d(static_cast<ASN1_VALUE*>(v), out, Item());
      },
      [](void* v) { ASN1_item_free(static_cast<ASN1_VALUE*>(v), Item()); }};
}

// An outer template whose octets hold an inner one that our decode types too
// (OCSP's BasicOCSPResponse, a token's TSTInfo): both decoded, the outer one
// re-encoded.
template <const ASN1_ITEM* (*Outer)(), const ASN1_ITEM* (*Inner)(),
          const ASN1_OCTET_STRING* (*Octets)(const ASN1_VALUE*)>
Peer NestedTemplatePeer() {
  struct Pair {
    ASN1_VALUE* outer;
    ASN1_VALUE* inner;
  };
  return {[](const unsigned char** p, long n) -> void* {
            ASN1_VALUE* outer = ASN1_item_d2i(nullptr, p, n, Outer());
            if (!outer) return nullptr;
            const ASN1_OCTET_STRING* os = Octets(outer);
            const unsigned char* q = os ? ASN1_STRING_get0_data(os) : nullptr;
            ASN1_VALUE* inner =
                q ? ASN1_item_d2i(nullptr, &q, ASN1_STRING_length(os), Inner()) : nullptr;
            if (!inner) {
              ASN1_item_free(outer, Outer());
              return nullptr;
            }
            return new Pair{outer, inner};
          },
          [](void* v, unsigned char** out) {
            return ASN1_item_i2d(static_cast<Pair*>(v)->outer, out, Outer());
          },
          [](void* v) {
            Pair* pair = static_cast<Pair*>(v);
            ASN1_item_free(pair->inner, Inner());
            ASN1_item_free(pair->outer, Outer());
            delete pair;
          }};
}

struct Case {
  std::string name;
  const TypeDesc* desc;
  Peer tmpl;
  Peer api;      // not valid where OpenSSL has no such API (the CAdES values)
  long entries;  // CRL entries (per-entry cost), 0 otherwise
  Bytes der;
};

// One decoded object in a context of its own, as the library's decode and
// encode templates do it. The re-encode runs in the same context, so the
// table-constrained values it encodes aside live in the decoded value's heap.
//   ours         the heap cuts its blocks from chunks (rtMemHeapSetCarving)
//                and the context is dropped whole;
//   ours-blocks  one heap block per field, the value freed field by field
//                (Korvex::Asn1Engine::free) before the context.
template <bool kCarve>
class OursT {
 public:
  explicit OursT(const TypeDesc* desc) : desc_(desc), rec_(desc->size) {}
  ~OursT() { Free(); }
  OursT(const OursT&) = delete;
  OursT& operator=(const OursT&) = delete;

  bool Decode(const Bytes& der) {
    std::memset(rec_.data(), 0, rec_.size());
    if (rtInitContext(&ctxt_, nullptr) != 0) return false;
    open_ = true;
    if (kCarve) rtMemHeapSetCarving(&ctxt_.pTypeMemHeap, 1);
    if (xd_setp(&ctxt_, der.data(), static_cast<int>(der.size()), nullptr, nullptr) < 0)
      return false;
    return Korvex::Asn1Engine::decode(&ctxt_, desc_, rec_.data(), ASN1EXPL, 0) == 0;
  }
  // Encodes the decoded record into out (sized for it); the length or -1.
  int Encode(Bytes& out) {
    if (xe_setp(&ctxt_, out.data(), static_cast<ASN1UINT>(out.size())) < 0) return -1;
    int len = Korvex::Asn1Engine::encode(&ctxt_, desc_, rec_.data(), ASN1EXPL);
    return len < 0 ? -1 : len;
  }
  void Free() {
    if (!open_) return;
    if (!kCarve) Korvex::Asn1Engine::free(&ctxt_, desc_, rec_.data());
    rtFreeContext(&ctxt_);
    open_ = false;
  }

 private:
  const TypeDesc* desc_;
  std::vector<unsigned char> rec_;
  ASN1CTXT ctxt_;
  bool open_ = false;
};
using Ours = OursT<true>;
using OursBlocks = OursT<false>;

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

template <typename Impl>
void OursDecode(benchmark::State& state, const Case* c) {
  Impl ours(c->desc);
  for (auto _ : state) {
    if (!ours.Decode(c->der)) {
      state.SkipWithError("decode failed");
      break;
    }
    ours.Free();
  }
  Count(state, *c);
}

template <typename Impl>
void OursRoundTrip(benchmark::State& state, const Case* c) {
  Impl ours(c->desc);
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

void PeerDecode(benchmark::State& state, const Case* c, const Peer* peer) {
  for (auto _ : state) {
    const unsigned char* p = c->der.data();
    void* v = peer->decode(&p, static_cast<long>(c->der.size()));
    if (!v) {
      state.SkipWithError("OpenSSL decode failed");
      break;
    }
    peer->free(v);
  }
  Count(state, *c);
}

void PeerRoundTrip(benchmark::State& state, const Case* c, const Peer* peer) {
  Bytes out(c->der.size() + 64);
  for (auto _ : state) {
    const unsigned char* p = c->der.data();
    void* v = peer->decode(&p, static_cast<long>(c->der.size()));
    unsigned char* q = out.data();
    if (!v || peer->encode(v, &q) != static_cast<int>(c->der.size())) {
      if (v) peer->free(v);
      state.SkipWithError("OpenSSL round trip failed");
      break;
    }
    peer->free(v);
  }
  Count(state, *c);
}

// Peak bytes of one decoded object (decode, then free), per implementation;
// -1 when it fails.
struct Peaks {
  long long ours = -1, blocks = -1, tmpl = -1, api = -1;
};

template <typename Impl>
long long OursPeak(const Case& c) {
  rtSetAllocFuncs(RtMalloc, RtRealloc, RtFree);
  long long peak = -1;
  {
    Impl impl(c.desc);
    g_mem.Start();
    if (impl.Decode(c.der)) peak = g_mem.peak;
    impl.Free();
    g_mem.on = false;
  }
  rtSetAllocFuncs(nullptr, nullptr, nullptr);
  return peak;
}

long long PeerPeak(const Case& c, const Peer& peer) {
  if (!peer.valid()) return -1;
  // A first decode outside the count: OpenSSL builds its object tables and
  // per-thread state on first use.
  const unsigned char* warm = c.der.data();
  if (void* v = peer.decode(&warm, static_cast<long>(c.der.size()))) peer.free(v);
  g_mem.Start();
  const unsigned char* p = c.der.data();
  void* v = peer.decode(&p, static_cast<long>(c.der.size()));
  long long peak = v ? g_mem.peak : -1;
  if (v) peer.free(v);
  g_mem.on = false;
  return peak;
}

// Prints the usual console output, then the side-by-side tables.
class TableReporter : public benchmark::ConsoleReporter {
 public:
  explicit TableReporter(const std::vector<std::unique_ptr<Case>>& cases,
                         const std::map<std::string, Peaks>& peaks)
      : cases_(cases), peaks_(peaks) {}

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
    std::printf(
        "\nMB/s (objects/s for ours); ratio = ours / OpenSSL plain templates (tmpl) "
        "and ours / OpenSSL API (api)\n");
    std::printf("%-18s %-13s %9s %11s %9s %9s %9s %8s %8s %13s\n", "object", "operation", "ours",
                "ours obj/s", "blocks", "tmpl", "api", "/tmpl", "/api", "ns/entry o/t");
    for (const char* op : {"decode", "decode+encode"}) {
      for (const auto& c : cases_) {
        if (c->der.empty()) continue;
        const std::string base = std::string(op) + "/" + c->name + "/";
        double ours = Rate(base + "ours"), tmpl = Rate(base + "tmpl"), api = Rate(base + "api");
        if (ours <= 0 && tmpl <= 0 && api <= 0 && Rate(base + "ours-blocks") <= 0) continue;
        std::string entries;
        if (perEntry_.count(base + "ours") && perEntry_.count(base + "tmpl")) {
          char text[32];
          std::snprintf(text, sizeof text, "%.0f/%.0f", perEntry_[base + "ours"],
                        perEntry_[base + "tmpl"]);
          entries = text;
        }
        std::printf("%-18s %-13s %9s %11.0f %9s %9s %9s %8s %8s %13s\n", c->name.c_str(), op,
                    Num(ours).c_str(), objects_[base + "ours"],
                    Num(Rate(base + "ours-blocks")).c_str(), Num(tmpl).c_str(), Num(api).c_str(),
                    Ratio(ours, tmpl).c_str(), Ratio(ours, api).c_str(), entries.c_str());
      }
    }
    // Cost per CRL entry, 1,000 -> 100,000 entries.
    for (const char* op : {"decode", "decode+encode"}) {
      for (const char* impl : {"ours", "ours-blocks", "tmpl", "api"}) {
        const std::string small = std::string(op) + "/CRL 1,000/" + impl;
        const std::string large = std::string(op) + "/CRL 100,000/" + impl;
        if (!perEntry_.count(small) || !perEntry_.count(large)) continue;
        std::printf("per entry %-13s %-11s %6.0f ns (1,000) -> %6.0f ns (100,000): %.2fx\n", op,
                    impl, perEntry_[small], perEntry_[large], perEntry_[large] / perEntry_[small]);
      }
    }
    if (peaks_.empty()) return;
    std::printf("\nPeak memory of one decoded object (KB, allocations counted while decoding)\n");
    std::printf("%-18s %10s %10s %10s %10s %8s\n", "object", "ours", "blocks", "tmpl", "api",
                "o/tmpl");
    for (const auto& c : cases_) {
      auto it = peaks_.find(c->name);
      if (c->der.empty() || it == peaks_.end()) continue;
      const Peaks& p = it->second;
      std::printf("%-18s %10s %10s %10s %10s %8s\n", c->name.c_str(), Kb(p.ours).c_str(),
                  Kb(p.blocks).c_str(), Kb(p.tmpl).c_str(), Kb(p.api).c_str(),
                  Ratio(static_cast<double>(p.ours), static_cast<double>(p.tmpl)).c_str());
    }
  }

 private:
  double Rate(const std::string& name) const {
    auto it = rates_.find(name);
    return it == rates_.end() ? 0 : it->second;
  }
  static std::string Num(double v) {
    if (v <= 0) return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", v);
    return text;
  }
  static std::string Ratio(double a, double b) {
    if (a <= 0 || b <= 0) return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.2fx", a / b);
    return text;
  }
  static std::string Kb(long long bytes) {
    if (bytes < 0) return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", static_cast<double>(bytes) / 1024.0);
    return text;
  }

  const std::vector<std::unique_ptr<Case>>& cases_;
  const std::map<std::string, Peaks>& peaks_;
  std::map<std::string, double> rates_;
  std::map<std::string, double> objects_;
  std::map<std::string, double> perEntry_;
};

}  // namespace

int main(int argc, char** argv) {
  // Before OpenSSL allocates anything: its allocations are counted from here on
  // (counting is off outside the peak measurements).
  if (!CRYPTO_set_mem_functions(SslMalloc, SslRealloc, SslFree)) {
    std::fprintf(stderr, "catalogue_bench: CRYPTO_set_mem_functions refused\n");
  }
  // --skip_peaks (ours, taken out before Google Benchmark reads the flags):
  // no peak-memory measurement, e.g. under callgrind.
  bool measurePeaks = true;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--skip_peaks") != 0) continue;
    measurePeaks = false;
    for (int j = i; j + 1 < argc; ++j) argv[j] = argv[j + 1];
    --argc;
    break;
  }
  // Cases that --benchmark_filter leaves out are neither built nor measured.
  std::regex filter(".");
  for (int i = 1; i < argc; ++i) {
    const char* flag = "--benchmark_filter=";
    if (std::strncmp(argv[i], flag, std::strlen(flag)) == 0) {
      filter = std::regex(argv[i] + std::strlen(flag));
    }
  }
  auto wanted = [&](const std::string& name) {
    for (const char* op : {"decode", "decode+encode"}) {
      for (const char* impl : {"ours", "ours-blocks", "tmpl", "api"}) {
        if (std::regex_search(std::string(op) + "/" + name + "/" + impl, filter)) return true;
      }
    }
    return false;
  };
  const std::string data = KORVEX_TEST_DATA_DIR;
  std::vector<std::unique_ptr<Case>> cases;
  auto add = [&](const char* name, Bytes der, const TypeDesc* desc, Peer tmpl, Peer api,
                 long entries) {
    if (!wanted(name)) return;
    cases.push_back(
        std::unique_ptr<Case>(new Case{name, desc, tmpl, api, entries, std::move(der)}));
  };
  const Peer x509 = ApiPeer<X509, d2i_X509, i2d_X509, X509_free>();
  const Peer crl = ApiPeer<X509_CRL, d2i_X509_CRL, i2d_X509_CRL, X509_CRL_free>();
  const Peer certTmpl = TemplatePeer<tmpl::Certificate>();
  const Peer crlTmpl = TemplatePeer<tmpl::CertificateList>();
  const Peer cmsTmpl = TemplatePeer<tmpl::SignedContentInfo>();
  const Bytes crl1000 = ReadFile(data + "/crl/intermediate-ca-1000.crl");
  const Bytes crlSmall = ReadFile(data + "/crl/intermediate-ca.crl");

  add("RSA certificate", ReadFile(data + "/pki/ee-rsa.der"), &asn1data::asn1Desc_Certificate,
      certTmpl, x509, 0);
  add("EC certificate", ReadFile(data + "/pki/ee-ec.der"), &asn1data::asn1Desc_Certificate,
      certTmpl, x509, 0);
  add("CRL 10", CutCrl(crl1000, 10), &asn1data::asn1Desc_CertificateList, crlTmpl, crl, 10);
  add("CRL 1,000", crl1000, &asn1data::asn1Desc_CertificateList, crlTmpl, crl, 1000);
  const std::string large = wanted("CRL 100,000") ? LargeCrl() : std::string();
  add("CRL 100,000", large.empty() ? Bytes() : ReadFile(large), &asn1data::asn1Desc_CertificateList,
      crlTmpl, crl, 100000);
  add("OCSP response", ReadFile(data + "/ocsp/resp-good.der"), &asn1data::asn1Desc_OCSPResponse,
      NestedTemplatePeer<tmpl::OcspResponse, tmpl::BasicOcspResponse, tmpl::OcspResponseBytes>(),
      OcspApiPeer(), 0);
  add("CMS CAdES", ReadFile(data + "/cms/signed-attached.der"), &asn1data::asn1Desc_ContentInfo,
      cmsTmpl,
      ApiPeer<CMS_ContentInfo, d2i_CMS_ContentInfo, i2d_CMS_ContentInfo, CMS_ContentInfo_free>(),
      0);
  add("time-stamp token", ReadFile(data + "/tsp/token.der"), &asn1data::asn1Desc_ContentInfo,
      NestedTemplatePeer<tmpl::SignedContentInfo, tmpl::TstInfo, tmpl::SignedContent>(),
      TokenApiPeer(), 0);
  if (!crlSmall.empty()) {
    if (wanted("RevocationRefs 10k")) {
      add("RevocationRefs 10k", RevocationRefs(crlSmall, 10000),
          &ASN1CADES::asn1Desc_CompleteRevocationRefs, TemplatePeer<tmpl::CompleteRevocationRefs>(),
          Peer(), 0);
    }
    if (wanted("RevocationVals 100")) {
      add("RevocationVals 100", RevocationValues(crlSmall, 100),
          &ASN1CADES::asn1Desc_RevocationValues, TemplatePeer<tmpl::RevocationValues>(), Peer(), 0);
    }
  }

  std::map<std::string, Peaks> peaks;
  for (const auto& c : cases) {
    if (c->der.empty()) {
      std::fprintf(stderr, "catalogue_bench: %s: no input, skipped\n", c->name.c_str());
      continue;
    }
    const Case* p = c.get();
    for (const char* op : {"decode", "decode+encode"}) {
      const bool round = std::strcmp(op, "decode") != 0;
      const std::string base = std::string(op) + "/" + c->name + "/";
      benchmark::RegisterBenchmark((base + "ours").c_str(),
                                   round ? OursRoundTrip<Ours> : OursDecode<Ours>, p);
      benchmark::RegisterBenchmark((base + "ours-blocks").c_str(),
                                   round ? OursRoundTrip<OursBlocks> : OursDecode<OursBlocks>, p);
      benchmark::RegisterBenchmark((base + "tmpl").c_str(), round ? PeerRoundTrip : PeerDecode, p,
                                   &p->tmpl);
      if (p->api.valid()) {
        benchmark::RegisterBenchmark((base + "api").c_str(), round ? PeerRoundTrip : PeerDecode, p,
                                     &p->api);
      }
    }
    if (!measurePeaks) continue;
    Peaks& pk = peaks[c->name];
    pk.ours = OursPeak<Ours>(*c);
    pk.blocks = OursPeak<OursBlocks>(*c);
    pk.tmpl = PeerPeak(*c, c->tmpl);
    pk.api = PeerPeak(*c, c->api);
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  TableReporter reporter(cases, peaks);
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
