// Outputs of late-bound calls: in variables of any type, as the call's result, or in objects of the caller.
#include <memory>

#include "contract/com/late_methods.h"

namespace {

using Condition = bool (*)(const LateMethod&);

std::vector<LateMethod> MethodsWhere(Condition condition) { return Where(LateMethods(), condition); }

/// Objects of the caller, one for each output.
class Holders {
 public:
  Holders(size_t count, Holder::Kind kind) {
    for (size_t i = 0; i < count; ++i) {
      holders_.push_back(std::make_unique<Holder>(kind));
      arguments_.push_back(Variant::object(holders_.back().get()));
    }
  }
  const Variant& argument(size_t index) { return arguments_[index]; }
  /// Releases the arguments.
  Holder& holder(size_t index) {
    arguments_.clear();
    return *holders_[index];
  }

 private:
  std::vector<std::unique_ptr<Holder>> holders_;
  std::vector<Variant> arguments_;
};

using LateBoundOutputTest = LateMethodTest;

TEST_P(LateBoundOutputTest, VariablesOfAScriptReceiveTheOutputs) {
  LateCall call = listed();
  addVariables(call);
  EXPECT_OK(run(call).result);
  expectVariables();
}

TEST_P(LateBoundOutputTest, LastOutputMayBeTheResult) {
  LateCall call = listedButLast();
  call.wantsResult = true;
  const LateResult outcome = run(call);
  EXPECT_OK(outcome.result);
  expectVariablesButLast();
  expectOutput(outputs() - 1, outcome.value);
}

TEST_P(LateBoundOutputTest, ObjectsWithAValueReceiveTheOutputs) {
  for (Holder::Kind kind : {Holder::Kind::kHasValue, Holder::Kind::kExtendable}) {
    Holders holders(outputs(), kind);
    LateCall call = listed();
    for (size_t i = 0; i < outputs(); ++i) call.positional.push_back(holders.argument(i));
    EXPECT_OK(run(call).result);
    for (size_t i = 0; i < outputs(); ++i) {
      EXPECT_TRUE(holders.holder(i).wasSet());
      expectOutput(i, holders.holder(i).value());
      EXPECT_EQ(1u, holders.holder(i).references());
    }
  }
}

TEST_P(LateBoundOutputTest, VariableWithAnObjectReceivesTheOutputInIt) {
  Holders holders(1, Holder::Kind::kExtendable);
  LateCall call = listedButLast();
  call.positional.push_back(holders.argument(0));
  EXPECT_OK(run(call).result);
  expectVariablesButLast();
  expectOutput(outputs() - 1, holders.holder(0).value());
}

TEST_P(LateBoundOutputTest, ArgumentsMayBeNamed) {
  LateCall call = byName();
  addVariables(call, true);
  EXPECT_OK(run(call).result);
  expectVariables();
}

TEST_P(LateBoundOutputTest, NamedArgumentsMayStandInAnyOrder) {
  LateCall call = byName();
  addVariables(call, true);
  std::reverse(call.named.begin(), call.named.end());
  EXPECT_OK(run(call).result);
  expectVariables();
}

TEST_P(LateBoundOutputTest, NamedOutputMayFollowPositionalInputs) {
  LateCall call = listed();
  addVariables(call, true);
  EXPECT_OK(run(call).result);
  expectVariables();
}

TEST_P(LateBoundOutputTest, NamedHoldersReceiveTheOutputs) {
  Holders holders(outputs(), Holder::Kind::kExtendable);
  LateCall call = byName();
  for (size_t i = 0; i < outputs(); ++i) {
    call.named.emplace_back(Widen(GetParam().outputs[i].name), holders.argument(i));
  }
  EXPECT_OK(run(call).result);
  for (size_t i = 0; i < outputs(); ++i) expectOutput(i, holders.holder(i).value());
}

TEST_P(LateBoundOutputTest, InputsMayBeVariables) {
  auto given = GetParam().inputs(objects);
  LateCall call{Widen(GetParam().name), DISPATCH_METHOD, {}, {}, false};
  for (auto& [name, value] : given) call.positional.push_back(ByRef(value));
  addVariables(call);
  EXPECT_OK(run(call).result);
  expectVariables();
}

TEST_P(LateBoundOutputTest, TooManyArgumentsAreRefused) {
  Variant another;
  LateCall call = listed();
  addVariables(call);
  call.positional.push_back(ByRef(another));
  EXPECT_HR(DISP_E_BADPARAMCOUNT, run(call).result);
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_P(LateBoundOutputTest, ObjectWithoutAValueIsRefused) {
  Holders holders(1, Holder::Kind::kNeither);
  LateCall call = listedButLast();
  call.positional.push_back(holders.argument(0));
  EXPECT_TRUE(FAILED(run(call).result));
  EXPECT_FALSE(holders.holder(0).wasSet());
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundOutputTest, ::testing::ValuesIn(LateMethods()), NameOfRow<LateMethod>);

using LateBoundInputTest = LateMethodTest;

TEST_P(LateBoundInputTest, TooFewArgumentsAreRefused) {
  LateCall call{Widen(GetParam().name), DISPATCH_METHOD, {}, {}, true};
  EXPECT_TRUE(FAILED(run(call).result));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundInputTest,
                         ::testing::ValuesIn(MethodsWhere([](const LateMethod& row) { return !row.given.empty(); })),
                         NameOfRow<LateMethod>);

using LateBoundOnlyOutputTest = LateMethodTest;

TEST_P(LateBoundOnlyOutputTest, ResultMayBeAskedForAsAProperty) {
  LateCall call = listed();
  call.kind = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  call.wantsResult = true;
  const LateResult outcome = run(call);
  EXPECT_OK(outcome.result);
  expectOutput(0, outcome.value);
}

TEST_P(LateBoundOnlyOutputTest, NamedInputsMayLeaveItOut) {
  LateCall call = byName();
  call.wantsResult = true;
  const LateResult outcome = run(call);
  EXPECT_OK(outcome.result);
  expectOutput(0, outcome.value);
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundOnlyOutputTest, ::testing::ValuesIn(MethodsWhere([](const LateMethod& row) {
                           return row.outputs.size() == 1;
                         })),
                         NameOfRow<LateMethod>);

using LateBoundTwoOutputsTest = LateMethodTest;

TEST_P(LateBoundTwoOutputsTest, HolderAndResultMayBeCombined) {
  Holders holders(1, Holder::Kind::kExtendable);
  LateCall call = listed();
  call.positional.push_back(holders.argument(0));
  call.wantsResult = true;
  const LateResult outcome = run(call);
  EXPECT_OK(outcome.result);
  expectOutput(1, outcome.value);
  expectOutput(0, holders.holder(0).value());
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundTwoOutputsTest, ::testing::ValuesIn(MethodsWhere([](const LateMethod& row) {
                           return row.outputs.size() == 2;
                         })),
                         NameOfRow<LateMethod>);

using LateBoundCertificateTest = LateMethodTest;

TEST_P(LateBoundCertificateTest, TypedVariableReceivesTheObject) {
  Ptr<IDispatch> variable;
  LateCall call = listedButLast();
  Variant reference = ByRefObject(variable);
  call.positional.push_back(reference);
  EXPECT_OK(run(call).result);
  EXPECT_NE(nullptr, variable.as<ICertificate>().get());
}

TEST_P(LateBoundCertificateTest, FormerObjectOfAVariableIsReleased) {
  Ptr<ICertificate> former = Make<ICertificate>();
  variables.back() = Variant::object(former);
  LateCall call = listed();
  addVariables(call);
  EXPECT_OK(run(call).result);
  expectVariables();
  EXPECT_EQ(1u, former.references());
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundCertificateTest, ::testing::ValuesIn(MethodsWhere([](const LateMethod& row) {
                           return row.returnsAs(Output::kCertificate);
                         })),
                         NameOfRow<LateMethod>);

using LateBoundTextTest = LateMethodTest;

TEST_P(LateBoundTextTest, TypedVariableReceivesTheText) {
  Bstr variable(L"before");
  LateCall call = listed();
  Variant reference = ByRefText(variable);
  call.positional.push_back(reference);
  EXPECT_OK(run(call).result);
  EXPECT_EQ(0u, variable.text().find(L"text"));
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundTextTest, ::testing::ValuesIn(MethodsWhere([](const LateMethod& row) {
                           return row.returnsAs(Output::kText);
                         })),
                         NameOfRow<LateMethod>);

}  // namespace
