// roundtrip_oracle.cpp: decode, re-encode, copy and free of one value, with
// aborts on any mismatch or leaked heap block.
#include "roundtrip_oracle.h"

#include <cstdlib>
#include <cstring>
#include <vector>

namespace Korvex {
namespace Fuzz {
namespace {

using Asn1Engine::TypeDesc;

struct Context {
  ASN1CTXT c;
  Context() {
    if (rtInitContext(&c, nullptr) != 0) std::abort();
  }
  ~Context() { rtFreeContext(&c); }
  size_t blocks() { return rtMemHeapBlockCount(&c.pTypeMemHeap); }
};

// Decodes bytes into value; the status.
int Decode(Context& ctx, const TypeDesc* desc, const uint8_t* data, size_t size, void* value) {
  int stat = xd_setp(&ctx.c, data, static_cast<int>(size), nullptr, nullptr);
  if (stat < 0) return stat;
  return Asn1Engine::decode(&ctx.c, desc, value, ASN1EXPL, 0);
}

std::vector<uint8_t> Encode(const TypeDesc* desc, void* value) {
  Context enc;
  if (xe_setp(&enc.c, nullptr, 0) < 0) std::abort();
  int len = Asn1Engine::encode(&enc.c, desc, value, ASN1EXPL);
  if (len < 0) std::abort();  // a decoded value always encodes
  const uint8_t* p = xe_getp(&enc.c);
  return std::vector<uint8_t>(p, p + len);
}

}  // namespace

void CheckRoundTrip(const TypeDesc* desc, const uint8_t* data, size_t size) {
  if (size == 0 || size > 0x100000) return;
  Context ctx;
  size_t before = ctx.blocks();
  std::vector<unsigned char> value(desc->size), copy(desc->size), again(desc->size);
  if (Decode(ctx, desc, data, size, value.data()) == 0) {
    // The element decoded; the input's first element is what the encoding covers.
    size_t consumed = ctx.c.buffer.byteIndex;
    std::vector<uint8_t> der = Encode(desc, value.data());
    if (Decode(ctx, desc, der.data(), der.size(), again.data()) != 0) std::abort();
    if (Encode(desc, again.data()) != der) std::abort();
    if (consumed == der.size() && std::memcmp(data, der.data(), consumed) != 0 &&
        !(ctx.c.flags & ASN1INDEFLEN)) {
      // Same length but other bytes: acceptable only for BER the DER differs from
      // (e.g. an unsorted SET OF), never for input that is itself our DER.
      std::vector<unsigned char> reread(desc->size);
      if (Decode(ctx, desc, data, consumed, reread.data()) != 0) std::abort();
      if (Encode(desc, reread.data()) != der) std::abort();
      Asn1Engine::free(&ctx.c, desc, reread.data());
    }
    if (Asn1Engine::copy(&ctx.c, desc, value.data(), copy.data()) != 0) std::abort();
    if (Encode(desc, copy.data()) != der) std::abort();
    Asn1Engine::free(&ctx.c, desc, copy.data());
    Asn1Engine::free(&ctx.c, desc, again.data());
  }
  Asn1Engine::free(&ctx.c, desc, value.data());
  if (ctx.blocks() != before) std::abort();  // free missed a block
}

void CheckOneOf(const TypeDesc* const* descs, size_t count, const uint8_t* data, size_t size) {
  if (size < 1 || count == 0) return;
  CheckRoundTrip(descs[data[0] % count], data + 1, size - 1);
}

}  // namespace Fuzz
}  // namespace Korvex
