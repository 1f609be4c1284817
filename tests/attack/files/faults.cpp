// Every call of the engine to the platform's files fails once, and the input changes at every read.
#include "attacks.h"
#include "platform_calls.h"
#include "store_operations.h"

namespace {

/// More calls than this no operation here makes: the number of the last one is never reached.
constexpr unsigned kManyCalls = 200;

const char* NameOfDeed(Deed deed) {
  switch (deed) {
    case Deed::kHalf:
      return "writes half";
    case Deed::kEnd:
      return "shrinks";
    case Deed::kGrow:
      return "grows";
    case Deed::kOther:
      return "changes";
    case Deed::kReplace:
      return "is replaced";
    default:
      return "fails";
  }
}

std::string CaseOf(const char* operation, FileCall call, unsigned at, Deed deed) {
  return std::string(operation) + ", " + NameOf(call) + " " + std::to_string(at) + " " + NameOfDeed(deed);
}

/// Runs an operation with the deed at each of its calls in turn.
void FailEach(Cases& cases, const Folders& folders, const Caller& caller, const Operation& operation, FileCall call,
              Deed deed) {
  const std::wstring old = folders.file(L"old.bin");
  const auto before = FilesOf(folders.scratch);
  bool reached = true;
  for (unsigned at = 0; reached && at < kManyCalls; ++at) {
    if (!cases.begin(CaseOf(operation.name, call, at, deed))) continue;
    Outcome outcome;
    {
      const PlatformCalls calls(caller.engine(), call, at, deed);
      outcome = cases.call([&] { return operation.run(caller, folders.file(operation.input), old); });
      reached = calls.reached();
    }
    auto after = FilesOf(folders.scratch);
    if (reached) {
      // Nothing is lost when a call fails, or the engine had no need of it.
      cases.check(!outcome.done || !operation.writes || operation.isWhole(caller, old), "the output is damaged");
      if (!outcome.done) {
        cases.check(outcome.code != S_OK, "no code");
        cases.check(Difference(before, after).empty(), CodeText(outcome.code) + ", " + Difference(before, after));
      }
    } else {
      cases.check(outcome.done, "does not work without a fault: " + CodeText(outcome.code));
    }
    if (operation.writes) WriteFileOf(old, before.at(L"old.bin"));
  }
  cases.check(!reached, "the calls have no end");
}

void FailEachInStore(Cases& cases, const Folders& folders, unsigned which, FileCall call, Deed deed) {
  const std::wstring store = folders.scratch + L".store";
  bool reached = true;
  for (unsigned at = 0; reached && at < kManyCalls; ++at) {
    const StoreOperation operation = StoreOperations(folders, 0)[which];
    if (!cases.begin(CaseOf(operation.name, call, at, deed))) continue;
    CopyFolder(folders.materialFile(L"store"), store);
    DeleteFileW((store + L"\\root.crl").c_str());
    const auto before = FilesOf(store);
    const Caller caller(folders, store);
    Outcome outcome;
    {
      const PlatformCalls calls(caller.engine(), call, at, deed);
      outcome = cases.call([&] {
        const HRESULT code = operation.run(caller);
        return Outcome{code, SUCCEEDED(code)};
      });
      reached = calls.reached();
    }
    const auto after = FilesOf(store);
    cases.check(BrokenEntries(after).empty(), BrokenEntries(after));
    for (const auto& [name, bytes] : after) cases.check(!IsTemporary(name), "left " + Narrow(name));
    for (const auto& [name, bytes] : before) cases.check(after.count(name) == 1, "lost " + Narrow(name));
    cases.check(outcome.done != reached, "came to " + CodeText(outcome.code));
    // After a fault the same session goes on.
    if (reached) cases.check(SUCCEEDED(operation.run(caller)), "cannot be repeated");
  }
  cases.check(!reached, "the calls have no end");
}

/// Data of some pieces, signed and sealed, so that files are read and written by more than one call.
void MakeBigInputs(const Caller& caller, const Folders& folders) {
  Bytes big(1200000);
  unsigned value = 1;
  for (uint8_t& byte : big) byte = static_cast<uint8_t>((value = value * 1103515245 + 12345) >> 16);
  const std::wstring data = folders.file(L"data.bin");
  WriteFileOf(data, big);
  caller.legacy()->Sign(Bstr(data), Bstr(folders.file(L"attached.p7s")), 0);
  caller.legacy()->Sign(Bstr(data), Bstr(folders.file(L"detached.p7s")), 1);
  caller.legacy()->Encrypt(Bstr(data), Bstr(folders.file(L"two.p7e")));
  caller.legacy()->SignAndEncrypt(Bstr(data), Bstr(folders.file(L"both.p7a")));
  auto param = caller.make<ISignParam>(__uuidof(SignParam));
  param->put_flag(static_cast<SignParamFlag_t>(Flag_Sign_Pkcs7 | Flag_Sign_SendSert));
  // Two signatures by one signer in one second are one.
  Sleep(1100);
  caller.quivo()->SignFile(param, Bstr(), Bstr(folders.file(L"attached.p7s")), Bstr(folders.file(L"two.p7s")));
}

/// Other bytes at a later reading of such an operation cannot be noticed: it has nothing to compare them with.
bool ProvesNothing(const std::string& name, Deed deed) {
  return deed == Deed::kOther &&
         (name == "SignFile, detached" || name.find("ncrypt") != std::string::npos ||
          name.find("Decrypt") != std::string::npos) &&
         name != "pkiobj.VerifyAndUnencrypt";
}

}  // namespace

