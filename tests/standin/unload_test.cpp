// The engine loaded and unloaded again and again, in a program that does not link it: by itself, where it works on two
// threads and leaves a session open each time, and by the module.
#include <windows.h>

#include <gtest/gtest.h>
#include <objbase.h>
#include <psapi.h>

#include <cstdlib>
#include <string>

#include "engine/functions.h"
#include "quivocom.h"

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

/// One object of the module, which loads the engine, in whose session a hash is made.
void UseModuleOnce() {
  const HMODULE library = LoadLibraryA("tavlcom.dll");
  ASSERT_NE(nullptr, library);
  EXPECT_EQ(nullptr, GetModuleHandleA("tavl1.dll"));
  IClassFactory* factory = nullptr;
  ASSERT_EQ(S_OK, Find<decltype(DllGetClassObject)>(library, "DllGetClassObject")(__uuidof(QUIVO), IID_IClassFactory,
                                                                                  reinterpret_cast<void**>(&factory)));
  IQUIVO* quivo = nullptr;
  EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, __uuidof(IQUIVO), reinterpret_cast<void**>(&quivo)));
  factory->Release();
  EXPECT_EQ(S_OK, quivo->InitMinimal());
  wchar_t name[] = L"HashMem";
  wchar_t* names = name;
  DISPID id = 0;
  EXPECT_EQ(S_OK, quivo->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_NEUTRAL, &id));
  quivo->Release();
  EXPECT_EQ(S_OK, Find<decltype(DllCanUnloadNow)>(library, "DllCanUnloadNow")());
  FreeLibrary(library);
  EXPECT_EQ(nullptr, GetModuleHandleA("tavlcom.dll"));
  EXPECT_EQ(nullptr, GetModuleHandleA("tavl1.dll"));
}

size_t Memory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
}

DWORD Handles() {
  DWORD count = 0;
  GetProcessHandleCount(GetCurrentProcess(), &count);
  return count;
}

/// The blocks in use in all heaps of the process.
size_t Blocks() {
  HANDLE heaps[64] = {};
  const DWORD count = GetProcessHeaps(64, heaps);
  size_t blocks = 0;
  for (DWORD i = 0; i < count && i < 64; ++i) {
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heaps[i], &entry))
      if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) ++blocks;
  }
  return blocks;
}

/// Rounds whose growth counts, after as many that may still fill what the platform keeps.
constexpr int kRounds = 40;

void ExpectNothingLeft(void (*round)(), size_t mostGrowth) {
  for (int i = 0; i < kRounds && !::testing::Test::HasFailure(); ++i) round();
  const size_t memory = Memory();
  const DWORD handles = Handles();
  for (int i = 0; i < kRounds && !::testing::Test::HasFailure(); ++i) round();
  EXPECT_LE(Memory(), memory + mostGrowth);
  EXPECT_LE(Handles(), handles);
}

}  // namespace

TEST(Unload, LeavesNothingOfTheEngineBehind) { ExpectNothingLeft(WorkOnce, 128 * 1024); }

TEST(Unload, LeavesNothingOfTheModuleBehind) {
  // As in every host of automation: the platform's cache of strings is lost whenever its library goes.
  LoadLibraryA("oleaut32.dll");
  ExpectNothingLeft(UseModuleOnce, 128 * 1024);
}

// Finer than the memory of the process, which grows by pages.
TEST(Unload, LeavesNoBlockOfTheHeapBehind) {
  LoadLibraryA("oleaut32.dll");
  for (int i = 0; i < kRounds; ++i) UseModuleOnce();
  const size_t blocks = Blocks();
  for (int i = 0; i < kRounds; ++i) UseModuleOnce();
  EXPECT_LT(Blocks(), blocks + kRounds);
}

/// The module in a folder of its own, without the engine that lies in the folder of this program.
class ModuleAlone : public ::testing::Test {
 protected:
  void SetUp() override {
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    const std::string bin(program, std::string(program).rfind('\\'));
    folder_ = bin + "\\alone";
    CreateDirectoryA(folder_.c_str(), nullptr);
    DeleteFileA((folder_ + "\\tavl1.dll").c_str());
    CopyFileA((bin + "\\tavlcom.dll").c_str(), (folder_ + "\\tavlcom.dll").c_str(), FALSE);
    library_ = LoadLibraryA((folder_ + "\\tavlcom.dll").c_str());
    ASSERT_NE(nullptr, library_);
  }
  void TearDown() override { FreeLibrary(library_); }

  void expectEveryEntry(HRESULT expected) {
    IClassFactory* factory = nullptr;
    EXPECT_EQ(expected, Find<decltype(DllGetClassObject)>(library_, "DllGetClassObject")(
                            __uuidof(QUIVO), IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    EXPECT_EQ(nullptr, factory);
    EXPECT_EQ(expected, Find<HRESULT WINAPI()>(library_, "DllRegisterServer")());
  }
  void putEngine(const char* file) { CopyFileA(file, (folder_ + "\\tavl1.dll").c_str(), FALSE); }

 private:
  std::string folder_;
  HMODULE library_ = nullptr;
};

TEST_F(ModuleAlone, ReportsAMissingEngine) { expectEveryEntry(HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND)); }

TEST_F(ModuleAlone, ReportsAnEngineThatLacksAFunction) {
  putEngine(std::getenv("TAVL_PLANTED_ENGINE"));
  expectEveryEntry(HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND));
}

TEST_F(ModuleAlone, ReportsAFileThatIsNoLibrary) {
  putEngine((std::string(std::getenv("TAVL_STANDIN_MATERIAL")) + "/alice.p12").c_str());
  expectEveryEntry(HRESULT_FROM_WIN32(ERROR_BAD_EXE_FORMAT));
}
