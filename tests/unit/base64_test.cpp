// The sizes of Base64 texts.
#include "operations/base64.h"

#include <gtest/gtest.h>

namespace {

using operations::Base64Size;
using operations::OverlongSize;

TEST(Base64, SizeHasRoomForTheTextAndItsTerminator) {
  for (uint32_t length = 0; length < 1000; ++length) EXPECT_GT(Base64Size(length), (length + 2) / 3 * 4) << length;
}

TEST(Base64, SizeIsWhatTheEngineHasAlwaysBeenGiven) {
  EXPECT_EQ(5u, Base64Size(0));
  EXPECT_EQ(6u, Base64Size(1));
  EXPECT_EQ(8u, Base64Size(2));
  EXPECT_EQ(9u, Base64Size(3));
  EXPECT_EQ(1370u, Base64Size(1024));
}

TEST(Base64, LengthWhoseSizeNeedsMoreThan32BitsHasNone) {
  constexpr uint32_t kLongest = 0x3FFFFFFE;
  EXPECT_EQ(0x55555558u, Base64Size(kLongest));
  EXPECT_EQ(0u, Base64Size(kLongest + 1));
  EXPECT_EQ(0u, Base64Size(UINT32_MAX));
}

TEST(Base64, ReturnedStringIsLongerThanItsText) {
  EXPECT_EQ(2u, OverlongSize(0));
  EXPECT_EQ(22u, OverlongSize(10));
}

}  // namespace
