// Which paths the file-open entry takes, and which results it opens: through the export.
#include "contract/legacy/file_open_test.h"

namespace {

class FileOpenPathTest : public FileOpenTest {
 protected:
  /// A file whose whole path has a length.
  std::wstring createOfLength(size_t length) {
    const std::wstring extension = L".exe.p7s";
    const std::wstring file = create(std::wstring(length - folder.size() - 1 - extension.size(), L'n') + extension);
    EXPECT_EQ(length, file.size());
    EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesA(AnsiOf(file).c_str()));
    return file;
  }
  void expectNothing() {
    EXPECT_EQ(0, object.created);
    EXPECT_EQ(0u, desktop.saveDialogs.size() + desktop.messages.size() + desktop.executions.size());
    EXPECT_EQ(L"(none)", rememberedFolder());
  }
};

TEST_F(FileOpenPathTest, APathOf258CharactersIsOpened) {
  setExecuteResult(1);
  for (size_t length : {257u, 258u}) {
    object.calls.clear();
    desktop.executions.clear();
    const std::wstring file = createOfLength(length), result = file.substr(0, length - 4);
    open(file);
    EXPECT_EQ((Calls{L"Init My", L"Verify " + file + L" -> " + result}), object.calls);
    ASSERT_EQ(1u, desktop.executions.size());
    EXPECT_EQ(sizeof(SHELLEXECUTEINFOA), desktop.executions[0].size);
    EXPECT_EQ(result, desktop.executions[0].file);
  }
}

TEST_F(FileOpenPathTest, ALongerPathEndsTheRunInSilence) {
  for (size_t length : {259u, 260u}) {
    const std::wstring file = createOfLength(length);
    for (DWORD executes : {0u, 1u}) {
      setExecuteResult(executes);
      open(file);
      expectNothing();
    }
  }
}

/// Sets a variable of the environment while it lives.
class Variable {
 public:
  Variable(const wchar_t* name, const wchar_t* value) : name_(name) { SetEnvironmentVariableW(name, value); }
  ~Variable() { SetEnvironmentVariableW(name_, nullptr); }

 private:
  const wchar_t* name_;
};

TEST_F(FileOpenPathTest, AResultThatTheEnvironmentTurnsIntoAnotherIsNotOpened) {
  setExecuteResult(1);
  const Variable name(L"TAVL_NAME", L"other"), none(L"TAVL_NONE", L""),
      longer(L"TAVL_LONG", std::wstring(500, L'x').c_str());
  for (const wchar_t* result : {L"%TAVL_NAME%.exe", L"%tavl_name%", L"a%TAVL_NONE%.txt", L"%TAVL_LONG%"}) {
    object.calls.clear();
    const std::wstring file = create(std::wstring(result) + L".p7s");
    open(file);
    EXPECT_EQ((Calls{L"Init My", L"Verify " + file + L" -> " + path(result)}), object.calls);
    EXPECT_EQ(0u, desktop.executions.size()) << AnsiOf(result);
    EXPECT_EQ(folder, rememberedFolder());
  }
}

template <DWORD answer>
DWORD WINAPI ExpandTo(LPCSTR text, LPSTR expanded, DWORD) {
  lstrcpyA(expanded, text);
  return answer;
}

TEST_F(FileOpenPathTest, AResultThatCannotBeExpandedIsNotOpened) {
  setExecuteResult(1);
  for (void* expand : {reinterpret_cast<void*>(ExpandTo<0>), reinterpret_cast<void*>(ExpandTo<100000>)}) {
    const ImportPatch expanding(Module::get().handle(), "ExpandEnvironmentStringsA", expand);
    open(create(L"a.txt.p7s"));
    EXPECT_EQ(0u, desktop.executions.size());
  }
  EXPECT_EQ(4u, object.calls.size());
}

TEST_F(FileOpenPathTest, APercentSignThatMeansNoVariableIsPartOfTheName) {
  setExecuteResult(1);
  for (const wchar_t* result : {L"100% правда.txt", L"%TAVL_UNKNOWN%.txt", L"%%.txt"}) {
    desktop.executions.clear();
    open(create(std::wstring(result) + L".p7s"));
    ASSERT_EQ(1u, desktop.executions.size()) << AnsiOf(result);
    EXPECT_EQ(path(result), desktop.executions[0].file);
    EXPECT_EQ(0x240u, desktop.executions[0].mask);
  }
}

TEST_F(FileOpenPathTest, AResultThatTheShellCompletesToAProgramIsNotOpened) {
  setExecuteResult(1);
  // Its result is not produced: there is no file of that name next to the program.
  const std::wstring file = create(L"setup.p7m");
  for (const wchar_t* extension : {L".exe", L".COM", L".bat", L".cmd", L".pif", L".lnk"}) {
    const std::wstring program = create(std::wstring(L"setup") + extension);
    object.calls.clear();
    open(file);
    EXPECT_EQ(Calls{L"Init My"}, object.calls);
    EXPECT_EQ(0u, desktop.executions.size()) << AnsiOf(extension);
    DeleteFileW(program.c_str());
  }
  EXPECT_EQ(folder, rememberedFolder());
}

TEST_F(FileOpenPathTest, ADotInTheFolderIsNoExtensionOfTheResult) {
  setExecuteResult(1);
  CreateDirectoryW(path(L"v1.0").c_str(), nullptr);
  const std::wstring program = create(L"v1.0\\setup.exe"), file = create(L"v1.0\\setup.p7m");
  open(file);
  EXPECT_EQ(Calls{L"Init My"}, object.calls);
  EXPECT_EQ(0u, desktop.executions.size());
  DeleteFileW(program.c_str());
  DeleteFileW(file.c_str());
  EXPECT_TRUE(RemoveDirectoryW(path(L"v1.0").c_str()));
}

TEST_F(FileOpenPathTest, AResultWithoutAnExtensionIsOpened) {
  setExecuteResult(1);
  create(L"another.exe");
  open(create(L"setup.p7s"));
  ASSERT_EQ(1u, desktop.executions.size());
  EXPECT_EQ(path(L"setup"), desktop.executions[0].file);
}

TEST_F(FileOpenPathTest, AResultWithAnExtensionIsNotCompleted) {
  setExecuteResult(1);
  create(L"a.txt.exe");
  open(create(L"a.txt.p7s"));
  EXPECT_EQ(1u, desktop.executions.size());
}

}  // namespace
