// DllGetClassObject, DllCanUnloadNow and the class factories.
#include "support/contract_test.h"

namespace {

using ClassObjectTest = ContractTest;

constexpr CLSID kUnknownClass = {0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}};

Ptr<IClassFactory> CertIdFactory() { return FactoryOf(__uuidof(CertId)); }

TEST_F(ClassObjectTest, EveryClassHasAFactoryThatCreatesIt) {
  for (const CoClass& coclass : Classes()) {
    SCOPED_TRACE(coclass);
    Ptr<IUnknown> object;
    EXPECT_OK(FactoryOf(coclass.clsid)->CreateInstance(nullptr, coclass.iid, object.voidOut()));
    EXPECT_NE(nullptr, object.get());
  }
}

TEST_F(ClassObjectTest, UnknownClassIsRefusedWithANullPointer) {
  void* object = this;
  EXPECT_HR(0x80040111u, Module::get().classObject(kUnknownClass, IID_IClassFactory, &object));
  EXPECT_EQ(nullptr, object);
}

TEST_F(ClassObjectTest, SecondRequestGivesTheSameFactory) {
  for (const CoClass& coclass : Classes()) {
    SCOPED_TRACE(coclass);
    EXPECT_EQ(FactoryOf(coclass.clsid).get(), FactoryOf(coclass.clsid).get());
  }
}

TEST_F(ClassObjectTest, FactoryIsGivenAsIUnknownToo) {
  Ptr<IUnknown> factory;
  EXPECT_OK(Module::get().classObject(__uuidof(QUIVO), IID_IUnknown, factory.voidOut()));
  EXPECT_NE(nullptr, factory.as<IClassFactory>().get());
}

TEST_F(ClassObjectTest, InterfaceThatAFactoryLacksIsRefusedWithANullPointer) {
  void* object = this;
  EXPECT_HR(E_NOINTERFACE, Module::get().classObject(__uuidof(QUIVO), IID_IDispatch, &object));
  EXPECT_EQ(nullptr, object);
}

TEST_F(ClassObjectTest, NullPointerForTheClassObjectIsRefused) {
  EXPECT_HR(E_POINTER, Module::get().classObject(__uuidof(QUIVO), IID_IClassFactory, nullptr));
}

TEST_F(ClassObjectTest, NullPointerForTheObjectIsRefused) {
  EXPECT_HR(0x80004003u, CertIdFactory()->CreateInstance(nullptr, IID_IUnknown, nullptr));
}

TEST_F(ClassObjectTest, InterfaceThatAClassLacksIsRefusedAndTheObjectDestroyed) {
  void* object = this;
  EXPECT_HR(E_NOINTERFACE, CertIdFactory()->CreateInstance(nullptr, __uuidof(ISignParam), &object));
  EXPECT_EQ(nullptr, object);
}

TEST_F(ClassObjectTest, AllocationFailureIsReported) {
  Ptr<IClassFactory> factory = CertIdFactory();
  void* object = this;
  Module::get().failAllocation(0);
  EXPECT_HR(0x8007000Eu, factory->CreateInstance(nullptr, IID_IUnknown, &object));
  EXPECT_TRUE(Module::get().allocationFailed());
  EXPECT_EQ(nullptr, object);
}

TEST_F(ClassObjectTest, EveryObjectRaisesTheLockCountByOne) {
  const long before = Module::get().liveObjects();
  for (const CoClass& coclass : Classes()) {
    SCOPED_TRACE(coclass);
    Ptr<IUnknown> object = MakeUnknown(coclass.clsid, IID_IUnknown);
    EXPECT_EQ(before + 1, Module::get().liveObjects());
  }
  EXPECT_EQ(before, Module::get().liveObjects());
}

TEST_F(ClassObjectTest, ServerLockRaisesTheLockCount) {
  Ptr<IClassFactory> factory = CertIdFactory();
  const long before = Module::get().liveObjects();
  EXPECT_OK(factory->LockServer(TRUE));
  EXPECT_EQ(before + 1, Module::get().liveObjects());
  EXPECT_OK(factory->LockServer(FALSE));
  EXPECT_EQ(before, Module::get().liveObjects());
}

