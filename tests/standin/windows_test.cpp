// The windows of the stand-in engine, answered by a thread that plays the user. Needs a display.
#include <windows.h>

#include <functional>
#include <string>

#include "engine_test.h"
#include "standin/windows/selection_dialog_ids.h"

using namespace standin;

namespace {

std::wstring CaptionOf(HWND window) {
  wchar_t text[256] = {};
  GetWindowTextW(window, text, 256);
  return text;
}

/// Waits for a visible window of this process and answers it.
class User {
 public:
  using Answer = std::function<void(HWND)>;

  explicit User(Answer answer) : answer_(std::move(answer)) {
    thread_ = CreateThread(nullptr, 0, run, this, 0, nullptr);
  }
  ~User() {
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
  }
  User(const User&) = delete;
  User& operator=(const User&) = delete;

  /// The caption of the window that was answered; to be asked when the window is gone.
  std::wstring sawCaption() {
    WaitForSingleObject(thread_, INFINITE);
    return caption_;
  }

 private:
  static DWORD WINAPI run(void* self) {
    static_cast<User*>(self)->work();
    return 0;
  }

  void work() {
    for (int i = 0; i < 200 && window_ == nullptr; ++i) {
      Sleep(50);
      EnumWindows(check, reinterpret_cast<LPARAM>(this));
    }
    if (window_ == nullptr) return;
    caption_ = CaptionOf(window_);
    answer_(window_);
  }

  static BOOL CALLBACK check(HWND window, LPARAM self) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != GetCurrentProcessId() || !IsWindowVisible(window) || CaptionOf(window).empty()) return TRUE;
    reinterpret_cast<User*>(self)->window_ = window;
    return FALSE;
  }

  Answer answer_;
  HANDLE thread_;
  HWND window_ = nullptr;
  std::wstring caption_;
};

User::Answer Press(int button) {
  return [button](HWND window) { PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(button), 0); };
}
void Dismiss(HWND window) { PostMessageW(window, WM_CLOSE, 0, 0); }

class Windows : public EngineTest {
 protected:
  /// The subjects chosen in the selection window.
  std::vector<std::string> select(EngineSession session, uint32_t flags, int32_t expected = 0) {
    FindParamRecord param{};
    param.flag = flags | 8;
    param.info = 4;
    FindResultRecord result{};
    EXPECT_CODE(expected, QUIVO_FindCert(session, &param, &result));
    std::vector<std::string> subjects;
    for (int32_t i = 0; i < result.count; ++i) subjects.push_back(result.certificates[i].subject);
    QUIVO_FreeFindResult(session, &result);
    return subjects;
  }
};

}  // namespace

TEST_F(Windows, FirstCertificateIsSelectedFromTheStart) {
  User user(Press(IDOK));
  EXPECT_EQ(std::vector<std::string>{"CN=Carol, C=RU"}, select(open("carol"), 2));
  EXPECT_EQ(L"Выбор сертификата", user.sawCaption());
}

TEST_F(Windows, AnyNumberCanBeSelected) {
  User user([](HWND window) {
    const HWND list = GetDlgItem(window, IDC_CANDIDATES);
    EXPECT_EQ(8, SendMessageW(list, LB_GETCOUNT, 0, 0));
    SendMessageW(list, LB_SETSEL, FALSE, 0);
    SendMessageW(list, LB_SETSEL, TRUE, 2);
    SendMessageW(list, LB_SETSEL, TRUE, 5);
    PostMessageW(window, WM_COMMAND, IDOK, 0);
  });
  EXPECT_EQ(2u, select(open("carol"), 2).size());
}

TEST_F(Windows, SelectionCanBeGivenUp) {
  User user(Press(IDCANCEL));
  EXPECT_TRUE(select(open("carol"), 0, kSelectionCancelled).empty());
}

TEST_F(Windows, NothingSelectedIsGivenUpToo) {
  User user([](HWND window) {
    SendMessageW(GetDlgItem(window, IDC_CANDIDATES), LB_SETSEL, FALSE, 0);
    PostMessageW(window, WM_COMMAND, IDOK, 0);
  });
  EXPECT_TRUE(select(open("carol"), 0, kSelectionCancelled).empty());
}

TEST_F(Windows, CertificateIsShownUntilItsWindowIsClosed) {
  const EngineSession session = open("alice");
  const Bytes encoded = Material("bob.cer");
  const DataBlob_t blob = BlobOf(encoded);
  User user(Dismiss);
  EXPECT_CODE(0, QUIVO_ShowCertificate(session, &blob));
  EXPECT_NE(L"", user.sawCaption());
}

TEST_F(Windows, RevocationListIsShownUntilItsWindowIsClosed) {
  const EngineSession session = open("alice");
  const Bytes encoded = Material("root.crl");
  const DataBlob_t blob = BlobOf(encoded);
  User user(Dismiss);
  EXPECT_CODE(0, QUIVO_ShowCrl(session, &blob));
  EXPECT_NE(L"", user.sawCaption());
}

TEST_F(Windows, ImportCanAsk) {
  const EngineSession session = openIn("alice", CopyOfStore("roots", "asked"));
  const Bytes encoded = Material("bob.cer");
  const DataBlob_t blob = BlobOf(encoded);
  const SignParamRecord param{1, nullptr};
  const Bytes message = sign(open("bob"), 0, BytesOf("text"));
  {
    User user(Press(IDCANCEL));
    EXPECT_CODE(kSelectionCancelled, QUIVO_ImportMem(session, &param, &blob));
  }
  EXPECT_CODE(kSignerUnknown, verify(session, message).code);
  {
    User user(Press(IDOK));
    EXPECT_CODE(0, QUIVO_ImportMem(session, &param, &blob));
  }
  EXPECT_CODE(0, verify(session, message).code);
}

TEST_F(Windows, ExportCanAsk) {
  const EngineSession session = open("carol");
  const SignParamRecord param{1 | 2, nullptr};
  DataBlob_t out{};
  User user(Press(IDOK));
  EXPECT_CODE(0, QUIVO_ExportMem(session, &param, &out));
  EXPECT_EQ(Material("carol.cer"), take(session, out));
}
