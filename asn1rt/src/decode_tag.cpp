// decode_tag.cpp: identifier and length octets (X.690 8.1.2, 8.1.3), buffer
// installation and tag matching.
//
// Every read is checked against the buffer size, also in indefinite-message
// mode: the size is then the measured extent of the outermost element.
#include "decode_intern.h"

using korvex_rt::Fail;

namespace {

// Parses the identifier octets at d[*i] (X.690 8.1.2) and advances *i. A high
// tag number is base-128 groups, most significant first, at most five of
// them. Not recorded: -2 when the octets run past size, -21 for a number above
// 0x1FFFFFFF or a sixth group, -3 for a high-number form that is not minimal:
// a number below 31, which takes the one-octet form (8.1.2.2, 8.1.2.3), or a
// first group of 0x80, i.e. a leading zero group (8.1.2.4.2 c). Both rules
// hold for BER as well as DER.
inline int ParseTag(const ASN1OCTET* d, ASN1UINT* i, ASN1UINT size, ASN1TAG* tag) {
  ASN1UINT at = *i;
  if (at >= size) return ASN_E_ENDOFBUF;
  ASN1OCTET b = d[at++];
  ASN1UINT number = b & 0x1F;
  if (number == 0x1F) {
    if (at >= size) return ASN_E_ENDOFBUF;
    const ASN1OCTET firstGroup = d[at];
    unsigned long long v = 0;
    int groups = 0;
    ASN1OCTET c;
    do {
      if (at >= size) return ASN_E_ENDOFBUF;
      if (++groups > 5) return ASN_E_BADTAG;
      c = d[at++];
      v = (v << 7) | (c & 0x7F);
    } while (c & 0x80);
    if (v > ASN1_MAX_TAG_NUMBER) return ASN_E_BADTAG;
    if (v < 31 || firstGroup == 0x80) return ASN_E_IDNOTFOU;
    number = static_cast<ASN1UINT>(v);
  }
  *tag = (static_cast<ASN1TAG>(b & 0xE0) << 24) | number;
  *i = at;
  return ASN_OK;
}

// Parses the length octets at the cursor position *i (X.690 8.1.3) and
// advances *i. -9999 is an indefinite length. Not recorded: -2 when the
// octets run past the data, -5 for more than four length octets (the reserved
// 0xFF included, 8.1.3.5 c), a value above 0x7FFFFFFF or, unless
// ASN1NOLENCHECK, a definite length longer than the bytes after it.
inline int ParseLength(const ASN1CTXT* ctxt, ASN1UINT* i, int* length) {
  const ASN1OCTET* d = ctxt->buffer.data;
  const ASN1UINT size = ctxt->buffer.size;
  ASN1UINT at = *i;
  if (at >= size) return ASN_E_ENDOFBUF;
  ASN1OCTET l = d[at++];
  int len;
  if (l < 0x80) {
    len = l;
  } else if (l == 0x80) {
    len = ASN_K_INDEFLEN;
  } else {
    int n = l & 0x7F;
    if (n > 4) return ASN_E_INVLEN;
    ASN1UINT v = 0;
    for (int k = 0; k < n; ++k) {
      if (at >= size) return ASN_E_ENDOFBUF;
      v = (v << 8) | d[at++];
    }
    len = static_cast<int>(v);
    // Four octets that read as -9999 mean an indefinite length; any other
    // value above 0x7FFFFFFF is invalid.
    if (len < 0 && len != ASN_K_INDEFLEN) return ASN_E_INVLEN;
  }
  if (len != ASN_K_INDEFLEN && !(ctxt->flags & ASN1NOLENCHECK) &&
      static_cast<ASN1UINT>(len) > size - at) {
    return ASN_E_INVLEN;
  }
  *length = len;
  *i = at;
  return ASN_OK;
}

}  // namespace

