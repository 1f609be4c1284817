// What the kit found: cases with their verdicts, part by part.
#pragma once

#include <string>
#include <vector>

namespace proof {

enum class Verdict { kPassed, kFailed, kSkipped };

struct Case {
  /// The suite of a googletest case; empty for others.
  std::string suite;
  std::string name;
  Verdict verdict = Verdict::kPassed;
  double seconds = 0;
  /// What a failed case printed, or why one was skipped.
  std::string text;
};

struct PartResult {
  std::string name;
  std::vector<Case> cases;
  double seconds = 0;

  size_t count(Verdict verdict) const {
    size_t found = 0;
    for (const Case& one : cases) found += one.verdict == verdict ? 1 : 0;
    return found;
  }
};

}  // namespace proof
