// The allocation of the shipped module, in place of the C++ runtime's. That one refers to the machinery of exceptions,
// which the module never throws, and whose emergency memory outlives the module: 73 KiB a load.
#include <atomic>
#include <cstdlib>
#include <new>

#include "com/module.h"

namespace {

// Blocks of a few sizes come and go: a script makes and forgets one object after the other. The last block of each size
// that was given back is kept for the next of this size, which is cheaper than two turns through the heap.
constexpr size_t kStep = 16;
constexpr size_t kLargest = 1024;

std::atomic<void*> spares[kLargest / kStep + 1];
std::atomic<bool> keepsSpares;
std::atomic<bool> isDetached;

constexpr size_t Rounded(size_t size) { return size == 0 ? kStep : (size + kStep - 1) / kStep * kStep; }

void FreeSpares() {
  isDetached = true;
  for (std::atomic<void*>& spare : spares) std::free(spare.exchange(nullptr));
}

void FreeSparesAtDetach() {
  com::module::Guard guard;
  if (!keepsSpares.exchange(true)) com::module::AtDetach(FreeSpares);
}

}  // namespace

void* operator new(size_t size, const std::nothrow_t&) noexcept {
  size = Rounded(size);
  if (size > kLargest) return std::malloc(size);
  std::atomic<void*>& spare = spares[size / kStep];
  void* block = spare.load(std::memory_order_relaxed) ? spare.exchange(nullptr) : nullptr;
  return block ? block : std::malloc(size);
}
void operator delete(void* block, size_t size) noexcept {
  size = Rounded(size);
  if (size <= kLargest && !isDetached.load(std::memory_order_relaxed)) {
    if (!keepsSpares.load(std::memory_order_relaxed)) FreeSparesAtDetach();
    block = spares[size / kStep].exchange(block);
  }
  std::free(block);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return std::malloc(size == 0 ? 1 : size); }
// Their counterparts throw, and nothing calls those.
// NOLINTBEGIN(misc-new-delete-overloads)
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
// NOLINTEND(misc-new-delete-overloads)
void operator delete[](void* block, size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }
