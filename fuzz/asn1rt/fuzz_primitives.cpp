// fuzz_asn1rt_primitives: the first byte selects a decoder primitive (low five
// bits) and context flags (top bits); the rest is its input. Whatever decodes
// is encoded again: decoding that encoding must give the same value, and when
// the input was DER the bytes must be the same (the DER round trip).
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <korvex/asn1rt/asn1ber.h>

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

// DER header: low tag form below 31, minimal base-128 groups, definite
// length in its shortest form (X.690 10.1). Sets *headerLen.
bool DerHeader(const uint8_t* p, size_t n, size_t* headerLen) {
  size_t i = 0;
  if (i >= n) return false;
  uint8_t b = p[i++];
  if ((b & 0x1F) == 0x1F) {
    if (i >= n || p[i] == 0x80) return false;
    uint64_t v = 0;
    uint8_t c;
    do {
      if (i >= n) return false;
      c = p[i++];
      v = (v << 7) | (c & 0x7F);
    } while (c & 0x80);
    if (v < 31) return false;
  }
  if (i >= n) return false;
  uint8_t l = p[i++];
  if (l == 0x80) return false;
  if (l > 0x80) {
    size_t k = l & 0x7F;
    if (k > 4 || i + k > n || p[i] == 0) return false;
    uint32_t v = 0;
    for (size_t j = 0; j < k; ++j) v = (v << 8) | p[i + j];
    if (v < 0x80) return false;
    i += k;
  }
  *headerLen = i;
  return true;
}

// INTEGER contents in their minimal form (X.690 8.3.2).
bool MinimalInteger(const uint8_t* c, size_t n) {
  if (n < 2) return n == 1;
  return !((c[0] == 0x00 && c[1] < 0x80) || (c[0] == 0xFF && c[1] >= 0x80));
}

struct Ctx {
  ASN1CTXT c;
  Ctx() { Check(rtInitContext(&c, nullptr) == 0); }
  ~Ctx() { rtFreeContext(&c); }
};

// Encoded bytes of an encoder run on a fresh dynamic buffer.
template <typename F>
std::string Encode(F encode) {
  Ctx e;
  Check(xe_setp(&e.c, nullptr, 0) == 0);
  int len = encode(&e.c);
  if (len < 0) return std::string("\xFF<fail>") + std::to_string(len);
  return std::string(reinterpret_cast<const char*>(xe_getp(&e.c)), static_cast<size_t>(len));
}

