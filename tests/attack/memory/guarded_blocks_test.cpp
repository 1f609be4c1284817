// The blocks that the module has in its guarded build.
#include "guarded_blocks.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>

namespace {

bool Readable(const void* address) {
  MEMORY_BASIC_INFORMATION page{};
  VirtualQuery(address, &page, sizeof page);
  return page.State == MEM_COMMIT;
}

/// A block of `size` bytes, while it lives.
class Block {
 public:
  explicit Block(size_t size) : start_(static_cast<uint8_t*>(TakeBlock(size))) {}
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() { GiveBlock(start_); }
  uint8_t* start() const { return start_; }

 private:
  uint8_t* start_;
};

const bool kBefore = GetEnvironmentVariableA(kGuardBefore, nullptr, 0) != 0;

TEST(GuardedBlocks, APageThatCannotBeReadLiesAgainstEachBlock) {
  for (const size_t size : {1u, 7u, 24u, 4096u, 4100u, 70000u}) {
    const Block block(size);
    EXPECT_TRUE(Readable(block.start()) && Readable(block.start() + size - 1)) << size;
    EXPECT_FALSE(Readable(kBefore ? block.start() - 1 : block.start() + size)) << size;
  }
}

TEST(GuardedBlocks, AFreedBlockCannotBeReadAndItsPlaceIsNotUsedAgain) {
  void* const block = TakeBlock(100);
  GiveBlock(block);
  for (int i = 0; i < 1000; ++i) {
    const Block other(100);
    EXPECT_NE(block, other.start());
  }
  EXPECT_FALSE(Readable(block));
}

TEST(GuardedBlocks, ABlockOfNoBytesIsABlock) {
  const Block first(0), second(0);
  EXPECT_NE(nullptr, first.start());
  EXPECT_NE(first.start(), second.start());
}

TEST(GuardedBlocks, TakesAsManyBlocksAsAskedFor) {
  for (int i = 0; i < 100000; ++i) {
    const Block block(64);
    ASSERT_NE(nullptr, block.start()) << i;
  }
}

}  // namespace
