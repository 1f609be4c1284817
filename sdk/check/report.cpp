#include "report.h"

#include <cstdio>
#include <exception>

#include "trap.h"

namespace check {
namespace {

Report* current = nullptr;

}  // namespace

Report::Report(unsigned longestSeconds) : longestSeconds_(longestSeconds) {
  current = this;
  StartWatch(longestSeconds, reportSilence);
  std::puts("| check | expected | seen | verdict |\n|---|---|---|---|");
}

void Report::reportSilence() {
  ++current->failed_;
  current->print("FAILED", "no answer in " + std::to_string(current->longestSeconds_) + " s");
  current->finish();
}

void Report::print(const char* verdict, const std::string& seen) {
  std::printf("| %s | %s | %s | %s |\n", what_.c_str(), expected_.c_str(), seen.c_str(), verdict);
  std::fflush(stdout);
}

void Report::check(const std::string& what, const std::string& expected, const std::function<std::string()>& work) {
  what_ = what;
  expected_ = expected;
  ++made_;
  WatchBegins();
  std::string seen;
  const char* verdict = "ok";
  try {
    const std::string fault = FaultIn([&] { seen = work(); });
    if (!fault.empty()) throw Failure{fault};
  } catch (const Failure& failure) {
    ++failed_;
    verdict = "FAILED";
    seen = failure.seen;
  } catch (const NotSupported&) {
    ++notSupported_;
    verdict = "not supported";
    seen = verdict;
  } catch (const NotChecked& notChecked) {
    ++notChecked_;
    verdict = "not checked";
    seen = notChecked.reason;
  } catch (...) {
    ++failed_;
    verdict = "FAILED";
    seen = "an exception has left the engine";
  }
  WatchEnds();
  print(verdict, seen);
}

int Report::finish() {
  std::printf("%d checks: %d failed, %d not supported, %d not made\n", made_, failed_, notSupported_, notChecked_);
  std::fflush(stdout);
  return failed_ == 0 && notSupported_ == 0 ? 0 : 1;
}

}  // namespace check
