// The class layer: contexts, message buffers and the control-class base.
#include <korvex/asn1rt/asn1CppTypes.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "rt_test_util.h"

using rttest::Bytes;
using rttest::Hex;

namespace {

// A control class over one INTEGER, written as the generated ones are.
class IntControl : public ASN1CType {
 public:
  explicit IntControl(ASN1INT& value) : value_(value) {}
  IntControl(ASN1MessageBufferIF& buffer, ASN1INT& value) : ASN1CType(buffer), value_(value) {}
  int EncodeTo(ASN1MessageBufferIF& buffer) override {
    setMsgBuf(buffer);
    buffer.init();
    return xe_integer(buffer.getCtxtPtr(), &value_, ASN1EXPL);
  }
  int DecodeFrom(ASN1MessageBufferIF& buffer) override {
    setMsgBuf(buffer);
    buffer.init();
    return xd_integer(buffer.getCtxtPtr(), &value_, ASN1EXPL, 0);
  }

 private:
  ASN1INT& value_;
};

// A control class that overrides neither EncodeTo nor DecodeFrom.
class PlainControl : public ASN1CType {};

TEST(RtClasses, ContextReferenceCounting) {
  auto* ctx = new ASN1Context();
  EXPECT_EQ(ctx->getRefCount(), 0u);
  EXPECT_EQ(ctx->getPtr()->initCode, 0x1AA2A34Au);
  ctx->_ref();
  ctx->_ref();
  ctx->_unref();
  EXPECT_EQ(ctx->getRefCount(), 1u);
  EXPECT_NE(rtMemAlloc(ctx->getPtr(), 10), nullptr);
  ctx->_unref();  // deleted here; the sanitizer reports a leak otherwise
}

TEST(RtClasses, ContextCreationFailureThrowsRtlError) {
  rttest::ScopedCountingAlloc scoped;
  scoped.alloc.failAt = 1;
  try {
    ASN1BEREncodeBuffer buffer;
    FAIL() << "no exception";
  } catch (const ASN1MessageBuffer::RTLError& e) {
    EXPECT_EQ(e.getStatus(), ASN_E_NOMEM);
  }
  scoped.alloc.failAt = -1;
  EXPECT_EQ(scoped.alloc.live, 0);
}

TEST(RtClasses, EncodeBufferDynamicAndStatic) {
  ASN1BEREncodeBuffer buffer;
  EXPECT_TRUE(buffer.isA(ASN1MessageBufferIF::BEREncode));
  EXPECT_FALSE(buffer.isA(ASN1MessageBufferIF::BERDecode));
  EXPECT_EQ(buffer.getCtxtPtr()->buffer.dynamic, 1);
  EXPECT_EQ(buffer.getMsgCopy(), nullptr);
  ASN1INT v = 300;
  ASSERT_EQ(xe_integer(buffer.getCtxtPtr(), &v, ASN1EXPL), 4);
  EXPECT_EQ(Hex(buffer.getMsgPtr(), 4), "02 02 01 2C");
  EXPECT_EQ(buffer.getMsgLen(), 4);
  std::unique_ptr<ASN1OCTET[]> copy(buffer.getMsgCopy());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(Hex(copy.get(), 4), "02 02 01 2C");
  EXPECT_EQ(buffer.init(), 0);
  EXPECT_EQ(buffer.getMsgLen(), 0);
  EXPECT_EQ(buffer.initBuffer(static_cast<unsigned short*>(nullptr)), ASN_E_NOTSUPP);
  unsigned short wide[2] = {1, 0};
  EXPECT_EQ(buffer.initBuffer(wide), ASN_E_NOTSUPP);

  ASN1OCTET mine[4];
  ASN1BEREncodeBuffer fixed(mine, sizeof(mine));
  EXPECT_EQ(fixed.getCtxtPtr()->buffer.dynamic, 0);
  ASN1INT small = 1;
  EXPECT_EQ(xe_integer(fixed.getCtxtPtr(), &small, ASN1EXPL), 3);
  EXPECT_EQ(xe_integer(fixed.getCtxtPtr(), &small, ASN1EXPL), ASN_E_BUFOVFLW);
  EXPECT_EQ(fixed.setBuffer(nullptr, 0), 0);  // now dynamic
  EXPECT_EQ(fixed.getCtxtPtr()->buffer.dynamic, 1);
  try {
    ASN1BEREncodeBuffer none(mine, 0);
    FAIL() << "no exception";
  } catch (const ASN1MessageBuffer::RTLError& e) {
    EXPECT_EQ(e.getStatus(), ASN_E_BUFOVFLW);
  }
}

TEST(RtClasses, ShiftOperatorsThrowOnAnyNonZeroResult) {
  ASN1BEREncodeBuffer buffer;
  ASN1INT value = 5;
  IntControl control(value);
  // A successful encode returns its length, 3, and that is thrown too.
  try {
    buffer << control;
    FAIL() << "no exception";
  } catch (const ASN1RTLException& e) {
    EXPECT_EQ(e.getStatus(), 3);
  }
  EXPECT_EQ(Hex(buffer.getMsgPtr(), 3), "02 01 05");
  EXPECT_EQ(control.getMsgBuf(), &buffer);
  // The direct call gives the length.
  EXPECT_EQ(control.EncodeTo(buffer), 3);
  // A control class that does not override EncodeTo: nothing happens.
  PlainControl plain;
  buffer.init();
  EXPECT_NO_THROW(buffer << plain);
  EXPECT_EQ(buffer.getMsgLen(), 0);

  std::vector<ASN1OCTET> msg = Bytes("02 01 07");
  ASN1BERDecodeBuffer decoder(msg.data(), 3);
  ASN1INT out = 0;
  IntControl reader(out);
  EXPECT_NO_THROW(decoder >> reader);
  EXPECT_EQ(out, 7);
  std::vector<ASN1OCTET> bad = Bytes("04 01 07");
  ASN1BERDecodeBuffer badDecoder(bad.data(), 3);
  try {
    badDecoder >> reader;
    FAIL() << "no exception";
  } catch (const ASN1RTLException& e) {
    EXPECT_EQ(e.getStatus(), ASN_E_IDNOTFOU);
  }
  EXPECT_NO_THROW(badDecoder >> plain);
}

TEST(RtClasses, DecodeBufferSetBufferKeepRule) {
  std::vector<ASN1OCTET> msg = Bytes("30 06 02 01 01 02 01 02");
  ASN1BERDecodeBuffer decoder;
  EXPECT_TRUE(decoder.isA(ASN1MessageBufferIF::BERDecode));
  EXPECT_FALSE(decoder.isBufferSet());
  EXPECT_EQ(decoder.setBuffer(msg.data(), 8), 0);
  EXPECT_TRUE(decoder.isBufferSet());
  int len = 0;
  EXPECT_EQ(decoder.findElement(TM_UNIV | ASN_ID_INT, len), 0);
  EXPECT_EQ(len, 1);
  ASN1UINT cursor = decoder.getCtxtPtr()->buffer.byteIndex;
  EXPECT_EQ(cursor, 4u);
  // Same buffer with keep: nothing is reinstalled.
  EXPECT_EQ(decoder.setBuffer(msg.data(), 8, 1), 0);
  EXPECT_EQ(decoder.getCtxtPtr()->buffer.byteIndex, cursor);
  EXPECT_EQ(decoder.init(), 0);
  EXPECT_EQ(decoder.getCtxtPtr()->buffer.byteIndex, cursor);
  // Without keep it is installed again.
  EXPECT_EQ(decoder.setBuffer(msg.data(), 8), 0);
  EXPECT_EQ(decoder.getCtxtPtr()->buffer.byteIndex, 0u);
  EXPECT_EQ(decoder.findElement(TM_UNIV | ASN_ID_OCTSTR, len), ASN_E_IDNOTFOU);
  EXPECT_EQ(decoder.getCtxtPtr()->buffer.byteIndex, 0u);
  EXPECT_EQ(decoder.setBuffer(nullptr, 8), ASN_E_NOTSUPP);
  EXPECT_FALSE(decoder.isBufferSet());
  EXPECT_EQ(decoder.setBuffer(msg.data(), 0), ASN_E_NOTSUPP);
  EXPECT_EQ(decoder.setBuffer(msg.data(), 0, 1), ASN_E_NOTSUPP);
  EXPECT_EQ(decoder.setBuffer(msg.data(), 5), ASN_E_INVLEN);  // shorter than the element

  ASN1BERDecodeBuffer broken(msg.data(), 3);
  EXPECT_EQ(broken.getStatus(), ASN_E_INVLEN);
}

TEST(RtClasses, InitBufferFromMemBufAndText) {
  ASN1MemBuf mem;
  EXPECT_EQ(mem.append(nullptr, 0), 0);
  EXPECT_EQ(mem.append(nullptr, 1), ASN_E_BADVALUE);
  std::vector<ASN1OCTET> msg = Bytes("02 01 09");
  ASSERT_EQ(mem.append(msg.data(), 3), 0);
  EXPECT_EQ(mem.getDataLen(), 3u);
  EXPECT_GE(mem.getCapacity(), 3u);
  ASN1BERDecodeBuffer decoder;
  ASSERT_EQ(decoder.initBuffer(mem), 0);
  EXPECT_TRUE(decoder.isBufferSet());
  ASN1INT v = 0;
  EXPECT_EQ(xd_integer(decoder.getCtxtPtr(), &v, ASN1EXPL, 0), 0);
  EXPECT_EQ(v, 9);
  std::unique_ptr<ASN1OCTET[]> copy(decoder.getMsgCopy());
  EXPECT_EQ(Hex(copy.get(), 3), "02 01 09");

  char text[] = "\x04\x02hi";
  ASN1BERDecodeBuffer fromText;
  ASSERT_EQ(fromText.initBuffer(text), 0);
  const ASN1OCTET* data;
  ASN1UINT n;
  EXPECT_EQ(xd_octstr(fromText.getCtxtPtr(), &data, &n, ASN1EXPL, 0), 0);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(data), n), "hi");
  EXPECT_EQ(fromText.initBuffer(static_cast<char*>(nullptr)), ASN_E_INVPARAM);

  ASN1MemBuf space;
  ASSERT_EQ(space.reserve(16), 0);
  ASSERT_EQ(space.setLength(16), 0);
  EXPECT_EQ(space.setLength(1u << 20), ASN_E_INVPARAM);
  ASN1BEREncodeBuffer encoder;
  ASSERT_EQ(encoder.initBuffer(space), 0);
  ASN1INT w = 2;
  EXPECT_EQ(xe_integer(encoder.getCtxtPtr(), &w, ASN1EXPL), 3);
  EXPECT_EQ(encoder.getMsgPtr(), space.getData() + 12);
  space.reset();
  EXPECT_EQ(space.getDataLen(), 0u);
}

