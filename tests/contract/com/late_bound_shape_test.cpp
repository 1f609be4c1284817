// The shape of late-bound calls: flags, counts and names of arguments on every kind of member.
#include "support/invoke.h"
#include "support/operations.h"

namespace {

constexpr DISPID kUninitialize = 2;
constexpr DISPID kHashMem = 5;
constexpr DISPID kAddCrl = 20;
constexpr DISPID kShowCrl = 27;

class LateBoundShapeTest : public ContractTest {
 protected:
  struct Outcome {
    HRESULT raw;
    HRESULT failure;
    VARTYPE result;
    bool operator==(const Outcome&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
      return out << std::hex << outcome.raw << '/' << outcome.failure << " result " << outcome.result << std::dec;
    }
  };

  /// A member with arguments that it accepts.
  struct Member {
    const char* name;
    IDispatch* object;
    DISPID id;
    std::vector<VARIANT> arguments;
  };

  std::vector<Member> members() {
    return {{"method without arguments", objects.quivo, kUninitialize, {}},
            {"method with one argument", objects.quivo, kShowCrl, {Variant()}},
            {"method with two arguments", objects.quivo, kAddCrl, {Variant(), nothing}},
            {"number property", objects.sign, 1, {}},
            {"number property with a value", objects.sign, 1, {number}},
            {"object property", objects.sign, 2, {}},
            {"object property with a value", objects.sign, 2, {identifier}},
            {"VARIANT property", objects.certificate, 19, {}},
            {"VARIANT property with a value", objects.certificate, 19, {Variant()}},
            {"member of IUnknown", objects.quivo, 0x60000000, {}},
            {"unknown member", objects.quivo, 4711, {}}};
  }

  Outcome call(IDispatch* object, DISPID id, WORD flags, std::vector<VARIANT> arguments, std::vector<DISPID> names,
               UINT* badArgument = nullptr) {
    DISPPARAMS params{arguments.data(), names.data(), static_cast<UINT>(arguments.size()),
                      static_cast<UINT>(names.size())};
    Variant result;
    EXCEPINFO exception{};
    const HRESULT raw = object->Invoke(id, IID_NULL, 0, flags, &params, result.out(), &exception, badArgument);
    return {raw, exception.scode, result.type()};
  }
  Outcome callByPlatform(IDispatch* object, DISPID id, WORD flags, std::vector<VARIANT> arguments,
                         std::vector<DISPID> names) {
    DISPPARAMS params{arguments.data(), names.data(), static_cast<UINT>(arguments.size()),
                      static_cast<UINT>(names.size())};
    Ptr<ITypeInfo> info;
    object->GetTypeInfo(0, 0, info.out());
    Variant result;
    EXCEPINFO exception{};
    const HRESULT raw = info->Invoke(object, id, flags, &params, result.out(), &exception, nullptr);
    return {raw, exception.scode, result.type()};
  }
  /// Wine 8 knows no such member; Wine 10 looks for a default member of the object.
  static bool isAssignedByValue(const Member& member, WORD flags) {
    return std::string_view(member.name).starts_with("object property") && (flags & DISPATCH_PROPERTYPUT) != 0 &&
           (flags & DISPATCH_PROPERTYPUTREF) == 0;
  }
  HRESULT refusal(DISPID id, std::vector<VARIANT> arguments, std::vector<DISPID> names = {}) {
    return call(objects.quivo, id, DISPATCH_METHOD, std::move(arguments), std::move(names)).raw;
  }

