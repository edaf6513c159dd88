// ASN1CSeqOfList and its iterator over an rtDList.
#include <gtest/gtest.h>
#include <korvex/asn1rt/ASN1CSeqOfList.h>
#include <korvex/asn1rt/ASN1CTime.h>

#include <string>
#include <vector>

namespace {

class SeqOfListTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(rtInitContext(&ctxt_, nullptr), 0);
    rtDListInit(&list_);
  }
  void TearDown() override { rtFreeContext(&ctxt_); }

  // Contents renders the list as the letters its elements point to.
  std::string Contents() const {
    std::string out;
    for (rtDListNode* node = list_.head; node != nullptr; node = node->next) {
      out.push_back(node->data == nullptr ? '0' : *static_cast<char*>(node->data));
    }
    return out;
  }
  size_t Blocks() { return rtMemHeapBlockCount(&ctxt_.pTypeMemHeap); }

  ASN1CTXT ctxt_;
  rtDList list_;
  char a_ = 'a', b_ = 'b', c_ = 'c', d_ = 'd', x_ = 'x';
};

TEST_F(SeqOfListTest, AppendInsertGetRemove) {
  ASN1CSeqOfList list(&ctxt_, list_);
  EXPECT_TRUE(list.isEmpty());
  EXPECT_EQ(list.getFirst(), nullptr);
  ASSERT_EQ(list.append(&b_), 0);
  ASSERT_EQ(list.insert(0, &a_), 0);
  ASSERT_EQ(list.insert(2, &d_), 0);  // size() appends
  ASSERT_EQ(list.insert(2, &c_), 0);
  EXPECT_EQ(Contents(), "abcd");
  EXPECT_EQ(list.size(), 4);
  EXPECT_EQ(list.insert(5, &x_), -30);
  EXPECT_EQ(list.insert(-1, &x_), -30);
  EXPECT_EQ(list.get(2), &c_);
  EXPECT_EQ(list.get(4), nullptr);
  EXPECT_EQ(list.get(-1), nullptr);
  EXPECT_EQ(list.getFirst(), &a_);
  EXPECT_EQ(list.getLast(), &d_);
  EXPECT_EQ(list.indexOf(&c_), 2);
  EXPECT_EQ(list.indexOf(&x_), -1);
  EXPECT_TRUE(list.contains(&d_));

  ASSERT_EQ(list.set(1, &x_), 0);
  EXPECT_EQ(Contents(), "axcd");
  EXPECT_EQ(list.set(4, &x_), -30);
  ASSERT_EQ(list.remove(1), 0);
  EXPECT_EQ(Contents(), "acd");
  ASSERT_EQ(list.remove(static_cast<const void*>(&d_)), 0);
  EXPECT_EQ(Contents(), "ac");
  EXPECT_EQ(list.remove(static_cast<const void*>(&d_)), -30);
  EXPECT_EQ(list.remove(7), -30);
}

TEST_F(SeqOfListTest, NodesAndElementsComeFromTheContextHeap) {
  size_t before = Blocks();
  ASN1CSeqOfList list(&ctxt_, list_);
  for (int i = 0; i < 3; ++i) {
    auto* element = static_cast<unsigned char*>(list.appendNewElement(24));
    ASSERT_NE(element, nullptr);
    for (int j = 0; j < 24; ++j) ASSERT_EQ(element[j], 0) << "elements start zeroed";
  }
  EXPECT_EQ(Blocks(), before + 6);  // a node and an element each
  list.clear();
  EXPECT_EQ(Blocks(), before + 3);  // elements stay
  EXPECT_EQ(list.size(), 0);

  for (int i = 0; i < 3; ++i) ASSERT_NE(list.appendNewElement(8), nullptr);
  list.freeMemory();
  EXPECT_EQ(Blocks(), before + 3);  // what clear() left was no longer in the list
  EXPECT_TRUE(list.isEmpty());
}

