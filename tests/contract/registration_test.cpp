// What DllRegisterServer writes and DllUnregisterServer removes, below a classes root of this process alone.
#include "support/registry.h"

#include "support/contract_test.h"
#include "support/type_library.h"

namespace {

class RegistrationTest : public ContractTest {
 protected:
  HRESULT install() { return Module::get().registerServer(); }
  HRESULT uninstall() { return Module::get().unregisterServer(); }
  HKEY root() { return classes_.key(); }

 private:
  PrivateRoot classes_{HKEY_CLASSES_ROOT};
};

/// Every key and value of one class.
RegistryTree keysOf(const ClassFacts& facts, const std::wstring& modulePath) {
  const std::wstring versioned = facts.versionedProgId(), progId = facts.progId(), clsid = facts.clsid;
  const std::wstring key = L"CLSID\\" + clsid, description = std::wstring(facts.name) + L" Class";
  return {
      {versioned, description},
      {versioned + L"\\CLSID", clsid},
      {progId, description},
      {progId + L"\\CLSID", clsid},
      {progId + L"\\CurVer", facts.currentVersion},
      {key, facts.description},
      {key + L"\\ProgID", versioned},
      {key + L"\\VersionIndependentProgID", progId},
      {key + L"\\Programmable", kNoValue},
      {key + L"\\InprocServer32", modulePath},
      {key + L"\\InprocServer32:ThreadingModel", L"Apartment"},
      {key + L"\\TypeLib", kLibraryId},
  };
}

RegistryTree keysOfAllClasses(const std::wstring& modulePath) {
  RegistryTree all{{L"CLSID", kNoValue}};
  for (const ClassFacts& facts : kClasses) all.merge(keysOf(facts, modulePath));
  return all;
}

/// The tree without what the platform writes for the type library and its interfaces.
RegistryTree classesIn(HKEY root) {
  RegistryTree tree = readTree(root);
  std::erase_if(tree, [](const auto& entry) {
    return _wcsnicmp(entry.first.c_str(), L"TypeLib", 7) == 0 || entry.first.starts_with(L"Interface");
  });
  return tree;
}

/// What stands in only one of two trees, or differs: "-" as expected, "+" as found.
std::vector<std::wstring> differences(const RegistryTree& expected, const RegistryTree& found) {
  std::vector<std::wstring> lines;
  for (const auto& [path, text] : expected) {
    if (!found.contains(path) || found.at(path) != text) lines.push_back(L"- " + path + L" = " + text);
  }
  for (const auto& [path, text] : found) {
    if (!expected.contains(path) || expected.at(path) != text) lines.push_back(L"+ " + path + L" = " + text);
  }
  return lines;
}

#define EXPECT_TREE(expected, found) EXPECT_EQ(std::vector<std::wstring>{}, differences(expected, found))

std::wstring textAt(HKEY root, const std::wstring& path) { return readTree(root, path)[L""]; }

TEST_F(RegistrationTest, KeysOfAllClassesAreExactlyTheseOnes) {
  EXPECT_OK(install());
  EXPECT_TREE(keysOfAllClasses(Module::get().path()), classesIn(root()));
}

TEST_F(RegistrationTest, LegacyClassDeviatesInTwoPlaces) {
  EXPECT_OK(install());
  EXPECT_EQ(L"PKIobj Class", textAt(root(), L"CLSID\\{D107033F-3A53-4406-AF19-13543470DDB2}"));
  EXPECT_EQ(L"pkiobj Class", textAt(root(), L"TAVL.pkiobj"));
  EXPECT_EQ(L"pkiobj Class", textAt(root(), L"TAVL.pkiobj.1"));
  EXPECT_EQ(L"Lunacom.pkiobj.1", textAt(root(), L"TAVL.pkiobj\\CurVer"));
  EXPECT_FALSE(keyExists(root(), L"Lunacom.pkiobj.1"));
}

TEST_F(RegistrationTest, TypeLibraryIsRegisteredForTheWholeMachine) {
  EXPECT_OK(install());
  const std::wstring key = L"TypeLib\\" + std::wstring(kLibraryId) + L"\\1.0";
  EXPECT_EQ(L"quivocom 1.0 Type Library", textAt(root(), key));
  EXPECT_EQ(Module::get().path(), textAt(root(), key + L"\\0\\win64"));
}

TEST_F(RegistrationTest, NothingIsWrittenForTheUserAlone) {
  const RegistryTree before = readTree(HKEY_CURRENT_USER, L"Software\\Classes");
  EXPECT_OK(install());
  EXPECT_TREE(before, readTree(HKEY_CURRENT_USER, L"Software\\Classes"));
}

TEST_F(RegistrationTest, RegisteringTwiceLeavesTheSameKeys) {
  EXPECT_OK(install());
  const RegistryTree once = readTree(root());
  EXPECT_OK(install());
  EXPECT_TREE(once, readTree(root()));
}

TEST_F(RegistrationTest, ClassKeyIsWrittenFromScratch) {
  const std::wstring key = L"CLSID\\" + std::wstring(kClasses[3].clsid);
  writeKey(root(), key + L"\\InprocServer32\\Stale", L"from an earlier version");
  writeKey(root(), key + L"\\TreatAs", L"{00000000-0000-0000-0000-000000000000}");
  EXPECT_OK(install());
  EXPECT_TREE(keysOfAllClasses(Module::get().path()), classesIn(root()));
}

TEST_F(RegistrationTest, OtherKeysOfTheProgIdStay) {
  writeKey(root(), L"TAVL.CertId\\DefaultIcon", L"icon");
  EXPECT_OK(install());
  EXPECT_EQ(L"icon", textAt(root(), L"TAVL.CertId\\DefaultIcon"));
}

TEST_F(RegistrationTest, UnregisteringRemovesEverythingButTheClassesKey) {
  EXPECT_OK(install());
  EXPECT_OK(uninstall());
  EXPECT_TREE((RegistryTree{{L"CLSID", kNoValue}}), classesIn(root()));
  EXPECT_FALSE(keyExists(root(), L"TypeLib\\" + std::wstring(kLibraryId) + L"\\1.0"));
}

TEST_F(RegistrationTest, UnregisteringRemovesWhatOthersAddedToAClassKey) {
  EXPECT_OK(install());
  const std::wstring key = L"CLSID\\" + std::wstring(kClasses[0].clsid);
  writeKey(root(), key + L"\\Implemented Categories\\{7DD95801-9882-11CF-9FA9-00AA006C42C4}");
  EXPECT_OK(uninstall());
  EXPECT_FALSE(keyExists(root(), key));
}

TEST_F(RegistrationTest, UnregisteringLeavesTheClassesOfOthers) {
  EXPECT_OK(install());
  writeKey(root(), L"CLSID\\{11111111-2222-3333-4444-555555555555}", L"Another Class");
  EXPECT_OK(uninstall());
  EXPECT_EQ(L"Another Class", textAt(root(), L"CLSID\\{11111111-2222-3333-4444-555555555555}"));
}

std::wstring classKey(const ClassFacts& facts) { return L"CLSID\\" + std::wstring(facts.clsid); }

TEST_F(RegistrationTest, FirstFailureStopsAndIsReturned) {
  for (size_t failing = 0; failing < kClasses.size(); ++failing) {
    SCOPED_TRACE(kClasses[failing]);
    // Below a volatile key no other key can be created: the script of this class fails.
    writeVolatileKey(root(), kClasses[failing].versionedProgId());
    EXPECT_HR(HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE), install());
    for (size_t i = 0; i < kClasses.size(); ++i) {
      EXPECT_EQ(i < failing, keyExists(root(), classKey(kClasses[i]))) << kClasses[i];
    }
    EXPECT_FALSE(keyExists(root(), L"TypeLib"));
    deleteTree(root(), kClasses[failing].versionedProgId());
    for (const ClassFacts& facts : kClasses) deleteTree(root(), classKey(facts));
  }
}

