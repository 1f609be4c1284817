#include "registration.h"

#include <windows.h>

#include <objbase.h>

#include <cstdio>

#include "machine.h"
#include "process.h"
#include "text.h"
#include "traces.h"

namespace proof {
namespace {

constexpr const wchar_t* kClasses = L"Software\\Classes";
constexpr const wchar_t* kMainClass = L"Software\\Classes\\TAVL.QUIVO";
constexpr const wchar_t* kProfiles = L"Software\\KORVENTA\\tavl\\Profiles";
/// The contract tests work below this key.
constexpr const wchar_t* kContractKey = L"Software\\tavlcom-contract";
constexpr const wchar_t* kScopeNote = L"registered for";
constexpr const wchar_t* kUser = L"user";
constexpr const wchar_t* kMachine = L"machine";

/// The object that opens arrays for scripts.
constexpr const wchar_t* kArrays = L"Software\\Classes\\TavlTests.Arrays\\CLSID";
constexpr const wchar_t* kArraysId = L"{6E0C52B8-2A3D-4C59-9C0B-5B0C0B6C7D11}";

HKEY RootOf(const std::wstring& scope) { return scope == kUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }

ProgramEnd RunCommand(const std::wstring& command) {
  return RunProgram(L"\"" + ProgramPath() + L"\" --" + command, 60);
}

/// What is in the keys to which a registration adds others.
std::set<std::wstring> ClassKeys() {
  std::set<std::wstring> keys;
  for (const wchar_t* key :
       {L"", L"\\CLSID", L"\\Interface", L"\\TypeLib", L"\\Wow6432Node\\Interface", L"\\Wow6432Node\\TypeLib"}) {
    const std::wstring path = std::wstring(kClasses) + key;
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
      const std::wstring where = (root == HKEY_CURRENT_USER ? L"HKEY_CURRENT_USER\\" : L"HKEY_LOCAL_MACHINE\\") + path;
      for (const std::wstring& name : SubkeysOf(root, path)) keys.insert(where + L"\\" + name);
    }
  }
  return keys;
}

void WriteArrays(HKEY root, const std::wstring& library) {
  const std::wstring server = std::wstring(kClasses) + L"\\CLSID\\" + kArraysId + L"\\InprocServer32";
  if (!CreateNotedKey(root, kArrays) || !CreateNotedKey(root, server)) return;
  WriteText(root, kArrays, nullptr, kArraysId);
  WriteText(root, server, nullptr, library);
}

int Register(const std::wstring& module, const char* entry, bool forUser) {
  if (forUser) {
    HKEY classes = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, kClasses, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &classes, nullptr);
    RegOverridePredefKey(HKEY_CLASSES_ROOT, classes);
    using Enable = void(WINAPI*)();
    const FARPROC enable = GetProcAddress(LoadLibraryW(L"oleaut32.dll"), "OaEnablePerUserTLibRegistration");
    if (enable != nullptr) reinterpret_cast<Enable>(reinterpret_cast<void*>(enable))();
  }
  const HMODULE library = LoadLibraryExW(module.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (library == nullptr) {
    std::printf("the module cannot be loaded: %s\n", ErrorText(GetLastError()).c_str());
    return 1;
  }
  const auto function = reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(library, entry)));
  const HRESULT hr = function == nullptr ? HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND) : function();
  std::printf("%s: %s\n", entry, ErrorText(static_cast<DWORD>(hr)).c_str());
  return SUCCEEDED(hr) ? 0 : 1;
}

