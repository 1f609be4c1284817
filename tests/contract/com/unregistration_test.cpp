// What DllUnregisterServer removes, and what it leaves.
#include "contract/com/registration.h"
#include "support/import_patch.h"

namespace {

class UnregistrationTest : public RegistrationTest {
 protected:
  static constexpr const wchar_t* kProgId = L"TAVL.CertId";
  static constexpr const wchar_t* kVersionedProgId = L"TAVL.CertId.1";

  std::wstring below(const std::wstring& key, const wchar_t* subkey) { return key + L"\\" + subkey; }
};

TEST_F(UnregistrationTest, EverythingGoesButTheClassesKey) {
  EXPECT_OK(install());
  EXPECT_OK(uninstall());
  EXPECT_TREE((RegistryTree{{L"CLSID", kNoValue}}), ClassesIn(root()));
  EXPECT_FALSE(KeyExists(root(), LibraryKey()));
}

TEST_F(UnregistrationTest, ClassKeyGoesWithWhatOthersPutThere) {
  EXPECT_OK(install());
  const std::wstring key = kRegistered[0].key();
  WriteKey(root(), key + L"\\Implemented Categories\\{7DD95801-9882-11CF-9FA9-00AA006C42C4}");
  WriteText(root(), key, L"AppID", L"{00000000-0000-0000-0000-000000000000}");
  EXPECT_OK(uninstall());
  EXPECT_FALSE(KeyExists(root(), key));
}

TEST_F(UnregistrationTest, ClassesOfOthersStay) {
  EXPECT_OK(install());
  WriteKey(root(), L"CLSID\\{11111111-2222-3333-4444-555555555555}", L"Another Class");
  EXPECT_OK(uninstall());
  EXPECT_EQ(L"Another Class", TextAt(root(), L"CLSID\\{11111111-2222-3333-4444-555555555555}"));
}

TEST_F(UnregistrationTest, ClassesKeyKeepsItsOwnValues) {
  EXPECT_OK(install());
  WriteKey(root(), L"CLSID", L"default");
  WriteText(root(), L"CLSID", L"name", L"named");
  EXPECT_OK(uninstall());
  EXPECT_TREE((RegistryTree{{L"CLSID", L"default"}, {L"CLSID:name", L"named"}}), ClassesIn(root()));
}

TEST_F(UnregistrationTest, ProgIdKeepsTheSubkeyOfAnother) {
  for (const std::wstring key : {kProgId, kVersionedProgId}) {
    EXPECT_OK(install());
    WriteKey(root(), below(key, L"DefaultIcon"), L"icon");
    EXPECT_OK(uninstall());
    EXPECT_TREE((RegistryTree{{L"DefaultIcon", L"icon"}}), ReadTree(root(), key));
  }
}

TEST_F(UnregistrationTest, ProgIdKeepsTheValueOfAnother) {
  for (const std::wstring key : {kProgId, kVersionedProgId}) {
    EXPECT_OK(install());
    WriteText(root(), key, L"FriendlyTypeName", L"name");
    EXPECT_OK(uninstall());
    EXPECT_TREE((RegistryTree{{L":FriendlyTypeName", L"name"}}), ReadTree(root(), key));
  }
}

TEST_F(UnregistrationTest, SubkeyOfAProgIdKeepsWhatOthersPutThere) {
  EXPECT_OK(install());
  WriteText(root(), below(kProgId, L"CLSID"), L"name", L"named");
  WriteKey(root(), below(kProgId, L"CurVer\\Deeper"), L"deep");
  EXPECT_OK(uninstall());
  EXPECT_TREE(
      (RegistryTree{
          {L"CLSID", kNoValue}, {L"CLSID:name", L"named"}, {L"CurVer", kNoValue}, {L"CurVer\\Deeper", L"deep"}}),
      ReadTree(root(), kProgId));
}

TEST_F(UnregistrationTest, ProgIdIsRegisteredAgainBesideWhatStayed) {
  EXPECT_OK(install());
  WriteKey(root(), below(kProgId, L"DefaultIcon"), L"icon");
  EXPECT_OK(uninstall());
  EXPECT_OK(install());
  RegistryTree expected = KeysOfAllClasses(Module::get().path());
  expected[below(kProgId, L"DefaultIcon")] = L"icon";
  EXPECT_TREE(expected, ClassesIn(root()));
}

TEST_F(UnregistrationTest, NamedValueOfAScriptGoesAndThoseOfOthersStay) {
  const ModuleCopy module(L"named value.dll",
                          Resource(L"REGISTRY", 101, "HKCR { TAVL.Named = s 'own' { val Own = s 'text' } }"));
  ASSERT_TRUE(module.loaded());
  EXPECT_OK(module.registerServer());
  EXPECT_TREE((RegistryTree{{L"", L"own"}, {L":Own", L"text"}}), ReadTree(root(), L"TAVL.Named"));
  WriteText(root(), L"TAVL.Named", L"Other", L"theirs");
  EXPECT_OK(module.unregisterServer());
  EXPECT_TREE((RegistryTree{{L":Other", L"theirs"}}), ReadTree(root(), L"TAVL.Named"));
}

TEST_F(UnregistrationTest, SecondTimeSucceeds) {
  EXPECT_OK(install());
  EXPECT_OK(uninstall());
  EXPECT_OK(uninstall());
  EXPECT_TREE((RegistryTree{{L"CLSID", kNoValue}}), ClassesIn(root()));
}

TEST_F(UnregistrationTest, NothingRegisteredIsNoFailure) {
  EXPECT_OK(uninstall());
  EXPECT_TREE(RegistryTree{}, ReadTree(root()));
}

TEST_F(UnregistrationTest, HalfRegisteredModuleIsRemoved) {
  EXPECT_OK(install());
  DeleteTree(root(), kRegistered[1].key());
  DeleteTree(root(), kProgId);
  DeleteTree(root(), L"TAVL.SignParam\\CLSID");
  WriteKey(root(), kRegistered[2].key());
  EXPECT_OK(uninstall());
  EXPECT_TREE((RegistryTree{{L"CLSID", kNoValue}}), ClassesIn(root()));
}

TEST_F(UnregistrationTest, AFailureIsReturnedAndTheOtherClassesGo) {
  EXPECT_OK(install());
  const ModuleCopy module(L"unreadable script.dll", Resource(L"REGISTRY", 101, "HKCR {"));
  ASSERT_TRUE(module.loaded());
  EXPECT_HR(HRESULT_FROM_WIN32(ERROR_INVALID_DATA), module.unregisterServer());
  for (const RegisteredClass& row : kRegistered) EXPECT_EQ(row.script == 101, KeyExists(root(), row.key())) << row;
  EXPECT_FALSE(KeyExists(root(), LibraryKey()));
}

/// What platforms give for a library that is not registered, and what else may fail.
constexpr HRESULT kLibraryFailures[] = {E_INVALIDARG, TYPE_E_REGISTRYACCESS, TYPE_E_LIBNOTREGISTERED,
                                        static_cast<HRESULT>(0x80070002), E_ACCESSDENIED};

class LibraryUnregistrationTest : public UnregistrationTest {
 protected:
  HRESULT result = S_OK;
  GUID asked{};
  WORD major = 0, minor = 99;
  LCID locale = 99;
  SYSKIND system = SYS_MAC;

