// Outputs of late-bound calls: in variables of any type, as the call's result, or in objects of the caller.
#include <memory>

#include "contract/com/late_methods.h"
#include "support/certificates.h"
#include "support/invoke.h"
#include "support/type_library.h"

namespace {

class LateBoundOutputTest : public ContractTest, public ::testing::WithParamInterface<LateMethod> {
 protected:
  void SetUp() override {
    answerLateMethods(engine());
    given_ = GetParam().inputs(objects);
  }
  size_t outputs() { return GetParam().outputs.size(); }
  Output kind(size_t index) { return GetParam().outputs[index].second; }
  /// A call with the inputs, to which a test adds the outputs.
  LateCall listed() {
    LateCall call{GetParam().wideName(), DISPATCH_METHOD, {}, {}, false};
    for (const auto& [name, value] : given_) call.positional.push_back(value);
    return call;
  }
  LateCall byName() {
    LateCall call{GetParam().wideName(), DISPATCH_METHOD, {}, {}, false};
    for (const auto& [name, value] : given_) call.named.emplace_back(name, value);
    return call;
  }
  LateResult run(const LateCall& call) { return invoke(objects.quivo, call); }

  void expectOutput(size_t index, const Variant& value) {
    switch (kind(index)) {
      case Output::kBytes:
        EXPECT_EQ((Bytes{9, 8}), plainBytesOf(value));
        break;
      case Output::kText:
        EXPECT_EQ(L"text", textOf(value));
        break;
      case Output::kObjects:
        EXPECT_EQ(1u, objectsOf(value).size());
        break;
      case Output::kCertificate: {
        ASSERT_EQ(VT_DISPATCH, value.type());
        Ptr<ICertificate> certificate = Ptr<IDispatch>::share(V_DISPATCH(&value.get())).as<ICertificate>();
        ASSERT_NE(nullptr, certificate.get());
        EXPECT_EQ(L"CN=x", subjectOf(certificate));
        break;
      }
    }
  }

  Objects objects{openQuivo()};