/// A program that knows nothing of the kit gets the main object, it is that of the kit's module, and the scripts' own
/// object is seen too: the module may be registered twice.
int CreateAsOthersDo(const std::wstring& module) {
  CLSID clsid{};
  IUnknown* object = nullptr;
  HRESULT hr = CoInitialize(nullptr);
  if (SUCCEEDED(hr)) hr = CLSIDFromProgID(L"TavlTests.Arrays", &clsid);
  if (SUCCEEDED(hr)) hr = CLSIDFromProgID(L"TAVL.QUIVO", &clsid);
  if (SUCCEEDED(hr))
    hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, reinterpret_cast<void**>(&object));
  if (FAILED(hr)) {
    std::printf("TAVL.QUIVO cannot be created: %s\n", ErrorText(static_cast<DWORD>(hr)).c_str());
    return 1;
  }
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(GetModuleHandleW(L"tavlcom.dll"), path.data(), static_cast<DWORD>(path.size())));
  std::printf("created by %s\n", Utf8(path).c_str());
  return _wcsicmp(path.c_str(), module.c_str()) == 0 ? 0 : 1;
}

}  // namespace

int RunRegistrationCommand(const std::wstring& kit, const std::wstring& command, const std::wstring& scope) {
  const std::wstring module = kit + L"bin\\tavlcom.dll";
  if (command == L"register") return Register(module, "DllRegisterServer", scope == kUser);
  if (command == L"unregister") return Register(module, "DllUnregisterServer", scope == kUser);
  return CreateAsOthersDo(module);
}

bool CanWriteMachineClasses() {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kClasses, 0, KEY_WRITE, &key) != ERROR_SUCCESS) return false;
  RegCloseKey(key);
  return true;
}

bool Registration::somethingIsLeft() { return KeyExists(HKEY_CURRENT_USER, kNotesKey); }

Registration::Effect Registration::registerFor(const wchar_t* scope, Case& one) {
  WriteNote(kScopeNote, scope);
  // Their parents are removed with the notes, if they are new.
  for (const wchar_t* key : {L"CLSID", L"Interface", L"TypeLib"}) {
    CreateNotedKey(RootOf(scope), std::wstring(kClasses) + L"\\" + key);
  }
  const ProgramEnd end = RunCommand(std::wstring(L"register ") + scope);
  one.text += "registered for the " + Utf8(scope) + ": " + end.output;
  if (!end.good()) {
    noClasses_ = "the registration " + end.howItEnded();
    return Effect::kFailed;
  }
  WriteArrays(RootOf(scope), kit_ + L"bin\\tavltests.dll");
  const ProgramEnd created = RunCommand(L"created");
  one.text += created.output;
  if (!created.good()) {
    noClasses_ = "a registration for the " + Utf8(scope) + " has no effect here";
    return Effect::kNone;
  }
  scope_ = "the " + Utf8(scope);
  noClasses_.clear();
  return Effect::kSeen;
}

Case Registration::registerModule() {
  Case one{"", "registration", Verdict::kSkipped, 0, ""};
  if (KeyExists(HKEY_CURRENT_USER, kMainClass)) {
    one.text = noClasses_ = "a module is registered for this user, and stays so";
    return one;
  }
  if (KeyExists(HKEY_LOCAL_MACHINE, kMainClass) && CanWriteMachineClasses()) {
    // The platform could write a user's interfaces for callers of 32 bits into the machine's, and remove them from
    // there.
    one.text = noClasses_ =
        "a module is registered for the machine, and stays so: start the kit without an administrator's rights";
    return one;
  }
  Effect effect = registerFor(kUser, one);
  if (effect == Effect::kNone && CanWriteMachineClasses()) {
    // COM does not see a user's classes in programs with an administrator's rights.
    one.text += unregister();
    effect = registerFor(kMachine, one);
  }
  one.verdict = effect == Effect::kSeen ? Verdict::kPassed : Verdict::kFailed;
  one.text += noClasses_;
  return one;
}

std::string Registration::unregister() {
  const std::wstring scope = Note(kScopeNote);
  if (scope.empty()) return {};
  const ProgramEnd end = RunCommand(L"unregister " + scope);
  // A module that could not be registered cannot be unregistered either. The note stays for another try.
  if (!end.good() && KeyExists(RootOf(scope), kMainClass)) {
    return end.output + "the unregistration " + end.howItEnded() + "\n";
  }
  WriteNote(kScopeNote, L"");
  return {};
}

