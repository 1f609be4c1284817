// What this user may not read or write. The folder and the file are made by who starts the attack, as another user.
#include "attacks.h"

void AttackDenied(Cases& cases, const Folders& folders) {
  const std::wstring store = folders.scratch + L".store";
  const std::wstring denied = folders.file(L"denied");
  EmptyFolder(folders.scratch);
  CopyFolder(folders.materialFile(L"store"), store);
  const Caller caller(folders, store);
  const auto before = FilesOf(denied);
  // The user's rights, not the engine, are what is looked at.
  if (cases.begin("the folder denies access")) {
    cases.check(
        !before.empty() && !WriteFileOf(denied + L"\\probe", {}) && ReadFileOf(denied + L"\\secret.bin").empty(),
        "this user may write into the folder, or read its file");
  }
  for (const Operation& operation : FileOperations(caller, folders)) {
    const auto refused = [&](const std::string& what, const std::wstring& in, const std::wstring& out) {
      if (!cases.begin(std::string(operation.name) + ", " + what)) return;
      const auto around = FilesOf(folders.scratch);
      const Outcome outcome = cases.call([&] { return operation.run(caller, in, out); });
      cases.check(!outcome.done && outcome.code != S_OK, "is not refused: " + CodeText(outcome.code));
      const std::string difference = Difference(before, FilesOf(denied)) + Difference(around, FilesOf(folders.scratch));
      cases.check(difference.empty(), CodeText(outcome.code) + ", " + difference);
    };
    const std::wstring in = folders.file(operation.input);
    if (!operation.input.empty()) refused("input that is denied", denied + L"\\secret.bin", folders.file(L"out.bin"));
    if (!operation.writes) continue;
    refused("new output in the folder", in, denied + L"\\out.bin");
    refused("output over a file of the folder", in, denied + L"\\old.bin");
  }
  // A store that cannot be written refuses additions, and can still be read.
  const Caller reader(folders, denied + L"\\store");
  const auto stored = FilesOf(denied + L"\\store");
  if (cases.begin("AddCertificate to a store that denies it")) {
    Variant encoded = ByteArray(ReadFileOf(folders.materialFile(L"heidi.cer")));
    const Outcome outcome = cases.call([&] {
      const HRESULT code = reader.quivo()->AddCertificate(nullptr, encoded);
      return Outcome{code, SUCCEEDED(code)};
    });
    cases.check(!outcome.done, "is not refused");
    cases.check(reader.certificatesFound() > 0, "the store cannot be read");
    cases.check(Difference(stored, FilesOf(denied + L"\\store")).empty(), "the store is changed");
  }
}
