// The spy of COM's memory notices what may not be done to a block.
#include "support/malloc_spy.h"

#include <gtest/gtest.h>

namespace {

using Violations = std::vector<std::string>;

/// A spy that watches COM while a test lasts.
class MallocSpyTest : public ::testing::Test {
 protected:
  MallocSpyTest() { EXPECT_TRUE(spy.start()); }
  ~MallocSpyTest() override { spy.stop(); }

  MallocSpy spy;
};

TEST_F(MallocSpyTest, ProperUseIsNoViolation) {
  auto block = static_cast<char*>(CoTaskMemAlloc(10));
  block[9] = 'x';
  block = static_cast<char*>(CoTaskMemRealloc(block, 5000));
  EXPECT_EQ('x', block[9]);
  block[4999] = 'y';
  EXPECT_EQ(1u, spy.outstanding());
  CoTaskMemFree(block);
  EXPECT_EQ(0u, spy.outstanding());
  EXPECT_EQ(Violations{}, spy.violations());
}

TEST_F(MallocSpyTest, AByteBehindTheEndOfALiveBlock) {
  const auto block = static_cast<char*>(CoTaskMemAlloc(10));
  block[10] = 'x';
  EXPECT_EQ(Violations{"written behind the end of a block of 10 bytes"}, spy.violations());
  CoTaskMemFree(block);
}

TEST_F(MallocSpyTest, AByteBehindTheEndOfAFreedBlock) {
  const auto block = static_cast<char*>(CoTaskMemAlloc(10));
  block[25] = 'x';
  CoTaskMemFree(block);
  EXPECT_EQ(Violations{"written behind the end of a block of 10 bytes"}, spy.violations());
}

TEST_F(MallocSpyTest, ABlockThatIsFreedTwice) {
  void* const block = CoTaskMemAlloc(10);
  CoTaskMemFree(block);
  CoTaskMemFree(block);
  EXPECT_EQ(Violations{"freed twice, a block of 10 bytes"}, spy.violations());
}

TEST_F(MallocSpyTest, AFreedBlockThatIsWritten) {
  const auto block = static_cast<volatile char*>(CoTaskMemAlloc(10));
  CoTaskMemFree(const_cast<char*>(block));
  block[0] = 'x';
  EXPECT_EQ(Violations{"written to a freed block of 10 bytes"}, spy.violations());
}

TEST_F(MallocSpyTest, TheSizeOfABlockIsThatAskedFor) {
  IMalloc* memory = nullptr;
  ASSERT_EQ(S_OK, CoGetMalloc(1, &memory));
  void* const block = memory->Alloc(10);
  EXPECT_EQ(10u, memory->GetSize(block));
  memory->Free(block);
}

}  // namespace
