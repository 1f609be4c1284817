// The mapping of results, and the module's own texts.
#include "errors/result.h"

#include <gtest/gtest.h>

using namespace errors;

namespace {

constexpr int32_t Code(uint32_t value) { return static_cast<int32_t>(value); }

TEST(ToModuleHResult, PassesZeroAndOne) {
  EXPECT_EQ(ToModuleHResult(0), S_OK);
  EXPECT_EQ(ToModuleHResult(1), S_FALSE);
}

TEST(ToModuleHResult, RebasesPositiveCodesByTheirLowWord) {
  EXPECT_EQ(ToModuleHResult(2), Code(0xE0690002));
  EXPECT_EQ(ToModuleHResult(0x1234), Code(0xE0691234));
  EXPECT_EQ(ToModuleHResult(0x7FFF1234), Code(0xE0691234));
}

TEST(ToModuleHResult, RebasesWin32Failures) {
  EXPECT_EQ(ToModuleHResult(E_INVALIDARG), E_QUIVO_INVALID_ARGUMENT);
  EXPECT_EQ(ToModuleHResult(E_OUTOFMEMORY), E_QUIVO_OUT_OF_MEMORY);
  EXPECT_EQ(ToModuleHResult(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)), Code(0xE0690002));
}

TEST(ToModuleHResult, PassesFailuresOfOtherFacilities) {
  EXPECT_EQ(ToModuleHResult(E_FAIL), E_FAIL);
  EXPECT_EQ(ToModuleHResult(DISP_E_TYPEMISMATCH), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(ToModuleHResult(Code(0xE0700019)), Code(0xE0700019));
  EXPECT_EQ(ToModuleHResult(Code(0xE0680001)), E_QUIVO_ALREADY_INITIALIZED);
  EXPECT_EQ(ToModuleHResult(-1), -1);
}

TEST(ToModuleHResult, LooksAtTheFacilityWithoutTheBitsAboveIt) {
  EXPECT_EQ(ToModuleHResult(Code(0xE0071234)), Code(0xE0691234));
}

TEST(ModuleErrorText, KnowsTheModulesOwnCodes) {
  EXPECT_EQ(std::string(ModuleErrorText(1)).size(), std::wstring(L"Объект уже инициализирован").size());
  EXPECT_STRNE(ModuleErrorText(1), ModuleErrorText(2));
  EXPECT_STREQ(ModuleErrorText(0), ModuleErrorText(7));
}

}  // namespace
