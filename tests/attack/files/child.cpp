#include "child.h"

#include "attacks.h"
#include "child.h"
#include "platform_calls.h"
#include "store_operations.h"

Child::Child(const Folders& folders, const std::wstring& work) {
  wchar_t program[MAX_PATH] = L"";
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  std::wstring line =
      L"\"" + std::wstring(program) + L"\" child \"" + folders.material + L"\" \"" + folders.scratch + L"\" " + work;
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION info{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr, &start,
                      &info)) {
    return;
  }
  process_ = info.hProcess;
  // The event lives as long as somebody holds it.
  atWork_ = CreateEventW(nullptr, TRUE, FALSE, WorkEvent(info.dwProcessId).c_str());
  ResumeThread(info.hThread);
  CloseHandle(info.hThread);
}

Child::~Child() {
  if (process_ == nullptr) return;
  kill();
  CloseHandle(process_);
  CloseHandle(atWork_);
}

bool Child::waitForWork() const {
  const HANDLE either[] = {atWork_, process_};
  return WaitForMultipleObjects(2, either, FALSE, 30000) == WAIT_OBJECT_0;
}

void Child::kill() const {
  TerminateProcess(process_, 9);
  WaitForSingleObject(process_, 10000);
}

DWORD Child::wait(DWORD milliseconds) const {
  DWORD code = STILL_ACTIVE;
  if (WaitForSingleObject(process_, milliseconds) == WAIT_OBJECT_0) GetExitCodeProcess(process_, &code);
  return code;
}

std::wstring WorkEvent(DWORD process) { return L"tavlcom-attack-" + std::to_wstring(process); }

namespace {

void StateWork() {
  const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, WorkEvent(GetCurrentProcessId()).c_str());
  SetEvent(event);
  CloseHandle(event);
}

std::wstring StoreOf(const Folders& folders) { return folders.scratch + L".store"; }

/// die WHICH CALL AT DEED
int Die(const Folders& folders, unsigned which, const std::vector<std::string>& work) {
  const auto call = static_cast<FileCall>(std::stoi(work[2]));
  const auto deed = static_cast<Deed>(std::stoi(work[4]));
  const Caller caller(folders, StoreOf(folders));
  const std::vector<Operation> operations = FileOperations(caller, folders);
  const std::vector<StoreOperation> storeOperations = StoreOperations(folders, 0);
  const PlatformCalls calls(caller.engine(), call, static_cast<unsigned>(std::stoul(work[3])), deed);
  if (which < operations.size()) {
    const Operation& operation = operations[which];
    return operation.run(caller, folders.file(operation.input), folders.file(L"old.bin")).done ? 0 : 1;
  }
  return SUCCEEDED(storeOperations[which - operations.size()].run(caller)) ? 0 : 1;
}

/// loop WHICH: does it again and again.
int Loop(const Folders& folders, unsigned which) {
  const auto before = FilesOf(StoreOf(folders));
  const Caller caller(folders, StoreOf(folders));
  const std::vector<Operation> operations = FileOperations(caller, folders);
  StateWork();
  for (;;) {
    if (which < operations.size()) {
      operations[which].run(caller, folders.file(operations[which].input), folders.file(L"old.bin"));
      continue;
    }
    const Caller again(folders, StoreOf(folders));
    StoreOperations(folders, 0)[which - operations.size()].run(again);
    for (const auto& [name, bytes] : FilesOf(StoreOf(folders))) {
      if (before.count(name) == 0) DeleteFileW((StoreOf(folders) + L"\\" + name).c_str());
    }
  }
}

/// crowd NUMBER
int InCrowd(const Folders& folders, unsigned number) {
  const HANDLE go = CreateEventW(nullptr, TRUE, FALSE, kGo);
  StateWork();
  if (WaitForSingleObject(go, 60000) != WAIT_OBJECT_0) return 1;
  const Caller caller(folders, StoreOf(folders));
  const std::vector<StoreOperation> operations = StoreOperations(folders, number);
  const auto fails = [&](const char* what, HRESULT code) {
    if (SUCCEEDED(code)) return 0;
    std::printf("process %u: %s: %s\n", number, what, CodeText(code).c_str());
    return 1;
  };
  switch (number % 5) {
    case 0:
      return fails("AddCertificate", operations[0].run(caller));
    case 1:
      return fails("ImportFile", operations[2].run(caller)) | fails("AddCRL", operations[1].run(caller));
    case 2:
      return fails("CreateXmlRequest", operations[4].run(caller));
    case 3: {
      Variant results;
      auto param = caller.make<IVerifyParam>(__uuidof(VerifyParam));
      return fails("VerifyFile", caller.quivo()->VerifyFile(param, Bstr(), Bstr(folders.file(L"attached.p7s")), Bstr(),
                                                            results.out()));
    }
    default:
      return fails("FindCert", caller.certificatesFound() > 0 ? S_OK : E_FAIL);
  }
}

}  // namespace

int RunChild(const Folders& folders, const std::vector<std::string>& work) {
  if (work.size() < 2) return 2;
  const auto which = static_cast<unsigned>(std::stoul(work[1]));
  if (work[0] == "die" && work.size() == 5) return Die(folders, which, work);
  if (work[0] == "loop") return Loop(folders, which);
  if (work[0] == "crowd") return InCrowd(folders, which);
  return 2;
}