TEST_F(SeqOfListTest, WithoutContextOnlyReads) {
  ASN1CSeqOfList writer(&ctxt_, list_);
  ASSERT_EQ(writer.append(&a_), 0);
  ASN1CSeqOfList reader(nullptr, list_);
  EXPECT_EQ(reader.append(&b_), -30);
  EXPECT_EQ(reader.appendNewElement(4), nullptr);
  EXPECT_EQ(reader.insert(0, &b_), -30);
  EXPECT_EQ(reader.remove(0), -30);
  EXPECT_EQ(reader.set(0, &b_), -30);
  reader.clear();
  reader.freeMemory();
  EXPECT_EQ(Contents(), "a");
  ASN1CSeqOfListIterator it = reader.iterator();
  EXPECT_EQ(it.next(), &a_);
  EXPECT_EQ(it.remove(), -30);
}

TEST_F(SeqOfListTest, IteratorWalksBothWays) {
  ASN1CSeqOfList list(&ctxt_, list_);
  for (char* p : {&a_, &b_, &c_}) ASSERT_EQ(list.append(p), 0);
  std::string forward, backward;
  for (ASN1CSeqOfListIterator it = list.iterator(); it.hasNext();) {
    forward.push_back(*static_cast<char*>(it.next()));
  }
  for (ASN1CSeqOfListIterator it = list.iteratorFromLast(); it.hasPrev();) {
    backward.push_back(*static_cast<char*>(it.prev()));
  }
  EXPECT_EQ(forward, "abc");
  EXPECT_EQ(backward, "cba");

  ASN1CSeqOfListIterator from = list.iteratorFrom(1);
  EXPECT_EQ(from.next(), &b_);
  ASN1CSeqOfListIterator past = list.iteratorFrom(9);
  EXPECT_FALSE(past.hasNext());
  EXPECT_EQ(past.prev(), &c_);
}

TEST_F(SeqOfListTest, IteratorReportsMinus27WhenNotOnAnElement) {
  ASN1CSeqOfList list(&ctxt_, list_);
  ASSERT_EQ(list.append(&a_), 0);
  ASN1CSeqOfListIterator it = list.iterator();
  EXPECT_FALSE(it.hasPrev());
  EXPECT_EQ(it.prev(), nullptr);
  EXPECT_EQ(it.status(), -27);
  EXPECT_EQ(it.remove(), -27);  // nothing returned yet
  EXPECT_EQ(it.set(&x_), -27);
  EXPECT_EQ(it.next(), &a_);
  EXPECT_EQ(it.status(), 0);
  EXPECT_EQ(it.next(), nullptr);  // past the end
  EXPECT_EQ(it.status(), -27);
  EXPECT_EQ(it.remove(), 0);
  EXPECT_EQ(it.remove(), -27);  // removed already
  EXPECT_EQ(it.set(&x_), -27);
  EXPECT_TRUE(list.isEmpty());
}

TEST_F(SeqOfListTest, IteratorChangesFollowListIteratorRules) {
  ASN1CSeqOfList list(&ctxt_, list_);
  for (char* p : {&a_, &b_, &c_}) ASSERT_EQ(list.append(p), 0);
  ASN1CSeqOfListIterator it = list.iterator();
  EXPECT_EQ(it.next(), &a_);
  ASSERT_EQ(it.insert(&x_), 0);
  EXPECT_EQ(Contents(), "axbc");
  EXPECT_EQ(it.remove(), -27);  // an insert leaves nothing to remove
  EXPECT_EQ(it.next(), &b_);    // the inserted element is behind the position
  EXPECT_EQ(it.prev(), &b_);
  EXPECT_EQ(it.prev(), &x_);
  ASSERT_EQ(it.remove(), 0);  // the element returned by prev
  EXPECT_EQ(Contents(), "abc");
  EXPECT_EQ(it.next(), &b_);
  ASSERT_EQ(it.set(&d_), 0);
  EXPECT_EQ(Contents(), "adc");
  EXPECT_EQ(it.next(), &c_);
  ASSERT_EQ(it.insert(&x_), 0);  // at the end: appends
  EXPECT_EQ(Contents(), "adcx");
  EXPECT_FALSE(it.hasNext());
  EXPECT_EQ(it.prev(), &x_);
}

