// The module under test: loaded from the folder of the test program, with its entry points and its counters.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <functional>
#include <string>

class Module {
 public:
  /// The one module of the process; it is loaded at the first call.
  static Module& get();

  const std::wstring& path() const { return path_; }
  HMODULE handle() const { return handle_; }
  template <class Function>
  Function entry(const char* name) const {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle_, name)));
  }

  HRESULT classObject(REFCLSID clsid, REFIID iid, void** object) const { return getClassObject_(clsid, iid, object); }
  HRESULT canUnloadNow() const { return canUnloadNow_(); }
  HRESULT registerServer() const { return entry<HRESULT(WINAPI*)()>("DllRegisterServer")(); }
  HRESULT unregisterServer() const { return entry<HRESULT(WINAPI*)()>("DllUnregisterServer")(); }

  long liveObjects() const { return liveObjects_(); }
  long liveAllocations() const { return liveAllocations_(); }
  /// Lets the allocation after `succeeding` further ones fail; a negative number lets none fail.
  void failAllocation(long succeeding) const { failAllocation_(succeeding); }
  bool allocationFailed() const { return allocationFailed_(); }

 private:
  Module();

  std::wstring path_;
  HMODULE handle_;
  HRESULT(WINAPI* getClassObject_)(REFCLSID, REFIID, void**);
  HRESULT(WINAPI* canUnloadNow_)();
  long (*liveObjects_)();
  long (*liveAllocations_)();
  void (*failAllocation_)(long);
  bool (*allocationFailed_)();
};

/// The folder of the test program, without a backslash at its end.
std::wstring ProgramFolder();

/// A copy of the module, loaded in addition: one that has done nothing yet, or in another folder. Deleted with its
/// owner.
class ModuleCopy {
 public:
  /// What is done to the file before it is loaded.
  using Change = std::function<void(const std::wstring& path)>;

  /// `name` is relative to the folder of the test program; a folder in it is made, with an engine. `flags` are
  /// LoadLibraryEx's.
  explicit ModuleCopy(const std::wstring& name, const Change& change = {}, DWORD flags = 0);
  ModuleCopy(const ModuleCopy&) = delete;
  ModuleCopy& operator=(const ModuleCopy&) = delete;
  ~ModuleCopy();

  const std::wstring& path() const { return path_; }
  bool loaded() const { return handle_ != nullptr; }
  template <class Function>
  Function entry(const char* name) const {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle_, name)));
  }
  HRESULT registerServer() const { return entry<HRESULT(WINAPI*)()>("DllRegisterServer")(); }
  HRESULT unregisterServer() const { return entry<HRESULT(WINAPI*)()>("DllUnregisterServer")(); }
  HRESULT canUnloadNow() const { return entry<HRESULT(WINAPI*)()>("DllCanUnloadNow")(); }

 private:
  std::wstring path_;
  HMODULE handle_;
};
