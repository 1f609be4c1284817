// Tries the module on this machine and reports what passed: prove [short | clean | PARTS...]
//   short   the parts that take seconds
//   PARTS   those whose names begin with one of the words
//   clean   only takes back what a run that was ended from outside has left in the registry
// Exit code: 0 if nothing failed, 1 if something did, 2 if the run could not begin or was stopped.
#include <windows.h>

#include <cstdio>
#include <cwchar>

#include "code_page.h"
#include "parts.h"
#include "process.h"
#include "registration.h"
#include "report.h"
#include "text.h"

namespace proof {
namespace {

constexpr int kNotRun = 2;
constexpr const wchar_t* kPageName = L"report.html";
constexpr const wchar_t* kJUnitName = L"report.xml";

void RemoveFolder(const std::wstring& folder) {
  WIN32_FIND_DATAW entry;
  const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const std::wstring name = entry.cFileName, path = folder + L"\\" + name;
    if (name == L"." || name == L"..") continue;
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
      RemoveFolder(path);
    } else {
      SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
      DeleteFileW(path.c_str());
    }
  } while (FindNextFileW(search, &entry));
  FindClose(search);
  RemoveDirectoryW(folder.c_str());
}

/// The environment of the kit's programs.
void SetEnvironment(const std::wstring& kit) {
  const std::pair<const wchar_t*, const wchar_t*> folders[] = {{L"TAVL_PKI", L"identities"},
                                                               {L"TAVL_MESSAGES", L"messages"},
                                                               {L"TAVL_PLANTED_ENGINE", L"planted\\tavl1.dll"},
                                                               {L"TEMP", L"scratch\\temp"},
                                                               {L"TMP", L"scratch\\temp"}};
  for (const auto& [name, folder] : folders) SetEnvironmentVariableW(name, (kit + folder).c_str());
  // These go through the runtime's own paths, which take narrow characters for UTF-8: the kit's folder may have letters
  // of the code page.
  SetCurrentDirectoryW(kit.c_str());
  SetEnvironmentVariableW(L"TAVL_STANDIN_MATERIAL", L"material");
  SetEnvironmentVariableW(L"TAVL_STANDIN_SCRATCH", L"scratch\\standin");
  // The contract tests watch all strings; they start themselves once more where they are not set up for that.
  SetEnvironmentVariableW(L"oanocache", L"1");
  wchar_t* variables = GetEnvironmentStringsW();
  for (const wchar_t* variable = variables; *variable != 0; variable += std::wcslen(variable) + 1) {
    const std::wstring name = std::wstring(variable).substr(0, std::wcscspn(variable, L"="));
    if (name.starts_with(L"GTEST_")) SetEnvironmentVariableW(name.c_str(), nullptr);
  }
  FreeEnvironmentStringsW(variables);
}

/// A program of the kit, or the platform's script host, which has the machine's code page.
bool HasCodePage(const std::wstring& kit, const Part& part) {
  if (part.kind == "script" || !part.command.starts_with('"')) return GetACP() == kNeededCodePage;
  return GiveCodePage(kit, Wide(part.command.substr(1, part.command.find('"', 1) - 1)));
}

/// Why this machine lacks what a part needs; empty if it has it.
std::string Lacks(const std::wstring& kit, const Registration& registration, const Part& part,
                  const std::string& need) {
  if (need == "1251") {
    if (HasCodePage(kit, part)) return {};
    return Format(
        "the code page of programs is %u; this part needs 1251: Russian as the language of programs that do not "
        "support "
        "Unicode",
        GetACP());
  }
  if (need == "classes") return registration.noClasses();
  // Such parts run before the module is registered.
  if (need == "unregistered") return {};
  if (need == "profiles") return registration.noProfiles();
  if (need == "desktop") return HasDesktop() ? "" : "no window can be shown here";
  if (need == "machine") return CanWriteMachineClasses() ? "" : "only an administrator may write what this part writes";
  return "the kit knows no need '" + need + "'";
}

bool IsChosen(const Part& part, const std::vector<std::string>& words) {
  if (words.empty()) return true;
  for (const std::string& word : words) {
    if (word == "short" ? part.isShort : part.name.starts_with(word)) return true;
  }
  return false;
}

void Print(const PartResult& part) {
  const size_t failed = part.count(Verdict::kFailed), passed = part.count(Verdict::kPassed);
  const char* word = failed != 0 ? "FAILED" : passed != 0 ? "ok" : "skipped";
  std::printf("%-8s%-28s%s, %.1f s\n", word, part.name.c_str(),
              Counts(passed, failed, part.count(Verdict::kSkipped)).c_str(), part.seconds);
}

int Clean(const std::wstring& kit) {
  PartResult result{"clean", {}, 0};
  if (Registration::somethingIsLeft()) Registration(kit).takeBack(result);
  for (const Case& one : result.cases) std::printf("%s", one.text.c_str());
  const bool isClean = result.count(Verdict::kFailed) == 0;
  std::printf(isClean ? "nothing is left\n" : "FAILED\n");
  return isClean ? 0 : 1;
}