 private:
  std::vector<std::pair<std::wstring, Variant>> given_;
};

TEST_P(LateBoundOutputTest, VariablesOfAScriptReceiveTheOutputs) {
  std::vector<Variant> variables(outputs());
  LateCall call = listed();
  for (Variant& variable : variables) call.positional.push_back(byRef(variable));
  EXPECT_OK(run(call).result);
  for (size_t i = 0; i < outputs(); ++i) expectOutput(i, variables[i]);
}

TEST_P(LateBoundOutputTest, LastOutputMayBeTheResult) {
  std::vector<Variant> variables(outputs() - 1);
  LateCall call = listed();
  for (Variant& variable : variables) call.positional.push_back(byRef(variable));
  call.wantsResult = true;
  const LateResult outcome = run(call);
  EXPECT_OK(outcome.result);
  for (size_t i = 0; i + 1 < outputs(); ++i) expectOutput(i, variables[i]);
  expectOutput(outputs() - 1, outcome.value);
}

TEST_P(LateBoundOutputTest, ResultMayBeAskedForAsAProperty) {
  if (outputs() != 1) return;
  LateCall call = listed();
  call.kind = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  call.wantsResult = true;
  const LateResult outcome = run(call);
  EXPECT_OK(outcome.result);
  expectOutput(0, outcome.value);
}

TEST_P(LateBoundOutputTest, ObjectsWithAValueReceiveTheOutputs) {
  for (Holder::Kind kind : {Holder::Kind::kHasValue, Holder::Kind::kExtendable}) {
    std::vector<std::unique_ptr<Holder>> holders;
    LateCall call = listed();
    std::vector<Variant> arguments;
    for (size_t i = 0; i < outputs(); ++i) {
      holders.push_back(std::make_unique<Holder>(kind));
      arguments.push_back(Variant::object(holders.back().get()));
      call.positional.push_back(arguments.back());
    }
    EXPECT_OK(run(call).result);
    arguments.clear();
    for (size_t i = 0; i < outputs(); ++i) {
      EXPECT_TRUE(holders[i]->wasSet());
      expectOutput(i, holders[i]->value());
      EXPECT_EQ(1u, holders[i]->references());
    }
  }
}

TEST_P(LateBoundOutputTest, VariableWithAnObjectReceivesTheOutputInIt) {
  Holder holder(Holder::Kind::kExtendable);
  {
    std::vector<Variant> variables(outputs());
    variables.back() = Variant::object(&holder);
    LateCall call = listed();
    for (size_t i = 0; i + 1 < outputs(); ++i) call.positional.push_back(byRef(variables[i]));
    call.positional.push_back(variables.back());
    EXPECT_OK(run(call).result);
    for (size_t i = 0; i + 1 < outputs(); ++i) expectOutput(i, variables[i]);
  }
  expectOutput(outputs() - 1, holder.value());
}

TEST_P(LateBoundOutputTest, HolderAndResultMayBeCombined) {
  if (outputs() != 2) return;
  Holder holder(Holder::Kind::kExtendable);
  {
    Variant argument = Variant::object(&holder);
    LateCall call = listed();
    call.positional.push_back(argument);
    call.wantsResult = true;
    const LateResult outcome = run(call);
    EXPECT_OK(outcome.result);
    expectOutput(1, outcome.value);
  }
  expectOutput(0, holder.value());
}

TEST_P(LateBoundOutputTest, ArgumentsMayBeNamed) {
  std::vector<Variant> variables(outputs());
  LateCall call = byName();
  for (size_t i = 0; i < outputs(); ++i) call.named.emplace_back(GetParam().outputs[i].first, byRef(variables[i]));
  EXPECT_OK(run(call).result);
  for (size_t i = 0; i < outputs(); ++i) expectOutput(i, variables[i]);
}

TEST_P(LateBoundOutputTest, NamedArgumentsMayStandInAnyOrder) {
  std::vector<Variant> variables(outputs());
  LateCall call;
  call.member = GetParam().wideName();
  for (size_t i = outputs(); i-- > 0;) call.named.emplace_back(GetParam().outputs[i].first, byRef(variables[i]));
  LateCall forward = byName();
  call.named.insert(call.named.end(), forward.named.rbegin(), forward.named.rend());
  EXPECT_OK(run(call).result);
  for (size_t i = 0; i < outputs(); ++i) expectOutput(i, variables[i]);
}

TEST_P(LateBoundOutputTest, NamedInputsMayLeaveTheLastOutputOut) {
  if (outputs() != 1) return;
  LateCall call = byName();
  call.wantsResult = true;
  const LateResult outcome = run(call);
  EXPECT_OK(outcome.result);
  expectOutput(0, outcome.value);
}

TEST_P(LateBoundOutputTest, NamedOutputMayFollowPositionalInputs) {
  std::vector<Variant> variables(outputs());
  LateCall call = listed();
  for (size_t i = 0; i < outputs(); ++i) call.named.emplace_back(GetParam().outputs[i].first, byRef(variables[i]));
  EXPECT_OK(run(call).result);
  for (size_t i = 0; i < outputs(); ++i) expectOutput(i, variables[i]);
}

TEST_P(LateBoundOutputTest, NamedHoldersReceiveTheOutputs) {
  std::vector<std::unique_ptr<Holder>> holders;
  LateCall call = byName();
  std::vector<Variant> arguments;
  for (size_t i = 0; i < outputs(); ++i) {
    holders.push_back(std::make_unique<Holder>(Holder::Kind::kExtendable));
    arguments.push_back(Variant::object(holders.back().get()));
    call.named.emplace_back(GetParam().outputs[i].first, arguments.back());
  }
  EXPECT_OK(run(call).result);
  for (size_t i = 0; i < outputs(); ++i) expectOutput(i, holders[i]->value());
}

TEST_P(LateBoundOutputTest, InputsMayBeVariables) {
  std::vector<Variant> variables(outputs());
  auto given = GetParam().inputs(objects);
  LateCall call{GetParam().wideName(), DISPATCH_METHOD, {}, {}, false};
  for (auto& [name, value] : given) call.positional.push_back(byRef(value));
  for (Variant& variable : variables) call.positional.push_back(byRef(variable));
  EXPECT_OK(run(call).result);
  for (size_t i = 0; i < outputs(); ++i) expectOutput(i, variables[i]);
}

TEST_P(LateBoundOutputTest, TypedVariablesReceiveTheirType) {
  if (outputs() != 1) return;
  LateCall call = listed();
  if (kind(0) == Output::kCertificate) {
    Ptr<IDispatch> variable;
    call.positional.push_back(byRefObject(variable));
    EXPECT_OK(run(call).result);
    EXPECT_NE(nullptr, variable.as<ICertificate>().get());
  }
  if (kind(0) == Output::kText) {
    Bstr variable(L"before");
    call.positional.push_back(byRefText(variable));
    EXPECT_OK(run(call).result);
    EXPECT_EQ(0u, variable.text().find(L"text"));
  }
}

TEST_P(LateBoundOutputTest, FormerObjectOfAVariableIsReleased) {
  if (kind(outputs() - 1) != Output::kCertificate) return;
  Ptr<ICertificate> former = make<Certificate>();
  {
    std::vector<Variant> variables(outputs());
    variables.back() = Variant::object(former);
    Variant reference = byRef(variables.back());
    LateCall call = listed();
    for (size_t i = 0; i + 1 < outputs(); ++i) call.positional.push_back(byRef(variables[i]));
    call.positional.push_back(reference);
    EXPECT_OK(run(call).result);
    expectOutput(outputs() - 1, variables.back());
  }
  EXPECT_EQ(1u, former.references());
}

TEST_P(LateBoundOutputTest, TooManyArgumentsAreRefused) {
  std::vector<Variant> variables(outputs() + 1);
  LateCall call = listed();
  for (Variant& variable : variables) call.positional.push_back(byRef(variable));
  EXPECT_HR(DISP_E_BADPARAMCOUNT, run(call).result);
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_P(LateBoundOutputTest, TooFewArgumentsAreRefused) {
  LateCall call{GetParam().wideName(), DISPATCH_METHOD, {}, {}, true};
  if (listed().positional.empty()) return;
  EXPECT_TRUE(FAILED(run(call).result));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_P(LateBoundOutputTest, ObjectWithoutAValueIsRefused) {
  Holder holder(Holder::Kind::kNeither);
  Variant argument = Variant::object(&holder);
  std::vector<Variant> variables(outputs());
  LateCall call = listed();
  for (size_t i = 0; i + 1 < outputs(); ++i) call.positional.push_back(byRef(variables[i]));
  call.positional.push_back(argument);
  EXPECT_TRUE(FAILED(run(call).result));
  EXPECT_FALSE(holder.wasSet());
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundOutputTest, ::testing::ValuesIn(kLateMethods), nameOfRow<LateMethod>);

}  // namespace
