// korvex/asn1rt/asn1type.h: basic types, the context record, memory heaps and
// error statuses of the ASN.1 runtime.
//
// Every encode, decode, copy and free works through one ASN1CTXT. The context
// owns the message buffer, two heap handles (message and type heap, the same
// reference-counted heap after rtInitContext), the first error status and a
// flag word. All functions are C linkage.
//
// Statuses: 0 is success, negative values are failures (encoders return the
// byte count instead of 0). Decoders and encoders record the first failure in
// the context's error information; later failures do not overwrite it.
#ifndef KORVEX_ASN1RT_ASN1TYPE_H
#define KORVEX_ASN1RT_ASN1TYPE_H

#include <stddef.h>

#include <korvex/asn1rt/rtList.h>
#include <korvex/platform/export.h>

/* ---- Scalar types ------------------------------------------------------- */

typedef unsigned char ASN1OCTET;
typedef signed char ASN1INT8;
typedef unsigned char ASN1UINT8;
typedef short ASN1SINT;          /* signed 16-bit */
typedef unsigned short ASN1USINT; /* unsigned 16-bit */
typedef int ASN1INT;             /* signed 32-bit */
typedef unsigned int ASN1UINT;   /* unsigned 32-bit */
typedef long long ASN1INT64;
typedef unsigned long long ASN1UINT64;
typedef unsigned char ASN1BOOL; /* 8-bit boolean: 0 false, anything else true */
typedef unsigned short ASN116BITCHAR;
typedef unsigned int ASN132BITCHAR;

/* Tag word: bits 31-30 class, bit 29 constructed, bits 28-0 the tag number. */
typedef unsigned int ASN1TAG;

/* Tagging argument: explicit writes or checks the universal tag, implicit not. */
typedef enum { ASN1IMPL = 0, ASN1EXPL = 1 } ASN1TagType;

#define ASN1TRUE 1
#define ASN1FALSE 0

/* ---- Tag word parts (X.690 8.1.2) ---------------------------------------- */

#define TM_UNIV 0x00000000u
#define TM_APPL 0x40000000u
#define TM_CTXT 0x80000000u
#define TM_PRIV 0xC0000000u
#define TM_CONS 0x20000000u
#define TM_CLASS_MASK 0xC0000000u
#define TM_FORM_MASK 0x20000000u
#define TM_IDMASK 0x1FFFFFFFu
#define ASN1_MAX_TAG_NUMBER 0x1FFFFFFFu

/* Universal tag numbers. */
#define ASN_ID_EOC 0
#define ASN_ID_BOOL 1
#define ASN_ID_INT 2
#define ASN_ID_BITSTR 3
#define ASN_ID_OCTSTR 4
#define ASN_ID_NULL 5
#define ASN_ID_OBJID 6
#define ASN_ID_OBJDSC 7
#define ASN_ID_EXTERN 8
#define ASN_ID_REAL 9
#define ASN_ID_ENUM 10
#define ASN_ID_EPDV 11
#define ASN_ID_UTF8String 12
#define ASN_ID_RELOID 13
#define ASN_ID_SEQ 16
#define ASN_ID_SET 17
#define ASN_ID_NumericString 18
#define ASN_ID_PrintableString 19
#define ASN_ID_TeletexString 20
#define ASN_ID_T61String ASN_ID_TeletexString
#define ASN_ID_VideotexString 21
#define ASN_ID_IA5String 22
#define ASN_ID_UTCTime 23
#define ASN_ID_GeneralTime 24
#define ASN_ID_GraphicString 25
#define ASN_ID_VisibleString 26
#define ASN_ID_GeneralString 27
#define ASN_ID_UniversalString 28
#define ASN_ID_BMPString 30

/* Length value standing for an indefinite length (X.690 8.1.3.6). */
#define ASN_K_INDEFLEN (-9999)

/* Most arcs an ASN1OBJID holds. */
#define ASN_K_MAXSUBIDS 128

/* Deepest nesting of constructed elements the decoder follows. Input nested
 * deeper fails with ASN_E_NESTING instead of exhausting work or stack. */