void Registration::writeProfiles() {
  // Users of an engine have profiles, and their choice among them stays.
  const bool areFirst = !KeyExists(HKEY_CURRENT_USER, kProfiles);
  const std::pair<const wchar_t*, const wchar_t*> users[] = {
      {L"Анна Петрова", L"anna"}, {L"Борис Волков", L"boris"}, {L"Вера Смирнова", L"vera"}};
  int number = 0;
  for (const auto& [name, file] : users) {
    std::wstring key;
    do key = std::wstring(kProfiles) + L"\\" + std::to_wstring(number++);
    while (KeyExists(HKEY_CURRENT_USER, key));
    if (!CreateNotedKey(HKEY_CURRENT_USER, key)) {
      noProfiles_ = "the profiles cannot be written";
      return;
    }
    WriteText(HKEY_CURRENT_USER, key, L"ProfileName", name);
    WriteText(HKEY_CURRENT_USER, key, L"pse", kit_ + L"identities\\" + file + L".p12");
    WriteText(HKEY_CURRENT_USER, key, L"localstore", kit_ + L"identities\\store");
    WriteText(HKEY_CURRENT_USER, key, L"pincode", L"12345678");
  }
  const DWORD first = 0;
  if (areFirst) RegSetKeyValueW(HKEY_CURRENT_USER, kProfiles, L"CurSel", REG_DWORD, &first, sizeof first);
  // Bytes for the scripts of a language that cannot make them.
  constexpr BYTE kBytes[] = {0x00, 0x01, 0x7F, 0x80, 0xFF};
  CreateNotedKey(HKEY_CURRENT_USER, L"Software\\tavlcom.tests");
  RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\tavlcom.tests", L"bytes", REG_BINARY, kBytes, sizeof kBytes);
  noProfiles_.clear();
}

void Registration::prepareProfiles(PartResult& result) {
  const ULONGLONG started = GetTickCount64();
  CreateNotedKey(HKEY_CURRENT_USER, kContractKey);
  writeProfiles();
  result.cases.push_back({"", "profiles", noProfiles_.empty() ? Verdict::kPassed : Verdict::kFailed, 0, noProfiles_});
  result.seconds += static_cast<double>(GetTickCount64() - started) / 1000;
}

void Registration::prepareClasses(PartResult& result) {
  const ULONGLONG started = GetTickCount64();
  const std::set<std::wstring> before = ClassKeys();
  result.cases.push_back(registerModule());
  registered_ = ClassKeys();
  std::erase_if(registered_, [&](const std::wstring& key) { return before.contains(key); });
  result.seconds += static_cast<double>(GetTickCount64() - started) / 1000;
}

void Registration::takeBack(PartResult& result) {
  const ULONGLONG started = GetTickCount64();
  LetStopEndPrograms(false);
  Case one{"", "nothing is left in the registry", Verdict::kPassed, 0, unregister()};
  LetStopEndPrograms(true);
  // A contract test that crashed leaves its keys there.
  RegDeleteTreeW(HKEY_CURRENT_USER, kContractKey);
  for (const std::wstring& key : RemoveNotedKeys()) one.text += "the key is left: " + Utf8(key) + "\n";
  // Others may have registered classes of their own meanwhile.
  const std::set<std::wstring> now = ClassKeys();
  for (const std::wstring& key : registered_) {
    if (now.contains(key)) one.text += "the key is left: " + Utf8(key) + "\n";
  }
  if (Note(kScopeNote).empty()) RemoveNotes();
  if (!one.text.empty()) one.verdict = Verdict::kFailed;
  result.seconds += static_cast<double>(GetTickCount64() - started) / 1000;
  result.cases.push_back(one);
}

}  // namespace proof
