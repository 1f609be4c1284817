// Loads and unloads the engine again and again: standin_unload LIBRARY KEYS STORE. Each time it works on two threads
// and leaves a session open. Ends with 0 when the process lives on and is no larger in the end.
#include <windows.h>

#include <psapi.h>

#include <cstdio>

#include "engine/functions.h"

namespace {

template <typename Function>
Function* find(HMODULE library, const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

struct Work {
  HMODULE library;
  char* keys;
  char* store;
  bool done;
};

DWORD WINAPI signOnce(void* argument) {
  Work& work = *static_cast<Work*>(argument);
  char pin[] = "12345678";
  const LocalParamRecord local{sizeof local, 0, work.keys, work.store, nullptr, pin};
  EngineSession session = nullptr;
  if (find<decltype(QUIVO_InitializeEx)>(work.library, "QUIVO_InitializeEx")(kEngineLocalParam, &local, &session) !=
      0) {
    return 1;
  }
  uint8_t text[] = "text";
  const DataBlob_t data{sizeof text, text};
  const DataBlob_t none{};
  const SignParamRecord param{8, nullptr};
  DataBlob_t out{};
  work.done = find<decltype(QUIVO_SignMem)>(work.library, "QUIVO_SignMem")(session, &param, &data, &none, &out) == 0;
  return 0;
}

bool runOnce(const char* path, char* keys, char* store) {
  const HMODULE library = LoadLibraryA(path);
  if (library == nullptr) return false;
  Work here{library, keys, store, false};
  Work there{library, keys, store, false};
  signOnce(&here);
  const HANDLE thread = CreateThread(nullptr, 0, signOnce, &there, 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  FreeLibrary(library);
  return here.done && there.done && GetModuleHandleA("tavl1.dll") == nullptr;
}

size_t memory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) return 2;
  constexpr int kRounds = 40;
  constexpr size_t kMostGrowth = 128 * 1024;
  size_t before = 0;
  for (int round = 0; round < 2 * kRounds; ++round) {
    if (round == kRounds) before = memory();
    if (!runOnce(arguments[1], arguments[2], arguments[3])) {
      std::printf("round %d failed\n", round);
      return 1;
    }
  }
  const size_t after = memory();
  std::printf("memory %zu to %zu\n", before, after);
  return after > before + kMostGrowth ? 1 : 0;
}
