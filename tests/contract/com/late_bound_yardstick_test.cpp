// Inputs of late-bound calls: every declared type with every form of VARIANT, compared with what the platform's own
// ITypeInfo::Invoke makes of the same call.
#include <memory>
#include <sstream>

#include "support/invoke.h"
#include "support/operations.h"
#include "support/records.h"

namespace {

constexpr VARTYPE kUnknownType = 0x0FFE;

/// One VARIANT to give, with what it points to.
struct Given {
  std::string name;
  Variant held;
  std::shared_ptr<void> storage;
  VARIANT value{};
};

class Givens {
 public:
  explicit Givens(const Objects& objects) {
    plain("Empty", Variant());
    plain("Null", Variant::null());
    number<VT_I1>("I1", 7);
    number<VT_UI1>("UI1", 200);
    number<VT_I2>("I2", 5);
    number<VT_UI2>("UI2", 50000);
    number<VT_I4>("I4", 7);
    number<VT_I4>("NegativeI4", -7);
    number<VT_UI4>("UI4", 5);
    number<VT_UI4>("LargeUI4", static_cast<int32_t>(0x80000001));
    number<VT_INT>("Int", 9);
    number<VT_UINT>("UInt", 9);
    number<VT_I8>("I8", 5);
    number<VT_UI8>("UI8", 5);
    number<VT_BOOL>("True", -1);
    number<VT_ERROR>("Missing", DISP_E_PARAMNOTFOUND);
    number<VT_CY>("Currency", 50000);
    real<VT_R4, float>("R4", 6.5F);
    real<VT_R8, double>("R8", 6.5);
    real<VT_DATE, double>("Date", 40968.5);
    plain("Text", Variant::text(L"text"));
    plain("NumberText", Variant::text(L"5"));
    plain("EmptyText", Variant::text(L""));
    plain("NullText", nullText());
    plain("Bytes", ByteArray({1, 2}));
    plain("VbsBytes", VbsByteArray({1, 2}));
    plain("Strings", StringArray({L"a", L"b"}));
    plain("CertId", Variant::object(objects.id));
    plain("Certificate", Variant::object(objects.certificate));
    plain("LocalParam", Variant::object(Make<ILocalParam>()));
    plain("Nothing", Variant::object(nullptr));
    number<VT_UNKNOWN>("NoUnknown", 0);
    number<kUnknownType>("UnknownType", 0);
    const size_t byValue = all.size();
    for (size_t i = 0; i < byValue; ++i) addVariable(i);
    for (size_t i = 0; i < byValue; ++i) addTyped(i);
    for (VARTYPE type : {VT_I4, VT_BSTR, VT_BOOL, VT_DATE, VT_DISPATCH, VT_UNKNOWN, VT_VARIANT}) {
      all.push_back({"NullReference" + std::to_string(type), NullRef(type), {}, {}});
      all.back().value = all.back().held;
    }
  }

  std::vector<Given> all;

 private:
  static Variant nullText() {
    Variant text;
    V_VT(text.out()) = VT_BSTR;
    return text;
  }
  void plain(const char* name, Variant value) {
    all.push_back({name, std::move(value), {}, {}});
    all.back().value = all.back().held;
  }
  template <VARTYPE type>
  void number(const char* name, int64_t value) {
    all.push_back({name, {}, {}, {}});
    V_VT(&all.back().value) = type;
    V_I8(&all.back().value) = value;
  }
  template <VARTYPE type, class Real>
  void real(const char* name, Real value) {
    number<type>(name, 0);
    std::memcpy(&V_I8(&all.back().value), &value, sizeof(value));
  }
  /// VT_BYREF|VT_VARIANT, as scripts pass their variables.
  void addVariable(size_t index) {
    auto variable = std::make_shared<VARIANT>(all[index].value);
    Given given{"Variable" + all[index].name, {}, variable, {}};
    V_VT(&given.value) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&given.value) = variable.get();
    all.push_back(std::move(given));
  }
  /// A typed variable by reference.
  void addTyped(size_t index) {
    const VARTYPE type = V_VT(&all[index].value);
    if (type == VT_EMPTY || type == VT_NULL) return;
    // The platform faults on a null object behind a reference.
    if ((type == VT_DISPATCH || type == VT_UNKNOWN) && V_UNKNOWN(&all[index].value) == nullptr) return;
    auto storage = std::make_shared<int64_t>(V_I8(&all[index].value));
    Given given{"Reference" + all[index].name, {}, storage, {}};
    V_VT(&given.value) = VT_BYREF | type;
    V_BYREF(&given.value) = storage.get();
    all.push_back(std::move(given));
  }
};

using Caller = std::function<LateResult(IDispatch*, const LateCall&)>;

/// Calls a member with one input of interest and shows what arrived.
struct Declared {
  const char* name;
  std::function<std::string(const Caller&, const Objects&, fake::FakeEngine&, VARIANT)> run;
  bool takesVariant = false;
};

