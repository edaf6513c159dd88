// ValueSupport.h (internal): small helpers shared by the attribute, extension
// and management-protocol value classes.
#ifndef KORVEX_ASN1TYPES_SRC_VALUESUPPORT_H
#define KORVEX_ASN1TYPES_SRC_VALUESUPPORT_H

#include <korvex/asn1rt/asn1type.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/Traits.h>
#include <korvex/core/Blob.h>
#include <korvex/core/DateTime.h>
#include <korvex/core/StringProxy.h>

#include <cstddef>
#include <memory>
#include <string>

namespace Korvex {
namespace ASN1 {
namespace detail {

// requireText: text itself, or 0x80070057 for null.
inline char const* requireText(char const* text) {
  if (!text) throwInvalidArgument();
  return text;
}

// oidText: the dotted text of an OID record (0x80070057 when it cannot be
// printed).
inline std::string oidText(ASN1OBJID const& oid) {
  CStringProxy text(nullptr);
  ASN1TObjId_traits::get(oid, text);
  return text.c_str();
}

// elementLength: the length of the one BER element at the start of data
// (tag, length and contents; an indefinite length measured up to its
// end-of-contents octets, nesting limited to 64 levels), or 0 when the bytes
// do not start with a complete element.
std::size_t elementLength(unsigned char const* data, std::size_t size);

// requireOneElement: throws 0x80093101 unless der is exactly one complete BER
// element (an open-type value must be, X.690 8.1.1: the encoder would
// otherwise write a part of it, or nothing).
void requireOneElement(CBlob const& der);

// readGeneralizedTime: the CDateTime of GeneralizedTime text from a decoded
// record. Text the parser refuses is a decoding failure of the value
// (0x80093101), not a parser error code.
CDateTime readGeneralizedTime(char const* text);

// decodeWhole: asn1Decode of a blob that must be exactly one element: bytes
// after it are refused (0x80093101) rather than ignored.
template <class Traits, class Value>
void decodeWhole(CBlob const& der, Value& v) {
  requireOneElement(der);
  asn1Decode<Traits>(der, v);
}

// assignImpl: the copy assignment of a value class: a deep copy of *source
// replaces *impl only once it is complete, so a copy that throws changes
// nothing. Assigning a value to itself does nothing.
template <class Impl>
void assignImpl(Impl*& impl, Impl const* source) {
  if (impl == source) return;
  Impl* fresh = new Impl(*source);
  delete impl;
  impl = fresh;
}

// sameOptional: the equality rule of optional parts: both absent, or both
// present and equal.
template <class T>
bool sameOptional(T const* a, T const* b) {
  if (!a || !b) return !a && !b;
  return *a == *b;
}
template <class T>
bool sameOptional(std::unique_ptr<T> const& a, std::unique_ptr<T> const& b) {
  return sameOptional<T>(a.get(), b.get());
}

}  // namespace detail
}  // namespace ASN1
}  // namespace Korvex

#endif
