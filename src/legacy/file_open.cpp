#include "legacy/file_open.h"

#include <objbase.h>
#include <shellapi.h>

#include <cstring>

#include "com/module.h"
#include "com/ref.h"
#include "convert/strings.h"
#include "engine/library.h"
#include "legacy/file_open_plan.h"
#include "legacy/legacy_resources.h"
#include "legacy/messages.h"
#include "legacy/save_dialog.h"
#include "legacy/settings.h"
#include "legacy/system_library.h"
#include "quivocom.h"

namespace legacy {
namespace {

constexpr char kInputDirectory[] = "InputDirectory";

/// COM on this thread, for as long as it lives.
class Apartment {
 public:
  Apartment() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {}
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  ~Apartment() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }

 private:
  const HRESULT result_;
};

/// Shows a message of this entry; returns the button that the user pressed.
int Tell(UINT style, const char* text) {
  char caption[64] = {};
  LoadStringA(com::module::Instance(), IDS_OPEN_CAPTION, caption, sizeof(caption));
  return MessageBoxA(GetActiveWindow(), text, caption, style);
}

bool Exists(const char* path) { return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES; }

bool IsFolder(const char* path) {
  DWORD attributes = GetFileAttributesA(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// True if the shell expands variables of the environment in `path`.
bool IsExpanded(const char* path) {
  char expanded[2 * MAX_PATH];
  DWORD size = ExpandEnvironmentStringsA(path, expanded, sizeof(expanded));
  return size == 0 || size > sizeof(expanded) || std::strcmp(path, expanded) != 0;
}

/// True if the shell may complete `path`, whose name has no extension, to a program that lies beside it.
bool IsCompleted(const char* path) {
  const char* dot = std::strrchr(path, '.');
  if (dot && !std::strpbrk(dot, "\\/")) return false;
  for (const char* extension : {".pif", ".com", ".exe", ".bat", ".lnk", ".cmd"}) {
    char program[MAX_PATH + 4];
    convert::Format(program, sizeof(program), "%s%s", path, extension);
    if (Exists(program)) return true;
  }
  return false;
}

/// Whether results are written and opened without asking: the administrator's choice.
bool ExecutesResult() {
  DWORD value = 0;
  com::RegKey key;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, settings::kKey, 0, KEY_READ, key.receive()) == ERROR_SUCCESS)
    settings::ReadDword(key.get(), "ExecuteResult", value);
  return value != 0;
}

/// The user's own key, which remembers the folder of the last result.
com::RegKey OpenUserKey() {
  com::RegKey key;
  RegCreateKeyExA(HKEY_CURRENT_USER, settings::kKey, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, key.receive(),
                  nullptr);
  return key;
}

void ReadStartFolder(HKEY key, char (&folder)[MAX_PATH + 1]) {
  DWORD type = REG_NONE;
  DWORD size = MAX_PATH;
  LSTATUS status = RegQueryValueExA(key, kInputDirectory, nullptr, &type, reinterpret_cast<BYTE*>(folder), &size);
  bool isText = type == REG_SZ || type == REG_EXPAND_SZ;
  folder[status == ERROR_SUCCESS && isText ? MAX_PATH : 0] = '\0';
}

void RememberFolderOf(const char* result, HKEY key) {
  char folder[MAX_PATH];
  if (!FolderOf(result, folder)) return;
  RegSetValueExA(key, kInputDirectory, 0, REG_SZ, reinterpret_cast<const BYTE*>(folder),
                 static_cast<DWORD>(lstrlenA(folder)) + 1);
}

/// One run of the entry.
class Opening {
 public:
  explicit Opening(const char* path) : path_(path) {}

  void run() {
    if (!PlanOpening(path_, plan_) || !hasEngine()) return;
    executesResult_ = ExecutesResult();
    if (!(executesResult_ ? mayWrite() : askWhereToSave())) return;
    if (!openSession() || process() != S_OK) return;
    if (executesResult_) execute();
    if (!userKey_) userKey_ = OpenUserKey();
    RememberFolderOf(plan_.result, userKey_.get());
  }

 private:
  static bool hasEngine() {
    HRESULT hr = engine::Load();
    if (SUCCEEDED(hr)) return true;
    char text[kMessageSize];
    if (engine::MissingFunction()) {
      FormatText(text, "В библиотеке tavl1.dll нет функции %s.", engine::MissingFunction());
    } else if (hr == HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND)) {
      FormatText(text, "Библиотека tavl1.dll не найдена.");
    } else {
      FormatText(text, "Библиотека tavl1.dll не загружена: ошибка 0x%08X.", hr);
    }
    Tell(MB_ICONERROR, text);
    return false;
  }

