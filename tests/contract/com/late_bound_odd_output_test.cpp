// Outputs of late-bound calls given as anything that a caller can think of, for calls that succeed and that fail.
#include <memory>

#include "contract/com/late_methods.h"

namespace {

/// Something given as an output, with the memory behind it.
struct Odd {
  std::string name;
  VARIANT value{};
  std::shared_ptr<int64_t> storage;
};

std::vector<Odd> Odds() {
  std::vector<Odd> all;
  for (VARTYPE type :
       {VT_EMPTY, VT_NULL, VT_I2, VT_I4, VT_R8, VT_BOOL, VT_DATE, VT_UI1, VT_BSTR, VT_DISPATCH, VT_UNKNOWN, VT_ERROR}) {
    Odd odd{"value of type " + std::to_string(type), {}, {}};
    V_VT(&odd.value) = type;
    all.push_back(odd);
  }
  for (VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_INT, VT_I8, VT_R4, VT_R8, VT_CY, VT_DATE,
                       VT_BOOL, VT_ERROR, VT_BSTR, VT_DISPATCH, VT_UNKNOWN, VT_RECORD, VT_SAFEARRAY}) {
    Odd odd{"reference to type " + std::to_string(type), {}, std::make_shared<int64_t>(0)};
    V_VT(&odd.value) = VT_BYREF | type;
    V_BYREF(&odd.value) = odd.storage.get();
    all.push_back(odd);
  }
  for (VARTYPE element : {VT_UI1, VT_VARIANT, VT_DISPATCH, VT_BSTR}) {
    Odd odd{"reference to an array of type " + std::to_string(element), {}, std::make_shared<int64_t>(0)};
    V_VT(&odd.value) = VT_BYREF | VT_ARRAY | element;
    V_BYREF(&odd.value) = odd.storage.get();
    all.push_back(odd);
  }
  return all;
}

/// What the typed variable has received is the caller's to free.
void FreeStored(const Odd& odd) {
  if (!odd.storage) return;
  VARIANT stored{};
  V_VT(&stored) = V_VT(&odd.value) & ~VT_BYREF;
  V_I8(&stored) = *odd.storage;
  const bool owned =
      V_ISARRAY(&stored) || V_VT(&stored) == VT_BSTR || V_VT(&stored) == VT_DISPATCH || V_VT(&stored) == VT_UNKNOWN;
  if (owned) VariantClear(&stored);
  *odd.storage = 0;
}

class LateBoundOddOutputTest : public LateMethodTest {
 protected:
  LateResult runWith(const VARIANT& output) {
    LateCall call = listedButLast();
    call.wantsResult = true;
    call.positional.push_back(output);
    return run(call);
  }
};

TEST_P(LateBoundOddOutputTest, IsFilledOrRefused) {
  for (const Odd& odd : Odds()) {
    const LateResult outcome = runWith(odd.value);
    const bool known = outcome.raw == S_OK || outcome.raw == DISP_E_TYPEMISMATCH || outcome.raw == DISP_E_BADVARTYPE ||
                       outcome.raw == DISP_E_OVERFLOW;
    EXPECT_TRUE(known) << odd.name << ": " << std::hex << outcome.raw;
    FreeStored(odd);
  }
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundOddOutputTest, ::testing::ValuesIn(LateMethods()), NameOfRow<LateMethod>);

/// The methods whose result is the engine's, without the one whose text takes the place of a failure.
std::vector<LateMethod> FailingMethods() {
  return Where(LateMethods(), [](const LateMethod& row) {
    return row.name.find("ErrorText") == std::string::npos && row.name != "UpdateCrl";
  });
}

using LateBoundFailingOutputTest = LateBoundOddOutputTest;

TEST_P(LateBoundFailingOutputTest, FailureOfTheMethodIsReported) {
  for (const Operation& operation : Operations()) engine().on(operation.function).result = 0x19;
  for (const Odd& odd : Odds()) {
    const LateResult outcome = runWith(odd.value);
    EXPECT_TRUE(outcome.raw == DISP_E_TYPEMISMATCH || outcome.result == static_cast<HRESULT>(0xE0690019))
        << odd.name << ": " << std::hex << outcome.raw << '/' << outcome.result;
    FreeStored(odd);
  }
  engine().releaseOutstanding();
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundFailingOutputTest, ::testing::ValuesIn(FailingMethods()),
                         NameOfRow<LateMethod>);

}  // namespace
