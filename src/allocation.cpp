// The allocation of the shipped module, in place of the C++ runtime's. That one refers to the machinery of exceptions,
// which the module never throws, and whose emergency memory outlives the module: 73 KiB a load.
#include <cstdlib>
#include <new>

void* operator new(size_t size, const std::nothrow_t&) noexcept { return std::malloc(size == 0 ? 1 : size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return std::malloc(size == 0 ? 1 : size); }
// Their counterparts throw, and nothing calls those.
// NOLINTBEGIN(misc-new-delete-overloads)
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
// NOLINTEND(misc-new-delete-overloads)
void operator delete(void* block, size_t) noexcept { std::free(block); }
void operator delete[](void* block, size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }
