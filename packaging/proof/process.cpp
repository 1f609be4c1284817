#include "process.h"

#include <windows.h>

#include <atomic>
#include <memory>

#include "text.h"

namespace proof {
namespace {

struct HandleCloser {
  void operator()(void* handle) const {
    if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
  }
};
using Handle = std::unique_ptr<void, HandleCloser>;

std::atomic<bool> stopped{false};
bool stopEndsPrograms = true;
/// Window station and desktop; empty if there is no hidden screen.
std::wstring hiddenScreen;

HANDLE StopEvent() {
  static const HANDLE kEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  return kEvent;
}

HANDLE ClosableEvent() {
  static const HANDLE kEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  return kEvent;
}

BOOL WINAPI OnConsoleEvent(DWORD event) {
  stopped = true;
  SetEvent(StopEvent());
  // When this returns, Windows ends the process: first everything has to be taken back.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) WaitForSingleObject(ClosableEvent(), 4500);
  return TRUE;
}

/// A job ends its processes with its last handle, that is, with this program too.
Handle MakeJob() {
  Handle job(CreateJobObjectW(nullptr, nullptr));
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
  return job;
}

struct Reading {
  HANDLE pipe;
  std::string* output;
};

DWORD WINAPI ReadAll(void* argument) {
  const Reading& reading = *static_cast<Reading*>(argument);
  char buffer[4096];
  DWORD count = 0;
  while (ReadFile(reading.pipe, buffer, sizeof buffer, &count, nullptr) && count != 0) {
    reading.output->append(buffer, count);
  }
  return 0;
}

}  // namespace

std::string ProgramEnd::howItEnded() const {
  if (!notStarted.empty()) return "was not started: " + notStarted;
  if (overTime) return Format("was ended after its time limit (%.0f s)", seconds);
  return Format(code < 0x10000 ? "ended with %lu" : "ended with 0x%08lX", code);
}

ProgramEnd RunProgram(const std::wstring& commandLine, unsigned seconds, Screen screen) {
  ProgramEnd end;
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE readEnd = nullptr, writeEnd = nullptr;
  if (!CreatePipe(&readEnd, &writeEnd, &inherited, 0)) {
    end.notStarted = ErrorText(GetLastError());
    return end;
  }
  const Handle pipe(readEnd);
  Handle output(writeEnd);
  SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
  Handle input(
      CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0, nullptr));

  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = input.get();
  start.hStdOutput = start.hStdError = writeEnd;
  std::wstring desktop = hiddenScreen;
  if (screen == Screen::kHidden && !desktop.empty()) start.lpDesktop = desktop.data();
  PROCESS_INFORMATION information{};
  std::wstring line = commandLine;
  const ULONGLONG started = GetTickCount64();
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED | CREATE_NO_WINDOW, nullptr,
                      nullptr, &start, &information)) {
    end.notStarted = ErrorText(GetLastError());
    return end;
  }
  const Handle process(information.hProcess), thread(information.hThread);
  // Before Windows 8 a process has one job at most, and may have been started in another: its children are on their own
  // then.
  Handle job = MakeJob();
  AssignProcessToJobObject(job.get(), process.get());
  ResumeThread(thread.get());
  output.reset();

  Reading reading{readEnd, &end.output};
  const Handle reader(CreateThread(nullptr, 0, ReadAll, &reading, 0, nullptr));
  const HANDLE awaited[] = {process.get(), StopEvent()};
  const DWORD result = WaitForMultipleObjects(stopEndsPrograms ? 2 : 1, awaited, FALSE, seconds * 1000);
  end.overTime = result == WAIT_TIMEOUT;
  if (result != WAIT_OBJECT_0) TerminateProcess(process.get(), 1);
  WaitForSingleObject(process.get(), 10000);
  GetExitCodeProcess(process.get(), &end.code);
  end.seconds = static_cast<double>(GetTickCount64() - started) / 1000;
  // Children that outlive the program would keep its output open.
  job.reset();
  if (WaitForSingleObject(reader.get(), 5000) != WAIT_OBJECT_0) {
    CancelSynchronousIo(reader.get());
    WaitForSingleObject(reader.get(), INFINITE);
  }
  end.output = FromConsole(end.output);
  return end;
}

bool MakeHiddenScreen(const std::wstring& commandLine) {
  // An ordinary user may not name a station: its name is that of the logon session.
  const HWINSTA station = CreateWindowStationW(nullptr, 0, GENERIC_ALL, nullptr), own = GetProcessWindowStation();
  wchar_t name[256] = L"";
  if (station == nullptr || !SetProcessWindowStation(station)) return false;
  const HDESK desktop = CreateDesktopW(L"proof", nullptr, nullptr, 0, GENERIC_ALL, nullptr);
  SetProcessWindowStation(own);
  if (desktop == nullptr || !GetUserObjectInformationW(station, UOI_NAME, name, sizeof name, nullptr)) return false;
  // Both handles stay open as long as the kit runs.
  hiddenScreen = std::wstring(name) + L"\\proof";
  if (RunProgram(commandLine, 30).good()) return true;
  hiddenScreen.clear();
  return false;
}

void WatchForStop() { SetConsoleCtrlHandler(OnConsoleEvent, TRUE); }
bool Stopped() { return stopped; }
void LetStopEndPrograms(bool ends) { stopEndsPrograms = ends; }
void AllowClose() { SetEvent(ClosableEvent()); }

}  // namespace proof
