// Another process that changes files, for the tests of what the engine sees of it. Carries out the lines of its input,
// which are words separated by bars, and answers each with "done" or "failed".
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

/// rewrite FROM TO: the content of one file into another of the same size, where it lies.
bool Rewrite(const Words& words) {
  char content[64 * 1024];
  FILE* from = std::fopen(words[1].c_str(), "rb");
  FILE* to = std::fopen(words[2].c_str(), "r+b");
  const size_t size = from == nullptr ? 0 : std::fread(content, 1, sizeof content, from);
  const bool isDone = to != nullptr && size != 0 && std::fwrite(content, 1, size, to) == size;
  if (from != nullptr) std::fclose(from);
  return to != nullptr && std::fclose(to) == 0 && isDone;
}

/// fill FOLDER COUNT
bool Fill(const Words& words) {
  for (int i = std::stoi(words[2]); i > 0; --i) {
    FILE* file = std::fopen((words[1] + "\\other" + std::to_string(i)).c_str(), "wb");
    if (file == nullptr || std::fputs("other", file) < 0 || std::fclose(file) != 0) return false;
  }
  return true;
}

bool CarryOut(const Words& words) {
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
  }
}
