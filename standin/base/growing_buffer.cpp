#include "standin/base/growing_buffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "standin/base/codes.h"

namespace standin {

GrowingBuffer::~GrowingBuffer() { std::free(data_); }

void GrowingBuffer::reserve(size_t capacity) {
  if (capacity <= capacity_) return;
  void* moved = std::realloc(data_, capacity);
  if (moved == nullptr) Fail(kWinOutOfMemory);
  data_ = static_cast<uint8_t*>(moved);
  capacity_ = capacity;
}

uint8_t* GrowingBuffer::extend(size_t count) {
  if (count > capacity_ - size_) reserve(std::max(size_ + count, capacity_ + capacity_ / 2));
  size_ += count;
  return data_ + size_ - count;
}

void GrowingBuffer::append(ByteView bytes) {
  if (!bytes.empty()) std::memcpy(extend(bytes.size()), bytes.data(), bytes.size());
}

DataBlob_t GrowingBuffer::handOut(Buffers& buffers) {
  if (size_ == 0) return {};
  if (size_ > UINT32_MAX) Fail(kTooLarge);
  buffers.adopt(data_);
  const DataBlob_t blob{static_cast<uint32_t>(size_), data_};
  data_ = nullptr;
  size_ = capacity_ = 0;
  return blob;
}

}  // namespace standin
