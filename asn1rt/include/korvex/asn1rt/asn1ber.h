// korvex/asn1rt/asn1ber.h: BER/DER encoder (xe_), decoder (xd_) and buffer
// state (xu_) primitives.
//
// Encoding writes backwards: every xe_ function puts its contents in front of
// what is already encoded, then its length and tag, and returns the number of
// bytes it wrote (>= 0) or a negative status. The encoded message ends one byte
// before the end of the buffer; xe_getp gives its first byte.
//
// Decoding reads front to back with the context's byte index as cursor. Every
// xd_ function returns 0 or a negative status, recorded in the context's error
// information. Decoded storage comes from the context's type heap.
#ifndef KORVEX_ASN1RT_ASN1BER_H
#define KORVEX_ASN1RT_ASN1BER_H

#include <korvex/asn1rt/asn1type.h>

/* Match flags of xd_match and the advance argument of xd_tag_len. */
#define XM_SEARCH 0x01 /* skip non-matching elements instead of failing */
#define XM_ADVANCE 0x02 /* leave the cursor after the tag and length */
#define XM_SKIP 0x08 /* first skip the element at the cursor */

/* Location of one encoded element: its length and its distance from the end of
 * the encoded message when it was recorded (used for DER SET OF sorting). */
typedef struct Asn1BufLocDescr {
  ASN1UINT numocts;
  ASN1UINT offset;
} Asn1BufLocDescr;

KORVEX_BEGIN_C

/* ======================= Encoder ========================================= */

/* xe_setp: installs buffer (null: a runtime buffer of size bytes, 16384 when
 * 0) and puts the byte index at size - 1. Returns 0 or the status of
 * rtInitContextBuffer (-32, -12). */
KORVEX_API int xe_setp(ASN1CTXT* ctxt, ASN1OCTET* buffer, ASN1UINT size);

/* xe_getp: the first encoded byte (data + byte index). */
KORVEX_API ASN1OCTET* xe_getp(ASN1CTXT* ctxt);

/* xe_getLength: the number of bytes encoded so far (size - 1 - byte index). */
KORVEX_API ASN1UINT xe_getLength(const ASN1CTXT* ctxt);

/* xe_memcpy: puts n bytes in front of the encoded data, growing a dynamic
 * buffer when needed. Returns n, -18 for null bytes, -1 when a static buffer
 * is full, -12 when growth fails. */
KORVEX_API int xe_memcpy(ASN1CTXT* ctxt, const ASN1OCTET* bytes, ASN1UINT n);

/* xe_expandBuffer: grows a dynamic buffer by max(n, 16384) bytes in front,
 * keeping the encoded bytes at its end. -1 for a static buffer, -12 when the
 * new block cannot be allocated (the old buffer is kept). Returns 0. */
KORVEX_API int xe_expandBuffer(ASN1CTXT* ctxt, ASN1UINT n);

/* xe_getBufLocDescr: records length and the current encoded length in descr. */
KORVEX_API void xe_getBufLocDescr(ASN1CTXT* ctxt, ASN1UINT length, Asn1BufLocDescr* descr);

/* xe_tag: writes the identifier octets of tag (X.690 8.1.2). Returns their count. */
KORVEX_API int xe_tag(ASN1CTXT* ctxt, ASN1TAG tag);

/* xe_identifier: writes value in base 128, bit 0x80 on all but the last octet. */
KORVEX_API int xe_identifier(ASN1CTXT* ctxt, ASN1UINT value);

/* xe_len: writes a definite length in its shortest form (X.690 10.1), 0x80 for
 * ASN_K_INDEFLEN; any other negative length writes nothing and returns 0. */
KORVEX_API int xe_len(ASN1CTXT* ctxt, int length);

/* xe_tag_len: writes length then tag in front of length bytes of contents and
 * returns the total (for an indefinite length, header bytes only). A negative
 * length other than ASN_K_INDEFLEN is a status and is returned unchanged. */
