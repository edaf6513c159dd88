// decode_string.cpp: OCTET STRING, BIT STRING and character strings, primitive
// or constructed. Constructed forms (X.690 8.6.4, 8.7.3, 8.23.6) are joined in
// two passes: the first measures the segments, the second copies them into
// one block, so the result is allocated once. Segment nesting is capped at
// ASN_K_MAXDEPTH.
#include <cstring>
#include <type_traits>

#include "decode_intern.h"

using korvex_rt::Fail;

namespace {

constexpr ASN1TAG kOctSegment = TM_UNIV | ASN_ID_OCTSTR;
constexpr ASN1TAG kBitSegment = TM_UNIV | ASN_ID_BITSTR;

struct Joined {
  size_t octets = 0;  // data octets (bit strings: without the unused-bits octets)
  int unused = 0;     // unused bits of the last bit-string segment
  bool sawSegment = false;
};

// Checks a primitive bit-string segment's unused-bits octet (X.690 8.6.2).
int CheckBitSegment(const ASN1OCTET* contents, int len, Joined* j) {
  if (len < 1) return ASN_E_INVLEN;
  int unused = contents[0];
  if (unused > 7 || (len == 1 && unused != 0)) return ASN_E_INVLEN;
  // Only the last segment may leave bits unused (X.690 8.6.4.2).
  if (j->unused != 0) return ASN_E_INVLEN;
  j->unused = unused;
  return ASN_OK;
}

// Walks the segments of a constructed string whose contents start at the
// cursor (length -9999: up to and including its end-of-contents octets).
// Copies segment data to out + j->octets when out is non-null.
int JoinSegments(ASN1CTXT* ctxt, ASN1TAG segTag, int length, int depth, ASN1OCTET* out,
                 Joined* j) {
  if (depth > ASN_K_MAXDEPTH) return ASN_E_NESTING;
  const bool indef = length == ASN_K_INDEFLEN;
  if (!indef && (length < 0 || static_cast<ASN1UINT>(length) > korvex_rt::Remaining(ctxt))) {
    return ASN_E_ENDOFBUF;
  }
  const ASN1UINT end = indef ? 0 : ctxt->buffer.byteIndex + static_cast<ASN1UINT>(length);
  const ASN1OCTET* d = ctxt->buffer.data;
  for (;;) {
    ASN1UINT i = ctxt->buffer.byteIndex;
    if (indef) {
      if (korvex_rt::Remaining(ctxt) >= 2 && d[i] == 0 && d[i + 1] == 0) {
        ctxt->buffer.byteIndex = i + 2;
        return ASN_OK;
      }
    } else if (i == end) {
      return ASN_OK;
    }
    ASN1TAG tag;
    int len;
    bool cons;
    int stat = korvex_rt::ReadTagLen(ctxt, &tag, &len, &cons);
    if (stat != ASN_OK) return stat;
    if ((tag & ~TM_CONS) != segTag) return ASN_E_IDNOTFOU;
    ASN1UINT contents = ctxt->buffer.byteIndex;
    if (!indef && len != ASN_K_INDEFLEN &&
        static_cast<unsigned long long>(contents) + static_cast<ASN1UINT>(len) > end) {
      return ASN_E_INVLEN;  // segment runs past its parent
    }
    if (cons) {
      stat = JoinSegments(ctxt, segTag, len, depth + 1, out, j);
      if (stat != ASN_OK) return stat;
      if (!indef && ctxt->buffer.byteIndex > end) return ASN_E_INVLEN;
      continue;
    }
    if (static_cast<ASN1UINT>(len) > korvex_rt::Remaining(ctxt)) return ASN_E_ENDOFBUF;
    const ASN1OCTET* src = d + contents;
    size_t n = static_cast<size_t>(len);
    if (segTag == kBitSegment) {
      stat = CheckBitSegment(src, len, j);
      if (stat != ASN_OK) return stat;
      ++src;
      --n;
    }
    if (out && n) std::memcpy(out + j->octets, src, n);
    j->octets += n;
    j->sawSegment = true;
    ctxt->buffer.byteIndex = contents + static_cast<ASN1UINT>(len);
  }
}

// A string at the cursor: constructed or not, with its contents length.
struct StringInput {
  bool cons;
  int length;
  ASN1UINT start;  // first contents octet
};

// Reads the header of a string decoder: under explicit tagging matches tag
// (one-octet tags fast, others through xd_match); the constructed bit comes
// from ASN1CONSTAG, which is then cleared.
int StringHeader(ASN1CTXT* ctxt, ASN1TAG tag, ASN1TagType tagging, int length, StringInput* in) {
  if (tagging == ASN1EXPL) {
    int stat;
    if ((tag & TM_IDMASK) < 31) {
      ASN1OCTET octet = static_cast<ASN1OCTET>(((tag >> 24) & 0xE0) | (tag & 0x1F));
      stat = korvex_rt::ExplicitHeader(ctxt, octet, &length);
    } else {
      stat = xd_match(ctxt, tag, &length, XM_ADVANCE);
    }
    if (stat != ASN_OK) return stat;
  }
  in->cons = (ctxt->flags & ASN1CONSTAG) != 0 || length == ASN_K_INDEFLEN;
  ctxt->flags = static_cast<ASN1USINT>(ctxt->flags & ~ASN1CONSTAG);
  in->length = length;
  in->start = ctxt->buffer.byteIndex;
  if (!in->cons) return korvex_rt::CheckContents(ctxt, length);
  if (length != ASN_K_INDEFLEN) return korvex_rt::CheckContents(ctxt, length);
  return ASN_OK;
}

// Measures the data octets of the string (cursor unchanged). Not recorded.
int MeasureString(ASN1CTXT* ctxt, const StringInput& in, ASN1TAG segTag, Joined* j) {
  if (!in.cons) {
    if (segTag == kBitSegment) {
      int stat = CheckBitSegment(ctxt->buffer.data + in.start, in.length, j);
      if (stat != ASN_OK) return stat;
      j->octets = static_cast<size_t>(in.length) - 1;
    } else {
      j->octets = static_cast<size_t>(in.length);
    }
    return ASN_OK;
  }
  int stat = JoinSegments(ctxt, segTag, in.length, 1, nullptr, j);
  ctxt->buffer.byteIndex = in.start;
  return stat;
}

// A string whose header was read and whose data octets were measured.
struct Measured {
  StringInput in;
  Joined j;
  unsigned long long bits = 0;  // BIT STRING: the bit count
};

// Reads the header of a string and measures its data octets: StringHeader
// then MeasureString, with the measuring failure recorded.
int MeasureInput(ASN1CTXT* ctxt, ASN1TAG tag, ASN1TAG segTag, ASN1TagType tagging, int length,
                 Measured* m) {
  int stat = StringHeader(ctxt, tag, tagging, length, &m->in);
  if (stat != ASN_OK) return stat;
  stat = MeasureString(ctxt, m->in, segTag, &m->j);
  return stat == ASN_OK ? ASN_OK : Fail(ctxt, stat);
}

// MeasureInput for a BIT STRING: a constructed form needs at least one
// segment, for the unused-bits octet (X.690 8.6.2). Sets m->bits.
int MeasureBits(ASN1CTXT* ctxt, ASN1TagType tagging, int length, Measured* m) {
  int stat = MeasureInput(ctxt, kBitSegment, kBitSegment, tagging, length, m);
  if (stat != ASN_OK) return stat;
  if (m->in.cons && !m->j.sawSegment) return Fail(ctxt, ASN_E_INVLEN);
  m->bits = static_cast<unsigned long long>(m->j.octets) * 8 - static_cast<unsigned>(m->j.unused);
  return ASN_OK;
}

// Copies the data octets measured by MeasureString to out and moves the cursor
// past the string.
void CopyString(ASN1CTXT* ctxt, const StringInput& in, ASN1TAG segTag, ASN1OCTET* out) {
  if (!in.cons) {
    const ASN1OCTET* src = ctxt->buffer.data + in.start;
    size_t n = static_cast<size_t>(in.length);
    if (segTag == kBitSegment) {
      ++src;
      --n;
    }
    if (out && n) std::memcpy(out, src, n);
    ctxt->buffer.byteIndex = in.start + static_cast<ASN1UINT>(in.length);
    return;
  }
  Joined again;
  // The same walk succeeded while measuring, so it cannot fail here.
  (void)JoinSegments(ctxt, segTag, in.length, 1, out, &again);
}

// Copies the measured data octets into a new heap block followed by pad
// zeroed bytes (a NUL for text) and moves the cursor past the string. *out is
// null for empty data without pad.
int CopyToHeap(ASN1CTXT* ctxt, const Measured& m, ASN1TAG segTag, size_t pad, ASN1OCTET** out) {
  *out = nullptr;
  const size_t n = m.j.octets;
  if (n > ASN1_MEMBLOCK_MAX - pad) return Fail(ctxt, ASN_E_NOMEM);
  if (n + pad) {
    *out = static_cast<ASN1OCTET*>(rtMemAlloc(ctxt, n + pad));
    if (!*out) return Fail(ctxt, ASN_E_NOMEM);
    if (pad) std::memset(*out + n, 0, pad);
  }
  CopyString(ctxt, m.in, segTag, *out);
  return ASN_OK;
}

// Decodes a string of octet segments into a new heap block (CopyToHeap).
int DecodeToHeap(ASN1CTXT* ctxt, ASN1TAG tag, ASN1TagType tagging, int length, size_t pad,
                 ASN1OCTET** out, Measured* m) {
  *out = nullptr;
  int stat = MeasureInput(ctxt, tag, kOctSegment, tagging, length, m);
  if (stat != ASN_OK) return stat;
  return CopyToHeap(ctxt, *m, kOctSegment, pad, out);
}

// A BMPString-like (16-bit) or UniversalString-like (32-bit) string: the
// contents are big-endian units of sizeof(Unit) octets, converted in place to
// host order in one heap array. Contents that are not whole units give -5.
template <typename Str>
int DecodeUnits(ASN1CTXT* ctxt, Str* str, ASN1TagType tagging, ASN1TAG tag, int length) {
  using Unit = typename std::remove_pointer<decltype(Str::data)>::type;
  constexpr size_t kWidth = sizeof(Unit);
  if (!str) return Fail(ctxt, ASN_E_BADVALUE);
  Measured m;
  int stat = MeasureInput(ctxt, tag, kOctSegment, tagging, length, &m);
  if (stat != ASN_OK) return stat;
  if (m.j.octets % kWidth) return Fail(ctxt, ASN_E_INVLEN);
  ASN1OCTET* bytes;
  stat = CopyToHeap(ctxt, m, kOctSegment, 0, &bytes);
  if (stat != ASN_OK) return stat;
  auto* chars = reinterpret_cast<Unit*>(bytes);
  // Unit i occupies octets [i * kWidth, (i + 1) * kWidth), all read before
  // chars[i] overwrites them.
  const size_t count = m.j.octets / kWidth;
  for (size_t i = 0; i < count; ++i) {
    Unit c = 0;
    for (size_t k = 0; k < kWidth; ++k) c = static_cast<Unit>((c << 8) | bytes[i * kWidth + k]);
    chars[i] = c;
  }
  str->nchars = static_cast<ASN1UINT>(count);
  str->data = chars;
  return ASN_OK;
}

}  // namespace