/// Two runs at a time would take back what the other needs.
bool IsOnlyRun() {
  static const HANDLE kMutex = CreateMutexW(nullptr, TRUE, L"Local\\tavlcom.proof");
  return kMutex != nullptr && GetLastError() != ERROR_ALREADY_EXISTS;
}

/// The parts that were asked for; none with a reason why the run cannot begin.
std::vector<Part> ChosenParts(const std::wstring& kit, const std::vector<std::string>& words, std::string& reason) {
  std::vector<Part> parts = ReadParts(kit, reason);
  if (!reason.empty()) return {};
  std::erase_if(parts, [&](const Part& part) { return !IsChosen(part, words); });
  if (parts.empty()) reason = "no part is chosen";
  return parts;
}

/// An old report must not be taken for that of a run that could not begin.
bool EmptyReports(const std::wstring& kit) {
  return WriteWholeFile(kit + kPageName, "") && WriteWholeFile(kit + kJUnitName, "");
}

void MakeScratch(const std::wstring& kit) {
  RemoveFolder(kit + L"scratch");
  CreateDirectoryW((kit + L"scratch").c_str(), nullptr);
  CreateDirectoryW((kit + L"scratch\\temp").c_str(), nullptr);
}

Report RunAll(const std::wstring& kit, const std::vector<Part>& parts) {
  Report report{MachineFacts(), FileFacts(kit), {}, 0, false};
  const bool isHidden = MakeHiddenScreen(L"\"" + ProgramPath() + L"\" --nothing");
  report.machine.emplace_back("Parts without windows",
                              isHidden ? "run on a hidden screen" : "run on the user's screen");
  for (const auto& [name, text] : report.machine) std::printf("%s: %s\n", name.c_str(), text.c_str());

  const ULONGLONG started = GetTickCount64();
  const auto add = [&](const PartResult& result) {
    Print(result);
    report.parts.push_back(result);
  };
  Registration registration(kit);
  const auto runThose = [&](bool unregistered) {
    for (const Part& part : parts) {
      if (part.needsThat("unregistered") != unregistered) continue;
      add(Stopped() ? SkippedPart(part, "the run was stopped") : RunPart(kit, part, [&](const std::string& need) {
        return Lacks(kit, registration, part, need);
      }));
    }
  };
  PartResult preparation{"preparation", {}, 0}, classes{"registration", {}, 0}, end{"end", {}, 0};
  if (Registration::somethingIsLeft()) Registration(kit).takeBack(preparation);
  registration.prepareProfiles(preparation);
  add(preparation);
  runThose(true);
  registration.prepareClasses(classes);
  report.machine.emplace_back("Module registered for", registration.scope());
  add(classes);
  runThose(false);
  registration.takeBack(end);
  add(end);
  report.seconds = static_cast<double>(GetTickCount64() - started) / 1000;
  report.stopped = Stopped();
  return report;
}

int Prove(const std::wstring& kit, const std::vector<std::string>& words) {
  std::string reason;
  const std::vector<Part> parts = ChosenParts(kit, words, reason);
  if (reason.empty() && !EmptyReports(kit)) {
    reason = "no report can be written into the folder of the kit: copy the kit to where you may write";
  }
  if (!reason.empty()) {
    std::printf("%s\n", reason.c_str());
    return kNotRun;
  }
  MakeScratch(kit);
  SetEnvironment(kit);
  const Report report = RunAll(kit, parts);
  const size_t failed = report.count(Verdict::kFailed);
  if (failed == 0) RemoveFolder(kit + L"scratch");
  const bool written = WriteWholeFile(kit + kPageName, Page(report)) && WriteWholeFile(kit + kJUnitName, JUnit(report));
  AllowClose();
  std::printf("%s\n%s\n", Counts(report.count(Verdict::kPassed), failed, report.count(Verdict::kSkipped)).c_str(),
              written ? "see report.html and report.xml" : "the report cannot be written");
  if (report.stopped || !written) return kNotRun;
  return failed == 0 ? 0 : 1;
}

}  // namespace
}  // namespace proof

int wmain(int count, wchar_t** arguments) {
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  const std::wstring program = proof::ProgramPath(), kit = program.substr(0, program.rfind(L'\\') + 1);
  const std::wstring first = count > 1 ? arguments[1] : L"";
  // What it does as a child of its own.
  if (first == L"--nothing") return 0;
  if (first == L"--codepage") return GetACP() == proof::kNeededCodePage ? 0 : 1;
  if (first.starts_with(L"--")) {
    return proof::RunRegistrationCommand(kit, first.substr(2), count > 2 ? arguments[2] : L"");
  }
  proof::WatchForStop();
  if (!proof::IsOnlyRun()) {
    std::printf("the kit is running already\n");
    return proof::kNotRun;
  }
  if (first == L"clean") return proof::Clean(kit);
  std::vector<std::string> words;
  for (int i = 1; i < count; ++i) words.push_back(proof::Utf8(arguments[i]));
  return proof::Prove(kit, words);
}
