// Clients in a multithreaded apartment, by way of the registered class: COM makes the object on a thread of its own and
// hands out a proxy, for which the registered type library is enough. The sheet comes up on that thread.
#include <windows.h>

#include <dlgs.h>

#include "ui/ui_test.h"

namespace {

constexpr const wchar_t* kOpenedKey = L"SOFTWARE\\Classes\\PKI.pkiobj";

/// A thread in the multithreaded apartment, at work until it ends or its owner waits for it.
class MultithreadedClient {
 public:
  explicit MultithreadedClient(std::function<void()> act)
      : act_(std::move(act)), thread_(CreateThread(nullptr, 0, run, this, 0, nullptr)) {}
  MultithreadedClient(const MultithreadedClient&) = delete;
  MultithreadedClient& operator=(const MultithreadedClient&) = delete;
  ~MultithreadedClient() {
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
  }

 private:
  static DWORD WINAPI run(void* self) {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    static_cast<MultithreadedClient*>(self)->act_();
    CoUninitialize();
    return 0;
  }

  const std::function<void()> act_;
  HANDLE thread_;
};

class MultithreadedApartment : public UiTest {
 protected:
  // Before the tests' own machine key stands in for the real one.
  static void SetUpTestSuite() {
    EXPECT_OK(Module::get().registerServer());
    WriteKey(HKEY_LOCAL_MACHINE, std::wstring(kOpenedKey) + L"\\CLSID", L"{D107033F-3A53-4406-AF19-13543470DDB2}");
  }
  static void TearDownTestSuite() {
    DeleteTree(HKEY_LOCAL_MACHINE, kOpenedKey);
    EXPECT_OK(Module::get().unregisterServer());
  }
  void SetUp() override {
    UiTest::SetUp();
    // Proxies, stubs and the thread of the objects.
    leaveOutComMemory();
    engine().on("QUIVO_VerifyFile").signatures.resize(1);
    engine().on("QUIVO_VerifyFile").during = [this] { engineThread = GetCurrentThreadId(); };
  }
  /// The object of a client, as the client's apartment sees it.
  static Ptr<Ipkiobj> createInstance() {
    Ptr<Ipkiobj> made;
    CoCreateInstance(__uuidof(pkiobj), nullptr, CLSCTX_ALL, __uuidof(Ipkiobj), made.voidOut());
    return made;
  }

  PrivateRoot user{HKEY_CURRENT_USER};
  DWORD engineThread = 0;
};

TEST_F(MultithreadedApartment, ItsClientSeesTheSheetAndGetsTheResult) {
  engine().on("QUIVO_VerifyFile").result = static_cast<int32_t>(0xE0700019);
  DWORD sheetThread = 0, clientThread = 0;
  HRESULT init = E_FAIL, verify = E_FAIL, uninit = E_FAIL;
  {
    User atSheet(kSheetCaption, [&](HWND sheet) {
      sheetThread = GetWindowThreadProcessId(sheet, nullptr);
      Press(sheet, IDOK);
    });
    MultithreadedClient client([&] {
      clientThread = GetCurrentThreadId();
      const Ptr<Ipkiobj> made = createInstance();
      if (made.get() == nullptr) return;
      init = made->Init(Bstr(L"My"));
      verify = made->Verify(Bstr(L"in"), Bstr(path(L"result")));
      uninit = made->Uninit();
    });
  }
  EXPECT_OK(init);
  EXPECT_HR(0xE0700019u, verify);
  EXPECT_OK(uninit);
  EXPECT_NE(clientThread, engineThread) << "the object was made in the client's apartment";
  EXPECT_EQ(sheetThread, engineThread);
}

TEST_F(MultithreadedApartment, ACallThatArrivesWhileTheSheetIsShownIsServed) {
  Ptr<Ipkiobj> made;
  HRESULT verify = E_FAIL, uninit = E_FAIL;
  {
    User atSheet(kSheetCaption, [&](HWND sheet) {
      MultithreadedClient([&] { uninit = made->Uninit(); });
      Press(sheet, IDOK);
    });
    MultithreadedClient client([&] {
      made = createInstance();
      if (made.get() == nullptr) return;
      made->Init(Bstr(L"My"));
      verify = made->Verify(Bstr(L"in"), Bstr(path(L"result")));
      made.reset();
    });
  }
  EXPECT_OK(verify);
  EXPECT_OK(uninit);
  EXPECT_EQ("QUIVO_FreeVerifyResult", engine().names().at(engine().calls().size() - 2));
  EXPECT_EQ("QUIVO_Uninitialize", engine().last().function);
}

TEST_F(MultithreadedApartment, FileOpenOnItsThreadVerifiesAndSaves) {
  letWrite("QUIVO_VerifyFile", 4, "verified");
  const std::wstring file = create(L"a.txt.p7s");
  {
    User atSheet(kSheetCaption, [](HWND sheet) { Press(sheet, IDOK); });
    User atDialog(
        L"save dialog",
        [](HWND window) { return GetDlgItem(window, cmb1) != nullptr && GetDlgItem(window, IDOK) != nullptr; },
        [](HWND dialog) { Press(dialog, IDOK); });
    MultithreadedClient client([&] {
      using Entry = void(CALLBACK*)(HWND, HINSTANCE, LPSTR, int);
      std::string line = AnsiOf(file);
      Module::get().entry<Entry>("FileOpen")(nullptr, nullptr, line.data(), SW_SHOW);
    });
  }
  EXPECT_EQ("verified", contentOf(L"a.txt"));
  EXPECT_EQ(folder, ReadTree(HKEY_CURRENT_USER, kLegacyKey).at(L":InputDirectory"));
  // The entry leaves its session to the end of its process.
  object->Uninit();
  engine().reset();
}

}  // namespace
