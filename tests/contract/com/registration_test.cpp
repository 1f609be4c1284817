// What DllRegisterServer writes.
#include "contract/com/registration.h"

namespace {

TEST_F(RegistrationTest, KeysOfAllClassesAreExactlyTheseOnes) {
  EXPECT_OK(install());
  EXPECT_TREE(KeysOfAllClasses(Module::get().path()), ClassesIn(root()));
}

TEST_F(RegistrationTest, LegacyClassDeviatesInTwoPlaces) {
  EXPECT_OK(install());
  EXPECT_EQ(L"PKIobj Class", TextAt(root(), L"CLSID\\{D107033F-3A53-4406-AF19-13543470DDB2}"));
  EXPECT_EQ(L"pkiobj Class", TextAt(root(), L"TAVL.pkiobj"));
  EXPECT_EQ(L"pkiobj Class", TextAt(root(), L"TAVL.pkiobj.1"));
  EXPECT_EQ(L"Lunacom.pkiobj.1", TextAt(root(), L"TAVL.pkiobj\\CurVer"));
  EXPECT_FALSE(KeyExists(root(), L"Lunacom.pkiobj.1"));
}

TEST_F(RegistrationTest, TypeLibraryIsRegisteredForTheWholeMachine) {
  EXPECT_OK(install());
  const std::wstring key = LibraryKey();
  EXPECT_EQ(L"quivocom 1.0 Type Library", TextAt(root(), key));
  EXPECT_EQ(Module::get().path(), TextAt(root(), key + L"\\0\\win64"));
}

TEST_F(RegistrationTest, NothingIsWrittenForTheUserAlone) {
  const RegistryTree before = ReadTree(HKEY_CURRENT_USER, L"Software\\Classes");
  EXPECT_OK(install());
  EXPECT_TREE(before, ReadTree(HKEY_CURRENT_USER, L"Software\\Classes"));
}

TEST_F(RegistrationTest, RegisteringTwiceLeavesTheSameKeys) {
  EXPECT_OK(install());
  const RegistryTree once = ReadTree(root());
  EXPECT_OK(install());
  EXPECT_TREE(once, ReadTree(root()));
}

TEST_F(RegistrationTest, ClassKeyIsWrittenFromScratch) {
  const std::wstring key = kRegistered[3].key();
  WriteKey(root(), key + L"\\InprocServer32\\Stale", L"from an earlier version");
  WriteKey(root(), key + L"\\TreatAs", L"{00000000-0000-0000-0000-000000000000}");
  EXPECT_OK(install());
  EXPECT_TREE(KeysOfAllClasses(Module::get().path()), ClassesIn(root()));
}

TEST_F(RegistrationTest, OtherKeysOfTheProgIdStay) {
  WriteKey(root(), L"TAVL.CertId\\DefaultIcon", L"icon");
  EXPECT_OK(install());
  EXPECT_EQ(L"icon", TextAt(root(), L"TAVL.CertId\\DefaultIcon"));
}

TEST_F(RegistrationTest, FirstFailureStopsAndIsReturned) {
  for (size_t failing = 0; failing < kRegistered.size(); ++failing) {
    SCOPED_TRACE(kRegistered[failing]);
    // Below a volatile key no other key can be created: the script of this class fails.
    WriteVolatileKey(root(), kRegistered[failing].versionedProgId());
    EXPECT_HR(HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE), install());
    for (size_t i = 0; i < kRegistered.size(); ++i) {
      EXPECT_EQ(i < failing, KeyExists(root(), kRegistered[i].key())) << kRegistered[i];
    }
    EXPECT_FALSE(KeyExists(root(), L"TypeLib"));
    DeleteTree(root(), kRegistered[failing].versionedProgId());
    for (const RegisteredClass& row : kRegistered) DeleteTree(root(), row.key());
  }
}

TEST_F(RegistrationTest, FailureOfTheTypeLibraryIsReturned) {
  WriteVolatileKey(root(), L"TypeLib");
  const HRESULT expected = RegisterTypeLib(ModuleTypeLibrary(), std::wstring(Module::get().path()).data(), nullptr);
  ASSERT_TRUE(FAILED(expected));
  EXPECT_HR(expected, install());
  EXPECT_TREE(KeysOfAllClasses(Module::get().path()), ClassesIn(root()));
}

TEST_F(RegistrationTest, TypeLibraryThatCannotBeLoadedIsReportedAsItIs) {
  const ModuleCopy module(L"broken library.dll", Resource(L"TYPELIB", 1, "no library"));
  ASSERT_TRUE(module.loaded());
  ITypeLib* library = nullptr;
  const HRESULT expected = LoadTypeLibEx(module.path().c_str(), REGKIND_NONE, &library);
  ASSERT_TRUE(FAILED(expected));
  EXPECT_HR(expected, module.registerServer());
  EXPECT_TREE(KeysOfAllClasses(module.path()), ClassesIn(root()));
}

TEST_F(RegistrationTest, KeyMarkedDeleteGoesOnRegistrationAndOnlyThen) {
  const ModuleCopy module(L"another script.dll", Resource(L"REGISTRY", 101, "HKCR { Delete TAVL.Former }"));
  ASSERT_TRUE(module.loaded());
  WriteKey(root(), L"TAVL.Former\\CLSID", L"former");
  EXPECT_OK(module.registerServer());
  EXPECT_FALSE(KeyExists(root(), L"TAVL.Former"));
  WriteKey(root(), L"TAVL.Former", L"new");
  EXPECT_OK(module.unregisterServer());
  EXPECT_EQ(L"new", TextAt(root(), L"TAVL.Former"));
}

TEST_F(RegistrationTest, PathWithBlanksAndQuotesIsWrittenAsItIs) {
  const ModuleCopy module(L"it's a 'quoted' folder\\moved.dll");
  ASSERT_TRUE(module.loaded());
  EXPECT_OK(module.registerServer());
  EXPECT_TREE(KeysOfAllClasses(module.path()), ClassesIn(root()));
}

TEST_F(RegistrationTest, PathWithPercentSignsAndCyrillicIsWrittenAsItIs) {
  const ModuleCopy module(L"100% %MODULE% \x043F\x0430\x043F\x043A\x0430\\moved.dll");
  ASSERT_TRUE(module.loaded());
  EXPECT_OK(module.registerServer());
  EXPECT_TREE(KeysOfAllClasses(module.path()), ClassesIn(root()));
}

}  // namespace
