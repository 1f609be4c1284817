// Another process that changes files, for the tests of what the engine sees of it. Carries out the lines of its input,
// which are words separated by bars, and answers each with "done" or "failed".
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

/// Open files, whose closing must not delay the answer.
std::vector<HANDLE> kept;

HANDLE OpenToWrite(const std::string& path) {
  const HANDLE file =
      CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file != INVALID_HANDLE_VALUE) kept.push_back(file);
  return file;
}

bool Write(HANDLE file, const std::string& content) {
  DWORD length = 0;
  return WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &length, nullptr) &&
         length == content.size();
}

std::string ContentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// rewrite FROM TO: the content of one file into another of the same size, where it lies.
bool Rewrite(const Words& words) { return Write(OpenToWrite(words[2]), ContentOf(words[1])); }

/// fill FOLDER COUNT
bool Fill(const Words& words) {
  for (int i = std::stoi(words[2]); i > 0; --i) {
    FILE* file = std::fopen((words[1] + "\\other" + std::to_string(i)).c_str(), "wb");
    if (file == nullptr || std::fputs("other", file) < 0 || std::fclose(file) != 0) return false;
  }
  return true;
}

/// hurry FOLDER FROM TO: writes to the files of "fill" again and again, and rewrites a file last, as fast as it can.
bool Hurry(const Words& words) {
  const std::string content = ContentOf(words[2]);
  const HANDLE last = OpenToWrite(words[3]);
  std::vector<HANDLE> others;
  for (int i = 1;; ++i) {
    const HANDLE other = OpenToWrite(words[1] + "\\other" + std::to_string(i));
    if (other == INVALID_HANDLE_VALUE) break;
    others.push_back(other);
  }
  constexpr int kRounds = 5;
  for (int round = 0; round < kRounds; ++round) {
    for (const HANDLE other : others) Write(other, "again");
  }
  return Write(last, content) && !others.empty();
}

bool CarryOut(const Words& words) {
  if (words.size() == 4 && words[0] == "hurry") return Hurry(words);
  if (words.size() == 2 && words[0] == "remove") return DeleteFileA(words[1].c_str());
  if (words.size() != 3) return false;
  if (words[0] == "copy") return CopyFileA(words[1].c_str(), words[2].c_str(), FALSE);
  if (words[0] == "move") return MoveFileA(words[1].c_str(), words[2].c_str());
  if (words[0] == "rewrite") return Rewrite(words);
  return words[0] == "fill" && Fill(words);
}

}  // namespace

int main() {
  char line[4 * MAX_PATH];
  while (std::fgets(line, sizeof line, stdin) != nullptr) {
    Words words;
    for (const char* word = std::strtok(line, "|\r\n"); word != nullptr; word = std::strtok(nullptr, "|\r\n")) {
      words.emplace_back(word);
    }
    std::puts(CarryOut(words) ? "done" : "failed");
    std::fflush(stdout);
    for (const HANDLE file : kept) CloseHandle(file);
    kept.clear();
  }
}