extern "C" {

int xd_octstr(ASN1CTXT* ctxt, const ASN1OCTET** data, ASN1UINT* numocts, ASN1TagType tagging,
              int length) {
  if (!data || !numocts) return Fail(ctxt, ASN_E_BADVALUE);
  ASN1OCTET* out;
  Measured m;
  int stat = DecodeToHeap(ctxt, kOctSegment, tagging, length, 0, &out, &m);
  if (stat != ASN_OK) return stat;
  *data = out;
  *numocts = static_cast<ASN1UINT>(m.j.octets);
  return ASN_OK;
}

int xd_octstr_s(ASN1CTXT* ctxt, ASN1OCTET* data, ASN1UINT* numocts, ASN1TagType tagging,
                int length) {
  if (!data || !numocts) return Fail(ctxt, ASN_E_BADVALUE);
  Measured m;
  int stat = MeasureInput(ctxt, kOctSegment, kOctSegment, tagging, length, &m);
  if (stat != ASN_OK) return stat;
  if (m.j.octets > *numocts) return Fail(ctxt, ASN_E_STROVFLW);
  CopyString(ctxt, m.in, kOctSegment, data);
  *numocts = static_cast<ASN1UINT>(m.j.octets);
  return ASN_OK;
}

int xd_bitstr(ASN1CTXT* ctxt, const ASN1OCTET** data, ASN1UINT* numbits, ASN1TagType tagging,
              int length) {
  if (!data || !numbits) return Fail(ctxt, ASN_E_BADVALUE);
  Measured m;
  int stat = MeasureBits(ctxt, tagging, length, &m);
  if (stat != ASN_OK) return stat;
  if (m.j.octets > 0x1FFFFFFFu) return Fail(ctxt, ASN_E_INVLEN);  // bit count beyond 32 bits
  ASN1OCTET* out;
  stat = CopyToHeap(ctxt, m, kBitSegment, 0, &out);
  if (stat != ASN_OK) return stat;
  *data = out;
  *numbits = static_cast<ASN1UINT>(m.bits);
  return ASN_OK;
}

int xd_bitstr_s(ASN1CTXT* ctxt, ASN1OCTET* data, ASN1UINT* numbits, ASN1TagType tagging,
                int length) {
  if (!data || !numbits) return Fail(ctxt, ASN_E_BADVALUE);
  Measured m;
  int stat = MeasureBits(ctxt, tagging, length, &m);
  if (stat != ASN_OK) return stat;
  if (m.bits > *numbits) return Fail(ctxt, ASN_E_STROVFLW);
  CopyString(ctxt, m.in, kBitSegment, data);
  *numbits = static_cast<ASN1UINT>(m.bits);
  return ASN_OK;
}

int xd_charstr(ASN1CTXT* ctxt, const char** text, ASN1TagType tagging, ASN1TAG tag, int length) {
  if (!text) return Fail(ctxt, ASN_E_BADVALUE);
  ASN1OCTET* out;
  Measured m;
  int stat = DecodeToHeap(ctxt, tag, tagging, length, 1, &out, &m);
  if (stat != ASN_OK) return stat;
  *text = reinterpret_cast<const char*>(out);
  return ASN_OK;
}

int xd_16BitCharStr(ASN1CTXT* ctxt, Asn116BitCharString* str, ASN1TagType tagging, ASN1TAG tag,
                    int length) {
  return DecodeUnits(ctxt, str, tagging, tag, length);
}

int xd_32BitCharStr(ASN1CTXT* ctxt, Asn132BitCharString* str, ASN1TagType tagging, ASN1TAG tag,
                    int length) {
  return DecodeUnits(ctxt, str, tagging, tag, length);
}

int xd_consStrIndefLenAndSize(ASN1CTXT* ctxt, ASN1TAG segmentTag, int* encLength, int* size) {
  ASN1TAG segTag = (segmentTag & ~TM_CONS) == kBitSegment ? kBitSegment : kOctSegment;
  ASN1UINT start = ctxt->buffer.byteIndex;
  Joined j;
  int stat = JoinSegments(ctxt, segTag, ASN_K_INDEFLEN, 1, nullptr, &j);
  ASN1UINT end = ctxt->buffer.byteIndex;
  ctxt->buffer.byteIndex = start;
  if (stat != ASN_OK) return Fail(ctxt, stat);
  if (encLength) *encLength = static_cast<int>(end - start);
  if (size) *size = static_cast<int>(j.octets);
  return ASN_OK;
}

}  // extern "C"
