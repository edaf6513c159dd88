// cpp_msgbuf.cpp: message buffers (ASN1MessageBuffer and the BER encode and
// decode buffers).
#include <cstring>

#include <korvex/asn1rt/asn1CppTypes.h>

ASN1MessageBuffer::ASN1MessageBuffer(Type bufferType)
    : mpContext(new ASN1Context()), mBufferType(bufferType) {
  mpContext->_ref();
}

ASN1MessageBuffer::~ASN1MessageBuffer() { mpContext->_unref(); }

ASN1OCTET* ASN1MessageBuffer::getMsgCopy() {
  ASN1CTXT* ctxt = getCtxtPtr();
  if (!ctxt->buffer.data || ctxt->buffer.size == 0) return nullptr;
  auto* copy = new ASN1OCTET[ctxt->buffer.size];
  std::memcpy(copy, ctxt->buffer.data, ctxt->buffer.size);
  return copy;
}

const ASN1OCTET* ASN1MessageBuffer::getMsgPtr() { return getCtxtPtr()->buffer.data; }

int ASN1MessageBuffer::init() { return ASN_OK; }

int ASN1MessageBuffer::installBytes(ASN1OCTET* bytes, size_t n) {
  if (n > 0x7FFFFFFF) return ASN_E_INVPARAM;
  // A decode buffer remembers what it installs (its setBuffer keep rule).
  if (auto* decoder = dynamic_cast<ASN1BERDecodeBuffer*>(this)) {
    return decoder->setBuffer(bytes, static_cast<int>(n));
  }
  int stat = rtInitContextBuffer(getCtxtPtr(), bytes, static_cast<ASN1UINT>(n));
  if (stat != ASN_OK) return stat;
  return init();
}

int ASN1MessageBuffer::initBuffer(ASN1MemBuf& memBuf) {
  if (!memBuf.getData()) return ASN_E_INVPARAM;
  return installBytes(memBuf.getData(), memBuf.getDataLen());
}

int ASN1MessageBuffer::initBuffer(unsigned short*) { return ASN_E_NOTSUPP; }

int ASN1MessageBuffer::initBuffer(char* buffer) {
  if (!buffer) return ASN_E_INVPARAM;
  return installBytes(reinterpret_cast<ASN1OCTET*>(buffer), std::strlen(buffer));
}

// ---- Encode buffer ---------------------------------------------------------

ASN1BEREncodeBuffer::ASN1BEREncodeBuffer() : ASN1BERMessageBuffer(BEREncode) {
  int stat = xe_setp(getCtxtPtr(), nullptr, 0);
  // The base destructor runs on the throw and drops the context.
  if (stat != ASN_OK) throw RTLError(stat);
}

ASN1BEREncodeBuffer::ASN1BEREncodeBuffer(ASN1OCTET* buffer, int size)
    : ASN1BERMessageBuffer(BEREncode) {
  int stat = size < 1 ? ASN_E_BUFOVFLW : xe_setp(getCtxtPtr(), buffer, static_cast<ASN1UINT>(size));
  // The base destructor runs on the throw and drops the context.
  if (stat != ASN_OK) throw RTLError(stat);
}

ASN1BEREncodeBuffer::~ASN1BEREncodeBuffer() {}

ASN1OCTET* ASN1BEREncodeBuffer::getMsgCopy() {
  ASN1CTXT* ctxt = getCtxtPtr();
  ASN1UINT len = xe_getLength(ctxt);
  if (len == 0) return nullptr;
  auto* copy = new ASN1OCTET[len];
  std::memcpy(copy, xe_getp(ctxt), len);
  return copy;
}

const ASN1OCTET* ASN1BEREncodeBuffer::getMsgPtr() { return xe_getp(getCtxtPtr()); }

int ASN1BEREncodeBuffer::init() {
  ASN1CTXT* ctxt = getCtxtPtr();
  ctxt->buffer.byteIndex = ctxt->buffer.size ? ctxt->buffer.size - 1 : 0;
  return ASN_OK;
}

int ASN1BEREncodeBuffer::setBuffer(ASN1OCTET* buffer, int size) {
  if (size < 0) return ASN_E_INVPARAM;
  return xe_setp(getCtxtPtr(), buffer, static_cast<ASN1UINT>(size));
}

ASN1BEREncodeBuffer& ASN1BEREncodeBuffer::operator<<(ASN1CType& value) {
  int result = value.EncodeTo(*this);
  // Deliberately any non-zero result, the positive length included.
  if (result != 0) throw ASN1RTLException(result);
  return *this;
}

// ---- Decode buffer ---------------------------------------------------------

ASN1BERDecodeBuffer::ASN1BERDecodeBuffer() : ASN1BERMessageBuffer(BERDecode) {}

ASN1BERDecodeBuffer::ASN1BERDecodeBuffer(const ASN1OCTET* buffer, int size)
    : ASN1BERMessageBuffer(BERDecode) {
  int stat = setBuffer(buffer, size);
  if (stat != ASN_OK) rtErrSetData(&getCtxtPtr()->errInfo, stat);
}

ASN1BERDecodeBuffer::~ASN1BERDecodeBuffer() {}

int ASN1BERDecodeBuffer::init() { return ASN_OK; }

int ASN1BERDecodeBuffer::setBuffer(const ASN1OCTET* buffer, int size, ASN1BOOL keep) {
  if (keep && mBufSet && buffer == mpMsgBuf && size == mMsgBufLen) return ASN_OK;
  mpMsgBuf = buffer;
  mMsgBufLen = size;
  mBufSet = false;
  if (!buffer || size < 1) return ASN_E_NOTSUPP;
  int stat = xd_setp(getCtxtPtr(), buffer, size, nullptr, nullptr);
  mBufSet = stat == ASN_OK;
  return stat;
}

int ASN1BERDecodeBuffer::findElement(ASN1TAG tag, int& length, int flags) {
  return xd_match(getCtxtPtr(), tag, &length, static_cast<ASN1OCTET>(flags));
}

ASN1BERDecodeBuffer& ASN1BERDecodeBuffer::operator>>(ASN1CType& value) {
  int result = value.DecodeFrom(*this);
  if (result != 0) throw ASN1RTLException(result);
  return *this;
}
