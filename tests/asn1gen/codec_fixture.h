// codec_fixture.h: contexts and helpers to encode records into bytes, decode
// bytes into records and check round trips through the generated functions.
#ifndef KORVEX_TESTS_ASN1GEN_CODEC_FIXTURE_H
#define KORVEX_TESTS_ASN1GEN_CODEC_FIXTURE_H

#include <gtest/gtest.h>
#include <korvex/asn1rt/asn1engine.h>

#include <string>
#include <vector>

namespace Korvex {
namespace Test {

using Bytes = std::vector<unsigned char>;

Bytes FromHex(const std::string& hex);
std::string ToHex(const Bytes& bytes);

// A decode context (records decoded or copied live in its type heap) and a
// separate encode context, both freed on destruction.
class Codec {
 public:
  Codec() {
    rtInitContext(&ctxt_, nullptr);
    rtInitContext(&enc_, nullptr);
  }
  ~Codec() {
    rtFreeContext(&ctxt_);
    rtFreeContext(&enc_);
  }
  Codec(const Codec&) = delete;
  Codec& operator=(const Codec&) = delete;

  ASN1CTXT* ctxt() { return &ctxt_; }
  ASN1CTXT* encodeCtxt() { return &enc_; }
  size_t blocks() { return rtMemHeapBlockCount(&ctxt_.pTypeMemHeap); }

  // Encodes into a fresh buffer of the encode context; the bytes, or empty with
  // the status in lastStatus() (also recorded in the encode context).
  template <typename Record>
  Bytes encode(int (*fn)(ASN1CTXT*, Record*, ASN1TagType), Record* rec) {
    rtErrReset(&enc_.errInfo);
    status_ = xe_setp(&enc_, nullptr, 0);
    if (status_ < 0) return {};
    status_ = fn(&enc_, rec, ASN1EXPL);
    if (status_ < 0) return {};
    const unsigned char* p = xe_getp(&enc_);
    return Bytes(p, p + status_);
  }

  // Decodes der (kept alive by the fixture) into rec; returns the status.
  template <typename Record>
  int decode(int (*fn)(ASN1CTXT*, Record*, ASN1TagType, int), const Bytes& der, Record* rec) {
    input_ = der;
    rtErrReset(&ctxt_.errInfo);
    status_ = xd_setp(&ctxt_, input_.data(), static_cast<int>(input_.size()), nullptr, nullptr);
    if (status_ < 0) return status_;
    status_ = fn(&ctxt_, rec, ASN1EXPL, 0);
    return status_;
  }

  int lastStatus() const { return status_; }

 private:
  ASN1CTXT ctxt_;
  ASN1CTXT enc_;
  Bytes input_;
  int status_ = 0;
};

// The four generated functions of one type.
template <typename Record>
struct Functions {
  int (*encode)(ASN1CTXT*, Record*, ASN1TagType);
  int (*decode)(ASN1CTXT*, Record*, ASN1TagType, int);
  int (*copy)(ASN1CTXT*, const Record*, Record*);
  void (*free)(ASN1CTXT*, Record*);
};

#define KORVEX_FUNCTIONS(ns, Type)                                                   \
  ::Korvex::Test::Functions<ns::ASN1T_##Type> {                                      \
    &ns::asn1E_##Type, &ns::asn1D_##Type, &ns::asn1Copy_##Type, &ns::asn1Free_##Type \
  }

// Decodes input, re-encodes it (expecting der, or input itself when der is
// empty), deep-copies the record and encodes the copy, then frees both and
// checks that every heap block the decode and copy took was given back.
template <typename Record>
void ExpectRoundTrip(const Functions<Record>& f, const std::string& inputHex,
                     const std::string& derHex = "") {
  Codec c;
  Bytes input = FromHex(inputHex);
  Bytes der = derHex.empty() ? input : FromHex(derHex);
  size_t before = c.blocks();
  Record rec{};
  ASSERT_EQ(c.decode(f.decode, input, &rec), 0) << "status " << c.lastStatus();
  EXPECT_EQ(ToHex(c.encode(f.encode, &rec)), ToHex(der));
  Record copy{};
  ASSERT_EQ(f.copy(c.ctxt(), &rec, &copy), 0);
  f.free(c.ctxt(), &rec);
  EXPECT_EQ(ToHex(c.encode(f.encode, &copy)), ToHex(der));
  f.free(c.ctxt(), &copy);
  EXPECT_EQ(c.blocks(), before) << "heap blocks left after free";
}

// Expects decoding inputHex to fail with status (recorded in the context too),
// and the half-decoded record to free without leaving heap blocks.
template <typename Record>
void ExpectDecodeStatus(const Functions<Record>& f, const std::string& inputHex, int status) {
  Codec c;
  size_t before = c.blocks();
  Record rec{};
  EXPECT_EQ(c.decode(f.decode, FromHex(inputHex), &rec), status);
  EXPECT_EQ(c.ctxt()->errInfo.status, status);
  f.free(c.ctxt(), &rec);
  EXPECT_EQ(c.blocks(), before) << "heap blocks left after free";
}

}  // namespace Test
}  // namespace Korvex

#endif
