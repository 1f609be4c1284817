// What the process uses: the figures that have to stay where they are while it works.
#pragma once

#include <cstddef>
#include <ostream>

struct Usage {
  size_t privateBytes;
  size_t handles;
  /// Allocated blocks of all heaps.
  size_t blocks;
};

Usage UsageOfProcess();
std::ostream& operator<<(std::ostream& out, const Usage& usage);
