// Registration below a classes root of this process alone, and what it has to leave there.
#pragma once

#include <string>
#include <vector>

#include "support/contract_test.h"
#include "support/registry.h"

class RegistrationTest : public ContractTest {
 protected:
  HRESULT install() { return Module::get().registerServer(); }
  HRESULT uninstall() { return Module::get().unregisterServer(); }
  HKEY root() { return classes_.key(); }

 private:
  PrivateRoot classes_{HKEY_CLASSES_ROOT};
};

/// A class as it has to be registered.
struct RegisteredClass {
  std::wstring name, clsid;
  /// The resource of its registration script.
  int script;
  /// The default value of the CLSID key; that of the ProgID keys is the name with " Class".
  std::wstring description = name + L" Class";
  std::wstring currentVersion = versionedProgId();

  std::wstring progId() const { return L"TAVL." + name; }
  std::wstring versionedProgId() const { return progId() + L".1"; }
  /// The path of its CLSID key.
  std::wstring key() const { return L"CLSID\\" + clsid; }
};
std::ostream& operator<<(std::ostream& out, const RegisteredClass& row);

/// Every class, in the order of registration.
extern const std::vector<RegisteredClass> kRegistered;
constexpr const wchar_t* kLibraryId = L"{6C5ACF4C-A048-4640-8A59-D6D1511153B1}";
/// The path of the key of the library's version.
std::wstring LibraryKey();
GUID GuidOf(const std::wstring& text);

/// Every key and value of one class.
RegistryTree KeysOf(const RegisteredClass& row, const std::wstring& modulePath);
/// Of all classes, with the key in which they are.
RegistryTree KeysOfAllClasses(const std::wstring& modulePath);
/// The tree without what the platform writes for the type library and its interfaces.
RegistryTree ClassesIn(HKEY root);
/// What stands in only one of two trees, or differs: "-" as expected, "+" as found.
std::vector<std::wstring> Differences(const RegistryTree& expected, const RegistryTree& found);

#define EXPECT_TREE(expected, found) EXPECT_EQ(std::vector<std::wstring>{}, Differences(expected, found))

/// The default value of a key.
std::wstring TextAt(HKEY root, const std::wstring& path);

/// Puts other content into a resource of a copy of the module.
ModuleCopy::Change Resource(const wchar_t* type, WORD id, const std::string& content);