// Decodes bytes with a decoder run on a fresh context; returns its status.
template <typename F>
int Decode(const std::string& bytes, F decode) {
  Ctx d;
  Check(rtInitContextBuffer(&d.c, reinterpret_cast<ASN1OCTET*>(const_cast<char*>(bytes.data())),
                            static_cast<ASN1UINT>(bytes.size())) == 0);
  return decode(&d.c);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const uint8_t selector = data[0];
  std::vector<uint8_t> input(data + 1, data + size);  // exact-size copy: overreads are caught
  const uint8_t* in = input.data();
  const size_t n = input.size();
  Ctx ctx;
  ASN1CTXT* c = &ctx.c;
  if (rtInitContextBuffer(c, input.empty() ? nullptr : input.data(), static_cast<ASN1UINT>(n)) !=
      0) {
    return 0;
  }
  if (input.empty()) c->buffer.size = 0;
  if (selector & 0x80) c->flags |= ASN1NOLENCHECK;
  if (selector & 0x40) c->flags |= ASN1OPENTYPEREF;
  const ASN1TagType tagging = (selector & 0x20) ? ASN1IMPL : ASN1EXPL;
  // Under implicit tagging the "length" is the rest of the input.
  const int implLen = static_cast<int>(n);
  const int len = tagging == ASN1EXPL ? 0 : implLen;
  size_t header = 0;
  const bool der = tagging == ASN1EXPL && !(c->flags & ASN1NOLENCHECK) && DerHeader(in, n, &header);
  auto consumed = [&]() { return std::string(reinterpret_cast<const char*>(in), c->buffer.byteIndex); };
  auto contents = [&]() { return in + header; };
  auto contentLen = [&]() { return c->buffer.byteIndex - header; };
  // The integer decoders accept minimal contents only (X.690 8.3.2).
  auto checkMinimalInteger = [&](uint8_t tagOctet) {
    if (tagging == ASN1IMPL) Check(MinimalInteger(in, c->buffer.byteIndex));
    if (der && in[0] == tagOctet) Check(MinimalInteger(contents(), contentLen()));
  };
  int stat;

  switch (selector & 0x1F) {
    case 0: {
      ASN1INT v;
      if ((stat = xd_integer(c, &v, tagging, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_integer(e, &v, ASN1EXPL); });
      ASN1INT back;
      Check(Decode(enc, [&](ASN1CTXT* d) { return xd_integer(d, &back, ASN1EXPL, 0); }) == 0);
      Check(back == v);
      checkMinimalInteger(0x02);
      if (der && in[0] == 0x02) Check(enc == consumed());
      break;
    }
    case 1: {
      ASN1UINT v;
      if ((stat = xd_unsigned(c, &v, tagging, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_unsigned(e, &v, ASN1EXPL); });
      ASN1UINT back;
      Check(Decode(enc, [&](ASN1CTXT* d) { return xd_unsigned(d, &back, ASN1EXPL, 0); }) == 0);
      Check(back == v);
      checkMinimalInteger(0x02);
      if (der && in[0] == 0x02 && !(contents()[0] & 0x80)) Check(enc == consumed());
      break;
    }
    case 2: {
      ASN1USINT v;
      if ((stat = xd_uint16(c, &v, tagging, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_uint16(e, &v, ASN1EXPL); });
      checkMinimalInteger(0x02);
      if (der && in[0] == 0x02) Check(enc == consumed());
      break;
    }
    case 3: {
      ASN1INT64 v;
      if ((stat = xd_int64(c, &v, tagging, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_int64(e, &v, ASN1EXPL); });
      checkMinimalInteger(0x02);
      if (der && in[0] == 0x02) Check(enc == consumed());
      break;
    }
    case 4: {
      ASN1INT v;
      if ((stat = xd_enum(c, &v, tagging, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_enum(e, &v, ASN1EXPL); });
      checkMinimalInteger(0x0A);
      if (der && in[0] == 0x0A) Check(enc == consumed());
      break;
    }
    case 5: {
      ASN1BOOL v;
      if ((stat = xd_boolean(c, &v, tagging, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_boolean(e, &v, ASN1EXPL); });
      if (der && in[0] == 0x01 && (v == 0 || v == 0xFF)) Check(enc == consumed());
      break;
    }
    case 6: {
      if ((stat = xd_null(c, tagging)) != 0) break;
      if (der) Check(Encode([](ASN1CTXT* e) { return xe_null(e, ASN1EXPL); }) == consumed());
      break;
    }
    case 7: {
      const char* text;
      if ((stat = xd_bigint(c, &text, tagging, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_bigint(e, text, ASN1EXPL); });
      Check(enc[0] == 0x02);
      checkMinimalInteger(0x02);
      if (der && in[0] == 0x02) Check(enc == consumed());
      break;
    }
    case 8: {
      ASN1OBJID oid;
      if ((stat = xd_objid(c, &oid, tagging, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_objid(e, &oid, ASN1EXPL); });
      if (oid.numids >= 2) {
        ASN1OBJID back;
        Check(Decode(enc, [&](ASN1CTXT* d) { return xd_objid(d, &back, ASN1EXPL, 0); }) == 0);
        Check(rtCmpOID(&oid, &back) == 1);
        if (der && in[0] == 0x06) Check(enc == consumed());
      }
      break;
    }
    case 9: {
      const ASN1OCTET* v;
      ASN1UINT count;
      if ((stat = xd_octstr(c, &v, &count, tagging, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_octstr(e, v, count, ASN1EXPL); });
      if (der && in[0] == 0x04) Check(enc == consumed());
      break;
    }
    case 10: {
      ASN1OCTET buf[16];
      ASN1UINT count = sizeof(buf);
      stat = xd_octstr_s(c, buf, &count, tagging, len);
      if (stat == 0) Check(count <= sizeof(buf));
      break;
    }
    case 11: {
      const ASN1OCTET* v;
      ASN1UINT bits;
      if ((stat = xd_bitstr(c, &v, &bits, tagging, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_bitstr(e, v, bits, ASN1EXPL); });
      if (der && in[0] == 0x03) Check(enc == consumed());
      break;
    }
    case 12: {
      ASN1OCTET buf[4];
      ASN1UINT bits = 27;
      stat = xd_bitstr_s(c, buf, &bits, tagging, len);
      if (stat == 0) Check(bits <= 27);
      break;
    }
    case 13: {
      const char* text;
      if ((stat = xd_charstr(c, &text, tagging, TM_UNIV | ASN_ID_IA5String, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) {
        return xe_charstr(e, text, ASN1EXPL, TM_UNIV | ASN_ID_IA5String);
      });
      if (der && in[0] == 0x16 && std::strlen(text) == contentLen()) Check(enc == consumed());
      break;
    }
    case 14: {
      Asn116BitCharString s;
      if ((stat = xd_16BitCharStr(c, &s, tagging, TM_UNIV | ASN_ID_BMPString, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) {
        return xe_16BitCharStr(e, &s, ASN1EXPL, TM_UNIV | ASN_ID_BMPString);
      });
      if (der && in[0] == 0x1E) Check(enc == consumed());
      break;
    }
    case 15: {
      Asn132BitCharString s;
      if ((stat = xd_32BitCharStr(c, &s, tagging, TM_UNIV | ASN_ID_UniversalString, len)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) {
        return xe_32BitCharStr(e, &s, ASN1EXPL, TM_UNIV | ASN_ID_UniversalString);
      });
      if (der && in[0] == 0x1C) Check(enc == consumed());
      break;
    }
    case 16: {
      const ASN1OCTET* v;
      ASN1UINT count;
      if ((stat = xd_OpenType(c, &v, &count)) != 0) break;
      Check(count == c->buffer.byteIndex);
      Check(std::memcmp(v, in, count) == 0);
      // The encoder takes exactly this element back.
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_OpenType(e, v, count); });
      Check(enc == consumed());
      break;
    }
    case 17: {
      ASN1TAG tag;
      if ((stat = xd_tag(c, &tag)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_tag(e, tag); });
      // A DER identifier: low form below 31, no padding groups.
      bool minimal = ((in[0] & 0x1F) != 0x1F) || ((tag & TM_IDMASK) >= 31 && in[1] != 0x80);
      if (minimal) Check(enc == consumed());
      break;
    }
    case 18: {
      int l;
      if ((stat = xd_len(c, &l)) != 0) break;
      std::string enc = Encode([&](ASN1CTXT* e) { return xe_len(e, l); });
      bool minimal = in[0] <= 0x80 || (in[1] != 0 && !(in[0] == 0x81 && in[1] < 0x80));
      if (minimal && l != ASN_K_INDEFLEN) Check(enc == consumed());
      break;
    }
    case 19: {
      ASN1TAG tag;
      int l;
      if ((stat = xd_tag_len(c, &tag, &l, XM_ADVANCE)) != 0) break;
      Check(c->buffer.byteIndex <= n);
      if (l != ASN_K_INDEFLEN && !(c->flags & ASN1NOLENCHECK)) Check(static_cast<size_t>(l) <= n - c->buffer.byteIndex);
      if (der) {
        // The header encodes back to the same octets.
        std::string enc = Encode([&](ASN1CTXT* e) { return xe_tag_len(e, tag, 0); });
        if (l == 0) Check(enc == consumed());
      }
      break;
    }
    case 20: {
      // xd_match: the tag from the first input byte, flags from the selector.
      int l;
      ASN1TAG want = n ? (static_cast<ASN1TAG>(in[0] & 0xE0) << 24) | (in[0] & 0x1F) : 0;
      c->buffer.byteIndex = n > 1 ? 1 : 0;
      const ASN1UINT before = c->buffer.byteIndex;
      ASN1OCTET flags = static_cast<ASN1OCTET>(((selector >> 5) & 3) | ((selector & 0x80) ? XM_SKIP : 0));
      stat = xd_match(c, want, &l, flags);
      if (stat != 0) Check(c->buffer.byteIndex == before);
      break;
    }
    case 21: {
      ASN1TAG tag;
      int l;
      ASN1CTXT* s = c;
      if ((stat = xd_setp(s, in, static_cast<int>(n), &tag, &l)) != 0) break;
      Check(s->buffer.size <= n);
      if (l == ASN_K_INDEFLEN) {
        Check(static_cast<ASN1UINT>(xd_indeflen_ex(in, static_cast<int>(n))) == s->buffer.size ||
              n < 5);
      } else {
        Check(static_cast<ASN1UINT>(l) == s->buffer.size);
      }
      break;
    }
    default: {
      // The walk helpers on the same bytes.
      int count;
      xd_count(c, ASN_K_INDEFLEN, &count);
      Check(c->buffer.byteIndex == 0);
      stat = xd_NextElement(c);
      break;
    }
  }
  (void)stat;
  // The cursor never leaves the buffer.
  Check(c->buffer.byteIndex <= c->buffer.size);
  return 0;
}
