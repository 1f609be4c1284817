// Paths: what names no ordinary file is refused with a code, and nothing is left, lost or changed.
#include "attacks.h"

namespace {

struct Place {
  std::wstring path;
  /// Some platforms find the file there.
  bool mayWork = false;
};

std::vector<Place> BadPlaces(const Folders& folders) {
  const std::wstring scratch = folders.scratch;
  return {
      {L""},
      {L"NUL"},
      {L"nul"},
      {L"NUL:"},
      {L"NUL.txt", true},
      {L"CON"},
      {L"CON:"},
      {L"CONIN$"},
      {L"CONOUT$"},
      {L"COM1"},
      {L"COM1:"},
      {L"LPT1"},
      {L"PRN"},
      {L"AUX"},
      {scratch + L"\\AUX"},
      {L"\\\\.\\NUL"},
      {L"\\\\.\\COM1"},
      {L"\\\\.\\C:"},
      {L"\\\\.\\PhysicalDrive0"},
      {L"\\\\.\\pipe\\tavlcom-attack"},
      {L"\\\\.\\pipe\\tavlcom-nobody"},
      {L"\\\\.\\mailslot\\tavlcom"},
      {L"\\\\?\\"},
      {L"\\\\.\\"},
      {L"\\\\"},
      {L"\\\\server.invalid\\share\\file.bin"},
      {L"//server.invalid/share/file.bin"},
      {L"Z:\\dev\\zero"},
      {L"Z:\\dev\\random"},
      {L"Z:\\dev\\null"},
      {L"Z:\\dev\\full"},
      {L"Z:\\dev\\tty"},
      {scratch + L".fifo"},
      {scratch},
      {scratch + L"\\"},
      {scratch + L"\\missing\\file.bin"},
      {scratch + L"\\data.bin\\file.bin"},
      {scratch + L"\\data.bin\\"},
      {scratch + L"\\stream.bin:b"},
      {scratch + L"\\data.bin:b"},
      {scratch + L"\\data.bin::$DATA", true},
      {scratch + L"\\data.bin:b:$DATA"},
      {L"stream.bin:b"},
      {scratch + L"\\*"},
      {scratch + L"\\a?b"},
      {scratch + L"\\a<b>|\""},
      {scratch + L"\\a\nb"},
      {scratch + L"\\" + std::wstring(255, L'n'), true},
      {scratch + L"\\" + std::wstring(256, L'n')},
      {scratch + L"\\" + std::wstring(40000, L'n')},
      {std::wstring(40000, L'n')},
      {std::wstring(20000, L'\\')},
      {[&] {
        std::wstring deep = scratch;
        while (deep.size() < 40000) deep += L"\\data.bin\\..";
        return deep + L"\\data.bin";
      }()},
      {L"Q:\\file.bin"},
      {L"Q:"},
      {L"."},
      {L".."},
      {L" "},
      {L"1:\\file.bin"},
  };
}

class Attack {
 public:
  Attack(Cases& cases, const Folders& folders)
      : cases_(cases), folders_(folders), store_(folders.scratch + L".store"), caller_(prepared(), store_) {
    operations_ = FileOperations(caller_, folders_);
    // The session imports into its store, which is no part of what is looked at.
    SetCurrentDirectoryW(folders_.scratch.c_str());
  }

  const std::vector<Operation>& operations() const { return operations_; }
  std::wstring good(const Operation& operation) const { return folders_.file(operation.input); }

  /// Runs an operation that has to be refused.
  void refused(const std::string& what, const Operation& operation, const std::wstring& in, const std::wstring& out,
               bool mayWork) {
    if (!cases_.begin(std::string(operation.name) + ", " + what)) return;
    const auto before = FilesOf(folders_.scratch);
    const Outcome outcome = cases_.call([&] { return operation.run(caller_, in, out); });
    const auto after = FilesOf(folders_.scratch);
    if (mayWork && outcome.done) {
      for (const auto& [name, bytes] : after) {
        if (before.count(name) == 0) cases_.check(!IsTemporary(name), "left " + Narrow(name));
      }
      if (before != after) restore(before);
      return;
    }
    cases_.check(!outcome.done && outcome.code != S_OK, "is not refused: " + CodeText(outcome.code));
    const std::string difference = Difference(before, after);
    cases_.check(difference.empty(), CodeText(outcome.code) + ", " + difference);
    if (!difference.empty()) restore(before);
  }