#define ASN_K_MAXDEPTH 64

/* Size of a runtime-allocated message buffer when none is given. */
#define ASN_K_ENCBUFSIZ 16384

/* Validity marker of an initialised context. */
#define ASN1_CTXT_INITCODE 0x1AA2A34Au

/* ---- Context flag word bits ---------------------------------------------- */

#define ASN1NOLENCHECK 0x0040u /* decoder: do not check lengths against the data */
#define ASN1SAVEBUF 0x0100u    /* rtFreeContext keeps a runtime-allocated buffer */
#define ASN1CONSTAG 0x0400u    /* the tag just read is constructed */
#define ASN1OPENTYPEREF 0x0800u /* decoded open types point into the message */
#define ASN1LASTEOC 0x1000u    /* with ASN1INDEFLEN: end of the message reached */
#define ASN1INDEFLEN 0x4000u   /* outermost element has an indefinite length */

/* ---- Statuses ------------------------------------------------------------- */

#define ASN_OK 0
#define ASN_E_BUFOVFLW (-1)   /* static encode buffer too small */
#define ASN_E_ENDOFBUF (-2)   /* data ends before the tag, length or contents */
#define ASN_E_IDNOTFOU (-3)   /* tag not matched, or unexpected encoding */
#define ASN_E_INVOBJID (-4)   /* invalid object identifier */
#define ASN_E_INVLEN (-5)     /* invalid length for the item */
#define ASN_E_INVENUM (-6)    /* value outside an enumeration (generated decoders) */
#define ASN_E_SETDUPL (-7)    /* SET component given twice (generated decoders) */
#define ASN_E_SETMISRQ (-8)   /* missing required element in a SEQUENCE or SET */
#define ASN_E_INVBIGINT (-9)  /* invalid text for a big integer */
#define ASN_E_NOTINSEQ (-10)  /* element after the last component of a SEQUENCE */
#define ASN_E_INVOPT (-11)    /* CHOICE selector outside the alternatives */
#define ASN_E_NOMEM (-12)     /* out of memory */
#define ASN_E_STROVFLW (-17)  /* value too long for the fixed-size target */
#define ASN_E_BADVALUE (-18)  /* null value pointer, or invalid open type */
#define ASN_E_BADTAG (-21)    /* tag number above 0x1FFFFFFF */
#define ASN_E_CONSVIO (-23)   /* value constraint violated (generated decoders) */
#define ASN_E_RANGERR (-24)   /* invalid bit range (start after end) */
#define ASN_E_INVUTF8 (-26)   /* invalid UTF-8 or unconvertible character */
#define ASN_E_ITERNOTPOS (-27) /* list iterator not positioned on an element */
#define ASN_E_ITERCHANGED (-28) /* list changed under the iterator */
#define ASN_E_OUTOFBND (-29)  /* bit index out of range */
#define ASN_E_INVPARAM (-30)  /* invalid parameter (null pointer, bad radix) */
#define ASN_E_INVDATETIME (-31) /* invalid date or time value */
#define ASN_E_NOTINIT (-32)   /* context not initialised */
#define ASN_E_TOOBIG (-33)    /* integer too large for its target */
#define ASN_E_NESTING (-34)   /* constructed elements nested deeper than ASN_K_MAXDEPTH */
#define ASN_E_NOTSUPP (-99)   /* operation not supported by this buffer class */

/* ---- Value records --------------------------------------------------------- */

/* Object identifier: arc count and up to 128 arcs. */
typedef struct ASN1OBJID {
  ASN1UINT numids;
  ASN1UINT subid[ASN_K_MAXSUBIDS];
} ASN1OBJID;

/* OCTET STRING held as a count and a pointer (heap memory of the context, or
 * the message under ASN1OPENTYPEREF-like borrowing by the caller). */
typedef struct ASN1DynOctStr {
  ASN1UINT numocts;
  const ASN1OCTET* data;
} ASN1DynOctStr;

/* BIT STRING: number of bits and the octets holding them, first bit in the
 * top bit of the first octet. */
