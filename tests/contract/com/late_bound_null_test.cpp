// Null strings, null references and objects that are none in late-bound calls.
#include <memory>

#include "contract/com/late_methods.h"
#include "support/invoke.h"

namespace {

Variant nullText() {
  Variant text;
  V_VT(text.out()) = VT_BSTR;
  return text;
}

Variant text() { return Variant::text(L"x"); }

/// A method with outputs that receives a null string.
struct NullText {
  const char* name;
  std::function<std::vector<Variant>(const Objects&)> inputs;
};

template <class... Values>
std::vector<Variant> list(Values&&... values) {
  std::vector<Variant> made;
  (made.push_back(std::forward<Values>(values)), ...);
  return made;
}

const NullText kRequired[]{
    {"HashFile", [](const Objects&) { return list(nullText()); }},
    {"DecryptFile", [](const Objects& o) { return list(Variant::object(o.decrypt), nullText(), text()); }},
    {"DecryptFile", [](const Objects& o) { return list(Variant::object(o.decrypt), text(), nullText()); }},
    {"StrDecryptFile", [](const Objects& o) { return list(Variant::object(o.decrypt), nullText(), text()); }},
    {"StrDecryptFile", [](const Objects& o) { return list(Variant::object(o.decrypt), text(), nullText()); }},
    {"VerifyFile", [](const Objects& o) { return list(Variant::object(o.verify), text(), nullText(), text()); }},
    {"StrVerifyFile", [](const Objects& o) { return list(Variant::object(o.verify), text(), nullText(), text()); }},
};

/// The three ways in which a caller takes the last output.
enum class Form { kVariable, kResult, kHolder };

class LateBoundNullTest : public ContractTest, public ::testing::WithParamInterface<Form> {
 protected:
  /// Calls with the output in the form of the test.
  LateResult run(const char* name, const std::vector<Variant>& inputs) {
    LateCall call{wideOf(name), DISPATCH_METHOD, {}, {}, GetParam() == Form::kResult};
    for (const Variant& input : inputs) call.positional.push_back(input);
    Variant variable;
    Holder holder(Holder::Kind::kExtendable);
    Variant argument = Variant::object(&holder);
    if (GetParam() == Form::kVariable) call.positional.push_back(byRef(variable));
    if (GetParam() == Form::kHolder) call.positional.push_back(argument);
    return invoke(objects.quivo, call);
  }

  Objects objects{openQuivo()};
};

TEST_P(LateBoundNullTest, RequiredTextIsRefusedByTheMethod) {
  for (const NullText& row : kRequired) {
    EXPECT_HR(kInvalidArgument, run(row.name, row.inputs(objects)).result) << row.name;
    EXPECT_EQ(0u, engine().count("QUIVO_" + std::string(row.name))) << row.name;
  }
}

TEST_P(LateBoundNullTest, OptionalPathArrivesAsNone) {
  EXPECT_OK(run("VerifyFile", list(Variant::object(objects.verify), nullText(), text(), nullText())).result);
  const fake::Call& call = engine().only("QUIVO_VerifyFile");
  EXPECT_TRUE(call.null(2));
  EXPECT_EQ("x", call.text(3));
  EXPECT_TRUE(call.null(4));
}

TEST_P(LateBoundNullTest, OidIsNotConverted) {
  Variant reason;
  LateCall call{L"CheckOID", DISPATCH_METHOD, {nullText(), byRef(reason)}, {}, false};
  EXPECT_HR(E_FAIL, invoke(objects.quivo, call).result);
  EXPECT_EQ(L"Ошибка преобразования BSTR", textOf(reason));
  engine().forgetCalls();
  EXPECT_HR(E_FAIL, run("CheckOID", list(nullText())).result);
  EXPECT_EQ(0u, engine().count("QUIVO_FindCert"));
}

INSTANTIATE_TEST_SUITE_P(Forms, LateBoundNullTest, ::testing::Values(Form::kVariable, Form::kResult, Form::kHolder));

class LateBoundNullOutputTest : public ContractTest, public ::testing::WithParamInterface<LateMethod> {
 protected:
  /// The call with `output` as its last output, and variables for the others.
  LateResult run(const VARIANT& output) {
    answerLateMethods(engine());
    auto given = GetParam().inputs(objects);
    std::vector<Variant> variables(GetParam().outputs.size());
    LateCall call{GetParam().wideName(), DISPATCH_METHOD, {}, {}, false};
    for (const auto& [name, value] : given) call.positional.push_back(value);
    for (size_t i = 0; i + 1 < variables.size(); ++i) call.positional.push_back(byRef(variables[i]));
    call.positional.push_back(output);
    return invoke(objects.quivo, call);
  }

