// The methods with outputs at the end of their arguments, for the tests of late-bound calls.
#pragma once

#include <utility>

#include "support/invoke.h"
#include "support/operations.h"

struct LateMethod {
  std::string name;
  /// The arguments before the outputs, and the outputs.
  std::vector<Argument> given;
  std::vector<Argument> outputs;

  /// The inputs with their names.
  std::vector<std::pair<std::wstring, Variant>> inputs(const Objects& objects) const;
  bool returnsAs(Output kind) const { return OutputOf(outputs.back()) == kind; }
};

std::vector<LateMethod> LateMethods();

inline std::ostream& operator<<(std::ostream& out, const LateMethod& row) { return out << row.name; }

/// Lets the engine answer every method with {9, 8}, "text", 7, one signature, one certificate "CN=x".
void AnswerLateMethods(fake::FakeEngine& engine);

/// The base of the tests that call one method late bound, with its outputs in forms of their own.
class LateMethodTest : public ContractTest, public ::testing::WithParamInterface<LateMethod> {
 protected:
  void SetUp() override { AnswerLateMethods(engine()); }
  size_t outputs() { return GetParam().outputs.size(); }
  /// A call with the inputs, to which a test adds the outputs.
  LateCall listed();
  /// The same with variables for all outputs but the last.
  LateCall listedButLast();
  LateCall byName();
  LateResult run(const LateCall& call) { return Invoke(objects.quivo, call); }
  /// Adds a variable for every output to a call, by name or as listed.
  void addVariables(LateCall& call, bool named = false);
  void expectOutput(size_t index, const Variant& value);
  void expectVariables();
  void expectVariablesButLast();

  Objects objects{openQuivo()};
  std::vector<Variant> variables{GetParam().outputs.size()};

 private:
  std::vector<std::pair<std::wstring, Variant>> given_ = GetParam().inputs(objects);
};
