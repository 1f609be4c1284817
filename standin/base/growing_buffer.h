// Output of unknown length, collected in the memory that is handed out in the end, so that it is not copied.
#pragma once

#include "standin/base/buffers.h"

namespace standin {

class GrowingBuffer {
 public:
  GrowingBuffer() = default;
  ~GrowingBuffer();
  GrowingBuffer(const GrowingBuffer&) = delete;
  GrowingBuffer& operator=(const GrowingBuffer&) = delete;

  void reserve(size_t capacity);
  void append(ByteView bytes);
  /// Adds `count` bytes, which the caller writes; `shrink` removes those that are left over.
  uint8_t* extend(size_t count);
  void shrink(size_t count) { size_ -= count; }
  void clear() { size_ = 0; }
  ByteView view() const { return {data_, size_}; }

  /// Hands the bytes out as memory of the session and empties the buffer. No bytes give an absent blob.
  DataBlob_t handOut(Buffers& buffers);

 private:
  uint8_t* data_ = nullptr;
  size_t size_ = 0;
  size_t capacity_ = 0;
};

}  // namespace standin
