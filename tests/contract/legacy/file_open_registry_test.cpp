// What the file-open entry reads from the registry and writes into it, and how.
#include "contract/legacy/file_open_test.h"

namespace {

struct Opened {
  HKEY root;
  std::string path;
  REGSAM access;
  bool operator==(const Opened&) const = default;
};

std::vector<Opened> created, opened;
std::vector<std::string> queries;

LSTATUS WINAPI CreateKey(HKEY root, LPCSTR path, DWORD reserved, LPSTR kind, DWORD options, REGSAM access,
                         LPSECURITY_ATTRIBUTES security, PHKEY key, LPDWORD disposition) {
  created.push_back({root, path, access});
  EXPECT_EQ(0u, options);
  return RegCreateKeyExA(root, path, reserved, kind, options, access, security, key, disposition);
}

LSTATUS WINAPI OpenKey(HKEY root, LPCSTR path, DWORD options, REGSAM access, PHKEY key) {
  opened.push_back({root, path, access});
  return RegOpenKeyExA(root, path, options, access, key);
}

LSTATUS WINAPI QueryValue(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
  queries.push_back(name);
  return RegQueryValueExA(key, name, reserved, type, data, size);
}

class FileOpenRegistryTest : public FileOpenTest {
 protected:
  void SetUp() override {
    FileOpenTest::SetUp();
    created.clear();
    opened.clear();
    queries.clear();
  }
  static constexpr const char* kKey = "SOFTWARE\\KORVENTA\\tavlcom";

 private:
  ImportPatch creating_{Module::get().handle(), "RegCreateKeyExA", reinterpret_cast<void*>(CreateKey)};
  ImportPatch opening_{Module::get().handle(), "RegOpenKeyExA", reinterpret_cast<void*>(OpenKey)};
  ImportPatch querying_{Module::get().handle(), "RegQueryValueExA", reinterpret_cast<void*>(QueryValue)};
};

using Queries = std::vector<std::string>;

TEST_F(FileOpenRegistryTest, TheUsersKeyIsOpenedOnceToBeReadAndWritten) {
  open(create(L"a.txt.p7s"));
  EXPECT_EQ((std::vector<Opened>{{HKEY_CURRENT_USER, kKey, KEY_READ | KEY_WRITE}}), created);
}

TEST_F(FileOpenRegistryTest, TheUsersKeyIsOpenedForAnExecutedResultToo) {
  setExecuteResult(1);
  open(create(L"a.txt.p7s"));
  EXPECT_EQ((std::vector<Opened>{{HKEY_CURRENT_USER, kKey, KEY_READ | KEY_WRITE}}), created);
  EXPECT_EQ(folder, rememberedFolder());
}

TEST_F(FileOpenRegistryTest, TheMachinesKeyIsOpenedToBeRead) {
  open(create(L"a.txt.p7s"));
  EXPECT_EQ((std::vector<Opened>{{HKEY_LOCAL_MACHINE, kKey, KEY_READ}}), opened);
}

TEST_F(FileOpenRegistryTest, EachValueIsReadOnce) {
  WriteKey(HKEY_LOCAL_MACHINE, kLegacyKey);
  open(create(L"a.txt.p7s"));
  EXPECT_EQ((Queries{"ExecuteResult", "InputDirectory"}), queries);
  queries.clear();
  setExecuteResult(1);
  open(create(L"a.txt.p7s"));
  EXPECT_EQ(Queries{"ExecuteResult"}, queries);
}

TEST_F(FileOpenRegistryTest, ExecuteResultIsOfTheMomentBeforeTheQuestion) {
  setExecuteResult(1);
  create(L"a.txt");
  desktop.messageAnswer = IDYES;
  desktop.duringMessage = [&] { setExecuteResult(0); };
  open(create(L"a.txt.p7s"));
  EXPECT_EQ(1u, desktop.executions.size());
  desktop.executions.clear();
  desktop.saveAnswer = [&](OPENFILENAMEA&) {
    setExecuteResult(1);
    return true;
  };
  open(create(L"a.txt.p7s"));
  EXPECT_EQ(1u, desktop.saveDialogs.size());
  EXPECT_EQ(0u, desktop.executions.size());
}

TEST_F(FileOpenRegistryTest, TheFolderIsWrittenWithItsTerminator) {
  open(create(L"a.txt.p7s"));
  ASSERT_EQ(1u, desktop.writes.size());
  const RegistryWrite& write = desktop.writes[0];
  EXPECT_EQ(L"InputDirectory", write.name);
  EXPECT_EQ(static_cast<DWORD>(REG_SZ), write.type);
  EXPECT_EQ(AnsiOf(folder) + '\0', std::string(write.data.begin(), write.data.end()));
}

}  // namespace