typedef struct ASN1DynBitStr {
  ASN1UINT numbits;
  const ASN1OCTET* data;
} ASN1DynBitStr;

/* Open type: the complete encoding of one element, tag and length included. */
typedef struct ASN1OpenType {
  ASN1UINT numocts;
  const ASN1OCTET* data;
} ASN1OpenType;

/* BMPString-like and UniversalString-like values: count + array of characters. */
typedef struct Asn116BitCharString {
  ASN1UINT nchars;
  ASN116BITCHAR* data;
} Asn116BitCharString;

typedef struct Asn132BitCharString {
  ASN1UINT nchars;
  ASN132BITCHAR* data;
} Asn132BitCharString;

/* ---- Context ------------------------------------------------------------- */

/* Message buffer description. For encoding byteIndex is the first encoded byte
 * (the message grows towards the start); for decoding it is the read cursor. */
typedef struct ASN1BUFFER {
  ASN1OCTET* data;
  ASN1UINT byteIndex;
  ASN1UINT size;
  ASN1SINT bitOffset; /* 8 whenever a buffer is installed */
  ASN1BOOL dynamic;   /* 1: allocated by the runtime from the message heap */
} ASN1BUFFER;

/* Saved cursor: byte index, bit offset and flag word. */
typedef struct ASN1BUFSAVE {
  ASN1UINT byteIndex;
  ASN1SINT bitOffset;
  ASN1USINT flags;
} ASN1BUFSAVE;

/* Error information: the first status raised since the last reset. */
typedef struct ASN1ErrInfo {
  ASN1INT status;
} ASN1ErrInfo;

typedef struct ASN1CTXT {
  void* pMsgMemHeap;  /* heap of the runtime-allocated buffer and stream record */
  void* pTypeMemHeap; /* heap of decoded values, list nodes, copies */
  ASN1BUFFER buffer;
  void* pStream; /* optional stream record, from the message heap */
  ASN1BUFSAVE savedInfo;
  ASN1ErrInfo errInfo;
  rtSList fieldList; /* context list 1: empty at creation, freed with the context */
  rtSList evtList;   /* context list 2: likewise */
  ASN1UINT initCode; /* ASN1_CTXT_INITCODE while initialised */
  ASN1USINT flags;
  void* pAllocUserData; /* handed to the allocation functions of this context's heap */
} ASN1CTXT;

/* Memory heap record (48 bytes), reached through a heap handle (void*). */
typedef struct ASN1MemHeap {
  struct ASN1MemBlock* newest; /* head of the block list, null when empty */
  ASN1UINT defBlkSize;         /* 4096, kept for compatibility; unused */
  ASN1UINT refCnt;
  ASN1UINT flags;              /* ASN1_HEAP_RTALLOC, ASN1_HEAP_CARVE */
  ASN1UINT carveGrowth;        /* ASN1_HEAP_CARVE: number of chunks taken so far */
  void* pAllocUserData;
  void* carveChunk; /* ASN1_HEAP_CARVE: the chunk small blocks are cut from */
  void* reserved;
} ASN1MemHeap;

#define ASN1_HEAP_RTALLOC 0x10000000u
/* Small blocks are cut from larger chunks (rtMemHeapSetCarving). */
#define ASN1_HEAP_CARVE 0x20000000u
/* Largest request cut from a chunk; larger ones are blocks of their own. */
#define ASN1_HEAP_CARVE_MAX 2048u
#define ASN1_HEAP_DEFBLKSIZE 4096u

/* Size of the header in front of every heap block (next, previous, size). */
#define ASN1_MEMBLOCK_HEADER 48u
/* Largest request: n + 48 must stay within a signed 32-bit size. */
#define ASN1_MEMBLOCK_MAX 0x7FFFFFCFu

/* Process-wide allocation functions; each takes the allocator user data first. */
typedef void* (*rtMallocFunc)(void* userData, size_t size);
typedef void* (*rtReallocFunc)(void* userData, void* ptr, size_t size);
typedef void (*rtFreeFunc)(void* userData, void* ptr);

