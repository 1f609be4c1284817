#include "guarded_blocks.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

constexpr size_t kPage = 4096;
constexpr size_t kChunkPages = 65536;
constexpr size_t kMostChunks = 4096;

/// A reserved range of addresses. Its pages are given out in their order, each block followed by one that stays
/// reserved; the first page stays reserved too.
struct Chunk {
  uint8_t* start;
  size_t used;
  /// By the page that a block starts in: its size, and one more for a live block.
  uint32_t* sizes;
};

SRWLOCK lock = SRWLOCK_INIT;
Chunk chunks[kMostChunks];
size_t chunkCount = 0;

class Locked {
 public:
  Locked() { AcquireSRWLockExclusive(&lock); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
  ~Locked() { ReleaseSRWLockExclusive(&lock); }
};

[[noreturn]] void End(const char* what, const void* block) {
  std::fprintf(stderr, "guarded blocks: %s, %p\n", what, block);
  std::fflush(stderr);
  TerminateProcess(GetCurrentProcess(), 0xC0000374);
  for (;;) {
  }
}

bool GuardsBefore() {
  static const bool kBefore = GetEnvironmentVariableA(kGuardBefore, nullptr, 0) != 0;
  return kBefore;
}

Chunk* ChunkWith(size_t pages) {
  if (chunkCount != 0 && kChunkPages - chunks[chunkCount - 1].used >= pages + 1) return &chunks[chunkCount - 1];
  if (chunkCount == kMostChunks) return nullptr;
  const size_t all = std::max(kChunkPages, pages + 2);
  const auto start = static_cast<uint8_t*>(VirtualAlloc(nullptr, all * kPage, MEM_RESERVE, PAGE_NOACCESS));
  const auto sizes =
      static_cast<uint32_t*>(VirtualAlloc(nullptr, all * sizeof(uint32_t), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
  if (start == nullptr || sizes == nullptr) return nullptr;
  chunks[chunkCount] = {start, 1, sizes};
  return &chunks[chunkCount++];
}

size_t PagesOf(size_t size) { return (size + kPage - 1) / kPage; }

/// Where a block starts in its pages. One that ends at a page's end is aligned as its size is, and no type needs more.
uint8_t* PlaceIn(uint8_t* first, size_t size) { return GuardsBefore() ? first : first + PagesOf(size) * kPage - size; }

/// The slack of a block's pages.
struct Slack {
  const uint8_t *start, *end;
};
Slack SlackOf(const uint8_t* block, size_t size) {
  const uint8_t* const first = block - (reinterpret_cast<uintptr_t>(block) % kPage);
  const uint8_t* const last = first + PagesOf(size) * kPage;
  return GuardsBefore() ? Slack{block + size, last} : Slack{first, block};
}

}  // namespace

void* TakeBlock(size_t size) noexcept {
  size = std::max<size_t>(size, 1);
  if (size >= UINT32_MAX - 1) return nullptr;
  const Locked locked;
  const size_t pages = PagesOf(size);
  Chunk* const chunk = ChunkWith(pages);
  if (chunk == nullptr) return nullptr;
  uint8_t* const first = chunk->start + chunk->used * kPage;
  if (VirtualAlloc(first, pages * kPage, MEM_COMMIT, PAGE_READWRITE) == nullptr) return nullptr;
  chunk->sizes[chunk->used] = static_cast<uint32_t>(size) + 1;
  chunk->used += pages + 1;
  std::memset(first, kGuardFill, pages * kPage);
  uint8_t* const block = PlaceIn(first, size);
  std::memset(block, 0xCD, size);
  return block;
}

void GiveBlock(void* block) noexcept {
  const auto bytes = static_cast<uint8_t*>(block);
  const Locked locked;
  for (size_t i = 0; i < chunkCount; ++i) {
    const Chunk& chunk = chunks[i];
    if (bytes < chunk.start || bytes >= chunk.start + chunk.used * kPage) continue;
    const size_t page = static_cast<size_t>(bytes - chunk.start) / kPage;
    if (chunk.sizes[page] == 0) End("an address is given back that is no live block", block);
    const size_t size = chunk.sizes[page] - 1;
    if (bytes != PlaceIn(chunk.start + page * kPage, size)) End("an address inside a block is given back", block);
    const Slack slack = SlackOf(bytes, size);
    const bool whole = std::all_of(slack.start, slack.end, [](uint8_t byte) { return byte == kGuardFill; });
    if (!whole) End("a byte outside a block was written", block);
    chunk.sizes[page] = 0;
    VirtualFree(chunk.start + page * kPage, PagesOf(size) * kPage, MEM_DECOMMIT);
    return;
  }
  End("an address is given back that was never taken", block);
}
