// fuzz_asn1rt_walk: the BER walkers on arbitrary bytes. Bit 0 of the first byte
// turns the indefinite-message flag (0x4000) on, bit 1 the no-length-check
// flag; the rest is the message. Checks that the walkers stay inside the
// buffer, restore the cursor where they promise to, and agree with each other.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <korvex/asn1rt/asn1ber.h>

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

struct Ctx {
  ASN1CTXT c;
  Ctx(std::vector<uint8_t>& bytes, ASN1USINT flags) {
    Check(rtInitContext(&c, nullptr) == 0);
    ASN1OCTET dummy = 0;
    Check(rtInitContextBuffer(&c, bytes.empty() ? &dummy : bytes.data(),
                              static_cast<ASN1UINT>(bytes.size())) == 0);
    c.flags = flags;
  }
  ~Ctx() { rtFreeContext(&c); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  ASN1USINT flags = 0;
  if (data[0] & 1) flags |= ASN1INDEFLEN;
  if (data[0] & 2) flags |= ASN1NOLENCHECK;
  std::vector<uint8_t> msg(data + 1, data + size);
  const ASN1UINT n = static_cast<ASN1UINT>(msg.size());

  {  // xd_count over the whole buffer and up to an end-of-contents.
    Ctx x(msg, flags);
    int count = -1;
    int stat = xd_count(&x.c, static_cast<int>(n), &count);
    Check(x.c.buffer.byteIndex == 0);
    if (stat == 0) Check(count >= 0 && static_cast<ASN1UINT>(count) <= n / 2);
    stat = xd_count(&x.c, ASN_K_INDEFLEN, &count);
    Check(x.c.buffer.byteIndex == 0);
  }
  {  // xd_NextElement until the data ends or fails.
    Ctx x(msg, flags);
    int steps = 0;
    while (x.c.buffer.byteIndex < n) {
      ASN1UINT before = x.c.buffer.byteIndex;
      if (xd_NextElement(&x.c) != 0) break;
      Check(x.c.buffer.byteIndex > before && x.c.buffer.byteIndex <= n);
      ++steps;
    }
    Check(static_cast<ASN1UINT>(steps) <= n / 2);
  }
  {  // xd_MovePastEOC from the start and from just inside a first header.
    Ctx x(msg, flags);
    if (xd_MovePastEOC(&x.c) == 0) Check(x.c.buffer.byteIndex >= 2 && x.c.buffer.byteIndex <= n);
    Ctx y(msg, flags);
    ASN1TAG tag;
    int len;
    if (xd_tag_len(&y.c, &tag, &len, XM_ADVANCE) == 0 && len == ASN_K_INDEFLEN) {
      ASN1UINT inside = y.c.buffer.byteIndex;
      if (xd_MovePastEOC(&y.c) == 0) {
        // The indefinite element measured two ways.
        int total = xd_indeflen_ex(msg.data(), static_cast<int>(n));
        if (n >= 5) Check(total == static_cast<int>(y.c.buffer.byteIndex));
        Check(y.c.buffer.byteIndex >= inside + 2);
      }
    }
  }
  {  // xd_indeflen_ex and xd_setp agree.
    int total = msg.empty() ? 0 : xd_indeflen_ex(msg.data(), static_cast<int>(n));
    Check(total <= static_cast<int>(n));
    Ctx x(msg, 0);
    ASN1TAG tag;
    int len;
    if (!msg.empty() && xd_setp(&x.c, msg.data(), static_cast<int>(n), &tag, &len) == 0) {
      Check(x.c.buffer.size <= n && x.c.buffer.byteIndex == 0);
      if (len == ASN_K_INDEFLEN) {
        Check((x.c.flags & ASN1INDEFLEN) != 0);
        if (n >= 5) Check(static_cast<ASN1UINT>(total) == x.c.buffer.size);
        // Walk the outermost element's contents to its end.
        int l;
        Check(xd_Tag1AndLen(&x.c, &l) == 0);
        int count;
        if (xd_count(&x.c, ASN_K_INDEFLEN, &count) == 0) {
          for (int i = 0; i < count; ++i) Check(xd_NextElement(&x.c) == 0);
          Check(xd_MatchEOC(&x.c) == 0);
          Check((x.c.flags & ASN1LASTEOC) != 0);
        }
      } else {
        Check(static_cast<ASN1UINT>(len) == x.c.buffer.size);
      }
    }
  }
  return 0;
}
