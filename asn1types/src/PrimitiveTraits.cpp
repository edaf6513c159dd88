// PrimitiveTraits.cpp: traits of the runtime's primitive records.
#include <korvex/asn1rt/asn1ber.h>
#include <korvex/asn1rt/rtUTF8.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/asn1types/GeneralizedTimeText.h>
#include <korvex/asn1types/PrimitiveTraits.h>
#include <korvex/asn1types/Util.h>

#include <cstring>
#include <vector>

namespace Korvex {
namespace ASN1 {

namespace {

void* HeapAlloc(ASN1CTXT* ctxt, size_t n) {
  if (!ctxt) throwInvalidArgument();
  return checkHeap(rtMemHeapAlloc(&ctxt->pTypeMemHeap, n));
}

// A heap copy of n bytes (n may be 0: a valid, empty block).
ASN1OCTET const* HeapBytes(ASN1CTXT* ctxt, void const* bytes, size_t n) {
  auto* out = static_cast<ASN1OCTET*>(HeapAlloc(ctxt, n));
  if (n) std::memcpy(out, bytes, n);
  return out;
}

// A heap copy of NUL-terminated text.
char const* HeapText(ASN1CTXT* ctxt, char const* text) {
  return reinterpret_cast<char const*>(HeapBytes(ctxt, text, std::strlen(text) + 1));
}

// The 32-bit count of a blob that a record stores; a blob too long for the
// heap fails like a failed allocation.
ASN1UINT RecordCount(CBlob const& blob) {
  if (blob.cbData() > ASN1_MEMBLOCK_MAX) throwHeapError();
  return static_cast<ASN1UINT>(blob.cbData());
}

// The bytes a record points to, into a blob; a record that claims bytes it
// does not have is a broken encoding.
void AssignBytes(CBlob& out, ASN1OCTET const* data, ASN1UINT n) {
  if (!data && n) throwCodecError();
  out.assign(data, n);
}

// The records that hold bytes as (data, numocts): OCTET STRING, open type and
// Asn1Object. SetOctets puts a heap copy of the blob in the record.
template <class Record>
void SetOctets(ASN1CTXT* ctxt, Record& rec, CBlob const& bytes) {
  ASN1UINT n = RecordCount(bytes);
  rec.data = HeapBytes(ctxt, bytes.pbData(), n);
  rec.numocts = n;
}

// CopyOctets gives dst a heap copy of src's bytes; false (nothing done) when
// they are the same record.
template <class Record>
bool CopyOctets(ASN1CTXT* ctxt, Record const& src, Record& dst) {
  if (&src == &dst) return false;
  if (!src.data && src.numocts) throwCodecError();
  dst.data = HeapBytes(ctxt, src.data, src.numocts);
  dst.numocts = src.numocts;
  return true;
}

}  // namespace

// ---- OBJECT IDENTIFIER -----------------------------------------------------

void ASN1TObjId_traits::set(ASN1CTXT*, ASN1OBJID& rec, char const* oid) {
  if (str2oid(oid, &rec) != 0) throwInvalidArgument();
}

void ASN1TObjId_traits::get(ASN1OBJID const& rec, CStringProxy& oid) {
  CBlob text;
  if (oid2str(text, &rec) == 0) throwInvalidArgument();
  oid = CStringProxy(reinterpret_cast<char const*>(text.pbData()));
}

void ASN1TObjId_traits::copy(ASN1CTXT*, ASN1OBJID const& src, ASN1OBJID& dst) { dst = src; }

// ---- IA5String ----------------------------------------------------------------

void ASN1IA5String_traits::set(ASN1CTXT* ctxt, char const*& rec, char const* text) {
  if (!text) throwInvalidArgument();
  rec = HeapText(ctxt, text);
}

void ASN1IA5String_traits::get(char const* const& rec, CStringProxy& text) {
  text = CStringProxy(rec);
}

void ASN1IA5String_traits::copy(ASN1CTXT* ctxt, char const* const& src, char const*& dst) {
  if (!src) {
    dst = nullptr;
    return;
  }
  // The copy is made and kept in the heap, but dst takes the source pointer:
  // the established behaviour of this traits class (see the header).
  HeapText(ctxt, src);
  dst = src;
}

// ---- UTF8String ------------------------------------------------------------------

void ASN1UTF8String_traits::set(ASN1CTXT* ctxt, char const*& rec, wchar_t const* text) {
  if (!text) throwInvalidArgument();
  int n = rtWCSToUTF8(text, nullptr, 0);
  if (n < 0) throwCodecError();
  auto* out = static_cast<char*>(HeapAlloc(ctxt, static_cast<size_t>(n) + 1));
  if (rtWCSToUTF8(text, out, static_cast<size_t>(n) + 1) != n) throwCodecError();
  rec = out;
}

void ASN1UTF8String_traits::get(char const* const& rec, CWStringProxy& text) {
  if (!rec) {
    text = CWStringProxy(L"");
    return;
  }
  int n = rtUTF8ToWCS(rec, nullptr, 0);
  if (n < 0) throwCodecError();
  std::vector<wchar_t> wide(static_cast<size_t>(n) + 1);
  if (rtUTF8ToWCS(rec, wide.data(), wide.size()) != n) throwCodecError();
  text = CWStringProxy(wide.data());
}

void ASN1UTF8String_traits::copy(ASN1CTXT* ctxt, char const* const& src, char const*& dst) {
  dst = src ? HeapText(ctxt, src) : nullptr;
}

// ---- OCTET STRING -------------------------------------------------------------------

void ASN1TDynOctStr_traits::set(ASN1CTXT* ctxt, ASN1DynOctStr& rec, CBlob const& bytes) {
  SetOctets(ctxt, rec, bytes);
}

void ASN1TDynOctStr_traits::get(ASN1DynOctStr const& rec, CBlob& bytes) {
  AssignBytes(bytes, rec.data, rec.numocts);
}

void ASN1TDynOctStr_traits::copy(ASN1CTXT* ctxt, ASN1DynOctStr const& src, ASN1DynOctStr& dst) {
  CopyOctets(ctxt, src, dst);
}

// ---- BIT STRING -------------------------------------------------------------------------

void ASN1TDynBitStr_traits::set(ASN1CTXT* ctxt, ASN1DynBitStr& rec, CBlob const& bytes) {
  if (bytes.cbData() >= 0x20000000ul) throwInvalidArgument();  // 8 bits per byte in 32 bits
  ASN1UINT n = static_cast<ASN1UINT>(bytes.cbData());
  rec.data = HeapBytes(ctxt, bytes.pbData(), n);
  rec.numbits = n * 8;
}

void ASN1TDynBitStr_traits::get(ASN1DynBitStr const& rec, CBlob& bytes) {
  AssignBytes(bytes, rec.data, rec.numbits / 8 + (rec.numbits % 8 ? 1 : 0));
}

void ASN1TDynBitStr_traits::copy(ASN1CTXT* ctxt, ASN1DynBitStr const& src, ASN1DynBitStr& dst) {
  if (&src == &dst) return;
  ASN1UINT n = src.numbits / 8 + (src.numbits % 8 ? 1 : 0);
  if (!src.data && n) throwCodecError();
  dst.data = HeapBytes(ctxt, src.data, n);
  dst.numbits = src.numbits;
}

// ---- Open types ----------------------------------------------------------------------

void ASN1TOpenType_traits::set(ASN1CTXT* ctxt, ASN1OpenType& rec, CBlob const& der) {
  SetOctets(ctxt, rec, der);
}

void ASN1TOpenType_traits::get(ASN1OpenType const& rec, CBlob& der) {
  AssignBytes(der, rec.data, rec.numocts);
}

void ASN1TOpenType_traits::copy(ASN1CTXT* ctxt, ASN1OpenType const& src, ASN1OpenType& dst) {
  CopyOctets(ctxt, src, dst);
}

void Asn1TObject_traits::set(ASN1CTXT* ctxt, Asn1Object& rec, CBlob const& der) {
  SetOctets(ctxt, rec, der);
  rec.decoded = nullptr;
}

void Asn1TObject_traits::get(Asn1Object const& rec, CBlob& der) {
  AssignBytes(der, rec.data, rec.numocts);
}

void Asn1TObject_traits::copy(ASN1CTXT* ctxt, Asn1Object const& src, Asn1Object& dst) {
  // The decoded value belongs to the information object of the key, which only
  // the generated copy of the enclosing record knows.
  if (CopyOctets(ctxt, src, dst)) dst.decoded = nullptr;
}

// ---- GeneralizedTime -------------------------------------------------------------------

void ASN1GeneralizedTime_traits::set(ASN1CTXT* ctxt, char const*& rec, CDateTime const& time) {
  rec = DateToASN1GeneralizedTime(ctxt, time, true);
}

void ASN1GeneralizedTime_traits::get(char const* const& rec, CDateTime& time) {
  if (!rec) throwCodecError();
  time = CDateTime(rec);
}

void ASN1GeneralizedTime_traits::copy(ASN1CTXT* ctxt, char const* const& src, char const*& dst) {
  if (!src) {
    dst = nullptr;
    return;
  }
  dst = DateToASN1GeneralizedTime(ctxt, CDateTime(src), true);
}

int ASN1GeneralizedTime_traits::encode(ASN1BEREncodeBuffer& buffer, char const*& rec) {
  return xe_charstr(buffer.getCtxtPtr(), rec, ASN1EXPL, TM_UNIV | ASN_ID_GeneralTime);
}

int ASN1GeneralizedTime_traits::decode(ASN1BERDecodeBuffer& buffer, char const*& rec) {
  return xd_charstr(buffer.getCtxtPtr(), &rec, ASN1EXPL, TM_UNIV | ASN_ID_GeneralTime, 0);
}

// ---- INTEGER as big-integer text ------------------------------------------------------

void ASN1BigInteger_traits::set(ASN1CTXT* ctxt, char const*& rec, CBigInteger const& value) {
  rec = BigIntegerToASN1String(ctxt, value);
}

void ASN1BigInteger_traits::get(char const* const& rec, CBigInteger& value) {
  if (!rec) throwCodecError();
  StringToBigInteger(rec, value);
}

void ASN1BigInteger_traits::copy(ASN1CTXT* ctxt, char const* const& src, char const*& dst) {
  dst = src ? HeapText(ctxt, src) : nullptr;
}

}  // namespace ASN1
}  // namespace Korvex
