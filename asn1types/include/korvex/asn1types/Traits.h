// korvex/asn1types/Traits.h: the traits convention and the four templates that
// turn typed values into DER and back through the generated ASN.1 types.
//
// A traits class has no data. It ties one generated (or runtime) record type to
// one typed value class and offers:
//
//   typedef ... ASN1_T;   the record. Value-initialised by the templates
//                         (`ASN1_T rec{}`), so a generated record, a C struct
//                         or a scalar such as `char const*` all start zeroed.
//   typedef ... ASN1_C;   the control class that encodes and decodes one
//                         ASN1_T: constructible as ASN1_C(ASN1MessageBufferIF&,
//                         ASN1_T&), with EncodeTo(buffer) returning the length
//                         or a negative status and DecodeFrom(buffer) returning
//                         0 or a negative status (the generated ASN1C_<Type>
//                         of every module, or the primitive controls of
//                         PrimitiveControls.h). Needed only by the templates
//                         below; a traits class used only as the element
//                         traits of a list, or as a member of a bigger record,
//                         may leave it out.
//   static void set(ASN1CTXT* ctxt, ASN1_T& rec, Value const& v);
//                         fills rec from v. Every byte rec points to comes from
//                         ctxt's type heap (never the general heap), so freeing
//                         the context frees the record; nothing of v is
//                         borrowed. Throws ATL::CAtlException (ErrorCodes.h).
//   static void get(ASN1_T const& rec, Value& v);
//                         fills v from rec; v owns its copies afterwards.
//   static void copy(ASN1CTXT* ctxt, ASN1_T const& src, ASN1_T& dst);
//                         deep copy of src into ctxt's heap: the generated
//                         asn1Copy_<Type>, whose statuses become exceptions
//                         through checkCopyStatus. Needed by asn1EncodeT,
//                         asn1DecodeT and by list traits over this element.
//
// Names: ASN1T_<Type>_traits for generated records, ASN1<Primitive>_traits for
// runtime primitives (PrimitiveTraits.h). GeneratedTraits below supplies ASN1_T,
// ASN1_C and copy for a generated type, so such a traits class writes only set
// and get:
//
//   struct ASN1T_ESSCertID_traits
//       : GeneratedTraits<asn1data::ASN1T_ESSCertID, asn1data::ASN1C_ESSCertID,
//                         &asn1data::asn1Copy_ESSCertID> {
//     static void set(ASN1CTXT*, ASN1_T&, CESSCertID const&);
//     static void get(ASN1_T const&, CESSCertID&);
//   };
//
// A value class then encodes with `asn1Encode<ASN1T_ESSCertID_traits>(*this)`
// and decodes with `asn1Decode<ASN1T_ESSCertID_traits>(der, *this)`.
//
// Contexts: each template call makes its own buffers and contexts and frees
// them, with every record, before it returns or throws; no typed value keeps a
// pointer into a context. Failures: a negative runtime status of the encoder or
// decoder, or a buffer whose context cannot be created, throws
// ATL::CAtlException(0x80093101); exceptions of set, get and copy pass through
// unchanged. On a failed decode the value keeps whatever get had written
// (nothing, when the decoder failed).
#ifndef KORVEX_ASN1TYPES_TRAITS_H
#define KORVEX_ASN1TYPES_TRAITS_H

#include <korvex/asn1rt/asn1CppTypes.h>
#include <korvex/asn1types/ErrorCodes.h>
#include <korvex/core/Blob.h>

namespace Korvex {
namespace ASN1 {

// GeneratedTraits: ASN1_T, ASN1_C and copy of a generated type, for traits
// classes to derive from (see above).
template <class Record, class Control, int (*CopyFn)(ASN1CTXT*, Record const*, Record*)>
struct GeneratedTraits {
  typedef Record ASN1_T;
  typedef Control ASN1_C;

