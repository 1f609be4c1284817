// COM calls a spy with its lock held, so the members need none.
#include "support/malloc_spy.h"

#include <objbase.h>

#include <cstdio>

MallocSpy& MallocSpy::get() {
  static MallocSpy spy;
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

STDMETHODIMP_(SIZE_T) MallocSpy::PreAlloc(SIZE_T size) {
  size_ = size;
  return fails() ? 0 : size;
}

STDMETHODIMP_(void*) MallocSpy::PostAlloc(void* block) {
  if (block != nullptr) blocks_[block] = {size_, ++serial_};
  return block;
}

STDMETHODIMP_(void*) MallocSpy::PreFree(void* block, BOOL) {
  blocks_.erase(block);
  return block;
}

STDMETHODIMP_(SIZE_T) MallocSpy::PreRealloc(void* block, SIZE_T size, void** actual, BOOL) {
  *actual = moved_ = block;
  size_ = size;
  return fails() ? 0 : size;
}

STDMETHODIMP_(void*) MallocSpy::PostRealloc(void* block, BOOL) {
  if (block != nullptr) {
    blocks_.erase(moved_);
    blocks_[block] = {size_, ++serial_};
  }
  return block;
}
