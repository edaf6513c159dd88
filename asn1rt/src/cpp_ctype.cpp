// cpp_ctype.cpp: ASN1CType, the base of the generated control classes.
#include <korvex/asn1rt/asn1CppTypes.h>

ASN1CType::ASN1CType() : mpContext(new ASN1Context()), mpMsgBuf(nullptr) { mpContext->_ref(); }

ASN1CType::ASN1CType(ASN1MessageBufferIF& buffer)
    : mpContext(buffer.getContext()), mpMsgBuf(&buffer) {
  mpContext->_ref();
}

ASN1CType::ASN1CType(ASN1Context* context)
    : mpContext(context ? context : new ASN1Context()), mpMsgBuf(nullptr) {
  mpContext->_ref();
}

ASN1CType::ASN1CType(const ASN1CType& other)
    : mpContext(other.mpContext), mpMsgBuf(other.mpMsgBuf) {
  mpContext->_ref();
}

ASN1CType::~ASN1CType() { mpContext->_unref(); }

int ASN1CType::Encode() {
  if (!mpMsgBuf) return ASN_E_INVPARAM;
  return EncodeTo(*mpMsgBuf);
}

int ASN1CType::Decode() {
  if (!mpMsgBuf) return ASN_E_INVPARAM;
  return DecodeFrom(*mpMsgBuf);
}

int ASN1CType::EncodeTo(ASN1MessageBufferIF&) { return 0; }

int ASN1CType::DecodeFrom(ASN1MessageBufferIF&) { return 0; }

void ASN1CType::setMsgBuf(ASN1MessageBufferIF& buffer) {
  mpMsgBuf = &buffer;
  rtCtxtSetMemHeap(getCtxtPtr(), buffer.getCtxtPtr());
}
