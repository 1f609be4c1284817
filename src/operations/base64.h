// Sizes of Base64 texts.
#pragma once

#include <cstdint>

namespace operations {

/// The bytes that the engine may write for the Base64 text of `length` bytes, its terminator included. 0 if that does
/// not fit into 32 bits.
constexpr uint32_t Base64Size(uint32_t length) {
  uint64_t size = 4ull * length + 4;
  return size > UINT32_MAX ? 0 : static_cast<uint32_t>(size / 3 + 4);
}

/// The characters of the BSTR that SignFile2B64Mem returns for a text of that length. On purpose: "An overlong
/// text" in docs/behaviour.md.
constexpr uint32_t OverlongSize(uint32_t textLength) { return 2 * textLength + 2; }

}  // namespace operations