KORVEX_BEGIN_C

/* ---- Allocation functions ------------------------------------------------ */

/* rtDefaultMalloc / rtDefaultRealloc / rtDefaultFree: the defaults, which ignore
 * the user data and call the C library's malloc, realloc and free. */
KORVEX_API void* rtDefaultMalloc(void* userData, size_t size);
KORVEX_API void* rtDefaultRealloc(void* userData, void* ptr, size_t size);
KORVEX_API void rtDefaultFree(void* userData, void* ptr);

/* rtSetAllocFuncs: replaces the three process-wide allocation functions. Call it
 * before any context exists (blocks must be freed by the free function matching
 * the one that allocated them). A null argument restores that default. */
KORVEX_API void rtSetAllocFuncs(rtMallocFunc mallocFunc, rtReallocFunc reallocFunc,
                                rtFreeFunc freeFunc);

/* rtGetAllocFuncs: the current allocation functions (any pointer may be null). */
KORVEX_API void rtGetAllocFuncs(rtMallocFunc* mallocFunc, rtReallocFunc* reallocFunc,
                                rtFreeFunc* freeFunc);

/* ---- Context ------------------------------------------------------------- */

/* rtInitContext: clears *ctxt, sets the validity marker, creates one heap with
 * userData for both handles (reference count 2) and empty context lists.
 * Returns 0, or the status of rtMemHeapCreate (-12). */
KORVEX_API int rtInitContext(ASN1CTXT* ctxt, void* userData);

/* rtInitContextBuffer: installs a message buffer. A non-null buffer is borrowed
 * (dynamic 0). A null buffer takes size bytes (16384 when 0) from the message
 * heap (dynamic 1; -12 when that fails). Byte index 0, bit offset 8.
 * -32 when the context is not initialised. An earlier runtime buffer is not
 * freed. */
KORVEX_API int rtInitContextBuffer(ASN1CTXT* ctxt, ASN1OCTET* buffer, ASN1UINT size);

/* rtFreeContext: frees the runtime-allocated buffer (unless ASN1SAVEBUF), the
 * stream record and the context lists, releases both heap handles and clears
 * the validity marker. Does nothing for a context that is not initialised. */
KORVEX_API void rtFreeContext(ASN1CTXT* ctxt);

/* rtCopyContext: copies the buffer description and flag word of src into dest;
 * heaps, error information and lists are not touched. */
KORVEX_API void rtCopyContext(ASN1CTXT* dest, const ASN1CTXT* src);

/* rtCtxtSetFlag / rtCtxtClearFlag / rtCtxtTestFlag: flag word operations. */
KORVEX_API void rtCtxtSetFlag(ASN1CTXT* ctxt, ASN1USINT mask);
KORVEX_API void rtCtxtClearFlag(ASN1CTXT* ctxt, ASN1USINT mask);
KORVEX_API ASN1BOOL rtCtxtTestFlag(const ASN1CTXT* ctxt, ASN1USINT mask);

/* rtCtxtSetMemHeap: makes ctxt's type heap srcCtxt's type heap (reference
 * counted). Nothing happens for null pointers or when the heap is the same. */
KORVEX_API void rtCtxtSetMemHeap(ASN1CTXT* ctxt, ASN1CTXT* srcCtxt);

/* rtCtxtSetMsgMemHeap: the same for the message heap handle. */
KORVEX_API void rtCtxtSetMsgMemHeap(ASN1CTXT* ctxt, ASN1CTXT* srcCtxt);

/* rtStreamRelease: frees the stream record from the message heap and sets it
 * to null. Returns 0. */
KORVEX_API int rtStreamRelease(ASN1CTXT* ctxt);

/* ---- Memory heap ----------------------------------------------------------
 * Each function takes the address of a heap handle, e.g. &ctxt->pTypeMemHeap.
 * Passing the context pointer itself means its message heap. */

/* rtMemHeapCreate: allocates a new heap record (reference count 1) into
 * *ppHeap. -30 for a null handle pointer, -12 when allocation fails. */
