// Helpers of the value classes: measuring one BER element (X.690 8.1), to
// check the open-type values they carry as DER before these are written, and
// reading GeneralizedTime text.
#include "ValueSupport.h"

namespace Korvex {
namespace ASN1 {
namespace detail {

namespace {

constexpr int kMaxDepth = 64;

std::size_t measure(unsigned char const* data, std::size_t size, int depth) {
  if (depth > kMaxDepth || size < 2) return 0;
  // Tag octet 00 is end-of-contents, never an element (X.690 8.1.5).
  if (data[0] == 0) return 0;
  std::size_t pos = 1;
  bool const constructed = (data[0] & 0x20) != 0;
  if ((data[0] & 0x1F) == 0x1F) {
    // High tag number: base-128 octets, the last without the top bit
    // (X.690 8.1.2.4).
    while (pos < size && (data[pos] & 0x80)) ++pos;
    if (pos >= size) return 0;
    ++pos;
  }
  if (pos >= size) return 0;
  unsigned char const first = data[pos++];
  if (first == 0x80) {
    // Indefinite length (X.690 8.1.3.6): constructed only, contents up to
    // the end-of-contents octets 00 00.
    if (!constructed) return 0;
    while (true) {
      if (size - pos < 2) return 0;
      if (data[pos] == 0 && data[pos + 1] == 0) return pos + 2;
      std::size_t child = measure(data + pos, size - pos, depth + 1);
      if (child == 0) return 0;
      pos += child;
    }
  }
  std::size_t length = first;
  if (first & 0x80) {
    unsigned const count = first & 0x7F;
    if (count > sizeof(std::size_t) || count > size - pos) return 0;
    length = 0;
    for (unsigned i = 0; i < count; ++i) length = (length << 8) | data[pos++];
  }
  if (length > size - pos) return 0;
  return pos + length;
}

}  // namespace

std::size_t elementLength(unsigned char const* data, std::size_t size) {
  if (!data) return 0;
  return measure(data, size, 0);
}

void requireOneElement(CBlob const& der) {
  std::size_t const size = der.cbData();
  if (size == 0 || elementLength(der.pbData(), size) != size) throwCodecError();
}

CDateTime readGeneralizedTime(char const* text) {
  CDateTime time(0, 0);
  try {
    ASN1GeneralizedTime_traits::get(text, time);
  } catch (ATL::CAtlException const& e) {
    if (e.m_hr == kAsn1HeapError) throw;
    throwCodecError();
  }
  return time;
}

}  // namespace detail
}  // namespace ASN1
}  // namespace Korvex