  /// Runs an operation that may be refused, but has to leave a whole file under the name of its output.
  void whole(const std::string& what, const Operation& operation, const std::wstring& in, const std::wstring& out) {
    if (!cases_.begin(std::string(operation.name) + ", " + what)) return;
    const auto before = FilesOf(folders_.scratch);
    const Outcome outcome = cases_.call([&] { return operation.run(caller_, in, out); });
    auto after = FilesOf(folders_.scratch);
    if (outcome.done) {
      cases_.check(operation.isWhole(caller_, out), "the output is damaged");
      auto expected = before;
      const std::wstring name = out.substr(out.find_last_of(L'\\') + 1);
      expected[name] = after[name];
      cases_.check(Difference(expected, after).empty(), Difference(expected, after));
    } else {
      cases_.check(Difference(before, after).empty(), CodeText(outcome.code) + ", " + Difference(before, after));
    }
    restore(before);
  }

 private:
  const Folders& prepared() {
    EmptyFolder(folders_.scratch);
    CopyFolder(folders_.materialFile(L"store"), store_);
    return folders_;
  }

  void restore(const std::map<std::wstring, Bytes>& wanted) {
    EmptyFolder(folders_.scratch);
    for (const auto& [name, bytes] : wanted) {
      if (name.back() != L'\\') WriteFileOf(folders_.file(name), bytes);
    }
  }

  Cases& cases_;
  const Folders& folders_;
  std::wstring store_;
  Caller caller_;
  std::vector<Operation> operations_;
};

/// A pipe that never has a byte.
class SilentPipe {
 public:
  SilentPipe()
      : pipe_(CreateNamedPipeW(L"\\\\.\\pipe\\tavlcom-attack", PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_WAIT,
                               PIPE_UNLIMITED_INSTANCES, 512, 512, 0, nullptr)) {}
  ~SilentPipe() { CloseHandle(pipe_); }
  SilentPipe(const SilentPipe&) = delete;
  SilentPipe& operator=(const SilentPipe&) = delete;

 private:
  HANDLE pipe_;
};

}  // namespace

void AttackPaths(Cases& cases, const Folders& folders, bool all) {
  Attack attack(cases, folders);
  const std::wstring out = folders.file(L"out.bin");
  const std::wstring old = folders.file(L"old.bin");
  WriteFileOf(old, {'o', 'l', 'd'});
  bool takes = false;
  for (const Operation& operation : attack.operations()) {
    const std::wstring in = attack.good(operation);
    for (const Place& place : BadPlaces(folders)) {
      // The short form takes one half of the places for one operation, and the other half for the next.
      takes = !takes;
      if (!takes && !all) continue;
      const SilentPipe pipe;
      if (!operation.input.empty()) {
        attack.refused("input " + Narrow(place.path), operation, place.path, old, place.mayWork);
      }
      // A verification without an output is none that is refused.
      const bool absent = _wcsicmp(place.path.c_str(), L"NUL") == 0;
      if (operation.writes) {
        attack.refused("output " + Narrow(place.path), operation, in, place.path, place.mayWork || absent);
      }
    }
    if (!operation.input.empty()) {
      const HANDLE lock = CreateFileW(in.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
      attack.refused("locked input", operation, in, old, false);
      CloseHandle(lock);
    }
    if (!operation.writes) continue;
    const HANDLE lock = CreateFileW(old.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    attack.refused("locked output", operation, in, old, false);
    CloseHandle(lock);
    attack.whole("an output that exists", operation, in, old);
    // Of a signature in the place of its data nothing can be checked.
    const bool losesData = std::string(operation.name) == "SignFile, detached";
    if (!operation.input.empty() && !losesData) attack.whole("output is input", operation, in, in);
    SetFileAttributesW(old.c_str(), FILE_ATTRIBUTE_READONLY);
    attack.refused("read-only output", operation, in, old, false);
    SetFileAttributesW(old.c_str(), FILE_ATTRIBUTE_NORMAL);
    attack.whole("a new output", operation, in, out);
  }
}