KORVEX_API int xe_tag_len(ASN1CTXT* ctxt, ASN1TAG tag, int length);

/* Primitive encoders: the contents, plus the universal tag and length under
 * ASN1EXPL. Return the bytes written, -18 for a null value pointer, or the
 * buffer status (-1, -12). */
KORVEX_API int xe_boolean(ASN1CTXT* ctxt, const ASN1BOOL* value, ASN1TagType tagging);
KORVEX_API int xe_integer(ASN1CTXT* ctxt, const ASN1INT* value, ASN1TagType tagging);
KORVEX_API int xe_unsigned(ASN1CTXT* ctxt, const ASN1UINT* value, ASN1TagType tagging);
KORVEX_API int xe_uint16(ASN1CTXT* ctxt, const ASN1USINT* value, ASN1TagType tagging);
KORVEX_API int xe_enum(ASN1CTXT* ctxt, const ASN1INT* value, ASN1TagType tagging);
/* xe_int64: INTEGER from a signed 64-bit value (minimal two's complement). */
KORVEX_API int xe_int64(ASN1CTXT* ctxt, const ASN1INT64* value, ASN1TagType tagging);

/* xe_bigint / xe_biguint: INTEGER from text: decimal with optional leading
 * '-', or "0x"/"0b" prefixed hexadecimal/binary. xe_bigint writes the minimal
 * two's complement; xe_biguint the magnitude with a 0x00 in front when its top
 * bit is set. -9 for invalid text, -18 for null text. */
KORVEX_API int xe_bigint(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging);
KORVEX_API int xe_biguint(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging);

KORVEX_API int xe_null(ASN1CTXT* ctxt, ASN1TagType tagging);

/* xe_bitstr: unused-bits octet then the data octets; trailing bits are copied
 * as given. Bits with null data write nothing and return 0. */
KORVEX_API int xe_bitstr(ASN1CTXT* ctxt, const ASN1OCTET* data, ASN1UINT numbits,
                         ASN1TagType tagging);

/* xe_octstr: the octets (null data: empty contents). */
KORVEX_API int xe_octstr(ASN1CTXT* ctxt, const ASN1OCTET* data, ASN1UINT numocts,
                         ASN1TagType tagging);

/* xe_charstr: the bytes of NUL-terminated text under the given tag. */
KORVEX_API int xe_charstr(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging, ASN1TAG tag);

/* xe_16BitCharStr / xe_32BitCharStr: characters as big-endian 2- or 4-octet units. */
KORVEX_API int xe_16BitCharStr(ASN1CTXT* ctxt, const Asn116BitCharString* str,
                               ASN1TagType tagging, ASN1TAG tag);
KORVEX_API int xe_32BitCharStr(ASN1CTXT* ctxt, const Asn132BitCharString* str,
                               ASN1TagType tagging, ASN1TAG tag);

/* xe_objid: OBJECT IDENTIFIER (X.690 8.19). -4 for fewer than 2 arcs, more than
 * 128, first arc above 2, or second arc above 39 under first arc 0 or 1. */
KORVEX_API int xe_objid(ASN1CTXT* ctxt, const ASN1OBJID* oid, ASN1TagType tagging);

/* xe_OpenType: copies the first complete element of data (numocts bytes).
 * 0 length writes nothing. -18 for null data or an element 00 00; -5/-2 when
 * data does not hold a complete element. */
KORVEX_API int xe_OpenType(ASN1CTXT* ctxt, const ASN1OCTET* data, ASN1UINT numocts);

/* xe_OpenTypeExt: every ASN1OpenType of list (nodes point to records), in list
 * order. Returns the summed length or the first failure (recorded). */
KORVEX_API int xe_OpenTypeExt(ASN1CTXT* ctxt, const rtDList* list);

/* xe_derCanonicalSort: list holds one heap-allocated Asn1BufLocDescr per SET OF
 * element, recorded right after each element was encoded. Reorders the
 * elements' bytes into ascending DER order (X.690 11.6: compared as octet
 * strings, a shorter prefix first), frees descriptors and nodes, and returns
 * the summed element length, or -12 when the work block cannot be allocated
 * (the list is still freed). */
