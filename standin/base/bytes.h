// Byte sequences as this engine passes them around.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "standin/base/contract.h"

namespace standin {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

/// Nothing if the blob or its pointer is null: the caller gave no bytes. A blob with a pointer may have length 0.
inline std::optional<ByteView> OptionalViewOf(const DataBlob_t* blob) {
  if (blob == nullptr || blob->data == nullptr) return std::nullopt;
  return ByteView(blob->data, blob->len);
}

/// The same, with an empty view in place of nothing.
inline ByteView ViewOf(const DataBlob_t* blob) { return OptionalViewOf(blob).value_or(ByteView()); }

/// The elements of a list in a record; none if the pointer is null.
template <typename Element>
std::span<Element> ListOf(Element* elements, int32_t count) {
  return {elements, elements == nullptr || count < 0 ? 0 : static_cast<size_t>(count)};
}

inline bool Equal(ByteView left, ByteView right) { return std::ranges::equal(left, right); }
inline void Append(Bytes& bytes, ByteView more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

}  // namespace standin
