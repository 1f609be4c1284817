// Programs of googletest: their cases, read from what they print. A program that crashes or hangs has printed the cases
// before; the XML file of googletest would be missing.
#pragma once

#include <string>
#include <vector>

#include "process.h"
#include "results.h"

namespace proof {

/// What one run of a program printed.
struct PrintedTests {
  std::vector<Case> cases;
  /// How many were to run; -1 if nothing was printed about that.
  long announced = -1;
  /// The last case was begun and has not ended: it is among the cases, as failed.
  bool lastIsOpen = false;
};

PrintedTests ReadPrintedTests(const std::string& output);

/// The filter that leaves out what ran already: whole suites, and the last suite's tests one by one.
std::string FilterWithout(const std::string& filter, const std::vector<Case>& cases);

/// Runs all tests of the command line, which may have a --gtest_filter. After a crash or a hang the program is started
/// again for the tests that are left. `seconds` is the limit of every start.
std::vector<Case> RunGoogletest(const std::string& commandLine, unsigned seconds, Screen screen);

}  // namespace proof
