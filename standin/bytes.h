// Byte sequences as this engine passes them around.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/records.h"

namespace standin {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

/// The caller's bytes; an absent blob, or a length without a pointer, is empty.
inline ByteView viewOf(const DataBlob_t* blob) {
  if (blob == nullptr || blob->data == nullptr) return {};
  return {blob->data, blob->len};
}

/// A blob with a null pointer or none at all stands for "not given", an empty one with a pointer for no bytes.
inline bool isGiven(const DataBlob_t* blob) { return blob != nullptr && blob->data != nullptr; }

inline void append(Bytes& bytes, ByteView more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

}  // namespace standin
