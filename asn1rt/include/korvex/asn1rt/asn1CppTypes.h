// korvex/asn1rt/asn1CppTypes.h: the class layer over the runtime's C functions.
//
// ASN1Context owns an ASN1CTXT and is shared by reference counting between a
// message buffer and the control objects (ASN1CType) bound to it. Message
// buffers hold a context and the bytes being encoded or decoded. Failures of
// construction and of operator<< / operator>> are thrown as ASN1RTLException
// (ASN1MessageBuffer::RTLError for construction); every other member returns
// the runtime status. Objects belong to one thread; reference counts are plain.
#ifndef KORVEX_ASN1RT_ASN1CPPTYPES_H
#define KORVEX_ASN1RT_ASN1CPPTYPES_H

#include <cstddef>

#include <korvex/asn1rt/ASN1TValueTypes.h>
#include <korvex/asn1rt/asn1ber.h>
#include <korvex/asn1rt/asn1type.h>

class ASN1CType;

// ASN1RTLException: a runtime status carried as an exception.
class KORVEX_API ASN1RTLException {
 public:
  explicit ASN1RTLException(int status) : mStatus(status) {}
  // getStatus: the runtime status (ASN_E_...), or the positive result that
  // operator<< / operator>> refused.
  int getStatus() const { return mStatus; }

 protected:
  int mStatus;
};

// ASN1Context: an ASN1CTXT followed by a reference count that starts at 0.
// Construction runs rtInitContext with null allocator user data and throws
// ASN1MessageBuffer::RTLError on failure; destruction runs rtFreeContext.
// Create with new and manage with _ref() / _unref().
class KORVEX_API ASN1Context {
 public:
  ASN1Context();
  ~ASN1Context();
  ASN1Context(const ASN1Context&) = delete;
  ASN1Context& operator=(const ASN1Context&) = delete;

  // getPtr: the runtime context.
  ASN1CTXT* getPtr() { return &mCtxt; }
  const ASN1CTXT* getPtr() const { return &mCtxt; }

  // _ref: adds a reference. _unref: drops one; when the count drops from 1 the
  // context is freed and the object deleted (do not touch it afterwards).
  void _ref() { ++mRefCnt; }
  void _unref();
  ASN1UINT getRefCount() const { return mRefCnt; }

  // getStatus: the first error status recorded in the context (0 for none).
  int getStatus() const { return mCtxt.errInfo.status; }

  // PrintErrorInfo: rtErrPrint on the context's error information.
  void PrintErrorInfo();

 private:
  ASN1CTXT mCtxt;
  ASN1UINT mRefCnt;
};

// ASN1MemBuf: a growable byte buffer (malloc/realloc, doubling). Owns its
// bytes; not copyable.
class KORVEX_API ASN1MemBuf {
 public:
  ASN1MemBuf() = default;
  ~ASN1MemBuf();
  ASN1MemBuf(const ASN1MemBuf&) = delete;
  ASN1MemBuf& operator=(const ASN1MemBuf&) = delete;

  // append: adds n bytes at the end. 0, -18 (null bytes with n > 0) or -12.
  int append(const ASN1OCTET* bytes, size_t n);
  // reserve: makes room for at least capacity bytes in all. 0 or -12.
  int reserve(size_t capacity);
  // setLength: sets the data length (at most the capacity). 0 or -30.
  int setLength(size_t length);
  // reset: length 0; the storage is kept.
  void reset() { mLength = 0; }

  ASN1OCTET* getData() { return mData; }
  const ASN1OCTET* getData() const { return mData; }
  size_t getDataLen() const { return mLength; }
  size_t getCapacity() const { return mCapacity; }

 private:
  ASN1OCTET* mData = nullptr;
  size_t mLength = 0;
  size_t mCapacity = 0;
};

// ASN1MessageBufferIF: the interface of message buffers.
class KORVEX_API ASN1MessageBufferIF {
 public:
  // Buffer kinds, as answered by isA.
  enum Type { BEREncode, BERDecode };

  virtual ~ASN1MessageBufferIF() {}
  virtual ASN1Context* getContext() = 0;
  virtual ASN1CTXT* getCtxtPtr() = 0;
  virtual ASN1OCTET* getMsgCopy() = 0;
  virtual const ASN1OCTET* getMsgPtr() = 0;
  virtual int init() = 0;
  virtual int initBuffer(ASN1MemBuf& memBuf) = 0;
  virtual int initBuffer(unsigned short* buffer) = 0;
  virtual int initBuffer(char* buffer) = 0;
  virtual ASN1BOOL isA(Type bufferType) = 0;
};

