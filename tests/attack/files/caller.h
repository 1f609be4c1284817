// The module with the stand-in engine as a client uses it, and its operations on files: what the attacks of this folder
// share.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "quivocom.h"
#include "support/import_patch.h"
#include "support/values.h"

/// The folders of an attack, each without a backslash at its end.
struct Folders {
  std::wstring material;
  std::wstring scratch;

  std::wstring materialFile(const std::wstring& name) const { return material + L"\\" + name; }
  std::wstring file(const std::wstring& name) const { return scratch + L"\\" + name; }
};

/// What a call came to. `done` means that there is a result; not every refusal is a failure code.
struct Outcome {
  HRESULT code = E_UNEXPECTED;
  bool done = false;
};

class Caller {
 public:
  /// Opens a session of alice with the store, in the main object and in the legacy one.
  Caller(const Folders& folders, const std::wstring& store);
  ~Caller();
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;

  IQUIVO* quivo() const { return quivo_; }
  Ipkiobj* legacy() const { return legacy_; }
  template <class Interface>
  Ptr<Interface> make(REFCLSID clsid) const {
    Ptr<Interface> object;
    create(clsid, __uuidof(Interface), object.voidOut());
    return object;
  }
  HMODULE module() const { return module_; }
  HMODULE engine() const { return GetModuleHandleW(L"tavl1.dll"); }

  /// The number of certificates that a search for all finds.
  size_t certificatesFound() const;

 private:
  void create(REFCLSID clsid, REFIID iid, void** object) const;
  void serveClasses();
  void openLegacy(const Folders& folders, const std::wstring& store);

  HMODULE module_;
  std::vector<DWORD> classes_;
  std::vector<std::unique_ptr<ImportPatch>> answers_;
  Ptr<IQUIVO> quivo_;
  Ptr<Ipkiobj> legacy_;
};

/// An operation on files: `input` is its good input, by name in the scratch folder; empty if it reads none.
struct Operation {
  const char* name;
  std::wstring input;
  bool writes;
  /// What an output of this operation is checked by: true if it is whole.
  std::function<bool(const Caller&, const std::wstring& out)> isWhole;
  std::function<Outcome(const Caller&, const std::wstring& in, const std::wstring& out)> run;
};

/// All of them. The good inputs that the scratch folder lacks are made.
std::vector<Operation> FileOperations(const Caller& caller, const Folders& folders);

Bytes ReadFileOf(const std::wstring& path);
bool WriteFileOf(const std::wstring& path, const Bytes& bytes);
void CopyFolder(const std::wstring& from, const std::wstring& to);
/// Names and contents of the files of a folder.
std::map<std::wstring, Bytes> FilesOf(const std::wstring& folder);
/// Removes the folder's files, and makes the folder when it is missing.
void EmptyFolder(const std::wstring& folder);
