// A user at the windows of this process: reads what stands in a window, presses and marks, and never waits for ever.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

/// One control, as the window interface reports it.
struct SeenControl {
  int id;
  std::wstring kind;
  std::wstring text;
  /// In pixels, relative to the client area of its parent.
  RECT place;
  bool visible;
  bool enabled;
  DWORD style;
  HWND window;
};

struct SeenWindow {
  std::wstring caption;
  HWND window = nullptr;
  HWND owner = nullptr;
  /// All descendants.
  std::vector<SeenControl> controls;

  /// The control with a number; a failure of the test, and an empty control, when there is none.
  SeenControl control(int id) const;
  bool has(int id) const;
  /// The numbers of the visible controls of a window class, in their order.
  std::vector<int> visible(const wchar_t* kind) const;
};

/// Reads a window and everything in it.
SeenWindow Look(HWND window);

/// Texts of a message box.
std::wstring TextOfMessage(const SeenWindow& box);

void Press(HWND window, int button);
/// The close box of a window's caption.
void PressCloseBox(HWND window);
void SetMark(HWND checkBox, bool checked);
void TypeText(HWND edit, const std::wstring& text);

/// Keeps a picture of the whole display as NAME.png, where the runner of the tests wants pictures. False if it did not
/// come.
bool TakePicture(const std::string& name);

/// Does something with the next window of a caption, while the test's own thread is busy showing it. What is done
/// runs on a thread of the user's: it may look and press, and leaves comparing to the test.
class User {
 public:
  using Recognition = std::function<bool(HWND)>;

  User(const std::wstring& caption, std::function<void(HWND)> act);
  /// Waits for the window that `is` recognises; `name` stands for it in a failure.
  User(const std::wstring& name, Recognition is, std::function<void(HWND)> act);
  User(const User&) = delete;
  User& operator=(const User&) = delete;
  /// Waits until the user is done. The test fails when the window did not come, or did not go.
  ~User();

 private:
  static DWORD WINAPI run(void* self);
  void serve();
  HWND await();
  void clear();

  const std::wstring name_;
  const Recognition is_;
  const std::function<void(HWND)> act_;
  std::wstring complaint_;
  HANDLE thread_;
};

/// A user who looks and then presses a button; what was seen is left in `seen`.
inline std::function<void(HWND)> LookAndPress(SeenWindow& seen, int button) {
  return [&seen, button](HWND window) {
    seen = Look(window);
    Press(window, button);
  };
}

/// Watches the whole run: ends the process when a test takes longer than any user would wait.
void StartWatchdog(DWORD seconds);