KORVEX_API int xe_derCanonicalSort(ASN1CTXT* ctxt, rtDList* list);

/* ======================= Buffer state ===================================== */

/* xu_SaveBufferState: saves byte index, bit offset and flags into state, or
 * into the context's saved-state slot when state is null. */
KORVEX_API void xu_SaveBufferState(ASN1CTXT* ctxt, ASN1BUFSAVE* state);

/* xu_RestoreBufferState: restores what xu_SaveBufferState saved, with flag
 * ASN1LASTEOC cleared. */
KORVEX_API void xu_RestoreBufferState(ASN1CTXT* ctxt, const ASN1BUFSAVE* state);

/* ======================= Decoder ========================================== */

/* xd_setp: installs buffer for decoding (size below 1 means 0x7FFFFFFF), reads
 * the first tag and length and leaves the cursor at 0. A definite element cuts
 * the buffer size to its end and *length is its complete length, header
 * included; an indefinite one sets ASN1INDEFLEN and *length is -9999. -5 when
 * a positive size is shorter than the element. tag and length may be null. */
KORVEX_API int xd_setp(ASN1CTXT* ctxt, const ASN1OCTET* buffer, int size, ASN1TAG* tag,
                       int* length);

/* xd_tag: reads one identifier (X.690 8.1.2). -2 at the end of the data, -21
 * for a number above 0x1FFFFFFF or more than five base-128 groups, -3 for a
 * high-number form that is not minimal: a number below 31 (X.690 8.1.2.2) or a
 * first group 0x80 (8.1.2.4.2 c). Every reader of identifiers below (tag and
 * length, matching, skipping, xd_setp) applies the same rules. */
KORVEX_API int xd_tag(ASN1CTXT* ctxt, ASN1TAG* tag);

/* xd_len: reads one length. -9999 for indefinite; -5 for more than 4 length
 * octets, a negative length or (unless ASN1NOLENCHECK) one longer than the
 * remaining data; -2 when the length octets run past the data. */
KORVEX_API int xd_len(ASN1CTXT* ctxt, int* length);

/* xd_tag_len: reads tag and length, setting ASN1CONSTAG from the constructed
 * bit; the start is saved in the context's saved-state slot. Without XM_ADVANCE
 * in flags the cursor and flags are restored (peek). -2 at the end of the data
 * or of an indefinite message, -5 for an indefinite primitive. */
KORVEX_API int xd_tag_len(ASN1CTXT* ctxt, ASN1TAG* tag, int* length, ASN1OCTET flags);

/* xd_match: matches the next element's tag against tag, ignoring the
 * constructed bit, under XM_SEARCH / XM_ADVANCE / XM_SKIP. -3 when not found
 * (cursor restored). length may be null. */
KORVEX_API int xd_match(ASN1CTXT* ctxt, ASN1TAG tag, int* length, ASN1OCTET flags);

/* xd_match1: fast match of a one-octet tag; advances past tag and length. */
KORVEX_API int xd_match1(ASN1CTXT* ctxt, ASN1OCTET tagOctet, int* length);

/* xd_Tag1AndLen: steps over a one-octet tag (setting ASN1CONSTAG) and reads the
 * length. -2 at the end of the data or of an indefinite message. */
KORVEX_API int xd_Tag1AndLen(ASN1CTXT* ctxt, int* length);

/* xd_NextElement: skips the element at the cursor (through its end-of-contents
 * octets for an indefinite length). -34 beyond ASN_K_MAXDEPTH nested levels. */
KORVEX_API int xd_NextElement(ASN1CTXT* ctxt);

/* xd_MovePastEOC: moves past the end-of-contents octets that close the current
 * indefinite-length element, stepping over nested elements. */
KORVEX_API int xd_MovePastEOC(ASN1CTXT* ctxt);