namespace korvex_rt {

int ReadTagLen(ASN1CTXT* ctxt, ASN1TAG* tag, int* length, bool* cons) {
  ASN1UINT i = ctxt->buffer.byteIndex;
  ASN1TAG t;
  int stat = ParseTag(ctxt->buffer.data, &i, ctxt->buffer.size, &t);
  if (stat != ASN_OK) return stat;
  int len;
  stat = ParseLength(ctxt, &i, &len);
  if (stat != ASN_OK) return stat;
  const bool constructed = (t & TM_CONS) != 0;
  if (len == ASN_K_INDEFLEN && !constructed) return ASN_E_INVLEN;  // X.690 8.1.3.2 a
  *tag = t;
  *length = len;
  *cons = constructed;
  ctxt->buffer.byteIndex = i;
  return ASN_OK;
}

}  // namespace korvex_rt

namespace {

inline void SetConsFlag(ASN1CTXT* ctxt, bool cons) {
  if (cons) {
    ctxt->flags |= ASN1CONSTAG;
  } else {
    ctxt->flags = static_cast<ASN1USINT>(ctxt->flags & ~ASN1CONSTAG);
  }
}

// Ends a successful tag-and-length read that started at the saved state:
// with XM_ADVANCE the cursor stays after them and ASN1CONSTAG follows the
// constructed bit; without it the cursor goes back to the start (a peek).
inline void AdvanceOrPeek(ASN1CTXT* ctxt, bool cons, ASN1OCTET flags) {
  if (flags & XM_ADVANCE) {
    SetConsFlag(ctxt, cons);
  } else {
    ctxt->buffer.byteIndex = ctxt->savedInfo.byteIndex;
  }
}

inline bool AtMessageEnd(const ASN1CTXT* ctxt) {
  return (ctxt->flags & (ASN1INDEFLEN | ASN1LASTEOC)) == (ASN1INDEFLEN | ASN1LASTEOC);
}

// Steps over the element at the cursor the way a tag search does: the contents
// of a primitive element are skipped, a constructed element is entered.
int StepOver(ASN1CTXT* ctxt) {
  ASN1TAG tag;
  int len;
  bool cons;
  int stat = korvex_rt::ReadTagLen(ctxt, &tag, &len, &cons);
  if (stat != ASN_OK) return stat;
  if (!cons) {
    if (static_cast<ASN1UINT>(len) > korvex_rt::Remaining(ctxt)) return ASN_E_ENDOFBUF;
    ctxt->buffer.byteIndex += static_cast<ASN1UINT>(len);
  }
  return ASN_OK;
}

// Reads a one-octet tag (compared with expected unless matchAny) and a length.
int ReadTag1(ASN1CTXT* ctxt, int expected, bool matchAny, int* length) {
  xu_SaveBufferState(ctxt, nullptr);
  if (AtMessageEnd(ctxt)) return Fail(ctxt, ASN_E_ENDOFBUF);
  ASN1UINT start = ctxt->buffer.byteIndex;
  if (start >= ctxt->buffer.size) return Fail(ctxt, ASN_E_ENDOFBUF);
  ASN1OCTET b = ctxt->buffer.data[start];
  if (!matchAny && ((b ^ expected) & ~0x20)) return Fail(ctxt, ASN_E_IDNOTFOU);
  const ASN1OCTET* d = ctxt->buffer.data;
  const ASN1UINT size = ctxt->buffer.size;
  ASN1UINT i = start + 1;
  // Low tag number and short definite length: the hot path of every decoder.
  if ((b & 0x1F) != 0x1F && i < size && d[i] < 0x80) {
    ASN1UINT len = d[i];
    if ((ctxt->flags & ASN1NOLENCHECK) || len <= size - i - 1) {
      ctxt->buffer.byteIndex = i + 1;
      SetConsFlag(ctxt, (b & 0x20) != 0);
      if (length) *length = static_cast<int>(len);
      return ASN_OK;
    }
  }
  ASN1TAG tag;
  int len;
  bool cons;
  int stat = korvex_rt::ReadTagLen(ctxt, &tag, &len, &cons);
  if (stat != ASN_OK) return Fail(ctxt, stat);
  SetConsFlag(ctxt, cons);
  if (length) *length = len;
  return ASN_OK;
}

}  // namespace

