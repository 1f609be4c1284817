#include "caller.h"

#include <prsht.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr wchar_t kPin[] = L"12345678";

[[noreturn]] void GiveUp(const char* what, HRESULT code) {
  std::printf("FAILED: %s: %08lX\n", what, static_cast<unsigned long>(code));
  std::exit(2);
}

void Must(const char* what, HRESULT code) {
  if (FAILED(code)) GiveUp(what, code);
}

// The legacy object reports to a user, who is not here: he accepts what he is shown.
int WINAPI AcceptMessage(HWND, LPCSTR, LPCSTR, UINT) { return IDOK; }
INT_PTR WINAPI AcceptSheet(LPCPROPSHEETHEADERA) { return 1; }
FARPROC WINAPI FindFunction(HMODULE library, LPCSTR name) {
  if (HIWORD(name) != 0 && std::strcmp(name, "PropertySheetA") == 0)
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&AcceptSheet));
  return GetProcAddress(library, name);
}

void SetText(HKEY key, const wchar_t* name, const std::wstring& text) {
  RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                 static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

}  // namespace

Caller::Caller(const Folders& folders, const std::wstring& store) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  module_ = LoadLibraryW(L"tavlcom.dll");
  if (module_ == nullptr) GiveUp("the module cannot be loaded", HRESULT_FROM_WIN32(GetLastError()));
  serveClasses();
  quivo_ = make<IQUIVO>(__uuidof(QUIVO));
  auto parameters = make<ILocalParam>(__uuidof(LocalParam));
  parameters->put_pse(Bstr(folders.materialFile(L"alice.p12")));
  parameters->put_localstore(Bstr(store));
  parameters->put_pincode(Bstr(kPin));
  Must("the session cannot be opened", quivo_->InitializeEx(parameters));
  openLegacy(folders, store);
}

Caller::~Caller() {
  legacy_->Uninit();
  quivo_->Uninitialize();
  legacy_.reset();
  quivo_.reset();
  for (const DWORD cookie : classes_) CoRevokeClassObject(cookie);
}

void Caller::create(REFCLSID clsid, REFIID iid, void** object) const {
  const auto entry = reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(
      reinterpret_cast<void*>(GetProcAddress(module_, "DllGetClassObject")));
  Ptr<IClassFactory> factory;
  Must("a class object", entry(clsid, IID_IClassFactory, factory.voidOut()));
  Must("an object", factory->CreateInstance(nullptr, iid, object));
}

// The objects that the module returns come from COM: it finds these before the registry.
void Caller::serveClasses() {
  const auto entry = reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(
      reinterpret_cast<void*>(GetProcAddress(module_, "DllGetClassObject")));
  for (const CLSID& clsid : {__uuidof(Certificate), __uuidof(SignStatus), __uuidof(AltName), __uuidof(Policy),
                             __uuidof(Extension), __uuidof(CertId)}) {
    Ptr<IUnknown> factory;
    Must("a class object", entry(clsid, IID_IUnknown, factory.voidOut()));
    DWORD cookie = 0;
    Must("a class", CoRegisterClassObject(clsid, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie));
    classes_.push_back(cookie);
  }
}

void Caller::openLegacy(const Folders& folders, const std::wstring& store) {
  const auto answer = [&](const char* function, void* replacement) {
    answers_.push_back(std::make_unique<ImportPatch>(module_, function, replacement));
  };
  answer("MessageBoxA", reinterpret_cast<void*>(&AcceptMessage));
  answer("GetProcAddress", reinterpret_cast<void*>(&FindFunction));
  // A profile of this process alone: others run in the same prefix.
  const std::wstring name = L"attack-" + std::to_wstring(GetCurrentProcessId());
  const std::wstring path = L"SOFTWARE\\KORVENTA\\tavl\\Profiles\\" + name;
  HKEY key = nullptr;
  RegCreateKeyW(HKEY_CURRENT_USER, path.c_str(), &key);
  SetText(key, L"ProfileName", name);
  SetText(key, L"pse", folders.materialFile(L"alice.p12"));
  SetText(key, L"localstore", store);
  SetText(key, L"pincode", kPin);
  RegCloseKey(key);
  legacy_ = make<Ipkiobj>(__uuidof(pkiobj));
  const HRESULT opened = legacy_->Init(Bstr(name));
  RegDeleteKeyW(HKEY_CURRENT_USER, path.c_str());
  Must("the legacy session cannot be opened", opened);
  const Bytes receiver = ReadFileOf(folders.materialFile(L"alice.cer"));
  const BSTR encoded =
      SysAllocStringByteLen(reinterpret_cast<const char*>(receiver.data()), static_cast<UINT>(receiver.size()));
  Must("a recipient", legacy_->AddRecipDERCert(encoded));
  SysFreeString(encoded);
}

size_t Caller::certificatesFound() const {
  auto parameters = make<IFindParam>(__uuidof(FindParam));
  parameters->put_flag(Flag_Find_All);
  Variant found;
  if (FAILED(quivo_->FindCert(parameters, found.out())) || (found.type() & VT_ARRAY) == 0) return 0;
  return found.safeArray()->rgsabound[0].cElements;
}

Bytes ReadFileOf(const std::wstring& path) {
  Bytes bytes;
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return bytes;
  bytes.resize(GetFileSize(file, nullptr));
  DWORD read = 0;
  ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
  bytes.resize(read);
  CloseHandle(file);
  return bytes;
}

bool WriteFileOf(const std::wstring& path, const Bytes& bytes) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  DWORD written = 0;
  WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  CloseHandle(file);
  return written == bytes.size();
}

std::map<std::wstring, Bytes> FilesOf(const std::wstring& folder) {
  std::map<std::wstring, Bytes> files;
  WIN32_FIND_DATAW entry{};
  const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return files;
  do {
    const std::wstring name = entry.cFileName;
    if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
      if (name != L"." && name != L"..") files[name + L"\\"];
    } else {
      files[name] = ReadFileOf(folder + L"\\" + name);
    }
  } while (FindNextFileW(search, &entry));
  FindClose(search);
  return files;
}

void EmptyFolder(const std::wstring& folder) {
  CreateDirectoryW(folder.c_str(), nullptr);
  for (const auto& [name, bytes] : FilesOf(folder)) {
    SetFileAttributesW((folder + L"\\" + name).c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW((folder + L"\\" + name).c_str());
  }
}

void CopyFolder(const std::wstring& from, const std::wstring& to) {
  EmptyFolder(to);
  for (const auto& [name, bytes] : FilesOf(from)) {
    if (name.back() != L'\\') WriteFileOf(to + L"\\" + name, bytes);
  }
}
