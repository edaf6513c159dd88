// Several threads at once, each with contexts of its own, encode and decode
// distinct values while all of them read the process-wide constants that the
// library builds or links at load time: descriptor tables, object sets and
// OID constants, and the attribute-type register. Nothing here is shared but
// those constants and the allocation functions, which is the library's whole
// claim about threads; the ThreadSanitizer build (scripts/tsan.sh) runs this
// binary to check it.
#include <gtest/gtest.h>
#include <korvex/asn1gen/AuthenticationFramework.h>
#include <korvex/asn1gen/KorvexTestAlgorithms.h>
#include <korvex/asn1gen/PKIX1Explicit88.h>
#include <korvex/asn1types/AttributeTypeRegister.h>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "codec_fixture.h"

namespace {

using Korvex::Test::Bytes;
using Korvex::Test::Codec;
using Korvex::Test::ToHex;

Bytes ReadData(const char* name) {
  std::ifstream in(std::string(KORVEX_TEST_DATA_DIR) + "/" + name, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Holds every thread until all have arrived, so that their work overlaps.
class StartLine {
 public:
  explicit StartLine(int count) : waiting_(count) {}
  void arriveAndWait() {
    std::unique_lock<std::mutex> lock(mutex_);
    if (--waiting_ == 0) {
      cv_.notify_all();
      return;
    }
    cv_.wait(lock, [this] { return waiting_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable cv_;
  int waiting_;
};

// What one thread found wrong, as text; empty when all was well.
using Faults = std::vector<std::string>;

void Fault(Faults* faults, int thread, int round, const std::string& what) {
  char prefix[48];
  std::snprintf(prefix, sizeof prefix, "thread %d round %d: ", thread, round);
  faults->push_back(prefix + what);
}

// A test-module Record distinct per thread and round: encoded, decoded back
// and compared field by field, then freed.
void RecordRoundTrip(int thread, int round, Faults* faults) {
  using namespace korvextest;
  const std::string name = "t" + std::to_string(thread) + "r" + std::to_string(round % 100);
  const std::string serial = std::to_string(1000 * thread + round);
  const ASN1OCTET itemByte = static_cast<ASN1OCTET>(thread * 16 + round % 16);
  ASN1DynOctStr item{1, &itemByte};
  ASN1T_Record rec;
  rec.name = name.c_str();
  rec.serial = serial.c_str();
  rec.items.n = 1;
  rec.items.elem = &item;
  rec.when.t = ASN1T_Record_when::T_gen;
  rec.when.u.gen = "20240102030405Z";
  rec.m.colorPresent = 1;
  rec.color = static_cast<ASN1T_Color>(thread % 3);

  Codec c;
  Bytes der = c.encode(&asn1E_Record, &rec);
  if (der.empty()) return Fault(faults, thread, round, "encode failed");
  ASN1T_Record back;
  if (c.decode(&asn1D_Record, der, &back) != 0) {
    return Fault(faults, thread, round, "decode failed: " + ToHex(der));
  }
  // The serial comes back as hexadecimal big-integer text: compare by value.
  if (std::string(back.name) != name || std::stol(back.serial, nullptr, 0) != std::stol(serial) ||
      back.items.n != 1 || back.items.elem[0].numocts != 1 ||
      back.items.elem[0].data[0] != itemByte || back.color != rec.color ||
      std::string(back.when.u.gen) != "20240102030405Z") {
    Fault(faults, thread, round, "decoded record differs from " + ToHex(der));
  }
  asn1Free_Record(c.ctxt(), &back);
}

// A real certificate through the catalogue descriptors: decoded (its
// algorithm parameters typed through the object sets), re-encoded to the same
// bytes, copied and freed.
void CertificateRoundTrip(const Bytes& cert, int thread, int round, Faults* faults) {
  const Korvex::Asn1Engine::TypeDesc* desc = &asn1data::asn1Desc_Certificate;
  Codec c;
  std::vector<unsigned char> value(desc->size), copy(desc->size);
  ASN1CTXT* ctxt = c.ctxt();
  if (xd_setp(ctxt, cert.data(), static_cast<int>(cert.size()), nullptr, nullptr) != 0 ||
      Korvex::Asn1Engine::decode(ctxt, desc, value.data(), ASN1EXPL, 0) != 0) {
    return Fault(faults, thread, round, "certificate did not decode");
  }
  if (Korvex::Asn1Engine::copy(ctxt, desc, value.data(), copy.data()) != 0) {
    Fault(faults, thread, round, "certificate did not copy");
  }
  ASN1CTXT* enc = c.encodeCtxt();
  xe_setp(enc, nullptr, 0);
  int len = Korvex::Asn1Engine::encode(enc, desc, copy.data(), ASN1EXPL);
  if (len < 0 || Bytes(xe_getp(enc), xe_getp(enc) + len) != cert) {
    Fault(faults, thread, round, "certificate copy re-encodes differently");
  }
  Korvex::Asn1Engine::free(ctxt, desc, copy.data());
  Korvex::Asn1Engine::free(ctxt, desc, value.data());
}

// Reads of the load-time constants: object-set lookups over the generated OID
// constants, descriptor fields, and the attribute-type register.
void ReadConstants(int thread, int round, Faults* faults) {
  using Korvex::ASN1::CATAVRegister;
  if (!korvextest::SupportedAlgorithms::instance().lookupObject(korvextest::id_testParams) ||
      korvextest::SupportedAlgorithms::instance().lookupObject(asn1data::id_at_commonName)) {
    Fault(faults, thread, round, "test-module object set lookup");
  }
  if (!asn1data::SupportedAttributes::instance().lookupObject(asn1data::id_at_commonName)) {
    Fault(faults, thread, round, "catalogue object set lookup");
  }
  if (asn1data::asn1Desc_Certificate.memberCount != 3 ||
      asn1data::asn1Desc_Certificate.tag != 0x20000010u) {
    Fault(faults, thread, round, "certificate descriptor");
  }
  CATAVRegister::const_iterator cn = CATAVRegister::find(L"CN");
  if (cn == CATAVRegister::end() || std::string(cn->get_type()) != "2.5.4.3") {
    Fault(faults, thread, round, "register lookup of CN");
  }
  if (std::wstring(CATAVRegister::typeToStr("2.5.4.6").c_str()) != L"C" ||
      std::string(CATAVRegister::typeFromStr(L"OGRN").c_str()) != "1.2.643.100.1") {
    Fault(faults, thread, round, "register name conversions");
  }
  // C is a PrintableString: 13 02 "R" digit.
  wchar_t text[3] = {L'R', static_cast<wchar_t>(L'0' + thread % 10), 0};
  Korvex::CBlob value = CATAVRegister::valueFromStr("2.5.4.6", text, Korvex::ASN1::stDefault);
  const Bytes expected = {0x13, 0x02, 'R', static_cast<unsigned char>('0' + thread % 10)};
  if (Bytes(value.pbData(), value.pbData() + value.cbData()) != expected) {
    Fault(faults, thread, round, "register value of C");
  }
}

TEST(Threads, DistinctValuesAndSharedConstantsOnTwoToEightThreads) {
  const Bytes cert = ReadData("pki/ee-rsa.der");
  ASSERT_FALSE(cert.empty());
  const int kRounds = 40;
  for (int threads : {2, 4, 8}) {
    SCOPED_TRACE(std::to_string(threads) + " threads");
    StartLine start(threads);
    std::vector<Faults> faults(threads);
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t) {
      pool.emplace_back([&, t] {
        start.arriveAndWait();
        for (int round = 0; round < kRounds; ++round) {
          RecordRoundTrip(t, round, &faults[t]);
          CertificateRoundTrip(cert, t, round, &faults[t]);
          ReadConstants(t, round, &faults[t]);
        }
      });
    }
    for (std::thread& th : pool) th.join();
    for (int t = 0; t < threads; ++t) {
      for (const std::string& f : faults[t]) ADD_FAILURE() << f;
    }
  }
}

// Heaps shared between contexts are for one thread; heaps of different
// contexts are independent: many threads allocating and freeing in their own
// heaps at once leave each heap's block count exact.
TEST(Threads, IndependentHeapsKeepExactCounts) {
  const int kThreads = 8;
  StartLine start(kThreads);
  std::vector<long> wrong(kThreads, 0);
  std::vector<std::thread> pool;
  for (int t = 0; t < kThreads; ++t) {
    pool.emplace_back([&, t] {
      ASN1CTXT c;
      rtInitContext(&c, nullptr);
      start.arriveAndWait();
      std::vector<void*> blocks;
      for (int i = 0; i < 500; ++i) {
        blocks.push_back(rtMemHeapAlloc(&c.pTypeMemHeap, 16 + (i + t) % 64));
        if (i % 3 == 0) {
          rtMemHeapFreePtr(&c.pTypeMemHeap, blocks.front());
          blocks.erase(blocks.begin());
        }
        if (rtMemHeapBlockCount(&c.pTypeMemHeap) != blocks.size()) ++wrong[t];
      }
      rtFreeContext(&c);
    });
  }
  for (std::thread& th : pool) th.join();
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(wrong[t], 0) << "thread " << t;
}

}  // namespace
