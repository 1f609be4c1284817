// What the fuzz targets share: each defines Run, and libFuzzer's entry calls it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

namespace fuzz {

using Input = std::span<const uint8_t>;

void Run(Input bytes);

/// A property that holds for every input.
inline void Require(bool holds) {
  if (!holds) std::abort();
}

inline std::string TextOf(Input bytes) { return {bytes.begin(), bytes.end()}; }

/// Takes the first bytes of the input as a number; zero where there are too few.
template <typename Number>
Number Take(Input& bytes) {
  Number number{};
  if (bytes.size() < sizeof number) return number;
  std::copy_n(bytes.begin(), sizeof number, reinterpret_cast<uint8_t*>(&number));
  bytes = bytes.subspan(sizeof number);
  return number;
}

}  // namespace fuzz
