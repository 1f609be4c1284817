#include "contract/com/registration.h"

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

RegistryTree classesIn(HKEY root) {
  RegistryTree tree = readTree(root);
  std::erase_if(tree, [](const auto& entry) {
    return _wcsnicmp(entry.first.c_str(), L"TypeLib", 7) == 0 || entry.first.starts_with(L"Interface");
  });
  return tree;
}

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

std::wstring textAt(HKEY root, const std::wstring& path) { return readTree(root, path)[L""]; }

std::wstring classKey(const ClassFacts& facts) { return L"CLSID\\" + std::wstring(facts.clsid); }

std::wstring libraryKey() { return L"TypeLib\\" + std::wstring(kLibraryId) + L"\\1.0"; }

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
