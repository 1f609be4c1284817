// A copy of what the engine was given at the moment of a call: a record, its address and everything it points to.
// Fields are read by offset, so that the layout of the records is checked and not shared with the module.
#pragma once

#include <cstdint>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace fake {

class Snapshot {
 public:
  uintptr_t address = 0;
  std::vector<uint8_t> bytes;
  /// What the pointers of the record point to, by the offset of the pointer.
  std::map<size_t, Snapshot> pointees;

  template <class T>
  T read(size_t offset) const {
    if (offset + sizeof(T) > bytes.size()) throw std::out_of_range("read behind the end of a record");
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof(T));
    return value;
  }
  int32_t i32(size_t offset) const { return read<int32_t>(offset); }
  uint32_t u32(size_t offset) const { return read<uint32_t>(offset); }
  uint64_t u64(size_t offset) const { return read<uint64_t>(offset); }
  uintptr_t pointer(size_t offset) const { return read<uintptr_t>(offset); }

  /// What the pointer at `offset` points to; throws when it is null.
  const Snapshot& at(size_t offset) const {
    auto found = pointees.find(offset);
    if (found == pointees.end()) throw std::out_of_range("no object behind offset " + std::to_string(offset));
    return found->second;
  }
  /// The NUL-terminated text behind the pointer at `offset`; throws when it is null.
  std::string text(size_t offset) const { return at(offset).asText(); }
  std::string asText() const { return std::string(reinterpret_cast<const char*>(bytes.data())); }
  /// The bytes of the blob (count, then pointer) at `offset`; none when its pointer is null.
  std::vector<uint8_t> blob(size_t offset) const {
    return pointer(offset + 8) == 0 ? std::vector<uint8_t>{} : at(offset + 8).bytes;
  }
  /// `size` bytes from `start` as a record of their own.
  Snapshot part(size_t start, size_t size) const {
    if (start + size > bytes.size()) throw std::out_of_range("a part behind the end of a record");
    Snapshot part;
    part.address = address + start;
    part.bytes.assign(bytes.begin() + start, bytes.begin() + start + size);
    for (const auto& [offset, pointee] : pointees) {
      if (offset >= start && offset < start + size) part.pointees.emplace(offset - start, pointee);
    }
    return part;
  }
  /// One element of an array of records of `size` bytes.
  Snapshot element(size_t index, size_t size) const { return part(index * size, size); }
  bool allZero() const {
    for (uint8_t byte : bytes) {
      if (byte != 0) return false;
    }
    return true;
  }
};

}  // namespace fake
