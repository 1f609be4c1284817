// The engine loaded and unloaded again and again, in a program that does not link it. Each time it works on two threads
// and leaves a session open.
#include <windows.h>

#include <gtest/gtest.h>
#include <psapi.h>

#include <cstdlib>
#include <string>

#include "engine/functions.h"

namespace {

template <typename Function>
Function* Find(HMODULE library, const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

struct Work {
  HMODULE library;
  char* keys;
  char* store;
  bool done;
};

DWORD WINAPI SignOnce(void* argument) {
  Work& work = *static_cast<Work*>(argument);
  char pin[] = "12345678";
  const LocalParamRecord local{sizeof local, 0, work.keys, work.store, nullptr, pin};
  EngineSession session = nullptr;
  if (Find<decltype(QUIVO_InitializeEx)>(work.library, "QUIVO_InitializeEx")(kEngineLocalParam, &local, &session) !=
      0) {
    return 1;
  }
  uint8_t text[] = "text";
  const DataBlob_t data{sizeof text, text};
  const DataBlob_t none{};
  const SignParamRecord param{8, nullptr};
  DataBlob_t out{};
  work.done = Find<decltype(QUIVO_SignMem)>(work.library, "QUIVO_SignMem")(session, &param, &data, &none, &out) == 0;
  return 0;
}

void WorkOnce() {
  const HMODULE library = LoadLibraryA("tavl1.dll");
  ASSERT_NE(nullptr, library);
  const char* material = std::getenv("TAVL_STANDIN_MATERIAL");
  ASSERT_NE(nullptr, material);
  std::string keys = std::string(material) + "/alice.p12", store = std::string(material) + "/store";
  Work here{library, keys.data(), store.data(), false};
  Work there{library, keys.data(), store.data(), false};
  SignOnce(&here);
  const HANDLE thread = CreateThread(nullptr, 0, SignOnce, &there, 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  FreeLibrary(library);
  EXPECT_TRUE(here.done && there.done);
  EXPECT_EQ(nullptr, GetModuleHandleA("tavl1.dll"));
}

size_t Memory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
}

}  // namespace

TEST(Unload, LeavesNoMemoryBehind) {
  constexpr int kRounds = 40;
  constexpr size_t kMostGrowth = 128 * 1024;
  for (int round = 0; round < kRounds && !HasFailure(); ++round) WorkOnce();
  const size_t before = Memory();
  for (int round = 0; round < kRounds && !HasFailure(); ++round) WorkOnce();
  EXPECT_LE(Memory(), before + kMostGrowth);
}