namespace korvex_rt {

int ExplicitHeader(ASN1CTXT* ctxt, ASN1OCTET tagOctet, int* length) {
  return ReadTag1(ctxt, tagOctet, false, length);
}

}  // namespace korvex_rt

extern "C" {

int xd_tag(ASN1CTXT* ctxt, ASN1TAG* tag) {
  ASN1UINT i = ctxt->buffer.byteIndex;
  ASN1TAG t;
  int stat = ParseTag(ctxt->buffer.data, &i, ctxt->buffer.size, &t);
  if (stat != ASN_OK) return Fail(ctxt, stat);
  if (tag) *tag = t;
  ctxt->buffer.byteIndex = i;
  return ASN_OK;
}

int xd_len(ASN1CTXT* ctxt, int* length) {
  ASN1UINT i = ctxt->buffer.byteIndex;
  int len;
  int stat = ParseLength(ctxt, &i, &len);
  if (stat != ASN_OK) return Fail(ctxt, stat);
  if (length) *length = len;
  ctxt->buffer.byteIndex = i;
  return ASN_OK;
}

int xd_tag_len(ASN1CTXT* ctxt, ASN1TAG* tag, int* length, ASN1OCTET flags) {
  xu_SaveBufferState(ctxt, nullptr);
  if (AtMessageEnd(ctxt) || ctxt->buffer.byteIndex >= ctxt->buffer.size) {
    return Fail(ctxt, ASN_E_ENDOFBUF);
  }
  ASN1TAG t;
  int len;
  bool cons;
  int stat = korvex_rt::ReadTagLen(ctxt, &t, &len, &cons);
  if (stat != ASN_OK) return Fail(ctxt, stat);
  if (tag) *tag = t;
  if (length) *length = len;
  AdvanceOrPeek(ctxt, cons, flags);
  return ASN_OK;
}

int xd_match(ASN1CTXT* ctxt, ASN1TAG tag, int* length, ASN1OCTET flags) {
  // A failed match leaves cursor and flags exactly as they were.
  const ASN1UINT entryIndex = ctxt->buffer.byteIndex;
  const ASN1USINT entryFlags = ctxt->flags;
  auto failAt = [&](int stat) {
    ctxt->buffer.byteIndex = entryIndex;
    ctxt->flags = entryFlags;
    return Fail(ctxt, stat);
  };
  if (flags & XM_SKIP) {
    int stat = StepOver(ctxt);
    if (stat != ASN_OK) return failAt(stat);
  }
  const bool search = (flags & XM_SEARCH) != 0;
  for (;;) {
    xu_SaveBufferState(ctxt, nullptr);
    ASN1TAG t;
    int len;
    bool cons;
    int stat = AtMessageEnd(ctxt) ? ASN_E_ENDOFBUF : korvex_rt::ReadTagLen(ctxt, &t, &len, &cons);
    if (stat != ASN_OK) return failAt(search && stat == ASN_E_ENDOFBUF ? ASN_E_IDNOTFOU : stat);
    if (((t ^ tag) & ~TM_CONS) == 0) {
      if (length) *length = len;
      AdvanceOrPeek(ctxt, cons, flags);
      return ASN_OK;
    }
    if (!search) return failAt(ASN_E_IDNOTFOU);
    // Searching: skip a primitive element's contents, enter a constructed one.
    if (!cons) {
      if (static_cast<ASN1UINT>(len) > korvex_rt::Remaining(ctxt)) {
        return failAt(ASN_E_IDNOTFOU);
      }
      ctxt->buffer.byteIndex += static_cast<ASN1UINT>(len);
    }
  }
}

int xd_match1(ASN1CTXT* ctxt, ASN1OCTET tagOctet, int* length) {
  return ReadTag1(ctxt, tagOctet, false, length);
}

int xd_Tag1AndLen(ASN1CTXT* ctxt, int* length) { return ReadTag1(ctxt, 0, true, length); }

int xd_setp(ASN1CTXT* ctxt, const ASN1OCTET* buffer, int size, ASN1TAG* tag, int* length) {
  if (!ctxt) return ASN_E_INVPARAM;
  if (!buffer) return Fail(ctxt, ASN_E_INVPARAM);
  const bool sizeGiven = size >= 1;
  ASN1UINT bufSize = sizeGiven ? static_cast<ASN1UINT>(size) : 0x7FFFFFFFu;
  int stat = rtInitContextBuffer(ctxt, const_cast<ASN1OCTET*>(buffer), bufSize);
  if (stat != ASN_OK) return stat;
  ctxt->flags = static_cast<ASN1USINT>(ctxt->flags & ~(ASN1LASTEOC | ASN1INDEFLEN));
  // The common DER form, read in place: a one-octet tag and a definite length
  // of up to four octets whose element fits in the size given. Every other
  // form, and every error, takes the general path below.
  if (sizeGiven && bufSize >= 2 && (buffer[0] & 0x1F) != 0x1F && buffer[1] != 0x80) {
    unsigned long long contents = buffer[1];
    ASN1UINT header = 2;
    if (contents > 0x80) {
      const ASN1UINT octets = static_cast<ASN1UINT>(contents & 0x7F);
      header = octets <= 4 && bufSize >= 2 + octets ? 2 + octets : 0;
      contents = 0;
      for (ASN1UINT i = 2; i < header; ++i) contents = (contents << 8) | buffer[i];
    }
    const unsigned long long total = header + contents;
    if (header && contents <= 0x7FFFFFFFull && total <= bufSize) {
      ctxt->buffer.size = static_cast<ASN1UINT>(total);
      if (tag) *tag = (static_cast<ASN1TAG>(buffer[0] & 0xE0) << 24) | (buffer[0] & 0x1Fu);
      if (length) *length = static_cast<int>(total);
      return ASN_OK;
    }
  }
  ASN1TAG t;
  int len;
  bool cons;
  // The element's length is checked against the size below, with -5.
  ASN1USINT savedFlags = ctxt->flags;
  ctxt->flags |= ASN1NOLENCHECK;
  stat = korvex_rt::ReadTagLen(ctxt, &t, &len, &cons);
  ctxt->flags = savedFlags;
  if (stat != ASN_OK) return Fail(ctxt, stat);
  ASN1UINT header = ctxt->buffer.byteIndex;
  if (len == ASN_K_INDEFLEN) {
    ctxt->flags |= ASN1INDEFLEN;
    // Measure the message once, so that every later read is bounded by its
    // real end and the end of the message is known (ASN1LASTEOC).
    stat = korvex_rt::SkipToEOC(ctxt);
    if (stat != ASN_OK) {
      if (stat == ASN_E_ENDOFBUF && sizeGiven) stat = ASN_E_INVLEN;
      ctxt->buffer.byteIndex = 0;
      return Fail(ctxt, stat);
    }
    ctxt->buffer.size = ctxt->buffer.byteIndex;
    len = ASN_K_INDEFLEN;
  } else {
    unsigned long long total = static_cast<unsigned long long>(header) + static_cast<ASN1UINT>(len);
    if (total > bufSize) {
      ctxt->buffer.byteIndex = 0;
      return Fail(ctxt, ASN_E_INVLEN);
    }
    ctxt->buffer.size = static_cast<ASN1UINT>(total);
    len = static_cast<int>(total);
  }
  ctxt->buffer.byteIndex = 0;
  if (tag) *tag = t;
  if (length) *length = len;
  return ASN_OK;
}

}  // extern "C"
