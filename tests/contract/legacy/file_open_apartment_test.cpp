// The file-open entry and COM's apartments: on a thread without one, and on threads that have one.
#include "contract/legacy/file_open_test.h"

namespace {

using Names = std::vector<std::string>;

Names events;

HRESULT WINAPI EnterApartment(void* reserved, DWORD model) {
  EXPECT_EQ(nullptr, reserved);
  EXPECT_EQ(static_cast<DWORD>(COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE), model);
  events.push_back("enter");
  return CoInitializeEx(reserved, model);
}

void WINAPI LeaveApartment() {
  events.push_back("leave");
  CoUninitialize();
}

LSTATUS WINAPI CloseKey(HKEY key) {
  events.push_back("close");
  return RegCloseKey(key);
}

class FileOpenApartmentTest : public FileOpenTest {
 protected:
  void SetUp() override {
    FileOpenTest::SetUp();
    events.clear();
  }
  /// Runs something on a thread of its own.
  static void onThread(const std::function<void()>& act) {
    const auto run = [](void* what) -> DWORD {
      (*static_cast<const std::function<void()>*>(what))();
      return 0;
    };
    const HANDLE thread = CreateThread(nullptr, 0, run, const_cast<std::function<void()>*>(&act), 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
  }

 private:
  ImportPatch entering_{Module::get().handle(), "CoInitializeEx", reinterpret_cast<void*>(EnterApartment)};
  ImportPatch leaving_{Module::get().handle(), "CoUninitialize", reinterpret_cast<void*>(LeaveApartment)};
};

TEST_F(FileOpenApartmentTest, IsLeftAfterEveryRun) {
  open(path(L"missing.p7s"));
  EXPECT_EQ((Names{"enter", "leave"}), events);
  open(create(L"a.txt.p7s"));
  EXPECT_EQ((Names{"enter", "leave", "enter", "leave"}), events);
}

TEST_F(FileOpenApartmentTest, IsLeftAfterTheKeysAreClosedAndTheObjectIsReleased) {
  const std::wstring file = create(L"a.txt.p7s");
  const ImportPatch closing(Module::get().handle(), "RegCloseKey", reinterpret_cast<void*>(CloseKey));
  object.onRelease = [] { events.push_back("release"); };
  open(file);
  object.onRelease = nullptr;
  ASSERT_GE(events.size(), 3u);
  EXPECT_EQ((Names{"close", "release", "leave"}), Names(events.end() - 3, events.end()));
}

TEST_F(FileOpenApartmentTest, OfManyThreadsServesTheRunAndIsNotLeft) {
  const std::wstring file = create(L"a.txt.p7s");
  HRESULT after = E_FAIL;
  onThread([&] {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    // The class object of the test's own thread is unknown in this apartment.
    DWORD cookie = 0;
    CoRegisterClassObject(kDoubleId, static_cast<IClassFactory*>(&object), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                          &cookie);
    open(file);
    after = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    CoUninitialize();
    CoRevokeClassObject(cookie);
    CoUninitialize();
  });
  EXPECT_EQ((Calls{L"Init My", L"Verify " + file + L" -> " + path(L"a.txt")}), object.calls);
  EXPECT_EQ(folder, rememberedFolder());
  EXPECT_EQ(Names{"enter"}, events);
  EXPECT_HR(S_FALSE, after) << "the thread has its apartment still";
}

}  // namespace