TEST_F(RegistrationTest, FailureOfTheTypeLibraryIsReturned) {
  writeVolatileKey(root(), L"TypeLib");
  const HRESULT expected = RegisterTypeLib(moduleTypeLibrary(), std::wstring(Module::get().path()).data(), nullptr);
  ASSERT_TRUE(FAILED(expected));
  EXPECT_HR(expected, install());
  EXPECT_TREE(keysOfAllClasses(Module::get().path()), classesIn(root()));
}

/// Puts other content into a resource of a copy of the module.
ModuleCopy::Change resource(const wchar_t* type, WORD id, const std::string& content) {
  return [=](const std::wstring& path) {
    WORD language = 0;
    EnumResourceLanguagesW(
        Module::get().handle(), type, MAKEINTRESOURCEW(id),
        [](HMODULE, LPCWSTR, LPCWSTR, WORD found, LONG_PTR to) {
          *reinterpret_cast<WORD*>(to) = found;
          return FALSE;
        },
        reinterpret_cast<LONG_PTR>(&language));
    std::string bytes = content;
    const HANDLE update = BeginUpdateResourceW(path.c_str(), FALSE);
    EXPECT_TRUE(
        UpdateResourceW(update, type, MAKEINTRESOURCEW(id), language, bytes.data(), static_cast<DWORD>(bytes.size())));
    EXPECT_TRUE(EndUpdateResourceW(update, FALSE));
  };
}

