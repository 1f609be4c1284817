// The table of what was checked.
#pragma once

#include <functional>
#include <string>

namespace check {

/// Ends a check.
struct Failure {
  std::string seen;
};
struct NotSupported {};
struct NotChecked {
  std::string reason;
};

class Report {
 public:
  /// `longestSeconds` may one check take; after that the process ends.
  explicit Report(unsigned longestSeconds);

  /// Runs a check and prints its row. `work` returns what it saw, or throws one of the above.
  void check(const std::string& what, const std::string& expected, const std::function<std::string()>& work);
  /// Prints the sum; the exit code: 0 if nothing failed and everything is supported, else 1.
  int finish();

 private:
  void print(const char* verdict, const std::string& seen);
  static void reportSilence();

  unsigned longestSeconds_;
  std::string what_, expected_;
  int made_ = 0, failed_ = 0, notSupported_ = 0, notChecked_ = 0;
};

}  // namespace check
