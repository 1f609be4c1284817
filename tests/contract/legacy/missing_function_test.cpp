// A platform whose libraries of windows lack a function: what the legacy object and the file-open entry do without it.
#include "contract/legacy/file_open_test.h"

namespace {

class LegacyMissingFunction : public LegacyTest {
 protected:
  void SetUp() override {
    LegacyTest::SetUp();
    openSession();
  }
};

TEST_F(LegacyMissingFunction, OfTheSheetIsARefusal) {
  for (const char* function : {"InitCommonControlsEx", "CreatePropertySheetPageA", "PropertySheetA", "ImageList_Create",
                               "ImageList_ReplaceIcon"}) {
    SCOPED_TRACE(function);
    desktop.sheets.clear();
    desktop.missing = function;
    EXPECT_HR(S_FALSE, object->Verify(Bstr(L"in"), Bstr(L"out")));
    EXPECT_EQ(0u, desktop.sheets.size());
    desktop.missing.clear();
    EXPECT_OK(object->Verify(Bstr(L"in"), Bstr(L"out")));
    EXPECT_EQ(1u, desktop.sheets.size());
  }
}

class FileOpenMissingFunctionTest : public FileOpenTest {};

TEST_F(FileOpenMissingFunctionTest, OfTheSaveDialogEndsTheRun) {
  desktop.missing = "GetSaveFileNameA";
  open(create(L"a.txt.p7s"));
  EXPECT_EQ(0, object.created);
  EXPECT_EQ(L"(none)", rememberedFolder());
}

TEST_F(FileOpenMissingFunctionTest, OfTheShellLeavesTheResultUnopened) {
  setExecuteResult(1);
  desktop.missing = "ShellExecuteExA";
  open(create(L"a.txt.p7s"));
  EXPECT_EQ(2u, object.calls.size());
  EXPECT_EQ(folder, rememberedFolder());
}

}  // namespace
