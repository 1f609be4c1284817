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

/// Every key and value of one class.
RegistryTree keysOf(const ClassFacts& facts, const std::wstring& modulePath);
/// Of all classes, with the key in which they are.
RegistryTree keysOfAllClasses(const std::wstring& modulePath);
/// The tree without what the platform writes for the type library and its interfaces.
RegistryTree classesIn(HKEY root);
/// What stands in only one of two trees, or differs: "-" as expected, "+" as found.
std::vector<std::wstring> differences(const RegistryTree& expected, const RegistryTree& found);

#define EXPECT_TREE(expected, found) EXPECT_EQ(std::vector<std::wstring>{}, differences(expected, found))

/// The default value of a key.
std::wstring textAt(HKEY root, const std::wstring& path);
/// The path of a class's CLSID key, and that of the library's version.
std::wstring classKey(const ClassFacts& facts);
std::wstring libraryKey();

/// Puts other content into a resource of a copy of the module.
ModuleCopy::Change resource(const wchar_t* type, WORD id, const std::string& content);
