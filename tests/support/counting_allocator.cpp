// Linked into the tested build of the module only: counts its allocations, can make one of them fail, shows both counts
// to the tests, and lets them call the entry point.
#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "com/module.h"
#include "support/module_blocks.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* processEnds);

namespace {

std::atomic<long> live{0};
std::atomic<long> untilFailure{-1};
constexpr long kFailed = -2;

void* Allocate(size_t size) noexcept {
  if (untilFailure >= 0 && untilFailure-- == 0) {
    untilFailure = kFailed;
    return nullptr;
  }
  void* block = TakeBlock(size);
  if (block != nullptr) ++live;
  return block;
}

void* AllocateOrEnd(size_t size) {
  void* block = Allocate(size);
  if (block == nullptr) std::abort();
  return block;
}

void Release(void* block) noexcept {
  if (block == nullptr) return;
  --live;
  GiveBlock(block);
}

}  // namespace

void* operator new(size_t size) { return AllocateOrEnd(size); }
void* operator new[](size_t size) { return AllocateOrEnd(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* block) noexcept { Release(block); }
void operator delete[](void* block) noexcept { Release(block); }
void operator delete(void* block, size_t) noexcept { Release(block); }
void operator delete[](void* block, size_t) noexcept { Release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { Release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { Release(block); }

extern "C" {

__declspec(dllexport) long TavlcomLiveAllocations() { return live; }
__declspec(dllexport) long TavlcomLiveObjects() { return com::module::LockCount(); }
/// Lets the allocation after `succeeding` further ones fail; a negative number lets none fail.
__declspec(dllexport) void TavlcomFailAllocation(long succeeding) { untilFailure = succeeding; }
/// Whether the failure asked for has happened.
__declspec(dllexport) bool TavlcomAllocationFailed() { return untilFailure == kFailed; }
/// The entry point itself: the one in the file's header would also end the runtime of the module.
__declspec(dllexport) BOOL TavlcomDllMain(DWORD reason, void* processEnds) {
  return DllMain(com::module::Instance(), reason, processEnds);
}

}  // extern "C"
