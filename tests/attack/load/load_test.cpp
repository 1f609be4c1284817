// Heavy use of the registered module with the stand-in engine: load_attack --operations=N --soak=N [--seed=S].
#include <objbase.h>

#include <atomic>
#include <iostream>

#include "attack/load/apartments.h"
#include "attack/load/work.h"
#include "attack/shared/guard.h"
#include "attack/shared/options.h"
#include "attack/shared/usage.h"
#include "support/results.h"

namespace {

constexpr DWORD kLimitOfAnOperation = 20000;
constexpr size_t kApartments = 8;
constexpr size_t kMaxMoreBytes = 4 << 20;
constexpr size_t kMaxMoreHandles = 20;
constexpr size_t kMaxMoreBlocks = 1000;

class LoadAttack : public ::testing::Test {
 protected:
  LoadAttack() {
    Random random(seed_, 0);
    Work first(exchange_, random, "the first object");
    if (first.isOpen()) exchange_.hash = first.hash();
    EXPECT_FALSE(exchange_.hash.empty());
  }
  ~LoadAttack() override {
    for (const std::string& problem : exchange_.problems.all()) ADD_FAILURE() << "--seed=" << seed_ << ": " << problem;
  }

  const uint64_t seed_ = Option("seed", 20261122);
  Exchange exchange_;
};

/// The module while this object holds it.
class LoadedModule {
 public:
  LoadedModule() : object_(CreateObject<CertId, ICertId>()), handle_(GetModuleHandleW(L"tavlcom.dll")) {
    GetModuleHandleExW(0, L"tavlcom.dll", &handle_);
  }
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;
  ~LoadedModule() { FreeLibrary(handle_); }

  void release() { object_.reset(); }
  template <class Function>
  Function entry(const char* name) const {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle_, name)));
  }
  HRESULT canUnloadNow() const { return entry<HRESULT(WINAPI*)()>("DllCanUnloadNow")(); }

 private:
  Ptr<ICertId> object_;
  HMODULE handle_;
};

TEST_F(LoadAttack, ApartmentsWorkSideBySide) {
  const size_t operations = Option("operations", 20000) / kApartments;
  // Two clients are in the multithreaded apartment: they share the platform's apartment for such objects.
  RunOnThreads(
      kApartments, [](size_t index) { return index >= 2; },
      [&](size_t index) {
        Random random(seed_, 1 + index);
        Work work(exchange_, random, "apartment " + std::to_string(index));
        for (size_t i = 0; i < operations && work.isOpen(); ++i) {
          work.step();
          PumpMessages();
        }
      });
  EXPECT_FALSE(exchange_.signatures.all().empty());
}

TEST_F(LoadAttack, FactoriesAreRaced) {
  LoadedModule module;
  module.release();
  const auto getClassObject = module.entry<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>("DllGetClassObject");
  const CLSID classes[]{__uuidof(QUIVO), __uuidof(CertId), __uuidof(Certificate), __uuidof(pkiobj)};
  std::atomic<size_t> made = 0, failed = 0;
  constexpr size_t kThreads = 16, kRounds = 10000;
  RunOnThreads(
      kThreads, [](size_t) { return true; },
      [&](size_t index) {
        Random random(seed_, 100 + index);
        for (size_t i = 0; i < kRounds; ++i) {
          Ptr<IClassFactory> factory;
          Ptr<IDispatch> object;
          HRESULT hr = getClassObject(classes[random.below(std::size(classes))], IID_IClassFactory, factory.voidOut());
          if (SUCCEEDED(hr)) hr = factory->LockServer(TRUE);
          if (SUCCEEDED(hr)) hr = factory->CreateInstance(nullptr, IID_IDispatch, object.voidOut());
          // The server is locked by this thread.
          if (module.canUnloadNow() == S_OK) hr = E_UNEXPECTED;
          if (factory.get() != nullptr) factory->LockServer(FALSE);
          ++(SUCCEEDED(hr) ? made : failed);
        }
      });
  EXPECT_EQ(kThreads * kRounds, made);
  EXPECT_EQ(0u, failed);
  EXPECT_OK(module.canUnloadNow());
}

TEST_F(LoadAttack, ProxiesAreSharedByThreads) {
  std::atomic<size_t> wrong = 0;
  const size_t calls = Option("operations", 20000) / 100;
  RunOnThreads(
      1, [](size_t) { return false; },
      [&](size_t) {
        Ptr<IQUIVO> quivo = CreateObject<QUIVO, IQUIVO>();
        Ptr<ISignParam> param = CreateObject<SignParam, ISignParam>();
        quivo->InitMinimal();
        RunOnThreads(
            4, [](size_t) { return false; },
            [&](size_t index) {
              for (size_t i = 0; i < calls; ++i) {
                BSTR text = nullptr;
                SignParamFlag_t flag{};
                GuardCase("thread " + std::to_string(index) + " of the proxies");
                // The flag is one of those that the threads write.
                if (FAILED(param->put_flag(static_cast<SignParamFlag_t>(16 + index))) ||
                    FAILED(param->get_flag(&flag)) || flag < 16 || flag > 19)
                  ++wrong;
                if (FAILED(quivo->GetPKIErrorText(static_cast<LONG>(0xE0680001), &text)) || SysStringLen(text) == 0)
                  ++wrong;
                SysFreeString(text);
                GuardIdle();
              }
            });
        quivo->Uninitialize();
      });
  EXPECT_EQ(0u, wrong);
}

TEST_F(LoadAttack, SoakStaysFlat) {
  const size_t calls = Option("soak", 200000);
  Usage warm{};
  {
    Random random(seed_, 200);
    Work work(exchange_, random, "soak");
    ASSERT_TRUE(work.isOpen());
    for (size_t i = 0; i < calls; ++i) {
      if (i == calls / 5) warm = UsageOfProcess();
      work.step();
    }
    const Usage end = UsageOfProcess();
    std::cout << "after the warm-up: " << warm << "\nat the end: " << end << std::endl;
    EXPECT_LE(end.privateBytes, warm.privateBytes + kMaxMoreBytes);
    EXPECT_LE(end.handles, warm.handles + kMaxMoreHandles);
    EXPECT_LE(end.blocks, warm.blocks + kMaxMoreBlocks);
  }
  LoadedModule module;
  module.release();
  EXPECT_OK(module.canUnloadNow());
}

}  // namespace

int main(int count, char** arguments) {
  ::testing::InitGoogleTest(&count, arguments);
  StartGuard(kLimitOfAnOperation);
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  const int result = RUN_ALL_TESTS();
  CoUninitialize();
  return result;
}