 private:
  ImportHook<"UnRegisterTypeLib", decltype(UnRegisterTypeLib)> hook_{
      [this](REFGUID id, WORD majorVersion, WORD minorVersion, LCID lcid, SYSKIND kind) {
        asked = id;
        major = majorVersion;
        minor = minorVersion;
        locale = lcid;
        system = kind;
        return result;
      }};
};

TEST_F(LibraryUnregistrationTest, LibraryIsNamedAsItWasRegistered) {
  EXPECT_OK(uninstall());
  EXPECT_EQ(GuidOf(kLibraryId), asked);
  EXPECT_EQ(1, major);
  EXPECT_EQ(0, minor);
  EXPECT_EQ(0u, locale);
  EXPECT_EQ(SYS_WIN64, system);
}

TEST_F(LibraryUnregistrationTest, LibraryThatIsNotRegisteredIsNoFailure) {
  for (HRESULT failure : kLibraryFailures) {
    result = failure;
    EXPECT_OK(uninstall());
  }
}

TEST_F(LibraryUnregistrationTest, LibraryOfOtherPlatformsAloneIsNoFailure) {
  WriteKey(root(), LibraryKey() + L"\\0\\win32", L"another module");
  result = TYPE_E_REGISTRYACCESS;
  EXPECT_OK(uninstall());
}

TEST_F(LibraryUnregistrationTest, LibraryThatStaysRegisteredIsAFailure) {
  EXPECT_OK(install());
  for (HRESULT failure : kLibraryFailures) {
    result = failure;
    EXPECT_HR(failure, uninstall());
  }
}

TEST_F(LibraryUnregistrationTest, FailureOfAClassComesFirst) {
  EXPECT_OK(install());
  result = TYPE_E_REGISTRYACCESS;
  Module::get().failAllocation(0);
  EXPECT_HR(E_OUTOFMEMORY, uninstall());
}

}  // namespace
