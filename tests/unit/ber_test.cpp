// Elements of BER, whole, cut and damaged.
#include "standin/messages/ber.h"

#include <gtest/gtest.h>

#include "standin/base/codes.h"

namespace {

using namespace standin;

/// A heap block of its own, so that a sanitizer sees each read behind the end.
Bytes Cut(const Bytes& bytes, size_t size) { return {bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)}; }

Bytes Nested(size_t depth) {
  Bytes bytes;
  for (size_t i = 0; i < depth; ++i) Append(bytes, Bytes{ber::kSequence, 0x80});
  bytes.resize(bytes.size() + 2 * depth);
  return bytes;
}

void ExpectDamaged(const Bytes& bytes) {
  try {
    ber::Cursor(bytes).anyElement();
    ADD_FAILURE() << "was read";
  } catch (const EngineError& error) {
    EXPECT_EQ(error.code, kMessageDamaged);
  }
}

TEST(Ber, ReadsLengthsOfEveryForm) {
  EXPECT_EQ(ber::ReadHeader(Bytes{4, 0x7F}).length, 0x7Fu);
  EXPECT_EQ(ber::ReadHeader(Bytes{4, 0x81, 0x80}).length, 0x80u);
  EXPECT_EQ(ber::ReadHeader(Bytes{4, 0x87, 1, 2, 3, 4, 5, 6, 7}).length, 0x01020304050607u);
  EXPECT_TRUE(ber::ReadHeader(Bytes{0x30, 0x80}).indefinite);
}

TEST(Ber, WritesTheLengthsThatItReads) {
  for (uint64_t length : {0ull, 0x7Full, 0x80ull, 0xFFull, 0x100ull, 0xFFFFFFull, 0xFFFFFFFFFFFFFFull}) {
    const Bytes header = ber::EncodeHeader(ber::kSet, length);
    EXPECT_EQ(ber::ReadHeader(header).length, length);
    EXPECT_EQ(ber::ReadHeader(header).size, header.size());
  }
}

TEST(Ber, AsksForMoreWhereverAnElementIsCut) {
  const Bytes whole = {0x30, 0x80, 0x30, 0x81, 3, 4, 1, 'x', 0, 0};
  EXPECT_EQ(ber::Cursor(whole).anyElement().size(), whole.size());
  for (size_t size = 0; size < whole.size(); ++size)
    EXPECT_THROW(ber::Cursor(Cut(whole, size)).anyElement(), ber::NeedMore) << size;
}

TEST(Ber, AsksForMoreWhateverALengthPromises) {
  EXPECT_THROW(ber::Cursor(Bytes{4, 0x87, 255, 255, 255, 255, 255, 255, 255, 0}).anyElement(), ber::NeedMore);
  EXPECT_THROW(ber::Cursor(Bytes{4, 0}).skip(SIZE_MAX), ber::NeedMore);
}

TEST(Ber, RefusesWhatNoMessageHas) {
  ExpectDamaged({0x1F, 0x81, 0x01, 0x00});              // a tag of two bytes
  ExpectDamaged({4, 0x88, 0, 0, 0, 0, 0, 0, 0, 1, 0});  // a length of eight
  ExpectDamaged({4, 0x80, 0, 0});                       // a primitive element without an end
  ExpectDamaged(Nested(40));
}

TEST(Ber, StepsOverNestedElementsWithoutLengths) { EXPECT_EQ(ber::Cursor(Nested(32)).anyElement().size(), 128u); }

TEST(Ber, ListsTheElementsInsideEitherForm) {
  EXPECT_EQ(ber::ChildrenOf(Bytes{0x30, 5, 4, 1, 'x', 5, 0}).size(), 2u);
  EXPECT_EQ(ber::ChildrenOf(Bytes{0x30, 0x80, 4, 1, 'x', 5, 0, 0, 0}).size(), 2u);
  EXPECT_EQ(ber::ChildrenOf(Bytes{0x30, 0}).size(), 0u);
  EXPECT_THROW(ber::ChildrenOf(Bytes{0x30, 3, 4, 9, 'x'}), EngineError);
}

TEST(Ber, OrdersASetByItsBytesEachOnce) {
  const Bytes a = {4, 1, 'a'}, b = {4, 1, 'b'}, longer = {4, 2, 'a', 'a'};
  EXPECT_EQ(ber::JoinSorted({longer, b, a, b}), ber::Join({a, b, longer}));
}

}  // namespace