TEST(RtClasses, ControlObjectsShareContextsAndHeaps) {
  ASN1INT value = 1;
  const ASN1OCTET* kept = nullptr;
  {
    IntControl control(value);
    ASN1Context* own = control.getContext();
    EXPECT_EQ(own->getRefCount(), 1u);
    {
      ASN1BERDecodeBuffer decoder;
      EXPECT_EQ(decoder.getContext()->getRefCount(), 1u);
      IntControl bound(decoder, value);
      EXPECT_EQ(bound.getContext(), decoder.getContext());
      EXPECT_EQ(decoder.getContext()->getRefCount(), 2u);
      IntControl copy(bound);
      EXPECT_EQ(decoder.getContext()->getRefCount(), 3u);
      EXPECT_EQ(copy.getMsgBuf(), &decoder);
      // setMsgBuf moves the control object's type heap to the buffer's.
      control.setMsgBuf(decoder);
      EXPECT_EQ(control.getCtxtPtr()->pTypeMemHeap, decoder.getCtxtPtr()->pTypeMemHeap);
      auto* p = static_cast<ASN1OCTET*>(rtMemAlloc(decoder.getCtxtPtr(), 4));
      p[0] = 0x42;
      kept = p;
    }
    // The buffer is gone; its heap lives on in the control object's context.
    EXPECT_EQ(kept[0], 0x42);
  }
}

TEST(RtClasses, EncodeAndDecodeUseTheRememberedBuffer) {
  ASN1BEREncodeBuffer buffer;
  ASN1INT value = -2;
  IntControl control(buffer, value);
  EXPECT_EQ(control.Encode(), 3);
  EXPECT_EQ(Hex(buffer.getMsgPtr(), 3), "02 01 FE");
  PlainControl none;
  EXPECT_EQ(none.Encode(), ASN_E_INVPARAM);
  EXPECT_EQ(none.Decode(), ASN_E_INVPARAM);
  std::vector<ASN1OCTET> msg = Bytes("02 01 7F");
  ASN1BERDecodeBuffer decoder(msg.data(), 3);
  ASN1INT out = 0;
  IntControl reader(decoder, out);
  EXPECT_EQ(reader.Decode(), 0);
  EXPECT_EQ(out, 127);
  testing::internal::CaptureStdout();
  decoder.printErrorInfo();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "ASN.1 ERROR: Status 0\n");
}

}  // namespace