/* xd_MatchEOC: consumes end-of-contents octets 00 00 at the cursor; -3 (not
 * recorded) when the next octets are not 00 00, -2 at the end of the data. */
KORVEX_API int xd_MatchEOC(ASN1CTXT* ctxt);

/* xd_chkend: 1 when the enclosing element that started at startIndex with
 * contents length length (-9999: indefinite, ended by 00 00) has no more
 * elements at the cursor, or the data ends; else 0. Does not move the cursor. */
KORVEX_API ASN1BOOL xd_chkend(ASN1CTXT* ctxt, ASN1UINT startIndex, int length);

/* xd_count: counts the elements in the next length bytes (-9999: up to the
 * end-of-contents octets) into *count; the cursor is restored. */
KORVEX_API int xd_count(ASN1CTXT* ctxt, int length, int* count);

/* xd_indeflen_ex: the complete length of the indefinite-length element at data,
 * end-of-contents octets included, within maxLength bytes. 0 when maxLength is
 * below 5, -5 for a definite element, -2 when data ends first. */
KORVEX_API int xd_indeflen_ex(const ASN1OCTET* data, int maxLength);

/* xd_consStrIndefLenAndSize: with the cursor on the contents of a constructed
 * string of indefinite length, measures it without moving the cursor:
 * *encLength the bytes up to and including its end-of-contents octets, *size
 * the summed contents of its primitive segments (for tag ASN_ID_BITSTR the
 * unused-bits octet of each segment is not counted). Nested segments must
 * carry segmentTag (X.690 8.21.3). */
KORVEX_API int xd_consStrIndefLenAndSize(ASN1CTXT* ctxt, ASN1TAG segmentTag, int* encLength,
                                         int* size);

/* xd_memcpy: copies n bytes from the cursor and advances; -2 when fewer remain
 * (not checked in indefinite-message mode beyond the buffer size). */
KORVEX_API int xd_memcpy(ASN1CTXT* ctxt, ASN1OCTET* dest, int n);

/* Primitive decoders: (ctxt, target..., tagging, length). Under ASN1EXPL the
 * universal tag is matched first (-3 on mismatch) and the length read; under
 * ASN1IMPL length is the contents length the caller already read.
 *
 * The integer decoders (xd_integer, xd_enum, xd_int64, xd_uint16,
 * xd_unsigned, xd_bigint) check in this order: empty contents -5, more octets
 * than the target holds -33, contents past the data -2, then contents that are
 * not minimal -3 (a leading 00 before a clear top bit or FF before a set one,
 * X.690 8.3.2, which binds BER too); the cursor stays on the contents. */
KORVEX_API int xd_boolean(ASN1CTXT* ctxt, ASN1BOOL* value, ASN1TagType tagging, int length);
KORVEX_API int xd_integer(ASN1CTXT* ctxt, ASN1INT* value, ASN1TagType tagging, int length);
KORVEX_API int xd_unsigned(ASN1CTXT* ctxt, ASN1UINT* value, ASN1TagType tagging, int length);
KORVEX_API int xd_uint16(ASN1CTXT* ctxt, ASN1USINT* value, ASN1TagType tagging, int length);
KORVEX_API int xd_enum(ASN1CTXT* ctxt, ASN1INT* value, ASN1TagType tagging, int length);
/* xd_int64: INTEGER into a signed 64-bit value; more than 8 octets gives -33.
 * xd_uint16 reads up to 4 octets and gives -33 for a value outside 0..65535;
 * xd_unsigned up to 4 octets, or 5 behind a 00 sign octet, without sign
 * extension (FF is 255). */
KORVEX_API int xd_int64(ASN1CTXT* ctxt, ASN1INT64* value, ASN1TagType tagging, int length);