void AttackFaults(Cases& cases, const Folders& folders) {
  const std::wstring store = folders.scratch + L".store";
  EmptyFolder(folders.scratch);
  CopyFolder(folders.materialFile(L"store"), store);
  {
    const Caller caller(folders, store);
    const std::vector<Operation> operations = FileOperations(caller, folders);
    WriteFileOf(folders.file(L"old.bin"), {'o', 'l', 'd'});
    for (const Operation& operation : operations) {
      for (const FileCall call : kFileCalls) FailEach(cases, folders, caller, operation, call, Deed::kFail);
      if (operation.writes) FailEach(cases, folders, caller, operation, FileCall::kWrite, Deed::kHalf);
    }
  }
  for (unsigned which = 0; which < StoreOperations(folders, 0).size(); ++which) {
    for (const FileCall call : {FileCall::kCreate, FileCall::kWrite, FileCall::kMove}) {
      FailEachInStore(cases, folders, which, call, Deed::kFail);
    }
    FailEachInStore(cases, folders, which, FileCall::kWrite, Deed::kHalf);
  }
}

void AttackChanges(Cases& cases, const Folders& folders, bool all) {
  const std::wstring store = folders.scratch + L".store";
  EmptyFolder(folders.scratch);
  CopyFolder(folders.materialFile(L"store"), store);
  const Caller caller(folders, store);
  FileOperations(caller, folders);
  MakeBigInputs(caller, folders);
  const std::wstring old = folders.file(L"old.bin");
  WriteFileOf(old, {'o', 'l', 'd'});
  const auto before = FilesOf(folders.scratch);
  for (const Operation& operation : FileOperations(caller, folders)) {
    const std::wstring in = folders.file(operation.input);
    for (const auto& [name, bytes] : before) WriteFileOf(folders.file(name), bytes);
    for (const Deed deed : {Deed::kOther, Deed::kReplace, Deed::kEnd, Deed::kGrow}) {
      if (!all && (deed == Deed::kEnd || deed == Deed::kGrow)) continue;
      bool reached = true;
      for (unsigned at = 0; reached && at < kManyCalls; ++at) {
        if (!cases.begin(CaseOf(operation.name, FileCall::kRead, at, deed))) continue;
        Outcome outcome;
        {
          const PlatformCalls calls(caller.engine(), FileCall::kRead, at, deed);
          outcome = cases.call([&] { return operation.run(caller, in, old); });
          reached = calls.reached();
        }
        auto after = FilesOf(folders.scratch);
        for (const auto& [name, bytes] : FilesOf(folders.scratch)) {
          // Of an intermediate file that was replaced.
          if (!IsTemporary(name.substr(0, name.find(L".away"))) || name.find(L".away") == std::wstring::npos) continue;
          after.erase(name);
          DeleteFileW(folders.file(name).c_str());
        }
        for (const auto& [name, bytes] : before) {
          // The reads may have been those of another file.
          if (deed != Deed::kReplace || after.erase(name + L".away") == 0) continue;
          after[name] = bytes;
          DeleteFileW(folders.file(name + L".away").c_str());
          WriteFileOf(folders.file(name), bytes);
        }
        if (!outcome.done) {
          cases.check(outcome.code != S_OK, "no code");
          cases.check(Difference(before, after).empty(), CodeText(outcome.code) + ", " + Difference(before, after));
        } else if (operation.writes && !ProvesNothing(operation.name, deed)) {
          cases.check(operation.isWhole(caller, old), "the output is damaged " + CodeText(outcome.code));
        }
        if (operation.writes) WriteFileOf(old, before.at(L"old.bin"));
      }
      cases.check(!reached, "the reads have no end");
    }
  }
}
