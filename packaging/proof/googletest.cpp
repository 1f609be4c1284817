#include "googletest.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <set>

#include "text.h"

namespace proof {
namespace {

constexpr int kMostStarts = 20;
const std::string kFilterOption = "--gtest_filter=";

/// The case of "Suite.Test", where both may contain slashes.
Case Named(const std::string& name) {
  const size_t dot = name.find('.');
  Case one;
  one.suite = name.substr(0, dot);
  one.name = dot == std::string::npos ? name : name.substr(dot + 1);
  return one;
}

std::string NameOf(const Case& one) { return one.suite + "." + one.name; }

struct Ending {
  Verdict verdict;
  size_t at;
  double seconds;
};

/// How `line` ends the test `name`. What a test prints may stand before it in the same line.
std::optional<Ending> EndingOf(const std::string& name, const std::string& line) {
  static const std::pair<const char*, Verdict> kMarks[] = {
      {"[       OK ] ", Verdict::kPassed}, {"[  FAILED  ] ", Verdict::kFailed}, {"[  SKIPPED ] ", Verdict::kSkipped}};
  for (const auto& [mark, verdict] : kMarks) {
    const size_t at = line.find(mark + name);
    if (at == std::string::npos) continue;
    const size_t time = line.rfind(" (");
    return Ending{verdict, at, time == std::string::npos ? 0 : std::atof(line.c_str() + time + 2) / 1000};
  }
  return std::nullopt;
}

/// A failure of the program that is no case's.
Case OfProgram(const std::string& text) {
  Case one;
  one.name = "the program";
  one.verdict = Verdict::kFailed;
  one.text = text;
  return one;
}

std::string LastLines(const std::string& text) {
  const size_t most = 4000;
  return text.size() <= most ? text : "...\n" + text.substr(text.find('\n', text.size() - most) + 1);
}

}  // namespace

PrintedTests ReadPrintedTests(const std::string& output) {
  static const std::string kBegin = "[ RUN      ] ", kCount = "[==========] Running ";
  PrintedTests printed;
  Case current;
  for (const std::string& line : Split(output, '\n')) {
    if (printed.announced < 0 && line.starts_with(kCount)) printed.announced = std::atol(line.c_str() + kCount.size());
    if (!printed.lastIsOpen) {
      if (!line.starts_with(kBegin)) continue;
      current = Named(Trimmed(line.substr(kBegin.size())));
      printed.lastIsOpen = true;
    } else if (const auto ending = EndingOf(NameOf(current), line)) {
      current.text += line.substr(0, ending->at);
      current.verdict = ending->verdict;
      current.seconds = ending->seconds;
      if (current.verdict == Verdict::kPassed) current.text.clear();
      printed.cases.push_back(current);
      printed.lastIsOpen = false;
    } else {
      current.text += line + "\n";
    }
  }
  if (printed.lastIsOpen) {
    current.verdict = Verdict::kFailed;
    printed.cases.push_back(current);
  }
  return printed;
}

std::string FilterWithout(const std::string& filter, const std::vector<Case>& cases) {
  std::set<std::string> left;
  std::string lastSuite;
  for (const Case& one : cases) lastSuite = one.suite.empty() ? lastSuite : one.suite;
  for (const Case& one : cases) {
    if (!one.suite.empty()) left.insert(one.suite == lastSuite ? NameOf(one) : one.suite + ".*");
  }
  std::string without = filter.find('-') == std::string::npos ? filter + "-" : filter + ":";
  for (const std::string& pattern : left) without += pattern + ":";
  without.pop_back();
  return without;
}

std::vector<Case> RunGoogletest(const std::string& commandLine, unsigned seconds, Screen screen) {
  const size_t option = commandLine.find(kFilterOption);
  const std::string program = commandLine.substr(0, option);
  const std::string filter =
      option == std::string::npos ? "*" : Trimmed(commandLine.substr(option + kFilterOption.size()));
  std::vector<Case> cases;
  std::string rest = filter;
  for (int start = 1;; ++start) {
    const ProgramEnd end = RunProgram(Wide(program + " --gtest_color=no " + kFilterOption + rest), seconds, screen);
    PrintedTests printed = ReadPrintedTests(end.output);
    const std::string how = "the program " + end.howItEnded();
    if (printed.lastIsOpen) printed.cases.back().text += how + " in this test\n";
    const bool failed = std::any_of(printed.cases.begin(), printed.cases.end(),
                                    [](const Case& one) { return one.verdict == Verdict::kFailed; });
    const bool complete = printed.announced == static_cast<long>(printed.cases.size()) && !printed.lastIsOpen;
    const bool noProgress = printed.cases.empty();
    cases.insert(cases.end(), printed.cases.begin(), printed.cases.end());
    if (Stopped()) return cases;
    if (printed.announced == 0) {
      // What was left after a crash in the last test.
      if (start == 1) cases.push_back(OfProgram("no test is selected by " + filter));
      return cases;
    }
    if (complete) {
      if (!end.good() && !failed) cases.push_back(OfProgram(how + " after its last test\n" + LastLines(end.output)));
      return cases;
    }
    if (noProgress || start == kMostStarts) {
      cases.push_back(
          OfProgram(how + Format(", and %ld tests were to run\n", printed.announced) + LastLines(end.output)));
      return cases;
    }
    if (!printed.lastIsOpen) {
      cases.push_back(OfProgram(how + Format(" after %zu of %ld tests\n", printed.cases.size(), printed.announced)));
    }
    rest = FilterWithout(filter, cases);
  }
}

}  // namespace proof
