// The memory that a session hands out. The session frees what callers have not given back, and refuses to free what it
// did not hand out.
#pragma once

#include <initializer_list>
#include <string_view>
#include <unordered_set>

#include "standin/base/bytes.h"

namespace standin {

class Buffers {
 public:
  Buffers() = default;
  ~Buffers();
  Buffers(const Buffers&) = delete;
  Buffers& operator=(const Buffers&) = delete;

  /// Zeroed; never null. A length of 0 gives a buffer of one byte.
  void* allocate(size_t length);
  template <typename T>
  T* allocateArray(size_t count) {
    return static_cast<T*>(allocate(count * sizeof(T)));
  }
  char* copyText(std::string_view text);
  /// No bytes give an absent blob.
  DataBlob_t copyBytes(ByteView bytes) { return join({bytes}); }
  DataBlob_t join(std::initializer_list<ByteView> parts);

  /// Takes over memory that came from malloc.
  void adopt(void* buffer) { live_.insert(buffer); }

  bool owns(const void* buffer) const { return live_.contains(buffer); }
  /// False if the session did not hand out the buffer. Null is accepted.
  bool release(const void* buffer);

 private:
  std::unordered_set<const void*> live_;
};

}  // namespace standin
