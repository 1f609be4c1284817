// Every failure of every function of the engine in every method that calls it.
#include <fstream>
#include <regex>
#include <set>

#include "callers.h"

namespace {

class EngineResultsTest : public FaultTest, public ::testing::WithParamInterface<Caller> {};

TEST_P(EngineResultsTest, IsShownAsTheMethodPromises) {
  for (const MappedCode& row : kCodes) {
    TearDown();
    engine().reset();
    SetUp();
    engine().on(GetParam().function).result = static_cast<int32_t>(row.code);
    EXPECT_HR(GetParam().shown(row.code), GetParam().call(*this)) << Hresult(row.code).value;
    EXPECT_LE(1u, engine().count(GetParam().function));
    engine().on(GetParam().function) = {};
    legacy().FreeRecipCerts();
    EXPECT_EQ(std::vector<std::string>{}, engine().outstanding()) << Hresult(row.code).value;
  }
}

INSTANTIATE_TEST_SUITE_P(Callers, EngineResultsTest, ::testing::ValuesIn(Callers()), NameOfRow<Caller>);

/// What a method writes, kept for a look at it.
class Outputs {
 public:
  explicit Outputs(const Operation& operation) {
    for (size_t i = 0; i < operation.member.arguments.size(); ++i) {
      const Argument& argument = operation.member.arguments[i];
      if (!argument.isOutput()) continue;
      if (argument.type == "ICertificate**") given_.emplace(i, certificates_.emplace_back().out());
      if (argument.type == "BSTR*") given_.emplace(i, texts_.emplace_back().inOut());
      if (argument.type == "VARIANT*") given_.emplace(i, variables_.emplace_back().out());
    }
  }
  const Given& given() const { return given_; }

  void expectEmpty() {
    for (const Variant& variable : variables_) EXPECT_TRUE(isEmpty(variable)) << variable.type();
    for (const Bstr& text : texts_) EXPECT_EQ(L"", text.text());
    for (const Ptr<ICertificate>& certificate : certificates_)
      EXPECT_EQ(L"", certificate.get() == nullptr ? L"" : SubjectOf(certificate));
  }

 private:
  static bool isEmpty(const Variant& variable) {
    if (variable.type() == VT_I4) return V_I4(&variable.get()) == 0;
    return variable.type() == VT_EMPTY || (variable.type() == kObjectArray && ObjectsOf(variable).empty());
  }

  Given given_;
  std::deque<Variant> variables_;
  std::deque<Bstr> texts_;
  std::deque<Ptr<ICertificate>> certificates_;
};

class FailedOperationTest : public FaultTest, public ::testing::WithParamInterface<Operation> {
 protected:
  /// The functions that take back what a failed call may have handed out, in their order.
  std::vector<std::string> returns() {
    const std::string& name = GetParam().name;
    // Unlike the other decryptions: "The two decryptions" in docs/behaviour.md.
    if (name == "DecryptMem") return {};
    if (name == "DecryptAndVerifyFile") return {"QUIVO_FreeVerifyResult", "QUIVO_FreeDecryptResult"};
    const bool results = GetParam().has("VARIANT*") && name.find("Verify") != std::string::npos;
    if (results && !name.ends_with("InitMem") && !name.ends_with("UpdateMem")) return {"QUIVO_FreeVerifyResult"};
    if (GetParam().has("ICertificate**") && name.find("Decrypt") != std::string::npos)
      return {"QUIVO_FreeDecryptResult"};
    return {};
  }
};

TEST_P(FailedOperationTest, WritesNothingAndGivesBackInOrder) {
  for (const MappedCode& row : kCodes) {
    engine().forgetCalls();
    engine().on(GetParam().function).result = static_cast<int32_t>(row.code);
    Outputs outputs(GetParam());
    GetParam().call(arguments(), outputs.given());
    outputs.expectEmpty();
    std::vector<std::string> expected = returns();
    expected.insert(expected.begin(), GetParam().function);
    EXPECT_EQ(expected, engine().names());
  }
}

INSTANTIATE_TEST_SUITE_P(Operations, FailedOperationTest, ::testing::ValuesIn(Operations()), NameOfRow<Operation>);

TEST(EngineFunctions, EachHasACaller) {
  std::ifstream header(ENGINE_FUNCTIONS);
  const std::string text{std::istreambuf_iterator<char>(header), {}};
  const std::regex declaration("\\n(?:int32_t|void\\*) (QUIVO_\\w+)\\(");
  std::set<std::string> declared, called;
  for (std::sregex_iterator found(text.begin(), text.end(), declaration), end; found != end; ++found)
    declared.insert((*found)[1]);
  for (const Caller& caller : Callers()) called.insert(caller.function);
  EXPECT_LT(50u, declared.size());
  EXPECT_EQ(declared, called);
}

}  // namespace
