#include "standin/base/buffers.h"

#include <cstdlib>
#include <cstring>

#include "standin/base/codes.h"

namespace standin {

Buffers::~Buffers() {
  for (const void* buffer : live_) std::free(const_cast<void*>(buffer));
}

void* Buffers::allocate(size_t length) {
  void* buffer = std::calloc(length == 0 ? 1 : length, 1);
  if (buffer == nullptr) Fail(kWinOutOfMemory);
  try {
    live_.insert(buffer);
  } catch (...) {
    std::free(buffer);
    throw;
  }
  return buffer;
}

char* Buffers::copyText(std::string_view text) {
  char* copy = allocateArray<char>(text.size() + 1);
  std::memcpy(copy, text.data(), text.size());
  return copy;
}

DataBlob_t Buffers::join(std::initializer_list<ByteView> parts) {
  size_t length = 0;
  for (const ByteView part : parts) length += part.size();
  if (length == 0) return {};
  if (length > UINT32_MAX) Fail(kTooLarge);
  uint8_t* joined = allocateArray<uint8_t>(length);
  uint8_t* end = joined;
  for (const ByteView part : parts) {
    if (!part.empty()) std::memcpy(end, part.data(), part.size());
    end += part.size();
  }
  return {static_cast<uint32_t>(length), joined};
}

bool Buffers::release(const void* buffer) {
  if (buffer == nullptr) return true;
  if (live_.erase(buffer) == 0) return false;
  std::free(const_cast<void*>(buffer));
  return true;
}

}  // namespace standin