  Objects objects{openQuivo()};
  Variant number = Variant::number(1);
  Variant nothing = Variant::object(nullptr);
  Variant identifier = Variant::object(objects.id);
};

TEST_F(LateBoundShapeTest, EveryCombinationOfFlagsDoesWhatThePlatformsInvokeDoes) {
  EXPECT_OK(objects.sign->putref_mycert(objects.id));
  for (const Member& member : members()) {
    for (WORD flags = 0; flags < 16; ++flags) {
      // A property that is read with arguments has tests of its own.
      if ((flags & DISPATCH_PROPERTYGET) != 0 && !member.arguments.empty()) continue;
      if (isAssignedByValue(member, flags)) continue;
      for (const std::vector<DISPID>& names : {std::vector<DISPID>{}, std::vector<DISPID>{DISPID_PROPERTYPUT}}) {
        if (names.size() > member.arguments.size()) continue;
        const bool assigns = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
        if (!names.empty() && !assigns) continue;
        if (!names.empty() && (flags & DISPATCH_METHOD) != 0) continue;
        EXPECT_EQ(callByPlatform(member.object, member.id, flags, member.arguments, names),
                  call(member.object, member.id, flags, member.arguments, names))
            << member.name << ", flags " << flags << ", " << names.size() << " named";
      }
    }
  }
}

TEST_F(LateBoundShapeTest, ObjectIsNotAssignedByValue) {
  for (const Member& member : members()) {
    if (!isAssignedByValue(member, DISPATCH_PROPERTYPUT)) continue;
    EXPECT_HR(DISP_E_MEMBERNOTFOUND,
              call(member.object, member.id, DISPATCH_PROPERTYPUT, {identifier}, {DISPID_PROPERTYPUT}).raw);
  }
}

TEST_F(LateBoundShapeTest, MethodIsNotCalledAsAProperty) {
  EXPECT_HR(DISP_E_MEMBERNOTFOUND, call(objects.quivo, kShowCrl, DISPATCH_PROPERTYGET, {Variant()}, {}).raw);
  EXPECT_HR(DISP_E_MEMBERNOTFOUND, call(objects.quivo, kHashMem, DISPATCH_PROPERTYGET, {Variant()}, {}).raw);
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_F(LateBoundShapeTest, PropertyIsNotCalledAsAMethod) {
  EXPECT_HR(DISP_E_MEMBERNOTFOUND, call(objects.sign, 1, DISPATCH_METHOD, {}, {}).raw);
}

TEST_F(LateBoundShapeTest, TooManyArgumentsAreRefused) {
  EXPECT_HR(DISP_E_BADPARAMCOUNT, refusal(kUninitialize, {number}));
  EXPECT_HR(DISP_E_BADPARAMCOUNT, refusal(kShowCrl, {Variant(), Variant()}));
  EXPECT_HR(DISP_E_BADPARAMCOUNT, refusal(kHashMem, {Variant(), Variant(), Variant()}));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_F(LateBoundShapeTest, TooFewArgumentsAreRefused) {
  EXPECT_HR(DISP_E_BADPARAMCOUNT, refusal(kShowCrl, {}));
  EXPECT_HR(DISP_E_BADPARAMCOUNT, refusal(kAddCrl, {Variant()}));
  EXPECT_HR(DISP_E_BADPARAMCOUNT, refusal(kHashMem, {}));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_F(LateBoundShapeTest, AssignmentTakesOneValue) {
  EXPECT_HR(DISP_E_BADPARAMCOUNT,
            call(objects.sign, 1, DISPATCH_PROPERTYPUT, {number, number}, {DISPID_PROPERTYPUT}).raw);
  EXPECT_HR(DISP_E_PARAMNOTFOUND, call(objects.sign, 1, DISPATCH_PROPERTYPUT, {number}, {}).raw);
  EXPECT_HR(DISP_E_PARAMNOTFOUND, call(objects.sign, 1, DISPATCH_PROPERTYPUT, {number}, {0}).raw);
}

TEST_F(LateBoundShapeTest, NameOfAnArgumentIsUsedOnce) {
  UINT bad = 99;
  EXPECT_HR(DISP_E_PARAMNOTFOUND, call(objects.quivo, kAddCrl, DISPATCH_METHOD, {nothing, nothing}, {0, 0}, &bad).raw);
  EXPECT_EQ(1u, bad);
}

TEST_F(LateBoundShapeTest, UnknownNamesOfArgumentsAreRefused) {
  for (DISPID name : {DISPID{2}, DISPID{-1}, DISPID{DISPID_PROPERTYPUT}}) {
    UINT bad = 99;
    EXPECT_HR(DISP_E_PARAMNOTFOUND,
              call(objects.quivo, kAddCrl, DISPATCH_METHOD, {nothing, nothing}, {name}, &bad).raw);
    EXPECT_EQ(0u, bad) << name;
  }
}

TEST_F(LateBoundShapeTest, MoreNamesThanArgumentsAreRefused) {
  DISPID names[] = {0, 1, 2};
  VARIANT argument = nothing;
  DISPPARAMS params{&argument, names, 1, 3};
  EXPECT_HR(DISP_E_BADPARAMCOUNT,
            objects.quivo->Invoke(kAddCrl, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr));
}

TEST_F(LateBoundShapeTest, ArgumentsThatAreNotThereAreRefused) {
  VARIANT argument = nothing;
  DISPPARAMS noValues{nullptr, nullptr, 2, 0}, noNames{&argument, nullptr, 1, 1};
  auto invoke = [&](DISPPARAMS* params) {
    return objects.quivo->Invoke(kAddCrl, IID_NULL, 0, DISPATCH_METHOD, params, nullptr, nullptr, nullptr);
  };
  EXPECT_HR(E_INVALIDARG, invoke(nullptr));
  EXPECT_HR(E_INVALIDARG, invoke(&noValues));
  EXPECT_HR(E_INVALIDARG, invoke(&noNames));
}

TEST_F(LateBoundShapeTest, WrongArgumentIsNamed) {
  UINT bad = 99;
  EXPECT_HR(DISP_E_TYPEMISMATCH, call(objects.quivo, kAddCrl, DISPATCH_METHOD, {Variant(), number}, {}, &bad).raw);
  EXPECT_EQ(1u, bad);
}

TEST_F(LateBoundShapeTest, ArgumentsOfAPropertyAreThoseOfItsObject) {
  EXPECT_OK(objects.sign->putref_mycert(objects.id));
  EXPECT_EQ(callByPlatform(objects.sign, 2, DISPATCH_PROPERTYGET, {number}, {}),
            call(objects.sign, 2, DISPATCH_PROPERTYGET, {number}, {}));
}

TEST_F(LateBoundShapeTest, ArgumentsOfAPropertyWithoutAnObjectAreRefused) {
  EXPECT_HR(DISP_E_NOTACOLLECTION, call(objects.sign, 2, DISPATCH_PROPERTYGET, {number}, {}).raw);
  EXPECT_HR(DISP_E_NOTACOLLECTION, call(objects.sign, 1, DISPATCH_PROPERTYGET, {number}, {}).raw);
  EXPECT_HR(DISP_E_NOTACOLLECTION, call(objects.verify, 4, DISPATCH_PROPERTYGET, {number}, {}).raw);
}

TEST_F(LateBoundShapeTest, PropertyIsReadWithArgumentsOnlyForAResult) {
  VARIANT argument = number;
  DISPPARAMS params{&argument, nullptr, 1, 0};
  EXPECT_HR(DISP_E_BADPARAMCOUNT,
            objects.sign->Invoke(2, IID_NULL, 0, DISPATCH_PROPERTYGET, &params, nullptr, nullptr, nullptr));
}

TEST_F(LateBoundShapeTest, ResultOfAPropertyMayBeIgnored) {
  DISPPARAMS none{};
  EXPECT_OK(objects.sign->putref_mycert(objects.id));
  EXPECT_OK(objects.sign->Invoke(2, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr));
}

TEST_F(LateBoundShapeTest, FailureNeedsNoExceptionRecord) {
  engine().on("QUIVO_ShowCrl").result = 0x19;
  VARIANT argument{};
  DISPPARAMS params{&argument, nullptr, 1, 0};
  EXPECT_HR(DISP_E_EXCEPTION,
            objects.quivo->Invoke(kShowCrl, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr));
}

}  // namespace
