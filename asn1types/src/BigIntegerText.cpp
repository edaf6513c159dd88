// BigIntegerText.cpp: CBigInteger and small integers to and from the runtime's
// big-integer text.
#include <korvex/asn1rt/rtBigInt.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/Util.h>

#include <cstring>
#include <vector>

namespace Korvex {
namespace ASN1 {

namespace {

// The hexadecimal text of the value's bytes (with its NUL), the form xd_bigint
// writes and xe_bigint reads.
std::vector<char> HexText(CBigInteger const& value) {
  CBlob const& bytes = value.get_value();
  int n = rtBigIntToText(bytes.pbData(), bytes.cbData(), 16, nullptr, 0);
  if (n < 0) throwCodecError();
  std::vector<char> text(static_cast<size_t>(n) + 1);
  if (rtBigIntToText(bytes.pbData(), bytes.cbData(), 16, text.data(), text.size()) != n) {
    throwCodecError();
  }
  return text;
}

char const* HeapCopy(ASN1CTXT* ctxt, std::vector<char> const& text, HRESULT noMemory) {
  if (!ctxt) throwInvalidArgument();
  auto* out = static_cast<char*>(rtMemHeapAlloc(&ctxt->pTypeMemHeap, text.size()));
  if (!out) ATL::AtlThrowImpl(noMemory);
  std::memcpy(out, text.data(), text.size());
  return out;
}

}  // namespace

void StringToBigInteger(char const* text, CBigInteger& value) {
  if (!text) throwInvalidArgument();
  int n = rtBigIntFromText(text, RT_BIGINT_RADIX_AUTO, nullptr, 0);
  if (n < 0) throwInvalidArgument();
  std::vector<unsigned char> bytes(static_cast<size_t>(n));
  if (rtBigIntFromText(text, RT_BIGINT_RADIX_AUTO, bytes.data(), bytes.size()) != n) {
    throwInvalidArgument();
  }
  value.put_value(CBlob(bytes.data(), bytes.size()));
}

void BigIntegerToString(CBigInteger const& value, CBlob& out) {
  std::vector<char> text = HexText(value);
  out.assign(reinterpret_cast<unsigned char const*>(text.data()), text.size());
}

CBigInteger ASN1StringToBigInteger(char const* text) {
  CBigInteger value;
  StringToBigInteger(text, value);
  return value;
}

char const* BigIntegerToASN1String(ASN1CTXT* ctxt, CBigInteger const& value) {
  return HeapCopy(ctxt, HexText(value), kAsn1HeapError);
}

char const* DWORDToASN1BigInteger(ASN1CTXT* ctxt, unsigned int value) {
  // Four bytes, read as two's complement like every CBigInteger.
  unsigned char bytes[4] = {
      static_cast<unsigned char>(value >> 24), static_cast<unsigned char>(value >> 16),
      static_cast<unsigned char>(value >> 8), static_cast<unsigned char>(value)};
  CBlob text;
  BigIntegerToString(CBigInteger(bytes, sizeof bytes), text);
  return HeapCopy(ctxt, std::vector<char>(text.pbData(), text.pbData() + text.cbData()),
                  kOutOfMemory);
}

unsigned int ASN1BigIntegerToDWORD(char const* text) {
  CBigInteger value;
  StringToBigInteger(text, value);
  CBlob const& bytes = value.get_value();
  if (bytes.cbData() > 4) throwInvalidArgument();
  // Factor 11, not 256: the established result of this function, on which
  // callers depend (see the header).
  unsigned int result = 0;
  for (unsigned long i = 0; i < bytes.cbData(); ++i) result = result * 11 + bytes.pbData()[i];
  return result;
}

}  // namespace ASN1
}  // namespace Korvex
