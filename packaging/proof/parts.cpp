#include "parts.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "googletest.h"
#include "process.h"
#include "text.h"

namespace proof {
namespace {

std::string ReadFile(const std::wstring& path) {
  std::string content;
  if (FILE* file = _wfopen(path.c_str(), L"rb")) {
    char buffer[4096];
    while (const size_t count = std::fread(buffer, 1, sizeof buffer, file)) content.append(buffer, count);
    std::fclose(file);
  }
  return content;
}

std::string ScratchOf(const std::wstring& kit, const std::string& part) { return Utf8(kit) + "scratch\\" + part; }

bool IsKind(const std::string& kind) { return kind == "googletest" || kind == "script" || kind == "program"; }

Case RunProgramCase(const std::string& commandLine, unsigned seconds, Screen screen) {
  const ProgramEnd end = RunProgram(Wide(commandLine), seconds, screen);
  if (end.good()) return {"", "the program", Verdict::kPassed, end.seconds, ""};
  return {"", "the program", Verdict::kFailed, end.seconds, end.output + "the program " + end.howItEnded() + "\n"};
}

/// A script passes if its last line reports its end and no failed check. The host alone ends
/// with 0 after most errors.
Case RunScriptCase(const std::wstring& kit, const std::string& command, unsigned seconds) {
  wchar_t system[MAX_PATH] = L"";
  GetSystemDirectoryW(system, MAX_PATH);
  const size_t blank = command.find(' ');
  const std::string name = command.substr(0, blank),
                    arguments = blank == std::string::npos ? "" : command.substr(blank);
  const std::string host =
      Quoted(Utf8(system) + "\\cscript.exe") + " //nologo " + Quoted(Utf8(kit) + "scripts\\" + name);
  const ProgramEnd end = RunProgram(Wide(host + arguments), seconds);

  Case one{"", name, Verdict::kFailed, end.seconds, end.output};
  const std::string output = Trimmed(end.output);
  const std::string last = output.substr(output.rfind('\n') + 1);
  int done = 0, failed = 0, read = 0;
  const bool finished = std::sscanf(last.c_str(), "finished: %d checks, %d failed%n", &done, &failed, &read) == 2 &&
                        static_cast<size_t>(read) == last.size();
  if (!end.good()) {
    one.text += "the script " + end.howItEnded() + "\n";
  } else if (!finished) {
    one.text += "the end was not reached\n";
  } else if (done == 0) {
    one.text += "nothing was checked\n";
  } else if (failed == 0) {
    one.verdict = Verdict::kPassed;
    one.text.clear();
  }
  return one;
}

}  // namespace

std::vector<Part> ReadParts(const std::wstring& kit, std::string& error) {
  std::vector<Part> parts;
  int number = 0;
  for (const std::string& line : Split(ReadFile(kit + L"parts.txt"), '\n')) {
    ++number;
    // Some editors begin a text of UTF-8 with a mark.
    const std::string text = Trimmed(Replaced(line, "\xEF\xBB\xBF", ""));
    if (text.empty() || text[0] == '#') continue;
    const std::vector<std::string> fields = Split(text, '|');
    Part part;
    if (fields.size() == 6) {
      part.name = Trimmed(fields[0]);
      part.isShort = Trimmed(fields[1]) == "short";
      for (const std::string& need : Split(fields[2], ' ')) {
        if (!need.empty()) part.needs.push_back(need);
      }
      part.seconds = std::strtoul(fields[3].c_str(), nullptr, 10);
      part.kind = Trimmed(fields[4]);
      part.command = Replaced(Trimmed(fields[5]), "{kit}\\", Utf8(kit));
      part.command = Replaced(part.command, "{scratch}", ScratchOf(kit, part.name));
    }
    if (part.seconds == 0 || !IsKind(part.kind)) {
      error = "line " + std::to_string(number) + " of parts.txt is no part";
      return {};
    }
    parts.push_back(part);
  }
  if (parts.empty()) error = "parts.txt names no part";
  return parts;
}

PartResult SkippedPart(const Part& part, const std::string& reason) {
  return {part.name, {{"", "all of it", Verdict::kSkipped, 0, reason}}, 0};
}

PartResult RunPart(const std::wstring& kit, const Part& part,
                   const std::function<std::string(const std::string&)>& lacks) {
  for (const std::string& need : part.needs) {
    const std::string reason = lacks(need);
    if (!reason.empty()) return SkippedPart(part, reason);
  }
  CreateDirectoryW(Wide(ScratchOf(kit, part.name)).c_str(), nullptr);
  const Screen screen = part.needsThat("desktop") ? Screen::kUsers : Screen::kHidden;
  const ULONGLONG started = GetTickCount64();
  PartResult result{part.name, {}, 0};
  if (part.kind == "googletest") {
    result.cases = RunGoogletest(part.command, part.seconds, screen);
  } else if (part.kind == "script") {
    result.cases.push_back(RunScriptCase(kit, part.command, part.seconds));
  } else {
    result.cases.push_back(RunProgramCase(part.command, part.seconds, screen));
  }
  result.seconds = static_cast<double>(GetTickCount64() - started) / 1000;
  return result;
}

}  // namespace proof
