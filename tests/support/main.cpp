// Prepares the process for the contract tests: the code page, COM with its memory watched, the module and its classes.
#include <windows.h>

#include <gtest/gtest.h>
#include <objbase.h>

#include <cstdio>

#include "support/class_objects.h"
#include "support/contract_test.h"
#include "support/malloc_spy.h"

namespace {

/// oleaut32 reads this variable once, when it is loaded: with its cache, no leak of a BSTR could be seen.
constexpr const wchar_t* kNoCache = L"oanocache";

bool CacheIsOff() { return GetEnvironmentVariableW(kNoCache, nullptr, 0) != 0; }

/// Runs this program once more without the cache; gives its exit code.
int RunWithoutCache() {
  SetEnvironmentVariableW(kNoCache, L"1");
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, GetCommandLineW(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process)) {
    return 1;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 1;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(code);
}

/// What module and platform make once and keep, so that no test's counts contain it.
void WarmUp() {
  for (const CoClass& coclass : Classes()) {
    Ptr<IDispatch> object;
    CoCreateInstance(coclass.clsid, nullptr, CLSCTX_ALL, IID_IDispatch, object.voidOut());
    if (object.get() == nullptr) continue;
    wchar_t nothing[] = L"nothing";
    LPOLESTR name = nothing;
    DISPID id;
    object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
    Ptr<ITypeInfo> info;
    object->GetTypeInfo(0, 0, info.out());
    Ptr<ITypeLib> library;
    UINT index;
    if (info.get() != nullptr) info->GetContainingTypeLib(library.out(), &index);
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (!CacheIsOff()) return RunWithoutCache();
  ::testing::InitGoogleTest(&count, arguments);
  if (GetACP() != 1251) {
    std::fprintf(stderr, "the ANSI code page is %u; these tests need 1251 (tools/wine sets it)\n", GetACP());
    return 1;
  }
  CoInitialize(nullptr);
  if (!MallocSpy::get().start()) {
    std::fprintf(stderr, "COM does not take the spy of its memory\n");
    return 1;
  }
  int result = 1;
  {
    ClassObjects classes;
    WarmUp();
    result = RUN_ALL_TESTS();
  }
  MallocSpy::get().stop();
  CoUninitialize();
  return result;
}
