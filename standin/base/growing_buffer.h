// Output whose length is not known beforehand, gathered in the memory that is then handed out: it is never copied
// again.
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
  /// `count` more bytes at the end, to be written by the caller and cut back with `shrink`.
  uint8_t* extend(size_t count);
  void shrink(size_t count) { size_ -= count; }
  void clear() { size_ = 0; }
  ByteView view() const { return {data_, size_}; }

  /// Hands the bytes out as memory of the session; none give an absent blob. The buffer is empty afterwards.
  DataBlob_t handOut(Buffers& buffers);

 private:
  uint8_t* data_ = nullptr;
  size_t size_ = 0;
  size_t capacity_ = 0;
};

}  // namespace standin