TEST_F(ClassObjectTest, ModuleCanUnloadOnlyWithoutObjects) {
  EXPECT_HR(S_OK, Module::get().canUnloadNow());
  {
    Ptr<ICertId> id = Make<ICertId>();
    EXPECT_HR(S_FALSE, Module::get().canUnloadNow());
  }
  EXPECT_HR(S_OK, Module::get().canUnloadNow());
}

TEST_F(ClassObjectTest, ModuleCannotUnloadWhileTheServerIsLocked) {
  Ptr<IClassFactory> factory = CertIdFactory();
  EXPECT_OK(factory->LockServer(TRUE));
  EXPECT_HR(S_FALSE, Module::get().canUnloadNow());
  EXPECT_OK(factory->LockServer(FALSE));
  EXPECT_HR(S_OK, Module::get().canUnloadNow());
}

TEST_F(ClassObjectTest, HeldFactoryDoesNotKeepTheModule) {
  Ptr<IClassFactory> factory = CertIdFactory();
  EXPECT_HR(S_OK, Module::get().canUnloadNow());
}

TEST_F(ClassObjectTest, ObjectsAreCreatedThroughComActivation) {
  Ptr<ICertId> id;
  EXPECT_OK(CoCreateInstance(__uuidof(CertId), nullptr, CLSCTX_ALL, __uuidof(ICertId), id.voidOut()));
  EXPECT_NE(nullptr, id.get());
}

/// The name of a copy that no other process makes.
std::wstring CopyName() { return L"copy" + std::to_wstring(GetCurrentProcessId()) + L".dll"; }

using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);

/// One of two threads that do the same with a module that has done nothing yet.
struct Racer {
  GetClassObject getClassObject;
  HANDLE start;
  /// What the thread got for each class; held.
  std::vector<IUnknown*> got = std::vector<IUnknown*>(Classes().size());
};

/// Runs two threads against each other; both have to get the same for every class.
void Race(const ModuleCopy& module, LPTHREAD_START_ROUTINE run) {
  const HANDLE start = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  Racer racers[2]{{module.entry<GetClassObject>("DllGetClassObject"), start},
                  {module.entry<GetClassObject>("DllGetClassObject"), start}};
  ASSERT_NE(nullptr, racers[0].getClassObject);
  HANDLE threads[2];
  for (int i = 0; i < 2; ++i) threads[i] = CreateThread(nullptr, 0, run, &racers[i], 0, nullptr);
  SetEvent(start);
  WaitForMultipleObjects(2, threads, TRUE, INFINITE);
  for (size_t i = 0; i < Classes().size(); ++i) {
    EXPECT_NE(nullptr, racers[0].got[i]) << Classes()[i];
    EXPECT_EQ(racers[0].got[i], racers[1].got[i]) << Classes()[i];
    for (const Racer& racer : racers) {
      if (racer.got[i] != nullptr) racer.got[i]->Release();
    }
  }
  for (HANDLE thread : threads) CloseHandle(thread);
  CloseHandle(start);
}

DWORD WINAPI AskForAllFactories(void* argument) {
  Racer& racer = *static_cast<Racer*>(argument);
  WaitForSingleObject(racer.start, INFINITE);
  for (size_t i = 0; i < Classes().size(); ++i) {
    racer.getClassObject(Classes()[i].clsid, IID_IClassFactory, reinterpret_cast<void**>(&racer.got[i]));
  }
  return 0;
}

DWORD WINAPI DescribeAllClasses(void* argument) {
  Racer& racer = *static_cast<Racer*>(argument);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  WaitForSingleObject(racer.start, INFINITE);
  for (size_t i = 0; i < Classes().size(); ++i) {
    Ptr<IClassFactory> factory;
    Ptr<IDispatch> object;
    racer.getClassObject(Classes()[i].clsid, IID_IClassFactory, factory.voidOut());
    factory->CreateInstance(nullptr, IID_IDispatch, object.voidOut());
    object->GetTypeInfo(0, LOCALE_NEUTRAL, reinterpret_cast<ITypeInfo**>(&racer.got[i]));
  }
  CoUninitialize();
  return 0;
}

TEST_F(ClassObjectTest, TwoThreadsNeverGetTwoFactories) {
  for (int round = 0; round < 10; ++round) Race(ModuleCopy(CopyName()), AskForAllFactories);
}

