#include "contract/com/registration.h"

const std::vector<RegisteredClass> kRegistered{
    {L"QUIVO", L"{4D9C12F3-1D48-4A4D-A2EC-E740E455FEEA}", 101},
    {L"LocalParam", L"{236C9B37-B991-48C2-B14A-340A28638282}", 102},
    {L"RSrvParam", L"{DFDABA17-D518-42A6-81DE-C90C8EC32BCF}", 103},
    {L"CertId", L"{2FE53899-07E9-4CB2-BB03-D559BE2FC5D5}", 104},
    {L"SignParam", L"{5B584C94-8FB4-4647-AFE6-879085600DBF}", 105},
    {L"Policy", L"{931F33F5-525B-4613-A5A7-D0E28115DD9A}", 106},
    {L"Extension", L"{7D42ABCB-3B36-4B75-8610-3DE59F556435}", 108},
    {L"VerifyParam", L"{638DCAAF-63A6-40D2-BE7B-00E0D60B43D6}", 109},
    {L"AltName", L"{A87DDCC9-0E5C-4FD2-9336-C183B2068817}", 110},
    {L"Certificate", L"{A2B25429-5D39-44B8-B48F-421BBBD18E52}", 111},
    {L"SignStatus", L"{34349D2D-14C6-414B-9771-A7BD2A7C7180}", 112},
    {L"EncryptParam", L"{904023D8-3EB6-4079-B062-45C68095682E}", 113},
    {L"DecryptParam", L"{3DBDF772-F8AB-4DD8-9A7A-C9650637EE32}", 114},
    {L"ExportParam", L"{5D343B47-FDD0-4802-930B-EADDA0CE37D9}", 120},
    {L"ImportParam", L"{8C4D3DF5-889F-434C-BA1C-22F23FD7CB1B}", 121},
    {L"FindParam", L"{B67689B6-7C60-465C-A541-9878368A6AE5}", 115},
    {L"StreamCtx", L"{F0723AEE-B2DB-40C0-9205-B3CE505E8B2C}", 122},
    {L"pkiobj", L"{D107033F-3A53-4406-AF19-13543470DDB2}", 116, L"PKIobj Class", L"Lunacom.pkiobj.1"},
};

std::ostream& operator<<(std::ostream& out, const RegisteredClass& row) { return out << Narrow(row.name); }

std::wstring LibraryKey() { return L"TypeLib\\" + std::wstring(kLibraryId) + L"\\1.0"; }

GUID GuidOf(const std::wstring& text) {
  GUID guid{};
  IIDFromString(text.c_str(), &guid);
  return guid;
}

RegistryTree KeysOf(const RegisteredClass& row, const std::wstring& modulePath) {
  const std::wstring versioned = row.versionedProgId(), progId = row.progId(), name = row.name + L" Class";
  return {
      {versioned, name},
      {versioned + L"\\CLSID", row.clsid},
      {progId, name},
      {progId + L"\\CLSID", row.clsid},
      {progId + L"\\CurVer", row.currentVersion},
      {row.key(), row.description},
      {row.key() + L"\\ProgID", versioned},
      {row.key() + L"\\VersionIndependentProgID", progId},
      {row.key() + L"\\Programmable", kNoValue},
      {row.key() + L"\\InprocServer32", modulePath},
      {row.key() + L"\\InprocServer32:ThreadingModel", L"Apartment"},
      {row.key() + L"\\TypeLib", kLibraryId},
  };
}

RegistryTree KeysOfAllClasses(const std::wstring& modulePath) {
  RegistryTree all{{L"CLSID", kNoValue}};
  for (const RegisteredClass& row : kRegistered) all.merge(KeysOf(row, modulePath));
  return all;
}

RegistryTree ClassesIn(HKEY root) {
  RegistryTree tree = ReadTree(root);
  std::erase_if(tree, [](const auto& entry) {
    return _wcsnicmp(entry.first.c_str(), L"TypeLib", 7) == 0 || entry.first.starts_with(L"Interface");
  });
  return tree;
}

std::vector<std::wstring> Differences(const RegistryTree& expected, const RegistryTree& found) {
  std::vector<std::wstring> lines;
  for (const auto& [path, text] : expected) {
    if (!found.contains(path) || found.at(path) != text) lines.push_back(L"- " + path + L" = " + text);
  }
  for (const auto& [path, text] : found) {
    if (!expected.contains(path) || expected.at(path) != text) lines.push_back(L"+ " + path + L" = " + text);
  }
  return lines;
}

std::wstring TextAt(HKEY root, const std::wstring& path) { return ReadTree(root, path)[L""]; }

ModuleCopy::Change Resource(const wchar_t* type, WORD id, const std::string& content) {
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