TEST_F(SeqOfListTest, IteratorReportsMinus28WhenTheListChangesUnderIt) {
  ASN1CSeqOfList list(&ctxt_, list_);
  for (char* p : {&a_, &b_}) ASSERT_EQ(list.append(p), 0);

  ASN1CSeqOfListIterator viaList = list.iterator();
  EXPECT_EQ(viaList.next(), &a_);
  ASSERT_EQ(list.append(&c_), 0);
  EXPECT_EQ(viaList.next(), nullptr);
  EXPECT_EQ(viaList.status(), -28);
  EXPECT_EQ(viaList.remove(), -28);
  EXPECT_EQ(viaList.set(&x_), -28);
  EXPECT_EQ(viaList.insert(&x_), -28);
  EXPECT_EQ(viaList.prev(), nullptr);
  EXPECT_EQ(viaList.status(), -28);

  ASN1CSeqOfListIterator direct = list.iterator();
  EXPECT_EQ(direct.next(), &a_);
  ASSERT_NE(rtDListAppend(&ctxt_, &list_, &d_), nullptr);  // behind the list object's back
  EXPECT_EQ(direct.next(), nullptr);
  EXPECT_EQ(direct.status(), -28);

  ASN1CSeqOfListIterator first = list.iterator(), second = list.iterator();
  EXPECT_EQ(first.next(), &a_);
  EXPECT_EQ(second.next(), &a_);
  ASSERT_EQ(first.remove(), 0);
  EXPECT_EQ(first.next(), &b_);  // its own change does not disturb it
  EXPECT_EQ(second.next(), nullptr);
  EXPECT_EQ(second.status(), -28);
  EXPECT_EQ(Contents(), "bcd");

  ASN1CSeqOfListIterator replaced = list.iterator();
  EXPECT_EQ(replaced.next(), &b_);
  ASSERT_EQ(list.set(0, &x_), 0);  // replacing an element is not a structural change
  EXPECT_EQ(replaced.next(), &c_);
}

TEST_F(SeqOfListTest, BareIteratorWalksAConstList) {
  ASN1CSeqOfList list(&ctxt_, list_);
  for (char* p : {&a_, &b_}) ASSERT_EQ(list.append(p), 0);
  const rtDList& record = list_;
  ASN1CSeqOfListIterator it(record);
  EXPECT_EQ(it.next(), &a_);
  EXPECT_EQ(it.remove(), -30);
  EXPECT_EQ(it.set(&x_), -30);
  EXPECT_EQ(it.insert(&x_), -30);
  EXPECT_EQ(it.next(), &b_);
  EXPECT_FALSE(it.hasNext());
  ASSERT_NE(rtDListAppend(&ctxt_, &list_, &c_), nullptr);
  EXPECT_EQ(it.next(), nullptr);
  EXPECT_EQ(it.status(), -28);
}

TEST_F(SeqOfListTest, NullElementsAreElements) {
  ASN1CSeqOfList list(&ctxt_, list_);
  ASSERT_EQ(list.append(nullptr), 0);
  ASN1CSeqOfListIterator it = list.iterator();
  EXPECT_TRUE(it.hasNext());
  EXPECT_EQ(it.next(), nullptr);
  EXPECT_EQ(it.status(), 0);
  EXPECT_EQ(Contents(), "0");
}

TEST(SeqOfListContexts, ABufferContextLivesAsLongAsTheList) {
  auto* buffer = new ASN1BEREncodeBuffer;
  ASN1Context* context = buffer->getContext();
  ASN1TSeqOfList record;
  EXPECT_EQ(record.count, 0u);
  EXPECT_EQ(record.head, nullptr);
  {
    ASN1CSeqOfList list(*buffer, record);
    EXPECT_EQ(context->getRefCount(), 2u);
    delete buffer;  // the list still holds the context and its heap
    ASSERT_NE(list.appendNewElement(16), nullptr);
    EXPECT_EQ(list.size(), 1);
  }  // the last reference frees the heap, nodes and elements included
}

TEST(SeqOfListContexts, AControlObjectSharesItsContext) {
  ASN1CGeneralizedTime control(true);  // any control object will do
  ASN1TSeqOfList record;
  ASN1CSeqOfList list(control, record);
  EXPECT_EQ(control.getContext()->getRefCount(), 2u);
  ASSERT_NE(list.appendNewElement(8), nullptr);
  EXPECT_EQ(rtMemHeapBlockCount(&control.getCtxtPtr()->pTypeMemHeap), 2u);
}

}  // namespace
