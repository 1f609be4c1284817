#include <malloc.h>

#include <cstdlib>
#include <cstring>

#include "support/module_blocks.h"

void* TakeBlock(size_t size) noexcept { return std::malloc(size == 0 ? 1 : size); }

void GiveBlock(void* block) noexcept {
  // A late reader shall not find what was there.
  std::memset(block, 0xDD, _msize(block));
  std::free(block);
}