KORVEX_API int rtMemHeapCreate(void** ppHeap, void* userData);

/* rtMemHeapAlloc: n uninitialised bytes in a new block; creates the heap when
 * the handle is empty. Null for a null handle, n above 0x7FFFFFCF, or no memory. */
KORVEX_API void* rtMemHeapAlloc(void** ppHeap, size_t n);

/* rtMemHeapAllocZ: as rtMemHeapAlloc, zero-filled. */
KORVEX_API void* rtMemHeapAllocZ(void** ppHeap, size_t n);

/* rtMemHeapRealloc: null p allocates; a block whose size is already at least n
 * is returned as it is with n recorded; otherwise a new block receives the old
 * recorded size of bytes and p is freed. Null (p still valid) on failure, or
 * when the handle is null or empty. */
KORVEX_API void* rtMemHeapRealloc(void** ppHeap, void* p, size_t n);

/* rtMemHeapFreePtr: frees one block; nothing for null p or an empty handle. */
KORVEX_API void rtMemHeapFreePtr(void** ppHeap, void* p);

/* rtMemHeapRelease: drops one reference; the last one frees every block, the
 * heap record and empties the handle. */
KORVEX_API void rtMemHeapRelease(void** ppHeap);

/* rtMemHeapAddRef: adds one reference to the heap in *ppHeap, if any. */
KORVEX_API void rtMemHeapAddRef(void** ppHeap);

/* rtMemHeapMarkSaved: kept for compatibility; does nothing and returns 0. */
KORVEX_API int rtMemHeapMarkSaved(void** ppHeap, const void* p, ASN1BOOL saved);

/* rtMemHeapCheckPtr: kept for compatibility; pointers are not validated and the
 * answer is always 1. */
KORVEX_API int rtMemHeapCheckPtr(void** ppHeap, const void* p);

/* rtMemHeapSetCarving: with on set, later requests of up to 2048 bytes
 * (ASN1_HEAP_CARVE_MAX) are cut from chunks of 8 KB to 1 MB taken from the
 * allocation functions, with a 16-byte header instead of 48 and no call to the
 * allocation function of their own; larger requests stay separate blocks. Every
 * other behaviour holds: each block can be freed on its own (a chunk goes back
 * to the free function when its last block is freed), reallocated, sized with
 * rtMemHeapBlockSize, and all of them go with the last rtMemHeapRelease. A
 * chunk counts as one block in rtMemHeapBlockCount. on clear stops cutting; the
 * blocks already cut stay valid. Meant for a context whose decoded value is
 * dropped as a whole (the allocation count per decoded value falls from one
 * per field to a few). -30 when the handle pointer is null or the handle holds
 * no heap; 0 otherwise. */
KORVEX_API int rtMemHeapSetCarving(void** ppHeap, ASN1BOOL on);

/* rtMemHeapBlockSize: the size recorded in p's block header (0 for null p). */
KORVEX_API size_t rtMemHeapBlockSize(const void* p);

/* rtMemHeapBlockCount: number of live blocks of the heap in *ppHeap (O(n); for
 * tests and diagnostics). 0 for a null or empty handle. */
KORVEX_API size_t rtMemHeapBlockCount(void** ppHeap);

/* rtMemFreeOpenSeqExt: for a list whose nodes point to ASN1OpenType records,
 * frees every record's data, then every record and node (rtDListFreeAll). */
KORVEX_API void rtMemFreeOpenSeqExt(ASN1CTXT* ctxt, rtDList* list);

/* Type-heap shorthands used throughout the runtime and generated code. */
#define rtMemAlloc(ctxt, n) rtMemHeapAlloc(&(ctxt)->pTypeMemHeap, (n))
#define rtMemAllocZ(ctxt, n) rtMemHeapAllocZ(&(ctxt)->pTypeMemHeap, (n))
#define rtMemRealloc(ctxt, p, n) rtMemHeapRealloc(&(ctxt)->pTypeMemHeap, (void*)(p), (n))
#define rtMemFreePtr(ctxt, p) rtMemHeapFreePtr(&(ctxt)->pTypeMemHeap, (void*)(p))
#define rtMemAllocType(ctxt, type) ((type*)rtMemHeapAlloc(&(ctxt)->pTypeMemHeap, sizeof(type)))
#define rtMemAllocTypeZ(ctxt, type) \
  ((type*)rtMemHeapAllocZ(&(ctxt)->pTypeMemHeap, sizeof(type)))