std::ostream& operator<<(std::ostream& out, const Declared& row) { return out << row.name; }

std::string Shown(const LateResult& outcome) {
  std::ostringstream text;
  text << std::hex << static_cast<uint32_t>(outcome.raw) << '/' << static_cast<uint32_t>(outcome.result);
  return text.str();
}

std::string ShownText(fake::FakeEngine& engine, const char* function, size_t argument) {
  if (engine.count(function) == 0) return " no call";
  const fake::Text text = engine.only(function).text(argument);
  return text ? " '" + *text + "'" : " null";
}

std::string ShownNumber(fake::FakeEngine& engine, const char* function, size_t argument) {
  return engine.count(function) == 0 ? " no call" : " " + std::to_string(engine.only(function).number(argument));
}

std::string ShownRecord(fake::FakeEngine& engine, const char* function, size_t argument, size_t offset) {
  return engine.count(function) == 0 ? " no call"
                                     : " " + std::to_string(engine.only(function).record(argument).pointer(offset));
}

LateCall MethodCall(const wchar_t* name, std::vector<VARIANT> arguments) {
  return {name, DISPATCH_METHOD, std::move(arguments), {}, false};
}

const std::vector<Declared> kDeclared{
    {"StringOfAMethodWithoutOutputs",
     [](const Caller& call, const Objects&, fake::FakeEngine& engine, VARIANT given) {
       Ptr<IQUIVO> quivo = Make<IQUIVO>();
       const std::string result = Shown(call(quivo, MethodCall(L"Initialize", {given, Variant::number(4)})));
       return result + ShownText(engine, "QUIVO_Initialize", 0);
     }},
    {"EnumerationOfAMethodWithoutOutputs",
     [](const Caller& call, const Objects&, fake::FakeEngine& engine, VARIANT given) {
       Ptr<IQUIVO> quivo = Make<IQUIVO>();
       Variant profile = Variant::text(L"x");
       const std::string result = Shown(call(quivo, MethodCall(L"Initialize", {profile, given})));
       return result + ShownNumber(engine, "QUIVO_Initialize", 1);
     }},
    {"StringOfAMethodWithAnOutput",
     [](const Caller& call, const Objects& objects, fake::FakeEngine& engine, VARIANT given) {
       Variant hash;
       const std::string result = Shown(call(objects.quivo, MethodCall(L"HashFile", {given, ByRef(hash)})));
       return result + ShownText(engine, "QUIVO_HashFile", 1);
     }},
    {"NumberOfAMethodWithAnOutput",
     [](const Caller& call, const Objects& objects, fake::FakeEngine& engine, VARIANT given) {
       Variant random;
       const std::string result = Shown(call(objects.quivo, MethodCall(L"GenRandom", {given, ByRef(random)})));
       return result + ShownNumber(engine, "QUIVO_GenRandom", 1);
     }},
    {"TruthOfAMethodWithAnOutput",
     [](const Caller& call, const Objects& objects, fake::FakeEngine& engine, VARIANT given) {
       engine.on("QUIVO_ExportMem").output = {1};
       Variant exported;
       Variant param = Variant::object(objects.exporting);
       const std::string result = Shown(call(objects.quivo, MethodCall(L"ExportMem", {param, ByRef(exported), given})));
       return result + " " + std::to_string(exported.type());
     }},
    {"ObjectOfAMethodWithAnOutput",
     [](const Caller& call, const Objects& objects, fake::FakeEngine& engine, VARIANT given) {
       Variant signature;
       const std::string result =
           Shown(call(objects.quivo, MethodCall(L"SignMem", {given, Variant(), Variant(), ByRef(signature)})));
       return result + ShownNumber(engine, "QUIVO_SignMem", 0);
     }},
    {"ObjectOfAMethodWithoutOutputs",
     [](const Caller& call, const Objects& objects, fake::FakeEngine& engine, VARIANT given) {
       const std::string result = Shown(call(objects.quivo, MethodCall(L"AddCRL", {given, Variant()})));
       return result + ShownRecord(engine, "QUIVO_AddCRL", 1, 8);
     }},
    {"AnyObjectOfAMethod",
     [](const Caller& call, const Objects&, fake::FakeEngine& engine, VARIANT given) {
       Ptr<IQUIVO> quivo = Make<IQUIVO>();
       return Shown(call(quivo, MethodCall(L"InitializeEx", {given}))) + ShownNumber(engine, "QUIVO_InitializeEx", 0);
     }},
    {"VariantOfAMethodWithoutOutputs",
     [](const Caller& call, const Objects& objects, fake::FakeEngine& engine, VARIANT given) {
       const std::string result = Shown(call(objects.quivo, MethodCall(L"ShowCrl", {given})));
       if (engine.count("QUIVO_ShowCrl") == 0) return result;
       return result + " " + std::to_string(engine.only("QUIVO_ShowCrl").blobBytes(1).size());
     },
     true},
    {"StringProperty",
     [](const Caller& call, const Objects&, fake::FakeEngine&, VARIANT given) {
       Ptr<ILocalParam> param = Make<ILocalParam>();
       const std::string result = Shown(call(param, {L"pse", DISPATCH_PROPERTYPUT, {given}, {}, false}));
       Bstr text;
       param->get_pse(text.inOut());
       return result + " '" + Narrow(text.text()) + "'";
     }},
    {"NumberProperty",
     [](const Caller& call, const Objects&, fake::FakeEngine&, VARIANT given) {
       Ptr<IVerifyParam> param = Make<IVerifyParam>();
       const std::string result = Shown(call(param, {L"minsigns", DISPATCH_PROPERTYPUT, {given}, {}, false}));
       return result + " " + std::to_string(RecordOf(param.get()).i32(68));
     }},
    {"EnumerationProperty",
     [](const Caller& call, const Objects&, fake::FakeEngine&, VARIANT given) {
       Ptr<IVerifyParam> param = Make<IVerifyParam>();
       const std::string result = Shown(call(param, {L"flag", DISPATCH_PROPERTYPUT, {given}, {}, false}));
       return result + " " + std::to_string(RecordOf(param.get()).i32(0));
     }},
    {"DateProperty",
     [](const Caller& call, const Objects&, fake::FakeEngine&, VARIANT given) {
       Ptr<ICertificate> certificate = Make<ICertificate>();
       const std::string result = Shown(call(certificate, {L"notBefore", DISPATCH_PROPERTYPUT, {given}, {}, false}));
       DATE date = 0;
       certificate->get_notBefore(&date);
       return result + " " + std::to_string(date);
     }},
    {"ObjectProperty",
     [](const Caller& call, const Objects&, fake::FakeEngine&, VARIANT given) {
       Ptr<ISignParam> param = Make<ISignParam>();
       const std::string result = Shown(call(param, {L"mycert", DISPATCH_PROPERTYPUTREF, {given}, {}, false}));
       return result + " " + std::to_string(RecordOf(param.get()).pointer(8));
     }},
    {"VariantProperty",
     [](const Caller& call, const Objects&, fake::FakeEngine&, VARIANT given) {
       Ptr<ICertificate> certificate = Make<ICertificate>();
       const std::string result = Shown(call(certificate, {L"certHash", DISPATCH_PROPERTYPUT, {given}, {}, false}));
       Variant hash;
       certificate->get_certHash(hash.out());
       return result + " " + std::to_string(hash.type());
     },
     true},
};