// ASN1MessageBuffer: a message buffer holding one reference to its context.
class KORVEX_API ASN1MessageBuffer : public ASN1MessageBufferIF {
 public:
  // RTLError: thrown by buffer and context construction and initialisation.
  class KORVEX_API RTLError : public ASN1RTLException {
   public:
    explicit RTLError(int status) : ASN1RTLException(status) {}
  };

  virtual ~ASN1MessageBuffer();
  ASN1MessageBuffer(const ASN1MessageBuffer&) = delete;
  ASN1MessageBuffer& operator=(const ASN1MessageBuffer&) = delete;

  // getContext: the context object (the buffer holds a reference).
  virtual ASN1Context* getContext() { return mpContext; }
  // getCtxtPtr: its runtime context.
  virtual ASN1CTXT* getCtxtPtr() { return mpContext->getPtr(); }
  // getMsgCopy: a copy of the installed buffer's bytes, allocated with new[]
  // and owned by the caller; null when no buffer is installed.
  virtual ASN1OCTET* getMsgCopy();
  // getMsgPtr: the start of the installed buffer.
  virtual const ASN1OCTET* getMsgPtr();
  // init: prepares the buffer for a new message; 0 here.
  virtual int init();
  // initBuffer(ASN1MemBuf&): uses memBuf's bytes (getDataLen() of them) as the
  // message buffer, then init(). The bytes stay memBuf's.
  virtual int initBuffer(ASN1MemBuf& memBuf);
  // initBuffer(unsigned short*): not supported; always -99.
  virtual int initBuffer(unsigned short* buffer);
  // initBuffer(char*): uses the NUL-terminated bytes as the message buffer,
  // then init(). -30 for null.
  virtual int initBuffer(char* buffer);
  virtual ASN1BOOL isA(Type bufferType) = 0;

  // getStatus: the first error status recorded in the context.
  int getStatus() { return getCtxtPtr()->errInfo.status; }
  // printErrorInfo: rtErrPrint on the context's error information.
  void printErrorInfo() { mpContext->PrintErrorInfo(); }

 protected:
  // Creates and initialises a new context (RTLError on failure).
  explicit ASN1MessageBuffer(Type bufferType);
  // Installs bytes as the message buffer for this kind of buffer.
  int installBytes(ASN1OCTET* bytes, size_t n);

  ASN1Context* mpContext;
  Type mBufferType;
};

// ASN1BERMessageBuffer: common base of the BER buffers.
class KORVEX_API ASN1BERMessageBuffer : public ASN1MessageBuffer {
 protected:
  explicit ASN1BERMessageBuffer(Type bufferType) : ASN1MessageBuffer(bufferType) {}
};

// ASN1BEREncodeBuffer: encodes backwards into a dynamic (growing) buffer or a
// caller's static buffer.
class KORVEX_API ASN1BEREncodeBuffer : public ASN1BERMessageBuffer {
 public:
  // A dynamic buffer (RTLError when it cannot be allocated).
  ASN1BEREncodeBuffer();
  // The caller's static buffer of size bytes (borrowed; one byte stays unused).
  // RTLError with -1 for a size below 1.
  ASN1BEREncodeBuffer(ASN1OCTET* buffer, int size);
  virtual ~ASN1BEREncodeBuffer();

  // getMsgCopy: new[] copy of the encoded message (caller owns it); null when
  // nothing is encoded.
  virtual ASN1OCTET* getMsgCopy();
  // getMsgPtr: xe_getp, the first byte of the encoded message.
  virtual const ASN1OCTET* getMsgPtr();
  // init: starts a new message (byte index back to size - 1). Returns 0.
  virtual int init();
  virtual ASN1BOOL isA(Type bufferType) { return bufferType == BEREncode; }

  // setBuffer: installs buffer with xe_setp (null: a dynamic buffer of size
  // bytes). Returns its status.
  int setBuffer(ASN1OCTET* buffer, int size);
  // getMsgLen: the number of bytes encoded so far.
  int getMsgLen() { return static_cast<int>(xe_getLength(getCtxtPtr())); }

