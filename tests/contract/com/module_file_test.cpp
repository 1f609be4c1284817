// The file that is shipped: what it imports and exports, its size, its header and its resources.
#include <gtest/gtest.h>

#include <vector>

#include "contract/com/registration.h"
#include "support/pe_image.h"

namespace {

class ModuleFileTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(image_.loaded()) << "the shipped module is not built"; }

  static std::wstring path() { return ProgramFolder() + L"\\" + SHIPPED_MODULE; }
  PeImage& image() { return image_; }
  bool hasResource(int id, const wchar_t* type) {
    return FindResourceW(image_.resources(), MAKEINTRESOURCEW(id), type) != nullptr;
  }

 private:
  PeImage image_{path()};
};

TEST_F(ModuleFileTest, ImportsOnlySystemLibraries) {
  const std::set<std::string> allowed{"advapi32.dll", "comctl32.dll", "comdlg32.dll", "gdi32.dll",
                                      "kernel32.dll", "msvcrt.dll",   "ole32.dll",    "oleaut32.dll",
                                      "shell32.dll",  "user32.dll",   "version.dll"};
  for (const std::string& library : image().importedLibraries()) EXPECT_EQ(1u, allowed.count(library)) << library;
}

TEST_F(ModuleFileTest, ExportsItsFiveEntryPointsAndNothingElse) {
  const std::set<std::string> expected{"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                       "DllUnregisterServer", "FileOpen"};
  EXPECT_EQ(expected, image().exports());
}

// Other builds carry checks that are not shipped.
#ifdef SHIPPED_SIZE_LIMIT
TEST_F(ModuleFileTest, IsAtMost300KiB) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  ASSERT_TRUE(GetFileAttributesExW(path().c_str(), GetFileExInfoStandard, &data));
  EXPECT_EQ(0u, data.nFileSizeHigh);
  EXPECT_LE(data.nFileSizeLow, SHIPPED_SIZE_LIMIT);
}
#endif

TEST_F(ModuleFileTest, IsA64BitLibraryThatCanBeMovedAnywhere) {
  EXPECT_EQ(IMAGE_FILE_MACHINE_AMD64, image().header().FileHeader.Machine);
  constexpr WORD kWanted = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT | 0x20;
  EXPECT_EQ(kWanted, image().header().OptionalHeader.DllCharacteristics & kWanted);
  EXPECT_GT(image().preferredBase(), 0x100000000ull);
}

TEST_F(ModuleFileTest, HasAVersion) {
  DWORD ignored = 0;
  const DWORD size = GetFileVersionInfoSizeW(path().c_str(), &ignored);
  ASSERT_NE(0u, size);
  std::vector<BYTE> data(size);
  ASSERT_TRUE(GetFileVersionInfoW(path().c_str(), 0, size, data.data()));
  VS_FIXEDFILEINFO* fixed = nullptr;
  UINT length = 0;
  ASSERT_TRUE(VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&fixed), &length));
  EXPECT_EQ(1, HIWORD(fixed->dwFileVersionMS));
}

TEST_F(ModuleFileTest, CarriesTheTypeLibraryAndAScriptForEveryClass) {
  EXPECT_TRUE(hasResource(1, L"TYPELIB"));
  for (const RegisteredClass& row : kRegistered) EXPECT_TRUE(hasResource(row.script, L"REGISTRY")) << row;
}

TEST_F(ModuleFileTest, CarriesDialogsAndIconsOfTheLegacyObject) {
  for (int dialog : {117, 118}) EXPECT_TRUE(hasResource(dialog, reinterpret_cast<const wchar_t*>(RT_DIALOG))) << dialog;
  for (int icon = 1101; icon <= 1112; ++icon) {
    EXPECT_TRUE(hasResource(icon, reinterpret_cast<const wchar_t*>(RT_GROUP_ICON))) << icon;
  }
}

TEST_F(ModuleFileTest, CarriesNoIconUnderTheNumberOfTheSystemsErrorIcon) {
  EXPECT_FALSE(hasResource(32513, reinterpret_cast<const wchar_t*>(RT_GROUP_ICON)));
}

TEST_F(ModuleFileTest, CarriesTheCaptionOfTheFileOpenEntry) {
  wchar_t text[64] = L"";
  LoadStringW(image().resources(), 100, text, 64);
  EXPECT_STREQ(L"Криптографическое расширение", text);
}

}  // namespace
