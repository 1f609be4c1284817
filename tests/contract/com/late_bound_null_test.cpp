// Null strings, null references and objects that are none in late-bound calls.
#include <memory>

#include "contract/com/late_methods.h"
#include "support/foreign_object.h"

namespace {

Variant NullText() {
  Variant text;
  V_VT(text.out()) = VT_BSTR;
  return text;
}

Variant Text() { return Variant::text(L"x"); }

template <class... Values>
std::vector<Variant> List(Values&&... values) {
  std::vector<Variant> made;
  (made.push_back(std::forward<Values>(values)), ...);
  return made;
}

/// The three ways in which a caller takes the last output.
enum class Form { kVariable, kResult, kHolder };

class LateBoundNullTest : public ContractTest, public ::testing::WithParamInterface<Form> {
 protected:
  /// Calls with the output in the form of the test.
  LateResult run(const std::string& name, const std::vector<Variant>& inputs) {
    LateCall call{Widen(name), DISPATCH_METHOD, {}, {}, GetParam() == Form::kResult};
    for (const Variant& input : inputs) call.positional.push_back(input);
    Variant variable;
    Holder holder(Holder::Kind::kExtendable);
    Variant argument = Variant::object(&holder);
    if (GetParam() == Form::kVariable) call.positional.push_back(ByRef(variable));
    if (GetParam() == Form::kHolder) call.positional.push_back(argument);
    return Invoke(objects.quivo, call);
  }

  Objects objects{openQuivo()};
};

TEST_P(LateBoundNullTest, RequiredTextIsRefusedByTheMethod) {
  size_t refused = 0;
  for (const OperationArgument& row : StringInputs()) {
    for (const LateMethod& method : LateMethods()) {
      if (method.name != row.operation.name || row.isOptional()) continue;
      std::vector<Variant> inputs;
      for (auto& [name, value] : method.inputs(objects)) inputs.push_back(std::move(value));
      inputs[row.place] = NullText();
      EXPECT_HR(kInvalidArgument, run(method.name, inputs).result) << row;
      EXPECT_EQ(0u, engine().count(row.function)) << row;
      ++refused;
    }
  }
  EXPECT_LE(7u, refused);
}

TEST_P(LateBoundNullTest, OptionalPathArrivesAsNone) {
  EXPECT_OK(run("VerifyFile", List(Variant::object(objects.verify), NullText(), Text(), NullText())).result);
  const fake::Call& call = engine().only("QUIVO_VerifyFile");
  EXPECT_TRUE(call.null(2));
  EXPECT_EQ("x", call.text(3));
  EXPECT_TRUE(call.null(4));
}

TEST_P(LateBoundNullTest, OidIsNotConverted) {
  Variant reason;
  LateCall call{L"CheckOID", DISPATCH_METHOD, {NullText(), ByRef(reason)}, {}, false};
  EXPECT_HR(E_FAIL, Invoke(objects.quivo, call).result);
  EXPECT_EQ(L"Ошибка преобразования BSTR", TextOf(reason));
  engine().forgetCalls();
  EXPECT_HR(E_FAIL, run("CheckOID", List(NullText())).result);
  EXPECT_EQ(0u, engine().count("QUIVO_FindCert"));
}

INSTANTIATE_TEST_SUITE_P(Forms, LateBoundNullTest, ::testing::Values(Form::kVariable, Form::kResult, Form::kHolder));

using LateBoundNullOutputTest = LateMethodTest;

TEST_P(LateBoundNullOutputTest, NullReferenceIsRefusedByTheMethod) {
  for (VARTYPE type : {VT_VARIANT, VT_BSTR, VT_DISPATCH, VT_UNKNOWN, VT_I4}) {
    LateCall call = listedButLast();
    call.positional.push_back(NullRef(type));
    const LateResult outcome = run(call);
    EXPECT_HR(DISP_E_EXCEPTION, outcome.raw) << type;
    EXPECT_HR(kInvalidArgument, outcome.result) << type;
  }
  engine().releaseOutstanding();
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundNullOutputTest, ::testing::ValuesIn(LateMethods()), NameOfRow<LateMethod>);

class LateBoundObjectTest : public ContractTest {
 protected:
  HRESULT sign(const VARIANT& param) {
    Variant output;
    return Invoke(objects.quivo, {L"SignMem", DISPATCH_METHOD, {param, Variant(), Variant(), ByRef(output)}, {}, false})
        .raw;
  }
  HRESULT add(const VARIANT& id) {
    return Invoke(objects.quivo, {L"AddCRL", DISPATCH_METHOD, {id, Variant()}, {}, false}).raw;
  }