  // operator<<: calls value.EncodeTo(*this) and throws ASN1RTLException with
  // its result whenever that result is non-zero. EncodeTo returns the encoded
  // length, so a successful encode of a non-empty value throws too, carrying
  // the positive length; call EncodeTo directly for the length. A control
  // class that does not override EncodeTo encodes nothing and does not throw.
  ASN1BEREncodeBuffer& operator<<(ASN1CType& value);
};

// ASN1BERDecodeBuffer: decodes from the caller's bytes (borrowed, never
// copied by the buffer).
class KORVEX_API ASN1BERDecodeBuffer : public ASN1BERMessageBuffer {
 public:
  ASN1BERDecodeBuffer();
  // Installs buf with setBuffer; an install failure is recorded in the
  // context (getStatus()) rather than thrown.
  ASN1BERDecodeBuffer(const ASN1OCTET* buffer, int size);
  virtual ~ASN1BERDecodeBuffer();

  // init: prepares for a decode at the current position; 0 (the cursor is
  // not moved, so a findElement stays in effect).
  virtual int init();
  virtual ASN1BOOL isA(Type bufferType) { return bufferType == BERDecode; }

  // setBuffer: with keep set and the same buffer and size already installed,
  // does nothing and returns 0. Otherwise remembers them; a null buffer or a
  // size below 1 gives -99; else installs with xd_setp and returns its status.
  int setBuffer(const ASN1OCTET* buffer, int size, ASN1BOOL keep = 0);

  // findElement: locates an element by tag (xd_match with flags); on success
  // length receives its contents length.
  int findElement(ASN1TAG tag, int& length, int flags = XM_SEARCH | XM_ADVANCE);

  // isBufferSet: whether a buffer is installed.
  ASN1BOOL isBufferSet() const { return mBufSet ? 1 : 0; }

  // operator>>: calls value.DecodeFrom(*this) and throws ASN1RTLException with
  // any non-zero result. A control class that does not override DecodeFrom
  // decodes nothing and does not throw.
  ASN1BERDecodeBuffer& operator>>(ASN1CType& value);

 private:
  friend class ASN1MessageBuffer;
  const ASN1OCTET* mpMsgBuf = nullptr;
  int mMsgBufLen = 0;
  bool mBufSet = false;
};

// ASN1CType: base of the generated control classes ASN1C_<Type>.
class KORVEX_API ASN1CType {
 public:
  virtual ~ASN1CType();
  // Encode / Decode: EncodeTo / DecodeFrom on the remembered buffer; -30 when
  // there is none.
  virtual int Encode();
  virtual int Decode();
  // EncodeTo / DecodeFrom: overridden by each control class; here they do
  // nothing and return 0.
  virtual int EncodeTo(ASN1MessageBufferIF& buffer);
  virtual int DecodeFrom(ASN1MessageBufferIF& buffer);

  // setMsgBuf: remembers buffer and makes this object's context use the
  // buffer context's type heap, so decoded values live in the buffer's heap.
  void setMsgBuf(ASN1MessageBufferIF& buffer);
  ASN1MessageBufferIF* getMsgBuf() { return mpMsgBuf; }

  // getContext / getCtxtPtr: the shared context object and its runtime context.
  ASN1Context* getContext() { return mpContext; }
  ASN1CTXT* getCtxtPtr() { return mpContext->getPtr(); }

  // getStatus: the first error status of the context.
  int getStatus() { return getCtxtPtr()->errInfo.status; }
  void PrintErrorInfo() { mpContext->PrintErrorInfo(); }

  // memAlloc / memAllocZ / memFreePtr: the context's type heap.
  void* memAlloc(size_t n) { return rtMemAlloc(getCtxtPtr(), n); }
  void* memAllocZ(size_t n) { return rtMemAllocZ(getCtxtPtr(), n); }
  void memFreePtr(void* p) { rtMemFreePtr(getCtxtPtr(), p); }

 protected:
  // A new context of its own, no message buffer (RTLError on failure).
  ASN1CType();
  // Shares buffer's context (one more reference) and remembers buffer.
  explicit ASN1CType(ASN1MessageBufferIF& buffer);
  // Shares context (one more reference); no message buffer.
  explicit ASN1CType(ASN1Context* context);
  // Shares the other object's context and buffer.
  ASN1CType(const ASN1CType& other);
  ASN1CType& operator=(const ASN1CType&) = delete;

  ASN1Context* mpContext;
  ASN1MessageBufferIF* mpMsgBuf;
};

#endif
