// asn1_reader.cpp: Asn1Reader over the runtime's xd_ functions.
#include "asn1_reader.h"

#include <new>

namespace adestool {

Asn1Reader::Asn1Reader(const uint8_t* data, size_t size) : data_(data), size_(size) {
  if (rtInitContext(&ctxt_, nullptr) != ASN_OK) throw std::bad_alloc();
  // The runtime never writes through the decode buffer.
  rtInitContextBuffer(&ctxt_, const_cast<ASN1OCTET*>(data), static_cast<ASN1UINT>(size));
  rtCtxtSetFlag(&ctxt_, ASN1NOLENCHECK);
}

Asn1Reader::~Asn1Reader() { rtFreeContext(&ctxt_); }

void Asn1Reader::Position(size_t offset, size_t limit) {
  ctxt_.buffer.byteIndex = static_cast<ASN1UINT>(offset);
  ctxt_.buffer.size = static_cast<ASN1UINT>(limit);
  ctxt_.flags = static_cast<ASN1USINT>(ctxt_.flags & ~(ASN1INDEFLEN | ASN1LASTEOC));
  rtErrReset(&ctxt_.errInfo);
}

int Asn1Reader::ReadHeader(size_t offset, size_t limit, Asn1Header* header) {
  Position(offset, limit);
  ASN1TAG tag = 0;
  int length = 0;
  int stat = xd_tag_len(&ctxt_, &tag, &length, XM_ADVANCE);
  if (stat != ASN_OK) return stat;
  header->tag = tag;
  header->headerLength = ctxt_.buffer.byteIndex - offset;
  // The runtime reads the four-octet length FF FF D8 F1 as its indefinite
  // marker -9999; only the single octet 0x80 is indefinite (X.690 8.1.3.6).
  if (length == ASN_K_INDEFLEN && data_[ctxt_.buffer.byteIndex - 1] != 0x80) {
    return ASN_E_INVLEN;
  }
  header->indefinite = length == ASN_K_INDEFLEN;
  header->length = header->indefinite ? 0 : static_cast<size_t>(length);
  return ASN_OK;
}

int Asn1Reader::Boolean(size_t offset, size_t length, bool* value) {
  Position(offset, offset + length);
  ASN1BOOL b = 0;
  int stat = xd_boolean(&ctxt_, &b, ASN1IMPL, static_cast<int>(length));
  if (stat == ASN_OK) *value = b != 0;
  return stat;
}

int Asn1Reader::Int64(size_t offset, size_t length, long long* value) {
  Position(offset, offset + length);
  ASN1INT64 v = 0;
  int stat = xd_int64(&ctxt_, &v, ASN1IMPL, static_cast<int>(length));
  if (stat == ASN_OK) *value = v;
  return stat;
}

int Asn1Reader::BigInteger(size_t offset, size_t length, std::string* text) {
  Position(offset, offset + length);
  const char* out = nullptr;
  int stat = xd_bigint(&ctxt_, &out, ASN1IMPL, static_cast<int>(length));
  if (stat == ASN_OK && out) {
    *text = out;
    rtMemFreePtr(&ctxt_, out);
  }
  return stat;
}

int Asn1Reader::ObjectId(size_t offset, size_t length, ASN1OBJID* oid) {
  Position(offset, offset + length);
  return xd_objid(&ctxt_, oid, ASN1IMPL, static_cast<int>(length));
}

int Asn1Reader::Bmp(size_t offset, size_t length, std::u32string* text) {
  Position(offset, offset + length);
  Asn116BitCharString s{0, nullptr};
  int stat =
      xd_16BitCharStr(&ctxt_, &s, ASN1IMPL, TM_UNIV | ASN_ID_BMPString, static_cast<int>(length));
  if (stat == ASN_OK) {
    text->assign(s.data, s.data + s.nchars);
    if (s.data) rtMemFreePtr(&ctxt_, s.data);
  }
  return stat;
}

int Asn1Reader::Universal(size_t offset, size_t length, std::u32string* text) {
  Position(offset, offset + length);
  Asn132BitCharString s{0, nullptr};
  int stat = xd_32BitCharStr(&ctxt_, &s, ASN1IMPL, TM_UNIV | ASN_ID_UniversalString,
                             static_cast<int>(length));
  if (stat == ASN_OK) {
    text->assign(s.data, s.data + s.nchars);
    if (s.data) rtMemFreePtr(&ctxt_, s.data);
  }
  return stat;
}

std::string DescribeHeaderFailure(const uint8_t* data, size_t offset, size_t limit, int status) {
  if (status == ASN_E_BADTAG) return "tag number too large";
  if (status != ASN_E_INVLEN) return "incomplete header";
  // -5 comes after a complete tag: look at the length octets to say why.
  size_t i = offset;
  const uint8_t first = data[i++];
  if ((first & 0x1F) == 0x1F) {
    while (i < limit && (data[i] & 0x80)) ++i;
    ++i;
  }
  if (i >= limit) return "invalid length";
  const uint8_t l = data[i];
  if (l == 0x80) return "indefinite length on a primitive element";
  if (l == 0xFF) return "reserved length octet 0xFF";
  if ((l & 0x7F) > 4) return "length field of " + std::to_string(l & 0x7F) + " octets";
  return "length above 2^31-1";
}

}  // namespace adestool
