// OidText.cpp: object identifiers to and from dotted text.
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/Util.h>

#include <cctype>
#include <cstdlib>
#include <cstring>

namespace Korvex {
namespace ASN1 {

namespace {

bool IsSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

// Reads one arc at *pos with strtoul (base 10: leading white space and a sign
// are accepted). False when no digit was read. *pos moves past the number.
bool ReadArc(char const** pos, unsigned long* value) {
  char* end = nullptr;
  *value = std::strtoul(*pos, &end, 10);
  if (end == *pos) return false;
  *pos = end;
  return true;
}

// Stores an arc; false when the record is full (its 128 arcs cannot take more,
// and writing on would run past the array).
bool StoreArc(ASN1OBJID* oid, unsigned long value) {
  if (oid->numids >= ASN_K_MAXSUBIDS) return false;
  oid->subid[oid->numids++] = static_cast<ASN1UINT>(value);
  return true;
}

unsigned DecimalDigits(ASN1UINT v) {
  unsigned n = 1;
  while (v >= 10) {
    v /= 10;
    ++n;
  }
  return n;
}

}  // namespace

unsigned int str2oid(char const* text, ASN1OBJID* oid) {
  if (!text || !oid) return 1;
  oid->numids = 0;
  char const* pos = text;
  unsigned long value = 0;
  // Every arc that a dot still follows somewhere ahead. The dot found last is
  // remembered, so the text is scanned for dots once in all.
  char const* dotAhead = std::strchr(pos, '.');
  while (dotAhead != nullptr) {
    if (!ReadArc(&pos, &value) || !StoreArc(oid, value)) return 1;
    while (IsSpace(*pos)) ++pos;
    if (*pos != '.') return 1;  // the end of the text, or anything but a dot
    ++pos;
    if (dotAhead < pos) dotAhead = std::strchr(pos, '.');
  }
  // The last arc; 0xFFFFFFFF there is refused (the full value is compared).
  if (!ReadArc(&pos, &value) || value == 0xFFFFFFFFul || !StoreArc(oid, value)) return 1;
  while (IsSpace(*pos)) ++pos;
  return *pos == '\0' ? 0 : 1;
}

int oid2str(CBlob& out, ASN1OBJID const* oid) {
  if (!oid || oid->numids > ASN_K_MAXSUBIDS) return 0;
  size_t length = 1;  // the NUL
  for (ASN1UINT i = 0; i < oid->numids; ++i) length += DecimalDigits(oid->subid[i]) + (i ? 1 : 0);
  out.resize_to(static_cast<unsigned long>(length));
  char* p = reinterpret_cast<char*>(out.pbData());
  for (ASN1UINT i = 0; i < oid->numids; ++i) {
    if (i) *p++ = '.';
    ASN1UINT v = oid->subid[i];
    unsigned digits = DecimalDigits(v);
    for (unsigned d = digits; d > 0; --d) {
      p[d - 1] = static_cast<char>('0' + v % 10);
      v /= 10;
    }
    p += digits;
  }
  *p = '\0';
  return 1;
}

ASN1OBJID toASN1OBJID(char const* text) {
  ASN1OBJID oid;
  oid.numids = 0;
  if (str2oid(text, &oid) != 0) throwInvalidArgument();
  return oid;
}

CStringProxy toOID(ASN1OBJID const& oid) {
  CBlob text;
  if (oid2str(text, &oid) == 0) throwInvalidArgument();
  return CStringProxy(reinterpret_cast<char const*>(text.pbData()));
}

}  // namespace ASN1
}  // namespace Korvex