  Objects objects{openQuivo()};
};

TEST_P(LateBoundNullOutputTest, NullReferenceIsRefusedByTheMethod) {
  for (VARTYPE type : {VT_VARIANT, VT_BSTR, VT_DISPATCH, VT_UNKNOWN, VT_I4}) {
    const LateResult outcome = run(nullRef(type));
    EXPECT_HR(DISP_E_EXCEPTION, outcome.raw) << type;
    EXPECT_HR(kInvalidArgument, outcome.result) << type;
  }
  engine().releaseOutstanding();
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundNullOutputTest, ::testing::ValuesIn(kLateMethods), nameOfRow<LateMethod>);

class LateBoundObjectTest : public ContractTest {
 protected:
  HRESULT sign(const VARIANT& param) {
    Variant output;
    return invoke(objects.quivo, {L"SignMem", DISPATCH_METHOD, {param, Variant(), Variant(), byRef(output)}, {}, false})
        .raw;
  }
  HRESULT add(const VARIANT& id) {
    return invoke(objects.quivo, {L"AddCRL", DISPATCH_METHOD, {id, Variant()}, {}, false}).raw;
  }

  Objects objects{openQuivo()};
};

TEST_F(LateBoundObjectTest, WrongClassHasNoSuchInterface) {
  Variant wrong = Variant::object(objects.certificate);
  EXPECT_HR(E_NOINTERFACE, sign(wrong));
  EXPECT_HR(E_NOINTERFACE, sign(byRef(wrong)));
  EXPECT_HR(E_NOINTERFACE, add(wrong));
  EXPECT_HR(E_NOINTERFACE, putRefProperty(objects.sign, L"mycert", wrong).raw);
}

TEST_F(LateBoundObjectTest, NullObjectBehindAReferenceIsNothing) {
  Ptr<IDispatch> none;
  Variant variable = byRefObject(none);
  EXPECT_OK(add(variable));
  EXPECT_OK(add(byRef(variable)));
  EXPECT_HR(DISP_E_EXCEPTION, sign(variable));
}

TEST_F(LateBoundObjectTest, ReferenceToNothingIsAnInvalidArgument) {
  for (VARTYPE type : {VT_DISPATCH, VT_UNKNOWN}) {
    EXPECT_HR(E_INVALIDARG, sign(nullRef(type)));
    EXPECT_HR(E_INVALIDARG, add(nullRef(type)));
    EXPECT_HR(E_INVALIDARG, putRefProperty(objects.sign, L"mycert", nullRef(type)).raw);
  }
}

/// Answers every question for an interface with success and nothing.
class Nothing final : public IDispatch {
 public:
  STDMETHODIMP QueryInterface(REFIID, void** out) override {
    *out = nullptr;
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    *info = nullptr;
    return S_OK;
  }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override { return S_OK; }
};

TEST_F(LateBoundObjectTest, InterfaceThatIsNullHasNoSuchInterface) {
  Nothing nothing;
  Variant argument = Variant::object(&nothing);
  EXPECT_HR(E_NOINTERFACE, sign(argument));
  EXPECT_HR(E_NOINTERFACE, add(argument));
}

TEST_F(LateBoundObjectTest, HolderWithoutTheInterfaceThatItPromisesIsRefused) {
  Nothing holder;
  engine().on("QUIVO_HashMem").output = {1};
  Variant argument = Variant::object(&holder);
  EXPECT_TRUE(FAILED(invoke(objects.quivo, {L"HashMem", DISPATCH_METHOD, {Variant(), argument}, {}, false}).raw));
}

TEST_F(LateBoundObjectTest, ObjectWithoutTheTypeInformationThatItPromisesOpensNothing) {
  Nothing param;
  Ptr<IQUIVO> quivo = make<QUIVO>();
  EXPECT_TRUE(FAILED(quivo->InitializeEx(&param)));
  EXPECT_EQ(0u, engine().count("QUIVO_InitializeEx"));
}

}  // namespace
