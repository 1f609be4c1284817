// Byte sequences as this engine passes them around.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "standin/base/contract.h"

namespace standin {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

/// The caller's bytes; an absent blob, or a length without a pointer, is empty.
inline ByteView ViewOf(const DataBlob_t* blob) {
  if (blob == nullptr || blob->data == nullptr) return {};
  return {blob->data, blob->len};
}

/// A blob without a pointer, or none at all, stands for "not given"; one with a pointer may have no bytes.
inline std::optional<ByteView> OptionalViewOf(const DataBlob_t* blob) {
  if (blob == nullptr || blob->data == nullptr) return std::nullopt;
  return ByteView(blob->data, blob->len);
}

void Append(Bytes& bytes, ByteView more);

}  // namespace standin
