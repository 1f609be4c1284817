// The report, as a page and as JUnit's XML.
#pragma once

#include <string>
#include <vector>

#include "machine.h"
#include "results.h"

namespace proof {

struct Report {
  Facts machine;
  Facts files;
  std::vector<PartResult> parts;
  double seconds = 0;
  bool stopped = false;

  size_t count(Verdict verdict) const;
};

/// "5013 passed, 0 failed, 2 skipped"
std::string Counts(size_t passed, size_t failed, size_t skipped);
std::string Page(const Report& report);
std::string JUnit(const Report& report);

}  // namespace proof
