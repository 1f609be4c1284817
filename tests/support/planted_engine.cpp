// A library with the engine's name that is not the engine: it leaves a file beside itself when it runs.
#include <windows.h>

#include <cwchar>

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  wchar_t path[MAX_PATH + 8] = {};
  GetModuleFileNameW(instance, path, MAX_PATH);
  CloseHandle(CreateFileW(std::wcscat(path, L".ran"), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  return TRUE;
}
