#include "cases.h"

#include <cstdlib>

namespace {

constexpr ULONGLONG kHang = 10000;
constexpr ULONGLONG kWorkLimit = 2000;

ULONGLONG WorkOfThread() {
  FILETIME created, ended, kernel, user;
  GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user);
  const auto milliseconds = [](const FILETIME& time) {
    return (static_cast<ULONGLONG>(time.dwHighDateTime) << 32 | time.dwLowDateTime) / 10000;
  };
  return milliseconds(kernel) + milliseconds(user);
}

}  // namespace

Cases::Cases(std::string attack, unsigned seed, std::string only)
    : attack_(std::move(attack)), seed_(seed), only_(std::move(only)) {
  CloseHandle(CreateThread(nullptr, 0, watch, this, 0, nullptr));
}

// The watchdog looks at this object until the process ends.
Cases::~Cases() { began_ = 0; }

DWORD WINAPI Cases::watch(void* self) {
  auto& cases = *static_cast<Cases*>(self);
  for (;;) {
    Sleep(250);
    const ULONGLONG began = cases.began_;
    if (began == 0 || GetTickCount64() - began < kHang) continue;
    std::printf("FAILED: %s, seed %u, case '%s': the call hangs\n", cases.attack_.c_str(), cases.seed_,
                cases.what_.c_str());
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), 3);
  }
}

bool Cases::begin(const std::string& what) {
  what_ = what;
  wanted_ = only_.empty() || only_ == what;
  if (wanted_) ++run_;
  return wanted_;
}

Outcome Cases::call(const std::function<Outcome()>& call) {
  began_ = GetTickCount64();
  const ULONGLONG before = WorkOfThread();
  const Outcome outcome = call();
  const ULONGLONG work = WorkOfThread() - before;
  began_ = 0;
  check(work <= kWorkLimit, "took " + std::to_string(work) + " ms of work");
  return outcome;
}

void Cases::check(bool holds, const std::string& otherwise) {
  if (holds || !wanted_) return;
  ++failed_;
  std::printf("FAILED: %s, seed %u, case '%s': %s\n", attack_.c_str(), seed_, what_.c_str(), otherwise.c_str());
  std::fflush(stdout);
}

int Cases::finish() const {
  std::printf("%s: %u cases, %u failed\n", attack_.c_str(), run_, failed_);
  return run_ > 0 && failed_ == 0 ? 0 : 1;
}

std::string Narrow(const std::wstring& text) {
  std::string narrow;
  for (const wchar_t c : text.size() > 60 ? L"..." + text.substr(text.size() - 60) : text) {
    narrow += c >= 0x20 && c < 0x7F ? static_cast<char>(c) : '?';
  }
  return narrow;
}

std::string CodeText(HRESULT code) {
  char text[16];
  std::snprintf(text, sizeof text, "%08lX", static_cast<unsigned long>(code));
  return text;
}

std::string Difference(const std::map<std::wstring, Bytes>& before, const std::map<std::wstring, Bytes>& after) {
  std::string text;
  for (const auto& [name, bytes] : before) {
    const auto found = after.find(name);
    if (found == after.end()) {
      text += "lost " + Narrow(name) + "; ";
    } else if (found->second != bytes) {
      text += "changed " + Narrow(name) + "; ";
    }
  }
  for (const auto& [name, bytes] : after) {
    if (before.count(name) == 0) text += "left " + Narrow(name) + "; ";
  }
  return text;
}

bool IsTemporary(const std::wstring& name) {
  return name.size() > 6 && name.rfind(L"~t", 0) == 0 && name.substr(name.size() - 4) == L".tmp";
}