  Objects objects{openQuivo()};
};

TEST_F(LateBoundObjectTest, WrongClassHasNoSuchInterface) {
  Variant wrong = Variant::object(objects.certificate);
  EXPECT_HR(E_NOINTERFACE, sign(wrong));
  EXPECT_HR(E_NOINTERFACE, sign(ByRef(wrong)));
  EXPECT_HR(E_NOINTERFACE, add(wrong));
  EXPECT_HR(E_NOINTERFACE, PutRefProperty(objects.sign, L"mycert", wrong).raw);
}

TEST_F(LateBoundObjectTest, NullObjectBehindAReferenceIsNothing) {
  Ptr<IDispatch> none;
  Variant variable = ByRefObject(none);
  EXPECT_OK(add(variable));
  EXPECT_OK(add(ByRef(variable)));
  EXPECT_HR(DISP_E_EXCEPTION, sign(variable));
}

TEST_F(LateBoundObjectTest, ReferenceToNothingIsAnInvalidArgument) {
  for (VARTYPE type : {VT_DISPATCH, VT_UNKNOWN}) {
    EXPECT_HR(E_INVALIDARG, sign(NullRef(type)));
    EXPECT_HR(E_INVALIDARG, add(NullRef(type)));
    EXPECT_HR(E_INVALIDARG, PutRefProperty(objects.sign, L"mycert", NullRef(type)).raw);
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
  EXPECT_TRUE(FAILED(Invoke(objects.quivo, {L"HashMem", DISPATCH_METHOD, {Variant(), argument}, {}, false}).raw));
}

TEST_F(LateBoundObjectTest, ObjectWithoutTheTypeInformationThatItPromisesOpensNothing) {
  Nothing param;
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  EXPECT_TRUE(FAILED(quivo->InitializeEx(&param)));
  EXPECT_EQ(0u, engine().count("QUIVO_InitializeEx"));
}

TEST_F(LateBoundObjectTest, NullReferenceBehindTwoReferencesIsRefused) {
  for (VARTYPE type : {kByteArray, VARTYPE{VT_BSTR}, VARTYPE{VT_DISPATCH}, VARTYPE{VT_VARIANT}}) {
    Variant null = NullRef(type), reference = ByRef(null), hash;
    EXPECT_HR(E_INVALIDARG, sign(ByRef(reference)));
    EXPECT_HR(E_INVALIDARG, add(ByRef(reference)));
    const LateCall call{L"HashFile", DISPATCH_METHOD, {ByRef(reference), ByRef(hash)}, {}, false};
    EXPECT_HR(E_INVALIDARG, Invoke(objects.quivo, call).raw);
  }
}

/// Refuses every question, and leaves a pointer that nobody has a reference for.
class Careless final : public LookAlike {
 public:
  Careless() : LookAlike(nullptr) {}
  STDMETHODIMP QueryInterface(REFIID, void** out) override {
    *out = static_cast<IDispatch*>(this);
    return E_NOINTERFACE;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    *info = static_cast<ITypeInfo*>(static_cast<void*>(static_cast<IDispatch*>(this)));
    return E_FAIL;
  }
};

TEST_F(LateBoundObjectTest, PointerThatComesWithARefusalIsNotReleased) {
  Careless careless;
  {
    Variant argument = Variant::object(&careless);
    EXPECT_HR(E_NOINTERFACE, sign(argument));
    EXPECT_TRUE(FAILED(Invoke(objects.quivo, {L"HashMem", DISPATCH_METHOD, {Variant(), argument}, {}, false}).raw));
  }
  EXPECT_EQ(1u, careless.references());
}

TEST_F(LateBoundObjectTest, TypeInformationThatComesWithAFailureIsNotReleased) {
  Careless careless;
  EXPECT_TRUE(FAILED(Make<IQUIVO>()->InitializeEx(&careless)));
  EXPECT_EQ(1u, careless.references());
}

}  // namespace
