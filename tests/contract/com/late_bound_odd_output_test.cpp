// Outputs of late-bound calls given as anything that a caller can think of, for calls that succeed and that fail.
#include <memory>

#include "contract/com/late_methods.h"
#include "support/invoke.h"

namespace {

/// Something given as an output, with the memory behind it.
struct Odd {
  std::string name;
  VARIANT value{};
  std::shared_ptr<int64_t> storage;
};

std::vector<Odd> odds() {
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
void freeStored(const Odd& odd) {
  if (!odd.storage) return;
  VARIANT stored{};
  V_VT(&stored) = V_VT(&odd.value) & ~VT_BYREF;
  V_I8(&stored) = *odd.storage;
  const bool owned =
      V_ISARRAY(&stored) || V_VT(&stored) == VT_BSTR || V_VT(&stored) == VT_DISPATCH || V_VT(&stored) == VT_UNKNOWN;
  if (owned) VariantClear(&stored);
  *odd.storage = 0;
}

class LateBoundOddOutputTest : public ContractTest, public ::testing::WithParamInterface<LateMethod> {
 protected:
  LateResult run(const VARIANT& output) {
    auto given = GetParam().inputs(objects);
    std::vector<Variant> variables(GetParam().outputs.size());
    LateCall call{GetParam().wideName(), DISPATCH_METHOD, {}, {}, true};
    for (const auto& [name, value] : given) call.positional.push_back(value);
    for (size_t i = 0; i + 1 < variables.size(); ++i) call.positional.push_back(byRef(variables[i]));
    call.positional.push_back(output);
    return invoke(objects.quivo, call);
  }
  /// Lets every function of the engine fail that the methods call.
  void refuseAll() {
    for (const char* function :
         {"QUIVO_HashMem", "QUIVO_HashFile", "QUIVO_SignMem", "QUIVO_VerifyMem", "QUIVO_VerifyFile", "QUIVO_GenRandom",
          "QUIVO_EncryptMem", "QUIVO_DecryptMem", "QUIVO_DecryptFile", "QUIVO_ParseCert", "QUIVO_FindCert",
          "QUIVO_StrSignFinalMem", "QUIVO_StrVerifyFinalMem", "QUIVO_StrDecryptFinalMem", "QUIVO_StrHashFinalMem"}) {
      engine().on(function).result = 0x19;
    }
  }
  Objects objects{openQuivo()};
};

TEST_P(LateBoundOddOutputTest, IsFilledOrRefused) {
  answerLateMethods(engine());
  for (const Odd& odd : odds()) {
    const LateResult outcome = run(odd.value);
    const bool known = outcome.raw == S_OK || outcome.raw == DISP_E_TYPEMISMATCH || outcome.raw == DISP_E_BADVARTYPE ||
                       outcome.raw == DISP_E_OVERFLOW;
    EXPECT_TRUE(known) << odd.name << ": " << std::hex << outcome.raw;
    freeStored(odd);
  }
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundOddOutputTest, ::testing::ValuesIn(kLateMethods), nameOfRow<LateMethod>);

/// The methods whose result is the engine's.
std::vector<LateMethod> failingMethods() {
  std::vector<LateMethod> rows = kLateMethods;
  std::erase_if(rows, [](const LateMethod& row) {
    const std::string name = row.name;
    return name.find("ErrorText") != std::string::npos || name == "UpdateCrl";
  });
  return rows;
}

using LateBoundFailingOutputTest = LateBoundOddOutputTest;

TEST_P(LateBoundFailingOutputTest, FailureOfTheMethodIsReported) {
  answerLateMethods(engine());
  refuseAll();
  for (const Odd& odd : odds()) {
    const LateResult outcome = run(odd.value);
    EXPECT_TRUE(outcome.raw == DISP_E_TYPEMISMATCH || outcome.result == static_cast<HRESULT>(0xE0690019))
        << odd.name << ": " << std::hex << outcome.raw << '/' << outcome.result;
    freeStored(odd);
  }
  engine().releaseOutstanding();
}

INSTANTIATE_TEST_SUITE_P(Methods, LateBoundFailingOutputTest, ::testing::ValuesIn(failingMethods()),
                         nameOfRow<LateMethod>);

}  // namespace