  bool mayWrite() const {
    if (!Exists(plan_.result)) return true;
    char question[kMessageSize];
    FormatText(question, "Файл %s уже существует. Перезаписать?", plan_.result);
    return Tell(MB_YESNO | MB_ICONQUESTION, question) == IDYES;
  }

  bool askWhereToSave() {
    userKey_ = OpenUserKey();
    char startFolder[MAX_PATH + 1] = {};
    ReadStartFolder(userKey_.get(), startFolder);
    SaveRequest request{plan_.result, startFolder, plan_.kind == ProtectedKind::kSignedAndEncrypted};
    if (!AskWhereToSave(request)) return false;
    keepsSignedCopy_ = request.keepsSignedCopy;
    return true;
  }

  /// The object is reached as any client reaches it, on purpose by a name that the module does not register: "The
  /// other ProgID" in docs/behaviour.md.
  bool openSession() {
    CLSID clsid;
    if (FAILED(CLSIDFromProgID(L"PKI.pkiobj", &clsid))) return false;
    if (FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_ALL, __uuidof(Ipkiobj), object_.receiveVoid()))) return false;
    com::Bstr profile(SysAllocString(L"My"));
    return profile && object_->Init(profile.get()) == S_OK;
  }

  /// Does what the extension asks for; the result of the last method called.
  HRESULT process() {
    if (plan_.kind == ProtectedKind::kOther) return S_OK;
    com::Bstr in;
    com::Bstr out;
    if (FAILED(convert::AnsiToBstr(path_, in.inOut())) || FAILED(convert::AnsiToBstr(plan_.result, out.inOut())))
      return E_OUTOFMEMORY;
    if (plan_.kind == ProtectedKind::kSigned) return object_->Verify(in.get(), out.get());
    if (plan_.kind == ProtectedKind::kEncrypted) return object_->Unencrypt(in.get(), out.get(), TRUE);
    HRESULT hr = object_->VerifyAndUnencrypt(in.get(), out.get());
    if (hr != S_OK) return hr;
    if (keepsSignedCopy_) return keepSignedCopy(in.get());
    char text[kMessageSize];
    FormatText(text, "Расшифрование и проверка ЭП выполнены.\nРезультат сохранён в файл %s.", plan_.result);
    Tell(MB_ICONINFORMATION, text);
    return S_OK;
  }

  HRESULT keepSignedCopy(BSTR in) {
    SignedCopy copy = SignedCopyOf(plan_.result);
    char text[kMessageSize];
    if (!IsFolder(copy.folder) && !CreateDirectoryA(copy.folder, nullptr)) {
      FormatText(text, "Ошибка создания директории %s для сохранения подписанного файла.", copy.folder);
      Tell(MB_ICONERROR, text);
      // The result itself is saved, and the run goes on as after any success.
      return S_OK;
    }
    com::Bstr out;
    HRESULT hr = convert::AnsiToBstr(copy.file, out.inOut());
    if (SUCCEEDED(hr)) hr = object_->Unencrypt(in, out.get(), FALSE);
    if (hr == S_OK) {
      FormatText(text,
                 "Расшифрование и проверка ЭП выполнены.\nРезультат сохранён в файл %s.\n"
                 "Подписанный файл сохранен в файл %s.",
                 plan_.result, copy.file);
      Tell(MB_ICONINFORMATION, text);
    } else {
      FormatText(text,
                 "Расшифрование и проверка ЭП выполнены.\nРезультат сохранён в файл %s.\n"
                 "При сохранении подписанного файла произошла ошибка.",
                 plan_.result);
      Tell(MB_ICONWARNING, text);
    }
    return hr;
  }

  /// Opens the result with its program; whether that succeeds is the program's matter. Nothing else is opened: not a
  /// path that the shell makes of the result's.
  void execute() const {
    if (IsExpanded(plan_.result) || IsCompleted(plan_.result)) return;
    SystemLibrary library(L"shell32.dll");
    auto* open = library.find<decltype(ShellExecuteExA)>("ShellExecuteExA");
    if (!open) return;
    SHELLEXECUTEINFOA request{};
    request.cbSize = sizeof(request);
    request.fMask = SEE_MASK_DOENVSUBST | SEE_MASK_NOCLOSEPROCESS;
    static_assert((SEE_MASK_DOENVSUBST | SEE_MASK_NOCLOSEPROCESS) == 0x240);
    request.lpVerb = "open";
    request.lpFile = plan_.result;
    request.nShow = SW_SHOWNORMAL;
    open(&request);
    com::File process(request.hProcess);
  }

  const char* const path_;
  OpenPlan plan_{};
  bool executesResult_ = false;
  bool keepsSignedCopy_ = false;
  com::Ref<Ipkiobj> object_;
  com::RegKey userKey_;
};

}  // namespace

void OpenProtectedFile(const char* path) {
  Apartment apartment;
  if (path && Exists(path)) Opening(path).run();
}

}  // namespace legacy