TEST_F(RegistrationTest, TypeLibraryThatCannotBeLoadedIsReportedAsItIs) {
  const ModuleCopy module(L"broken library.dll", resource(L"TYPELIB", 1, "no library"));
  ASSERT_TRUE(module.loaded());
  ITypeLib* library = nullptr;
  const HRESULT expected = LoadTypeLibEx(module.path().c_str(), REGKIND_NONE, &library);
  ASSERT_TRUE(FAILED(expected));
  EXPECT_HR(expected, module.registerServer());
  EXPECT_TREE(keysOfAllClasses(module.path()), classesIn(root()));
}

TEST_F(RegistrationTest, UnregisteringGoesOnAfterAFailureAndReturnsIt) {
  EXPECT_OK(install());
  const ModuleCopy module(L"unreadable script.dll", resource(L"REGISTRY", 101, "HKCR {"));
  ASSERT_TRUE(module.loaded());
  EXPECT_HR(HRESULT_FROM_WIN32(ERROR_INVALID_DATA), module.unregisterServer());
  for (const ClassFacts& facts : kClasses) EXPECT_EQ(facts.script == 101, keyExists(root(), classKey(facts))) << facts;
  EXPECT_FALSE(keyExists(root(), L"TypeLib\\" + std::wstring(kLibraryId) + L"\\1.0"));
}

TEST_F(RegistrationTest, KeyMarkedDeleteGoesOnRegistrationAndOnlyThen) {
  const ModuleCopy module(L"another script.dll", resource(L"REGISTRY", 101, "HKCR { Delete TAVL.Former }"));
  ASSERT_TRUE(module.loaded());
  writeKey(root(), L"TAVL.Former\\CLSID", L"former");
  EXPECT_OK(module.registerServer());
  EXPECT_FALSE(keyExists(root(), L"TAVL.Former"));
  writeKey(root(), L"TAVL.Former", L"new");
  EXPECT_OK(module.unregisterServer());
  EXPECT_EQ(L"new", textAt(root(), L"TAVL.Former"));
}

TEST_F(RegistrationTest, PathWithBlanksAndQuotesIsWrittenAsItIs) {
  const ModuleCopy module(L"it's a 'quoted' folder\\moved.dll");
  ASSERT_TRUE(module.loaded());
  EXPECT_OK(module.registerServer());
  EXPECT_TREE(keysOfAllClasses(module.path()), classesIn(root()));
}

TEST_F(RegistrationTest, PathWithPercentSignsAndCyrillicIsWrittenAsItIs) {
  const ModuleCopy module(L"100% %MODULE% \x043F\x0430\x043F\x043A\x0430\\moved.dll");
  ASSERT_TRUE(module.loaded());
  EXPECT_OK(module.registerServer());
  EXPECT_TREE(keysOfAllClasses(module.path()), classesIn(root()));
}

}  // namespace
