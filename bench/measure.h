// Measures the module and a yardstick in turn. Every row is printed as a line of JSON with all its samples; judge.pl
// makes medians of them and compares these with the limits.
#pragma once

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace bench {

/// How thoroughly a program measures.
struct Effort {
  int rounds;
  /// What a sample has to last, so that the clock's steps do not count.
  double sampleSeconds;
  bool isShort;

  /// Short if the first argument is "--short", which is then removed: everything runs, and no figure means anything.
  static Effort of(int& count, char**& arguments) {
    bool isShort = count > 1 && std::string(arguments[1]) == "--short";
    if (isShort) --count, ++arguments;
    return isShort ? Effort{1, 1e-4, true} : Effort{21, 0.01, false};
  }
  /// For rows whose samples take a second or longer.
  Effort withRounds(int fewer) const { return {isShort ? 1 : fewer, sampleSeconds, isShort}; }
  /// A size or a count: the small one if the run is short.
  template <class Number>
  Number pick(Number usual, Number small) const {
    return isShort ? small : usual;
  }
};

inline void Check(HRESULT hr, const char* what) {
  if (SUCCEEDED(hr)) return;
  std::fprintf(stderr, "%s: 0x%08lX\n", what, hr);
  std::exit(1);
}

/// The runtime's own clock has steps of a microsecond.
template <class Work>
double Seconds(Work work) {
  LARGE_INTEGER start, end, frequency;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&start);
  work();
  QueryPerformanceCounter(&end);
  return static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

struct Samples {
  std::vector<double> module, yardstick;
};

/// Prints the samples of a row. `unit` is "s", "ms", "us" or "MiB".
inline void Print(const std::string& row, const char* unit, const Samples& samples) {
  auto list = [](const std::vector<double>& values) {
    for (size_t i = 0; i < values.size(); ++i) std::printf("%s%.6g", i ? "," : "", values[i]);
  };
  std::printf("{\"row\":\"%s\",\"unit\":\"%s\",\"module\":[", row.c_str(), unit);
  list(samples.module);
  std::printf("],\"yardstick\":[");
  list(samples.yardstick);
  std::printf("]}\n");
  std::fflush(stdout);
}

/// Seconds of one module's and one yardstick's run, `rounds` times in turn; each round begins with the other of the
/// two, so that what one leaves to the other meets both. The first run of each is not counted.
template <class Module, class Yardstick>
Samples InTurn(int rounds, Module module, Yardstick yardstick) {
  Samples samples;
  if (rounds > 1) module(), yardstick();
  for (int round = 0; round < rounds; ++round) {
    if (round % 2 == 0) samples.module.push_back(Seconds(module));
    samples.yardstick.push_back(Seconds(yardstick));
    if (round % 2 != 0) samples.module.push_back(Seconds(module));
  }
  return samples;
}

/// How many calls make a sample.
template <class Work>
int CallsOf(const Effort& effort, Work work) {
  int calls = 1;
  while (Seconds([&] {
           for (int i = 0; i < calls; ++i) work();
         }) < effort.sampleSeconds)
    calls *= 2;
  return calls;
}

/// Measures and prints a row of short calls, in microseconds a call.
template <class Module, class Yardstick>
void PrintCalls(const std::string& row, const Effort& effort, Module module, Yardstick yardstick) {
  int moduleCalls = CallsOf(effort, module);
  int yardstickCalls = CallsOf(effort, yardstick);
  Samples samples = InTurn(
      effort.rounds,
      [&] {
        for (int i = 0; i < moduleCalls; ++i) module();
      },
      [&] {
        for (int i = 0; i < yardstickCalls; ++i) yardstick();
      });
  for (double& value : samples.module) value *= 1e6 / moduleCalls;
  for (double& value : samples.yardstick) value *= 1e6 / yardstickCalls;
  Print(row, "us", samples);
}

}  // namespace bench