/* xd_bigint: INTEGER contents of any size as NUL-terminated text in heap
 * memory: hexadecimal, not decimal, as rtBigIntToText writes radix 16: "0x"
 * and lowercase digits without leading zeros, "-0x" for a negative value, "0"
 * for zero (02 02 00 80 gives "0x80", 02 01 80 gives "-0x80"). xe_bigint reads
 * the text back to the same contents, and strtoul with base 16 reads the text
 * of a value that fits. -5 for empty contents, -3 for contents that are not
 * minimal, -12 when the text cannot be allocated. */
KORVEX_API int xd_bigint(ASN1CTXT* ctxt, const char** text, ASN1TagType tagging, int length);

/* xd_null: explicit: 05 00 (-3 for another tag, -5 for another length);
 * implicit: reads nothing and returns 0. */
KORVEX_API int xd_null(ASN1CTXT* ctxt, ASN1TagType tagging);

/* xd_bitstr: bit count and a heap copy of the octets; constructed forms are
 * joined (X.690 8.6.4). -5 for empty contents or an unused-bits octet above 7
 * (or non-zero with no data octets). */
KORVEX_API int xd_bitstr(ASN1CTXT* ctxt, const ASN1OCTET** data, ASN1UINT* numbits,
                         ASN1TagType tagging, int length);

/* xd_bitstr_s: into data, whose capacity in bits is *numbits on entry; more
 * bits give -17. */
KORVEX_API int xd_bitstr_s(ASN1CTXT* ctxt, ASN1OCTET* data, ASN1UINT* numbits,
                           ASN1TagType tagging, int length);

/* xd_octstr: count and heap copy (null for empty); constructed forms joined. */
KORVEX_API int xd_octstr(ASN1CTXT* ctxt, const ASN1OCTET** data, ASN1UINT* numocts,
                         ASN1TagType tagging, int length);

/* xd_octstr_s: into data, whose capacity is *numocts on entry (-17 if more). */
KORVEX_API int xd_octstr_s(ASN1CTXT* ctxt, ASN1OCTET* data, ASN1UINT* numocts,
                           ASN1TagType tagging, int length);

/* xd_charstr: NUL-terminated heap text of a string under the caller's tag. */
KORVEX_API int xd_charstr(ASN1CTXT* ctxt, const char** text, ASN1TagType tagging, ASN1TAG tag,
                          int length);

/* xd_16BitCharStr / xd_32BitCharStr: big-endian units into a heap array;
 * -5 when the contents are not a whole number of units. */
KORVEX_API int xd_16BitCharStr(ASN1CTXT* ctxt, Asn116BitCharString* str, ASN1TagType tagging,
                               ASN1TAG tag, int length);
KORVEX_API int xd_32BitCharStr(ASN1CTXT* ctxt, Asn132BitCharString* str, ASN1TagType tagging,
                               ASN1TAG tag, int length);

/* xd_objid: OBJECT IDENTIFIER (X.690 8.19). -5 for empty contents, -2 past the
 * data, -4 for a truncated sub-identifier, one above 32 bits, or a 129th arc. */
KORVEX_API int xd_objid(ASN1CTXT* ctxt, ASN1OBJID* oid, ASN1TagType tagging, int length);

/* xd_OpenType: the complete next element, header included. Copied into heap
 * memory, or pointing into the message under ASN1OPENTYPEREF. -17 for an
 * element longer than the buffer or 00 00; -18 for null targets. */
KORVEX_API int xd_OpenType(ASN1CTXT* ctxt, const ASN1OCTET** data, ASN1UINT* numocts);

/* xd_OpenTypeAppend: decodes the next element as an open type into a new heap
 * ASN1OpenType record appended to list. */
KORVEX_API int xd_OpenTypeAppend(ASN1CTXT* ctxt, rtDList* list);

/* xd_OpenTypeExt: appends every remaining element of the enclosing element
 * (started at startIndex with contents length length, -9999 for indefinite; its
 * end-of-contents octets are left in place) to list. */
KORVEX_API int xd_OpenTypeExt(ASN1CTXT* ctxt, ASN1UINT startIndex, int length, rtDList* list);

KORVEX_END_C

#endif
