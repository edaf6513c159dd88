// cpp_context.cpp: ASN1Context, the reference-counted owner of an ASN1CTXT,
// and ASN1MemBuf.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <korvex/asn1rt/asn1CppTypes.h>

ASN1Context::ASN1Context() : mRefCnt(0) {
  int stat = rtInitContext(&mCtxt, nullptr);
  if (stat != ASN_OK) {
    rtFreeContext(&mCtxt);
    throw ASN1MessageBuffer::RTLError(stat);
  }
}

ASN1Context::~ASN1Context() { rtFreeContext(&mCtxt); }

void ASN1Context::_unref() {
  if (mRefCnt == 0) return;
  if (--mRefCnt == 0) delete this;  // the destructor frees the context
}

void ASN1Context::PrintErrorInfo() { rtErrPrint(&mCtxt.errInfo); }

ASN1MemBuf::~ASN1MemBuf() { std::free(mData); }

int ASN1MemBuf::reserve(size_t capacity) {
  if (capacity <= mCapacity) return ASN_OK;
  size_t grown = mCapacity ? mCapacity : 256;
  while (grown < capacity) {
    if (grown > SIZE_MAX / 2) {
      grown = capacity;
      break;
    }
    grown *= 2;
  }
  auto* p = static_cast<ASN1OCTET*>(std::realloc(mData, grown));
  if (!p) return ASN_E_NOMEM;
  mData = p;
  mCapacity = grown;
  return ASN_OK;
}

int ASN1MemBuf::append(const ASN1OCTET* bytes, size_t n) {
  if (n == 0) return ASN_OK;
  if (!bytes) return ASN_E_BADVALUE;
  if (n > SIZE_MAX - mLength) return ASN_E_NOMEM;
  int stat = reserve(mLength + n);
  if (stat != ASN_OK) return stat;
  std::memcpy(mData + mLength, bytes, n);
  mLength += n;
  return ASN_OK;
}

int ASN1MemBuf::setLength(size_t length) {
  if (length > mCapacity) return ASN_E_INVPARAM;
  mLength = length;
  return ASN_OK;
}
