// Memory that ends where no other memory is: who reads or writes behind its end faults.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "engine/records.h"

namespace check {

using Bytes = std::vector<uint8_t>;

class Guarded {
 public:
  explicit Guarded(size_t size);
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;
  ~Guarded();

  uint8_t* data() { return data_; }
  size_t size() const { return size_; }
  /// From now on, who writes faults too.
  void protect();

 private:
  uint8_t* block_;
  uint8_t* data_;
  size_t size_, pages_;
};

/// A record that the engine fills.
template <class Record>
class Out {
 public:
  Out() : memory_(sizeof(Record)) { *get() = {}; }
  Record* get() { return reinterpret_cast<Record*>(memory_.data()); }
  Record& operator*() { return *get(); }
  Record* operator->() { return get(); }

 private:
  Guarded memory_;
};

/// Records that the engine only reads.
template <class Record>
class In {
 public:
  explicit In(const Record& record) : memory_(sizeof(Record)) {
    std::memcpy(memory_.data(), &record, sizeof(Record));
    memory_.protect();
  }
  Record* get() { return reinterpret_cast<Record*>(memory_.data()); }

 private:
  Guarded memory_;
};

/// Bytes that the engine only reads, and their blob.
class InBytes {
 public:
  explicit InBytes(const Bytes& bytes);
  /// Absent: length 0 and a null pointer.
  InBytes();

  const DataBlob_t* blob() { return blob_.get(); }
  uint8_t* data() { return memory_.data(); }
  size_t size() const { return memory_.size(); }

 private:
  Guarded memory_;
  In<DataBlob_t> blob_;
};

/// A text that the engine only reads.
class InText {
 public:
  explicit InText(const std::string& text);
  char* get() { return reinterpret_cast<char*>(memory_.data()); }

 private:
  Guarded memory_;
};

}  // namespace check
