#include "standin/base/thread_blocks.h"

#include <windows.h>

#include <openssl/crypto.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <utility>

#include "standin/base/lock.h"

namespace standin {
namespace {

constexpr size_t kStep = 32;
constexpr size_t kSizes = 64;
/// A thread keeps so many bytes of one size.
constexpr size_t kMostKept = 8192;

struct alignas(16) Head {
  size_t kind;  ///< the size of the block in steps; 0 for one that is not kept
  size_t size;  ///< what was asked for
};

struct FreeBlock {
  FreeBlock* next;
};

struct Kept {
  FreeBlock* first[kSizes + 1] = {};
  size_t count[kSizes + 1] = {};
  Kept* previous = nullptr;
  Kept* next = nullptr;
};

DWORD slot = TLS_OUT_OF_INDEXES;
Kept* threads = nullptr;  ///< those of all threads

Lock& ThreadsLock() {
  static Lock* const kTheLock = new (std::malloc(sizeof(Lock))) Lock;
  return *kTheLock;
}

Head* HeadOf(void* block) { return static_cast<Head*>(block) - 1; }

/// Leaves the thread's last error as it is, which callers may be about to ask for: TlsGetValue clears it.
Kept* FoundOfThread() {
  const DWORD error = GetLastError();
  auto* const kept = static_cast<Kept*>(TlsGetValue(slot));
  SetLastError(error);
  return kept;
}

/// Null before the start and after the end, and if memory is short.
Kept* OfThread() {
  if (slot == TLS_OUT_OF_INDEXES) return nullptr;
  if (Kept* const kept = FoundOfThread(); kept != nullptr) return kept;
  void* const memory = std::malloc(sizeof(Kept));
  if (memory == nullptr) return nullptr;
  Kept* const kept = new (memory) Kept;
  TlsSetValue(slot, kept);
  const std::lock_guard scope(ThreadsLock());
  kept->next = threads;
  if (threads != nullptr) threads->previous = kept;
  threads = kept;
  return kept;
}

void FreeAll(Kept* kept) {
  for (FreeBlock* first : kept->first) {
    while (first != nullptr) std::free(HeadOf(std::exchange(first, first->next)));
  }
  std::free(kept);
}

void* Allocate(size_t size) {
  size_t kind = (size + kStep - 1) / kStep;
  if (kind > kSizes) kind = 0;
  Kept* const kept = kind == 0 ? nullptr : OfThread();
  if (kept != nullptr && kept->first[kind] != nullptr) {
    FreeBlock* const block = std::exchange(kept->first[kind], kept->first[kind]->next);
    --kept->count[kind];
    HeadOf(block)->size = size;
    return block;
  }
  if (size > SIZE_MAX - sizeof(Head)) return nullptr;
  auto* const head = static_cast<Head*>(std::malloc(sizeof(Head) + (kind == 0 ? size : kind * kStep)));
  if (head == nullptr) return nullptr;
  *head = {kind, size};
  return head + 1;
}

void Free(void* block) {
  if (block == nullptr) return;
  const size_t kind = HeadOf(block)->kind;
  Kept* const kept = kind == 0 ? nullptr : OfThread();
  if (kept == nullptr || kept->count[kind] * kind * kStep >= kMostKept) {
    std::free(HeadOf(block));
    return;
  }
  kept->first[kind] = new (block) FreeBlock{kept->first[kind]};
  ++kept->count[kind];
}

void* AllocateForCrypto(size_t size, const char*, int) { return size == 0 ? nullptr : Allocate(size); }
void FreeForCrypto(void* block, const char*, int) { Free(block); }
void* ReallocateForCrypto(void* block, size_t size, const char*, int) {
  if (block != nullptr && size != 0) {
    Head& head = *HeadOf(block);
    if (head.kind != 0 && size <= head.kind * kStep) {
      head.size = size;
      return block;
    }
  }
  void* const other = size == 0 ? nullptr : Allocate(size);
  if (size != 0 && other == nullptr) return nullptr;
  if (block != nullptr && other != nullptr) std::memcpy(other, block, std::min(size, HeadOf(block)->size));
  Free(block);
  return other;
}

}  // namespace

bool StartThreadBlocks() {
  slot = TlsAlloc();
  return CRYPTO_set_mem_functions(AllocateForCrypto, ReallocateForCrypto, FreeForCrypto) == 1;
}

void FreeBlocksOfThread() {
  if (slot == TLS_OUT_OF_INDEXES) return;
  auto* const kept = static_cast<Kept*>(TlsGetValue(slot));
  if (kept == nullptr) return;
  TlsSetValue(slot, nullptr);
  {
    const std::lock_guard scope(ThreadsLock());
    (kept->previous == nullptr ? threads : kept->previous->next) = kept->next;
    if (kept->next != nullptr) kept->next->previous = kept->previous;
  }
  FreeAll(kept);
}

void EndThreadBlocks() {
  if (slot == TLS_OUT_OF_INDEXES) return;
  TlsFree(std::exchange(slot, TLS_OUT_OF_INDEXES));
  while (threads != nullptr) FreeAll(std::exchange(threads, threads->next));
  ThreadsLock().~Lock();
  std::free(&ThreadsLock());
}

}  // namespace standin

void* operator new(size_t size) {
  void* const block = standin::Allocate(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept { standin::Free(block); }
void operator delete(void* block, size_t) noexcept { standin::Free(block); }
