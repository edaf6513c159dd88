// Every status the runtime and the generated codecs can return, each with one
// input that produces it. The table doubles as documentation of which call
// and which bytes lead to which status; a last test checks that no status
// macro of asn1type.h is missing from it.
#include <gtest/gtest.h>
#include <korvex/asn1gen/KorvexTestAlgorithms.h>
#include <korvex/asn1rt/ASN1CBitStr.h>
#include <korvex/asn1rt/ASN1CSeqOfList.h>
#include <korvex/asn1rt/ASN1CTime.h>
#include <korvex/asn1rt/rtUTF8.h>

#include <cstring>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "codec_fixture.h"

namespace {

using Korvex::Test::Bytes;
using Korvex::Test::Codec;
using Korvex::Test::FromHex;

// A context whose buffer is a copy of hex bytes, cursor at 0 (no xd_setp, so
// primitive decoders see exactly these bytes).
struct RawDecoder {
  ASN1CTXT c;
  Bytes bytes;
  explicit RawDecoder(const std::string& hex) : bytes(FromHex(hex)) {
    rtInitContext(&c, nullptr);
    bytes.reserve(1);
    rtInitContextBuffer(&c, bytes.data(), static_cast<ASN1UINT>(bytes.size()));
  }
  ~RawDecoder() { rtFreeContext(&c); }
  RawDecoder(const RawDecoder&) = delete;
  RawDecoder& operator=(const RawDecoder&) = delete;
};

// Returns the status of a primitive decoder run over hex, after checking
// that the decoder recorded it in the context too.
int DecodeRaw(const std::string& hex, const std::function<int(ASN1CTXT*)>& fn) {
  RawDecoder d(hex);
  int status = fn(&d.c);
  if (status < 0) {
    EXPECT_EQ(d.c.errInfo.status, status) << "status not recorded";
  }
  return status;
}

// Decodes hex with a generated decoder through xd_setp; frees what it made.
template <typename Record>
int DecodeGenerated(int (*decode)(ASN1CTXT*, Record*, ASN1TagType, int),
                    void (*free)(ASN1CTXT*, Record*), const std::string& hex) {
  Codec c;
  size_t before = c.blocks();
  Record rec{};
  int status = c.decode(decode, FromHex(hex), &rec);
  if (status < 0) {
    EXPECT_EQ(c.ctxt()->errInfo.status, status) << "status not recorded";
  }
  free(c.ctxt(), &rec);
  EXPECT_EQ(c.blocks(), before) << "heap blocks left after free";
  return status;
}

void* FailingMalloc(void*, size_t) { return nullptr; }

// Tree ::= SEQUENCE OF Tree, nested `depth` times with indefinite lengths.
std::string NestedTree(int depth) {
  std::string hex;
  for (int i = 0; i < depth; ++i) hex += "3080";
  for (int i = 0; i < depth; ++i) hex += "0000";
  return hex;
}

struct StatusCase {
  int status;
  const char* name;   // the macro of asn1type.h
  const char* input;  // the call and bytes that produce it
  std::function<int()> run;
};

std::vector<StatusCase> Cases() {
  using namespace korvextest;
  return {
      {ASN_OK, "ASN_OK", "xd_integer over 02 01 05",
       [] {
         ASN1INT v = 0;
         int s = DecodeRaw("020105", [&](ASN1CTXT* c) { return xd_integer(c, &v, ASN1EXPL, 0); });
         EXPECT_EQ(v, 5);
         return s;
       }},
      {ASN_E_BUFOVFLW, "ASN_E_BUFOVFLW", "xe_memcpy of 10 bytes into a static 10-byte buffer",
       [] {
         ASN1CTXT c;
         rtInitContext(&c, nullptr);
         ASN1OCTET buffer[10];
         const ASN1OCTET ten[10] = {};
         xe_setp(&c, buffer, sizeof buffer);
         EXPECT_EQ(xe_memcpy(&c, ten, 9), 9);  // the last byte is never written
         int s = xe_memcpy(&c, ten, 1);
         rtFreeContext(&c);
         return s;
       }},
      {ASN_E_ENDOFBUF, "ASN_E_ENDOFBUF", "xd_len over 82 01 (one of two length octets)",
       [] {
         int len = 0;
         return DecodeRaw("8201", [&](ASN1CTXT* c) { return xd_len(c, &len); });
       }},
      {ASN_E_IDNOTFOU, "ASN_E_IDNOTFOU", "xd_integer (explicit) over 04 01 00",
       [] {
         ASN1INT v = 0;
         return DecodeRaw("040100", [&](ASN1CTXT* c) { return xd_integer(c, &v, ASN1EXPL, 0); });
       }},
      {ASN_E_INVOBJID, "ASN_E_INVOBJID", "xe_objid of 3.1.2 (first arc above 2)",
       [] {
         Codec k;
         xe_setp(k.encodeCtxt(), nullptr, 0);
         ASN1OBJID oid{};
         oid.numids = 3;
         oid.subid[0] = 3;
         oid.subid[1] = 1;
         oid.subid[2] = 2;
         return xe_objid(k.encodeCtxt(), &oid, ASN1EXPL);
       }},
      {ASN_E_INVLEN, "ASN_E_INVLEN", "xd_tag_len over 04 80 (indefinite primitive)",
       [] {
         ASN1TAG tag = 0;
         int len = 0;
         return DecodeRaw("0480", [&](ASN1CTXT* c) { return xd_tag_len(c, &tag, &len, 2); });
       }},
      {ASN_E_INVENUM, "ASN_E_INVENUM", "asn1D_Color over 0A 01 05 (Color has 0..2)",
       [] { return DecodeGenerated(&asn1D_Color, &asn1Free_Color, "0A0105"); }},
      {ASN_E_SETDUPL, "ASN_E_SETDUPL",
       "asn1D_Settings over 31 0A A0 03 01 01 FF A0 03 01 01 00 ([0] twice)",
       [] {
         return DecodeGenerated(&asn1D_Settings, &asn1Free_Settings, "310AA0030101FFA003010100");
       }},
      {ASN_E_SETMISRQ, "ASN_E_SETMISRQ", "asn1D_AlgorithmIdentifier over 30 00",
       [] {
         return DecodeGenerated(&asn1D_AlgorithmIdentifier, &asn1Free_AlgorithmIdentifier, "3000");
       }},
      {ASN_E_INVBIGINT, "ASN_E_INVBIGINT", "xe_bigint of the text \"12x\"",
       [] {
         Codec k;
         xe_setp(k.encodeCtxt(), nullptr, 0);
         return xe_bigint(k.encodeCtxt(), "12x", ASN1EXPL);
       }},
      {ASN_E_NOTINSEQ, "ASN_E_NOTINSEQ",
       "asn1D_AlgorithmIdentifier over 30 0F 06 09 2A864886F70D01010B 05 00 05 "
       "00",
       [] {
         return DecodeGenerated(&asn1D_AlgorithmIdentifier, &asn1Free_AlgorithmIdentifier,
                                "300F06092A864886F70D01010B05000500");
       }},
      {ASN_E_INVOPT, "ASN_E_INVOPT", "asn1E_Choice with t = 9",
       [] {
         Codec k;
         ASN1T_Choice value;
         value.t = 9;
         k.encode(&asn1E_Choice, &value);
         EXPECT_EQ(k.encodeCtxt()->errInfo.status, ASN_E_INVOPT);
         return k.lastStatus();
       }},
      {ASN_E_NOMEM, "ASN_E_NOMEM", "rtInitContext while every allocation fails",
       [] {
         rtMallocFunc m;
         rtReallocFunc r;
         rtFreeFunc f;
         rtGetAllocFuncs(&m, &r, &f);
         rtSetAllocFuncs(&FailingMalloc, r, f);
         ASN1CTXT c;
         int s = rtInitContext(&c, nullptr);
         rtSetAllocFuncs(m, r, f);
         return s;
       }},
      {ASN_E_STROVFLW, "ASN_E_STROVFLW", "xd_octstr_s into 2 octets over 04 03 01 02 03",
       [] {
         ASN1OCTET out[2];
         ASN1UINT n = sizeof out;
         return DecodeRaw("0403010203",
                          [&](ASN1CTXT* c) { return xd_octstr_s(c, out, &n, ASN1EXPL, 0); });
       }},
      {ASN_E_BADVALUE, "ASN_E_BADVALUE", "xe_boolean of a null value pointer",
       [] {
         Codec k;
         xe_setp(k.encodeCtxt(), nullptr, 0);
         return xe_boolean(k.encodeCtxt(), nullptr, ASN1EXPL);
       }},
      {ASN_E_BADTAG, "ASN_E_BADTAG", "xd_tag over 1F 82 80 80 80 00 (number 0x20000000)",
       [] {
         ASN1TAG tag = 0;
         return DecodeRaw("1F8280808000", [&](ASN1CTXT* c) { return xd_tag(c, &tag); });
       }},
      {ASN_E_CONSVIO, "ASN_E_CONSVIO", "asn1D_Choice over 02 02 01 00 (number is 0..255)",
       [] { return DecodeGenerated(&asn1D_Choice, &asn1Free_Choice, "02020100"); }},
      {ASN_E_RANGERR, "ASN_E_RANGERR", "ASN1CBitStr::set(5, 2) on a 16-bit fixed string",
       [] {
         ASN1OCTET data[2] = {};
         ASN1UINT numbits = 16;
         ASN1CBitStr bits(data, numbits, 16);
         return bits.set(5, 2);
       }},
      {ASN_E_INVUTF8, "ASN_E_INVUTF8", "rtUTF8Validate of C0 80 (overlong NUL)",
       [] { return rtUTF8Validate("\xC0\x80", 2); }},
      {ASN_E_ITERNOTPOS, "ASN_E_ITERNOTPOS", "ASN1CSeqOfListIterator::next at the end",
       [] {
         rtDList list;
         rtDListInit(&list);
         ASN1CSeqOfListIterator it(list);
         EXPECT_EQ(it.next(), nullptr);
         return it.status();
       }},
      {ASN_E_ITERCHANGED, "ASN_E_ITERCHANGED", "next after an append behind the iterator's back",
       [] {
         Codec k;
         ASN1TSeqOfList list;
         ASN1CSeqOfList seq(k.ctxt(), list);
         int one = 1, two = 2;
         EXPECT_EQ(seq.append(&one), 0);
         ASN1CSeqOfListIterator it = seq.iterator();
         EXPECT_EQ(seq.append(&two), 0);
         EXPECT_EQ(it.next(), nullptr);
         int s = it.status();
         seq.clear();
         return s;
       }},
      {ASN_E_OUTOFBND, "ASN_E_OUTOFBND", "ASN1CBitStr::set(8) on an 8-bit fixed string",
       [] {
         ASN1OCTET data[1] = {};
         ASN1UINT numbits = 8;
         ASN1CBitStr bits(data, numbits, 8);
         return bits.set(8);
       }},
      {ASN_E_INVPARAM, "ASN_E_INVPARAM", "rtMemHeapCreate with a null handle",
       [] { return rtMemHeapCreate(nullptr, nullptr); }},
      {ASN_E_INVDATETIME, "ASN_E_INVDATETIME", "ASN1CGeneralizedTime::setMonth(13)",
       [] {
         ASN1CGeneralizedTime t;
         return t.setMonth(13);
       }},
      {ASN_E_NOTINIT, "ASN_E_NOTINIT", "rtInitContextBuffer on a zeroed context",
       [] {
         ASN1CTXT c;
         std::memset(&c, 0, sizeof c);
         ASN1OCTET byte = 0;
         return rtInitContextBuffer(&c, &byte, 1);
       }},
      {ASN_E_TOOBIG, "ASN_E_TOOBIG", "xd_integer over 02 05 00 00 00 00 01",
       [] {
         ASN1INT v = 0;
         return DecodeRaw("02050000000001",
                          [&](ASN1CTXT* c) { return xd_integer(c, &v, ASN1EXPL, 0); });
       }},
      {ASN_E_NESTING, "ASN_E_NESTING", "asn1D_Tree over 65 nested 30 80 ... 00 00",
       [] { return DecodeGenerated(&asn1D_Tree, &asn1Free_Tree, NestedTree(ASN_K_MAXDEPTH + 1)); }},
      {-99, "(ASN1MessageBuffer)", "ASN1BERDecodeBuffer::initBuffer(unsigned short*)",
       [] {
         ASN1BERDecodeBuffer buffer;
         unsigned short text[1] = {0};
         return buffer.initBuffer(text);
       }},
  };
}

TEST(StatusTable, EveryStatusHasAnInputThatProducesIt) {
  for (const StatusCase& k : Cases()) {
    SCOPED_TRACE(std::string(k.name) + ": " + k.input);
    EXPECT_EQ(k.run(), k.status);
  }
}

TEST(StatusTable, CoversEveryStatusMacro) {
  // The status macros of asn1type.h and the buffer classes' "not supported".
  const std::set<int> all = {ASN_OK,
                             ASN_E_BUFOVFLW,
                             ASN_E_ENDOFBUF,
                             ASN_E_IDNOTFOU,
                             ASN_E_INVOBJID,
                             ASN_E_INVLEN,
                             ASN_E_INVENUM,
                             ASN_E_SETDUPL,
                             ASN_E_SETMISRQ,
                             ASN_E_INVBIGINT,
                             ASN_E_NOTINSEQ,
                             ASN_E_INVOPT,
                             ASN_E_NOMEM,
                             ASN_E_STROVFLW,
                             ASN_E_BADVALUE,
                             ASN_E_BADTAG,
                             ASN_E_CONSVIO,
                             ASN_E_RANGERR,
                             ASN_E_INVUTF8,
                             ASN_E_ITERNOTPOS,
                             ASN_E_ITERCHANGED,
                             ASN_E_OUTOFBND,
                             ASN_E_INVPARAM,
                             ASN_E_INVDATETIME,
                             ASN_E_NOTINIT,
                             ASN_E_TOOBIG,
                             ASN_E_NESTING,
                             -99};
  std::set<int> covered;
  for (const StatusCase& k : Cases()) covered.insert(k.status);
  EXPECT_EQ(covered, all);
}

// A nesting of exactly the maximum depth is still accepted: the bound is not
// off by one.
TEST(StatusTable, NestingAtTheBoundDecodes) {
  EXPECT_EQ(DecodeGenerated(&korvextest::asn1D_Tree, &korvextest::asn1Free_Tree,
                            NestedTree(ASN_K_MAXDEPTH)),
            0);
}

}  // namespace