TEST_F(ClassObjectTest, TwoThreadsShareTypeInformationAndLeaveNoObject) {
  for (int round = 0; round < 10; ++round) {
    const ModuleCopy module(CopyName());
    Race(module, DescribeAllClasses);
    EXPECT_HR(S_OK, module.canUnloadNow());
  }
}

TEST_F(ClassObjectTest, ModuleThatWasNotInitialisedHasNoClassObjects) {
  const ModuleCopy idle(CopyName(), {}, DONT_RESOLVE_DLL_REFERENCES);
  ASSERT_TRUE(idle.loaded());
  void* object = this;
  EXPECT_HR(0x8000FFFFu, idle.entry<GetClassObject>("DllGetClassObject")(__uuidof(CertId), IID_IClassFactory, &object));
  EXPECT_EQ(nullptr, object);
}

TEST_F(ClassObjectTest, UnloadingReleasesFactoriesWithoutAFault) {
  const ModuleCopy module(CopyName());
  Ptr<IClassFactory> factory;
  const auto getClassObject = module.entry<GetClassObject>("DllGetClassObject");
  ASSERT_NE(nullptr, getClassObject);
  ASSERT_OK(getClassObject(__uuidof(CertId), IID_IClassFactory, factory.voidOut()));
  {
    Ptr<ICertId> id;
    ASSERT_OK(factory->CreateInstance(nullptr, __uuidof(ICertId), id.voidOut()));
    EXPECT_HR(S_FALSE, module.canUnloadNow());
  }
  factory.reset();
  EXPECT_HR(S_OK, module.canUnloadNow());
}

/// A copy of the module, asked for a class object that nobody holds.
struct ModuleWithFactory {
  const ModuleCopy copy{CopyName()};
  const GetClassObject getClassObject = copy.entry<GetClassObject>("DllGetClassObject");
  BOOL (*const dllMain)(DWORD, void*) = copy.entry<BOOL (*)(DWORD, void*)>("TavlcomDllMain");
  long (*const allocations)() = copy.entry<long (*)()>("TavlcomLiveAllocations");
  const long allocationsBefore = allocations();
  const HRESULT asked = ask();

  HRESULT ask() const {
    Ptr<IClassFactory> factory;
    return getClassObject(__uuidof(CertId), IID_IClassFactory, factory.voidOut());
  }
};

TEST_F(ClassObjectTest, UnloadingReleasesTheFactories) {
  const ModuleWithFactory module;
  ASSERT_OK(module.asked);
  EXPECT_EQ(module.allocationsBefore + 1, module.allocations());
  EXPECT_TRUE(module.dllMain(DLL_PROCESS_DETACH, nullptr));
  EXPECT_EQ(module.allocationsBefore, module.allocations());
  // The loader unloads the copy again, at the end.
  EXPECT_TRUE(module.dllMain(DLL_PROCESS_ATTACH, nullptr));
}

TEST_F(ClassObjectTest, FirstNameNeedsMemoryForTheDescriptionsOfAllMembers) {
  const ModuleWithFactory module;
  const auto failAllocation = module.copy.entry<void (*)(long)>("TavlcomFailAllocation");
  const auto allocationFailed = module.copy.entry<bool (*)()>("TavlcomAllocationFailed");
  Ptr<IClassFactory> factory;
  ASSERT_OK(module.getClassObject(__uuidof(CertId), IID_IClassFactory, factory.voidOut()));
  Ptr<IDispatch> object;
  ASSERT_OK(factory->CreateInstance(nullptr, IID_IDispatch, object.voidOut()));
  LPOLESTR name = const_cast<LPOLESTR>(L"issuer");
  DISPID id = 0;
  long failures = 0;
  for (bool failed = true; failed; failures += failed) {
    failAllocation(failures);
    const HRESULT result = object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
    failed = allocationFailed();
    EXPECT_HR(failed ? E_OUTOFMEMORY : S_OK, result);
  }
  failAllocation(-1);
  EXPECT_GT(failures, 3);
}

TEST_F(ClassObjectTest, EndOfTheProcessReleasesNothing) {
  const ModuleWithFactory module;
  ASSERT_OK(module.asked);
  int processEnds = 0;
  EXPECT_TRUE(module.dllMain(DLL_PROCESS_DETACH, &processEnds));
  EXPECT_EQ(module.allocationsBefore + 1, module.allocations());
  EXPECT_OK(module.ask());
}

}  // namespace