bool IsNullReference(const VARIANT& given) { return V_ISBYREF(&given) && V_BYREF(&given) == nullptr; }

bool HasUnknownType(const VARIANT& given) { return (V_VT(&given) & VT_TYPEMASK) == kUnknownType; }

class LateBoundYardstickTest : public ContractTest, public ::testing::WithParamInterface<Declared> {
 protected:
  std::string run(const Caller& caller, const VARIANT& given) {
    engine().forgetCalls();
    return GetParam().run(caller, objects, engine(), given);
  }

  Objects objects{openQuivo()};
  Givens givens{objects};
};

TEST_P(LateBoundYardstickTest, InputsArriveAsWithThePlatformsOwnInvoke) {
  // The platform leaves behind what it has converted when a later argument fails.
  leaveOutLeaks();
  for (const Given& given : givens.all) {
    if (IsNullReference(given.value)) continue;
    // The method's own refusal is more exact than the platform's.
    if (GetParam().takesVariant && HasUnknownType(given.value)) continue;
    EXPECT_EQ(run(InvokeByPlatform, given.value), run(Invoke, given.value)) << given.name;
  }
}

TEST_P(LateBoundYardstickTest, NothingOfAnInputIsLeftBehind) {
  for (const Given& given : givens.all) run(Invoke, given.value);
}

INSTANTIATE_TEST_SUITE_P(DeclaredTypes, LateBoundYardstickTest, ::testing::ValuesIn(kDeclared), NameOfRow<Declared>);

/// A VARIANT is handed over as it is, for the method to refuse.
std::vector<Declared> ConvertedTypes() {
  std::vector<Declared> rows = kDeclared;
  std::erase_if(rows, [](const Declared& row) { return row.takesVariant; });
  return rows;
}

using LateBoundNullReferenceTest = LateBoundYardstickTest;

TEST_P(LateBoundNullReferenceTest, IsAnInvalidArgument) {
  for (const Given& given : givens.all) {
    if (!IsNullReference(given.value)) continue;
    EXPECT_EQ(0u, run(Invoke, given.value).find("80070057/80070057")) << given.name;
  }
}

INSTANTIATE_TEST_SUITE_P(DeclaredTypes, LateBoundNullReferenceTest, ::testing::ValuesIn(ConvertedTypes()),
                         NameOfRow<Declared>);

}  // namespace
