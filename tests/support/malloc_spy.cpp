// COM calls a spy with its lock held, so the members need none. Wine allocates what was asked for, whatever size the
// spy answers: callers get blocks of the spy's own, each in the place of one of COM's.
#include "support/malloc_spy.h"

#include <objbase.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

/// Behind the end of each block.
constexpr SIZE_T kEndSize = 16;
constexpr uint8_t kEndFill = 0xFD;
constexpr uint8_t kFreshFill = 0xCD;
constexpr uint8_t kFreedFill = 0xDD;

}  // namespace

MallocSpy& MallocSpy::get() {
  // For ever: COM asks it for the blocks that are left at the end of the process too.
  static MallocSpy& spy = *new MallocSpy;
  return spy;
}

bool MallocSpy::start() { return CoRegisterMallocSpy(this) == S_OK; }

void MallocSpy::stop() { CoRevokeMallocSpy(); }

size_t MallocSpy::outstandingSince(size_t mark) const {
  size_t found = 0;
  for (const auto& [address, block] : blocks_) found += block.serial > mark ? 1 : 0;
  return found;
}

std::string MallocSpy::since(size_t mark) const {
  std::string report;
  for (const auto& [address, block] : blocks_) {
    if (block.serial <= mark) continue;
    report += std::to_string(block.size) + " bytes:";
    for (size_t i = 0; i < block.size && i < 24; ++i) {
      char text[4];
      std::snprintf(text, sizeof text, " %02X", static_cast<const unsigned char*>(address)[i]);
      report += text;
    }
    report += "\n";
  }
  return report;
}

STDMETHODIMP MallocSpy::QueryInterface(REFIID iid, void** object) {
  *object = iid == IID_IUnknown || iid == IID_IMallocSpy ? this : nullptr;
  return *object == nullptr ? E_NOINTERFACE : S_OK;
}

bool MallocSpy::fails() { return untilFailure_ >= 0 && untilFailure_-- == 0 ? (untilFailure_ = -2, true) : false; }

std::vector<std::string> MallocSpy::violations() {
  for (const auto& [block, one] : blocks_) checkEnd(block, one.size);
  for (const auto& [block, size] : std::exchange(freed_, {})) {
    checkFreed(block, size);
    std::free(block);
  }
  return std::exchange(violations_, {});
}

void MallocSpy::checkEnd(const void* block, SIZE_T size) {
  const auto end = static_cast<const uint8_t*>(block) + size;
  if (std::any_of(end, end + kEndSize, [](uint8_t byte) { return byte != kEndFill; }))
    violations_.push_back("written behind the end of a block of " + std::to_string(size) + " bytes");
}

void MallocSpy::checkFreed(const void* block, SIZE_T size) {
  const auto start = static_cast<const uint8_t*>(block);
  if (std::any_of(start, start + size, [](uint8_t byte) { return byte != kFreedFill; }))
    violations_.push_back("written to a freed block of " + std::to_string(size) + " bytes");
}

void* MallocSpy::replace(void* actual, SIZE_T size) {
  const auto block = static_cast<uint8_t*>(std::malloc(size + kEndSize));
  if (block == nullptr) std::abort();
  std::memset(block, kFreshFill, size);
  std::memset(block + size, kEndFill, kEndSize);
  blocks_[block] = {actual, size, ++serial_};
  return block;
}

void* MallocSpy::withdraw(void* block) {
  const auto found = blocks_.find(block);
  if (found == blocks_.end()) return block;
  const Block one = found->second;
  blocks_.erase(found);
  checkEnd(block, one.size);
  std::memset(block, kFreedFill, one.size);
  freed_[block] = one.size;
  return one.actual;
}

void* MallocSpy::actual(void* block) const {
  const auto found = blocks_.find(block);
  return found == blocks_.end() ? block : found->second.actual;
}

STDMETHODIMP_(SIZE_T) MallocSpy::PreAlloc(SIZE_T size) {
  size_ = size;
  return fails() ? 0 : size;
}

STDMETHODIMP_(void*) MallocSpy::PostAlloc(void* block) { return block == nullptr ? nullptr : replace(block, size_); }

STDMETHODIMP_(void*) MallocSpy::PreFree(void* block, BOOL) {
  const auto again = freed_.find(block);
  if (again == freed_.end()) return withdraw(block);
  violations_.push_back("freed twice, a block of " + std::to_string(again->second) + " bytes");
  return nullptr;
}

STDMETHODIMP_(SIZE_T) MallocSpy::PreRealloc(void* block, SIZE_T size, void** actual, BOOL) {
  *actual = this->actual(block);
  moved_ = block;
  size_ = size;
  return fails() ? 0 : size;
}

STDMETHODIMP_(void*) MallocSpy::PostRealloc(void* block, BOOL) {
  if (block == nullptr) return nullptr;
  void* const moved = replace(block, size_);
  const auto former = blocks_.find(moved_);
  std::memcpy(moved, former == blocks_.end() ? block : moved_,
              former == blocks_.end() ? size_ : std::min(size_, former->second.size));
  if (former != blocks_.end()) withdraw(moved_);
  return moved;
}