  // copy: CopyFn into ctxt's heap; -12 throws 0x80093106, other failures
  // 0x80093101.
  static void copy(ASN1CTXT* ctxt, Record const& src, Record& dst) {
    checkCopyStatus(CopyFn(ctxt, &src, &dst));
  }
};

namespace detail {

// Encodes rec with the traits' control class into buffer (which must be fresh)
// and returns the message as a blob.
template <class Traits>
CBlob encodeRecord(ASN1BEREncodeBuffer& buffer, typename Traits::ASN1_T& rec) {
  typename Traits::ASN1_C control(buffer, rec);
  int length = control.EncodeTo(buffer);
  if (length < 0) throwCodecError();
  // The buffer fills backwards: the message starts at getMsgPtr().
  return CBlob(buffer.getMsgPtr(), static_cast<unsigned long>(length));
}

// Decodes der into rec with the traits' control class; the decoded storage
// lives in buffer's heap. An empty blob, or one longer than a decode buffer
// can address, is an encoding failure like any other.
template <class Traits>
void decodeRecord(CBlob const& der, ASN1BERDecodeBuffer& buffer, typename Traits::ASN1_T& rec) {
  if (der.cbData() == 0 || der.cbData() > 0x7FFFFFFFul) throwCodecError();
  if (buffer.setBuffer(der.pbData(), static_cast<int>(der.cbData())) != 0) throwCodecError();
  typename Traits::ASN1_C control(buffer, rec);
  if (control.DecodeFrom(buffer) < 0) throwCodecError();
}

}  // namespace detail

// asn1Encode returns the DER of v:
//  1. an encode buffer (dynamic) and, beside it, a decode buffer that only owns
//     the record context;
//  2. a value-initialised record filled by Traits::set in the record context;
//  3. the control class bound to the encode buffer and the record encodes it;
//  4. a negative result throws 0x80093101, otherwise the blob holds the
//     encoded bytes;
//  5. the record, then both buffers (and with them both contexts) are
//     destroyed, on every path.
template <class Traits, class Value>
CBlob asn1Encode(Value const& v) {
  try {
    ASN1BEREncodeBuffer encodeBuffer;
    ASN1BERDecodeBuffer recordOwner;
    typename Traits::ASN1_T record{};
    Traits::set(recordOwner.getCtxtPtr(), record, v);
    return detail::encodeRecord<Traits>(encodeBuffer, record);
  } catch (ASN1RTLException const&) {
    throwCodecError();
  }
}

// asn1Decode decodes der into v: a decode buffer over der's bytes, a
// value-initialised record, the control class's DecodeFrom (a negative status
// throws 0x80093101), then Traits::get. Record and buffer are destroyed on
// every path; only v survives the call.
template <class Traits, class Value>
void asn1Decode(CBlob const& der, Value& v) {
  try {
    ASN1BERDecodeBuffer buffer;
    typename Traits::ASN1_T record{};
    detail::decodeRecord<Traits>(der, buffer, record);
    Traits::get(record, v);
  } catch (ASN1RTLException const&) {
    throwCodecError();
  }
}

// asn1EncodeT returns the DER of a record the caller built: the record is first
// deep-copied with Traits::copy into the encode buffer's own context, and that
// copy is encoded (failures as asn1Encode).
template <class Traits>
CBlob asn1EncodeT(typename Traits::ASN1_T const& rec) {
  try {
    ASN1BEREncodeBuffer encodeBuffer;
    typename Traits::ASN1_T copy{};
    Traits::copy(encodeBuffer.getCtxtPtr(), rec, copy);
    return detail::encodeRecord<Traits>(encodeBuffer, copy);
  } catch (ASN1RTLException const&) {
    throwCodecError();
  }
}

// asn1DecodeT decodes der into a temporary record and deep-copies it with
// Traits::copy into rec, taking the storage from target's heap, so that rec
// outlives the temporary buffer and dies with target. A null target throws
// 0x80070057; decoding failures as asn1Decode.
template <class Traits>
void asn1DecodeT(CBlob const& der, ASN1CTXT* target, typename Traits::ASN1_T& rec) {
  if (!target) throwInvalidArgument();
  try {
    ASN1BERDecodeBuffer buffer;
    typename Traits::ASN1_T local{};
    detail::decodeRecord<Traits>(der, buffer, local);
    Traits::copy(target, local, rec);
  } catch (ASN1RTLException const&) {
    throwCodecError();
  }
}

// DerBlobTraits: traits of a generated type whose typed value is a CBlob holding
// the DER of the whole structure (a Name, a Certificate, a CertificateList kept
// opaque):
//
//   struct ASN1T_Name_traits
//       : DerBlobTraits<asn1data::ASN1T_Name, asn1data::ASN1C_Name,
//                       &asn1data::asn1Copy_Name> {};
//
// set decodes der with a temporary decode buffer and deep-copies the record
// into ctxt (asn1DecodeT); get encodes a copy of the record back into der
// (asn1EncodeT: the encoder may rewrite a record's table-constrained open
// types, so the caller's record is not encoded in place). Failures throw
// 0x80093101 (bad DER or a record that does not encode), 0x80093106 (ctxt's
// heap), 0x80070057 (null ctxt).
template <class Record, class Control, int (*CopyFn)(ASN1CTXT*, Record const*, Record*)>
struct DerBlobTraits : GeneratedTraits<Record, Control, CopyFn> {
  static void set(ASN1CTXT* ctxt, Record& rec, CBlob const& der) {
    asn1DecodeT<DerBlobTraits>(der, ctxt, rec);
  }
  static void get(Record const& rec, CBlob& der) { der = asn1EncodeT<DerBlobTraits>(rec); }
};

}  // namespace ASN1
}  // namespace Korvex

#endif
