// roundtrip_oracle.cpp: decode, re-encode, copy and free of one value, with
// aborts on any mismatch or leaked heap block.
#include "roundtrip_oracle.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "record_generator.h"

namespace Korvex {
namespace Fuzz {
namespace {

using Asn1Engine::MemberDesc;
using Asn1Engine::TypeDesc;
using Test::SameValue;

struct Context {
  ASN1CTXT c;
  Context() {
    if (rtInitContext(&c, nullptr) != 0) std::abort();
  }
  ~Context() { rtFreeContext(&c); }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
  size_t blocks() { return rtMemHeapBlockCount(&c.pTypeMemHeap); }
};

int Decode(Context& ctx, const TypeDesc* desc, const uint8_t* data, size_t size, void* value) {
  int stat = xd_setp(&ctx.c, data, static_cast<int>(size), nullptr, nullptr);
  if (stat < 0) return stat;
  return Asn1Engine::decode(&ctx.c, desc, value, ASN1EXPL, 0);
}

std::vector<uint8_t> Encode(const TypeDesc* desc, void* value) {
  Context enc;
  if (xe_setp(&enc.c, nullptr, 0) < 0) std::abort();
  int len = Asn1Engine::encode(&enc.c, desc, value, ASN1EXPL);
  if (len < 0) std::abort();  // every decoded value encodes again
  const uint8_t* p = xe_getp(&enc.c);
  return std::vector<uint8_t>(p, p + len);
}

// Whether DER of the type has rules beyond the element structure (unknown
// extension additions dropped, DEFAULT values left out, named bits trimmed,
// SET orders, the values inside table-constrained open types and OCTET
// STRINGs, which are written from their typed value); such inputs may be
// structurally DER and still not the DER of their value.
bool HasValueRules(const TypeDesc* d, int depth = 0) {
  if (!d || depth > 32) return true;
  switch (d->kind) {
    case Asn1Engine::kSequence:
      // Unknown extension additions are skipped on decode, not written back.
      if (d->flags & Asn1Engine::kExtensible) return true;
      break;
    case Asn1Engine::kSet:
    case Asn1Engine::kSetOf:
    case Asn1Engine::kTableOpenType:
    case Asn1Engine::kTableOctetString:
      return true;
    case Asn1Engine::kBitString:
      return (d->flags & Asn1Engine::kNamedBits) != 0;
    default:
      break;
  }
  if (d->inner && HasValueRules(d->inner, depth + 1)) return true;
  for (unsigned i = 0; i < d->memberCount; ++i) {
    const MemberDesc& m = d->members[i];
    if ((m.flags & Asn1Engine::kDefault) || HasValueRules(m.type, depth + 1)) return true;
  }
  return false;
}

// X.690 10/11 structure: minimal tags, definite minimal lengths, primitive strings, minimal
// INTEGERs, BOOLEAN 00/FF (types with SET orders are left to HasValueRules).
bool StructurallyDer(const uint8_t* p, size_t n, int depth = 0) {
  if (depth > 64) return false;
  while (n) {
    uint8_t id = p[0];
    size_t i = 1;
    if ((id & 0x1F) == 0x1F) {
      // X.690 8.1.2.4: the long form only for numbers above 30, no leading 0x80.
      if (i >= n || p[i] == 0x80 || (p[i] < 31)) return false;
      while (i < n && (p[i] & 0x80)) ++i;
      if (++i > n) return false;
    }
    if (i >= n) return false;
    size_t len = p[i++];
    if (len == 0x80) return false;
    if (len & 0x80) {
      size_t octets = len & 0x7F;
      if (octets > 4 || i + octets > n || p[i] == 0) return false;
      len = 0;
      for (size_t k = 0; k < octets; ++k) len = (len << 8) | p[i++];
      if (len < 128) return false;
    }
    if (len > n - i) return false;
    const uint8_t* c = p + i;
    bool constructed = (id & 0x20) != 0;
    if (constructed &&
        (id == 0x23 || id == 0x24 || (id >= 0x2C && id <= 0x3E && id != 0x30 && id != 0x31))) {
      return false;  // constructed universal string
    }
    if ((id == 0x02 || id == 0x0A) &&
        (len == 0 ||
         (len > 1 && ((c[0] == 0 && !(c[1] & 0x80)) || (c[0] == 0xFF && (c[1] & 0x80)))))) {
      return false;
    }
    if (id == 0x01 && (len != 1 || (c[0] != 0 && c[0] != 0xFF))) return false;
    if (constructed && !StructurallyDer(c, len, depth + 1)) return false;
    size_t total = i + len;
    p += total;
    n -= total;
  }
  return true;
}

}  // namespace

void CheckRoundTrip(const TypeDesc* desc, const uint8_t* data, size_t size, bool carving) {
  if (size == 0 || size > 0x100000) return;
  Context ctx;
  size_t before = ctx.blocks();
  if (carving && rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 1) != 0) std::abort();
  std::vector<unsigned char> value(desc->size), copy(desc->size), again(desc->size);
  if (Decode(ctx, desc, data, size, value.data()) == 0) {
    size_t consumed = ctx.c.buffer.byteIndex;  // the first element of the input
    std::vector<uint8_t> der = Encode(desc, value.data());
    // Our encoding is DER: it decodes and encodes to itself.
    if (Decode(ctx, desc, der.data(), der.size(), again.data()) != 0) std::abort();
    if (Encode(desc, again.data()) != der) std::abort();
    // ... and holds the value that was read: BER and DER of one value decode
    // to equal records (typed open values, SET OF orders, DEFAULTs and named
    // bits compared as DER sees them).
    std::string where;
    if (!SameValue(desc, value.data(), again.data(), &where)) {
      std::fprintf(stderr, "round trip changed the value at %s\n", where.c_str());
      std::abort();
    }
    // Input that is already DER comes back unchanged.
    if (!HasValueRules(desc) && !(ctx.c.flags & ASN1INDEFLEN) && consumed <= size &&
        StructurallyDer(data, consumed) && std::vector<uint8_t>(data, data + consumed) != der) {
      std::abort();
    }
    if (Asn1Engine::copy(&ctx.c, desc, value.data(), copy.data()) != 0) std::abort();
    if (Encode(desc, copy.data()) != der) std::abort();
    Asn1Engine::free(&ctx.c, desc, copy.data());
    Asn1Engine::free(&ctx.c, desc, again.data());
  }
  Asn1Engine::free(&ctx.c, desc, value.data());
  // Switching carving off gives back the current chunk once none of its blocks
  // is live; a carved block that free missed keeps its chunk in the count.
  if (carving && rtMemHeapSetCarving(&ctx.c.pTypeMemHeap, 0) != 0) std::abort();
  if (ctx.blocks() != before) std::abort();  // free missed a block
}

void CheckOneOf(const TypeDesc* const* descs, size_t count, const uint8_t* data, size_t size) {
  if (size < 1 || count == 0) return;
  CheckRoundTrip(descs[data[0] % count], data + 1, size - 1, (data[0] & 0x80) != 0);
}

}  // namespace Fuzz
}  // namespace Korvex
