#include "platform_calls.h"

#include <algorithm>
#include <string>

namespace {

struct Plan {
  FileCall call;
  unsigned at;
  Deed deed;
  unsigned seen;
  bool reached;
  HANDLE file;
};
Plan plan{};

/// The exit code of a process that ended where it was to end.
constexpr UINT kDied = 77;

/// Whether this is the call of the plan.
bool IsPlanned(FileCall call) {
  if (plan.deed == Deed::kNone || call != plan.call || plan.seen++ != plan.at) return false;
  plan.reached = true;
  if (plan.deed == Deed::kDieBefore) TerminateProcess(GetCurrentProcess(), kDied);
  return true;
}

void DieAfterwards() {
  if (plan.deed == Deed::kDieAfter) TerminateProcess(GetCurrentProcess(), kDied);
}

BOOL Refuse(DWORD error) {
  SetLastError(error);
  return FALSE;
}

HANDLE WINAPI Create(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD creation,
                     DWORD flags, HANDLE like) {
  const bool planned = IsPlanned(FileCall::kCreate);
  if (planned && plan.deed == Deed::kFail) {
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
  }
  const HANDLE file = CreateFileA(path, access, share, security, creation, flags, like);
  if (planned) DieAfterwards();
  return file;
}

BOOL WINAPI Write(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
  if (!IsPlanned(FileCall::kWrite)) return WriteFile(file, data, size, written, overlapped);
  if (plan.deed == Deed::kFail) return Refuse(ERROR_DISK_FULL);
  if (plan.deed == Deed::kHalf || plan.deed == Deed::kDieHalf) WriteFile(file, data, size / 2, written, overlapped);
  if (plan.deed == Deed::kDieHalf) TerminateProcess(GetCurrentProcess(), kDied);
  if (plan.deed == Deed::kHalf) return Refuse(ERROR_DISK_FULL);
  const BOOL done = WriteFile(file, data, size, written, overlapped);
  DieAfterwards();
  return done;
}

BOOL WINAPI Seek(HANDLE file, LARGE_INTEGER to, PLARGE_INTEGER at, DWORD from) {
  const bool planned = IsPlanned(FileCall::kSeek);
  if (planned && plan.deed == Deed::kFail) return Refuse(ERROR_GEN_FAILURE);
  const BOOL done = SetFilePointerEx(file, to, at, from);
  if (planned) DieAfterwards();
  return done;
}

BOOL WINAPI Move(LPCSTR from, LPCSTR to, DWORD flags) {
  const bool planned = IsPlanned(FileCall::kMove);
  if (planned && plan.deed == Deed::kFail) return Refuse(ERROR_SHARING_VIOLATION);
  const BOOL done = MoveFileExA(from, to, flags);
  if (planned) DieAfterwards();
  return done;
}

/// Puts another file of the same size in the place of an open one.
void Replace(HANDLE file) {
  wchar_t path[MAX_PATH] = L"";
  GetFinalPathNameByHandleW(file, path, MAX_PATH, 0);
  const std::wstring name = path;
  if (!MoveFileExW(name.c_str(), (name + L".away").c_str(), MOVEFILE_REPLACE_EXISTING)) return;
  const HANDLE other = CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW, 0, nullptr);
  const std::string bytes(GetFileSize(file, nullptr), 'x');
  DWORD written = 0;
  WriteFile(other, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  CloseHandle(other);
}

BOOL WINAPI Read(HANDLE file, LPVOID data, DWORD size, LPDWORD read, LPOVERLAPPED overlapped) {
  const bool planned = IsPlanned(FileCall::kRead);
  if (planned) plan.file = file;
  if (planned && plan.deed == Deed::kFail) return Refuse(ERROR_CRC);
  const bool isSame = plan.reached && plan.call == FileCall::kRead && plan.file == file;
  if (isSame && plan.deed == Deed::kEnd) {
    *read = 0;
    return TRUE;
  }
  const BOOL done = ReadFile(file, data, size, read, overlapped);
  if (!done) return done;
  if (isSame && plan.deed == Deed::kGrow && *read == 0) {
    *read = std::min<DWORD>(size, 1000);
    std::fill_n(static_cast<char*>(data), *read, 'g');
    plan.deed = Deed::kNone;
  }
  if (plan.reached && plan.deed == Deed::kOther && *read > 0) static_cast<char*>(data)[*read / 2] ^= 1;
  if (planned && plan.deed == Deed::kReplace) Replace(file);
  return done;
}

}  // namespace

const char* NameOf(FileCall call) {
  constexpr const char* kNames[] = {"CreateFile", "ReadFile", "WriteFile", "SetFilePointer", "MoveFile"};
  return kNames[static_cast<int>(call)];
}

PlatformCalls::PlatformCalls(HMODULE engine, FileCall call, unsigned at, Deed deed) {
  plan = {call, at, deed, 0, false, nullptr};
  const auto patch = [&](const char* function, auto* replacement) {
    patches_.push_back(std::make_unique<ImportPatch>(engine, function, reinterpret_cast<void*>(replacement)));
  };
  patch("CreateFileA", &Create);
  patch("WriteFile", &Write);
  patch("ReadFile", &Read);
  patch("SetFilePointerEx", &Seek);
  patch("MoveFileExA", &Move);
}

PlatformCalls::~PlatformCalls() { plan.deed = Deed::kNone; }

bool PlatformCalls::reached() const { return plan.reached; }
