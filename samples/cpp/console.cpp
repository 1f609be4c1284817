#include "console.h"

#include <windows.h>

void Write(const std::wstring& text) {
  const HANDLE out = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD written = 0;
  if (WriteConsoleW(out, text.c_str(), static_cast<DWORD>(text.size()), &written, nullptr)) return;
  char bytes[4096];
  const int length = WideCharToMultiByte(GetConsoleOutputCP(), 0, text.c_str(), static_cast<int>(text.size()), bytes,
                                         sizeof bytes, nullptr, nullptr);
  WriteFile(out, bytes, static_cast<DWORD>(length), &written, nullptr);
}

void Print(const std::wstring& line) { Write(line + L"\r\n"); }

bool ReadArguments(int count, wchar_t** values, size_t wanted, Arguments* arguments) {
  bool isKnown = true;
  for (int i = 1; i < count; ++i) {
    const std::wstring value = values[i];
    if (value == L"/lang:en") {
      arguments->language = Language::kEnglish;
    } else if (value.front() == L'/' && value != L"/lang:ru") {
      isKnown = false;
    } else if (value != L"/lang:ru") {
      arguments->given.push_back(value);
    }
  }
  return isKnown && arguments->given.size() == wanted;
}