/* ---- Error information ----------------------------------------------------- */

/* rtErrSetData: records status unless a status is already recorded; always
 * returns status. */
KORVEX_API int rtErrSetData(ASN1ErrInfo* errInfo, int status);

/* rtErrReset: clears the recorded status; returns 0. */
KORVEX_API int rtErrReset(ASN1ErrInfo* errInfo);

/* rtErrCopyData: copies the recorded status from src to dest; returns it. */
KORVEX_API int rtErrCopyData(const ASN1ErrInfo* srcErrInfo, ASN1ErrInfo* destErrInfo);

/* rtErrAddIntParm / rtErrAddStrParm: parameters are accepted and not kept;
 * return 1. */
KORVEX_API int rtErrAddIntParm(ASN1ErrInfo* errInfo, int value);
KORVEX_API int rtErrAddStrParm(ASN1ErrInfo* errInfo, const char* text);

/* rtErrGetText: no texts exist; always returns "" (static, never freed). */
KORVEX_API const char* rtErrGetText(ASN1CTXT* ctxt);

/* rtErrPrint: writes "ASN.1 ERROR: Status %d\n" with the recorded status to
 * standard output. */
KORVEX_API void rtErrPrint(const ASN1ErrInfo* errInfo);

/* Records stat in ctxt's error information and yields it. */
#define LOG_ASN1ERR(ctxt, stat) rtErrSetData(&(ctxt)->errInfo, (stat))

/* ---- Copies of runtime values into ctxt's type heap ----------------------- */

/* rtCopyOID: *dest = *src. Returns 0 (-30 for a null argument). */
KORVEX_API int rtCopyOID(ASN1CTXT* ctxt, const ASN1OBJID* src, ASN1OBJID* dest);

/* rtCopyOpenType / rtCopyDynOctStr / rtCopyDynBitStr: deep copy of the bytes
 * into ctxt's type heap (an empty value gives a null data pointer). Copying a
 * value onto itself does nothing. 0, -30 (null argument) or -12. */
KORVEX_API int rtCopyOpenType(ASN1CTXT* ctxt, const ASN1OpenType* src, ASN1OpenType* dest);
KORVEX_API int rtCopyDynOctStr(ASN1CTXT* ctxt, const ASN1DynOctStr* src,
                               ASN1DynOctStr* dest);
KORVEX_API int rtCopyDynBitStr(ASN1CTXT* ctxt, const ASN1DynBitStr* src,
                               ASN1DynBitStr* dest);

/* rtCopyCharStr: a heap copy of NUL-terminated text into *dest (null src gives
 * null). 0, -30 or -12. */
KORVEX_API int rtCopyCharStr(ASN1CTXT* ctxt, const char* src, const char** dest);

/* rtCopy16BitCharStr / rtCopy32BitCharStr: deep copies of character arrays. */
KORVEX_API int rtCopy16BitCharStr(ASN1CTXT* ctxt, const Asn116BitCharString* src,
                                  Asn116BitCharString* dest);
KORVEX_API int rtCopy32BitCharStr(ASN1CTXT* ctxt, const Asn132BitCharString* src,
                                  Asn132BitCharString* dest);

/* rtCmpOID: 1 when both identifiers have the same arcs, else 0. */
KORVEX_API int rtCmpOID(const ASN1OBJID* a, const ASN1OBJID* b);

KORVEX_END_C

/* The C++ forms of the value records (ASN1TDynOctStr, ASN1TDynBitStr,
 * ASN1TOpenType) are in korvex/asn1rt/ASN1TValueTypes.h. */

#endif
