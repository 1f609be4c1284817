// The methods with outputs as data, for the tests of late-bound calls.
#pragma once

#include <functional>
#include <utility>

#include "contract/operations/calls.h"

enum class Output { kBytes, kText, kObjects, kCertificate };

struct LateMethod {
  const char* name;
  /// The arguments before the outputs, with their names.
  std::function<std::vector<std::pair<std::wstring, Variant>>(const Objects&)> inputs;
  std::vector<std::pair<std::wstring, Output>> outputs;

  std::wstring wideName() const { return wideOf(name); }
};

extern const std::vector<LateMethod> kLateMethods;

inline std::ostream& operator<<(std::ostream& out, const LateMethod& row) { return out << row.name; }

/// Lets the engine answer every method of the table with {9, 8}, "text", one signature, one certificate "CN=x".
void answerLateMethods(fake::FakeEngine& engine);
