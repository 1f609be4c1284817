#include "guarded.h"

#include <windows.h>

#include <cstdlib>

namespace check {
namespace {

constexpr size_t kPage = 4096;

}  // namespace

Guarded::Guarded(size_t size) : size_(size), pages_((size + kPage - 1) / kPage) {
  block_ = static_cast<uint8_t*>(VirtualAlloc(nullptr, (pages_ + 1) * kPage, MEM_RESERVE, PAGE_NOACCESS));
  if (block_ == nullptr || (pages_ != 0 && VirtualAlloc(block_, pages_ * kPage, MEM_COMMIT, PAGE_READWRITE) == nullptr))
    std::abort();
  data_ = block_ + pages_ * kPage - size;
}

Guarded::~Guarded() { VirtualFree(block_, 0, MEM_RELEASE); }

void Guarded::protect() {
  DWORD before = 0;
  if (pages_ != 0) VirtualProtect(block_, pages_ * kPage, PAGE_READONLY, &before);
}

InBytes::InBytes(const Bytes& bytes)
    : memory_(bytes.size()), blob_(DataBlob_t{static_cast<uint32_t>(bytes.size()), memory_.data()}) {
  if (!bytes.empty()) std::memcpy(memory_.data(), bytes.data(), bytes.size());
  memory_.protect();
}

InBytes::InBytes() : memory_(0), blob_(DataBlob_t{}) {}

InText::InText(const std::string& text) : memory_(text.size() + 1) {
  std::memcpy(memory_.data(), text.c_str(), text.size() + 1);
  memory_.protect();
}

}  // namespace check
